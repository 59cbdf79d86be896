#include "types/ocitimestamp/encode_datetime.h"

#include <cmath>
#include <cstdlib>

#include "types/ocitimestamp/text_writer.h"

namespace {

using zev::TextWriter;

constexpr int kMicroseconds = 6;
constexpr std::string_view kMonths[] = {"",    "Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                        "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::string_view kUpperMonths[] = {"",    "JAN", "FEB", "MAR", "APR",
                                             "MAY", "JUN", "JUL", "AUG", "SEP",
                                             "OCT", "NOV", "DEC"};
constexpr std::string_view kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};

/// In three characters, blanks for a month that is none.
std::string_view monthName(const std::string_view (&names)[13], sb4 month) {
  return month >= 1 && month <= 12 ? names[month] : "   ";
}

sb8 shownYear(const PGtm &tm) {
  return tm.tm_year < 1 ? 1 - sb8{tm.tm_year} : tm.tm_year;
}

bool hasFraction(const PGtm &tm, double fsec) {
  return fsec != 0 && tm.tm_year > 0;
}

/// Takes zeros off what was written.
void trim(TextWriter &out) {
  while (out.length() >= 3 && out.at()[-1] == '0' && out.at()[-3] != '.')
    out.moveTo(out.at() - 1);
}

bool hasTwoDigits(sb4 value) {
  return static_cast<ub4>(value) < 100;
}

void writeIsoDate(TextWriter &out, const PGtm &tm) {
  out.number(shownYear(tm), 4) << '-';
  out.number(tm.tm_mon, 2) << '-';
  out.number(tm.tm_mday, 2);
}

void writeHourAndMinute(TextWriter &out, const PGtm &tm) {
  out.number(tm.tm_hour, 2) << ':';
  out.number(tm.tm_min, 2);
}

/// "2001-02-03 04:05"; most values have numbers of two digits and a year of four.
void writeIsoMinute(TextWriter &out, const PGtm &tm) {
  const bool isUsual = tm.tm_year > 0 && tm.tm_year < 10000 && hasTwoDigits(tm.tm_mon) &&
                       hasTwoDigits(tm.tm_mday) && hasTwoDigits(tm.tm_hour) &&
                       hasTwoDigits(tm.tm_min);
  if (!isUsual) {
    writeIsoDate(out, tm);
    out << ' ';
    return writeHourAndMinute(out, tm);
  }
  const auto two = [&out](sb4 value) -> TextWriter & {
    return out.two(static_cast<unsigned>(value));
  };
  two(tm.tm_year / 100);
  two(tm.tm_year % 100) << '-';
  two(tm.tm_mon) << '-';
  two(tm.tm_mday) << ' ';
  two(tm.tm_hour) << ':';
  two(tm.tm_min);
}

/// Seconds in style 1, in which the fraction is a count.
void writeCountedSeconds(TextWriter &out, const PGtm &tm, double fsec) {
  if (!hasFraction(tm, fsec)) {
    out << ':';
    out.number(tm.tm_sec, 2);
    return;
  }
  out << ':';
  out.number(tm.tm_sec) << '.';
  out.fixed(fsec, 0);
  trim(out);
}

void writeSeconds(TextWriter &out, const PGtm &tm, double fsec) {
  out << ':';
  if (!hasFraction(tm, fsec)) {
    out.number(tm.tm_sec, 2);
    return;
  }
  out.fixed(tm.tm_sec + fsec, kMicroseconds, 9);
  trim(out);
}

void writeDisplacement(TextWriter &out, sb4 tz) {
  const sb8 size = std::abs(sb8{tz});
  out << (tz <= 0 ? '-' : '+');
  out.number(size / 3600, 2);
  if (size % 3600 != 0) (out << ':').number(size / 60 % 60, 2);
  if (size % 60 != 0) (out << ':').number(size % 60, 2);
}

/// The zone where it is known, by its name if there is one.
void writeZone(TextWriter &out, const PGtm &tm, const sb4 *tz,
               const char *const *zoneName, bool afterBlank) {
  constexpr std::size_t kLongestName = 10;
  if (!tz || tm.tm_isdst < 0) return;
  if (zoneName && *zoneName) {
    out << ' ' << std::string_view(*zoneName, strnlen(*zoneName, kLongestName));
    return;
  }
  if (afterBlank) out << ' ';
  writeDisplacement(out, *tz);
}

/// Three numbers with separators.
struct DateOrder {
  sb8 first, second;
  char separator;
  sb8 year;
  char beforeYear;
};

DateOrder orderOf(const PGtm &tm, sb4 style, bool dayFirst) {
  const sb8 year = shownYear(tm);
  switch (style) {
    case zev::kSqlDates:
      return dayFirst ? DateOrder{tm.tm_mday, tm.tm_mon, '/', year, '/'}
                      : DateOrder{tm.tm_mon, tm.tm_mday, '/', year, '/'};
    case zev::kGermanDates:
      return {tm.tm_mday, tm.tm_mon, '.', year, '.'};
    default:
      return dayFirst ? DateOrder{tm.tm_mday, tm.tm_mon, '-', year, '-'}
                      : DateOrder{tm.tm_mon, tm.tm_mday, '-', year, '-'};
  }
}

void writeDate(TextWriter &out, const DateOrder &date) {
  out.number(date.first, 2) << date.separator;
  out.number(date.second, 2) << date.beforeYear;
  out.number(date.year, 4);
}

void writeOracleDate(TextWriter &out, const PGtm &tm) {
  out.number(tm.tm_mday, 2) << '-' << monthName(kUpperMonths, tm.tm_mon) << '-';
  out.number(shownYear(tm) % 100, 2);
}

/// Weekday, month, day, time and year.
void writeUnixDateTime(TextWriter &out, PGtm &tm, double fsec) {
  tm.tm_wday = j2day(date2j(tm.tm_year, tm.tm_mon, tm.tm_mday));
  out << kDays[tm.tm_wday] << ' ' << monthName(kMonths, tm.tm_mon) << ' ';
  out.number(tm.tm_mday, 2) << ' ';
  writeHourAndMinute(out, tm);
  writeSeconds(out, tm, fsec);
  out << ' ';
  out.number(shownYear(tm), 4);
}

// --- Intervals ---

/// The parts of an interval above the day's time.
struct Part {
  sb8 value;
  const char *verbose;
  char iso;
};
struct Parts {
  Part years, months, days, hours, minutes;
  sb8 seconds;
  double fsec;

  Parts(const PGtm &tm, double fraction)
      : years{tm.tm_year, "year", 'Y'},
        months{tm.tm_mon, "mon", 'M'},
        days{tm.tm_mday, "day", 'D'},
        hours{tm.tm_hour, "hour", 'H'},
        minutes{tm.tm_min, "min", 'M'},
        seconds(tm.tm_sec),
        fsec(fraction) {}

  bool hasSeconds() const { return seconds != 0 || fsec != 0; }
  bool hasTime() const { return hours.value != 0 || minutes.value != 0 || hasSeconds(); }
  bool hasNegativeSeconds() const { return seconds < 0 || fsec < 0; }
  bool hasNegativeTime() const {
    return hours.value < 0 || minutes.value < 0 || hasNegativeSeconds();
  }
};

/// Unsigned seconds with their fraction.
void writeUnsignedSeconds(TextWriter &out, const Parts &p, bool padded) {
  AppendSeconds(out.at(), static_cast<sb4>(p.seconds), padded, p.fsec);
  out.moveTo(out.at() + std::strlen(out.at()));
}

void writeVerbose(TextWriter &out, const Parts &p) {
  bool isZero = true, isBefore = false;
  out << '@';
  for (const Part &part : {p.years, p.months, p.days, p.hours, p.minutes}) {
    if (part.value == 0) continue;
    if (isZero) isBefore = part.value < 0;
    const sb8 shown = isBefore ? -part.value : part.value;
    out << ' ';
    out.number(shown) << ' ' << part.verbose << (shown == 1 ? "" : "s");
    isZero = false;
  }
  if (p.hasSeconds()) {
    const bool isNegative = p.seconds < 0 || (p.seconds == 0 && p.fsec < 0);
    out << ' ';
    if (isZero) {
      isBefore = isNegative;
    } else if (isNegative != isBefore) {
      out << '-';
    }
    writeUnsignedSeconds(out, p, false);
    out << (std::abs(p.seconds) == 1 && p.fsec == 0 ? " sec" : " secs");
    isZero = false;
  }
  if (isZero) out << " 0";
  if (isBefore) out << " ago";
}

void writePostgres(TextWriter &out, const Parts &p) {
  bool isZero = true, isBefore = false;
  for (const Part &part : {p.years, p.months, p.days}) {
    if (part.value == 0) continue;
    if (!isZero) out << ' ';
    if (isBefore && part.value > 0) out << '+';
    out.number(part.value) << ' ' << part.verbose << (part.value == 1 ? "" : "s");
    isBefore = part.value < 0;
    isZero = false;
  }
  if (!isZero && !p.hasTime()) return;
  if (!isZero) out << ' ';
  if (p.hasNegativeTime()) {
    out << '-';
  } else if (isBefore) {
    out << '+';
  }
  out.number(std::abs(p.hours.value), 2) << ':';
  out.number(std::abs(p.minutes.value), 2) << ':';
  writeUnsignedSeconds(out, p, true);
}

/// "hours:minutes:seconds" without signs.
void writeClock(TextWriter &out, const Parts &p) {
  out.number(std::abs(p.hours.value)) << ':';
  out.number(std::abs(p.minutes.value), 2) << ':';
  writeUnsignedSeconds(out, p, true);
}

char signOf(bool isNegative) {
  return isNegative ? '-' : '+';
}

void writeSql(TextWriter &out, const Parts &p) {
  bool hasNegative = p.hasNegativeSeconds();
  bool hasPositive = p.seconds > 0 || p.fsec > 0;
  for (const Part &part : {p.years, p.months, p.days, p.hours, p.minutes}) {
    hasNegative = hasNegative || part.value < 0;
    hasPositive = hasPositive || part.value > 0;
  }
  const bool hasMonths = p.years.value != 0 || p.months.value != 0;
  const bool hasDays = p.days.value != 0;
  const auto writeMonths = [&] {
    out.number(std::abs(p.years.value)) << '-';
    out.number(std::abs(p.months.value));
  };
  if (!hasNegative && !hasPositive) {
    out << '0';
  } else if ((hasNegative && hasPositive) || (hasMonths && (hasDays || p.hasTime()))) {
    out << signOf(p.years.value < 0 || p.months.value < 0);
    writeMonths();
    out << ' ' << signOf(p.days.value < 0);
    out.number(std::abs(p.days.value)) << ' ' << signOf(p.hasNegativeTime());
    writeClock(out, p);
  } else {
    if (hasNegative) out << '-';
    if (hasMonths) return writeMonths();
    if (hasDays) out.number(std::abs(p.days.value)) << ' ';
    writeClock(out, p);
  }
}

void writeIso(TextWriter &out, const Parts &p) {
  const auto writeParts = [&out](std::initializer_list<Part> parts) {
    for (const Part &part : parts) {
      if (part.value != 0) out.number(part.value) << part.iso;
    }
  };
  const char *start = (out << 'P').at();
  writeParts({p.years, p.months, p.days});
  if (p.hasTime()) {
    out << 'T';
    writeParts({p.hours, p.minutes});
    if (p.hasSeconds()) {
      if (p.hasNegativeSeconds()) out << '-';
      writeUnsignedSeconds(out, p, false);
      out << 'S';
    }
  }
  if (out.at() == start) out << "T0S";
}

}  // namespace

namespace zev {

void writeDateTime(TextWriter &text, PGtm *tm, const sb4 *tz, const char *const *zoneName,
                   sb4 style, double fsec) {
  bool showsBc = tm->tm_year < 1;
  switch (style) {
    case zev::kIsoDates:
      writeIsoMinute(text, *tm);
      writeCountedSeconds(text, *tm, fsec);
      writeZone(text, *tm, tz, nullptr, false);
      break;
    case zev::kSqlDates:
    case zev::kGermanDates:
      writeDate(text, orderOf(*tm, style, false));
      text << ' ';
      writeHourAndMinute(text, *tm);
      writeSeconds(text, *tm, fsec);
      writeZone(text, *tm, tz, zoneName, false);
      break;
    case zev::kOracleDates:
      writeOracleDate(text, *tm);
      text << ' ';
      writeHourAndMinute(text, *tm);
      writeSeconds(text, *tm, fsec);
      showsBc = false;
      break;
    default:
      writeUnixDateTime(text, *tm, fsec);
      writeZone(text, *tm, tz, zoneName, true);
      break;
  }
  if (showsBc) text << " BC";
  text.end();
}

}  // namespace zev

extern "C" {

sb4 EncodeDateTime(PGtm *tm, const sb4 *tz, const char *const *zoneName, sb4 style,
                   char *out, double fsec) {
  TextWriter text(out);
  writeDateTime(text, tm, tz, zoneName, style, fsec);
  return 1;
}

sb4 EncodeDateOnly(const PGtm *tm, sb4 style, char *out, sb4 dayFirst) {
  if (tm->tm_mon < 1 || tm->tm_mon > 12) return -1;
  TextWriter text(out);
  if (style == zev::kIsoDates) {
    writeIsoDate(text, *tm);
  } else {
    writeDate(text, orderOf(*tm, style, dayFirst != 0));
  }
  if (tm->tm_year < 1) text << " BC";
  text.end();
  return 1;
}

sb4 EncodeInterval(const PGtm *tm, sb4 style, char *out, double fsec) {
  const Parts parts(*tm, fsec);
  TextWriter text(out);
  switch (style) {
    case zev::kVerboseIntervals:
      writeVerbose(text, parts);
      break;
    case zev::kSqlIntervals:
      writeSql(text, parts);
      break;
    case zev::kIsoIntervals:
      writeIso(text, parts);
      break;
    default:
      writePostgres(text, parts);
      break;
  }
  text.end();
  return static_cast<sb4>(text.length());
}

void EncodeTimezone(char *out, sb4 tz) {
  TextWriter text(out, std::strlen(out));
  writeDisplacement(text, tz);
  text.end();
}

void AppendSeconds(char *out, sb4 second, sb4 padded, double fsec) {
  TextWriter text(out);
  if (fsec == 0) {
    text.number(std::abs(sb8{second}), padded ? 2 : 0);
    text.end();
    return;
  }
  text.fixed(std::fabs(second + fsec), kMicroseconds, padded ? 9 : 0);
  trim(text);
  text.end();
}

void TrimTrailingZeros(char *text) {
  std::size_t length = std::strlen(text);
  while (length >= 3 && text[length - 1] == '0' && text[length - 3] != '.') --length;
  text[length] = '\0';
}

sb4 EncodeSpecialTimestamp(char *out, Timestamp timestamp) {
  constexpr double kLimit = 1.7976931348623157e308;
  TextWriter text(out);
  if (timestamp < -kLimit) {
    text << "-infinity";
  } else if (timestamp > kLimit) {
    text << "infinity";
  } else {
    return 0;
  }
  text.end();
  return 1;
}

}  // extern "C"
