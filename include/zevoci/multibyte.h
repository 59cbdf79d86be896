/// Lengths, widths, verification and wide form of text in each encoding.
#pragma once

#include <cstddef>

#include "zevoci/api.h"
#include "zevoci/encodings.h"

/// A wide character: the code point for UTF-8 and UTF-16, the bytes of the character as
/// one number for most others.
using pg_wchar = unsigned int;

/// What an encoding's characters are like. Each function takes the first byte of a
/// character.
struct MultibyteRow {
  /// Converts at most `length` bytes, stopping at a NUL, to `out`, which takes one
  /// character a byte and a terminating 0. The count without the terminator. Null for an
  /// encoding that has no wide form here.
  int (*mb2wchar_with_len)(const unsigned char *s, pg_wchar *out, int length);
  /// Bytes of the character as its lead byte tells. May read the next byte in GB18030,
  /// and three more in UTF-16, but none behind a terminator.
  int (*mblen)(const unsigned char *s);
  /// Columns of the character on a terminal; -1 for one that does not print, 0 for NUL.
  int (*dsplen)(const unsigned char *s);
  /// The length of a well-formed character at the start of `length` bytes, else -1.
  int (*mbverify)(const unsigned char *s, int length);
  int maxmblen;
};

extern "C" {
/// One row for each encoding number, 0 to 40.
extern ZEV_HELPER const MultibyteRow oci_wchar_table[kLastEncoding + 1];

// Through the table. A number outside it fails a hard assertion. Text without a length
// ends at a NUL, in UTF-16 at a unit of 0; nothing is read behind that end, or behind a
// given length, whatever the bytes. A character that is cut short by the end counts as
// one.

/// Bytes of the character at `s`.
ZEV_HELPER int pg_mblen(int encoding, const char *s);
/// Columns of the character at `s`.
ZEV_HELPER int pg_dsplen(int encoding, const char *s);
/// Converts to wide characters and a terminating 0, of which `out` must hold one a byte
/// and one more. The count without the terminator. The encoding must have a wide form.
ZEV_HELPER int pg_mb2wchar(int encoding, const char *s, pg_wchar *out);
/// The same for at most `length` bytes.
ZEV_HELPER int pg_mb2wchar_with_len(int encoding, const char *s, pg_wchar *out,
                                    int length);
/// Characters of a text.
ZEV_HELPER int pg_mbstrlen(int encoding, const char *s);
/// The same within `limit` bytes, which is the answer itself for a one-byte encoding.
ZEV_HELPER int pg_mbstrlen_with_len(int encoding, const char *s, int limit);
/// Sum of the columns, each character that does not print taking one off; the bytes for a
/// one-byte encoding.
ZEV_HELPER int pg_mbstrdsplen(int encoding, const char *s);
/// The same within `limit` bytes.
ZEV_HELPER int pg_mbstrdsplen_with_len(int encoding, const char *s, int limit);
/// The most bytes of the first `length`, at most `limit`, that hold whole characters
/// only.
ZEV_HELPER int pg_mbcliplen(int encoding, const char *s, int length, int limit);
/// The bytes of the first `limit` whole characters within `length` bytes.
ZEV_HELPER int pg_mbcharcliplen(int encoding, const char *s, int length, int limit);
/// Most bytes of a character, by the table; 3 for some encodings that have longer ones.
ZEV_HELPER int pg_encoding_max_length(int encoding);
/// The length of a well-formed character at the start of `length` bytes, else -1. UTF-16
/// takes each byte as a character.
ZEV_HELPER int pg_verifymb(int encoding, const char *s, int length);

// Strings of wide characters end at 0; results have the signs of strcmp.

ZEV_HELPER int pg_wchar_strcmp(const pg_wchar *a, const pg_wchar *b);
ZEV_HELPER int pg_wchar_strncmp(const pg_wchar *a, const pg_wchar *b, std::size_t n);
ZEV_HELPER std::size_t pg_wchar_strlen(const pg_wchar *s);
/// Bytes, taken as unsigned, with wide characters.
ZEV_HELPER int pg_char_and_wchar_strcmp(const char *a, const pg_wchar *b);
ZEV_HELPER int pg_char_and_wchar_strncmp(const char *a, const pg_wchar *b, std::size_t n);

/// Whether the `length` bytes at `s` are one character by the table of well-formed UTF-8
/// byte sequences (Unicode, chapter 3): 1 or 0.
ZEV_HELPER int pg_utf8_islegal(const unsigned char *s, int length);

// The columns of the table, by encoding. The Latin functions serve every one-byte
// encoding.

/// The forms of Extended Unix Code: 0x8E begins two bytes, 0x8F three, another byte with
/// the top bit two. What is cut short goes two bytes or one byte at a time.
ZEV_HELPER int pg_euc2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
ZEV_HELPER int pg_ascii2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
ZEV_HELPER int pg_latin12wchar_with_len(const unsigned char *s, pg_wchar *out,
                                        int length);
ZEV_HELPER int pg_eucjp2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
/// 0x8E begins three bytes.
ZEV_HELPER int pg_euccn2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
ZEV_HELPER int pg_euckr2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
/// 0x8E begins four bytes.
ZEV_HELPER int pg_euctw2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
ZEV_HELPER int pg_johab2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
/// Takes the bits of each form without a look at the following bytes; a stray byte is
/// copied, and a form that is cut short ends the conversion.
ZEV_HELPER int pg_utf2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
/// The character set's number stands above its bytes.
ZEV_HELPER int pg_mule2wchar_with_len(const unsigned char *s, pg_wchar *out, int length);
/// A surrogate that has no partner is copied; an odd last byte is left out.
ZEV_HELPER int pg_utf16le2wchar_with_len(const unsigned char *s, pg_wchar *out,
                                         int length);
ZEV_HELPER int pg_utf16be2wchar_with_len(const unsigned char *s, pg_wchar *out,
                                         int length);

ZEV_HELPER int pg_ascii_mblen(const unsigned char *s);
ZEV_HELPER int pg_latin1_mblen(const unsigned char *s);
ZEV_HELPER int pg_eucjp_mblen(const unsigned char *s);
ZEV_HELPER int pg_euccn_mblen(const unsigned char *s);
ZEV_HELPER int pg_euckr_mblen(const unsigned char *s);
ZEV_HELPER int pg_euctw_mblen(const unsigned char *s);
ZEV_HELPER int pg_johab_mblen(const unsigned char *s);
/// Hidden: libpq has a function of this name.
int pg_utf_mblen(const unsigned char *s);
ZEV_HELPER int pg_mule_mblen(const unsigned char *s);
ZEV_HELPER int pg_sjis_mblen(const unsigned char *s);
ZEV_HELPER int pg_big5_mblen(const unsigned char *s);
ZEV_HELPER int pg_gbk_mblen(const unsigned char *s);
ZEV_HELPER int pg_uhc_mblen(const unsigned char *s);
ZEV_HELPER int pg_gb18030_mblen(const unsigned char *s);
ZEV_HELPER int pg_utf16le_mblen(const unsigned char *s);
ZEV_HELPER int pg_utf16be_mblen(const unsigned char *s);

ZEV_HELPER int pg_ascii_dsplen(const unsigned char *s);
ZEV_HELPER int pg_latin1_dsplen(const unsigned char *s);
ZEV_HELPER int pg_eucjp_dsplen(const unsigned char *s);
ZEV_HELPER int pg_euccn_dsplen(const unsigned char *s);
ZEV_HELPER int pg_euckr_dsplen(const unsigned char *s);
ZEV_HELPER int pg_euctw_dsplen(const unsigned char *s);
ZEV_HELPER int pg_johab_dsplen(const unsigned char *s);
/// By the Unicode Character Database: 2 for wide and full-width characters, 0 for what
/// combines or formats, -1 for controls and for bytes that are not well-formed.
ZEV_HELPER int pg_utf_dsplen(const unsigned char *s);
ZEV_HELPER int pg_mule_dsplen(const unsigned char *s);
ZEV_HELPER int pg_sjis_dsplen(const unsigned char *s);
ZEV_HELPER int pg_big5_dsplen(const unsigned char *s);
ZEV_HELPER int pg_gbk_dsplen(const unsigned char *s);
ZEV_HELPER int pg_uhc_dsplen(const unsigned char *s);
ZEV_HELPER int pg_gb18030_dsplen(const unsigned char *s);
ZEV_HELPER int pg_utf16le_dsplen(const unsigned char *s);
ZEV_HELPER int pg_utf16be_dsplen(const unsigned char *s);

ZEV_HELPER int pg_ascii_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_latin1_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_eucjp_verifier(const unsigned char *s, int length);
/// Serves EUC_CN too.
ZEV_HELPER int pg_euckr_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_euctw_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_johab_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_utf8_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_mule_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_sjis_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_big5_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_gbk_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_uhc_verifier(const unsigned char *s, int length);
ZEV_HELPER int pg_gb18030_verifier(const unsigned char *s, int length);
}
