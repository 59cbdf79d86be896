#include "decimal/exchange.h"

#include <algorithm>
#include <cstring>

#include "types/number.h"

namespace {

constexpr ub1 kPositive = 0x80;  ///< in an exponent byte
constexpr std::size_t kZeroSize = 2;
constexpr int kMostPairs = 20;
constexpr ub1 kTerminator = 102;  ///< of a negative number

/// The longest text of an operand, "-0." with two digits a byte and its exponent.
constexpr std::size_t kOperandText = 80;

/// Beyond this many digits before the point the exponent does not fit its byte.
constexpr int kMostIntegerDigits = 120;

/// The digits of an encoding, two a byte. False for bytes that stand for none.
template <bool Negative>
bool readPairs(const ub1 *bytes, int count, unsigned char *pairs) {
  unsigned worst = 0;
  for (int i = 0; i < count; ++i) {
    const unsigned pair = Negative ? 101u - bytes[i] : bytes[i] - 1u;
    worst = std::max(worst, pair);
    pairs[i] = static_cast<unsigned char>(pair);
  }
  return worst <= 99;
}

/// Moves digits one to the left, the first of which is 0.
void shiftLeft(unsigned char *pairs, int count) {
  for (int i = 0; i < count; ++i) {
    const int next = i + 1 < count ? pairs[i + 1] / 10 : 0;
    pairs[i] = static_cast<unsigned char>(pairs[i] % 10 * 10 + next);
  }
}

/// Digits of a result as they are rounded and encoded, two a byte and aligned to the
/// point: 0.p0p1p2... times 100 to the power of `power`.
struct Aligned {
  static constexpr int kMost = (kMostIntegerDigits + zev::decimal::kDecimals) / 2 + 2;
  unsigned char pairs[kMost];
  int count = 0;
  int power = 0;
};

/// Takes the digits of a number, as many as stand before the 41st decimal, and whether
/// the one there is 5 or more.
bool align(M_APM from, Aligned &to) {
  const int exponent = from->exponent, kept = exponent + zev::decimal::kDecimals;
  const bool isOdd = exponent & 1;
  to.power = (exponent + isOdd) / 2;
  const int digits = std::min(kept, static_cast<int>(from->digitCount));
  const int bytes = (from->digitCount + 1) / 2;
  const auto byteAt = [&](int i) { return i < bytes ? from->digits[i] : 0; };
  to.count = (digits + isOdd + 1) / 2;
  for (int i = 0; i < to.count; ++i) {
    to.pairs[i] = static_cast<unsigned char>(
        isOdd ? (i == 0 ? 0 : byteAt(i - 1) % 10) * 10 + byteAt(i) / 10 : byteAt(i));
  }
  if (kept >= from->digitCount) return false;
  // 40 decimals fill their pairs, so that no digit behind them has come along.
  const int next = byteAt(digits / 2);
  return (digits % 2 == 0 ? next / 10 : next % 10) >= 5;
}

/// Adds one to the 40th decimal, which is the last digit that is kept.
void roundUp(Aligned &number) {
  int carry = 1;
  for (int i = number.count - 1; i >= 0 && carry; --i) {
    const int sum = number.pairs[i] + carry;
    carry = sum > 99;
    number.pairs[i] = static_cast<unsigned char>(carry ? 0 : sum);
  }
  if (!carry) return;
  std::memmove(number.pairs + 1, number.pairs, static_cast<std::size_t>(number.count));
  number.pairs[0] = 1;
  ++number.count;
  ++number.power;
}

/// Cuts zeros off that end the decimals.
void trim(Aligned &number) {
  const int integral = std::max(number.power, 0);
  while (number.count > integral && number.pairs[number.count - 1] == 0) --number.count;
}

void encode(Aligned &number, bool isNegative, OCINumber &to) {
  trim(number);
  if (number.count == 0) return zev::decimal::writeZero(to);
  ub1 *const part = to.OCINumberPart;
  const int count = std::min(std::max(number.count, number.power), kMostPairs);
  part[1] = static_cast<ub1>(isNegative ? 63 - number.power : 192 + number.power);
  for (int i = 0; i < count; ++i) {
    const int pair = i < number.count ? number.pairs[i] : 0;
    part[2 + i] = static_cast<ub1>(isNegative ? 101 - pair : pair + 1);
  }
  int length = count + 1;
  if (isNegative && count < kMostPairs) part[++length] = kTerminator;
  part[0] = static_cast<ub1>(length);
}

}  // namespace

namespace zev::decimal {

bool isZero(const OCINumber &number) {
  return std::memcmp(number.OCINumberPart, OCIZero.OCINumberPart, kZeroSize) == 0;
}

void writeZero(OCINumber &to) {
  std::memcpy(to.OCINumberPart, OCIZero.OCINumberPart, kZeroSize);
}

bool readNumberByText(const OCINumber &from, M_APM to) {
  if (from.OCINumberPart[0] >= sizeof from.OCINumberPart) return false;
  char text[kOperandText];
  if (ConvertVARNUMToString(from.OCINumberPart, text) != 0) return false;
  m_apm_set_string(to, text);
  return true;
}

bool readNumber(const OCINumber &from, M_APM to) {
  const ub1 *const part = from.OCINumberPart;
  const int length = part[0];
  const bool isNegative = !(part[1] & kPositive);
  int count = length - 1;
  if (count > kMostPairs) return false;
  if (isNegative && count > 0 && part[1 + count] == kTerminator) --count;
  if (count < 1) return readNumberByText(from, to);
  const bool areDigits = isNegative ? readPairs<true>(part + 2, count, to->digits)
                                    : readPairs<false>(part + 2, count, to->digits);
  // Zeros at either end are for the general way, as is what is no digit.
  if (!areDigits || to->digits[0] == 0) return readNumberByText(from, to);
  while (to->digits[count - 1] == 0) --count;
  to->sign = isNegative ? -1 : 1;
  to->exponent = 2 * (isNegative ? 63 - part[1] : part[1] - 192);
  to->digitCount = 2 * count;
  if (to->digits[0] < 10) {
    shiftLeft(to->digits, count);
    --to->exponent;
    --to->digitCount;
  }
  const int last = to->digits[(to->digitCount - 1) / 2];
  if ((to->digitCount % 2 ? last / 10 : last % 10) == 0) --to->digitCount;
  return true;
}

bool writeNumberByText(M_APM from, OCINumber &to) {
  constexpr int kMostMeasured = 253;  ///< characters of a text that is read
  if (from->exponent + kDecimals + 1 > kMostMeasured) return false;
  char text[kMostMeasured + 8];
  m_apm_to_fixpt_string(text, kDecimals, from);
  return ConvertStringToVARNUM(text, to.OCINumberPart) == 0;
}

bool writeNumber(M_APM from, OCINumber &to) {
  if (from->exponent > kMostIntegerDigits) return writeNumberByText(from, to);
  if (from->sign == 0 || from->exponent < -kDecimals) {
    writeZero(to);
    return true;
  }
  Aligned number;
  if (align(from, number)) roundUp(number);
  encode(number, from->sign < 0, to);
  return true;
}

}  // namespace zev::decimal
