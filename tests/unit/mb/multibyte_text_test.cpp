/// Whole texts: never past their end, whatever the bytes; and the wide forms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "zevoci/multibyte.h"

namespace zev::test {
namespace {

/// Bytes in a block of their own, so that a read behind them is seen.
class Block {
 public:
  explicit Block(const std::string &bytes)
      : data_(new char[bytes.size()]), size_(static_cast<int>(bytes.size())) {
    std::memcpy(data_.get(), bytes.data(), bytes.size());
  }
  const char *data() const { return data_.get(); }
  const unsigned char *bytes() const {
    return reinterpret_cast<const unsigned char *>(data_.get());
  }
  int size() const { return size_; }

 private:
  std::unique_ptr<char[]> data_;
  int size_;
};

bool isUtf16(int encoding) {
  return encoding >= 39;
}

/// The bytes of `text` in front of its terminator.
int bytesOf(int encoding, const std::string &text) {
  if (!isUtf16(encoding)) return static_cast<int>(std::strlen(text.c_str()));
  std::size_t at = 0;
  while (at + 1 < text.size() && (text[at] || text[at + 1])) at += 2;
  return static_cast<int>(std::min(at + 1 == text.size() ? at + 1 : at, text.size()));
}

struct Boundaries {
  std::vector<int> ends;
  int whole = 0;  ///< characters that are not cut short
  int width = 0;
};

/// The characters of a text, one by one, each looked at with zeros behind the text.
Boundaries split(int encoding, const std::string &text, int bytes) {
  const std::string padded =
      text.substr(0, static_cast<std::size_t>(bytes)) + std::string(4, '\0');
  Boundaries found;
  int at = 0;
  while (at < bytes) {
    const char *s = padded.data() + at;
    const int length = pg_mblen(encoding, s);
    if (length <= bytes - at) ++found.whole;
    found.width += pg_dsplen(encoding, s);
    at = std::min(at + length, bytes);
    found.ends.push_back(at);
  }
  return found;
}

std::string randomBytes(std::mt19937 &random) {
  std::string bytes(random() % 14, '\0');
  for (char &c : bytes) {
    constexpr unsigned char kNotable[] = {0x00, 0x30, 0x8E, 0x8F, 0x9C, 0xD8, 0xDC, 0xF0};
    switch (random() % 4) {
      case 0:
        c = static_cast<char>(kNotable[random() % std::size(kNotable)]);
        break;
      case 1:
        c = static_cast<char>(' ' + random() % 90);
        break;
      default:
        c = static_cast<char>(random());
    }
  }
  return bytes;
}

class AnyEncoding : public testing::TestWithParam<int> {
 protected:
  const int encoding = GetParam();
  const bool oneByte = pg_encoding_max_length(encoding) == 1;
  std::mt19937 random{static_cast<unsigned>(20261121 + encoding)};
};

TEST_P(AnyEncoding, RandomBytesAreNeverReadPastTheirLength) {
  for (int i = 0; i < 4000; ++i) {
    const std::string text = randomBytes(random);
    const Block block(text);
    const int length = block.size();
    const int bytes = bytesOf(encoding, text);
    const Boundaries expected = split(encoding, text, bytes);
    const int count = static_cast<int>(expected.ends.size());

    ASSERT_EQ(pg_mbstrlen_with_len(encoding, block.data(), length),
              oneByte ? length : count);
    ASSERT_EQ(pg_mbstrdsplen_with_len(encoding, block.data(), length),
              oneByte ? bytes : expected.width);
    for (int limit = -1; limit <= length + 2; ++limit) {
      const int clipped = pg_mbcliplen(encoding, block.data(), length, limit);
      int boundary = 0;
      for (int n = 0; n < expected.whole; ++n) {
        const int end = expected.ends[static_cast<std::size_t>(n)];
        if (end <= limit) boundary = end;
      }
      ASSERT_EQ(clipped, boundary);
      const int characters = pg_mbcharcliplen(encoding, block.data(), length, limit);
      const int last = std::clamp(limit, 0, expected.whole);
      ASSERT_EQ(characters, last ? expected.ends[static_cast<std::size_t>(last - 1)] : 0);
    }
    for (int at = 0; at <= length; ++at) {
      const int verified = pg_verifymb(encoding, block.data() + at, length - at);
      ASSERT_TRUE(verified == -1 || (verified >= 1 && verified <= length - at));
    }
    if (!oci_wchar_table[encoding].mb2wchar_with_len) continue;
    const std::unique_ptr<pg_wchar[]> wide(
        new pg_wchar[static_cast<std::size_t>(length) + 1]);
    const int converted =
        pg_mb2wchar_with_len(encoding, block.data(), wide.get(), length);
    ASSERT_LE(converted, bytes);
    ASSERT_EQ(wide[static_cast<std::size_t>(converted)], 0u);
  }
}

TEST_P(AnyEncoding, ATerminatedTextIsReadToItsEnd) {
  for (int i = 0; i < 4000; ++i) {
    std::string text = randomBytes(random);
    const int bytes = bytesOf(encoding, text);
    if (isUtf16(encoding)) text.resize(text.size() & ~1u);
    const Block block(text + std::string(isUtf16(encoding) ? 2 : 1, '\0'));
    const Boundaries expected = split(encoding, text, std::min<int>(bytes, block.size()));
    if (isUtf16(encoding) && bytes % 2) continue;
    const int count = static_cast<int>(expected.ends.size());
    ASSERT_EQ(pg_mbstrlen(encoding, block.data()), count);
    ASSERT_EQ(pg_mbstrdsplen(encoding, block.data()), oneByte ? bytes : expected.width);
    if (!oci_wchar_table[encoding].mb2wchar_with_len) continue;
    std::vector<pg_wchar> wide(static_cast<std::size_t>(bytes) + 1), bounded(wide);
    const int converted = pg_mb2wchar(encoding, block.data(), wide.data());
    ASSERT_EQ(converted,
              pg_mb2wchar_with_len(encoding, block.data(), bounded.data(), bytes));
    ASSERT_EQ(wide, bounded);
  }
}

INSTANTIATE_TEST_SUITE_P(Number, AnyEncoding, testing::Range(0, 41));

TEST(MultibyteText, AOneByteLimitIsTheCountEvenBehindATerminator) {
  EXPECT_EQ(pg_mbstrlen_with_len(8, "ab", 7), 7);
  EXPECT_EQ(pg_mbstrlen_with_len(0, "ab", 1), 1);
  EXPECT_EQ(pg_mbstrlen(8, "ab"), 2);
  EXPECT_EQ(pg_mbstrdsplen(8, "a\tb"), 3);
}

TEST(MultibyteText, Utf8IsCountedSummedAndClipped) {
  const char *text = "a\xc3\xa9\xe3\x81\x82\xf0\x9f\x98\x80";  // 1 + 2 + 3 + 4 bytes
  EXPECT_EQ(pg_mblen(kUtf8, "a"), 1);
  EXPECT_EQ(pg_mbstrlen(kUtf8, text), 4);
  EXPECT_EQ(pg_mbstrlen_with_len(kUtf8, text, 3), 2);
  EXPECT_EQ(pg_mbstrdsplen(kUtf8, text), 6);
  EXPECT_EQ(pg_mbstrdsplen(kUtf8, "a\tb"), 1);
  const int ends[] = {0, 1, 1, 3, 3, 3, 6, 6, 6, 6, 10, 10};
  for (int limit = 0; limit < 12; ++limit) {
    EXPECT_EQ(pg_mbcliplen(kUtf8, text, 10, limit), ends[limit]);
  }
  EXPECT_EQ(pg_mbcliplen(kUtf8, text, 9, 10), 6);
  EXPECT_EQ(pg_mbcharcliplen(kUtf8, text, 10, 3), 6);
}

TEST(MultibyteText, Utf16IsVerifiedByteByByte) {
  for (const int encoding : {39, 40}) {
    EXPECT_EQ(pg_verifymb(encoding, "\xff", 1), 1);
    EXPECT_EQ(pg_verifymb(encoding, "", 0), -1);
  }
}

/// A lead byte of the Mule encoding: the range of the byte behind it, and the length.
struct MuleLead {
  int first, last, secondFirst, secondLast, length;
};

TEST(MultibyteText, MuleIsVerifiedByItsKindsOfCharacterSets) {
  const MuleLead leads[] = {
      {0x81, 0x8F, 0xA0, 0xFF, 2}, {0x90, 0x99, 0xA0, 0xFF, 3},
      {0x9A, 0x9A, 0xA0, 0xDF, 3}, {0x9B, 0x9B, 0xE0, 0xEF, 3},
      {0x9C, 0x9C, 0xF0, 0xF4, 4}, {0x9D, 0x9D, 0xF5, 0xFE, 4},
  };
  for (int lead = 0; lead < 256; ++lead) {
    const auto *kind = std::find_if(
        std::begin(leads), std::end(leads),
        [&](const auto &row) { return lead >= row.first && lead <= row.last; });
    for (int second = 0; second < 256; ++second) {
      const char text[] = {static_cast<char>(lead), static_cast<char>(second), '\xA0',
                           '\xFF'};
      int expected = lead < 0x80 ? 1 : -1;
      if (kind != std::end(leads) && second >= kind->secondFirst &&
          second <= kind->secondLast) {
        expected = kind->length;
      }
      EXPECT_EQ(pg_verifymb(7, text, 4), expected) << lead << ' ' << second;
      if (expected > 1) {
        EXPECT_EQ(pg_verifymb(7, text, expected - 1), -1);
      }
    }
  }
  EXPECT_EQ(pg_verifymb(7, "\x92\xA4\x41", 3), -1);
  EXPECT_EQ(pg_verifymb(7, "\x9C\xF1\xA0\x7F", 4), -1);
}

using Wides = std::vector<pg_wchar>;

struct WideCase {
  const char *name;
  int encoding;
  std::string bytes;
  Wides wide;
};

const WideCase kWideCases[] = {
    {"Ascii", 0, "a\xff", {'a', 0xFF}},
    {"Latin1", 8, "\xe9", {0xE9}},
    {"StopsAtNul", 8, {"a\0b", 3}, {'a'}},
    {"EucJpKatakana", 1, "\x8e\xb1", {0x8EB1}},
    {"EucJpThreeBytes", 1, "\x8f\xb0\xa1", {0x8FB0A1}},
    {"EucJpPair", 1, "a\xa4\xa2", {'a', 0xA4A2}},
    {"EucJpKatakanaCut", 1, "\x8e", {0x8E}},
    {"EucJpThreeBytesCutToTwo", 1, "\x8f\xb0", {0x8FB0}},
    {"EucJpThreeBytesCutToOne", 1, "\x8f", {0x8F}},
    {"EucJpPairCut", 1, "\xa4", {0xA4}},
    {"EucKr", 3, "\x8e\xb1\xb0\xa1", {0x8EB1, 0xB0A1}},
    {"Johab", 5, "\x88\x61", {0x8861}},
    {"EucCnShift2HasThree", 2, "\x8e\xb1\xb2\xb0\xa1", {0x8EB1B2, 0xB0A1}},
    {"EucCnShift3HasThree", 2, "\x8f\xb1\xb2", {0x8FB1B2}},
    {"EucTwShift2HasFour", 4, "\x8e\xa2\xb1\xb2\xb0\xa1", {0x8EA2B1B2, 0xB0A1}},
    {"EucTwShift3HasThree", 4, "\x8f\xb1\xb2", {0x8FB1B2}},
    {"EucTwShift2Cut", 4, "\x8e\xa2\xb1", {0x8EA2, 0xB1}},
    {"Utf8", 6, "a\xc3\xa9\xe3\x81\x82\xf0\x9f\x98\x80", {'a', 0xE9, 0x3042, 0x1F600}},
    {"Utf8WithoutCheck",
     6,
     "\xc0\x80\xed\xa0\x80\xc3z",
     {0, 0xD800, 0xC0 | ('z' & 0x3F)}},
    {"Utf8Stray", 6, "\x80\xff", {0x80, 0xFF}},
    {"Utf8CutEndsIt", 6, "a\xe3\x81", {'a'}},
    {"Utf8FourBytesCut", 6, "b\xf0\x9f\x98", {'b'}},
    {"MuleOneDimension", 7, "\x81\xe9", {0x8100E9}},
    {"MuleTwoDimensions", 7, "\x92\xa4\xa2", {0x92A4A2}},
    {"MulePrivateOneDimension", 7, "\x9a\xa1\xb2", {0xA100B2}},
    {"MulePrivateTwoDimensions", 7, "\x9c\xf1\xb2\xb3", {0xF1B2B3}},
    {"MuleAscii", 7, "ab", {'a', 'b'}},
    {"MuleCut", 7, "\x92\xa4", {0x92, 0xA4}},
    {"Utf16Le", 39, {"a\0\x3d\xd8\0\xde", 6}, {'a', 0x1F600}},
    {"Utf16Be", 40, {"\0a\xd8\x3d\xde\0", 6}, {'a', 0x1F600}},
    {"Utf16LoneSurrogates", 40, {"\xd8\x3d\0a\xde\0", 6}, {0xD83D, 'a', 0xDE00}},
    {"Utf16SurrogateAtTheEnd", 40, {"\xd8\x3d", 2}, {0xD83D}},
    {"Utf16StopsAtAZeroUnit", 39, {"a\0\0\0b\0", 6}, {'a'}},
    {"Utf16ZeroBytesAreNoEnd", 40, {"\1\0\0\1", 4}, {0x100, 1}},
    {"Utf16OddByteLeftOut", 39, {"a\0b", 3}, {'a'}},
};

class WideForm : public testing::TestWithParam<WideCase> {};

TEST_P(WideForm, IsAsTheEncodingsRuleSays) {
  const WideCase &c = GetParam();
  const Block block(c.bytes);
  Wides wide(c.bytes.size() + 1, 4711);
  const int count =
      pg_mb2wchar_with_len(c.encoding, block.data(), wide.data(), block.size());
  ASSERT_EQ(count, static_cast<int>(c.wide.size()));
  EXPECT_EQ(wide[c.wide.size()], 0u);
  wide.resize(c.wide.size());
  EXPECT_EQ(wide, c.wide);
}

INSTANTIATE_TEST_SUITE_P(Case, WideForm, testing::ValuesIn(kWideCases),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(WideForm, TheSharedEucFormIsThatOfEucJp) {
  const std::string text = "a\x8e\xb1\x8f\xb0\xa1\xa4\xa2";
  const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
  Wides shared(9), own(9);
  EXPECT_EQ(pg_euc2wchar_with_len(bytes, shared.data(), 8), 4);
  EXPECT_EQ(pg_eucjp2wchar_with_len(bytes, own.data(), 8), 4);
  EXPECT_EQ(shared, own);
  EXPECT_EQ(pg_euc2wchar_with_len(bytes, shared.data(), -1), 0);
  EXPECT_EQ(shared[0], 0u);
}

int sign(int n) {
  return (n > 0) - (n < 0);
}

TEST(WideString, ComparesAsTheFunctionsOfTheCLibrary) {
  std::mt19937 random(1);
  for (int i = 0; i < 20000; ++i) {
    char a[6] = {}, b[6] = {};
    pg_wchar wideA[6] = {}, wideB[6] = {};
    for (std::size_t n = 0; n < 5; ++n) {
      a[n] = "\0ab\xff"[random() % 4];
      b[n] = "\0ab\xff"[random() % 4];
      wideA[n] = static_cast<unsigned char>(a[n]);
      wideB[n] = static_cast<unsigned char>(b[n]);
    }
    const std::size_t n = random() % 7;
    ASSERT_EQ(sign(pg_wchar_strcmp(wideA, wideB)), sign(std::strcmp(a, b)));
    ASSERT_EQ(sign(pg_wchar_strncmp(wideA, wideB, n)), sign(std::strncmp(a, b, n)));
    ASSERT_EQ(sign(pg_char_and_wchar_strcmp(a, wideB)), sign(std::strcmp(a, b)));
    ASSERT_EQ(sign(pg_char_and_wchar_strncmp(a, wideB, n)), sign(std::strncmp(a, b, n)));
    ASSERT_EQ(pg_wchar_strlen(wideA), std::strlen(a));
  }
}

TEST(WideString, CharactersAreUnsigned) {
  const pg_wchar high[] = {0xFFFFFFFF, 0}, low[] = {1, 0};
  EXPECT_GT(pg_wchar_strcmp(high, low), 0);
  EXPECT_LT(pg_wchar_strncmp(low, high, 1), 0);
  EXPECT_LT(pg_char_and_wchar_strcmp("\xff", high), 0);
}

}  // namespace
}  // namespace zev::test
