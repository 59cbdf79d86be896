/// The record of a number, its shaping, the constants and the scratch stack.
#include <cstring>
#include <set>
#include <thread>

#include "decimal/engine.h"
#include "decimal/tables.h"
#include "decimal_fixture.h"

namespace zevtest {
namespace {

TEST(DecimalNumber, NewOneIsZeroWithRoomForEightyBytes) {
  const Number number;
  EXPECT_EQ(number->cookie, 0x6BCC9AE5);
  EXPECT_EQ(number->refCount, 1);
  EXPECT_EQ(number->capacityBytes, 80);
  EXPECT_EQ(number->digitCount, 1);
  EXPECT_EQ(number->exponent, 0);
  EXPECT_EQ(number->sign, 0);
  EXPECT_EQ(number->digits[0], 0);
}

TEST(DecimalNumber, RecordHasTheGivenWidths) {
  EXPECT_EQ(sizeof(M_APM_struct::cookie), 8u);
  for (const std::size_t width :
       {sizeof(M_APM_struct::refCount), sizeof(M_APM_struct::capacityBytes),
        sizeof(M_APM_struct::digitCount), sizeof(M_APM_struct::exponent),
        sizeof(M_APM_struct::sign)})
    EXPECT_EQ(width, 4u);
}

TEST(DecimalNumber, GrowsByTwentyEightBytesMoreThanIsNeeded) {
  const Number atLimit(std::string(160, '7')), beyond(std::string(161, '7'));
  EXPECT_EQ(atLimit->capacityBytes, 80);
  EXPECT_EQ(beyond->capacityBytes, 81 + 28);
}

TEST(DecimalNumber, KeepsItsRoom) {
  Number number(std::string(500, '7'));
  const int room = number->capacityBytes;
  m_apm_set_long(number, 1);
  EXPECT_EQ(number->capacityBytes, room);
}

TEST(DecimalNumber, DigitsStandInPairsFromTheFirstOn) {
  const Number number("-123.45");
  EXPECT_EQ(number->digits[0], 12);
  EXPECT_EQ(number->digits[1], 34);
  EXPECT_EQ(number->digits[2], 50);
  EXPECT_EQ(number->digitCount, 5);
  EXPECT_EQ(number->exponent, 3);
  EXPECT_EQ(number->sign, -1);
}

TEST(DecimalNumber, FreedOneIsRecognised) {
  M_APM number = m_apm_init();
  m_apm_free(number);
  EXPECT_EQ(number->cookie, 0x0FFFFFF0);
  EXPECT_EQ(warningsOf([&] { m_apm_free(number); }),
            "MAPM Warning: 'm_apm_free', Invalid M_APM variable\n");
  M_APM_struct stranger{};
  EXPECT_EQ(warningsOf([&] { m_apm_free(&stranger); }),
            "MAPM Warning: 'm_apm_free', Invalid M_APM variable\n");
}

TEST(DecimalNumber, FreedAndMadeAgainIsNew) {
  M_APM number = m_apm_init();
  m_apm_set_string(number, "-5E7");
  m_apm_free(number);
  const Number again;
  EXPECT_EQ(again->sign, 0);
  EXPECT_EQ(again->capacityBytes, 80);
  expectNormalForm(again);
}

TEST(DecimalNumber, CopyNegateAbsolute) {
  const Number x("-12.5");
  Number r;
  m_apm_copy(r, x);
  EXPECT_EQ(r.plain(-1), "-12.5");
  m_apm_negate(r, x);
  EXPECT_EQ(r.plain(-1), "12.5");
  m_apm_absolute_value(r, x);
  EXPECT_EQ(r.plain(-1), "12.5");
  m_apm_negate(r, r);
  EXPECT_EQ(r.plain(-1), "-12.5");
  m_apm_negate(r, Number());
  EXPECT_EQ(r->sign, 0);
}

TEST(DecimalNumber, ComparesBySignExponentDigits) {
  const char *rising[] = {"-1E9", "-12.31", "-12.3", "-1",   "-1E-9", "0",  "1E-9",
                          "1",    "1.01",   "1.1",   "12.3", "12.31", "1E9"};
  const int count = sizeof rising / sizeof *rising;
  for (int i = 0; i < count; ++i)
    for (int j = 0; j < count; ++j)
      EXPECT_EQ(m_apm_compare(Number(rising[i]), Number(rising[j])), (i > j) - (i < j))
          << rising[i] << " and " << rising[j];
}

TEST(DecimalNumber, TellsItsProperties) {
  EXPECT_EQ(m_apm_sign(Number("-3")), -1);
  EXPECT_EQ(m_apm_sign(Number("0")), 0);
  EXPECT_EQ(m_apm_exponent(Number("123")), 2);
  EXPECT_EQ(m_apm_exponent(Number("0.05")), -2);
  EXPECT_EQ(m_apm_exponent(Number("0")), 0);
  EXPECT_EQ(m_apm_significant_digits(Number("1200.5")), 5);
  EXPECT_EQ(m_apm_significant_digits(Number("1200")), 2);
}

TEST(DecimalNumber, IntegersEvenAndOdd) {
  struct Case {
    const char *text;
    int isInteger, isEven, isOdd;
  };
  for (const auto &[text, isInteger, isEven, isOdd] :
       {Case{"0", 1, 1, 0}, Case{"7", 1, 0, 1}, Case{"-7", 1, 0, 1}, Case{"12", 1, 1, 0},
        Case{"13", 1, 0, 1}, Case{"120", 1, 1, 0}, Case{"1E30", 1, 1, 0},
        Case{"12.5", 0, 0, 0}, Case{"0.1", 0, 0, 0}, Case{"123456789", 1, 0, 1}}) {
    const Number x(text);
    EXPECT_EQ(m_apm_is_integer(x), isInteger) << text;
    EXPECT_EQ(m_apm_is_even(x), isEven) << text;
    EXPECT_EQ(m_apm_is_odd(x), isOdd) << text;
  }
}

TEST(DecimalShape, NormalFormDropsZerosAtBothEnds) {
  Number number("7");
  const unsigned char digits[] = {0, 0, 1, 20, 0};
  std::memcpy(number->digits, digits, sizeof digits);
  number->digitCount = 10;
  number->exponent = 8;
  M_apm_normalize(number);
  EXPECT_EQ(number.plain(-1), "120.0");
  expectNormalForm(number);
}

TEST(DecimalShape, NormalFormIgnoresWhatStandsBehindTheLastDigit) {
  Number number("12.34");
  number->digitCount = 3;
  M_apm_normalize(number);
  EXPECT_EQ(number.plain(-1), "12.3");
  expectNormalForm(number);
}

TEST(DecimalShape, OnlyZerosAreZero) {
  Number number("7");
  std::memset(number->digits, 0, 4);
  number->digitCount = 7;
  number->exponent = 3;
  number->sign = -1;
  M_apm_normalize(number);
  expectNormalForm(number);
  EXPECT_EQ(number->sign, 0);
}

TEST(DecimalShape, ScaleMovesTheDigitsAndKeepsTheValue) {
  for (const int count : {1, 2, 3, 8, 15, 16, 17, 200}) {
    Number number("-12.345");
    M_apm_scale(number, count);
    EXPECT_EQ(number->digitCount, 5 + count);
    EXPECT_EQ(number->exponent, 2 + count);
    for (int i = 0; i < count / 2; ++i) EXPECT_EQ(number->digits[i], 0);
    M_apm_normalize(number);
    EXPECT_EQ(number.plain(-1), "-12.345");
  }
}

TEST(DecimalShape, PadPutsZerosBehind) {
  for (const int digits : {4, 5, 6, 20, 300}) {
    Number number("123");
    std::memset(number->digits + 2, 77, 10);
    M_apm_pad(number, digits);
    EXPECT_EQ(number->digitCount, digits);
    for (int i = 2; i < (digits + 1) / 2; ++i) EXPECT_EQ(number->digits[i], 0);
    M_apm_normalize(number);
    EXPECT_EQ(number.plain(-1), "123.0");
  }
}

TEST(DecimalTables, HoldQuotientsAndRemainders) {
  const unsigned char *quotients, *remainders;
  M_get_div_rem_addr(&quotients, &remainders);
  for (int x = 0; x < 10000; ++x) {
    unsigned char quotient, remainder;
    M_get_div_rem(x, &quotient, &remainder);
    ASSERT_EQ(quotient, x / 100);
    ASSERT_EQ(remainder, x % 100);
    ASSERT_EQ(quotients[x], x / 100);
    ASSERT_EQ(remainders[x], x % 100);
    if (x >= 100) continue;
    M_get_div_rem_10(x, &quotient, &remainder);
    ASSERT_EQ(quotient, x / 10);
    ASSERT_EQ(remainder, x % 10);
  }
}

TEST(DecimalConstants, HaveTheirValues) {
  const Number any;
  struct Case {
    M_APM number;
    const char *text;
  };
  for (const auto &[number, text] :
       {Case{MM_Zero, "0"}, Case{MM_One, "1"}, Case{MM_Two, "2"}, Case{MM_Three, "3"},
        Case{MM_Four, "4"}, Case{MM_Five, "5"}, Case{MM_Ten, "10"}, Case{MM_0_5, "0.5"},
        Case{MM_0_85, "0.85"}, Case{MM_5x_125R, "0.008"}, Case{MM_5x_64R, "0.015625"},
        Case{MM_5x_256R, "0.00390625"}, Case{MM_5x_Eight, "8"}, Case{MM_5x_Sixteen, "16"},
        Case{MM_5x_Twenty, "20"}})
    EXPECT_EQ(m_apm_compare(number, Number(text)), 0) << text;
  EXPECT_EQ(MM_cpp_min_precision, 30);
}

TEST(DecimalConstants, TranscendentalOnesAreRightToTheLastDigit) {
  std::thread([] {  // whose constants have not grown
    const Number any;
    EXPECT_EQ(MM_lc_PI_digits, 128);
    EXPECT_EQ(MM_lc_log_digits, 128);
    Real pi(600), e(600), log2(600), log3(600), log10(600), value(600);
    mpfr_const_pi(pi, MPFR_RNDN);
    mpfr_set_ui(value, 1, MPFR_RNDN);
    mpfr_exp(e, value, MPFR_RNDN);
    mpfr_log_ui(log2, 2, MPFR_RNDN);
    mpfr_log_ui(log3, 3, MPFR_RNDN);
    mpfr_log_ui(log10, 10, MPFR_RNDN);
    const auto expectRight = [](M_APM number, mpfr_ptr exact) {
      EXPECT_EQ(number->digitCount, 128);
      EXPECT_LE(unitsOff(number, exact, 127), 0.5);
    };
    for (M_APM number : {MM_PI, MM_lc_PI}) expectRight(number, pi);
    expectRight(MM_E, e);
    for (M_APM number : {MM_LOG_2_BASE_E, MM_lc_log2}) expectRight(number, log2);
    expectRight(MM_LOG_3_BASE_E, log3);
    for (M_APM number : {MM_LOG_10_BASE_E, MM_lc_log10}) expectRight(number, log10);
    mpfr_ui_div(value, 1, log10, MPFR_RNDN);
    for (M_APM number : {MM_LOG_E_BASE_10, MM_lc_log10R}) expectRight(number, value);
    mpfr_div_ui(value, pi, 2, MPFR_RNDN);
    for (M_APM number : {MM_HALF_PI, MM_lc_HALF_PI}) expectRight(number, value);
    mpfr_mul_ui(value, pi, 2, MPFR_RNDN);
    for (M_APM number : {MM_2_PI, MM_lc_2_PI}) expectRight(number, value);
    mpfr_free_cache();
  })
      .join();
}

TEST(DecimalStack, HandsOutDistinctNumbersAndTakesThemBack) {
  const M_APM first = M_get_stack_var();
  std::set<M_APM> seen{first};
  for (int i = 0; i < 200; ++i) {
    M_APM number = M_get_stack_var();
    m_apm_set_long(number, i);
    EXPECT_TRUE(seen.insert(number).second);
  }
  M_restore_stack(201);
  EXPECT_EQ(M_get_stack_var(), first);
  M_restore_stack(1);
}

TEST(DecimalMemory, ConstantsComeBackAfterRelease) {
  std::thread([] {
    Number kept("12.5"), result;
    m_apm_sqrt(result, 40, kept);
    m_apm_free_all_mem();
    EXPECT_EQ(MM_One, nullptr);
    m_apm_free_all_mem();
    m_apm_multiply(result, kept, kept);
    EXPECT_EQ(result.plain(-1), "156.25");
    EXPECT_EQ(m_apm_compare(MM_One, Number("1")), 0);
  }).join();
}

TEST(DecimalMemory, TrimmingKeepsConstantsUsable) {
  std::thread([] {
    Number x("2"), result;
    m_apm_sin(result, 400, x);
    EXPECT_GT(MM_lc_PI_digits, 128);
    m_apm_trim_mem_usage();
    EXPECT_EQ(MM_lc_PI_digits, 128);
    EXPECT_EQ(m_apm_compare(MM_Two, x), 0);
    m_apm_sqrt(result, 10, x);
    EXPECT_EQ(result.plain(-1), "1.4142135624");
  }).join();
}

TEST(DecimalConstants, BelongToTheirThread) {
  const Number any;
  M_APM other = nullptr;
  std::thread([&] {
    const Number theirs;
    other = MM_One;
  }).join();
  EXPECT_NE(other, MM_One);
}

}  // namespace
}  // namespace zevtest
