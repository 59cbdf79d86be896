/// Code points of text in UTF-8 and UTF-16, and their width.
#pragma once

namespace zev {

/// The columns of a code point on a terminal: 0 for NUL, for marks that combine and for
/// formats, -1 for controls, 2 for wide and full-width characters, else 1.
int widthOf(char32_t c);

constexpr bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// A 16-bit unit at `s`, its more significant byte first or last.
template <bool BigEndian>
char32_t unitAt(const unsigned char *s) {
  return static_cast<char32_t>(BigEndian ? s[0] << 8 | s[1] : s[1] << 8 | s[0]);
}

/// The bits of a UTF-8 sequence of `bytes` bytes (1 to 4), which are not looked at.
inline char32_t utf8Bits(const unsigned char *s, int bytes) {
  constexpr unsigned char kLeadBits[] = {0xFF, 0x1F, 0x0F, 0x07};
  char32_t bits = s[0] & kLeadBits[bytes - 1];
  for (int i = 1; i < bytes; ++i) bits = bits << 6 | (s[i] & 0x3F);
  return bits;
}

/// A character in UTF-16 and the bytes that it takes: 4 for a pair of surrogates, else 2.
struct Utf16Character {
  char32_t value;
  int bytes;
};

/// The character at the start of `left` bytes, at least 2. A surrogate that has no
/// partner there stands for itself.
template <bool BigEndian>
Utf16Character utf16At(const unsigned char *s, int left) {
  const char32_t first = unitAt<BigEndian>(s);
  if (!isHighSurrogate(first) || left < 4) return {first, 2};
  const char32_t second = unitAt<BigEndian>(s + 2);
  if (!isLowSurrogate(second)) return {first, 2};
  return {0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00), 4};
}

}  // namespace zev
