#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchInteger : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

TEST_P(FetchInteger, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kInt2 = INT2OID, kInt4 = INT4OID, kInt8 = INT8OID;
const ub2 kInt = SQLT_INT, kUin = SQLT_UIN, kFlt = SQLT_FLT, kBfloat = SQLT_BFLOAT,
          kBdouble = SQLT_BDOUBLE;

// clang-format off
INSTANTIATE_TEST_SUITE_P(Int2, FetchInteger, testing::Values(
    FetchCase{"OneByte",            kInt2, kInt, 0, "-5", 1, native<sb1>(-5), 1},
    FetchCase{"OneByteTooSmall",    kInt2, kInt, 0, "300", 1, native<sb1>(44), 1, 0, 22053, -1},
    FetchCase{"TwoBytes",           kInt2, kInt, 0, "-300", 2, native<sb2>(-300), 2},
    FetchCase{"FourBytes",          kInt2, kInt, 0, "-300", 4, native<sb4>(-300), 4},
    FetchCase{"EightBytes",         kInt2, kInt, 0, "-300", 8, native<sb8>(-300), 8},
    FetchCase{"OtherSize",          kInt2, kInt, 0, "5", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"BeyondSixteenBits",  kInt2, kInt, 0, "32768", 4, "~~~~", 4, 0, 22053, -1},
    FetchCase{"LowestShort",        kInt2, kInt, 0, "-32768", 2, native<sb2>(-32768), 2},
    FetchCase{"HighEdge",           kInt2, kInt, 0, "2147483647", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"LowEdge",            kInt2, kInt, 0, "-2147483648", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"UnsignedEdge",       kInt2, kInt, 0, "2147483648", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"BeyondAllBits",      kInt2, kInt, 0, "99999999999999999999", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"WhiteSpaceAndTail",  kInt2, kInt, 0, " 12abc", 4, native<sb4>(12), 4},
    FetchCase{"NoNumberIsZero",     kInt2, kInt, 0, "abc", 4, native<sb4>(0), 4},
    FetchCase{"Binary",             kInt2, kInt, 1, network<sb2>(-300), 4, native<sb4>(-300), 4},
    FetchCase{"BinaryIntoOneByte",  kInt2, kInt, 1, network<sb2>(300), 1, native<sb1>(44), 1, 0, 22053, -1},
    FetchCase{"BinaryTooShort",     kInt2, kInt, 1, "\x01", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"OtherFormatIsZero",  kInt2, kInt, 2, "5", 4, native<sb4>(0), 4},
    FetchCase{"Null",               kInt2, kInt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kInt2, kInt, 0, "", 4, "~~~~", 4, kNoIndicator, 1405, 1, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int4, FetchInteger, testing::Values(
    FetchCase{"OneByte",            kInt4, kInt, 0, "-128", 1, native<sb1>(-128), 1},
    FetchCase{"OneByteTooSmall",    kInt4, kInt, 0, "128", 1, native<sb1>(-128), 1, 0, 22053, -1},
    FetchCase{"TwoBytes",           kInt4, kInt, 0, "32767", 2, native<sb2>(32767), 2},
    FetchCase{"TwoBytesTooSmall",   kInt4, kInt, 0, "65537", 2, native<sb2>(1), 2, 0, 22053, -1},
    FetchCase{"FourBytes",          kInt4, kInt, 0, "-70000", 4, native<sb4>(-70000), 4},
    FetchCase{"HighEdge",           kInt4, kInt, 0, "2147483647", 4, native<sb4>(2147483647), 4},
    FetchCase{"LowEdge",            kInt4, kInt, 0, "-2147483648", 4, native<sb4>(SB4MINVAL), 4},
    FetchCase{"EightBytes",         kInt4, kInt, 0, "-70000", 8, native<sb8>(-70000), 8},
    FetchCase{"OtherSizeIsIgnored", kInt4, kInt, 0, "5", 3, "~~~", 3},
    FetchCase{"BeyondAllBits",      kInt4, kInt, 0, "99999999999999999999", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"Binary",             kInt4, kInt, 1, network<sb4>(-70000), 8, native<sb8>(-70000), 8},
    FetchCase{"BinaryTooShort",     kInt4, kInt, 1, "\0\1\1"s, 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"OtherFormatIsZero",  kInt4, kInt, 2, "5", 4, native<sb4>(0), 4},
    FetchCase{"Null",               kInt4, kInt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int8, FetchInteger, testing::Values(
    FetchCase{"OneByte",            kInt8, kInt, 0, "127", 1, native<sb1>(127), 1},
    FetchCase{"OneByteTooSmall",    kInt8, kInt, 0, "-129", 1, native<sb1>(127), 1, 0, 22053, -1},
    FetchCase{"TwoBytes",           kInt8, kInt, 0, "-32768", 2, native<sb2>(-32768), 2},
    FetchCase{"TwoBytesTooSmall",   kInt8, kInt, 0, "32768", 2, native<sb2>(-32768), 2, 0, 22053, -1},
    FetchCase{"FourBytes",          kInt8, kInt, 0, "-70000", 4, native<sb4>(-70000), 4},
    FetchCase{"FourBytesTooSmall",  kInt8, kInt, 0, "4294967301", 4, native<sb4>(5), 4, 0, 22053, -1},
    FetchCase{"EightBytes",         kInt8, kInt, 0, "-9223372036854775808", 8, native<sb8>(INT64_MIN), 8},
    FetchCase{"OtherSize",          kInt8, kInt, 0, "5", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"FractionHidesTheSign", kInt8, kInt, 0, "-1.5", 8, native<sb8>(1), 8},
    FetchCase{"PlusEndsTheNumber",  kInt8, kInt, 0, "+5", 8, native<sb8>(0), 8},
    FetchCase{"Binary",             kInt8, kInt, 1, network<sb8>(-70000), 4, native<sb4>(-70000), 4},
    FetchCase{"BinaryTooShort",     kInt8, kInt, 1, "1234567", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"OtherFormatIsZero",  kInt8, kInt, 2, "5", 8, native<sb8>(0), 8},
    FetchCase{"Null",               kInt8, kInt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int2Unsigned, FetchInteger, testing::Values(
    FetchCase{"OneByte",            kInt2, kUin, 0, "200", 1, native<ub1>(200), 1},
    FetchCase{"OneByteTooSmall",    kInt2, kUin, 0, "300", 1, native<ub1>(44), 1, 0, 22053, -1},
    FetchCase{"TwoBytes",           kInt2, kUin, 0, "65535", 2, native<ub2>(65535), 2},
    FetchCase{"FourBytes",          kInt2, kUin, 0, "65535", 4, native<ub4>(65535), 4},
    FetchCase{"EightBytes",         kInt2, kUin, 0, "65535", 8, native<ub8>(65535), 8},
    FetchCase{"OtherSize",          kInt2, kUin, 0, "5", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"BeyondSixteenBits",  kInt2, kUin, 0, "65536", 4, "~~~~", 4, 0, 22053, -1},
    FetchCase{"Negative",           kInt2, kUin, 0, "-1", 4, "~~~~", 4, 0, 22053, -1},
    FetchCase{"HighEdge",           kInt2, kUin, 0, "2147483647", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"LowEdge",            kInt2, kUin, 0, "-2147483648", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"BeyondAllBits",      kInt2, kUin, 0, "99999999999999999999", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"BinaryIsUnsigned",   kInt2, kUin, 1, network<sb2>(-1), 4, native<ub4>(65535), 4},
    FetchCase{"BinaryTooShort",     kInt2, kUin, 1, "\x01", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"OtherFormatIsZero",  kInt2, kUin, 2, "5", 4, native<ub4>(0), 4},
    FetchCase{"Null",               kInt2, kUin, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int4Unsigned, FetchInteger, testing::Values(
    FetchCase{"NegativeIntoOneByte", kInt4, kUin, 0, "-5", 1, native<ub1>(251), 1, 0, 22053, -1},
    FetchCase{"OneByte",            kInt4, kUin, 0, "255", 1, native<ub1>(255), 1},
    FetchCase{"TwoBytesTooSmall",   kInt4, kUin, 0, "65537", 2, native<ub2>(1), 2, 0, 22053, -1},
    FetchCase{"FourBytesNegative",  kInt4, kUin, 0, "-5", 4, native<sb4>(-5), 4},
    FetchCase{"EightBytesZeroExtended", kInt4, kUin, 0, "-5", 8, native<ub8>(4294967291u), 8},
    FetchCase{"OtherSizeIsIgnored", kInt4, kUin, 0, "5", 3, "~~~", 3},
    FetchCase{"HighEdge",           kInt4, kUin, 0, "2147483647", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"LowEdge",            kInt4, kUin, 0, "-2147483648", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"BeyondAllBits",      kInt4, kUin, 0, "99999999999999999999", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"Binary",             kInt4, kUin, 1, network<sb4>(-5), 8, native<ub8>(4294967291u), 8},
    FetchCase{"OtherFormatIsZero",  kInt4, kUin, 2, "5", 4, native<ub4>(0), 4}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int8Unsigned, FetchInteger, testing::Values(
    FetchCase{"OneByte",            kInt8, kUin, 0, "255", 1, native<ub1>(255), 1},
    FetchCase{"OneByteTooSmall",    kInt8, kUin, 0, "-1", 1, native<ub1>(255), 1, 0, 22053, -1},
    FetchCase{"TwoBytesTooSmall",   kInt8, kUin, 0, "65536", 2, native<ub2>(0), 2, 0, 22053, -1},
    FetchCase{"FourBytes",          kInt8, kUin, 0, "4294967295", 4, native<ub4>(UB4MAXVAL), 4},
    FetchCase{"FourBytesTooSmall",  kInt8, kUin, 0, "4294967296", 4, native<ub4>(0), 4, 0, 22053, -1},
    FetchCase{"EightBytes",         kInt8, kUin, 0, "-1", 8, native<sb8>(-1), 8},
    FetchCase{"OtherSize",          kInt8, kUin, 0, "5", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"Binary",             kInt8, kUin, 1, network<sb8>(-1), 8, native<sb8>(-1), 8},
    FetchCase{"Null",               kInt8, kUin, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(FixedFloats, FetchInteger, testing::Values(
    FetchCase{"Int2Bfloat",         kInt2, kBfloat, 0, "-7", 6, native(-7.0f) + "~~", 4},
    FetchCase{"Int4Bfloat",         kInt4, kBfloat, 0, "7", 4, native(7.0f), 4},
    FetchCase{"Int8Bfloat",         kInt8, kBfloat, 0, "7", 9, native(7.0f) + "~~~~~", 4},
    FetchCase{"BfloatNoRoom",       kInt4, kBfloat, 0, "7", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"Int2Bdouble",        kInt2, kBdouble, 0, "-7", 9, native(-7.0) + "~", 8},
    FetchCase{"Int4Bdouble",        kInt4, kBdouble, 0, "7", 8, native(7.0), 8},
    FetchCase{"BdoubleNoRoom",      kInt4, kBdouble, 0, "7", 7, "~~~~~~~", 7, 0, kNoRecord, -1},
    FetchCase{"Int8Bdouble",        kInt8, kBdouble, 0, "7", 8, native(7.0), 8},
    FetchCase{"Int8BdoubleRaisesTheSize", kInt8, kBdouble, 0, "7", 4, native(7.0).substr(0, 4), 8},
    FetchCase{"Int8BdoubleNoRoom",  kInt8, kBdouble, 0, "7", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"FailureRestoresTheSize", kInt4, kBdouble, 1, network<sb4>(7), 10, "~~~~~~~~~~", 10, 0, kNoRecord, -1},
    FetchCase{"Null",               kInt4, kBdouble, 0, "", 10, "~~~~~~~~~~", 8, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int2Float, FetchInteger, testing::Values(
    FetchCase{"FourBytes",          kInt2, kFlt, 0, "-300", 4, native(-300.0f), 4},
    FetchCase{"EightBytes",         kInt2, kFlt, 0, "-300", 8, native(-300.0), 8},
    FetchCase{"LowSixteenBitsCount", kInt2, kFlt, 0, "70000", 8, native(4464.0), 8},
    FetchCase{"OtherSize",          kInt2, kFlt, 0, "5", 5, "~~~~~", 5, 0, kNoRecord, -1},
    FetchCase{"Binary",             kInt2, kFlt, 1, network<sb2>(-300), 8, native(-300.0), 8},
    FetchCase{"BinaryTooShort",     kInt2, kFlt, 1, "\x01", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",        kInt2, kFlt, 2, "5", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"Null",               kInt2, kFlt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int4Float, FetchInteger, testing::Values(
    FetchCase{"FourBytes",          kInt4, kFlt, 0, "-70000", 4, native(-70000.0f), 4},
    FetchCase{"EightBytes",         kInt4, kFlt, 0, "-70000", 8, native(-70000.0), 8},
    FetchCase{"LowThirtyTwoBitsCount", kInt4, kFlt, 0, "4294967301", 8, native(5.0), 8},
    FetchCase{"OtherSize",          kInt4, kFlt, 0, "5", 2, "~~", 2, 0, kNoRecord, -1},
    FetchCase{"BinaryOfItsOwnSizeFails", kInt4, kFlt, 1, network<sb4>(5), 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"BinaryOfEightBytes", kInt4, kFlt, 1, network<sb4>(5) + "1234", 8, native(5.0), 8},
    FetchCase{"Null",               kInt4, kFlt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int8Float, FetchInteger, testing::Values(
    FetchCase{"FourBytes",          kInt8, kFlt, 0, "-70000", 4, native(-70000.0f), 4},
    FetchCase{"EightBytes",         kInt8, kFlt, 0, "4294967301", 8, native(4294967301.0), 8},
    FetchCase{"OtherSize",          kInt8, kFlt, 0, "5", 9, "~~~~~~~~~", 9, 0, kNoRecord, -1},
    FetchCase{"Binary",             kInt8, kFlt, 1, network<sb8>(-5), 8, native(-5.0), 8},
    FetchCase{"BinaryTooShort",     kInt8, kFlt, 1, "1234", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"Null",               kInt8, kFlt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchInteger, AnOldRangeErrorCounts) {
  for (const auto convert : {ConvertINT2OIDToSQLT_INT, ConvertINT4OIDToSQLT_INT}) {
    sb4 number = 7;
    ub4 length = sizeof number;
    errno = ERANGE;
    EXPECT_EQ(convert(session.errhp, "5", 1, 0, &number, &length, nullptr, nullptr), -1);
    EXPECT_EQ(number, 7);
    errno = 0;
    EXPECT_EQ(convert(session.errhp, "5", 1, 0, &number, &length, nullptr, nullptr), 0);
    EXPECT_EQ(session.takeRecord(), kNoRecord);
  }
}

TEST_F(FetchInteger, MissingValueIsNull) {
  for (const auto convert :
       {ConvertINT2OIDToSQLT_INT, ConvertINT4OIDToSQLT_INT, ConvertINT8OIDToSQLT_INT,
        ConvertINT2OIDToSQLT_FLT, ConvertINT4OIDToSQLT_FLT, ConvertINT8OIDToSQLT_FLT}) {
    double target = 0;
    ub4 length = sizeof target;
    sb2 indicator = 0;
    EXPECT_EQ(
        convert(session.errhp, nullptr, 5, 1, &target, &length, &indicator, nullptr), 0);
    EXPECT_EQ(indicator, -1);
  }
}

TEST_F(FetchInteger, RandomIntegersArrive) {
  auto random = generator();
  for (int i = 0; i < 50000; ++i) {
    const auto wide = static_cast<sb8>(random()) >> (random() % 64);
    const auto four = static_cast<sb4>(wide);
    const auto two = static_cast<sb2>(wide);
    expectFetch(session, {"8", kInt8, kInt, 0, std::to_string(wide), 8, native(wide), 8});
    expectFetch(session, {"8b", kInt8, kInt, 1, network(wide), 8, native(wide), 8});
    expectFetch(session, {"4", kInt4, kInt, 0, std::to_string(four), 4, native(four), 4});
    expectFetch(session, {"4b", kInt4, kInt, 1, network(four), 4, native(four), 4});
    expectFetch(session, {"2", kInt2, kInt, 0, std::to_string(two), 2, native(two), 2});
    expectFetch(session, {"2b", kInt2, kInt, 1, network(two), 2, native(two), 2});
    expectFetch(session, {"f", kInt8, kFlt, 0, std::to_string(wide), 8,
                          native(static_cast<double>(wide)), 8});
  }
}

}  // namespace
}  // namespace zevtest
