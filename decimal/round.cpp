#include <algorithm>
#include <cstring>

#include "decimal/engine.h"
#include "decimal/text.h"

namespace zev::decimal {
namespace {

/// One unit in the place before the first digit of `a`.
void setUnitAbove(M_APM r, M_APM a) {
  const std::int64_t exponent = std::int64_t{a->exponent} + 1;
  const int sign = a->sign;
  m_apm_copy(r, MM_One);
  r->sign = sign;
  moveExponent(r, exponent - 1);
}

bool reachesHalf(M_APM a) {
  return a->digits[0] >= 50;
}

/// Adds one to the last byte that counts, or ten when only its upper digit does. True
/// when a carry leaves the first byte, all bytes being 0 then.
bool increment(Byte *digits, std::size_t bytes, int by) {
  for (std::size_t i = bytes; i-- > 0; by = 1) {
    const int pair = digits[i] + by;
    digits[i] = static_cast<Byte>(pair < 100 ? pair : 0);
    if (pair < 100) return false;
  }
  return true;
}

/// Drops trailing zeros; the first digit is not 0.
void dropTrailingZeros(M_APM number, std::size_t bytes) {
  while (number->digits[bytes - 1] == 0) --bytes;
  number->digitCount =
      static_cast<std::int32_t>(2 * bytes) - (number->digits[bytes - 1] % 10 == 0);
}

/// Cuts `r` to `digits` of its digits, fewer than it has, and rounds.
void cutRounded(M_APM r, int digits) {
  const std::size_t bytes = bytesFor(digits);
  Byte &last = r->digits[bytes - 1];
  bool isUp;
  if (digits % 2 == 0) {
    isUp = r->digits[bytes] >= 50;
  } else {
    isUp = last % 10 >= 5;
    last = static_cast<Byte>(last - last % 10);
  }
  if (isUp && increment(r->digits, bytes, digits % 2 == 0 ? 1 : 10)) {
    setUnitAbove(r, r);
    return;
  }
  dropTrailingZeros(r, bytes);
}

/// Cuts the fraction off a number that has one and an integer part.
void cutToInteger(M_APM number) {
  number->digitCount = number->exponent;
  M_apm_normalize(number);
}

/// The integer next to `a` on the side of `sign`: the one side cuts, the other cuts and
/// moves one on.
void toInteger(M_APM r, M_APM a, int sign) {
  const bool isOutward = a->sign == sign;
  m_apm_copy(r, a);
  if (m_apm_is_integer(a)) return;
  if (r->exponent <= 0)
    M_set_to_zero(r);
  else
    cutToInteger(r);
  if (!isOutward) return;
  if (sign > 0)
    m_apm_add(r, r, MM_One);
  else
    m_apm_subtract(r, r, MM_One);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_round(M_APM r, int places, M_APM a) {
  const std::int64_t digits = std::int64_t{places} + 1;
  if (digits >= a->digitCount) {
    m_apm_copy(r, a);
  } else if (digits > 0) {
    // One byte more than is kept decides the rounding; what follows is never read.
    const std::size_t bytes = std::min(bytesFor(a->digitCount), bytesFor(digits) + 1);
    if (r != a) {
      ensureBytes(r, bytes, "m_apm_round");
      std::memcpy(r->digits, a->digits, bytes);
      r->exponent = a->exponent;
      r->sign = a->sign;
    }
    cutRounded(r, static_cast<int>(digits));
  } else if (digits == 0 && a->sign != 0 && reachesHalf(a)) {
    setUnitAbove(r, a);
  } else {
    M_set_to_zero(r);
  }
}

void M_apm_round_fixpt(M_APM r, int places, M_APM a) {
  const std::int64_t digits = std::int64_t{places} + a->exponent;
  if (digits >= a->digitCount)
    m_apm_copy(r, a);
  else if (digits < 0)
    M_set_to_zero(r);
  else
    m_apm_round(r, static_cast<int>(digits - 1), a);
}

void m_apm_floor(M_APM r, M_APM a) {
  toInteger(r, a, -1);
}

void m_apm_ceil(M_APM r, M_APM a) {
  toInteger(r, a, 1);
}
