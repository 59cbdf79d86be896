/// Arc sine, arc cosine and arc tangent.
#include "decimal/arc.h"

#include <cmath>

#include "decimal/engine.h"
#include "decimal/estimates.h"
#include "decimal/extendable.h"
#include "decimal/newton.h"
#include "decimal/series.h"
#include "decimal/trig.h"

namespace zev::decimal {
namespace {

constexpr int kSmallExponent = -3;  ///< below it the series serves

/// Compares |x| with a positive number.
int compareMagnitudeWith(M_APM x, M_APM bound) {
  return x->sign == 0 ? -1 : compareMagnitudes(x, bound);
}

void multipleOfPi(M_APM r, int places, M_APM (*constant)(), int sign) {
  M_check_PI_places(places);
  m_apm_round(r, places, constant());
  r->sign = sign;
}

M_APM pi() {
  return MM_lc_PI;
}
M_APM halfPi() {
  return MM_lc_HALF_PI;
}

/// More rounds than an iteration that doubles its right digits can need.
int mostRounds(int places) {
  return std::max(5, static_cast<int>(std::log(places + 2.0) * 1.442695) + 3);
}

/// Brings `g` from an estimate to the angle whose sine (or cosine) is `x`, by Newton's
/// iteration. False when it did not end in time.
bool solve(M_APM g, M_APM x, bool isSine, Rounds &rounds) {
  const Scratch sine, cosine, rounded, difference, correction;
  bool inTime = true;
  while (rounds.next()) {
    const int digits = rounds.digits();
    M_4x_cos(cosine, digits, g);
    M_cos_to_sin(sine, digits, cosine);
    if (g->sign < 0) sine->sign = -sine->sign;
    m_apm_round(rounded, digits, x);
    if (isSine) {
      // g' = g - (sin g - x) / cos g
      m_apm_subtract(difference, sine, rounded);
      m_apm_divide(correction, digits, difference, cosine);
    } else {
      // g' = g + (cos g - x) / sin g
      m_apm_subtract(difference, rounded, cosine);
      m_apm_divide(correction, digits, difference, sine);
    }
    m_apm_subtract(difference, g, correction);
    m_apm_round(g, digits, difference);
    inTime = rounds.correctedBy(correction);
  }
  return inTime;
}

/// Pi, or less, as an angle's cosine is negative or not.
void reflect(M_APM r, int places, M_APM angle, bool isNegative) {
  if (!isNegative) {
    m_apm_round(r, places, angle);
    return;
  }
  const Scratch difference;
  M_check_PI_places(places + 4);
  m_apm_subtract(difference, MM_lc_PI, angle);
  m_apm_round(r, places, difference);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_arcsin(M_APM r, int places, M_APM x) {
  const int toOne = compareMagnitudeWith(x, MM_One), sign = x->sign;
  if (toOne > 0) {
    warn(r, "'m_apm_arcsin', |Argument| > 1");
    return;
  }
  if (toOne == 0) {
    multipleOfPi(r, places, halfPi, sign);
    return;
  }
  const Scratch result, other;
  if (compareMagnitudeWith(x, MM_0_85) > 0) {
    M_cos_to_sin(other, places + 8, x);
    m_apm_arccos(r, places, other);
    r->sign *= sign;
  } else if (sign == 0) {
    M_set_to_zero(r);
  } else if (x->exponent < kSmallExponent) {
    M_arcsin_near_0(result, places + 4, x);
    m_apm_round(r, places, result);
  } else {
    M_get_asin_guess(result, x);
    Rounds rounds(places, 2, {20 - x->exponent, 2, places + 8 - x->exponent},
                  mostRounds(places));
    if (!solve(result, x, true, rounds))
      M_apm_log_error_msg(0, "'m_apm_arcsin', max iteration count reached");
    m_apm_round(r, places, result);
  }
}

void m_apm_arccos(M_APM r, int places, M_APM x) {
  const int toOne = compareMagnitudeWith(x, MM_One), sign = x->sign;
  if (toOne > 0) {
    warn(r, "'m_apm_arccos', |Argument| > 1");
    return;
  }
  if (toOne == 0) {
    if (sign > 0)
      M_set_to_zero(r);
    else
      multipleOfPi(r, places, pi, 1);
    return;
  }
  const Scratch result, other;
  if (compareMagnitudeWith(x, MM_0_85) > 0) {
    M_cos_to_sin(other, places + 8, x);
    m_apm_arcsin(result, places + 4, other);
    reflect(r, places, result, sign < 0);
  } else if (sign == 0) {
    multipleOfPi(r, places, halfPi, 1);
  } else if (x->exponent < kSmallExponent) {
    M_arccos_near_0(result, places + 4, x);
    m_apm_round(r, places, result);
  } else {
    M_get_acos_guess(result, x);
    Rounds rounds(places, 2, {18, 2, places + 8}, mostRounds(places));
    if (!solve(result, x, false, rounds))
      M_apm_log_error_msg(0, "'m_apm_arccos', max iteration count reached");
    m_apm_round(r, places, result);
  }
}

void M_arcsin_near_0(M_APM r, int places, M_APM x) {
  if (isSquareLost(x, places)) {
    m_apm_copy(r, x);
    return;
  }
  const Scratch cosine, tangent;
  M_cos_to_sin(cosine, places + 8, x);
  m_apm_divide(tangent, places + 8, x, cosine);
  M_arctan_near_0(r, places, tangent);
}

void M_arccos_near_0(M_APM r, int places, M_APM x) {
  M_check_PI_places(places + 4);
  const Scratch result;
  M_arcsin_near_0(result, places, x);
  if (result->exponent < -8 - places) M_set_to_zero(result);
  m_apm_subtract(r, MM_lc_HALF_PI, result);
}

void m_apm_arctan(M_APM r, int places, M_APM x) {
  if (x->sign == 0) {
    M_set_to_zero(r);
    return;
  }
  const Scratch result, root, sine;
  if (x->exponent < kSmallExponent) {
    M_arctan_near_0(result, places + 4, x);
  } else if (x->exponent > 3) {
    M_arctan_large_input(result, places + 4, x);
  } else {
    m_apm_multiply(sine, x, x);
    m_apm_add(result, sine, MM_One);
    m_apm_sqrt(root, places + 10, result);
    m_apm_divide(sine, places + 10, x, root);
    m_apm_arcsin(result, places + 6, sine);
  }
  m_apm_round(r, places, result);
}

void M_arctan_large_input(M_APM r, int places, M_APM x) {
  M_check_PI_places(places + 4);
  const int sign = x->sign;
  const Scratch magnitude, inverse, angle;
  m_apm_absolute_value(magnitude, x);
  M_set_to_zero(angle);
  if (x->exponent <= places + 8) {
    m_apm_divide(inverse, places + 4, MM_One, magnitude);
    m_apm_arctan(angle, places + 4, inverse);
  }
  m_apm_subtract(r, MM_lc_HALF_PI, angle);
  r->sign = sign;
}

void m_apm_arctan2(M_APM r, int places, M_APM y, M_APM x) {
  const int signX = x->sign, signY = y->sign;
  if (signX == 0 && signY == 0) {
    warn(r, "'m_apm_arctan2', Both Inputs = 0");
  } else if (signX == 0) {
    multipleOfPi(r, places, halfPi, signY);
  } else if (signY == 0 && signX > 0) {
    M_set_to_zero(r);
  } else if (signY == 0) {
    multipleOfPi(r, places, pi, 1);
  } else {
    const Scratch quotient, angle;
    m_apm_divide(quotient, places + 6, y, x);
    m_apm_arctan(angle, places + 6, quotient);
    if (signX < 0) {
      M_check_PI_places(places + 6);
      if (angle->exponent < -8 - places) M_set_to_zero(angle);
      m_apm_copy(quotient, MM_lc_PI);
      quotient->sign = signY;
      m_apm_add(angle, angle, quotient);
    }
    m_apm_round(r, places, angle);
  }
}
