/// Dates, times and intervals between the server's fields and the program's buffers.
#include <cstring>
#include <memory>

#include "core/owned.h"
#include "datetime_fixture.h"
#include "types/bytes.h"
#include "types/converters.h"
#include "types/ocitimestamp/datetime_bytes.h"
#include "types/ocitimestamp/zone.h"
#include "zevoci/string_value.h"

namespace zevtest {
namespace {

constexpr ub1 kText = 0, kBinary = 1;

std::string bigEndian(double value) {
  const double swapped = zev::swapBytes(value);
  return {reinterpret_cast<const char *>(&swapped), sizeof swapped};
}

/// What a converter left behind.
struct Fetched {
  sword status;
  ub4 length;
  sb2 indicator;
  ub2 returnCode;
  int code;
};

class DateFetch : public testing::Test {
 protected:
  Fetched fetch(FromServerConverter convert, const std::string &field, void *target,
                ub4 cap, ub1 format = kText, bool withIndicator = true) {
    Fetched got{0, cap, 77, 77, 0};
    got.status = convert(records_.errhp, field.c_str(), static_cast<sb4>(field.size()),
                         format, target, &got.length,
                         withIndicator ? &got.indicator : nullptr, &got.returnCode);
    got.code = records_.takeRecord();
    return got;
  }
  std::string bytesOf(FromServerConverter convert, const std::string &field,
                      ub1 format = kText) {
    ub1 out[8];
    std::memset(out, 0xee, sizeof out);
    const Fetched got = fetch(convert, field, out, 8, format);
    if (got.status != 0) return "status " + std::to_string(got.status);
    std::string text = std::to_string(got.length) + ":";
    for (const ub1 byte : out) {
      char two[4];
      std::snprintf(two, sizeof two, " %02x", byte);
      text += two;
    }
    return text;
  }

  LocalZone zone_{"UTC"};
  Environment records_;
};

TEST_F(DateFetch, IntoTheSevenBytes) {
  const auto stamp = ConvertTIMESTAMPOIDToSQLT_DAT, text = ConvertTEXTOIDToSQLT_DAT;
  EXPECT_EQ(bytesOf(stamp, "2001-02-03 04:05:06.25"), "7: 78 65 02 03 05 06 07 ee");
  EXPECT_EQ(bytesOf(stamp, "2001-02-03"), "7: 78 65 02 03 01 01 01 ee");
  EXPECT_EQ(bytesOf(stamp, "0001-01-01 BC"), "7: 64 64 01 01 01 01 01 ee");
  EXPECT_EQ(bytesOf(stamp, bigEndian(0), kBinary), "8: 78 64 01 01 01 01 01 ee");
  EXPECT_EQ(bytesOf(stamp, bigEndian(1e300), kBinary), "status -1");
  EXPECT_EQ(bytesOf(stamp, "2001-02-03", 2), "status -1");
  EXPECT_EQ(bytesOf(stamp, "1234567", kBinary), "status -1") << "too short";
  EXPECT_EQ(bytesOf(text, "2001-02-03 04:05:06"), "8: 78 65 02 03 01 01 01 ee");
  EXPECT_EQ(bytesOf(text, "2001-02-03 04:05:06", kBinary), "8: 78 65 02 03 01 01 01 ee");
  EXPECT_EQ(bytesOf(text, "2001-02-03", 2), "status -1");
  for (const auto convert : {stamp, text}) {
    ub1 out[7];
    EXPECT_EQ(fetch(convert, "2001-02-03", out, 6).status, -1);
    const Fetched bad = fetch(convert, "february 30 2001", out, 7);
    EXPECT_EQ(bad.status, -1);
    EXPECT_EQ(bad.code, 1891);
    EXPECT_EQ(fetch(convert, "\x01", out, 7).code, 0) << "cannot be split";
    const Fetched word = fetch(convert, "infinity", out, 7);
    EXPECT_EQ(word.status, -1);
    EXPECT_EQ(word.code, 1891);
    EXPECT_EQ(fetch(convert, "04:05:06", out, 7).status, -1) << "a time alone";
  }
}

TEST_F(DateFetch, IntoAnOciDate) {
  const auto stamp = ConvertTIMESTAMPOIDToSQLT_ODT, text = ConvertTEXTOIDToSQLT_ODT;
  EXPECT_EQ(bytesOf(stamp, "2001-02-03 04:05:06"), "8: d1 07 02 03 04 05 06 00");
  EXPECT_EQ(bytesOf(text, "2001-02-03 04:05:06"), "8: d1 07 02 03 04 05 06 00");
  EXPECT_EQ(bytesOf(stamp, bigEndian(86399), kBinary), "8: d0 07 01 01 17 3b 3b 00");
  EXPECT_EQ(bytesOf(stamp, "0044-03-15 BC"), "8: d5 ff 03 0f 00 00 00 00");
  for (const auto convert : {stamp, text}) {
    EXPECT_EQ(bytesOf(convert, "february 30 2001"), "8: ee ee ee ee ee ee ee ee")
        << "a success without a value";
    ub1 out[8];
    EXPECT_EQ(fetch(convert, "2001-02-03", out, 7).status, -1);
  }
}

TEST_F(DateFetch, NullsOfEveryMember) {
  const FromServerConverter all[] = {ConvertTIMESTAMPOIDToSQLT_DAT,
                                     ConvertTIMESTAMPOIDToSQLT_ODT,
                                     ConvertTIMESTAMPOIDToSQLT_DATE,
                                     ConvertTIMESTAMPOIDToSQLT_TIMESTAMP,
                                     ConvertTIMESTAMPOIDToSQLT_TIMESTAMP_TZ,
                                     ConvertTIMESTAMPTZOIDToSQLT_TIMESTAMP_TZ,
                                     ConvertTEXTOIDToSQLT_DAT,
                                     ConvertTEXTOIDToSQLT_ODT,
                                     ConvertTEXTOIDToSQLT_DATE,
                                     ConvertTEXTOIDToSQLT_TIMESTAMP,
                                     ConvertTEXTOIDToSQLT_TIMESTAMP_TZ,
                                     ConvertINTERVALOIDToSQLT_INTERVAL_DS,
                                     ConvertDATEOIDToSQLT_CHR,
                                     ConvertDATEOIDToSQLT_LNG,
                                     ConvertDATEOIDToSQLT_AFC,
                                     ConvertDATEOIDToSQLT_VCS,
                                     ConvertDATEOIDToSQLT_LVC};
  for (const auto convert : all) {
    char out[32] = {};
    const Fetched got = fetch(convert, "", out, 32);
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.indicator, -1);
    EXPECT_EQ(got.returnCode, 1405);
    EXPECT_EQ(got.code, 0);
    const Fetched silent = fetch(convert, "", out, 32, kText, false);
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(silent.code, 1405);
  }
  for (const auto convert : {ConvertDATEOIDToSQLT_STR, ConvertDATEOIDToSQLT_AVC}) {
    char out[32] = {};
    const Fetched got = fetch(convert, "", out, 32);
    EXPECT_EQ(got.indicator, -1);
    EXPECT_EQ(got.returnCode, 77) << "without a return code";
  }
}

struct FreeDateTime {
  void operator()(OCIDateTime *d) const { Free_OCIDateTime(d); }
};

/// "date time fraction tz:hour:minute:text length" of a fetched descriptor.
std::string shownDescriptor(const OCIDateTime &d, ub4 length) {
  const OCIDateTimeBody &b = *d.body;
  PGtm tm{};
  DecodeOracleOCIDate(&b.date, &tm, 1);
  return shown(tm) + " " + std::to_string(zev::fractionOf(b)) + " " +
         std::to_string(b.tzSeconds) + ":" + std::to_string(b.tzHour) + ":" +
         std::to_string(b.tzMinute) + ":" + b.tzText + " " + std::to_string(length);
}

TEST_F(DateFetch, IntoDescriptors) {
  struct Row {
    const char *name;
    FromServerConverter convert;
    std::string field;
    ub1 format;
    const char *expected;  ///< null: refused
  };
  const std::string moment = "2001-02-03 04:05:06.25", zoned = moment + "+05:30";
  const std::string binary = bigEndian(86400.5);
  const Row rows[] = {
      {"StampDate", ConvertTIMESTAMPOIDToSQLT_DATE, moment, kText,
       "2001-02-03 00:00:00 0 0:0:0: 40"},
      {"StampStamp", ConvertTIMESTAMPOIDToSQLT_TIMESTAMP, moment, kText,
       "2001-02-03 04:05:06 250000 0:0:0: 40"},
      {"StampZone", ConvertTIMESTAMPOIDToSQLT_TIMESTAMP_TZ, moment, kText,
       "2001-02-03 04:05:06 250000 0:0:0: 40"},
      {"StampZoneBinary", ConvertTIMESTAMPOIDToSQLT_TIMESTAMP_TZ, binary, kBinary,
       "2000-01-02 00:00:00 500000 0:0:0: 0"},
      {"StampDateBinary", ConvertTIMESTAMPOIDToSQLT_DATE, binary, kBinary, nullptr},
      {"StampStampBinary", ConvertTIMESTAMPOIDToSQLT_TIMESTAMP, binary, kBinary, nullptr},
      {"ZoneZone", ConvertTIMESTAMPTZOIDToSQLT_TIMESTAMP_TZ, zoned, kText,
       "2001-02-03 04:05:06 250000 -19800:5:30:-05:30 40"},
      {"ZoneZoneBinary", ConvertTIMESTAMPTZOIDToSQLT_TIMESTAMP_TZ, binary, kBinary,
       nullptr},
      {"TextDate", ConvertTEXTOIDToSQLT_DATE, moment, kText,
       "2001-02-03 00:00:00 0 0:0:0: 40"},
      {"TextStamp", ConvertTEXTOIDToSQLT_TIMESTAMP, moment, kText,
       "2001-02-03 04:05:06 250000 0:0:0: 40"},
      {"TextZone", ConvertTEXTOIDToSQLT_TIMESTAMP_TZ, zoned, kText,
       "2001-02-03 04:05:06 250000 -19800:5:30:-05:30 40"},
      {"TextZoneAsBinary", ConvertTEXTOIDToSQLT_TIMESTAMP_TZ, zoned, kBinary,
       "2001-02-03 04:05:06 250000 -19800:5:30:-05:30 40"},
      {"OtherFormat", ConvertTEXTOIDToSQLT_TIMESTAMP_TZ, zoned, 2, nullptr},
  };
  for (const Row &row : rows) {
    const std::unique_ptr<OCIDateTime, FreeDateTime> d(
        Alloc_OCIDateTime(OCI_DTYPE_TIMESTAMP_TZ));
    OCIDateTime *target = d.get();
    const Fetched got = fetch(row.convert, row.field, &target, 8, row.format);
    EXPECT_EQ(got.status, row.expected ? 0 : -1) << row.name;
    if (row.expected) {
      EXPECT_EQ(shownDescriptor(*d, got.length), row.expected) << row.name;
    }
    OCIDateTime *nobody = nullptr;
    EXPECT_EQ(fetch(row.convert, row.field, &nobody, 8, row.format).status, -1);
  }
  OCIDateTime *target = nullptr;
  EXPECT_EQ(fetch(ConvertTEXTOIDToSQLT_TIMESTAMP, "\x01", &target, 8).code, 0);
  const std::unique_ptr<OCIDateTime, FreeDateTime> d(
      Alloc_OCIDateTime(OCI_DTYPE_TIMESTAMP));
  target = d.get();
  EXPECT_EQ(fetch(ConvertTEXTOIDToSQLT_TIMESTAMP, "\x01", &target, 8).code, 1843);
  EXPECT_EQ(fetch(ConvertTEXTOIDToSQLT_TIMESTAMP_TZ, "\x01", &target, 8).code, 0);
}

TEST_F(DateFetch, IntervalsIntoTheirDescriptor) {
  OCIInterval *const interval = Alloc_OCIInterval(OCI_DTYPE_INTERVAL_DS);
  const struct {
    const char *field;
    sword status;
    const char *parts;
  } rows[] = {{"1 day 02:03:04", 0, "0 1 7384"},
              {"@ 1 year 2 mons 3 days 4 hours 5 mins 6.25 secs", 0, "14 3 14706.2"},
              {"P1Y2M3DT4H5M6S", 0, "14 3 14706"},
              {"1-2", 0, "14 0 0"},
              {"30:00:00", 0, "0 1 21600"},
              {"-30:00:00", 0, "0 -1 -21600"},
              {"1 day -01:00:00", 0, "0 0 82800"},
              {"foo", -1, nullptr},
              {"99999999999", -1, nullptr}};
  for (const auto &[field, status, parts] : rows) {
    OCIInterval *target = interval;
    const Fetched got = fetch(ConvertINTERVALOIDToSQLT_INTERVAL_DS, field, &target, 8);
    EXPECT_EQ(got.status, status) << field;
    if (!parts) continue;
    char text[64];
    const Interval &i = interval->body->interval;
    std::snprintf(text, sizeof text, "%d %d %g", i.month, i.day, i.time);
    EXPECT_STREQ(text, parts) << field;
    EXPECT_EQ(got.length, 40u);
  }
  Free_OCIInterval(interval);
}

/// A member of the text family with a target of `cap` bytes: what it leaves.
struct TextRow {
  const char *name;
  FromServerConverter convert;
  const char *field;
  ub4 cap;
  sword status;
  ub4 length;
  sb2 indicator;
  int code;
  const char *target;  ///< its first bytes; "~" where nothing was written
};

// clang-format off
const TextRow kTexts[] = {
    {"ChrWhole",      ConvertDATEOIDToSQLT_CHR, "2001-02-03", 10, 0, 10, 0, 0,    "2001-02-03~"},
    {"ChrCut",        ConvertDATEOIDToSQLT_CHR, "2001-02-03", 4,  1, 4,  6, 1406, "2001~"},
    {"LngCut",        ConvertDATEOIDToSQLT_LNG, "2001-02-03", 4,  1, 4,  6, 1406, "2001~"},
    {"AfcWithoutPad", ConvertDATEOIDToSQLT_AFC, "2001-02-03", 14, 0, 10, 0, 0,    "2001-02-03~~~~"},
    {"StrWhole",      ConvertDATEOIDToSQLT_STR, "2001-02-03", 11, 0, 10, 0, 0,    "2001-02-03\0~"},
    {"StrCut",        ConvertDATEOIDToSQLT_STR, "2001-02-03", 10, 0, 10, 1, 1406, "2001-02-0\0~"},
    {"AvcCut",        ConvertDATEOIDToSQLT_AVC, "2001-02-03", 5,  0, 5,  6, 1406, "2001\0~"},
    {"StrNoRoom",     ConvertDATEOIDToSQLT_STR, "2001-02-03", 0,  0, 0,  11, 1406, "~"},
    {"VcsWhole",      ConvertDATEOIDToSQLT_VCS, "2001-02-03", 12, 0, 12, 0, 0,    "\x0a\0" "2001-02-03~"},
    {"VcsNarrow",     ConvertDATEOIDToSQLT_VCS, "2001-02-03", 10, -1, 10, 0, 0,   "\x08\0" "2001-02-~"},
    {"VcsCut",        ConvertDATEOIDToSQLT_VCS, "2001-02-03", 6,  1, 6,  4, 1406, "\x04\0" "2001~"},
    {"VcsNoPrefix",   ConvertDATEOIDToSQLT_VCS, "2001-02-03", 1, -1, 1,  0, 0,    "~"},
    {"LvcWhole",      ConvertDATEOIDToSQLT_LVC, "2001-02-03", 14, 0, 14, 0, 0,    "\x0a\0\0\0" "2001-02-03~"},
    {"LvcCut",        ConvertDATEOIDToSQLT_LVC, "2001-02-03", 8,  1, 8,  6, 1406, "\x04\0\0\0" "2001~"},
    {"LvcNoPrefix",   ConvertDATEOIDToSQLT_LVC, "2001-02-03", 3, -1, 3, 77, 0,    "~"},
    {"Infinity",      ConvertDATEOIDToSQLT_STR, "infinity",   20, 0, 8,  0, 0,    "infinity\0~"},
};
// clang-format on

TEST_F(DateFetch, AsText) {
  for (const TextRow &row : kTexts) {
    std::string target(24, '~');
    const Fetched got = fetch(row.convert, row.field, target.data(), row.cap);
    EXPECT_EQ(got.status, row.status) << row.name;
    EXPECT_EQ(got.length, row.length) << row.name;
    EXPECT_EQ(got.indicator, row.indicator) << row.name;
    EXPECT_EQ(got.code, row.code) << row.name;
    std::size_t expected = 0;
    while (expected < 16 && row.target[expected] != '~') ++expected;
    EXPECT_EQ(target.substr(0, expected), std::string(row.target, expected)) << row.name;
    EXPECT_EQ(target[std::max<std::size_t>(expected, row.cap)], '~') << row.name;
  }
}

TEST_F(DateFetch, TextHasItsLongestField) {
  char target[8];
  EXPECT_EQ(fetch(ConvertDATEOIDToSQLT_CHR, std::string(4001, 'x'), target, 8).status,
            -1);
  EXPECT_EQ(fetch(ConvertDATEOIDToSQLT_CHR, std::string(4000, 'x'), target, 8).status, 1);
  EXPECT_EQ(fetch(ConvertDATEOIDToSQLT_AFC, std::string(2001, 'x'), target, 8).status,
            -1);
  EXPECT_EQ(fetch(ConvertDATEOIDToSQLT_AVC, std::string(2001, 'x'), target, 8).status,
            -1);
  EXPECT_EQ(fetch(ConvertDATEOIDToSQLT_VCS, std::string(65534, 'x'), target, 8).status,
            -1);
  const Fetched longest =
      fetch(ConvertDATEOIDToSQLT_LNG, std::string(70000, 'x'), target, 8);
  EXPECT_EQ(longest.status, 1);
  EXPECT_EQ(longest.indicator, -2) << "65534 for all counts from 65536 on";
}

TEST_F(DateFetch, BinaryAsText) {
  const std::string field = bigEndian(86399);
  const std::string text = "2000-01-01 23:59:59";
  char target[40];
  const auto run = [&](FromServerConverter convert, ub4 cap) {
    std::memset(target, '~', sizeof target);
    return fetch(convert, field, target, cap, kBinary);
  };
  Fetched got = run(ConvertDATEOIDToSQLT_CHR, 19);
  EXPECT_EQ(got.status, 0);
  EXPECT_EQ(std::string(target, 20), text + "~");
  EXPECT_EQ(got.length, 19u);
  EXPECT_EQ(run(ConvertDATEOIDToSQLT_CHR, 18).status, -1);
  got = run(ConvertDATEOIDToSQLT_STR, 30);
  EXPECT_EQ(std::string(target, 22), text + "~" + std::string(1, '\0') + "~");
  EXPECT_EQ(got.length, 20u);
  got = run(ConvertDATEOIDToSQLT_VCS, 30);
  EXPECT_EQ(std::string(target, 22), std::string("\x13\0", 2) + text + "~");
  EXPECT_EQ(got.length, 21u);
  got = run(ConvertDATEOIDToSQLT_LVC, 30);
  EXPECT_EQ(std::string(target, 24), std::string("\x13\0\0\0", 4) + text + "~");
  EXPECT_EQ(got.length, 23u);
}

TEST_F(DateFetch, IntoAStringValue) {
  char chars[16];
  OCIString string{};
  string.text = reinterpret_cast<OraText *>(chars);
  string.allocatedSize = 15;
  OCIString *target = &string;
  std::memset(chars, '~', sizeof chars);
  Fetched got = fetch(ConvertDATEOIDToSQLT_VST, "2001-02-03", &target, 8);
  EXPECT_EQ(got.status, 0);
  EXPECT_STREQ(chars, "2001-02-03");
  EXPECT_EQ(string.length, 9u) << "one less than the text";
  string.allocatedSize = 5;
  got = fetch(ConvertDATEOIDToSQLT_VST, "2001-02-03", &target, 8);
  EXPECT_EQ(got.code, 1406);
  EXPECT_STREQ(chars, "2001");
  EXPECT_EQ(string.length, 4u);
  string.allocatedSize = 0;
  fetch(ConvertDATEOIDToSQLT_VST, "2001-02-03", &target, 8);
  EXPECT_EQ(string.length, 0u);
  EXPECT_EQ(fetch(ConvertDATEOIDToSQLT_VST, "2001-02-03", &target, 3).status, -1);
}

/// A bound value as the text that is sent, or its status.
class DateBind : public testing::Test {
 protected:
  std::string bind(ToServerConverter convert, const void *value, sb4 length) {
    void *out = nullptr;
    ub4 outLength = 77;
    ub1 format = 77;
    sb2 indicator = 0;
    const sword status =
        convert(records_.errhp, value, length, &indicator, &out, &outLength, &format);
    const zev::Malloced<char> text(static_cast<char *>(out));
    if (status != 0) return "status " + std::to_string(status);
    EXPECT_EQ(format, 0);
    EXPECT_EQ(outLength, std::strlen(text.get()) + 1);
    return text.get();
  }
  Environment records_;
};

TEST_F(DateBind, BytesOfDates) {
  const PGtm plain = dateTime(2001, 2, 3, 4, 5, 6), old = dateTime(0, 1, 1);
  ub1 bytes[7];
  OCIDate date{};
  EncodeOracleDATE(bytes, &plain, 1);
  EncodeOracleOCIDate(&date, &plain, 1);
  EXPECT_EQ(bind(ConvertSQLT_DATToTIMESTAMPOID, bytes, 7), "2001-02-03 04:05:06");
  EXPECT_EQ(bind(ConvertSQLT_DATToDATEOID, bytes, 7), "2001-02-03 00:00:00");
  EXPECT_EQ(bind(ConvertSQLT_ODTToTIMESTAMPOID, &date, 8), "2001-02-03 04:05:06");
  EXPECT_EQ(bind(ConvertSQLT_DATToTIMESTAMPOID, bytes, 6), "status -1");
  EXPECT_EQ(bind(ConvertSQLT_DATToDATEOID, bytes, 6), "status -1");
  EXPECT_EQ(bind(ConvertSQLT_ODTToTIMESTAMPOID, &date, 7), "status -1");
  EXPECT_EQ(bind(ConvertSQLT_DATToTIMESTAMPOID, nullptr, 7), "status -1");
  EncodeOracleDATE(bytes, &old, 1);
  EXPECT_EQ(bind(ConvertSQLT_DATToTIMESTAMPOID, bytes, 7), "0001-01-01 00:00:00 BC");
}

TEST_F(DateBind, Descriptors) {
  const std::unique_ptr<OCIDateTime, FreeDateTime> d(
      Alloc_OCIDateTime(OCI_DTYPE_TIMESTAMP_TZ));
  OCIDateTime *const value = d.get();
  const PGtm plain = dateTime(2001, 2, 3, 4, 5, 6);
  EncodeOracleOCIDate(&d->body->date, &plain, 1);
  const auto all = [&] {
    return bind(ConvertSQLT_DATEToTIMESTAMPOID, &value, 8) + "|" +
           bind(ConvertSQLT_TIMESTAMPToTIMESTAMPOID, &value, 8) + "|" +
           bind(ConvertSQLT_TIMESTAMP_TZToTIMESTAMPTZOID, &value, 8);
  };
  EXPECT_EQ(all(), "2001-02-03 00:00:00|2001-02-03 04:05:06|2001-02-03 04:05:06-00");
  d->body->tzSeconds = 19800;
  zev::setFraction(*d->body, 123456);
  EXPECT_EQ(all(),
            "2001-02-03 00:00:00|2001-02-03 04:05:6.123456|2001-02-03 "
            "04:05:6.123456+05:30");
  zev::setFraction(*d->body, 500000000);
  d->body->tzSeconds = -28800;
  EXPECT_EQ(all(), "2001-02-03 00:00:00|2001-02-03 04:05:6.50|2001-02-03 04:05:6.50-08");
  OCIDateTime *const nobody = nullptr;
  for (const auto convert :
       {ConvertSQLT_DATEToTIMESTAMPOID, ConvertSQLT_TIMESTAMPToTIMESTAMPOID,
        ConvertSQLT_TIMESTAMP_TZToTIMESTAMPTZOID}) {
    EXPECT_EQ(bind(convert, &nobody, 8), "status -1");
    EXPECT_EQ(bind(convert, nullptr, 8), "status -1");
  }
}

TEST_F(DateBind, Intervals) {
  OCIInterval *const interval = Alloc_OCIInterval(OCI_DTYPE_INTERVAL_DS);
  interval->body->interval = {7384.75, 1, 14};
  EXPECT_EQ(bind(ConvertSQLT_INTERVAL_DSToINTERVALOID, &interval, 8),
            "@ 1 year 2 mons 1 day 2 hours 3 mins 4 secs")
      << "without the fraction";
  interval->body->interval = {};
  EXPECT_EQ(bind(ConvertSQLT_INTERVAL_DSToINTERVALOID, &interval, 8), "@ 0");
  EXPECT_EQ(bind(ConvertSQLT_INTERVAL_DSToINTERVALOID, &interval, 6), "status -1");
  OCIInterval *const nobody = nullptr;
  EXPECT_EQ(bind(ConvertSQLT_INTERVAL_DSToINTERVALOID, &nobody, 8), "status -1");
  Free_OCIInterval(interval);
}

}  // namespace
}  // namespace zevtest
