/// The OCIDate functions, by their published interface.
#include <ociap.h>

#include <cstring>
#include <ctime>
#include <memory>

#include "datetime_fixture.h"

namespace zevtest {
namespace {

OCIDate date(sb2 year, ub1 month, ub1 day, ub1 hour = 0, ub1 minute = 0, ub1 second = 0) {
  OCIDate made{};
  OCIDateSetDate(&made, year, month, day);
  OCIDateSetTime(&made, hour, minute, second);
  return made;
}

std::string shown(const OCIDate &d) {
  char text[64];
  std::snprintf(text, sizeof text, "%d-%02d-%02d %02d:%02d:%02d", d.OCIDateYYYY,
                d.OCIDateMM, d.OCIDateDD, d.OCIDateTime.OCITimeHH,
                d.OCIDateTime.OCITimeMI, d.OCIDateTime.OCITimeSS);
  return text;
}

const OraText *oraText(const char *text) {
  return reinterpret_cast<const OraText *>(text);
}

class OciDate : public testing::Test {
 protected:
  OCIError *err() { return records_.errhp; }
  void expectMissing(sword status, const char *number) {
    EXPECT_EQ(status, OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 21560);
    EXPECT_TRUE(records_.lastMessage.ends_with(std::string("argument ") + number))
        << records_.lastMessage;
  }
  sword fromText(const std::string &text, const std::string &format, OCIDate &out) {
    // Exactly as long as they say.
    const std::unique_ptr<char[]> chars(new char[text.size()]);
    std::copy(text.begin(), text.end(), chars.get());
    const std::unique_ptr<char[]> model(new char[format.size()]);
    std::copy(format.begin(), format.end(), model.get());
    return OCIDateFromText(err(), oraText(chars.get()), static_cast<ub4>(text.size()),
                           oraText(model.get()), static_cast<ub1>(format.size()), nullptr,
                           0, &out);
  }
  std::string toText(const OCIDate &d, const std::string &format, ub4 size = 200) {
    OraText text[256];
    const sword status =
        OCIDateToText(err(), &d, oraText(format.c_str()), static_cast<ub1>(format.size()),
                      nullptr, 0, &size, text);
    return status == OCI_SUCCESS ? reinterpret_cast<char *>(text)
                                 : "record " + std::to_string(records_.takeRecord());
  }
  uword check(const OCIDate &d) {
    uword found = 99;
    EXPECT_EQ(OCIDateCheck(err(), &d, &found), OCI_SUCCESS);
    return found;
  }
  /// "<", "=" or ">"; "?" for a failure without a record.
  char compare(const OCIDate &a, const OCIDate &b) {
    sword result = 7;
    if (OCIDateCompare(err(), &a, &b, &result) != OCI_SUCCESS) {
      EXPECT_EQ(records_.takeRecord(), 0);
      return '?';
    }
    return "<=>"[result + 1];
  }

  LocalZone zone_{"UTC"};
  Environment records_;
};

TEST_F(OciDate, DaysAreAddedAndTheTimeIsDropped) {
  OCIDate out{};
  const OCIDate from = date(2001, 2, 28, 23);
  EXPECT_EQ(OCIDateAddDays(err(), &from, 1, &out), OCI_SUCCESS);
  EXPECT_EQ(shown(out), "2001-03-01 00:00:00");
  EXPECT_EQ(OCIDateAddDays(err(), &from, -60, &out), OCI_SUCCESS);
  EXPECT_EQ(shown(out), "2000-12-30 00:00:00");
  OCIDateAddDays(err(), &from, 2147483647, &out);
  OCIDateAddDays(err(), &from, -2147483647, &out);
  expectMissing(OCIDateAddDays(err(), nullptr, 1, &out), "2");
  expectMissing(OCIDateAddDays(err(), &from, 1, nullptr), "4");
  EXPECT_EQ(OCIDateAddDays(nullptr, &from, 1, &out), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDateAddDays(static_cast<OCIError *>(static_cast<void *>(records_.env)),
                           &from, 1, &out),
            OCI_INVALID_HANDLE);
}

TEST_F(OciDate, DaysAreAddedAsTheCalendarHasThem) {
  auto random = generator();
  std::uniform_int_distribution<int> days(-700'000, 2'900'000);
  for (int i = 0; i < 20'000; ++i) {
    using namespace std::chrono;
    const int a = days(random), b = days(random);
    const auto ymdOf = [](int day) {
      return year_month_day(sys_days(std::chrono::days(day)));
    };
    const auto dateOf = [](const year_month_day &d) {
      return date(static_cast<sb2>(static_cast<int>(d.year())),
                  static_cast<ub1>(static_cast<unsigned>(d.month())),
                  static_cast<ub1>(static_cast<unsigned>(d.day())));
    };
    const OCIDate from = dateOf(ymdOf(a)), to = dateOf(ymdOf(b));
    OCIDate out{};
    sb4 between = 0;
    ASSERT_EQ(OCIDateAddDays(err(), &from, b - a, &out), OCI_SUCCESS);
    ASSERT_EQ(shown(out), shown(to));
    ASSERT_EQ(OCIDateDaysBetween(err(), &to, &from, &between), OCI_SUCCESS);
    ASSERT_EQ(between, b - a);
  }
}

TEST_F(OciDate, MonthsAreAddedAndTheLastDayStaysTheLast) {
  const struct {
    OCIDate from;
    sb4 months;
    const char *expected;
  } rows[] = {{date(2001, 1, 31, 4, 5, 6), 1, "2001-02-28 04:05:06"},
              {date(2000, 2, 29), 1, "2000-03-31 00:00:00"},
              {date(2001, 1, 15), -2, "2000-11-15 00:00:00"},
              {date(2001, 1, 30), 1, "2001-02-30 00:00:00"},
              {date(2001, 12, 1), 1, "2002-01-01 00:00:00"},
              {date(2001, 12, 1), 12, "2002-12-01 00:00:00"},
              {date(2001, 1, 1), -1, "2000-12-01 00:00:00"},
              {date(2001, 1, 1), -13, "1999-12-01 00:00:00"},
              {date(1999, 2, 28), 12, "2000-02-29 00:00:00"}};
  for (const auto &[from, months, expected] : rows) {
    OCIDate out{};
    EXPECT_EQ(OCIDateAddMonths(err(), &from, months, &out), OCI_SUCCESS);
    EXPECT_EQ(shown(out), expected);
  }
  OCIDate out{};
  OCIDateAddMonths(err(), &rows[0].from, 2147483647, &out);
  expectMissing(OCIDateAddMonths(err(), nullptr, 1, &out), "2");
  expectMissing(OCIDateAddMonths(err(), &out, 1, nullptr), "4");
}

TEST_F(OciDate, IsAssignedWithoutItsFiller) {
  const OCIDate from = date(2001, 2, 3, 4, 5, 6);
  OCIDate to;
  std::memset(&to, 0xee, sizeof to);
  EXPECT_EQ(OCIDateAssign(err(), &from, &to), OCI_SUCCESS);
  EXPECT_EQ(shown(to), "2001-02-03 04:05:06");
  EXPECT_EQ(reinterpret_cast<const ub1 *>(&to)[7], 0xee);
  expectMissing(OCIDateAssign(err(), nullptr, &to), "2");
  expectMissing(OCIDateAssign(err(), &from, nullptr), "3");
}

TEST_F(OciDate, IsCheckedBitByBit) {
  const struct {
    OCIDate value;
    uword expected;
  } rows[] = {{date(2001, 2, 3, 4, 5, 6), 0},
              {date(2001, 2, 29), 0x1},
              {date(2000, 2, 29), 0},
              {date(2001, 2, 0), 0x3},
              {date(2001, 0, 31), 0xc},
              {date(2001, 0, 32), 0xd},
              {date(2001, 13, 1), 0x4},
              {date(10000, 1, 1), 0x10},
              {date(-4713, 1, 1), 0x30},
              {date(9999, 12, 31, 23, 59, 59), 0},
              {date(-4712, 1, 1), 0},
              {date(2001, 1, 1, 24), 0x40},
              {date(2001, 1, 1, 0, 60), 0x100},
              {date(2001, 1, 1, 0, 0, 60), 0x400},
              {date(1582, 10, 10), 0x1000},
              {date(1582, 10, 5), 0x1000},
              {date(1582, 10, 14, 23, 59, 59), 0x1000},
              {date(1582, 10, 4, 23, 59, 59), 0},
              {date(1582, 10, 15), 0},
              {date(0, 1, 1), 0x2000},
              {date(0, 0, 0, 25, 61, 61), 0x254f}};
  for (const auto &[value, expected] : rows)
    EXPECT_EQ(check(value), expected) << shown(value);
  uword found = 0;
  const OCIDate good = date(2001, 1, 1);
  expectMissing(OCIDateCheck(err(), nullptr, &found), "2");
  expectMissing(OCIDateCheck(err(), &good, nullptr), "3");
}

TEST_F(OciDate, ComparesWithMonthsMovedDown) {
  EXPECT_EQ(compare(date(2001, 2, 3), date(2001, 2, 3)), '=');
  EXPECT_EQ(compare(date(2001, 2, 3, 0, 0, 1), date(2001, 2, 3)), '>');
  EXPECT_EQ(compare(date(2001, 2, 3), date(2001, 2, 4)), '<');
  EXPECT_EQ(compare(date(1999, 12, 1), date(2001, 1, 1)), '<');
  EXPECT_EQ(compare(date(2001, 3, 31), date(2001, 4, 1)), '>');
  EXPECT_EQ(compare(date(2001, 3, 30), date(2001, 4, 1)), '>');
  EXPECT_EQ(compare(date(2000, 12, 31), date(2001, 1, 1)), '=');
  EXPECT_EQ(compare(date(-4000, 1, 1), date(2001, 1, 1)), '?') << "beyond the calendar";
  const OCIDate d = date(2001, 1, 1);
  sword result = 0;
  expectMissing(OCIDateCompare(err(), nullptr, &d, &result), "2");
  expectMissing(OCIDateCompare(err(), &d, nullptr, &result), "3");
  expectMissing(OCIDateCompare(err(), &d, &d, nullptr), "4");
}

TEST_F(OciDate, DaysBetweenIgnoreTheTime) {
  const OCIDate late = date(2001, 2, 3, 23, 59, 59), early = date(2001, 2, 4);
  sb4 days = 0;
  EXPECT_EQ(OCIDateDaysBetween(err(), &early, &late, &days), OCI_SUCCESS);
  EXPECT_EQ(days, 1);
  expectMissing(OCIDateDaysBetween(err(), nullptr, &late, &days), "2");
  expectMissing(OCIDateDaysBetween(err(), &late, nullptr, &days), "3");
  expectMissing(OCIDateDaysBetween(err(), &late, &late, nullptr), "4");
}

TEST_F(OciDate, TextIsReadByAFormat) {
  OCIDate out{};
  EXPECT_EQ(fromText("03-FEB-2001 04:05:06", "DD-MON-YYYY HH24:MI:SS", out), OCI_SUCCESS);
  EXPECT_EQ(shown(out), "2001-02-03 04:05:06");
  EXPECT_EQ(fromText("03-feb-2001", "DD-MON-YYYY", out), OCI_SUCCESS);
  EXPECT_EQ(shown(out), "2001-02-03 00:00:00");
  EXPECT_EQ(fromText("2001", "YYYY", out), OCI_SUCCESS);
  EXPECT_EQ(shown(out), "2001-02-01 00:00:00") << "February, where no month is read";
  const std::time_t now = std::time(nullptr);
  std::tm system{};
  localtime_r(&now, &system);
  EXPECT_EQ(fromText("05", "MM", out), OCI_SUCCESS);
  EXPECT_LE(std::abs(out.OCIDateYYYY - (system.tm_year + 1900)), 1) << "the present year";
  EXPECT_EQ(fromText("31-APR-2001", "DD-MON-YYYY", out), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 1839);
  EXPECT_EQ(fromText("29-FEB-2001", "DD-MON-YYYY", out), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 1839);
  EXPECT_EQ(fromText("13", "MM", out), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 1843);
  EXPECT_EQ(fromText("01", "RR", out), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 30475);
  EXPECT_EQ(fromText("05:04", "HH24:MI", out), OCI_SUCCESS);
  EXPECT_EQ(fromText(std::string(1000, ' ') + "2001", "YYYY", out), OCI_SUCCESS);
  EXPECT_EQ(fromText("2001", "YYYY" + std::string(251, ' '), out), OCI_SUCCESS);
  expectMissing(OCIDateFromText(err(), nullptr, 0, oraText("DD"), 2, nullptr, 0, &out),
                "2");
  expectMissing(OCIDateFromText(err(), oraText("1"), 1, nullptr, 0, nullptr, 0, &out),
                "5");
  expectMissing(
      OCIDateFromText(err(), oraText("1"), 1, oraText("DD"), 2, nullptr, 0, nullptr),
      "7");
}

TEST_F(OciDate, TextIsWrittenByAFormat) {
  const OCIDate d = date(2001, 2, 3, 4, 5, 6);
  EXPECT_EQ(toText(d, "DD-MON-YYYY HH24:MI:SS"), "03-FEB-2001 04:05:06");
  EXPECT_EQ(toText(d, "DAY DDD D"), "SATURDAY  034 7");
  EXPECT_EQ(toText(d, "DL"), "Saturday, February 03, 2001");
  EXPECT_EQ(toText(d, "FF"), "record 1822");
  EXPECT_EQ(toText(d, "RR"), "record 30475");
  EXPECT_EQ(toText(d, "YYYY-MM-DD", 5), "2001");
  EXPECT_EQ(toText(d, "YYYY-MM-DD", 1), "");
  EXPECT_EQ(toText(date(2001, 2, 30), "YYYY-MM-DD DY"), "2001-03-02 FRI")
      << "days lead on";
  EXPECT_EQ(toText(date(-4712, 1, 1), "YYYY BC"), "4713 BC");
  ub4 size = 0;
  OraText text[8] = {'x'};
  EXPECT_EQ(OCIDateToText(err(), &d, oraText("DD"), 2, nullptr, 0, &size, text),
            OCI_SUCCESS);
  EXPECT_EQ(text[0], 'x') << "no room at all";
  expectMissing(OCIDateToText(err(), nullptr, oraText("DD"), 2, nullptr, 0, &size, text),
                "2");
  expectMissing(OCIDateToText(err(), &d, nullptr, 0, nullptr, 0, &size, text), "3");
  expectMissing(OCIDateToText(err(), &d, oraText("DD"), 2, nullptr, 0, nullptr, text),
                "6");
  expectMissing(OCIDateToText(err(), &d, oraText("DD"), 2, nullptr, 0, &size, nullptr),
                "7");
}

TEST_F(OciDate, RandomDatesThroughTextAndBack) {
  auto random = generator();
  const auto pick = [&](int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
  };
  for (int i = rounds(20'000, 1'000'000); i > 0; --i) {
    const OCIDate from =
        date(static_cast<sb2>(pick(1, 9999)), static_cast<ub1>(pick(1, 12)),
             static_cast<ub1>(pick(1, 28)), static_cast<ub1>(pick(0, 23)),
             static_cast<ub1>(pick(0, 59)), static_cast<ub1>(pick(0, 59)));
    const std::string format =
        i % 2 ? "DD-MON-YYYY HH24:MI:SS" : "YYYY/MM/DD HH:MI:SS AM";
    OCIDate back{};
    const std::string text = toText(from, format);
    ASSERT_EQ(fromText(text, format, back), OCI_SUCCESS) << text;
    ASSERT_EQ(shown(back), shown(from)) << text;
  }
}

TEST_F(OciDate, LastDayOfItsMonth) {
  OCIDate out{};
  const OCIDate february = date(2000, 2, 3, 4, 5, 6), none = date(2000, 13, 3);
  EXPECT_EQ(OCIDateLastDay(err(), &february, &out), OCI_SUCCESS);
  EXPECT_EQ(shown(out), "2000-02-29 04:05:06");
  EXPECT_EQ(OCIDateLastDay(err(), &none, &out), OCI_SUCCESS);
  expectMissing(OCIDateLastDay(err(), nullptr, &out), "2");
  expectMissing(OCIDateLastDay(err(), &out, nullptr), "3");
}

TEST_F(OciDate, NextDayOfThatName) {
  const OCIDate monday = date(2001, 2, 5, 4, 5, 6);
  const struct {
    const char *name;
    const char *expected;
  } rows[] = {{"MONDAY", "2001-02-12 04:05:06"},    {"tue", "2001-02-06 04:05:06"},
              {"Wednesday", "2001-02-07 04:05:06"}, {"THUxxx", "2001-02-08 04:05:06"},
              {"fri", "2001-02-09 04:05:06"},       {"sat", "2001-02-10 04:05:06"},
              {"SUN", "2001-02-11 04:05:06"}};
  OCIDate out{};
  for (const auto &[name, expected] : rows) {
    EXPECT_EQ(OCIDateNextDay(err(), &monday, oraText(name),
                             static_cast<ub4>(std::strlen(name)), &out),
              OCI_SUCCESS);
    EXPECT_EQ(shown(out), expected) << name;
  }
  for (const char *name : {"MO", "", "xyz"}) {
    EXPECT_EQ(OCIDateNextDay(err(), &monday, oraText(name),
                             static_cast<ub4>(std::strlen(name)), &out),
              OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 1846) << name;
  }
  const OCIDate late = date(2001, 2, 5, 24);
  OCIDateNextDay(err(), &late, oraText("WED"), 3, &out);
  EXPECT_EQ(shown(out).substr(0, 10), "2001-02-06") << "counted from the day behind";
  expectMissing(OCIDateNextDay(err(), nullptr, oraText("MON"), 3, &out), "2");
  expectMissing(OCIDateNextDay(err(), &monday, nullptr, 3, &out), "3");
  expectMissing(OCIDateNextDay(err(), &monday, oraText("MON"), 3, nullptr), "5");
}

TEST_F(OciDate, SysDateIsNowInLocalTime) {
  const LocalZone zone("XYZ-3:30");
  const std::time_t before = std::time(nullptr);
  OCIDate out{};
  EXPECT_EQ(OCIDateSysDate(err(), &out), OCI_SUCCESS);
  const std::time_t after = std::time(nullptr);
  const sb8 found =
      daysSinceEpoch(out.OCIDateYYYY, out.OCIDateMM, out.OCIDateDD) * 86400 +
      out.OCIDateTime.OCITimeHH * 3600 + out.OCIDateTime.OCITimeMI * 60 +
      out.OCIDateTime.OCITimeSS - 12600;
  EXPECT_GE(found, before);
  EXPECT_LE(found, after);
  expectMissing(OCIDateSysDate(err(), nullptr), "2");
  EXPECT_EQ(OCIDateZoneToZone(err(), &out, nullptr, 0, nullptr, 0, &out), OCI_ERROR);
}

}  // namespace
}  // namespace zevtest
