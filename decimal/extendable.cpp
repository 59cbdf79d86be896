#include "decimal/extendable.h"

#include <cmath>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

/// One step of the arithmetic-geometric mean: a and b become their means, and `half` half
/// of their difference.
void step(M_APM a, M_APM b, M_APM half, int places) {
  const Scratch sum, product;
  m_apm_subtract(sum, a, b);
  m_apm_multiply(half, sum, MM_0_5);
  m_apm_add(sum, a, b);
  m_apm_multiply(product, a, b);
  m_apm_multiply(sum, sum, MM_0_5);
  m_apm_round(a, places, sum);
  m_apm_round(product, places, product);
  m_apm_sqrt(b, places, product);
}

/// Sets r to R(1, t / by) - R(1, t), which is ln `by`.
void logOf(M_APM r, int places, M_APM t, M_APM atT, M_APM by) {
  const Scratch shifted, other;
  m_apm_divide(shifted, places + 8, t, by);
  M_log_AGM_R_func(other, places, MM_One, shifted);
  m_apm_subtract(r, other, atT);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void M_check_PI_places(int places) {
  engine();
  if (places + 2 <= MM_lc_PI_digits) return;
  MM_lc_PI_digits = places + 4;
  M_calculate_PI_AGM(MM_lc_PI, places + 7);
  m_apm_multiply(MM_lc_HALF_PI, MM_0_5, MM_lc_PI);
  m_apm_multiply(MM_lc_2_PI, MM_Two, MM_lc_PI);
}

void M_calculate_PI_AGM(M_APM r, int places) {
  const int working = places + 16;
  const Scratch a, b, half, sum, square, k;
  m_apm_copy(a, MM_One);
  m_apm_sqrt(b, working, MM_0_5);
  m_apm_copy(sum, MM_One);
  m_apm_copy(k, MM_Four);
  do {
    step(a, b, half, working);
    m_apm_multiply(square, half, half);
    m_apm_multiply(half, square, k);
    m_apm_subtract(sum, sum, half);
    m_apm_round(sum, working, sum);
    m_apm_multiply(k, k, MM_Two);
  } while (-2 * std::int64_t{square->exponent} < working && square->sign != 0);
  // pi = (a + b)^2 / sum
  m_apm_add(a, a, b);
  m_apm_multiply(square, a, a);
  m_apm_divide(half, working, square, sum);
  m_apm_round(r, places, half);
}

void M_log_AGM_R_func(M_APM r, int places, M_APM a, M_APM b) {
  // The means are kept so precise that what they differ by in the end stays below what
  // ends the sum, as often as that is doubled.
  const int working = places + 8, precise = working + 12;
  const Scratch x, y, half, sum, square, other, k;
  m_apm_copy(x, a);
  m_apm_copy(y, b);
  m_apm_copy(sum, MM_One);
  m_apm_copy(k, MM_0_5);
  // What is summed is half of a^2 - b^2, then the difference itself, then twice, ...
  for (;;) {
    m_apm_multiply(square, x, x);
    m_apm_multiply(other, y, y);
    m_apm_subtract(half, square, other);
    m_apm_multiply(square, half, k);
    if (square->sign == 0 || square->exponent < -working) break;
    m_apm_subtract(sum, sum, square);
    m_apm_round(sum, precise, sum);
    m_apm_multiply(k, k, MM_Two);
    step(x, y, half, precise);
  }
  m_apm_subtract(sum, sum, square);
  m_apm_reciprocal(r, places, sum);
}

void M_check_log_places(int places) {
  engine();
  if (places + 4 <= MM_lc_log_digits) return;
  const int digits = places + 4;
  MM_lc_log_digits = places + 8;
  const int working = digits + static_cast<int>(std::log10(digits)) + 6 + 4;
  const Scratch t, atT;
  m_apm_copy(t, MM_One);
  moveExponent(t, -digits);
  M_log_AGM_R_func(atT, working, MM_One, t);
  logOf(MM_lc_log2, working, t, atT, MM_Two);
  logOf(MM_lc_log10, working, t, atT, MM_Ten);
  m_apm_round(MM_lc_log2, MM_lc_log_digits, MM_lc_log2);
  m_apm_round(MM_lc_log10, MM_lc_log_digits, MM_lc_log10);
  m_apm_reciprocal(MM_lc_log10R, MM_lc_log_digits, MM_lc_log10);
}
