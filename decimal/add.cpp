#include <algorithm>
#include <limits>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

/// Two operands on one decimal point, which is `high`'s moved by `guard` digits.
struct Aligned {
  Byte *high, *low;
  std::size_t words;
};

/// `high` has the exponent that is not smaller.
Aligned align(M_APM high, M_APM low, int guard, const char *function) {
  const std::int64_t distance = std::int64_t{high->exponent} - low->exponent;
  const std::int64_t digits =
      guard + std::max<std::int64_t>(high->digitCount, low->digitCount + distance);
  if (digits > std::numeric_limits<std::int32_t>::max()) failForMemory(function);
  Engine &own = engine();
  const std::size_t words = wordsFor(digits);
  const Aligned runs{own.M_work1.sized(8 * words, function),
                     own.M_work2.sized(8 * words, function), words};
  layOut(runs.high, words, high, guard);
  layOut(runs.low, words, low, guard + distance);
  return runs;
}

void addMagnitudes(M_APM r, M_APM a, M_APM b, int sign) {
  constexpr int kGuard = 2;  // a whole pair for the carry
  if (a->exponent < b->exponent) std::swap(a, b);
  const Aligned runs = align(a, b, kGuard, "m_apm_add");
  addRuns(runs.high, runs.low, runs.words);
  assignRun(r, runs.high, runs.words, std::int64_t{a->exponent} + kGuard, sign);
}

/// `sign` is that of `a`.
void subtractMagnitudes(M_APM r, M_APM a, M_APM b, int sign) {
  const int order = compareMagnitudes(a, b);
  if (order == 0) {
    M_set_to_zero(r);
    return;
  }
  if (order < 0) std::swap(a, b);
  const Aligned runs = align(a, b, 0, "m_apm_subtract");
  subtractRuns(runs.high, runs.low, runs.words);
  assignRun(r, runs.high, runs.words, a->exponent, sign * order);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_add(M_APM r, M_APM a, M_APM b) {
  if (a->sign == 0)
    m_apm_copy(r, b);
  else if (b->sign == 0)
    m_apm_copy(r, a);
  else if (a->sign == b->sign)
    addMagnitudes(r, a, b, a->sign);
  else
    subtractMagnitudes(r, a, b, a->sign);
}

void m_apm_subtract(M_APM r, M_APM a, M_APM b) {
  if (b->sign == 0)
    m_apm_copy(r, a);
  else if (a->sign == 0)
    m_apm_negate(r, b);
  else if (a->sign == b->sign)
    subtractMagnitudes(r, a, b, a->sign);
  else
    addMagnitudes(r, a, b, a->sign);
}
