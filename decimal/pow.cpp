#include <algorithm>
#include <cstdlib>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

constexpr int kIntegerDigits = 8;  ///< exponents of fewer go by multiplication

int digitsOf(std::int64_t n) {
  int digits = 1;
  for (n = std::abs(n); n >= 10; n /= 10) ++digits;
  return digits;
}

/// Squares and multiplies; `shorten` is told of each product.
template <class Shorten>
void power(M_APM r, M_APM x, std::int64_t n, Shorten shorten) {
  const Scratch result, square, product;
  m_apm_copy(result, MM_One);
  m_apm_copy(square, x);
  for (;; n /= 2) {
    if (n % 2 != 0) {
      m_apm_multiply(product, result, square);
      shorten(result, product);
    }
    if (n <= 1) break;
    m_apm_multiply(product, square, square);
    shorten(square, product);
  }
  m_apm_copy(r, result);
}

/// An upper bound of the exponent of ln x, x not being 1.
int exponentOfLog(M_APM x) {
  if (x->exponent < 0 || x->exponent > 1) return digitsOf(x->exponent) + 1;
  const Scratch distance;
  m_apm_subtract(distance, x, MM_One);
  return distance->exponent + 1;
}

/// The digits that ln x must have beyond the usual because y ln x has them before the
/// point. Beyond the most, the power overflows anyway.
int digitsBefore(M_APM x, M_APM y) {
  constexpr std::int64_t kFew = 4, kMost = 12;
  const std::int64_t exponent = std::int64_t{y->exponent} + exponentOfLog(x);
  return static_cast<int>(std::clamp(exponent - kFew, std::int64_t{0}, kMost));
}

/// ln x to `places` + 8; a repeat on the same x at no more places does without computing.
void rememberedLog(M_APM r, int places, M_APM x) {
  Engine &own = engine();
  if (own.M_last_log_digits < places + 2 || m_apm_compare(x, own.M_last_xx_input) != 0) {
    m_apm_log(own.M_last_xx_log, places + 8, x);
    m_apm_copy(own.M_last_xx_input, x);
    own.M_last_log_digits = places + 2;
  }
  m_apm_round(r, places + 8, own.M_last_xx_log);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_pow(M_APM r, int places, M_APM x, M_APM y) {
  if (y->sign == 0) {
    m_apm_copy(r, MM_One);
    return;
  }
  if (x->sign == 0) {
    M_set_to_zero(r);
    return;
  }
  int n = 0;
  if (y->exponent < kIntegerDigits && toInteger(y, n)) {
    m_apm_integer_pow(r, places, x, n);
    return;
  }
  if (x->sign < 0) {
    warn(r, "'m_apm_log', Negative argument");
    return;
  }
  const Scratch log, product;
  rememberedLog(log, places + digitsBefore(x, y), x);
  m_apm_multiply(product, log, y);
  m_apm_exp(r, places, product);
}

void m_apm_integer_pow(M_APM r, int places, M_APM x, int n) {
  if (n == 0) {
    m_apm_copy(r, MM_One);
    return;
  }
  if (x->sign == 0) {
    M_set_to_zero(r);
    return;
  }
  // The errors of all steps add up to n times one of them.
  constexpr int kGuard = 8, kFew = 4;
  const int working = places + kGuard + std::max(0, digitsOf(n) - kFew);
  const Scratch result;
  power(result, x, std::abs(std::int64_t{n}),
        [&](M_APM to, M_APM product) { m_apm_round(to, working, product); });
  if (n > 0)
    m_apm_round(r, places, result);
  else
    m_apm_reciprocal(r, places, result);
}

void m_apm_integer_pow_nr(M_APM r, M_APM x, int n) {
  if (n < 0) {
    warn(r, "'m_apm_integer_pow_nr', Negative exponent");
    return;
  }
  if (n == 0) {
    m_apm_copy(r, MM_One);
    return;
  }
  power(r, x, n, m_apm_copy);
}
