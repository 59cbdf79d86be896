/// OCINumbers from and to integers and floats.
#include <cmath>
#include <limits>

#include "ocinumber_fixture.h"

namespace zevtest {
namespace {

class OciNumberMachine : public Numbers {
 protected:
  /// The integer, or the record; "-1" where the call failed.
  std::string toInt(const std::string &from, uword length, uword flag) {
    const OCINumber x = number(from);
    sb8 target = 0x5555555555555555;
    const sword status = OCINumberToInt(err(), &x, length, flag, &target);
    if (status != OCI_SUCCESS) return "-1";
    if (const int code = take()) {
      EXPECT_EQ(target, 0x5555555555555555) << "left as it was";
      return "record " + std::to_string(code);
    }
    if (length == 1)
      return std::to_string(flag ? static_cast<sb1>(target) : static_cast<ub1>(target));
    if (length == 2)
      return std::to_string(flag ? static_cast<sb2>(target) : static_cast<ub2>(target));
    return flag ? std::to_string(static_cast<sb4>(target))
                : std::to_string(static_cast<ub4>(target));
  }
  template <class Integer>
  std::string fromInt(Integer value, uword flag, uword length = sizeof(Integer)) {
    OCINumber x = number("77");
    sb8 bytes = 0;
    std::memcpy(&bytes, &value, sizeof value);
    const sword status = OCINumberFromInt(err(), &bytes, length, flag, &x);
    return status == OCI_SUCCESS ? zevtest::value(x) : "status " + std::to_string(status);
  }
  double toDouble(const std::string &from) {
    const OCINumber x = number(from);
    double out = 0;
    EXPECT_EQ(OCINumberToReal(err(), &x, sizeof out, &out), OCI_SUCCESS) << from;
    return out;
  }
};

TEST_F(OciNumberMachine, IntegersAtTheirBounds) {
  struct Row {
    const char *number;
    uword length, flag;
    const char *result;
  };
  for (const Row &row : {Row{"126.9", 1, 2, "126"},
                         Row{"127", 1, 2, "record 22053"},
                         Row{"127.9", 1, 2, "record 22053"},
                         Row{"-127", 1, 2, "-127"},
                         Row{"-128", 1, 2, "record 22054"},
                         Row{"255", 1, 0, "255"},
                         Row{"256", 1, 0, "record 22053"},
                         Row{"-1", 1, 0, "record 22053"},
                         Row{"32766", 2, 2, "32766"},
                         Row{"32767", 2, 2, "record 22053"},
                         Row{"-32767", 2, 2, "-32767"},
                         Row{"-32768", 2, 2, "record 22054"},
                         Row{"65535", 2, 0, "65535"},
                         Row{"65536", 2, 0, "record 22053"},
                         Row{"2147483646", 4, 2, "2147483646"},
                         Row{"2147483647", 4, 2, "record 22053"},
                         Row{"-2147483647", 4, 2, "-2147483647"},
                         Row{"-2147483648", 4, 2, "record 22054"},
                         Row{"2147483647", 4, 0, "2147483647"},
                         Row{"2147483648", 4, 2, "record 22053"},
                         Row{"5E100", 4, 2, "record 22053"},
                         Row{"-5E100", 4, 2, "record 22054"},
                         Row{"4294967296", 4, 2, "record 22053"},
                         Row{"9.99E125", 4, 2, "record 22053"},
                         Row{"-9.99E125", 1, 2, "record 22054"},
                         Row{"99999999999999999999", 2, 0, "record 22053"},
                         Row{"-1.9", 4, 2, "-1"},
                         Row{"0.9", 4, 2, "0"},
                         Row{"1E9", 4, 2, "1000000000"},
                         Row{"1", 8, 2, "-1"},
                         Row{"1", 3, 2, "-1"},
                         Row{"1", 4, 1, "-1"},
                         Row{"1", 4, 3, "-1"}}) {
    EXPECT_EQ(toInt(row.number, row.length, row.flag), row.result)
        << row.number << " in " << row.length;
    take();
  }
}

TEST_F(OciNumberMachine, RandomIntegersThereAndBack) {
  for (int i = 0; i < rounds(50000, 2000000); ++i) {
    const sb4 given = static_cast<sb4>(random_()) >> between(0, 31);
    OCINumber x;
    ASSERT_EQ(OCINumberFromInt(err(), &given, sizeof given, OCI_NUMBER_SIGNED, &x),
              OCI_SUCCESS);
    if (given == std::numeric_limits<sb4>::max() ||
        given == std::numeric_limits<sb4>::min())
      continue;
    sb4 back = 0;
    ASSERT_EQ(OCINumberToInt(err(), &x, sizeof back, OCI_NUMBER_SIGNED, &back),
              OCI_SUCCESS);
    ASSERT_EQ(back, given);
  }
}

TEST_F(OciNumberMachine, IntegersOfEachLength) {
  EXPECT_EQ(fromInt(sb1{-5}, 2), "-5e0");
  EXPECT_EQ(fromInt(ub1{250}, 0), "25e1");
  EXPECT_EQ(fromInt(ub2{65535}, 0), "65535e0");
  EXPECT_EQ(fromInt(sb2{0x1234}, 2), "52e0") << "the first byte alone";
  EXPECT_EQ(fromInt(sb2{-1}, 2), "255e0");
  EXPECT_EQ(fromInt(sb4{-2147483647 - 1}, 2), "-2147483648e0");
  EXPECT_EQ(fromInt(ub4{4294967295u}, 0), "4294967295e0");
  EXPECT_EQ(fromInt(sb8{1234567890123456789}, 2), "123456789012346e4");
  EXPECT_EQ(fromInt(sb8{9007199254740993}, 2), "900719925474099e1");
  EXPECT_EQ(fromInt(std::numeric_limits<ub8>::max(), 0), "184467440737096e5");
  EXPECT_EQ(fromInt(sb8{-999999999999999}, 2), "-999999999999999e0");
  for (const uword length : {3u, 5u, 6u, 7u}) EXPECT_EQ(fromInt(sb8{77}, 2, length), "0");
  for (const uword length : {0u, 9u}) EXPECT_EQ(fromInt(sb8{77}, 2, length), "status -1");
  for (const uword flag : {1u, 3u}) EXPECT_EQ(fromInt(sb4{77}, flag), "status -1");
}

TEST_F(OciNumberMachine, LargeIntegersHaveTheDigitsOfADouble) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const auto given = static_cast<sb8>(random_());
    char printed[40];
    std::snprintf(printed, sizeof printed, "%.14E", static_cast<double>(given));
    EXPECT_EQ(fromInt(given, OCI_NUMBER_SIGNED), value(number(printed)));
    std::snprintf(printed, sizeof printed, "%.14E",
                  static_cast<double>(static_cast<ub8>(given)));
    EXPECT_EQ(fromInt(static_cast<ub8>(given), OCI_NUMBER_UNSIGNED),
              value(number(printed)));
  }
}

TEST_F(OciNumberMachine, FloatsHaveFifteenDigits) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const double given =
        (static_cast<double>(random_()) / 1e19 - 0.9) * std::pow(10.0, between(-20, 60));
    OCINumber x;
    ASSERT_EQ(OCINumberFromReal(err(), &given, sizeof given, &x), OCI_SUCCESS);
    char printed[40];
    std::snprintf(printed, sizeof printed, "%.14E", given);
    ASSERT_EQ(value(x), value(number(printed)));
    const auto narrow = static_cast<float>(given);
    if (std::isinf(narrow)) continue;
    ASSERT_EQ(OCINumberFromReal(err(), &narrow, sizeof narrow, &x), OCI_SUCCESS);
    std::snprintf(printed, sizeof printed, "%.14E", static_cast<double>(narrow));
    ASSERT_EQ(value(x), value(number(printed)));
  }
}

TEST_F(OciNumberMachine, DoublesAreTheNearestOfTheText) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    std::string text = decimal(38, 0);
    text = text.substr(0, text.find('E')) + "E" + std::to_string(between(-38, 60));
    const double ours = toDouble(text);
    // Forty decimals are read.
    const long double exact = std::strtold(text.c_str(), nullptr);
    if (std::fabs(static_cast<double>(exact)) < 1e-20) continue;
    ASSERT_EQ(ours, std::strtod(text.c_str(), nullptr)) << text;
  }
}

TEST_F(OciNumberMachine, WhatIsTooLargeIs22053) {
  const OCINumber large = number("4E38"), huge = number("-4E38"),
                  small = number("3.4E38");
  float out = 7;
  EXPECT_EQ(OCINumberToReal(err(), &large, sizeof out, &out), OCI_ERROR);
  EXPECT_EQ(take(), 22053);
  EXPECT_EQ(out, 7);
  EXPECT_EQ(OCINumberToReal(err(), &huge, sizeof out, &out), OCI_SUCCESS);
  EXPECT_EQ(out, -std::numeric_limits<float>::infinity())
      << "only the upper end is looked at";
  EXPECT_EQ(OCINumberToReal(err(), &small, sizeof out, &out), OCI_SUCCESS);
  EXPECT_EQ(out, 3.4E38f);
  for (const uword length : {0u, 3u, 5u, 16u}) {
    EXPECT_EQ(OCINumberToReal(err(), &small, length, &out), OCI_ERROR);
    EXPECT_EQ(take(), 0);
  }
}

TEST_F(OciNumberMachine, InfinityAndNanAreZeroWithAWarning) {
  testing::internal::CaptureStderr();
  for (const double given : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    OCINumber x = number("77");
    EXPECT_EQ(OCINumberFromReal(err(), &given, sizeof given, &x), OCI_SUCCESS);
    EXPECT_EQ(hex(x), "01 80");
  }
  const std::string warnings = testing::internal::GetCapturedStderr();
  EXPECT_NE(warnings.find("Invalid double input"), warnings.npos);
}

TEST_F(OciNumberMachine, ArraysOfNumbers) {
  const OCINumber a = number("1.5"), b = number("-2.25"), bad = {{3, 0xC1, 2, 102}};
  const OCINumber *numbers[] = {&a, &b, &bad};
  double doubles[3] = {7, 7, 7};
  EXPECT_EQ(OCINumberToRealArray(err(), numbers, 2, sizeof(double), doubles),
            OCI_SUCCESS);
  EXPECT_EQ(doubles[0], 1.5);
  EXPECT_EQ(doubles[1], -2.25);
  float floats[3] = {7, 7, 7};
  EXPECT_EQ(OCINumberToRealArray(err(), numbers, 3, sizeof(float), floats), OCI_ERROR);
  EXPECT_EQ(floats[1], -2.25f);
  EXPECT_EQ(floats[2], 7);
  EXPECT_EQ(OCINumberToRealArray(err(), numbers, 0, 8, doubles), OCI_ERROR);
  EXPECT_EQ(OCINumberToRealArray(err(), numbers, 2, 3, doubles), OCI_ERROR);
  EXPECT_EQ(OCINumberFromReal(err(), doubles, 3, const_cast<OCINumber *>(&a)), OCI_ERROR);
}

}  // namespace
}  // namespace zevtest
