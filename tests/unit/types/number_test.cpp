/// Text to and from NUMBER and VARNUM.
#include "types/number.h"

#include "decimal_text.h"
#include "types_fixture.h"

namespace zevtest {
namespace {

constexpr std::size_t kRoom = zev::kVarnumSize + 2;

/// The NUMBER of a text in hexadecimal, "bad" where it is refused.
std::string number(const std::string &text) {
  const auto s = exactCopy(text + '\0');
  ub1 out[kRoom] = {};
  if (ConvertStringToNUMBER(s.get(), out) != 0) return "bad";
  std::size_t size = 1;
  while (size < sizeof out && out[size] != 0) ++size;
  return hex({reinterpret_cast<char *>(out), size});
}

std::string varnumBytes(const std::string &text) {
  const auto s = exactCopy(text + '\0');
  const auto out = guarded(zev::kVarnumSize);
  if (ConvertStringToVARNUM(s.get(), reinterpret_cast<ub1 *>(out.get())) != 0) return {};
  return {out.get(), static_cast<std::size_t>(out[0]) + 1};
}

std::string varnum(const std::string &text) {
  const std::string bytes = varnumBytes(text);
  return bytes.empty() ? "bad" : hex(bytes);
}

/// Text of a number; "bad" where it is refused.
std::string text(sword (*convert)(const ub1 *, char *), const std::string &bytes) {
  char out[80] = {};
  const auto n = exactCopy(bytes);
  return convert(reinterpret_cast<const ub1 *>(n.get()), out) == 0 ? out : "bad";
}
std::string textOfVarnum(const std::string &bytes) {
  return text(ConvertVARNUMToString, bytes);
}
/// A NUMBER is read to its last byte, so it has all of them.
std::string textOfNumber(std::string bytes) {
  bytes.resize(zev::kNumberSize, '\0');
  return text(ConvertNUMBERToString, bytes);
}

struct Example {
  const char *value, *number, *varnum, *text;
};

TEST(Number, WorkedExamples) {
  const Example examples[] = {
      {"0", "80", "01 80", "0.0"},
      {"1", "C1 02", "02 C1 02", "0.01E2"},
      {"-1", "3E 64 66", "03 3E 64 66", "-0.01E2"},
      {"100", "C2 02", "02 C2 02", "0.01E4"},
      {"0.5", "C0 33", "02 C0 33", "0.50"},
      {"123.45", "C2 02 18 2E", "04 C2 02 18 2E", "0.012345E4"},
      {"-123.45", "3D 64 4E 38 66", "05 3D 64 4E 38 66", "-0.012345E4"},
      {"0.001", "BF 0B", "02 BF 0B", "0.10E-2"},
  };
  for (const Example &e : examples) {
    EXPECT_EQ(number(e.value), e.number);
    EXPECT_EQ(varnum(e.value), e.varnum);
    EXPECT_EQ(textOfVarnum(varnumBytes(e.value)), e.text);
  }
}

TEST(Number, ZeroIsAConstant) {
  const std::string zero(reinterpret_cast<const char *>(&OCIZero), sizeof OCIZero);
  EXPECT_EQ(zero, "\x01\x80" + std::string(20, '\0'));
  EXPECT_EQ(textOfVarnum(zero), "0.0");
}

struct TextForm {
  const char *text, *number;
};

TEST(Number, FormsOfText) {
  const TextForm forms[] = {
      {"000123.4500", "C2 02 18 2E"},
      {".5", "C0 33"},
      {"0.5", "C0 33"},
      {"+.5", "C0 33"},
      {".", "80"},
      {",", "80"},
      {".000", "80"},
      {",00", "80"},
      {"", "80"},
      {"   ", "80"},
      {"-", "80"},
      {"+", "80"},
      {"-0", "80"},
      {"0000", "80"},
      {" \t\n1", "C1 02"},
      {"1,000", "C2 0B"},
      {"1,234,567", "C4 02 18 2E 44"},
      {"12abc", "C1 0D"},
      {"12abc0", "C1 0D"},
      {"12 ", "C1 0D"},
      {"1 2", "C1 02"},
      {"1E2", "C2 02"},
      {"1e+2", "C2 02"},
      {"15E-1", "C1 02 33"},
      {"1E10", "C6 02"},
      {"1.5E20", "CB 02 33"},
      {"1E100", "F3 02"},
      {"12E100", "F3 0D"},
      {"1E-126", "82 02"},
      {"0.00000001", "BD 02"},
      {"0.0010", "BF 0B"},
      {"1E 2", "C2 02"},
      // A count of no digits: nothing but the power is left.
      {".0e5", "C2"},
      {"-.0e5", "3D 66"},
      // Zeros that do not end the text stay.
      {"1200abc", "C2 0D 01"},
      {"100.00", "C2 02 01"},
  };
  for (const TextForm &f : forms) EXPECT_EQ(number(f.text), f.number) << f.text;
}

TEST(Number, ExponentsBeyondALongAreRefused) {
  for (const char *s : {"1E99999999999999999999", "1E-99999999999999999999"}) {
    EXPECT_EQ(number(s), "bad") << s;
  }
}

TEST(Number, RefusedText) {
  for (const char *s :
       {"abc", "-abc",  "x00",    "1.000,5", "1.2.3", ".1,2",
        "..1", ".x",    ",5",     "--1",     "+-1",   "1E",
        "1Ex", "1E127", "1E-127", "1E128",   "1E200", "1E99999999999999999999",
        "NaN", "-x",    "E5",     ".E5"}) {
    EXPECT_EQ(number(s), "bad") << s;
    EXPECT_EQ(varnum(s), "bad") << s;
  }
}

TEST(Number, TextsOf254CharactersAreBeyondTheCodec) {
  EXPECT_EQ(number(std::string(252, ' ') + "1"), "C1 02");
  EXPECT_EQ(number(std::string(253, ' ') + "1"), "bad");
  EXPECT_EQ(varnum("0." + std::string(252, '3')), "bad");
  EXPECT_EQ(varnum("1" + std::string(253, 'x')), "bad");
}

TEST(Number, RefusedTextLeavesTheTargetAlone) {
  ub1 out[kRoom];
  std::memset(out, '~', sizeof out);
  EXPECT_EQ(ConvertStringToNUMBER("abc", out), -1);
  EXPECT_EQ(ConvertStringToVARNUM("abc", out), -1);
  EXPECT_EQ(ConvertStringToNUMBER(nullptr, out), -1);
  EXPECT_EQ(ConvertStringToVARNUM(nullptr, out), -1);
  EXPECT_TRUE(std::all_of(out, out + sizeof out, [](ub1 b) { return b == '~'; }));
}

TEST(Number, DigitsBeyondTheMantissaAreCut) {
  const std::string d45(45, '7'), d46(46, '7');
  // 39 of 45 digits and 38 of 46 as NUMBER.
  EXPECT_EQ(number(d45).size(), (1 + 20) * 3 - 1u);
  EXPECT_EQ(number(d46).size(), (1 + 19) * 3 - 1u);
  // 39 and 40 as VARNUM.
  EXPECT_EQ(decimalOf(textOfVarnum(varnumBytes(d45))).digits, d45.substr(0, 39));
  EXPECT_EQ(decimalOf(textOfVarnum(varnumBytes(d46))).digits, d46.substr(0, 40));
  // A full negative VARNUM has no terminator; a NUMBER always has.
  EXPECT_EQ(varnumBytes("-" + d45).size(), zev::kVarnumSize);
  EXPECT_NE(varnumBytes("-" + d45).back(), 102);
  EXPECT_EQ(varnumBytes("-" + d45.substr(0, 37)).back(), 102);
  EXPECT_EQ(number("-" + d45).size(), (1 + 20 + 1) * 3 - 1u);
  EXPECT_EQ(number("-" + d46).size(), (1 + 19 + 1) * 3 - 1u);
}

// The power of ten wraps in 8 bits, and nothing tells of it.
TEST(Number, PowersWrap) {
  EXPECT_EQ(number("9E125"), "FF 5B");
  EXPECT_EQ(number("99E126"), "80 64");
  EXPECT_EQ(number("1" + std::string(200, '0')), "A5 02");
}

TEST(ParseNumber, PartsOfANumber) {
  ub1 sign = 7, exponent = 7, count = 7;
  ub1 digits[16] = {};
  EXPECT_EQ(ParseNumber("-00120.0340", &sign, &exponent, digits, &count), 0);
  EXPECT_EQ(sign, 0);
  EXPECT_EQ(count, 6);
  EXPECT_EQ(static_cast<sb1>(exponent), -3);
  EXPECT_EQ(std::string(digits, digits + count), "\1\2\0\0\3\4"s);

  EXPECT_EQ(ParseNumber("+1,200", &sign, &exponent, digits, &count), 0);
  EXPECT_EQ(sign, 1);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(exponent, 2);

  sign = 7;
  EXPECT_EQ(ParseNumber("25E3", &sign, &exponent, digits, &count), 0);
  EXPECT_EQ(sign, 7);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(exponent, 3);

  EXPECT_EQ(ParseNumber("0.00", &sign, &exponent, digits, &count), 1);
  EXPECT_EQ(ParseNumber("", &sign, &exponent, digits, &count), 1);
  EXPECT_EQ(ParseNumber("x", &sign, &exponent, digits, &count), -1);
}

TEST(ParseNumber, NullArguments) {
  ub1 a, b, c, digits[4];
  EXPECT_EQ(ParseNumber(nullptr, &a, &b, digits, &c), -1);
  EXPECT_EQ(ParseNumber("1", nullptr, &b, digits, &c), -1);
  EXPECT_EQ(ParseNumber("1", &a, nullptr, digits, &c), -1);
  EXPECT_EQ(ParseNumber("1", &a, &b, nullptr, &c), -1);
  EXPECT_EQ(ParseNumber("1", &a, &b, digits, nullptr), -1);
}

TEST(NumberToText, OfVarnums) {
  const TextForm forms[] = {
      {"\x02\xC1\x02", "0.01E2"},
      {"\x03\xC1\x65\x65", "0.100100E2"},  // 101 is a digit too many, but accepted
      {"\x03\x3E\x64\x66", "-0.01E2"},
      {"\x02\x3E\x64", "-0.01E2"},  // without a terminator
      {"\x02\xFF\x02", "0.01E126"},
      {"\x02\x81\x02", "0.01E-126"},
  };
  for (const TextForm &f : forms) EXPECT_EQ(textOfVarnum(f.text), f.number);
  EXPECT_EQ(textOfVarnum("\x04\x3E\x64\x00\x02"s), "-0.01E2");  // 0 ends a negative one
}

TEST(NumberToText, RefusedVarnums) {
  for (const std::string &bytes :
       {"\x00"s, "\x01\x81"s, "\x01\x3F"s, "\x03\xC1\x02\x66"s, "\x03\xC1\x02\x00"s,
        "\x03\xC1\x02\x67"s, "\x03\xC1\x02\xFF"s, "\x04\x3E\x64\x66\x64"s,
        "\x03\x3E\x64\x67"s, "\x16"s + std::string(22, '\x02'), "\xFF"s}) {
    EXPECT_EQ(textOfVarnum(bytes), "bad") << hex(bytes);
  }
  char out[80];
  EXPECT_EQ(ConvertVARNUMToString(nullptr, out), -1);
  EXPECT_EQ(ConvertVARNUMToString(reinterpret_cast<const ub1 *>("\x01\x80"), nullptr),
            -1);
  EXPECT_EQ(ConvertNUMBERToString(nullptr, out), -1);
  EXPECT_EQ(ConvertNUMBERToString(reinterpret_cast<const ub1 *>("\x80"), nullptr), -1);
}

TEST(NumberToText, ARefusedLengthOfOneStillWritesItsStart) {
  char out[8] = "~~~~~~~";
  EXPECT_EQ(ConvertVARNUMToString(reinterpret_cast<const ub1 *>("\x01\x81"), out), -1);
  EXPECT_STREQ(out, "0.");
  EXPECT_EQ(ConvertVARNUMToString(reinterpret_cast<const ub1 *>("\x01\x3F"), out), -1);
  EXPECT_STREQ(out, "-0.");
}

TEST(NumberToText, OfNumbers) {
  EXPECT_EQ(textOfNumber("\xC2\x02\x18\x2E"), "0.012345E4");
  EXPECT_EQ(textOfNumber("\x3D\x64\x4E\x38\x66"), "-0.012345E4");
  EXPECT_EQ(textOfNumber("\x80"), "0.E-128");  // zero has no form of its own
  EXPECT_EQ(textOfNumber("\xC1\x65"), "0.100E2");
  EXPECT_EQ(textOfNumber("\xC1\x67"), "bad");
  EXPECT_EQ(textOfNumber("\xC1\x02\x66"), "bad");
  EXPECT_EQ(textOfNumber("\x3E\x67"), "bad");
  EXPECT_EQ(textOfNumber("\xC1" + std::string(20, '\x02')),
            "0." + std::string("01010101010101010101") + "01010101010101010101E2");
}

TEST(NumberToText, EveryExponentByteComesBack) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string bytes = {2, static_cast<char>(byte),
                               static_cast<char>(byte & 0x80 ? 2 : 100)};
    const int power = 2 * (byte & 0x80 ? byte - 192 : 63 - byte);
    const std::string expected =
        std::string(byte & 0x80 ? "0.01" : "-0.01") +
        (power ? "E" + std::to_string(static_cast<sb1>(power)) : "");
    EXPECT_EQ(textOfVarnum(bytes), expected);
    // Its text is a number again where its power is in the range of text.
    if (std::abs(power) > 126) continue;
    std::string again = varnumBytes(expected);
    if (again.back() == 102)
      again = static_cast<char>(again[0] - 1) + again.substr(1, again.size() - 2);
    EXPECT_EQ(hex(again), hex(bytes));
  }
}

TEST(Number, RandomDecimalsKeepTheirDigits) {
  auto random = generator();
  for (int i = 0; i < 100000; ++i) {
    const std::string decimal = randomDecimal(random);
    const Decimal value = decimalOf(decimal);
    ASSERT_EQ(decimalOf(textOfVarnum(varnumBytes(decimal))), cutToPairs(value, 20))
        << decimal;
    ub1 number[kRoom] = {};
    ASSERT_EQ(ConvertStringToNUMBER(decimal.c_str(), number), 0);
    ub1 shortVarnum[zev::kVarnumSize];
    ASSERT_EQ(zev::convertStringToShortVarnum(decimal.c_str(), shortVarnum), 0);
    ASSERT_EQ(std::memcmp(number, shortVarnum + 1, shortVarnum[0]), 0);
    if (value.digits.empty()) continue;
    const std::string printed = textOfNumber({number, number + zev::kNumberSize});
    ASSERT_EQ(decimalOf(printed), cutToPairs(value, 19)) << decimal;
  }
}

TEST(Number, RandomDecimalsWithExponents) {
  auto random = generator();
  for (int i = 0; i < 100000; ++i) {
    const std::string digits =
        std::to_string(1 + random() % 9) + "." + randomDigits(random, random() % 20);
    const long power = static_cast<long>(random() % 240) - 120;
    const std::string decimal = (random() % 2 ? "-" : "") + digits +
                                (random() % 2 ? "e" : "E") + std::to_string(power);
    ASSERT_EQ(decimalOf(textOfVarnum(varnumBytes(decimal))), decimalOf(decimal))
        << decimal;
  }
}

TEST(Number, TextAndBackIsTheSameNumber) {
  auto random = generator();
  for (int i = 0; i < 100000; ++i) {
    const std::string decimal = randomDecimal(random);
    const std::string bytes = varnumBytes(decimal);
    const std::string printed = textOfVarnum(bytes);
    ASSERT_EQ(decimalOf(textOfVarnum(varnumBytes(printed))), decimalOf(printed))
        << decimal;
  }
}

/// Whether `a` is less than `b`.
bool less(const Decimal &a, const Decimal &b) {
  if (a.negative != b.negative) return a.negative;
  if (a.digits.empty() || b.digits.empty()) {
    return a.digits.empty() ? !b.digits.empty() : b.negative;
  }
  const bool smaller = a.point != b.point ? a.point < b.point : a.digits < b.digits;
  return a.negative ? b.point == a.point ? b.digits < a.digits : b.point < a.point
                    : smaller;
}

// What indexes rely on: bytes of NUMBERs compare as the numbers do.
TEST(Number, BytesOrderAsTheNumbers) {
  auto random = generator();
  const auto make = [&random] {
    std::string decimal = randomDigits(random, 1 + random() % 9);
    if (random() % 2) decimal += "." + randomDigits(random, random() % 6) + "1";
    return (random() % 2 ? "-" : "") + decimal;
  };
  for (int i = 0; i < 100000; ++i) {
    const std::string a = make(), b = make();
    ub1 x[kRoom] = {}, y[kRoom] = {};
    ConvertStringToNUMBER(a.c_str(), x);
    ConvertStringToNUMBER(b.c_str(), y);
    const int order = std::memcmp(x, y, sizeof x);
    ASSERT_EQ(order < 0, less(decimalOf(a), decimalOf(b))) << a << " " << b;
    ASSERT_EQ(order == 0, decimalOf(a) == decimalOf(b)) << a << " " << b;
  }
}

}  // namespace
}  // namespace zevtest
