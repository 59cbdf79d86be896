#include "decimal/trig.h"

#include "decimal/engine.h"
#include "decimal/extendable.h"
#include "decimal/series.h"

namespace zev::decimal {
namespace {

int digitsBeforePoint(M_APM x) {
  return std::max(0, x->exponent);
}

/// x / unit rounded to an integer.
void nearestMultiple(M_APM r, M_APM x, M_APM unit) {
  const Scratch quotient;
  m_apm_divide(quotient, digitsBeforePoint(x) + 8, x, unit);
  m_apm_add(r, quotient, MM_0_5);
  m_apm_floor(r, r);
}

/// The last two bits of an integer.
int modulo4(M_APM n) {
  const Scratch quotient, rest;
  m_apm_integer_div_rem(quotient, rest, n, MM_Four);
  int value = 0;
  toInteger(rest, value);
  return (value + 4) % 4;
}

/// x less the nearest multiple of half pi, to `places` digits of what is left, however
/// small it is. Returns the multiple modulo 4.
int takeQuarterTurns(M_APM r, int places, M_APM x) {
  const Scratch n, multiple;
  for (int digits = places + 10;;) {
    M_check_PI_places(digits + digitsBeforePoint(x));
    nearestMultiple(n, x, MM_lc_HALF_PI);
    m_apm_multiply(multiple, n, MM_lc_HALF_PI);
    m_apm_subtract(r, x, multiple);
    const int wanted = places + 10 - (r->sign == 0 ? -digits : r->exponent);
    if (wanted <= digits || n->sign == 0) return modulo4(n);
    digits = wanted;
  }
}

/// Whether a sine or cosine that was computed from the angle itself has lost digits: its
/// angle lies near a multiple of half pi then.
bool isNearZero(M_APM value) {
  return value->exponent < -1;
}

/// The sine of an angle near a multiple of pi; `quarterTurns` of 1 makes it the cosine of
/// one near an odd multiple of half pi.
void sineNearZero(M_APM r, int places, M_APM x, int quarterTurns) {
  const Scratch angle, result;
  const int turns = (takeQuarterTurns(angle, places, x) + quarterTurns) % 4;
  m_apm_round(angle, places + 8, angle);
  M_5x_sin(result, places + 4, angle);
  m_apm_round(r, places, result);
  if (turns == 2) r->sign = -r->sign;
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void M_limit_angle_to_pi(M_APM r, int places, M_APM x) {
  M_check_PI_places(places + digitsBeforePoint(x));
  const Scratch magnitude, turns, angle;
  m_apm_absolute_value(magnitude, x);
  if (m_apm_compare(magnitude, MM_lc_PI) < 0) {
    m_apm_copy(r, x);
    return;
  }
  nearestMultiple(turns, x, MM_lc_2_PI);
  m_apm_multiply(angle, turns, MM_lc_2_PI);
  m_apm_subtract(r, x, angle);
}

void M_5x_do_it(M_APM r, int places, M_APM sine) {
  // sin 5a = 16 s^5 - 20 s^3 + 5 s = s (5 + s^2 (16 s^2 - 20))
  const Scratch square, factor, product;
  // What is subtracted is up to a hundred times what is left.
  const int working = places + 4;
  if (isSquareLost(sine, places)) {
    m_apm_multiply(product, sine, MM_Five);
    m_apm_round(r, places, product);
    return;
  }
  m_apm_multiply(product, sine, sine);
  m_apm_round(square, working, product);
  m_apm_multiply(product, square, MM_5x_Sixteen);
  m_apm_subtract(factor, product, MM_5x_Twenty);
  m_apm_multiply(product, factor, square);
  m_apm_add(factor, product, MM_Five);
  m_apm_round(factor, working, factor);
  m_apm_multiply(product, factor, sine);
  m_apm_round(r, places, product);
}

void M_4x_do_it(M_APM r, int places, M_APM cosine) {
  // cos 4a = 8 (c^4 - c^2) + 1
  const Scratch square, product, difference;
  m_apm_multiply(product, cosine, cosine);
  m_apm_round(square, places, product);
  m_apm_multiply(product, square, square);
  m_apm_subtract(difference, product, square);
  m_apm_multiply(product, difference, MM_5x_Eight);
  m_apm_add(difference, product, MM_One);
  m_apm_round(r, places, difference);
}

void M_5x_sin(M_APM r, int places, M_APM x) {
  const Scratch part, sine;
  m_apm_round(part, places + 8, x);
  m_apm_multiply(sine, part, MM_5x_125R);
  M_raw_sin(part, places + 6, sine);
  m_apm_round(part, places + 6, part);
  M_5x_do_it(sine, places + 4, part);
  M_5x_do_it(part, places + 4, sine);
  M_5x_do_it(r, places, part);
}

void M_4x_cos(M_APM r, int places, M_APM x) {
  const bool isSmall = x->exponent < 1;
  const int working = places + (isSmall ? 6 : 8);
  const Scratch part, cosine;
  m_apm_round(part, working + 2, x);
  m_apm_multiply(cosine, part, isSmall ? MM_5x_64R : MM_5x_256R);
  M_raw_cos(part, working, cosine);
  m_apm_round(part, working, part);
  for (int step = isSmall ? 3 : 4; step > 0; --step) M_4x_do_it(part, working, part);
  m_apm_round(r, places, part);
}

void M_cos_to_sin(M_APM r, int places, M_APM c) {
  const Scratch square, rest;
  m_apm_multiply(square, c, c);
  m_apm_subtract(rest, MM_One, square);
  m_apm_sqrt(r, places, rest);
}

void m_apm_sin(M_APM r, int places, M_APM x) {
  const Scratch angle, result;
  M_limit_angle_to_pi(angle, places + 6, x);
  M_5x_sin(result, places + 4, angle);
  if (isNearZero(result) && x->exponent > 0)
    sineNearZero(r, places, x, 0);
  else
    m_apm_round(r, places, result);
}

void m_apm_cos(M_APM r, int places, M_APM x) {
  const Scratch angle, result;
  M_limit_angle_to_pi(angle, places + 6, x);
  M_4x_cos(result, places + 4, angle);
  if (isNearZero(result))
    sineNearZero(r, places, x, 1);
  else
    m_apm_round(r, places, result);
}

void m_apm_sin_cos(M_APM sine, M_APM cosine, int places, M_APM x) {
  const Scratch angle, s, c;
  const int working = places + 6;
  M_limit_angle_to_pi(angle, working, x);
  m_apm_cos(c, working, x);
  // Where the cosine is close to 1 or -1 it says too little about the sine.
  M_cos_to_sin(s, working, c);
  s->sign = angle->sign < 0 ? -s->sign : s->sign;
  if (s->sign == 0 || s->exponent < 0) m_apm_sin(s, working, x);
  m_apm_round(cosine, places, c);
  m_apm_round(sine, places, s);
}

void m_apm_tan(M_APM r, int places, M_APM x) {
  const Scratch sine, cosine, quotient;
  m_apm_sin_cos(sine, cosine, places + 4, x);
  m_apm_divide(quotient, places + 4, sine, cosine);
  m_apm_round(r, places, quotient);
}
