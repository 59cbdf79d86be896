/// OCIDateTime between its types, its zones and its bytes.
#include "ocidatetime_fixture.h"

namespace zevtest {
namespace {

class OciDateTimeConvert : public OciDateTime {
 protected:
  std::string converted(OCIDateTime *from, ub4 type) {
    OCIDateTime *to = dateTime(type);
    EXPECT_EQ(OCIDateTimeConvert(env(), err(), from, to), OCI_SUCCESS);
    char text[96];
    std::snprintf(text, sizeof text, "%s.%u %s %d:%d", fields(to).c_str(),
                  unsigned{to->body->fraction[3]}, to->body->tzText, to->body->tzHour,
                  to->body->tzMinute);
    return text;
  }
  sb8 between(sb8 low, sb8 high) {
    return std::uniform_int_distribution<sb8>(low, high)(random_);
  }

  std::mt19937_64 random_ = generator();
};

TEST_F(OciDateTimeConvert, EachTypeTakesWhatItHasOfEachOther) {
  const LocalZone india("IST-5:30");
  struct Row {
    ub4 from, to;
    const char *result;
  };
  constexpr ub4 kDate = OCI_DTYPE_DATE, kPlain = OCI_DTYPE_TIMESTAMP,
                kZoned = OCI_DTYPE_TIMESTAMP_TZ, kLocal = OCI_DTYPE_TIMESTAMP_LTZ;
  const Row rows[] = {
      {kDate, kDate, "2001-02-03 00:00:00.0  0:0"},
      {kDate, kPlain, "2001-02-03 00:00:00.0  0:0"},
      {kDate, kZoned, "2001-02-03 00:00:00.0 +05:30 5:30"},
      {kDate, kLocal, "2001-02-03 00:00:00.0 +05:30 5:30"},
      {kPlain, kDate, "2001-02-03 00:00:00.0  0:0"},
      {kPlain, kPlain, "2001-02-03 04:05:06.7  0:0"},
      {kPlain, kZoned, "2001-02-03 04:05:06.7 +05:30 5:30"},
      {kPlain, kLocal, "2001-02-03 04:05:06.7 +05:30 5:30"},
      {kZoned, kDate, "2001-02-03 00:00:00.0  0:0"},
      {kZoned, kPlain, "2001-02-03 04:05:06.7  0:0"},
      {kZoned, kZoned, "2001-02-03 04:05:06.7 -08:15 -8:15"},
      {kZoned, kLocal, "2001-02-03 04:05:06.7 +05:30 5:30"},
      {kLocal, kDate, "2001-02-03 00:00:00.0  0:0"},
      {kLocal, kPlain, "2001-02-03 04:05:06.7  0:0"},
      {kLocal, kZoned, "2001-02-03 04:05:06.7 +05:30 5:30"},
      {kLocal, kLocal, "2001-02-03 04:05:06.7 +05:30 5:30"},
  };
  for (const Row &row : rows) {
    OCIDateTime *from =
        made(row.from, 2001, 2, 3, 4, 5, 6, 7, row.from == kZoned ? "-08:15" : nullptr);
    from->body->date.OCIDateTime.OCITimeSS = row.from == kDate ? 0 : 6;
    if (row.from == kLocal) {
      // What a fetch stores: the zone of the session, which is that of the process.
      from->body->tzHour = 5;
      from->body->tzMinute = 30;
    }
    EXPECT_EQ(converted(from, row.to), row.result) << row.from << " to " << row.to;
  }
}

TEST_F(OciDateTimeConvert, TargetBecomesReadable) {
  OCIDateTime *from = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 4, 5, 6, 7);
  OCIDateTime *to = dateTime(OCI_DTYPE_DATE);
  to->body->valid = 0;
  ASSERT_EQ(OCIDateTimeConvert(env(), err(), from, to), OCI_SUCCESS);
  EXPECT_EQ(to->body->valid, 1);
}

TEST_F(OciDateTimeConvert, ZonesAreNamedAndOffset) {
  const LocalZone india("IST-5:30");
  struct Row {
    ub4 type;
    const char *zone;
    const char *name;
    int hour, minute;
  };
  for (const Row &row : {Row{OCI_DTYPE_TIMESTAMP_TZ, "-08:15", "-08:15", -8, 15},
                         Row{OCI_DTYPE_TIMESTAMP_TZ, "+14:59", "+14:59", 14, 59},
                         Row{OCI_DTYPE_TIMESTAMP_TZ, nullptr, "+05:30", 5, 30},
                         Row{OCI_DTYPE_TIMESTAMP_LTZ, "+01:00", "+05:30", 5, 30}}) {
    const OCIDateTime *d = made(row.type, 2001, 2, 3, 4, 5, 6, 0, row.zone);
    OraText name[8];
    ub4 length = sizeof name;
    ASSERT_EQ(OCIDateTimeGetTimeZoneName(env(), err(), d, name, &length), OCI_SUCCESS);
    EXPECT_STREQ(reinterpret_cast<char *>(name), row.name);
    EXPECT_EQ(length, 6u);
    sb1 hour = 0, minute = 0;
    ASSERT_EQ(OCIDateTimeGetTimeZoneOffset(env(), err(), d, &hour, &minute), OCI_SUCCESS);
    EXPECT_EQ(hour, row.hour);
    EXPECT_EQ(minute, row.minute);
  }
  for (const ub4 type : {OCI_DTYPE_DATE, OCI_DTYPE_TIMESTAMP}) {
    const OCIDateTime *d = made(type, 2001, 2, 3);
    OraText name[8];
    ub4 length = sizeof name;
    sb1 part = 0;
    EXPECT_EQ(OCIDateTimeGetTimeZoneName(env(), err(), d, name, &length), OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 1878);
    EXPECT_EQ(OCIDateTimeGetTimeZoneOffset(env(), err(), d, &part, &part), OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 1878);
  }
}

TEST_F(OciDateTimeConvert, ZoneOutOfRangeIsChecked) {
  for (const ub4 type : kTypes) {
    const bool hasZone =
        type == OCI_DTYPE_TIMESTAMP_TZ || type == OCI_DTYPE_TIMESTAMP_LTZ;
    struct Row {
      int hour, minute;
      bool isBad;
    };
    for (const Row &row : {Row{-12, 59, false}, Row{14, 59, false}, Row{-13, 0, true},
                           Row{15, 0, true}, Row{0, 60, true}}) {
      OCIDateTime *d = made(type, 2001, 2, 3);
      d->body->tzHour = static_cast<sb1>(row.hour);
      d->body->tzMinute = static_cast<ub1>(row.minute);
      d->body->valid = 0;
      ub4 valid = 99;
      ASSERT_EQ(OCIDateTimeCheck(nullptr, err(), d, &valid), OCI_SUCCESS);
      EXPECT_EQ(valid, row.isBad && hasZone ? 0x4000u : 0u) << type << " " << row.hour;
    }
  }
  OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, 4, 5, 6, 0, "+01:00");
  d->body->date.OCIDateDD = 29;
  d->body->tzHour = 15;
  ub4 valid = 0;
  ASSERT_EQ(OCIDateTimeCheck(nullptr, err(), d, &valid), OCI_SUCCESS);
  EXPECT_EQ(valid, 0x4001u);
}

TEST_F(OciDateTimeConvert, AssignmentIsTheWholeValue) {
  for (const ub4 type : kTypes) {
    OCIDateTime *from = made(type, 2001, 2, 3, 4, 5, 6, 123456789);
    OCIDateTime *to = dateTime(type);
    ASSERT_EQ(OCIDateTimeAssign(env(), err(), from, to), OCI_SUCCESS);
    EXPECT_EQ(std::memcmp(from->body, to->body, sizeof *from->body), 0);
  }
}

TEST_F(OciDateTimeConvert, PartsAreHandedBack) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const ub4 type = kTypes[between(0, 3)];
    const int year = static_cast<int>(between(1, 9999)),
              month = static_cast<int>(between(1, 12)),
              day = static_cast<int>(between(1, 28)),
              hour = static_cast<int>(between(0, 23)),
              minute = static_cast<int>(between(0, 59)),
              second = static_cast<int>(between(0, 59));
    const auto fraction = static_cast<ub4>(between(0, 999999999));
    OCIDateTime *d =
        made(type, year, month, day, hour, minute, second, fraction, "-05:00");
    sb2 y = 0;
    ub1 mo = 0, da = 0, h = 0, mi = 0, s = 0;
    ub4 f = 0;
    ASSERT_EQ(OCIDateTimeGetDate(env(), err(), d, &y, &mo, &da), OCI_SUCCESS);
    ASSERT_TRUE(y == year && mo == month && da == day);
    if (type != OCI_DTYPE_DATE) {
      ASSERT_EQ(OCIDateTimeGetTime(env(), err(), d, &h, &mi, &s, &f), OCI_SUCCESS);
      ASSERT_TRUE(h == hour && mi == minute && s == second && f == fraction);
    }
    OCIDescriptorFree(d, type);
  }
}

TEST_F(OciDateTimeConvert, PartsTooLargeForAZonedValueAreCarried) {
  struct Row {
    int day, hour, minute, second;
    const char *result;
  };
  for (const Row &row : {Row{1, 0, 0, 60, "2001-02-01 00:01:00"},
                         Row{1, 0, 59, 127, "2001-02-01 01:01:07"},
                         Row{1, 24, 0, 0, "2001-02-02 00:00:00"},
                         Row{1, 120, 100, 60, "2001-02-06 01:41:00"},
                         // A minute of 129 is -127 in eight bits.
                         Row{1, 127, 127, 127, "2001-02-06 04:53:07"},
                         Row{28, 24, 0, 0, "2001-03-01 00:00:00"},
                         Row{28, 127, 0, 0, "2001-03-01 07:00:00"}}) {
    const OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, row.day, row.hour,
                                row.minute, row.second, 0, "+01:00");
    EXPECT_EQ(fields(d), row.result);
  }
  EXPECT_EQ(fields(made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 12, 31, 24, 0, 0, 0, "+01:00")),
            "2002-01-01 00:00:00");
}

TEST_F(OciDateTimeConvert, NegativeYearsAreConstructed) {
  EXPECT_EQ(fields(made(OCI_DTYPE_TIMESTAMP, -4712, 1, 1, 1, 2, 3)),
            "-4712-01-01 01:02:03");
}

TEST_F(OciDateTimeConvert, ZonesAreReadAsFarAsTheyAreOne) {
  struct Row {
    const char *zone;
    int hour, minute, seconds;
    const char *text;
  };
  for (const Row &row :
       {Row{"+05:30", 5, 30, 19800, "+05:30"}, Row{"-05:30", -5, 30, -19800, "-05:30"},
        Row{"+05:30x", 5, 30, 19800, "+05:30"}, Row{"7", 7, 0, 25200, "+07:00"},
        Row{"-12:59", -12, 59, -46740, "-12:59"}, Row{"", 0, 0, 0, "+00:00"},
        Row{"nonsense", 0, 0, 0, "+00:00"}}) {
    const OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, 4, 5, 6, 0, row.zone);
    EXPECT_EQ(d->body->tzHour, row.hour) << row.zone;
    EXPECT_EQ(d->body->tzMinute, row.minute) << row.zone;
    EXPECT_EQ(d->body->tzSeconds, row.seconds) << row.zone;
    EXPECT_STREQ(d->body->tzText, row.text);
    EXPECT_EQ(fields(d), "2001-02-03 04:05:06");
  }
  for (const char *zone : {"+15:00", "-13:00", "+05:60", "99999999999999999999"}) {
    OCIDateTime *d = dateTime(OCI_DTYPE_TIMESTAMP_LTZ);
    EXPECT_EQ(construct(d, 2001, 2, 3, 4, 5, 6, 0, zone), OCI_ERROR) << zone;
    EXPECT_EQ(records_.takeRecord(), 16384);
    EXPECT_EQ(d->body->tzMinute, 0);
  }
}

TEST_F(OciDateTimeConvert, ArraysAreReadAsFarAsTheyReach) {
  const ub1 bytes[13] = {120, 101, 2, 3, 5, 6, 7, 0, 0, 0, 123, 25, 90};
  struct Row {
    ub1 type;
    ub4 length;
    ub4 became;
    const char *result;
    ub1 fraction;
  };
  constexpr ub1 kDate = 184, kPlain = 187, kZoned = 188;
  for (const Row &row :
       {Row{kDate, 13, OCI_DTYPE_DATE, "2001-02-03 00:00:00", 0},
        Row{kDate, 2, OCI_DTYPE_DATE, "2001-00-00 00:00:00", 0},
        Row{kPlain, 7, OCI_DTYPE_TIMESTAMP, "2001-02-03 04:05:06", 0},
        Row{kPlain, 5, OCI_DTYPE_TIMESTAMP, "2001-02-03 04:00:00", 0},
        Row{kPlain, 11, OCI_DTYPE_TIMESTAMP, "2001-02-03 04:05:06", 123},
        Row{kZoned, 11, OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03 04:05:06", 123},
        Row{kZoned, 12, OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03 09:05:06", 123},
        Row{kZoned, 13, OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03 09:35:06", 123}}) {
    OCIDateTime *d = dateTime(OCI_DTYPE_TIMESTAMP);
    d->body->tzHour = 9;
    const std::unique_ptr<ub1[]> exact(new ub1[row.length]);
    std::memcpy(exact.get(), bytes, row.length);
    ASSERT_EQ(OCIDateTimeFromArray(env(), err(), exact.get(), row.length, row.type, d,
                                   interval(0, 0), 9),
              OCI_SUCCESS);
    EXPECT_EQ(d->body->dateTimeType, row.became);
    EXPECT_EQ(fields(d), row.result) << int{row.type} << " of " << row.length;
    EXPECT_EQ(d->body->fraction[3], row.fraction);
    EXPECT_EQ(d->body->tzHour, row.length >= 12 && row.type == kZoned ? 5 : 0);
    EXPECT_EQ(d->body->tzMinute, row.length >= 13 && row.type == kZoned ? 30 : 0);
  }
}

TEST_F(OciDateTimeConvert, AnArrayOfTheLocalZoneTakesItsDisplacement) {
  const LocalZone india("IST-5:30");
  const ub1 bytes[11] = {120, 101, 2, 3, 5, 6, 7, 0, 0, 0, 123};
  OCIDateTime *d = dateTime(OCI_DTYPE_TIMESTAMP);
  ASSERT_EQ(OCIDateTimeFromArray(env(), err(), bytes, 11, 232, d, interval(0, 0), 9),
            OCI_SUCCESS);
  EXPECT_EQ(d->body->dateTimeType, OCI_DTYPE_TIMESTAMP_LTZ);
  EXPECT_EQ(fields(d), "2001-02-03 04:05:06");
  EXPECT_EQ(d->body->fraction[3], 123);
  EXPECT_EQ(d->body->tzHour, 5);
  EXPECT_EQ(d->body->tzMinute, 30);
}

TEST_F(OciDateTimeConvert, AnEmptyArrayIsTheYearZeroOfItsType) {
  OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, 4, 5, 6, 0, "+01:30");
  const ub1 nothing = 0;
  ASSERT_EQ(OCIDateTimeFromArray(env(), err(), &nothing, 0, 187, d, interval(0, 0), 9),
            OCI_SUCCESS);
  EXPECT_EQ(d->body->dateTimeType, OCI_DTYPE_TIMESTAMP);
  EXPECT_EQ(fields(d), "0-02-03 04:05:06");
  EXPECT_EQ(d->body->tzHour + d->body->tzMinute, 0);
}

TEST_F(OciDateTimeConvert, AnArrayOfAnotherTypeIs1866) {
  OCIDateTime *d = dateTime(OCI_DTYPE_TIMESTAMP);
  const ub1 bytes[13] = {};
  for (int type = 0; type < 256; ++type) {
    if (type == 184 || type == 187 || type == 188 || type == 232) continue;
    ASSERT_EQ(OCIDateTimeFromArray(env(), err(), bytes, 13, static_cast<ub1>(type), d,
                                   interval(0, 0), 9),
              OCI_ERROR);
    ASSERT_EQ(records_.takeRecord(), 1866);
  }
}

TEST_F(OciDateTimeConvert, ArraysOfZonedValuesAreInUtcAndLeadBack) {
  using namespace std::chrono;
  OCIInterval *reference = interval(0, 0);
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const auto day = sys_days(January / 1 / 1) + days(between(1, 3652057));
    const year_month_day date(day);
    const auto hour = between(0, 23), minute = between(0, 59), second = between(0, 59);
    const int zoneHour = static_cast<int>(between(-12, 14)),
              zoneMinute = static_cast<int>(between(0, 59));
    const int east = zoneHour * 60 + (zoneHour < 0 ? -zoneMinute : zoneMinute);
    // The minutes of the edges are told by the test behind this one.
    const auto minutes = minute - (zoneHour < 0 ? -zoneMinute : zoneMinute);
    if (minutes == -59 || minutes == 118) continue;
    char zone[16];
    std::snprintf(zone, sizeof zone, "%c%02d:%02d", zoneHour < 0 ? '-' : '+',
                  std::abs(zoneHour), zoneMinute);
    OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP_TZ, int{date.year()},
                          static_cast<int>(unsigned{date.month()}),
                          static_cast<int>(unsigned{date.day()}), static_cast<int>(hour),
                          static_cast<int>(minute), static_cast<int>(second),
                          static_cast<ub4>(between(0, 999999999)), zone);
    ub1 bytes[13];
    ub4 length = sizeof bytes;
    ASSERT_EQ(OCIDateTimeToArray(env(), err(), d, reference, bytes, &length, 9),
              OCI_SUCCESS);
    const auto utc = hour * 60 + minute - east;
    const auto utcMinutes = (utc + 2880) % 1440;
    ASSERT_EQ(bytes[5] - 1, utcMinutes % 60) << zone;
    ASSERT_EQ(bytes[4] % 24, (utcMinutes / 60 + 1) % 24) << zone;
    ASSERT_EQ(bytes[6] - 1, second);
    OCIDateTime *back = dateTime(OCI_DTYPE_TIMESTAMP_TZ);
    ASSERT_EQ(OCIDateTimeFromArray(env(), err(), bytes, length, 188, back, reference, 9),
              OCI_SUCCESS);
    ASSERT_EQ(fields(back), fields(d)) << zone;
    ASSERT_EQ(std::memcmp(back->body->fraction, d->body->fraction, 4), 0);
    ASSERT_EQ(back->body->tzHour, zoneHour);
    ASSERT_EQ(back->body->tzMinute, zoneMinute);
    OCIDescriptorFree(d, OCI_DTYPE_TIMESTAMP_TZ);
    OCIDescriptorFree(back, OCI_DTYPE_TIMESTAMP_TZ);
  }
}

TEST_F(OciDateTimeConvert, ArraysBorrowFromHoursAndDays) {
  struct Row {
    int hour, minute;
    const char *zone;
    ub1 bytes[3];  // day, hour and minute
  };
  for (const Row &row :
       {Row{4, 5, "+05:30", {2, 23, 36}}, Row{4, 5, "-05:30", {3, 10, 36}},
        Row{23, 59, "-12:00", {4, 12, 60}}, Row{0, 0, "+14:00", {2, 11, 1}},
        // Fifty-nine minutes count as an hour, and twice as two.
        Row{4, 0, "+00:59", {3, 3, 61}}, Row{4, 59, "-01:59", {3, 8, 0}},
        // Midnight of the day behind is the hour nought of that day.
        Row{23, 0, "+00:00", {3, 24, 1}}, Row{23, 0, "-01:00", {4, 1, 1}}}) {
    const OCIDateTime *d =
        made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, row.hour, row.minute, 0, 0, row.zone);
    ub1 bytes[13];
    ub4 length = sizeof bytes;
    ASSERT_EQ(OCIDateTimeToArray(env(), err(), d, interval(0, 0), bytes, &length, 9),
              OCI_SUCCESS);
    EXPECT_EQ(std::memcmp(bytes + 3, row.bytes, 3), 0)
        << row.hour << ":" << row.minute << row.zone << " is " << int{bytes[3]} << " "
        << int{bytes[4]} << " " << int{bytes[5]};
  }
}

}  // namespace
}  // namespace zevtest
