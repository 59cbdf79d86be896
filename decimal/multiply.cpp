#include <algorithm>
#include <cstring>

#include "decimal/engine.h"
#include "decimal/fast_multiply.h"

namespace zev::decimal {
namespace {

/// Whether the transform takes less time than the schoolbook: it does from some size on,
/// and only when the shorter number is not much shorter.
bool doesTransformPay(std::size_t bytesA, std::size_t bytesB) {
  constexpr std::size_t kFastBytes = 48, kProductsPerByte = 32;
  const std::size_t longer = std::max(bytesA, bytesB);
  if (std::min(bytesA, bytesB) < kFastBytes) return false;
  return limbsFor(bytesA) * limbsFor(bytesB) >
         kProductsPerByte *
             static_cast<std::size_t>(M_next_power_of_2(static_cast<int>(longer)));
}

/// Schoolbook on limbs.
void multiplyDirectly(M_APM r, M_APM a, M_APM b) {
  constexpr auto kName = "m_apm_multiply";
  Engine &own = engine();
  const std::size_t bytesA = bytesFor(a->digitCount), bytesB = bytesFor(b->digitCount);
  const std::size_t n = limbsFor(bytesA), m = limbsFor(bytesB);
  const std::size_t words = (n + m + 1) / 2;
  Limb *limbsA = own.limbsA.sized(n + 1, kName);
  Limb *limbsB = own.limbsB.sized(m + 1, kName);
  Limb *product = own.limbsResult.sized(n + m, kName);
  Byte *run = own.M_work1.sized(8 * words, kName);
  gather(limbsA, a->digits, bytesA);
  gather(limbsB, b->digits, bytesB);
  constexpr std::size_t kFewLimbs = 20;
  if (std::min(n, m) < kFewLimbs)
    multiplyByColumns(product, limbsA, n, limbsB, m);
  else
    multiplyByRows(product, limbsA, n, limbsB, m, own.columns.sized(n + m, kName));
  spread(run, product, n + m);
  assignRun(r, run, words, std::int64_t{a->exponent} + b->exponent, a->sign * b->sign);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_multiply(M_APM r, M_APM a, M_APM b) {
  if (a->sign == 0 || b->sign == 0)
    M_set_to_zero(r);
  else if (doesTransformPay(bytesFor(a->digitCount), bytesFor(b->digitCount)))
    M_fast_multiply(r, a, b);
  else
    multiplyDirectly(r, a, b);
}
