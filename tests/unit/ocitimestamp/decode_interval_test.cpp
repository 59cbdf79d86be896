/// Intervals from text.
#include <cmath>
#include <cstring>

#include "datetime_fixture.h"
#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/encode_datetime.h"

namespace zevtest {
namespace {

class DecodedInterval : public testing::Test {
 protected:
  /// "Y-M D h:m:s.f", or the failing status.
  std::string decode(const std::string &text, sb4 range = zev::kWholeRange) {
    char work[zev::kWorkSize];
    char *fields[zev::kMostFields];
    sb4 types[zev::kMostFields], count = 0, dtype = 0;
    PGtm tm{};
    double fsec = 0;
    if (ParseDateTime(text.c_str(), work, sizeof work, fields, types, zev::kMostFields,
                      &count) != 0)
      return "no fields";
    const sb4 status =
        DecodeInterval(records_.errhp, fields, types, count, range, &dtype, &tm, &fsec);
    code_ = records_.takeRecord();
    return shownAs(status, dtype, tm, fsec);
  }
  std::string decodeIso(const std::string &text) {
    sb4 dtype = 0;
    PGtm tm{};
    double fsec = 0;
    const sb4 status = DecodeISO8601Interval(text.c_str(), &dtype, &tm, &fsec);
    return shownAs(status, dtype, tm, fsec);
  }
  static std::string shownAs(sb4 status, sb4 dtype, const PGtm &tm, double fsec) {
    if (status != 0) return std::to_string(status);
    if (dtype != 17) return "word " + std::to_string(dtype);
    char text[128];
    std::snprintf(text, sizeof text, "%d-%d %d %d:%d:%d", tm.tm_year, tm.tm_mon,
                  tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
    std::string all = text;
    if (std::fabs(fsec) > 1e-9) {
      std::snprintf(text, sizeof text, " %.6g", fsec);
      all += text;
    }
    return all;
  }

  Environment records_;
  int code_ = 0;
};

struct Row {
  const char *text, *decoded;
};

TEST_F(DecodedInterval, InItsManyForms) {
  const Row rows[] = {
      {"@ 1 day 2 hours 3 mins 4 secs", "0-0 1 2:3:4"},
      {"1 day 02:03:04", "0-0 1 2:3:4"},
      {"1 02:03:04", "0-0 1 2:3:4"},
      {"1 +02:03:04", "0-0 1 2:3:4"},
      {"1 -02:03:04.5", "0-0 1 -2:-3:-4 -0.5"},
      {"02:03", "0-0 0 2:3:0"},
      {"-02:03:04", "0-0 0 -2:-3:-4"},
      {"100:00:00", "0-0 0 100:0:0"},
      {"@ 1 day 2 hours 3 mins 4 secs ago", "0-0 -1 -2:-3:-4"},
      {"1 year 2 mons 3 days 04:05:06.25", "1-2 3 4:5:6 0.25"},
      {"-1 year -2 mons +3 days -04:05:06", "-1--2 3 -4:-5:-6"},
      {"1-2", "0-14 0 0:0:0"},
      {"-1-2", "-1"},
      {"1-2 3 04:05:06", "0-14 3 4:5:6"},
      {"5", "0-0 0 0:0:5"},
      {"-5", "0-0 0 0:0:-5"},
      {"5.25", "0-0 0 0:0:5 0.25"},
      {"1.5 minutes", "0-0 0 0:1:30"},
      {"-1.5 minutes", "0-0 0 0:-1:-30"},
      {"1.5 hours", "0-0 0 1:0:1800"},
      {"1.5 days", "0-0 1 0:0:43200"},
      {"1.5 weeks", "0-0 10 0:0:43200"},
      {"1.5 months", "0-1 15 0:0:0"},
      {"1.01 months", "0-1 0 0:0:25920"},
      {"1.5 years", "1-6 0 0:0:0"},
      {"1.5 decades", "15-0 0 0:0:0"},
      {"1.5 centuries", "150-0 0 0:0:0"},
      {"1.5 millennia", "1500-0 0 0:0:0"},
      {"1500 milliseconds", "0-0 0 0:0:1 0.5"},
      {"1.5 ms", "0-0 0 0:0:0 0.0015"},
      {"2500000 microseconds", "0-0 0 0:0:2 0.5"},
      {"1.5 us", "0-0 0 0:0:0 1e-06"},
      {"1 week 2 days", "0-0 9 0:0:0"},
      {"1 millennium 2 centuries 3 decades 4 years", "1234-0 0 0:0:0"},
      {"4 h 5 m 6 s", "0-0 0 4:5:6"},
      {"1 h -2 m", "0-0 0 1:-2:0"},
      {"0", "0-0 0 0:0:0"},
      {"@ 0", "0-0 0 0:0:0"},
      {"invalid", "word 7"},
      {"undefined", "word 7"},
  };
  for (const auto &[text, decoded] : rows) EXPECT_EQ(decode(text), decoded) << text;
}

TEST_F(DecodedInterval, ARangeGivesTheUnit) {
  const struct {
    sb4 range;
    const char *decoded;
  } rows[] = {{zev::kYearBit, "5-0 0 0:0:0"},
              {zev::kMonthBit, "0-5 0 0:0:0"},
              {zev::kYearBit | zev::kMonthBit, "0-5 0 0:0:0"},
              {zev::kDayBit, "0-0 5 0:0:0"},
              {zev::kHourBit, "0-0 0 5:0:0"},
              {zev::kDayBit | zev::kHourBit, "0-0 0 5:0:0"},
              {zev::kMinuteBit, "0-0 0 0:5:0"},
              {zev::kHourBit | zev::kMinuteBit, "0-0 0 0:5:0"},
              {zev::kSecondBit, "0-0 0 0:0:5"},
              {zev::kMinuteBit | zev::kSecondBit, "0-0 0 0:0:5"}};
  for (const auto &[range, decoded] : rows)
    EXPECT_EQ(decode("5", range), decoded) << range;
}

TEST_F(DecodedInterval, WhatIsNoneIsRefused) {
  const Row rows[] = {
      {"", "-1"},
      {"ago", "-1"},
      {"foo", "-1"},
      {"1 foo", "-1"},
      {"1 day 2 day", "-1"},
      {"1 hour 2 hours", "-1"},
      {"1 hour 02:03:04", "-1"},
      {"1 mon 2 mons", "-1"},
      {"1 qtr", "-1"},
      {"1 timezone", "-1"},
      {"1-12", "-2"},
      {"1--1", "-2"},
      {"2147483647-11", "-2"},
      {"99999999999", "-2"},
      {"99999999999999999999", "-2"},
      {"2147483647 weeks", "-2"},
      {"2147483647 decades", "-2"},
      {"1.5.5 days", "-1"},
      {"1/2", "-1"},
      {"12:60", "-1"},
      {"12:30:60", "-1"},
  };
  for (const auto &[text, decoded] : rows) EXPECT_EQ(decode(text), decoded) << text;
  decode("12:60");
  EXPECT_EQ(code_, 1851);
  decode("12:30:60");
  EXPECT_EQ(code_, 1852);
  decode("1 foo");
  EXPECT_EQ(code_, 0);
}

TEST_F(DecodedInterval, OfIso8601) {
  const Row rows[] = {
      {"P1Y2M3DT4H5M6.5S", "1-2 3 4:5:6 0.5"},
      {"P-1Y2M-3DT4H-5M6S", "-1-2 -3 4:-5:6"},
      {"P1W", "0-0 7 0:0:0"},
      {"P1.5W", "0-0 10 0:0:43200"},
      {"P0.5Y", "0-6 0 0:0:0"},
      {"P0.5M", "0-0 15 0:0:0"},
      {"P0.5D", "0-0 0 0:0:43200"},
      {"PT0.5H", "0-0 0 0:0:1800"},
      {"PT0.5M", "0-0 0 0:0:30"},
      {"PT-0.5S", "0-0 0 0:0:0 -0.5"},
      {"PT36H", "0-0 0 36:0:0"},
      {"P0001-02-03T04:05:06.5", "1-2 3 4:5:6 0.5"},
      {"P0001-02-03", "1-2 3 0:0:0"},
      {"P1-2", "1-2 0 0:0:0"},
      {"PT04:05", "0-0 0 4:5:0"},
      {"P1YT04:05:06", "1-0 0 4:5:6"},
      {"PT0S", "0-0 0 0:0:0"},
      {"", "-1"},
      {"P", "-1"},
      {"1Y", "-1"},
      {"p1Y", "-1"},
      {"P1", "-1"},
      {"P1X", "-1"},
      {"P1H", "-1"},
      {"PT1Y", "-1"},
      {"PY", "-1"},
      {"P1Y2", "-1"},
      {"PTT1H", "-1"},
      {"P1Y2-3-4", "-1"},
      {"P1-2-3-4", "-1"},
      {"PT1:2:3:4", "-1"},
      {"PT1:2T", "-1"},
      {"P99999999999Y", "-2"},
      {"P2147483647W", "-2"},
  };
  for (const auto &[text, decoded] : rows) EXPECT_EQ(decodeIso(text), decoded) << text;
}

TEST_F(DecodedInterval, NumbersOfIso8601AreSplit) {
  const struct {
    const char *text;
    sb4 status, whole;
    double fraction;
    const char *rest;
  } rows[] = {{"1.5Y", 0, 1, 0.5, "Y"},
              {"-1.5Y", 0, -1, -0.5, "Y"},
              {".5", 0, 0, 0.5, ""},
              {"12", 0, 12, 0, ""},
              {"+1", -1, 0, 0, "+1"},
              {"x", -1, 0, 0, "x"},
              {"-", -1, 0, 0, "-"},
              {"2147483647", 0, 2147483647, 0, ""},
              {"2147483648", -2, 0, 0, "2147483648"},
              {"-2147483649", -2, 0, 0, "-2147483649"}};
  for (const auto &[text, status, whole, fraction, rest] : rows) {
    const char *end = nullptr;
    sb4 foundWhole = 0;
    double foundFraction = 0;
    EXPECT_EQ(ParseISO8601Number(text, &end, &foundWhole, &foundFraction), status)
        << text;
    EXPECT_STREQ(end, rest);
    EXPECT_EQ(foundWhole, whole) << text;
    EXPECT_EQ(foundFraction, fraction) << text;
  }
}

TEST_F(DecodedInterval, EveryUnitIsKnown) {
  for (const datetkn &row : deltatktbl) {
    const std::string word(row.text());
    sb4 value = 0;
    EXPECT_EQ(datebsearch(word.c_str(), deltatktbl, 63), &row) << word;
    EXPECT_EQ(DecodeUnits(0, word.c_str(), &value), row.type) << word;
    EXPECT_EQ(value, row.value) << word;
  }
  sb4 value = 1;
  EXPECT_EQ(DecodeUnits(0, "fortnight", &value), zev::kUnknown);
  EXPECT_EQ(DecodeUnits(0, "microseconds", &value), zev::kUnit) << "ten characters count";
}

TEST_F(DecodedInterval, RandomOnesLeadThroughEachStyleAndBack) {
  auto random = generator();
  const auto upTo = [&](sb4 most) {
    return std::uniform_int_distribution<sb4>(0, most)(random);
  };
  for (int i = rounds(20'000, 1'000'000); i > 0; --i) {
    const sb4 monthSign = upTo(1) ? 1 : -1, daySign = upTo(1) ? 1 : -1,
              timeSign = upTo(1) ? 1 : -1;
    PGtm tm{};
    tm.tm_year = monthSign * (upTo(3) ? upTo(9999) : 0);
    tm.tm_mon = monthSign * (upTo(3) ? upTo(11) : 0);
    tm.tm_mday = daySign * (upTo(3) ? upTo(99999) : 0);
    tm.tm_hour = timeSign * (upTo(3) ? upTo(9999) : 0);
    tm.tm_min = timeSign * (upTo(3) ? upTo(59) : 0);
    tm.tm_sec = timeSign * (upTo(3) ? upTo(59) : 0);
    const double fsec = timeSign * (upTo(1) ? upTo(999'999) / 1e6 : 0);
    const std::string expected = shownAs(0, 17, tm, fsec);
    for (const sb4 style : {0, 1, 3}) {
      char text[zev::kLongestDateTime];
      EncodeInterval(&tm, style, text, fsec);
      const std::string back = style == 3 ? decodeIso(text) : decode(text);
      ASSERT_EQ(back, expected) << text;
    }
  }
}

}  // namespace
}  // namespace zevtest
