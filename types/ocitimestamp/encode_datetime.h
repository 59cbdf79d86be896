/// Dates, times and intervals as text. Values go to the server in style 1; the other
/// styles are for those who call these functions themselves.
#pragma once

#include "types/ocitimestamp/calendar.h"
#include "types/ocitimestamp/text_writer.h"

namespace zev {

/// Styles of dates; any other number is that of a Unix date.
enum DateStyle : sb4 { kIsoDates = 1, kSqlDates = 2, kGermanDates = 3, kOracleDates = 4 };

/// Styles of intervals.
enum IntervalStyle : sb4 {
  kPostgresIntervals = 0,
  kVerboseIntervals = 1,
  kSqlIntervals = 2,
  kIsoIntervals = 3
};

/// Longest text that the functions below write, with its terminator.
inline constexpr std::size_t kLongestDateTime = 400;

/// As EncodeDateTime, with its terminator behind what was written.
void writeDateTime(TextWriter &text, PGtm *tm, const sb4 *tz, const char *const *zoneName,
                   sb4 style, double fsec);

}  // namespace zev

extern "C" {
/// Prints date and time, with the zone where `tz` is given and `tm_isdst` is known: its
/// name from `*zoneName` in styles that show one, else the displacement. In style 1
/// `fsec` is a count whose digits stand behind the point as they are. Returns 1.
ZEV_HELPER sb4 EncodeDateTime(PGtm *tm, const sb4 *tz, const char *const *zoneName,
                              sb4 style, char *out, double fsec);
/// Prints the date alone. 1, or -1 for a month outside 1 to 12.
ZEV_HELPER sb4 EncodeDateOnly(const PGtm *tm, sb4 style, char *out, sb4 dayFirst);
/// Prints an interval; the length of the text.
ZEV_HELPER sb4 EncodeInterval(const PGtm *tm, sb4 style, char *out, double fsec);
/// Appends a displacement to the text in `out`: "+05:30" for 19800.
ZEV_HELPER void EncodeTimezone(char *out, sb4 tz);
/// Writes seconds and fraction without their sign, to the microsecond.
ZEV_HELPER void AppendSeconds(char *out, sb4 second, sb4 padded, double fsec);
/// Takes zeros off the end, but for the last two digits behind a point.
ZEV_HELPER void TrimTrailingZeros(char *text);
/// Writes "infinity" or "-infinity" and returns 1; 0 for every other value.
ZEV_HELPER sb4 EncodeSpecialTimestamp(char *out, Timestamp timestamp);
}
