/// Integers and floats as Oracle's numbers.
#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchNumber : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

TEST_P(FetchNumber, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kInt2 = INT2OID, kInt4 = INT4OID, kInt8 = INT8OID, kFloat4 = FLOAT4OID,
          kFloat8 = FLOAT8OID;
const ub2 kNum = SQLT_NUM, kVnu = SQLT_VNU;
const std::string k21 = std::string(21, '~');

/// `bytes` at the start of a target of `size` bytes.
std::string in(std::size_t size, const std::string &bytes) {
  return bytes + std::string(size - bytes.size(), '~');
}

/// A NUMBER that is shorter than its 21 bytes.
std::string whole(const std::string &number) {
  return number + std::string(21 - number.size(), '\0');
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(IntegersToNumber, FetchNumber, testing::Values(
    FetchCase{"Int2",                kInt2, kNum, 0, "-123",   21, whole("\x3D\x64\x4E\x66"), 21},
    FetchCase{"Int4",                kInt4, kNum, 0, "100",    21, whole("\xC2\x02"), 21},
    FetchCase{"Int8",                kInt8, kNum, 0, "0",      21, whole("\x80"), 21},
    FetchCase{"NoRoom",              kInt4, kNum, 0, "100",    20, std::string(20, '~'), 20, 0, kNoRecord, -1},
    FetchCase{"BadText",             kInt2, kNum, 0, "abc",    21, k21, 21, 0, kNoRecord, -1},
    FetchCase{"Int2BinaryIsTooShort", kInt2, kNum, 1, network<sb2>(123), 21, k21, 21, 0, kNoRecord, -1},
    FetchCase{"Int4BinaryIsTooShort", kInt4, kNum, 1, network<sb4>(123), 21, k21, 21, 0, kNoRecord, -1},
    FetchCase{"Int8BinaryIsReversed", kInt8, kNum, 1, network<sb8>(123), 21, whole("\xC2\x04\x16"), 21},
    FetchCase{"Int8BinaryZero",      kInt8, kNum, 1, network<sb8>(0), 21, whole("\x80"), 21},
    FetchCase{"OtherFormat",         kInt8, kNum, 2, "1",      21, k21, 21, 0, kNoRecord, -1},
    FetchCase{"Null",                kInt8, kNum, 0, "",       21, k21, 21, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kInt2, kNum, 0, "",      21, k21, 21, kNoIndicator, 1405, 1, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(IntegersToVarnum, FetchNumber, testing::Values(
    FetchCase{"Int2",                kInt2, kVnu, 0, "-123",   22, in(22, "\x04\x3D\x64\x4E\x66"), 5},
    FetchCase{"Int4",                kInt4, kVnu, 0, "100",    3, "\x02\xC2\x02", 3},
    FetchCase{"Int8Zero",            kInt8, kVnu, 0, "0",      3, "\x01\x80~", 2},
    FetchCase{"StaysInTheTarget",    kInt8, kVnu, 0, "12345678", 3, "\x05\xC4\x0D", 6},
    FetchCase{"NoRoom",              kInt4, kVnu, 0, "100",    2, "~~", 2, 0, kNoRecord, -1},
    FetchCase{"BadText",             kInt4, kVnu, 0, "abc",    22, in(22, ""), 22, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",         kInt4, kVnu, 2, "1",      22, in(22, ""), 22, 0, kNoRecord, -1},
    FetchCase{"Null",                kInt2, kVnu, 0, "",       22, in(22, ""), 22, -1, kNoRecord, 0, 1405},
    FetchCase{"BinaryInt4InItsOrder", kInt4, kVnu, 1, network<sb4>(1), 22, in(22, "\x05\xC4\x11\x4E\x49\x11"), 6},
    FetchCase{"BinaryInt2IsAByte",   kInt2, kVnu, 1, network<sb2>(300), 22, in(22, "\x02\xC1\x02"), 3},
    FetchCase{"BinaryInt8HasFifteenDigits", kInt8, kVnu, 1, network<sb8>(1), 22, in(22, "\x0A\xC9\x08\x15\x3A\x3C\x29\x26\x5D\x50\x01"), 11}),
    nameOf<FetchCase>);

// The length is the count in the first byte, which does not count itself.
INSTANTIATE_TEST_SUITE_P(Floats, FetchNumber, testing::Values(
    FetchCase{"Float4Number",        kFloat4, kNum, 0, "1.5",  21, whole("\xC1\x02\x33"), 21},
    FetchCase{"Float4Varnum",        kFloat4, kVnu, 0, "1.5",  22, in(22, "\x03\xC1\x02\x33"), 3},
    FetchCase{"Float4NoRoom",        kFloat4, kNum, 0, "1.5",  1, "~", 1, 0, kNoRecord, -1},
    FetchCase{"Float4StaysInTheTarget", kFloat4, kNum, 0, "1.5", 2, "\xC1\x02", 21},
    FetchCase{"Float4Binary",        kFloat4, kVnu, 1, network(12.0f), 22, in(22, "\x02\xC1\x16"), 2},
    FetchCase{"Float8ShortTextFails", kFloat8, kNum, 0, "1.5", 21, k21, 21, 0, kNoRecord, -1},
    FetchCase{"Float8LongText",      kFloat8, kNum, 0, "12.34567", 21, whole("\xC1\x0D\x23\x39\x47"), 21},
    FetchCase{"Float8Varnum",        kFloat8, kVnu, 0, "-12.34567", 22, in(22, "\x06\x3E\x59\x43\x2D\x1F\x66"), 6},
    FetchCase{"Float8ShortVarnum",   kFloat8, kVnu, 0, "1.5",  22, in(22, ""), 22, 0, kNoRecord, -1},
    FetchCase{"Float8NoRoom",        kFloat8, kVnu, 0, "12.34567", 1, "~", 1, 0, kNoRecord, -1},
    FetchCase{"Float8Exponent",      kFloat8, kVnu, 0, "-1.5e+20", 22, in(22, "\x04\x34\x64\x33\x66"), 4},
    FetchCase{"Float8Binary",        kFloat8, kNum, 1, network(12.0), 21, whole("\xC1\x16"), 21},
    FetchCase{"Float8BinaryBeyond",  kFloat8, kNum, 1, network(1e300), 21, k21, 21, 0, kNoRecord, -1},
    FetchCase{"Float8EmptyFails",    kFloat8, kNum, 0, "",     21, k21, 21, 0, kNoRecord, -1},
    FetchCase{"Float4EmptyIsNull",   kFloat4, kNum, 0, "",     21, k21, 21, -1, kNoRecord, 0, 1405},
    FetchCase{"BadText",             kFloat4, kVnu, 0, "NaN",  22, in(22, ""), 22, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchNumber, TargetsThatAreMissingAreRefused) {
  char target[32];
  ub4 length = sizeof target;
  for (const Oid oid : {Oid{TEXTOID}, kFloat4, Oid{NUMERICOID}}) {
    EXPECT_EQ(PQ2OCIType(session.errhp, oid, "1", 1, 0, kVnu, nullptr, &length, nullptr,
                         nullptr, 0),
              -1);
    EXPECT_EQ(PQ2OCIType(session.errhp, oid, "1", 1, 0, kVnu, target, nullptr, nullptr,
                         nullptr, 0),
              -1);
  }
}

}  // namespace
}  // namespace zevtest
