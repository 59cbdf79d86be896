#include "types/numeric.h"

#include <limits>

#include "types_fixture.h"

namespace zevtest {
namespace {

using Record = std::unique_ptr<numeric, decltype(&std::free)>;

Record record(sb2 weight, ub2 sign, sb2 dscale, const std::vector<sb2> &digits) {
  numeric *v = nullptr;
  EXPECT_EQ(alloc_var(&v, static_cast<int>(digits.size())), 0);
  v->weight = weight;
  v->sign = sign;
  v->dscale = dscale;
  std::copy(digits.begin(), digits.end(), v->digits);
  return {v, std::free};
}

Record parsed(const std::string &number) {
  const auto copy = exactCopy(number + '\0');
  numeric *v = nullptr;
  const sword status = ConvertStringToNumeric(copy.get(), &v);
  EXPECT_EQ(status, v ? 0 : -1);
  return {v, std::free};
}

std::string printed(numeric *v, int dscale) {
  char *out = nullptr;
  EXPECT_EQ(ConvertNumericToString(v, &out, dscale), 0);
  const std::unique_ptr<char, decltype(&std::free)> owned(out, std::free);
  return out;
}

std::string digitsOf(const numeric *v) {
  std::string out;
  for (int i = 0; i < v->ndigits; ++i) out += std::to_string(v->digits[i]) + " ";
  return out;
}

/// "weight sign dscale: digits".
std::string shape(const numeric *v) {
  return std::to_string(v->weight) + " " +
         (v->sign == 0xC000 ? "NaN"
          : v->sign         ? "-"
                            : "+") +
         " " + std::to_string(v->dscale) + ": " + digitsOf(v);
}

struct TextCase {
  const char *number;
  const char *expected;  ///< null where the text is refused
};

TEST(NumericFromText, Shapes) {
  const TextCase cases[] = {
      {"0", "0 + 0: "},
      {"-0", "0 + 0: "},
      {"0.00", "0 + 2: "},
      {"1", "0 + 0: 1 "},
      {"-1", "0 - 0: 1 "},
      {"+1", "0 + 0: 1 "},
      {"12345", "1 + 0: 1 2345 "},
      {"10000", "1 + 0: 1 "},
      {"100000000", "2 + 0: 1 "},
      {"123.45", "0 + 2: 123 4500 "},
      {".5", "-1 + 1: 5000 "},
      {"-.5", "-1 - 1: 5000 "},
      {"0.5", "-1 + 1: 5000 "},
      {"1.", "0 + 0: 1 "},
      {"0.0001", "-1 + 4: 1 "},
      {"0.00001", "-2 + 5: 1000 "},
      {"0.0000123456789012345", "-2 + 19: 1234 5678 9012 3450 "},
      {"000012345678901234567", "4 + 0: 1 2345 6789 123 4567 "},
      {"1e3", "0 + 0: 1000 "},
      {"1e4", "1 + 0: 1 "},
      {"1.5e3", "0 + 0: 1500 "},
      {"1.2345e2", "0 + 2: 123 4500 "},
      {"1e-5", "-2 + 5: 1000 "},
      {"12E-1", "0 + 1: 1 2000 "},
      {"1e 3", "0 + 0: 1000 "},
      {"1e1000", "250 + 0: 1 "},
      {"1e-1000", "-250 + 1000: 1 "},
      {" \t\n 1 \r\v\f", "0 + 0: 1 "},
      {"NaN", "0 NaN 0: "},
      {"nan", "0 NaN 0: "},
      {"", nullptr},
      {"   ", nullptr},
      {".", nullptr},
      {"-", nullptr},
      {"+-1", nullptr},
      {"abc", nullptr},
      {"1.2.3", nullptr},
      {".1.2", nullptr},
      {"..1", nullptr},
      {"1 2", nullptr},
      {"12abc", nullptr},
      {"1e", nullptr},
      {"1ex", nullptr},
      {"1e1001", nullptr},
      {"1e-1001", nullptr},
      {"1,5", nullptr},
      {" NaN", nullptr},
      {"- 1", nullptr},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.number);
    const Record v = parsed(c.number);
    ASSERT_EQ(v != nullptr, c.expected != nullptr);
    if (v) {
      EXPECT_EQ(shape(v.get()), c.expected);
    }
  }
}

TEST(NumericFromText, NumbersBeyondTheRecordAreRefused) {
  EXPECT_NE(parsed(std::string(131000, '9')), nullptr);
  EXPECT_EQ(parsed(std::string(140000, '9')), nullptr);
  EXPECT_EQ(parsed("0." + std::string(40000, '0') + "1"), nullptr);
}

/// A decimal number as its parts, for an independent way to the plain text.
struct Decimal {
  bool negative;
  std::string integer;
  std::string fraction;

  std::string plain() const {
    std::string digits = integer;
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty()) digits = "0";
    const bool zero = (integer + fraction).find_first_not_of('0') == std::string::npos;
    return (negative && !zero ? "-" : "") + digits +
           (fraction.empty() ? "" : "." + fraction);
  }
};

Decimal randomDecimal(std::mt19937_64 &random) {
  const auto run = [&](std::size_t most) {
    std::string digits;
    for (std::size_t n = random() % (most + 1); n > 0; --n) {
      digits += random() % 3 ? static_cast<char>('0' + random() % 10) : '0';
    }
    return digits;
  };
  return {random() % 2 == 0, "0" + run(60), run(60)};
}

TEST(NumericFromText, RandomDecimalsPrintAsTheyWere) {
  auto random = generator();
  for (int i = 0; i < 50000; ++i) {
    const Decimal decimal = randomDecimal(random);
    const std::string number =
        (decimal.negative ? "-" : "") + decimal.integer + "." + decimal.fraction;
    const Record v = parsed(number);
    ASSERT_TRUE(v) << number;
    ASSERT_EQ(v->dscale, static_cast<sb2>(decimal.fraction.size())) << number;
    ASSERT_TRUE(zev::isWellFormed(*v)) << number;
    ASSERT_EQ(printed(v.get(), v->dscale), decimal.plain()) << number;
  }
}

/// Rounds plain text half up in magnitude at `dscale` decimals.
std::string roundedText(const Decimal &decimal, std::size_t dscale) {
  std::string digits = decimal.integer + decimal.fraction;
  const std::size_t kept = decimal.integer.size() + dscale;
  if (kept >= digits.size()) {
    digits.append(kept - digits.size(), '0');
  } else {
    const bool up = digits[kept] >= '5';
    digits.resize(kept);
    for (std::size_t i = kept; up && i-- > 0;) {
      if (digits[i] != '9') {
        ++digits[i];
        break;
      }
      digits[i] = '0';
    }
  }
  return Decimal{decimal.negative, digits.substr(0, decimal.integer.size()),
                 digits.substr(decimal.integer.size())}
      .plain();
}

TEST(NumericRounding, RandomDecimalsRoundHalfUp) {
  auto random = generator();
  for (int i = 0; i < 50000; ++i) {
    Decimal decimal = randomDecimal(random);
    decimal.integer = "0" + decimal.integer;  // room for a carry
    const std::size_t dscale = random() % 62;
    const Record v =
        parsed((decimal.negative ? "-" : "") + decimal.integer + "." + decimal.fraction);
    std::string shown = printed(v.get(), static_cast<int>(dscale));
    // A negative number that rounds to nothing keeps its sign while its digits are cut
    // away.
    if (shown.find_first_of("123456789") == std::string::npos && shown[0] == '-') {
      shown.erase(0, 1);
    }
    ASSERT_EQ(shown, roundedText(decimal, dscale)) << decimal.plain() << " to " << dscale;
  }
}

TEST(NumericRounding, CarryGrowsTheNumber) {
  const Record v = parsed("9999.9999");
  round_var(v.get(), 3);
  EXPECT_EQ(shape(v.get()).substr(0, 9), "1 + 3: 1 ");
  EXPECT_EQ(printed(v.get(), 3), "10000.000");
  const Record half = record(-1, 0, 4, {5000});
  round_var(half.get(), 0);
  EXPECT_EQ(shape(half.get()), "0 + 0: 1 ");
}

TEST(NumericRounding, HalfOfADigitGoesUp) {
  EXPECT_EQ(printed(parsed("0.45").get(), 1), "0.5");
  EXPECT_EQ(printed(parsed("0.449999").get(), 1), "0.4");
  EXPECT_EQ(printed(parsed("-0.45").get(), 1), "-0.5");
  EXPECT_EQ(printed(parsed("1.00005").get(), 4), "1.0001");
  EXPECT_EQ(printed(parsed("1.00004999").get(), 4), "1.0000");
}

TEST(NumericRounding, BelowTheFirstDigitNothingIsLeft) {
  const Record v = parsed("-0.00000001");
  round_var(v.get(), 2);
  EXPECT_EQ(v->ndigits, 0);
  const Record w = parsed("-5");
  round_var(w.get(), -5);
  EXPECT_EQ(shape(w.get()), "0 + -5: ");
}

TEST(NumericRounding, PowersByDigitsKept) {
  EXPECT_EQ(round_powers[0], 0);
  EXPECT_EQ(round_powers[1], 1000);
  EXPECT_EQ(round_powers[2], 100);
  EXPECT_EQ(round_powers[3], 10);
}

TEST(NumericToText, Forms) {
  EXPECT_EQ(printed(record(0, 0, 0, {}).get(), 0), "0");
  EXPECT_EQ(printed(record(0, 0, 0, {}).get(), 3), "0.000");
  EXPECT_EQ(printed(record(0, 0, 0, {}).get(), -3), "0");
  EXPECT_EQ(printed(record(2, 0, 0, {1}).get(), 0), "100000000");
  EXPECT_EQ(printed(record(1, 0x4000, 0, {12, 34}).get(), 0), "-120034");
  EXPECT_EQ(printed(record(-2, 0, 8, {12}).get(), 8), "0.00000012");
  EXPECT_EQ(printed(record(0, 0, 5, {7, 12, 3000}).get(), 5), "7.00123");
  EXPECT_EQ(printed(record(0, 0xC000, 0, {}).get(), 5), "NaN");
  EXPECT_EQ(printed(record(0, 0xD000, 0, {}).get(), 5), "NaN");
}

TEST(NumericToText, NegativeThatIsCutToNothingKeepsItsSign) {
  EXPECT_EQ(printed(record(-1, 0x4000, 1, {4000}).get(), 0), "-0");
}

TEST(NumericStrip, ZerosAtBothEnds) {
  const Record leading = record(2, 0x4000, 0, {0, 12, 34});
  strip_var(leading.get());
  EXPECT_EQ(shape(leading.get()), "1 - 0: 12 34 ");
  const Record trailing = record(2, 0, 0, {12, 0, 34, 0, 0});
  strip_var(trailing.get());
  EXPECT_EQ(shape(trailing.get()), "2 + 0: 12 0 34 ");
}

TEST(NumericStrip, NothingLeftIsAPositiveZero) {
  const Record v = record(2, 0x4000, 3, {0, 0});
  strip_var(v.get());
  EXPECT_EQ(shape(v.get()), "0 + 3: ");
}

TEST(NumericStrip, TwoDigitsMoveDown) {
  const Record v = record(3, 0, 0, {0, 1, 2, 3});
  strip_var(v.get());
  EXPECT_EQ(shape(v.get()), "2 + 0: 1 2 2 ");
}

TEST(NumericStrip, OneDigitMovesAlone) {
  const Record v = record(1, 0, 0, {0, 7});
  strip_var(v.get());
  EXPECT_EQ(shape(v.get()), "0 + 0: 7 ");
}

template <class T>
void expectInteger(const char *number, sword (*convert)(numeric *, T *), sword status,
                   sb8 expected) {
  SCOPED_TRACE(number);
  const Record v = parsed(number);
  T out = 77;
  EXPECT_EQ(convert(v.get(), &out), status);
  EXPECT_EQ(sb8{out}, status == 0 ? expected : 77);
}

TEST(NumericToInteger, OfEightBytes) {
  expectInteger("0", numericvar_to_int8, 0, 0);
  expectInteger("9223372036854775807", numericvar_to_int8, 0, INT64_MAX);
  expectInteger("9223372036854775808", numericvar_to_int8, 1, 0);
  expectInteger("-9223372036854775808", numericvar_to_int8, 0, INT64_MIN);
  expectInteger("-9223372036854775809", numericvar_to_int8, 1, 0);
  expectInteger("1e100", numericvar_to_int8, 1, 0);
  expectInteger("1.5", numericvar_to_int8, 0, 2);
  expectInteger("-1.5", numericvar_to_int8, 0, -2);
  expectInteger("0.4", numericvar_to_int8, 0, 0);
  expectInteger("-0.00001", numericvar_to_int8, 0, 0);
  expectInteger("120000", numericvar_to_int8, 0, 120000);
  expectInteger("NaN", numericvar_to_int8, 0, 0);
}

TEST(NumericToInteger, OfFewerBytes) {
  expectInteger("2147483647", numericvar_to_int4, 0, SB4MAXVAL);
  expectInteger("2147483648", numericvar_to_int4, 1, 0);
  expectInteger("-2147483648", numericvar_to_int4, 0, SB4MINVAL);
  expectInteger("32767", numericvar_to_int2, 0, 32767);
  expectInteger("-32769", numericvar_to_int2, 1, 0);
  expectInteger("127", numericvar_to_int1, 0, 127);
  expectInteger("128", numericvar_to_int1, 1, 0);
  expectInteger("-128", numericvar_to_int1, 0, -128);
}

TEST(NumericToInteger, RandomIntegersComeBack) {
  auto random = generator();
  for (int i = 0; i < 50000; ++i) {
    const auto value = static_cast<sb8>(random()) >> (random() % 64);
    expectInteger(std::to_string(value).c_str(), numericvar_to_int8, 0, value);
  }
}

TEST(NumericToFloat, DoublesAndFloats) {
  double wide = 0;
  float narrow = 0;
  EXPECT_EQ(numericvar_to_double(parsed("0.1").get(), &wide), 0);
  EXPECT_EQ(wide, 0.1);
  EXPECT_EQ(numericvar_to_float(parsed("0.5").get(), &narrow), 0);
  EXPECT_EQ(narrow, 0.5f);
  EXPECT_EQ(numericvar_to_float(parsed("0.1").get(), &narrow), 1);
  EXPECT_EQ(narrow, 0.1f);
  EXPECT_EQ(numericvar_to_double(parsed("1e400").get(), &wide), 1);
  EXPECT_EQ(numericvar_to_float(parsed("1e300").get(), &narrow), 1);
}

TEST(NumericToFloat, RandomDecimalsAreReadAsTheCLibraryDoes) {
  auto random = generator();
  for (int i = 0; i < 20000; ++i) {
    const Decimal decimal = randomDecimal(random);
    double value = 0;
    ASSERT_EQ(numericvar_to_double(parsed(decimal.plain()).get(), &value), 0);
    ASSERT_EQ(value, std::strtod(decimal.plain().c_str(), nullptr)) << decimal.plain();
  }
}

TEST(NumericOrder, NetworkOrderAndBack) {
  const Record v = record(3, 0x4000, 2, {1, 0x1234});
  ConvertNumericFromHostToNetOrder(v.get());
  const std::string expected = network<sb2>(2) + network<sb2>(3) + network<ub2>(0x4000) +
                               network<sb2>(2) + network<sb2>(1) + network<sb2>(0x1234);
  EXPECT_EQ(std::string(reinterpret_cast<char *>(v.get()), 12), expected);
  ConvertNumericFromNetToHostOrder(v.get());
  EXPECT_EQ(shape(v.get()), "3 - 2: 1 4660 ");
}

TEST(NumericField, OnlyWholeRecordsAreCopied) {
  const std::string whole = network<sb2>(1) + network<sb2>(0) + network<sb2>(0) +
                            network<sb2>(0) + network<sb2>(42);
  const auto copied = [](const std::string &bytes) {
    const auto exact = exactCopy(bytes);
    return Record(zev::copyNumericField(exact.get(), static_cast<sb4>(bytes.size())),
                  std::free);
  };
  ASSERT_TRUE(copied(whole));
  EXPECT_EQ(shape(copied(whole).get()), "0 + 0: 42 ");
  EXPECT_FALSE(copied(whole.substr(0, 9))) << "a digit is missing";
  EXPECT_FALSE(copied(whole.substr(0, 7))) << "the head is cut";
  EXPECT_FALSE(copied(""));
  EXPECT_FALSE(copied(network<sb2>(-1) + whole.substr(2))) << "a negative count";
  EXPECT_FALSE(copied(whole.substr(0, 8) + network<sb2>(10000))) << "no base-10000 digit";
  EXPECT_FALSE(copied(whole.substr(0, 2) + network<sb2>(SB2MAXVAL) + whole.substr(4)))
      << "no room for a carry";
}

}  // namespace
}  // namespace zevtest
