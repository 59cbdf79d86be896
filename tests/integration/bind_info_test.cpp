/// OCIStmtGetBindInfo.
#include "tests/integration/support/statement_fixture.h"

namespace zev::test {
namespace {

/// The answer for a statement's placeholders, in the program's arrays.
struct Info {
  static constexpr ub4 kRoom = 8;
  sword status = 0;
  sb4 found = 99;
  OraText *names[kRoom] = {};
  ub1 lengths[kRoom];
  OraText *indicatorNames[kRoom];
  ub1 indicatorLengths[kRoom];
  ub1 duplicates[kRoom];
  OCIBind *binds[kRoom];

  Info() {
    for (ub4 i = 0; i < kRoom; ++i) {
      lengths[i] = indicatorLengths[i] = duplicates[i] = 99;
      indicatorNames[i] = lengths;
      binds[i] = nullptr;
    }
  }
  /// Names in the order of the array, "-" where none was written.
  std::string text() const {
    std::string all;
    for (ub4 i = 0; i < kRoom; ++i) {
      all += all.empty() ? "" : " ";
      all += names[i] ? decodedUpToEnd(names[i]) : "-";
    }
    return all;
  }
};

class BindInfoTest : public StatementFixture {
 protected:
  void ask(Statement &stmt, Info &info, ub4 size = Info::kRoom, ub4 start = 1) {
    info.status = OCIStmtGetBindInfo(stmt.handle(), errhp(), size, start, &info.found,
                                     info.names, info.lengths, info.indicatorNames,
                                     info.indicatorLengths, info.duplicates, info.binds);
  }
};

struct InfoCase {
  const char *name;
  const char *text;
  ub4 size;
  ub4 start;
  sword status;
  sb4 found;
  const char *names;
};

class BindInfoTableTest : public BindInfoTest,
                          public testing::WithParamInterface<InfoCase> {};

TEST_P(BindInfoTableTest, NamesThePlaceholders) {
  const InfoCase &c = GetParam();
  Statement stmt = statement(c.text);
  Info info;
  ask(stmt, info, c.size, c.start);
  EXPECT_EQ(info.status, c.status);
  EXPECT_EQ(info.found, c.found);
  EXPECT_EQ(info.text(), c.names);
}

// clang-format off
constexpr InfoCase kInfos[] = {
    {"Two",              "SELECT :a, :bc",        8, 1, OCI_SUCCESS, 2,  "a bc - - - - - -"},
    {"SameNameTwice",    "SELECT :a, :a",         8, 1, OCI_SUCCESS, 2,  "a a - - - - - -"},
    {"Assignment",       "x := :a",               8, 1, OCI_SUCCESS, 1,  "a - - - - - - -"},
    {"QuotesAreSkipped", "SELECT ':a', :b",       8, 1, OCI_SUCCESS, 1,  "b - - - - - - -"},
    {"CastCountsTwice",  "SELECT x::int",         8, 1, OCI_SUCCESS, 2,  ":int int - - - - - -"},
    {"EqualsIsNoDelimiter", "SELECT :a=1",        8, 1, OCI_SUCCESS, 1,  "a=1 - - - - - - -"},
    {"NewlineIsNoDelimiter", "SELECT :a\nFROM t", 8, 1, OCI_SUCCESS, 1,  "a\nFROM - - - - - - -"},
    {"LaterStartKeepsTheIndex", "SELECT :a,:b,:c", 8, 3, OCI_SUCCESS, 3, "- - c - - - - -"},
    {"StartBehindTheLast", "SELECT :a",           8, 5, OCI_SUCCESS, 1,  "- - - - - - - -"},
    {"TooLittleRoom",    "SELECT :a,:b,:c",       2, 1, OCI_SUCCESS, -1, "a b - - - - - -"},
    {"NoRoom",           "SELECT :a,:b,:c",       0, 1, OCI_SUCCESS, -3, "- - - - - - - -"},
    {"NoPlaceholder",    "SELECT 1",              8, 1, OCI_NO_DATA, 99, "- - - - - - - -"},
    {"OnlyAssignments",  "x := 1",                8, 1, OCI_NO_DATA, 99, "- - - - - - - -"},
    {"StartOfZero",      "SELECT :a",             8, 0, OCI_NO_DATA, 99, "- - - - - - - -"},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Texts, BindInfoTableTest, testing::ValuesIn(kInfos),
                         [](const auto &row) { return row.param.name; });

TEST_F(BindInfoTest, WrongHandlesAndUnpreparedStatements) {
  Info info;
  EXPECT_EQ(OCIStmtGetBindInfo(nullptr, errhp(), 8, 1, &info.found, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr),
            OCI_INVALID_HANDLE);
  Statement stmt(env(), errhp(), svchp());
  ask(stmt, info);
  EXPECT_EQ(info.status, OCI_NO_DATA);
}

TEST_F(BindInfoTest, NamesHaveTheirLettersInTheProgramsEncoding) {
  Statement stmt = statement("SELECT " + dressed(":a"));
  Info info;
  ask(stmt, info);
  EXPECT_EQ(decodedUpToEnd(info.names[0]), dressed("a"));
}

TEST_F(BindInfoTest, LengthsLeaveTheColonOutAndTheRestReadsZero) {
  Statement stmt = statement("SELECT :a, :bcd");
  Info info;
  ask(stmt, info);
  EXPECT_EQ(info.lengths[0], 1);
  EXPECT_EQ(info.lengths[1], 3);
  EXPECT_EQ(info.lengths[2], 99);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(info.indicatorNames[i], nullptr);
    EXPECT_EQ(info.indicatorLengths[i], 0);
    EXPECT_EQ(info.duplicates[i], 0);
  }
  EXPECT_EQ(info.duplicates[2], 99);
}

TEST_F(BindInfoTest, HandlesAreThoseOfTheBinds) {
  Statement stmt = statement("SELECT :a, :b, :A");
  sb4 value = 0;
  OCIBind *bind = nullptr;
  ASSERT_EQ(bindByPos(stmt, errhp(), 1, &value, 4, SQLT_INT, nullptr, nullptr,
                      OCI_DEFAULT, &bind),
            OCI_SUCCESS);
  Info info;
  ask(stmt, info);
  EXPECT_EQ(info.binds[0], bind);
  EXPECT_EQ(info.binds[1], nullptr);
  EXPECT_EQ(info.binds[2], bind);
}

TEST_F(BindInfoTest, EachArrayMayBeMissing) {
  Statement stmt = statement("SELECT :a");
  sb4 found = 0;
  EXPECT_EQ(OCIStmtGetBindInfo(stmt.handle(), errhp(), 8, 1, &found, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(found, 1);
}

}  // namespace
}  // namespace zev::test
