/// A server that goes away in the middle of work, and statements that fail inside a
/// transaction: the program learns of it, and its handles serve again.
#include <unistd.h>

#include <thread>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

class BrokenConnectionTest : public OciTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    query("DROP TABLE IF EXISTS " + table_);
    run("CREATE TABLE " + table_ + " (id int PRIMARY KEY)");
    pid_ = ownPid();
  }

  void TearDown() override {
    query("DROP TABLE IF EXISTS " + table_);
    OciTest::TearDown();
  }

  std::string ownPid() {
    Statement pid = statement("SELECT pg_backend_pid()");
    sb4 value = 0;
    pid.define(1, value);
    EXPECT_EQ(pid.execute(), OCI_SUCCESS);
    commit();
    return std::to_string(value);
  }

  void killBackend() {
    EXPECT_EQ(query("SELECT pg_terminate_backend(" + pid_ + ", 10000)"), "t");
  }

  /// Kills the backend as soon as it runs a statement that begins with `text`.
  std::thread killWhileRunning(const std::string &text) {
    return std::thread([this, text] {
      const std::string running =
          "SELECT count(*) FROM pg_stat_activity WHERE pid = " + pid_ +
          " AND state = 'active' AND query ILIKE '%" + text +
          "%' AND wait_event = 'PgSleep'";
      while (query(running) != "1") std::this_thread::yield();
      killBackend();
    });
  }

  /// The same handles, a new session: everything works again.
  void expectUsableAgain(Statement &stmt) {
    OCIServer *server = nullptr;
    OCISession *session = nullptr;
    ASSERT_EQ(OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &session, nullptr, OCI_ATTR_SESSION,
                         errhp()),
              OCI_SUCCESS);
    if (OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &server, nullptr, OCI_ATTR_SERVER,
                   errhp()) != OCI_SUCCESS) {
      server = server_;
      OCIAttrSet(svchp(), OCI_HTYPE_SVCCTX, server, 0, OCI_ATTR_SERVER, errhp());
    }
    server_ = server;
    EXPECT_EQ(OCISessionEnd(svchp(), errhp(), nullptr, OCI_DEFAULT), OCI_ERROR);
    expectError(25407);
    OCIAttrSet(svchp(), OCI_HTYPE_SVCCTX, server, 0, OCI_ATTR_SERVER, errhp());
    ASSERT_EQ(OCISessionBegin(svchp(), errhp(), session, OCI_CRED_RDBMS, OCI_DEFAULT),
              OCI_SUCCESS)
        << errorText();
    ASSERT_EQ(stmt.prepare("SELECT 42"), OCI_SUCCESS) << errorText();
    sb4 value = 0;
    stmt.define(1, value);
    EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    EXPECT_EQ(value, 42);
    commit();
  }

 private:
  std::string pid_;

 protected:
  /// Tests of this kind may run side by side.
  const std::string table_ = dressed("broken_rows_" + std::to_string(getpid()));

 private:
  OCIServer *server_ = nullptr;
};

TEST_F(BrokenConnectionTest, ABackendThatDiesDuringAnExecuteIsReported) {
  Statement stmt = statement("INSERT INTO " + table_ + " SELECT 1 FROM pg_sleep(60)");
  std::thread killer = killWhileRunning(table_);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  killer.join();
  EXPECT_FALSE(errorText().empty());
  EXPECT_EQ(query("SELECT count(*) FROM " + table_), "0");
  Statement later = statement("INSERT INTO " + table_ + " VALUES (2)");
  EXPECT_EQ(later.execute(), OCI_ERROR);
  expectError(25407);
  expectUsableAgain(stmt);
}

TEST_F(BrokenConnectionTest, TheServersWordsArriveWhenAnAdministratorEndsTheSession) {
  Statement stmt = statement("INSERT INTO " + table_ + " SELECT 1 FROM pg_sleep(60)");
  std::thread killer = killWhileRunning(table_);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  killer.join();
  expectError(0, "terminating connection due to administrator command");
  EXPECT_EQ(serverState(), "57P01");
  expectUsableAgain(stmt);
}

TEST_F(BrokenConnectionTest, ABackendThatDiesBetweenFetchesIsReported) {
  Statement stmt = statement("SELECT g FROM generate_series(1, 100) g");
  sb4 values[10] = {};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  ASSERT_EQ(stmt.execute(10), OCI_SUCCESS);
  EXPECT_EQ(values[9], 10);
  killBackend();
  EXPECT_EQ(stmt.fetch(10), OCI_ERROR);
  EXPECT_FALSE(errorText().empty());
  EXPECT_EQ(stmt.fetch(10), OCI_ERROR);
  expectUsableAgain(stmt);
}

TEST_F(BrokenConnectionTest, ABackendThatDiesDuringAFetchIsReported) {
  Statement stmt = statement(
      "SELECT CASE WHEN g > 10 THEN length(pg_sleep(60)::text) + g ELSE g END "
      "FROM generate_series(1, 20) g");
  sb4 values[10] = {};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  ASSERT_EQ(stmt.execute(10), OCI_SUCCESS) << errorText();
  std::thread killer = killWhileRunning("FETCH");
  EXPECT_EQ(stmt.fetch(10), OCI_ERROR);
  killer.join();
  expectError(0, "terminating connection due to administrator command");
  expectUsableAgain(stmt);
}

TEST_F(BrokenConnectionTest, HandlesOfADeadConnectionCanBeFreed) {
  Statement select = statement("SELECT g FROM generate_series(1, 100) g");
  Statement insert = statement("INSERT INTO " + table_ + " VALUES (:id)");
  sb4 value = 0;
  select.define(1, value);
  insert.bind(":id", value);
  ASSERT_EQ(select.execute(), OCI_SUCCESS);
  ASSERT_EQ(insert.execute(), OCI_SUCCESS);
  killBackend();
  EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_ERROR);
  expectError(1041);
}

TEST_F(BrokenConnectionTest, ADeclaredCursorOfADeadConnectionIsForgotten) {
  Statement stmt = statement("SELECT g FROM generate_series(1, 100) g");
  ub4 declared = 1;
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, declared);
  sb4 value = 0;
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  killBackend();
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  expectUsableAgain(stmt);
}

TEST_F(BrokenConnectionTest, AStatementThatFailsInsideATransactionRollsItBackAndSaysWhy) {
  Statement insert = statement("INSERT INTO " + table_ + " VALUES (:id)");
  sb4 value = 1;
  insert.bind(":id", value);
  ASSERT_EQ(insert.execute(), OCI_SUCCESS);
  EXPECT_EQ(insert.execute(), OCI_ERROR);
  expectError(1, "unique constraint");
  EXPECT_EQ(serverState(), "23505");
  EXPECT_EQ(query("SELECT count(*) FROM " + table_), "0");

  value = 2;
  EXPECT_EQ(insert.execute(), OCI_SUCCESS) << errorText();
  commit();
  EXPECT_EQ(query("SELECT id FROM " + table_), "2");
}

TEST_F(BrokenConnectionTest,
       AQueryThatFailsWhileRowsAreFetchedRollsBackAndTheHandleServesAgain) {
  run("INSERT INTO " + table_ + " VALUES (1)");
  Statement stmt = statement("SELECT 10 / (5 - g) FROM generate_series(1, 9) g");
  sb4 values[2] = {};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  ASSERT_EQ(stmt.execute(2), OCI_SUCCESS);
  ASSERT_EQ(stmt.fetch(2), OCI_SUCCESS);
  EXPECT_EQ(stmt.fetch(2), OCI_ERROR);
  expectError(1476, "division by zero");
  EXPECT_EQ(serverState(), "22012");
  EXPECT_EQ(query("SELECT count(*) FROM " + table_), "0");

  ASSERT_EQ(stmt.execute(2), OCI_SUCCESS) << errorText();
  EXPECT_EQ(values[0], 2);
  commit();
}

}  // namespace
}  // namespace zev::test
