/// Preparation and the attributes of statements.
#include <cstring>

#include "tests/integration/support/statement_fixture.h"

namespace zev::test {
namespace {

class PrepareTest : public StatementFixture {
 protected:
  /// Prepares so many characters of `text`.
  sword prepare(Statement &stmt, const char *text, ub4 length,
                ub4 language = OCI_NTV_SYNTAX, ub4 mode = OCI_DEFAULT) {
    return OCIStmtPrepare(stmt.handle(), errhp(), text ? Given(text).text() : nullptr,
                          bytes(length), language, mode);
  }
  std::string textOf(Statement &stmt) {
    char *text = nullptr;
    ub4 size = 77;
    EXPECT_EQ(OCIAttrGet(stmt.handle(), OCI_HTYPE_STMT, &text, &size, OCI_ATTR_STATEMENT,
                         errhp()),
              OCI_SUCCESS);
    EXPECT_EQ(size, 77u);
    return text ? decodedUpToEnd(text) : "null";
  }
  ub2 typeOf(Statement &stmt) {
    ub2 type = 77;
    EXPECT_EQ(OCIAttrGet(stmt.handle(), OCI_HTYPE_STMT, &type, nullptr,
                         OCI_ATTR_STMT_TYPE, errhp()),
              OCI_SUCCESS);
    return type;
  }
  Statement fresh() { return Statement(env(), errhp(), svchp()); }
};

TEST_F(PrepareTest, NothingReachesTheServer) {
  Statement stmt = fresh();
  const WireLog log =
      wireOf([&] { EXPECT_EQ(stmt.prepare("no sql at all"), OCI_SUCCESS); });
  EXPECT_TRUE(log.messages.empty());
}

TEST_F(PrepareTest, TheTextIsTrimmedAtBothEnds) {
  const struct {
    const char *given;
    const char *kept;
  } cases[] = {{"  select 1  ", "select 1"},
               {"\t\n\f\r select 1\n", "select 1"},
               {"select 1;", "select 1;"},
               {"select 1 ; ", "select 1 ;"},
               {"\vselect 1", "\vselect 1"}};
  for (const auto &c : cases) {
    Statement stmt = statement(c.given);
    EXPECT_EQ(textOf(stmt), c.kept);
  }
  const std::string letters = "select '" + dressed("") + "'";
  Statement stmt = statement(' ' + letters + ' ');
  EXPECT_EQ(textOf(stmt), letters);
}

TEST_F(PrepareTest, OnlyTheGivenLengthIsTaken) {
  Statement stmt = fresh();
  ASSERT_EQ(prepare(stmt, "select 1 garbage", 8), OCI_SUCCESS);
  EXPECT_EQ(textOf(stmt), "select 1");
}

TEST_F(PrepareTest, ATextReadThroughTheAttributeOutlivesTheNextPrepare) {
  Statement stmt = statement("select 1");
  char *text = nullptr;
  ASSERT_EQ(OCIAttrGet(stmt.handle(), OCI_HTYPE_STMT, &text, nullptr, OCI_ATTR_STATEMENT,
                       errhp()),
            OCI_SUCCESS);
  ASSERT_EQ(stmt.prepare("select 22"), OCI_SUCCESS);
  EXPECT_EQ(decodedUpToEnd(text), "select 1");
}

TEST_F(PrepareTest, WrongHandlesAreRefused) {
  Statement stmt = fresh();
  const Given text("select 1");
  const auto with = [&](OCIStmt *stmtp, OCIError *error) {
    return OCIStmtPrepare(stmtp, error, text.text(), text.size(), 1, 0);
  };
  EXPECT_EQ(with(nullptr, errhp()), OCI_INVALID_HANDLE);
  EXPECT_EQ(with(stmt.handle(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(with(reinterpret_cast<OCIStmt *>(env()), errhp()), OCI_INVALID_HANDLE);
}

TEST_F(PrepareTest, BadArgumentsHaveTheirNumbersAndClearFormerRecords) {
  Statement stmt = fresh();
  EXPECT_EQ(prepare(stmt, nullptr, 8), OCI_ERROR);
  expectError(21560, "null, invalid, or out of range argument 3");
  EXPECT_EQ(prepare(stmt, "select 1", 0), OCI_ERROR);
  expectError(24373, "KESTREL-24373: statement length is invalid");
  EXPECT_EQ(prepare(stmt, "select 1", 8, OCI_NTV_SYNTAX, 1), OCI_ERROR);
  expectError(24300, "KESTREL-24300");
  EXPECT_EQ(codes().size(), 1u);
}

TEST_F(PrepareTest, AnUnknownLanguageFailsWithoutRecord) {
  Statement stmt = statement("select 1");
  for (const ub4 language : {0u, 3u, 99u}) {
    EXPECT_EQ(prepare(stmt, "select 1", 8, language), OCI_ERROR);
    EXPECT_TRUE(codes().empty());
  }
  EXPECT_EQ(prepare(stmt, "select 1", 8, OCI_V7_SYNTAX), OCI_SUCCESS);
}

TEST_F(PrepareTest, BlankTextIsRefused) {
  Statement stmt = fresh();
  EXPECT_EQ(stmt.prepare(" \n\t"), OCI_ERROR);
  expectError(24373);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(24337, "KESTREL-24337: unprepared statement handle");
}

TEST_F(PrepareTest, BlocksThatAreNoCallAreRefused) {
  for (const char *text : {"BEGINX", "BEGINNING", "begin x := 1; end;"}) {
    Statement stmt = fresh();
    EXPECT_EQ(stmt.prepare(text), OCI_ERROR) << text;
    expectError(13780, "KESTREL-13780: no SQL statement found");
    EXPECT_EQ(typeOf(stmt), OCI_STMT_BEGIN);
    EXPECT_EQ(stmt.execute(), OCI_ERROR);
    expectError(24337);
  }
}

TEST_F(PrepareTest, DeclareBlocksAreNotParsed) {
  Statement stmt = statement("DECLARE x int; BEGIN nonsense");
  EXPECT_EQ(typeOf(stmt), OCI_STMT_DECLARE);
}

TEST_F(PrepareTest, PublishedTypesAreReportedAndPrivateOnesReadAsUnknown) {
  const struct {
    const char *text;
    ub2 type;
  } cases[] = {
      {"select 1", 1},        {"UPDATE t", 2},   {"Delete", 3},  {"insert", 4},
      {"create", 5},          {"DROP", 6},       {"alter", 7},   {"declare", 9},
      {"truncate t", 0},      {"comment", 0},    {"grant x", 0}, {"revoke x", 0},
      {"with x as (y) z", 0}, {"(select 1)", 0}, {"COMMIT", 0},  {"SELECTED", 1}};
  for (const auto &c : cases) {
    Statement stmt = statement(c.text);
    EXPECT_EQ(typeOf(stmt), c.type) << c.text;
  }
}

TEST_F(PrepareTest, ANewTextDropsBindsAndDefines) {
  Statement stmt = statement("SELECT 1 WHERE :a = 1");
  sb4 value = 1;
  sb4 result = 0;
  ASSERT_EQ(stmt.bind(":a", value), OCI_SUCCESS);
  ASSERT_EQ(stmt.define(1, result), OCI_SUCCESS);
  ASSERT_EQ(stmt.prepare("SELECT 2"), OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  EXPECT_TRUE(codes().empty());
  ASSERT_EQ(stmt.define(1, result), OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(result, 2);
}

TEST_F(PrepareTest, AFailedPrepareLeavesTheHandleUnpreparedButUsable) {
  Statement stmt = statement("SELECT 1");
  EXPECT_EQ(stmt.prepare("BEGIN nothing"), OCI_ERROR);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(24337);
  sb4 result = 0;
  ASSERT_EQ(stmt.prepare("SELECT 3"), OCI_SUCCESS);
  ASSERT_EQ(stmt.define(1, result), OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(result, 3);
}

/// Attributes by what a get and a set of them answer.
struct AttributeCase {
  ub4 number;
  bool readable;
  bool writable;
};

class AttributeTest : public StatementFixture {};

TEST_F(AttributeTest, EachIsReadableOrWritableOrRefused) {
  const AttributeCase cases[] = {
      {OCI_ATTR_ENV, true, false},
      {OCI_ATTR_ROW_COUNT, true, false},
      {OCI_ATTR_PREFETCH_ROWS, false, true},
      {OCI_ATTR_PREFETCH_MEMORY, false, false},
      {OCI_ATTR_PARAM_COUNT, true, false},
      {OCI_ATTR_STMT_TYPE, true, false},
      {OCI_ATTR_STATEMENT, true, false},
      {OCI_ATTR_CURRENT_POSITION, true, false},
      {OCI_ATTR_STMT_STATE, true, false},
      {OCI_ATTR_ROWS_FETCHED, true, false},
      {ZEVOCI_ATTR_CURSOR_STRATEGY, true, true},
      {ZEVOCI_ATTR_HOLD_POLICY, true, true},
      {99999, false, false},
  };
  Statement stmt = statement("select 1");
  for (const AttributeCase &c : cases) {
    SCOPED_TRACE(c.number);
    void *wide[2] = {};
    EXPECT_EQ(OCIAttrGet(stmt.handle(), OCI_HTYPE_STMT, wide, nullptr, c.number, errhp()),
              c.readable ? OCI_SUCCESS : OCI_ERROR);
    if (!c.readable) expectError(24328);
    EXPECT_EQ(stmt.setAttribute(c.number, 0), c.writable ? OCI_SUCCESS : OCI_ERROR);
    if (!c.writable) expectError(24328);
  }
}

TEST_F(AttributeTest, TheEnvironmentIsTheParent) {
  Statement stmt = statement("select 1");
  OCIEnv *parent = nullptr;
  EXPECT_EQ(
      OCIAttrGet(stmt.handle(), OCI_HTYPE_STMT, &parent, nullptr, OCI_ATTR_ENV, errhp()),
      OCI_SUCCESS);
  EXPECT_EQ(parent, env());
}

TEST_F(AttributeTest, StrategyAndHoldPolicyTakeTheirValuesOnly) {
  Statement stmt = statement("select 1");
  for (const ub4 value : {0u, 1u, 2u}) {
    EXPECT_EQ(stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, value), OCI_SUCCESS);
    EXPECT_EQ(stmt.attribute(ZEVOCI_ATTR_CURSOR_STRATEGY), value);
  }
  for (const ub4 value : {3u, 4u, 5u, 0xFFFFFFFFu}) {
    EXPECT_EQ(stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, value), OCI_ERROR);
    expectError(24328);
    EXPECT_EQ(stmt.attribute(ZEVOCI_ATTR_CURSOR_STRATEGY), 2u);
  }
  for (const ub4 value : {0u, 5u, 6u}) {
    EXPECT_EQ(stmt.setAttribute(ZEVOCI_ATTR_HOLD_POLICY, value), OCI_SUCCESS);
    EXPECT_EQ(stmt.attribute(ZEVOCI_ATTR_HOLD_POLICY), value);
  }
  for (const ub4 value : {1u, 2u, 3u, 4u, 7u}) {
    EXPECT_EQ(stmt.setAttribute(ZEVOCI_ATTR_HOLD_POLICY, value), OCI_ERROR);
    expectError(24328);
    EXPECT_EQ(stmt.attribute(ZEVOCI_ATTR_HOLD_POLICY), 6u);
  }
}

TEST_F(AttributeTest, CountsFollowTheWayOfAQuery) {
  Statement stmt = statement("SELECT g, g FROM generate_series(1, 5) g");
  sb4 values[2][3] = {};
  stmt.define(1, values[0], sizeof(sb4), SQLT_INT);
  stmt.define(2, values[1], sizeof(sb4), SQLT_INT);
  const auto expectCounts = [&](ub4 rows, ub4 position, ub4 fetched, ub4 columns,
                                ub4 state) {
    EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), rows);
    EXPECT_EQ(stmt.attribute(OCI_ATTR_CURRENT_POSITION), position);
    EXPECT_EQ(stmt.attribute(OCI_ATTR_ROWS_FETCHED), fetched);
    EXPECT_EQ(stmt.attribute(OCI_ATTR_PARAM_COUNT), columns);
    EXPECT_EQ(stmt.attribute(OCI_ATTR_STMT_STATE), state);
  };
  expectCounts(0, 0, 0, 0, 1);
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  expectCounts(0, 0, 0, 2, 3);
  ASSERT_EQ(stmt.fetch(3), OCI_SUCCESS);
  expectCounts(3, 3, 3, 2, 2);
  ASSERT_EQ(stmt.fetch(3), OCI_NO_DATA);
  expectCounts(5, 5, 2, 2, 2);
  ASSERT_EQ(stmt.fetch(3), OCI_NO_DATA);
  expectCounts(5, 5, 0, 0, 3);
  ASSERT_EQ(stmt.execute(1), OCI_SUCCESS);
  expectCounts(1, 1, 1, 2, 2);
}

TEST_F(AttributeTest, RowCountOfDmlIsTheServersCount) {
  run("INSERT INTO " + table() + " SELECT g, 'x' FROM generate_series(1, 7) g");
  Statement update = statement("UPDATE " + table() + " SET t = 'y' WHERE id > 2");
  ASSERT_EQ(update.execute(), OCI_SUCCESS);
  EXPECT_EQ(update.attribute(OCI_ATTR_ROW_COUNT), 5u);
  EXPECT_EQ(update.attribute(OCI_ATTR_PARAM_COUNT), 0u);
  Statement none = statement("DELETE FROM " + table() + " WHERE id > 100");
  ASSERT_EQ(none.execute(), OCI_SUCCESS);
  EXPECT_EQ(none.attribute(OCI_ATTR_ROW_COUNT), 0u);
}

TEST_F(AttributeTest, RowCountOfSeveralIterationsIsThatOfTheLast) {
  run("INSERT INTO " + table() + " VALUES (1), (1), (1), (2)");
  Statement stmt = statement("DELETE FROM " + table() + " WHERE id = :id");
  sb4 ids[] = {1, 2};
  stmt.bind(":id", ids, sizeof ids[0], SQLT_INT);
  ASSERT_EQ(stmt.execute(2), OCI_SUCCESS);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 1u);
  commit();
  EXPECT_EQ(committed(), "0:0");
}

}  // namespace
}  // namespace zev::test
