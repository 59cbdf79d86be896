/// OCIDateTime from text and to text.
#include "ocidatetime_fixture.h"

namespace zevtest {
namespace {

class OciDateTimeText : public OciDateTime {
 protected:
  std::string read(ub4 type, const std::string &text, const char *format = nullptr) {
    OCIDateTime *d = dateTime(type);
    if (fromText(d, text, format) != OCI_SUCCESS)
      return "record " + std::to_string(records_.takeRecord());
    char shown[96];
    std::snprintf(shown, sizeof shown, "%s.%u %d:%d", fields(d).c_str(),
                  unsigned{d->body->fraction[2]} * 256u + d->body->fraction[3],
                  d->body->tzHour, static_cast<sb1>(d->body->tzMinute));
    return shown;
  }
};

TEST_F(OciDateTimeText, DefaultFormatsByType) {
  const LocalZone india("IST-5:30");
  EXPECT_EQ(toText(made(OCI_DTYPE_DATE, 2001, 2, 3)), "03-FEB-01");
  EXPECT_EQ(toText(made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 14, 5, 6)),
            "03-FEB-01 02:05:06:000 PM");
  EXPECT_EQ(toText(made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, 14, 5, 6, 0, "-08:15")),
            "03-FEB-01 02.05.06.000 PM -08:15");
  EXPECT_EQ(toText(made(OCI_DTYPE_TIMESTAMP_LTZ, 2001, 2, 3, 14, 5, 6, 0, "+05:30")),
            "03-FEB-01 02.05.06.000 PM +05:30");
  EXPECT_EQ(read(OCI_DTYPE_DATE, "03-FEB-01"), "2001-02-03 00:00:00.0 0:0");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP, "03-FEB-01 02.05.06.123 PM"),
            "2001-02-03 14:05:06.123 0:0");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_TZ, "03-FEB-01 02.05.06.123 PM -08"),
            "2001-02-03 14:05:06.123 -8:0");
}

TEST_F(OciDateTimeText, ZonesOfText) {
  const char *const format = "YYYY-MM-DD HH24:MI:SS TZH:TZM";
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03 04:05:06 +05:30", format),
            "2001-02-03 04:05:06.0 5:30");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03 04:05:06 -05:30", format),
            "2001-02-03 04:05:06.0 -5:30");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03 04:05:06 -00:30", format),
            "2001-02-03 04:05:06.0 0:30")
      << "the sign of no hours is lost before a separator";
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03 04:05:06 -00:30",
                 "YYYY-MM-DD HH24:MI:SS TZH"),
            "2001-02-03 04:05:06.0 0:-30");
}

TEST_F(OciDateTimeText, ValuesOfTheLocalZoneAreMovedIntoIt) {
  const char *const format = "YYYY-MM-DD HH24:MI:SS TZH:TZM";
  const LocalZone india("IST-5:30");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_LTZ, "2001-02-03 04:05:06 +05:30", format),
            "2001-02-03 04:05:06.0 5:30");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_LTZ, "2001-02-03 04:05:06 +00:00", format),
            "2001-02-03 09:35:06.0 5:30");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP_LTZ, "2001-02-03 04:05:06 -08:00", format),
            "2001-02-03 17:35:06.0 5:30");
}

TEST_F(OciDateTimeText, ADayThatItsMonthHasNotIs1839) {
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP, "31-APR-2001", "DD-MON-YYYY"), "record 1839");
  EXPECT_EQ(read(OCI_DTYPE_DATE, "29-FEB-2001", "DD-MON-YYYY"), "record 1839");
  EXPECT_EQ(read(OCI_DTYPE_DATE, "29-FEB-2000", "DD-MON-YYYY"),
            "2000-02-29 00:00:00.0 0:0");
}

TEST_F(OciDateTimeText, FormatsAreThoseOfTheType) {
  // A date has no fraction, and a plain timestamp no zone.
  EXPECT_EQ(read(OCI_DTYPE_DATE, "2001-02-03 5", "YYYY-MM-DD FF"), "record 1821");
  EXPECT_EQ(read(OCI_DTYPE_TIMESTAMP, "2001-02-03 +05", "YYYY-MM-DD TZH"), "record 1821");
  EXPECT_EQ(toText(made(OCI_DTYPE_DATE, 2001, 2, 3), "FF"), "record 1821");
  EXPECT_EQ(toText(made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3), "TZH"), "record 1821");
}

TEST_F(OciDateTimeText, TextIsCutToItsBuffer) {
  const OCIDateTime *d = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 4, 5, 6);
  const std::string whole = "2001-02-03 04:05:06";
  const char *const format = "YYYY-MM-DD HH24:MI:SS";
  for (ub4 room = 1; room <= whole.size() + 3; ++room) {
    const std::unique_ptr<OraText[]> text(new OraText[room]);
    ub4 size = room;
    ASSERT_EQ(OCIDateTimeToText(nullptr, err(), d, oraText(format),
                                static_cast<ub1>(std::strlen(format)), 0, nullptr, 0,
                                &size, text.get()),
              OCI_SUCCESS);
    EXPECT_EQ(reinterpret_cast<char *>(text.get()), whole.substr(0, room - 1));
    EXPECT_EQ(size, std::min<std::size_t>(room - 1, whole.size()));
  }
  OraText untouched = 'x';
  ub4 none = 0;
  ASSERT_EQ(
      OCIDateTimeToText(nullptr, err(), d, nullptr, 0, 0, nullptr, 0, &none, &untouched),
      OCI_SUCCESS);
  EXPECT_EQ(untouched, 'x');
}

TEST_F(OciDateTimeText, LengthsEndTextAndFormat) {
  OCIDateTime *d = dateTime(OCI_DTYPE_DATE);
  const char text[] = {'2', '0', '0', '1', '-', '0', '2', '-', '0', '3'};
  const char format[] = {'Y', 'Y', 'Y', 'Y', '-', 'M', 'M', '-', 'D', 'D'};
  const std::unique_ptr<OraText[]> exactText(new OraText[sizeof text]),
      exactFormat(new OraText[sizeof format]);
  std::memcpy(exactText.get(), text, sizeof text);
  std::memcpy(exactFormat.get(), format, sizeof format);
  ASSERT_EQ(OCIDateTimeFromText(env(), err(), exactText.get(), sizeof text,
                                exactFormat.get(), sizeof format, nullptr, 0, d),
            OCI_SUCCESS);
  EXPECT_EQ(fields(d), "2001-02-03 00:00:00");
}

TEST_F(OciDateTimeText, LongTextsAndFormats) {
  OCIDateTime *d = dateTime(OCI_DTYPE_DATE);
  const std::string format(255, ' '), text(100000, '7');
  EXPECT_EQ(OCIDateTimeFromText(env(), err(), oraText(text.c_str()), text.size(),
                                oraText(format.c_str()), 255, nullptr, 0, d),
            OCI_ERROR);
  EXPECT_NE(records_.takeRecord(), 0);
  const std::string longLiteral = '"' + std::string(254, 'x');
  EXPECT_EQ(OCIDateTimeFromText(env(), err(), oraText(text.c_str()), text.size(),
                                oraText(longLiteral.c_str()), 255, nullptr, 0, d),
            OCI_ERROR);
  EXPECT_NE(records_.takeRecord(), 0);
}

TEST_F(OciDateTimeText, RandomValuesLeadThroughTextAndBack) {
  std::mt19937_64 random = generator();
  const auto between = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  for (const char *zoneOfProcess : {"UTC", "IST-5:30"}) {
    const LocalZone zone(zoneOfProcess);
    for (int i = 0; i < rounds(5000, 300000); ++i) {
      const ub4 type = kTypes[between(0, 3)];
      char zoneText[16];
      std::snprintf(zoneText, sizeof zoneText, "%c%02d:%02d", between(0, 1) ? '+' : '-',
                    between(1, 12), between(0, 59));
      // The system knows the local zone of these years only.
      const int year =
          type == OCI_DTYPE_TIMESTAMP_LTZ ? between(1902, 2037) : between(1, 9999);
      const bool isDate = type == OCI_DTYPE_DATE,
                 isZoned = type == OCI_DTYPE_TIMESTAMP_TZ;
      OCIDateTime *d =
          made(type, year, between(1, 12), between(1, 28), between(0, 23), between(0, 59),
               between(0, 59), 0, isZoned ? zoneText : nullptr);
      const char *format = isDate    ? "YYYY-MM-DD"
                           : isZoned ? "DD MONTH YYYY HH24:MI:SS TZH:TZM"
                                     : "J SSSSS";
      OCIDateTime *back = dateTime(type);
      const std::string text = toText(d, format);
      ASSERT_EQ(fromText(back, text, format), OCI_SUCCESS)
          << text << records_.takeRecord();
      ASSERT_EQ(fields(back), fields(d)) << text;
      if (isZoned) {
        ASSERT_EQ(back->body->tzHour, d->body->tzHour) << text;
        ASSERT_EQ(back->body->tzMinute, d->body->tzMinute) << text;
      }
      OCIDescriptorFree(d, type);
      OCIDescriptorFree(back, type);
    }
  }
}

}  // namespace
}  // namespace zevtest
