/// The table of encodings, and the rules by which a byte begins a character.
#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <string>
#include <string_view>
#include <vector>

#include "utils/mb/unicode.h"
#include "zevoci/multibyte.h"

namespace zev::test {
namespace {

#define ROW(first, last, wide, length, width, verifier, longest)                        \
  {                                                                                     \
    first, last, {                                                                      \
      wide, pg_##length##_mblen, pg_##width##_dsplen, pg_##verifier##_verifier, longest \
    }                                                                                   \
  }

struct Rows {
  int first, last;
  MultibyteRow row;
};
// clang-format off
constexpr Rows kRows[] = {
    ROW(0, 0,   pg_ascii2wchar_with_len,   ascii,   ascii,   ascii,   1),
    ROW(1, 1,   pg_eucjp2wchar_with_len,   eucjp,   eucjp,   eucjp,   3),
    ROW(2, 2,   pg_euccn2wchar_with_len,   euccn,   euccn,   euckr,   3),
    ROW(3, 3,   pg_euckr2wchar_with_len,   euckr,   euckr,   euckr,   3),
    ROW(4, 4,   pg_euctw2wchar_with_len,   euctw,   euctw,   euctw,   3),
    ROW(5, 5,   pg_johab2wchar_with_len,   johab,   johab,   johab,   3),
    ROW(6, 6,   pg_utf2wchar_with_len,     utf,     utf,     utf8,    4),
    ROW(7, 7,   pg_mule2wchar_with_len,    mule,    mule,    mule,    3),
    ROW(8, 33,  pg_latin12wchar_with_len,  latin1,  latin1,  latin1,  1),
    ROW(34, 34, nullptr,                   sjis,    sjis,    sjis,    2),
    ROW(35, 35, nullptr,                   big5,    big5,    big5,    2),
    ROW(36, 36, nullptr,                   gbk,     gbk,     gbk,     2),
    ROW(37, 37, nullptr,                   uhc,     uhc,     uhc,     2),
    ROW(38, 38, nullptr,                   gb18030, gb18030, gb18030, 2),
    ROW(39, 39, pg_utf16le2wchar_with_len, utf16le, utf16le, ascii,   4),
    ROW(40, 40, pg_utf16be2wchar_with_len, utf16be, utf16be, ascii,   4),
};
// clang-format on
#undef ROW

TEST(EncodingTable, HasOneRowForEachNumber) {
  int number = 0;
  for (const Rows &rows : kRows) {
    EXPECT_EQ(rows.first, number);
    for (; number <= rows.last; ++number) {
      const MultibyteRow &row = oci_wchar_table[number];
      EXPECT_EQ(row.mb2wchar_with_len, rows.row.mb2wchar_with_len) << number;
      EXPECT_EQ(row.mblen, rows.row.mblen) << number;
      EXPECT_EQ(row.dsplen, rows.row.dsplen) << number;
      EXPECT_EQ(row.mbverify, rows.row.mbverify) << number;
      EXPECT_EQ(row.maxmblen, rows.row.maxmblen) << number;
      EXPECT_EQ(pg_encoding_max_length(number), rows.row.maxmblen) << number;
    }
  }
  EXPECT_EQ(number, 41);
  EXPECT_EQ(std::size(oci_wchar_table), 41u);
}

TEST(EncodingTableDeathTest, NumbersOutsideAreStopped) {
  const char *const assertion =
      "utils/mb/wchar.cpp:[0-9]+: .*"
      "\\(\\(encoding\\) >= 0 && \\(encoding\\) < _PG_LAST_ENCODING_\\)";
  for (const int number : {41, -1, 873, -2147483647 - 1}) {
    EXPECT_DEATH(pg_encoding_max_length(number), assertion) << number;
    EXPECT_DEATH(pg_mblen(number, "a"), assertion) << number;
    EXPECT_DEATH(pg_mbstrlen(number, "a"), assertion) << number;
    EXPECT_DEATH(pg_verifymb(number, "a", 1), assertion) << number;
  }
}

TEST(EncodingTableDeathTest, AnEncodingWithoutWideFormIsStopped) {
  pg_wchar wide[2];
  for (const int number : {34, 35, 36, 37, 38}) {
    EXPECT_DEATH(pg_mb2wchar(number, "a", wide), "mb2wchar_with_len") << number;
  }
}

/// The result for lead bytes up to `last`, from the one behind the row before.
struct Leads {
  int last, value;
};
struct LeadCase {
  const char *name;
  std::vector<int> encodings;
  std::vector<Leads> leads;
};

void expectByLead(const LeadCase &c, int (*function)(int, const char *)) {
  for (const int encoding : c.encodings) {
    int lead = 0;
    for (const Leads &leads : c.leads) {
      for (; lead <= leads.last; ++lead) {
        const char text[5] = {static_cast<char>(lead), '\x41'};
        EXPECT_EQ(function(encoding, text), leads.value)
            << c.name << " encoding " << encoding << " lead " << lead;
      }
    }
    EXPECT_EQ(lead, 256);
  }
}

std::vector<int> oneByteEncodings() {
  std::vector<int> all{0};
  for (int number = 8; number <= 33; ++number) all.push_back(number);
  return all;
}

TEST(CharacterLength, FollowsTheLeadByte) {
  const LeadCase cases[] = {
      {"OneByte", oneByteEncodings(), {{0xFF, 1}}},
      {"Euc", {1, 3, 5}, {{0x7F, 1}, {0x8E, 2}, {0x8F, 3}, {0xFF, 2}}},
      {"EucTw", {4}, {{0x7F, 1}, {0x8D, 2}, {0x8E, 4}, {0x8F, 3}, {0xFF, 2}}},
      {"TopBit", {2, 35, 36, 37}, {{0x7F, 1}, {0xFF, 2}}},
      {"Utf8", {6}, {{0xBF, 1}, {0xDF, 2}, {0xEF, 3}, {0xF7, 4}, {0xFF, 1}}},
      {"Mule", {7}, {{0x80, 1}, {0x8F, 2}, {0x9B, 3}, {0x9D, 4}, {0xFF, 1}}},
      {"Sjis", {34}, {{0x80, 1}, {0x9F, 2}, {0xDF, 1}, {0xFC, 2}, {0xFF, 1}}},
      {"Gb18030", {38}, {{0x7F, 1}, {0xFF, 2}}},
  };
  for (const LeadCase &c : cases) expectByLead(c, pg_mblen);
}

TEST(CharacterLength, ADigitBehindTheLeadByteOfGb18030MakesFour) {
  for (int second = 0; second < 256; ++second) {
    const char text[] = {'\x81', static_cast<char>(second), '\0'};
    EXPECT_EQ(pg_mblen(38, text), second >= '0' && second <= '9' ? 4 : 2) << second;
  }
}

TEST(CharacterLength, OfUtf16IsFourForAPairOfSurrogatesOnly) {
  const auto length = [](std::string_view bigEndian) {
    std::string little(bigEndian);
    for (std::size_t i = 0; i + 1 < little.size(); i += 2)
      std::swap(little[i], little[i + 1]);
    EXPECT_EQ(pg_mblen(39, little.c_str()), pg_mblen(40, bigEndian.data()));
    return pg_mblen(40, bigEndian.data());
  };
  EXPECT_EQ(length({"\0a\0\0", 4}), 2);
  EXPECT_EQ(length({"\xD8\x3D\xDE\0\0\0", 6}), 4);
  EXPECT_EQ(length({"\xDB\xFF\xDF\xFF\0\0", 6}), 4);
  EXPECT_EQ(length({"\xD8\x3D\0a\0\0", 6}), 2);
  EXPECT_EQ(length({"\xD8\x3D\0\0", 4}), 2);
  EXPECT_EQ(length({"\xDC\0\xDC\0\0\0", 6}), 2);
}

TEST(DisplayWidth, FollowsTheLeadByte) {
  const std::vector<Leads> ascii{{0, 0}, {31, -1}, {126, 1}, {127, -1}};
  const auto with = [&](std::vector<Leads> upper) {
    upper.insert(upper.begin(), ascii.begin(), ascii.end());
    return upper;
  };
  const LeadCase cases[] = {
      {"OneByte", oneByteEncodings(), with({{0xFF, 1}})},
      {"TopBit", {2, 3, 4, 5, 35, 36, 37, 38}, with({{0xFF, 2}})},
      {"EucJp", {1}, with({{0x8D, 2}, {0x8E, 1}, {0xFF, 2}})},
      {"Sjis", {34}, with({{0xA0, 2}, {0xDF, 1}, {0xFF, 2}})},
      {"Mule",
       {7},
       with({{0x8F, 1},
             {0x99, 2},
             {0x9A, 1},
             {0x9B, 2},
             {0x9C, 1},
             {0x9D, 2},
             {0xFF, 1}})},
      {"Utf8Alone", {6}, with({{0xFF, -1}})},
  };
  for (const LeadCase &c : cases) expectByLead(c, pg_dsplen);
}

struct WidthCase {
  const char *name;
  const char *utf8;
  int width;
};

TEST(DisplayWidth, OfUtf8IsThatOfTheCodePoint) {
  const WidthCase rows[] = {
      {"Nul", "", 0},
      {"NextLine", "\xc2\x85", -1},
      {"NoBreakSpace", "\xc2\xa0", 1},
      {"SoftHyphen", "\xc2\xad", 1},
      {"CombiningAcute", "\xcc\x81", 0},
      {"EnclosingCircle", "\xe2\x83\x9d", 0},
      {"ZeroWidthSpace", "\xe2\x80\x8b", 0},
      {"Hiragana", "\xe3\x81\x82", 2},
      {"HalfWidthKatakana", "\xef\xbd\xb1", 1},
      {"FullWidthA", "\xef\xbc\xa1", 2},
      {"HangulSyllable", "\xea\xb0\x80", 2},
      {"HangulVowel", "\xe1\x85\xa1", 0},
      {"Emoji", "\xf0\x9f\x98\x80", 2},
      {"PlaneTwoUnassigned", "\xf0\xaf\xbf\xbd", 2},
      {"LastCodePoint", "\xf4\x8f\xbf\xbf", 1},
      {"BeyondTheLast", "\xf4\x90\x80\x80", -1},
      {"Overlong", "\xc0\x80", -1},
      {"Surrogate", "\xed\xa0\x80", -1},
      {"Truncated", "\xe3\x81", -1},
  };
  for (const WidthCase &row : rows) {
    EXPECT_EQ(pg_dsplen(kUtf8, row.utf8), row.width) << row.name;
  }
}

TEST(DisplayWidth, OfASurrogateAloneIsMinusOne) {
  EXPECT_EQ(pg_dsplen(kUtf16Le, "\x3D\xD8\0\0"), -1);
  EXPECT_EQ(pg_dsplen(kUtf16Be, "\xDE\x00\0\0"), -1);
  EXPECT_EQ(pg_dsplen(kUtf16Be, "\xD8\x3D\xDE\x00"), 2);
  EXPECT_EQ(pg_dsplen(kUtf16Le, "\0\0"), 0);
}

/// Where the widths of the C library differ: it takes visible format characters and two
/// runs of symbols by their looks.
struct Widths {
  char32_t first, last;
  int ours, theirs;
};
constexpr Widths kOtherWidths[] = {
    {0x0600, 0x0605, 0, 1}, {0x06DD, 0x06DD, 0, 1},   {0x070F, 0x070F, 0, 1},
    {0x0890, 0x0891, 0, 1}, {0x08E2, 0x08E2, 0, 1},   {0x3248, 0x324F, 1, 2},
    {0x4DC0, 0x4DFF, 1, 2}, {0x110BD, 0x110BD, 0, 1}, {0x110CD, 0x110CD, 0, 1},
};

TEST(DisplayWidth, AgreesWithTheCLibraryButForTheListedCharacters) {
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  int unassigned = 0;
  for (char32_t c = 0; c < 0x110000; ++c) {
    if (c == 0xD800) c = 0xE000;
    const int theirs = wcwidth(static_cast<wchar_t>(c));
    const int ours = widthOf(c);
    if (ours == theirs) continue;
    if (theirs == -1) {
      ++unassigned;  // the C library prints assigned characters alone
      continue;
    }
    const auto listed =
        std::find_if(std::begin(kOtherWidths), std::end(kOtherWidths),
                     [&](const Widths &w) { return c >= w.first && c <= w.last; });
    ASSERT_NE(listed, std::end(kOtherWidths)) << std::hex << static_cast<unsigned>(c);
    EXPECT_EQ(ours, listed->ours);
    EXPECT_EQ(theirs, listed->theirs);
  }
  std::setlocale(LC_CTYPE, "C");
  EXPECT_GT(unassigned, 700000);
  for (const Widths &listed : kOtherWidths) EXPECT_EQ(widthOf(listed.first), listed.ours);
}

}  // namespace
}  // namespace zev::test
