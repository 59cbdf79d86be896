/// NUMBER and VARNUM from and to the server's numeric.
#include <mpfr.h>

#include "decimal_text.h"
#include "types/number.h"
#include "types_fixture.h"

namespace zevtest {
namespace {

using Record = std::unique_ptr<numeric, decltype(&std::free)>;

const ub1 *bytesOf(const std::string &bytes) {
  return reinterpret_cast<const ub1 *>(bytes.data());
}

std::string varnumOf(const std::string &decimal) {
  ub1 out[zev::kVarnumSize] = {};
  EXPECT_EQ(ConvertStringToVARNUM(decimal.c_str(), out), 0);
  return {out, out + sizeof out};
}

std::string numberOf(const std::string &decimal) {
  ub1 out[zev::kVarnumSize] = {};
  EXPECT_EQ(ConvertStringToNUMBER(decimal.c_str(), out), 0);
  return {out, out + zev::kNumberSize};
}

Record recordOfVarnum(const std::string &varnum) {
  numeric *v = nullptr;
  const sword status = ConvertVARNUMBERToNumeric(bytesOf(varnum), &v);
  EXPECT_EQ(status, v ? 0 : -1);
  return {v, std::free};
}

Record recordOfNumber(const std::string &number) {
  numeric *v = nullptr;
  const sword status = ConvertNUMBERToNumeric(bytesOf(number), &v);
  EXPECT_EQ(status, v ? 0 : -1);
  return {v, std::free};
}

Record recordOfText(const std::string &decimal) {
  numeric *v = nullptr;
  EXPECT_EQ(ConvertStringToNumeric(decimal.c_str(), &v), 0);
  return {v, std::free};
}

std::string printed(numeric *v) {
  char *out = nullptr;
  EXPECT_EQ(ConvertNumericToString(v, &out, v->dscale), 0);
  const std::unique_ptr<char, decltype(&std::free)> owned(out, std::free);
  return out;
}

/// "weight sign dscale: digits".
std::string shape(const numeric *v) {
  if (!v) return "none";
  std::string out = std::to_string(v->weight) + (v->sign ? " - " : " + ") +
                    std::to_string(v->dscale) + ":";
  for (int i = 0; i < v->ndigits; ++i) out += " " + std::to_string(v->digits[i]);
  return out;
}

TEST(VarnumToNumeric, Shapes) {
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("0")).get()), "0 + 0:");
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("1")).get()), "0 + 1: 1");
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("-1")).get()), "0 - 1: 1");
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("123.45")).get()), "0 + 3: 123 4500");
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("12345678")).get()), "1 + 1: 1234 5678");
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("0.001")).get()), "-1 + 5: 10");
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("0.00001")).get()), "-2 + 7: 1000");
  EXPECT_EQ(shape(recordOfVarnum(varnumOf("1E100")).get()), "25 + 0: 1");
}

TEST(NumberToNumeric, ReadsItsPowerAsAnUnsignedByte) {
  EXPECT_EQ(shape(recordOfNumber("\x80").get()), "0 + 0:");
  EXPECT_EQ(shape(recordOfNumber(numberOf("1")).get()), "0 + 1: 1");
  EXPECT_EQ(shape(recordOfNumber(numberOf("-123.45")).get()), "0 - 3: 123 4500");
  EXPECT_EQ(shape(recordOfNumber(numberOf("0.5")).get()), "-1 + 3: 5000");
  // 0.001 becomes 10 times 10000 to the 63rd.
  EXPECT_EQ(shape(recordOfNumber(numberOf("0.001")).get()), "63 + 0: 10");
}

TEST(NumberToNumeric, RefusedAndIgnoredBytes) {
  const auto number = [](std::string bytes) {
    bytes.resize(zev::kNumberSize, '\0');
    return shape(recordOfNumber(bytes).get());
  };
  EXPECT_EQ(number("\xC1\x02\x66"), "none");  // a terminator in a positive number
  EXPECT_EQ(number("\x3E\x64\x01"), "none");  // 1 in a negative one
  EXPECT_EQ(number("\xC1\x02\x00\x03"s), "0 + 1: 1");
  EXPECT_EQ(number("\xC1\x02\x67\x03"), "0 + 1: 1");
  EXPECT_EQ(number("\x3E\x64\x66\x03"), "0 - 1: 1");
  EXPECT_EQ(number("\x3E\x64\xFF\x03"), "0 - 1: 1");
  numeric *v = nullptr;
  EXPECT_EQ(ConvertNUMBERToNumeric(bytesOf("\x80"), nullptr), -1);
  EXPECT_EQ(ConvertNUMBERToNumeric(nullptr, &v), -1);
  EXPECT_EQ(ConvertVARNUMBERToNumeric(nullptr, &v), -1);
  EXPECT_EQ(ConvertVARNUMBERToNumeric(bytesOf("\x01\x80"), nullptr), -1);
}

TEST(VarnumToNumeric, LengthEndsTheWalk) {
  EXPECT_EQ(shape(recordOfVarnum("\x02\xC1\x02\x33").get()), "0 + 1: 1");
  EXPECT_EQ(shape(recordOfVarnum("\x03\xC1\x02\x66").get()), "none");
  EXPECT_EQ(shape(recordOfVarnum("\x03\x3E\x64\x01").get()), "none");
  EXPECT_EQ(shape(recordOfVarnum("\x01\xC1").get()), "0 + 0:");
  EXPECT_EQ(shape(recordOfVarnum("\xFF\xC1" + std::string(20, '\x02')).get()),
            "0 + 39: 1 101 101 101 101 101 101 101 101 101 100");
  // Zeros in front, which no maker of numbers writes.
  EXPECT_EQ(shape(recordOfVarnum("\x06\xC3\x01\x01\x02\x03\x04").get()), "0 + 5: 1 203");
}

TEST(VarnumToNumeric, RandomDecimalsKeepTheirValue) {
  auto random = generator();
  for (int i = 0; i < 100000; ++i) {
    const std::string decimal = randomDecimal(random);
    const Record v = recordOfVarnum(varnumOf(decimal));
    ASSERT_TRUE(v && zev::isWellFormed(*v)) << decimal;
    ASSERT_EQ(decimalOf(printed(v.get())), cutToPairs(decimalOf(decimal), 20)) << decimal;
  }
}

TEST(NumberToNumeric, RandomDecimalsFromAHundredthOnKeepTheirValue) {
  auto random = generator();
  for (int i = 0; i < 100000; ++i) {
    const std::string decimal = randomDecimal(random);
    const Decimal value = decimalOf(decimal);
    if (value.digits.empty() || value.point < -1) continue;
    const Record v = recordOfNumber(numberOf(decimal));
    ASSERT_EQ(decimalOf(printed(v.get())), cutToPairs(value, 19)) << decimal;
  }
}

/// The value of a decimal text, exactly.
class Real {
 public:
  explicit Real(const std::string &text) {
    mpfr_init2(value_, 600);
    mpfr_set_str(value_, text.c_str(), 10, MPFR_RNDN);
  }
  ~Real() { mpfr_clear(value_); }
  Real(const Real &) = delete;
  Real &operator=(const Real &) = delete;
  bool operator==(const Real &other) const {
    return mpfr_equal_p(value_, other.value_) != 0;
  }

 private:
  mpfr_t value_;
};

TEST(VarnumToNumeric, AgreesWithArithmeticOnReals) {
  auto random = generator();
  for (int i = 0; i < 20000; ++i) {
    const std::string decimal = (random() % 2 ? "-" : "") +
                                std::to_string(random() >> 1) + "." +
                                randomDigits(random, 1 + random() % 19);
    const std::string varnum = varnumOf(decimal);
    char text[80];
    ASSERT_EQ(ConvertVARNUMToString(bytesOf(varnum), text), 0);
    ASSERT_EQ(Real(text), Real(decimal)) << decimal;
    ASSERT_EQ(Real(printed(recordOfVarnum(varnum).get())), Real(decimal)) << decimal;
  }
}

std::string varnumFrom(const Record &v) {
  ub1 out[zev::kVarnumSize] = {};
  if (ConvertNumericToVARNUMBER(v.get(), out) != 0) return "bad";
  ub1 number[zev::kVarnumSize] = {};
  EXPECT_EQ(ConvertNumericToNUMBER(v.get(), number), 0);
  EXPECT_EQ(std::memcmp(number, out + 1, out[0]), 0);
  return hex({out, out + out[0] + 1});
}

TEST(NumericToNumber, PowerComesFromScaleAndWeightAlone) {
  // dscale 2 and weight 0: the power of 100 is 1, as it should be.
  EXPECT_EQ(varnumFrom(recordOfText("1.50")), "03 C1 02 33");
  EXPECT_EQ(varnumFrom(recordOfText("-1.50")), "04 3E 64 33 66");
  EXPECT_EQ(varnumFrom(recordOfText("12.3")), "03 C1 0D 1F");
  // dscale 0: the power is 0, where it should be 1.
  EXPECT_EQ(varnumFrom(recordOfText("1")), "02 C0 02");
  // Trailing and leading zeros of the base-10000 digits go.
  EXPECT_EQ(varnumFrom(recordOfText("5000")), "02 C0 33");
  EXPECT_EQ(varnumFrom(recordOfText("0.0005")), "02 C3 06");
}

TEST(NumericToNumber, ZeroNotANumberAndNull) {
  EXPECT_EQ(varnumFrom(recordOfText("0")), "01 80");
  EXPECT_EQ(varnumFrom(recordOfText("0.00")), "01 80");
  EXPECT_EQ(varnumFrom(recordOfText("NaN")), "bad");
  ub1 out[zev::kVarnumSize];
  EXPECT_EQ(ConvertNumericToNUMBER(nullptr, out), -1);
  EXPECT_EQ(ConvertNumericToVARNUMBER(nullptr, out), -1);
}

Record recordOf(ub2 sign, const std::vector<sb2> &digits) {
  numeric *v = nullptr;
  EXPECT_EQ(alloc_var(&v, static_cast<int>(digits.size())), 0);
  v->weight = v->dscale = 0;
  v->sign = sign;
  std::copy(digits.begin(), digits.end(), v->digits);
  return {v, std::free};
}

TEST(NumericToNumber, TheServersInfinitiesAreNoNumbers) {
  EXPECT_EQ(varnumFrom(recordOf(0xD000, {})), "bad");
  EXPECT_EQ(varnumFrom(recordOf(0xF000, {})), "bad");
  EXPECT_EQ(varnumFrom(recordOf(0x8000, {1})), "bad");
}

TEST(NumericToNumber, ARecordOfZerosIsZero) {
  EXPECT_EQ(varnumFrom(recordOf(kNumericPositive, {0, 0})), "01 80");
  EXPECT_EQ(varnumFrom(recordOf(kNumericNegative, {0})), "01 80");
}

TEST(NumericToNumber, DigitsBeyondTheMantissaAreCut) {
  const std::string d60(60, '7');
  EXPECT_EQ(varnumFrom(recordOfText(d60)).size(), zev::kVarnumSize * 3 - 1);
  EXPECT_EQ(varnumFrom(recordOfText("-" + d60)).size(), zev::kVarnumSize * 3 - 1);
}

// Where scale and weight fit together the number is the record's.
TEST(NumericToNumber, RandomRecordsOfAFittingScale) {
  auto random = generator();
  for (int i = 0; i < 20000; ++i) {
    const std::string decimal = (random() % 2 ? "-" : "") +
                                std::to_string(1 + random() % 99) + "." +
                                randomDigits(random, 1) + std::to_string(random() % 10);
    const Record v = recordOfText(decimal);
    ub1 out[zev::kVarnumSize];
    ASSERT_EQ(ConvertNumericToVARNUMBER(v.get(), out), 0);
    char text[80];
    ASSERT_EQ(ConvertVARNUMToString(out, text), 0);
    ASSERT_EQ(decimalOf(text), decimalOf(decimal)) << decimal;
  }
}

class NumberCells : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

TEST_P(NumberCells, Arrive) {
  expectFetch(session, GetParam());
}

const Oid kNumeric = NUMERICOID;
const ub2 kNum = SQLT_NUM, kVnu = SQLT_VNU;

/// `bytes` in a target of 22, whose rest is cleared.
std::string in22(const std::string &bytes) {
  return bytes + std::string(22 - bytes.size(), '\0');
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Numeric, NumberCells, testing::Values(
    FetchCase{"NumberFillsTheVarnumLayout", kNumeric, kNum, 0, "1.50", 22, in22("\x03\xC1\x02\x33"), 4},
    FetchCase{"Varnum",              kNumeric, kVnu, 0, "-123.45", 22, in22("\x05\x3D\x64\x4E\x38\x66"), 6},
    FetchCase{"Zero",                kNumeric, kVnu, 0, "0.00",  22, in22("\x01\x80"), 2},
    FetchCase{"EmptyIsZero",         kNumeric, kVnu, 0, "",      22, in22("\x01\x80"), 2},
    FetchCase{"EmptyWithoutRoomIsNull", kNumeric, kVnu, 0, "",   1, "\0"s, 0, -1},
    FetchCase{"NullWithoutIndicator", kNumeric, kVnu, 0, "",     1, "\0"s, 0, kNoIndicator, 1405, 1},
    FetchCase{"StaysInTheTarget",    kNumeric, kVnu, 0, "123456", 3, "\x04\xC3\x0D", 5},
    FetchCase{"BadText",             kNumeric, kVnu, 0, "NaN",   22, in22(""), 22, 0, 1722, -1},
    FetchCase{"Binary",              kNumeric, kVnu, 1, wireNumeric("1.50"), 22, in22("\x03\xC1\x02\x33"), 4},
    FetchCase{"BinaryTooShort",      kNumeric, kVnu, 1, "1234567", 22, in22(""), 22, 0, 1722, -1},
    FetchCase{"BinaryNotANumber",    kNumeric, kVnu, 1, wireNumeric("NaN"), 22, in22(""), 22, 0, 1722, -1},
    FetchCase{"OtherFormat",         kNumeric, kVnu, 2, "1",     22, in22(""), 22, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
// clang-format on

/// The member of no table.
struct NumberMember {
  Session session;
  char target[24];
  ub4 length = zev::kNumberSize;
  sb2 indicator = 77;
  ub2 returnCode = 0;

  sword fetch(const std::string &value, ub1 format, bool hasIndicator = true) {
    std::memset(target, '~', sizeof target);
    return ConvertNUMERICOIDToSQLT_NUM(
        session.errhp, value.c_str(), static_cast<sb4>(value.size()), format, target,
        &length, hasIndicator ? &indicator : nullptr, &returnCode);
  }
};

TEST(NumericAsNumber, HasNoLengthByte) {
  NumberMember member;
  EXPECT_EQ(member.fetch("1.50", 0), 0);
  EXPECT_EQ(std::string(member.target, 22), "\xC1\x02\x33" + std::string(18, '\0') + "~");
  EXPECT_EQ(member.length, 21u);
  EXPECT_EQ(member.indicator, 0);
  EXPECT_EQ(member.fetch(wireNumeric("1.50"), 1), 0);
  EXPECT_EQ(std::string(member.target, 3), "\xC1\x02\x33");
}

TEST(NumericAsNumber, Refusals) {
  NumberMember member;
  EXPECT_EQ(member.fetch("abc", 0), -1);
  EXPECT_EQ(member.session.takeRecord(), 1722);
  EXPECT_EQ(member.fetch("1", 2), -1);
  EXPECT_EQ(member.fetch("1234567", 1), -1);
  member.session.takeRecord();
  member.length = 20;
  EXPECT_EQ(member.fetch("1", 0), -1);
  EXPECT_EQ(member.session.takeRecord(), kNoRecord);
}

TEST(NumericAsNumber, EmptyIsNull) {
  NumberMember member;
  EXPECT_EQ(member.fetch("", 0), 0);
  EXPECT_EQ(member.indicator, -1);
  EXPECT_EQ(member.returnCode, 1405);
  EXPECT_EQ(member.length, 0u);
  member.length = 21;
  EXPECT_EQ(member.fetch("", 0, false), 1);
  EXPECT_EQ(member.session.takeRecord(), 1405);
}

class NumberBinds : public testing::TestWithParam<BindCase> {
 protected:
  Session session;
};

TEST_P(NumberBinds, Arrive) {
  expectBind(session, GetParam());
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Numeric, NumberBinds, testing::Values(
    BindCase{"Number",              ConvertSQLT_NUMToNUMERICOID, numberOf("1.5"), 21, network<sb2>(2) + network<sb2>(0) + network<sb2>(0) + network<sb2>(3) + network<sb2>(1) + network<sb2>(5000), 1},
    BindCase{"NumberZero",          ConvertSQLT_NUMToNUMERICOID, numberOf("0"), 21, std::string(8, '\0'), 1},
    BindCase{"NumberNotFull",       ConvertSQLT_NUMToNUMERICOID, numberOf("1.5"), 20, "", 1, -1},
    BindCase{"NumberBad",           ConvertSQLT_NUMToNUMERICOID, "\xC1\x02\x66" + std::string(18, '\0'), 21, "", 1, -1},
    BindCase{"Varnum",              ConvertSQLT_VNUToNUMERICOID, varnumOf("-0.0001"), 22, network<sb2>(1) + network<sb2>(-1) + network<ub2>(0x4000) + network<sb2>(5) + network<sb2>(1), 1},
    BindCase{"VarnumTooLong",       ConvertSQLT_VNUToNUMERICOID, varnumOf("1"), 23, "", 1, -1},
    BindCase{"VarnumBad",           ConvertSQLT_VNUToNUMERICOID, "\x03\xC1\x02\x66", 4, "", 1, -1}),
    nameOf<BindCase>);
// clang-format on

}  // namespace
}  // namespace zevtest
