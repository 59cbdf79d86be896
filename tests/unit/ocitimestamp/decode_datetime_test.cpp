/// Dates and times from text: the fields that a text is split into, and what they say.
#include "types/ocitimestamp/decode_datetime.h"

#include <cstring>
#include <limits>
#include <ostream>
#include <vector>

#include "datetime_fixture.h"

namespace zevtest {
namespace {

/// A text split into its fields.
struct Split {
  char work[zev::kWorkSize];
  char *fields[zev::kMostFields];
  sb4 types[zev::kMostFields];
  sb4 count = 0;
  sb4 status;

  explicit Split(const std::string &text)
      : status(ParseDateTime(text.c_str(), work, sizeof work, fields, types,
                             zev::kMostFields, &count)) {}
  std::string shownFields() const {
    if (status != 0) return "bad";
    std::string all;
    for (sb4 i = 0; i < count; ++i) {
      all += (i ? " " : "") + std::string(1, "nsdtz?x"[types[i]]) + ":" + fields[i];
    }
    return all;
  }
};

TEST(DateFields, AreSplitByTheirCharacters) {
  const struct {
    const char *text, *fields;
  } rows[] = {
      {"", ""},
      {"  \t\n", ""},
      {"2001-02-03 04:05:06.25", "d:2001-02-03 t:04:05:06.25"},
      {"2001-02-03 04:05:06+05:30", "d:2001-02-03 t:04:05:06 z:+05:30"},
      {"12", "n:12"},
      {"12.5", "n:12.5"},
      {"1.2.3", "d:1.2.3"},
      {"1/2", "d:1/2"},
      {"1/2/3", "d:1/2/3"},
      {"3-FEB-2001", "d:3-feb-2001"},
      {"3.feb.2001", "d:3.feb.2001"},
      {"12.", "d:12."},
      {"12:30", "t:12:30"},
      {".5", "n:.5"},
      {"February 3, 2001", "s:february n:3 n:2001"},
      {"FEB-3-2001", "s:feb z:-3 z:-2001"},
      {"foo-3-2001", "d:foo-3-2001"},
      {"foo3", "d:foo3"},
      {"j2451545", "s:j n:2451545"},
      {"America/New_York", "d:america/new_york"},
      {"pst8pdt", "s:pst n:8 s:pdt"},
      {"abc+3", "d:abc+3"},
      {"+ 3", "z:+3"},
      {"-infinity", "x:-infinity"},
      {"- Infinity", "x:-infinity"},
      {"+05:30:15.5", "z:+05:30:15.5"},
      {"@ 1 day", "n:1 s:day"},
      {"(2001)", "n:2001"},
      {"2001, 2", "n:2001 n:2"},
      {"+", "bad"},
      {"+:", "bad"},
      {"\x01", "bad"},
      {"\xc3\xa4", "bad"},
      {"12 \x80", "bad"},
  };
  for (const auto &[text, fields] : rows) {
    EXPECT_EQ(Split(text).shownFields(), fields) << text;
  }
}

TEST(DateFields, HaveTheirLimits) {
  std::string many;
  for (int i = 0; i < 25; ++i) many += "1 ";
  EXPECT_EQ(Split(many).count, 25);
  EXPECT_EQ(Split(many + "1").status, -1);
  EXPECT_EQ(Split(std::string(87, '1')).status, 0);
  EXPECT_EQ(Split(std::string(88, '1')).status, -1);
  EXPECT_EQ(Split(std::string(43, 'a') + " " + std::string(43, 'b')).status, 0);
  EXPECT_EQ(Split(std::string(44, 'a') + " " + std::string(43, 'b')).status, -1);
  EXPECT_EQ(Split(std::string(5000, 'a') + "-1").status, -1);
  char *fields[2];
  sb4 types[2], count = 0;
  char none[1];
  EXPECT_EQ(ParseDateTime("1", none, 0, fields, types, 2, &count), -1);
  EXPECT_EQ(ParseDateTime("1 2 3", none, 1, fields, types, 2, &count), -1);
}

/// A text, and what it decodes to: "fields fsec tz dtype", or its record's number.
struct Row {
  const char *text;
  const char *decoded;
};

class DecodedDate : public testing::Test {
 protected:
  std::string decode(const std::string &text, bool withTz = true, bool dayFirst = false) {
    Split split(text);
    if (split.status != 0) return "no fields";
    PGtm tm{};
    double fsec = 0;
    sb4 tz = 77, dtype = 0;
    const sb4 status =
        DecodeDateTime(records_.errhp, split.fields, split.types, split.count, &dtype,
                       &tm, &fsec, withTz ? &tz : nullptr, dayFirst);
    const int code = records_.takeRecord();
    if (status == -1) return std::to_string(code);
    EXPECT_EQ(code, 0) << text;
    if (status == 1) return "time alone";
    if (dtype != 2) return "word " + std::to_string(dtype);
    gmtoff_ = tm.tm_gmtoff;
    isdst_ = tm.tm_isdst;
    char rest[64];
    std::snprintf(rest, sizeof rest, " %g", fsec);
    return shown(tm) + (fsec != 0 ? rest : "") +
           (tz && withTz ? " tz " + std::to_string(tz) : "");
  }
  void check(std::span<const Row> rows) {
    for (const auto &[text, decoded] : rows) EXPECT_EQ(decode(text), decoded) << text;
  }

  LocalZone zone_{"UTC"};
  Environment records_;
  std::int64_t gmtoff_ = 0;
  sb4 isdst_ = 0;
};

TEST_F(DecodedDate, InItsManyForms) {
  const Row rows[] = {
      {"2001-02-03 04:05:06.25", "2001-02-03 04:05:06 0.25"},
      {"2001-02-03", "2001-02-03 00:00:00"},
      {"2001-02-03 04:05", "2001-02-03 04:05:00"},
      {"20010203", "2001-02-03 00:00:00"},
      {"20010203 040506", "2001-02-03 04:05:06"},
      {"20010203 0405", "1830"},
      {"20010203 040506.5", "2001-02-03 04:05:06 0.5"},
      {"010203", "2001-02-03 00:00:00"},
      {"01012", "2001-01-12 00:00:00"},
      {"01034", "1891"},
      {"2001-034", "2001-02-03 00:00:00"},
      {"2001.034", "2001-02-03 00:00:00"},
      {"02/03/2001", "2001-02-03 00:00:00"},
      {"2/3/01", "2001-02-03 00:00:00"},
      {"13/2/2001", "2001-02-13 00:00:00"},
      {"3 feb 2001", "2001-02-03 00:00:00"},
      {"feb 3 2001", "2001-02-03 00:00:00"},
      {"2001 feb 3", "2001-02-03 00:00:00"},
      {"3-feb-2001", "2001-02-03 00:00:00"},
      {"3-feb-69", "2069-02-03 00:00:00"},
      {"3-feb-70", "1970-02-03 00:00:00"},
      {"saturday, february 3, 2001", "2001-02-03 00:00:00"},
      {"2001-02-03 at 04:05:06", "2001-02-03 04:05:06"},
      {"j2451545", "2000-01-01 00:00:00"},
      {"julian 2451545.25", "2000-01-01 06:00:00"},
      {"y 2001 m 2 d 3", "2001-02-03 00:00:00"},
      {"y 2001 m 2 d 3 h 4 mm 5 s 6.25", "2001-02-03 04:05:06 0.25"},
      {"y 2001 m 2 d 3 h 4 m 5", "2001-02-03 04:05:00"},
      {"2001-02-03 t 040506", "2001-02-03 04:05:06"},
      {"2001-02-03T04:05:06", "2001-02-03 04:05:06"},
      {"2001-02-03 t 0405", "2001-02-03 04:05:00"},
      {"epoch", "word 11"},
      {"infinity", "word 10"},
      {"-infinity", "word 9"},
      {"invalid", "word 7"},
      {"current", "word 8"},
      {"44-03-15 bc", "-043-03-15 00:00:00"},
      {"0044-03-15 bc", "-043-03-15 00:00:00"},
      {"march 15, 0044 bc", "-043-03-15 00:00:00"},
      {"0001-01-01 ad", "0001-01-01 00:00:00"},
      {"2000-02-29", "2000-02-29 00:00:00"},
      {"2001-02-03 24:00:00", "2001-02-03 24:00:00"},
      {"5874897-12-31", "5874897-12-31 00:00:00"},
  };
  check(rows);
}

TEST_F(DecodedDate, HalvesOfTheDay) {
  const Row rows[] = {
      {"2001-02-03 12:00 pm", "2001-02-03 12:00:00"},
      {"2001-02-03 12:00 am", "2001-02-03 00:00:00"},
      {"2001-02-03 01:02:03 am", "2001-02-03 01:02:03"},
      {"2001-02-03 01:02:03 pm", "2001-02-03 13:02:03"},
      {"2001-02-03 13:00 am", "1849"},
      {"2001-02-03 13:00 pm", "1849"},
  };
  check(rows);
}

TEST_F(DecodedDate, Zones) {
  const Row rows[] = {
      {"2001-02-03 04:05:06+05:30", "2001-02-03 04:05:06 tz -19800"},
      {"2001-02-03 04:05:06-08", "2001-02-03 04:05:06 tz 28800"},
      {"2001-02-03 04:05:06 +0530", "2001-02-03 04:05:06 tz -19800"},
      {"2001-02-03 04:05:06+05:30:15", "2001-02-03 04:05:06 tz -19815"},
      {"2001-02-03 04:05:06 pst", "2001-02-03 04:05:06 tz 28800"},
      {"2001-02-03 04:05:06 pdt", "2001-02-03 04:05:06 tz 25200"},
      {"2001-02-03 04:05:06 met", "2001-02-03 04:05:06 tz -3600"},
      {"2001-02-03 04:05:06 met dst", "2001-02-03 04:05:06 tz -9000"},
      {"2001-02-03 04:05:06 utc+3", "2001-02-03 04:05:06 tz 10800"},
      {"2001-02-03 04:05:06 utc +3", "2001-02-03 04:05:06 tz 10800"},
      {"2001-02-03 040506-08", "2001-02-03 04:05:06 tz 28800"},
      {"2001-02-03 allballs", "2001-02-03 00:00:00"},
      {"2001-02-03 04:05:06+15", "1891"},
      {"2001-02-03 04:05:06+05:60", "1891"},
      {"2001-02-03 04:05:06+05:30x", "1891"},
      {"2001-02-03 04:05:06 foo", "1891"},
      {"2001-02-03 04:05:06 pst pst", "1830"},
  };
  check(rows);
  EXPECT_EQ(decode("2001-02-03 04:05:06+05:30"), "2001-02-03 04:05:06 tz -19800");
  EXPECT_EQ(gmtoff_, 19800);
  decode("2001-02-03 04:05:06 pdt");
  EXPECT_EQ(isdst_, 1);
  decode("2001-02-03 04:05:06 pst");
  EXPECT_EQ(isdst_, 0);
}

TEST_F(DecodedDate, AZoneWithoutRoomIsRefused) {
  for (const char *text : {"2001-02-03 04:05:06+05:30", "2001-02-03 04:05:06 pst",
                           "2001-02-03 04:05:06 dst", "2001-02-03 040506-08"}) {
    EXPECT_EQ(decode(text, false), "1891") << text;
  }
  EXPECT_EQ(decode("2001-02-03 04:05:06", false), "2001-02-03 04:05:06");
}

TEST_F(DecodedDate, WithoutAZoneIsInTheLocalOne) {
  const LocalZone local("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(decode("2001-02-03 04:05:06"), "2001-02-03 04:05:06 tz -3600");
  EXPECT_EQ(decode("2001-07-03 04:05:06"), "2001-07-03 04:05:06 tz -7200");
  EXPECT_EQ(isdst_, 1);
}

TEST_F(DecodedDate, CurrentDaysAreThoseOfTheEpoch) {
  const Row rows[] = {
      {"now", "1970-01-01 00:00:00"},
      {"today", "1970-01-01 00:00:00"},
      {"yesterday", "1969-12-31 00:00:00"},
      {"tomorrow", "1970-01-02 00:00:00"},
      {"tomorrow 04:05:06", "1970-01-02 04:05:06"},
      {"now 04:05:06", "1830"},
  };
  check(rows);
  const LocalZone local("EST5");
  EXPECT_EQ(decode("now"), "1969-12-31 19:00:00 tz 18000");
  EXPECT_EQ(decode("today"), "1969-12-31 00:00:00 tz 18000");
}

TEST_F(DecodedDate, WhatIsNoDateHasItsNumber) {
  const Row rows[] = {
      {"february 30 2001", "1891"},
      {"2001-02-29", "1891"},
      {"2001-13-01", "2001-01-13 00:00:00"},
      {"2001-13-13", "1839"},
      {"saturday 2001-02-03", "1839"},
      {"04:05:06 2001-02-03", "1839"},
      {"2001-00-01", "1839"},
      {"2001-01-32", "1839"},
      {"2001-01", "1839"},
      {"0000-01-01 bc", "1839"},
      {"2001-02-03 25:00:00", "1891"},
      {"2001-02-03 24:00:01", "1891"},
      {"2001-02-03 24:01", "1891"},
      {"2001-02-03 04:60", "1851"},
      {"2001-02-03 04:05:60", "1852"},
      {"2001-02-03 04:05:06:07", "1891"},
      {"2001-02-03 04:", "1891"},
      {"2001-02-03 99999999999:00", "1891"},
      {"2001-02-03 04:05 06:07", "1830"},
      {"2001-02-03 2001-02-03", "1891"},
      {"2001-02-03 99", "1858"},
      {"99999999999999999999", "1858"},
      {"2001-02-03 123456789", "1858"},
      {"d x", "1891"},
      {"d 3.5", "1858"},
      {"feb feb 3 2001", "1830"},
      {"foo", "1891"},
      {"", "1891"},
      {"04:05:06", "time alone"},
      {"04:05", "time alone"},
      {"saturday", "1891"},
  };
  check(rows);
}

TEST_F(DecodedDate, DayFirstByTheFlag) {
  EXPECT_EQ(decode("3 2 2001"), "2001-03-02 00:00:00");
  EXPECT_EQ(decode("3 2 2001", true, true), "2001-02-03 00:00:00");
}

TEST_F(DecodedDate, EveryWordIsKnown) {
  for (const datetkn &row : datetktbl) {
    const std::string word(row.text());
    sb4 value = 0;
    EXPECT_EQ(datebsearch(word.c_str(), datetktbl, 280), &row) << word;
    EXPECT_EQ(DecodeSpecial(0, word.c_str(), &value), row.type) << word;
    const bool isZone =
        row.type == zev::kZone || row.type == zev::kDaylightZone || row.type == zev::kDst;
    const int quarters = row.value < 0 ? row.value + 128 : -row.value;
    EXPECT_EQ(value, isZone ? quarters * 15 : row.value) << word;
    if (word.starts_with("zp")) {
      EXPECT_EQ(decode("2001-02-03 04:05:06 " + word), "1891")
          << "letters alone are words";
    } else if (row.type == zev::kZone || row.type == zev::kDaylightZone) {
      const sb4 tz = value * 60;
      EXPECT_EQ(decode("2001-02-03 04:05:06 " + word),
                "2001-02-03 04:05:06" + (tz ? " tz " + std::to_string(tz) : ""));
    } else if (row.type == zev::kMonth) {
      char expected[32];
      std::snprintf(expected, sizeof expected, "2001-%02d-03 00:00:00", row.value);
      EXPECT_EQ(decode(word + " 3 2001"), expected);
    } else if (row.type == zev::kIgnored || row.type == zev::kWeekday) {
      EXPECT_EQ(decode(word + " 3 feb 2001"), "2001-02-03 00:00:00") << word;
    }
  }
  sb4 value = 1;
  EXPECT_EQ(DecodeSpecial(0, "nobody", &value), zev::kUnknown);
  EXPECT_EQ(value, 0);
  EXPECT_EQ(DecodeSpecial(0, "yesterday2", &value), zev::kUnknown);
}

TEST(ZoneField, IsReadWithItsSign) {
  const struct {
    const char *text;
    sb4 status, tz;
  } rows[] = {{"+05:30", 0, -19800},
              {"-05:30", 0, 19800},
              {"+0530", 0, -19800},
              {"+530", 0, -19800},
              {"+5", 0, -18000},
              {"-14", 0, 50400},
              {"+15", -5, 0},
              {"+14:60", -5, 0},
              {"+1:1:60", -5, 0},
              {"+1:1:1", 0, -3661},
              {"05", -1, 0},
              {"", -1, 0},
              {"+99999999999999999999", -5, 0},
              {"+-5", -5, 0},
              {"+1:2:3:4", -1, -3723},
              {"+5x", -1, -18000}};
  for (const auto &[text, status, tz] : rows) {
    sb4 found = 0;
    EXPECT_EQ(DecodeTimezone(text, &found), status) << text;
    EXPECT_EQ(found, tz) << text;
  }
}

TEST(PosixZoneField, CountsFromItsWord) {
  const struct {
    const char *text;
    sb4 status, tz;
  } rows[] = {{"pst+8", 0, 28800 + 28800},
              {"utc-3", 0, -10800},
              {"met+1:30", 0, -3600 + 5400},
              {"foo+1", -1, 0},
              {"jan+1", -1, 0},
              {"pst", -1, 0},
              {"pst+15", -5, 0}};
  for (const auto &[text, status, tz] : rows) {
    std::string copy = text;
    sb4 found = 0;
    EXPECT_EQ(DecodePosixTimezone(copy.data(), &found), status) << text;
    if (status == 0) {
      EXPECT_EQ(found, tz) << text;
    }
    EXPECT_EQ(copy, text) << "the text is as it was";
  }
}

TEST(TimestampFromText, WordsAndRanges) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const LocalZone zone("UTC");
  Environment records;
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "2000-01-01 00:00:01.5"), 1.5);
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "epoch"), -946684800.0);
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "infinity"), kInfinity);
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "-infinity"), -kInfinity);
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "current"), kInfinity);
  EXPECT_EQ(records.takeRecord(), 0);
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "invalid"), 0);
  records.takeRecord();
  EXPECT_EQ(records.lastMessage, "date/time value \"invalid\" is no longer supported");
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "5874898-01-01"), 0);
  records.takeRecord();
  EXPECT_EQ(records.lastMessage, "timestamp out of range: \"5874898-01-01\"");
  EXPECT_EQ(ConvertStringToTimestamp(records.errhp, "february 30 2001"), 0);
  EXPECT_EQ(records.takeRecord(), 1891);
  DateTimeParseError(0, nullptr, nullptr);
}

}  // namespace
}  // namespace zevtest
