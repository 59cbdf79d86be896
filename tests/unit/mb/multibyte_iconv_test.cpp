/// Lengths, verification and wide form against the system's iconv.
#include <random>

#include "iconv_oracle.h"
#include "zevoci/multibyte.h"

namespace zev::test {
namespace {

int verify(int encoding, std::string_view bytes) {
  return pg_verifymb(encoding, bytes.data(), static_cast<int>(bytes.size()));
}

std::string hex(std::string_view bytes) {
  std::string out;
  char two[3];
  for (const char c : bytes) {
    std::snprintf(two, sizeof two, "%02x", static_cast<unsigned char>(c));
    out += two;
  }
  return out;
}

/// Where iconv and the library's rules differ.
struct Difference {
  int encoding;
  int refused;  ///< bytes above ASCII that iconv takes for one-byte characters
  int longer;   ///< characters whose lead byte stands for a longer form here
};

// The control characters of the upper half, and single bytes of vendors; in JOHAB the
// Hangul behind 0x8F, which the rule of lengths takes for a single shift.
constexpr Difference kDifferences[] = {
    {1, 30, 30}, {3, 32, 32}, {5, 0, 112}, {35, 1, 1}, {36, 1, 1},
};

Difference differencesOf(int encoding) {
  for (const Difference &row : kDifferences) {
    if (row.encoding == encoding) return row;
  }
  return {encoding, 0, 0};
}

bool isUpperByte(std::string_view bytes) {
  return bytes.size() == 1 && (bytes[0] & 0x80);
}

class EachEncoding : public testing::TestWithParam<KnownEncoding> {
 protected:
  const int encoding = GetParam().number;
  const char *const name = GetParam().name;
  const Difference differences = differencesOf(encoding);
};

TEST_P(EachEncoding, EveryCharacterIsVerifiedAndMeasured) {
  int refused = 0, longer = 0;
  for (const auto &[c, bytes] : charactersOf(name)) {
    const int n = static_cast<int>(bytes.size());
    if (isUpperByte(bytes) && verify(encoding, bytes) == -1) {
      ++refused;
    } else {
      ASSERT_EQ(verify(encoding, bytes), n) << hex(bytes);
    }
    for (int shorter = 0; shorter < n; ++shorter) {
      ASSERT_EQ(pg_verifymb(encoding, bytes.data(), shorter), -1) << hex(bytes);
    }
    if (pg_mblen(encoding, bytes.c_str()) > n) {
      ++longer;
    } else {
      ASSERT_EQ(pg_mblen(encoding, bytes.c_str()), n) << hex(bytes);
    }
    ASSERT_EQ(pg_mbstrlen(encoding, bytes.c_str()), 1) << hex(bytes);
    ASSERT_EQ(pg_mbcliplen(encoding, bytes.data(), n, n - 1), 0) << hex(bytes);
  }
  EXPECT_EQ(refused, differences.refused);
  EXPECT_EQ(longer, differences.longer);
}

/// Counts in `refused` what iconv takes for one character though it is not verified.
void compare(int encoding, const Iconv &decode, std::string_view bytes, int &refused) {
  if (verify(encoding, bytes) == static_cast<int>(bytes.size())) return;
  const auto taken = decode(bytes);
  if (!taken || taken->size() != 4 || codePointOf(*taken) > 0x10FFFF) return;
  ASSERT_TRUE(isUpperByte(bytes)) << hex(bytes);
  ++refused;
}

TEST_P(EachEncoding, WhatIsRefusedNoIconvTakes) {
  const Iconv decode("UCS-4LE", name);
  int refused = 0;
  std::string bytes;
  for (int a = 1; a < 256; ++a) {
    bytes.assign(1, static_cast<char>(a));
    compare(encoding, decode, bytes, refused);
    for (int b = 0; b < 256; ++b) {
      bytes.assign({static_cast<char>(a), static_cast<char>(b)});
      compare(encoding, decode, bytes, refused);
    }
  }
  std::mt19937 random(20261121);
  for (int i = 0; i < 300000; ++i) {
    bytes.assign(3 + random() % 2, '\0');
    for (char &c : bytes)
      c = static_cast<char>(random() % 4 ? 0x80 | random() : random());
    if (encoding == 38) {
      bytes = {bytes[0], static_cast<char>('0' + random() % 10), bytes[2],
               static_cast<char>('0' + random() % 10)};
    }
    compare(encoding, decode, bytes, refused);
  }
  EXPECT_EQ(refused, differences.refused);
}

/// A text of verified characters that are measured as iconv does.
struct Text {
  std::string bytes;
  std::vector<int> ends;  ///< of each character
  std::u32string codePoints;
};

class RandomText : public EachEncoding {
 protected:
  Text make() {
    Text text;
    for (auto n = random() % 30; n; --n) {
      const Encoded &character = all[random() % all.size()];
      const int bytes = static_cast<int>(character.bytes.size());
      if (pg_mblen(encoding, character.bytes.c_str()) != bytes) continue;
      text.bytes += character.bytes;
      text.ends.push_back(static_cast<int>(text.bytes.size()));
      text.codePoints += character.codePoint;
    }
    return text;
  }
  /// The last boundary of a character that is not behind `limit`.
  static int boundary(const Text &text, int limit) {
    int last = 0;
    for (const int end : text.ends) {
      if (end <= limit) last = end;
    }
    return last;
  }

  const std::vector<Encoded> all = charactersOf(name);
  std::mt19937 random{20261121};
};

TEST_P(RandomText, IsCountedAndClippedAtItsCharacters) {
  for (int i = 0; i < 2000; ++i) {
    const Text text = make();
    const int bytes = static_cast<int>(text.bytes.size());
    const int count = static_cast<int>(text.ends.size());
    ASSERT_EQ(pg_mbstrlen(encoding, text.bytes.c_str()), count);
    ASSERT_EQ(pg_mbstrlen_with_len(encoding, text.bytes.data(), bytes), count);
    for (int limit = 0; limit <= bytes + 1; ++limit) {
      ASSERT_EQ(pg_mbcliplen(encoding, text.bytes.data(), bytes, limit),
                boundary(text, limit));
    }
    for (int limit = 0; limit <= count + 1; ++limit) {
      const int last = std::min(limit, count);
      ASSERT_EQ(pg_mbcharcliplen(encoding, text.bytes.data(), bytes, limit),
                last ? text.ends[static_cast<std::size_t>(last - 1)] : 0);
    }
  }
}

/// The bytes of each character as one number; for UTF-8 its code point.
pg_wchar wideOf(const KnownEncoding &encoding, std::string_view bytes,
                char32_t codePoint) {
  if (encoding.number == kUtf8) return codePoint;
  pg_wchar value = 0;
  for (const char c : bytes) value = value * 256 + static_cast<unsigned char>(c);
  return value;
}

TEST_P(RandomText, BecomesWideOneCharacterEach) {
  if (!oci_wchar_table[encoding].mb2wchar_with_len) {
    EXPECT_GE(encoding, 34);
    return;
  }
  for (int i = 0; i < 2000; ++i) {
    const Text text = make();
    std::vector<pg_wchar> wide(text.bytes.size() + 1, 4711);
    ASSERT_EQ(pg_mb2wchar(encoding, text.bytes.c_str(), wide.data()),
              static_cast<int>(text.ends.size()));
    int from = 0;
    for (std::size_t at = 0; at < text.ends.size(); ++at) {
      const std::string_view bytes(text.bytes.data() + from,
                                   static_cast<std::size_t>(text.ends[at] - from));
      ASSERT_EQ(wide[at], wideOf(GetParam(), bytes, text.codePoints[at])) << hex(bytes);
      from = text.ends[at];
    }
    ASSERT_EQ(wide[text.ends.size()], 0u);
  }
}

INSTANTIATE_TEST_SUITE_P(Known, EachEncoding, testing::ValuesIn(kMultibyteEncodings),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Known, RandomText, testing::ValuesIn(kMultibyteEncodings),
                         nameOf);

class OneByteEncoding : public testing::TestWithParam<KnownEncoding> {};

TEST_P(OneByteEncoding, EachByteThatIconvTakesIsACharacter) {
  const auto [encoding, name] = GetParam();
  const Iconv decode("UCS-4LE", name);
  int taken = 0;
  for (int c = 1; c < 256; ++c) {
    const char text[] = {static_cast<char>(c), '\0'};
    if (!decode(text)) continue;
    ++taken;
    EXPECT_EQ(pg_verifymb(encoding, text, 1), 1) << c;
    EXPECT_EQ(pg_mblen(encoding, text), 1) << c;
    EXPECT_EQ(pg_mbstrlen(encoding, text), 1) << c;
    pg_wchar wide[2];
    EXPECT_EQ(pg_mb2wchar(encoding, text, wide), 1);
    EXPECT_EQ(wide[0], static_cast<pg_wchar>(c));
  }
  EXPECT_GT(taken, 200);
}

INSTANTIATE_TEST_SUITE_P(Known, OneByteEncoding, testing::ValuesIn(kOneByteEncodings),
                         nameOf);

class Utf16 : public testing::TestWithParam<KnownEncoding> {};

TEST_P(Utf16, EveryCharacterIsMeasuredAndBecomesItsCodePoint) {
  const auto [encoding, name] = GetParam();
  for (auto [c, bytes] : charactersOf(name)) {
    const int n = static_cast<int>(bytes.size());
    bytes += '\0';  // with the terminator of the string a unit of 0
    ASSERT_EQ(pg_mblen(encoding, bytes.c_str()), n) << hex(bytes);
    ASSERT_EQ(pg_mbstrlen(encoding, bytes.c_str()), 1) << hex(bytes);
    ASSERT_EQ(pg_mbcliplen(encoding, bytes.data(), n, n - 1), 0) << hex(bytes);
    pg_wchar wide[5];
    ASSERT_EQ(pg_mb2wchar(encoding, bytes.c_str(), wide), 1) << hex(bytes);
    ASSERT_EQ(wide[0], c);
    ASSERT_EQ(wide[1], 0u);
  }
}

INSTANTIATE_TEST_SUITE_P(Known, Utf16,
                         testing::Values(KnownEncoding{39, "UTF-16LE"},
                                         KnownEncoding{40, "UTF-16BE"}),
                         nameOf);

}  // namespace
}  // namespace zev::test
