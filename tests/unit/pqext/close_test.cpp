#include "tests/unit/pqext/pqext_fixture.h"

namespace zev::test {
namespace {

using Texts = std::vector<std::string>;

class CloseTest : public PqextTest {
 protected:
  void SetUp() override {
    run("BEGIN");
    prepare("s", "select generate_series(1, 5)");
    bound("p", "s");
  }

  /// Closes a portal and returns the SQL that it took.
  Texts sqlToClose(const std::string &portal) {
    record();
    closed(portal);
    return recorded().sql;
  }

  void declareHeld(const std::string &name) {
    run("DECLARE " + name + " NO SCROLL CURSOR WITH HOLD FOR select 1");
  }
};

const std::string kQuestion = "SELECT name FROM pg_catalog.pg_cursors";

TEST_F(CloseTest, ALivePortalIsClosedInOneTrip) {
  EXPECT_EQ(sqlToClose("p"), Texts{"CLOSE \"p\""});
  EXPECT_FALSE(exists("p"));
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, AfterCommitNothingIsSentButTheNoOp) {
  run("COMMIT");
  EXPECT_EQ(sqlToClose("p"), Texts{""});
  EXPECT_EQ(run("select 1"), "1");
}

TEST_F(CloseTest, AfterRollbackNothingIsSentButTheNoOp) {
  run("ROLLBACK");
  EXPECT_EQ(sqlToClose("p"), Texts{""});
}

TEST_F(CloseTest, AfterCommitInsideTheNextTransactionNothingIsSentButTheNoOp) {
  run("COMMIT");
  run("BEGIN");
  EXPECT_EQ(sqlToClose("p"), Texts{""});
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, AfterCommitAndChainNothingIsSentButTheNoOp) {
  run("COMMIT AND CHAIN");
  EXPECT_EQ(sqlToClose("p"), Texts{""});
}

TEST_F(CloseTest, AfterPrepareTransactionNothingIsSentButTheNoOp) {
  run("PREPARE TRANSACTION 'pqext close'");
  EXPECT_EQ(sqlToClose("p"), Texts{""});
  run("ROLLBACK PREPARED 'pqext close'");
}

TEST_F(CloseTest, AfterRollbackInsideTheNextTransactionTheServerIsAsked) {
  run("ROLLBACK");
  run("BEGIN");
  EXPECT_EQ(sqlToClose("p"), (Texts{kQuestion, ""}));
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, InAFailedTransactionIsNoError) {
  runFailing("select 1/0");
  EXPECT_EQ(sqlToClose("p"), Texts{""});
  EXPECT_EQ(state(), PQTRANS_INERROR);
  run("ROLLBACK");
  EXPECT_EQ(run("select 1"), "1");
}

TEST_F(CloseTest, InAFailedTransactionWaitsForTheSavepoint) {
  run("SAVEPOINT a");
  runFailing("select 1/0");
  closed("p");
  run("ROLLBACK TO SAVEPOINT a");
  EXPECT_TRUE(exists("p"));
  closed("unknown");  // any operation does
  EXPECT_FALSE(exists("p"));
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, AfterRollbackToASavepointPortalsFromBeforeItLive) {
  run("SAVEPOINT a");
  bound("q", "s");
  run("ROLLBACK TO SAVEPOINT a");
  EXPECT_EQ(fetched("p", 1), (Rows{{"1"}}));
  EXPECT_EQ(sqlToClose("p"), (Texts{kQuestion, "CLOSE \"p\""}));
  EXPECT_EQ(sqlToClose("q"), Texts{""});  // the one question settled both
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, AfterReleaseOfASavepointPortalsLive) {
  run("SAVEPOINT a");
  bound("q", "s");
  run("RELEASE a");
  EXPECT_EQ(sqlToClose("q"), Texts{"CLOSE \"q\""});
}

TEST_F(CloseTest, AfterAForeignCloseTheServerIsAsked) {
  run("CLOSE p");
  EXPECT_EQ(sqlToClose("p"), (Texts{kQuestion, ""}));
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, OwnClosesPutNoOtherPortalInDoubt) {
  bound("q", "s");
  closed("p");
  EXPECT_EQ(sqlToClose("q"), Texts{"CLOSE \"q\""});
}

TEST_F(CloseTest, AfterCloseAllNothingIsSentButTheNoOp) {
  run("CLOSE ALL");
  EXPECT_EQ(sqlToClose("p"), Texts{""});
}

TEST_F(CloseTest, AHeldCursorIsClosedInsideATransaction) {
  declareHeld("cursor_0000000a");
  EXPECT_EQ(sqlToClose("cursor_0000000a"),
            (Texts{kQuestion, "CLOSE \"cursor_0000000a\""}));
  EXPECT_FALSE(exists("cursor_0000000a"));
}

TEST_F(CloseTest, AHeldCursorIsClosedOutsideATransaction) {
  declareHeld("cursor_0000000a");
  run("COMMIT");
  closed("cursor_0000000a");
  EXPECT_FALSE(exists("cursor_0000000a"));
  EXPECT_EQ(state(), PQTRANS_IDLE);
}

TEST_F(CloseTest, AHeldCursorInAFailedTransactionIsClosedAfterIt) {
  declareHeld("cursor_0000000a");
  run("COMMIT");
  run("BEGIN");
  runFailing("select 1/0");
  closed("cursor_0000000a");
  EXPECT_EQ(state(), PQTRANS_INERROR);
  run("ROLLBACK");
  EXPECT_TRUE(exists("cursor_0000000a"));
  EXPECT_EQ(PQextFlush(conn()), 1);
  EXPECT_FALSE(exists("cursor_0000000a"));
}

TEST_F(CloseTest, AHeldCursorThatDiedWithItsTransactionIsNoError) {
  declareHeld("cursor_0000000a");
  runFailing("select 1/0");
  closed("cursor_0000000a");
  run("ROLLBACK");
  run("BEGIN");
  bound("q", "s");
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, AnUnknownNameIsNoErrorAnywhere) {
  closed("nobody");
  EXPECT_EQ(state(), PQTRANS_INTRANS);
  runFailing("select 1/0");
  closed("nobody");
  run("ROLLBACK");
  closed("nobody");
  EXPECT_EQ(state(), PQTRANS_IDLE);
}

TEST_F(CloseTest, ASecondCloseIsNoError) {
  closed("p");
  closed("p");
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(CloseTest, APortalWhoseBindFailedIsNoError) {
  prepare("bad", "select 1 as a", {});
  PQextRememberPrepared(conn(), "bad", "select nonsense", 0, nullptr);
  EXPECT_EQ(sqlstate(bind("q", "bad").get()), "42703");
  closed("q");
  run("ROLLBACK");
  closed("q");
  EXPECT_EQ(run("select 1"), "1");
}

TEST_F(CloseTest, ANameMayBeBoundAgainAfterItsClose) {
  fetched("p", 3);
  closed("p");
  bound("p", "s");
  EXPECT_EQ(fetched("p", 1), (Rows{{"1"}}));
}

}  // namespace
}  // namespace zev::test
