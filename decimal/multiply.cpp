#include <cstring>

#include "decimal/engine.h"
#include "decimal/fast_multiply.h"

namespace zev::decimal {
namespace {

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
  multiplyLimbs(product, limbsA, n, limbsB, m, own.columns.sized(n + m, kName));
  spread(run, product, n + m);
  assignRun(r, run, words, std::int64_t{a->exponent} + b->exponent, a->sign * b->sign);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_multiply(M_APM r, M_APM a, M_APM b) {
  constexpr int kFastBytes = 48;
  if (a->sign == 0 || b->sign == 0)
    M_set_to_zero(r);
  else if ((a->digitCount + 1) / 2 >= kFastBytes && (b->digitCount + 1) / 2 >= kFastBytes)
    M_fast_multiply(r, a, b);
  else
    multiplyDirectly(r, a, b);
}
