#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchText : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};
/// The same while empty text and null differ.
class FetchTextPlain : public FetchText {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};
class FetchTextUtf16 : public testing::TestWithParam<FetchCase> {
 protected:
  Session session{OCI_UTF16};
};
class FetchTextUtf16Plain : public FetchTextUtf16 {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};
/// What goes beyond the target: the rows of these give more bytes than the target has.
class FetchTextBeyond : public FetchText {};
class FetchTextUtf16Beyond : public FetchTextUtf16 {};

TEST_P(FetchText, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchTextPlain, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchTextUtf16, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchTextUtf16Plain, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchTextBeyond, Arrives) {
  expectDirectFetch(session, GetParam());
}
TEST_P(FetchTextUtf16Beyond, Arrives) {
  expectDirectFetch(session, GetParam());
}

const Oid kText = TEXTOID, kBpchar = 1042, kVarchar = 1043;
const ub2 kChr = SQLT_CHR, kStr = SQLT_STR, kAfc = SQLT_AFC, kAvc = SQLT_AVC,
          kLng = SQLT_LNG, kVcs = SQLT_VCS, kLvc = SQLT_LVC;
const std::string kLong(70000, 'x');

std::string vcs(std::size_t count, const std::string &bytes) {
  return native(static_cast<ub2>(count)) + bytes;
}
std::string lvc(std::size_t count, const std::string &bytes) {
  return native(static_cast<ub4>(count)) + bytes;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Chr, FetchText, testing::Values(
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

INSTANTIATE_TEST_SUITE_P(Str, FetchText, testing::Values(
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

INSTANTIATE_TEST_SUITE_P(Avc, FetchText, testing::Values(
    FetchCase{"NulEndsTheText",       kText, kAvc, 0, "abc", 6, "abc\0  "s, 4},
    FetchCase{"BlankPaddedType",      kBpchar, kAvc, 0, "abc", 6, "abc\0  "s, 4},
    FetchCase{"VariableType",         kVarchar, kAvc, 0, "abc", 6, "abc\0  "s, 4},
    FetchCase{"FitsWithItsNul",       kText, kAvc, 0, "abc", 4, "abc\0"s, 4},
    FetchCase{"NulTakesTheLastByteOfAFullTarget", kText, kAvc, 0, "abc", 3, "ab\0"s, 3},
    FetchCase{"TruncationIsRecorded", kText, kAvc, 0, "abcdef", 3, "ab\0"s, 3, 3, 1406, 1},
    FetchCase{"TruncationWithoutIndicator", kText, kAvc, 0, "abcdef", 3, "ab\0"s, 3, kNoIndicator, 1406, 1},
    FetchCase{"ManyMissingBytes",     kText, kAvc, 0, kLong, 3, "xx\0"s, 3, 65534, 1406, 1},
    FetchCase{"OneByteIsTheNul",      kText, kAvc, 0, "abc", 1, "\0"s, 1, 2, 1406, 1},
    FetchCase{"NoRoomWantsNothing",   kText, kAvc, 0, "abc", 0, "", 0},
    FetchCase{"NoRoomComesBeforeNull", kText, kAvc, 0, "", 0, "", 0},
    FetchCase{"EmptyTextIsNull",      kText, kAvc, 0, "", 3, "~~~", 3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kText, kAvc, 0, "", 3, "~~~", 3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"BinaryIsTheSameText",  kText, kAvc, 1, "abc", 5, "abc\0 "s, 4},
    FetchCase{"OtherFormat",          kText, kAvc, 2, "abc", 5, "~~~~~", 5, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Lng, FetchText, testing::Values(
    FetchCase{"RestStaysAsItWas",     kText, kLng, 0, "abc", 5, "abc~~", 3},
    FetchCase{"BlankPaddedType",      kBpchar, kLng, 0, "abc", 5, "abc~~", 3},
    FetchCase{"VariableType",         kVarchar, kLng, 0, "abc", 5, "abc~~", 3},
    FetchCase{"ExactFit",             kText, kLng, 0, "abc", 3, "abc", 3},
    FetchCase{"TruncationIsRecorded", kText, kLng, 0, "abcdef", 3, "abc", 3, 3, 1406, 1},
    FetchCase{"TruncationWithoutIndicator", kText, kLng, 0, "abcdef", 3, "abc", 3, kNoIndicator, 1406, 1},
    FetchCase{"ManyMissingBytes",     kText, kLng, 0, kLong, 3, "xxx", 3, 65534, 1406, 1},
    FetchCase{"NoRoomWantsNothing",   kText, kLng, 0, "abc", 0, "", 0},
    FetchCase{"EmptyTextIsNull",      kText, kLng, 0, "", 3, "~~~", 3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator", kText, kLng, 0, "", 3, "~~~", 3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"BinaryIsTheSameText",  kText, kLng, 1, "a\0b"s, 5, "a\0b~~"s, 3},
    FetchCase{"OtherFormat",          kText, kLng, 2, "abc", 5, "~~~~~", 5, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

// Two bytes of room less than the text and its count need are an overflow.
INSTANTIATE_TEST_SUITE_P(Vcs, FetchText, testing::Values(
    FetchCase{"CountStandsInFront",   kText, kVcs, 0, "abc", 10, vcs(3, "abc~~~~~"), 5},
    FetchCase{"BlankPaddedType",      kBpchar, kVcs, 0, "abc", 10, vcs(3, "abc~~~~~"), 5},
    FetchCase{"VariableType",         kVarchar, kVcs, 0, "abc", 10, vcs(3, "abc~~~~~"), 5},
    FetchCase{"ExactFit",             kText, kVcs, 0, "abc", 5, vcs(3, "abc"), 5},
    FetchCase{"WithoutIndicatorNothing", kText, kVcs, 0, "abc", 4, "~~~~", 4, kNoIndicator, kNoRecord, 1},
    FetchCase{"EmptyTextIsNullWithACountOfTwo", kText, kVcs, 0, "", 5, vcs(2, "~~~"), 2, -1},
    FetchCase{"NullWithoutIndicator", kText, kVcs, 0, "", 5, vcs(2, "~~~"), 2, kNoIndicator, 1405, 1},
    FetchCase{"TextOfANulIsNotNull",  kText, kVcs, 0, "\0"s, 5, vcs(1, "\0~~"s), 3},
    FetchCase{"BinaryIsTheSameText",  kText, kVcs, 1, "abc", 5, vcs(3, "abc"), 5},
    FetchCase{"OneByteIsRefused",     kText, kVcs, 0, "abc", 1, "~", 1, 0, kNoRecord, -1},
    FetchCase{"NoRoomIsRefused",      kText, kVcs, 0, "abc", 0, "", 0, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",          kText, kVcs, 2, "abc", 5, "~~~~~", 5, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Vcs, FetchTextBeyond, testing::Values(
    FetchCase{"WholeTextIsCopiedAndItsLengthTold", kText, kVcs, 0, "abc", 4, vcs(3, "abc"), 5, 3},
    FetchCase{"TwoBytesHoldTheCount", kText, kVcs, 0, "abc", 2, vcs(3, "abc"), 5, 3},
    FetchCase{"LongTextHasAShortCount", kText, kVcs, 0, kLong, 10, vcs(70000, kLong), 70002, 70000}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Vcs, FetchTextPlain, testing::Values(
    FetchCase{"VcsOfEmptyTextIsNullAllTheSame", kText, kVcs, 0, "", 5, vcs(2, "~~~"), 2, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Lvc, FetchText, testing::Values(
    FetchCase{"CountStandsInFront",   kText, kLvc, 0, "abc", 10, lvc(3, "abc~~~"), 7},
    FetchCase{"BlankPaddedType",      kBpchar, kLvc, 0, "abc", 10, lvc(3, "abc~~~"), 7},
    FetchCase{"VariableType",         kVarchar, kLvc, 0, "abc", 10, lvc(3, "abc~~~"), 7},
    FetchCase{"ExactFit",             kText, kLvc, 0, "abc", 7, lvc(3, "abc"), 7},
    FetchCase{"WithoutIndicatorNothing", kText, kLvc, 0, "abc", 6, "~~~~~~", 6, kNoIndicator, kNoRecord, 1},
    FetchCase{"EmptyTextIsNullWithACountOfTwo", kText, kLvc, 0, "", 6, vcs(2, "~~~~"), 2, -1},
    FetchCase{"NullWithoutIndicator", kText, kLvc, 0, "", 6, vcs(2, "~~~~"), 2, kNoIndicator, 1405, 1},
    FetchCase{"TextOfANulIsNotNull",  kText, kLvc, 0, "\0"s, 6, lvc(1, "\0~"s), 5},
    FetchCase{"BinaryIsTheSameText",  kText, kLvc, 1, "abc", 7, lvc(3, "abc"), 7},
    FetchCase{"ThreeBytesAreRefused", kText, kLvc, 0, "abc", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"NoRoomIsRefused",      kText, kLvc, 0, "abc", 0, "", 0, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",          kText, kLvc, 2, "abc", 7, "~~~~~~~", 7, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Lvc, FetchTextBeyond, testing::Values(
    FetchCase{"WholeTextIsCopiedAndMissingBytesTold", kText, kLvc, 0, "abcdef", 7, lvc(6, "abcdef"), 10, 3},
    FetchCase{"OneByteIsMissing",     kText, kLvc, 0, "abc", 6, lvc(3, "abc"), 7, 1},
    FetchCase{"MostMissingBytesThatAreCounted", kText, kLvc, 0, kLong.substr(0, 65541), 10,
              lvc(65541, kLong.substr(0, 65541)), 65545, 65535},
    FetchCase{"MoreMissingBytesThanFit", kText, kLvc, 0, kLong.substr(0, 65542), 10,
              lvc(65542, kLong.substr(0, 65542)), 65546, 65534}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Lvc, FetchTextPlain, testing::Values(
    FetchCase{"LvcOfEmptyTextIsNullAllTheSame", kText, kLvc, 0, "", 6, vcs(2, "~~~~"), 2, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(EmptyText, FetchTextPlain, testing::Values(
    FetchCase{"ChrIsBlanks",          kText, kChr, 0, "", 3, "   ", 0},
    FetchCase{"AfcIsBlanks",          kText, kAfc, 0, "", 3, "   ", 0},
    FetchCase{"AvcIsANulAndBlanks",   kText, kAvc, 0, "", 3, "\0  "s, 1},
    FetchCase{"LngIsNothing",         kText, kLng, 0, "", 3, "~~~", 0},
    FetchCase{"StrIsANul",            kText, kStr, 0, "", 3, "\0~~"s, 0},
    FetchCase{"TextOfANulIsAByte",    kText, kChr, 0, "\0"s, 3, "\0  "s, 1}),
    nameOf<FetchCase>);

// Overflow goes by the server's length, before the text grows.
INSTANTIATE_TEST_SUITE_P(Members, FetchTextUtf16, testing::Values(
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

INSTANTIATE_TEST_SUITE_P(Members, FetchTextUtf16Plain, testing::Values(
    FetchCase{"EmptyChrIsBlankBytes", kText, kChr, 0, "", 3, "   ", 0},
    FetchCase{"EmptyStrIsAWideNul",   kText, kStr, 0, "", 3, "\0\0~"s, 0}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Others, FetchTextUtf16, testing::Values(
    FetchCase{"AvcFits",              kText, kAvc, 0, "ab", 6, utf16("ab") + "\0 "s, 5},
    FetchCase{"AvcGrowsBeyondTheTarget", kText, kAvc, 0, "abc", 4, "a\0b\0"s, 4},
    FetchCase{"LngStaysInTheServersEncoding", kText, kLng, 0, "abc", 8, "abc~~~~~", 3},
    FetchCase{"VcsLengthIsTheServersAndCountTheProgramsOwn", kText, kVcs, 0, "abc", 8, vcs(6, utf16("abc")), 5},
    FetchCase{"LvcLengthIsTheProgramsOwn", kText, kLvc, 0, "abc", 12, lvc(6, utf16("abc")) + "~~", 10},
    FetchCase{"IncompleteInAvc",      kText, kAvc, 0, "a\xE2", 4, "~~~~", 4, 0, -1, -1},
    FetchCase{"IncompleteInVcs",      kText, kVcs, 0, "a\xE2", 8, "~~~~~~~~", 8, 0, -1, -1},
    FetchCase{"IncompleteInLvc",      kText, kLvc, 0, "a\xE2", 8, "~~~~~~~~", 8, 0, -1, -1}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Counted, FetchTextUtf16Beyond, testing::Values(
    FetchCase{"VcsFitsByTheServersLength", kText, kVcs, 0, "abc", 5, vcs(6, utf16("abc")), 5},
    FetchCase{"VcsOverflows",         kText, kVcs, 0, "abc", 4, vcs(6, utf16("abc")), 5, 3},
    FetchCase{"LvcFitsByTheServersLength", kText, kLvc, 0, "abc", 7, lvc(6, utf16("abc")), 10},
    FetchCase{"LvcOverflows",         kText, kLvc, 0, "abc", 6, lvc(6, utf16("abc")), 10, 1}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchTextUtf16, FailedConversionIsToldByItsKind) {
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

TEST_F(FetchTextPlain, MissingValueIsAnEmptyText) {
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

TEST_F(FetchText, ToldLengthOfAStringIsThatUpToItsFirstNul) {
  for (const std::size_t size : {3, 9, 20, 40, 64, 65, 200}) {
    std::string value(size, 'x');
    const auto deliver = [&] {
      std::string target(size + 1, '~');
      ub4 length = static_cast<ub4>(target.size());
      EXPECT_EQ(
          ConvertTEXTOIDToSQLT_STR(session.errhp, value.c_str(), static_cast<sb4>(size),
                                   0, target.data(), &length, nullptr, nullptr),
          0);
      EXPECT_EQ(target, value.substr(0, size) + value.c_str()[size]);
      return length;
    };
    EXPECT_EQ(deliver(), size);
    value[size - 2] = '\0';
    EXPECT_EQ(deliver(), size - 2);
    value.assign(size + 4, 'y');
    EXPECT_EQ(deliver(), size + 4) << "the text goes on behind its length";
  }
}

TEST_F(FetchText, WithoutEnvironmentTextPassesAsItStands) {
  session.errhp->parenth = nullptr;
  expectFetch(session, {"", kText, kStr, 0, "abc", 4, "abc\0"s, 3});
  expectFetch(session, {"", kText, kChr, 0, "", 2, "  ", 0});
  session.errhp->parenth = session.env;
}

TEST_F(FetchTextPlain, MissingValueOfTheOtherMembersIsAnEmptyText) {
  char target[4] = {'~', '~', '~', '~'};
  ub4 length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_LNG(session.errhp, nullptr, 0, 0, target, &length,
                                     nullptr, nullptr),
            0);
  EXPECT_EQ(std::string(target, 4), "~~~~");
  EXPECT_EQ(length, 0u);
  length = sizeof target;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_AVC(session.errhp, nullptr, 0, 0, target, &length,
                                     nullptr, nullptr),
            0);
  EXPECT_EQ(std::string(target, 4), "\0   "s);
  EXPECT_EQ(length, 1u);
}

class FetchTextIntoString : public testing::TestWithParam<StringFetchCase> {
 protected:
  Session session;
};
class FetchTextIntoStringPlain : public FetchTextIntoString {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};
class FetchTextIntoStringUtf16 : public testing::TestWithParam<StringFetchCase> {
 protected:
  Session session{OCI_UTF16};
};

TEST_P(FetchTextIntoString, Arrives) {
  expectStringFetch(session, GetParam());
}
TEST_P(FetchTextIntoStringPlain, Arrives) {
  expectStringFetch(session, GetParam());
}
TEST_P(FetchTextIntoStringUtf16, Arrives) {
  expectStringFetch(session, GetParam());
}

// clang-format off
//                  name                      oid   format value cap size text       length indicator ...
INSTANTIATE_TEST_SUITE_P(Vst, FetchTextIntoString, testing::Values(
    StringFetchCase{"NulEndsTheText",         kText, 0, "abc", 8, 6, "abc\0~~~"s, 3},
    StringFetchCase{"BlankPaddedType",        kBpchar, 0, "abc", 8, 6, "abc\0~~~"s, 3},
    StringFetchCase{"VariableType",           kVarchar, 0, "abc", 8, 6, "abc\0~~~"s, 3},
    StringFetchCase{"FitsWithItsNul",         kText, 0, "abc", 8, 4, "abc\0~"s, 3},
    StringFetchCase{"ExactSizeIsCutInSilence", kText, 0, "abc", 8, 3, "ab\0~"s, 2},
    StringFetchCase{"TruncationIsRecorded",   kText, 0, "abcdef", 8, 3, "ab\0~"s, 2, 3, 1406, 1},
    StringFetchCase{"TruncationWithoutIndicator", kText, 0, "abcdef", 8, 3, "ab\0~"s, 2, kNoIndicator, 1406, 1},
    StringFetchCase{"ManyMissingBytes",       kText, 0, kLong, 8, 3, "xx\0~"s, 2, 65534, 1406, 1},
    StringFetchCase{"NoSizeTakesNothing",     kText, 0, "abc", 8, 0, "~", 0, 3, 1406, 1},
    StringFetchCase{"LengthGoesToTheFirstNul", kText, 1, "a\0bc"s, 8, 6, "a\0bc\0~~"s, 1},
    StringFetchCase{"FourBytesAreEnoughForItsAddress", kText, 0, "abc", 4, 6, "abc\0~~~"s, 3},
    StringFetchCase{"ThreeBytesAreRefused",   kText, 0, "abc", 3, 6, "~~~~~~~", 9, 0, kNoRecord, -1},
    StringFetchCase{"EmptyTextIsNull",        kText, 0, "", 8, 6, "~~~~~~~", 9, -1, kNoRecord, 0, 1405},
    StringFetchCase{"NullWithoutIndicator",   kText, 0, "", 8, 6, "~~~~~~~", 9, kNoIndicator, 1405, 1, 1405},
    StringFetchCase{"OtherFormat",            kText, 2, "abc", 8, 6, "~~~~~~~", 9, 0, kNoRecord, -1}),
    nameOf<StringFetchCase>);
INSTANTIATE_TEST_SUITE_P(Vst, FetchTextIntoStringPlain, testing::Values(
    StringFetchCase{"EmptyTextIsEmpty",       kText, 0, "", 8, 6, "\0~~~~~~"s, 0}),
    nameOf<StringFetchCase>);
INSTANTIATE_TEST_SUITE_P(Vst, FetchTextIntoStringUtf16, testing::Values(
    StringFetchCase{"LengthGoesToTheFirstZeroByte", kText, 0, "ab", 8, 8, utf16("ab") + "\0~~~~"s, 1},
    StringFetchCase{"GrowsBeyondTheSize",     kText, 0, "abc", 8, 5, "a\0b\0\0~"s, 4},
    StringFetchCase{"OverflowGoesByTheServersLength", kText, 0, "abcdef", 8, 5, "a\0b\0\0~"s, 4, 1, 1406, 1},
    StringFetchCase{"IncompleteCharacter",    kText, 0, "a\xE2", 8, 6, "~~~~~~~", 9, 0, -1, -1}),
    nameOf<StringFetchCase>);
// clang-format on

TEST_F(FetchTextIntoString, MissingStringFails) {
  const OCIString *none = nullptr;
  ub4 length = sizeof none;
  EXPECT_EQ(ConvertTEXTOIDToSQLT_VST(session.errhp, "abc", 3, 0, &none, &length, nullptr,
                                     nullptr),
            -1);
}

}  // namespace
}  // namespace zevtest
