/// Calendar arithmetic, beside the C++ library's calendar.
#include "types/ocitimestamp/calendar.h"

#include <cmath>
#include <cstring>
#include <limits>

#include "datetime_fixture.h"
#include "types/ocitimestamp/zone.h"

namespace zevtest {
namespace {

constexpr sb4 kMost = std::numeric_limits<sb4>::max();
constexpr sb4 kLeast = std::numeric_limits<sb4>::min();

TEST(Rounding, HalvesGoTowardZero) {
  const double rows[][2] = {{0.5, 0}, {1.5, 1},      {-0.5, 0},       {-2.5, -2},
                            {2.5, 2}, {2.500001, 3}, {-2.500001, -3}, {0.49, 0},
                            {7, 7},   {-7, -7},      {1e300, 1e300}};
  for (const auto &[value, rounded] : rows) EXPECT_EQ(zev::rint(value), rounded);
  EXPECT_EQ(zev::truncated(-2.9), -2);
  EXPECT_EQ(zev::truncated(1e10), kMost);
  EXPECT_EQ(zev::truncated(-1e10), kLeast);
  EXPECT_EQ(zev::truncated(std::nan("")), 0);
}

TEST(JulianDay, KnownDays) {
  EXPECT_EQ(date2j(2000, 1, 1), 2451545);
  EXPECT_EQ(date2j(1970, 1, 1), 2440588);
  EXPECT_EQ(date2j(-4713, 11, 24), 0);
  sb4 year = 0, month = 0, day = 0;
  j2date(2451545, &year, &month, &day);
  EXPECT_EQ(shown(dateTime(year, month, day)), "2000-01-01 00:00:00");
  j2date(0, &year, &month, &day);
  EXPECT_EQ(year, -4713);
  EXPECT_EQ(month * 100 + day, 1124);
  EXPECT_EQ(j2day(2451545), 6);
}

/// The ISO week and its year by ISO 8601 itself: the week of the date's Thursday.
std::pair<sb4, sb4> isoWeekOf(std::chrono::sys_days date) {
  using namespace std::chrono;
  const auto monday = date - days((weekday(date).iso_encoding() - 1));
  const year_month_day thursday(monday + days(3));
  const auto first = sys_days(thursday.year() / 1 / 1);
  return {static_cast<sb4>((monday + days(3) - first).count() / 7 + 1),
          static_cast<int>(thursday.year())};
}

TEST(JulianDay, EveryDayOfTheYears1To9999) {
  using namespace std::chrono;
  const auto end = sys_days(year(10000) / 1 / 1);
  int wrong = 0;
  for (auto date = sys_days(year(1) / 1 / 1); date < end; date += days(1)) {
    const year_month_day ymd(date);
    const auto y = static_cast<int>(ymd.year());
    const auto m = static_cast<sb4>(static_cast<unsigned>(ymd.month()));
    const auto d = static_cast<sb4>(static_cast<unsigned>(ymd.day()));
    const auto julian = static_cast<sb4>(date.time_since_epoch().count() + 2440588);
    const auto [week, weekYear] = isoWeekOf(date);
    sb4 y2 = 0, m2 = 0, d2 = 0;
    j2date(julian, &y2, &m2, &d2);
    const bool good =
        date2j(y, m, d) == julian && y2 == y && m2 == m && d2 == d &&
        j2day(julian) == static_cast<sb4>(weekday(date).c_encoding()) &&
        date2isoweek(y, m, d) == week && date2isoyear(y, m, d) == weekYear &&
        day_tab[zev::isLeap(y)][m - 1] ==
            static_cast<sb4>(static_cast<unsigned>(
                year_month_day_last(ymd.year() / ymd.month() / last).day()));
    if (!good && ++wrong < 5) ADD_FAILURE() << y << '-' << m << '-' << d;
  }
  EXPECT_EQ(wrong, 0);
}

TEST(JulianDay, WeeksAtTheEdgesOfYears) {
  EXPECT_EQ(date2isoweek(2005, 1, 1), 53);
  EXPECT_EQ(date2isoyear(2005, 1, 1), 2004);
  EXPECT_EQ(date2isoweek(2008, 12, 29), 1);
  EXPECT_EQ(date2isoyear(2008, 12, 29), 2009);
  for (sb4 week = 1; week <= 52; ++week) {
    sb4 year = 2009, month = 0, day = 0;
    isoweek2date(week, &year, &month, &day);
    EXPECT_EQ(date2isoweek(year, month, day), week);
    EXPECT_EQ(date2isoyear(year, month, day), 2009);
    EXPECT_EQ(j2day(date2j(year, month, day)), 1) << "a Monday";
  }
}

TEST(JulianDay, OldCenturiesAreGregorian) {
  EXPECT_FALSE(zev::isLeap(1500));
  EXPECT_TRUE(zev::isLeap(1600));
  EXPECT_EQ(date2j(1500, 3, 1) - date2j(1500, 2, 28), 1);
  EXPECT_EQ(date2j(1600, 3, 1) - date2j(1600, 2, 28), 2);
}

TEST(JulianDay, ImpossibleDatesWrap) {
  for (const sb4 year : {kMost, kLeast, 5874897}) {
    for (const sb4 month : {kMost, kLeast, 1, 12}) {
      date2j(year, month, kMost);
      date2isoweek(year, month, 1);
    }
  }
  sb4 year = kMost, month = 0, day = 0;
  isoweek2date(kLeast, &year, &month, &day);
  j2date(kMost, &year, &month, &day);
  EXPECT_EQ(year, 5874898);
}

TEST(TimestampRange, EndsWithItsFirstAndLastDay) {
  struct Row {
    sb4 year, month, day;
    bool good;
  };
  for (const Row &row :
       {Row{-4713, 11, 24, true}, Row{-4713, 11, 23, false}, Row{-4713, 12, 1, true},
        Row{-4713, 10, 30, false}, Row{-4714, 12, 31, false}, Row{5874897, 12, 31, true},
        Row{5874898, 1, 1, false}}) {
    const PGtm tm = dateTime(row.year, row.month, row.day);
    Timestamp timestamp = 7;
    EXPECT_EQ(tm2timestamp(&tm, 0, nullptr, &timestamp), row.good ? 0 : -1);
    if (!row.good) {
      EXPECT_EQ(timestamp, 0.0);
      continue;
    }
    PGtm back{};
    double fsec = 0;
    ASSERT_EQ(timestamp2tm(timestamp, nullptr, &back, &fsec, nullptr, nullptr), 0);
    EXPECT_EQ(shown(back), shown(tm));
  }
}

TEST(TimestampRange, WhatNoDayHoldsIsRefused) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double bad : {kInfinity, -kInfinity, 1e300, -1e300, std::nan(""),
                           (2147483648.0 - 2451545) * 86400, -2451545.0 * 86400 - 1}) {
    PGtm tm{};
    double fsec = 0;
    EXPECT_EQ(timestamp2tm(bad, nullptr, &tm, &fsec, nullptr, nullptr), -1) << bad;
  }
}

TEST(TimestampRange, NoSecondIsSixty) {
  PGtm tm = dateTime(2001, 2, 3, 23, 59, 59);
  Timestamp timestamp = 0;
  ASSERT_EQ(tm2timestamp(&tm, 0.9999996, nullptr, &timestamp), 0);
  double fsec = 1;
  ASSERT_EQ(timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr), 0);
  EXPECT_EQ(shown(tm), "2001-02-04 00:00:00");
  EXPECT_EQ(fsec, 0);
  tm = dateTime(2001, 2, 3, 4, 5, 59);
  ASSERT_EQ(tm2timestamp(&tm, 0.9999996, nullptr, &timestamp), 0);
  ASSERT_EQ(timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr), 0);
  EXPECT_EQ(shown(tm), "2001-02-03 04:06:00");
}

TEST(TimestampRange, WithoutAZoneNothingIsKnownOfIt) {
  PGtm tm{};
  double fsec = 0;
  const char *name = "?";
  ASSERT_EQ(timestamp2tm(0, nullptr, &tm, &fsec, &name, nullptr), 0);
  EXPECT_EQ(shown(tm), "2000-01-01 00:00:00");
  EXPECT_EQ(tm.tm_isdst, -1);
  EXPECT_EQ(tm.tm_gmtoff, 0);
  EXPECT_EQ(tm.tm_zone, nullptr);
  EXPECT_EQ(name, nullptr);
}

TEST(TimestampRange, AZoneOfZerosIsUtcAndTellsTheWeekday) {
  const pg_tz zone{};
  PGtm tm{};
  double fsec = 0;
  sb4 tz = 7;
  const char *name = nullptr;
  ASSERT_EQ(timestamp2tm(86400 * 59 + 0.25, &tz, &tm, &fsec, &name, &zone), 0);
  EXPECT_EQ(shown(tm), "2000-02-29 00:00:00");
  EXPECT_EQ(fsec, 0.25);
  EXPECT_EQ(tz, 0);
  EXPECT_EQ(tm.tm_wday, 2);
  EXPECT_EQ(tm.tm_yday, 59);
  EXPECT_EQ(tm.tm_isdst, 0);
  EXPECT_STREQ(name, "");
}

TEST(Timestamps, RandomInstantsLeadThereAndBack) {
  using namespace std::chrono;
  auto random = generator();
  std::uniform_int_distribution<sb8> seconds(-210866803200, 253402300799 - 946684800);
  std::uniform_int_distribution<sb4> micros(0, 999999);
  std::uniform_int_distribution<sb4> zones(-50400, 50400);
  const pg_tz utc{};
  int wrong = 0;
  for (int i = rounds(200'000, 10'000'000); i > 0 && wrong < 5; --i) {
    const sb8 second = seconds(random);
    // The far past leaves a double no room for microseconds.
    const double fraction = std::abs(second) < 4'000'000'000 ? micros(random) / 1e6 : 0;
    const sys_seconds moment{std::chrono::seconds(second + 946684800)};
    const auto date = floor<days>(moment);
    const year_month_day ymd(date);
    const hh_mm_ss time(moment - date);
    PGtm expected = dateTime(static_cast<int>(ymd.year()),
                             static_cast<sb4>(static_cast<unsigned>(ymd.month())),
                             static_cast<sb4>(static_cast<unsigned>(ymd.day())),
                             static_cast<sb4>(time.hours().count()),
                             static_cast<sb4>(time.minutes().count()),
                             static_cast<sb4>(time.seconds().count()));
    PGtm tm{};
    double fsec = 0;
    sb4 tz = 0;
    const double timestamp = static_cast<double>(second) + fraction;
    Timestamp back = 0, moved = 0;
    const sb4 west = zones(random);
    const bool good =
        timestamp2tm(timestamp, &tz, &tm, &fsec, nullptr, &utc) == 0 &&
        shown(tm) == shown(expected) && std::abs(fsec - fraction) < 1.1e-6 &&
        tm.tm_wday == static_cast<sb4>(weekday(date).c_encoding()) &&
        tm.tm_yday == (date - sys_days(ymd.year() / 1 / 1)).count() &&
        tm2timestamp(&expected, fraction, nullptr, &back) == 0 &&
        std::abs(back - timestamp) < 1e-5 &&
        tm2timestamp(&expected, fraction, &west, &moved) == 0 && moved == back + west;
    if (!good) {
      ++wrong;
      ADD_FAILURE() << second << " + " << fraction << ": " << shown(tm) << " for "
                    << shown(expected);
    }
  }
}

TEST(TimeOfDay, SplitsAndJoins) {
  sb4 hour = 0, minute = 0, second = 0;
  double fsec = 0;
  dt2time(86399.25, &hour, &minute, &second, &fsec);
  EXPECT_EQ(hour * 10000 + minute * 100 + second, 235959);
  EXPECT_EQ(fsec, 0.25);
  EXPECT_EQ(time2t(23, 59, 59, 0.25), 86399.25);
  EXPECT_EQ(time2t(-1, -2, -3, -0.5), -3723.5);
  EXPECT_EQ(dt2local(100, 40), 60);
  dt2time(std::nan(""), &hour, &minute, &second, &fsec);
  dt2time(1e300, &hour, &minute, &second, &fsec);
}

TEST(Intervals, FieldsLeadThereAndBackWithTheirSigns) {
  auto random = generator();
  for (int i = 0; i < 100'000; ++i) {
    const auto upTo = [&](sb4 most) {
      return std::uniform_int_distribution<sb4>(-most, most)(random);
    };
    const sb4 sign = i % 2 ? 1 : -1;
    PGtm tm = dateTime(sign * std::abs(upTo(9999)), sign * std::abs(upTo(11)),
                       upTo(100'000), sign * std::abs(upTo(99)),
                       sign * std::abs(upTo(59)), sign * std::abs(upTo(59)));
    const double fsec = sign * std::abs(upTo(999'999)) / 1e6;
    Interval interval{};
    ASSERT_EQ(tm2interval(&tm, fsec, &interval), 0);
    EXPECT_EQ(interval.month, tm.tm_year * 12 + tm.tm_mon);
    EXPECT_EQ(interval.day, tm.tm_mday);
    PGtm back{};
    double fraction = 0;
    ASSERT_EQ(interval2tm(interval, &back, &fraction), 0);
    ASSERT_EQ(shown(back), shown(tm)) << interval.time;
    ASSERT_NEAR(fraction, fsec, 1.1e-6);
  }
}

TEST(Intervals, AFractionThatRoundsUpCarries) {
  PGtm tm{};
  double fsec = 0;
  interval2tm({59.9999999, 0, 0}, &tm, &fsec);
  EXPECT_EQ(tm.tm_min * 100 + tm.tm_sec, 100);
  EXPECT_EQ(fsec, 0);
  for (const double huge : {1e300, -1e300, std::nan("")}) {
    interval2tm({huge, kMost, kLeast}, &tm, &fsec);
  }
}

/// A descriptor with its body.
struct Descriptor {
  OCIIntervalBody body{};
  OCIInterval interval{};
  Descriptor() { interval.body = &body; }
  std::string shownParts() const {
    char text[64];
    std::snprintf(text, sizeof text, "%d %d %g", body.interval.month, body.interval.day,
                  body.interval.time);
    return text;
  }
};

TEST(Intervals, HoursBecomeDays) {
  Descriptor d;
  const auto justified = [&](double time, sb4 day, sb4 month) {
    interval_justify_hours(&d.interval, time, day, month);
    return d.shownParts();
  };
  EXPECT_EQ(justified(90000, 0, 5), "5 1 3600");
  EXPECT_EQ(justified(-90000, 0, 0), "0 -1 -3600");
  EXPECT_EQ(justified(-3600, 2, 0), "0 1 82800");
  EXPECT_EQ(justified(3600, -2, 0), "0 -1 -82800");
  EXPECT_EQ(justified(86400, 40, 0), "0 41 0");
}

TEST(Intervals, DaysBecomeMonths) {
  Descriptor d;
  const auto justified = [&](double time, sb4 day, sb4 month) {
    interval_justify_interval(&d.interval, time, day, month);
    return d.shownParts();
  };
  EXPECT_EQ(justified(0, 35, 0), "1 5 0");
  EXPECT_EQ(justified(0, -35, 0), "-1 -5 0");
  EXPECT_EQ(justified(0, -5, 2), "1 25 0");
  EXPECT_EQ(justified(-3600, 0, 2), "1 29 82800");
  EXPECT_EQ(justified(0, 5, -2), "-1 -25 0");
  EXPECT_EQ(justified(3600, 0, -2), "-1 -29 -82800");
  EXPECT_EQ(justified(90000, 29, 0), "1 0 3600");
}

TEST(AbsoluteTime, IsTheSystems) {
  const LocalZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  PGtm tm{};
  sb4 tz = 0;
  char name[10] = {};
  char *text = name;
  abstime2tm(981173106, &tz, &tm, &text);  // 2001-02-03 04:05:06 UTC
  EXPECT_EQ(shown(tm), "2001-02-03 05:05:06");
  EXPECT_EQ(tz, -3600);
  EXPECT_EQ(tm.tm_gmtoff, 3600);
  EXPECT_EQ(tm.tm_isdst, 0);
  EXPECT_EQ(tm.tm_wday, 6);
  EXPECT_STREQ(name, "CET");
  abstime2tm(981173106, nullptr, &tm, nullptr);
  EXPECT_EQ(shown(tm), "2001-02-03 04:05:06");
  EXPECT_EQ(tm.tm_isdst, -1);
  EXPECT_EQ(tm2abstime(&tm, 0), 981173106);
  EXPECT_EQ(tm2abstime(&tm, -3600), 981173106 - 3600);
}

TEST(AbsoluteTime, LongZoneNamesAreCut) {
  const LocalZone zone("ABCDEFGHIJKLMNO5");
  PGtm tm{};
  sb4 tz = 0;
  char name[10] = {};
  char *text = name;
  abstime2tm(0, &tz, &tm, &text);
  EXPECT_STREQ(name, "ABCDEFGHI");
  EXPECT_EQ(tm.tm_isdst, -1);
}

TEST(AbsoluteTime, ImpossibleFieldsAreInvalid) {
  const PGtm good = dateTime(2001, 2, 3, 24);
  EXPECT_NE(tm2abstime(&good, 0), zev::kInvalidAbsoluteTime);
  for (const PGtm &bad :
       {dateTime(2001, 0, 1), dateTime(2001, 13, 1), dateTime(2001, 1, 0),
        dateTime(2001, 1, 32), dateTime(2001, 1, 1, 25), dateTime(2001, 1, 1, 24, 1),
        dateTime(2001, 1, 1, 24, 0, 1), dateTime(2001, 1, 1, 1, 60),
        dateTime(2001, 1, 1, 1, 1, 61)}) {
    EXPECT_EQ(tm2abstime(&bad, 0), 2147483646) << shown(bad);
  }
}

TEST(CurrentTime, StandsAtTheEpoch) {
  PGtm tm{};
  {
    const LocalZone zone("UTC");
    GetCurrentDateTime(&tm);
    EXPECT_EQ(shown(tm), "1970-01-01 00:00:00");
  }
  {
    const LocalZone zone("EST5");
    GetCurrentDateTime(&tm);
    EXPECT_EQ(shown(tm), "1969-12-31 19:00:00");
  }
  EXPECT_EQ(GetCurrentTransactionStartTime(), 0);
  EXPECT_EQ(GetCurrentTransactionStartTimestamp(), 0.0);
  double fsec = 1;
  GetCurrentTimeUsec(&tm, &fsec, nullptr);
  EXPECT_EQ(shown(tm), "2000-01-01 00:00:00");
  GetEpochTime(&tm);
  EXPECT_EQ(shown(tm), "1970-01-01 00:00:00");
  EXPECT_EQ(SetEpochTimestamp(), -946684800.0);
  const std::time_t now = std::time(nullptr);
  EXPECT_LE(GetCurrentAbsoluteTime() - now, 5);
}

TEST(SystemRecord, CountsFromZeroAnd1900) {
  PGtm tm = dateTime(2001, 2, 3, 4, 5, 6);
  tm.tm_wday = 6;
  tm.tm_yday = 33;
  tm.tm_gmtoff = 3600;
  struct tm system {};
  ConvertPGtmToSystm(&tm, &system);
  EXPECT_EQ(system.tm_year, 101);
  EXPECT_EQ(system.tm_mon, 1);
  EXPECT_EQ(system.tm_mday * 10000 + system.tm_hour * 100 + system.tm_min, 30405);
  EXPECT_EQ(system.tm_sec, 6);
  EXPECT_EQ(system.tm_wday * 100 + system.tm_yday, 633);
  EXPECT_EQ(system.tm_isdst, -1);
  EXPECT_EQ(system.tm_gmtoff, 3600);
}

}  // namespace
}  // namespace zevtest
