#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>

#include "zevoci/encodings.h"

namespace zev::test {
namespace {

constexpr const char *kNames[] = {
#include "encodings.inc"
};
struct Alias {
  const char *name;
  int encoding;
};
constexpr Alias kAliases[] = {
#include "aliases.inc"
};

TEST(EncodingNames, EveryNumberHasItsCanonicalName) {
  ASSERT_EQ(std::size(kNames), 41u);
  for (int i = 0; i < 41; ++i) {
    EXPECT_STREQ(pg_encoding_to_char(i), kNames[i]);
    EXPECT_EQ(zev_enc2name_tbl[i].encoding, i);
  }
}

TEST(EncodingNames, OtherNumbersHaveAnEmptyName) {
  for (const int number : {41, 100, -1, -2147483647 - 1, 2147483647}) {
    EXPECT_STREQ(pg_encoding_to_char(number), "") << number;
  }
}

TEST(EncodingNames, TheAliasTableIsTheListInOrder) {
  ASSERT_EQ(std::size(kAliases), 80u);
  ASSERT_EQ(zev_encname_tbl_sz, 80u);
  for (unsigned i = 0; i < 80; ++i) {
    EXPECT_STREQ(zev_encname_tbl[i].name, kAliases[i].name);
    EXPECT_EQ(zev_encname_tbl[i].encoding, kAliases[i].encoding);
    if (i) {
      EXPECT_LT(std::string(kAliases[i - 1].name), kAliases[i].name);
    }
  }
  EXPECT_EQ(zev_encname_tbl[80].name, nullptr);
}

TEST(EncodingNames, EveryAliasIsFoundInAnySpelling) {
  std::mt19937 random(20261120);
  const std::string noise = " -_./@[]{}\t\xc3\xa4";
  for (const Alias &alias : kAliases) {
    for (int i = 0; i < 50; ++i) {
      std::string spelled;
      for (const char *c = alias.name; *c; ++c) {
        if (random() % 3 == 0) spelled += noise[random() % noise.size()];
        spelled += static_cast<char>(random() % 2 ? std::toupper(*c) : *c);
      }
      ASSERT_EQ(pg_char_to_encoding(spelled.c_str()), alias.encoding) << spelled;
      ASSERT_STREQ(pg_char_to_encname_struct(spelled.c_str())->name, alias.name);
    }
  }
}

struct NameCase {
  const char *name;
  int encoding;
};

TEST(EncodingNames, NamesMeanTheirEncodingAndUnknownOnesUtf8) {
  const NameCase rows[] = {
      {"latin-1", 8},   {"UTF-8", 6}, {"utf_8", 6},     {"Utf 8", 6},
      {"AL32UTF8", 6},  {"", 6},      {nullptr, -1},    {"WE8ISO8859P1", 6},
      {"UTF-16LE", 39}, {"CP866", 6}, {"---", 6},       {"latin11", 6},
      {"a", 6},         {"zzz", 6},   {"LATIN 10", 17}, {"SQL_ASCII", 0},
  };
  for (const NameCase &row : rows) {
    EXPECT_EQ(pg_char_to_encoding(row.name), row.encoding)
        << (row.name ? row.name : "null");
  }
}

TEST(EncodingNames, AllNamesUpToThreeCharactersAgreeWithTheList) {
  std::map<std::string, int> list;
  for (const Alias &alias : kAliases) list[alias.name] = alias.encoding;
  const std::string alphabet = "abcdefghijklmnopqrstuvwxyz0123456789";
  const auto check = [&](const std::string &name) {
    const auto found = list.find(name);
    ASSERT_EQ(pg_char_to_encoding(name.c_str()), found == list.end() ? 6 : found->second)
        << name;
  };
  for (const char a : alphabet) {
    check({a});
    for (const char b : alphabet) {
      check({a, b});
      for (const char c : alphabet) check({a, b, c});
    }
  }
}

TEST(EncodingNames, AnEmptyOrUnknownNameHasNoRow) {
  for (const char *name : {static_cast<const char *>(nullptr), "", "--", "AL32UTF8"}) {
    EXPECT_EQ(pg_char_to_encname_struct(name), nullptr);
  }
}

TEST(EncodingNames, ANameOf64CharactersIsRefusedOnStandardError) {
  const std::string longest = "utf8" + std::string(59, '-');
  EXPECT_EQ(pg_char_to_encoding(longest.c_str()), 6);
  EXPECT_NE(pg_char_to_encname_struct(longest.c_str()), nullptr);
  testing::internal::CaptureStderr();
  EXPECT_EQ(pg_char_to_encoding(("latin1" + std::string(58, '-')).c_str()), 6);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "encoding name too long\n");
}

}  // namespace
}  // namespace zev::test
