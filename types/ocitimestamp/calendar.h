/// Calendar arithmetic under every date and time value: Julian day numbers, the
/// broken-down record, the floating Timestamp and the Interval. The Gregorian calendar
/// holds for all years, also those before it was made.
#pragma once

#include <ctime>

#include "zevoci/api.h"
#include "zevoci/datetime.h"

struct pg_tz;

namespace zev {

inline constexpr sb4 kSecondsPerDay = 86400;
inline constexpr sb4 kTimestampEpochDay = 2451545;   ///< Julian day of 2000-01-01
inline constexpr sb4 kUnixEpochDay = 2440588;        ///< Julian day of 1970-01-01
inline constexpr double kEpochDistance = 946684800;  ///< seconds between the two
inline constexpr sb4 kInvalidAbsoluteTime = 0x7ffffffe;

/// Rounds to the nearest integer, exact halves toward zero: 2.5 gives 2. All rounding of
/// dates and times goes through here.
double rint(double value);

/// The integer part; the nearest 32-bit integer for what does not fit, 0 for NaN.
sb4 truncated(double value);

/// Whether a year has 366 days.
constexpr bool isLeap(sb4 year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

}  // namespace zev

extern "C" {
/// Lengths of the months of common and of leap years, with a 0 behind each row.
extern ZEV_HELPER const sb4 day_tab[2][13];

/// Julian day number of a date, and the date of a Julian day number, which is taken as
/// unsigned.
ZEV_HELPER sb4 date2j(sb4 year, sb4 month, sb4 day);
ZEV_HELPER void j2date(sb4 julian, sb4 *year, sb4 *month, sb4 *day);
/// Day of the week of a Julian day number, 0 for Sunday.
ZEV_HELPER sb4 j2day(sb4 julian);

/// ISO 8601 week number, and the year that this week belongs to.
ZEV_HELPER sb4 date2isoweek(sb4 year, sb4 month, sb4 day);
ZEV_HELPER sb4 date2isoyear(sb4 year, sb4 month, sb4 day);
/// The Monday of an ISO 8601 week; `*year` comes in as the week's year.
ZEV_HELPER void isoweek2date(sb4 week, sb4 *year, sb4 *month, sb4 *day);

/// Seconds of a day as hour, minute, second and fraction, and back.
ZEV_HELPER void dt2time(double time, sb4 *hour, sb4 *minute, sb4 *second, double *fsec);
ZEV_HELPER double time2t(sb4 hour, sb4 minute, sb4 second, double fsec);
/// `timestamp` less `tz` seconds.
ZEV_HELPER Timestamp dt2local(Timestamp timestamp, sb4 tz);

/// A record as a Timestamp, with `*tz`, seconds west of Greenwich, added where it is
/// given. 0, or -1 with 0.0 in `*out` outside -4713-11-24 to 5874897-12-31.
ZEV_HELPER sb4 tm2timestamp(const PGtm *tm, double fsec, const sb4 *tz, Timestamp *out);
/// A Timestamp as a record, to the microsecond. With `tz` the time in `zone` and its
/// displacement west of Greenwich, with its name in `*zoneName` where that is given and
/// known; without it the fields as they stand. 0, or -1 out of range.
ZEV_HELPER sb4 timestamp2tm(Timestamp timestamp, sb4 *tz, PGtm *tm, double *fsec,
                            const char **zoneName, const pg_tz *zone);

/// An interval's fields as an Interval, and back with the signs of its parts; always 0.
ZEV_HELPER sb4 tm2interval(const PGtm *tm, double fsec, Interval *out);
ZEV_HELPER sb4 interval2tm(Interval interval, PGtm *tm, double *fsec);

/// Store a span in the descriptor's body and move whole days out of the seconds, and in
/// the second one whole months of 30 days out of the days, with one sign for all parts.
ZEV_HELPER void interval_justify_hours(OCIInterval *descriptor, double time, sb4 day,
                                       sb4 month);
ZEV_HELPER void interval_justify_interval(OCIInterval *descriptor, double time, sb4 day,
                                          sb4 month);

/// Seconds since the Unix epoch as a record, in local time with `tz`, else in UTC. A
/// buffer of 10 bytes at `*zoneText`, where one is given, takes the zone's name.
ZEV_HELPER void abstime2tm(std::time_t time, sb4 *tz, PGtm *tm, char **zoneText);
/// A record as seconds since the Unix epoch in 32 bits; 0x7ffffffe for impossible fields.
ZEV_HELPER sb4 tm2abstime(const PGtm *tm, sb4 tz);
ZEV_HELPER void ConvertPGtmToSystm(const PGtm *tm, struct tm *out);

/// The wall clock, in seconds since the Unix epoch.
ZEV_HELPER std::time_t GetCurrentAbsoluteTime(void);
/// There is no transaction clock on a client: both are 0, the first in seconds since the
/// Unix epoch. So the two "current" records below are of fixed moments.
ZEV_HELPER std::time_t GetCurrentTransactionStartTime(void);
ZEV_HELPER Timestamp GetCurrentTransactionStartTimestamp(void);
/// The Unix epoch in local time.
ZEV_HELPER void GetCurrentDateTime(PGtm *tm);
/// The Timestamp 0; `tz` must be null, since no zone is at hand.
ZEV_HELPER void GetCurrentTimeUsec(PGtm *tm, double *fsec, sb4 *tz);
/// The Unix epoch in UTC, as record and as Timestamp.
ZEV_HELPER void GetEpochTime(PGtm *tm);
ZEV_HELPER Timestamp SetEpochTimestamp(void);
}

namespace zev {

/// Days of a month; 31 for a number that is none.
inline sb4 daysOfMonth(sb4 year, sb4 month) {
  return month >= 1 && month <= 12 ? day_tab[isLeap(year)][month - 1] : 31;
}

}  // namespace zev
