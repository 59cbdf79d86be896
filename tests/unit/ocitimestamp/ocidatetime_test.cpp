/// The OCIDateTime functions, by their published interface.
#include "ocidatetime_fixture.h"

namespace zevtest {
namespace {

struct BadParts {
  ub4 type;
  int year, month, day, hour, minute, second;
  int error;
};

TEST_F(OciDateTime, PartsOutOfRangeAreToldByTheirNumbers) {
  constexpr ub4 kDate = OCI_DTYPE_DATE, kPlain = OCI_DTYPE_TIMESTAMP,
                kZoned = OCI_DTYPE_TIMESTAMP_TZ, kLocal = OCI_DTYPE_TIMESTAMP_LTZ;
  const BadParts rows[] = {
      {kDate, 0, 0, 0, 0, 0, 0, 8207},       {kDate, 0, 1, 1, 0, 0, 0, 9216},
      {kDate, 10000, 1, 1, 0, 0, 0, 9216},   {kDate, 2001, 1, 0, 0, 0, 0, 3},
      {kDate, 2001, 1, 200, 0, 0, 0, 1},     {kDate, 2001, 13, 1, 0, 0, 0, 4},
      {kDate, 2001, 0, 1, 0, 0, 0, 12},      {kDate, 2001, 4, 31, 0, 0, 0, 1},
      {kZoned, 2001, 1, 1, 200, 0, 0, 64},   {kZoned, 2001, 1, 1, 0, 200, 0, 256},
      {kZoned, 2001, 1, 1, 0, 0, 200, 1024}, {kZoned, 2001, 1, 1, 24, 0, 0, 64},
      {kPlain, 2001, 1, 1, 24, 0, 0, 64},    {kLocal, 2001, 1, 1, 24, 0, 0, 64},
      {kLocal, 2001, 1, 1, 0, 200, 0, 256},  {kLocal, 2001, 1, 1, 0, 0, 60, 1024},
      {kPlain, 2001, 1, 1, 0, 60, 0, 256},   {kPlain, 2001, 1, 1, 0, 0, 60, 1024},
  };
  for (const BadParts &row : rows) {
    OCIDateTime *d = dateTime(row.type);
    d->body->valid = 0;
    EXPECT_EQ(construct(d, row.year, row.month, row.day, row.hour, row.minute, row.second,
                        0, row.type == kZoned ? "+00:00" : nullptr),
              OCI_ERROR)
        << row.error;
    EXPECT_EQ(records_.takeRecord(), row.error);
    EXPECT_EQ(d->body->valid, 0);
  }
}

TEST_F(OciDateTime, PlainDateHasNoTimeFractionOrZone) {
  const OCIDateTime *d =
      made(OCI_DTYPE_DATE, 2001, 2, 3, 99, 99, 99, 123, "no zone at all");
  EXPECT_EQ(fields(d), "2001-02-03 00:00:00");
  EXPECT_EQ(toText(d), "03-FEB-01");
}

TEST_F(OciDateTime, ZoneBeyondFourteenHoursIs16384) {
  EXPECT_EQ(construct(dateTime(OCI_DTYPE_TIMESTAMP_TZ), 2001, 2, 3, 4, 5, 6, 0, "+15:00"),
            OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 16384);
}

TEST_F(OciDateTime, MonthAddedToItsLastDayIsTheNextOnesLastDay) {
  OCIDateTime *from = made(OCI_DTYPE_TIMESTAMP, 2001, 1, 31);
  OCIDateTime *to = dateTime(OCI_DTYPE_TIMESTAMP);
  ASSERT_EQ(OCIDateTimeIntervalAdd(env(), err(), from, interval(1, 0), to), OCI_SUCCESS);
  EXPECT_EQ(fields(to), "2001-02-28 00:00:00");
}

TEST_F(OciDateTime, SubtractingLeavesTheIntervalNegated) {
  OCIDateTime *from = made(OCI_DTYPE_TIMESTAMP, 2001, 3, 10);
  OCIDateTime *to = dateTime(OCI_DTYPE_TIMESTAMP);
  OCIInterval *span = interval(0, 3);
  ASSERT_EQ(OCIDateTimeIntervalSub(env(), err(), from, span, to), OCI_SUCCESS);
  EXPECT_EQ(fields(to), "2001-03-07 00:00:00");
  ASSERT_EQ(OCIDateTimeIntervalSub(env(), err(), from, span, to), OCI_SUCCESS);
  EXPECT_EQ(fields(to), "2001-03-13 00:00:00");
}

TEST_F(OciDateTime, ArrayOfAZonedValueIsInUtc) {
  const OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, 4, 5, 6, 123, "+05:30");
  const ub1 expected[13] = {0x78, 0x65, 0x02, 0x02, 0x17, 0x24, 0x07,
                            0x00, 0x00, 0x00, 0x7B, 0x19, 0x5A};
  ub1 bytes[13];
  ub4 length = sizeof bytes;
  ASSERT_EQ(OCIDateTimeToArray(env(), err(), d, interval(0, 0), bytes, &length, 9),
            OCI_SUCCESS);
  EXPECT_EQ(length, 13u);
  EXPECT_EQ(std::memcmp(bytes, expected, sizeof bytes), 0);
}

TEST_F(OciDateTime, ArrayOfAPlainTimestampHasNoFraction) {
  const OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 4, 5, 6, 123);
  const ub1 expected[7] = {0x78, 0x65, 2, 3, 5, 6, 7};
  ub1 bytes[7];
  ub4 length = sizeof bytes;
  ASSERT_EQ(OCIDateTimeToArray(env(), err(), d, interval(0, 0), bytes, &length, 9),
            OCI_SUCCESS);
  EXPECT_EQ(length, 7u);
  EXPECT_EQ(std::memcmp(bytes, expected, sizeof bytes), 0);
}

TEST_F(OciDateTime, ArrayWithTooLittleRoomIs1891) {
  for (const ub4 type : kTypes) {
    const OCIDateTime *d =
        made(type, 2001, 2, 3, 4, 5, 6, 123, type == OCI_DTYPE_DATE ? nullptr : "+05:30");
    const ub4 whole = type == OCI_DTYPE_DATE           ? 4
                      : type == OCI_DTYPE_TIMESTAMP_TZ ? 13
                                                       : 7;
    for (ub4 room = 0; room < 16; ++room) {
      const std::unique_ptr<ub1[]> bytes(new ub1[room]);
      ub4 length = room;
      const sword status =
          OCIDateTimeToArray(env(), err(), d, interval(0, 0), bytes.get(), &length, 0);
      EXPECT_EQ(status, room < whole ? OCI_ERROR : OCI_SUCCESS) << type << " " << room;
      EXPECT_EQ(records_.takeRecord(), room < whole ? 1891 : 0);
    }
  }
}

TEST_F(OciDateTime, TimeOfAPlainDateIs1878AndZeros) {
  OCIDateTime *d = made(OCI_DTYPE_DATE, 2001, 2, 3);
  ub1 hour = 9, minute = 9, second = 9;
  ub4 fraction = 9;
  EXPECT_EQ(OCIDateTimeGetTime(env(), err(), d, &hour, &minute, &second, &fraction),
            OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 1878);
  EXPECT_EQ(hour + minute + second, 0);
  EXPECT_EQ(fraction, 0u);
}

TEST_F(OciDateTime, ZoneNameNeedsSevenBytes) {
  const OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, 4, 5, 6, 0, "-05:30");
  ub1 name[8];
  ub4 length = 6;
  EXPECT_EQ(OCIDateTimeGetTimeZoneName(env(), err(), d, name, &length), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 0);
  length = 7;
  EXPECT_EQ(OCIDateTimeGetTimeZoneName(env(), err(), d, name, &length), OCI_SUCCESS);
  EXPECT_EQ(length, 6u);
  EXPECT_STREQ(reinterpret_cast<char *>(name), "-05:30");
}

TEST_F(OciDateTime, DefaultFormatOfATimestampHasColonsAndThreeDigits) {
  EXPECT_EQ(toText(made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 14, 5, 6)),
            "03-FEB-01 02:05:06:000 PM");
}

TEST_F(OciDateTime, TextIsReadBack) {
  for (const ub4 type : kTypes) {
    OCIDateTime *d = dateTime(type);
    d->body->valid = 0;
    const char *format = type == OCI_DTYPE_DATE ? "YYYY-MM-DD" : "YYYY-MM-DD HH24:MI:SS";
    const std::string text =
        type == OCI_DTYPE_DATE ? "2001-02-03" : "2001-02-03 04:05:06";
    ASSERT_EQ(fromText(d, text, format), OCI_SUCCESS) << records_.takeRecord();
    EXPECT_EQ(toText(d, format), text);
  }
}

TEST_F(OciDateTime, DescriptorsOfTwoTypesAreNotAssignedOrCompared) {
  const OCIDateTime *date = made(OCI_DTYPE_DATE, 2001, 2, 3);
  OCIDateTime *timestamp = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3);
  EXPECT_EQ(OCIDateTimeAssign(env(), err(), date, timestamp), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
  sword result = 0;
  EXPECT_EQ(OCIDateTimeCompare(env(), err(), date, timestamp, &result), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 1870);
}

}  // namespace
}  // namespace zevtest
