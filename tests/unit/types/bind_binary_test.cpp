#include "types_fixture.h"

namespace zevtest {
namespace {

class BindBinary : public testing::TestWithParam<BindCase> {
 protected:
  Session session;
};

TEST_P(BindBinary, Goes) {
  expectBind(session, GetParam());
}

const auto kBin = ConvertSQLT_BINToBYTEAOID;
const auto kLbi = ConvertSQLT_LBIToBYTEAOID;
const auto kVbi = ConvertSQLT_VBIToBYTEAOID;
const auto kLvb = ConvertSQLT_LVBToBYTEAOID;

std::string vbi(ub2 length, const std::string &bytes) {
  return native(length) + bytes;
}
std::string lvb(ub4 length, const std::string &bytes) {
  return native(length) + bytes;
}
const std::string kLongest(65533, 'x');

// clang-format off
INSTANTIATE_TEST_SUITE_P(Members, BindBinary, testing::Values(
    BindCase{"BinTakesAllBytes", kBin, "a\0b"s, 3, "a\0b"s, 1},
    BindCase{"BinOfNoBytesIsEmptyNotNull", kBin, "", 0, "", 1},
    BindCase{"LbiTakesAllBytes", kLbi, "a\0b"s, 3, "a\0b"s, 1},
    BindCase{"LbiOfTheLargestSizeIsRefused", kLbi, "a", 0x7FFFFFFF, "", 1, -1},
    BindCase{"VbiTakesItsLength", kVbi, vbi(2, "abc"), 5, "ab", 1},
    BindCase{"VbiOfLengthZeroIsRefused", kVbi, vbi(0, "abc"), 5, "", 1, -1},
    BindCase{"VbiOfTheLongestLength", kVbi, vbi(65533, kLongest), 65535, kLongest, 1},
    BindCase{"VbiAboveTheLongestLengthIsRefused", kVbi, vbi(65534, "abc"), 5, "", 1, -1},
    BindCase{"VbiOfTooLargeABufferIsRefused", kVbi, vbi(2, "abc"), 65536, "", 1, -1},
    BindCase{"LvbTakesItsLength", kLvb, lvb(2, "abc"), 7, "ab", 1},
    BindCase{"LvbOfLengthZeroIsRefused", kLvb, lvb(0, "abc"), 7, "", 1, -1},
    BindCase{"LvbAboveTheLongestLengthIsRefused", kLvb, lvb(0x7FFFFFFB, "abc"), 7, "", 1, -1},
    BindCase{"LvbOfTheLargestSizeIsRefused", kLvb, lvb(2, "abc"), 0x7FFFFFFF, "", 1, -1}),
    nameOf<BindCase>);
// clang-format on

TEST_F(BindBinary, MissingValueFails) {
  for (const auto convert : {kBin, kLbi, kVbi, kLvb}) {
    void *out = nullptr;
    ub4 length = 9;
    ub1 format = 9;
    EXPECT_EQ(convert(session.errhp, nullptr, 8, nullptr, &out, &length, &format), -1);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(format, 1);
    EXPECT_EQ(session.takeRecord(), kNoRecord);
  }
}

}  // namespace
}  // namespace zevtest
