/// The words that dates, times and intervals are written with.
#pragma once

#include <string_view>

#include "zevoci/handle.h"

namespace zev {

/// Kinds of words; also the numbers of bits in the masks of fields seen.
enum TokenType : sb1 {
  kReserved = 0,
  kMonth = 1,
  kYear = 2,
  kDay = 3,
  kZone = 5,
  kDaylightZone = 6,
  kIgnored = 8,
  kAmPm = 9,
  kWeekday = 16,
  kUnit = 17,
  kAdBc = 18,
  kAgo = 19,
  kIsoTime = 23,
  kDst = 28,
  kUnknown = 31,
};

/// What a reserved word or a unit stands for.
enum TokenValue : sb1 {
  kZoneUnit = 4,
  kInvalid = 7,
  kCurrent = 8,
  kEarly = 9,
  kLate = 10,
  kEpoch = 11,
  kNow = 12,
  kYesterday = 13,
  kToday = 14,
  kTomorrow = 15,
  kAllballs = 16,
  kSecondUnit = 18,
  kMinuteUnit = 19,
  kHourUnit = 20,
  kDayUnit = 21,
  kWeekUnit = 22,
  kMonthUnit = 23,
  kQuarterUnit = 24,
  kYearUnit = 25,
  kDecadeUnit = 26,
  kCenturyUnit = 27,
  kMillenniumUnit = 28,
  kMillisecondUnit = 29,
  kMicrosecondUnit = 30,
  kJulianUnit = 31,
};

inline constexpr std::size_t kTokenSize = 10;
inline constexpr int kMostFields = 25;

}  // namespace zev

/// A word with its meaning. Words are known by their first ten characters.
struct datetkn {
  char token[zev::kTokenSize] = {};  ///< NUL behind shorter ones
  sb1 type;
  sb1 value;  ///< of a zone: quarters of an hour east, or with its top bit west

  constexpr datetkn(std::string_view word, zev::TokenType kind, sb1 meaning)
      : type(kind), value(meaning) {
    for (std::size_t i = 0; i < word.size(); ++i) token[i] = word[i];
  }
  constexpr std::string_view text() const {
    std::size_t length = 0;
    while (length < zev::kTokenSize && token[length]) ++length;
    return {token, length};
  }
};

extern "C" {
/// Sorted by their words.
extern ZEV_HELPER const datetkn datetktbl[280];
extern ZEV_HELPER const datetkn deltatktbl[63];

/// The row of a word among `rows` sorted ones; null when there is none.
ZEV_HELPER const datetkn *datebsearch(const char *text, const datetkn *table, sb4 rows);
/// The kind of a word of dates, or of intervals, in lower case, with its value: minutes
/// west of Greenwich for zones. `position` is that of its field, below 25.
ZEV_HELPER sb4 DecodeSpecial(sb4 position, const char *text, sb4 *value);
ZEV_HELPER sb4 DecodeUnits(sb4 position, const char *text, sb4 *value);
}
