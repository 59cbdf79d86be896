/// The OCIInterval functions, by their published interface.
#include <cmath>
#include <functional>
#include <limits>

#include "ocidatetime_fixture.h"

namespace zevtest {
namespace {

using Call = std::function<sword()>;

class OciInterval : public OciDateTime {
 protected:
  OCIInterval *empty(ub4 type) {
    void *made = nullptr;
    EXPECT_EQ(OCIDescriptorAlloc(env(), &made, type, 0, nullptr), OCI_SUCCESS);
    return static_cast<OCIInterval *>(made);
  }
  OCIInterval *daySecond(sb4 day, sb4 hour = 0, sb4 minute = 0, sb4 second = 0,
                         sb4 fsec = 0) {
    OCIInterval *made = empty(OCI_DTYPE_INTERVAL_DS);
    EXPECT_EQ(
        OCIIntervalSetDaySecond(env(), err(), day, hour, minute, second, fsec, made),
        OCI_SUCCESS);
    return made;
  }
  OCIInterval *yearMonth(sb4 year, sb4 month) {
    OCIInterval *made = empty(OCI_DTYPE_INTERVAL_YM);
    EXPECT_EQ(OCIIntervalSetYearMonth(env(), err(), year, month, made), OCI_SUCCESS);
    return made;
  }
  static std::string shown(const OCIInterval *of) {
    const Interval &i = of->body->interval;
    char text[96];
    std::snprintf(text, sizeof text, "%d months %d days %g", i.month, i.day, i.time);
    return text;
  }
  std::string toText(const OCIInterval *of) {
    OraText text[64];
    std::size_t length = 77;
    if (OCIIntervalToText(nullptr, err(), of, 2, 3, text, sizeof text, &length) !=
        OCI_SUCCESS)
      return "record " + std::to_string(records_.takeRecord());
    EXPECT_EQ(length, 77u) << "not written";
    return reinterpret_cast<char *>(text);
  }
  std::string fromText(ub4 type, const char *text) {
    OCIInterval *to = empty(type);
    if (OCIIntervalFromText(env(), err(), oraText(text), std::strlen(text), to) !=
        OCI_SUCCESS)
      return "record " + std::to_string(records_.takeRecord());
    return shown(to);
  }
  OCINumber number(double value) {
    OCINumber made;
    EXPECT_EQ(OCINumberFromReal(err(), &value, sizeof value, &made), OCI_SUCCESS);
    return made;
  }
  double real(const OCINumber &number) {
    double value = 0;
    EXPECT_EQ(OCINumberToReal(err(), &number, sizeof value, &value), OCI_SUCCESS);
    return value;
  }
  static constexpr ub4 kDaySecond = OCI_DTYPE_INTERVAL_DS,
                       kYearMonth = OCI_DTYPE_INTERVAL_YM;
};

TEST_F(OciInterval, SumsAreJustifiedByDays) {
  OCIInterval *sum = empty(kDaySecond);
  OCIInterval *half = daySecond(1, 12);
  ASSERT_EQ(OCIIntervalAdd(env(), err(), half, half, sum), OCI_SUCCESS);
  EXPECT_EQ(shown(sum), "0 months 3 days 0");
  ASSERT_EQ(OCIIntervalAdd(env(), err(), daySecond(40), daySecond(5, 23), sum),
            OCI_SUCCESS);
  EXPECT_EQ(shown(sum), "0 months 45 days 82800");
}

TEST_F(OciInterval, DifferencesAreJustifiedByMonths) {
  OCIInterval *difference = empty(kDaySecond);
  ASSERT_EQ(OCIIntervalSubtract(env(), err(), daySecond(40), daySecond(5), difference),
            OCI_SUCCESS);
  EXPECT_EQ(shown(difference), "1 months 5 days 0");
  OCIInterval *months = empty(kYearMonth);
  ASSERT_EQ(OCIIntervalSubtract(env(), err(), yearMonth(2, 1), yearMonth(1, 3), months),
            OCI_SUCCESS);
  EXPECT_EQ(shown(months), "10 months 0 days 0");
}

TEST_F(OciInterval, OnlyIntervalsOfOneKindAreComputedWith) {
  OCIInterval *days = daySecond(1), *months = yearMonth(1, 1);
  for (const auto function : {OCIIntervalAdd, OCIIntervalSubtract}) {
    EXPECT_EQ(function(env(), err(), days, months, days), OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 932);
    EXPECT_EQ(function(env(), err(), days, days, months), OCI_ERROR);
    EXPECT_EQ(records_.takeRecord(), 932);
  }
  EXPECT_EQ(OCIIntervalAssign(env(), err(), days, months), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
  OCIInterval *copy = empty(kDaySecond);
  ASSERT_EQ(OCIIntervalAssign(env(), err(), days, copy), OCI_SUCCESS);
  EXPECT_EQ(shown(copy), shown(days));
}

TEST_F(OciInterval, ComparisonCountsAMonthAsThirtyDays) {
  const auto compared = [&](OCIInterval *a, OCIInterval *b) {
    sword result = 9;
    EXPECT_EQ(OCIIntervalCompare(env(), err(), a, b, &result), OCI_SUCCESS);
    return result;
  };
  EXPECT_EQ(compared(yearMonth(0, 1), daySecond(30)), 0);
  EXPECT_EQ(compared(yearMonth(0, 1), daySecond(29, 23, 59, 59)), 1);
  EXPECT_EQ(compared(daySecond(1), daySecond(1, 0, 0, 1)), -1);
}

TEST_F(OciInterval, ProductsAndQuotients) {
  OCIInterval *result = empty(kDaySecond);
  OCINumber half = number(0.5), two = number(2), none = number(0);
  ASSERT_EQ(OCIIntervalMultiply(nullptr, err(), daySecond(3, 1), &half, result),
            OCI_SUCCESS);
  EXPECT_EQ(shown(result), "0 months 1 days 45000");
  ASSERT_EQ(OCIIntervalDivide(nullptr, err(), daySecond(3, 1), &two, result),
            OCI_SUCCESS);
  EXPECT_EQ(shown(result), "0 months 1 days 45000");
  ASSERT_EQ(OCIIntervalMultiply(nullptr, err(), yearMonth(0, 1), &half, result),
            OCI_SUCCESS);
  EXPECT_EQ(shown(result), "0 months 15 days 0");
  EXPECT_EQ(OCIIntervalDivide(nullptr, err(), daySecond(3), &none, result), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 0);
  EXPECT_EQ(shown(result), "0 months 15 days 0") << "left alone";
  OCINumber bad = {{3, 0xC1, 2, 102}};
  EXPECT_EQ(OCIIntervalMultiply(nullptr, err(), daySecond(3), &bad, result), OCI_ERROR);
  EXPECT_EQ(OCIIntervalDivide(nullptr, err(), daySecond(3), &bad, result), OCI_ERROR);
  EXPECT_EQ(shown(result), "0 months 15 days 0");
}

TEST_F(OciInterval, RandomProductsHaveTheLengthOfTheirFactors) {
  std::mt19937_64 random = generator();
  const auto between = [&](sb4 low, sb4 high) {
    return std::uniform_int_distribution<sb4>(low, high)(random);
  };
  const auto seconds = [](const OCIInterval *of) {
    const Interval &i = of->body->interval;
    return (i.month * 30.0 + i.day) * 86400 + i.time;
  };
  OCIInterval *result = empty(kDaySecond);
  for (int i = 0; i < rounds(5000, 200000); ++i) {
    OCIInterval *from =
        interval(between(-100, 100), between(-1000, 1000), between(-80000, 80000));
    OCINumber factor = number(between(-10000, 10000) / 128.0);
    ASSERT_EQ(OCIIntervalMultiply(nullptr, err(), from, &factor, result), OCI_SUCCESS);
    ASSERT_NEAR(seconds(result), seconds(from) * real(factor), 1e-3) << shown(from);
    OCIDescriptorFree(from, kDaySecond);
  }
}

TEST_F(OciInterval, NumbersAreDaysOrYears) {
  OCINumber x = number(1.5);
  OCIInterval *days = empty(kDaySecond), *years = empty(kYearMonth);
  ASSERT_EQ(OCIIntervalFromNumber(env(), err(), days, &x), OCI_SUCCESS);
  EXPECT_EQ(shown(days), "0 months 1 days 43200");
  ASSERT_EQ(OCIIntervalFromNumber(env(), err(), years, &x), OCI_SUCCESS);
  EXPECT_EQ(shown(years), "6 months 365 days 0");
  x = number(-1.5);
  ASSERT_EQ(OCIIntervalFromNumber(env(), err(), days, &x), OCI_SUCCESS);
  EXPECT_EQ(shown(days), "0 months -1 days -43200");
  OCINumber back;
  ASSERT_EQ(OCIIntervalToNumber(env(), err(), days, &back), OCI_SUCCESS);
  EXPECT_EQ(real(back), -1.5);
  ASSERT_EQ(OCIIntervalToNumber(env(), err(), yearMonth(2, 6), &back), OCI_SUCCESS);
  EXPECT_EQ(real(back), 2.5);
}

TEST_F(OciInterval, TextOfDaysAndSeconds) {
  EXPECT_EQ(fromText(kDaySecond, "3 04:05:06"), "0 months 3 days 14706");
  EXPECT_EQ(fromText(kDaySecond, "3 04:05:06.5"), "0 months 3 days 14706.5");
  EXPECT_EQ(fromText(kDaySecond, "3 24:00:00"), "0 months 3 days 86400");
  for (const char *bad :
       {"3", "3 4", "04:05:06 3", "3 24:00:01", "3 24:01:00", "3 25:00:00",
        "1 2 03:04:05", "", "-3 04:05:06", "x 04:05:06", "99999999999 00:00:00"}) {
    EXPECT_EQ(fromText(kDaySecond, bad), "record 1891") << bad;
  }
  EXPECT_EQ(toText(daySecond(-1, -2, -3, -4)), "-01 02:03:04.000");
  EXPECT_EQ(toText(daySecond(3, 4, 5, 6)), "+03 04:05:06.000");
  EXPECT_EQ(toText(daySecond(0)), "+00 00:00:00.000");
}

TEST_F(OciInterval, TextOfYearsAndMonths) {
  EXPECT_EQ(fromText(kYearMonth, "1 2"), "14 months 0 days 0");
  for (const char *bad : {"1", "x 2", "1 2 3", "", "999999999999 1"})
    EXPECT_EQ(fromText(kYearMonth, bad), "record 1891") << bad;
  EXPECT_EQ(toText(yearMonth(1, 2)), "+01-02");
  EXPECT_EQ(toText(yearMonth(-1, -2)), "-01-02");
}

TEST_F(OciInterval, TheLongestText) {
  EXPECT_EQ(toText(daySecond(std::numeric_limits<sb4>::max())),
            "+2147483647 00:00:00.000");
  EXPECT_EQ(toText(daySecond(std::numeric_limits<sb4>::min())),
            "-2147483648 00:00:00.000");
}

TEST_F(OciInterval, ZonesAsIntervals) {
  struct Row {
    const char *zone;
    const char *result;
  };
  for (const Row &row :
       {Row{"+05:30", "0 months 0 days 19800"}, Row{"-05:30", "0 months 0 days -16200"},
        Row{"+14:59", "0 months 0 days 53940"}}) {
    OCIInterval *to = empty(kDaySecond);
    ASSERT_EQ(OCIIntervalFromTZ(env(), err(), oraText(row.zone), 6, to), OCI_SUCCESS);
    EXPECT_EQ(shown(to), row.result) << row.zone << ": the minutes have no sign";
  }
  OCIInterval *to = empty(kDaySecond);
  EXPECT_EQ(OCIIntervalFromTZ(env(), err(), oraText("+15:00"), 6, to), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 16384);
  EXPECT_EQ(OCIIntervalFromTZ(env(), err(), oraText("+05:30"), 6, yearMonth(0, 0)),
            OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
}

TEST_F(OciInterval, PartsThereAndBack) {
  sb4 day = 0, hour = 0, minute = 0, second = 0, fsec = 9, year = 0, month = 0;
  ASSERT_EQ(OCIIntervalGetDaySecond(env(), err(), &day, &hour, &minute, &second, &fsec,
                                    daySecond(3, 4, 5, 6)),
            OCI_SUCCESS);
  EXPECT_EQ(std::vector<sb4>({day, hour, minute, second, fsec}),
            std::vector<sb4>({3, 4, 5, 6, 0}));
  ASSERT_EQ(OCIIntervalGetDaySecond(env(), err(), &day, &hour, &minute, &second, &fsec,
                                    daySecond(0, 0, 0, 6, 50)),
            OCI_SUCCESS);
  EXPECT_EQ(second, 56) << "a fraction counts as seconds";
  EXPECT_EQ(fsec, 0);
  ASSERT_EQ(OCIIntervalGetYearMonth(env(), err(), &year, &month, yearMonth(-2, -5)),
            OCI_SUCCESS);
  EXPECT_EQ(year, -2);
  EXPECT_EQ(month, -5);
  EXPECT_EQ(OCIIntervalGetYearMonth(env(), err(), &year, &month, daySecond(1)),
            OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
  EXPECT_EQ(OCIIntervalGetDaySecond(env(), err(), &day, &hour, &minute, &second, &fsec,
                                    yearMonth(1, 1)),
            OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
  EXPECT_EQ(OCIIntervalSetDaySecond(env(), err(), 1, 1, 1, 1, 1, yearMonth(1, 1)),
            OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
  EXPECT_EQ(OCIIntervalSetYearMonth(env(), err(), 1, 1, daySecond(1)), OCI_ERROR);
  EXPECT_EQ(records_.takeRecord(), 932);
}

TEST_F(OciInterval, PartsOutOfRangeAreChecked) {
  const auto checked = [&](OCIInterval *of) {
    ub4 valid = 99;
    EXPECT_EQ(OCIIntervalCheck(env(), err(), of, &valid), OCI_SUCCESS);
    return valid;
  };
  struct Row {
    double seconds;
    ub4 bits;
  };
  for (const Row &row :
       {Row{0, 0}, Row{23 * 3600, 0}, Row{24 * 3600, 0x40}, Row{-22 * 3600, 0xC0},
        Row{-23 * 3600, 0}, Row{-1 * 60, 0x300}, Row{-58 * 60, 0x300}, Row{-59 * 60, 0},
        Row{-1, 0xC00}, Row{-58, 0xC00}, Row{-59, 0}, Row{-3661, 0xC0 | 0x300 | 0xC00}}) {
    EXPECT_EQ(checked(interval(0, 0, row.seconds)), row.bits) << row.seconds;
  }
  EXPECT_EQ(checked(yearMonth(1, 11)), 0u);
  EXPECT_EQ(checked(yearMonth(0, -1)), 0xCu);
  EXPECT_EQ(checked(yearMonth(0, -10)), 0xCu);
  EXPECT_EQ(checked(yearMonth(0, -11)), 0u) << "the range below is narrow";
}

TEST_F(OciInterval, NullsAreToldByTheirNumbers) {
  void *const h = env();
  OCIInterval *const a = daySecond(1), *const b = daySecond(2), *const to = daySecond(0);
  OCINumber n = number(1);
  OraText text[64] = "1 00:00:00";
  std::size_t length = 0;
  sb4 part[5] = {};
  ub4 valid = 0;
  sword result = 0;
  struct Row {
    const char *number;
    Call call;
  };
  const Row rows[] = {
      {"1", [&] { return OCIIntervalAdd(nullptr, err(), a, b, to); }},
      {"3", [&] { return OCIIntervalAdd(h, err(), nullptr, b, to); }},
      {"4", [&] { return OCIIntervalAdd(h, err(), a, nullptr, to); }},
      {"1", [&] { return OCIIntervalSubtract(nullptr, err(), a, b, to); }},
      {"3", [&] { return OCIIntervalSubtract(h, err(), nullptr, b, to); }},
      {"4", [&] { return OCIIntervalSubtract(h, err(), a, nullptr, to); }},
      {"1", [&] { return OCIIntervalAssign(nullptr, err(), a, to); }},
      {"3", [&] { return OCIIntervalAssign(h, err(), nullptr, to); }},
      {"4", [&] { return OCIIntervalAssign(h, err(), a, nullptr); }},
      {"1", [&] { return OCIIntervalCompare(nullptr, err(), a, b, &result); }},
      {"3", [&] { return OCIIntervalCompare(h, err(), nullptr, b, &result); }},
      {"4", [&] { return OCIIntervalCompare(h, err(), a, nullptr, &result); }},
      {"5", [&] { return OCIIntervalCompare(h, err(), a, b, nullptr); }},
      {"3", [&] { return OCIIntervalMultiply(nullptr, err(), nullptr, &n, to); }},
      {"4", [&] { return OCIIntervalMultiply(nullptr, err(), a, nullptr, to); }},
      {"5", [&] { return OCIIntervalMultiply(nullptr, err(), a, &n, nullptr); }},
      {"3", [&] { return OCIIntervalDivide(nullptr, err(), nullptr, &n, to); }},
      {"4", [&] { return OCIIntervalDivide(nullptr, err(), a, nullptr, to); }},
      {"5", [&] { return OCIIntervalDivide(nullptr, err(), a, &n, nullptr); }},
      {"1", [&] { return OCIIntervalFromNumber(nullptr, err(), to, &n); }},
      {"3", [&] { return OCIIntervalFromNumber(h, err(), nullptr, &n); }},
      {"4", [&] { return OCIIntervalFromNumber(h, err(), to, nullptr); }},
      {"1", [&] { return OCIIntervalToNumber(nullptr, err(), a, &n); }},
      {"3", [&] { return OCIIntervalToNumber(h, err(), nullptr, &n); }},
      {"4", [&] { return OCIIntervalToNumber(h, err(), a, nullptr); }},
      {"1", [&] { return OCIIntervalFromText(nullptr, err(), text, 10, to); }},
      {"3", [&] { return OCIIntervalFromText(h, err(), nullptr, 10, to); }},
      {"5", [&] { return OCIIntervalFromText(h, err(), text, 10, nullptr); }},
      {"3",
       [&] {
         return OCIIntervalToText(nullptr, err(), nullptr, 2, 3, text, 64, &length);
       }},
      {"6",
       [&] { return OCIIntervalToText(nullptr, err(), a, 2, 3, nullptr, 64, &length); }},
      {"8",
       [&] { return OCIIntervalToText(nullptr, err(), a, 2, 3, text, 64, nullptr); }},
      {"1", [&] { return OCIIntervalFromTZ(nullptr, err(), text, 6, to); }},
      {"3", [&] { return OCIIntervalFromTZ(h, err(), nullptr, 6, to); }},
      {"5", [&] { return OCIIntervalFromTZ(h, err(), text, 6, nullptr); }},
      {"3",
       [&] {
         return OCIIntervalGetDaySecond(nullptr, err(), nullptr, part, part, part, part,
                                        a);
       }},
      {"4",
       [&] {
         return OCIIntervalGetDaySecond(nullptr, err(), part, nullptr, part, part, part,
                                        a);
       }},
      {"5",
       [&] {
         return OCIIntervalGetDaySecond(nullptr, err(), part, part, nullptr, part, part,
                                        a);
       }},
      {"6",
       [&] {
         return OCIIntervalGetDaySecond(nullptr, err(), part, part, part, nullptr, part,
                                        a);
       }},
      {"7",
       [&] {
         return OCIIntervalGetDaySecond(nullptr, err(), part, part, part, part, nullptr,
                                        a);
       }},
      {"8",
       [&] {
         return OCIIntervalGetDaySecond(nullptr, err(), part, part, part, part, part,
                                        nullptr);
       }},
      {"1", [&] { return OCIIntervalSetDaySecond(nullptr, err(), 1, 1, 1, 1, 1, to); }},
      {"8", [&] { return OCIIntervalSetDaySecond(h, err(), 1, 1, 1, 1, 1, nullptr); }},
      {"3", [&] { return OCIIntervalGetYearMonth(nullptr, err(), nullptr, part, a); }},
      {"4", [&] { return OCIIntervalGetYearMonth(nullptr, err(), part, nullptr, a); }},
      {"5", [&] { return OCIIntervalGetYearMonth(nullptr, err(), part, part, nullptr); }},
      {"1", [&] { return OCIIntervalSetYearMonth(nullptr, err(), 1, 1, to); }},
      {"5", [&] { return OCIIntervalSetYearMonth(h, err(), 1, 1, nullptr); }},
      {"1", [&] { return OCIIntervalCheck(nullptr, err(), a, &valid); }},
      {"3", [&] { return OCIIntervalCheck(h, err(), nullptr, &valid); }},
      {"4", [&] { return OCIIntervalCheck(h, err(), a, nullptr); }},
  };
  for (const Row &row : rows) {
    const auto place = &row - rows;
    EXPECT_EQ(row.call(), OCI_ERROR) << place;
    EXPECT_EQ(records_.takeRecord(), 21560) << place;
    EXPECT_TRUE(records_.lastMessage.ends_with(std::string("argument ") + row.number))
        << place;
  }
}

TEST_F(OciInterval, ValuesThatWereNotSetAre932) {
  OCIInterval *const days = daySecond(1), *const months = yearMonth(1, 1);
  OCINumber n = number(1);
  OraText text[64] = "+05:30";
  std::size_t length = 0;
  sb4 part[5] = {};
  ub4 valid = 0;
  days->body->valid = months->body->valid = 0;
  const Call calls[] = {
      [&] { return OCIIntervalFromNumber(env(), err(), days, &n); },
      [&] { return OCIIntervalToNumber(env(), err(), days, &n); },
      [&] { return OCIIntervalFromText(env(), err(), text, 10, days); },
      [&] { return OCIIntervalToText(nullptr, err(), days, 2, 3, text, 64, &length); },
      [&] { return OCIIntervalFromTZ(env(), err(), text, 6, days); },
      [&] {
        return OCIIntervalGetDaySecond(nullptr, err(), part, part, part, part, part,
                                       days);
      },
      [&] { return OCIIntervalGetYearMonth(nullptr, err(), part, part, months); },
      [&] { return OCIIntervalCheck(env(), err(), days, &valid); },
  };
  for (const Call &call : calls) {
    EXPECT_EQ(call(), OCI_ERROR) << &call - calls;
    EXPECT_EQ(records_.takeRecord(), 932) << &call - calls;
  }
}

TEST_F(OciInterval, WhatIsNoHandleLeavesNoRecord) {
  OCIInterval *const a = daySecond(1);
  EXPECT_EQ(OCIIntervalAdd(env(), nullptr, a, a, a), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIIntervalAdd(env(), reinterpret_cast<OCIError *>(env()), a, a, a),
            OCI_INVALID_HANDLE);
  auto *const bad = reinterpret_cast<OCIInterval *>(dateTime(OCI_DTYPE_TIMESTAMP));
  EXPECT_EQ(OCIIntervalAdd(env(), err(), a, bad, a), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIIntervalAdd(env(), err(), a, a, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(records_.takeRecord(), 0);
}

TEST_F(OciInterval, SumsBeyondTheirRangeWrap) {
  OCIInterval *most =
      interval(std::numeric_limits<sb4>::max(), std::numeric_limits<sb4>::max());
  OCIInterval *sum = empty(kDaySecond);
  EXPECT_EQ(OCIIntervalAdd(env(), err(), most, most, sum), OCI_SUCCESS);
  EXPECT_EQ(OCIIntervalSubtract(env(), err(), sum, most, sum), OCI_SUCCESS);
  OCINumber huge = number(1e60);
  EXPECT_EQ(OCIIntervalMultiply(nullptr, err(), most, &huge, sum), OCI_SUCCESS);
}

}  // namespace
}  // namespace zevtest
