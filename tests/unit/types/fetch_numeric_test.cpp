#include <cmath>

#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchNumeric : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

TEST_P(FetchNumeric, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kNumeric = NUMERICOID;
const ub2 kInt = SQLT_INT, kFlt = SQLT_FLT;

// clang-format off
INSTANTIATE_TEST_SUITE_P(ToInteger, FetchNumeric, testing::Values(
    FetchCase{"OneByte",            kNumeric, kInt, 0, "300", 1, native<sb1>(44), 1},
    FetchCase{"TwoBytes",           kNumeric, kInt, 0, "-5", 2, native<sb2>(-5), 2},
    FetchCase{"ThreeBytesAreTwo",   kNumeric, kInt, 0, "-5", 3, native<sb2>(-5) + "~", 2},
    FetchCase{"FourBytes",          kNumeric, kInt, 0, "-70000", 4, native<sb4>(-70000), 4},
    FetchCase{"SevenBytesAreFour",  kNumeric, kInt, 0, "-70000", 7, native<sb4>(-70000) + "~~~", 4},
    FetchCase{"EightBytes",         kNumeric, kInt, 0, "4294967301", 8, native<sb8>(4294967301), 8},
    FetchCase{"NineBytesAreEight",  kNumeric, kInt, 0, "5", 9, native<sb8>(5) + "~", 8},
    FetchCase{"NoRoom",             kNumeric, kInt, 0, "5", 0, "", 0, 0, kNoRecord, -1},
    FetchCase{"FractionIsCut",      kNumeric, kInt, 0, "12.75", 4, native<sb4>(12), 4},
    FetchCase{"FractionHidesTheSign", kNumeric, kInt, 0, "-12.75", 4, native<sb4>(12), 4},
    FetchCase{"Null",               kNumeric, kInt, 0, "", 4, "~~~~", 0, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kNumeric, kInt, 0, "", 4, "~~~~", 0, kNoIndicator, 1405, 1, 1405},
    FetchCase{"OtherFormat",        kNumeric, kInt, 2, "5", 4, "~~~~", 4, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(BinaryToInteger, FetchNumeric, testing::Values(
    FetchCase{"OneByteReportsTwo",  kNumeric, kInt, 1, wireNumeric("-5"), 1, native<sb1>(-5), 2},
    FetchCase{"TwoBytes",           kNumeric, kInt, 1, wireNumeric("-300"), 2, native<sb2>(-300), 2},
    FetchCase{"FourBytes",          kNumeric, kInt, 1, wireNumeric("-70000"), 4, native<sb4>(-70000), 4},
    FetchCase{"EightBytes",         kNumeric, kInt, 1, wireNumeric("4294967301"), 8, native<sb8>(4294967301), 8},
    FetchCase{"FractionIsRounded",  kNumeric, kInt, 1, wireNumeric("-12.5"), 4, native<sb4>(-13), 4},
    FetchCase{"OutOfRangePasses",   kNumeric, kInt, 1, wireNumeric("70000"), 2, "~~", 2},
    FetchCase{"NoRecordClearsTheLength", kNumeric, kInt, 1, "1234567", 4, "~~~~", 0, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ToFloat, FetchNumeric, testing::Values(
    FetchCase{"FourBytes",          kNumeric, kFlt, 0, "0.5", 4, native(0.5f), 4},
    FetchCase{"FourBytesInexact",   kNumeric, kFlt, 0, "0.1", 4, native(0.1f), 4, 0, 1426, 1},
    FetchCase{"SevenBytesAreAFloat", kNumeric, kFlt, 0, "0.5", 7, native(0.5f) + "~~~", 4},
    FetchCase{"EightBytes",         kNumeric, kFlt, 0, "0.1", 8, native(0.1), 8},
    FetchCase{"NineBytesAreADouble", kNumeric, kFlt, 0, "0.1", 9, native(0.1) + "~", 8},
    FetchCase{"BeyondDouble",       kNumeric, kFlt, 0, "1" + std::string(400, '0'), 8, native(INFINITY * 1.0), 8, 0, 1426, 1},
    FetchCase{"BeyondFloat",        kNumeric, kFlt, 0, "1" + std::string(100, '0'), 4, native(INFINITY), 4, 0, 1426, 1},
    FetchCase{"TextLeftOver",       kNumeric, kFlt, 0, "1.5x", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"NoRoom",             kNumeric, kFlt, 0, "0.5", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"Null",               kNumeric, kFlt, 0, "", 8, "~~~~~~~~", 0, -1, kNoRecord, 0, 1405},
    FetchCase{"Binary",             kNumeric, kFlt, 1, wireNumeric("-12.5"), 8, native(-12.5), 8},
    FetchCase{"BinaryInexact",      kNumeric, kFlt, 1, wireNumeric("0.1"), 4, native(0.1f), 4, 0, 1426, 1},
    FetchCase{"BinaryCut",          kNumeric, kFlt, 1, "1234567", 8, "~~~~~~~~", 8, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",        kNumeric, kFlt, 2, "5", 8, "~~~~~~~~", 8, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchNumeric, AnOldRangeErrorDoesNotCountAndNoneIsLeft) {
  double number = 0;
  ub4 length = sizeof number;
  errno = ERANGE;
  EXPECT_EQ(ConvertNUMERICOIDToSQLT_FLT(session.errhp, "1.5", 3, 0, &number, &length,
                                        nullptr, nullptr),
            0);
  errno = 0;
  EXPECT_EQ(ConvertNUMERICOIDToSQLT_FLT(session.errhp, "1e-400", 6, 0, &number, &length,
                                        nullptr, nullptr),
            1);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(session.takeRecord(), 1426);
}

TEST_F(FetchNumeric, RandomIntegersArriveInBothFormats) {
  auto random = generator();
  for (int i = 0; i < 20000; ++i) {
    const auto wide = static_cast<sb8>(random()) >> (random() % 64);
    const std::string number = std::to_string(wide);
    expectFetch(session, {"text", kNumeric, kInt, 0, number, 8, native(wide), 8});
    expectFetch(session,
                {"binary", kNumeric, kInt, 1, wireNumeric(number), 8, native(wide), 8});
    expectFetch(session, {"float", kNumeric, kFlt, 1, wireNumeric(number), 8,
                          native(static_cast<double>(wide)), 8});
  }
}

}  // namespace
}  // namespace zevtest
