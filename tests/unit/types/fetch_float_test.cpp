#include <cmath>

#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchFloat : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

TEST_P(FetchFloat, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kFloat4 = FLOAT4OID, kFloat8 = FLOAT8OID;
const ub2 kInt = SQLT_INT, kUin = SQLT_UIN, kFlt = SQLT_FLT, kBfloat = SQLT_BFLOAT,
          kBdouble = SQLT_BDOUBLE;

/// A binary field that reads as `x` once its first four bytes are swapped.
std::string halfSwapped(double x) {
  std::string bytes = native(x);
  std::reverse(bytes.begin(), bytes.begin() + 4);
  return bytes;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(ToInteger, FetchFloat, testing::Values(
    FetchCase{"OneByte",            kFloat8, kInt, 0, "-5.9", 1, native<sb1>(-5), 1},
    FetchCase{"OneByteTooSmall",    kFloat8, kInt, 0, "300", 1, native<sb1>(44), 1, 0, 22054, 0},
    FetchCase{"TwoBytes",           kFloat8, kInt, 0, "300.5", 2, native<sb2>(300), 2},
    FetchCase{"TwoBytesTooSmall",   kFloat8, kInt, 0, "65537", 2, native<sb2>(1), 2, 0, 22054, 0},
    FetchCase{"FourBytes",          kFloat8, kInt, 0, "1e5", 4, native<sb4>(100000), 4},
    FetchCase{"FourBytesUnchecked", kFloat8, kInt, 0, "4294967301", 4, native<sb4>(5), 4},
    FetchCase{"EightBytes",         kFloat8, kInt, 0, "-4294967301", 8, native<sb8>(-4294967301), 8},
    FetchCase{"BeyondSixtyFourBits", kFloat8, kInt, 0, "1e300", 8, native<sb8>(INT64_MIN), 8},
    FetchCase{"NotANumber",         kFloat8, kInt, 0, "NaN", 8, native<sb8>(INT64_MIN), 8},
    FetchCase{"OtherSize",          kFloat8, kInt, 0, "5", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"TextLeftOver",       kFloat8, kInt, 0, "5x", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"BinarySwapsItsFirstHalf", kFloat8, kInt, 1, halfSwapped(-77.9), 8, native<sb8>(-77), 8},
    FetchCase{"BinaryTooShort",     kFloat8, kInt, 1, "1234567", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",        kFloat8, kInt, 2, "5", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"Null",               kFloat8, kInt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kFloat8, kInt, 0, "", 4, "~~~~", 4, kNoIndicator, 1405, 1, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ToFloat, FetchFloat, testing::Values(
    FetchCase{"FourBytes",          kFloat8, kFlt, 0, "0.1", 4, native(0.1f), 4},
    FetchCase{"BelowEightBytesIsAFloat", kFloat8, kFlt, 0, "0.1", 7, native(0.1f) + "~~~", 4},
    FetchCase{"EightBytes",         kFloat8, kFlt, 0, "0.1", 8, native(0.1), 8},
    FetchCase{"MoreThanEightBytes", kFloat8, kFlt, 0, "-1e300", 10, native(-1e300) + "~~", 8},
    FetchCase{"Infinity",           kFloat8, kFlt, 0, "-Infinity", 8, native(-INFINITY * 1.0), 8},
    FetchCase{"BelowFourBytes",     kFloat8, kFlt, 0, "0.1", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"NullComesBeforeTheSize", kFloat8, kFlt, 0, "", 3, "~~~", 3, -1, kNoRecord, 0, 1405},
    FetchCase{"TailIsIgnored",      kFloat8, kFlt, 0, "1.5x", 8, native(1.5), 8},
    FetchCase{"Binary",             kFloat8, kFlt, 1, network(-0.1), 8, native(-0.1), 8},
    FetchCase{"BinaryIntoFourBytes", kFloat8, kFlt, 1, network(-0.1), 4, native(-0.1f), 4},
    FetchCase{"BinaryTooShort",     kFloat8, kFlt, 1, "1234567", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",        kFloat8, kFlt, 2, "5", 8, "~~~~~~~~", 8, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ToUnsigned, FetchFloat, testing::Values(
    FetchCase{"OneByte",            kFloat8, kUin, 0, "255.9", 1, native<ub1>(255), 1},
    FetchCase{"OneByteNegative",    kFloat8, kUin, 0, "-5", 1, native<ub1>(251), 1, 0, 22054, 0},
    FetchCase{"TwoBytesTooSmall",   kFloat8, kUin, 0, "65536", 2, native<ub2>(0), 2, 0, 22054, 0},
    FetchCase{"FourBytes",          kFloat8, kUin, 0, "4294967295", 4, native<ub4>(UB4MAXVAL), 4},
    FetchCase{"FourBytesTooSmall",  kFloat8, kUin, 0, "4294967296", 4, native<ub4>(0), 4, 0, 22054, 0},
    FetchCase{"EightBytesUnchecked", kFloat8, kUin, 0, "-1", 8, native<sb8>(-1), 8},
    FetchCase{"OtherSize",          kFloat8, kUin, 0, "5", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"TextLeftOver",       kFloat4, kUin, 0, "5x", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"Float4Binary",       kFloat4, kUin, 1, network(77.9f), 4, native<ub4>(77), 4},
    FetchCase{"Null",               kFloat4, kUin, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Float4, FetchFloat, testing::Values(
    FetchCase{"OneByte",            kFloat4, kInt, 0, "-5.9", 1, native<sb1>(-5), 1},
    FetchCase{"OneByteTooSmall",    kFloat4, kInt, 0, "300", 1, native<sb1>(44), 1, 0, 22054, 0},
    FetchCase{"NarrowsToAFloat",    kFloat4, kInt, 0, "16777217", 4, native<sb4>(16777216), 4},
    FetchCase{"Binary",             kFloat4, kInt, 1, network(-77.9f), 8, native<sb8>(-77), 8},
    FetchCase{"BinaryTooShort",     kFloat4, kInt, 1, "123", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"FloatInFourBytes",   kFloat4, kFlt, 0, "0.1", 4, native(0.1f), 4},
    FetchCase{"FloatWidened",       kFloat4, kFlt, 0, "0.1", 8, native(static_cast<double>(0.1f)), 8},
    FetchCase{"FloatBinary",        kFloat4, kFlt, 1, network(-0.1f), 8, native(static_cast<double>(-0.1f)), 8},
    FetchCase{"FloatOtherFormat",   kFloat4, kFlt, 2, "1", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"SizeComesBeforeNull", kFloat4, kFlt, 0, "", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"Null",               kFloat4, kFlt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Fixed, FetchFloat, testing::Values(
    FetchCase{"Float4Bfloat",       kFloat4, kBfloat, 0, "0.5", 9, native(0.5f) + "~~~~~", 4},
    FetchCase{"Float8Bfloat",       kFloat8, kBfloat, 0, "0.1", 4, native(0.1f), 4},
    FetchCase{"Float4Bdouble",      kFloat4, kBdouble, 0, "0.5", 9, native(0.5) + "~", 8},
    FetchCase{"Float8Bdouble",      kFloat8, kBdouble, 0, "0.1", 8, native(0.1), 8},
    FetchCase{"AnySizeWillDo",      kFloat8, kBdouble, 0, "0.1", 3, native(0.1).substr(0, 3), 8},
    FetchCase{"FailureRestoresTheSize", kFloat8, kBdouble, 2, "0.1", 3, "~~~", 3, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchFloat, RandomDoublesArriveWhole) {
  auto random = generator();
  char number[40];
  for (int i = 0; i < 50000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (std::isnan(value)) continue;
    std::snprintf(number, sizeof number, "%.17g", value);
    expectFetch(session, {"text", kFloat8, kFlt, 0, number, 8, native(value), 8});
    expectFetch(session,
                {"binary", kFloat8, kFlt, 1, network(value), 8, native(value), 8});
  }
}

}  // namespace
}  // namespace zevtest
