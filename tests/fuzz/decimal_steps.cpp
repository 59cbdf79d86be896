#include "decimal_steps.h"

#include <algorithm>
#include <cstdlib>

#include "decimal/m_apm.h"

namespace {

long steps = 0;

long limbs(long digits) {
  return std::max(digits, 0L) / 8 + 1;
}

/// Limbs of two numbers on one decimal point.
long alignedLimbs(M_APM a, M_APM b) {
  if (a->sign == 0 || b->sign == 0) return limbs(a->digitCount + long{b->digitCount});
  const long distance = std::labs(long{a->exponent} - b->exponent);
  return limbs(distance + a->digitCount + b->digitCount);
}

}  // namespace

namespace zevtest {

long decimalSteps() {
  return steps;
}

}  // namespace zevtest

// The linker calls these in place of the engine's functions.
extern "C" {
void __real_m_apm_add(M_APM r, M_APM a, M_APM b);
void __real_m_apm_subtract(M_APM r, M_APM a, M_APM b);
void __real_m_apm_multiply(M_APM r, M_APM a, M_APM b);
void __real_M_apm_sdivide(M_APM r, int places, M_APM a, M_APM b);

void __wrap_m_apm_add(M_APM r, M_APM a, M_APM b) {
  steps += alignedLimbs(a, b);
  __real_m_apm_add(r, a, b);
}

void __wrap_m_apm_subtract(M_APM r, M_APM a, M_APM b) {
  steps += alignedLimbs(a, b);
  __real_m_apm_subtract(r, a, b);
}

void __wrap_m_apm_multiply(M_APM r, M_APM a, M_APM b) {
  steps += limbs(a->digitCount) * limbs(b->digitCount);
  __real_m_apm_multiply(r, a, b);
}

void __wrap_M_apm_sdivide(M_APM r, int places, M_APM a, M_APM b) {
  const long distance = std::max(0L, long{a->exponent} - b->exponent);
  steps += limbs(places + distance) * limbs(b->digitCount);
  __real_M_apm_sdivide(r, places, a, b);
}
}
