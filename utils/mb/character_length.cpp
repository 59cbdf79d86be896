/// Bytes of a character, from its lead byte.
#include "utils/mb/unicode.h"
#include "zevoci/multibyte.h"

namespace {

using Bytes = const unsigned char *;

constexpr unsigned char kSingleShift2 = 0x8E;
constexpr unsigned char kSingleShift3 = 0x8F;

bool hasTopBit(Bytes s) {
  return (s[0] & 0x80) != 0;
}

int one(Bytes) {
  return 1;
}

int pair(Bytes s) {
  return hasTopBit(s) ? 2 : 1;
}

template <int ShiftedBytes>
int euc(Bytes s) {
  if (s[0] == kSingleShift2) return ShiftedBytes;
  return s[0] == kSingleShift3 ? 3 : pair(s);
}

int utf8(Bytes s) {
  if ((s[0] & 0xE0) == 0xC0) return 2;
  if ((s[0] & 0xF0) == 0xE0) return 3;
  return (s[0] & 0xF8) == 0xF0 ? 4 : 1;
}

/// The half-width katakana stand between the lead bytes.
int shiftJis(Bytes s) {
  return (s[0] >= 0x81 && s[0] <= 0x9F) || (s[0] >= 0xE0 && s[0] <= 0xFC) ? 2 : 1;
}

/// A digit behind the lead byte begins the second half of four bytes.
int gb18030(Bytes s) {
  if (!hasTopBit(s)) return 1;
  return s[1] >= '0' && s[1] <= '9' ? 4 : 2;
}

/// Official character sets of one and two dimensions, then private ones, whose number
/// takes a byte of its own.
int mule(Bytes s) {
  if (s[0] >= 0x81 && s[0] <= 0x8F) return 2;
  if (s[0] >= 0x90 && s[0] <= 0x9B) return 3;
  return s[0] == 0x9C || s[0] == 0x9D ? 4 : 1;
}

/// Looks at the second unit only where the first one asks for it.
template <bool BigEndian>
int utf16(Bytes s) {
  return zev::utf16At<BigEndian>(s, 4).bytes;
}

}  // namespace

// clang-format off
#define LENGTHS(X)                  \
  X(pg_ascii_mblen,   one)          \
  X(pg_latin1_mblen,  one)          \
  X(pg_eucjp_mblen,   euc<2>)       \
  X(pg_euckr_mblen,   euc<2>)       \
  X(pg_johab_mblen,   euc<2>)       \
  X(pg_euctw_mblen,   euc<4>)       \
  X(pg_euccn_mblen,   pair)         \
  X(pg_big5_mblen,    pair)         \
  X(pg_gbk_mblen,     pair)         \
  X(pg_uhc_mblen,     pair)         \
  X(pg_utf_mblen,     utf8)         \
  X(pg_mule_mblen,    mule)         \
  X(pg_sjis_mblen,    shiftJis)     \
  X(pg_gb18030_mblen, gb18030)      \
  X(pg_utf16le_mblen, utf16<false>) \
  X(pg_utf16be_mblen, utf16<true>)
// clang-format on

#define LENGTH(name, ...)                       \
  extern "C" int name(const unsigned char *s) { \
    return __VA_ARGS__(s);                      \
  }
LENGTHS(LENGTH)
#undef LENGTH
#undef LENGTHS
