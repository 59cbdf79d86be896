/// Arithmetic and order of OCIDateTime beside the C++ library's calendar.
#include <ctime>

#include "ocidatetime_fixture.h"

namespace zevtest {
namespace {

using std::chrono::days;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;
using std::chrono::year_month_day;

class OciDateTimeArithmetic : public OciDateTime {
 protected:
  sb8 between(sb8 low, sb8 high) {
    return std::uniform_int_distribution<sb8>(low, high)(random_);
  }
  /// A second of the years 1 to 9999.
  sys_seconds moment() {
    return sys_days(std::chrono::January / 1 / 1) +
           seconds(between(0, sb8{86400} * 3652058));
  }
  OCIDateTime *madeOf(ub4 type, sys_seconds at) {
    const auto day = std::chrono::floor<days>(at);
    const year_month_day date(day);
    const sb8 rest = (at - day).count();
    return made(type, int{date.year()}, static_cast<int>(unsigned{date.month()}),
                static_cast<int>(unsigned{date.day()}), static_cast<int>(rest / 3600),
                static_cast<int>(rest / 60 % 60), static_cast<int>(rest % 60));
  }
  static std::string fieldsOf(sys_seconds at) {
    const auto day = std::chrono::floor<days>(at);
    const year_month_day date(day);
    const sb8 rest = (at - day).count();
    char text[64];
    std::snprintf(text, sizeof text, "%d-%02u-%02u %02d:%02d:%02d", int{date.year()},
                  unsigned{date.month()}, unsigned{date.day()},
                  static_cast<int>(rest / 3600), static_cast<int>(rest / 60 % 60),
                  static_cast<int>(rest % 60));
    return text;
  }
  /// A moment some months later, on the last day of a month that has not its day.
  static sys_seconds plusMonths(sys_seconds at, sb8 months) {
    const auto day = std::chrono::floor<days>(at);
    auto date = year_month_day(day) + std::chrono::months(months);
    if (!date.ok()) date = date.year() / date.month() / std::chrono::last;
    return sys_days(date) + (at - day);
  }
  static bool isOfOurEra(sys_seconds at) {
    const int year{year_month_day(std::chrono::floor<days>(at)).year()};
    return year >= 1 && year <= 9999;
  }
  sword compared(const OCIDateTime *a, const OCIDateTime *b) {
    sword result = 9;
    EXPECT_EQ(OCIDateTimeCompare(env(), err(), a, b, &result), OCI_SUCCESS);
    return result;
  }

  std::mt19937_64 random_ = generator();
};

TEST_F(OciDateTimeArithmetic, IntervalsAreAddedAsTheCalendarHasThem) {
  OCIDateTime *to = dateTime(OCI_DTYPE_TIMESTAMP);
  for (int i = rounds(20000, 1000000), tested = 0; tested < i;) {
    const sys_seconds at = moment();
    const auto months = static_cast<sb4>(between(-2000, 2000)),
               addedDays = static_cast<sb4>(between(-100000, 100000));
    const auto time = between(-1000000, 1000000);
    const sys_seconds moved = plusMonths(at, months);
    const sys_seconds sum = moved + days(addedDays) + seconds(time);
    if (!isOfOurEra(moved) || !isOfOurEra(moved + days(addedDays)) || !isOfOurEra(sum))
      continue;
    ++tested;
    OCIDateTime *from = madeOf(OCI_DTYPE_TIMESTAMP, at);
    OCIInterval *span = interval(months, addedDays, static_cast<double>(time));
    ASSERT_EQ(OCIDateTimeIntervalAdd(env(), err(), from, span, to), OCI_SUCCESS);
    ASSERT_EQ(fields(to), fieldsOf(sum))
        << fieldsOf(at) << " " << months << " months " << addedDays << " days " << time;
    OCIDescriptorFree(from, OCI_DTYPE_TIMESTAMP);
    OCIDescriptorFree(span, OCI_DTYPE_INTERVAL_DS);
  }
}

TEST_F(OciDateTimeArithmetic, DifferencesAreDaysAndSeconds) {
  OCIInterval *span = interval(0, 0);
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const sys_seconds a = moment(), b = moment();
    OCIDateTime *first = madeOf(OCI_DTYPE_TIMESTAMP, a),
                *second = madeOf(OCI_DTYPE_TIMESTAMP, b);
    ASSERT_EQ(OCIDateTimeSubtract(env(), err(), first, second, span), OCI_SUCCESS);
    const Interval &got = span->body->interval;
    const sb8 whole =
        ((sb8{got.month} * 30 + got.day) * 86400) + static_cast<sb8>(got.time);
    ASSERT_EQ(whole, (a - b).count()) << fieldsOf(a) << " - " << fieldsOf(b);
    ASSERT_LT(std::abs(got.day), 30);
    ASSERT_LT(std::abs(got.time), 86400);
    ASSERT_EQ(span->body->valid, 1);
    OCIDescriptorFree(first, OCI_DTYPE_TIMESTAMP);
    OCIDescriptorFree(second, OCI_DTYPE_TIMESTAMP);
  }
}

TEST_F(OciDateTimeArithmetic, CountsOfFractionsAreTakenForSeconds) {
  OCIDateTime *from = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 4, 5, 6, 50);
  OCIDateTime *to = made(OCI_DTYPE_TIMESTAMP, 1999, 1, 1, 0, 0, 0, 77);
  ASSERT_EQ(OCIDateTimeIntervalAdd(env(), err(), from, interval(0, 0, 1), to),
            OCI_SUCCESS);
  EXPECT_EQ(fields(to), "2001-02-03 04:05:57");
  EXPECT_EQ(to->body->fraction[3], 77) << "the target keeps its own count";
}

TEST_F(OciDateTimeArithmetic, TargetShowsWhatItsTypeHas) {
  OCIDateTime *from = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 4, 5, 6);
  OCIDateTime *date = dateTime(OCI_DTYPE_DATE);
  OCIDateTime *zoned = dateTime(OCI_DTYPE_TIMESTAMP_TZ);
  zoned->body->tzSeconds = -19800;
  ASSERT_EQ(OCIDateTimeIntervalAdd(env(), err(), from, interval(0, 0, 86400), date),
            OCI_SUCCESS);
  EXPECT_EQ(fields(date), "2001-02-04 00:00:00");
  for (const char *text : {"-05:30", "-05:30-05:3"}) {
    ASSERT_EQ(OCIDateTimeIntervalAdd(env(), err(), from, interval(0, 0, 60), zoned),
              OCI_SUCCESS);
    EXPECT_EQ(fields(zoned), "2001-02-03 04:06:06");
    EXPECT_EQ(zoned->body->tzHour, 5);
    EXPECT_EQ(zoned->body->tzMinute, 30);
    EXPECT_STREQ(zoned->body->tzText, text) << "the displacement is appended";
  }
}

TEST_F(OciDateTimeArithmetic, SumsOutOfRangeAreToldByTheirPart) {
  OCIDateTime *from = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 4, 5, 6);
  OCIDateTime *to = made(OCI_DTYPE_TIMESTAMP, 1999, 1, 1);
  for (OCIInterval *span : {interval(std::numeric_limits<sb4>::max(), 0),
                            interval(std::numeric_limits<sb4>::min(), 0),
                            interval(0, std::numeric_limits<sb4>::max()),
                            interval(0, std::numeric_limits<sb4>::min())}) {
    EXPECT_EQ(OCIDateTimeIntervalAdd(env(), err(), from, span, to), OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 21560);
  }
  for (const double time : {1e20, -1e20, std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(OCIDateTimeIntervalAdd(env(), err(), from, interval(0, 0, time), to),
              OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 0);
  }
  EXPECT_EQ(fields(to), "1999-01-01 00:00:00");
}

TEST_F(OciDateTimeArithmetic, NegatingTheLeastIntervalStaysDefined) {
  OCIDateTime *from = made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3);
  OCIInterval *span = interval(std::numeric_limits<sb4>::min(), 0);
  EXPECT_EQ(OCIDateTimeIntervalSub(env(), err(), from, span, from), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 21560);
  EXPECT_EQ(span->body->interval.month, std::numeric_limits<sb4>::min());
}

TEST_F(OciDateTimeArithmetic, OrderIsThatOfTheCalendarWithMonthsMovedDown) {
  for (const ub4 type : {OCI_DTYPE_DATE, OCI_DTYPE_TIMESTAMP}) {
    EXPECT_EQ(compared(made(type, 2000, 12, 31), made(type, 2001, 1, 1)), 0);
    EXPECT_EQ(compared(made(type, 2001, 3, 31), made(type, 2001, 4, 1)), 1);
    EXPECT_EQ(compared(made(type, 2001, 4, 1), made(type, 2001, 4, 2)), -1);
  }
  const auto fraction = [&](ub4 count) {
    return made(OCI_DTYPE_TIMESTAMP, 2001, 2, 3, 4, 5, 6, count);
  };
  EXPECT_EQ(compared(fraction(20000), fraction(1000)), 1) << "a count of nanoseconds";
  EXPECT_EQ(compared(fraction(400), fraction(300)), 0) << "less than a microsecond";
}

TEST_F(OciDateTimeArithmetic, RandomMomentsInTheirOrder) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const sys_seconds a = moment(), b = a + seconds(between(-3000000000, 3000000000));
    const auto isPlainDay = [](sys_seconds at) {
      return unsigned{year_month_day(std::chrono::floor<days>(at)).day()} <= 28;
    };
    if (!isOfOurEra(b) || !isPlainDay(a) || !isPlainDay(b)) continue;
    OCIDateTime *first = madeOf(OCI_DTYPE_TIMESTAMP, a),
                *second = madeOf(OCI_DTYPE_TIMESTAMP, b);
    ASSERT_EQ(compared(first, second), a < b ? -1 : a > b) << fieldsOf(a) << fieldsOf(b);
    OCIDescriptorFree(first, OCI_DTYPE_TIMESTAMP);
    OCIDescriptorFree(second, OCI_DTYPE_TIMESTAMP);
  }
}

TEST_F(OciDateTimeArithmetic, ZonedValuesAreOrderedByWhatTheirSecondsSay) {
  const auto zoned = [&](int hour, const char *zone) {
    return made(OCI_DTYPE_TIMESTAMP_TZ, 2001, 2, 3, hour, 0, 0, 0, zone);
  };
  EXPECT_EQ(compared(zoned(4, "+00:00"), zoned(4, "+00:00")), 0);
  // The seconds of a constructed zone count east, and are added as if they counted west.
  EXPECT_EQ(compared(zoned(4, "+01:00"), zoned(4, "+00:00")), 1);
  EXPECT_EQ(compared(zoned(4, "-01:00"), zoned(3, "+00:00")), 0);
}

TEST_F(OciDateTimeArithmetic, SystemTimeIsNowInTheLocalZone) {
  struct Row {
    const char *zone;
    sb1 hour;
    ub1 minute;
    const char *text;
  };
  for (const Row &row : {Row{"UTC", 0, 0, "-00"}, Row{"IST-5:30", 5, 30, "-05:30"},
                         Row{"XST+3:30", -3, 30, "+03:30"}}) {
    const LocalZone zone(row.zone);
    for (const ub4 type : kTypes) {
      OCIDateTime *d = dateTime(type);
      d->body->valid = 0;
      d->body->fraction[0] = 7;
      std::time_t now = std::time(nullptr);
      ASSERT_EQ(OCIDateTimeSysTimeStamp(env(), err(), d), OCI_SUCCESS);
      std::tm tm{};
      const OCIDate &date = d->body->date;
      tm.tm_year = date.OCIDateYYYY - 1900;
      tm.tm_mon = date.OCIDateMM - 1;
      tm.tm_mday = date.OCIDateDD;
      tm.tm_hour = date.OCIDateTime.OCITimeHH;
      tm.tm_min = date.OCIDateTime.OCITimeMI;
      tm.tm_sec = date.OCIDateTime.OCITimeSS;
      if (type == OCI_DTYPE_DATE) {
        EXPECT_EQ(tm.tm_hour + tm.tm_min + tm.tm_sec, 0);
        std::tm today{};
        localtime_r(&now, &today);
        now -= today.tm_hour * 3600 + today.tm_min * 60 + today.tm_sec;
      }
      EXPECT_NEAR(static_cast<double>(std::mktime(&tm)), static_cast<double>(now), 2);
      EXPECT_EQ(d->body->valid, 1);
      EXPECT_EQ(d->body->fraction[0], 7) << "the count is left alone";
      const bool hasZone =
          type == OCI_DTYPE_TIMESTAMP_TZ || type == OCI_DTYPE_TIMESTAMP_LTZ;
      EXPECT_EQ(d->body->tzHour, hasZone ? row.hour : 0);
      EXPECT_EQ(d->body->tzMinute, hasZone ? row.minute : 0);
      EXPECT_EQ(d->body->tzSeconds,
                -(row.hour * 60 + (row.hour < 0 ? -1 : 1) * row.minute) * 60);
      EXPECT_STREQ(d->body->tzText, hasZone ? row.text : "");
    }
  }
}

}  // namespace
}  // namespace zevtest
