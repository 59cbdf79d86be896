#include "types/ocitimestamp/calendar.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "types/ocitimestamp/system_time.h"
#include "types/ocitimestamp/zone.h"

namespace {

using zev::truncated;

/// Sums and products of years and days that wrap as 32-bit integers do.
sb4 wrapped(sb8 value) {
  return static_cast<sb4>(static_cast<ub4>(value));
}

/// The Julian day of the Monday in ISO week 1 of a year.
sb4 firstMonday(sb4 year) {
  const sb4 fourth = date2j(year, 1, 4);
  return wrapped(sb8{fourth} - j2day(wrapped(sb8{fourth} - 1)));
}

struct IsoWeek {
  sb4 week;
  sb4 year;
};

IsoWeek isoWeekOf(sb4 year, sb4 month, sb4 day) {
  const sb4 julian = date2j(year, month, day);
  sb4 monday = firstMonday(year);
  if (julian < monday) {
    year = wrapped(sb8{year} - 1);
    monday = firstMonday(year);
  }
  const sb4 week = wrapped(sb8{julian} - monday) / 7 + 1;
  if (week < 52) return {week, year};
  const sb4 nextYear = wrapped(sb8{year} + 1);
  const sb4 next = firstMonday(nextYear);
  return julian >= next ? IsoWeek{wrapped(sb8{julian} - next) / 7 + 1, nextYear}
                        : IsoWeek{week, year};
}

/// Whether a Timestamp can hold the fields' date.
bool isInRange(const PGtm &tm) {
  constexpr sb4 kFirstYear = -4713, kLastYear = 5874897;
  if (tm.tm_year > kLastYear || tm.tm_year < kFirstYear) return false;
  if (tm.tm_year > kFirstYear || tm.tm_mon > 11) return true;
  return tm.tm_mon == 11 && tm.tm_mday >= 24;
}

/// Whole days and seconds of the day, of which the latter are not negative.
struct DayAndTime {
  double day;
  double time;
};

DayAndTime split(double timestamp) {
  DayAndTime parts{std::trunc(timestamp / zev::kSecondsPerDay), timestamp};
  if (parts.day != 0) parts.time = timestamp - zev::rint(zev::kSecondsPerDay * parts.day);
  if (parts.time < 0) {
    parts.time += zev::kSecondsPerDay;
    parts.day -= 1;
  }
  return parts;
}

bool isJulianDay(double day) {
  return day >= 0 && day <= std::numeric_limits<sb4>::max();
}

/// Fills date and time so that no rounding shows a second of 60. False out of range.
bool fillDateAndTime(DayAndTime at, PGtm &tm, double &fsec) {
  at.day += zev::kTimestampEpochDay;
  for (;;) {
    if (!isJulianDay(at.day)) return false;
    j2date(static_cast<sb4>(at.day), &tm.tm_year, &tm.tm_mon, &tm.tm_mday);
    for (;;) {
      dt2time(at.time, &tm.tm_hour, &tm.tm_min, &tm.tm_sec, &fsec);
      fsec = zev::rint(fsec * 1e6) / 1e6;
      if (fsec < 1.0) return true;
      at.time = std::ceil(at.time);
      if (at.time >= zev::kSecondsPerDay) break;
    }
    at.day += 1;
    at.time = 0;
  }
}

/// What the system's record has from 0 or from 1900 on.
void toWholeYearAndMonth(PGtm &tm) {
  tm.tm_year = wrapped(sb8{tm.tm_year} + 1900);
  tm.tm_mon += 1;
}

void fillFromSystem(const std::tm &from, PGtm &tm) {
  tm = {.tm_sec = from.tm_sec,
        .tm_min = from.tm_min,
        .tm_hour = from.tm_hour,
        .tm_mday = from.tm_mday,
        .tm_mon = from.tm_mon,
        .tm_year = from.tm_year,
        .tm_wday = from.tm_wday,
        .tm_yday = from.tm_yday,
        .tm_isdst = from.tm_isdst,
        .tm_gmtoff = from.tm_gmtoff,
        .tm_zone = from.tm_zone};
  toWholeYearAndMonth(tm);
}

/// The fields of a moment in `zone`, over those that are there. False when the moment
/// cannot be told in whole seconds.
bool fillInZone(double unixTime, const pg_tz *zone, PGtm &tm) {
  constexpr double kLimit = 9223372036854775808.0;
  if (!(unixTime >= -kLimit && unixTime < kLimit)) return false;
  pg_localtime(static_cast<std::int64_t>(unixTime), zone, &tm);
  toWholeYearAndMonth(tm);
  return true;
}

void clearZone(PGtm &tm, const char **zoneName) {
  tm.tm_isdst = -1;
  tm.tm_gmtoff = 0;
  tm.tm_zone = nullptr;
  if (zoneName) *zoneName = nullptr;
}

/// Takes the whole units out of the seconds in `rest`.
sb4 peel(double &rest, double unit) {
  const sb4 count = truncated(rest / unit);
  if (count != 0) rest -= zev::rint(unit * count);
  return count;
}

/// Moves the whole days out of the seconds.
void moveDays(Interval &i) {
  const double days = std::trunc(i.time / zev::kSecondsPerDay);
  if (days == 0) return;
  i.time -= zev::rint(zev::kSecondsPerDay * days);
  i.day = wrapped(sb8{i.day} + truncated(days));
}

/// Gives days and seconds one sign.
void alignDaysAndTime(Interval &i) {
  if (i.day > 0 && i.time < 0) {
    i.time += zev::kSecondsPerDay;
    i.day -= 1;
  } else if (i.day < 0 && i.time > 0) {
    i.time -= zev::kSecondsPerDay;
    i.day += 1;
  }
}

/// Gives months and the rest one sign.
void alignMonths(Interval &i) {
  constexpr sb4 kDaysPerMonth = 30;
  if (i.month > 0 && (i.day < 0 || (i.day == 0 && i.time < 0))) {
    i.day += kDaysPerMonth;
    i.month -= 1;
  } else if (i.month < 0 && (i.day > 0 || (i.day == 0 && i.time > 0))) {
    i.day -= kDaysPerMonth;
    i.month += 1;
  }
}

bool isMomentOfDay(const PGtm &tm) {
  if (tm.tm_mon < 1 || tm.tm_mon > 12 || tm.tm_mday < 1 || tm.tm_mday > 31) return false;
  if (tm.tm_hour < 0 || tm.tm_hour > 24 || tm.tm_min < 0 || tm.tm_min > 59) return false;
  if (tm.tm_sec < 0 || tm.tm_sec > 60) return false;
  return tm.tm_hour < 24 || (tm.tm_min == 0 && tm.tm_sec == 0);
}

}  // namespace

double zev::rint(double value) {
  double whole = 0;
  const double fraction = std::modf(value, &whole);
  if (fraction > 0.5) return whole + 1;
  if (fraction < -0.5) return whole - 1;
  return whole;
}

sb4 zev::truncated(double value) {
  constexpr double kLowest = std::numeric_limits<sb4>::min();
  constexpr double kHighest = std::numeric_limits<sb4>::max();
  if (std::isnan(value)) return 0;
  if (value <= kLowest) return std::numeric_limits<sb4>::min();
  if (value >= kHighest) return std::numeric_limits<sb4>::max();
  return static_cast<sb4>(value);
}

extern "C" {

const sb4 day_tab[2][13] = {{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, 0},
                            {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31, 0}};

sb4 date2j(sb4 year, sb4 month, sb4 day) {
  const bool isLate = month > 2;
  const sb8 y = wrapped(sb8{year} + (isLate ? 4800 : 4799));
  const sb8 m = wrapped(sb8{month} + (isLate ? 1 : 13));
  const sb8 century = y / 100;
  return wrapped(y * 365 - 32167 + y / 4 - century + century / 4 +
                 wrapped(7834 * m) / 256 + day);
}

void j2date(sb4 julian, sb4 *year, sb4 *month, sb4 *day) {
  ub4 j = static_cast<ub4>(julian) + 32044;
  const ub4 quad = j / 146097;
  const ub4 extra = (j - quad * 146097) * 4 + 3;
  j += 60 + quad * 3 + extra / 146097;
  const ub4 fourYears = j / 1461;
  j -= fourYears * 1461;
  const ub4 y = j * 4 / 1461;
  j = (y != 0 ? (j + 305) % 365 : (j + 306) % 366) + 123;
  *year = static_cast<sb4>(y + fourYears * 4) - 4800;
  const ub4 q = j * 2141 / 65536;
  *day = static_cast<sb4>(j - 7834 * q / 256);
  *month = static_cast<sb4>((q + 10) % 12 + 1);
}

sb4 j2day(sb4 julian) {
  return static_cast<sb4>((static_cast<ub4>(julian) + 1) % 7);
}

sb4 date2isoweek(sb4 year, sb4 month, sb4 day) {
  return isoWeekOf(year, month, day).week;
}

sb4 date2isoyear(sb4 year, sb4 month, sb4 day) {
  return isoWeekOf(year, month, day).year;
}

void isoweek2date(sb4 week, sb4 *year, sb4 *month, sb4 *day) {
  j2date(wrapped((sb8{week} - 1) * 7 + firstMonday(*year)), year, month, day);
}

void dt2time(double time, sb4 *hour, sb4 *minute, sb4 *second, double *fsec) {
  *hour = truncated(time / 3600);
  time -= *hour * 3600.0;
  *minute = truncated(time / 60);
  time -= *minute * 60.0;
  *second = truncated(time);
  *fsec = time - *second;
}

double time2t(sb4 hour, sb4 minute, sb4 second, double fsec) {
  return (hour * 60.0 + minute) * 60.0 + second + fsec;
}

Timestamp dt2local(Timestamp timestamp, sb4 tz) {
  return timestamp - tz;
}

sb4 tm2timestamp(const PGtm *tm, double fsec, const sb4 *tz, Timestamp *out) {
  if (!isInRange(*tm)) {
    *out = 0.0;
    return -1;
  }
  const double days =
      double{static_cast<double>(date2j(tm->tm_year, tm->tm_mon, tm->tm_mday))} -
      zev::kTimestampEpochDay;
  *out = days * zev::kSecondsPerDay + time2t(tm->tm_hour, tm->tm_min, tm->tm_sec, fsec);
  if (tz) *out = dt2local(*out, wrapped(-sb8{*tz}));
  return 0;
}

sb4 timestamp2tm(Timestamp timestamp, sb4 *tz, PGtm *tm, double *fsec,
                 const char **zoneName, const pg_tz *zone) {
  if (!fillDateAndTime(split(timestamp), *tm, *fsec)) return -1;
  if (!tz) {
    clearZone(*tm, zoneName);
    return 0;
  }
  const double unixTime = zev::rint(zev::kEpochDistance + (timestamp - *fsec));
  if (!zone || !fillInZone(unixTime, zone, *tm)) {
    *tz = 0;
    clearZone(*tm, nullptr);
    return 0;
  }
  *tz = wrapped(-tm->tm_gmtoff);
  if (zoneName && tm->tm_zone) *zoneName = tm->tm_zone;
  return 0;
}

sb4 tm2interval(const PGtm *tm, double fsec, Interval *out) {
  out->month = wrapped(sb8{tm->tm_year} * 12 + tm->tm_mon);
  out->day = tm->tm_mday;
  out->time = time2t(tm->tm_hour, tm->tm_min, tm->tm_sec, fsec);
  return 0;
}

sb4 interval2tm(Interval interval, PGtm *tm, double *fsec) {
  tm->tm_year = interval.month / 12;
  tm->tm_mon = interval.month % 12;
  tm->tm_mday = interval.day;
  for (double time = interval.time;; time = std::ceil(interval.time)) {
    double rest = time;
    tm->tm_hour = peel(rest, 3600);
    tm->tm_min = peel(rest, 60);
    tm->tm_sec = peel(rest, 1);
    *fsec = zev::rint(rest * 1e6) / 1e6;
    if (!(*fsec >= 1.0) || time == std::ceil(interval.time)) return 0;
  }
}

void interval_justify_hours(OCIInterval *descriptor, double time, sb4 day, sb4 month) {
  Interval &i = descriptor->body->interval = {time, day, month};
  moveDays(i);
  alignDaysAndTime(i);
}

void interval_justify_interval(OCIInterval *descriptor, double time, sb4 day, sb4 month) {
  Interval &i = descriptor->body->interval = {time, day, month};
  moveDays(i);
  i.month = wrapped(sb8{i.month} + i.day / 30);
  i.day %= 30;
  alignMonths(i);
  alignDaysAndTime(i);
}

void abstime2tm(std::time_t time, sb4 *tz, PGtm *tm, char **zoneText) {
  constexpr std::size_t kZoneSize = 10;
  std::tm system{};
  if (tz) {
    system = zev::systemLocalTime(time).value_or(system);
  } else {
    gmtime_r(&time, &system);
  }
  fillFromSystem(system, *tm);
  if (!tz) {
    tm->tm_isdst = -1;
    return;
  }
  *tz = wrapped(-tm->tm_gmtoff);
  if (!zoneText) return;
  if (!tm->tm_zone) {
    *tz = 0;
    *zoneText = nullptr;
    return;
  }
  const std::size_t length = std::strlen(tm->tm_zone);
  const std::size_t kept = std::min(length, kZoneSize - 1);
  std::memcpy(*zoneText, tm->tm_zone, kept);
  (*zoneText)[kept] = '\0';
  if (length > kZoneSize) tm->tm_isdst = -1;
}

sb4 tm2abstime(const PGtm *tm, sb4 tz) {
  if (!isMomentOfDay(*tm)) return zev::kInvalidAbsoluteTime;
  const sb8 days = sb8{date2j(tm->tm_year, tm->tm_mon, tm->tm_mday)} - zev::kUnixEpochDay;
  return wrapped(((days * 24 + tm->tm_hour) * 60 + tm->tm_min) * 60 + tm->tm_sec + tz);
}

void ConvertPGtmToSystm(const PGtm *tm, struct tm *out) {
  *out = {};
  out->tm_sec = tm->tm_sec;
  out->tm_min = tm->tm_min;
  out->tm_hour = tm->tm_hour;
  out->tm_mday = tm->tm_mday;
  out->tm_mon = wrapped(sb8{tm->tm_mon} - 1);
  out->tm_year = wrapped(sb8{tm->tm_year} - 1900);
  out->tm_wday = tm->tm_wday;
  out->tm_yday = tm->tm_yday;
  out->tm_isdst = tm->tm_isdst;
  out->tm_gmtoff = tm->tm_gmtoff;
  out->tm_zone = tm->tm_zone;
}

std::time_t GetCurrentAbsoluteTime(void) {
  return std::time(nullptr);
}

std::time_t GetCurrentTransactionStartTime(void) {
  return 0;
}

Timestamp GetCurrentTransactionStartTimestamp(void) {
  return 0.0;
}

void GetCurrentDateTime(PGtm *tm) {
  sb4 tz = 0;
  abstime2tm(GetCurrentTransactionStartTime(), &tz, tm, nullptr);
}

void GetCurrentTimeUsec(PGtm *tm, double *fsec, sb4 *tz) {
  timestamp2tm(GetCurrentTransactionStartTimestamp(), tz, tm, fsec, nullptr, nullptr);
}

void GetEpochTime(PGtm *tm) {
  PGtm epoch{};
  pg_gmtime(0, &epoch);
  toWholeYearAndMonth(epoch);
  tm->tm_year = epoch.tm_year;
  tm->tm_mon = epoch.tm_mon;
  tm->tm_mday = epoch.tm_mday;
  tm->tm_hour = epoch.tm_hour;
  tm->tm_min = epoch.tm_min;
  tm->tm_sec = epoch.tm_sec;
}

Timestamp SetEpochTimestamp(void) {
  PGtm epoch{};
  GetEpochTime(&epoch);
  Timestamp timestamp = 0;
  tm2timestamp(&epoch, 0, nullptr, &timestamp);
  return timestamp;
}

}  // extern "C"
