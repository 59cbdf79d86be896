#include <gtest/gtest.h>
#include <strings.h>

#include <algorithm>
#include <cctype>
#include <random>
#include <string>

#include "zevoci/charsets.h"

namespace zev::test {
namespace {

struct Published {
  const char *name;
  ub4 id;
};
constexpr Published kPublished[] = {
#include "charsets.inc"
};

std::string folded(std::string text, int (*fold)(int)) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [fold](unsigned char c) { return static_cast<char>(fold(c)); });
  return text;
}

const CharacterSet *search(const char *name) {
  return search_charset(name, CSTlist, CST_index);
}

TEST(CharacterSets, TheTableIsTheListInOrder) {
  ASSERT_EQ(std::size(kPublished), 258u);
  for (ub4 i = 0; i < 258; ++i) {
    EXPECT_STREQ(CSTlist[i].name, kPublished[i].name);
    EXPECT_EQ(CSTlist[i].index, i);
    EXPECT_EQ(CSTlist[i].id, kPublished[i].id) << kPublished[i].name;
    if (i) {
      EXPECT_LE(strcasecmp(CSTlist[i - 1].name, CSTlist[i].name), 0);
    }
  }
  EXPECT_EQ(CSTlist[258].name, nullptr);
  EXPECT_EQ(CSTlist[258].index, 258u);
  EXPECT_EQ(CSTlist[258].id, 0xFFFFFFFF);
}

TEST(CharacterSets, NumbersAreOfOneNameEach) {
  for (const Published &one : kPublished) {
    const auto same = std::ranges::count(kPublished, one.id, &Published::id);
    EXPECT_EQ(same, one.id ? 1 : 4) << one.name;
  }
}

TEST(CharacterSets, TheIndexHasTheFirstNameOfEachLetter) {
  for (int letter = 0; letter < 26; ++letter) {
    const auto *first = std::ranges::find_if(
        kPublished, [&](const Published &one) { return *one.name == 'A' + letter; });
    const auto place = static_cast<sb4>(first - kPublished);
    EXPECT_EQ(CST_index[letter], place < 258 ? place : -1) << letter;
  }
  EXPECT_EQ(CST_index[26], 258);
}

TEST(CharacterSets, EveryNameIsFoundInAnyCase) {
  for (const Published &one : kPublished) {
    for (const std::string &name :
         {std::string(one.name), folded(one.name, std::tolower)}) {
      const CharacterSet *row = search(name.c_str());
      ASSERT_NE(row, nullptr) << name;
      EXPECT_STREQ(row->name, one.name);
      EXPECT_EQ(search_charsetID(name.c_str()), one.id) << name;
    }
  }
}

TEST(CharacterSets, TellingNumbers) {
  const Published rows[] = {
      {"AL16UTF16", 2000},      {"AL16UTF16LE", 2002}, {"AL24UTFFSS", 870},
      {"AL32UTF8", 873},        {"AR8ISO8859P6", 36},  {"ZHT32TRIS", 863},
      {"ZHT32TRISFIXED", 1863}, {"US7ASCII", 1},       {"UTF16", 1000},
      {"WE8ISO8859P1", 31},     {"we8mswin1252", 178}, {"UTF8", 871}};
  for (const Published &row : rows)
    EXPECT_EQ(search_charsetID(row.name), row.id) << row.name;
}

TEST(CharacterSets, OtherNamesHaveNoRow) {
  for (const char *name :
       {"", "1", "[", "@AL32UTF8", "\xc4", "A", "AL32UTF", "AL32UTF80", "G", "GB18030",
        "M", "O", "P", "Q", "X", "ZZZZ", "Z", "Y", "YZ"}) {
    EXPECT_EQ(search(name), nullptr) << name;
    EXPECT_EQ(search_charsetID(name), 0u) << name;
  }
  EXPECT_EQ(search(nullptr), nullptr);
  EXPECT_EQ(search_charsetID(nullptr), 0u);
}

TEST(CharacterSets, SearchAgreesWithALookAtEachRow) {
  std::mt19937 random(20261121);
  int found = 0;
  for (int i = 0; i < 50000; ++i) {
    std::string name = kPublished[random() % 258].name;
    if (random() % 2)
      name[random() % name.size()] = static_cast<char>(random() % 127 + 1);
    if (random() % 4 == 0) name.resize(random() % (name.size() + 1));
    const auto *expected = std::ranges::find_if(kPublished, [&](const Published &one) {
      return strcasecmp(one.name, name.c_str()) == 0;
    });
    const CharacterSet *row = search(name.c_str());
    ASSERT_EQ(row != nullptr, expected != std::end(kPublished)) << name;
    if (!row) continue;
    ++found;
    ASSERT_STREQ(row->name, expected->name);
  }
  EXPECT_GT(found, 10000);
}

TEST(CharacterSets, BetweenTwoRowsBothCount) {
  EXPECT_EQ(bsearch_charset("AL16UTF16", CSTlist, CSTlist + 3), CSTlist);
  EXPECT_EQ(bsearch_charset("al32utf8", CSTlist, CSTlist + 3), CSTlist + 3);
  EXPECT_EQ(bsearch_charset("AL24UTFFSS", CSTlist, CSTlist + 3), CSTlist + 2);
  EXPECT_EQ(bsearch_charset("AR8ADOS710", CSTlist, CSTlist + 3), nullptr);
  EXPECT_EQ(bsearch_charset("AL16UTF16", CSTlist, CSTlist), CSTlist);
  EXPECT_EQ(bsearch_charset("ZHT32TRISFIXED", CSTlist, CSTlist + 258), CSTlist + 257);
}

}  // namespace
}  // namespace zev::test
