/// OCIDate on the client: arithmetic, comparison, checks and text.
#include <ociap.h>

#include <cstring>
#include <string_view>

#include "types/ocitimestamp/date_call.h"
#include "types/ocitimestamp/datetime_compare.h"
#include "types/ocitimestamp/format_execution.h"

namespace {

bool isMonth(sb4 month) {
  return month >= 1 && month <= 12;
}

sb4 julianOf(const OCIDate &date) {
  return date2j(date.OCIDateYYYY, date.OCIDateMM, date.OCIDateDD);
}

/// Sums of days that wrap as 32-bit integers do.
sb4 plus(sb4 julian, sb4 days) {
  return static_cast<sb4>(static_cast<ub4>(julian) + static_cast<ub4>(days));
}

/// The only writer of a date, which leaves its filler byte alone.
void SetOracleOCIDate(OCIDate *result, sb4 year, sb4 month, sb4 day, sb4 hour, sb4 minute,
                      sb4 second) {
  result->OCIDateYYYY = static_cast<sb2>(year);
  result->OCIDateMM = static_cast<ub1>(month);
  result->OCIDateDD = static_cast<ub1>(day);
  result->OCIDateTime.OCITimeHH = static_cast<ub1>(hour);
  result->OCIDateTime.OCITimeMI = static_cast<ub1>(minute);
  result->OCIDateTime.OCITimeSS = static_cast<ub1>(second);
}

/// A date with the time of `from`.
void setDate(OCIDate *result, const OCIDate &from, sb4 year, sb4 month, sb4 day) {
  const OCITime &time = from.OCIDateTime;
  SetOracleOCIDate(result, year, month, day, time.OCITimeHH, time.OCITimeMI,
                   time.OCITimeSS);
}

// --- Checks ---

constexpr OCIDate dateOf(sb2 year, ub1 month, ub1 day, ub1 hour, ub1 minute, ub1 second) {
  return {year, month, day, {hour, minute, second}};
}

/// Whether a date is one of those that the calendar of 1582 left out.
bool isMissing(OCIError *err, const OCIDate &date) {
  static constexpr OCIDate kFirst = dateOf(1582, 10, 5, 0, 0, 0);
  static constexpr OCIDate kLast = dateOf(1582, 10, 14, 23, 59, 59);
  sword afterFirst = 0, afterLast = 0;
  return OCIDateCompare(err, &date, &kFirst, &afterFirst) == 0 &&
         OCIDateCompare(err, &date, &kLast, &afterLast) == 0 && afterFirst >= 0 &&
         afterLast <= 0;
}

}  // namespace

uword VerifyDate(OCIError *err, const OCIDate &date) {
  constexpr sb4 kFirstYear = -4712, kLastYear = 9999;
  const sb4 year = date.OCIDateYYYY, month = date.OCIDateMM, day = date.OCIDateDD;
  const OCITime &time = date.OCIDateTime;
  const struct {
    bool holds;
    uword bits;
  } findings[] = {
      {day > zev::daysOfMonth(year, month), OCI_DATE_INVALID_DAY},
      {day == 0, OCI_DATE_INVALID_DAY | OCI_DATE_DAY_BELOW_VALID},
      {!isMonth(month), OCI_DATE_INVALID_MONTH},
      {month == 0, OCI_DATE_MONTH_BELOW_VALID},
      {year < kFirstYear || year > kLastYear, OCI_DATE_INVALID_YEAR},
      {year < kFirstYear, OCI_DATE_YEAR_BELOW_VALID},
      {time.OCITimeHH > 23, OCI_DATE_INVALID_HOUR},
      {time.OCITimeMI > 59, OCI_DATE_INVALID_MINUTE},
      {time.OCITimeSS > 59, OCI_DATE_INVALID_SECOND},
      {year == 0, OCI_DATE_YEAR_ZERO},
      {isMissing(err, date), OCI_DATE_DAY_MISSING_FROM_1582},
  };
  uword mask = 0;
  for (const auto &[holds, bits] : findings) mask |= holds ? bits : 0;
  return mask;
}

namespace {

// --- Weekdays ---

/// The day of a week by its name's first three letters, 0 for Sunday; -1 for none.
sb4 getwday(std::string_view name) {
  constexpr std::string_view kDays[] = {"SUN", "MON", "TUE", "WED", "THU", "FRI", "SAT"};
  for (sb4 day = 0; day < 7; ++day) {
    if (kDays[day] == name) return day;
  }
  return -1;
}

sb4 weekdayNamed(std::string_view name) {
  if (name.size() < 3) return -1;
  char capitals[3];
  for (int i = 0; i < 3; ++i) {
    const char c = name[static_cast<std::size_t>(i)];
    capitals[i] = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return getwday({capitals, 3});
}

/// The day of the week of a date whose time may lead into days behind it.
sb4 weekdayOf(const OCIDate &date) {
  const OCITime &time = date.OCIDateTime;
  const sb4 seconds = (time.OCITimeHH * 60 + time.OCITimeMI) * 60 + time.OCITimeSS;
  return j2day(plus(julianOf(date), seconds / zev::kSecondsPerDay));
}

// --- Text ---

bool isRegular(const PGtm &tm) {
  return isMonth(tm.tm_mon) && tm.tm_mday >= 1 &&
         tm.tm_mday <= zev::daysOfMonth(tm.tm_year, tm.tm_mon) && tm.tm_hour < 24 &&
         tm.tm_min < 60 && tm.tm_sec < 60;
}

/// Completes a date by its days of the week and of the year. Fields beyond their ranges
/// lead into the days behind. False for a date that no day number has.
bool complete(PGtm &tm) {
  if (!isRegular(tm)) {
    Timestamp timestamp = 0;
    double fsec = 0;
    if (tm2timestamp(&tm, 0, nullptr, &timestamp) != 0 ||
        timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr) != 0)
      return false;
  }
  const sb4 julian = date2j(tm.tm_year, tm.tm_mon, tm.tm_mday);
  if (julian < 0) return false;
  tm.tm_wday = j2day(julian);
  tm.tm_yday = julian - date2j(tm.tm_year, 1, 1);
  return true;
}

}  // namespace

extern "C" {

ZEV_API sword OCIDateAddDays(OCIError *err, const OCIDate *date, sb4 num_days,
                             OCIDate *result) {
  return zev::dates::run("OCIDateAddDays\n", err, {{date, "2"}, {result, "4"}}, [&] {
    sb4 year = 0, month = 0, day = 0;
    j2date(plus(julianOf(*date), num_days), &year, &month, &day);
    SetOracleOCIDate(result, year, month, day, 0, 0, 0);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIDateAddMonths(OCIError *err, const OCIDate *date, sb4 num_months,
                               OCIDate *result) {
  return zev::dates::run("OCIDateAddMonths\n", err, {{date, "2"}, {result, "4"}}, [&] {
    const sb8 months = sb8{date->OCIDateMM} + num_months;
    sb8 year = date->OCIDateYYYY + months / 12;
    auto month = static_cast<sb4>(months % 12);
    if (month < 1) {
      month += 12;
      --year;
    }
    const auto targetYear = static_cast<sb4>(year);
    const bool isLast =
        date->OCIDateDD == zev::daysOfMonth(date->OCIDateYYYY, date->OCIDateMM);
    setDate(result, *date, targetYear, month,
            isLast ? zev::daysOfMonth(targetYear, month) : date->OCIDateDD);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIDateAssign(OCIError *err, const OCIDate *from, OCIDate *to) {
  return zev::dates::run("OCIDateAssign\n", err, {{from, "2"}, {to, "3"}}, [&] {
    setDate(to, *from, from->OCIDateYYYY, from->OCIDateMM, from->OCIDateDD);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIDateCheck(OCIError *err, const OCIDate *date, uword *valid) {
  return zev::dates::run("OCIDateCheck\n", err, {{date, "2"}, {valid, "3"}}, [&] {
    *valid = VerifyDate(err, *date);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIDateCompare(OCIError *err, const OCIDate *date1, const OCIDate *date2,
                             sword *result) {
  return zev::dates::run(
      "OCIDateCompare\n", err, {{date1, "2"}, {date2, "3"}, {result, "4"}},
      [&] { return DateTimeCompare(date1, date2, SQLT_DATE, result); });
}

ZEV_API sword OCIDateDaysBetween(OCIError *err, const OCIDate *date1,
                                 const OCIDate *date2, sb4 *num_days) {
  return zev::dates::run("OCIDateDaysBetween\n", err,
                         {{date1, "2"}, {date2, "3"}, {num_days, "4"}}, [&] {
                           *num_days = julianOf(*date1) - julianOf(*date2);
                           return OCI_SUCCESS;
                         });
}

ZEV_API sword OCIDateFromText(OCIError *err, const OraText *date_str, ub4 d_str_length,
                              const OraText *fmt, ub1 fmt_length, const OraText *, ub4,
                              OCIDate *date) {
  return zev::dates::run(nullptr, err, {{date_str, "2"}, {fmt, "5"}, {date, "7"}}, [&] {
    const zev::dates::Terminated text(err, date_str, d_str_length),
        format(err, fmt, fmt_length);
    if (!text) return text.fail(err);
    if (!format) return format.fail(err);
    PGtm tm{};
    double fsec = 0;
    if (zev::format::scanDateTime(err, text.get(), format.get(), tm, fsec,
                                  zev::format::kOCIDate) != 0)
      return OCI_ERROR;
    if (tm.tm_mday > zev::daysOfMonth(tm.tm_year, tm.tm_mon))
      return zev::dates::failAfresh(err, 1839);
    SetOracleOCIDate(date, tm.tm_year, tm.tm_mon, tm.tm_mday, tm.tm_hour, tm.tm_min,
                     tm.tm_sec);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIDateLastDay(OCIError *err, const OCIDate *date, OCIDate *last_day) {
  return zev::dates::run(
      "Setting Piece Information\n", err, {{date, "2"}, {last_day, "3"}}, [&] {
        const sb4 year = date->OCIDateYYYY, month = date->OCIDateMM;
        setDate(last_day, *date, year, month, zev::daysOfMonth(year, month));
        return OCI_SUCCESS;
      });
}

ZEV_API sword OCIDateNextDay(OCIError *err, const OCIDate *date, const OraText *day_p,
                             ub4 day_length, OCIDate *next_day) {
  return zev::dates::run(
      "OCIDateNextDay\n", err, {{date, "2"}, {day_p, "3"}, {next_day, "5"}}, [&] {
        const zev::EdgeText day(zev::parentEnv(err), day_p, day_length);
        if (!day) return zev::dates::failText(err, day);
        const sb4 target = weekdayNamed(day.view());
        if (target < 0) return zev::dates::failAfresh(err, 1846);
        sb4 days = target - weekdayOf(*date);
        if (days < 1) days += 7;
        sb4 year = 0, month = 0, mday = 0;
        j2date(plus(julianOf(*date), days), &year, &month, &mday);
        setDate(next_day, *date, year, month, mday);
        return OCI_SUCCESS;
      });
}

ZEV_API sword OCIDateSysDate(OCIError *err, OCIDate *sys_date) {
  return zev::dates::run("OCIDateSysDate\n", err, {{sys_date, "2"}}, [&] {
    PGtm now{};
    sb4 tz = 0;
    abstime2tm(GetCurrentAbsoluteTime(), &tz, &now, nullptr);
    SetOracleOCIDate(sys_date, now.tm_year, now.tm_mon, now.tm_mday, now.tm_hour,
                     now.tm_min, now.tm_sec);
    return OCI_SUCCESS;
  });
}

ZEV_API sword OCIDateToText(OCIError *err, const OCIDate *date, const OraText *fmt,
                            ub1 fmt_length, const OraText *, ub4, ub4 *buf_size,
                            OraText *buf) {
  return zev::dates::run(
      nullptr, err, {{date, "2"}, {fmt, "3"}, {buf_size, "6"}, {buf, "7"}}, [&] {
        const zev::dates::Terminated format(err, fmt, fmt_length);
        if (!format) return format.fail(err);
        TmToChar value{};
        DecodeOracleOCIDate(date, &value.tm, 1);
        if (!complete(value.tm)) return zev::dates::failAfresh(err, 1841);
        zev::format::PrintedText printed;
        if (!printed.print(err, value, format.get(), zev::format::kOCIDate))
          return OCI_ERROR;
        ub4 room = *buf_size;  // the program's own stays as it is
        return zev::dates::deliverCut(err, printed.text(), buf, &room);
      });
}

ZEV_API sword OCIDateZoneToZone(OCIError *, const OCIDate *, const OraText *, ub4,
                                const OraText *, ub4, OCIDate *) {
  o2pTrace(zev::dates::kNarrative, "OCIDateZoneToZone\n");
  o2pTrace(zev::dates::kArguments, "\tRETURNING %s\n");
  return OCI_ERROR;
}

}  // extern "C"
