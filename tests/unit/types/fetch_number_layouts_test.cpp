/// Numbers into the character targets with blanks, lengths and terminators of their own.
#include "types_fixture.h"

namespace zevtest {
namespace {

class FetchNumberLayouts : public testing::TestWithParam<FetchCase> {
 protected:
  Session session;
};

/// The dispatcher would bound what is written behind the target; these rows show all.
TEST_P(FetchNumberLayouts, Arrives) {
  expectDirectFetch(session, GetParam());
}

const Oid kInt2 = INT2OID, kInt4 = INT4OID, kInt8 = INT8OID, kFloat4 = FLOAT4OID,
          kFloat8 = FLOAT8OID, kNumeric = NUMERICOID;
const ub2 kLng = SQLT_LNG, kAfc = SQLT_AFC, kAvc = SQLT_AVC, kVcs = SQLT_VCS,
          kLvc = SQLT_LVC, kChr = SQLT_CHR, kStr = SQLT_STR;
const std::string k2000 = std::string(2000, '1'), k2001 = std::string(2001, '1');
const std::string k70000 = std::string(70000, '1');

std::string p2(ub2 count) {
  return native(count);
}
std::string p4(ub4 count) {
  return native(count);
}

// clang-format off
//            name                          oid    type  format value  cap  target             length indicator ...
INSTANTIATE_TEST_SUITE_P(Int2Lng, FetchNumberLayouts, testing::Values(
    FetchCase{"NoBlanks",                   kInt2, kLng, 0, "123",     6, "123~~~",           3},
    FetchCase{"ExactFitIsTheOverflowPath",  kInt2, kLng, 0, "123",     3, "123",              3, 0},
    FetchCase{"MissingBytesAreTold",        kInt2, kLng, 0, "12345",   3, "123",              3, 2},
    FetchCase{"WithoutIndicatorNothing",    kInt2, kLng, 0, "12345",   3, "~~~",              3, kNoIndicator, kNoRecord, 1},
    FetchCase{"ManyMissingBytes",           kInt2, kLng, 0, k70000,    3, "111",              3, 65534},
    FetchCase{"BinaryComesLastDigitFirst",  kInt2, kLng, 1, network<sb2>(-123), 6, "-321~~",  4},
    FetchCase{"BinaryTooShort",             kInt2, kLng, 1, "\x01",    3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"OtherFormat",                kInt2, kLng, 2, "123",     3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kInt2, kLng, 0, "",        3, "~~~",              3, -1, kNoRecord, 0, 1405},
    FetchCase{"NullWithoutIndicator",       kInt2, kLng, 0, "",        3, "~~~",              3, kNoIndicator, 1405, 1, 1405}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Int4Lng, FetchNumberLayouts, testing::Values(
    FetchCase{"NoBlanks",                   kInt4, kLng, 0, "123",     6, "123~~~",           3},
    FetchCase{"ExactFit",                   kInt4, kLng, 0, "123",     3, "123",              3},
    FetchCase{"TruncationIsSilent",         kInt4, kLng, 0, "12345",   3, "123",              3},
    FetchCase{"SilentWithoutIndicator",     kInt4, kLng, 0, "12345",   3, "123",              3, kNoIndicator},
    FetchCase{"BinaryComesInOrder",         kInt4, kLng, 1, network<sb4>(-123), 6, "-123~~",  4}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Int8Lng, FetchNumberLayouts, testing::Values(
    FetchCase{"NoBlanks",                   kInt8, kLng, 0, "123",     6, "123~~~",           3},
    FetchCase{"ExactFit",                   kInt8, kLng, 0, "123",     3, "123",              3},
    FetchCase{"TruncationIsSilent",         kInt8, kLng, 0, "12345",   3, "123",              3},
    FetchCase{"BinaryComesLastDigitFirst",  kInt8, kLng, 1, network<sb8>(123), 6, "321~~~",   3},
    FetchCase{"BinaryZeroIsEmpty",          kInt8, kLng, 1, network<sb8>(0), 2, "~~",         0}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(IntAfc, FetchNumberLayouts, testing::Values(
    FetchCase{"Int2BlanksFillTheRest",      kInt2, kAfc, 0, "123",     6, "123   ",           3},
    FetchCase{"Int4BlanksFillTheRest",      kInt4, kAfc, 0, "123",     6, "123   ",           3},
    FetchCase{"Int8BlanksFillTheRest",      kInt8, kAfc, 0, "123",     6, "123   ",           3},
    FetchCase{"Int2ExactFitIsTheOverflow",  kInt2, kAfc, 0, "123",     3, "123",              3, 0},
    FetchCase{"Int4ExactFitIsTheOverflow",  kInt4, kAfc, 0, "123",     3, "123",              3, 0},
    FetchCase{"Int4ExactFitNoIndicator",    kInt4, kAfc, 0, "123",     3, "~~~",              3, kNoIndicator, kNoRecord, 1},
    FetchCase{"Int8MissingBytesAreTold",    kInt8, kAfc, 0, "12345",   3, "123",              3, 2},
    FetchCase{"Int8WithoutIndicator",       kInt8, kAfc, 0, "12345",   3, "~~~",              3, kNoIndicator, kNoRecord, 1},
    FetchCase{"Int2Binary",                 kInt2, kAfc, 1, network<sb2>(123), 5, "321  ",    3},
    FetchCase{"Int4BinaryIsReversed",       kInt4, kAfc, 1, network<sb4>(123), 5, "321  ",    3},
    FetchCase{"Int4BinaryZero",             kInt4, kAfc, 1, network<sb4>(0), 3, "0  ",        1},
    FetchCase{"Int8BinaryIsReversed",       kInt8, kAfc, 1, network<sb8>(-120), 6, "-021  ",  4},
    FetchCase{"Int8BinaryZero",             kInt8, kAfc, 1, network<sb8>(0), 3, "0  ",        1},
    FetchCase{"Int2BinaryZeroIsEmpty",      kInt2, kAfc, 1, network<sb2>(0), 3, "   ",        0}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(IntAvc, FetchNumberLayouts, testing::Values(
    FetchCase{"Int2TextThenNul",            kInt2, kAvc, 0, "123",     6, "123\0  "s,         4},
    FetchCase{"Int4TextThenNul",            kInt4, kAvc, 0, "123",     4, "123\0"s,           4},
    FetchCase{"Int8TextThenNul",            kInt8, kAvc, 0, "123",     5, "123\0 "s,          4},
    FetchCase{"Int2ExactFitLosesItsLast",   kInt2, kAvc, 0, "123",     3, "12\0"s,            3, 0},
    FetchCase{"Int4MissingBytesAreTold",    kInt4, kAvc, 0, "12345",   3, "12\0"s,            3, 2},
    FetchCase{"Int8WithoutIndicator",       kInt8, kAvc, 0, "12345",   3, "~~~",              3, kNoIndicator, kNoRecord, 1},
    FetchCase{"NoRoomAtAll",                kInt2, kAvc, 0, "123",     0, "",                 0, 3},
    FetchCase{"Int2BinaryIsReversed",       kInt2, kAvc, 1, network<sb2>(123), 5, "321\0 "s,  4},
    FetchCase{"Int4BinaryIsReversed",       kInt4, kAvc, 1, network<sb4>(123), 5, "321\0 "s,  4},
    FetchCase{"Int8BinaryIsReversed",       kInt8, kAvc, 1, network<sb8>(123), 5, "321\0 "s,  4}),
    nameOf<FetchCase>);

// A text one byte shorter than the target counts as fitting behind its length.
INSTANTIATE_TEST_SUITE_P(Int2Vcs, FetchNumberLayouts, testing::Values(
    FetchCase{"LengthInFront",              kInt2, kVcs, 0, "123",     7, p2(3) + "123~~",    5},
    FetchCase{"OneByteBehindTheTarget",     kInt2, kVcs, 0, "123",     4, p2(3) + "123",      5},
    FetchCase{"MissingBytesAreTold",        kInt2, kVcs, 0, "12345",   4, p2(2) + "12",       4, 3},
    FetchCase{"ExactTextIsTheOverflowPath", kInt2, kVcs, 0, "1234",    4, p2(2) + "12",       4, 2},
    FetchCase{"WithoutIndicatorNothing",    kInt2, kVcs, 0, "12345",   4, "~~~~",             4, kNoIndicator, kNoRecord, 1},
    FetchCase{"NoRoomForTheLength",         kInt2, kVcs, 0, "123",     1, "~",                1, 0, kNoRecord, -1},
    FetchCase{"BinaryIsReversed",           kInt2, kVcs, 1, network<sb2>(-12), 6, p2(3) + "-21~", 5}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Int4Int8Vcs, FetchNumberLayouts, testing::Values(
    FetchCase{"Int4LengthInFront",          kInt4, kVcs, 0, "123",     7, p2(3) + "123~~",    5},
    FetchCase{"Int4ExactFit",               kInt4, kVcs, 0, "123",     5, p2(3) + "123",      5},
    FetchCase{"Int4TruncationIsSilent",     kInt4, kVcs, 0, "12345",   5, p2(3) + "123",      5, kNoIndicator},
    FetchCase{"Int8LengthInFront",          kInt8, kVcs, 0, "123",     7, p2(3) + "123~~",    5},
    FetchCase{"Int8TruncationIsSilent",     kInt8, kVcs, 0, "12345",   4, p2(2) + "12",       4, 0},
    FetchCase{"OnlyTheLength",              kInt8, kVcs, 0, "12345",   2, p2(0),              2, 0},
    FetchCase{"Int4BinaryInOrder",          kInt4, kVcs, 1, network<sb4>(123), 6, p2(3) + "123~", 5},
    FetchCase{"Int8BinaryIsReversed",       kInt8, kVcs, 1, network<sb8>(123), 6, p2(3) + "321~", 5}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Int2Lvc, FetchNumberLayouts, testing::Values(
    FetchCase{"LengthInFront",              kInt2, kLvc, 0, "123",     9, p4(3) + "123~~",    7},
    FetchCase{"UpToThreeBytesBehind",       kInt2, kLvc, 0, "1234",    5, p4(4) + "1234",     8},
    FetchCase{"TruncationIsRecorded",       kInt2, kLvc, 0, "12345",   5, p4(1) + "1",        5, 4, 22053, 0},
    FetchCase{"WithoutIndicatorAWarning",   kInt2, kLvc, 0, "12345",   5, p4(1) + "1",        5, kNoIndicator, 22053, 1},
    FetchCase{"NoRoomForTheLength",         kInt2, kLvc, 0, "123",     3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"BinaryIsReversed",           kInt2, kLvc, 1, network<sb2>(123), 8, p4(3) + "321~", 7}),
    nameOf<FetchCase>);
INSTANTIATE_TEST_SUITE_P(Int4Int8Lvc, FetchNumberLayouts, testing::Values(
    FetchCase{"Int4LengthInFront",          kInt4, kLvc, 0, "123",     9, p4(3) + "123~~",    7},
    FetchCase{"Int4NeedsOneByteMore",       kInt4, kLvc, 0, "123",     7, p4(3) + "123",      7, 0},
    FetchCase{"Int4MissingBytesAreTold",    kInt4, kLvc, 0, "12345",   6, p4(2) + "12",       6, 3},
    FetchCase{"Int4WithoutIndicator",       kInt4, kLvc, 0, "12345",   6, "~~~~~~",           6, kNoIndicator, kNoRecord, 1},
    FetchCase{"Int8MissingBytesAreTold",    kInt8, kLvc, 0, "12345",   6, p4(2) + "12",       6, 3},
    FetchCase{"Int8ManyMissingBytes",       kInt8, kLvc, 0, k70000,    6, p4(2) + "11",       6, 65534},
    FetchCase{"Int4BinaryTellsTheField",    kInt4, kLvc, 1, network<sb4>(123456), 6, p4(2) + "65", 6, 2},
    FetchCase{"Int4BinaryIsReversed",       kInt4, kLvc, 1, network<sb4>(123), 9, p4(3) + "321~~", 7},
    FetchCase{"Int8BinaryIsReversed",       kInt8, kLvc, 1, network<sb8>(123), 9, p4(3) + "321~~", 7}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(FloatPadded, FetchNumberLayouts, testing::Values(
    FetchCase{"Float4Chr",                  kFloat4, kChr, 0, "1.5",   5, "1.5  ",            3},
    FetchCase{"Float4Lng",                  kFloat4, kLng, 0, "1.5",   5, "1.5  ",            3},
    FetchCase{"Float4Afc",                  kFloat4, kAfc, 0, "1.5",   5, "1.5  ",            3},
    FetchCase{"Float8Lng",                  kFloat8, kLng, 0, "1.5",   5, "1.5  ",            3},
    FetchCase{"Float8Afc",                  kFloat8, kAfc, 0, "1.5",   5, "1.5  ",            3},
    FetchCase{"ExactFit",                   kFloat4, kChr, 0, "1.5",   3, "1.5",              3},
    FetchCase{"TruncationIsRecorded",       kFloat4, kAfc, 0, "12.345", 4, "12.3",            4, 2, 1406, 0},
    FetchCase{"WithoutIndicator",           kFloat8, kLng, 0, "12.345", 4, "12.3",            4, kNoIndicator, 1406, 0},
    FetchCase{"Float4Binary",               kFloat4, kChr, 1, network(12.25f), 10, "21.000052 ", 9},
    FetchCase{"Float4BinaryTooShort",       kFloat4, kChr, 1, "123",   3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"Float8BinaryOfFourBytes",    kFloat8, kAfc, 1, "1234",  3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kFloat4, kLng, 0, "",      3, "~~~",              3, -1, kNoRecord, 0, 1405}),
    nameOf<FetchCase>);

// The NUL stands on the last character of the text.
INSTANTIATE_TEST_SUITE_P(FloatAvc, FetchNumberLayouts, testing::Values(
    FetchCase{"Float4LastIsOverwritten",    kFloat4, kAvc, 0, "12.5",  6, "12.\0  "s,         4},
    FetchCase{"Float8TakesOneByteLess",     kFloat8, kAvc, 0, "12.5",  6, "12.\0 ~"s,         4},
    FetchCase{"Float4ExactFit",             kFloat4, kAvc, 0, "12.5",  4, "12.\0"s,           4},
    FetchCase{"Float8ExactFitIsCut",        kFloat8, kAvc, 0, "12.5",  4, "12\0~"s,           3, 1, 1406, 0},
    FetchCase{"Float4Cut",                  kFloat4, kAvc, 0, "12.345", 4, "12.\0"s,          4, 2, 1406, 0},
    FetchCase{"Float4NullIsNotTouched",     kFloat4, kAvc, 0, "",      3, "~~~",              3, -1, kNoRecord, 0, 1405},
    FetchCase{"Float8NoRoomAtAll",          kFloat8, kAvc, 0, "12.5",  0, "",                 0, 4, 1406, 0},
    FetchCase{"Float4BinaryZeroIsEmpty",    kFloat4, kAvc, 1, network(0.0f), 2, "  ",         0},
    FetchCase{"Float8Binary",               kFloat8, kAvc, 1, network(12.0), 4, "2\0 ~"s,     2}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Float4Str, FetchNumberLayouts, testing::Values(
    FetchCase{"EndsWithANul",               kFloat4, kStr, 0, "1.5",   6, "1.5\0~~"s,         3},
    FetchCase{"TruncationIsRecorded",       kFloat4, kStr, 0, "12.5",  4, "12.\0"s,           4, 1, 1406, 0},
    FetchCase{"NoRoomAtAll",                kFloat4, kStr, 0, "12.5",  0, "",                 0, 0, kNoRecord, -1},
    FetchCase{"EmptyTextIsNull",            kFloat4, kStr, 0, "",      3, "~~~",              3, -1, kNoRecord, 0, 1405},
    FetchCase{"Binary",                     kFloat4, kStr, 1, network(-12.5f), 6, "-21\0~~"s, 3}),
    nameOf<FetchCase>);

/// Bytes that read as `number` where they stand, which is how these members take them.
template <class Float>
std::string unswapped(Float number) {
  return native(number);
}

INSTANTIATE_TEST_SUITE_P(FloatCounted, FetchNumberLayouts, testing::Values(
    FetchCase{"Float4Vcs",                  kFloat4, kVcs, 0, "1.5",   6, p2(3) + "1.5~",     5},
    FetchCase{"Float8VcsExactFit",          kFloat8, kVcs, 0, "1.5",   5, p2(3) + "1.5",      5},
    FetchCase{"Float8VcsLengthOfTheWhole",  kFloat8, kVcs, 0, "12.345", 5, p2(6) + "12.",     5, 3, 1406, 0},
    FetchCase{"Float4VcsWithoutIndicator",  kFloat4, kVcs, 0, "12.345", 5, p2(6) + "12.",     5, kNoIndicator, 1406, 0},
    FetchCase{"Float4VcsNoRoom",            kFloat4, kVcs, 0, "1.5",   1, "~",                1, 0, kNoRecord, -1},
    FetchCase{"Float4Lvc",                  kFloat4, kLvc, 0, "1.5",   8, p4(3) + "1.5~",     7},
    FetchCase{"Float8LvcLengthOfTheWhole",  kFloat8, kLvc, 0, "12.345", 7, p4(6) + "12.",     7, 3, 1406, 0},
    FetchCase{"Float8LvcOnlyTheLength",     kFloat8, kLvc, 0, "1.5",   2, p4(3),              2, 5, 1406, 0},
    FetchCase{"Float4LvcNoRoom",            kFloat4, kLvc, 0, "1.5",   1, "~",                1, 0, kNoRecord, -1},
    FetchCase{"Float4BinaryUnswapped",      kFloat4, kVcs, 1, unswapped(12.25f), 16, p2(9) + "21.000052" + "~~~~~", 11},
    FetchCase{"Float8BinaryUnswapped",      kFloat8, kLvc, 1, unswapped(12.5), 24, p4(20) + "21.00000000000000005", 24},
    FetchCase{"Float8BinarySixDecimals",    kFloat8, kVcs, 1, unswapped(12.5), 12, p2(9) + "21.000005~", 11},
    FetchCase{"BinaryThatCannotBePrinted",  kFloat8, kVcs, 1, unswapped(1e300), 6, "~~~~~~",  6, 0, kNoRecord, -1}),
    nameOf<FetchCase>);

INSTANTIATE_TEST_SUITE_P(Numeric, FetchNumberLayouts, testing::Values(
    FetchCase{"LngNoBlanks",                kNumeric, kLng, 0, "1.50", 6, "1.50~~",           4},
    FetchCase{"LngClips",                   kNumeric, kLng, 0, "12.345", 4, "12.3",           4},
    FetchCase{"AfcBlanks",                  kNumeric, kAfc, 0, "1.50", 6, "1.50  ",           4},
    FetchCase{"AfcClips",                   kNumeric, kAfc, 0, "12.345", 4, "12.3",           4},
    FetchCase{"AfcTwoThousand",             kNumeric, kAfc, 0, k2000,  2000, k2000,        2000},
    FetchCase{"AfcMoreThanTwoThousand",     kNumeric, kAfc, 0, k2001,  4, "~~~~",             4, 0, kNoRecord, -1},
    FetchCase{"AvcNulBehindTheText",        kNumeric, kAvc, 0, "1.50", 7, "1.50\0  "s,        5},
    FetchCase{"AvcAsLongAsTheTarget",       kNumeric, kAvc, 0, "1.50", 4, "1.50\0"s,          5},
    FetchCase{"AvcClips",                   kNumeric, kAvc, 0, "12.345", 4, "12.3\0"s,        5},
    FetchCase{"AvcMoreThanTwoThousand",     kNumeric, kAvc, 0, k2001,  4, "~~~~",             4, 0, kNoRecord, -1},
    FetchCase{"VcsLengthInFront",           kNumeric, kVcs, 0, "1.50", 8, p2(4) + "1.50~~",   6},
    FetchCase{"VcsClips",                   kNumeric, kVcs, 0, "12.345", 6, p2(4) + "12.3",   6},
    FetchCase{"VcsNoRoom",                  kNumeric, kVcs, 0, "1.50", 1, "~",                1, 0, kNoRecord, -1},
    FetchCase{"VcsMoreThan65533",           kNumeric, kVcs, 0, k70000, 4, "~~~~",             4, 0, kNoRecord, -1},
    FetchCase{"LvcLengthInFront",           kNumeric, kLvc, 0, "1.50", 9, p4(4) + "1.50~",    8},
    FetchCase{"LvcClips",                   kNumeric, kLvc, 0, "12.345", 8, p4(4) + "12.3",   8},
    FetchCase{"LvcNoRoom",                  kNumeric, kLvc, 0, "1.50", 3, "~~~",              3, 0, kNoRecord, -1},
    FetchCase{"LngBinary",                  kNumeric, kLng, 1, wireNumeric("-1234.5"), 9, "-1234.5~~", 7},
    FetchCase{"AfcBinary",                  kNumeric, kAfc, 1, wireNumeric("-1234.5"), 9, "-1234.5  ", 7},
    FetchCase{"AvcBinary",                  kNumeric, kAvc, 1, wireNumeric("-1234.5"), 9, "-1234.5\0 "s, 8},
    FetchCase{"VcsBinary",                  kNumeric, kVcs, 1, wireNumeric("-1234.5"), 9, p2(7) + "-1234.5", 9},
    FetchCase{"LvcBinary",                  kNumeric, kLvc, 1, wireNumeric("-1234.5"), 9, p4(5) + "-1234", 9},
    FetchCase{"LngBinaryTooShort",          kNumeric, kLng, 1, "1234567", 3, "~~~",           3, 0, kNoRecord, -1},
    FetchCase{"LngNullClearsTheLength",     kNumeric, kLng, 0, "",     3, "~~~",              0, -1, kNoRecord, 0, 1405},
    FetchCase{"VcsNullClearsTheLength",     kNumeric, kVcs, 0, "",     3, "~~~",              0, -1, kNoRecord, 0, 1405},
    FetchCase{"AvcOtherFormat",             kNumeric, kAvc, 2, "1",    3, "~~~",              3, 0, kNoRecord, -1}),
    nameOf<FetchCase>);
// clang-format on

}  // namespace
}  // namespace zevtest
