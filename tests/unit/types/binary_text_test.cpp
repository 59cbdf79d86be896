#include "types/binary_text.h"

#include "types_fixture.h"

namespace zevtest {
namespace {

using TextParser = sword (*)(OCIError *, const void *, sb4, char *, sb4 *, sb2 *);

/// One parse. `bytes` is the whole of the room afterwards, "~" where nothing was written.
struct ParseCase {
  const char *name;
  TextParser parse;
  std::string text;
  sb4 room;
  std::string bytes;
  sb4 length;
  int indicator = 0;
  int code = kNoRecord;
  sword result = 0;
};

std::ostream &operator<<(std::ostream &out, const ParseCase &c) {
  return out << c.name;
}

class BinaryText : public testing::TestWithParam<ParseCase> {
 protected:
  Session session;
};

TEST_P(BinaryText, Parses) {
  const ParseCase &c = GetParam();
  const auto text = exactCopy(c.text);
  const auto out = guarded(c.bytes.size());
  sb4 length = c.room;
  sb2 indicator = 77;
  const bool hasIndicator = c.indicator != kNoIndicator;
  EXPECT_EQ(c.parse(session.errhp, text.get(), static_cast<sb4>(c.text.size()), out.get(),
                    &length, hasIndicator ? &indicator : nullptr),
            c.result);
  EXPECT_EQ(std::string(out.get(), c.bytes.size()), c.bytes);
  EXPECT_EQ(length, c.length);
  if (hasIndicator) {
    EXPECT_EQ(indicator, static_cast<sb2>(c.indicator));
  }
  EXPECT_EQ(session.takeRecord(), c.code);
}

const auto kToHex = ConvertPQBinStrToOCIBinStr;
const auto kToBytes = ConvertStringToBinary;
const std::string kManyPairs = "\\x" + std::string(2 * 70000, '4');

// clang-format off
//            name                          parser   text      room bytes  length indicator ...
INSTANTIATE_TEST_SUITE_P(HexFormToDigits, BinaryText, testing::Values(
    ParseCase{"DigitsAreCopied",            kToHex, "\\xDEAD",   6, "DEAD~~", 4},
    ParseCase{"CaseStaysAsItWas",           kToHex, "\\xdEaD",   4, "dEaD",   4},
    ParseCase{"NothingIsChecked",           kToHex, "\\xzz9",    4, "zz9~",   3},
    ParseCase{"CutInSilence",               kToHex, "\\xDEAD",   3, "DEA",    3},
    ParseCase{"NoRoomIsSilentToo",          kToHex, "\\xDEAD",   0, "",       0},
    ParseCase{"NegativeRoomIsNone",         kToHex, "\\xDEAD",  -2, "",       0},
    ParseCase{"NoDigits",                   kToHex, "\\x",       4, "~~~~",   0},
    ParseCase{"EmptyText",                  kToHex, "",          4, "~~~~",   0},
    ParseCase{"EmptyTextWithoutIndicator",  kToHex, "",          4, "~~~~",   0, kNoIndicator}),
    nameOf<ParseCase>);

INSTANTIATE_TEST_SUITE_P(EscapeFormToDigits, BinaryText, testing::Values(
    ParseCase{"CharactersStandForThemselves", kToHex, "aZ",      6, "615A~~", 4},
    ParseCase{"HighBytes",                  kToHex, "\xFE\x7F",  4, "FE7F",   4},
    ParseCase{"OctalDigits",                kToHex, "\\000\\377\\101", 6, "00FF41", 6},
    ParseCase{"DoubledBackslash",           kToHex, "\\\\x",     4, "5C78",   4},
    ParseCase{"OddRoomDropsTheRestInSilence", kToHex, "abc",     5, "6162~",  4},
    ParseCase{"OneByteOfRoom",              kToHex, "abc",       1, "~",      0},
    ParseCase{"FullRoomCountsTheRestDown",  kToHex, "abcde",     4, "6162",   4, -3, 1406, 1},
    ParseCase{"FullRoomWithoutIndicator",   kToHex, "abcde",     4, "6162",   4, kNoIndicator, 1406, 1},
    ParseCase{"NoRoomAtAll",                kToHex, "abc",       0, "",       0, -3, 1406, 1},
    ParseCase{"NegativeRoomIsNoRoom",       kToHex, "abc",      -2, "",      -2, -3, 1406, 1},
    ParseCase{"CountWrapsAtSixteenBits",    kToHex, std::string(70000, 'a'), 2, "61", 2, -69999, 1406, 1},
    ParseCase{"ExactFit",                   kToHex, "abc",       6, "616263", 6},
    ParseCase{"BadEscape",                  kToHex, "a\\q",      6, "61~~~~", 6, 0, 1465, -1},
    ParseCase{"BadEscapeWithoutIndicator",  kToHex, "a\\q",      6, "61~~~~", 6, kNoIndicator, 1465, -1},
    ParseCase{"BadEscapeBehindTheRoomIsNotSeen", kToHex, "a\\q", 2, "61",     2, -2, 1406, 1},
    ParseCase{"LoneBackslash",              kToHex, "\\",        6, "~~~~~~", 6, 0, 1465, -1},
    ParseCase{"BackslashAtTheEnd",          kToHex, "a\\",       6, "61~~~~", 6, 0, 1465, -1},
    ParseCase{"OneOctalDigit",              kToHex, "\\1",       6, "~~~~~~", 6, 0, 1465, -1},
    ParseCase{"TwoOctalDigits",             kToHex, "\\10",      6, "~~~~~~", 6, 0, 1465, -1},
    ParseCase{"FirstOctalDigitAboveThree",  kToHex, "\\400",     6, "~~~~~~", 6, 0, 1465, -1},
    ParseCase{"SecondDigitNotOctal",        kToHex, "\\080",     6, "~~~~~~", 6, 0, 1465, -1},
    ParseCase{"ThirdDigitNotOctal",         kToHex, "\\00a",     6, "~~~~~~", 6, 0, 1465, -1},
    ParseCase{"UpperXIsNoHexForm",          kToHex, "\\XFF",     6, "~~~~~~", 6, 0, 1465, -1}),
    nameOf<ParseCase>);

INSTANTIATE_TEST_SUITE_P(HexFormToBytes, BinaryText, testing::Values(
    ParseCase{"BothCases",                  kToBytes, "\\xdEaD", 3, "\xDE\xAD~", 2},
    ParseCase{"LowerF",                     kToBytes, "\\xff",   1, "\xFF",   1},
    ParseCase{"UpperF",                     kToBytes, "\\xFF",   1, "\xFF",   1},
    ParseCase{"ExactFit",                   kToBytes, "\\xDEAD", 2, "\xDE\xAD", 2},
    ParseCase{"NoRefusalOfOtherCharacters", kToBytes, "\\xGz",   1, "\x03",   1},
    ParseCase{"LastDigitWithoutAPartnerIsNoByte", kToBytes, "\\xABC", 2, "\xAB~", 1},
    ParseCase{"OneDigitIsNoByte",           kToBytes, "\\xA",    2, "~~",     0},
    ParseCase{"NoDigits",                   kToBytes, "\\x",     2, "~~",     0},
    ParseCase{"EmptyText",                  kToBytes, "",        2, "~~",     0},
    ParseCase{"TooLongTellsAllPairs",       kToBytes, "\\x010203", 2, "\x01\x02", 2, 3, 1406, 1},
    ParseCase{"TooLongWithoutIndicator",    kToBytes, "\\x010203", 2, "\x01\x02", 2, kNoIndicator, 1406, 1},
    ParseCase{"NoRoom",                     kToBytes, "\\x01",   0, "",       0, 1, 1406, 1},
    ParseCase{"NegativeRoomIsNoRoom",       kToBytes, "\\x01",  -2, "",      -2, 1, 1406, 1},
    ParseCase{"ManyPairs",                  kToBytes, kManyPairs, 1, "D",      1, 65534, 1406, 1}),
    nameOf<ParseCase>);

INSTANTIATE_TEST_SUITE_P(EscapeFormToBytes, BinaryText, testing::Values(
    ParseCase{"CharactersStandForThemselves", kToBytes, "a\xFE", 3, "a\xFE~", 2},
    ParseCase{"DoubledBackslashIsOne",      kToBytes, "a\\\\",   3, "a\\~",   2},
    ParseCase{"OctalDigits",                kToBytes, "\\000\\377b", 3, "\0\xFF" "b"s, 3},
    ParseCase{"ExactFit",                   kToBytes, "abc",     3, "abc",    3},
    ParseCase{"RoomRunsOut",                kToBytes, "abcde",   3, "abc",    3, -2, 1406, 1},
    ParseCase{"EscapesCountEachCharacter",  kToBytes, "ab\\001", 2, "ab",     2, -4, 1406, 1},
    ParseCase{"RoomRunsOutWithoutIndicator", kToBytes, "abcde",  3, "abc",    3, kNoIndicator, 1406, 1},
    ParseCase{"NoRoom",                     kToBytes, "abc",     0, "",       0, -3, 1406, 1},
    ParseCase{"BadEscape",                  kToBytes, "a\\q",    3, "a~~",    3, 0, 1465, -1},
    ParseCase{"LoneBackslash",              kToBytes, "\\",      3, "~~~",    3, 0, 1465, -1},
    ParseCase{"TwoOctalDigits",             kToBytes, "\\12",    3, "~~~",    3, 0, 1465, -1},
    ParseCase{"FirstOctalDigitAboveThree",  kToBytes, "\\777",   3, "~~~",    3, 0, 1465, -1}),
    nameOf<ParseCase>);
// clang-format on

TEST(HexDigits, AreUpperCase) {
  EXPECT_EQ(std::string(OracleBinaryStringReps, 16), "0123456789ABCDEF");
  EXPECT_EQ(sizeof OracleBinaryStringReps, 16u);
}

/// The value of any character as a hex digit: decimal digits count from "0", "A" to "E"
/// from the code of "7", all others from that of "W"; four bits of the difference stay.
int valueOfDigit(int c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'E') return c - '7';
  return (c - 'W') & 0xF;
}

TEST_F(BinaryText, EveryPairOfCharactersHasItsByte) {
  std::string text = "\\x";
  std::string expected;
  for (int high = 0; high < 256; ++high) {
    for (int low = 0; low < 256; ++low) {
      text += {static_cast<char>(high), static_cast<char>(low)};
      expected += static_cast<char>(valueOfDigit(high) << 4 | valueOfDigit(low));
    }
  }
  const auto out = guarded(expected.size());
  auto length = static_cast<sb4>(expected.size());
  ASSERT_EQ(kToBytes(session.errhp, text.data(), static_cast<sb4>(text.size()), out.get(),
                     &length, nullptr),
            0);
  EXPECT_EQ(length, static_cast<sb4>(expected.size()));
  EXPECT_TRUE(std::string(out.get(), expected.size()) == expected);
}

TEST_F(BinaryText, EveryByteComesBackFromItsDigits) {
  for (int byte = 0; byte < 256; ++byte) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\%03o", static_cast<unsigned>(byte));
    char digits[2];
    sb4 length = 2;
    ASSERT_EQ(kToHex(session.errhp, escape, 4, digits, &length, nullptr), 0);
    const std::string hex = "\\x" + std::string(digits, 2);
    char expected[8];
    std::snprintf(expected, sizeof expected, "\\x%02X", static_cast<unsigned>(byte));
    EXPECT_EQ(hex, expected);
    char back = 0;
    length = 1;
    ASSERT_EQ(kToBytes(session.errhp, hex.data(), 4, &back, &length, nullptr), 0);
    EXPECT_EQ(back, static_cast<char>(byte));
  }
}

TEST_F(BinaryText, HexOfAnyLengthAndRoom) {
  auto random = generator();
  for (int i = 0; i < 5000; ++i) {
    std::string bytes(random() % 200, '\0');
    for (char &c : bytes) c = static_cast<char>(random());
    std::string text = "\\x";
    for (const char c : bytes) {
      char pair[3];
      std::snprintf(pair, sizeof pair, random() % 2 ? "%02x" : "%02X",
                    static_cast<unsigned>(static_cast<unsigned char>(c)));
      text += pair;
    }
    const std::size_t room = random() % 220;
    const auto value = exactCopy(text);
    const auto out = guarded(room);
    auto length = static_cast<sb4>(room);
    const sword result =
        kToBytes(session.errhp, value.get(), static_cast<sb4>(text.size()), out.get(),
                 &length, nullptr);
    const std::size_t n = std::min(room, bytes.size());
    ASSERT_EQ(result, bytes.size() > room ? 1 : 0);
    ASSERT_EQ(length, static_cast<sb4>(n));
    ASSERT_EQ(std::string(out.get(), n), bytes.substr(0, n));
    ASSERT_EQ(std::string(out.get() + n, room - n), std::string(room - n, '~'));
    session.takeRecord();
  }
}

/// The words that ConvertBinaryToString leaves from the address of a length of `room` on.
struct Words {
  std::vector<sb4> stored;
  sword result;
  sb2 indicator = 77;
};
Words binaryToWords(Session &session, const std::string &bytes, sb4 room) {
  Words words{std::vector<sb4>(static_cast<std::size_t>(std::max(room, 1)), -1), 0};
  words.stored[0] = room;
  const auto value = exactCopy(bytes);
  char untouched = '~';
  words.result =
      ConvertBinaryToString(session.errhp, value.get(), static_cast<sb4>(bytes.size()),
                            &untouched, words.stored.data(), &words.indicator);
  EXPECT_EQ(untouched, '~') << "the digits go nowhere but behind the length";
  return words;
}

TEST_F(BinaryText, BinaryDigitsAreWordsThatReplaceTheLength) {
  const Words words = binaryToWords(session, "\xDE\x4F", 6);
  EXPECT_EQ(words.stored, (std::vector<sb4>{'D', 'E', '4', 'F', -1, -1}));
  EXPECT_EQ(words.result, 0);
  EXPECT_EQ(words.indicator, 0);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(BinaryText, BinaryExactFit) {
  const Words words = binaryToWords(session, "\xDE\x4F", 4);
  EXPECT_EQ(words.stored, (std::vector<sb4>{'D', 'E', '4', 'F'}));
  EXPECT_EQ(words.result, 0);
}

TEST_F(BinaryText, BinaryWithoutRoomTellsTwiceTheRest) {
  const Words words = binaryToWords(session, "\xDE\x4F\x01\x02", 3);
  EXPECT_EQ(words.stored, (std::vector<sb4>{'D', 'E', -1}));
  EXPECT_EQ(words.result, 1);
  EXPECT_EQ(words.indicator, 6);
  EXPECT_EQ(session.takeRecord(), 1406);
}

TEST_F(BinaryText, BinaryWithoutRoomForAPairKeepsTheLength) {
  for (const sb4 room : {-5, 0, 1}) {
    const Words words = binaryToWords(session, "\xDE", room);
    EXPECT_EQ(words.stored[0], room);
    EXPECT_EQ(words.result, 1);
    EXPECT_EQ(words.indicator, 2);
    EXPECT_EQ(session.takeRecord(), 1406);
  }
}

TEST_F(BinaryText, BinaryRestIsToldUpToALimit) {
  EXPECT_EQ(binaryToWords(session, std::string(32767, 'x'), 0).indicator,
            static_cast<sb2>(65534));
  EXPECT_EQ(binaryToWords(session, std::string(32768, 'x'), 0).indicator,
            static_cast<sb2>(65534));
  EXPECT_EQ(binaryToWords(session, std::string(32766, 'x'), 0).indicator,
            static_cast<sb2>(65532));
  session.takeRecord();
}

TEST_F(BinaryText, BinaryOfNoBytesClearsAPositiveLength) {
  EXPECT_EQ(binaryToWords(session, "", 6).stored[0], 0);
  EXPECT_EQ(binaryToWords(session, "", 0).stored[0], 0);
  EXPECT_EQ(binaryToWords(session, "", -3).stored[0], -3);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

}  // namespace
}  // namespace zevtest
