/// The records of calendar arithmetic, which dates, times, zones and intervals share.
#pragma once

#include <cstdint>

/// A broken-down date and time. Members stand in the order and width of the C library's
/// `struct tm`, so that a copy leads from one to the other; their ranges differ.
struct PGtm {
  int32_t tm_sec;       ///< 0 to 60
  int32_t tm_min;       ///< 0 to 59
  int32_t tm_hour;      ///< 0 to 24, 24 only at 24:00:00
  int32_t tm_mday;      ///< from 1; the days of an interval
  int32_t tm_mon;       ///< 1 to 12; in an interval 0 to 11
  int32_t tm_year;      ///< the whole year, astronomical: 1 BC is 0
  int32_t tm_wday;      ///< 0 is Sunday
  int32_t tm_yday;      ///< from 0
  int32_t tm_isdst;     ///< -1 unknown, 0 standard time, 1 daylight time
  int64_t tm_gmtoff;    ///< seconds east of Greenwich
  const char *tm_zone;  ///< abbreviation or text of the zone; not owned
};

/// Seconds since 2000-01-01 00:00:00; the infinities of double stand for "infinity" and
/// "-infinity".
using Timestamp = double;

/// A span of time, year-month or day-second.
struct Interval {
  double time;    ///< seconds
  int32_t day;    ///< days, of any number of seconds
  int32_t month;  ///< months, of any number of days
};
