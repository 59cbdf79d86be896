/// Powers, factorials, divisors and random numbers.
#include <gmp.h>

#include <cstdlib>
#include <memory>
#include <numeric>
#include <thread>

#include "decimal/random.h"
#include "decimal_fixture.h"

namespace zevtest {
namespace {

using Exact = void (*)(M_APM, M_APM, M_APM);

std::string result(Exact operation, const std::string &a, const std::string &b) {
  Number r("7");
  operation(r, Number(a), Number(b));
  expectNormalForm(r);
  return r.plain(-1);
}

std::string textOf(mpz_srcptr value) {
  const std::unique_ptr<char, decltype(&std::free)> text(mpz_get_str(nullptr, 10, value),
                                                         std::free);
  return text.get();
}

TEST(DecimalPow, ExactPowers) {
  Number r;
  m_apm_integer_pow_nr(r, Number("-1.1"), 3);
  EXPECT_EQ(r.plain(-1), "-1.331");
  m_apm_integer_pow_nr(r, Number("5"), 0);
  EXPECT_EQ(r.plain(-1), "1.0");
  m_apm_integer_pow_nr(r, Number("0"), 5);
  EXPECT_EQ(r.plain(-1), "0.0");
  m_apm_integer_pow_nr(r, Number("3"), 1000);
  mpz_t power;
  mpz_init(power);
  mpz_ui_pow_ui(power, 3, 1000);
  EXPECT_EQ(r.integer(), textOf(power));
  mpz_clear(power);
}

TEST(DecimalPow, ExactPowerWithNegativeExponentWarnsAndGivesZero) {
  Number r("7");
  EXPECT_EQ(warningsOf([&] { m_apm_integer_pow_nr(r, Number("3"), -1); }),
            "MAPM Warning: 'm_apm_integer_pow_nr', Negative exponent\n");
  EXPECT_EQ(r->sign, 0);
}

TEST(DecimalPow, RoundedPowers) {
  const auto power = [](const char *x, int n, int places) {
    Number r;
    m_apm_integer_pow(r, places, Number(x), n);
    expectNormalForm(r);
    return r.plain(-1);
  };
  EXPECT_EQ(power("7", 0, 40), "1.0");
  EXPECT_EQ(power("0", 0, 40), "1.0");
  EXPECT_EQ(power("0", 5, 40), "0.0");
  EXPECT_EQ(power("0", -5, 40), "0.0");
  EXPECT_EQ(power("2", 10, 40), "1024.0");
  EXPECT_EQ(power("2", -2, 40), "0.25");
  EXPECT_EQ(power("3", 5, 1), "240.0");
  EXPECT_EQ(power("-1", std::numeric_limits<int>::max(), 10), "-1.0");
  EXPECT_EQ(power("-1", std::numeric_limits<int>::min(), 10), "1.0");
}

TEST(DecimalFactorial, UpToOneIsOne) {
  for (const char *text : {"0", "1", "-5", "0.5"}) {
    Number r;
    m_apm_factorial(r, Number(text));
    EXPECT_EQ(r.plain(-1), "1.0") << text;
  }
}

TEST(DecimalFactorial, AgreesWithGmp) {
  mpz_t expected;
  mpz_init(expected);
  // 25206! has just over 100,000 digits; from about 3,600 on all slots are taken.
  for (const unsigned n :
       {2u, 3u, 4u, 5u, 20u, 99u, 100u, 1000u, 3599u, 5000u, 8001u, 25206u}) {
    Number r, x;
    m_apm_set_long(x, n);
    m_apm_factorial(r, x);
    mpz_fac_ui(expected, n);
    ASSERT_TRUE(r.integer() == textOf(expected)) << n;
  }
  mpz_clear(expected);
}

TEST(DecimalGcd, ByHand) {
  EXPECT_EQ(result(m_apm_gcd, "12", "18"), "6.0");
  EXPECT_EQ(result(m_apm_gcd, "0", "-5"), "5.0");
  EXPECT_EQ(result(m_apm_gcd, "-5", "0"), "5.0");
  EXPECT_EQ(result(m_apm_gcd, "0", "0"), "0.0");
  EXPECT_EQ(result(m_apm_gcd, "-12", "18"), "6.0");
  EXPECT_EQ(result(m_apm_gcd, "7", "7"), "7.0");
  EXPECT_EQ(result(m_apm_gcd, "1E30", "1E20"), "100000000000000000000.0");
  EXPECT_EQ(result(m_apm_lcm, "4", "6"), "12.0");
  EXPECT_EQ(result(m_apm_lcm, "0", "6"), "0.0");
  EXPECT_EQ(result(m_apm_lcm, "0", "0"), "0.0");
}

TEST(DecimalGcd, FractionsWarnAndGiveZero) {
  for (const auto &[a, b] : {std::pair{"1.5", "3"}, {"3", "1.5"}}) {
    for (const Exact operation : {m_apm_gcd, m_apm_lcm}) {
      Number r("7");
      EXPECT_EQ(warningsOf([&, x = a, y = b] { operation(r, Number(x), Number(y)); }),
                "MAPM Warning: 'm_apm_gcd', Non-integer input\n");
      EXPECT_EQ(r->sign, 0);
    }
  }
}

/// Numbers with a known common factor, in lengths that take machine words, single steps
/// of Euclid's algorithm and many at once.
TEST(DecimalGcd, AgreesWithGmp) {
  std::mt19937_64 random = generator();
  mpz_t x, y, factor;
  mpz_inits(x, y, factor, nullptr);
  const auto expectSame = [&](int digitsX, int digitsY, int digitsFactor) {
    mpz_set_str(factor, randomDigits(random, digitsFactor).c_str(), 10);
    mpz_set_str(x, randomDigits(random, digitsX).c_str(), 10);
    mpz_set_str(y, randomDigits(random, digitsY).c_str(), 10);
    mpz_mul(x, x, factor);
    mpz_mul(y, y, factor);
    const std::string textX = textOf(x), textY = textOf(y);
    mpz_gcd(factor, x, y);
    ASSERT_EQ(result(m_apm_gcd, textX, textY), textOf(factor) + ".0")
        << textX << " " << textY;
    mpz_lcm(factor, x, y);
    ASSERT_EQ(result(m_apm_lcm, textX, "-" + textY), "-" + textOf(factor) + ".0");
  };
  for (int i = rounds(2000, 100'000); i > 0; --i) {
    expectSame(between(random, 1, 90), between(random, 1, 90), between(random, 1, 60));
    if (HasFatalFailure()) break;
  }
  const int many = rounds(10'000, 100'000);
  expectSame(many / 2, many / 2 - 10, many / 2);
  expectSame(many, many / 10, 10);
  mpz_clears(x, y, factor, nullptr);
}

/// Neighbours in Fibonacci's sequence make the most steps, all quotients being 1.
TEST(DecimalGcd, OfFibonacciNumbers) {
  mpz_t x, y;
  mpz_inits(x, y, nullptr);
  mpz_fib2_ui(x, y, 5000);
  EXPECT_EQ(result(m_apm_gcd, textOf(x), textOf(y)), "1.0");
  mpz_clears(x, y, nullptr);
}

TEST(DecimalRandom, FollowsItsRecurrence) {
  constexpr unsigned long long kFactor = 716805947629621,
                               kModulus = 1'000'000'000'000'000;
  __extension__ typedef unsigned __int128 Wide;
  unsigned long long state = 12345;
  m_apm_set_random_seed("12345");
  for (int i = 0; i < 1000; ++i) {
    state = static_cast<unsigned long long>((Wide{state} * kFactor + kFactor) % kModulus);
    Number r, scaled;
    m_apm_get_random(r);
    expectNormalForm(r);
    m_apm_multiply(scaled, r, Number("1E15"));
    ASSERT_EQ(scaled.integer(), std::to_string(state));
    ASSERT_LT(m_apm_compare(r, MM_One), 0);
    ASSERT_GE(m_apm_sign(r), 0);
  }
}

TEST(DecimalRandom, EachThreadHasASequenceOfItsOwn) {
  const auto sequence = [](const char *seed) {
    std::string all;
    m_apm_set_random_seed(seed);
    for (int i = 0; i < 5; ++i) {
      Number r;
      m_apm_get_random(r);
      all += r.text();
    }
    return all;
  };
  const std::string alone = sequence("7");
  m_apm_set_random_seed("7");
  Number first;
  m_apm_get_random(first);
  std::string other;
  std::thread([&] { other = sequence("7"); }).join();
  EXPECT_EQ(other, alone);
  Number second;
  m_apm_get_random(second);
  EXPECT_EQ(alone.rfind(first.text() + second.text(), 0), 0u);
}

TEST(DecimalRandom, ClockSeedsWhatHasNoSeed) {
  std::thread([] {
    Number r;
    m_apm_get_random(r);
    EXPECT_LT(m_apm_compare(r, MM_One), 0);
    EXPECT_GE(m_apm_sign(r), 0);
    Number seed;
    M_get_rnd_seed(seed);
    EXPECT_TRUE(m_apm_is_integer(seed));
    EXPECT_LT(m_apm_exponent(seed), 15);
  }).join();
}

}  // namespace
}  // namespace zevtest
