/// Columns that a character takes on a terminal.
#include "utils/mb/unicode.h"
#include "zevoci/multibyte.h"

namespace {

using Bytes = const unsigned char *;

bool hasTopBit(Bytes s) {
  return (s[0] & 0x80) != 0;
}

int ascii(Bytes s) {
  if (s[0] == 0) return 0;
  return s[0] < 32 || s[0] == 127 ? -1 : 1;
}

int doubled(Bytes s) {
  return hasTopBit(s) ? 2 : ascii(s);
}

/// Half-width katakana stand behind the single shift 0x8E.
int eucJp(Bytes s) {
  return s[0] == 0x8E ? 1 : doubled(s);
}

int shiftJis(Bytes s) {
  return s[0] >= 0xA1 && s[0] <= 0xDF ? 1 : doubled(s);
}

/// Character sets of two dimensions are wide, as are the private ones that begin with an
/// odd number.
int mule(Bytes s) {
  const bool wide = (s[0] >= 0x90 && s[0] <= 0x99) || s[0] == 0x9B || s[0] == 0x9D;
  return wide ? 2 : ascii(s);
}

/// A terminator is no continuation, so that nothing behind it is read.
int utf8(Bytes s) {
  if (!hasTopBit(s)) return ascii(s);
  const int bytes = pg_utf_mblen(s);
  return pg_utf8_islegal(s, bytes) ? zev::widthOf(zev::utf8Bits(s, bytes)) : -1;
}

template <bool BigEndian>
int utf16(Bytes s) {
  const zev::Utf16Character c = zev::utf16At<BigEndian>(s, 4);
  return zev::isHighSurrogate(c.value) || zev::isLowSurrogate(c.value)
             ? -1
             : zev::widthOf(c.value);
}

}  // namespace

// clang-format off
#define WIDTHS(X)                    \
  X(pg_ascii_dsplen,   ascii)        \
  X(pg_latin1_dsplen,  ascii)        \
  X(pg_eucjp_dsplen,   eucJp)        \
  X(pg_euccn_dsplen,   doubled)      \
  X(pg_euckr_dsplen,   doubled)      \
  X(pg_euctw_dsplen,   doubled)      \
  X(pg_johab_dsplen,   doubled)      \
  X(pg_big5_dsplen,    doubled)      \
  X(pg_gbk_dsplen,     doubled)      \
  X(pg_uhc_dsplen,     doubled)      \
  X(pg_gb18030_dsplen, doubled)      \
  X(pg_sjis_dsplen,    shiftJis)     \
  X(pg_mule_dsplen,    mule)         \
  X(pg_utf_dsplen,     utf8)         \
  X(pg_utf16le_dsplen, utf16<false>) \
  X(pg_utf16be_dsplen, utf16<true>)
// clang-format on

#define WIDTH(name, ...)                        \
  extern "C" int name(const unsigned char *s) { \
    return __VA_ARGS__(s);                      \
  }
WIDTHS(WIDTH)
#undef WIDTH
#undef WIDTHS
