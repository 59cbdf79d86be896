/// Text as wide characters.
#include <algorithm>
#include <cstring>

#include "utils/mb/unicode.h"
#include "zevoci/multibyte.h"

namespace {

using Bytes = const unsigned char *;

constexpr unsigned char kSingleShift2 = 0x8E;
constexpr unsigned char kSingleShift3 = 0x8F;

/// A wide character and the bytes that it comes from; 0 of them when the text ends within
/// the character.
struct Wide {
  pg_wchar value;
  int bytes;
};

/// Bytes up to a NUL, at most `length`.
int bytesWithin(Bytes s, int length) {
  return static_cast<int>(strnlen(reinterpret_cast<const char *>(s),
                                  static_cast<std::size_t>(std::max(length, 0))));
}

/// Bytes up to a unit of 0, at most `length`, without an odd one.
int unitBytesWithin(Bytes s, int length) {
  int bytes = 0;
  while (bytes + 2 <= length && (s[bytes] || s[bytes + 1])) bytes += 2;
  return bytes;
}

/// Converts `bytes` bytes with `next(s, left)`, which gives one character at a time.
template <class Next>
int convert(Bytes s, int bytes, pg_wchar *out, const Next &next) {
  pg_wchar *to = out;
  while (bytes > 0) {
    const Wide taken = next(s, bytes);
    if (!taken.bytes) break;
    *to++ = taken.value;
    s += taken.bytes;
    bytes -= taken.bytes;
  }
  *to = 0;
  return static_cast<int>(to - out);
}

/// The bytes as one number, the first one on top.
Wide joined(Bytes s, int bytes) {
  pg_wchar value = 0;
  for (int i = 0; i < bytes; ++i) value = value << 8 | s[i];
  return {value, bytes};
}

Wide byte(Bytes s, int) {
  return {s[0], 1};
}

/// A form that is cut short goes as a pair, or as the byte that is left.
template <int Shift2Bytes>
Wide euc(Bytes s, int left) {
  int bytes = s[0] & 0x80 ? 2 : 1;
  if (s[0] == kSingleShift2) bytes = Shift2Bytes;
  if (s[0] == kSingleShift3) bytes = 3;
  return joined(s, bytes <= left ? bytes : std::min(left, 2));
}

Wide utf8(Bytes s, int left) {
  const int bytes = pg_utf_mblen(s);
  if (bytes > left) return {0, 0};
  return {zev::utf8Bits(s, bytes), bytes};
}

/// The lead byte of an official character set tells which it is, that of a private one
/// only its kind.
Wide mule(Bytes s, int left) {
  const int bytes = pg_mule_mblen(s);
  if (bytes > left) return byte(s, left);
  const bool isPrivate = s[0] >= 0x9A && s[0] <= 0x9D;
  if (!isPrivate) {
    const pg_wchar set = bytes > 1 ? pg_wchar{s[0]} << 16 : 0;
    return {set | joined(s + (bytes > 1), std::max(bytes - 1, 1)).value, bytes};
  }
  return {pg_wchar{s[1]} << 16 | joined(s + 2, bytes - 2).value, bytes};
}

template <bool BigEndian>
Wide utf16(Bytes s, int left) {
  const zev::Utf16Character c = zev::utf16At<BigEndian>(s, left);
  return {c.value, c.bytes};
}

}  // namespace

// clang-format off
#define CONVERSIONS(X)                                          \
  X(pg_ascii2wchar_with_len,   bytesWithin,     byte)           \
  X(pg_latin12wchar_with_len,  bytesWithin,     byte)           \
  X(pg_euc2wchar_with_len,     bytesWithin,     euc<2>)         \
  X(pg_eucjp2wchar_with_len,   bytesWithin,     euc<2>)         \
  X(pg_euckr2wchar_with_len,   bytesWithin,     euc<2>)         \
  X(pg_johab2wchar_with_len,   bytesWithin,     euc<2>)         \
  X(pg_euccn2wchar_with_len,   bytesWithin,     euc<3>)         \
  X(pg_euctw2wchar_with_len,   bytesWithin,     euc<4>)         \
  X(pg_utf2wchar_with_len,     bytesWithin,     utf8)           \
  X(pg_mule2wchar_with_len,    bytesWithin,     mule)           \
  X(pg_utf16le2wchar_with_len, unitBytesWithin, utf16<false>)   \
  X(pg_utf16be2wchar_with_len, unitBytesWithin, utf16<true>)
// clang-format on

#define CONVERSION(name, within, ...)                                      \
  extern "C" int name(const unsigned char *s, pg_wchar *out, int length) { \
    return convert(s, within(s, length), out, __VA_ARGS__);                \
  }
CONVERSIONS(CONVERSION)
#undef CONVERSION
#undef CONVERSIONS
