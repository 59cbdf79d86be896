#include "types/numeric.h"
#include "types_fixture.h"

namespace zevtest {
namespace {

class BindNumber : public testing::TestWithParam<BindCase> {
 protected:
  Session session;
};

TEST_P(BindNumber, Goes) {
  expectBind(session, GetParam());
}

/// The wire form of a whole number of at most two base-10000 digits.
std::string numericBytes(sb2 weight, ub2 sign, std::vector<sb2> digits) {
  std::string out = network(static_cast<sb2>(digits.size())) + network(weight) +
                    network(sign) + network<sb2>(0);
  for (const sb2 digit : digits) out += network(digit);
  return out;
}

const auto kToChar = ConvertSQLT_INTToCHAROID;
const auto kToInt2 = ConvertSQLT_INTToINT2OID;
const auto kToInt4 = ConvertSQLT_INTToINT4OID;
const auto kToInt8 = ConvertSQLT_INTToINT8OID;
const auto kToNumeric = ConvertSQLT_INTToNUMERICOID;
const auto kToFloat4 = ConvertSQLT_FLTToFLOAT4OID;
const auto kToFloat8 = ConvertSQLT_FLTToFLOAT8OID;
const std::string kWide = native<sb8>(0x1122334455667788);

// clang-format off
INSTANTIATE_TEST_SUITE_P(Integers, BindNumber, testing::Values(
    BindCase{"OneByteToChar",    kToChar, native<sb1>(-3), 1, network<sb1>(-3), 1},
    BindCase{"TwoBytesToChar",   kToChar, native<sb2>(0x1234), 2, "\x34", 1},
    BindCase{"FourBytesToChar",  kToChar, native<sb4>(0x12345678), 4, "\x78", 1},
    BindCase{"EightBytesToChar", kToChar, kWide, 8, "\x88", 1},
    BindCase{"ThreeBytesToChar", kToChar, "\x01\x02\x03", 3, "\0"s, 1},
    BindCase{"OneByteToInt2",    kToInt2, native<sb1>(-3), 1, network<sb2>(-3), 1},
    BindCase{"TwoBytesToInt2",   kToInt2, native<sb2>(-300), 2, network<sb2>(-300), 1},
    BindCase{"FourBytesToInt2",  kToInt2, native<sb4>(0x12345678), 4, network<sb2>(0x5678), 1},
    BindCase{"EightBytesToInt2", kToInt2, kWide, 8, network<sb2>(0x7788), 1},
    BindCase{"ThreeBytesToInt2", kToInt2, "\x01\x02\x03", 3, network<sb2>(0), 1},
    BindCase{"OneByteToInt4",    kToInt4, native<sb1>(-3), 1, network<sb4>(-3), 1},
    BindCase{"TwoBytesToInt4",   kToInt4, native<sb2>(-300), 2, network<sb4>(-300), 1},
    BindCase{"FourBytesToInt4",  kToInt4, native<sb4>(-70000), 4, network<sb4>(-70000), 1},
    BindCase{"EightBytesToInt4", kToInt4, kWide, 8, network<sb4>(0x55667788), 1},
    BindCase{"ThreeBytesToInt4", kToInt4, "\x01\x02\x03", 3, network<sb4>(0), 1},
    BindCase{"OneByteToInt8",    kToInt8, native<sb1>(-3), 1, network<sb8>(-3), 1},
    BindCase{"TwoBytesToInt8",   kToInt8, native<sb2>(-300), 2, network<sb8>(-300), 1},
    BindCase{"FourBytesToInt8",  kToInt8, native<sb4>(-70000), 4, network<sb8>(-70000), 1},
    BindCase{"EightBytesToInt8", kToInt8, kWide, 8, network<sb8>(0x1122334455667788), 1},
    BindCase{"ThreeBytesToInt8", kToInt8, "\x01\x02\x03", 3, network<sb8>(0), 1},
    BindCase{"BeyondThirtyTwoBitsToInt8", kToInt8, native<sb8>(4294967301), 8, network<sb8>(4294967301), 1},
    BindCase{"UnsignedByteArrivesNegative", kToInt4, "\xC8", 1, network<sb4>(-56), 1},
    BindCase{"UnsignedByteArrivesNegativeInInt2", kToInt2, "\xC8", 1, network<sb2>(-56), 1},
    BindCase{"UnsignedByteArrivesNegativeInInt8", kToInt8, "\xC8", 1, network<sb8>(-56), 1},
    BindCase{"NoBytesToChar", kToChar, "", 0, "", 1, 0, kNoRecord, true},
    BindCase{"NoBytesToInt2", kToInt2, "", 0, "", 1, 0, kNoRecord, true},
    BindCase{"NoBytesToInt4", kToInt4, "", 0, "", 1, 0, kNoRecord, true},
    BindCase{"NoBytesToInt8", kToInt8, "", 0, "", 1, 0, kNoRecord, true}),
    nameOf<BindCase>);

INSTANTIATE_TEST_SUITE_P(IntegersToNumeric, BindNumber, testing::Values(
    BindCase{"OneByte",      kToNumeric, native<sb1>(-7), 1, numericBytes(0, 0x4000, {7}), 1},
    BindCase{"TwoBytes",     kToNumeric, native<sb2>(12345), 2, numericBytes(1, 0, {1, 2345}), 1},
    BindCase{"FourBytes",    kToNumeric, native<sb4>(-2147483647 - 1), 4,
             numericBytes(2, 0x4000, {21, 4748, 3648}), 1},
    BindCase{"EightBytesLoseTheirUpperHalf", kToNumeric, native<sb8>(4294967301), 8,
             numericBytes(0, 0, {5}), 1},
    BindCase{"ThreeBytesAreZero", kToNumeric, "\x01\x02\x03", 3, numericBytes(0, 0, {}), 1},
    BindCase{"TrailingZerosAreStripped", kToNumeric, native<sb4>(10000), 4, numericBytes(1, 0, {1}), 1},
    BindCase{"NoBytes", kToNumeric, "", 0, "", 1, 0, kNoRecord, true}),
    nameOf<BindCase>);

INSTANTIATE_TEST_SUITE_P(Floats, BindNumber, testing::Values(
    BindCase{"FourBytesToFloat4",  kToFloat4, native(1.5f), 4, network(1.5f), 1},
    BindCase{"OfEightBytesTheLowHalfGoes", kToFloat4, kWide, 8, network<sb4>(0x55667788), 1},
    BindCase{"ThreeBytesToFloat4", kToFloat4, "abc", 3, "", 1, -1},
    BindCase{"FourBytesToFloat8Widen", kToFloat8, native(1.5f), 4, network(1.5), 1},
    BindCase{"EightBytesToFloat8", kToFloat8, native(-0.1), 8, network(-0.1), 1},
    BindCase{"SixBytesToFloat8",   kToFloat8, "abcdef", 6, "", 1, -1},
    BindCase{"ThreeBytesToFloat8", kToFloat8, "abc", 3, "", 1, -1},
    BindCase{"NineBytesToFloat8",  kToFloat8, "abcdefghi", 9, "", 1, -1}),
    nameOf<BindCase>);
// clang-format on

TEST_F(BindNumber, MissingValueOfAnIntegerIsNoBuffer) {
  for (const auto convert : {kToChar, kToInt2, kToInt4, kToInt8, kToNumeric}) {
    int there = 0;
    void *out = &there;
    ub4 length = 9;
    ub1 format = 9;
    EXPECT_EQ(convert(session.errhp, nullptr, 4, nullptr, &out, &length, &format), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(format, 1);
  }
}

TEST_F(BindNumber, MissingValueOfAFloatFails) {
  for (const auto convert : {kToFloat4, kToFloat8}) {
    void *out = nullptr;
    ub4 length = 9;
    ub1 format = 9;
    EXPECT_EQ(convert(session.errhp, nullptr, 8, nullptr, &out, &length, &format), -1);
    EXPECT_EQ(out, nullptr);
  }
}

TEST_F(BindNumber, RandomIntegersArriveAsTheirLowBytes) {
  auto random = generator();
  for (int i = 0; i < 20000; ++i) {
    const auto value = static_cast<sb8>(random() >> (random() % 64));
    expectBind(session,
               {"INT4", kToInt4, native(value), 8, network(static_cast<sb4>(value)), 1});
    expectBind(session, {"INT8", kToInt8, native(value), 8, network(value), 1});
    const auto small = static_cast<sb2>(value);
    expectBind(session, {"INT2", kToInt8, native(small), 2, network<sb8>(small), 1});
  }
}

}  // namespace
}  // namespace zevtest
