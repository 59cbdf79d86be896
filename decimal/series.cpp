#include "decimal/series.h"

#include "decimal/divide.h"
#include "decimal/engine.h"

namespace zev::decimal {
namespace {

/// Long division, which for the small divisors of a series is the faster way at any
/// length.
void quotient(M_APM r, int places, M_APM a, M_APM b) {
  if (a->sign == 0)
    M_set_to_zero(r);
  else
    M_apm_sdivide(r, places, a, b);
}

/// A term so far below the sum that it is not worth a longer sum.
bool isLost(M_APM term, int places, std::int64_t top) {
  return term->sign == 0 || term->exponent < top - 20 - places;
}

/// sum += term, term' = term * ratio / divisor(k) and so on, with the signs in `ratio`,
/// until a term lies `places` + 4 digits below `top`.
template <class Divisor>
void sumSeries(M_APM sum, M_APM term, M_APM ratio, int places, std::int64_t top,
               Divisor divisor) {
  const Scratch rounded, product, number;
  for (long k = 1;; ++k) {
    const int digits = termPlaces(places, top - term->exponent);
    m_apm_round(rounded, digits, ratio);
    m_apm_multiply(product, term, rounded);
    m_apm_set_long(number, divisor(k));
    quotient(term, digits, product, number);
    if (isLost(term, places, top)) return;
    m_apm_add(sum, sum, term);
    if (term->exponent < top - 4 - places) return;
  }
}

/// sum += power / 3 + power' / 5 + ..., each power the one before times `ratio`.
void sumOverOddNumbers(M_APM sum, M_APM power, M_APM ratio, int places,
                       std::int64_t top) {
  const Scratch rounded, product, number;
  for (long odd = 3;; odd += 2) {
    const int digits = termPlaces(places, top - power->exponent);
    m_apm_round(rounded, digits, ratio);
    m_apm_multiply(product, power, rounded);
    m_apm_round(power, digits, product);
    m_apm_set_long(number, odd);
    quotient(product, digits, power, number);
    if (isLost(product, places, top)) return;
    m_apm_add(sum, sum, product);
    if (product->exponent < top - 6 - places) return;
  }
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void M_raw_exp(M_APM r, int places, M_APM x) {
  const Scratch term;
  m_apm_copy(term, MM_One);
  m_apm_copy(r, MM_One);
  sumSeries(r, term, x, places, 0, [](long k) { return k; });
}

void M_raw_sin(M_APM r, int places, M_APM x) {
  m_apm_copy(r, x);
  if (isSquareLost(x, places)) return;
  const Scratch term, ratio;
  m_apm_copy(term, x);
  m_apm_multiply(ratio, x, x);
  ratio->sign = -ratio->sign;
  sumSeries(r, term, ratio, places, x->exponent,
            [](long k) { return (2 * k + 1) * (2 * k); });
}

void M_raw_cos(M_APM r, int places, M_APM x) {
  m_apm_copy(r, MM_One);
  if (x->sign == 0 || isSquareLost(x, places)) return;
  const Scratch term, ratio;
  m_apm_copy(term, MM_One);
  m_apm_multiply(ratio, x, x);
  ratio->sign = -ratio->sign;
  sumSeries(r, term, ratio, places, 0, [](long k) { return 2 * k * (2 * k - 1); });
}

void M_arctan_near_0(M_APM r, int places, M_APM x) {
  m_apm_copy(r, x);
  if (isSquareLost(x, places)) return;
  const Scratch power, ratio;
  m_apm_copy(power, x);
  m_apm_multiply(ratio, x, x);
  ratio->sign = -ratio->sign;
  sumOverOddNumbers(r, power, ratio, places, x->exponent);
}

void M_log_near_1(M_APM r, int places, M_APM d) {
  // ln (1 + d) = 2 (u + u^3 / 3 + u^5 / 5 + ...), u = d / (d + 2)
  const Scratch u, sum, power, ratio;
  m_apm_add(sum, d, MM_Two);
  m_apm_divide(u, places + 8, d, sum);
  m_apm_copy(sum, u);
  m_apm_copy(power, u);
  m_apm_multiply(ratio, u, u);
  sumOverOddNumbers(sum, power, ratio, places, u->exponent);
  m_apm_multiply(r, sum, MM_Two);
}
