#include "decimal/direct.h"

#include <algorithm>
#include <cstring>

#include "decimal/engine.h"
#include "decimal/exchange.h"

namespace {

constexpr ub1 kPositive = 0x80, kZero = 0x80, kTerminator = 102;
constexpr int kMostPairs = 20;
constexpr std::int64_t kAlive = 0x6BCC9AE5;

bool isPositive(const OCINumber &number) {
  return number.OCINumberPart[1] & kPositive;
}

/// Whether a byte stands for 0 in a number of either sign.
bool isZeroDigit(ub1 byte) {
  return byte == 1 || byte == 101;
}

}  // namespace

extern "C" {

sb2 DecodeOCIExponent(const OCINumber *number) {
  const ub1 byte = number->OCINumberPart[1];
  if (byte == kZero) return 0;
  return static_cast<sb2>(byte & kPositive ? (byte & 0x7F) * 2 - 128 : (63 - byte) * 2);
}

ub1 EncodeOCIExponent(sb2 exponent, boolean positive) {
  const int half = exponent / 2;
  return static_cast<ub1>(positive ? (half + 64) | kPositive : (63 - half) & 0x7F);
}

void StripOCINumber(OCINumber *number) {
  ub1 *const part = number->OCINumberPart;
  const bool positive = isPositive(*number);
  int count = std::min(part[0] - 1, kMostPairs);
  ub1 *const digits = part + 2;
  while (count > 0 &&
         (digits[count - 1] == kTerminator || isZeroDigit(digits[count - 1])))
    digits[--count] = 0;
  int leading = 0;
  while (leading < count && isZeroDigit(digits[leading])) ++leading;
  if (leading > 0) {
    const int exponent = DecodeOCIExponent(number) - (1 << std::min(leading, 8));
    std::memmove(digits, digits + leading, static_cast<std::size_t>(count - leading));
    std::memset(digits + count - leading, 0, static_cast<std::size_t>(leading));
    count -= leading;
    part[1] = EncodeOCIExponent(static_cast<sb2>(exponent), positive);
  }
  if (!positive && count < kMostPairs) digits[count++] = kTerminator;
  part[0] = static_cast<ub1>(count + 1);
}

boolean MAPMIsZero(M_APM number) {
  return number->sign == 0;
}

boolean OCINumberIsZero2(const OCINumber *number) {
  return zev::decimal::isZero(*number);
}

sword ConvertM_APMToOCINumber(M_APM from, OCINumber *to) {
  if (!from || !to || from->cookie != kAlive) return -1;
  if (MAPMIsZero(from)) {
    zev::decimal::writeZero(*to);
    return 0;
  }
  const int bytes = (from->digitCount + 1) / 2;
  if (bytes > 2 * kMostPairs) return -1;
  const bool isOdd = from->exponent & 1, positive = from->sign > 0;
  const int count = std::min((from->digitCount + isOdd + 1) / 2, kMostPairs);
  const auto byteAt = [&](int i) { return i < bytes ? from->digits[i] : 0; };
  ub1 *const part = to->OCINumberPart;
  for (int i = 0; i < count; ++i) {
    const int pair =
        isOdd ? (i == 0 ? 0 : byteAt(i - 1) % 10) * 10 + byteAt(i) / 10 : byteAt(i);
    part[2 + i] = static_cast<ub1>(positive ? pair + 1 : 101 - pair);
  }
  part[0] = static_cast<ub1>(count + 1);
  part[1] = EncodeOCIExponent(static_cast<sb2>(from->exponent + isOdd), positive);
  StripOCINumber(to);
  return 0;
}

sword ConvertOCINumberToM_APM(const OCINumber *from, M_APM to) {
  if (!from || !to) return -1;
  if (OCINumberIsZero2(from)) {
    M_set_to_zero(to);
    return 0;
  }
  const ub1 *const part = from->OCINumberPart;
  const bool positive = isPositive(*from);
  int count = part[0] - 1;
  if (count > kMostPairs) return -1;
  if (!positive && count > 0 && part[1 + count] == kTerminator) --count;
  if (count < 1) return -1;
  for (int i = 0; i < count; ++i) {
    const int pair = positive ? part[2 + i] - 1 : 101 - part[2 + i];
    if (pair < 0 || pair > 99) return -1;
    to->digits[i] = static_cast<unsigned char>(pair);
  }
  to->sign = positive ? 1 : -1;
  to->exponent = DecodeOCIExponent(from);
  to->digitCount = 2 * count;
  M_apm_normalize(to);
  return 0;
}

}  // extern "C"
