#include "decimal/log.h"

#include "decimal/engine.h"
#include "decimal/estimates.h"
#include "decimal/extendable.h"
#include "decimal/newton.h"
#include "decimal/series.h"

namespace zev::decimal {
namespace {

/// ln x by the mantissa's logarithm and that of the power of ten.
void logOfFarNumber(M_APM r, int places, M_APM x) {
  constexpr int kExponent = 2;
  const Scratch mantissa, power, result;
  m_apm_copy(mantissa, x);
  mantissa->exponent = kExponent;
  M_log_basic_iteration(result, places + 8, mantissa);
  m_apm_set_long(power, long{x->exponent} - kExponent);
  m_apm_multiply(mantissa, power, MM_lc_log10);
  m_apm_add(power, mantissa, result);
  m_apm_round(r, places, power);
}

/// Whether x is so near to 1 that the series serves; its logarithm then.
bool logOfNearNumber(M_APM r, int places, M_APM x) {
  const Scratch distance, result;
  m_apm_subtract(distance, x, MM_One);
  if (distance->sign == 0) {
    M_set_to_zero(r);
    return true;
  }
  if (distance->exponent >= -3) return false;
  M_log_near_1(result, places, distance);
  m_apm_round(r, places, result);
  return true;
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_log(M_APM r, int places, M_APM x) {
  if (x->sign <= 0) {
    warn(r, "'m_apm_log', Negative argument");
    return;
  }
  const int exponent = x->exponent;
  if ((exponent == 0 || exponent == 1) && logOfNearNumber(r, places, x)) return;
  M_check_log_places(places + 33);
  if (exponent >= 4 || exponent <= -4) {
    logOfFarNumber(r, places, x);
    return;
  }
  const Scratch result;
  M_log_basic_iteration(result, places, x);
  m_apm_round(r, places, result);
}

void m_apm_log10(M_APM r, int places, M_APM x) {
  if (x->sign <= 0) {
    warn(r, "'m_apm_log', Negative argument");
    return;
  }
  const Scratch natural, result;
  M_check_log_places(places + 49);
  m_apm_log(natural, places + 4, x);
  m_apm_multiply(result, natural, MM_lc_log10R);
  m_apm_round(r, places, result);
}

void M_log_basic_iteration(M_APM r, int places, M_APM x) {
  constexpr int kManyPlaces = 360, kFirstPlaces = 110, kGained = 104;
  if (places < kManyPlaces) {
    M_log_solve_cubic(r, places, x);
    return;
  }
  // ln x = y + ln (x exp(-y)), of which the last is near 1.
  const Scratch y, power, product;
  M_log_solve_cubic(y, kFirstPlaces, x);
  m_apm_negate(power, y);
  m_apm_exp(product, places + 8, power);
  m_apm_multiply(power, product, x);
  m_apm_subtract(product, power, MM_One);
  if (product->sign == 0) {
    m_apm_copy(r, y);
    return;
  }
  M_log_near_1(power, places - kGained, product);
  m_apm_add(r, y, power);
}

void M_log_solve_cubic(M_APM r, int places, M_APM x) {
  const Scratch g, rounded, power, difference, sum;
  M_get_log_guess(g, x);
  // g' = g - 2 (exp(g) - x) / (exp(g) + x)
  Rounds rounds(places, 3, {18, 3, places + 16});
  while (rounds.next()) {
    const int digits = rounds.digits();
    m_apm_exp(power, digits, g);
    m_apm_round(rounded, digits, x);
    m_apm_subtract(difference, power, rounded);
    m_apm_add(sum, power, rounded);
    m_apm_round(sum, digits, sum);
    m_apm_divide(power, digits, difference, sum);
    m_apm_multiply(difference, power, MM_Two);
    m_apm_subtract(sum, g, difference);
    m_apm_round(g, digits, sum);
    rounds.correctedBy(difference);
  }
  m_apm_copy(r, g);
}
