/// Numbers from and to text and machine numbers.
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "decimal/engine.h"
#include "decimal_fixture.h"

namespace zevtest {
namespace {

struct TextCase {
  const char *text;
  const char *plain;  ///< with all digits
};

class TextToNumber : public testing::TestWithParam<TextCase> {};

TEST_P(TextToNumber, ReadsSilently) {
  const auto &[text, plain] = GetParam();
  Number number("7");
  EXPECT_EQ(warningsOf([&] { m_apm_set_string(number, text); }), "");
  EXPECT_EQ(number.plain(-1), plain) << text;
  expectNormalForm(number);
}

INSTANTIATE_TEST_SUITE_P(
    Decimal, TextToNumber,
    testing::Values(
        TextCase{"", "0.0"}, TextCase{"   ", "0.0"}, TextCase{"\t \t", "0.0"},
        TextCase{"0", "0.0"}, TextCase{"-0.000", "0.0"}, TextCase{"+", "0.0"},
        TextCase{".", "0.0"}, TextCase{"0e99999999999", "0.0"}, TextCase{"1", "1.0"},
        TextCase{"  \t-12.50", "-12.5"}, TextCase{"+3", "3.0"}, TextCase{"1e3", "1000.0"},
        TextCase{"1E3", "1000.0"}, TextCase{"1E+3", "1000.0"}, TextCase{"1e-3", "0.001"},
        TextCase{"12.5e-4", "0.00125"}, TextCase{".5", "0.5"}, TextCase{"5.", "5.0"},
        TextCase{"00012.3400", "12.34"}, TextCase{"0.00012", "0.00012"},
        TextCase{"1e", "1.0"}, TextCase{"2e3 ", "2000.0"}, TextCase{"e5", "0.0"},
        TextCase{"123456789012345678901234567890.123456789",
                 "123456789012345678901234567890.123456789"}));

class TextThatIsNoNumber : public testing::TestWithParam<const char *> {};

TEST_P(TextThatIsNoNumber, WarnsThreeTimesAndGivesZero) {
  const std::string text = GetParam();
  Number number("7");
  EXPECT_EQ(warningsOf([&] { m_apm_set_string(number, text.c_str()); }),
            "MAPM Warning: 'm_apm_set_string', Non-digit char found in parse\n"
            "MAPM Warning: Text =\n"
            "MAPM Warning: " +
                text + "\n");
  EXPECT_EQ(number->sign, 0);
  expectNormalForm(number);
}

INSTANTIATE_TEST_SUITE_P(Decimal, TextThatIsNoNumber,
                         testing::Values("12a", "1a", "1:", "1/2", "--1", "+-1", "1.2.3",
                                         "1 ", "1,5", "0x10", "nan", "- 1", "\n1", "1d3",
                                         "\xc3\xa9"));

TEST(DecimalText, ExponentsBeyondTheirRangeWarnAndGiveZero) {
  for (const char *text : {"1e99999999999", "1e-99999999999", "1e2147483647",
                           "1e999999999999999999999999", "0.01e-2147483647"}) {
    Number number("7");
    EXPECT_EQ(warningsOf([&] { m_apm_set_string(number, text); }),
              "MAPM Warning: 'M_apm_normalize', Exponent out of range\n")
        << text;
    EXPECT_EQ(number->sign, 0) << text;
  }
  EXPECT_EQ(Number("1e2147483646")->exponent, 2147483647);
  EXPECT_EQ(Number("1e-2147483647")->exponent, -2147483646);
}

TEST(DecimalText, LongTextsAreReadWhole) {
  for (const std::size_t digits : {255u, 256u, 257u, 999u, 1001u, 100000u}) {
    const std::string text(digits, '7');
    EXPECT_EQ(Number(text).integer(), text);
    EXPECT_EQ(Number("0." + text).plain(-1), "0." + text);
  }
}

TEST(DecimalText, ScientificForm) {
  EXPECT_EQ(Number("1250").scientific(-1), "1.25E+3");
  EXPECT_EQ(Number("-0.00125").scientific(-1), "-1.25E-3");
  EXPECT_EQ(Number("1").scientific(-1), "1.0E+0");
  EXPECT_EQ(Number("1").scientific(3), "1.000E+0");
  EXPECT_EQ(Number("1.25").scientific(1), "1.3E+0");
  EXPECT_EQ(Number("-1.25").scientific(1), "-1.3E+0");
  EXPECT_EQ(Number("9.99").scientific(1), "1.0E+1");
  EXPECT_EQ(Number("7").scientific(0), "7.E+0");
}

TEST(DecimalText, ZeroInScientificForm) {
  EXPECT_EQ(Number().scientific(-1), "0.0E+0");
  EXPECT_EQ(Number().scientific(4), "0.0000E+0");
  EXPECT_EQ(Number().scientific(0), "0.E+0");
}

TEST(DecimalText, PlainFormWithoutPlacesRoundsHalvesAwayFromZero) {
  EXPECT_EQ(Number("0.5").plain(0), "1");
  EXPECT_EQ(Number("-0.5").plain(0), "-1");
  EXPECT_EQ(Number("0.49").plain(0), "0");
  EXPECT_EQ(Number("-0.49").plain(0), "0");
  EXPECT_EQ(Number("2.5").plain(0), "3");
  EXPECT_EQ(Number("99.5").plain(0), "100");
  EXPECT_EQ(Number("0").plain(0), "0");
}

TEST(DecimalText, PlainFormWithPlaces) {
  EXPECT_EQ(Number("1234.5").plain(2), "1234.50");
  EXPECT_EQ(Number("-1234.5").plain(2), "-1234.50");
  EXPECT_EQ(Number("0.00123").plain(4), "0.0012");
  EXPECT_EQ(Number("0.00003").plain(4), "0.0000");
  EXPECT_EQ(Number("0.00005").plain(4), "0.0001");
  EXPECT_EQ(Number("-0.00005").plain(4), "-0.0001");
  EXPECT_EQ(Number("-0.00004").plain(4), "0.0000");
  EXPECT_EQ(Number("0.000005").plain(4), "0.0000");
  EXPECT_EQ(Number("1E5").plain(1), "100000.0");
  EXPECT_EQ(Number("99.999").plain(2), "100.00");
  EXPECT_EQ(Number("0").plain(3), "0.000");
}

TEST(DecimalText, PlainFormWithAllDigits) {
  EXPECT_EQ(Number("1E-5").plain(-1), "0.00001");
  EXPECT_EQ(Number("-12.34").plain(-1), "-12.34");
  EXPECT_EQ(Number("1200").plain(-1), "1200.0");
  EXPECT_EQ(Number("0").plain(-1), "0.0");
}

TEST(DecimalText, PlainFormOfLongNumbers) {
  const std::string digits(300, '3');
  EXPECT_EQ(Number(digits + "." + digits).plain(300), digits + "." + digits);
}

TEST(DecimalText, IntegerFormCuts) {
  EXPECT_EQ(Number("127.9").integer(), "127");
  EXPECT_EQ(Number("-1.9").integer(), "-1");
  EXPECT_EQ(Number("0.99").integer(), "0");
  EXPECT_EQ(Number("-0.99").integer(), "0");
  EXPECT_EQ(Number("0").integer(), "0");
  EXPECT_EQ(Number("1E10").integer(), "10000000000");
}

std::string extended(const char *number, int places, char radix, char separator,
                     int group) {
  const Number value(number);
  char *text = m_apm_to_fixpt_stringexp(places, value, radix, separator, group);
  const std::string result = text;
  std::free(text);
  char direct[200];
  m_apm_to_fixpt_stringex(direct, places, value, radix, separator, group);
  EXPECT_EQ(result, direct);
  return result;
}

TEST(DecimalText, ExtendedFormSetsRadixAndGroups) {
  EXPECT_EQ(extended("1234567.891", 2, ',', '.', 3), "1.234.567,89");
  EXPECT_EQ(extended("-1234567", 2, '.', ',', 3), "-1,234,567.00");
  EXPECT_EQ(extended("123", 1, '.', ',', 3), "123.0");
  EXPECT_EQ(extended("1234", 1, '.', ',', 3), "1,234.0");
  EXPECT_EQ(extended("123456", 0, '.', ' ', 2), "12 34 56");
  EXPECT_EQ(extended("1234567.5", 0, '.', 0, 3), "1234568");
  EXPECT_EQ(extended("1234567", -1, '.', ',', 4), "123,4567.0");
  EXPECT_EQ(extended("1234567", 1, '.', ',', 0), "1234567.0");
}

TEST(DecimalText, ExtendedFormSignsOnlyWhatIsNotZero) {
  EXPECT_EQ(extended("-0.004", 2, '.', 0, 3), "0.00");
  EXPECT_EQ(extended("-0.005", 2, '.', 0, 3), "-0.01");
  EXPECT_EQ(extended("0", 2, '.', 0, 3), "0.00");
}

TEST(DecimalText, LongsKeepAllDigits) {
  for (const long value :
       {0L, 7L, -7L, 10L, 100L, 123456789L, -987654321012345678L,
        std::numeric_limits<long>::max(), std::numeric_limits<long>::min()}) {
    Number number;
    m_apm_set_long(number, value);
    EXPECT_EQ(number.integer(), std::to_string(value));
    expectNormalForm(number);
  }
}

std::string textOfDouble(double value) {
  Number number;
  m_apm_set_double(number, value);
  expectNormalForm(number);
  return number.plain(-1);
}

TEST(DecimalText, DoublesKeepFifteenDigits) {
  EXPECT_EQ(textOfDouble(123456789012345678.0), "123456789012346000.0");
  EXPECT_EQ(textOfDouble(0.1), "0.1");
  EXPECT_EQ(textOfDouble(-2.5), "-2.5");
  EXPECT_EQ(textOfDouble(1e15), "1000000000000000.0");
  EXPECT_EQ(textOfDouble(0), "0.0");
  EXPECT_EQ(textOfDouble(-0.0), "0.0");
  Number number;
  m_apm_set_double(number, 5e-324);
  EXPECT_EQ(number.text(), "4.94065645841247E-324");
  m_apm_set_double(number, std::numeric_limits<double>::max());
  EXPECT_EQ(number.text(), "1.79769313486232E+308");
}

TEST(DecimalText, FloatsAreWidened) {
  Number number;
  m_apm_set_float(number, 0.1F);
  EXPECT_EQ(number.plain(-1), "0.100000001490116");
}

TEST(DecimalText, InfinityAndNanWarnAndGiveZero) {
  for (const double value : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
    Number number("7");
    EXPECT_EQ(warningsOf([&] { m_apm_set_double(number, value); }),
              "MAPM Warning: 'm_apm_set_double', Invalid double input (likely a NAN or "
              "+/- INF)\n");
    EXPECT_EQ(number->sign, 0);
    m_apm_set_long(number, 7);
    EXPECT_EQ(warningsOf([&] { m_apm_set_float(number, static_cast<float>(value)); }),
              "MAPM Warning: 'm_apm_set_float', Invalid float input (likely a NAN or +/- "
              "INF)\n");
    EXPECT_EQ(number->sign, 0);
  }
}

/// A locale whose radix character is a comma, where one is installed, changes nothing.
TEST(DecimalText, LocaleIsOfNoConsequence) {
  const std::string before = std::setlocale(LC_NUMERIC, nullptr);
  for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "C"})
    if (std::setlocale(LC_NUMERIC, name)) break;
  EXPECT_EQ(textOfDouble(0.5), "0.5");
  const Number x("2");
  Number root;
  m_apm_sqrt(root, 20, x);
  EXPECT_EQ(root.plain(20), "1.41421356237309504880");
  std::setlocale(LC_NUMERIC, before.c_str());
}

/// What is printed with all digits reads as the same number.
TEST(DecimalText, RandomNumbersSurviveBothForms) {
  std::mt19937_64 random = generator();
  for (int i = rounds(2000, 100'000); i > 0; --i) {
    const std::string text = (random() % 2 ? "-0." : "0.") +
                             randomDigits(random, between(random, 1, 80)) + "E" +
                             std::to_string(between(random, -90, 90));
    const Number number(text);
    for (const std::string &form : {number.text(), number.plain(-1)})
      ASSERT_EQ(m_apm_compare(number, Number(form)), 0) << form;
  }
}

/// MPFR prints the same number of places of numbers that it holds exactly.
TEST(DecimalText, PlainFormAgreesWithMpfr) {
  std::mt19937_64 random = generator();
  for (int i = rounds(2000, 100'000); i > 0; --i) {
    const double value =
        std::ldexp(static_cast<double>(random() >> 40), between(random, -40, 20));
    const int places = between(random, 1, 60);
    char exact[200], expected[200];
    Real real(200);
    mpfr_set_d(real, value, MPFR_RNDN);
    mpfr_snprintf(exact, sizeof exact, "%.80Rf", static_cast<mpfr_ptr>(real));
    mpfr_snprintf(expected, sizeof expected, "%.*Rf", places,
                  static_cast<mpfr_ptr>(real));
    // Halves are the one difference: here away from zero.
    const Number number(exact);
    Number half("5E-" + std::to_string(places + 1)), rest, quotient, shifted;
    m_apm_add(shifted, number, half);
    const Number unit("1E-" + std::to_string(places));
    m_apm_integer_div_rem(quotient, rest, shifted, unit);
    if (rest->sign == 0) continue;
    ASSERT_EQ(number.plain(places), expected) << exact;
  }
}

}  // namespace
}  // namespace zevtest
