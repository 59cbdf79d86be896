/// The single character into every target.
#include "types/number.h"
#include "types_fixture.h"
#include "zevoci/string_value.h"

namespace zevtest {
namespace {

class FetchChar : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

TEST_P(FetchChar, Arrives) {
  expectFetch(session, GetParam());
}

const Oid kChar = CHAROID;
const ub2 kChr = SQLT_CHR, kAfc = SQLT_AFC, kLng = SQLT_LNG, kAvc = SQLT_AVC,
          kStr = SQLT_STR, kVcs = SQLT_VCS, kLvc = SQLT_LVC, kNum = SQLT_NUM,
          kVnu = SQLT_VNU, kInt = SQLT_INT, kUin = SQLT_UIN, kFlt = SQLT_FLT,
          kBfloat = SQLT_BFLOAT, kBdouble = SQLT_BDOUBLE;

// clang-format off
INSTANTIATE_TEST_SUITE_P(ToCharacters, FetchChar, testing::Values(
    FetchCase{"ChrBlanks",          kChar, kChr, 0, "A", 4, "A   ", 1},
    FetchCase{"AfcBlanks",          kChar, kAfc, 0, "A", 4, "A   ", 1},
    FetchCase{"LngBlanks",          kChar, kLng, 0, "A", 4, "A   ", 1},
    FetchCase{"ChrNoRoom",          kChar, kChr, 0, "A", 0, "", 1},
    FetchCase{"ChrTakesTheFirst",   kChar, kChr, 0, "AB", 2, "A ", 1},
    FetchCase{"ChrOfAnyFormat",     kChar, kChr, 7, "A", 2, "A ", 1},
    FetchCase{"ChrNulIsNullInText", kChar, kChr, 0, "\0"s, 2, "~~", 2, -1, kNoRecord, 0, 1405},
    FetchCase{"ChrNulInBinary",     kChar, kChr, 1, "\0"s, 2, "\0 "s, 1},
    FetchCase{"ChrEmptyNoIndicator", kChar, kChr, 0, "", 2, "~~", 2, kNoIndicator, 1405, 1, 1405},
    FetchCase{"AvcNulBehind",       kChar, kAvc, 0, "A", 4, "A\0 ~"s, 1},
    FetchCase{"AvcTwoBytes",        kChar, kAvc, 0, "A", 2, "A\0"s, 1},
    FetchCase{"AvcOneByte",         kChar, kAvc, 0, "A", 1, "A", 1},
    FetchCase{"AvcNoRoom",          kChar, kAvc, 0, "A", 0, "", 1},
    FetchCase{"AvcEmptyIsNull",     kChar, kAvc, 0, "", 2, "~~", 1, -1, kNoRecord, 0, 1405},
    FetchCase{"StrNul",             kChar, kStr, 0, "A", 3, "A\0~"s, 1},
    FetchCase{"StrNoRoom",          kChar, kStr, 0, "A", 1, "~", 1, 0, kNoRecord, -1},
    FetchCase{"StrBinaryNul",       kChar, kStr, 1, "\0"s, 2, "\0\0"s, 1},
    FetchCase{"StrOtherFormat",     kChar, kStr, 2, "A", 2, "~~", 2, 0, kNoRecord, -1},
    FetchCase{"VcsKeepsTheSize",    kChar, kVcs, 0, "A", 5, native<ub2>(1) + "A~~", 5},
    FetchCase{"LvcKeepsTheSize",    kChar, kLvc, 0, "A", 6, native<ub4>(1) + "A~", 6},
    FetchCase{"VcsEmptyIsNull",     kChar, kVcs, 0, "", 3, "~~~", 3, -1, kNoRecord, 0, 1405},
    FetchCase{"LvcOtherFormat",     kChar, kLvc, 2, "A", 5, "~~~~~", 5, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ToNumbers, FetchChar, testing::Values(
    FetchCase{"Num",                kChar, kNum, 0, "7", 21, "\xC1\x08" + std::string(19, '\0'), 21},
    FetchCase{"NumWholeText",       kChar, kNum, 0, "75", 21, "\xC1\x4C" + std::string(19, '\0'), 21},
    FetchCase{"NumBinaryIsOne",     kChar, kNum, 1, "75", 21, "\xC1\x08" + std::string(19, '\0'), 21},
    FetchCase{"NumNoRoom",          kChar, kNum, 0, "7", 20, std::string(20, '~'), 20, 0, kNoRecord, -1},
    FetchCase{"NumBadText",         kChar, kNum, 0, "A", 21, std::string(21, '~'), 21, 0, kNoRecord, -1},
    FetchCase{"NumEmptyIsNull",     kChar, kNum, 0, "", 21, std::string(21, '~'), 21, -1, kNoRecord, 0, 1405},
    FetchCase{"VnuTellsTheLongest", kChar, kVnu, 0, "7", 4, "\x02\xC1\x08~", 21},
    FetchCase{"VnuBinaryIsOne",     kChar, kVnu, 1, "75", 4, "\x02\xC1\x08~", 21},
    FetchCase{"VnuNoRoom",          kChar, kVnu, 0, "7", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"VnuOtherFormat",     kChar, kVnu, 2, "7", 4, "~~~~", 4, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ToIntegers, FetchChar, testing::Values(
    FetchCase{"OneByte",            kChar, kInt, 0, "-128", 1, native<sb1>(-128), 1},
    FetchCase{"TwoBytes",           kChar, kInt, 0, "-7", 2, native<sb2>(-7), 2},
    FetchCase{"FourBytes",          kChar, kInt, 0, "-7", 4, native<sb4>(-7), 4},
    FetchCase{"EightBytes",         kChar, kInt, 0, "-7", 8, native<sb8>(-7), 8},
    FetchCase{"ThreeBytes",         kChar, kInt, 0, "7", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"BeyondEightBits",    kChar, kInt, 0, "128", 8, "~~~~~~~~", 8, 0, 22053, -1},
    FetchCase{"EdgeOf32Bits",       kChar, kInt, 0, "2147483647", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"BinaryIsTheByte",    kChar, kInt, 1, "\xFE", 4, native<sb4>(-2), 4},
    FetchCase{"OtherFormatIsZero",  kChar, kInt, 2, "7", 4, native<sb4>(0), 4},
    FetchCase{"UnsignedByte",       kChar, kUin, 0, "255", 1, native<ub1>(255), 1},
    FetchCase{"UnsignedExtends",    kChar, kUin, 0, "255", 8, native<ub8>(255), 8},
    FetchCase{"UnsignedBeyond",     kChar, kUin, 0, "256", 4, "~~~~", 4, 0, 22053, -1},
    FetchCase{"UnsignedNegative",   kChar, kUin, 0, "-1", 4, "~~~~", 4, 0, 22053, -1},
    FetchCase{"UnsignedBinary",     kChar, kUin, 1, "\xFE", 4, native<ub4>(254), 4},
    FetchCase{"EmptyIsNull",        kChar, kUin, 0, "", 4, "~~~~", 4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ToFloats, FetchChar, testing::Values(
    FetchCase{"CodeOfALetter",      kChar, kFlt, 0, "A", 4, native(65.0f), 4},
    FetchCase{"CodeOfADigit",       kChar, kFlt, 0, "7", 8, native(55.0), 8},
    FetchCase{"CodeIsSigned",       kChar, kFlt, 1, "\xFF", 8, native(-1.0), 8},
    FetchCase{"OtherSizesNothing",  kChar, kFlt, 0, "A", 5, "~~~~~", 5},
    FetchCase{"EmptyIsNull",        kChar, kFlt, 0, "", 8, "~~~~~~~~", 8, -1, kNoRecord, 0, 1405},
    FetchCase{"NullNoIndicator",    kChar, kFlt, 0, "", 8, "~~~~~~~~", 8, kNoIndicator, 1722, 1, 1405},
    FetchCase{"Bfloat",             kChar, kBfloat, 0, "A", 9, native(65.0f) + "~~~~~", 4},
    FetchCase{"BfloatNoRoom",       kChar, kBfloat, 0, "A", 3, "~~~", 3, 0, kNoRecord, -1},
    FetchCase{"Bdouble",            kChar, kBdouble, 0, "A", 9, native(65.0) + "~", 8},
    FetchCase{"BdoubleNoRoom",      kChar, kBdouble, 0, "A", 7, "~~~~~~~", 7, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchChar, EmptyTextWithoutIndicatorIsRecorded) {
  for (const ub2 dty : {kChr, kAvc, kStr, kVcs, kNum, kInt}) {
    char target[32];
    ub4 length = sizeof target;
    EXPECT_EQ(findPQToOCIConversion(kChar, dty, nullptr)(session.errhp, "", 0, 0, target,
                                                         &length, nullptr, nullptr),
              1);
    EXPECT_EQ(session.takeRecord(), 1405);
  }
}

TEST_F(FetchChar, SomeMembersLeaveTheIndicatorAlone) {
  const auto indicatorAfter = [this](FromServerConverter convert, ub4 cap) {
    char target[32];
    ub4 length = cap;
    sb2 indicator = 77;
    EXPECT_EQ(convert(session.errhp, "7", 1, 0, target, &length, &indicator, nullptr), 0);
    return indicator;
  };
  for (const auto convert :
       {ConvertCHAROIDToSQLT_CHR, ConvertCHAROIDToSQLT_NUM, ConvertCHAROIDToSQLT_STR,
        ConvertCHAROIDToSQLT_VNU, ConvertCHAROIDToSQLT_VCS, ConvertCHAROIDToSQLT_LVC,
        ConvertINT2OIDToSQLT_VNU, ConvertINT4OIDToSQLT_VNU}) {
    EXPECT_EQ(indicatorAfter(convert, 32), 77);
  }
  for (const auto convert :
       {ConvertCHAROIDToSQLT_AFC, ConvertCHAROIDToSQLT_LNG, ConvertCHAROIDToSQLT_AVC,
        ConvertINT8OIDToSQLT_VNU, ConvertINT2OIDToSQLT_NUM, ConvertINT4OIDToSQLT_CHR}) {
    EXPECT_EQ(indicatorAfter(convert, 32), 0);
  }
  for (const auto convert :
       {ConvertCHAROIDToSQLT_INT, ConvertCHAROIDToSQLT_UIN, ConvertCHAROIDToSQLT_FLT}) {
    EXPECT_EQ(indicatorAfter(convert, 8), 0);
  }
}

TEST_F(FetchChar, NumberNeedsNoLength) {
  ub1 target[zev::kNumberSize];
  EXPECT_EQ(ConvertCHAROIDToSQLT_NUM(session.errhp, "7", 1, 0, target, nullptr, nullptr,
                                     nullptr),
            0);
  EXPECT_EQ(hex({target, target + 2}), "C1 08");
}

TEST_F(FetchChar, StringValueNeedsTwoBytes) {
  OraText text[] = "~~~";
  OCIString string{2, 9, text};
  OCIString *target = &string;
  ub4 length = sizeof target;
  sb2 indicator = 77;
  const auto fetch = [&](ub1 format) {
    return ConvertCHAROIDToSQLT_VST(session.errhp, "A", 1, format, &target, &length,
                                    &indicator, nullptr);
  };
  EXPECT_EQ(fetch(0), 0);
  EXPECT_STREQ(reinterpret_cast<char *>(text), "A");
  EXPECT_EQ(string.length, 1u);
  EXPECT_EQ(indicator, 0);
  EXPECT_EQ(fetch(2), -1);

  string.allocatedSize = 1;
  EXPECT_EQ(fetch(0), 1);
  EXPECT_EQ(session.takeRecord(), 1406);
  EXPECT_EQ(indicator, 1);
  EXPECT_EQ(string.length, 0u);
  EXPECT_EQ(text[0], 0);

  string.allocatedSize = 0;
  text[0] = '~';
  EXPECT_EQ(fetch(1), 1);
  EXPECT_EQ(session.takeRecord(), 1406);
  EXPECT_EQ(indicator, 2);
  EXPECT_EQ(text[0], '~');

  length = 3;
  EXPECT_EQ(fetch(0), -1);
}

}  // namespace
}  // namespace zevtest
