#include "zevoci/text.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <strings.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <tuple>

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

/// Switches the process to a locale of single bytes, made on the spot, in which 0xC4 is
/// the capital of 0xE4 and no other byte above 127 is a letter.
class SingleByteLocale : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder_);
    std::ofstream charmap(folder_ + "/charmap");
    charmap << "<code_set_name> XX\n<mb_cur_max> 1\n<comment_char> %\n<escape_char> /\n"
               "CHARMAP\n";
    for (int c = 0; c < 128; ++c) writeCharacter(charmap, c);
    writeCharacter(charmap, 0xC4);
    writeCharacter(charmap, 0xE4);
    charmap << "END CHARMAP\n";
    charmap.close();
    std::ofstream source(folder_ + "/source");
    source << "comment_char %\nescape_char /\nLC_CTYPE\n"
              "upper <U0041>..<U005A>;<U00C4>\nlower <U0061>..<U007A>;<U00E4>\ntoupper ";
    for (char c = 'a'; c <= 'z'; ++c) writePair(source, c, c - 'a' + 'A');
    writePair(source, 0xE4, 0xC4);
    source << "\ntolower ";
    for (char c = 'A'; c <= 'Z'; ++c) writePair(source, c, c - 'A' + 'a');
    writePair(source, 0xC4, 0xE4);
    source << "\nEND LC_CTYPE\n";
    source.close();
    const std::string command = "localedef -c -f " + folder_ + "/charmap -i " + folder_ +
                                "/source " + folder_ + "/letters_XX >/dev/null 2>&1";
    std::ignore = std::system(command.c_str());
    setenv("LOCPATH", folder_.c_str(), 1);
    ASSERT_TRUE(setlocale(LC_CTYPE, "letters_XX")) << "localedef made no locale";
    ASSERT_EQ(std::tolower(0xC4), 0xE4);
  }
  void TearDown() override {
    setlocale(LC_CTYPE, "C");
    unsetenv("LOCPATH");
    std::filesystem::remove_all(folder_);
  }

 private:
  static std::string name(int c) {
    char text[16];
    std::snprintf(text, sizeof text, "<U%04X>", static_cast<unsigned>(c));
    return text;
  }
  static void writeCharacter(std::ostream &out, int c) {
    char byte[8];
    std::snprintf(byte, sizeof byte, "/x%02x", static_cast<unsigned>(c));
    out << name(c) << ' ' << byte << " X\n";
  }
  /// A pair of the list, which goes on behind it but for the last.
  static void writePair(std::ostream &out, int from, int to) {
    out << '(' << name(from) << ',' << name(to) << ')' << (from > 127 ? "" : ";");
  }

  std::string folder_ =
      testing::TempDir() + "zev_letters_locale_" + std::to_string(getpid());
};

TEST_F(SingleByteLocale, OneComparisonKnowsItsLetters) {
  for (int i = 1; i < 256; ++i) {
    for (int j = 1; j < 256; ++j) {
      const char a[] = {static_cast<char>(i), 0}, b[] = {static_cast<char>(j), 0};
      ASSERT_EQ(sign(oci_stricmp(a, b)), sign(std::tolower(i) - std::tolower(j)))
          << i << ' ' << j;
    }
  }
  EXPECT_EQ(oci_stricmp("m\xc4X", "M\xe4x"), 0);
  EXPECT_NE(oci_strcasecmp("m\xc4X", "M\xe4x"), 0);
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
