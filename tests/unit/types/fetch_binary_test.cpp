#include "types_fixture.h"
#include "zevoci/lob_locator.h"
#include "zevoci/string_value.h"

namespace zevtest {
namespace {

class FetchBinary : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};
/// The same while empty text and null differ.
class FetchBinaryPlain : public FetchBinary {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};
/// What goes beyond the target: the rows of these give more bytes than the target has.
class FetchBinaryBeyond : public FetchBinary {};

TEST_P(FetchBinary, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchBinaryPlain, Arrives) {
  expectFetch(session, GetParam());
}
TEST_P(FetchBinaryBeyond, Arrives) {
  expectDirectFetch(session, GetParam());
}

const Oid kBytea = BYTEAOID, kRaw = 12487, kText = TEXTOID, kBpchar = 1042,
          kVarchar = 1043;
const ub2 kChr = SQLT_CHR, kAfc = SQLT_AFC, kLng = SQLT_LNG, kAvc = SQLT_AVC,
          kStr = SQLT_STR, kVcs = SQLT_VCS, kLvc = SQLT_LVC, kBin = SQLT_BIN,
          kLbi = SQLT_LBI, kVbi = SQLT_VBI, kLvb = SQLT_LVB;

std::string counted2(std::size_t count, const std::string &bytes) {
  return native(static_cast<ub2>(count)) + bytes;
}
std::string counted4(std::size_t count, const std::string &bytes) {
  return native(static_cast<ub4>(count)) + bytes;
}
std::string room(std::size_t size) {
  return std::string(size, '~');
}
const std::string k70000(70000, 'x');
const std::string kLongestVbi(65535, 'x');

// clang-format off
//            name                          oid     type  format value   cap  target length indicator ...
INSTANTIATE_TEST_SUITE_P(ByteaChr, FetchBinary, testing::Values(
    FetchCase{"HexFormAndBlanks",           kBytea, kChr, 0, "\\xDEAD",  10, "DEAD      ", 4},
    FetchCase{"RawType",                    kRaw,   kChr, 0, "\\xDEAD",   6, "DEAD  ",   4},
    FetchCase{"HexFormCutInSilence",        kBytea, kChr, 0, "\\xDEAD",   3, "DEA",      3},
    FetchCase{"ExactFit",                   kBytea, kChr, 0, "\\xDEAD",   4, "DEAD",     4},
    FetchCase{"EmptyHexFormIsBlanks",       kBytea, kChr, 0, "\\x",       3, "   ",      0},
    FetchCase{"EscapeForm",                 kBytea, kChr, 0, "a\\\\\\001", 8, "615C01  ", 6},
    FetchCase{"EscapeFormCutInSilence",     kBytea, kChr, 0, "abc",       5, "6162 ",    4},
    FetchCase{"EscapeFormWithoutRoom",      kBytea, kChr, 0, "abcd",      4, "6162",     4, -2, 1406, 1},
    FetchCase{"EscapeFormWithoutIndicator", kBytea, kChr, 0, "abcd",      4, "6162",     4, kNoIndicator, 1406, 1},
    FetchCase{"BadEscape",                  kBytea, kChr, 0, "a\\9",      6, "61~~~~",   6, 0, 1465, -1},
    FetchCase{"NoRoomWantsNothing",         kBytea, kChr, 0, "abc",       0, "",         0},
    FetchCase{"EmptyTextIsNull",            kBytea, kChr, 0, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator",       kBytea, kChr, 0, "",          3, "~~~",      3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"OtherFormat",                kBytea, kChr, 2, "\\xDEAD",   4, "~~~~",     4, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

// In binary form the digits do not reach the target; the code of the first is the length.
INSTANTIATE_TEST_SUITE_P(ByteaChrOfBinary, FetchBinary, testing::Values(
    FetchCase{"LengthIsTheFirstDigitsCode", kBytea, kChr, 1, "\x01\x02",  8, room(8),   '0'},
    FetchCase{"BlanksFollowThatLength",     kBytea, kChr, 1, "\x41",     60, room('4') + std::string(8, ' '), '4'},
    FetchCase{"TruncationIsRecorded",       kBytea, kChr, 1, "\xF1\x02\x03", 4, room(4), 'F', 2, 1406, 1},
    FetchCase{"TruncationWithoutIndicator", kBytea, kChr, 1, "\xF1\x02\x03", 4, room(4), 'F', kNoIndicator, 1406, 1},
    FetchCase{"NoRoomForOnePair",           kBytea, kChr, 1, "\xF1",      1, "~",         1, 2, 1406, 1},
    FetchCase{"NulIsAByte",                 kBytea, kChr, 1, "\0"s,       2, "~~",      '0'},
    FetchCase{"NoBytesAreNull",             kBytea, kChr, 1, "",          2, "~~",        2, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaAfcAndLng, FetchBinary, testing::Values(
    FetchCase{"AfcHexForm",                 kBytea, kAfc, 0, "\\xDEAD",   6, "DEAD  ",   4},
    FetchCase{"AfcOfRawType",               kRaw,   kAfc, 0, "\\xDEAD",   6, "DEAD  ",   4},
    FetchCase{"AfcEscapeFormWithoutRoom",   kBytea, kAfc, 0, "abcd",      4, "6162",     4, -2, 1406, 1},
    FetchCase{"AfcBinary",                  kBytea, kAfc, 1, "\x01",      4, "~~~~",   '0'},
    FetchCase{"AfcNull",                    kBytea, kAfc, 0, "",          4, "~~~~",     4, -1, kNoRecord, 0, 1405},
    FetchCase{"AfcNoRoom",                  kBytea, kAfc, 0, "abc",       0, "",         0},
    FetchCase{"AfcOtherFormat",             kBytea, kAfc, 2, "abc",       4, "~~~~",     4, 0, kNoRecord, -1},
    FetchCase{"LngHexForm",                 kBytea, kLng, 0, "\\xDEAD",   6, "DEAD  ",   4},
    FetchCase{"LngOfRawType",               kRaw,   kLng, 0, "\\xDEAD",   6, "DEAD  ",   4},
    FetchCase{"LngEscapeFormWithoutRoom",   kBytea, kLng, 0, "abcd",      4, "6162",     4, -2, 1406, 1},
    FetchCase{"LngBinary",                  kBytea, kLng, 1, "\x01",      4, "~~~~",   '0'},
    FetchCase{"LngNull",                    kBytea, kLng, 0, "",          4, "~~~~",     4, -1, kNoRecord, 0, 1405},
    FetchCase{"LngNoRoom",                  kBytea, kLng, 0, "abc",       0, "",         0},
    FetchCase{"LngOtherFormat",             kBytea, kLng, 2, "abc",       4, "~~~~",     4, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaAvc, FetchBinary, testing::Values(
    FetchCase{"NulEndsTheDigits",           kBytea, kAvc, 0, "\\xDEAD",   8, "DEAD\0  ~"s, 5},
    FetchCase{"RawType",                    kRaw,   kAvc, 0, "\\xDEAD",   8, "DEAD\0  ~"s, 5},
    FetchCase{"ExactFit",                   kBytea, kAvc, 0, "\\xDEAD",   5, "DEAD\0"s,  5},
    FetchCase{"HexFormCutInSilence",        kBytea, kAvc, 0, "\\xDEAD",   4, "DEA\0"s,   4},
    FetchCase{"EscapeFormWithoutRoom",      kBytea, kAvc, 0, "abcd",      5, "6162\0"s,  5, -2, 1406, 1},
    FetchCase{"OneByteIsTheNul",            kBytea, kAvc, 0, "\\xDEAD",   1, "\0"s,      1},
    FetchCase{"BadEscapeRestoresTheSize",   kBytea, kAvc, 0, "\\9",       6, "~~~~~~",   6, 0, 1465, -1},
    FetchCase{"Binary",                     kBytea, kAvc, 1, "\x41\x02",  8, room(8), '4' + 1},
    FetchCase{"BinaryNulFollowsItsLength",  kBytea, kAvc, 1, "\x41",     60, room('4') + '\0' + std::string(6, ' ') + '~', '4' + 1},
    FetchCase{"NoRoomWantsNothing",         kBytea, kAvc, 0, "abc",       0, "",         0},
    FetchCase{"EmptyTextIsNull",            kBytea, kAvc, 0, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator",       kBytea, kAvc, 0, "",          3, "~~~",      3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"OtherFormat",                kBytea, kAvc, 2, "abc",       6, "~~~~~~",   6, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaStr, FetchBinary, testing::Values(
    FetchCase{"NulEndsTheDigits",           kBytea, kStr, 0, "\\xDEAD",   7, "DEAD\0~~"s, 4},
    FetchCase{"RawType",                    kRaw,   kStr, 0, "\\xDEAD",   7, "DEAD\0~~"s, 4},
    FetchCase{"FitsWithItsNul",             kBytea, kStr, 0, "\\xDEAD",   5, "DEAD\0"s,  4},
    FetchCase{"NulStandsBehindAFullTarget", kBytea, kStr, 0, "\\xDEAD",   4, "DEAD\0"s,  4},
    FetchCase{"HexFormCutInSilence",        kBytea, kStr, 0, "\\xDEAD",   3, "DEA\0"s,   3},
    FetchCase{"EscapeFormWithoutRoom",      kBytea, kStr, 0, "abcd",      4, "6162\0"s,  4, -2, 1406, 1},
    FetchCase{"BadEscapeRestoresTheSize",   kBytea, kStr, 0, "\\9",       6, "~~~~~~",   6, 0, 1465, -1},
    FetchCase{"Binary",                     kBytea, kStr, 1, "\x41",      8, room(8),  '4'},
    FetchCase{"BinaryNulFollowsItsLength",  kBytea, kStr, 1, "\x41",     54, room('4') + "\0~"s, '4'},
    FetchCase{"NoRoomWantsNothing",         kBytea, kStr, 0, "abc",       0, "",         0},
    FetchCase{"EmptyTextIsNull",            kBytea, kStr, 0, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"OtherFormat",                kBytea, kStr, 2, "abc",       6, "~~~~~~",   6, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaCounted, FetchBinary, testing::Values(
    FetchCase{"VcsHexForm",                 kBytea, kVcs, 0, "\\xDEAD",   8, counted2(4, "DEAD~~"), 6},
    FetchCase{"VcsOfRawType",               kRaw,   kVcs, 0, "\\xDEAD",   8, counted2(4, "DEAD~~"), 6},
    FetchCase{"VcsCutInSilence",            kBytea, kVcs, 0, "\\xDEAD",   5, counted2(3, "DEA"), 5},
    FetchCase{"VcsEscapeFormWithoutRoom",   kBytea, kVcs, 0, "abcd",      6, counted2(4, "6162"), 6, -2, 1406, 1},
    FetchCase{"VcsBadEscapeRestoresTheSize", kBytea, kVcs, 0, "\\9",      6, room(6),    6, 0, 1465, -1},
    FetchCase{"VcsBinary",                  kBytea, kVcs, 1, "\x41",      8, counted2('4', room(6)), '4' + 2},
    FetchCase{"VcsOfItsCountAlone",         kBytea, kVcs, 0, "\\xDEAD",   2, counted2(0, ""), 2},
    FetchCase{"VcsOfOneByteIsRefused",      kBytea, kVcs, 0, "\\xDEAD",   1, "~",        1, 0, kNoRecord, -1},
    FetchCase{"VcsNoRoom",                  kBytea, kVcs, 0, "\\xDEAD",   0, "",         0},
    FetchCase{"VcsNull",                    kBytea, kVcs, 0, "",          4, "~~~~",     4, -1, kNoRecord, 0, 1405},
    FetchCase{"VcsOtherFormat",             kBytea, kVcs, 2, "abc",       4, "~~~~",     4, 0, kNoRecord, -1},
    FetchCase{"LvcHexForm",                 kBytea, kLvc, 0, "\\xDEAD",  10, counted4(4, "DEAD~~"), 8},
    FetchCase{"LvcOfRawType",               kRaw,   kLvc, 0, "\\xDEAD",  10, counted4(4, "DEAD~~"), 8},
    FetchCase{"LvcCutInSilence",            kBytea, kLvc, 0, "\\xDEAD",   7, counted4(3, "DEA"), 7},
    FetchCase{"LvcEscapeFormWithoutRoom",   kBytea, kLvc, 0, "abcd",      8, counted4(4, "6162"), 8, -2, 1406, 1},
    FetchCase{"LvcBadEscapeRestoresTheSize", kBytea, kLvc, 0, "\\9",      8, room(8),    8, 0, 1465, -1},
    FetchCase{"LvcBinary",                  kBytea, kLvc, 1, "\x41",      8, counted4('4', room(4)), '4' + 4},
    FetchCase{"LvcOfThreeBytesIsRefused",   kBytea, kLvc, 0, "\\xDEAD",   3, "~~~",      3, 0, kNoRecord, -1},
    FetchCase{"LvcNoRoom",                  kBytea, kLvc, 0, "\\xDEAD",   0, "",         0},
    FetchCase{"LvcNull",                    kBytea, kLvc, 0, "",          8, room(8),    8, -1, kNoRecord, 0, 1405},
    FetchCase{"LvcOtherFormat",             kBytea, kLvc, 2, "abc",       8, room(8),    8, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaBin, FetchBinary, testing::Values(
    FetchCase{"HexForm",                    kBytea, kBin, 0, "\\xDEAD",   4, "\xDE\xAD~~", 2},
    FetchCase{"RawType",                    kRaw,   kBin, 0, "\\xDEAD",   4, "\xDE\xAD~~", 2},
    FetchCase{"AliasOfRaw",                 12502,  kBin, 0, "\\xDEAD",   4, "\xDE\xAD~~", 2},
    FetchCase{"LowerF",                     kBytea, kBin, 0, "\\xff",     1, "\xFF",     1},
    FetchCase{"UpperF",                     kBytea, kBin, 0, "\\xFF",     1, "\xFF",     1},
    FetchCase{"DoubledBackslash",           kBytea, kBin, 0, "a\\\\",     4, "a\\~~",    2},
    FetchCase{"EmptyHexFormIsEmpty",        kBytea, kBin, 0, "\\x",       2, "~~",       0},
    FetchCase{"HexFormTooLong",             kBytea, kBin, 0, "\\x010203", 2, "\x01\x02", 2, 3, 1406, 1},
    FetchCase{"HexFormTooLongWithoutIndicator", kBytea, kBin, 0, "\\x010203", 2, "\x01\x02", 2, kNoIndicator, 1406, 1},
    FetchCase{"EscapeFormTooLong",          kBytea, kBin, 0, "abc",       2, "ab",       2, -1, 1406, 1},
    FetchCase{"BadEscapeRestoresTheSize",   kBytea, kBin, 0, "a\\9",      4, "a~~~",     4, 0, 1465, -1},
    FetchCase{"NoRoomIsTooSmall",           kBytea, kBin, 0, "\\x01",     0, "",         0, 1, 1406, 1},
    FetchCase{"Binary",                     kBytea, kBin, 1, "a\0b"s,     4, "a\0b~"s,   3},
    FetchCase{"BinaryExactFit",             kBytea, kBin, 1, "abc",       3, "abc",      3},
    FetchCase{"BinaryMissingBytesAreTold",  kBytea, kBin, 1, "abcde",     3, "abc",      3, 2},
    FetchCase{"BinaryManyMissingBytes",     kBytea, kBin, 1, k70000,      3, "xxx",      3, 65534},
    FetchCase{"BinaryTooLongWithoutIndicator", kBytea, kBin, 1, "abcde",  3, "~~~",      3, kNoIndicator, 1405, 1},
    FetchCase{"EmptyTextIsNull",            kBytea, kBin, 0, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator",       kBytea, kBin, 0, "",          3, "~~~",      3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"NoBytesAreNull",             kBytea, kBin, 1, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"OtherFormat",                kBytea, kBin, 2, "abc",       3, "~~~",      3, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaLbi, FetchBinary, testing::Values(
    FetchCase{"HexForm",                    kBytea, kLbi, 0, "\\xDEAD",   4, "\xDE\xAD~~", 2},
    FetchCase{"RawType",                    kRaw,   kLbi, 0, "\\xDEAD",   4, "\xDE\xAD~~", 2},
    FetchCase{"HexFormTooLong",             kBytea, kLbi, 0, "\\x010203", 2, "\x01\x02", 2, 3, 1406, 1},
    FetchCase{"Binary",                     kBytea, kLbi, 1, "a\0b"s,     4, "a\0b~"s,   3},
    FetchCase{"BinaryMissingBytesAreTold",  kBytea, kLbi, 1, "abcde",     3, "abc",      3, 2},
    FetchCase{"BinaryTooLongWithoutIndicator", kBytea, kLbi, 1, "abcde",  3, "~~~",      3, kNoIndicator, 1405, 1},
    FetchCase{"EmptyTextIsNull",            kBytea, kLbi, 0, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"OtherFormat",                kBytea, kLbi, 2, "abc",       3, "~~~",      3, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaVbi, FetchBinary, testing::Values(
    FetchCase{"HexForm",                    kBytea, kVbi, 0, "\\xDEAD",   6, counted2(2, "\xDE\xAD~~"), 4},
    FetchCase{"RawType",                    kRaw,   kVbi, 0, "\\xDEAD",   6, counted2(2, "\xDE\xAD~~"), 4},
    FetchCase{"HexFormTooLong",             kBytea, kVbi, 0, "\\x010203", 4, counted2(2, "\x01\x02"), 4, 3, 1406, 1},
    FetchCase{"EscapeFormTooLong",          kBytea, kVbi, 0, "abc",       4, counted2(2, "ab"), 4, -1, 1406, 1},
    FetchCase{"BadEscapeRestoresTheSize",   kBytea, kVbi, 0, "\\9",       6, counted2(6, "~~~~"), 6, 0, 1465, -1},
    FetchCase{"Binary",                     kBytea, kVbi, 1, "a\0b"s,     7, counted2(3, "a\0b~~"s), 5},
    FetchCase{"BinaryExactFit",             kBytea, kVbi, 1, "abc",       5, counted2(3, "abc"), 5},
    FetchCase{"BinaryTooLongWithoutIndicator", kBytea, kVbi, 1, "abc",    4, "~~~~",     4, kNoIndicator, 1405, 1},
    FetchCase{"BinaryOfTheLongestValue",    kBytea, kVbi, 1, kLongestVbi, 65537, counted2(65535, kLongestVbi), 65537},
    FetchCase{"BinaryAboveTheLongestValue", kBytea, kVbi, 1, kLongestVbi + "x", 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"TextAboveTheLongestValue",   kBytea, kVbi, 0, "\\x" + std::string(65534, '4'), 4, "~~~~", 4, 0, kNoRecord, -1},
    FetchCase{"OneByteIsRefused",           kBytea, kVbi, 0, "\\xDEAD",   1, "~",        1, 0, kNoRecord, -1},
    FetchCase{"NoRoomIsRefused",            kBytea, kVbi, 1, "abc",       0, "",         0, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kBytea, kVbi, 0, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator",       kBytea, kVbi, 0, "",          3, "~~~",      3, kNoIndicator, 1405, 1, 1405},
    FetchCase{"OtherFormat",                kBytea, kVbi, 2, "abc",       5, room(5),    5, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(ByteaVbi, FetchBinaryBeyond, testing::Values(
    FetchCase{"BinaryIsCopiedWholeAndMissingBytesTold", kBytea, kVbi, 1, "abcde", 4, counted2(5, "abcde"), 7, 3},
    FetchCase{"BinaryOneByteIsMissing",     kBytea, kVbi, 1, "abc",       4, counted2(3, "abc"), 5, 1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(ByteaLvb, FetchBinary, testing::Values(
    FetchCase{"HexForm",                    kBytea, kLvb, 0, "\\xDEAD",   8, counted4(2, "\xDE\xAD~~"), 6},
    FetchCase{"RawType",                    kRaw,   kLvb, 0, "\\xDEAD",   8, counted4(2, "\xDE\xAD~~"), 6},
    FetchCase{"HexFormTooLong",             kBytea, kLvb, 0, "\\x010203", 6, counted4(2, "\x01\x02"), 6, 3, 1406, 1},
    FetchCase{"BadEscapeRestoresTheSize",   kBytea, kLvb, 0, "\\9",       6, counted4(6, "~~"), 6, 0, 1465, -1},
    FetchCase{"Binary",                     kBytea, kLvb, 1, "a\0b"s,     9, counted4(3, "a\0b~~"s), 7},
    FetchCase{"BinaryExactFit",             kBytea, kLvb, 1, "abc",       7, counted4(3, "abc"), 7},
    FetchCase{"BinaryTooLongWithoutIndicator", kBytea, kLvb, 1, "abc",    6, room(6),    6, kNoIndicator, 1405, 1},
    FetchCase{"OneByteIsRefused",           kBytea, kLvb, 0, "\\xDEAD",   1, "~",        1, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kBytea, kLvb, 0, "",          3, "~~~",      3, -1, kNoRecord, 0, 1405},
    FetchCase{"OtherFormat",                kBytea, kLvb, 2, "abc",       7, room(7),    7, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
// Two bytes pass the member's test, though the count has four.
INSTANTIATE_TEST_SUITE_P(ByteaLvb, FetchBinaryBeyond, testing::Values(
    FetchCase{"BinaryIsCopiedWholeAndMissingBytesTold", kBytea, kLvb, 1, "abcde", 6, counted4(5, "abcde"), 9, 3},
    FetchCase{"BinaryLongerThanAVbi",       kBytea, kLvb, 1, k70000,      6, counted4(70000, k70000), 70004, 65534},
    FetchCase{"CountInTwoBytes",            kBytea, kLvb, 0, "\\xDEAD",   2, counted4(0, "~"), 4, 2, 1406, 1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(TextAsBinary, FetchBinary, testing::Values(
    FetchCase{"BinHexForm",                 kText,    kBin, 0, "\\xDEad", 4, "\xDE\xAD~~", 2},
    FetchCase{"BinOfBlankPadded",           kBpchar,  kBin, 0, "\\xDEad", 4, "\xDE\xAD~~", 2},
    FetchCase{"BinOfVariable",              kVarchar, kBin, 0, "\\xDEad", 4, "\xDE\xAD~~", 2},
    FetchCase{"BinEscapeForm",              kText, kBin, 0, "a\\\\\\001", 4, "a\\\x01~", 3},
    FetchCase{"BinHexFormTooLong",          kText, kBin, 0, "\\x010203",  2, "\x01\x02", 2, 3, 1406, 1},
    FetchCase{"BinEscapeFormTooLong",       kText, kBin, 0, "abc",        2, "ab",       2, -1, 1406, 1},
    FetchCase{"BinOddHexDigit",             kText, kBin, 0, "\\xABC",     2, "\xAB~",    1},
    FetchCase{"BinBadEscape",               kText, kBin, 0, "a\\9",       4, "a~~~",     4, 0, 1465, -1},
    FetchCase{"BinOfFormatOneIsTextToo",    kText, kBin, 1, "\\xDEAD",    2, "\xDE\xAD", 2},
    FetchCase{"BinNoRoomWantsNothing",      kText, kBin, 0, "abc",        0, "",         0},
    FetchCase{"BinEmptyTextIsNull",         kText, kBin, 0, "",           2, "~~",       2, -1, kNoRecord, 0, 1405},
    FetchCase{"BinNullWithoutIndicator",    kText, kBin, 0, "",           2, "~~",       2, kNoIndicator, 1405, 1, 1405},
    FetchCase{"BinOtherFormat",             kText, kBin, 2, "abc",        3, "~~~",      3, 0, kNoRecord, -1},
    FetchCase{"LbiHexForm",                 kText, kLbi, 0, "\\xDEad",    4, "\xDE\xAD~~", 2},
    FetchCase{"LbiOfVariable",              kVarchar, kLbi, 0, "ab",      4, "ab~~",     2},
    FetchCase{"LbiOfBlankPadded",           kBpchar, kLbi, 0, "ab",       4, "ab~~",     2},
    FetchCase{"LbiTooLong",                 kText, kLbi, 0, "abc",        2, "ab",       2, -1, 1406, 1},
    FetchCase{"LbiBadEscape",               kText, kLbi, 0, "\\9",        2, "~~",       2, 0, 1465, -1},
    FetchCase{"LbiNoRoomWantsNothing",      kText, kLbi, 0, "abc",        0, "",         0},
    FetchCase{"LbiEmptyTextIsNull",         kText, kLbi, 0, "",           2, "~~",       2, -1, kNoRecord, 0, 1405},
    FetchCase{"VbiHexForm",                 kText, kVbi, 0, "\\xDEad",    6, counted2(2, "\xDE\xAD~~"), 4},
    FetchCase{"VbiOfVariable",              kVarchar, kVbi, 0, "ab",      4, counted2(2, "ab"), 4},
    FetchCase{"VbiOfBlankPadded",           kBpchar, kVbi, 0, "ab",       4, counted2(2, "ab"), 4},
    FetchCase{"VbiTooLong",                 kText, kVbi, 0, "abc",        4, counted2(2, "ab"), 4, -1, 1406, 1},
    FetchCase{"VbiBadEscapeRestoresTheSize", kText, kVbi, 0, "\\9",       4, counted2(4, "~~"), 4, 0, 1465, -1},
    FetchCase{"VbiOneByteIsRefused",        kText, kVbi, 0, "abc",        1, "~",        1, 0, kNoRecord, -1},
    FetchCase{"VbiNoRoomWantsNothing",      kText, kVbi, 0, "abc",        0, "",         0},
    FetchCase{"VbiEmptyTextIsNull",         kText, kVbi, 0, "",           4, "~~~~",     4, -1, kNoRecord, 0, 1405},
    FetchCase{"LvbHexForm",                 kText, kLvb, 0, "\\xDEad",    8, counted4(2, "\xDE\xAD~~"), 6},
    FetchCase{"LvbOfVariable",              kVarchar, kLvb, 0, "ab",      6, counted4(2, "ab"), 6},
    FetchCase{"LvbOfBlankPadded",           kBpchar, kLvb, 0, "ab",       6, counted4(2, "ab"), 6},
    FetchCase{"LvbTooLong",                 kText, kLvb, 0, "abc",        6, counted4(2, "ab"), 6, -1, 1406, 1},
    FetchCase{"LvbBadEscapeRestoresTheSize", kText, kLvb, 0, "\\9",       6, counted4(6, "~~"), 6, 0, 1465, -1},
    FetchCase{"LvbOneByteIsRefused",        kText, kLvb, 0, "abc",        1, "~",        1, 0, kNoRecord, -1},
    FetchCase{"LvbNoRoomWantsNothing",      kText, kLvb, 0, "abc",        0, "",         0},
    FetchCase{"LvbEmptyTextIsNull",         kText, kLvb, 0, "",           4, "~~~~",     4, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(TextAsBinary, FetchBinaryPlain, testing::Values(
    FetchCase{"BinOfEmptyTextIsEmpty",      kText, kBin, 0, "",           2, "~~",       0},
    FetchCase{"LbiOfEmptyTextIsEmpty",      kText, kLbi, 0, "",           2, "~~",       0},
    FetchCase{"VbiOfEmptyTextIsEmpty",      kText, kVbi, 0, "",           4, counted2(0, "~~"), 2},
    FetchCase{"LvbOfEmptyTextIsEmpty",      kText, kLvb, 0, "",           6, counted4(0, "~~"), 4},
    FetchCase{"ByteaOfEmptyTextIsNullAllTheSame", kBytea, kBin, 0, "",    2, "~~",       2, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(TextAsBinary, FetchBinaryBeyond, testing::Values(
    FetchCase{"LvbCountInTwoBytes",         kText, kLvb, 0, "abc",        2, counted4(0, "~"), 4, -3, 1406, 1}),
    nameOf<FetchCase>);
// clang-format on

TEST_F(FetchBinary, LongestSizesAreRefused) {
  char target[8];
  for (const auto convert : {ConvertBYTEAOIDToSQLT_LBI, ConvertBYTEAOIDToSQLT_LVB}) {
    ub4 length = sizeof target;
    for (const ub1 format : {0, 1}) {
      EXPECT_EQ(convert(session.errhp, "abc", 0x7FFFFFFF, format, target, &length,
                        nullptr, nullptr),
                -1);
    }
  }
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

class FetchHexIntoString : public testing::TestWithParam<StringFetchCase> {
 protected:
  Session session;
};

TEST_P(FetchHexIntoString, Arrives) {
  expectStringFetch(session, GetParam());
}

// clang-format off
//                  name                    oid  format value     cap size text     length indicator ...
INSTANTIATE_TEST_SUITE_P(Vst, FetchHexIntoString, testing::Values(
    StringFetchCase{"HexForm",              kBytea, 0, "\\xDEAD",   8, 6, "DEAD\0~~"s, 4},
    StringFetchCase{"RawType",              kRaw,   0, "\\xDEAD",   8, 6, "DEAD\0~~"s, 4},
    StringFetchCase{"NulStandsBehindAFullString", kBytea, 0, "\\xDEAD", 8, 4, "DEAD\0"s, 4},
    StringFetchCase{"HexFormCutInSilence",  kBytea, 0, "\\xDEAD",   8, 3, "DEA\0"s,   3},
    StringFetchCase{"EscapeFormWithoutRoom", kBytea, 0, "abcd",     8, 4, "6162\0"s,  4, -2, 1406, 1},
    StringFetchCase{"BadEscapeEmptiesTheLength", kBytea, 0, "a\\9", 8, 4, "61~~~",    0, 0, 1465, -1},
    StringFetchCase{"BinaryLengthIsTheFirstDigitsCode", kBytea, 1, "\x01", 8, 60,
                    room('0') + '\0' + room(12), '0'},
    StringFetchCase{"BinaryLengthStaysInTheString", kBytea, 1, "\x01", 8, 4, "~~~~\0"s, 4},
    StringFetchCase{"BinaryTruncation",     kBytea, 1, "\x01\x02",  8, 2, "~~\0"s,    2, 2, 1406, 1},
    StringFetchCase{"NoRoomForItsAddressWantsNothing", kBytea, 0, "\\xDEAD", 0, 4, room(5), 9},
    StringFetchCase{"EmptyTextIsNull",      kBytea, 0, "",          8, 4, room(5),    9, -1, kNoRecord, 0, 1405},
    StringFetchCase{"NullWithoutIndicator", kBytea, 0, "",          8, 4, room(5),    9, kNoIndicator, 1405, 1, 1405},
    StringFetchCase{"OtherFormat",          kBytea, 2, "abc",       8, 4, room(5),    9, 0, kNoRecord, -1}),
    nameOf<StringFetchCase>);
// clang-format on

TEST_F(FetchHexIntoString, MissingStringFails) {
  const OCIString *none = nullptr;
  ub4 length = sizeof none;
  EXPECT_EQ(ConvertBYTEAOIDToSQLT_VST(session.errhp, "abc", 3, 0, &none, &length, nullptr,
                                      nullptr),
            -1);
}

class FetchLocator : public testing::Test {
 protected:
  FetchLocator() {
    void *made = nullptr;
    EXPECT_EQ(OCIDescriptorAlloc(session.env, &made, OCI_DTYPE_LOB, 0, nullptr), 0);
    locator = static_cast<OCILobLocator *>(made);
  }
  // The environment does not release its locators.
  ~FetchLocator() override {
    session.env->children = list_delete(session.env->children, locator);
    Free_OCILobLocator(locator);
  }

  sword fetch(const std::string &value, ub1 format, ub4 cap = sizeof(void *)) {
    length = cap;
    indicator = returnCode = 77;
    const auto field = exactCopy(value + '\0');
    return PQ2OCIType(session.errhp, OIDOID, field.get(), static_cast<sb4>(value.size()),
                      format, SQLT_BLOB, &locator, &length, &indicator, &returnCode, 0);
  }

  Session session;
  OCILobLocator *locator = nullptr;
  ub4 length = 0;
  sb2 indicator = 77;
  ub2 returnCode = 77;
};

TEST_F(FetchLocator, IsClosedAndOfNoObjectAtFirst) {
  EXPECT_EQ(locator->handleType, 19u);
  EXPECT_EQ(locator->loOid, 0u);
  EXPECT_EQ(locator->loFd, -1);
}

TEST_F(FetchLocator, IsNotFreedAsADescriptor) {
  EXPECT_EQ(OCIDescriptorFree(locator, OCI_DTYPE_LOB), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIHandleFree(locator, OCI_DTYPE_LOB), OCI_INVALID_HANDLE);
  EXPECT_EQ(locator->handleType, 19u);
}

TEST_F(FetchLocator, FreeLeavesOtherHandlesAlone) {
  Free_OCILobLocator(nullptr);
  Free_OCILobLocator(reinterpret_cast<OCILobLocator *>(session.errhp));
  EXPECT_EQ(session.errhp->handleType, HANDLE_OCIError);
}

TEST_F(FetchLocator, TakesTheOidOfText) {
  EXPECT_EQ(fetch("4294967295", 0), 0);
  EXPECT_EQ(locator->loOid, 4294967295u);
  EXPECT_EQ(locator->loFd, -1);
  EXPECT_EQ(indicator, 0);
  EXPECT_EQ(length, sizeof(void *));
}

TEST_F(FetchLocator, TakesTheOidOfABinaryField) {
  EXPECT_EQ(fetch(network<ub4>(16400), 1), 0);
  EXPECT_EQ(locator->loOid, 16400u);
}

TEST_F(FetchLocator, ShortBinaryFieldFails) {
  EXPECT_EQ(fetch("abc", 1), -1);
  EXPECT_EQ(locator->loOid, 0u);
}

TEST_F(FetchLocator, NoRoomWantsNothing) {
  EXPECT_EQ(fetch("5", 0, 0), 0);
  EXPECT_EQ(locator->loOid, 0u);
}

TEST_F(FetchLocator, EmptyTextIsNull) {
  EXPECT_EQ(fetch("", 0), 0);
  EXPECT_EQ(indicator, -1);
  EXPECT_EQ(returnCode, 1405);
  EXPECT_EQ(locator->loOid, 0u);
}

TEST_F(FetchLocator, OtherFormatFails) {
  EXPECT_EQ(fetch("5", 2), -1);
  EXPECT_EQ(locator->loOid, 0u);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(FetchLocator, NeedsALocator) {
  const void *const wrong[] = {session.errhp, nullptr};
  for (const void *handle : wrong) {
    ub4 size = sizeof handle;
    EXPECT_EQ(ConvertOIDOIDToSQLT_BLOB(session.errhp, "5", 1, 0, &handle, &size,
                                       &indicator, nullptr),
              -1);
    EXPECT_EQ(session.takeRecord(), 1733);
  }
  ub4 size = sizeof locator;
  EXPECT_EQ(ConvertOIDOIDToSQLT_BLOB(session.errhp, "5", 1, 0, nullptr, &size, &indicator,
                                     nullptr),
            -1);
  EXPECT_EQ(session.takeRecord(), 1733);
}

}  // namespace
}  // namespace zevtest
