/// The words that format models print and read, always English, and the reading of words
/// and digits in a text.
#pragma once

#include <oci.h>

#include "zevoci/api.h"

extern "C" {
/// Names of days from Sunday and of months from January; each table ends with null.
extern ZEV_HELPER const char *const days[8];
extern ZEV_HELPER const char *const days_short[8];
extern ZEV_HELPER const char *const months[13];
extern ZEV_HELPER const char *const months_full[13];
/// Months in Roman numerals, from December down, so that no numeral stands before a
/// longer one that it begins.
extern ZEV_HELPER const char *const rm_months_upper[13];
extern ZEV_HELPER const char *const rm_months_lower[13];
/// Digits in words, as units and as tens. Their spelling is part of the visible result.
extern ZEV_HELPER const char *const word_digit[10];
extern ZEV_HELPER const char *const word_10digit[10];

/// The names behind the prefix TM, by the index of the tables above; null outside them.
ZEV_HELPER const char *localize_month_full(sb4 index);
ZEV_HELPER const char *localize_month(sb4 index);
ZEV_HELPER const char *localize_day(sb4 index);

/// The first word of `table`, which ends with null, that `text` begins with once it is in
/// the case of `type`: 1 first letter upper and the rest lower, 2 upper, 3 lower. The
/// first `max` characters of a word are enough, unless `max` is 0. Its index, with what
/// was compared in `*length`, or -1 with 0. Rewrites the text that it compares in that
/// case.
ZEV_HELPER sb4 seq_search(char *text, const char *const *table, sb4 type, sb4 max,
                          sb4 *length);

/// Writes the text of a number and its English ordinal ("st", "nd", "rd", "th"; `type` 1:
/// in capitals) to `dest`, which may be `number` itself. Returns `dest`.
ZEV_HELPER char *str_numth(char *dest, const char *number, sb4 type);

/// Whether a number with or without a sign begins at `text`.
ZEV_HELPER boolean isLeadingDigit(const char *text);
/// How many white-space characters `text` begins with.
ZEV_HELPER sb4 strspace_len(const char *text);
/// The same with the digits behind them, until there are more than 9 characters.
ZEV_HELPER sb4 strdigits_len(const char *text);
}

namespace zev::format {

constexpr char toUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char toLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether a character may stand between elements, beside white space: "-/,._;:".
constexpr bool isSeparator(sb4 c) {
  return c == '-' || c == '/' || c == ',' || c == '.' || c == '_' || c == ';' || c == ':';
}

/// What a number's text began with: a value, and the characters up to its end, both 0
/// where there was none.
struct ScannedNumber {
  sb4 value = 0;
  sb4 length = 0;
};

/// Digits only, `most` at most; the largest 32-bit value for one beyond it.
ScannedNumber scanDigits(const char *text, sb4 most);
/// White space, a sign and digits; sign and digits have `most` characters at most.
ScannedNumber scanInteger(const char *text, sb4 most);
inline constexpr sb4 kAllDigits = 0x7fffffff;

}  // namespace zev::format
