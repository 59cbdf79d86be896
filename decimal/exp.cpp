#include "decimal/exp.h"

#include "decimal/engine.h"
#include "decimal/extendable.h"
#include "decimal/series.h"

namespace zev::decimal {
namespace {

constexpr int kSquarings = 9;  // back from an argument over 512

/// exp x for x from 0 up to below 1, with guard digits.
void expBelowOne(M_APM r, int places, M_APM x) {
  const Scratch part, square, share;
  m_apm_set_string(share, "1.953125E-3");
  m_apm_multiply(part, x, share);
  m_apm_round(part, places + 2, part);
  M_raw_exp(r, places, part);
  m_apm_round(r, places, r);
  for (int i = 0; i < kSquarings; ++i) {
    m_apm_multiply(square, r, r);
    m_apm_round(r, places, square);
  }
}

/// x less n ln 2, brought into 0 up to below 1 by one more or one less.
void takeLogsOf2(M_APM rest, int &n, M_APM x) {
  const Scratch number, product;
  m_apm_set_long(number, n);
  m_apm_multiply(product, number, MM_lc_log2);
  m_apm_subtract(rest, x, product);
  while (rest->sign < 0) {
    m_apm_add(rest, rest, MM_lc_log2);
    --n;
  }
  while (rest->exponent > 0) {
    m_apm_subtract(rest, rest, MM_lc_log2);
    ++n;
  }
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

int M_exp_compute_nn(int *n, M_APM b, M_APM x) {
  constexpr int kMostDigits = 10;
  if (x->exponent > kMostDigits) return 1;
  const Scratch quotient;
  m_apm_set_string(b, "1.44269504089");
  m_apm_multiply(quotient, x, b);
  if (quotient->sign < 0)
    m_apm_subtract(quotient, quotient, MM_0_5);
  else
    m_apm_add(quotient, quotient, MM_0_5);
  if (quotient->exponent <= 0) {
    M_set_to_zero(b);
  } else {
    m_apm_copy(b, quotient);
    if (b->digitCount > b->exponent) b->digitCount = b->exponent;
    M_apm_normalize(b);
  }
  return toInteger(b, *n) ? 0 : 1;
}

void m_apm_exp(M_APM r, int places, M_APM x) {
  if (x->sign == 0) {
    m_apm_copy(r, MM_One);
    return;
  }
  const Scratch rest, power, result;
  if (x->exponent < -2) {
    M_raw_exp(result, places + 6, x);
    m_apm_round(r, places, result);
    return;
  }
  int n = 0;
  if (M_exp_compute_nn(&n, rest, x) != 0) {
    warn(r, "'m_apm_exp', Input too large, Overflow");
    return;
  }
  // What the logarithm of 2 is short of counts n times.
  M_check_log_places(places + 8 + std::max(0, x->exponent));
  takeLogsOf2(rest, n, x);
  expBelowOne(result, places + 8, rest);
  m_apm_integer_pow(power, places + 8, MM_Two, n);
  m_apm_multiply(rest, result, power);
  m_apm_round(r, places, rest);
}
