#include "types/ocitimestamp/format_words.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "types/number_text.h"
#include "zevoci/trace.h"

extern "C" {
constexpr const char *const days[] = {"Sunday",   "Monday", "Tuesday",  "Wednesday",
                                      "Thursday", "Friday", "Saturday", nullptr};
constexpr const char *const days_short[] = {"Sun", "Mon", "Tue", "Wed",
                                            "Thu", "Fri", "Sat", nullptr};
constexpr const char *const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",  "Jul",
                                        "Aug", "Sep", "Oct", "Nov", "Dec", nullptr};
constexpr const char *const months_full[] = {
    "January", "February",  "March",   "April",    "May",      "June", "July",
    "August",  "September", "October", "November", "December", nullptr};
constexpr const char *const rm_months_upper[] = {
    "XII", "XI", "X", "IX", "VIII", "VII", "VI", "V", "IV", "III", "II", "I", nullptr};
constexpr const char *const rm_months_lower[] = {
    "xii", "xi", "x", "ix", "viii", "vii", "vi", "v", "iv", "iii", "ii", "i", nullptr};
constexpr const char *const word_digit[] = {"ZERO", "ONE", "TWO",   "THREE", "FOUR",
                                            "FIVE", "SIX", "SEVEN", "EIGHT", "NINE"};
constexpr const char *const word_10digit[] = {"",       "TEN",   "TWENTY", "THIRTY",
                                              "FOURTY", "FIFTY", "SIZTY",  "SEVENTY",
                                              "EIGHTY", "NINTY"};
}

namespace zev::format {
namespace {

enum WordCase : sb4 { kFirstUpper = 1, kUpper = 2, kLower = 3 };

constexpr sb4 kNotANumber = 33685634;
constexpr sb4 kUpperType = 1;

char inCase(char c, sb4 type, sb4 position) {
  const bool upper = type == kUpper || (type == kFirstUpper && position == 0);
  return upper ? toUpper(c) : toLower(c);
}

/// How many characters of `text` match a whole word, or 0.
sb4 matchWord(char *text, const char *word, sb4 type, sb4 max) {
  sb4 n = 0;
  for (; word[n] && (max == 0 || n < max); ++n) {
    if (!text[n]) return 0;
    text[n] = inCase(text[n], type, n);
    if (text[n] != word[n]) return 0;
  }
  return n;
}

/// The ordinal of a number by its last two digits.
const char *ordinalOf(char tens, char units, bool upper) {
  static constexpr const char *const kUpperOrdinals[] = {"TH", "ST", "ND", "RD"};
  static constexpr const char *const kLowerOrdinals[] = {"th", "st", "nd", "rd"};
  const int row = tens != '1' && units >= '1' && units <= '3' ? units - '0' : 0;
  return upper ? kUpperOrdinals[row] : kLowerOrdinals[row];
}

template <std::size_t N>
const char *nameAt(const char *const (&table)[N], sb4 index) {
  return index >= 0 && index < static_cast<sb4>(N) - 1 ? table[index] : nullptr;
}

}  // namespace

ScannedNumber scanDigits(const char *text, sb4 most) {
  constexpr sb4 kAlwaysFit = 9;
  constexpr sb8 kLargest = std::numeric_limits<sb4>::max();
  sb8 value = 0;
  sb4 n = 0;
  for (; n < most && isDigit(text[n]); ++n) {
    value = value * 10 + (text[n] - '0');
    if (n >= kAlwaysFit) value = std::min(value, kLargest);
  }
  return {static_cast<sb4>(value), n};
}

ScannedNumber scanInteger(const char *text, sb4 most) {
  const sb4 spaces = strspace_len(text);
  const char first = text[spaces];
  const sb4 sign = most > 0 && (first == '-' || first == '+') ? 1 : 0;
  const ScannedNumber digits = scanDigits(text + spaces + sign, most - sign);
  if (digits.length == 0) return {};
  return {first == '-' ? -digits.value : digits.value, spaces + sign + digits.length};
}

}  // namespace zev::format

using namespace zev::format;

extern "C" const char *localize_month_full(sb4 index) {
  return nameAt(months_full, index);
}

extern "C" const char *localize_month(sb4 index) {
  return nameAt(months, index);
}

extern "C" const char *localize_day(sb4 index) {
  return nameAt(days, index);
}

extern "C" sb4 seq_search(char *text, const char *const *table, sb4 type, sb4 max,
                          sb4 *length) {
  for (sb4 i = 0; table[i]; ++i) {
    *length = matchWord(text, table[i], type, max);
    if (*length > 0) return i;
  }
  *length = 0;
  return -1;
}

extern "C" char *str_numth(char *dest, const char *number, sb4 type) {
  const std::size_t length = std::strlen(number);
  const char units = length > 0 ? number[length - 1] : '\0';
  const char tens = length > 1 ? number[length - 2] : '\0';
  if (!zev::isDigit(units))
    o2pTrace(4, "Error:%d. \"%s\" is not a number.", kNotANumber, number);
  if (dest != number) std::memcpy(dest, number, length);
  std::memcpy(dest + length, ordinalOf(tens, units, type == kUpperType), 3);
  return dest;
}

// What is trimmed at the end cannot be a sign or a digit.
extern "C" boolean isLeadingDigit(const char *text) {
  return zev::isDigit(*text) || *text == '-' || *text == '+';
}

extern "C" sb4 strspace_len(const char *text) {
  return static_cast<sb4>(zev::skipSpace(text) - text);
}

extern "C" sb4 strdigits_len(const char *text) {
  sb4 length = strspace_len(text);
  while (length <= 9 && zev::isDigit(text[length])) ++length;
  return length;
}
