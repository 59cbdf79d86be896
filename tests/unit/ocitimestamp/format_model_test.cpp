/// Format models compiled: the vocabulary, the nodes, and what is refused.
#include <algorithm>
#include <map>
#include <set>

#include "format_fixture.h"

namespace zevtest {
namespace {

// The vocabulary.

TEST(Vocabulary, EachSpellingIsFoundByItself) {
  for (sb4 i = 0; DCH_keywords[i].name; ++i) {
    EXPECT_EQ(index_seq_search(DCH_keywords[i].name, DCH_keywords), &DCH_keywords[i])
        << DCH_keywords[i].name;
  }
}

TEST(Vocabulary, OnlyTwoSpellingsAreShorterThanTheirNames) {
  for (sb4 i = 0; DCH_keywords[i].name; ++i) {
    const std::string name = DCH_keywords[i].name;
    const sb4 length = static_cast<sb4>(name.size());
    const bool shorter = name == "RRRR" || name == "sssss";
    EXPECT_EQ(DCH_keywords[i].len, shorter ? length - 1 : length) << name;
  }
}

TEST(Vocabulary, FirstRowsOfTheCharacters) {
  const std::map<char, sb4> firstRows = {
      {'A', 0},  {'B', 4},  {'C', 6},  {'D', 7},  {'E', 16}, {'F', 18}, {'H', 20},
      {'I', 23}, {'J', 28}, {'M', 29}, {'P', 36}, {'Q', 38}, {'R', 39}, {'S', 42},
      {'T', 47}, {'U', 52}, {'W', 53}, {'X', 55}, {'Y', 56}, {'a', 62}, {'b', 66},
      {'c', 68}, {'d', 69}, {'f', 74}, {'h', 75}, {'i', 78}, {'j', 83}, {'m', 84},
      {'p', 89}, {'q', 91}, {'r', 92}, {'s', 93}, {'u', 95}, {'w', 96}, {'y', 98}};
  for (int c = 32; c <= 125; ++c) {
    const auto row = firstRows.find(static_cast<char>(c));
    EXPECT_EQ(DCH_index[c - 32], row == firstRows.end() ? -1 : row->second)
        << static_cast<char>(c);
  }
}

TEST(Vocabulary, LowerCaseNumbersShareTheirIdentityAndWordsHaveTheirOwn) {
  std::set<std::string> own;
  for (sb4 i = 0; DCH_keywords[i].name; ++i) {
    std::string name = DCH_keywords[i].name;
    if (i <= kY) {
      EXPECT_EQ(DCH_keywords[i].id, i) << name;
    } else if (DCH_keywords[i].id == i) {
      own.insert(name);
    } else {
      for (char &c : name) c = toUpper(c);
      EXPECT_EQ(DCH_keywords[DCH_keywords[i].id].name, name);
    }
  }
  EXPECT_EQ(own, (std::set<std::string>{"a.d.", "a.m.", "ad", "am", "b.c.", "bc", "day",
                                        "dy", "month", "mon", "p.m.", "pm", "rm"}));
}

TEST(Vocabulary, LettersOfTheCalendarAndOfTheClock) {
  EXPECT_EQ(index_seq_search("J", DCH_keywords)->action, &dch_date);
  EXPECT_EQ(index_seq_search("j", DCH_keywords)->action, &dch_time);
  EXPECT_EQ(index_seq_search("fx", DCH_keywords)->action, &dch_global);
  EXPECT_EQ(index_seq_search("FF", DCH_keywords)->action, &dch_date);
  EXPECT_EQ(index_seq_search("TZR", DCH_keywords)->isDigit, 0);
  EXPECT_NE(index_seq_search("TZH", DCH_keywords)->isDigit, 0);
}

TEST(Vocabulary, TheLongestMatchWins) {
  EXPECT_STREQ(index_seq_search("DDDD", DCH_keywords)->name, "DDD");
  EXPECT_STREQ(index_seq_search("Dayx", DCH_keywords)->name, "Day");
  EXPECT_STREQ(index_seq_search("RRR", DCH_keywords)->name, "RRRR");
  EXPECT_STREQ(index_seq_search("ssss", DCH_keywords)->name, "sssss");
  EXPECT_STREQ(index_seq_search("MO", DCH_keywords) ? "found" : "none", "none");
}

TEST(Vocabulary, BothWaysToFindAnElementAgree) {
  std::mt19937_64 random = generator();
  const char characters[] = "ABCDEFHIJMNOPQRSTUVWXYZabcdfhijmnopqrstuvwxyz.,124\xc3 ";
  for (int i = 0; i < rounds(100000, 10000000); ++i) {
    std::string text = DCH_keywords[random() % kElementLimit].name;
    text.resize(random() % (text.size() + 1));
    while (random() % 2) text += characters[random() % (sizeof characters - 1)];
    ASSERT_EQ(findElement(text.c_str(), text.size()),
              index_seq_search(text.c_str(), DCH_keywords))
        << text;
  }
}

TEST(Vocabulary, CharactersOutsideTheIndexMatchNothing) {
  for (const char *text : {" ", "", "~", "\x7f", "\xc3\x84", "\x01", "}", "Z"})
    EXPECT_EQ(index_seq_search(text, DCH_keywords), nullptr);
}

TEST(Vocabulary, PrefixesAndPostfixes) {
  EXPECT_EQ(suff_search("FMDD", DCH_suff, 1)->id, kFillMode);
  EXPECT_EQ(suff_search("fm", DCH_suff, 1)->id, kFillMode);
  EXPECT_EQ(suff_search("TMMonth", DCH_suff, 1)->id, kTranslated);
  EXPECT_EQ(suff_search("tm", DCH_suff, 1)->id, kTranslated);
  EXPECT_EQ(suff_search("TH", DCH_suff, 2)->id, kUpperOrdinal);
  EXPECT_EQ(suff_search("th", DCH_suff, 2)->id, kLowerOrdinal);
  EXPECT_EQ(suff_search("SP", DCH_suff, 2)->id, kSpelled);
  for (const char *text : {"sp", "Th", "F", "", "FM"})
    EXPECT_EQ(suff_search(text, DCH_suff, 2), nullptr) << text;
  EXPECT_EQ(suff_search("TH", DCH_suff, 1), nullptr);
}

// Nodes.

class Nodes : public Formats {
 protected:
  /// Nodes in one line: an element as "DD+1" with its suffix, a character in single
  /// quotes, a literal in double quotes.
  std::string nodes(const std::string &format, bool isToChar = true,
                    sb4 kind = kZonedDescriptor) {
    CompiledModel model(format.c_str());
    if (model.compile(records_.errhp, isToChar, kind) != 0)
      return failure(records_.takeRecord());
    std::string line;
    count_ = 0;
    for (const FormatNode *n = model.nodes(); n->type != kEndNode; ++n, ++count_)
      line += (line.empty() ? "" : " ") + describe(*n);
    EXPECT_LT(count_, nodesNeeded(format.c_str()));
    return line;
  }

  static std::string describe(const FormatNode &node) {
    if (node.type == kCharacterNode)
      return std::string("'") + static_cast<char>(node.character) + "'";
    if (node.type == kLiteralNode) return std::string("\"") + node.text + "\"";
    std::string name = node.key->name;
    if (node.character) name += static_cast<char>(node.character);
    if (node.suffix) name += "+" + std::to_string(node.suffix);
    return name;
  }

  std::size_t count_ = 0;
};

TEST_F(Nodes, Models) {
  const char *const rows[][2] = {
      {"", ""},
      {"DD-MON-YYYY HH24:MI:SS.FF3 TZH:TZM",
       "DD '-' MON '-' YYYY ' ' HH24 ':' MI ':' SS '.' FF3 ' ' TZH ':' TZM"},
      {"dd", "dd"},
      {"FMDD-MM", "DD+1 '-' MM+1"},
      {"FMDD-FMMM", "DD+1 '-' MM+1"},
      {"FMDDFMMM", "DD+1 MM+1"},
      {"FMDD-MM-FMDDMM", "DD+1 '-' MM+1 '-' DD+1 MM"},
      {"FM", ""},
      {"DDFM", "DD"},
      {"TMMonth", "Month+16"},
      {"TMDDFMMM", "DD+16 MM+1"},
      {"DDTH", "DD+2"},
      {"DDth", "DD+4"},
      {"DDSP", "DD+8"},
      {"FMDDTH", "DD+3"},
      {"DDTHSP", "DD+2 'S' 'P'"},
      {"FF", "FF"},
      {"FF0", "FF0"},
      {"FF9TH", "FF9+2"},
      {"FF12", "FF1 '2'"},
      {"FX", "FX"},
      {"fxDD", "fx DD"},
      {"RRRR", "RRRR 'R'"},
      {"RRR", "RRRR"},
      {"sssss", "sssss 's'"},
      {"ssss", "sssss"},
      {"SSSSS", "SSSSS"},
      {"x-y", "'x' '-' y"},
      {"\"a\"", "\"a\""},
      {"\"\"", "\"\""},
      {"\"a\"-/,._;:DD", "\"a-/,._;:\" DD"},
      {"\"a\" -", "\"a\" ' ' '-'"},
      {"-\"a\"", "'-' \"a\""},
      {"\"open", ""},
      {"DD\"open", "DD"},
      {"\"012345678901234567890123456789open", "\"012345678901234567890123456789\""},
      {"\"01234567890123456789012345678901234567890123456789012345678901234",
       "\"012345678901234567890123456789\""},
      {"\"0123456789012345678901234567891\"", "\"012345678901234567890123456789\" \"1\""},
      {"\"01234567890123456789012345678\"-.DD",
       "\"01234567890123456789012345678-\" \".\" DD"},
      {"DS", "MM+1 '/' DD+1 '/' YYYY"},
      {"DL", "Day+1 ',' ' ' Month+1 ' ' DD ',' ' ' YYYY"},
      {"TS", "HH+1 ':' MI ':' SS ' ' AM"},
      {"FMDS", "MM+1 '/' DD+1 '/' YYYY+1"},
      {"DSTH", "MM+1 '/' DD+1 '/' YYYY+2"},
      {"DSx", "MM+1 '/' DD+1 '/' YYYY 'x'"},
      {"\xc3", "'\xc3'"},
  };
  for (const auto &[format, expected] : rows)
    EXPECT_EQ(nodes(format), expected) << format;
}

TEST_F(Nodes, ALiteralOf31CharactersIsTwoNodes) {
  nodes("\"" + std::string(31, 'x') + "\"");
  EXPECT_EQ(count_, 2u);
}

TEST_F(Nodes, MacroNodesKnowTheirOrigin) {
  CompiledModel model("DS TS");
  ASSERT_EQ(model.compile(records_.errhp, true, kOCIDate), 0);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(model.nodes()[i].macroOrigin, kDS);
  EXPECT_EQ(model.nodes()[5].macroOrigin, -1);
  for (int i = 6; i < 13; ++i) EXPECT_EQ(model.nodes()[i].macroOrigin, kTS);
}

TEST_F(Nodes, LongModelsHaveRoomForAllTheirNodes) {
  std::string format;
  for (int i = 0; i < 127; ++i) format += "DL";
  nodes(format);
  EXPECT_EQ(count_, 127u * 9);
  nodes(std::string(255, '-'));
  EXPECT_EQ(count_, 255u);
  nodes(std::string(100000, 'Q'));
  EXPECT_EQ(count_, 100000u);
  nodes("\"" + std::string(253, 'x') + "\"");
  EXPECT_EQ(count_, 9u);
}

TEST_F(Nodes, FlagsFollowTheModel) {
  compiled("FXDD", true, kOCIDate);
  EXPECT_NE(DCH_global_fx, 0);
  EXPECT_EQ(DCH_global_fm, 0);
  compiled("FMDD", true, kOCIDate);
  EXPECT_EQ(DCH_global_fx, 0);
  EXPECT_NE(DCH_global_fm, 0);
  compiled("FMDDFM", true, kOCIDate);
  EXPECT_EQ(DCH_global_fm, 0);
  compiled("FXDDFX", true, kOCIDate);
  EXPECT_NE(DCH_global_fx, 0);
}

TEST_F(Nodes, ExecutionClearsTheFlags) {
  DCH_global_fx = DCH_global_fm = 0;
  print("FMFXDD");
  EXPECT_EQ(DCH_global_fx, 0);
  EXPECT_NE(DCH_global_fm, 0);
  read("FMFXDD", "5");
  EXPECT_EQ(DCH_global_fx, 0);
  EXPECT_EQ(DCH_global_fm, 0);
  read("FMFXDD", "x");
  EXPECT_EQ(DCH_global_fx + DCH_global_fm, 0);
}

TEST_F(Nodes, WhatMustEndANumber) {
  const auto separated = [&](const char *format) {
    CompiledModel model(format);
    EXPECT_EQ(model.compile(records_.errhp, true, kZonedDescriptor), 0);
    return is_next_separator(model.nodes()) != 0;
  };
  EXPECT_FALSE(separated(""));
  EXPECT_FALSE(separated("DD"));
  EXPECT_FALSE(separated("DDMM"));
  EXPECT_FALSE(separated("DD1"));
  EXPECT_TRUE(separated("DD-"));
  EXPECT_TRUE(separated("DDMONTH"));
  EXPECT_TRUE(separated("DDTH"));
  EXPECT_TRUE(separated("DDthMM"));
  EXPECT_FALSE(separated("DDSPMM"));
  EXPECT_TRUE(separated("DD\"5\""));
  EXPECT_TRUE(separated("-x"));
  EXPECT_FALSE(separated("-DD"));
}

// What is refused. Identities are given by number, as rows of the vocabulary.

int expectedClassError(sb4 id, bool reading, sb4 kind) {
  const std::set<sb4> clock = {1,  3,  18, 20, 21, 22, 29, 33, 36, 37,
                               43, 44, 47, 52, 55, 63, 65, 89, 90};
  const std::set<sb4> printOnly = {6, 23, 24, 25, 26, 27, 38, 42, 53, 54};
  if (clock.count(id)) return kind == 1 ? 1821 : 0;
  if (printOnly.count(id)) return reading ? 1820 : 0;
  if (id == 39 || id == 40 || id == 41 || id == 92) return kind == 3 ? 1878 : 0;
  if (id >= 48 && id <= 50) return kind == 1 || kind == 3 ? 1821 : 0;
  if (id == 51) return reading && (kind == 1 || kind == 3) ? 1821 : 0;
  return 0;
}

TEST_F(Formats, EachSpellingIsRefusedForTheKindsThatCannotCarryIt) {
  for (sb4 i = 0; DCH_keywords[i].name; ++i) {
    for (const sb4 kind : kAllKinds) {
      for (const bool toChar : {false, true}) {
        EXPECT_EQ(compiled(DCH_keywords[i].name, toChar, kind),
                  expectedClassError(DCH_keywords[i].id, !toChar, kind))
            << DCH_keywords[i].name << " of kind " << kind << " printing " << toChar;
      }
    }
  }
}

/// The record of element `t` behind element `e` from the macro `origin`.
int expectedConflict(sb4 t, sb4 e, sb4 origin, sb4 kind) {
  const auto in = [](sb4 id, std::initializer_list<sb4> ids) {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
  };
  if (t == 0 || t == 4) return in(e, {2, 5}) ? 1815 : in(e, {0, 4}) ? 1810 : 0;
  if (t == 2 || t == 5) return in(e, {0, 4}) ? 1815 : in(e, {2, 5}) ? 1810 : 0;
  if (t == 1 || t == 36)
    return kind == 1 ? 1821 : in(e, {3, 37}) ? 1814 : in(e, {1, 36}) ? 1810 : 0;
  if (t == 3 || t == 37)
    return kind == 1 ? 1821 : in(e, {1, 36}) ? 1814 : in(e, {3, 37}) ? 1810 : 0;
  const bool repeats =
      in(t, {6, 16, 17, 23, 24, 25, 26, 27, 38, 42, 45, 48, 49, 50, 51, 53, 57});
  if (repeats && kind < 4) return 0;
  if (t == 10) return in(e, {9, 13, 34, 58}) && origin == 10 ? 1810 : 0;
  if (t == 11) return in(e, {9, 30, 58}) && origin == 11 ? 1810 : 0;
  if (t == 47 && in(e, {3, 22, 29, 44}))
    return kind == 1 ? 1821 : origin == 47 ? 1810 : 0;
  if (t == 47) return 0;
  return t == e ? 1810 : 0;
}

TEST_F(Formats, EachPairOfElementsConflictsOrNot) {
  FormatNode nodes[2] = {};
  for (sb4 t = 0; DCH_keywords[t].name; ++t) {
    for (sb4 e = 0; DCH_keywords[e].name; ++e) {
      for (const sb4 origin : {-1, 10, 11, 47}) {
        for (const sb4 kind : kAllKinds) {
          nodes[0].type = nodes[1].type = kElementNode;
          nodes[0].key = &DCH_keywords[e];
          nodes[0].macroOrigin = origin;
          nodes[1].key = &DCH_keywords[t];
          const boolean found =
              DuplicateNodeExists(records_.errhp, nodes, nodes + 1, kind);
          const int code = records_.takeRecord();
          ASSERT_EQ(code, expectedConflict(DCH_keywords[t].id, DCH_keywords[e].id, origin,
                                           kind))
              << DCH_keywords[t].name << " behind " << DCH_keywords[e].name << " kind "
              << kind;
          ASSERT_EQ(found != 0, code != 0);
        }
      }
    }
  }
}

TEST_F(Formats, OnlyElementsConflict) {
  EXPECT_EQ(compiled("DD\"DD\"-MM", false, kOCIDate), 0);
  EXPECT_EQ(compiled("\"DD\"DD", false, kOCIDate), 0);
}

TEST_F(Formats, ModelsThatContradictThemselvesAreRefusedOnReading) {
  struct Row {
    const char *format;
    sb4 kind;
    int code;
  };
  const Row rows[] = {
      {"DD DD", kOCIDate, 1810},
      {"DD dd", kOCIDate, 1810},
      {"YYYY YYYY", kOCIDate, 1810},
      {"WW WW", kOCIDate, 1820},
      {"CC", kOCIDate, 1820},
      {"A.D. BC", kOCIDate, 1815},
      {"BC B.C.", kOCIDate, 1815},
      {"AD BC", kOCIDate, 1810},
      {"A.M. PM", kOCIDate, 1814},
      {"PM A.M.", kOCIDate, 1814},
      {"AM PM", kOCIDate, 1810},
      {"am pm", kOCIDate, 0},
      {"DS DS", kOCIDate, 1810},
      {"DD DS", kOCIDate, 0},
      {"DS DD", kOCIDate, 1810},
      {"DL DL", kOCIDate, 1810},
      {"DL DS", kOCIDate, 0},
      {"TS TS", kOCIDate, 1810},
      {"MI TS", kOCIDate, 0},
      {"TS MI", kOCIDate, 1810},
      {"TZH TZH", kOCIDate, 0},
      {"TZH TZH", kZonedDescriptor, 1810},
      {"FX FX", kOCIDate, 1810},
      {"SYEAR SYEAR", kTimestampDescriptor, 0},
      {"FF FF3", kTimestampDescriptor, 1810},
      {"HH24:MI", kDateDescriptor, 1821},
      {"RR", kTimestampDescriptor, 1878},
      {"TZH", kTimestampDescriptor, 1821},
      {"TZH", kZonedDescriptor, 0},
  };
  for (const Row &row : rows)
    EXPECT_EQ(compiled(row.format, false, row.kind), row.code) << row.format;
}

TEST_F(Formats, PrintingRepeatsWhatReadingRefuses) {
  EXPECT_EQ(print("DD DD"), "03 03");
  EXPECT_EQ(print("A.D. BC"), "A.D. AD");
  EXPECT_EQ(compiled("HH24:MI", true, kDateDescriptor), 1821);
  EXPECT_EQ(compiled("HH24:MI", true, kOCIDate), 0);
  EXPECT_EQ(compiled("TZR", true, kTimestampDescriptor), 0);
}

TEST_F(Formats, AFailureReplacesEarlierRecords) {
  AddErrorRecord(records_.errhp, OCI_ERROR, 1017);
  FormatNode nodes[16];
  EXPECT_EQ(parse_format(nodes, "CC", records_.errhp, 0, kOCIDate), -1);
  int count = 0;
  for (const ErrorRecord *record : zev::Elements<ErrorRecord>(records_.errhp->records)) {
    EXPECT_EQ(record->errcode, 1820);
    EXPECT_STREQ(record->msg, o2pGetErrorText(1820));
    ++count;
  }
  EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace zevtest
