/// Time zones, beside the C library's.
#include "types/ocitimestamp/zone.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

#include "core/owned.h"
#include "datetime_fixture.h"

namespace zevtest {
namespace {

using Zone = zev::Malloced<pg_tz>;

Zone zoneOf(const std::string &name) {
  return Zone(pg_tzset(name.c_str()));
}

PGtm fieldsOf(const std::tm &system) {
  return dateTime(system.tm_year + 1900, system.tm_mon + 1, system.tm_mday,
                  system.tm_hour, system.tm_min, system.tm_sec);
}

std::tm systemAt(std::time_t time) {
  std::tm system{};
  localtime_r(&time, &system);
  return system;
}

/// A moment in a zone with its displacement, daylight flag and abbreviation.
std::string shownAt(const pg_tz &zone, std::time_t time) {
  PGtm tm{};
  pg_localtime(time, &zone, &tm);
  tm.tm_year += 1900;
  tm.tm_mon += 1;
  return shown(tm) + " " + std::to_string(tm.tm_gmtoff) + " " +
         std::to_string(tm.tm_isdst) + " " + tm.tm_zone + " " +
         std::to_string(tm.tm_wday) + " " + std::to_string(tm.tm_yday);
}

std::string systemShownAt(std::time_t time) {
  const std::tm system = systemAt(time);
  return shown(fieldsOf(system)) + " " + std::to_string(system.tm_gmtoff) + " " +
         std::to_string(system.tm_isdst) + " " + system.tm_zone + " " +
         std::to_string(system.tm_wday) + " " + std::to_string(system.tm_yday);
}

constexpr const char *kZones[] = {
    "Africa/Cairo",       "Africa/Casablanca",   "Africa/Johannesburg",
    "Africa/Lagos",       "Africa/Nairobi",      "America/Anchorage",
    "America/Bogota",     "America/Caracas",     "America/Chicago",
    "America/Denver",     "America/Halifax",     "America/Havana",
    "America/Lima",       "America/Los_Angeles", "America/Mexico_City",
    "America/New_York",   "America/Phoenix",     "America/Santiago",
    "America/Sao_Paulo",  "America/St_Johns",    "Antarctica/Troll",
    "Asia/Baghdad",       "Asia/Bangkok",        "Asia/Dhaka",
    "Asia/Hong_Kong",     "Asia/Jerusalem",      "Asia/Kabul",
    "Asia/Karachi",       "Asia/Kathmandu",      "Asia/Kolkata",
    "Asia/Pyongyang",     "Asia/Shanghai",       "Asia/Tehran",
    "Asia/Tokyo",         "Asia/Yangon",         "Atlantic/Azores",
    "Australia/Adelaide", "Australia/Eucla",     "Australia/Lord_Howe",
    "Australia/Sydney",   "Europe/Berlin",       "Europe/Dublin",
    "Europe/Istanbul",    "Europe/London",       "Europe/Moscow",
    "Europe/Paris",       "Pacific/Apia",        "Pacific/Auckland",
    "Pacific/Chatham",    "Pacific/Kiritimati"};
static_assert(std::size(kZones) == 50);

TEST(LocalTimeZone, IsTheSystemsInFiftyZones) {
  auto random = generator();
  // 1901-12-15 to 2038-01-17, so that no displacement leads over the edge.
  std::uniform_int_distribution<std::time_t> times(-2147299200, 2147299200);
  for (const char *name : kZones) {
    const LocalZone zone(name);
    int wrong = 0;
    for (int i = rounds(400, 20'000); i > 0 && wrong < 3; --i) {
      const std::time_t time = times(random);
      const std::tm system = systemAt(time);
      PGtm tm = fieldsOf(system);
      const sb4 west = DetermineLocalTimeZone(&tm);
      // A local time that comes twice may be the other one.
      const std::time_t found = time + system.tm_gmtoff + west;
      const std::tm again = systemAt(found);
      if (shown(fieldsOf(again)) != shown(fieldsOf(system)) || tm.tm_gmtoff != -west ||
          tm.tm_isdst != again.tm_isdst) {
        ++wrong;
        ADD_FAILURE() << name << ' ' << shown(fieldsOf(system)) << ": " << west;
      }
    }
  }
}

TEST(LocalTimeZone, IsUtcOutsideTheSystems32Bits) {
  const LocalZone zone("Europe/Paris");
  struct Row {
    sb4 year, month, day;
    bool known;
  };
  for (const Row &row :
       {Row{1850, 6, 1, false}, Row{2100, 6, 1, false}, Row{1901, 12, 13, false},
        Row{1901, 12, 14, true}, Row{2038, 1, 18, true}, Row{2038, 1, 19, false},
        Row{2039, 1, 1, false}, Row{1900, 12, 31, false}}) {
    PGtm tm = dateTime(row.year, row.month, row.day);
    EXPECT_EQ(DetermineLocalTimeZone(&tm) != 0, row.known) << shown(tm);
    if (!row.known) {
      EXPECT_EQ(tm.tm_isdst * 100 + tm.tm_gmtoff, 0);
    }
  }
}

TEST(LocalTimeZone, WithoutAVariableIsTheSystemsDefault) {
  const LocalZone zone("");
  PGtm tm = dateTime(2001, 2, 3);
  EXPECT_EQ(DetermineLocalTimeZone(&tm), 0);
}

TEST(LocalTimeZone, TheSecondBeforeTheEpochIsEstimated) {
  const LocalZone zone("CET-1");
  PGtm tm = dateTime(1970, 1, 1, 0, 59, 59);  // the one moment that mktime gives as -1
  EXPECT_EQ(DetermineLocalTimeZone(&tm), -3600);
  EXPECT_EQ(tm.tm_isdst, 0);
}

TEST(ZoneString, ReadsWhatTheSystemReads) {
  for (const char *text :
       {"EST5", "EST5EDT,M3.2.0,M11.1.0", "CET-1CEST,M3.5.0,M10.5.0/3",
        "NZST-12NZDT,M9.5.0,M4.1.0/3", "IST-5:30", "NST3:30NDT,M3.2.0/0:01,M11.1.0/0:01",
        "AAA+1:02:03BBB-2:03:04,J60/3,J300", "AAA0BBB,59,300/4",
        "ABC1DEF2,M1.1.1,M12.5.6"}) {
    const LocalZone local(text);
    const Zone zone = zoneOf(text);
    ASSERT_TRUE(zone) << text;
    auto random = generator();
    std::uniform_int_distribution<std::time_t> times(86400 * 366, 2145916799);
    for (int i = 0; i < 2000; ++i) {
      const std::time_t time = times(random);
      ASSERT_EQ(shownAt(*zone, time), systemShownAt(time)) << text << ' ' << time;
    }
  }
}

TEST(ZoneString, RandomRulesAreTheSystems) {
  auto random = generator();
  const auto pick = [&](int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
  };
  const auto rule = [&](int month) {
    const std::string time =
        "/" + std::to_string(pick(0, 23)) + ":" + std::to_string(pick(0, 59));
    switch (pick(0, 2)) {
      case 0:
        return "J" + std::to_string(30 * month + pick(0, 20)) + time;
      case 1:
        return std::to_string(30 * month + pick(0, 20)) + time;
      default:
        return "M" + std::to_string(month) + "." + std::to_string(pick(1, 5)) + "." +
               std::to_string(pick(0, 6)) + time;
    }
  };
  for (int i = rounds(100, 5000); i > 0; --i) {
    const bool isSouthern = pick(0, 1);
    const std::string first = rule(pick(2, 5)), second = rule(pick(8, 10));
    const std::string text = "STD" + std::to_string(pick(-12, 14)) + ":" +
                             std::to_string(pick(0, 59)) + "DST," +
                             (isSouthern ? second + "," + first : first + "," + second);
    const LocalZone local(text.c_str());
    const Zone zone = zoneOf(text);
    ASSERT_TRUE(zone) << text;
    for (int j = 0; j < 50; ++j) {
      const std::time_t time =
          std::uniform_int_distribution<std::time_t>(86400 * 366, 2145916799)(random);
      ASSERT_EQ(shownAt(*zone, time), systemShownAt(time)) << text << ' ' << time;
    }
  }
}

TEST(ZoneString, WithoutRulesDaylightTimeIsFromAprilToOctober) {
  const Zone plain = zoneOf("EST5EDT"), ruled = zoneOf("EST5EDT,M4.1.0,M10.5.0");
  ASSERT_TRUE(plain && ruled);
  EXPECT_EQ(plain->state.timecnt, 136);
  for (std::time_t time = 0; time < 2147483647; time += 1'234'567) {
    ASSERT_EQ(shownAt(*plain, time), shownAt(*ruled, time));
  }
  EXPECT_EQ(shownAt(*plain, 986108400).substr(0, 29), "2001-04-01 03:00:00 -14400 1 ");
}

TEST(ZoneString, BadTextIsNoZone) {
  for (const char *text : {"",
                           "AB5",
                           "EST",
                           "EST5ED",
                           "Europe/Paris",
                           "EST168",
                           "EST1:60",
                           "EST1:1:61",
                           "EST5EDT,M3.2.0",
                           "EST5EDT,M13.1.0,M10.1.0",
                           "EST5EDT,M0.1.0,M10.1.0",
                           "EST5EDT,M3.6.0,M10.1.0",
                           "EST5EDT,M3.0.0,M10.1.0",
                           "EST5EDT,M3.1.7,M10.1.0",
                           "EST5EDT,J0,J100",
                           "EST5EDT,J366,J100",
                           "EST5EDT,366,100",
                           "EST5EDT,M3.2.0,M11.1.0x",
                           "EST5EDT,M3.2.0/168,M11.1.0",
                           "EST5EDT,,",
                           "EST5EDT4x",
                           ":EST5",
                           "EST-",
                           "5EST"}) {
    EXPECT_FALSE(zoneOf(text)) << text;
  }
  EXPECT_TRUE(zoneOf("EST167"));
  EXPECT_TRUE(zoneOf("est5"));
  EXPECT_FALSE(zoneOf("EST5" + std::string(252, '0')));
  EXPECT_FALSE(Zone(pg_tzset(nullptr)));
}

TEST(ZoneString, AbbreviationsHaveFiveHundredAndTwelveCharacters) {
  auto state = std::make_unique<zev::ZoneState>();
  const std::string half(254, 'A');
  EXPECT_EQ(tzparse((half + "5" + half + "x4").c_str(), state.get(), 0), 0);
  EXPECT_EQ(tzparse((half + "A5" + half + "x4").c_str(), state.get(), 0), 0);
  EXPECT_EQ(tzparse((half + "AA5" + half + "x4").c_str(), state.get(), 0), -1);
  const std::string whole(600, 'B');
  EXPECT_EQ(tzparse(whole.c_str(), state.get(), 1), 0);
  EXPECT_EQ(std::strlen(state->chars), 511u);
  EXPECT_EQ(gmtload(state.get()), 0);
  EXPECT_STREQ(state->chars, "GMT");
}

TEST(ZoneString, NamesAreKeptInUpperCase) {
  const Zone zone = zoneOf("cet-1cest");
  ASSERT_TRUE(zone);
  EXPECT_STREQ(zone->name, "CET-1CEST");
}

TEST(ZoneOffset, IsThatOfTheLocalZone) {
  auto random = generator();
  const char *text = "CET-1CEST,M3.5.0,M10.5.0/3";
  const LocalZone local(text);
  const Zone zone = zoneOf(text);
  std::uniform_int_distribution<std::time_t> times(86400 * 366, 2145916799);
  for (int i = 0; i < 5000; ++i) {
    const std::time_t time = times(random);
    const std::tm system = systemAt(time);
    PGtm tm = fieldsOf(system);
    const sb4 west = DetermineTimeZoneOffset(&tm, zone.get());
    // A local time that comes twice is that of standard time.
    const bool comesTwice =
        shown(fieldsOf(systemAt(time + 3600 * (system.tm_isdst ? 1 : -1)))) == shown(tm);
    ASSERT_EQ(west, comesTwice ? -3600 : -system.tm_gmtoff) << shown(tm);
    ASSERT_EQ(tm.tm_isdst, comesTwice ? 0 : system.tm_isdst);
  }
}

TEST(ZoneOffset, TimesThatComeTwiceOrNeverAreStandardTime) {
  const Zone zone = zoneOf("CET-1CEST,M3.5.0,M10.5.0/3");
  PGtm skipped = dateTime(2001, 3, 25, 2, 30), twice = dateTime(2001, 10, 28, 2, 30);
  for (PGtm *tm : {&skipped, &twice}) {
    EXPECT_EQ(DetermineTimeZoneOffset(tm, zone.get()), -3600) << shown(*tm);
    EXPECT_EQ(tm->tm_isdst, 0);
  }
  PGtm far = dateTime(5874898, 1, 1);
  EXPECT_EQ(DetermineTimeZoneOffset(&far, zone.get()), 0);
  PGtm fixed = dateTime(2001, 1, 1);
  EXPECT_EQ(DetermineTimeZoneOffset(&fixed, zoneOf("IST-5:30").get()), -19800);
}

TEST(ZoneBoundary, TellsBothSides) {
  const Zone zone = zoneOf("CET-1CEST,M3.5.0,M10.5.0/3");
  std::int64_t before = 0, boundary = 0, after = 0;
  sb4 beforeIsDst = 7, afterIsDst = 7;
  ASSERT_EQ(pg_next_dst_boundary(981173106, &before, &beforeIsDst, &boundary, &after,
                                 &afterIsDst, zone.get()),
            1);
  EXPECT_EQ(boundary, 985482000);  // 2001-03-25 01:00:00 UTC
  EXPECT_EQ(before, 3600);
  EXPECT_EQ(after, 7200);
  EXPECT_EQ(beforeIsDst * 10 + afterIsDst, 1);
  EXPECT_EQ(pg_next_dst_boundary(4000000000, &before, &beforeIsDst, &boundary, &after,
                                 &afterIsDst, zone.get()),
            0);
  EXPECT_EQ(pg_next_dst_boundary(0, &before, &beforeIsDst, &boundary, &after, &afterIsDst,
                                 nullptr),
            -1);
}

TEST(Moments, AreTheCalendarsAtEveryEnd) {
  PGtm tm{};
  pg_gmtime(-1, &tm);
  EXPECT_EQ(tm.tm_year * 10000 + tm.tm_mon * 100 + tm.tm_mday, 691131);
  EXPECT_EQ(tm.tm_hour * 10000 + tm.tm_min * 100 + tm.tm_sec, 235959);
  EXPECT_EQ(tm.tm_wday, 3);
  EXPECT_EQ(tm.tm_yday, 364);
  EXPECT_STREQ(tm.tm_zone, "GMT");
  for (const std::int64_t end : {INT64_MAX, INT64_MIN}) {
    pg_gmtime(end, &tm);
    EXPECT_TRUE(tm.tm_mon >= 0 && tm.tm_mon < 12 && tm.tm_mday >= 1 && tm.tm_mday <= 31);
  }
  auto random = generator();
  std::uniform_int_distribution<std::time_t> times(-60'000'000'000, 250'000'000'000);
  for (int i = 0; i < 100'000; ++i) {
    const std::time_t time = times(random);
    std::tm system{};
    gmtime_r(&time, &system);
    pg_gmtime(time, &tm);
    ASSERT_TRUE(tm.tm_year == system.tm_year && tm.tm_mon == system.tm_mon &&
                tm.tm_mday == system.tm_mday && tm.tm_hour == system.tm_hour &&
                tm.tm_min == system.tm_min && tm.tm_sec == system.tm_sec &&
                tm.tm_wday == system.tm_wday && tm.tm_yday == system.tm_yday)
        << time;
  }
}

TEST(Moments, LeapSecondsShowAsSixty) {
  zev::ZoneState state{};
  state.leapcnt = 2;
  state.lsis[0] = {78796800, 1};  // behind 1972-06-30 23:59:59
  state.lsis[1] = {94694401, 2};  // behind 1972-12-31 23:59:59
  PGtm tm{};
  timesub(78796800, 0, &state, &tm);
  EXPECT_EQ(tm.tm_mon * 100 + tm.tm_mday, 530);
  EXPECT_EQ(tm.tm_min * 100 + tm.tm_sec, 5960);
  timesub(78796801, 0, &state, &tm);
  EXPECT_EQ(tm.tm_mon * 100 + tm.tm_mday, 601);
  EXPECT_EQ(tm.tm_sec, 0);
  timesub(94694403, 3600, &state, &tm);
  EXPECT_EQ(tm.tm_hour * 100 + tm.tm_sec, 101);
}

TEST(ZoneFile, NoneIsOpened) {
  auto state = std::make_unique<zev::ZoneState>();
  char name[256];
  EXPECT_EQ(pg_open_tzfile("Europe/Paris", name), -1);
  EXPECT_EQ(tzload("Europe/Paris", name, state.get()), -1);
}

/// Version 1 data with `times` changes of `types` types.
std::string zoneData(int times, int types, const std::string &chars) {
  const auto number = [](sb4 value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
      bytes += static_cast<char>(static_cast<ub4>(value) >> shift);
    }
    return bytes;
  };
  std::string data = "TZif" + std::string(16, '\0');
  data += number(0) + number(0) + number(0) + number(times) + number(types) +
          number(static_cast<sb4>(chars.size()));
  for (int i = 0; i < times; ++i) data += number(i * 1000 - 500);
  for (int i = 0; i < times; ++i) data += static_cast<char>(i % types);
  for (int i = 0; i < types; ++i) data += number(i * -3600) + std::string{'\0', '\0'};
  return data + chars;
}

bool reads(const std::string &data, zev::ZoneState &state) {
  const std::vector<unsigned char> exact(data.begin(), data.end());
  return zev::readZoneData(exact.data(), exact.size(), state);
}

TEST(ZoneFile, DataIsReadWithinItsLimits) {
  auto state = std::make_unique<zev::ZoneState>();
  const std::string chars("ABC\0", 4);
  ASSERT_TRUE(reads(zoneData(370, 256, chars), *state));
  EXPECT_EQ(state->timecnt * 1000 + state->typecnt, 370256);
  EXPECT_EQ(state->ats[0], -500);
  EXPECT_EQ(state->types[300], 300 - 256);
  EXPECT_EQ(state->ttis[2].gmtoff, -7200);
  EXPECT_STREQ(state->chars, "ABC");
  EXPECT_FALSE(reads(zoneData(371, 1, chars), *state));
  EXPECT_FALSE(reads(zoneData(1, 257, chars), *state));
  EXPECT_FALSE(reads(zoneData(0, 0, chars), *state));
  EXPECT_FALSE(reads(zoneData(1, 1, std::string(51, 'x')), *state));
  const std::string good = zoneData(2, 2, chars);
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_FALSE(reads(good.substr(0, size), *state)) << size;
  }
  std::string bad = good;
  bad[44 + 8] = 2;  // the type of the first change
  EXPECT_FALSE(reads(bad, *state));
  bad = good;
  bad[44 + 10 + 4] = 2;  // the daylight flag of the first type
  EXPECT_FALSE(reads(bad, *state));
}

}  // namespace
}  // namespace zevtest
