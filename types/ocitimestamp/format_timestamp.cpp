#include <cstdio>
#include <cstring>
#include <limits>
#include <string_view>

#include "types/ocitimestamp/calendar.h"
#include "types/ocitimestamp/format_execution.h"
#include "types/ocitimestamp/zone.h"
#include "zevoci/errors.h"

namespace zev::format {
namespace {

constexpr sb4 kFebruary = 2;

/// A sum or product brought back to 32 bits.
sb4 saturated(sb8 value) {
  using Limits = std::numeric_limits<sb4>;
  return value > Limits::max()   ? Limits::max()
         : value < Limits::min() ? Limits::min()
                                 : static_cast<sb4>(value);
}

PGtm firstOfFebruary() {
  PGtm tm{};
  tm.tm_mday = 1;
  tm.tm_mon = kFebruary;
  return tm;
}

/// The date and time of a model that leaves everything out.
PGtm defaults() {
  PGtm now{};
  sb4 tz = 0;
  abstime2tm(GetCurrentAbsoluteTime(), &tz, &now, nullptr);
  PGtm tm = firstOfFebruary();
  tm.tm_year = now.tm_year;
  tm.tm_isdst = now.tm_isdst;
  return tm;
}

void settleClock(const TmFromChar &f, OCIError *errhp, PGtm &tm) {
  if (f.ssss) {
    tm.tm_hour = f.ssss / 3600;
    tm.tm_min = f.ssss % 3600 / 60;
    tm.tm_sec = f.ssss % 60;
  }
  if (f.ss) tm.tm_sec = f.ss;
  if (f.mi) tm.tm_min = f.mi;
  if (f.hh) tm.tm_hour = f.hh;
  if (!f.pm && !f.am) return;
  if (tm.tm_hour < 1 || tm.tm_hour > 12) AddErrorRecord(errhp, OCI_ERROR, 1849);
  if (f.pm && tm.tm_hour < 12) {
    tm.tm_hour += 12;
  } else if (!f.pm && tm.tm_hour == 12) {
    tm.tm_hour = 0;
  }
}

/// A year of one or two digits counts within its century where that was read.
sb4 yearOf(const TmFromChar &f) {
  const sb8 century = (sb8{f.cc} - 1) * 100;
  if (f.cc && f.yysz == 2)
    return saturated(century + f.year - (f.year < 2000 ? 1900 : 2000));
  if (f.cc && f.yysz == 1) return saturated(century + f.year - 2000);
  return f.year;
}

void settleYear(const TmFromChar &f, OCIError *errhp, PGtm &tm) {
  if (f.year) tm.tm_year = yearOf(f);
  if (!f.bc) return;
  if (tm.tm_year >= 1) {
    tm.tm_year = 1 - tm.tm_year;
    return;
  }
  char text[64];
  std::snprintf(text, sizeof text, "inconsistent use of year %04d and \"BC\"",
                tm.tm_year);
  AddErrorRecord2(errhp, OCI_ERROR, 0, text);
}

/// The last days of the months within a year.
constexpr sb4 kMonthEnds[2][12] = {
    {31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365},
    {31, 60, 91, 121, 152, 182, 213, 244, 274, 305, 335, 366}};

/// Month and day, as far as they were not read, from the day of the year. The last day of
/// a month counts as day 0 of the next one, but for December's.
void settleDayOfYear(OCIError *errhp, PGtm &tm) {
  if (tm.tm_year == 0)
    AddErrorRecord2(errhp, OCI_ERROR, 0,
                    "cannot calculate day of year without year information");
  const sb4 *const ends = kMonthEnds[isLeap(tm.tm_year)];
  int month = 0;
  while (month < 11 && ends[month] <= tm.tm_yday) ++month;
  if (tm.tm_mon < 2) tm.tm_mon = month + 1;
  if (tm.tm_mday < 2) tm.tm_mday = tm.tm_yday - (month == 0 ? 0 : ends[month - 1]);
}

/// Days and months as they were read; `day` and `dayOfYear` may come from weeks.
void settleDate(const TmFromChar &f, sb4 day, sb4 dayOfYear, OCIError *errhp, PGtm &tm) {
  if (f.j) j2date(f.j, &tm.tm_year, &tm.tm_mon, &tm.tm_mday);
  if (f.iw) isoweek2date(f.iw, &tm.tm_year, &tm.tm_mon, &tm.tm_mday);
  if (f.d) tm.tm_wday = f.d;
  if (day) tm.tm_mday = day;
  if (dayOfYear) tm.tm_yday = dayOfYear;
  if (f.mm) tm.tm_mon = f.mm;
  if (dayOfYear && (tm.tm_mon < 2 || tm.tm_mday < 2)) settleDayOfYear(errhp, tm);
}

/// Seconds east of Greenwich of the zone that was read, of which one part may carry the
/// sign of both.
std::int64_t zoneOffset(const TmFromChar &f) {
  const sb8 hour = f.tzh < 0 ? -sb8{f.tzh} : f.tzh;
  const sb8 minute = f.tzm < 0 ? -sb8{f.tzm} : f.tzm;
  const sb8 offset = (hour * 60 + minute) * 60;
  return f.tzh < 0 || f.tzm < 0 ? -offset : offset;
}

sb4 runModel(OCIError *errhp, const char *text, const char *format, sb4 dateKind,
             TmFromChar &fields) {
  CompiledModel model(format);
  if (model.compile(errhp, false, dateKind) < 0) return -1;
  // Reading leaves the text as it is.
  char *const cursor = const_cast<char *>(text);
  return DCH_processor(errhp, model.nodes(), cursor, 0, dateKind, &fields) ? 0 : -1;
}

/// Reads the text's elements; an empty model has none. 0, or -1 with a record.
sb4 scanFields(OCIError *errhp, const char *text, const char *format, sb4 dateKind,
               TmFromChar &fields) {
  const sb4 status = *format ? runModel(errhp, text, format, dateKind, fields) : 0;
  DCH_global_fx = 0;
  DCH_global_fm = 0;
  return status;
}

}  // namespace

void settle(const TmFromChar &fields, OCIError *errhp, PGtm &tm, double &fsec) {
  if (fields.cc) tm.tm_year = saturated((sb8{fields.cc} - 1) * 100);
  const sb4 dayOfYear = fields.ww ? saturated((sb8{fields.ww} - 1) * 7 + 1) : fields.ddd;
  const sb4 day = fields.w ? saturated((sb8{fields.w} - 1) * 7 + 1) : fields.dd;
  settleClock(fields, errhp, tm);
  if (fields.q >= 1 && fields.q <= 4) {
    tm.tm_mday = 1;
    tm.tm_mon = fields.q * 3 - 2;
  }
  settleYear(fields, errhp, tm);
  settleDate(fields, day, dayOfYear, errhp, tm);
  if (fields.ms) fsec += fields.ms / 1000.0;
  if (fields.us) fsec += fields.us / 1e6;
}

sb4 scanDateTime(OCIError *errhp, const char *text, const char *format, PGtm &tm,
                 double &fsec, sb4 dateKind) {
  TmFromChar fields{};
  if (scanFields(errhp, text, format, dateKind, fields) < 0) return -1;
  tm = fields.year ? firstOfFebruary() : defaults();
  fsec = fields.ff;
  settle(fields, errhp, tm, fsec);
  return 0;
}

}  // namespace zev::format

using namespace zev::format;

extern "C" sb4 do_to_timestamp(OCIError *errhp, const char *text, const char *format,
                               PGtm *tm, double *fsec, sb4 dateKind) {
  *tm = defaults();
  *fsec = 0;
  TmFromChar fields{};
  if (scanFields(errhp, text, format, dateKind, fields) < 0) return -1;
  *fsec = fields.ff;
  settle(fields, errhp, *tm, *fsec);
  if (hasTimeZoneInFormat(format) == 0) {
    tm->tm_gmtoff = zoneOffset(fields);
  } else {
    DetermineLocalTimeZone(tm);
  }
  return 0;
}

extern "C" sb4 hasTimeZoneInFormat(const char *format) {
  const std::string_view text(format);
  const bool found =
      text.ends_with("TZD") || text.ends_with("TZH") || text.ends_with("TZM");
  return found ? 0 : -1;
}
