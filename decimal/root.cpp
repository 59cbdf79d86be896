/// Square and cube roots, by Newton's iteration on their inverses.
#include "decimal/engine.h"
#include "decimal/estimates.h"
#include "decimal/newton.h"

using namespace zev::decimal;

void m_apm_sqrt(M_APM r, int places, M_APM x) {
  if (x->sign < 0) {
    warn(r, "'m_apm_sqrt', Negative argument");
    return;
  }
  if (x->sign == 0) {
    M_set_to_zero(r);
    return;
  }
  const int half = x->exponent / 2;
  const Scratch mantissa, rounded, g, next, product;
  m_apm_copy(mantissa, x);
  mantissa->exponent -= 2 * half;
  M_get_sqrt_guess(g, mantissa);
  // g' = g (3 - x g g) / 2
  Rounds rounds(places, 2, fromDouble(places));
  while (rounds.next()) {
    const int digits = rounds.digits();
    m_apm_round(rounded, digits, mantissa);
    m_apm_multiply(product, g, g);
    m_apm_round(product, digits, product);
    m_apm_multiply(next, rounded, product);
    m_apm_subtract(product, MM_Three, next);
    m_apm_round(product, digits, product);
    m_apm_multiply(next, g, product);
    m_apm_multiply(next, next, MM_0_5);
    m_apm_round(next, digits, next);
    m_apm_subtract(product, next, g);
    rounds.correctedBy(product);
    m_apm_copy(g, next);
  }
  m_apm_multiply(product, g, mantissa);
  m_apm_round(r, places, product);
  moveExponent(r, half);
}

void m_apm_cbrt(M_APM r, int places, M_APM x) {
  if (x->sign == 0) {
    M_set_to_zero(r);
    return;
  }
  const int third = x->exponent / 3, sign = x->sign;
  const Scratch mantissa, rounded, g, next, product;
  m_apm_absolute_value(mantissa, x);
  mantissa->exponent -= 3 * third;
  M_get_cbrt_guess(g, mantissa);
  // g' = (4 g - x g^4) / 3
  Rounds rounds(places, 2, {14, 3, places + 16});
  while (rounds.next()) {
    const int digits = rounds.digits();
    m_apm_round(rounded, digits, mantissa);
    m_apm_multiply(product, g, g);
    m_apm_round(product, digits, product);
    m_apm_multiply(next, product, product);
    m_apm_round(next, digits, next);
    m_apm_multiply(product, next, rounded);
    m_apm_multiply(next, g, MM_Four);
    m_apm_subtract(rounded, next, product);
    m_apm_divide(product, digits + 1, rounded, MM_Three);
    m_apm_round(next, digits, product);
    m_apm_subtract(product, next, g);
    rounds.correctedBy(product);
    m_apm_copy(g, next);
  }
  // x times the square of its inverse cube root.
  m_apm_multiply(product, g, g);
  m_apm_round(product, places + 16, product);
  m_apm_multiply(next, product, mantissa);
  m_apm_round(r, places, next);
  r->sign = sign;
  moveExponent(r, third);
}
