/// Dates, times and intervals as text, in every style.
#include "types/ocitimestamp/encode_datetime.h"

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <ostream>

#include "datetime_fixture.h"

namespace zevtest {
namespace {

struct DateRow {
  const char *name;
  PGtm tm;
  double fsec;
  std::optional<sb4> tz;
  const char *zone;
  const char *styles[5];  ///< 0 (a Unix date) to 4
};

void PrintTo(const DateRow &row, std::ostream *out) {
  *out << row.name;
}

PGtm known(PGtm tm, sb4 isdst = 0) {
  tm.tm_isdst = isdst;
  return tm;
}

const PGtm kPlain = dateTime(2001, 2, 3, 4, 5, 6);

// clang-format off
const DateRow kDates[] = {
    {"Plain", kPlain, 0, {}, nullptr,
     {"Sat Feb 03 04:05:06 2001", "2001-02-03 04:05:06", "02/03/2001 04:05:06", "03.02.2001 04:05:06", "03-FEB-01 04:05:06"}},
    {"FractionOrCount", kPlain, 0.25, {}, nullptr,
     {"Sat Feb 03 04:05:06.25 2001", "2001-02-03 04:05:6.", "02/03/2001 04:05:06.25", "03.02.2001 04:05:06.25", "03-FEB-01 04:05:06.25"}},
    {"LongFraction", kPlain, 0.123456, {}, nullptr,
     {"Sat Feb 03 04:05:06.123456 2001", "2001-02-03 04:05:6.", "02/03/2001 04:05:06.123456", "03.02.2001 04:05:06.123456", "03-FEB-01 04:05:06.123456"}},
    {"FirstYearBeforeChrist", dateTime(0, 1, 1), 0, {}, nullptr,
     {"Sat Jan 01 00:00:00 0001 BC", "0001-01-01 00:00:00 BC", "01/01/0001 00:00:00 BC", "01.01.0001 00:00:00 BC", "01-JAN-01 00:00:00"}},
    {"FractionsBeforeChristFallAway", dateTime(-1, 1, 1), 0.5, {}, nullptr,
     {"Fri Jan 01 00:00:00 0002 BC", "0002-01-01 00:00:00 BC", "01/01/0002 00:00:00 BC", "01.01.0002 00:00:00 BC", "01-JAN-02 00:00:00"}},
    {"ZoneByItsDisplacement", known(kPlain), 0, 19800, nullptr,
     {"Sat Feb 03 04:05:06 2001 +05:30", "2001-02-03 04:05:06+05:30", "02/03/2001 04:05:06+05:30", "03.02.2001 04:05:06+05:30", "03-FEB-01 04:05:06"}},
    {"ZoneByItsName", known(kPlain), 0, -3600, "CETANDMUCHMORE",
     {"Sat Feb 03 04:05:06 2001 CETANDMUCH", "2001-02-03 04:05:06-01", "02/03/2001 04:05:06 CETANDMUCH", "03.02.2001 04:05:06 CETANDMUCH", "03-FEB-01 04:05:06"}},
    {"UnknownZone", known(kPlain, -1), 0, 19800, "CET",
     {"Sat Feb 03 04:05:06 2001", "2001-02-03 04:05:06", "02/03/2001 04:05:06", "03.02.2001 04:05:06", "03-FEB-01 04:05:06"}},
    {"ZoneBeforeChrist", known(dateTime(0, 12, 31, 23, 59, 59)), 0, 0, nullptr,
     {"Sun Dec 31 23:59:59 0001 -00 BC", "0001-12-31 23:59:59-00 BC", "12/31/0001 23:59:59-00 BC", "31.12.0001 23:59:59-00 BC", "31-DEC-01 23:59:59"}},
};
// clang-format on

class DateText : public testing::TestWithParam<DateRow> {};

TEST_P(DateText, InEveryStyle) {
  const DateRow &row = GetParam();
  for (sb4 style = 0; style < 5; ++style) {
    char text[zev::kLongestDateTime];
    PGtm tm = row.tm;
    const sb4 tz = row.tz.value_or(0);
    EXPECT_EQ(EncodeDateTime(&tm, row.tz ? &tz : nullptr, row.zone ? &row.zone : nullptr,
                             style, text, row.fsec),
              1);
    EXPECT_STREQ(text, row.styles[style]) << style;
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, DateText, testing::ValuesIn(kDates),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(DateTextOf, CountsAreTheDigitsBehindThePoint) {
  const struct {
    double count;
    const char *text;
  } rows[] = {{123456, ":6.123456"}, {500000000, ":6.50"}, {5000, ":6.50"}, {7, ":6.7"},
              {10, ":6.10"},         {0.25, ":6."},        {0.75, ":6.1"}};
  for (const auto &[count, expected] : rows) {
    char text[zev::kLongestDateTime];
    PGtm tm = kPlain;
    EncodeDateTime(&tm, nullptr, nullptr, 1, text, count);
    EXPECT_EQ(std::string(text).substr(16), expected);
  }
}

/// Style 1 by the C library: a count's digits follow the seconds, without their last
/// zeros but for two.
std::string printedBySystem(const PGtm &tm, double count, const sb4 *tz) {
  const bool isBc = tm.tm_year < 1;
  char text[512];
  int length = std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d",
                             isBc ? 1 - tm.tm_year : tm.tm_year, tm.tm_mon, tm.tm_mday,
                             tm.tm_hour, tm.tm_min);
  if (count != 0 && !isBc) {
    length += std::snprintf(text + length, 400, ":%d.%0.0f", tm.tm_sec, count);
    while (text[length - 1] == '0' && text[length - 3] != '.') --length;
    text[length] = '\0';
  } else {
    length += std::snprintf(text + length, 16, ":%02d", tm.tm_sec);
  }
  if (tz) {
    const int size = std::abs(*tz);
    length +=
        std::snprintf(text + length, 16, "%c%02d", *tz <= 0 ? '-' : '+', size / 3600);
    if (size % 3600) length += std::snprintf(text + length, 16, ":%02d", size / 60 % 60);
    if (size % 60) length += std::snprintf(text + length, 16, ":%02d", size % 60);
  }
  return text + std::string(isBc ? " BC" : "");
}

TEST(DateTextOf, IsWhatTheCLibraryPrints) {
  std::mt19937_64 random = generator();
  const auto between = [&](sb4 low, sb4 high) {
    return std::uniform_int_distribution<sb4>(low, high)(random);
  };
  for (int i = 0; i < rounds(50000, 5000000); ++i) {
    const bool isWild = between(0, 9) == 0;
    const auto field = [&](sb4 low, sb4 high) {
      return isWild ? between(-1000, 1000) : between(low, high);
    };
    PGtm tm =
        dateTime(between(0, 3) ? between(-4713, 12000) : between(1, 9999), field(1, 12),
                 field(1, 31), field(0, 23), field(0, 59), field(0, 59));
    tm.tm_isdst = 0;
    const sb4 zone = between(0, 3) ? between(-14, 14) * 3600 : between(-54000, 54000);
    const sb4 *const tz = between(0, 1) ? &zone : nullptr;
    constexpr double kCounts[] = {0, 1e3, 1e6, 1e9, 1e15, 1e17, 1e22};
    double count = std::floor(between(0, 100000) / 1e5 * kCounts[between(0, 6)]);
    if (between(0, 9) == 0) count /= 8;
    char text[zev::kLongestDateTime];
    EncodeDateTime(&tm, tz, nullptr, zev::kIsoDates, text, count);
    ASSERT_EQ(text, printedBySystem(tm, count, tz)) << count;
  }
}

TEST(DateTextOf, EveryMonthAndDayHasItsName) {
  const char *months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  for (sb4 month = 1; month <= 12; ++month) {
    for (sb4 day = 1; day <= 7; ++day) {
      PGtm tm = dateTime(2001, month, day);
      char text[zev::kLongestDateTime];
      EncodeDateTime(&tm, nullptr, nullptr, 0, text, 0);
      const char *days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
      const auto weekday = (daysSinceEpoch(2001, month, day) + 4) % 7;
      EXPECT_EQ(std::string(text).substr(0, 7),
                std::string(days[weekday]) + " " + months[month - 1]);
      EXPECT_EQ(tm.tm_wday, weekday);
    }
  }
}

TEST(DateTextOf, ImpossibleFieldsStayWithinTheLongestText) {
  constexpr sb4 kMost = std::numeric_limits<sb4>::max(), kLeast = -kMost - 1;
  const char *name = "ABCDEFGHIJK";
  for (const sb4 value : {kMost, kLeast, 0, -1}) {
    for (const double fsec : {1e300, -1e300, 0.5}) {
      for (sb4 style = 0; style < 5; ++style) {
        PGtm tm = dateTime(value, value, value, value, value, value);
        tm.tm_isdst = 1;
        char text[zev::kLongestDateTime];
        EXPECT_EQ(EncodeDateTime(&tm, &value, &name, style, text, fsec), 1);
        EncodeDateTime(&tm, &value, nullptr, style, text, fsec);
        EncodeInterval(&tm, style, text, fsec);
        EXPECT_LT(std::strlen(text), sizeof text);
      }
    }
  }
}

TEST(DateOnlyText, InEveryStyleAndOrder) {
  struct Row {
    sb4 style, dayFirst;
    const char *text;
  };
  for (const Row &row :
       {Row{1, 0, "2001-02-03"}, Row{1, 1, "2001-02-03"}, Row{2, 0, "02/03/2001"},
        Row{2, 1, "03/02/2001"}, Row{3, 0, "03.02.2001"}, Row{3, 1, "03.02.2001"},
        Row{4, 0, "02-03-2001"}, Row{0, 1, "03-02-2001"}}) {
    char text[zev::kLongestDateTime];
    PGtm tm = dateTime(2001, 2, 3);
    EXPECT_EQ(EncodeDateOnly(&tm, row.style, text, row.dayFirst), 1);
    EXPECT_STREQ(text, row.text);
    tm.tm_year = -43;
    EXPECT_EQ(EncodeDateOnly(&tm, row.style, text, row.dayFirst), 1);
    EXPECT_NE(std::string(text).find("0044"), std::string::npos);
    EXPECT_TRUE(std::string(text).ends_with(" BC"));
  }
  char text[zev::kLongestDateTime];
  for (const sb4 month : {0, 13}) {
    const PGtm tm = dateTime(2001, month, 1);
    EXPECT_EQ(EncodeDateOnly(&tm, 1, text, 0), -1);
  }
}

TEST(TimezoneText, IsAppended) {
  const struct {
    sb4 tz;
    const char *text;
  } rows[] = {{19800, "x+05:30"},   {-19800, "x-05:30"}, {0, "x-00"},
              {3600, "x+01"},       {-3600, "x-01"},     {3601, "x+01:00:01"},
              {5025, "x+01:23:45"}, {-45, "x-00:00:45"}};
  for (const auto &[tz, expected] : rows) {
    char text[40] = "x";
    EncodeTimezone(text, tz);
    EXPECT_STREQ(text, expected) << tz;
  }
}

TEST(SecondsText, HasItsFractionAndNoSign) {
  const struct {
    sb4 second;
    sb4 padded;
    double fsec;
    const char *text;
  } rows[] = {{6, 0, 0, "6"},
              {6, 1, 0, "06"},
              {-6, 1, 0, "06"},
              {6, 0, 0.25, "6.25"},
              {6, 1, 0.25, "06.25"},
              {-6, 1, -0.25, "06.25"},
              {6, 1, 0.5, "06.50"},
              {0, 0, 0.000001, "0.000001"},
              {59, 1, 0.9999999, "60.00"}};
  for (const auto &[second, padded, fsec, expected] : rows) {
    char text[400];
    AppendSeconds(text, second, padded, fsec);
    EXPECT_STREQ(text, expected);
  }
}

TEST(TrailingZeros, AreTakenButForTwoDigits) {
  const struct {
    const char *before, *after;
  } rows[] = {{"6.0", "6."}, {"6.50", "6.50"}, {"6.500", "6.50"}, {"6.500000", "6.50"},
              {"", ""},      {"0", "0"},       {"00", "00"},      {"100", "10"},
              {"6.", "6."},  {".00", ".00"}};
  for (const auto &[before, after] : rows) {
    char text[16];
    std::strcpy(text, before);
    TrimTrailingZeros(text);
    EXPECT_STREQ(text, after) << before;
  }
}

TEST(SpecialTimestampText, IsThatOfTheInfinities) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  char text[16] = "x";
  EXPECT_EQ(EncodeSpecialTimestamp(text, 1e300), 0);
  EXPECT_STREQ(text, "x");
  EXPECT_EQ(EncodeSpecialTimestamp(text, kInfinity), 1);
  EXPECT_STREQ(text, "infinity");
  EXPECT_EQ(EncodeSpecialTimestamp(text, -kInfinity), 1);
  EXPECT_STREQ(text, "-infinity");
}

struct IntervalRow {
  const char *name;
  PGtm tm;
  double fsec;
  const char *styles[4];
};

// clang-format off
const IntervalRow kIntervals[] = {
    {"Zero", dateTime(0, 0, 0), 0,
     {"00:00:00", "@ 0", "0", "PT0S"}},
    {"DayAndTime", dateTime(0, 0, 1, 2, 3, 4), 0,
     {"1 day 02:03:04", "@ 1 day 2 hours 3 mins 4 secs", "1 2:03:04", "P1DT2H3M4S"}},
    {"All", dateTime(1, 2, 3, 4, 5, 6), 0.25,
     {"1 year 2 mons 3 days 04:05:06.25", "@ 1 year 2 mons 3 days 4 hours 5 mins 6.25 secs", "+1-2 +3 +4:05:06.25", "P1Y2M3DT4H5M6.25S"}},
    {"NegativeDay", dateTime(0, 0, -1), 0,
     {"-1 days", "@ 1 day ago", "-1 0:00:00", "P-1D"}},
    {"Negative", dateTime(-1, -2, 0), 0,
     {"-1 years -2 mons", "@ 1 year 2 mons ago", "-1-2", "P-1Y-2M"}},
    {"NegativeTime", dateTime(0, 0, 0, -2, -3, -4), -0.5,
     {"-02:03:04.50", "@ 2 hours 3 mins 4.50 secs ago", "-2:03:04.50", "PT-2H-3M-4.50S"}},
    {"MixedSigns", dateTime(0, -1, 2, -3, -4, -5), 0,
     {"-1 mons +2 days -03:04:05", "@ 1 mon -2 days 3 hours 4 mins 5 secs ago", "-0-1 +2 -3:04:05", "P-1M2DT-3H-4M-5S"}},
    {"NegativeThenPositiveTime", dateTime(0, 0, -1, 2, 0, 0), 0,
     {"-1 days +02:00:00", "@ 1 day -2 hours ago", "+0-0 -1 +2:00:00", "P-1DT2H"}},
    {"PositiveThenNegativeSeconds", dateTime(0, 0, 0, 1, 0, -2), 0,
     {"-01:00:02", "@ 1 hour -2 secs", "+0-0 +0 -1:00:02", "PT1H-2S"}},
    {"OneSecond", dateTime(0, 0, 0, 0, 0, 1), 0,
     {"00:00:01", "@ 1 sec", "0:00:01", "PT1S"}},
    {"OneSecondAgo", dateTime(0, 0, 0, 0, 0, -1), 0,
     {"-00:00:01", "@ 1 sec ago", "-0:00:01", "PT-1S"}},
    {"FractionAlone", dateTime(0, 0, 0), 0.75,
     {"00:00:00.75", "@ 0.75 secs", "0:00:00.75", "PT0.75S"}},
};
// clang-format on

void PrintTo(const IntervalRow &row, std::ostream *out) {
  *out << row.name;
}

class IntervalText : public testing::TestWithParam<IntervalRow> {};

TEST_P(IntervalText, InEveryStyle) {
  const IntervalRow &row = GetParam();
  for (sb4 style = 0; style < 4; ++style) {
    char text[zev::kLongestDateTime];
    const sb4 length = EncodeInterval(&row.tm, style, text, row.fsec);
    EXPECT_EQ(length, static_cast<sb4>(std::strlen(text)));
    EXPECT_STREQ(text, row.styles[style]) << style;
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, IntervalText, testing::ValuesIn(kIntervals),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(DateTextOf, IsTheSameInEveryLocale) {
  ASSERT_TRUE(std::setlocale(LC_ALL, "C"));
  for (const char *locale : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
    std::setlocale(LC_ALL, locale);  // one that is not installed changes nothing
    char text[zev::kLongestDateTime];
    PGtm tm = kPlain;
    EncodeDateTime(&tm, nullptr, nullptr, 2, text, 0.25);
    EXPECT_STREQ(text, "02/03/2001 04:05:06.25");
  }
  std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace zevtest
