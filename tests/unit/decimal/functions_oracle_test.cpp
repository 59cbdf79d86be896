/// Each function against MPFR over its whole domain, near its branch points, and at few
/// and many places.
#include <algorithm>
#include <cmath>
#include <vector>

#include "decimal_fixture.h"

namespace zevtest {
namespace {

using Random = std::mt19937_64;
using Engine1 = void (*)(M_APM, int, M_APM);
using Oracle1 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

/// Where arguments come from: a sign, a range of exponents, and points near which a
/// method gives way to another or the function vanishes.
struct Domain {
  int lowest, highest;               ///< stored exponents
  bool isSigned;                     ///< both signs
  std::vector<const char *> points;  ///< "pi/2" stands for its multiples
};

struct Row {
  const char *name;
  Engine1 engine;
  Oracle1 oracle;
  Domain domain;
  bool isBelowOne = false;  ///< |x| up to 1
  bool isFromOne = false;   ///< x from 1 on
};

std::string withSign(Random &random, bool isSigned, std::string text) {
  return isSigned && text[0] != '-' && random() % 2 ? "-" + text : text;
}

/// Within a distance of 10 to the -1 down to -60 of one of the points.
std::string nearPoint(Random &random, const Domain &domain) {
  const char *point = domain.points[random() % domain.points.size()];
  Number base, offset("1E-" + std::to_string(between(random, 1, 60))), factor, sum;
  if (std::string(point) == "pi/2") {
    m_apm_set_long(factor, between(random, 1, random() % 4 ? 8 : 100000));
    Number hundredPlaces;
    m_apm_multiply(base, MM_HALF_PI, factor);
    m_apm_round(hundredPlaces, between(random, 5, 90), base);
    m_apm_copy(base, hundredPlaces);
  } else {
    m_apm_set_string(base, point);
  }
  if (random() % 8 == 0) return base.text();
  m_apm_set_string(factor,
                   withSign(random, true, "0." + randomDigits(random, 9)).c_str());
  m_apm_multiply(sum, offset, factor);
  m_apm_add(offset, base, sum);
  return offset.text();
}

std::string anywhere(Random &random, const Domain &domain) {
  return "0." + randomDigits(random, between(random, 1, 60)) + "E" +
         std::to_string(between(random, domain.lowest, domain.highest));
}

bool isAllowed(const Row &row, M_APM x) {
  Number magnitude;
  m_apm_absolute_value(magnitude, x);
  if (!row.domain.isSigned && x->sign < 0) return false;
  if (row.isBelowOne) return m_apm_compare(magnitude, MM_One) < 0;
  if (row.isFromOne) return m_apm_compare(x, MM_One) >= 0;
  return true;
}

std::string argument(Random &random, const Row &row) {
  for (;;) {
    const bool isNear = !row.domain.points.empty() && random() % 3 == 0;
    const std::string text =
        withSign(random, row.domain.isSigned,
                 isNear ? nearPoint(random, row.domain) : anywhere(random, row.domain));
    const Number x(text);
    if (x->sign != 0 && isAllowed(row, x)) return text;
  }
}

int somePlaces(Random &random) {
  constexpr int kPlaces[] = {5, 5, 5, 40, 40, 40, 40, 40, 128, 400};
  const int at = between(random, 0, 9);
  return at == 9 && random() % 4 ? 40 : kPlaces[at];
}

/// Bits that keep the argument's own conversion out of the result: twice its digits for
/// what cancels near a root, and its exponent for angles.
long bitsFor(M_APM x, int places) {
  const double digits = places + 3.0 * x->digitCount + 2.0 * std::abs(x->exponent) + 60;
  return std::max(400L, static_cast<long>(digits * 3.33));
}

// All digits of a result are right. It is rounded once, from eight guard digits and more
// of which some are lost on the way: therefore a value within 0.001 of the middle between
// two results may go to either side.
constexpr double kAllowed = 0.501;

class Functions : public testing::TestWithParam<Row> {};

TEST_P(Functions, AgreesWithMpfr) {
  const Row &row = GetParam();
  Random random = generator();
  double worst = 0;
  for (int i = rounds(400, 100'000); i > 0; --i) {
    const std::string text = argument(random, row);
    const int places = somePlaces(random);
    const Number x(text), result;
    row.engine(result, places, x);
    expectNormalForm(result);
    ASSERT_LE(result->digitCount, places + 1);
    Real exact(bitsFor(x, places));
    mpfr_set_str(exact, text.c_str(), 10, MPFR_RNDN);
    row.oracle(exact, exact, MPFR_RNDN);
    const double off = unitsOff(result, exact, places);
    worst = std::max(worst, off);
    ASSERT_LE(off, kAllowed) << row.name << "(" << text << ") to " << places << " is "
                             << result.text();
  }
  RecordProperty("worst", std::to_string(worst));
  printf("%s: worst %.5f\n", row.name, worst);
}

// clang-format off
const Row kRows[] = {
    {"sqrt",    m_apm_sqrt,    mpfr_sqrt,  {-300, 300, false, {"1", "100", "0.01", "1E21"}}},
    {"cbrt",    m_apm_cbrt,    mpfr_cbrt,  {-300, 300, true,  {"1", "1000", "0.001", "1E21"}}},
    {"log",     m_apm_log,     mpfr_log,   {-300, 300, false, {"1", "1.0001", "0.9999", "10", "1000", "1E-4", "1E-5", "1E30"}}},
    {"log10",   m_apm_log10,   mpfr_log10, {-300, 300, false, {"1", "1.0001", "0.9999", "10", "1000", "1E-4", "1E30"}}},
    {"exp",     m_apm_exp,     mpfr_exp,   {-60,  5,   true,  {"0.001", "0.6931471805599453", "0.34657359027997", "2.302585092994", "1000"}}},
    {"sin",     m_apm_sin,     mpfr_sin,   {-60,  12,  true,  {"pi/2", "1", "1E-4"}}},
    {"cos",     m_apm_cos,     mpfr_cos,   {-60,  12,  true,  {"pi/2", "1", "1E-4"}}},
    {"tan",     m_apm_tan,     mpfr_tan,   {-60,  12,  true,  {"pi/2", "1", "1E-4"}}},
    {"arcsin",  m_apm_arcsin,  mpfr_asin,  {-60,  0,   true,  {"0.85", "1", "1E-4", "0.5"}}, true},
    {"arccos",  m_apm_arccos,  mpfr_acos,  {-60,  0,   true,  {"0.85", "1", "1E-4", "0.5"}}, true},
    {"arctan",  m_apm_arctan,  mpfr_atan,  {-60,  60,  true,  {"1E-4", "1", "1000", "1.6"}}},
    {"sinh",    m_apm_sinh,    mpfr_sinh,  {-60,  5,   true,  {"1E-4", "1", "0.001", "100"}}},
    {"cosh",    m_apm_cosh,    mpfr_cosh,  {-60,  5,   true,  {"1E-4", "1", "0.001", "100"}}},
    {"tanh",    m_apm_tanh,    mpfr_tanh,  {-60,  4,   true,  {"1E-4", "1", "0.001", "50", "110"}}},
    {"arcsinh", m_apm_arcsinh, mpfr_asinh, {-60,  300, true,  {"1E-4", "1", "1E20", "1E26"}}},
    {"arccosh", m_apm_arccosh, mpfr_acosh, {1,    300, false, {"1", "1.0001", "2", "1E26"}}, false, true},
    {"arctanh", m_apm_arctanh, mpfr_atanh, {-60,  0,   true,  {"1", "1E-4", "0.5"}}, true},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Decimal, Functions, testing::ValuesIn(kRows),
                         [](const auto &row) { return std::string(row.param.name); });

/// Functions of two arguments.
using Engine2 = void (*)(M_APM, int, M_APM, M_APM);
using Oracle2 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);

void expectAgreement(const char *name, Engine2 engine, Oracle2 oracle,
                     const std::string &first, const std::string &second, int places,
                     double allowed = kAllowed) {
  const Number a(first), b(second), result;
  engine(result, places, a, b);
  expectNormalForm(result);
  const long bits = bitsFor(a, places) + bitsFor(b, places);
  Real x(bits), y(bits);
  mpfr_set_str(x, first.c_str(), 10, MPFR_RNDN);
  mpfr_set_str(y, second.c_str(), 10, MPFR_RNDN);
  oracle(x, x, y, MPFR_RNDN);
  ASSERT_LE(unitsOff(result, x, places), allowed)
      << name << "(" << first << ", " << second << ") to " << places << " is "
      << result.text();
}

TEST(DecimalFunctions, PowAgreesWithMpfr) {
  Random random = generator();
  const Domain base{-20, 20, false, {"1", "2", "10", "0.1", "1.0001"}};
  const Domain exponent{-10, 4, false, {"1", "0.5", "2", "10"}};
  for (int i = rounds(400, 100'000); i > 0; --i) {
    const auto pick = [&](const Domain &domain) {
      return random() % 2 ? nearPoint(random, domain) : anywhere(random, domain);
    };
    const std::string x = pick(base);
    const std::string y = withSign(random, true, pick(exponent));
    if (Number(x)->sign <= 0 || Number(y)->sign == 0) continue;
    expectAgreement("pow", m_apm_pow, mpfr_pow, x, y, somePlaces(random));
    if (HasFatalFailure()) return;
  }
}

TEST(DecimalFunctions, IntegerPowAgreesWithMpfr) {
  Random random = generator();
  for (int i = rounds(400, 100'000); i > 0; --i) {
    const int digits = between(random, 0, 8);
    const int n = between(random, 1, static_cast<int>(std::pow(10, digits)));
    const std::string x =
        "0." + randomDigits(random, between(random, 1, 40)) + "E" +
        std::to_string(between(random, digits > 5 ? 0 : -20, digits > 5 ? 2 : 20));
    const Number base(x), result;
    const int sign = random() % 2 ? 1 : -1, places = somePlaces(random);
    m_apm_integer_pow(result, places, base, sign * n);
    Real exact(bitsFor(base, places) + 40);
    mpfr_set_str(exact, x.c_str(), 10, MPFR_RNDN);
    mpfr_pow_si(exact, exact, sign * n, MPFR_RNDN);
    if (!mpfr_number_p(exact)) continue;
    ASSERT_LE(unitsOff(result, exact, places), kAllowed)
        << x << " to the power of " << sign * n << " to " << places;
  }
}

TEST(DecimalFunctions, Arctan2AgreesWithMpfr) {
  Random random = generator();
  const Domain domain{-40, 40, true, {"1", "1E-4", "1000"}};
  for (int i = rounds(400, 100'000); i > 0; --i) {
    const std::string y = withSign(random, true, anywhere(random, domain));
    const std::string x = withSign(
        random, true, random() % 4 ? anywhere(random, domain) : y.substr(y[0] == '-'));
    expectAgreement("arctan2", m_apm_arctan2, mpfr_atan2, y, x, somePlaces(random));
    if (HasFatalFailure()) return;
  }
}

/// Below 250 places a quotient is cut, from there on it is rounded.
TEST(DecimalFunctions, QuotientsAgreeWithMpfr) {
  Random random = generator();
  const Domain domain{-40, 0, true, {"1", "0.1"}};
  for (int i = rounds(2000, 100'000); i > 0; --i) {
    const std::string a = withSign(random, true, anywhere(random, domain));
    const std::string b = withSign(random, true, anywhere(random, {1, 40, true, {}}));
    const int places = random() % 10 ? somePlaces(random) : between(random, 240, 260);
    expectAgreement("divide", m_apm_divide, mpfr_div, a, b, places,
                    places < 250 ? 1.0 : kAllowed);
    if (HasFatalFailure()) return;
  }
}

TEST(DecimalFunctions, ReciprocalsAgreeWithMpfr) {
  Random random = generator();
  for (int i = rounds(1000, 100'000); i > 0; --i) {
    const std::string text =
        withSign(random, true, anywhere(random, {-300, 300, true, {}}));
    const int places = somePlaces(random);
    const Number x(text), result;
    m_apm_reciprocal(result, places, x);
    Real exact(bitsFor(x, places));
    mpfr_set_str(exact, text.c_str(), 10, MPFR_RNDN);
    mpfr_ui_div(exact, 1, exact, MPFR_RNDN);
    ASSERT_LE(unitsOff(result, exact, places), kAllowed) << text;
  }
}

}  // namespace
}  // namespace zevtest
