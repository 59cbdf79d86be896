#include "types/number_text.h"

#include <locale.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace zev {
namespace {

/// The C locale, whatever the process has set; made once.
locale_t cLocale() {
  static const locale_t locale = ::newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
  return locale;
}

/// Whether an unsigned decimal stands at `s`: what begins otherwise (white space, signs,
/// words, hexadecimal) is the C library's.
bool isPlainDecimal(const char *s) {
  return isDigit(s[0]) && !(s[0] == '0' && (s[1] == 'x' || s[1] == 'X'));
}

}  // namespace

Parsed<long> parseAnyLong(const char *s) {
  char *end = nullptr;
  const int former = errno;
  errno = 0;
  const long value = ::strtol_l(s, &end, 10, cLocale());
  const bool outOfRange = errno == ERANGE;
  if (errno == 0) errno = former;
  return {value, end, outOfRange};
}

Parsed<double> parseAnyDouble(const char *s) {
  char *end = nullptr;
  const int former = errno;
  errno = 0;
  const double value = ::strtod_l(s, &end, cLocale());
  const bool outOfRange = errno == ERANGE;
  if (errno == 0) errno = former;
  return {value, end, outOfRange};
}

Parsed<double> parseDouble(const char *s) {
  if (!isPlainDecimal(s + (*s == '-'))) return parseAnyDouble(s);
  double value = 0;
  const auto [end, failure] = std::from_chars(s, s + std::strlen(s), value);
  // Tiny and huge values may be out of range, which the C library judges.
  const bool ordinary = failure == std::errc{} && (value == 0 || std::isnormal(value));
  if (!ordinary) return parseAnyDouble(s);
  return {value, end};
}

namespace {

/// Prints digits of `magnitude`, lowest first, into at most `room` bytes; how many.
std::size_t printReversed(ub8 magnitude, char *out, std::size_t room, ub8 base) {
  constexpr char kDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
  std::size_t n = 0;
  for (; magnitude != 0 && n < room; magnitude /= base)
    out[n++] = kDigits[magnitude % base];
  return n;
}

ub8 magnitudeOf(sb8 value) {
  return value < 0 ? 0 - static_cast<ub8>(value) : static_cast<ub8>(value);
}

/// The body of the character array printers, for values other than 0.
void printInto(sb8 value, ub8 magnitude, char *out, sb4 *length) {
  const auto room = static_cast<std::size_t>(std::max(*length, 0));
  std::size_t n = 0;
  if (value < 0 && room > 0) out[n++] = '-';
  n += printReversed(magnitude, out + n, room - n, 10);
  *length = static_cast<sb4>(n);
}

void printZeroOr(sb8 value, char *out, sb4 *length) {
  if (value == 0 && *length > 0) {
    out[0] = '0';
    *length = 1;
    return;
  }
  printInto(value, magnitudeOf(value), out, length);
}

/// The integer part of `x` and its fraction in units of 10 to the power of -precision.
struct SplitDecimal {
  double integer;
  double fraction;
};

SplitDecimal splitDecimal(double x, sb4 precision) {
  const double unit = std::pow(10.0, precision);
  SplitDecimal split{};
  split.fraction = std::floor(std::modf(x, &split.integer) * unit + 0.5);
  if (split.fraction == unit && split.integer != 0) {
    split.fraction = 0;
    split.integer += 1;
  }
  return split;
}

}  // namespace
}  // namespace zev

extern "C" {

char *oci_itoa(sb4 value, char *out, int /*base*/) {
  char digits[12];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  *std::copy(digits, end, out) = '\0';
  return out;
}

char *_i64toa(sb8 value, char *out, int base) {
  char *p = out;
  if (value < 0) *p++ = '-';
  p += zev::printReversed(zev::magnitudeOf(value), p, 64, static_cast<ub8>(base));
  *p = '\0';
  return out;
}

void Int16ToCharArray(sb2 value, char *out, sb4 *length) {
  // The lowest value has no positive counterpart of its width, and so no digits.
  const bool noDigits = value == SB2MINVAL;
  zev::printInto(value, noDigits ? 0 : zev::magnitudeOf(value), out, length);
}

void Int32ToCharArray(sb4 value, char *out, sb4 *length) {
  zev::printZeroOr(value, out, length);
}

void Int64ToCharArray(sb8 value, char *out, sb4 *length) {
  zev::printZeroOr(value, out, length);
}

sb8 atoi64(const char *s) {
  ub8 value = 0;
  bool negative = false;
  for (; *s != '\0' && *s != '+'; ++s) {
    if (*s == '-') {
      negative = true;
    } else if (*s == '.') {
      return static_cast<sb8>(value);
    } else {
      value = value * 10 + static_cast<ub8>(static_cast<sb8>(*s - '0'));
    }
  }
  return static_cast<sb8>(negative ? 0 - value : value);
}

sb4 dtostr(char *out, sb4 size, sb4 precision, boolean trim, double x) {
  constexpr double kBeyond64Bits = 9223372036854775808.0;
  if (precision < 0 || precision > 17) return -1;
  const bool negative = x < 0;
  if (!(std::fabs(x) < kBeyond64Bits)) return -1;
  const auto split = zev::splitDecimal(std::fabs(x), precision);
  if (split.fraction == std::pow(10.0, precision)) return -1;
  char digits[64];
  _i64toa(static_cast<sb8>(split.integer), digits + negative, 10);
  if (negative) digits[0] = '-';
  std::size_t length = std::strlen(digits);
  if (split.fraction != 0 && !negative) {
    digits[length] = '.';
    _i64toa(static_cast<sb8>(split.fraction), digits + length + 1, 10);
    length = std::strlen(digits);
  }
  while (trim && length > 0 && digits[length - 1] == '0') --length;
  if (static_cast<sb4>(length) >= size) return -1;
  *std::copy_n(digits, length, out) = '\0';
  return static_cast<sb4>(length);
}

}  // extern "C"
