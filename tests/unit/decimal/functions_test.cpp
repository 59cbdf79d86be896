/// Values that the functions must hit exactly, and what they do outside their domains.
#include "decimal/arc.h"
#include "decimal/exp.h"
#include "decimal/extendable.h"
#include "decimal/log.h"
#include "decimal/series.h"
#include "decimal/trig.h"
#include "decimal_fixture.h"

namespace zevtest {
namespace {

using Function = void (*)(M_APM, int, M_APM);
using Function2 = void (*)(M_APM, int, M_APM, M_APM);

std::string value(Function function, const char *x, int places = 40) {
  Number r("7");
  std::string text;
  EXPECT_EQ(warningsOf([&] {
              function(r, places, Number(x));
              text = r.plain(-1);
            }),
            "");
  expectNormalForm(r);
  return text;
}

std::string value2(Function2 function, const char *x, const char *y, int places = 40) {
  Number r("7");
  function(r, places, Number(x), Number(y));
  expectNormalForm(r);
  return r.plain(-1);
}

std::string rounded(M_APM constant, int places, int sign = 1) {
  Number r;
  m_apm_round(r, places, constant);
  r->sign *= sign;
  return r.plain(-1);
}

struct FailureCase {
  const char *name;
  Function function;
  const char *x;
  const char *warning;
};

class OutsideTheDomain : public testing::TestWithParam<FailureCase> {};

TEST_P(OutsideTheDomain, WarnsOnceAndGivesZero) {
  const auto &[name, function, x, warning] = GetParam();
  Number r("7");
  EXPECT_EQ(warningsOf([&, f = function, t = x] { f(r, 40, Number(t)); }),
            std::string("MAPM Warning: ") + warning + "\n");
  expectNormalForm(r);
  EXPECT_EQ(r->sign, 0);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Decimal, OutsideTheDomain, testing::Values(
    FailureCase{"sqrt",            m_apm_sqrt,    "-4",    "'m_apm_sqrt', Negative argument"},
    FailureCase{"logOfZero",       m_apm_log,     "0",     "'m_apm_log', Negative argument"},
    FailureCase{"logOfNegative",   m_apm_log,     "-1",    "'m_apm_log', Negative argument"},
    FailureCase{"log10OfZero",     m_apm_log10,   "0",     "'m_apm_log', Negative argument"},
    FailureCase{"log10OfNegative", m_apm_log10,   "-1",    "'m_apm_log', Negative argument"},
    FailureCase{"exp",             m_apm_exp,     "1E10",  "'m_apm_exp', Input too large, Overflow"},
    FailureCase{"expOfNegative",   m_apm_exp,     "-1E10", "'m_apm_exp', Input too large, Overflow"},
    FailureCase{"expJustTooLarge", m_apm_exp,     "1488522236.6", "'m_apm_exp', Input too large, Overflow"},
    FailureCase{"arcsin",          m_apm_arcsin,  "1.1",   "'m_apm_arcsin', |Argument| > 1"},
    FailureCase{"arcsinNegative",  m_apm_arcsin,  "-1.1",  "'m_apm_arcsin', |Argument| > 1"},
    FailureCase{"arccos",          m_apm_arccos,  "1.1",   "'m_apm_arccos', |Argument| > 1"},
    FailureCase{"arccosNegative",  m_apm_arccos,  "-1.1",  "'m_apm_arccos', |Argument| > 1"},
    FailureCase{"arccosh",         m_apm_arccosh, "0.99",  "'m_apm_arccosh', Argument < 1"},
    FailureCase{"arctanhOfOne",    m_apm_arctanh, "1",     "'m_apm_arctanh', |Argument| >= 1"},
    FailureCase{"arctanhNegative", m_apm_arctanh, "-1.5",  "'m_apm_arctanh', |Argument| >= 1"}),
    [](const auto &row) { return std::string(row.param.name); });
// clang-format on

TEST(DecimalRoots, ExactOnes) {
  EXPECT_EQ(value(m_apm_sqrt, "0"), "0.0");
  EXPECT_EQ(value(m_apm_sqrt, "16"), "4.0");
  EXPECT_EQ(value(m_apm_sqrt, "1E-40"), "0." + std::string(19, '0') + "1");
  EXPECT_EQ(value(m_apm_sqrt, "152399025"), "12345.0");
  EXPECT_EQ(value(m_apm_cbrt, "0"), "0.0");
  EXPECT_EQ(value(m_apm_cbrt, "-27"), "-3.0");
  EXPECT_EQ(value(m_apm_cbrt, "0.001"), "0.1");
  EXPECT_EQ(value(m_apm_cbrt, "1E30"), "10000000000.0");
}

TEST(DecimalLog, OfOneIsZero) {
  EXPECT_EQ(value(m_apm_log, "1"), "0.0");
  EXPECT_EQ(value(m_apm_log10, "1"), "0.0");
}

TEST(DecimalLog, OfPowersOfTen) {
  EXPECT_EQ(value(m_apm_log10, "1000"), "3.0");
  EXPECT_EQ(value(m_apm_log10, "1E-30"), "-30.0");
  EXPECT_EQ(value(m_apm_log10, "1E100"), "100.0");
}

TEST(DecimalExp, OfZeroIsOne) {
  const Number any;  // makes the constants
  EXPECT_EQ(value(m_apm_exp, "0"), "1.0");
  EXPECT_EQ(value(m_apm_exp, "1", 100), rounded(MM_E, 100));
}

TEST(DecimalExp, CountsMultiplesOfLog2HalvesAwayFromZero) {
  int n = 99;
  Number b;
  for (const auto &[x, multiple] : {std::pair{"0.3", 0},
                                    {"0.34", 0},
                                    {"0.35", 1},
                                    {"-0.35", -1},
                                    {"-0.3", 0},
                                    {"10", 14},
                                    {"-10", -14}}) {
    EXPECT_EQ(M_exp_compute_nn(&n, b, Number(x)), 0);
    EXPECT_EQ(n, multiple) << x;
  }
  EXPECT_NE(M_exp_compute_nn(&n, b, Number("1E20")), 0);
  EXPECT_EQ(n, -14);
}

TEST(DecimalPow, IntegerExponentsAreExact) {
  EXPECT_EQ(value2(m_apm_pow, "2", "10"), "1024.0");
  EXPECT_EQ(value2(m_apm_pow, "-2", "3"), "-8.0");
  EXPECT_EQ(value2(m_apm_pow, "2", "-2"), "0.25");
  EXPECT_EQ(value2(m_apm_pow, "1.1", "2"), "1.21");
}

TEST(DecimalPow, FractionsGoByTheLogarithm) {
  EXPECT_EQ(value2(m_apm_pow, "2", "0.5"), value(m_apm_sqrt, "2"));
  EXPECT_EQ(value2(m_apm_pow, "4", "0.5"), "2.0");
}

TEST(DecimalPow, ZerosOfBaseAndExponent) {
  EXPECT_EQ(value2(m_apm_pow, "0", "0"), "1.0");
  EXPECT_EQ(value2(m_apm_pow, "5", "0"), "1.0");
  EXPECT_EQ(value2(m_apm_pow, "0", "5"), "0.0");
  EXPECT_EQ(value2(m_apm_pow, "0", "-5"), "0.0");
}

TEST(DecimalPow, NegativeBaseWithFractionWarnsAndGivesZero) {
  Number r("7");
  EXPECT_EQ(warningsOf([&] { m_apm_pow(r, 40, Number("-2"), Number("0.5")); }),
            "MAPM Warning: 'm_apm_log', Negative argument\n");
  EXPECT_EQ(r->sign, 0);
}

TEST(DecimalPow, RemembersNoMoreThanItComputed) {
  std::string few = value2(m_apm_pow, "2", "0.3", 5);
  EXPECT_EQ(few, "1.23114");
  const std::string many = value2(m_apm_pow, "2", "0.3", 60);
  EXPECT_EQ(value2(m_apm_pow, "2", "0.3", 40), value2(m_apm_pow, "2", "0.3", 40));
  EXPECT_EQ(many.substr(0, 30), value2(m_apm_pow, "2", "0.3", 40).substr(0, 30));
  EXPECT_EQ(value2(m_apm_pow, "3", "0.5", 40), value(m_apm_sqrt, "3"));
}

TEST(DecimalTrig, AtZero) {
  EXPECT_EQ(value(m_apm_sin, "0"), "0.0");
  EXPECT_EQ(value(m_apm_cos, "0"), "1.0");
  EXPECT_EQ(value(m_apm_tan, "0"), "0.0");
}

/// Whether two numbers differ by at most one unit of `places`.
bool areNeighbours(M_APM a, M_APM b, int places) {
  const Number unit("1E" + std::to_string(m_apm_exponent(a) - places));
  Number difference;
  m_apm_subtract(difference, a, b);
  m_apm_absolute_value(difference, difference);
  return m_apm_compare(difference, unit) <= 0;
}

/// Both are rounded from some digits more, which at a digit 5 with zeros behind it may
/// lead them apart.
TEST(DecimalTrig, SineAndCosineAtOnceAreThoseAlone) {
  constexpr int kPlaces = 40;
  std::mt19937_64 random = generator();
  const int count = rounds(300, 20'000);
  int apart = 0;
  for (int i = 0; i < count; ++i) {
    const std::string text = (random() % 2 ? "-0." : "0.") + randomDigits(random, 20) +
                             "E" + std::to_string(between(random, -30, 6));
    const Number x(text);
    Number sine, cosine, alone;
    m_apm_sin_cos(sine, cosine, kPlaces, x);
    m_apm_sin(alone, kPlaces, x);
    apart += m_apm_compare(sine, alone) != 0;
    ASSERT_TRUE(areNeighbours(sine, alone, kPlaces)) << text;
    m_apm_cos(alone, kPlaces, x);
    apart += m_apm_compare(cosine, alone) != 0;
    ASSERT_TRUE(areNeighbours(cosine, alone, kPlaces)) << text;
  }
  EXPECT_LE(apart, 1 + count / 1000);
}

TEST(DecimalTrig, AnglesAreBroughtBetweenMinusPiAndPi) {
  for (const char *text :
       {"3.2", "-3.2", "4", "-4", "6.3", "-6.3", "100", "-100", "1E12"}) {
    Number r, turns, whole;
    m_apm_set_string(r, "7");
    M_limit_angle_to_pi(r, 40, Number(text));
    Number magnitude;
    m_apm_absolute_value(magnitude, r);
    EXPECT_LT(m_apm_compare(magnitude, MM_PI), 0) << text;
    m_apm_subtract(whole, Number(text), r);
    m_apm_divide(turns, 30, whole, MM_2_PI);
    m_apm_round(whole, 20, turns);
    EXPECT_TRUE(m_apm_is_integer(whole)) << text;
  }
  for (const char *text : {"3.1", "-3.1", "0", "1E-30"}) {
    Number r;
    M_limit_angle_to_pi(r, 40, Number(text));
    EXPECT_EQ(m_apm_compare(r, Number(text)), 0);
  }
}

TEST(DecimalTrig, TheSineOfAStoredPiTellsItsRest) {
  Number r, rest;
  m_apm_sin(r, 40, MM_PI);
  // pi less its first 128 digits
  EXPECT_EQ(r.scientific(9), "9.550582232E-129");
}

TEST(DecimalArc, AtTheEndsAndTheMiddle) {
  const Number any;  // makes the constants
  EXPECT_EQ(value(m_apm_arcsin, "1", 60), rounded(MM_HALF_PI, 60));
  EXPECT_EQ(value(m_apm_arcsin, "-1", 60), rounded(MM_HALF_PI, 60, -1));
  EXPECT_EQ(value(m_apm_arcsin, "0"), "0.0");
  EXPECT_EQ(value(m_apm_arccos, "1"), "0.0");
  EXPECT_EQ(value(m_apm_arccos, "-1", 60), rounded(MM_PI, 60));
  EXPECT_EQ(value(m_apm_arccos, "0", 60), rounded(MM_HALF_PI, 60));
  EXPECT_EQ(value(m_apm_arctan, "0"), "0.0");
  EXPECT_EQ(value(m_apm_arctan, "1E300", 60), rounded(MM_HALF_PI, 60));
  EXPECT_EQ(value(m_apm_arctan, "-1E300", 60), rounded(MM_HALF_PI, 60, -1));
}

TEST(DecimalArc, OfACoordinate) {
  const Number any;  // makes the constants
  EXPECT_EQ(value2(m_apm_arctan2, "0", "-1", 60), rounded(MM_PI, 60));
  EXPECT_EQ(value2(m_apm_arctan2, "0", "5"), "0.0");
  EXPECT_EQ(value2(m_apm_arctan2, "2", "0", 60), rounded(MM_HALF_PI, 60));
  EXPECT_EQ(value2(m_apm_arctan2, "-2", "0", 60), rounded(MM_HALF_PI, 60, -1));
  EXPECT_EQ(value2(m_apm_arctan2, "1E-300", "-1", 60), rounded(MM_PI, 60));
  EXPECT_EQ(value2(m_apm_arctan2, "-1E-300", "-1", 60), rounded(MM_PI, 60, -1));
  Number r("7");
  EXPECT_EQ(warningsOf([&] { m_apm_arctan2(r, 40, Number(), Number()); }),
            "MAPM Warning: 'm_apm_arctan2', Both Inputs = 0\n");
  EXPECT_EQ(r->sign, 0);
}

TEST(DecimalHyperbolic, AtZeroAndFarOut) {
  EXPECT_EQ(value(m_apm_sinh, "0"), "0.0");
  EXPECT_EQ(value(m_apm_cosh, "0"), "1.0");
  EXPECT_EQ(value(m_apm_tanh, "0"), "0.0");
  EXPECT_EQ(value(m_apm_arcsinh, "0"), "0.0");
  EXPECT_EQ(value(m_apm_arccosh, "1"), "0.0");
  EXPECT_EQ(value(m_apm_arctanh, "0"), "0.0");
  EXPECT_EQ(value(m_apm_tanh, "1E9"), "1.0");
  EXPECT_EQ(value(m_apm_tanh, "-1E20"), "-1.0");
  EXPECT_EQ(value(m_apm_sinh, "1E-30"), value(m_apm_tanh, "1E-30"));
}

/// Arguments whose square would leave the range of exponents.
TEST(DecimalFunctions, ExtremelySmallArguments) {
  const Number x("3E-2000000000");
  for (const Function function : {m_apm_sin, m_apm_tan, m_apm_arcsin, m_apm_arctan,
                                  m_apm_sinh, m_apm_tanh, m_apm_arcsinh, m_apm_arctanh}) {
    Number r;
    EXPECT_EQ(warningsOf([&] { function(r, 40, x); }), "");
    EXPECT_EQ(m_apm_compare(r, x), 0) << r.text();
  }
  for (const Function function : {m_apm_cos, m_apm_exp, m_apm_cosh}) {
    Number r;
    EXPECT_EQ(warningsOf([&] { function(r, 40, x); }), "");
    EXPECT_EQ(m_apm_compare(r, MM_One), 0);
  }
}

TEST(DecimalFunctions, ResultMayBeTheArgument) {
  for (const Function function :
       {m_apm_sqrt, m_apm_cbrt, m_apm_log, m_apm_log10, m_apm_exp, m_apm_sin, m_apm_cos,
        m_apm_tan, m_apm_arctan, m_apm_sinh, m_apm_cosh, m_apm_tanh, m_apm_arcsinh,
        m_apm_arccosh, m_apm_reciprocal}) {
    Number x("1.75"), r;
    function(r, 40, x);
    function(x, 40, x);
    EXPECT_EQ(m_apm_compare(r, x), 0);
  }
  for (const Function function : {m_apm_arcsin, m_apm_arccos, m_apm_arctanh}) {
    Number x("0.9"), r;
    function(r, 40, x);
    function(x, 40, x);
    EXPECT_EQ(m_apm_compare(r, x), 0);
  }
}

TEST(DecimalFunctions, ArgumentsStayAsTheyAre) {
  const Number x("-0.9"), y("1.75");
  Number r;
  for (const Function function : {m_apm_sin, m_apm_cos, m_apm_arcsin, m_apm_arccos,
                                  m_apm_arctan, m_apm_sinh, m_apm_arcsinh, m_apm_cbrt}) {
    function(r, 40, x);
    EXPECT_EQ(x.plain(-1), "-0.9");
  }
  m_apm_pow(r, 40, y, x);
  m_apm_arctan2(r, 40, x, y);
  EXPECT_EQ(x.plain(-1), "-0.9");
  EXPECT_EQ(y.plain(-1), "1.75");
}

TEST(DecimalConstants, PiGrowsOnDemand) {
  m_apm_trim_mem_usage();
  const int before = MM_lc_PI_digits;
  M_check_PI_places(before - 2);
  EXPECT_EQ(MM_lc_PI_digits, before);
  M_check_PI_places(before - 1);
  EXPECT_EQ(MM_lc_PI_digits, before + 3);
  M_check_PI_places(2000);
  EXPECT_EQ(MM_lc_PI_digits, 2004);
  Real pi(8000);
  mpfr_const_pi(pi, MPFR_RNDN);
  EXPECT_LE(unitsOff(MM_lc_PI, pi, 2003), 0.5);
  mpfr_div_ui(pi, pi, 2, MPFR_RNDN);
  EXPECT_LE(unitsOff(MM_lc_HALF_PI, pi, 2003), 0.5);
  mpfr_mul_ui(pi, pi, 4, MPFR_RNDN);
  EXPECT_LE(unitsOff(MM_lc_2_PI, pi, 2003), 0.5);
}

TEST(DecimalConstants, LogarithmsGrowOnDemand) {
  m_apm_trim_mem_usage();
  const int before = MM_lc_log_digits;
  M_check_log_places(before - 4);
  EXPECT_EQ(MM_lc_log_digits, before);
  M_check_log_places(before - 3);
  EXPECT_EQ(MM_lc_log_digits, before + 5);
  for (const int places : {before + 40, 2000}) {
    M_check_log_places(places);
    EXPECT_EQ(MM_lc_log_digits, places + 8);
    Real log(8000);
    mpfr_log_ui(log, 2, MPFR_RNDN);
    EXPECT_LE(unitsOff(MM_lc_log2, log, places + 4), 0.5);
    mpfr_log_ui(log, 10, MPFR_RNDN);
    EXPECT_LE(unitsOff(MM_lc_log10, log, places + 4), 0.5);
    mpfr_ui_div(log, 1, log, MPFR_RNDN);
    EXPECT_LE(unitsOff(MM_lc_log10R, log, places + 4), 0.5);
  }
}

TEST(DecimalFunctions, ThousandsOfPlaces) {
  const int places = rounds(1500, 20'000);
  const long bits = static_cast<long>(places * 3.33) + 100;
  Real exact(bits);
  const auto expectRight = [&](Function function, const char *x,
                               int (*oracle)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t)) {
    Number r;
    function(r, places, Number(x));
    mpfr_set_str(exact, x, 10, MPFR_RNDN);
    oracle(exact, exact, MPFR_RNDN);
    EXPECT_LE(unitsOff(r, exact, places), 0.501) << x;
  };
  expectRight(m_apm_sqrt, "7", mpfr_sqrt);
  expectRight(m_apm_cbrt, "7", mpfr_cbrt);
  expectRight(m_apm_exp, "7", mpfr_exp);
  expectRight(m_apm_log, "7", mpfr_log);
  expectRight(m_apm_sin, "7", mpfr_sin);
  expectRight(m_apm_arctan, "7", mpfr_atan);
}

}  // namespace
}  // namespace zevtest
