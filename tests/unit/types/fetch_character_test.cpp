#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchCharacter : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};
/// The same while empty text and null differ.
class FetchCharacterPlain : public FetchCharacter {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};

TEST_P(FetchCharacter, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchCharacterPlain, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kText = TEXTOID, kBpchar = 1042, kVarchar = 1043;
const ub2 kInt = SQLT_INT, kUin = SQLT_UIN, kFlt = SQLT_FLT, kBfloat = SQLT_BFLOAT,
          kBdouble = SQLT_BDOUBLE, kNum = SQLT_NUM, kVnu = SQLT_VNU;

/// The whole of a NUMBER's room: 21 bytes, zero behind the number.
std::string number(const std::string &bytes) {
  return bytes + std::string(21 - bytes.size(), '\0');
}
/// Untouched bytes.
std::string room(std::size_t size) {
  return std::string(size, '~');
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Int, FetchCharacter, testing::Values(
    FetchCase{"OneByte",          kText, kInt, 0, "127", 1, native<sb1>(127), 1},
    FetchCase{"OneByteTooSmall",  kText, kInt, 0, "128", 1, native<sb1>(-128), 1, 0, 1426, 1},
    FetchCase{"TwoBytes",         kText, kInt, 0, "32767", 2, native<sb2>(32767), 2},
    FetchCase{"TwoBytesTooSmall", kText, kInt, 0, "65537", 2, native<sb2>(1), 2, 0, 1426, 1},
    FetchCase{"FourBytes",        kText, kInt, 0, "2147483646", 4, native<sb4>(2147483646), 4},
    FetchCase{"EightBytes",       kText, kInt, 0, "70000", 8, native<sb8>(70000), 8},
    FetchCase{"HighEdge",         kText, kInt, 0, "2147483647", 8, "~~~~~~~~", 8, 0, 1426, -1},
    FetchCase{"AboveTheEdge",     kText, kInt, 0, "2147483648", 8, "~~~~~~~~", 8, 0, 1426, -1},
    FetchCase{"BeyondAllBits",    kText, kInt, 0, "99999999999999999999", 8, "~~~~~~~~", 8, 0, 1426, -1},
    FetchCase{"OtherSize",        kText, kInt, 0, "5", 3, "~~~", 3, 0, 1460, -1},
    FetchCase{"TailIsIgnored",    kText, kInt, 0, "12.5", 4, native<sb4>(12), 4},
    FetchCase{"SignIsRefused",    kText, kInt, 0, "-5", 4, "~~~~", 4, 0, 1722, -1},
    FetchCase{"PlusIsRefused",    kText, kInt, 0, "+5", 4, "~~~~", 4, 0, 1722, -1},
    FetchCase{"WhiteSpaceIsRefused", kText, kInt, 0, " 5", 4, "~~~~", 4, 0, 1722, -1},
    FetchCase{"LettersAreRefused", kText, kInt, 0, "abc", 4, "~~~~", 4, 0, 1722, -1},
    FetchCase{"EmptyTextIsNull",  kText, kInt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kText, kInt, 0, "", 4, "~~~~", 4, kNoIndicator, 1405, 1, 1405},
    FetchCase{"OtherFormat",      kText, kInt, 2, "5", 4, "~~~~", 4, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Flt, FetchCharacter, testing::Values(
    FetchCase{"EightBytes",       kText, kFlt, 0, "0.1", 8, native(0.1), 8},
    FetchCase{"FourBytes",        kText, kFlt, 0, "-0.5", 4, native(-0.5f), 4},
    FetchCase{"FourBytesInexact", kText, kFlt, 0, "0.1", 4, native(0.1f), 4, 0, 1426, 1},
    FetchCase{"LeadingSpace",     kText, kFlt, 0, " 1.5", 8, native(1.5), 8},
    FetchCase{"Exponent",         kText, kFlt, 0, "1.5e3", 8, native(1500.0), 8},
    FetchCase{"BeyondDouble",     kText, kFlt, 0, "1e400", 8, "~~~~~~~~", 8, 0, 1426, -1},
    FetchCase{"Infinity",         kText, kFlt, 0, "-Infinity", 8, "~~~~~~~~", 8, 0, 1426, -1},
    FetchCase{"TooSmall",         kText, kFlt, 0, "1e-400", 8, "~~~~~~~~", 8, 0, 1426, -1},
    FetchCase{"Denormal",         kText, kFlt, 0, "1e-310", 8, "~~~~~~~~", 8, 0, 1426, -1},
    FetchCase{"TextLeftOver",     kText, kFlt, 0, "1.5x", 8, "~~~~~~~~", 8, 0, 1722, -1},
    FetchCase{"TrailingSpace",    kText, kFlt, 0, "1.5 ", 8, "~~~~~~~~", 8, 0, 1722, -1},
    FetchCase{"Comma",            kText, kFlt, 0, "1,5", 8, "~~~~~~~~", 8, 0, 1722, -1},
    FetchCase{"Letters",          kText, kFlt, 0, "abc", 8, "~~~~~~~~", 8, 0, 1722, -1},
    FetchCase{"OnlySpace",        kText, kFlt, 0, "  ", 8, "~~~~~~~~", 8, 0, 1722, -1},
    FetchCase{"OtherSize",        kText, kFlt, 0, "1.5", 6, "~~~~~~", 6, 0, 1460, -1},
    FetchCase{"EmptyTextIsNull",  kText, kFlt, 0, "", 8, "~~~~~~~~", 8, -1, kNoRecord, 0, 1405},
    FetchCase{"OtherFormat",      kText, kFlt, 2, "5", 8, "~~~~~~~~", 8, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(OfEachType, FetchCharacter, testing::Values(
    FetchCase{"IntOfBlankPadded", kBpchar, kInt, 0, "12  ", 4, native<sb4>(12), 4},
    FetchCase{"IntOfVariable",    kVarchar, kInt, 0, "12", 4, native<sb4>(12), 4},
    FetchCase{"UinOfBlankPadded", kBpchar, kUin, 0, "12  ", 4, native<ub4>(12), 4},
    FetchCase{"UinOfVariable",    kVarchar, kUin, 0, "12", 4, native<ub4>(12), 4},
    FetchCase{"FltOfBlankPadded", kBpchar, kFlt, 0, "1.5", 8, native(1.5), 8},
    FetchCase{"FltOfVariable",    kVarchar, kFlt, 0, "1.5", 8, native(1.5), 8},
    FetchCase{"BfloatOfVariable", kVarchar, kBfloat, 0, "1.5", 4, native(1.5f), 4},
    FetchCase{"BdoubleOfVariable", kVarchar, kBdouble, 0, "1.5", 8, native(1.5), 8},
    FetchCase{"BfloatOfBlankPadded", kBpchar, kBfloat, 0, "1.5", 4, native(1.5f), 4},
    FetchCase{"BdoubleOfBlankPadded", kBpchar, kBdouble, 0, "1.5", 8, native(1.5), 8},
    FetchCase{"NumOfBlankPadded", kBpchar, kNum, 0, "1 ", 21, number("\xC1\x02"), 21},
    FetchCase{"NumOfVariable",    kVarchar, kNum, 0, "1", 21, number("\xC1\x02"), 21},
    FetchCase{"VnuOfBlankPadded", kBpchar, kVnu, 0, "1 ", 22, "\x02\xC1\x02" + room(19), 3},
    FetchCase{"VnuOfVariable",    kVarchar, kVnu, 0, "1", 22, "\x02\xC1\x02" + room(19), 3}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Uin, FetchCharacter, testing::Values(
    FetchCase{"OneByte",          kText, kUin, 0, "255", 1, native<ub1>(255), 1},
    FetchCase{"OneByteTooSmall",  kText, kUin, 0, "257", 1, native<ub1>(1), 1, 0, 1426, 1},
    FetchCase{"TwoBytes",         kText, kUin, 0, "65535", 2, native<ub2>(65535), 2},
    FetchCase{"TwoBytesTooSmall", kText, kUin, 0, "65536", 2, native<ub2>(0), 2, 0, 1426, 1},
    FetchCase{"FourBytes",        kText, kUin, 0, "2147483646", 4, native<ub4>(2147483646), 4},
    FetchCase{"EightBytesAreRefused", kText, kUin, 0, "5", 8, room(8), 8, 0, 1460, -1},
    FetchCase{"OtherSize",        kText, kUin, 0, "5", 3, room(3), 3, 0, 1460, -1},
    FetchCase{"NoRoom",           kText, kUin, 0, "5", 0, "", 0, 0, 1460, -1},
    FetchCase{"HighEdge",         kText, kUin, 0, "2147483647", 4, room(4), 4, 0, 1426, -1},
    FetchCase{"AboveTheEdge",     kText, kUin, 0, "4294967295", 4, room(4), 4, 0, 1426, -1},
    FetchCase{"BeyondAllBits",    kText, kUin, 0, "99999999999999999999", 4, room(4), 4, 0, 1426, -1},
    FetchCase{"TailIsIgnored",    kText, kUin, 0, "12.5", 4, native<ub4>(12), 4},
    FetchCase{"SignIsRefused",    kText, kUin, 0, "-5", 4, room(4), 4, 0, 1722, -1},
    FetchCase{"WhiteSpaceIsRefused", kText, kUin, 0, " 5", 4, room(4), 4, 0, 1722, -1},
    FetchCase{"LettersAreRefused", kText, kUin, 0, "abc", 4, room(4), 4, 0, 1722, -1},
    FetchCase{"EmptyTextIsNull",  kText, kUin, 0, "", 4, room(4), 4, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kText, kUin, 0, "", 4, room(4), 4, kNoIndicator, 1405, 1, 1405},
    FetchCase{"BinaryIsTheSameText", kText, kUin, 1, "5", 4, native<ub4>(5), 4},
    FetchCase{"OtherFormat",      kText, kUin, 2, "5", 4, room(4), 4, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(FixedFloats, FetchCharacter, testing::Values(
    FetchCase{"BfloatTakesFourBytes", kText, kBfloat, 0, "1.5", 6, native(1.5f) + "~~", 4},
    FetchCase{"BfloatInexact",    kText, kBfloat, 0, "0.1", 4, native(0.1f), 4, 0, 1426, 1},
    FetchCase{"BfloatBelowFourBytes", kText, kBfloat, 0, "1.5", 3, room(3), 3, 0, kNoRecord, -1},
    FetchCase{"BfloatOfBadTextRestoresTheSize", kText, kBfloat, 0, "abc", 6, room(6), 6, 0, 1722, -1},
    FetchCase{"BfloatOfNull",     kText, kBfloat, 0, "", 6, room(6), 4, -1, kNoRecord, 0, 1405},
    FetchCase{"BdoubleTakesEightBytes", kText, kBdouble, 0, "0.1", 9, native(0.1) + "~", 8},
    FetchCase{"BdoubleBelowEightBytes", kText, kBdouble, 0, "1.5", 7, room(7), 7, 0, kNoRecord, -1},
    FetchCase{"BdoubleOfBadTextRestoresTheSize", kText, kBdouble, 0, "abc", 9, room(9), 9, 0, 1722, -1},
    FetchCase{"BdoubleBeyondDoubleRestoresTheSize", kText, kBdouble, 0, "1e999", 9, room(9), 9, 0, 1426, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Num, FetchCharacter, testing::Values(
    FetchCase{"ANumberFillsItsRoom", kText, kNum, 0, "123.45", 22, number("\xC2\x02\x18\x2E") + "~", 21},
    FetchCase{"Negative",         kText, kNum, 0, "-123.45", 21, number("\x3D\x64\x4E\x38\x66"), 21},
    FetchCase{"EmptyTextIsZero",  kText, kNum, 0, "", 21, number("\x80"), 21},
    FetchCase{"BlanksAreZero",    kText, kNum, 0, "  ", 21, number("\x80"), 21},
    FetchCase{"TailIsIgnored",    kText, kNum, 0, "12abc", 21, number("\xC1\x0D"), 21},
    FetchCase{"LettersAreRefused", kText, kNum, 0, "abc", 21, room(21), 21, 0, 1722, -1},
    FetchCase{"LettersWithoutIndicator", kText, kNum, 0, "abc", 21, room(21), 21, kNoIndicator, 1722, -1},
    FetchCase{"OneByteIsTooSmall", kText, kNum, 0, "1", 1, "~", 1, 0, 1406, -1},
    FetchCase{"NoRoomIsTooSmall", kText, kNum, 0, "1", 0, "", 0, 0, 1406, -1},
    FetchCase{"BinaryIsTheSameText", kText, kNum, 1, "1", 21, number("\xC1\x02"), 21},
    FetchCase{"OtherFormat",      kText, kNum, 2, "1", 21, room(21), 21, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Vnu, FetchCharacter, testing::Values(
    FetchCase{"CountStandsInFront", kText, kVnu, 0, "123.45", 22, "\x04\xC2\x02\x18\x2E" + room(17), 5},
    FetchCase{"Negative",         kText, kVnu, 0, "-123.45", 22, "\x05\x3D\x64\x4E\x38\x66" + room(16), 6},
    FetchCase{"Zero",             kText, kVnu, 0, "0", 22, "\x01\x80" + room(20), 2},
    FetchCase{"LongestNumber",    kText, kVnu, 0, std::string(39, '9'), 22,
              "\x15\xD4\x0A" + std::string(19, '\x64'), 22},
    FetchCase{"EmptyTextIsNull",  kText, kVnu, 0, "", 22, room(22), 0, -1},
    FetchCase{"NullWithoutIndicator", kText, kVnu, 0, "", 22, room(22), 0, kNoIndicator, 1405, 1},
    FetchCase{"TextOfANulIsNull", kText, kVnu, 0, "\0"s, 22, room(22), 0, -1},
    FetchCase{"OneByteIsTooSmall", kText, kVnu, 0, "1", 1, "~", 1, 0, 1459, -1},
    FetchCase{"SizeComesBeforeNull", kText, kVnu, 0, "", 1, "~", 1, 0, 1459, -1},
    FetchCase{"LettersAreRefused", kText, kVnu, 0, "abc", 22, room(22), 22, 0, 1722, -1},
    FetchCase{"OtherFormat",      kText, kVnu, 2, "1", 22, room(22), 22, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(NumbersOfEmptyText, FetchCharacterPlain, testing::Values(
    FetchCase{"IntIsNullAllTheSame", kText, kInt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405},
    FetchCase{"UinIsNullAllTheSame", kText, kUin, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405},
    FetchCase{"FltIsNullAllTheSame", kText, kFlt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405},
    FetchCase{"VnuIsNullAllTheSame", kText, kVnu, 0, "", 22, room(22), 0, -1},
    FetchCase{"NumIsZeroAllTheSame", kText, kNum, 0, "", 21, number("\x80"), 21}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchCharacter, NumNeedsATargetAndItsSize) {
  char target[21];
  ub4 length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_NUM(session.errhp, "1", 1, 0, target, nullptr, nullptr,
                                     nullptr),
            -1);
  EXPECT_EQ(ConvertTEXTOIDToSQLT_NUM(session.errhp, "1", 1, 0, nullptr, &length, nullptr,
                                     nullptr),
            -1);
  length = 0x80000000u;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_NUM(session.errhp, "1", 1, 0, target, &length, nullptr,
                                     nullptr),
            -1);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(FetchCharacter, NumOfAMissingValueIsNoNumber) {
  char target[21];
  ub4 length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_NUM(session.errhp, nullptr, 0, 0, target, &length,
                                     nullptr, nullptr),
            -1);
  EXPECT_EQ(session.takeRecord(), 1722);
}

TEST_F(FetchCharacter, ShortTargetsOfNumbersTakeTheWholeNumber) {
  expectDirectFetch(session, {"", kText, kNum, 0, "1", 2, number("\xC1\x02") + "~", 21});
  expectDirectFetch(session,
                    {"", kText, kVnu, 0, "123.45", 2, "\x04\xC2\x02\x18\x2E~", 5});
}

// What an earlier row left in the target is no part of the number.
TEST_F(FetchCharacter, VnuCountsItsOwnBytesOnly) {
  ub1 target[22];
  std::memset(target, 0x33, sizeof target);
  ub4 length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_VNU(session.errhp, "1", 1, 0, target, &length, nullptr,
                                     nullptr),
            0);
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(target[0], 2);
}

TEST_F(FetchCharacter, NumbersLeaveNoErrnoBehind) {
  double number = 0;
  ub4 length = sizeof number;
  errno = 0;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_FLT(session.errhp, "1e400", 5, 0, &number, &length,
                                     nullptr, nullptr),
            -1);
  EXPECT_EQ(ConvertTEXTOIDToSQLT_INT(session.errhp, "99999999999999999999", 20, 0,
                                     &number, &length, nullptr, nullptr),
            -1);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(session.takeRecord(), 1426);
}

}  // namespace
}  // namespace zevtest
