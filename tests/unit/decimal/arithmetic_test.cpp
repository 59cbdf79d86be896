/// What the operations do with zeros, signs, places and shared operands.
#include "decimal/divide.h"
#include "decimal/text.h"
#include "decimal_fixture.h"

namespace zevtest {
namespace {

using Exact = void (*)(M_APM, M_APM, M_APM);

std::string result(Exact operation, const char *a, const char *b) {
  Number r;
  operation(r, Number(a), Number(b));
  expectNormalForm(r);
  return r.plain(-1);
}

std::string quotient(const char *a, const char *b, int places) {
  Number r;
  m_apm_divide(r, places, Number(a), Number(b));
  expectNormalForm(r);
  return r.plain(-1);
}

TEST(DecimalAddition, SignsAndZeros) {
  EXPECT_EQ(result(m_apm_add, "1.5", "2.75"), "4.25");
  EXPECT_EQ(result(m_apm_add, "0", "-2"), "-2.0");
  EXPECT_EQ(result(m_apm_add, "-2", "0"), "-2.0");
  EXPECT_EQ(result(m_apm_add, "0", "0"), "0.0");
  EXPECT_EQ(result(m_apm_add, "-1", "-2"), "-3.0");
  EXPECT_EQ(result(m_apm_add, "5", "-5"), "0.0");
  EXPECT_EQ(result(m_apm_add, "5", "-7"), "-2.0");
  EXPECT_EQ(result(m_apm_add, "99.99", "0.01"), "100.0");
  EXPECT_EQ(result(m_apm_subtract, "0", "5"), "-5.0");
  EXPECT_EQ(result(m_apm_subtract, "5", "0"), "5.0");
  EXPECT_EQ(result(m_apm_subtract, "5", "-5"), "10.0");
  EXPECT_EQ(result(m_apm_subtract, "-5", "-7"), "2.0");
  EXPECT_EQ(result(m_apm_subtract, "1000", "0.001"), "999.999");
}

TEST(DecimalAddition, NumbersFarApart) {
  EXPECT_EQ(result(m_apm_add, "1E50", "1E-50"),
            "1" + std::string(50, '0') + "." + std::string(49, '0') + "1");
  EXPECT_EQ(result(m_apm_subtract, "1E20", "1E-3"), "99999999999999999999.999");
}

TEST(DecimalArithmetic, OperandsStayAsTheyAre) {
  const Number a("5.5"), b("-7.25");
  Number r;
  for (const Exact operation : {m_apm_add, m_apm_subtract, m_apm_multiply}) {
    operation(r, a, b);
    EXPECT_EQ(a.plain(-1), "5.5");
    EXPECT_EQ(b.plain(-1), "-7.25");
  }
}

TEST(DecimalArithmetic, ResultMayBeAnOperand) {
  Number a("5.5");
  m_apm_add(a, a, a);
  EXPECT_EQ(a.plain(-1), "11.0");
  m_apm_multiply(a, a, a);
  EXPECT_EQ(a.plain(-1), "121.0");
  m_apm_subtract(a, a, MM_One);
  EXPECT_EQ(a.plain(-1), "120.0");
  m_apm_subtract(a, MM_One, a);
  EXPECT_EQ(a.plain(-1), "-119.0");
  m_apm_divide(a, 20, a, MM_Two);
  EXPECT_EQ(a.plain(-1), "-59.5");
  m_apm_round(a, 1, a);
  EXPECT_EQ(a.plain(-1), "-60.0");
  m_apm_subtract(a, a, a);
  EXPECT_EQ(a->sign, 0);
}

TEST(DecimalMultiplication, SignsAndZeros) {
  EXPECT_EQ(result(m_apm_multiply, "-1.5", "2"), "-3.0");
  EXPECT_EQ(result(m_apm_multiply, "-1.5", "-2"), "3.0");
  EXPECT_EQ(result(m_apm_multiply, "0", "-2"), "0.0");
  EXPECT_EQ(result(m_apm_multiply, "2", "0"), "0.0");
  EXPECT_EQ(result(m_apm_multiply, "99999999", "99999999"), "9999999800000001.0");
}

TEST(DecimalMultiplication, ExponentsBeyondTheirRangeWarnAndGiveZero) {
  const Number huge("1E1500000000"), tiny("1E-1500000000");
  for (M_APM x : {static_cast<M_APM>(huge), static_cast<M_APM>(tiny)}) {
    Number r("7");
    EXPECT_EQ(warningsOf([&] { m_apm_multiply(r, x, x); }),
              "MAPM Warning: 'M_apm_normalize', Exponent out of range\n");
    EXPECT_EQ(r->sign, 0);
  }
}

TEST(DecimalDivision, AThirdToFortyPlacesHasFortyOneThrees) {
  EXPECT_EQ(quotient("1", "3", 40), "0." + std::string(41, '3'));
}

TEST(DecimalDivision, CutsBelow250PlacesAndRoundsFromThereOn) {
  EXPECT_EQ(quotient("2", "3", 4), "0.66666");
  EXPECT_EQ(quotient("2", "3", 249), "0." + std::string(250, '6'));
  EXPECT_EQ(quotient("2", "3", 250), "0." + std::string(250, '6') + "7");
}

TEST(DecimalDivision, LargerDividendGetsMoreDigits) {
  EXPECT_EQ(quotient("200", "3", 4), "66.66666");
  EXPECT_EQ(quotient("2", "300", 4), "0.0066666");
}

TEST(DecimalDivision, ExactQuotients) {
  EXPECT_EQ(quotient("1", "8", 40), "0.125");
  EXPECT_EQ(quotient("-7", "7", 40), "-1.0");
  EXPECT_EQ(quotient("700", "7", 40), "100.0");
  EXPECT_EQ(quotient("7", "-70", 0), "-0.1");
  EXPECT_EQ(quotient("0", "7", 40), "0.0");
  EXPECT_EQ(quotient("1", "8", 300), "0.125");
  EXPECT_EQ(quotient("123456789", "123456789000", 10), "0.001");
}

TEST(DecimalDivision, ByZeroWarnsAndGivesZero) {
  using Division = void (*)(M_APM, M_APM);
  for (const Division divide :
       {+[](M_APM r, M_APM a) { m_apm_divide(r, 40, a, MM_Zero); },
        +[](M_APM r, M_APM a) { m_apm_divide(r, 300, a, MM_Zero); },
        +[](M_APM r, M_APM a) { m_apm_integer_divide(r, a, MM_Zero); }}) {
    const Number a("5");
    Number r("7");
    EXPECT_EQ(warningsOf([&] { divide(r, a); }),
              "MAPM Warning: 'm_apm_divide', Divide by 0\n");
    EXPECT_EQ(r->sign, 0);
  }
}

TEST(DecimalDivision, RemainderOfADivisionByZeroIsTheDividend) {
  const Number a("5"), zero;
  Number q("7"), rest("7");
  EXPECT_EQ(warningsOf([&] { m_apm_integer_div_rem(q, rest, a, zero); }),
            "MAPM Warning: 'm_apm_divide', Divide by 0\n");
  EXPECT_EQ(q->sign, 0);
  EXPECT_EQ(rest.plain(-1), "5.0");
}

TEST(DecimalDivision, ReciprocalOfZeroWarnsAndGivesZero) {
  Number r("7");
  EXPECT_EQ(warningsOf([&] { m_apm_reciprocal(r, 40, Number()); }),
            "MAPM Warning: 'm_apm_reciprocal', Input = 0\n");
  EXPECT_EQ(r->sign, 0);
}

TEST(DecimalDivision, Reciprocals) {
  const auto reciprocal = [](const char *text, int places) {
    Number r;
    m_apm_reciprocal(r, places, Number(text));
    expectNormalForm(r);
    return r.plain(-1);
  };
  EXPECT_EQ(reciprocal("8", 40), "0.125");
  EXPECT_EQ(reciprocal("-8E20", 200), "-0." + std::string(20, '0') + "125");
  EXPECT_EQ(reciprocal("0.001", 5), "1000.0");
  EXPECT_EQ(reciprocal("3", 2), "0.333");
  EXPECT_EQ(reciprocal("0.6", 2), "1.67");
}

TEST(DecimalDivision, IntegerPartsAreCutAndNeverRoundedUp) {
  const auto integer = [](const char *a, const char *b) {
    Number q, rest;
    m_apm_integer_div_rem(q, rest, Number(a), Number(b));
    return q.plain(-1) + " " + rest.plain(-1);
  };
  EXPECT_EQ(integer("7", "2"), "3.0 1.0");
  EXPECT_EQ(integer("-7", "2"), "-3.0 -1.0");
  EXPECT_EQ(integer("7", "-2"), "-3.0 1.0");
  EXPECT_EQ(integer("99999999999999999999", "100000000000000000000"),
            "0.0 99999999999999999999.0");
  EXPECT_EQ(integer("999999999999999999999", "10"), "99999999999999999999.0 9.0");
  EXPECT_EQ(integer("7.5", "2"), "3.0 1.5");
  EXPECT_EQ(integer("0.5", "2"), "0.0 0.5");
  EXPECT_EQ(integer("5", "0.3"), "16.0 0.2");
  EXPECT_EQ(integer("0", "3"), "0.0 0.0");
}

std::string rounded(const char *text, int places) {
  Number r;
  m_apm_round(r, places, Number(text));
  expectNormalForm(r);
  return r.plain(-1);
}

TEST(DecimalRounding, HalvesGoAwayFromZero) {
  EXPECT_EQ(rounded("1.25", 1), "1.3");
  EXPECT_EQ(rounded("-1.25", 1), "-1.3");
  EXPECT_EQ(rounded("1.24999", 1), "1.2");
  EXPECT_EQ(rounded("125", 1), "130.0");
  EXPECT_EQ(rounded("2.5", 0), "3.0");
  EXPECT_EQ(rounded("2.45", 1), "2.5");
}

TEST(DecimalRounding, CarriesRunThrough) {
  EXPECT_EQ(rounded("9.99", 1), "10.0");
  EXPECT_EQ(rounded("-99.995", 3), "-100.0");
  EXPECT_EQ(rounded("1.9999999999", 5), "2.0");
  EXPECT_EQ(rounded("12999.7", 4), "13000.0");
  EXPECT_EQ(rounded("1299.97", 4), "1300.0");
}

TEST(DecimalRounding, EnoughPlacesCopy) {
  EXPECT_EQ(rounded("1.25", 2), "1.25");
  EXPECT_EQ(rounded("1.25", 100), "1.25");
  EXPECT_EQ(rounded("0", 0), "0.0");
}

/// With -1 places the digit to round to stands right before the first one.
TEST(DecimalRounding, NegativePlaces) {
  EXPECT_EQ(rounded("0.006", -1), "0.01");
  EXPECT_EQ(rounded("0.0049", -1), "0.0");
  EXPECT_EQ(rounded("-7", -1), "-10.0");
  EXPECT_EQ(rounded("9", -2), "0.0");
}

TEST(DecimalRounding, DigitsBehindThePoint) {
  const auto fixed = [](const char *text, int places) {
    Number r;
    M_apm_round_fixpt(r, places, Number(text));
    expectNormalForm(r);
    return r.plain(-1);
  };
  EXPECT_EQ(fixed("123.456", 2), "123.46");
  EXPECT_EQ(fixed("0.5", 0), "1.0");
  EXPECT_EQ(fixed("0.49", 0), "0.0");
  EXPECT_EQ(fixed("0.05", 0), "0.0");
  EXPECT_EQ(fixed("0.0051", 2), "0.01");
  EXPECT_EQ(fixed("-0.0051", 2), "-0.01");
  EXPECT_EQ(fixed("1E-30", 2), "0.0");
}

TEST(DecimalRounding, RandomNumbersAgreeWithTheirHalfUnit) {
  std::mt19937_64 random = generator();
  for (int i = rounds(5000, 100'000); i > 0; --i) {
    const std::string digits = randomDigits(random, between(random, 1, 60));
    const int places = between(random, 0, 59);
    const Number x((random() % 2 ? "-0." : "0.") + digits);
    Number r, half("5E-" + std::to_string(places + 2)), expected;
    m_apm_round(r, places, x);
    expectNormalForm(r);
    if (x->sign < 0) m_apm_negate(half, half);
    m_apm_add(expected, x, half);
    m_apm_integer_div_rem(expected, half, expected,
                          Number("1E-" + std::to_string(places + 1)));
    m_apm_multiply(expected, expected, Number("1E-" + std::to_string(places + 1)));
    if (m_apm_significant_digits(x) <= places + 1) m_apm_copy(expected, x);
    ASSERT_EQ(m_apm_compare(r, expected), 0) << x.text() << " to " << places;
  }
}

TEST(DecimalRounding, FloorAndCeiling) {
  struct Case {
    const char *text, *floor, *ceiling;
  };
  for (const auto &[text, floor, ceiling] :
       {Case{"1.5", "1.0", "2.0"}, Case{"-1.5", "-2.0", "-1.0"},
        Case{"0.001", "0.0", "1.0"}, Case{"-0.001", "-1.0", "0.0"},
        Case{"7", "7.0", "7.0"}, Case{"-7", "-7.0", "-7.0"}, Case{"0", "0.0", "0.0"},
        Case{"99.9", "99.0", "100.0"}, Case{"-99.9", "-100.0", "-99.0"},
        Case{"1200", "1200.0", "1200.0"}, Case{"100.5", "100.0", "101.0"}}) {
    Number r;
    m_apm_floor(r, Number(text));
    EXPECT_EQ(r.plain(-1), floor) << text;
    expectNormalForm(r);
    m_apm_ceil(r, Number(text));
    EXPECT_EQ(r.plain(-1), ceiling) << text;
    expectNormalForm(r);
  }
}

}  // namespace
}  // namespace zevtest
