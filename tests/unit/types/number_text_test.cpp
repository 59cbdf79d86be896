#include "types/number_text.h"

#include <clocale>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "types_fixture.h"

namespace zevtest {
namespace {

std::string reversed(std::string digits) {
  const std::size_t sign = !digits.empty() && digits[0] == '-';
  std::reverse(digits.begin() + static_cast<long>(sign), digits.end());
  return digits;
}

std::string i64toa(sb8 value, int base = 10) {
  char out[80];
  return _i64toa(value, out, base);
}

template <auto Print, class T>
std::string charArray(T value, sb4 room = 40) {
  const auto out = guarded(static_cast<std::size_t>(room));
  Print(value, out.get(), &room);
  return {out.get(), static_cast<std::size_t>(room)};
}

TEST(PrintInteger, ItoaIgnoresItsBase) {
  char out[12];
  EXPECT_STREQ(oci_itoa(-123, out, 16), "-123");
  EXPECT_STREQ(oci_itoa(SB4MINVAL, out, 10), "-2147483648");
  EXPECT_STREQ(oci_itoa(0, out, 10), "0");
}

TEST(PrintInteger, I64toaWritesTheLastDigitFirst) {
  EXPECT_EQ(i64toa(123), "321");
  EXPECT_EQ(i64toa(-123), "-321");
  EXPECT_EQ(i64toa(120), "021");
  EXPECT_EQ(i64toa(0), "");
  EXPECT_EQ(i64toa(0x1F, 16), "f1");
  EXPECT_EQ(i64toa(INT64_MIN), "-8085774586302733229");
}

TEST(PrintInteger, CharArraysHoldTheLastDigitFirst) {
  EXPECT_EQ((charArray<Int16ToCharArray, sb2>(123)), "321");
  EXPECT_EQ((charArray<Int32ToCharArray, sb4>(-123)), "-321");
  EXPECT_EQ((charArray<Int64ToCharArray, sb8>(1234567890123)), "3210987654321");
}

TEST(PrintInteger, CharArraysOfZero) {
  EXPECT_EQ((charArray<Int16ToCharArray, sb2>(0)), "");
  EXPECT_EQ((charArray<Int32ToCharArray, sb4>(0)), "0");
  EXPECT_EQ((charArray<Int64ToCharArray, sb8>(0)), "0");
}

TEST(PrintInteger, LowestShortIsASignOnly) {
  EXPECT_EQ((charArray<Int16ToCharArray, sb2>(-32768)), "-");
  EXPECT_EQ((charArray<Int16ToCharArray, sb2>(-32767)), "-76723");
}

TEST(PrintInteger, CharArraysStopAtTheEndOfTheirBuffer) {
  EXPECT_EQ((charArray<Int32ToCharArray, sb4>(12345, 3)), "543");
  EXPECT_EQ((charArray<Int32ToCharArray, sb4>(-12345, 1)), "-");
  EXPECT_EQ((charArray<Int64ToCharArray, sb8>(-12345, 0)), "");
  EXPECT_EQ((charArray<Int32ToCharArray, sb4>(0, 0)), "");
}

TEST(PrintInteger, RandomIntegersAreTheirDigitsReversed) {
  auto random = generator();
  for (int i = 0; i < 100000; ++i) {
    const auto value = static_cast<sb8>(random() >> (random() % 64)) * (i % 2 ? 1 : -1);
    if (value == 0) continue;
    ASSERT_EQ(i64toa(value), reversed(std::to_string(value)));
    ASSERT_EQ((charArray<Int64ToCharArray, sb8>(value)), reversed(std::to_string(value)));
    const auto four = static_cast<sb4>(value);
    char out[12];
    ASSERT_EQ(oci_itoa(four, out, 10), std::to_string(four));
    if (four != 0) {
      ASSERT_EQ((charArray<Int32ToCharArray, sb4>(four)), reversed(std::to_string(four)));
    }
  }
}

TEST(PrintInteger, AllShortsAreTheirDigitsReversed) {
  for (int value = -32767; value <= 32767; ++value) {
    if (value == 0) continue;
    ASSERT_EQ((charArray<Int16ToCharArray, sb2>(static_cast<sb2>(value))),
              reversed(std::to_string(value)));
  }
}

TEST(Atoi64, ReadsWhatAServerSends) {
  EXPECT_EQ(atoi64("0"), 0);
  EXPECT_EQ(atoi64("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(atoi64("-9223372036854775808"), INT64_MIN);
}

TEST(Atoi64, PointEndsTheScanWithoutTheSign) {
  EXPECT_EQ(atoi64("1.5"), 1);
  EXPECT_EQ(atoi64("-1.5"), 1);
}

TEST(Atoi64, OtherCharactersAreFoldedIn) {
  EXPECT_EQ(atoi64("1 "), 10 + (' ' - '0'));
  EXPECT_EQ(atoi64("a"), 'a' - '0');
  EXPECT_EQ(atoi64("5-"), -5);
  EXPECT_EQ(atoi64(""), 0);
}

TEST(Atoi64, PlusEndsTheScan) {
  EXPECT_EQ(atoi64("+5"), 0);
  EXPECT_EQ(atoi64("12+5"), 12);
}

TEST(Atoi64, Wraps) {
  EXPECT_EQ(atoi64("18446744073709551617"), 1);
}

std::string printed(double x, sb4 precision, boolean trim = TRUE) {
  char out[100];
  const sb4 length = dtostr(out, sizeof out, precision, trim, x);
  if (length < 0) return "failed";
  EXPECT_EQ(std::strlen(out), static_cast<std::size_t>(length));
  return out;
}

TEST(Dtostr, BothPartsComeLastDigitFirst) {
  EXPECT_EQ(printed(123.25, 6), "321.000052") << "250000 reversed";
  EXPECT_EQ(printed(120, 6), "021");
}

TEST(Dtostr, WithoutFractionOnlyTheIntegerPart) {
  EXPECT_EQ(printed(7, 6), "7");
  EXPECT_EQ(printed(0, 6), "");
  EXPECT_EQ(printed(1.0000001, 6), "1");
}

TEST(Dtostr, NegativeNumbersHideTheirFraction) {
  EXPECT_EQ(printed(-12.5, 6), "-21");
  EXPECT_EQ(printed(-0.5, 6), "-");
}

TEST(Dtostr, TrimCutsZerosOfTheWholeText) {
  EXPECT_EQ(printed(1, 6, FALSE), "1");
  EXPECT_EQ(printed(0.000001, 6), ".1");
  EXPECT_EQ(printed(0.01, 2), ".1");
  EXPECT_EQ(printed(100.0, 6), "001");
}

TEST(Dtostr, FractionThatRoundsUp) {
  EXPECT_EQ(printed(0.9999999, 6), "failed") << "there is no integer part to carry into";
  EXPECT_EQ(printed(1.9999999, 6), "2");
}

TEST(Dtostr, BoundsOfPrecisionRangeAndRoom) {
  EXPECT_EQ(printed(1.5, 18), "failed");
  EXPECT_EQ(printed(1.5, 17), "1.00000000000000005");
  EXPECT_EQ(printed(1e19, 6), "failed");
  EXPECT_EQ(printed(INFINITY, 6), "failed");
  EXPECT_EQ(printed(NAN, 6), "failed");
  char out[4];
  EXPECT_EQ(dtostr(out, 4, 6, TRUE, 1234), -1);
  EXPECT_EQ(dtostr(out, 4, 6, TRUE, 123), 3);
}

/// Compares a reading with the C library's, errno included.
void expectLikeStrtol(const std::string &number) {
  const auto copy = exactCopy(number + '\0');
  char *end = nullptr;
  errno = 0;
  const long expected = std::strtol(copy.get(), &end, 10);
  const int expectedErrno = errno;
  errno = 0;
  const auto parsed = zev::parseLong(copy.get());
  ASSERT_EQ(parsed.value, expected) << number;
  ASSERT_EQ(parsed.end, end) << number;
  ASSERT_EQ(errno, expectedErrno) << number;
  ASSERT_EQ(parsed.outOfRange, expectedErrno == ERANGE) << number;
  if (zev::isDigit(number[0]) && number.size() < 18) {
    ASSERT_EQ(zev::parseAnyLong(copy.get()).value, expected) << number;
  }
}

void expectLikeStrtod(const std::string &number) {
  const auto copy = exactCopy(number + '\0');
  char *end = nullptr;
  errno = 0;
  const double expected = std::strtod(copy.get(), &end);
  const int expectedErrno = errno;
  errno = 0;
  const auto parsed = zev::parseDouble(copy.get());
  ASSERT_EQ(native(parsed.value), native(expected)) << number;
  ASSERT_EQ(parsed.end, end) << number;
  ASSERT_EQ(errno, expectedErrno) << number;
  ASSERT_EQ(parsed.outOfRange, expectedErrno == ERANGE) << number;
}

TEST(ParseLong, FormsOfIntegers) {
  for (const char *s : {"",
                        "0",
                        "-0",
                        "+5",
                        " 5",
                        "\t\n\v\f\r 5",
                        "5 ",
                        "12.5",
                        "abc",
                        "-",
                        "+",
                        "--5",
                        "-+5",
                        "2147483647",
                        "2147483648",
                        "-2147483648",
                        "9223372036854775807",
                        "9223372036854775808",
                        "-9223372036854775808",
                        "-9223372036854775809",
                        "99999999999999999999999",
                        "000000000000000000000005",
                        "0x10",
                        "1e5",
                        "123456789012345678",
                        "1234567890123456789",
                        "-123456789012345678",
                        "-1234567890123456789"}) {
    expectLikeStrtol(s);
  }
}

TEST(ParseLong, RandomText) {
  auto random = generator();
  const std::string alphabet = "0123456789012345678901234567890123456789-+. \tex";
  for (int i = 0; i < 200000; ++i) {
    std::string number;
    for (std::size_t n = random() % 24; n > 0; --n)
      number += alphabet[random() % alphabet.size()];
    expectLikeStrtol(number);
  }
}

TEST(ParseLong, RandomIntegers) {
  auto random = generator();
  for (int i = 0; i < 200000; ++i) {
    expectLikeStrtol(std::to_string(static_cast<sb8>(random()) >> (random() % 64)));
  }
}

TEST(ParseLong, OldErrnoStays) {
  errno = ERANGE;
  EXPECT_EQ(zev::parseLong("5").value, 5);
  EXPECT_EQ(errno, ERANGE);
  EXPECT_FALSE(zev::parseLong(" 5").outOfRange);
  EXPECT_EQ(errno, ERANGE);
  errno = 0;
}

TEST(ParseDouble, FormsOfNumbers) {
  for (const char *s : {"",
                        "0",
                        "-0",
                        "-0.0",
                        "+5",
                        " 5",
                        "5 ",
                        "1.5",
                        "1,5",
                        "1.",
                        ".5",
                        "-.5",
                        ".",
                        "-",
                        "1e5",
                        "1e+5",
                        "1E-5",
                        "1e",
                        "1e+",
                        "1ex",
                        "0x10",
                        "0X1p-3",
                        "0x",
                        "0x.8",
                        "00x1",
                        "inf",
                        "-Infinity",
                        "INF",
                        "infinit",
                        "nan",
                        "NaN",
                        "-nan",
                        "nan(1)",
                        "nan(",
                        "1e400",
                        "-1e400",
                        "1e308",
                        "1.7976931348623157e308",
                        "1.7976931348623159e308",
                        "1e-310",
                        "5e-324",
                        "2e-324",
                        "1e-400",
                        "2.2250738585072014e-308",
                        "2.2250738585072011e-308",
                        "0e999999999999",
                        "1e99999999999999999999",
                        "1e-99999999999999999999",
                        "123456789012345678901234567890",
                        "0.1",
                        "0.30000000000000004",
                        "9007199254740993",
                        "1..5",
                        "1.5.5",
                        "--1",
                        "0.000",
                        "1797693134862315807937289714053034150799341327100378269361737789"
                        "80444968292764750946649"
                        "0179775872070963302864166928879109465555478519404026306574886715"
                        "05820681908902000708383"
                        "6762738548458177115317644757302700698555713669596228429148198608"
                        "34936475292719074168444"
                        "365510704342711559699508093042880"}) {
    expectLikeStrtod(s);
  }
}

TEST(ParseDouble, RandomDoublesAsAServerPrintsThem) {
  auto random = generator();
  char number[64];
  for (int i = 0; i < 200000; ++i) {
    const auto value = std::bit_cast<double>(random());
    std::snprintf(number, sizeof number, "%.*g", static_cast<int>(1 + random() % 17),
                  value);
    expectLikeStrtod(number);
  }
}

TEST(ParseDouble, RandomDecimals) {
  auto random = generator();
  for (int i = 0; i < 200000; ++i) {
    std::string number = std::to_string(static_cast<sb8>(random()) >> (random() % 64));
    if (random() % 2) number.insert(1 + random() % number.size(), ".");
    if (random() % 4 == 0)
      number += "e" + std::to_string(static_cast<int>(random() % 700) - 350);
    expectLikeStrtod(number);
  }
}

TEST(ParseDouble, RandomText) {
  auto random = generator();
  const std::string alphabet = "01234567890123456789.-+eExX ,infany()";
  for (int i = 0; i < 200000; ++i) {
    std::string number;
    for (std::size_t n = random() % 12; n > 0; --n)
      number += alphabet[random() % alphabet.size()];
    expectLikeStrtod(number);
  }
}

TEST(CleanErrno, HidesWhatWasThereAndWhatComes) {
  errno = ERANGE;
  {
    const zev::CleanErrno clean;
    EXPECT_EQ(errno, 0);
    errno = EINVAL;
  }
  EXPECT_EQ(errno, ERANGE);
  errno = 0;
}

/// Switches the process to a locale whose decimal point is a comma, made on the spot if
/// the system has none.
class CommaLocale : public testing::Test {
 protected:
  void SetUp() override {
    for (const char *name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "nl_NL.UTF-8"}) {
      if (adopt(name)) return;
    }
    std::filesystem::create_directories(folder_);
    std::ofstream(folder_ + "/source") << "comment_char %\nescape_char /\nLC_NUMERIC\n"
                                          "decimal_point \",\"\nthousands_sep \".\"\n"
                                          "grouping 3;3\nEND LC_NUMERIC\n";
    const std::string command =
        "localedef -c -i " + folder_ + "/source " + folder_ + "/comma_XX >/dev/null 2>&1";
    std::ignore = std::system(command.c_str());
    ::setenv("LOCPATH", folder_.c_str(), 1);
    ASSERT_TRUE(adopt("comma_XX"))
        << "no locale with a decimal comma, and localedef made none";
  }
  void TearDown() override {
    std::setlocale(LC_ALL, "C");
    ::unsetenv("LOCPATH");
    std::filesystem::remove_all(folder_);
  }

  Session session;

 private:
  static bool adopt(const char *name) {
    return std::setlocale(LC_NUMERIC, name) && *std::localeconv()->decimal_point == ',';
  }
  std::string folder_ =
      testing::TempDir() + "zev_comma_locale_" + std::to_string(::getpid());
};

TEST_F(CommaLocale, TheLocaleIsInForce) {
  EXPECT_EQ(std::strtod("1.5", nullptr), 1);
}

TEST_F(CommaLocale, NumbersAreReadWithAPoint) {
  for (const char *s : {"1.5", " 1.5", "+1.5", "1.5e-310", "0x1.8p0"}) {
    const auto parsed = zev::parseDouble(s);
    EXPECT_EQ(*parsed.end, '\0') << s;
  }
  EXPECT_EQ(*zev::parseDouble("1,5").end, ',');
  EXPECT_EQ(zev::parseLong(" 1234").value, 1234);
}

TEST_F(CommaLocale, FetchesReadWithAPoint) {
  for (const Oid oid : {Oid{TEXTOID}, Oid{FLOAT8OID}, Oid{NUMERICOID}}) {
    expectFetch(session, {"", oid, SQLT_FLT, 0, "-12.5", 8, native(-12.5), 8});
  }
}

TEST_F(CommaLocale, BinaryNumericsPrintWithAPoint) {
  const std::string wire = network<sb2>(2) + network<sb2>(0) + network<sb2>(0) +
                           network<sb2>(1) + network<sb2>(12) + network<sb2>(5000);
  expectFetch(session, {"", NUMERICOID, SQLT_STR, 1, wire, 8, "12.5\0~~~"s, 4});
  expectFetch(session, {"", NUMERICOID, SQLT_FLT, 1, wire, 8, native(12.5), 8});
}

TEST_F(CommaLocale, BinaryFloatsPrintWithAPoint) {
  EXPECT_EQ(printed(1.5, 1), "1.5");
}

}  // namespace
}  // namespace zevtest
