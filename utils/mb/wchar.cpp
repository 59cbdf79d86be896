/// Text by encoding number: the table of encodings, and what is the same for all of them.
#include <algorithm>
#include <climits>
#include <cstring>

#include "zevoci/multibyte.h"

// clang-format off
#define ONE_BYTE(name) \
  {pg_ ## name ## 2wchar_with_len, pg_ ## name ## _mblen, pg_ ## name ## _dsplen, \
   pg_ ## name ## _verifier, 1}
#define WIDE(name, verifier, longest) \
  {pg_ ## name ## 2wchar_with_len, pg_ ## name ## _mblen, pg_ ## name ## _dsplen, \
   pg_ ## verifier ## _verifier, longest}
#define CLIENT_ONLY(name) \
  {nullptr, pg_ ## name ## _mblen, pg_ ## name ## _dsplen, pg_ ## name ## _verifier, 2}

extern "C" const MultibyteRow oci_wchar_table[kLastEncoding + 1] = {
    /*  0 SQL_ASCII     */ ONE_BYTE(ascii),
    /*  1 EUC_JP        */ WIDE(eucjp, eucjp, 3),
    /*  2 EUC_CN        */ WIDE(euccn, euckr, 3),
    /*  3 EUC_KR        */ WIDE(euckr, euckr, 3),
    /*  4 EUC_TW        */ WIDE(euctw, euctw, 3),
    /*  5 JOHAB         */ WIDE(johab, johab, 3),
    /*  6 UTF8          */ WIDE(utf, utf8, 4),
    /*  7 MULE_INTERNAL */ WIDE(mule, mule, 3),
    /*  8 LATIN1        */ ONE_BYTE(latin1),
    /*  9 LATIN2        */ ONE_BYTE(latin1),
    /* 10 LATIN3        */ ONE_BYTE(latin1),
    /* 11 LATIN4        */ ONE_BYTE(latin1),
    /* 12 LATIN5        */ ONE_BYTE(latin1),
    /* 13 LATIN6        */ ONE_BYTE(latin1),
    /* 14 LATIN7        */ ONE_BYTE(latin1),
    /* 15 LATIN8        */ ONE_BYTE(latin1),
    /* 16 LATIN9        */ ONE_BYTE(latin1),
    /* 17 LATIN10       */ ONE_BYTE(latin1),
    /* 18 WINDOWS-1256  */ ONE_BYTE(latin1),
    /* 19 WINDOWS-1258  */ ONE_BYTE(latin1),
    /* 20 CP866         */ ONE_BYTE(latin1),
    /* 21 WINDOWS-874   */ ONE_BYTE(latin1),
    /* 22 KOI8-R        */ ONE_BYTE(latin1),
    /* 23 WINDOWS-1251  */ ONE_BYTE(latin1),
    /* 24 WINDOWS1252   */ ONE_BYTE(latin1),
    /* 25 ISO_8859_5    */ ONE_BYTE(latin1),
    /* 26 ISO_8859_6    */ ONE_BYTE(latin1),
    /* 27 ISO_8859_7    */ ONE_BYTE(latin1),
    /* 28 ISO_8859_8    */ ONE_BYTE(latin1),
    /* 29 WINDOWS-1250  */ ONE_BYTE(latin1),
    /* 30 WINDOWS-1253  */ ONE_BYTE(latin1),
    /* 31 WINDOWS-1254  */ ONE_BYTE(latin1),
    /* 32 WINDOWS-1255  */ ONE_BYTE(latin1),
    /* 33 WINDOWS-1257  */ ONE_BYTE(latin1),
    /* 34 SJIS          */ CLIENT_ONLY(sjis),
    /* 35 BIG5          */ CLIENT_ONLY(big5),
    /* 36 GBK           */ CLIENT_ONLY(gbk),
    /* 37 UHC           */ CLIENT_ONLY(uhc),
    /* 38 GB18030       */ CLIENT_ONLY(gb18030),
    /* 39 UTF-16LE      */ WIDE(utf16le, ascii, 4),
    /* 40 UTF-16BE      */ WIDE(utf16be, ascii, 4),
};

#undef CLIENT_ONLY
#undef WIDE
#undef ONE_BYTE
// clang-format on

namespace {

/// No encoding has longer characters.
constexpr int kLongest = 4;

const unsigned char *bytesOf(const char *s) {
  return reinterpret_cast<const unsigned char *>(s);
}

const MultibyteRow &rowOf(int encoding) {
  ZEV_ASSERT(encoding >= 0 && encoding <= kLastEncoding,
             "((encoding) >= 0 && (encoding) < _PG_LAST_ENCODING_)");
  return oci_wchar_table[encoding];
}

bool isUtf16(int encoding) {
  return encoding == kUtf16Le || encoding == kUtf16Be;
}

/// The bytes in front of the terminator, at most `limit`.
int textBytes(int encoding, const char *s, int limit) {
  const auto most = static_cast<std::size_t>(std::max(limit, 0));
  if (!isUtf16(encoding)) return static_cast<int>(strnlen(s, most));
  std::size_t bytes = 0;
  while (bytes + 2 <= most && (s[bytes] || s[bytes + 1])) bytes += 2;
  // An odd byte at the limit is a character that is cut short.
  return static_cast<int>(most - bytes == 1 ? most : bytes);
}

/// A character of a text with `left` bytes of it. One that may run over the text's end is
/// looked at in a copy with zeros behind it.
class Character {
 public:
  Character(const MultibyteRow &row, const unsigned char *s, int left)
      : row_(row), s_(s), left_(left) {
    if (left < kLongest) pad();
    whole_ = row.mblen(s_);
  }
  /// Bytes that the character takes, and those of them that are there.
  int wholeBytes() const { return whole_; }
  int bytes() const { return std::min(whole_, left_); }
  int width() const { return row_.dsplen(s_); }

 private:
  void pad() {
    std::memset(padded_, 0, sizeof padded_);
    std::memcpy(padded_, s_, static_cast<std::size_t>(left_));
    s_ = padded_;
  }

  const MultibyteRow &row_;
  const unsigned char *s_;
  int left_, whole_;
  unsigned char padded_[kLongest];
};

/// Calls `take(character)` for one character of the text after the other, until it
/// answers false. The bytes of those that it took.
template <class Take>
int walk(int encoding, const char *s, int bytes, const Take &take) {
  const MultibyteRow &row = rowOf(encoding);
  int at = 0;
  while (at < bytes) {
    const Character character(row, bytesOf(s) + at, bytes - at);
    if (!take(character, at)) break;
    at += character.bytes();
  }
  return at;
}

/// Bytes at the start of `bytes` that are characters of ASCII.
int asciiRun(const char *s, int bytes) {
  const auto *begin = bytesOf(s);
  return static_cast<int>(
      std::find_if(begin, begin + bytes, [](unsigned char c) { return c >= 0x80; }) -
      begin);
}

int countCharacters(int encoding, const char *s, int bytes) {
  const int plain = isUtf16(encoding) ? 0 : asciiRun(s, bytes);
  int count = plain;
  walk(encoding, s + plain, bytes - plain,
       [&](const Character &, int) { return ++count; });
  return count;
}

int sumWidths(int encoding, const char *s, int bytes) {
  int sum = 0;
  walk(encoding, s, bytes, [&](const Character &character, int) {
    sum += character.width();
    return true;
  });
  return sum;
}

}  // namespace

extern "C" {

int pg_mblen(int encoding, const char *s) {
  return rowOf(encoding).mblen(bytesOf(s));
}

int pg_dsplen(int encoding, const char *s) {
  return rowOf(encoding).dsplen(bytesOf(s));
}

int pg_mb2wchar(int encoding, const char *s, pg_wchar *out) {
  return pg_mb2wchar_with_len(encoding, s, out, INT_MAX);
}

int pg_mb2wchar_with_len(int encoding, const char *s, pg_wchar *out, int length) {
  const MultibyteRow &row = rowOf(encoding);
  ZEV_ASSERT(row.mb2wchar_with_len, "oci_wchar_table[encoding].mb2wchar_with_len");
  return row.mb2wchar_with_len(bytesOf(s), out, length);
}

int pg_mbstrlen(int encoding, const char *s) {
  const int bytes = textBytes(encoding, s, INT_MAX);
  return rowOf(encoding).maxmblen == 1 ? bytes : countCharacters(encoding, s, bytes);
}

int pg_mbstrlen_with_len(int encoding, const char *s, int limit) {
  if (rowOf(encoding).maxmblen == 1) return limit;
  return countCharacters(encoding, s, textBytes(encoding, s, limit));
}

int pg_mbstrdsplen(int encoding, const char *s) {
  return pg_mbstrdsplen_with_len(encoding, s, INT_MAX);
}

int pg_mbstrdsplen_with_len(int encoding, const char *s, int limit) {
  const int bytes = textBytes(encoding, s, limit);
  return rowOf(encoding).maxmblen == 1 ? bytes : sumWidths(encoding, s, bytes);
}

int pg_mbcliplen(int encoding, const char *s, int length, int limit) {
  const int bytes = textBytes(encoding, s, length);
  return walk(encoding, s, bytes, [&](const Character &character, int at) {
    return character.wholeBytes() <= std::min(bytes, limit) - at;
  });
}

int pg_mbcharcliplen(int encoding, const char *s, int length, int limit) {
  const int bytes = textBytes(encoding, s, length);
  return walk(encoding, s, bytes, [&](const Character &character, int at) {
    return limit-- > 0 && character.wholeBytes() <= bytes - at;
  });
}

int pg_encoding_max_length(int encoding) {
  return rowOf(encoding).maxmblen;
}

int pg_verifymb(int encoding, const char *s, int length) {
  return rowOf(encoding).mbverify(bytesOf(s), length);
}

}  // extern "C"
