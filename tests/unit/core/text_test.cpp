#include "zevoci/text.h"

#include <gtest/gtest.h>
#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>

namespace zev::test {
namespace {

struct Free {
  void operator()(char *p) const { std::free(p); }
};
using Text = std::unique_ptr<char, Free>;

struct TrimCase {
  const char *text, *left, *right, *both;
};

TEST(Text, WhiteSpaceIsTrimmedButAVerticalTabStays) {
  const TrimCase rows[] = {
      {"x", "x", "x", "x"},
      {" \t\n\f\rx y\r\f\n\t ", "x y\r\f\n\t ", " \t\n\f\rx y", "x y"},
      {"\vx\v", "\vx\v", "\vx\v", "\vx\v"},
      {"   ", "", "", ""},
  };
  for (const TrimCase &row : rows) {
    EXPECT_STREQ(Text(strltrim(row.text)).get(), row.left);
    EXPECT_STREQ(Text(strrtrim(row.text)).get(), row.right);
    EXPECT_STREQ(Text(strtrim(row.text)).get(), row.both);
  }
}

TEST(Text, NullTrimsToNull) {
  EXPECT_EQ(strltrim(nullptr), nullptr);
  EXPECT_EQ(strrtrim(nullptr), nullptr);
  EXPECT_EQ(strtrim(nullptr), nullptr);
}

TEST(Text, ACopyEndsAfterItsLength) {
  EXPECT_STREQ(Text(makeString("abcdef", 3)).get(), "abc");
  EXPECT_STREQ(Text(makeString(nullptr, 0)).get(), "");
}

int sign(int n) {
  return (n > 0) - (n < 0);
}

TEST(Text, ComparisonsAgreeWithTheCLibrary) {
  std::mt19937 random(1);
  const std::string alphabet = "aAbBzZ@[`{_-019";
  const auto word = [&] {
    std::string text;
    for (auto n = random() % 5; n; --n) text += alphabet[random() % alphabet.size()];
    return text;
  };
  for (int i = 0; i < 20000; ++i) {
    const std::string a = word(), b = word();
    const std::size_t n = random() % 6;
    ASSERT_EQ(sign(oci_strcasecmp(a.c_str(), b.c_str())),
              sign(strcasecmp(a.c_str(), b.c_str())));
    ASSERT_EQ(sign(oci_stricmp(a.c_str(), b.c_str())),
              sign(strcasecmp(a.c_str(), b.c_str())));
    ASSERT_EQ(sign(oci_strncasecmp(a.c_str(), b.c_str(), n)),
              sign(strncasecmp(a.c_str(), b.c_str(), n)));
  }
}

TEST(Text, OneComparisonKnowsTheLettersOfTheLocale) {
  for (int i = 1; i < 256; ++i) {
    for (int j = 1; j < 256; ++j) {
      const char a[] = {static_cast<char>(i), 0}, b[] = {static_cast<char>(j), 0};
      ASSERT_EQ(sign(oci_stricmp(a, b)), sign(strcasecmp(a, b))) << i << ' ' << j;
    }
  }
}

TEST(Text, OnlyAsciiLettersFold) {
  char text[] = "aZ09@[`{\xc4\xe4";
  EXPECT_EQ(str_toupper(text), text);
  EXPECT_STREQ(text, "AZ09@[`{\xc4\xe4");
  EXPECT_EQ(str_tolower(text), text);
  EXPECT_STREQ(text, "az09@[`{\xc4\xe4");
}

struct FindCase {
  const char *text;
  int position;  ///< -1 for not found
};

TEST(Text, ASearchPassesOverQuotedText) {
  const FindCase rows[] = {
      {"%s", 0},         {"a %s", 2},   {"'%s' %s", 5},
      {"'%s'", -1},      {"x '%s", -1}, {"'' %s", 3},
      {"'a''%s' %s", 8}, {"", -1},      {"'%s' '%s' %s", 10},
      {"%s '%s'", 0},
  };
  for (const FindCase &row : rows) {
    const char *found = oci_strstr(row.text, "%s");
    EXPECT_EQ(found ? found - row.text : -1, row.position) << row.text;
  }
}

}  // namespace
}  // namespace zev::test
