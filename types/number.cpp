#include "types/number.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

#include "types/number_text.h"

namespace zev {
namespace {

constexpr std::size_t kLongestText = 253;  ///< what 8-bit counts can measure
constexpr long kExponentLimit = 126;

/// What ParseNumber makes of a text.
enum class Parse { Number, Zero, Bad };

/// Digits one a byte, and what stands around them. Counts wrap in 8 bits.
struct Decimal {
  ub1 count = 0;
  ub1 exponent = 0;
  bool negative = false;
};

/// Reads the exponent behind an "E"; false when there is none in range.
bool readExponent(const char *s, long &exponent) {
  const auto parsed = parseLong(s);
  exponent = parsed.value;
  return parsed.end != s && exponent >= -kExponentLimit && exponent <= kExponentLimit;
}

const char *skipZeros(const char *s) {
  while (*s == '0') ++s;
  return s;
}

/// Whether the text at `s`, which goes on at `inside`, is beyond what can be measured.
bool tooLong(const char *s, const char *inside) {
  const auto known = static_cast<std::size_t>(inside - s);
  return known > kLongestText ||
         known + ::strnlen(inside, kLongestText + 1) > kLongestText;
}

/// Stores a run of digits, among which "," counts for nothing if `Grouped`, from `s` to
/// `out`, which it advances. The end of the run; null when there are too many.
template <bool Grouped>
const char *storeDigits(const char *s, ub1 *&out, const ub1 *limit) {
  for (;; ++s) {
    const auto digit = static_cast<ub1>(*s - '0');
    if (digit <= 9) {
      if (out == limit) return nullptr;
      *out++ = digit;
    } else if (!Grouped || *s != ',') {
      return s;
    }
  }
}

/// Reads decimal text into `digits`, which has room for the text or for one digit more
/// than kLongestText.
Parse parseDecimal(const char *text, ub1 *digits, Decimal &out) {
  const char *s = skipSpace(text);
  if (*s == '-' || *s == '+') out.negative = *s++ == '-';
  s = skipZeros(s);
  const bool pointFirst = *s == '.';
  if (pointFirst || *s == ',' || *s == '\0') {
    const char *const end = *s == '\0' ? s : skipZeros(s + 1);
    if (*end == '\0') return tooLong(text, end) ? Parse::Bad : Parse::Zero;
  }
  if (!isDigit(s[pointFirst])) return Parse::Bad;

  ub1 *end = digits;
  const ub1 *const limit = digits + kLongestText + 1;
  if (!pointFirst) s = storeDigits<true>(s, end, limit);
  const char *fraction = s;
  if (s && *s == '.') {
    fraction = ++s;
    s = storeDigits<false>(pointFirst ? skipZeros(s) : s, end, limit);
    if (s && (*s == '.' || *s == ',')) return Parse::Bad;
  }
  if (!s) return Parse::Bad;
  long exponent = fraction - s;
  // Zeros that end the text are not kept; elsewhere they are.
  const char *kept = s;
  if (*s == '\0') {
    while (kept[-1] == '0') --kept;
  } else if (*s == 'e' || *s == 'E') {
    long written = 0;
    if (!readExponent(s + 1, written)) return Parse::Bad;
    exponent += written;
  }
  if (tooLong(text, s)) return Parse::Bad;
  out.count = static_cast<ub1>(end - digits - (s - kept));
  out.exponent = static_cast<ub1>(exponent + (s - kept));
  return Parse::Number;
}

/// The two forms of a number.
enum class Form { Number, Varnum };

/// Packs digits in pairs. `digits` starts with a 0 in front of the first digit and has
/// one behind the last. Returns the bytes written.
template <Form Rule>
std::size_t pack(const Decimal &decimal, const ub1 *digits, ub1 *out) {
  const auto power = static_cast<sb1>(decimal.count + decimal.exponent);
  const int odd = power & 1;
  const int exponent = (power + odd) / 2;
  out[0] = static_cast<ub1>(decimal.negative ? 63 - exponent : (exponent + 64) | 0x80);
  const int most = Rule == Form::Number && !odd ? 19 : 20;
  const int pairs = std::min((decimal.count + 1 + odd) / 2, most);
  const ub1 *pair = odd ? digits : digits + 1;
  for (int i = 0; i < pairs; ++i, pair += 2) {
    const int value = pair[0] * 10 + pair[1];
    out[1 + i] = static_cast<ub1>(decimal.negative ? 101 - value : value + 1);
  }
  auto size = static_cast<std::size_t>(pairs) + 1;
  const bool terminates = Rule == Form::Number || size < kNumberSize;
  if (decimal.negative && terminates) out[size++] = 102;
  return size;
}

/// Reads text and writes a NUMBER; its size, or 0 for bad text.
template <Form Rule>
std::size_t numberFromText(const char *s, ub1 *out) {
  // A 0 in front, and one behind for a last digit without a partner.
  ub1 digits[kLongestText + 3];
  digits[0] = 0;
  Decimal decimal;
  switch (parseDecimal(s, digits + 1, decimal)) {
    case Parse::Bad:
      return 0;
    case Parse::Zero:
      out[0] = 0x80;
      return 1;
    case Parse::Number:
      break;
  }
  digits[decimal.count + 1u] = 0;
  return pack<Rule>(decimal, digits, out);
}

constexpr bool isNegative(ub1 exponentByte) {
  return (exponentByte & 0x80) == 0;
}

/// Twice the power of 100 of a NUMBER, in 8 bits.
sb1 powerOfTen(ub1 exponentByte) {
  const int power = isNegative(exponentByte) ? 63 - exponentByte : exponentByte - 192;
  return static_cast<sb1>(2 * power);
}

/// What a mantissa byte is.
enum class Byte { Digit, End, Bad };

template <Form Rule>
Byte classify(ub1 byte, bool negative, bool last) {
  if constexpr (Rule == Form::Number) {
    if (byte == 0 || (negative && byte == 102)) return Byte::End;
    return byte > 101 ? Byte::Bad : Byte::Digit;
  } else {
    if (byte == 0) return negative ? Byte::End : Byte::Bad;
    if (byte == 102) return negative && last ? Byte::End : Byte::Bad;
    return byte > 102 ? Byte::Bad : Byte::Digit;
  }
}

/// Prints "0." and the mantissa of `count` bytes, then the power of ten; -1 for a bad
/// byte.
template <Form Rule>
sword numberToText(ub1 exponentByte, const ub1 *mantissa, int count, char *out) {
  const bool negative = isNegative(exponentByte);
  if (negative) *out++ = '-';
  *out++ = '0';
  *out++ = '.';
  for (int i = 0; i < count; ++i) {
    const Byte kind = classify<Rule>(mantissa[i], negative, i == count - 1);
    if (kind == Byte::Bad) {
      *out = '\0';
      return -1;
    }
    if (kind == Byte::End) break;
    int digit = negative ? 101 - mantissa[i] : mantissa[i] - 1;
    if (digit >= 100) {
      *out++ = '1';
      digit -= 100;
    }
    *out++ = static_cast<char>('0' + digit / 10);
    *out++ = static_cast<char>('0' + digit % 10);
  }
  const sb1 power = powerOfTen(exponentByte);
  if (power != 0) {
    *out++ = 'E';
    out = std::to_chars(out, out + 4, power).ptr;
  }
  *out = '\0';
  return 0;
}

}  // namespace
}  // namespace zev

extern "C" constexpr OCINumber OCIZero = {{1, 0x80}};

extern "C" sword ParseNumber(const char *s, ub1 *sign, ub1 *exponent, ub1 *digits,
                             ub1 *count) {
  if (!s || !sign || !exponent || !digits || !count) return -1;
  zev::Decimal decimal;
  const auto parse = zev::parseDecimal(s, digits, decimal);
  if (parse == zev::Parse::Bad) return -1;
  const char first = *zev::skipSpace(s);
  if (first == '-' || first == '+') *sign = first == '+';
  if (parse == zev::Parse::Zero) return 1;
  *count = decimal.count;
  *exponent = decimal.exponent;
  return 0;
}

extern "C" sword ConvertStringToNUMBER(const char *s, ub1 *out) {
  return s && zev::numberFromText<zev::Form::Number>(s, out) != 0 ? 0 : -1;
}

extern "C" sword ConvertStringToVARNUM(const char *s, ub1 *out) {
  const std::size_t size = s ? zev::numberFromText<zev::Form::Varnum>(s, out + 1) : 0;
  if (size == 0) return -1;
  out[0] = static_cast<ub1>(size);
  return 0;
}

extern "C" sword ConvertNUMBERToString(const ub1 *n, char *out) {
  if (!n || !out) return -1;
  return zev::numberToText<zev::Form::Number>(n[0], n + 1, zev::kNumberSize - 1, out);
}

extern "C" sword ConvertVARNUMToString(const ub1 *n, char *out) {
  if (!n || !out || n[0] < 1 || n[0] > zev::kNumberSize) return -1;
  if (n[0] > 1) return zev::numberToText<zev::Form::Varnum>(n[1], n + 2, n[0] - 1, out);
  const std::string_view start = n[1] == 0x80            ? "0.0"
                                 : zev::isNegative(n[1]) ? "-0."
                                                         : "0.";
  out[start.copy(out, start.size())] = '\0';
  return n[1] == 0x80 ? 0 : -1;
}

sword zev::convertStringToWholeNumber(const char *s, ub1 *out) {
  ub1 number[kNumberSize + 1] = {};
  if (ConvertStringToNUMBER(s, number) != 0) return -1;
  std::memcpy(out, number, kNumberSize);
  return 0;
}

sword zev::convertStringToShortVarnum(const char *s, ub1 *out) {
  ub1 number[kNumberSize + 1];
  const std::size_t size = s ? numberFromText<Form::Number>(s, number) : 0;
  if (size == 0) return -1;
  // A full negative number leaves no room for its terminator.
  out[0] = static_cast<ub1>(std::min<std::size_t>(size, kNumberSize));
  std::memcpy(out + 1, number, out[0]);
  return 0;
}
