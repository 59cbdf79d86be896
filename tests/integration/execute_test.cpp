/// The roads of an execution, and what each leaves in the transaction.
#include <unistd.h>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

class ExecuteTest : public OciTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    query("DROP TABLE IF EXISTS " + table_);
    query("CREATE TABLE " + table_ + " (id int PRIMARY KEY, name text)");
  }
  void TearDown() override {
    rollbackQuietly();
    OciTest::TearDown();
    query("DROP TABLE IF EXISTS " + table_);
  }
  void rollbackQuietly() { OCITransRollback(svchp(), errhp(), OCI_DEFAULT); }

  Statement insertion() {
    Statement stmt = statement("INSERT INTO " + table_ + " VALUES (:id, :name)");
    stmt.bind(":id", id_);
    stmt.bind(":name", name_);
    return stmt;
  }
  std::string rows() { return query("SELECT count(*) FROM " + table_); }

  /// The number of prepared statements, or cursors, that the session has on the server.
  sb4 countOnServer(const std::string &catalogue, const std::string &prefix) {
    Statement stmt = statement("SELECT count(*)::int FROM " + catalogue +
                               " WHERE name LIKE '" + prefix + "%'");
    sb4 count = -1;
    stmt.define(1, count);
    EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    return count;
  }

  const std::string table_ = dressed("execute_rows_" + std::to_string(getpid()));
  sb4 id_ = 1;
  Given name_{"one"};
};

TEST_F(ExecuteTest, DmlStaysInTheTransactionUntilItIsCommitted) {
  Statement insert = insertion();
  EXPECT_EQ(insert.execute(), OCI_SUCCESS);
  EXPECT_EQ(insert.attribute(OCI_ATTR_ROW_COUNT), 1u);
  EXPECT_EQ(rows(), "0");
  rollback();
  EXPECT_EQ(rows(), "0");
  EXPECT_EQ(insert.execute(), OCI_SUCCESS);
  commit();
  EXPECT_EQ(rows(), "1");
}

TEST_F(ExecuteTest, CommitOnSuccessCommitsDmlAndSelects) {
  Statement insert = insertion();
  EXPECT_EQ(insert.execute(1, OCI_COMMIT_ON_SUCCESS), OCI_SUCCESS);
  EXPECT_EQ(rows(), "1");

  id_ = 2;
  EXPECT_EQ(insert.execute(), OCI_SUCCESS);
  Statement select = statement("SELECT 1");
  sb4 value = 0;
  select.define(1, value);
  EXPECT_EQ(select.execute(1, OCI_COMMIT_ON_SUCCESS), OCI_SUCCESS);
  EXPECT_EQ(rows(), "2");
}

TEST_F(ExecuteTest, ModeEightDoesNotLookAtTheCommitBit) {
  Statement insert = insertion();
  EXPECT_EQ(insert.execute(), OCI_SUCCESS);
  Statement select = statement("SELECT 1");
  sb4 value = 0;
  select.define(1, value);
  EXPECT_EQ(select.execute(1, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS);
  EXPECT_EQ(rows(), "0");
}

TEST_F(ExecuteTest, DdlCommitsWhatWentBeforeIt) {
  Statement insert = insertion();
  EXPECT_EQ(insert.execute(), OCI_SUCCESS);
  run("CREATE TABLE " + table_ + "_ddl (a int)");
  EXPECT_EQ(rows(), "1");
  run("DROP TABLE " + table_ + "_ddl");
}

TEST_F(ExecuteTest, CommitAsTextCommits) {
  Statement insert = insertion();
  EXPECT_EQ(insert.execute(), OCI_SUCCESS);
  run("COMMIT");
  EXPECT_EQ(rows(), "1");
}

TEST_F(ExecuteTest, AQueryThatIsNotASelectFailsInThePlainRoad) {
  Statement with = statement("WITH x AS (SELECT 1 AS a) SELECT a FROM x");
  EXPECT_EQ(with.execute(), OCI_ERROR);
  expectError(0, "Unexpected error");
  EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_SUCCESS);
}

TEST_F(ExecuteTest, TruncateRunsFromItsTextAndCommits) {
  query("INSERT INTO " + table_ + " VALUES (1), (2)");
  run("TRUNCATE " + table_);
  EXPECT_EQ(rows(), "0");
  EXPECT_EQ(countOnServer("pg_prepared_statements", "stmt"), 1) << "the asking one alone";
}

TEST_F(ExecuteTest, DmlThatReturnsRowsIsRefusedAndRolledBack) {
  Statement stmt = statement("INSERT INTO " + table_ + " VALUES (7) RETURNING id");
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(0, "Support for RETURNING clause is not yet implemented");
  commit();
  EXPECT_EQ(rows(), "0");
}

TEST_F(ExecuteTest, AFailedPreparationIsNotTriedAgain) {
  Statement stmt = statement("INSERT INTO " + table_ + "_missing VALUES (1)");
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(942, "KESTREL-00942: table or view does not exist");
  query("CREATE TABLE " + table_ + "_missing (a int)");
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(0, "Unexpected NULL PGresult");
  EXPECT_EQ(stmt.prepare("INSERT INTO " + table_ + "_missing VALUES (1)"), OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  rollback();
  query("DROP TABLE " + table_ + "_missing");
}

TEST_F(ExecuteTest, ChecksComeBeforeAnythingIsSent) {
  Statement empty(env(), errhp(), svchp());
  EXPECT_EQ(empty.execute(), OCI_ERROR);
  expectError(24337, "KESTREL-24337: unprepared statement handle");
  Statement insert = insertion();
  const WireLog log = wireOf([&] { EXPECT_EQ(insert.execute(0), OCI_ERROR); });
  expectError(24333, "KESTREL-24333: iteration count is zero");
  EXPECT_EQ(log.roundTrips, 0);
}

TEST_F(ExecuteTest, BindsOfWhichNoneOccursAreRefused) {
  Statement stmt = statement("INSERT INTO " + table_ + " VALUES (':id')");
  EXPECT_EQ(stmt.bind(":id", id_), OCI_SUCCESS) << "a bind call knows no quotes";
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(24305, "KESTREL-24305: bind or define error");
}

TEST_F(ExecuteTest, ABindOfTheBeginningOfANameIsNotReplaced) {
  Statement stmt = statement("SELECT :abc::int");
  sb4 value = 0;
  EXPECT_EQ(stmt.bind(":ab", id_), OCI_SUCCESS);
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(16945);
}

TEST_F(ExecuteTest, ABindInAnotherCaseIsTakenAndNotReplaced) {
  Statement stmt = statement("SELECT :a::int");
  sb4 value = 0;
  EXPECT_EQ(stmt.bind(":A", id_), OCI_SUCCESS);
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(16945);
}

TEST_F(ExecuteTest, APlaceholderThatStandsTwiceIsSentTwice) {
  Statement stmt = statement("SELECT :a::int + 10 * :a::int");
  sb4 value = 0;
  id_ = 4;
  EXPECT_EQ(stmt.bind(":a", id_), OCI_SUCCESS);
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 44);
}

TEST_F(ExecuteTest, ASelectWithoutDefinesFailsWithoutARecordAndStaysOpen) {
  Statement stmt = statement("SELECT 1");
  EXPECT_EQ(stmt.execute(1), OCI_ERROR);
  EXPECT_EQ(errorText(), "");
  EXPECT_EQ(countOnServer("pg_cursors", "portal"), 2) << "its own and the asking one";
}

TEST_F(ExecuteTest, ARowOffsetOnASelectIsOutOfSequence) {
  Statement stmt = statement("SELECT 1");
  sb4 value = 0;
  stmt.define(1, value);
  EXPECT_EQ(OCIStmtExecute(svchp(), stmt.handle(), errhp(), 2, 1, nullptr, nullptr,
                           OCI_DEFAULT),
            OCI_ERROR);
  expectError(1002, "KESTREL-01002: out of sequence fetch");
}

TEST_F(ExecuteTest, AnUpdateWhoseRowsAreAllSkippedRunsNone) {
  query("INSERT INTO " + table_ + " VALUES (1, 'before')");
  Statement stmt = statement("UPDATE " + table_ + " SET name = 'after'");
  EXPECT_EQ(OCIStmtExecute(svchp(), stmt.handle(), errhp(), 1, 1, nullptr, nullptr,
                           OCI_DEFAULT),
            OCI_SUCCESS);
  commit();
  EXPECT_EQ(query("SELECT name FROM " + table_), "before");
}

TEST_F(ExecuteTest, ADeleteRunsOnceForEachRowOfItsBinds) {
  query("INSERT INTO " + table_ + " SELECT g FROM generate_series(1, 5) g");
  Statement stmt = statement("DELETE FROM " + table_ + " WHERE id >= :id");
  sb4 ids[3] = {5, 4, 2};
  stmt.bind(":id", ids, sizeof ids[0], SQLT_INT);
  EXPECT_EQ(stmt.execute(3), OCI_SUCCESS);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 2u) << "the count of the last run";
  commit();
  EXPECT_EQ(rows(), "1");
}

TEST_F(ExecuteTest, ExactFetchTakesExactlyTheRowsAskedFor) {
  sb4 values[2] = {};
  for (const auto &[count, status] :
       {std::pair{0, OCI_NO_DATA}, std::pair{1, OCI_NO_DATA}, std::pair{2, OCI_SUCCESS},
        std::pair{3, OCI_ERROR}}) {
    Statement stmt =
        statement("SELECT g FROM generate_series(1, " + std::to_string(count) + ") g");
    stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, 50);
    stmt.define(1, values, sizeof values[0], SQLT_INT);
    EXPECT_EQ(stmt.execute(2, OCI_EXACT_FETCH), status) << count;
    if (status == OCI_ERROR) {
      expectError(1422, "exact fetch returns more than requested number of rows");
    }
  }
  EXPECT_EQ(values[1], 2);
}

TEST_F(ExecuteTest, ParseOnlyRunsNothing) {
  Statement insert = insertion();
  EXPECT_EQ(insert.execute(1, OCI_PARSE_ONLY), OCI_SUCCESS);
  commit();
  EXPECT_EQ(rows(), "0");
  Statement select = statement("SELECT 1");
  EXPECT_EQ(select.execute(1, OCI_PARSE_ONLY), OCI_SUCCESS);
  Statement plain = statement("CREATE TABLE " + table_ + "_never (a int)");
  EXPECT_EQ(plain.execute(1, OCI_PARSE_ONLY), OCI_ERROR)
      << "never prepared on the server";
}

TEST_F(ExecuteTest, DescribeOnlyTellsTheColumnsAndTheServersParameterTypes) {
  Statement stmt = statement("SELECT id, name FROM " + table_ + " WHERE id = :id");
  EXPECT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_PARAM_COUNT), 2u);
  // Bound now, an 8-byte integer is declared as the server's int4.
  sb8 wide = 1;
  EXPECT_EQ(stmt.bind(":id", &wide, sizeof wide, SQLT_INT), OCI_SUCCESS);
  query("INSERT INTO " + table_ + " VALUES (1, 'one')");
  TextBuffer<> name;
  stmt.define(1, id_);
  stmt.define(2, name);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(name.text(), "one");
}

TEST_F(ExecuteTest, ADescribedSelectThatFailsSaysWhy) {
  Statement stmt = statement("SELECT missing FROM " + table_);
  EXPECT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_ERROR);
  EXPECT_EQ(serverState(), "42703");
}

TEST_F(ExecuteTest, ANoticeIsSuccessWithInfoForThatCallOnly) {
  Statement stmt = statement("DO $$ BEGIN RAISE NOTICE 'look here'; END $$");
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS_WITH_INFO);
  expectError(0, "look here");
  Statement next = statement("SELECT 1");
  sb4 value = 0;
  next.define(1, value);
  EXPECT_EQ(next.execute(), OCI_SUCCESS);
  EXPECT_EQ(errorText(), "");
}

TEST_F(ExecuteTest, NoticesOfDmlAndQueriesAreSuccessWithInfo) {
  query("CREATE OR REPLACE FUNCTION " + table_ +
        "_notice(int) RETURNS int LANGUAGE plpgsql AS "
        "$$ BEGIN RAISE NOTICE 'called with %', $1; RETURN $1; END $$");
  Statement select = statement("SELECT " + table_ + "_notice(3)");
  sb4 value = 0;
  select.define(1, value);
  EXPECT_EQ(select.execute(), OCI_SUCCESS_WITH_INFO);
  expectError(0, "called with 3");
  EXPECT_EQ(value, 3);
  Statement insert =
      statement("INSERT INTO " + table_ + " SELECT " + table_ + "_notice(4)");
  EXPECT_EQ(insert.execute(), OCI_SUCCESS_WITH_INFO);
  expectError(0, "called with 4");
  EXPECT_EQ(insert.attribute(OCI_ATTR_ROW_COUNT), 1u);
  rollback();
  query("DROP FUNCTION " + table_ + "_notice(int)");
}

TEST_F(ExecuteTest, BlocksThatAreNoSingleCallAreRefused) {
  Statement block(env(), errhp(), svchp());
  for (const char *text : {"BEGINX", "BEGIN x := 1; END;", "begin f(); g(); end;"}) {
    EXPECT_EQ(block.prepare(text), OCI_ERROR) << text;
    expectError(13780, "KESTREL-13780: no SQL statement found");
    EXPECT_EQ(block.execute(), OCI_ERROR);
    expectError(24337);
  }
}

TEST_F(ExecuteTest, ExecutingTwiceOpensANewPortalOverTheSameStatement) {
  Statement stmt = statement("SELECT g FROM generate_series(1, 9) g");
  sb4 value = 0;
  stmt.define(1, value);
  for (int round = 0; round < 50; ++round) {
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    ASSERT_EQ(value, 1);
  }
  EXPECT_EQ(countOnServer("pg_prepared_statements", "stmt"), 2)
      << "its own and the asking one";
  EXPECT_EQ(countOnServer("pg_cursors", "portal"), 2);
}

TEST_F(ExecuteTest, FreedAndPreparedAnewStatementsLeaveNothingOnTheServer) {
  for (const ub4 strategy : {1u, 2u}) {
    Statement stmt = statement("SELECT g FROM generate_series(1, 9) g");
    stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, strategy);
    sb4 value = 0;
    stmt.define(1, value);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    ASSERT_EQ(stmt.prepare("DELETE FROM " + table_), OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    ASSERT_EQ(stmt.prepare("SELECT 2"), OCI_SUCCESS);
  }
  EXPECT_EQ(countOnServer("pg_prepared_statements", "stmt"), 1);
  EXPECT_EQ(countOnServer("pg_cursors", "portal"), 1);
  EXPECT_EQ(countOnServer("pg_cursors", "cursor"), 0);
}

TEST_F(ExecuteTest, TheEnvironmentCanMakeEveryCursorADeclaredOne) {
  setVariable("OCI_WITH_HOLD", "1");
  reconnect();
  Statement stmt = statement("SELECT g FROM generate_series(1, 9) g");
  sb4 value = 0;
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  commit();
  EXPECT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 2);
  // A statement that wants a portal gets one.
  Statement portal = statement("SELECT 1");
  portal.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, 2);
  portal.define(1, value);
  const WireLog log = wireOf([&] { EXPECT_EQ(portal.execute(), OCI_SUCCESS); });
  EXPECT_NE(log.sql.at(log.sql.size() - 2).find("DECLARE \"portal_"), std::string::npos);
}

TEST_F(ExecuteTest, TwoConnectionsDoNotSeeEachOthersStatements) {
  OCISvcCtx *other = logon();
  ASSERT_NE(other, nullptr);
  Statement here = statement("SELECT 1");
  Statement there(env(), errhp(), other);
  sb4 a = 0, b = 0;
  ASSERT_EQ(there.prepare("SELECT 2"), OCI_SUCCESS);
  here.define(1, a);
  there.define(1, b);
  EXPECT_EQ(here.execute(), OCI_SUCCESS);
  EXPECT_EQ(there.execute(), OCI_SUCCESS);
  EXPECT_EQ(a, 1);
  EXPECT_EQ(b, 2);
  EXPECT_EQ(OCILogoff(other, errhp()), OCI_SUCCESS);
  EXPECT_EQ(here.execute(), OCI_SUCCESS);
}

TEST_F(ExecuteTest, PlainPostgresRefusesStatementLevelRollback) {
  void *server = nullptr;
  OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &server, nullptr, OCI_ATTR_SERVER, errhp());
  ub1 on = 1;
  EXPECT_EQ(
      OCIAttrSet(server, OCI_HTYPE_SERVER, &on, 0, ZEVOCI_ATTR_STMT_LEVEL_TX, errhp()),
      OCI_ERROR);
  EXPECT_EQ(serverState(), "42704");
  ub1 kept = 9;
  EXPECT_EQ(OCIAttrGet(server, OCI_HTYPE_SERVER, &kept, nullptr,
                       ZEVOCI_ATTR_STMT_LEVEL_TX, errhp()),
            OCI_SUCCESS);
  EXPECT_EQ(kept, 0);
}

}  // namespace
}  // namespace zev::test
