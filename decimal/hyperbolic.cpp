/// Hyperbolic functions and their inverses, by exponential and logarithm.
#include "decimal/engine.h"
#include "decimal/extendable.h"
#include "decimal/series.h"

namespace zev::decimal {
namespace {

/// The digits that are lost where x is subtracted from, or added to, something near 1.
int digitsLost(M_APM x) {
  return std::max(0, 1 - x->exponent);
}

/// e = exp |x| and its reciprocal, zero where that does not show beside e.
void expAndReciprocal(M_APM e, M_APM inverse, int places, M_APM x) {
  const Scratch magnitude;
  m_apm_absolute_value(magnitude, x);
  m_apm_exp(e, places, magnitude);
  if (2 * std::int64_t{e->exponent} > places + std::int64_t{8} || e->sign == 0)
    M_set_to_zero(inverse);
  else
    m_apm_reciprocal(inverse, places, e);
}

/// x itself, where it differs from f(x) by its third power only and that does not show.
bool isItself(M_APM r, int places, M_APM x) {
  if (x->sign != 0 && !isSquareLost(x, places)) return false;
  m_apm_round(r, places, x);
  return true;
}

/// Whether the hyperbolic tangent differs from 1 in more places than are wanted.
bool isTanhOne(M_APM x, int places) {
  const Scratch bound, magnitude;
  m_apm_set_long(bound, (long{places} + 12) * 6 / 5);
  m_apm_absolute_value(magnitude, x);
  return m_apm_compare(magnitude, bound) > 0;
}

/// ln (x + sqrt(x x + one)) of a positive x.
void logOfSumWithRoot(M_APM r, int places, M_APM x, M_APM one, int extra) {
  const Scratch square, root, sum;
  if (2 * std::int64_t{x->exponent} > places + std::int64_t{12}) {
    m_apm_multiply(sum, x, MM_Two);
  } else {
    m_apm_multiply(square, x, x);
    m_apm_add(sum, square, one);
    m_apm_sqrt(root, places + 6 + extra, sum);
    m_apm_add(sum, x, root);
  }
  m_apm_log(r, places, sum);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_sinh(M_APM r, int places, M_APM x) {
  if (isItself(r, places, x)) return;
  const int sign = x->sign;
  const Scratch e, inverse, difference;
  expAndReciprocal(e, inverse, places + 4 + digitsLost(x), x);
  m_apm_subtract(difference, e, inverse);
  m_apm_multiply(e, difference, MM_0_5);
  m_apm_round(r, places, e);
  r->sign *= sign;
}

void m_apm_cosh(M_APM r, int places, M_APM x) {
  const Scratch e, inverse, sum;
  expAndReciprocal(e, inverse, places + 4, x);
  m_apm_add(sum, e, inverse);
  m_apm_multiply(e, sum, MM_0_5);
  m_apm_round(r, places, e);
}

void m_apm_tanh(M_APM r, int places, M_APM x) {
  if (isItself(r, places, x)) return;
  const int sign = x->sign;
  if (isTanhOne(x, places)) {
    m_apm_copy(r, MM_One);
    r->sign = sign;
    return;
  }
  const int working = places + 4 + digitsLost(x);
  const Scratch e, inverse, difference, sum;
  expAndReciprocal(e, inverse, working, x);
  m_apm_subtract(difference, e, inverse);
  m_apm_add(sum, e, inverse);
  m_apm_divide(e, places + 4, difference, sum);
  m_apm_round(r, places, e);
  r->sign *= sign;
}

void m_apm_arcsinh(M_APM r, int places, M_APM x) {
  if (isItself(r, places, x)) return;
  const int sign = x->sign;
  const Scratch magnitude;
  m_apm_absolute_value(magnitude, x);
  logOfSumWithRoot(r, places, magnitude, MM_One, digitsLost(x));
  r->sign *= sign;
}

void m_apm_arccosh(M_APM r, int places, M_APM x) {
  if (m_apm_compare(x, MM_One) < 0) {
    warn(r, "'m_apm_arccosh', Argument < 1");
    return;
  }
  const Scratch minusOne;
  m_apm_negate(minusOne, MM_One);
  logOfSumWithRoot(r, places, x, minusOne, 0);
}

void m_apm_arctanh(M_APM r, int places, M_APM x) {
  if (x->sign != 0 && compareMagnitudes(x, MM_One) >= 0) {
    warn(r, "'m_apm_arctanh', |Argument| >= 1");
    return;
  }
  if (isItself(r, places, x)) return;
  const Scratch sum, difference, quotient;
  m_apm_add(sum, MM_One, x);
  m_apm_subtract(difference, MM_One, x);
  m_apm_divide(quotient, places + 8 + digitsLost(x), sum, difference);
  m_apm_log(sum, places + 4, quotient);
  m_apm_multiply(difference, sum, MM_0_5);
  m_apm_round(r, places, difference);
}
