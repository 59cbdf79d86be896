/// The exact operations against GMP: all tiers of multiplication, both of division.
#include <algorithm>

#include "decimal/divide.h"
#include "decimal/fast_multiply.h"
#include "decimal_fixture.h"

namespace zevtest {
namespace {

std::string randomInteger(std::mt19937_64 &random, int digits) {
  std::string text = randomDigits(random, digits);
  if (random() % 4 == 0) text.append(random() % 20, '0');
  return random() % 2 ? "-" + text : text;
}

void expectAll(const std::string &textA, const std::string &textB) {
  const Number a(textA), b(textB);
  Number r, rest;
  Integer x(textA), y(textB), z;
  const auto expectSame = [&](const char *operation, M_APM number) {
    expectNormalForm(number);
    std::string text(static_cast<std::size_t>(std::max(number->exponent, 0) + 4), '\0');
    m_apm_to_integer_string(text.data(), number);
    ASSERT_EQ(z.text(), text.c_str()) << operation << " of " << textA << " and " << textB;
  };
  m_apm_add(r, a, b);
  mpz_add(z, x, y);
  expectSame("sum", r);
  m_apm_subtract(r, a, b);
  mpz_sub(z, x, y);
  expectSame("difference", r);
  m_apm_multiply(r, a, b);
  mpz_mul(z, x, y);
  expectSame("product", r);
  m_apm_integer_divide(r, a, b);
  mpz_tdiv_q(z, x, y);
  expectSame("quotient", r);
  m_apm_integer_div_rem(r, rest, a, b);
  expectSame("quotient with remainder", r);
  mpz_tdiv_r(z, x, y);
  expectSame("remainder", rest);
  ASSERT_EQ(m_apm_compare(a, b), (mpz_cmp(x, y) > 0) - (mpz_cmp(x, y) < 0));
}

TEST(DecimalArithmetic, AgreesWithGmp) {
  std::mt19937_64 random = generator();
  for (int i = rounds(5000, 100'000); i > 0; --i) {
    expectAll(randomInteger(random, someLength(random)),
              randomInteger(random, someLength(random)));
    if (HasFatalFailure()) return;
  }
}

TEST(DecimalArithmetic, AgreesWithGmpOnNearlyEqualNumbers) {
  std::mt19937_64 random = generator();
  for (int i = rounds(1000, 100'000); i > 0; --i) {
    std::string a = randomDigits(random, someLength(random)), b = a;
    b[random() % b.size()] = static_cast<char>('1' + random() % 9);
    if (random() % 4 == 0) b = "-" + b;
    expectAll(a, b);
    if (HasFatalFailure()) return;
  }
}

/// A quotient digit that is estimated one too high, and those around it.
TEST(DecimalArithmetic, DividesWhereEstimatesAreClose) {
  std::mt19937_64 random = generator();
  for (int i = rounds(1000, 100'000); i > 0; --i) {
    const Integer q(randomDigits(random, between(random, 1, 60)));
    const std::string divisor = randomDigits(random, between(random, 9, 60));
    Integer b(divisor), a, unit("1");
    mpz_mul(a, Integer(q.text()), b);
    if (random() % 2)
      mpz_sub(a, a, unit);
    else if (random() % 2)
      mpz_add(a, a, unit);
    expectAll(a.text(), divisor);
    if (HasFatalFailure()) return;
  }
}

void expectProduct(const std::string &textA, const std::string &textB) {
  const Number a(textA), b(textB);
  Number r;
  m_apm_multiply(r, a, b);
  Integer x(textA), y(textB), z;
  mpz_mul(z, x, y);
  ASSERT_TRUE(r.integer() == z.text()) << textA.size() << " by " << textB.size();
}

TEST(DecimalMultiplication, LongNumbersOfAllTiers) {
  std::mt19937_64 random = generator();
  for (const int digits : {1000, 2100, 8191, 16000, 16500, 33000, 100'000}) {
    expectProduct(randomDigits(random, digits), randomDigits(random, digits));
    expectProduct(randomDigits(random, digits), randomDigits(random, digits / 3));
    expectProduct(randomDigits(random, digits), randomDigits(random, 60));
    expectProduct(std::string(static_cast<std::size_t>(digits), '9'),
                  std::string(static_cast<std::size_t>(digits), '9'));
    if (HasFatalFailure()) return;
  }
}

/// The longest transform with the largest digits, which leaves the least room for its
/// rounding error, and what is longer still.
TEST(DecimalMultiplication, LongestTransformAndDivideAndConquer) {
  std::mt19937_64 random = generator();
  for (const int digits : {524'288, 524'290, rounds(600'000, 1'500'000)}) {
    const std::string nines(static_cast<std::size_t>(digits), '9');
    expectProduct(nines, nines);
    expectProduct(randomDigits(random, digits), randomDigits(random, digits));
    expectProduct(randomDigits(random, digits), nines);
    if (HasFatalFailure()) return;
  }
}

TEST(DecimalMultiplication, TransformAndSchoolbookAgreeOnShortNumbers) {
  std::mt19937_64 random = generator();
  for (int i = rounds(2000, 100'000); i > 0; --i) {
    const Number a(randomInteger(random, between(random, 8, 400))),
        b(randomInteger(random, between(random, 8, 400)));
    Number direct, fast;
    m_apm_multiply(direct, a, b);
    M_fast_multiply(fast, a, b);
    expectNormalForm(fast);
    ASSERT_EQ(m_apm_compare(direct, fast), 0) << a.text() << " by " << b.text();
  }
}

TEST(DecimalMultiplication, SquareOfOneNumber) {
  std::mt19937_64 random = generator();
  for (const int digits : {1, 40, 200, 5000, 600'000}) {
    const std::string text = randomDigits(random, digits);
    const Number a(text), same(text);
    Number square, product;
    m_apm_multiply(square, a, a);
    m_apm_multiply(product, a, same);
    ASSERT_EQ(m_apm_compare(square, product), 0);
  }
}

TEST(DecimalMultiplication, NextPowerOfTwo) {
  for (const auto &[n, power] : {std::pair{0, 0},
                                 {1, 1},
                                 {2, 2},
                                 {3, 4},
                                 {4, 4},
                                 {5, 8},
                                 {48, 64},
                                 {64, 64},
                                 {65, 128},
                                 {0x40000, 0x40000},
                                 {0x40001, 0x80000}})
    EXPECT_EQ(M_next_power_of_2(n), power);
}

TEST(DecimalMultiplication, DifferenceOfBytesHasItsSign) {
  const unsigned char small[8] = {0, 1, 2, 3, 4, 5, 6, 7}, large[8] = {0, 2};
  unsigned char result[8];
  EXPECT_EQ(M_fmul_subtract(result, large, small, 8), 1);
  EXPECT_EQ(result[7], 93);
  EXPECT_EQ(M_fmul_subtract(result, small, large, 8), -1);
  EXPECT_EQ(result[7], 93);
  EXPECT_EQ(M_fmul_subtract(result, small, small, 8), 0);
  EXPECT_EQ(result[7], 0);
}

/// Long division gives the leading digits of a quotient, cut off; so GMP can tell them.
TEST(DecimalDivision, CutsTheQuotientBelow250Places) {
  std::mt19937_64 random = generator();
  for (int i = rounds(2000, 100'000); i > 0; --i) {
    const std::string textA = randomDigits(random, someLength(random)),
                      textB = randomDigits(random, someLength(random));
    const int places = between(random, 0, 249);
    const Number a("0." + textA), b("0." + textB);
    Number r;
    m_apm_divide(r, places, a, b);
    Integer x(textA + std::string(textB.size() + 300, '0')), y(textB), z;
    mpz_tdiv_q(z, x, y);
    std::string digits = z.text();
    digits.resize(static_cast<std::size_t>(places) + 1);
    ASSERT_LE(m_apm_significant_digits(r), places + 1);
    const std::string text = r.scientific(places);
    ASSERT_EQ(text[0] + text.substr(2, digits.size() - 1), digits)
        << textA << " by " << textB << " to " << places;
  }
}

TEST(DecimalDivision, LongOperands) {
  std::mt19937_64 random = generator();
  for (const auto &[n, m] : {std::pair{100'000, 50'000}, {100'000, 12}, {20'000, 19'990}})
    expectAll(randomDigits(random, n), randomDigits(random, m));
}

TEST(DecimalDivision, ManyPlaces) {
  std::mt19937_64 random = generator();
  for (const int places : {250, 1000, rounds(5000, 100'000)}) {
    const std::string textA = randomDigits(random, places),
                      textB = randomDigits(random, 50);
    const Number a("0." + textA), b("0." + textB);
    Number r, back;
    m_apm_divide(r, places, a, b);
    m_apm_multiply(back, r, b);
    m_apm_subtract(back, back, a);
    // Off by half a unit in the last place at most, times the divisor.
    EXPECT_LE(m_apm_exponent(back), m_apm_exponent(a) - places) << places;
  }
}

}  // namespace
}  // namespace zevtest
