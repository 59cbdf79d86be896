#include "types_fixture.h"
#include "zevoci/string_value.h"

namespace zevtest {
namespace {

class BindText : public testing::TestWithParam<BindCase> {
 protected:
  Session session;
};
/// The same while empty text and null differ.
class BindTextPlain : public BindText {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};
class BindTextUtf16 : public testing::TestWithParam<BindCase> {
 protected:
  Session session{OCI_UTF16};
};
class BindTextUtf16Plain : public BindTextUtf16 {
 protected:
  void SetUp() override { session.env->oracleVarchars = 0; }
};

TEST_P(BindText, Goes) {
  expectBind(session, GetParam());
}
TEST_P(BindTextPlain, Goes) {
  expectBind(session, GetParam());
}
TEST_P(BindTextUtf16, Goes) {
  expectBind(session, GetParam());
}
TEST_P(BindTextUtf16Plain, Goes) {
  expectBind(session, GetParam());
}

const auto kChr = ConvertSQLT_CHRToTEXTOID;
const auto kLng = ConvertSQLT_LNGToTEXTOID;
const auto kAfc = ConvertSQLT_AFCToTEXTOID;
const auto kStr = ConvertSQLT_STRToTEXTOID;
const auto kVcs = ConvertSQLT_VCSToTEXTOID;
const auto kLvc = ConvertSQLT_LVCToTEXTOID;

std::string vcs(ub2 length, const std::string &bytes) {
  return native(length) + bytes;
}
std::string lvc(ub4 length, const std::string &bytes) {
  return native(length) + bytes;
}
/// `text` with its NUL in a buffer of `size` bytes, filled with "#" behind.
std::string inBuffer(const std::string &text, std::size_t size) {
  std::string buffer(size, '#');
  return buffer.replace(0, text.size() + 1, text + '\0');
}
const std::string kLongestVcs(65533, 'x');

// clang-format off
INSTANTIATE_TEST_SUITE_P(Raw, BindText, testing::Values(
    BindCase{"ChrLosesTrailingBlanks", kChr, "abc  ", 5, "abc\0"s, 0},
    BindCase{"ChrKeepsOneBlank", kChr, "  ", 2, " \0"s, 0},
    BindCase{"ChrOfThreeBlanksKeepsOne", kChr, "   ", 3, " \0"s, 0},
    BindCase{"ChrOfOneBlankIsLeftAlone", kChr, " ", 1, " \0"s, 0},
    BindCase{"ChrKeepsInnerBlanks", kChr, " a b ", 5, " a b\0"s, 0},
    BindCase{"ChrOfNoBytesIsNull", kChr, "", 0, "", 0, 0, kNoRecord, true},
    BindCase{"ChrOfNegativeSizeFails", kChr, "abc", -1, "", 0, -1},
    BindCase{"LngLosesTrailingBlanksToo", kLng, "abc  ", 5, "abc\0"s, 0},
    BindCase{"LngOfNoBytesIsNull", kLng, "", 0, "", 0, 0, kNoRecord, true},
    BindCase{"AfcKeepsBlanks", kAfc, "abc  ", 5, "abc  \0"s, 0},
    BindCase{"AfcOfNoBytesIsNull", kAfc, "", 0, "", 0, 0, kNoRecord, true}),
    nameOf<BindCase>);

INSTANTIATE_TEST_SUITE_P(Counted, BindText, testing::Values(
    BindCase{"VcsTakesItsLength", kVcs, vcs(3, "abcdef"), 8, "abc\0"s, 0},
    BindCase{"VcsOfLengthZeroIsEmptyText", kVcs, vcs(0, "abc"), 5, "\0"s, 0},
    BindCase{"VcsInOneByteIsAnInvalidArgument", kVcs, "a", 1, "", 0, -1, 1084},
    BindCase{"VcsOfTheLongestLength", kVcs, vcs(65533, kLongestVcs), 65535, kLongestVcs + '\0', 0},
    BindCase{"VcsAboveTheLongestLength", kVcs, vcs(65534, "abc"), 5, "", 0, -1, 1458},
    BindCase{"VcsInTooLargeABuffer", kVcs, vcs(3, "abc"), 65536, "", 0, -1, 1458},
    BindCase{"LvcTakesItsLength", kLvc, lvc(3, "abcdef"), 10, "abc\0"s, 0},
    BindCase{"LvcOfLengthZeroIsEmptyText", kLvc, lvc(0, "abc"), 7, "\0"s, 0},
    BindCase{"LvcBeyondTheLongestLength", kLvc, lvc(0x7FFFFFFC, "abc"), 7, "", 0, -1, 1458}),
    nameOf<BindCase>);

INSTANTIATE_TEST_SUITE_P(Strings, BindText, testing::Values(
    BindCase{"StrGoesUpToItsNul", kStr, "abc\0"s, 4, "abc\0"s, 0},
    BindCase{"StrEndsAtTheLastNulOfTheBuffer", kStr, inBuffer("abc", 8), 8, "abc\0"s, 0},
    BindCase{"StrOfEmptyTextInTwoBytesIsNull", kStr, "\0#"s, 2, "", 0, 0, kNoRecord, true},
    BindCase{"StrInOneByteFails", kStr, "\0"s, 1, "", 0, -1},
    BindCase{"StrInNoBytesFails", kStr, "", 0, "", 0, -1},
    BindCase{"StrEndsAtANulInItsSecondByte", kStr, "a\0##"s, 4, "a\0"s, 0},
    BindCase{"StrWithoutNul", kStr, "abcd", 4, "", 0, -1, 1480},
    BindCase{"StrWithItsOnlyNulInFront", kStr, "\0abc"s, 4, "", 0, -1, 1480},
    BindCase{"StrOfFourThousandBytes", kStr, std::string(3999, 'x') + '\0', 4000,
             std::string(3999, 'x') + '\0', 0},
    BindCase{"StrAboveFourThousandBytes", kStr, std::string(4000, 'x') + '\0', 4001, "", 0, -1, 1480},
    BindCase{"StrWhoseTextEndsLate", kStr, inBuffer(std::string(4500, 'x'), 5000), 5000, "", 0, -1, 1480}),
    nameOf<BindCase>);

INSTANTIATE_TEST_SUITE_P(Members, BindTextPlain, testing::Values(
    BindCase{"StrWhoseTextEndsLateGoes", kStr, inBuffer(std::string(4500, 'x'), 5000), 5000,
             std::string(4500, 'x') + '\0', 0},
    BindCase{"StrEndsAtItsFirstNul", kStr, "ab\0cd\0"s, 6, "ab\0"s, 0},
    BindCase{"StrOfNoBytesIsEmptyText", kStr, "", 0, "\0"s, 0},
    BindCase{"StrOfEmptyText", kStr, "\0#"s, 2, "\0"s, 0},
    BindCase{"StrWithoutNul", kStr, "abcd", 4, "", 0, -1, 1480},
    BindCase{"AfcOfNoBytesIsEmptyText", kAfc, "", 0, "\0"s, 0},
    BindCase{"ChrOfNoBytesIsNull", kChr, "", 0, "", 0, 0, kNoRecord, true}),
    nameOf<BindCase>);

// Two bytes a character come in, the server's encoding goes out. U+20AC has three bytes there.
INSTANTIATE_TEST_SUITE_P(Members, BindTextUtf16, testing::Values(
    BindCase{"Chr", kChr, utf16("abc  "), 10, "abc\0"s, 0},
    BindCase{"ChrGrows", kChr, "\xAC\x20"s, 2, "\xE2\x82\xAC\0"s, 0},
    BindCase{"Afc", kAfc, utf16("abc  "), 10, "abc  \0"s, 0},
    BindCase{"Lng", kLng, utf16("abc"), 6, "abc\0"s, 0},
    BindCase{"Vcs", kVcs, vcs(6, utf16("abc")), 8, "abc\0"s, 0},
    BindCase{"Lvc", kLvc, lvc(6, utf16("abc")), 10, "abc\0"s, 0},
    BindCase{"Str", kStr, utf16("abc\0"s), 8, "abc\0"s, 0},
    BindCase{"StrOfEmptyTextIsNull", kStr, "\0\0"s, 2, "", 0, 0, kNoRecord, true},
    BindCase{"StrOfOneCharacterHasNoNul", kStr, utf16("a"), 2, "", 0, -1, 1480},
    BindCase{"StrAboveFourThousandBytesOnceConverted", kStr, utf16(std::string(4000, 'x') + '\0'), 8002, "", 0, -1, 1480},
    BindCase{"LngLosesTrailingBlanksOnceConverted", kLng, utf16("a  "), 6, "a\0"s, 0},
    BindCase{"StrOfHalfACharacterAndANul", kStr, "\0\0\0"s, 3, "", 0, -1, -1},
    BindCase{"HalfACharacter", kChr, "a\0b"s, 3, "", 0, -1, -1},
    BindCase{"LoneSurrogate", kChr, "\x00\xDC"s, 2, "", 0, -1, -1}),
    nameOf<BindCase>);

// The first zero byte ends the text before it is converted.
INSTANTIATE_TEST_SUITE_P(Members, BindTextUtf16Plain, testing::Values(
    BindCase{"StrEndsInItsFirstCharacter", kStr, utf16("abc\0"s), 8, "a"s, 0}),
    nameOf<BindCase>);
// clang-format on

TEST_F(BindTextUtf16, FailedConversionsAreToldByTheirKind) {
  void *out = nullptr;
  ub4 length = 0;
  ub1 format = 0;
  EXPECT_EQ(kChr(session.errhp, "a\0b", 3, nullptr, &out, &length, &format), -1);
  session.takeRecord();
  EXPECT_EQ(session.lastMessage,
            "An incomplete multibyte sequence has been encountered in the input");
  EXPECT_EQ(kChr(session.errhp, "\x00\xDC", 2, nullptr, &out, &length, &format), -1);
  session.takeRecord();
  EXPECT_EQ(session.lastMessage,
            "An invalid multibyte sequence has been encountered in the input");
}

TEST_F(BindTextUtf16, VcsKeepsTheLowSixteenBitsOfItsConvertedLength) {
  std::string euros;
  for (int i = 0; i < 30000; ++i) euros += "\xAC\x20";
  const std::string value = vcs(60000, euros);
  void *out = nullptr;
  ub4 length = 0;
  ub1 format = 0;
  ASSERT_EQ(kVcs(session.errhp, value.data(), 60002, nullptr, &out, &length, &format), 0);
  EXPECT_EQ(length, 90000u - 65536 + 1);
  EXPECT_EQ(std::strlen(static_cast<char *>(out)), 90000u - 65536);
  std::free(out);
}

TEST_F(BindTextUtf16Plain, TextThatIsCutStillEndsInsideItsBlock) {
  void *out = nullptr;
  ub4 length = 0;
  ub1 format = 0;
  const std::string value = utf16("abc\0"s);
  ASSERT_EQ(kStr(session.errhp, value.data(), 8, nullptr, &out, &length, &format), 0);
  EXPECT_STREQ(static_cast<char *>(out), "a");
  std::free(out);
}

TEST_F(BindText, MissingValueOfRawCharactersIsNull) {
  for (const auto convert : {kChr, kLng, kAfc}) {
    void *out = nullptr;
    ub4 length = 9;
    ub1 format = 9;
    EXPECT_EQ(convert(session.errhp, nullptr, 3, nullptr, &out, &length, &format), 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(format, 0);
  }
}

TEST_F(BindText, MissingValueOfAStringFails) {
  void *out = nullptr;
  ub4 length = 9;
  ub1 format = 9;
  EXPECT_EQ(kStr(session.errhp, nullptr, 3, nullptr, &out, &length, &format), -1);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(BindText, WithoutEnvironmentAStringEndsAtItsFirstNul) {
  session.errhp->parenth = nullptr;
  expectBind(session, {"", kStr, "ab\0cd\0"s, 6, "ab\0"s, 0});
  session.errhp->parenth = session.env;
}

class BindStringValue : public BindText {
 protected:
  sword convert(sb4 size) {
    const OCIString *pointer = &string;
    return ConvertSQLT_VSTToTEXTOID(session.errhp, &pointer, size, nullptr, &out, &length,
                                    &format);
  }
  ~BindStringValue() override { std::free(out); }

  char chars[8] = "abcdef";
  OCIString string{8, 3, reinterpret_cast<OraText *>(chars)};
  void *out = nullptr;
  ub4 length = 9;
  ub1 format = 9;
};

TEST_F(BindStringValue, TextAndLengthAreUsed) {
  ASSERT_EQ(convert(8), 0);
  EXPECT_EQ(length, 4u);
  EXPECT_STREQ(static_cast<char *>(out), "abc");
  EXPECT_EQ(format, 0);
}

TEST_F(BindStringValue, TooLongATextFailsWithoutARecord) {
  string.length = 65534;
  EXPECT_EQ(convert(8), -1);
  EXPECT_EQ(length, 0u);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(BindStringValue, LongestTextIsSent) {
  std::string longest(65533, 'x');
  string = {65533, 65533, reinterpret_cast<OraText *>(longest.data())};
  ASSERT_EQ(convert(65535), 0);
  EXPECT_EQ(length, 65534u);
  EXPECT_EQ(static_cast<char *>(out), longest);
}

TEST_F(BindStringValue, TooLargeABufferFailsWithoutARecord) {
  EXPECT_EQ(convert(65536), -1);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(BindStringValue, EmptyTextIsSent) {
  string.length = 0;
  ASSERT_EQ(convert(8), 0);
  EXPECT_EQ(length, 1u);
}

}  // namespace
}  // namespace zevtest
