/// Arithmetic on OCINumbers, function by function.
#include <functional>
#include <limits>

#include "decimal/exchange.h"
#include "ocinumber_fixture.h"

namespace zevtest {
namespace {

using namespace zev::decimal;

using Unary = sword (*)(OCIError *, const OCINumber *, OCINumber *);
using Binary = sword (*)(OCIError *, const OCINumber *, const OCINumber *, OCINumber *);
using InPlace = sword (*)(OCIError *, OCINumber *);
using WithInteger = sword (*)(OCIError *, const OCINumber *, sword, OCINumber *);

/// "-12.3" for -123.
std::string tenths(int count) {
  return (count < 0 ? "-" : "") + std::to_string(std::abs(count) / 10) + "." +
         std::to_string(std::abs(count) % 10);
}

class OciNumber : public Numbers {
 protected:
  std::string of(Unary function, const std::string &a) {
    OCINumber x = number(a), result = number("77");
    const sword status = function(err(), &x, &result);
    return status == OCI_SUCCESS ? value(result) : "status " + std::to_string(status);
  }
  std::string of(Binary function, const std::string &a, const std::string &b) {
    OCINumber x = number(a), y = number(b), result = number("77");
    const sword status = function(err(), &x, &y, &result);
    return status == OCI_SUCCESS ? value(result) : "status " + std::to_string(status);
  }
  std::string of(WithInteger function, const std::string &a, sword n) {
    OCINumber x = number(a), result = number("77");
    const sword status = function(err(), &x, n, &result);
    return status == OCI_SUCCESS ? value(result) : "status " + std::to_string(status);
  }
};

TEST_F(OciNumber, SumsAndProducts) {
  const OCINumber one = number("1"), two = number("2");
  OCINumber sum;
  ASSERT_EQ(OCINumberAdd(err(), &one, &two, &sum), OCI_SUCCESS);
  EXPECT_EQ(hex(sum), "02 C1 04");
  EXPECT_EQ(of(OCINumberAdd, "0.1", "0.2"), "3e-1");
  EXPECT_EQ(of(OCINumberSub, "1", "1.5"), "-5e-1");
  EXPECT_EQ(of(OCINumberMul, "-12.5", "8"), "-1e2");
  EXPECT_EQ(of(OCINumberDiv, "1", "8"), "125e-3");
  EXPECT_EQ(of(OCINumberDiv, "1", "3"), std::string(40, '3') + "e-40");
  EXPECT_EQ(of(OCINumberMod, "17", "5"), "2e0");
  EXPECT_EQ(of(OCINumberMod, "-17", "5"), "-2e0");
  EXPECT_EQ(of(OCINumberMul, "1E124", "1E124"), "status -1") << "no encoding is so large";
}

TEST_F(OciNumber, PowersRootsAndLogarithms) {
  EXPECT_EQ(of(OCINumberPower, "2", "10"), "1024e0");
  EXPECT_EQ(of(OCINumberPower, "2", "0.5"), of(OCINumberSqrt, "2"));
  EXPECT_EQ(of(OCINumberSqrt, "2"), "141421356237309504880168872420969807856e-38");
  EXPECT_EQ(of(OCINumberExp, "0"), "1e0");
  EXPECT_EQ(of(OCINumberLn, "1"), "0");
  EXPECT_EQ(of(OCINumberLog, "10", "1000"), "3e0");
  OCINumber base = number("-3"), power;
  ASSERT_EQ(OCINumberIntPower(err(), &base, 3, &power), OCI_SUCCESS);
  EXPECT_EQ(value(power), "-27e0");
  EXPECT_EQ(of(OCINumberShift, "1.25", 3), "125e1");
  EXPECT_EQ(of(OCINumberShift, "1.25", -3), "125e-5");
}

TEST_F(OciNumber, SignsAndWholeNumbers) {
  EXPECT_EQ(of(OCINumberNeg, "1.5"), "-15e-1");
  EXPECT_EQ(of(OCINumberAbs, "-1.5"), "15e-1");
  EXPECT_EQ(of(OCINumberAbs, "1.5"), "15e-1");
  EXPECT_EQ(of(OCINumberCeil, "1.5"), "2e0");
  EXPECT_EQ(of(OCINumberCeil, "-1.5"), "-1e0");
  EXPECT_EQ(of(OCINumberFloor, "1.5"), "1e0");
  EXPECT_EQ(of(OCINumberFloor, "-1.5"), "-2e0");
  OCINumber x = number("9.5");
  ASSERT_EQ(OCINumberInc(err(), &x), OCI_SUCCESS);
  EXPECT_EQ(value(x), "105e-1");
  ASSERT_EQ(OCINumberDec(err(), &x), OCI_SUCCESS);
  EXPECT_EQ(value(x), "95e-1");
}

TEST_F(OciNumber, Angles) {
  EXPECT_EQ(of(OCINumberSin, "0"), "0");
  EXPECT_EQ(of(OCINumberCos, "0"), "1e0");
  EXPECT_EQ(of(OCINumberTan, "0"), "0");
  EXPECT_EQ(of(OCINumberArcSin, "0"), "0");
  EXPECT_EQ(of(OCINumberArcCos, "1"), "0");
  EXPECT_EQ(of(OCINumberArcTan, "0"), "0");
  EXPECT_EQ(of(OCINumberHypSin, "0"), "0");
  EXPECT_EQ(of(OCINumberHypCos, "0"), "1e0");
  EXPECT_EQ(of(OCINumberHypTan, "0"), "0");
  // Pi to the digits that an encoding keeps.
  EXPECT_EQ(of(OCINumberArcTan2, "0", "-1"),
            "314159265358979323846264338327950288419e-38");
}

TEST_F(OciNumber, WhatHasNoResultIsZeroWithAWarning) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(of(OCINumberDiv, "1", "0"), "0");
  EXPECT_EQ(of(OCINumberSqrt, "-1"), "0");
  EXPECT_EQ(of(OCINumberLn, "0"), "0");
  EXPECT_EQ(of(OCINumberArcSin, "1.1"), "0");
  const std::string warnings = testing::internal::GetCapturedStderr();
  EXPECT_NE(warnings.find("MAPM Warning: "), warnings.npos) << warnings;
  EXPECT_EQ(take(), 0);
}

TEST_F(OciNumber, RoundsToDecimals) {
  EXPECT_EQ(of(OCINumberRound, "123.456", 2), "12346e-2");
  EXPECT_EQ(of(OCINumberRound, "-123.455", 2), "-12346e-2");
  EXPECT_EQ(of(OCINumberRound, "123.456", 0), "123e0");
  EXPECT_EQ(of(OCINumberRound, "123.456", 38), "77e0") << "the result is left as it was";
  EXPECT_EQ(of(OCINumberRound, "123.456", -1), "status -1");
  std::string text;
  EXPECT_EQ(take(&text), 3001);
  EXPECT_EQ(text, "KESTREL-03001: unsupported feature");
  EXPECT_EQ(of(OCINumberRound, "123.456", 39), "status -1");
  EXPECT_EQ(take(&text), 1426);
  EXPECT_EQ(text, "KESTREL-01426: numeric overflow");
}

TEST_F(OciNumber, RoundsToDigits) {
  EXPECT_EQ(of(OCINumberPrec, "123.456", 4), "1235e-1");
  EXPECT_EQ(of(OCINumberPrec, "123.456", 1), "1e2");
  for (const sword none : {0, -1}) {
    OCINumber x = number("123.456"), result = number("77");
    EXPECT_EQ(OCINumberPrec(err(), &x, none, &result), OCI_ERROR);
    EXPECT_EQ(hex(result), "01 80");
  }
}

TEST_F(OciNumber, IsCutToDecimals) {
  EXPECT_EQ(of(OCINumberTrunc, "123.456", -1), "12e1");
  EXPECT_EQ(of(OCINumberTrunc, "123.456", 0), "123e0");
  EXPECT_EQ(of(OCINumberTrunc, "123.456", 1), "1234e-1");
  EXPECT_EQ(of(OCINumberTrunc, "-123.456", 2), "-12345e-2");
  EXPECT_EQ(of(OCINumberTrunc, "123.456", 3), "123456e-3");
  EXPECT_EQ(of(OCINumberTrunc, "123.456", 50), "123456e-3");
  EXPECT_EQ(of(OCINumberTrunc, "-123.456", -3), "0");
  EXPECT_EQ(of(OCINumberTrunc, "-123.456", std::numeric_limits<sword>::min()), "0");
}

TEST_F(OciNumber, ConstantsAndCopies) {
  OCINumber x;
  OCINumberSetPi(err(), &x);
  EXPECT_EQ(hex(x), "15 C1 04 0F 10 5D 42 24 5A 50 21 27 2F 1B 2C 27 21 50 33 1D 55 14");
  OCINumber copy;
  std::memset(&copy, 0x55, sizeof copy);
  const OCINumber small = number("5");
  ASSERT_EQ(OCINumberAssign(err(), &small, &copy), OCI_SUCCESS);
  EXPECT_EQ(bytes(copy), bytes(small));
  EXPECT_EQ(copy.OCINumberPart[3], 0x55) << "no more than the bytes that count";
  OCINumberSetZero(err(), &x);
  EXPECT_EQ(hex(x), "01 80");
  OCINumberSetZero(nullptr, &x);
  OCINumberSetPi(nullptr, &x);
  EXPECT_EQ(hex(x), "01 80");
  for (const auto set : {OCINumberSetZero, OCINumberSetPi}) {
    set(err(), nullptr);
    std::string text;
    EXPECT_EQ(take(&text), 21560);
    EXPECT_TRUE(text.ends_with("argument 2")) << text;
  }
}

TEST_F(OciNumber, Comparisons) {
  for (int i = 0; i < rounds(20000, 1000000); ++i) {
    const int a = between(-1000, 1000), b = between(-1000, 1000);
    const OCINumber x = number(tenths(a)), y = number(tenths(b));
    sword order = 9, sign = 9;
    boolean isZero = 9, isInteger = 9;
    ASSERT_EQ(OCINumberCmp(err(), &x, &y, &order), OCI_SUCCESS);
    ASSERT_EQ(order, a < b ? -1 : a > b);
    ASSERT_EQ(OCINumberSign(err(), &x, &sign), OCI_SUCCESS);
    ASSERT_EQ(sign, a < 0 ? -1 : a > 0);
    ASSERT_EQ(OCINumberIsZero(err(), &x, &isZero), OCI_SUCCESS);
    ASSERT_EQ(isZero, a == 0);
    ASSERT_EQ(OCINumberIsInt(err(), &x, &isInteger), OCI_SUCCESS);
    ASSERT_EQ(isInteger, a % 10 == 0);
  }
}

/// A function and what the engine computes for it.
struct Plain {
  const char *name;
  std::function<sword(OCIError *, const OCINumber &, const OCINumber &, OCINumber &)>
      ours;
  std::function<void(M_APM, M_APM, M_APM, M_APM)> engine;  ///< result, rest, a, b
  int power;  ///< of ten, that the operands stay within
};

Plain unary(const char *name, Unary ours, void (*engine)(M_APM, M_APM), int power = 60) {
  return {name,
          [=](OCIError *e, const OCINumber &a, const OCINumber &, OCINumber &r) {
            return ours(e, &a, &r);
          },
          [=](M_APM r, M_APM, M_APM a, M_APM) { engine(r, a); }, power};
}
Plain placed(const char *name, Unary ours, void (*engine)(M_APM, int, M_APM), int power) {
  return {name,
          [=](OCIError *e, const OCINumber &a, const OCINumber &, OCINumber &r) {
            return ours(e, &a, &r);
          },
          [=](M_APM r, M_APM, M_APM a, M_APM) { engine(r, kDecimals, a); }, power};
}
Plain binary(const char *name, Binary ours,
             std::function<void(M_APM, M_APM, M_APM, M_APM)> engine, int power) {
  return {name,
          [=](OCIError *e, const OCINumber &a, const OCINumber &b, OCINumber &r) {
            return ours(e, &a, &b, &r);
          },
          std::move(engine), power};
}

class OciNumberRoads : public OciNumber {
 protected:
  OciNumberRoads() {
    for (M_APM &n : n_) n = m_apm_init();
  }
  ~OciNumberRoads() override {
    for (M_APM n : n_) m_apm_free(n);
  }
  /// A number of up to 40 digits within a power of ten.
  OCINumber operand(int power) {
    const int digits = between(1, 40);
    std::string text = between(0, 1) ? "-" : "";
    for (int i = 0; i < digits; ++i) text += static_cast<char>('0' + between(i == 0, 9));
    return number(text + "E" +
                  std::to_string(std::max(between(-power, power) - digits, -126)));
  }

  M_APM n_[4];
};

TEST_F(OciNumberRoads, GiveTheBytesOfTheWayThroughText) {
  const Plain rows[] = {
      binary(
          "Add", OCINumberAdd,
          [](M_APM r, M_APM, M_APM a, M_APM b) { m_apm_add(r, a, b); }, 90),
      binary(
          "Sub", OCINumberSub,
          [](M_APM r, M_APM, M_APM a, M_APM b) { m_apm_subtract(r, a, b); }, 90),
      binary(
          "Mul", OCINumberMul,
          [](M_APM r, M_APM, M_APM a, M_APM b) { m_apm_multiply(r, a, b); }, 80),
      binary(
          "Div", OCINumberDiv,
          [](M_APM r, M_APM, M_APM a, M_APM b) { m_apm_divide(r, kDecimals, a, b); }, 80),
      binary(
          "Mod", OCINumberMod,
          [](M_APM r, M_APM q, M_APM a, M_APM b) { m_apm_integer_div_rem(q, r, a, b); },
          30),
      binary(
          "ArcTan2", OCINumberArcTan2,
          [](M_APM r, M_APM, M_APM a, M_APM b) { m_apm_arctan2(r, kDecimals, a, b); },
          10),
      binary(
          "Log", OCINumberLog,
          [](M_APM r, M_APM q, M_APM base, M_APM x) {
            M_APM log = m_apm_init();
            m_apm_log(q, kDecimals, x);
            m_apm_log(log, kDecimals, base);
            m_apm_divide(r, kDecimals, q, log);
            m_apm_free(log);
          },
          20),
      unary("Neg", OCINumberNeg, m_apm_negate),
      unary("Ceil", OCINumberCeil, m_apm_ceil),
      unary("Floor", OCINumberFloor, m_apm_floor),
      placed("Sqrt", OCINumberSqrt, m_apm_sqrt, 80),
      placed("Sin", OCINumberSin, m_apm_sin, 5),
      placed("Cos", OCINumberCos, m_apm_cos, 5),
      placed("Tan", OCINumberTan, m_apm_tan, 5),
      placed("ArcSin", OCINumberArcSin, m_apm_arcsin, 5),
      placed("ArcCos", OCINumberArcCos, m_apm_arccos, 5),
      placed("ArcTan", OCINumberArcTan, m_apm_arctan, 5),
      placed("HypSin", OCINumberHypSin, m_apm_sinh, 1),
      placed("HypCos", OCINumberHypCos, m_apm_cosh, 1),
      placed("HypTan", OCINumberHypTan, m_apm_tanh, 1),
      placed("Exp", OCINumberExp, m_apm_exp, 1),
      placed("Ln", OCINumberLn, m_apm_log, 60),
  };
  testing::internal::CaptureStderr();  // operands out of a function's domain
  for (const Plain &row : rows) {
    const bool isCheap = row.power > 20;
    for (int i = 0; i < rounds(isCheap ? 3000 : 150, isCheap ? 300000 : 20000); ++i) {
      const OCINumber a = operand(row.power), b = operand(row.power);
      OCINumber ours = number("77"), plain = ours;
      const sword status = row.ours(err(), a, b, ours);
      ASSERT_TRUE(readNumberByText(a, n_[2]) && readNumberByText(b, n_[3]));
      row.engine(n_[0], n_[1], n_[2], n_[3]);
      ASSERT_EQ(status == OCI_SUCCESS, writeNumberByText(n_[0], plain)) << row.name;
      ASSERT_EQ(std::memcmp(&ours, &plain, sizeof ours), 0)
          << row.name << " of " << hex(a) << " and " << hex(b) << " is " << hex(ours)
          << ", not " << hex(plain);
    }
  }
  testing::internal::GetCapturedStderr();
}

TEST_F(OciNumberRoads, ResultMayStandInThePlaceOfAnOperand) {
  for (const Binary function : {OCINumberAdd, OCINumberSub, OCINumberMul, OCINumberDiv}) {
    OCINumber a = number("12.5"), b = number("4"), apart;
    ASSERT_EQ(function(err(), &a, &b, &apart), OCI_SUCCESS);
    OCINumber x = a;
    ASSERT_EQ(function(err(), &x, &b, &x), OCI_SUCCESS);
    EXPECT_EQ(value(x), value(apart));
    OCINumber y = b;
    ASSERT_EQ(function(err(), &a, &y, &y), OCI_SUCCESS);
    EXPECT_EQ(value(y), value(apart));
  }
}

}  // namespace
}  // namespace zevtest
