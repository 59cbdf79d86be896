/// The byte forms of dates and times, their descriptors, and the text that is made of
/// them.
#include <cstring>
#include <functional>
#include <limits>
#include <memory>

#include "core/owned.h"
#include "datetime_fixture.h"
#include "types/ocitimestamp/date_text.h"
#include "types/ocitimestamp/zone.h"

namespace zevtest {
namespace {

const PGtm kPlain = dateTime(2001, 2, 3, 4, 5, 6);

std::string hex(const void *bytes, std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < size; ++i) {
    char two[4];
    std::snprintf(two, sizeof two, "%02X ", static_cast<const ub1 *>(bytes)[i]);
    text += two;
  }
  return text.substr(0, text.size() - 1);
}

struct FreeDateTime {
  void operator()(OCIDateTime *descriptor) const { Free_OCIDateTime(descriptor); }
};
using DateTime = std::unique_ptr<OCIDateTime, FreeDateTime>;

DateTime make(ub4 type, const PGtm &tm = kPlain) {
  DateTime made(Alloc_OCIDateTime(type));
  EncodeOracleOCIDate(&made->body->date, &tm, 1);
  return made;
}

TEST(DateBytes, KnownValues) {
  const struct {
    PGtm tm;
    sb4 withTime;
    const char *bytes;
  } rows[] = {
      {kPlain, 1, "78 65 02 03 05 06 07"},
      {kPlain, 0, "78 65 02 03 01 01 01"},
      {dateTime(1999, 12, 31, 23, 59, 59), 1, "77 C7 0C 1F 18 3C 3C"},
      {dateTime(-4712, 1, 1), 1, "35 58 01 01 01 01 01"},
  };
  for (const auto &[tm, withTime, bytes] : rows) {
    ub1 out[7];
    ASSERT_EQ(EncodeOracleDATE(out, &tm, withTime), 0);
    EXPECT_EQ(hex(out, 7), bytes);
    PGtm back{};
    ASSERT_EQ(DecodeOracleDATE(out, &back, withTime), 0);
    EXPECT_EQ(shown(back).substr(0, withTime ? 30 : 10),
              shown(tm).substr(0, withTime ? 30 : 10));
  }
  EXPECT_EQ(EncodeOracleDATE(nullptr, &kPlain, 1), -1);
  PGtm tm{};
  EXPECT_EQ(DecodeOracleDATE(nullptr, &tm, 1), -1);
}

TEST(DateBytes, EveryDayAndSecondOfAnOracleYear) {
  auto random = generator();
  const auto pick = [&](sb4 least, sb4 most) {
    return std::uniform_int_distribution<sb4>(least, most)(random);
  };
  for (int i = 0; i < 200'000; ++i) {
    const PGtm tm = dateTime(pick(-4712, 9999), pick(1, 12), pick(1, 31), pick(0, 23),
                             pick(0, 59), pick(0, 59));
    ub1 bytes[7];
    OCIDate date{};
    PGtm back{}, other{};
    EncodeOracleDATE(bytes, &tm, 1);
    EncodeOracleOCIDate(&date, &tm, 1);
    DecodeOracleDATE(bytes, &back, 1);
    DecodeOracleOCIDate(&date, &other, 1);
    ASSERT_EQ(shown(back), shown(tm));
    ASSERT_EQ(shown(other), shown(tm));
  }
}

TEST(OciDateBytes, AreNativeAndPlain) {
  OCIDate date;
  static_assert(sizeof date == 8);
  std::memset(&date, 0, sizeof date);
  EncodeOracleOCIDate(&date, &kPlain, 1);
  EXPECT_EQ(hex(&date, 8), "D1 07 02 03 04 05 06 00");
  const PGtm other = dateTime(-43, 3, 15, 9, 9, 9);
  EncodeOracleOCIDate(&date, &other, 0);
  EXPECT_EQ(hex(&date, 8), "D5 FF 03 0F 04 05 06 00") << "the time stays";
  EXPECT_EQ(EncodeOracleOCIDate(nullptr, &kPlain, 1), -1);
  PGtm tm{};
  EXPECT_EQ(DecodeOracleOCIDate(nullptr, &tm, 1), -1);
}

TEST(DateTimeDescriptor, HoldsACountOfMicroseconds) {
  const DateTime d(Alloc_OCIDateTime(OCI_DTYPE_TIMESTAMP));
  EXPECT_EQ(d->body->dateTimeType, 68);
  EXPECT_EQ(d->body->valid, 1);
  ASSERT_EQ(EncodeOracleOCIDateTime(d->body, &kPlain, 0, 0.25), 0);
  EXPECT_EQ(hex(d->body->fraction, 4), "00 03 D0 90");
  EXPECT_EQ(zev::fractionOf(*d->body), 250000u);
  PGtm tm{};
  double fsec = 0;
  ASSERT_EQ(DecodeOracleOCIDateTime(d.get(), &tm, &fsec, 0), 0);
  EXPECT_EQ(shown(tm), shown(kPlain));
  EXPECT_EQ(fsec, 250000);
  EXPECT_EQ(tm.tm_zone, nullptr);
  EXPECT_EQ(DecodeOracleOCIDateTime(nullptr, &tm, &fsec, 0), -1);
  EXPECT_EQ(EncodeOracleOCIDateTime(nullptr, &tm, 0, 0), -1);
}

TEST(DateTimeDescriptor, ShowsItsZoneEastButItsTextWest) {
  struct Row {
    sb8 gmtoff;
    int hour, minute, second;
    sb4 seconds;
    const char *text;
  };
  for (const Row &row :
       {Row{19800, 5, 30, 0, -19800, "-05:30"}, Row{-28800, -8, 0, 0, 28800, "+-8:00"},
        Row{0, 0, 0, 0, 0, "+00:00"}, Row{-1800, 0, 30, 0, 1800, "+00:30"},
        Row{3661, 1, 1, 1, -3661, "-01:01"}}) {
    const DateTime d(Alloc_OCIDateTime(OCI_DTYPE_TIMESTAMP_TZ));
    PGtm tm = kPlain;
    tm.tm_gmtoff = row.gmtoff;
    ASSERT_EQ(EncodeOracleOCIDateTime(d->body, &tm, 1, 0), 0);
    EXPECT_EQ(d->body->tzHour, row.hour);
    EXPECT_EQ(d->body->tzMinute, row.minute);
    EXPECT_EQ(d->body->tzSecond, row.second);
    EXPECT_EQ(d->body->tzSeconds, row.seconds);
    EXPECT_STREQ(d->body->tzText, row.text);
    double fsec = 0;
    ASSERT_EQ(DecodeOracleOCIDateTime(d.get(), &tm, &fsec, 1), 0);
    EXPECT_EQ(tm.tm_gmtoff, -row.seconds);
    EXPECT_EQ(tm.tm_zone, d->body->tzText);
  }
}

TEST(DateTimeDescriptor, OfTheLocalZoneIsReadBesideIt) {
  const LocalZone zone("XYZ-3:30");
  const DateTime d = make(OCI_DTYPE_TIMESTAMP_LTZ);
  PGtm tm{};
  double fsec = 0;
  d->body->tzHour = 3;
  d->body->tzMinute = 30;
  ASSERT_EQ(DecodeOracleOCIDateTime(d.get(), &tm, &fsec, 1), 0);
  EXPECT_EQ(tm.tm_gmtoff, -12600) << "the local zone, west positive as it comes";
  d->body->tzHour = 1;
  d->body->tzMinute = 0;
  ASSERT_EQ(DecodeOracleOCIDateTime(d.get(), &tm, &fsec, 1), 0);
  EXPECT_EQ(tm.tm_gmtoff, -(-12600 + (30 + 4 * 60) * 60));
  d->body->tzHour = -1;
  d->body->tzMinute = 40;
  ASSERT_EQ(DecodeOracleOCIDateTime(d.get(), &tm, &fsec, 1), 0);
  EXPECT_EQ(tm.tm_gmtoff, -(-12600 + (((30 - 40) & 255) + 2 * 60) * 60));
}

TEST(DateTimeDescriptor, IsATimestampByItsType) {
  const LocalZone zone("XYZ-3:30");
  Timestamp plain = 0;
  tm2timestamp(&kPlain, 0, nullptr, &plain);
  for (const ub4 type : {OCI_DTYPE_DATE, OCI_DTYPE_TIMESTAMP, OCI_DTYPE_TIMESTAMP_TZ}) {
    const DateTime d = make(type);
    d->body->tzHour = 5;
    EXPECT_EQ(ConvertOCIDateTimeToTimestamp(d.get()), plain) << type;
  }
  const DateTime local = make(OCI_DTYPE_TIMESTAMP_LTZ);
  local->body->tzHour = 1;
  local->body->tzMinute = 15;
  EXPECT_EQ(ConvertOCIDateTimeToTimestamp(local.get()), plain + 12600 - 75 * 60);
  local->body->tzHour = -1;
  EXPECT_EQ(ConvertOCIDateTimeToTimestamp(local.get()), plain + 12600 + 75 * 60);
  const DateTime counted = make(OCI_DTYPE_TIMESTAMP);
  zev::setFraction(*counted->body, 7);
  EXPECT_EQ(ConvertOCIDateTimeToTimestamp(counted.get()), plain + 7);
  EXPECT_EQ(ConvertOCIDateTimeToTimestamp(nullptr), 0);
}

TEST(DateTimeDescriptor, TakesATimestampByItsType) {
  Timestamp plain = 0;
  tm2timestamp(&kPlain, 0.5, nullptr, &plain);
  const PGtm old = dateTime(1999, 9, 9, 9, 9, 9);
  const DateTime date = make(OCI_DTYPE_DATE, old), stamp = make(OCI_DTYPE_TIMESTAMP, old),
                 zoned = make(OCI_DTYPE_TIMESTAMP_TZ, old);
  zoned->body->tzSeconds = -19800;
  for (const DateTime &d : {std::cref(date), std::cref(stamp), std::cref(zoned)}) {
    zev::setFraction(*d->body, 3);
    ASSERT_EQ(ConvertOCIDateTimeFromTimestamp(d.get(), plain), 0);
    EXPECT_EQ(zev::fractionOf(*d->body), 3u) << "the fraction is not touched";
  }
  EXPECT_EQ(hex(&date->body->date, 7), "D1 07 02 03 09 09 09");
  EXPECT_EQ(hex(&stamp->body->date, 7), "D1 07 02 03 04 05 06");
  EXPECT_EQ(zoned->body->tzHour * 100 + zoned->body->tzMinute, 530);
  EXPECT_STREQ(zoned->body->tzText, "-05:30");
  for (int i = 0; i < 5; ++i) ConvertOCIDateTimeFromTimestamp(zoned.get(), plain);
  EXPECT_STREQ(zoned->body->tzText, "-05:30-05:3") << "as far as there is room";
  EXPECT_EQ(ConvertOCIDateTimeFromTimestamp(date.get(), 1e300), -1);
  EXPECT_EQ(ConvertOCIDateTimeFromTimestamp(nullptr, 0), -1);
}

TEST(Descriptors, AreFreedByTheirKind) {
  Free_OCIDateTime(nullptr);
  Free_OCIInterval(nullptr);
  OCIInterval *interval = Alloc_OCIInterval(OCI_DTYPE_INTERVAL_YM);
  ASSERT_TRUE(interval);
  EXPECT_EQ(interval->body->intervalType, 62);
  EXPECT_EQ(interval->body->valid, 1);
  Free_OCIDateTime(static_cast<OCIDateTime *>(static_cast<void *>(interval)));
  EXPECT_EQ(interval->handleType, HANDLE_OCIInterval) << "left alone";
  Free_OCIInterval(interval);
}

TEST(Descriptors, AreAllocatedThroughTheInterface) {
  Environment records;
  for (const ub4 type :
       {OCI_DTYPE_INTERVAL_YM, OCI_DTYPE_INTERVAL_DS, OCI_DTYPE_DATE, OCI_DTYPE_TIMESTAMP,
        OCI_DTYPE_TIMESTAMP_TZ, OCI_DTYPE_TIMESTAMP_LTZ}) {
    void *kept = nullptr, *freed = nullptr;
    ASSERT_EQ(OCIDescriptorAlloc(records.env, &kept, type, 0, nullptr), OCI_SUCCESS);
    ASSERT_EQ(OCIDescriptorAlloc(records.env, &freed, type, 0, nullptr), OCI_SUCCESS);
    const bool isInterval =
        type == OCI_DTYPE_INTERVAL_YM || type == OCI_DTYPE_INTERVAL_DS;
    EXPECT_EQ(zev::asInterval(kept) != nullptr, isInterval);
    EXPECT_EQ(zev::asDateTime(kept) != nullptr, !isInterval);
    EXPECT_EQ(
        OCIDescriptorFree(freed, isInterval ? OCI_DTYPE_DATE : OCI_DTYPE_INTERVAL_DS),
        OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIDescriptorFree(freed, type), OCI_SUCCESS);
  }
}

TEST(ZoneText, IsDecodedEastPositive) {
  struct Row {
    const char *text;
    sb4 status, seconds;
    int hour, minute;
  };
  for (const Row &row :
       {Row{"+14:59", 0, 53940, 14, 59}, Row{"+05:30", 0, 19800, 5, 30},
        Row{"-05:30", 0, -19800, -5, 30}, Row{"5", 0, 18000, 5, 0},
        Row{"+15:00", -5, 54000, 15, 0}, Row{"-12:00", 0, -43200, -12, 0},
        Row{"-13:00", -5, -46800, -13, 0}, Row{"+05:60", -5, 21600, 5, 60},
        Row{"+05:30x", -1, 19800, 5, 30}, Row{"x", -1, 0, 0, 0},
        Row{"+05:-9", 0, 18000, 5, 0}, Row{"-00:30", 0, -1800, 0, 30}}) {
    sb4 seconds = 77;
    sb1 hour = 77;
    ub1 minute = 77, second = 77;
    EXPECT_EQ(DecodeTZ(row.text, &seconds, &hour, &minute, &second), row.status)
        << row.text;
    EXPECT_EQ(seconds, row.seconds) << row.text;
    EXPECT_EQ(hour, row.hour) << row.text;
    EXPECT_EQ(minute, row.minute) << row.text;
  }
  sb4 seconds = 0;
  sb1 hour = 0;
  ub1 minute = 0, second = 0;
  EXPECT_EQ(DecodeTZ("99999999999999999999", &seconds, &hour, &minute, &second), -5);
  EXPECT_EQ(DecodeTZ("+1:99999999999999999999", &seconds, &hour, &minute, &second), -5);
  const LocalZone zone("XYZ-3:30");
  EXPECT_EQ(DecodeTZ(nullptr, &seconds, &hour, &minute, &second), 0);
  EXPECT_EQ(seconds, -12600);
  EXPECT_EQ(hour * 100 + minute, 330);
}

TEST(DateByFormat, IsReadWordByWord) {
  const struct {
    const char *text, *format;
    const char *bytes;  ///< null: refused
  } rows[] = {
      {"30-JAN-2001", "DD-MON-YYYY", "78 65 01 1E 00 00 00"},
      {"31-JAN-2001", "DD-MON-YYYY", nullptr},
      {"30-DEC-2001", "DD-MON-YYYY", nullptr},
      {"30-november-2001", "D-MONTH-YYYY", "78 65 0B 1E 00 00 00"},
      {"3/2/99", "DD/M/YY", "77 C7 02 03 00 00 00"},
      {"3/2/100", "DD/M/YY", nullptr},
      {"3/13/99", "DD/MO/YY", nullptr},
      {"2001 2 3 4:5:6", "yyyy mo dd hh:mm:ss", "78 65 02 03 05 06 07"},
      {"24:00:00", "HH:MM:SS", nullptr},
      {"23:61:00", "HH:MM:SS", nullptr},
      {"23:00:61", "HH:MM:SS", nullptr},
      {"23:60:60", "HH:MM:SS", "00 00 00 00 18 3D 3D"},
      {"1 2", "D", nullptr},
      {"1", "D M", nullptr},
      {"1", "Q", nullptr},
      {"", "", "00 00 00 00 00 00 00"},
  };
  for (const auto &[text, format, bytes] : rows) {
    ub1 out[7];
    EXPECT_EQ(ConvertStringToDATE(text, format, out), bytes ? 0 : -1) << text;
    if (bytes) {
      EXPECT_EQ(hex(out, 7), bytes) << text;
    }
  }
  ub1 out[7];
  EXPECT_EQ(ConvertStringToDATE(nullptr, "D", out), -1);
  EXPECT_EQ(ConvertStringToDATE("1", nullptr, out), -1);
  EXPECT_EQ(ConvertStringToDATE("1", "D", nullptr), -1);
}

TEST(DateByFormat, IsWrittenOverTheFormat) {
  ub1 bytes[7];
  EncodeOracleDATE(bytes, &kPlain, 1);
  const struct {
    const char *format, *text;
  } rows[] = {
      {"DD-MON-YYYY", "03-FEB-2001"}, {"MONTH", "FEBTH"}, {"YY/MO/DD", "01/02/03"},
      {"HH:MM:SS", "04:05:06"},       {"D M", "3 2"},     {"DD-XX-YY", "03-"}};
  for (const auto &[format, text] : rows) {
    char out[64];
    EXPECT_EQ(ConvertDATEToString(bytes, format, out), 0);
    EXPECT_STREQ(out, text);
  }
  const PGtm late = dateTime(2001, 12, 13, 14, 15, 16);
  EncodeOracleDATE(bytes, &late, 1);
  for (const auto &[format, text] :
       std::initializer_list<std::pair<const char *, const char *>>{
           {"D", "13"}, {"M-D", "1213"}, {"D,  M", "1312 M"}, {"YYYY", "2001"}}) {
    char written[64];
    EXPECT_EQ(ConvertDATEToString(bytes, format, written), 0);
    EXPECT_EQ(std::string(written).substr(0, 2), std::string(text).substr(0, 2))
        << format;
    EXPECT_LE(std::strlen(written), std::strlen(format) + 2);
  }
  char out[8];
  EXPECT_EQ(ConvertDATEToString(nullptr, "D", out), -1);
  EXPECT_EQ(ConvertDATEToString(bytes, nullptr, out), -1);
  EXPECT_EQ(ConvertDATEToString(bytes, "D", nullptr), -1);
}

TEST(DateByFormat, MonthsByTheirNames) {
  EXPECT_EQ(ismonth("jan", 0), 1);
  EXPECT_EQ(ismonth("NOV", 2), 11);
  EXPECT_EQ(ismonth("December", 2), 0);
  EXPECT_EQ(ismonth("DEC", 0), 0);
  EXPECT_EQ(ismonth("February", 0), 0);
  EXPECT_EQ(ismonth("February", 1), 2);
  EXPECT_EQ(ismonth("January", 1), 0) << "the search begins behind it";
  EXPECT_EQ(ismonth("JAN", 3), 0);
}

TEST(DateByFormat, IsoDatesAreTurnedRound) {
  const LocalZone zone("UTC");
  Environment records;
  char out[64];
  EXPECT_EQ(ConvertISODateToRedwoodDate(records.errhp, "2001-02-03", out), 0);
  EXPECT_STREQ(out, "03-02-2001");
  EXPECT_EQ(ConvertISODateToRedwoodDate(records.errhp, "2001-02-03 04:05:06", out), 0);
  EXPECT_STREQ(out, "03-02-2001 04:05:06.000000");
  EXPECT_EQ(ConvertISODateToRedwoodDate(records.errhp, "2001-02-03 04:05:06.25", out), 0);
  EXPECT_STREQ(out, "03-02-2001 04:05:06.250000000");
  EXPECT_EQ(ConvertISODateToRedwoodDate(records.errhp, "february 30 2001", out), -1);
  EXPECT_EQ(records.takeRecord(), 1891);
}

TEST(TimestampText, HasNoTerminatorAndNoTrueFraction) {
  Environment records;
  const struct {
    double fsec;
    const char *text;
  } rows[] = {{0, "2001-02-03 04:05:06"},
              {0.25, "2001-02-03 04:05:6."},
              {0.75, "2001-02-03 04:05:6.1"}};
  for (const auto &[fsec, expected] : rows) {
    Timestamp timestamp = 0;
    tm2timestamp(&kPlain, fsec, nullptr, &timestamp);
    char text[32] = "~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";
    ub4 length = sizeof text;
    ASSERT_EQ(ConvertTimestampToChars(records.errhp, text, &length, timestamp), 0);
    EXPECT_EQ(std::string(text, length), expected);
    EXPECT_EQ(text[length], '~');
    length = static_cast<ub4>(std::strlen(expected) - 1);
    EXPECT_EQ(ConvertTimestampToChars(records.errhp, text, &length, timestamp), -1);
    EXPECT_EQ(records.takeRecord(), 0);
  }
  char text[32];
  ub4 length = sizeof text;
  EXPECT_EQ(ConvertTimestampToChars(records.errhp, text, &length,
                                    -std::numeric_limits<double>::infinity()),
            0);
  EXPECT_EQ(std::string(text, length), "-infinity");
  length = sizeof text;
  EXPECT_EQ(ConvertTimestampToChars(records.errhp, text, &length, 1e300), -1);
  records.takeRecord();
  EXPECT_EQ(records.lastMessage, "timestamp out of range");
  EXPECT_EQ(ConvertTimestampToChars(records.errhp, nullptr, &length, 0), -1);
}

}  // namespace
}  // namespace zevtest
