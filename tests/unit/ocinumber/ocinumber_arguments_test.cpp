/// What the OCINumber functions say of arguments that are missing or no numbers.
#include <functional>

#include "number_functions.h"
#include "ocinumber_fixture.h"

namespace zevtest {
namespace {

constexpr BinaryNumber kLookAtLengths[] = {OCINumberAdd, OCINumberSub, OCINumberMul,
                                           OCINumberDiv, OCINumberArcTan2};

class OciNumberArguments : public Numbers {
 protected:
  /// What a call says of a null.
  void expectNull(sword status, const std::string &position, const char *what) {
    EXPECT_EQ(status, OCI_ERROR) << what << ' ' << position;
    std::string text;
    EXPECT_EQ(take(&text), 21560) << what << ' ' << position;
    EXPECT_EQ(text, "KESTREL-21560: null, invalid, or out of range argument " + position)
        << what;
  }

  OCINumber x_ = number("0.5"), y_ = number("0.25"), result_ = number("77");
};

TEST_F(OciNumberArguments, NullsAreToldByTheirPositions) {
  for (const UnaryNumber function : kUnaryNumbers) {
    expectNull(function(err(), nullptr, &result_), "2", "unary");
    expectNull(function(err(), &x_, nullptr), "3", "unary");
  }
  for (const BinaryNumber function : kBinaryNumbers) {
    expectNull(function(err(), nullptr, &y_, &result_), "2", "binary");
    expectNull(function(err(), &x_, nullptr, &result_), "3", "binary");
    expectNull(function(err(), &x_, &y_, nullptr), "4", "binary");
  }
  sword order = 0;
  boolean flag = 0;
  char buffer[64];
  ub4 size = sizeof buffer;
  auto *const text = reinterpret_cast<OraText *>(buffer);
  const OCINumber *const numbers[] = {&x_};
  expectNull(OCINumberInc(err(), nullptr), "2", "Inc");
  expectNull(OCINumberDec(err(), nullptr), "2", "Dec");
  expectNull(OCINumberIntPower(err(), nullptr, 2, &result_), "2", "IntPower");
  expectNull(OCINumberIntPower(err(), &x_, 2, nullptr), "4", "IntPower");
  expectNull(OCINumberShift(err(), nullptr, 2, &result_), "2", "Shift");
  expectNull(OCINumberShift(err(), &x_, 2, nullptr), "3", "Shift");
  expectNull(OCINumberPrec(err(), nullptr, 2, &result_), "2", "Prec");
  expectNull(OCINumberPrec(err(), &x_, 2, nullptr), "3", "Prec");
  expectNull(OCINumberRound(err(), nullptr, 2, &result_), "2", "Round");
  expectNull(OCINumberRound(err(), &x_, 2, nullptr), "3", "Round");
  expectNull(OCINumberTrunc(err(), nullptr, 2, &result_), "2", "Trunc");
  expectNull(OCINumberTrunc(err(), &x_, 2, nullptr), "3", "Trunc");
  expectNull(OCINumberCmp(err(), nullptr, &y_, &order), "2", "Cmp");
  expectNull(OCINumberCmp(err(), &x_, nullptr, &order), "3", "Cmp");
  expectNull(OCINumberCmp(err(), &x_, &y_, nullptr), "4", "Cmp");
  expectNull(OCINumberIsZero(err(), nullptr, &flag), "2", "IsZero");
  expectNull(OCINumberIsZero(err(), &x_, nullptr), "3", "IsZero");
  expectNull(OCINumberSign(err(), nullptr, &order), "2", "Sign");
  expectNull(OCINumberSign(err(), &x_, nullptr), "3", "Sign");
  expectNull(OCINumberIsInt(err(), nullptr, &flag), "2", "IsInt");
  expectNull(OCINumberIsInt(err(), &x_, nullptr), "3", "IsInt");
  expectNull(OCINumberToInt(err(), nullptr, 4, 2, buffer), "2", "ToInt");
  expectNull(OCINumberToInt(err(), &x_, 4, 2, nullptr), "5", "ToInt");
  expectNull(OCINumberFromInt(err(), nullptr, 4, 2, &result_), "2", "FromInt");
  expectNull(OCINumberFromInt(err(), buffer, 4, 2, nullptr), "5", "FromInt");
  expectNull(OCINumberToReal(err(), nullptr, 8, buffer), "2", "ToReal");
  expectNull(OCINumberToReal(err(), &x_, 8, nullptr), "5", "ToReal");
  expectNull(OCINumberToRealArray(err(), nullptr, 1, 8, buffer), "2", "ToRealArray");
  expectNull(
      OCINumberToRealArray(err(), const_cast<const OCINumber **>(numbers), 1, 8, nullptr),
      "5", "ToRealArray");
  expectNull(OCINumberFromReal(err(), nullptr, 8, &result_), "2", "FromReal");
  expectNull(OCINumberFromReal(err(), buffer, 8, nullptr), "4", "FromReal");
  expectNull(OCINumberToText(err(), nullptr, text, 3, nullptr, 0, &size, text), "2",
             "ToText");
  expectNull(OCINumberToText(err(), &x_, text, 3, nullptr, 0, &size, nullptr), "8",
             "ToText");
  expectNull(OCINumberFromText(err(), nullptr, 3, text, 3, nullptr, 0, &result_), "2",
             "FromText");
  expectNull(OCINumberFromText(err(), text, 3, text, 3, nullptr, 0, nullptr), "8",
             "FromText");
}

TEST_F(OciNumberArguments, OperandsWithoutALengthAreNullsWhereTheyAreLookedAt) {
  OCINumber empty{};
  for (const BinaryNumber function : kLookAtLengths) {
    expectNull(function(err(), &empty, &y_, &result_), "2", "first");
    expectNull(function(err(), &x_, &empty, &result_),
               function == OCINumberArcTan2 ? "" : "3", "second");
  }
  EXPECT_EQ(value(result_), "77e0");
}

TEST_F(OciNumberArguments, WhatIsNoErrorHandleLeavesNoRecord) {
  for (OCIError *bad :
       {static_cast<OCIError *>(nullptr), reinterpret_cast<OCIError *>(env())}) {
    for (const UnaryNumber function : kUnaryNumbers)
      EXPECT_EQ(function(bad, &x_, &result_), OCI_INVALID_HANDLE);
    for (const BinaryNumber function : kBinaryNumbers)
      EXPECT_EQ(function(bad, nullptr, &y_, &result_), OCI_INVALID_HANDLE);
    EXPECT_EQ(OCINumberInc(bad, &x_), OCI_INVALID_HANDLE);
  }
  EXPECT_EQ(value(result_), "77e0");
}

TEST_F(OciNumberArguments, ACallForgetsEarlierRecords) {
  expectNull(OCINumberInc(err(), nullptr), "2", "Inc");
  OCINumberInc(err(), nullptr);
  ASSERT_EQ(OCINumberInc(err(), &x_), OCI_SUCCESS);
  EXPECT_EQ(take(), 0);
}

TEST_F(OciNumberArguments, BytesThatAreNoNumberFailAndLeaveTheResult) {
  const OCINumber bad = {{3, 0xC1, 2, 102}};
  for (const UnaryNumber function : kUnaryNumbers) {
    if (function == OCINumberAssign || function == OCINumberAbs) continue;
    EXPECT_EQ(function(err(), &bad, &result_), OCI_ERROR);
    EXPECT_EQ(take(), 0);
  }
  for (const BinaryNumber function : kBinaryNumbers) {
    EXPECT_EQ(function(err(), &bad, &y_, &result_), OCI_ERROR);
    EXPECT_EQ(function(err(), &x_, &bad, &result_), OCI_ERROR);
  }
  EXPECT_EQ(value(result_), "77e0");
}

/// An encoding that no function wrote gives a number or a failure, in bounded time.
TEST_F(OciNumberArguments, ArbitraryBytesEndWithANumberOrAFailure) {
  testing::internal::CaptureStderr();
  for (int i = 0; i < rounds(1500, 100000); ++i) {
    OCINumber a, b;
    for (OCINumber *n : {&a, &b}) {
      // Mostly bytes that digits have.
      for (ub1 &byte : n->OCINumberPart)
        byte = static_cast<ub1>(between(0, 60) ? between(2, 100) : between(0, 255));
      n->OCINumberPart[0] = static_cast<ub1>(between(0, 24));
      const int exponent = between(0, 3) ? between(-20, 20) : between(-64, 63);
      n->OCINumberPart[1] =
          static_cast<ub1>(between(0, 1) ? 192 + exponent : 63 - exponent);
    }
    for (const UnaryNumber function : kUnaryNumbers) {
      OCINumber result = number("77");
      const sword status = function(err(), &a, &result);
      ASSERT_TRUE(status == OCI_SUCCESS || status == OCI_ERROR);
    }
    for (const BinaryNumber function : kBinaryNumbers) {
      OCINumber result = number("77");
      const sword status = function(err(), &a, &b, &result);
      ASSERT_TRUE(status == OCI_SUCCESS || status == OCI_ERROR);
      if (status == OCI_SUCCESS) {
        ASSERT_NE(value(result), "bad") << hex(result);
      }
    }
  }
  testing::internal::GetCapturedStderr();
}

/// Operands at the ends of what encodings hold, in each function.
TEST_F(OciNumberArguments, TheLargestAndSmallestNumbersEndToo) {
  testing::internal::CaptureStderr();
  const char *const values[] = {
      "1E125", "-1E125", "9.9E125", "1E-126", "-1E-126", "1E60",
      "-1E60", "0",      "1",       "-1",     "1E-40",   "0.999999999999999999999999"};
  for (const char *first : values) {
    const OCINumber a = number(first);
    for (const UnaryNumber function : kUnaryNumbers) {
      OCINumber result;
      const sword status = function(err(), &a, &result);
      EXPECT_TRUE(status == OCI_SUCCESS || status == OCI_ERROR) << first;
    }
    for (const char *second : values) {
      const OCINumber b = number(second);
      for (const BinaryNumber function : kBinaryNumbers) {
        OCINumber result;
        const sword status = function(err(), &a, &b, &result);
        EXPECT_TRUE(status == OCI_SUCCESS || status == OCI_ERROR)
            << first << ' ' << second;
      }
    }
    for (const sword n : {0, 1, -1, 1000000, -1000000, 2147483647, -2147483647 - 1}) {
      OCINumber result;
      for (const auto function : {OCINumberIntPower, OCINumberShift, OCINumberPrec,
                                  OCINumberRound, OCINumberTrunc}) {
        const sword status = function(err(), &a, n, &result);
        EXPECT_TRUE(status == OCI_SUCCESS || status == OCI_ERROR) << first << ' ' << n;
      }
    }
  }
  testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace zevtest
