/// Greatest common divisor and least common multiple of integers.

#include "decimal/engine.h"
#include "decimal/euclid.h"

using namespace zev::decimal;

void m_apm_gcd(M_APM r, M_APM a, M_APM b) {
  if (!m_apm_is_integer(a) || !m_apm_is_integer(b)) {
    warn(r, "'m_apm_gcd', Non-integer input");
    return;
  }
  if (a->sign == 0 || b->sign == 0) {
    m_apm_absolute_value(r, a->sign == 0 ? b : a);
    return;
  }
  const Scratch x, y, quotient, rest;
  m_apm_absolute_value(x, a);
  m_apm_absolute_value(y, b);
  if (m_apm_compare(x, y) < 0) {
    m_apm_copy(rest, x);
    m_apm_copy(x, y);
    m_apm_copy(y, rest);
  }
  while (y->sign != 0) {
    if (shortenPair(x, y)) continue;
    m_apm_integer_div_rem(quotient, rest, x, y);
    m_apm_copy(x, y);
    m_apm_copy(y, rest);
  }
  m_apm_copy(r, x);
}

void m_apm_lcm(M_APM r, M_APM a, M_APM b) {
  const Scratch divisor, product;
  m_apm_gcd(divisor, a, b);
  if (divisor->sign == 0) {
    M_set_to_zero(r);
    return;
  }
  m_apm_multiply(product, a, b);
  m_apm_integer_divide(r, product, divisor);
}
