#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchNumberText : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

TEST_P(FetchNumberText, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kInt2 = INT2OID, kInt4 = INT4OID, kInt8 = INT8OID, kFloat8 = FLOAT8OID,
          kNumeric = NUMERICOID;
const ub2 kChr = SQLT_CHR, kStr = SQLT_STR;
const std::string k2000 = std::string(2000, '1'), k2001 = std::string(2001, '1');
const std::string k4000 = std::string(4000, '1'), k4001 = std::string(4001, '1');
const std::string k70000 = std::string(70000, '1');

std::string recordBytes(sb2 weight, ub2 sign, sb2 dscale, std::vector<sb2> digits) {
  std::string out = network(static_cast<sb2>(digits.size())) + network(weight) +
                    network(sign) + network(dscale);
  for (const sb2 digit : digits) out += network(digit);
  return out;
}
const std::string kMinus1234_5 = recordBytes(0, 0x4000, 1, {1234, 5000});

// clang-format off
//            name                          oid    type  format value  cap  target             length indicator ...
INSTANTIATE_TEST_SUITE_P(Int2Chr, FetchNumberText, testing::Values(
    FetchCase{"BlanksFillTheRest",          kInt2, kChr, 0, "123",    10, "123       ",       3},
    FetchCase{"ExactFitIsTheOverflowPath",  kInt2, kChr, 0, "123",     3, "123",              3, 0},
    FetchCase{"MissingBytesAreTold",        kInt2, kChr, 0, "12345",   3, "123",              3, 2},
    FetchCase{"WithoutIndicatorNothing",    kInt2, kChr, 0, "12345",   3, "~~~",              3, kNoIndicator, kNoRecord, 1},
    FetchCase{"ManyMissingBytes",           kInt2, kChr, 0, k70000,    3, "111",              3, 65534},
    FetchCase{"BinaryComesLastDigitFirst",  kInt2, kChr, 1, network<sb2>(-123), 6, "-321  ",   4},
    FetchCase{"BinaryZeroIsEmpty",          kInt2, kChr, 1, network<sb2>(0), 3, "   ",         0},
    FetchCase{"BinaryLowestIsASign",        kInt2, kChr, 1, network<sb2>(-32768), 3, "-  ",    1},
    FetchCase{"BinaryTooShort",             kInt2, kChr, 1, "\x01",    3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",                kInt2, kChr, 2, "123",     3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kInt2, kChr, 0, "",        3, "~~~",              3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator",       kInt2, kChr, 0, "",        3, "~~~",              3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"TextOfANulIsNull",           kInt2, kChr, 0, "\0"s,     3, "~~~",              3, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int4Chr, FetchNumberText, testing::Values(
    FetchCase{"BlanksFillTheRest",          kInt4, kChr, 0, "123",    10, "123       ",       3},
    FetchCase{"ExactFitIsAPlainCopy",       kInt4, kChr, 0, "123",     3, "123",              3, 0},
    FetchCase{"TruncationIsRecorded",       kInt4, kChr, 0, "12345",   3, "123",              3, 2, 1406, 0},
    FetchCase{"TruncationWithoutIndicator", kInt4, kChr, 0, "12345",   3, "123",              3, kNoIndicator, 1406, 0},
    FetchCase{"BinaryComesInOrder",         kInt4, kChr, 1, network<sb4>(-123), 6, "-123  ",   4},
    FetchCase{"BinaryTooShort",             kInt4, kChr, 1, "\0\0\1"s, 3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",                kInt4, kChr, 2, "123",     3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kInt4, kChr, 0, "",        3, "~~~",              3, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int8Chr, FetchNumberText, testing::Values(
    FetchCase{"BlanksFillTheRest",          kInt8, kChr, 0, "123",     5, "123  ",            3},
    FetchCase{"ExactFit",                   kInt8, kChr, 0, "123",     3, "123",              3},
    FetchCase{"LengthIsThatOfTheWholeText", kInt8, kChr, 0, "12345",   3, "123",              5},
    FetchCase{"BinaryComesLastDigitFirst",  kInt8, kChr, 1, network<sb8>(1234567890123), 15, "3210987654321  ", 13},
    FetchCase{"BinaryZeroIsEmpty",          kInt8, kChr, 1, network<sb8>(0), 2, "  ",          0},
    FetchCase{"BinaryTooShort",             kInt8, kChr, 1, "1234567", 3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kInt8, kChr, 0, "",        3, "~~~",              3, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Float8Chr, FetchNumberText, testing::Values(
    FetchCase{"BlanksFillTheRest",          kFloat8, kChr, 0, "1.5",   5, "1.5  ",            3},
    FetchCase{"ExactFit",                   kFloat8, kChr, 0, "1.5",   3, "1.5",              3},
    FetchCase{"TruncationIsRecorded",       kFloat8, kChr, 0, "12.345", 4, "12.3",            4, 2, 1406, 0},
    FetchCase{"TruncationWithoutIndicator", kFloat8, kChr, 0, "12.345", 4, "12.3",            4, kNoIndicator, 1406, 0},
    FetchCase{"ManyMissingBytes",           kFloat8, kChr, 0, k70000,  3, "111",              3, 65534, 1406, 0},
    FetchCase{"BinaryComesLastDigitFirst",  kFloat8, kChr, 1, network(12.25), 20, "21.000000000000052  ", 18},
    FetchCase{"BinaryWhole",                kFloat8, kChr, 1, network(7.0), 3, "7  ",          1},
    FetchCase{"BinaryThatCannotBePrinted",  kFloat8, kChr, 1, network(1e300), 3, "~~~",        3, 0, kNoRecord, -1},
    FetchCase{"BinaryOfFourBytes",          kFloat8, kChr, 1, "1234",  3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kFloat8, kChr, 0, "",      3, "~~~",              3, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(NumericChr, FetchNumberText, testing::Values(
    FetchCase{"BlanksFillTheRest",          kNumeric, kChr, 0, "1.50", 6, "1.50  ",           4},
    FetchCase{"ExactFit",                   kNumeric, kChr, 0, "1.50", 4, "1.50",             4},
    FetchCase{"TruncationIsSilent",         kNumeric, kChr, 0, "12.345", 4, "12.3",           4},
    FetchCase{"FourThousandCharacters",     kNumeric, kChr, 0, k4000, 4000, k4000,         4000},
    FetchCase{"MoreThanFourThousand",       kNumeric, kChr, 0, k4001, 4, "~~~~",              4, 0, kNoRecord, -1},
    FetchCase{"Binary",                     kNumeric, kChr, 1, kMinus1234_5, 9, "-1234.5  ",  7},
    FetchCase{"BinaryBelowEightBytes",      kNumeric, kChr, 1, "1234567", 3, "~~~",           3, 0, kNoRecord, -1},
    FetchCase{"BinaryWithoutItsDigits",     kNumeric, kChr, 1, kMinus1234_5.substr(0, 10), 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"BinaryNotANumber",           kNumeric, kChr, 1, recordBytes(0, 0xC000, 0, {}), 4, "NaN ", 3},
    FetchCase{"NullClearsTheLength",        kNumeric, kChr, 0, "",     3, "~~~",              0, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator",       kNumeric, kChr, 0, "",     3, "~~~",              0, kNoIndicator, 1405, 1, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int2Str, FetchNumberText, testing::Values(
    FetchCase{"EndsWithANul",               kInt2, kStr, 0, "123",     6, "123\0~~"s,         3},
    FetchCase{"FitsWithItsNul",             kInt2, kStr, 0, "123",     4, "123\0"s,           3},
    FetchCase{"WithoutRoomForTheNul",       kInt2, kStr, 0, "123",     3, "12\0"s,            3, 0},
    FetchCase{"MissingBytesAreTold",        kInt2, kStr, 0, "12345",   3, "12\0"s,            3, 2},
    FetchCase{"WithoutIndicatorNothing",    kInt2, kStr, 0, "12345",   3, "~~~",              3, kNoIndicator, kNoRecord, 1},
    FetchCase{"NoRoomAtAll",                kInt2, kStr, 0, "123",     0, "",                 0, 3},
    FetchCase{"TwoThousandCharacters",      kInt2, kStr, 0, k2000,  2001, k2000 + '\0',    2000},
    FetchCase{"MoreThanTwoThousand",        kInt2, kStr, 0, k2001,     4, "~~~~",             4, 0, kNoRecord, -1},
    FetchCase{"BinaryOfMoreThanTwoThousand", kInt2, kStr, 1, k2001,    4, "~~~~",             4, 0, kNoRecord, -1},
    FetchCase{"BinaryComesLastDigitFirst",  kInt2, kStr, 1, network<sb2>(120), 6, "021\0~~"s, 3},
    FetchCase{"EmptyTextIsNull",            kInt2, kStr, 0, "",        3, "~~~",              3, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

// A text without room ends one byte behind the target; the byte before that is not written.
INSTANTIATE_TEST_SUITE_P(Int4Str, FetchNumberText, testing::Values(
    FetchCase{"EndsWithANul",               kInt4, kStr, 0, "123",     6, "123\0~~"s,         3},
    FetchCase{"FitsWithItsNul",             kInt4, kStr, 0, "123",     4, "123\0"s,           3},
    FetchCase{"WithoutRoomForTheNul",       kInt4, kStr, 0, "123",     3, "12~\0"s,           3},
    FetchCase{"TruncationIsSilent",         kInt4, kStr, 0, "12345",   3, "12~\0"s,           3},
    FetchCase{"NoRoomAtAll",                kInt4, kStr, 0, "123",     0, "",                 0},
    FetchCase{"BinaryComesInOrder",         kInt4, kStr, 1, network<sb4>(-2147483647 - 1), 12, "-2147483648\0"s, 11},
    FetchCase{"BinaryZero",                 kInt4, kStr, 1, network<sb4>(0), 4, "0\0~~"s,      1},
    FetchCase{"EmptyTextIsNull",            kInt4, kStr, 0, "",        3, "~~~",              3, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int8Str, FetchNumberText, testing::Values(
    FetchCase{"EndsWithANul",               kInt8, kStr, 0, "123",     6, "123\0~~"s,         3},
    FetchCase{"WithoutRoomForTheNul",       kInt8, kStr, 0, "123",     3, "12~\0"s,           3},
    FetchCase{"TruncationIsSilent",         kInt8, kStr, 0, "12345",   3, "12~\0"s,           3},
    FetchCase{"BinaryComesLastDigitFirst",  kInt8, kStr, 1, network<sb8>(-120), 6, "-021\0~"s, 4},
    FetchCase{"BinaryZeroIsEmpty",          kInt8, kStr, 1, network<sb8>(0), 3, "\0~~"s,       0}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Float8Str, FetchNumberText, testing::Values(
    FetchCase{"EndsWithANul",               kFloat8, kStr, 0, "12.5",  6, "12.5\0~"s,         4},
    FetchCase{"FitsWithItsNul",             kFloat8, kStr, 0, "12.5",  5, "12.5\0"s,          4},
    FetchCase{"TruncationIsRecorded",       kFloat8, kStr, 0, "12.5",  4, "12.\0"s,           4, 1, 1406, 0},
    FetchCase{"TruncationWithoutIndicator", kFloat8, kStr, 0, "12.5",  4, "12.\0"s,           4, kNoIndicator, 1406, 0},
    FetchCase{"ShortTextFails",             kFloat8, kStr, 0, "1.5",   6, "~~~~~~",           6, 0, kNoRecord, -1},
    FetchCase{"EmptyTextFails",             kFloat8, kStr, 0, "",      6, "~~~~~~",           6, 0, kNoRecord, -1},
    FetchCase{"NoRoomAtAll",                kFloat8, kStr, 0, "12.5",  0, "",                 0, 0, kNoRecord, -1},
    FetchCase{"Binary",                     kFloat8, kStr, 1, network(-12.5), 6, "-21\0~~"s,  3}),
    nameOf<FetchCase>);

// A text as long as the target ends one byte behind it.
INSTANTIATE_TEST_SUITE_P(NumericStr, FetchNumberText, testing::Values(
    FetchCase{"EndsWithANul",               kNumeric, kStr, 0, "1.50", 6, "1.50\0~"s,         4},
    FetchCase{"AsLongAsTheTarget",          kNumeric, kStr, 0, "1.50", 4, "1.50\0"s,          4},
    FetchCase{"LongerThanTheTarget",        kNumeric, kStr, 0, "1.50", 3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"MoreThanFourThousand",       kNumeric, kStr, 0, k4001, 4, "~~~~",              4, 0, kNoRecord, -1},
    FetchCase{"Binary",                     kNumeric, kStr, 1, kMinus1234_5, 8, "-1234.5\0"s, 7},
    FetchCase{"BinaryLongerThanTheTarget",  kNumeric, kStr, 1, kMinus1234_5, 6, "~~~~~~",     6, 0, kNoRecord, -1},
    FetchCase{"BinaryBelowEightBytes",      kNumeric, kStr, 1, "1234567", 3, "~~~",           3, 0, kNoRecord, -1},
    FetchCase{"NullClearsTheLength",        kNumeric, kStr, 0, "",     3, "~~~",              0, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchNumberText, MissingValueIsNull) {
  for (const auto convert :
       {ConvertINT2OIDToSQLT_CHR, ConvertINT4OIDToSQLT_CHR, ConvertINT8OIDToSQLT_CHR,
        ConvertFLOAT8OIDToSQLT_CHR, ConvertNUMERICOIDToSQLT_CHR, ConvertINT2OIDToSQLT_STR,
        ConvertINT4OIDToSQLT_STR, ConvertINT8OIDToSQLT_STR, ConvertFLOAT8OIDToSQLT_STR,
        ConvertNUMERICOIDToSQLT_STR}) {
    char target[4];
    ub4 length = sizeof target;
    sb2 indicator = 0;
    ub2 code = 0;
    EXPECT_EQ(convert(session.errhp, nullptr, 5, 0, target, &length, &indicator, &code),
              0);
    EXPECT_EQ(indicator, -1);
    EXPECT_EQ(code, 1405);
    EXPECT_EQ(convert(session.errhp, nullptr, 5, 0, target, &length, nullptr, nullptr),
              1);
    EXPECT_EQ(session.takeRecord(), 1405);
  }
}

TEST_F(FetchNumberText, BinaryNumericsKeepTheFieldAsItWas) {
  const auto field = exactCopy(kMinus1234_5 + '\0');
  char target[16];
  for (int i = 0; i < 2; ++i) {
    ub4 length = sizeof target;
    EXPECT_EQ(ConvertNUMERICOIDToSQLT_STR(session.errhp, field.get(),
                                          static_cast<sb4>(kMinus1234_5.size()), 1,
                                          target, &length, nullptr, nullptr),
              0);
    EXPECT_STREQ(target, "-1234.5");
  }
}

TEST_F(FetchNumberText, RandomIntegersArriveAsTheyWere) {
  auto random = generator();
  for (int i = 0; i < 20000; ++i) {
    const std::string digits =
        std::to_string(static_cast<sb4>(random()) >> (random() % 32));
    const auto length = static_cast<ub4>(digits.size());
    for (const Oid oid : {kInt2, kInt4, kInt8, kNumeric}) {
      expectFetch(session, {"CHR", oid, kChr, 0, digits, 20,
                            digits + std::string(20 - digits.size(), ' '), length});
      expectFetch(session,
                  {"STR", oid, kStr, 0, digits, 20,
                   digits + '\0' + std::string(19 - digits.size(), '~'), length});
    }
  }
}

}  // namespace
}  // namespace zevtest
