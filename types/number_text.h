/// Numbers in text, read and written alike under every locale of the process. Reading has
/// the C library's visible semantics; plain numbers, which is what a server sends, take a
/// short road.
#pragma once

#include <oratypes.h>

#include <cerrno>
#include <limits>

#include "zevoci/api.h"

extern "C" {
/// Prints in decimal with a terminator, whatever `base` says, and returns `out`.
ZEV_HELPER char *oci_itoa(sb4 value, char *out, int base);
/// Prints in `base`, 2 to 36, least significant digit first, with a terminator: 123 gives
/// "321". The order is part of the visible result. A "-" stands in front; 0 gives the
/// empty text. Returns `out`.
ZEV_HELPER char *_i64toa(sb8 value, char *out, int base);
/// Print in decimal in that order into a buffer of `*length` bytes, without a terminator,
/// as far as there is room, and store the number of characters in `*length`. 0 gives "0";
/// from Int16ToCharArray it gives length 0, and -32768 gives "-".
ZEV_HELPER void Int16ToCharArray(sb2 value, char *out, sb4 *length);
ZEV_HELPER void Int32ToCharArray(sb4 value, char *out, sb4 *length);
ZEV_HELPER void Int64ToCharArray(sb8 value, char *out, sb4 *length);

/// Reads an integer: "-" anywhere negates it, other characters that are no digits are
/// folded in as if they were, and it wraps. A "." ends the scan with the magnitude, so
/// that "-1.5" gives 1; a "+" ends it with what was read.
ZEV_HELPER sb8 atoi64(const char *s);

/// Prints with up to `precision` decimals (17 at most) into `out` of `size` bytes,
/// integer part and fraction each least significant digit first, and with `trim` without
/// "0" at the end. A negative number shows no fraction; 0 gives the empty text. Returns
/// the length, or -1: a precision out of range, a fraction that rounds up to 1 with no
/// integer part, a number beyond 64 bits, no room.
ZEV_HELPER sb4 dtostr(char *out, sb4 size, sb4 precision, boolean trim, double x);
}

namespace zev {

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
/// White space of the C locale.
constexpr bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

inline const char *skipSpace(const char *s) {
  while (isSpace(*s)) ++s;
  return s;
}

/// What was read, and where reading stopped: the start of the text when there was no
/// number.
template <class T>
struct Parsed {
  T value;
  const char *end;
  bool outOfRange = false;  ///< errno was set to ERANGE
};

/// As strtol with base 10 in any form of the text.
Parsed<long> parseAnyLong(const char *s);
/// As strtod of the C locale in any form of the text.
Parsed<double> parseAnyDouble(const char *s);

/// As strtol with base 10, errno included: a value out of range is saturated and sets
/// ERANGE, and nothing clears it.
inline Parsed<long> parseLong(const char *s) {
  const bool negative = *s == '-';
  const char *const digits = s + negative;
  const char *p = digits;
  long value = 0;
  for (; isDigit(*p); ++p) {
    if (p - digits == 18) return parseAnyLong(s);
    value = value * 10 + (*p - '0');
  }
  if (p == digits) return parseAnyLong(s);
  return {negative ? -value : value, p};
}

/// As strtod of the C locale, errno included.
Parsed<double> parseDouble(const char *s);

inline bool beyondDouble(double x) {
  return x > std::numeric_limits<double>::max() ||
         x < std::numeric_limits<double>::lowest();
}

/// Keeps a reader from seeing an old errno, and its callers from seeing the reader's.
class CleanErrno {
 public:
  CleanErrno() : former_(errno) { errno = 0; }
  ~CleanErrno() { errno = former_; }
  CleanErrno(const CleanErrno &) = delete;
  CleanErrno &operator=(const CleanErrno &) = delete;

 private:
  int former_;
};

}  // namespace zev
