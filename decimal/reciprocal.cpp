#include <algorithm>
#include <cstdint>

#include "decimal/engine.h"
#include "decimal/newton.h"

using namespace zev::decimal;

// x' = x (2 - a x) doubles the digits of x that are right.
void m_apm_reciprocal(M_APM r, int places, M_APM a) {
  if (a->sign == 0) {
    warn(r, "'m_apm_reciprocal', Input = 0");
    return;
  }
  const std::int64_t exponent = a->exponent;
  const int sign = a->sign;
  const Scratch magnitude, x, next, product, factor;
  m_apm_absolute_value(magnitude, a);
  magnitude->exponent = 0;
  m_apm_set_double(x, 1.0 / toDouble(magnitude));
  Rounds rounds(places, 2, fromDouble(places));
  while (rounds.next()) {
    m_apm_round(factor, rounds.digits(), magnitude);
    m_apm_multiply(product, x, factor);
    m_apm_subtract(factor, MM_Two, product);
    m_apm_multiply(next, x, factor);
    m_apm_round(next, rounds.digits(), next);
    m_apm_subtract(product, next, x);
    rounds.correctedBy(product);
    m_apm_copy(x, next);
  }
  m_apm_round(r, places, x);
  r->sign = sign;
  moveExponent(r, -exponent);
}
