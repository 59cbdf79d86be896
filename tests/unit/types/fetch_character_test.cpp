#include <cmath>

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
class FetchCharacterUtf16 : public testing::TestWithParam<FetchCase> {
 protected:
  Session session{OCI_UTF16};
};
class FetchCharacterUtf16Plain : public FetchCharacterUtf16 {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};

TEST_P(FetchCharacter, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchCharacterPlain, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchCharacterUtf16, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchCharacterUtf16Plain, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kText = TEXTOID, kBpchar = 1042, kVarchar = 1043;
const ub2 kChr = SQLT_CHR, kStr = SQLT_STR, kAfc = SQLT_AFC, kInt = SQLT_INT,
          kFlt = SQLT_FLT;
const std::string kLong(70000, 'x');

// clang-format off
INSTANTIATE_TEST_SUITE_P(Chr, FetchCharacter, testing::Values(
    FetchCase{"BlanksFillTheRest",    kText, kChr, 0, "abc", 5, "abc  ", 3},
    FetchCase{"BlankPaddedType",      kBpchar, kChr, 0, "abc", 5, "abc  ", 3},
    FetchCase{"VariableType",         kVarchar, kChr, 0, "abc", 5, "abc  ", 3},
    FetchCase{"AfcIsTheSame",         kVarchar, kAfc, 0, "abc", 5, "abc  ", 3},
    FetchCase{"ExactFit",             kText, kChr, 0, "abc", 3, "abc", 3},
    FetchCase{"TruncationIsRecorded", kText, kChr, 0, "abcdef", 3, "abc", 3, 3, 1406, 1},
    FetchCase{"TruncationWithoutIndicator", kText, kChr, 0, "abcdef", 3, "abc", 3, kNoIndicator, 1406, 1},
    FetchCase{"ManyMissingBytes",     kText, kChr, 0, kLong, 3, "xxx", 3, 65534, 1406, 1},
    FetchCase{"NoRoomWantsNothing",   kText, kChr, 0, "abc", 0, "", 0},
    FetchCase{"NoRoomComesBeforeNull", kText, kChr, 0, "", 0, "", 0},
    FetchCase{"EmptyTextIsNull",      kText, kChr, 0, "", 3, "~~~", 3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kText, kChr, 0, "", 3, "~~~", 3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"BinaryIsTheSameText",  kText, kChr, 1, "abc", 5, "abc  ", 3},
    FetchCase{"BinaryNulIsAByte",     kText, kChr, 1, "\0b"s, 3, "\0b "s, 2},
    FetchCase{"OtherFormat",          kText, kChr, 2, "abc", 5, "~~~~~", 5, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Str, FetchCharacter, testing::Values(
    FetchCase{"EndsWithANul",         kText, kStr, 0, "abc", 6, "abc\0~~"s, 3},
    FetchCase{"FitsWithItsNul",       kText, kStr, 0, "abc", 4, "abc\0"s, 3},
    FetchCase{"TruncationIsSilent",   kText, kStr, 0, "abcdef", 3, "ab\0"s, 6},
    FetchCase{"WithoutRoomForTheNul", kText, kStr, 0, "abc", 3, "ab\0"s, 3},
    FetchCase{"OneByteIsTheNul",      kText, kStr, 0, "abc", 1, "\0"s, 3},
    FetchCase{"NoRoomForTheNul",      kText, kStr, 0, "abc", 0, "", 0, 0, 1460, -1},
    FetchCase{"EmptyTextIsNull",      kText, kStr, 0, "", 3, "~~~", 3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kText, kStr, 0, "", 3, "~~~", 3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"BinaryIsTheSameText",  kText, kStr, 1, "abc", 4, "abc\0"s, 3},
    FetchCase{"OtherFormat",          kText, kStr, 2, "abc", 4, "~~~~", 4, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(EmptyText, FetchCharacterPlain, testing::Values(
    FetchCase{"ChrIsBlanks",          kText, kChr, 0, "", 3, "   ", 0},
    FetchCase{"StrIsANul",            kText, kStr, 0, "", 3, "\0~~"s, 0},
    FetchCase{"IntIsNullAllTheSame",  kText, kInt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405},
    FetchCase{"FltIsNullAllTheSame",  kText, kFlt, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

// Overflow goes by the server's length, before the text grows.
INSTANTIATE_TEST_SUITE_P(Members, FetchCharacterUtf16, testing::Values(
    FetchCase{"ChrFits",              kText, kChr, 0, "abc", 8, utf16("abc") + "  ", 6},
    FetchCase{"ChrGrowsBeyondTheTarget", kText, kChr, 0, "abc", 4, utf16("ab"), 4},
    FetchCase{"ChrTruncationIsRecorded", kText, kChr, 0, "abcdef", 4, utf16("ab"), 4, 2, 1406, 1},
    FetchCase{"ChrOfThreeByteCharacter", kText, kChr, 0, "\xE2\x82\xAC", 4, "\xAC\x20  ", 2},
    FetchCase{"StrFits",              kText, kStr, 0, "ab", 8, utf16("ab\0"s) + "~~", 2},
    FetchCase{"StrIsCut",             kText, kStr, 0, "abc", 4, utf16("a\0"s), 3},
    FetchCase{"StrOfOneByte",         kText, kStr, 0, "abc", 1, "a", 1, 0, 1460, -1},
    FetchCase{"IncompleteCharacter",  kText, kChr, 0, "a\xE2", 4, "~~~~", 4, 0, -1, -1},
    FetchCase{"IncompleteInAString",  kText, kStr, 0, "a\xE2", 4, "~~~~", 4, 0, -1, -1},
    FetchCase{"EmptyTextIsNull",      kText, kChr, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Members, FetchCharacterUtf16Plain, testing::Values(
    FetchCase{"EmptyChrIsBlankBytes", kText, kChr, 0, "", 3, "   ", 0},
    FetchCase{"EmptyStrIsAWideNul",   kText, kStr, 0, "", 3, "\0\0~"s, 0}),
    nameOf<FetchCase>);

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
// clang-format on

TEST_F(FetchCharacterUtf16, FailedConversionIsToldByItsKind) {
  char target[8];
  ub4 length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_CHR(session.errhp, "a\xE2", 2, 0, target, &length,
                                     nullptr, nullptr),
            -1);
  session.takeRecord();
  EXPECT_EQ(session.lastMessage,
            "An incomplete multibyte sequence has been encountered in the input");
  EXPECT_EQ(ConvertTEXTOIDToSQLT_CHR(session.errhp, "a\xFF", 2, 0, target, &length,
                                     nullptr, nullptr),
            -1);
  session.takeRecord();
  EXPECT_EQ(session.lastMessage,
            "An invalid multibyte sequence has been encountered in the input");
}

TEST_F(FetchCharacterPlain, MissingValueIsAnEmptyText) {
  char target[4] = {'~', '~', '~', '~'};
  ub4 length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_CHR(session.errhp, nullptr, 0, 0, target, &length,
                                     nullptr, nullptr),
            0);
  EXPECT_EQ(std::string(target, 4), "    ");
  EXPECT_EQ(length, 0u);
  length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_STR(session.errhp, nullptr, 0, 0, target, &length,
                                     nullptr, nullptr),
            0);
  EXPECT_STREQ(target, "");
  EXPECT_EQ(length, 0u);
}

TEST_F(FetchCharacter, WithoutEnvironmentTextPassesAsItStands) {
  session.errhp->parenth = nullptr;
  expectFetch(session, {"", kText, kStr, 0, "abc", 4, "abc\0"s, 3});
  expectFetch(session, {"", kText, kChr, 0, "", 2, "  ", 0});
  session.errhp->parenth = session.env;
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
