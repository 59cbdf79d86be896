#include <cstring>

#include "tests/server/address.h"
#include "tests/unit/pqext/pqext_fixture.h"

namespace zev::test {
namespace {

constexpr Oid kInt4 = 23;
constexpr Oid kText = 25;
constexpr Oid kBytea = 17;
constexpr Oid kNumeric = 1700;
constexpr Oid kDate = 1082;

class BindTest : public PqextTest {
 protected:
  void SetUp() override { run("BEGIN"); }
};

TEST_F(BindTest, PassesParametersOfSeveralTypesAsText) {
  prepare("s", "select $1::text, $2 + 1, $3 * 2, $4 + 1",
          {kText, kInt4, kNumeric, kDate});
  bound("p", "s", {"it's \"$1\"", "41", "1.25", "2024-02-28"});
  EXPECT_EQ(fetched("p"), (Rows{{"it's \"$1\"", "42", "2.50", "2024-02-29"}}));
}

TEST_F(BindTest, PassesBinaryParametersWithTheirLengths) {
  prepare("s", "select $1 + 1, $2, encode($3, 'hex')", {kInt4, kText, kBytea});
  const char number[] = {0, 0, 1, 2};
  const char bytes[] = {'a', 0, 'b'};
  const char *values[] = {number, "text", bytes};
  const int lengths[] = {4, 0, 3};
  const int formats[] = {1, 0, 1};
  const Result result =
      only(PQsendBindPrepared(conn(), "p", "s", 3, values, lengths, formats, 0));
  ASSERT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK);
  EXPECT_EQ(fetched("p"), (Rows{{"259", "text", "610062"}}));
}

TEST_F(BindTest, PassesNulls) {
  prepare("s", "select $1, $2 is null, coalesce($2, 7)", {kText, kInt4});
  bound("p", "s", {nullptr, nullptr});
  EXPECT_EQ(fetched("p"), (Rows{{"NULL", "t", "7"}}));
}

TEST_F(BindTest, LeavesUndeclaredTypesToTheServer) {
  prepare("s", "select $1 || 'x', $2 + 1", {0, 0});
  bound("p", "s", {"a", "1"});
  EXPECT_EQ(fetched("p"), (Rows{{"ax", "2"}}));
}

TEST_F(BindTest, AsksForAStatementItWasNotToldOf) {
  prepare("s", "select $1 + 1, $2", {kInt4, kText}, false);
  bound("p", "s", {"1", "x"});
  EXPECT_EQ(fetched("p"), (Rows{{"2", "x"}}));
}

TEST_F(BindTest, AsksForAStatementOnlyOnce) {
  prepare("s", "select 1", {}, false);
  record();
  bound("p", "s");
  EXPECT_EQ(recorded().roundTrips, 2);
  record();
  bound("q", "s");
  const WireLog second = recorded();
  EXPECT_EQ(second.roundTrips, 1);
  EXPECT_EQ(second.sql,
            std::vector<std::string>{"DECLARE \"q\" NO SCROLL CURSOR FOR select 1"});
}

TEST_F(BindTest, AsksAgainAfterDeallocateOfAStatementItAskedFor) {
  prepare("s", "select 1", {}, false);
  bound("p", "s");
  run("DEALLOCATE s");
  prepare("s", "select 2", {}, false);
  bound("q", "s");
  EXPECT_EQ(fetched("q"), (Rows{{"2"}}));
}

TEST_F(BindTest, ForgetsAllStatementsWithDeallocateAll) {
  prepare("s", "select 1");
  run("DEALLOCATE ALL");
  EXPECT_EQ(sqlstate(bind("p", "s").get()), "26000");
}

TEST_F(BindTest, ForgetsAStatementWhenTold) {
  prepare("s", "select 1");
  PQextForgetPrepared(conn(), "s");
  run("DEALLOCATE s");
  EXPECT_EQ(sqlstate(bind("p", "s").get()), "26000");
}

TEST_F(BindTest, TakesTheTextToldLast) {
  prepare("s", "select 1");
  run("DEALLOCATE s");
  prepare("s", "select 2");
  bound("p", "s");
  EXPECT_EQ(fetched("p"), (Rows{{"2"}}));
}

TEST_F(BindTest, AnUnknownStatementIsTheServersError) {
  const Result result = bind("p", "nobody");
  EXPECT_EQ(PQresultStatus(result.get()), PGRES_FATAL_ERROR);
  EXPECT_EQ(sqlstate(result.get()), "26000");
  EXPECT_EQ(state(), PQTRANS_INERROR);
  run("ROLLBACK");
}

TEST_F(BindTest, InAFailedTransactionIsTheServersError) {
  prepare("told", "select 1");
  prepare("unknown", "select 1", {}, false);
  runFailing("select 1/0");
  EXPECT_EQ(sqlstate(bind("p", "told").get()), "25P02");
  EXPECT_EQ(sqlstate(bind("p", "unknown").get()), "25P02");
  run("ROLLBACK");
  EXPECT_EQ(run("select 3"), "3");
}

TEST_F(BindTest, WithoutATransactionIsTheServersError) {
  prepare("s", "select 1");
  run("COMMIT");
  EXPECT_EQ(sqlstate(bind("p", "s").get()), "25P01");
  EXPECT_EQ(run("select 3"), "3");
}

TEST_F(BindTest, ATextThatCannotBeACursorIsTheServersError) {
  for (const char *text :
       {"select 1 as a into temp t", "insert into pg_class default values",
        "select pg_advisory_lock(1); select 2"}) {
    PQextRememberPrepared(conn(), "s", text, 0, nullptr);
    const Result result = bind("p", "s");
    EXPECT_EQ(PQresultStatus(result.get()), PGRES_FATAL_ERROR) << text;
    EXPECT_STRNE(PQresultErrorMessage(result.get()), "") << text;
    EXPECT_EQ(state(), PQTRANS_INERROR);
    run("ROLLBACK");
    run("BEGIN");
  }
}

TEST_F(BindTest, TrailingSemicolonsAndCommentsDoNotMatter) {
  for (const char *text :
       {"select 1;", "select 1 ; ;", "select 1; -- one", "select 1 -- one",
        "/* one */ (select 1)", "values (1)", "with x as (select 1) table x"}) {
    prepare("s", text);
    bound("p", "s");
    EXPECT_EQ(fetched("p"), (Rows{{"1"}})) << text;
    closed("p");
    run("DEALLOCATE s");
  }
}

TEST_F(BindTest, NamesMayHoldAnything) {
  const std::string name = "a \"quoted\"; Name";
  prepare(name, "select 1", {}, false);
  bound(name, name);
  EXPECT_EQ(fetched(name), (Rows{{"1"}}));
  closed(name);
  EXPECT_FALSE(exists(name));
}

TEST_F(BindTest, TheParametersMayBeFreedOnceSent) {
  prepare("s", "select $1", {kText});
  auto value = std::make_unique<std::string>("a value of more than a few letters");
  const char *values[] = {value->c_str()};
  const int sent = PQsendBindPrepared(conn(), "p", "s", 1, values, nullptr, nullptr, 0);
  value.reset();
  const Result result = only(sent);
  EXPECT_EQ(fetched("p"), (Rows{{"a value of more than a few letters"}}));
}

TEST_F(BindTest, AWrongNumberOfParametersIsTheServersError) {
  prepare("s", "select $1, $2", {kText, kText});
  EXPECT_NE(sqlstate(bind("p", "s", {"1"}).get()), "");
  run("ROLLBACK");
}

TEST_F(BindTest, BinaryResultsAreRefusedUnsent) {
  prepare("s", "select 1");
  EXPECT_EQ(PQsendBindPrepared(conn(), "p", "s", 0, nullptr, nullptr, nullptr, 1), 0);
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(BindTest, IsRefusedWhileResultsAreUnread) {
  prepare("s", "select 1");
  prepare("unknown", "select 1", {}, false);
  ASSERT_EQ(PQsendQuery(conn(), "select 5"), 1);
  EXPECT_EQ(PQsendBindPrepared(conn(), "p", "s", 0, nullptr, nullptr, nullptr, 0), 0);
  PQextExpectFetch(conn(), 1);
  EXPECT_EQ(PQsendBindPrepared(conn(), "p", "s", 0, nullptr, nullptr, nullptr, 0), 0);
  EXPECT_EQ(PQsendBindPrepared(conn(), "p", "unknown", 0, nullptr, nullptr, nullptr, 0),
            0);
  EXPECT_EQ(PQsendFetchPrepared(conn(), "p", 1), 0);
  const Result result = only(1);
  EXPECT_EQ(rowsOf(result.get()), (Rows{{"5"}}));
}

TEST_F(BindTest, AScrollablePortalMovesBackwardWhateverThePlan) {
  for (const char *text :
       {"select a.n from generate_series(1, 5) a(n) join generate_series(1, 5) "
        "b(n) on a.n = b.n order by 1",
        "select count(*) + n from generate_series(1, 5) g(n) group by n "
        "order by n"}) {
    prepare("s", text);
    PQextScrollNext(conn(), 1);
    bound("p", "s");
    const Rows all = fetched("p");
    run("MOVE ABSOLUTE 0 IN \"p\"");
    EXPECT_EQ(fetched("p"), all);
    EXPECT_EQ(run("FETCH PRIOR FROM \"p\""), all.back().front());
    closed("p");
    run("DEALLOCATE s");
  }
}

TEST_F(BindTest, APortalThatWasNotToScrollRefusesToMoveBackward) {
  prepare("s", "select generate_series(1, 5)");
  PQextScrollNext(conn(), 1);
  bound("first", "s");
  bound("second", "s");  // the word held for one bind only
  fetched("second", 2);
  EXPECT_EQ(runFailing("FETCH PRIOR FROM \"second\""), "55000");
}

TEST_F(BindTest, ScrollingCanBeTakenBackBeforeTheBind) {
  prepare("s", "select 1");
  PQextScrollNext(conn(), 1);
  PQextScrollNext(conn(), 0);
  record();
  bound("p", "s");
  EXPECT_EQ(recorded().sql,
            std::vector<std::string>{"DECLARE \"p\" NO SCROLL CURSOR FOR select 1"});
}

TEST_F(BindTest, DescribePortalSeesTheColumns) {
  prepare("s", "select 1::int4 as one, 'x'::text as two");
  bound("p", "s");
  const Result result(PQdescribePortal(conn(), "p"));
  ASSERT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK);
  ASSERT_EQ(PQnfields(result.get()), 2);
  EXPECT_STREQ(PQfname(result.get(), 1), "two");
  EXPECT_EQ(PQftype(result.get(), 0), kInt4);
}

TEST_F(BindTest, TwoConnectionsKeepTheirOwnState) {
  const Connection other = connectToServer();
  run(other.get(), "BEGIN");
  PQextRememberPrepared(other.get(), "s", "select 'other'", 0, nullptr);
  prepare("s", "select 'this'");
  PQextScrollNext(other.get(), 1);
  bound("p", "s");
  Result result = only(other.get(), PQsendBindPrepared(other.get(), "p", "s", 0, nullptr,
                                                       nullptr, nullptr, 0));
  EXPECT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK);
  run("COMMIT");
  result = only(other.get(), PQsendFetchPrepared(other.get(), "p", 0));
  EXPECT_EQ(rowsOf(result.get()), (Rows{{"other"}}));
  EXPECT_EQ(run(other.get(), "FETCH PRIOR FROM p"), "other");
  EXPECT_EQ(sqlstate(fetch("p").get()), "34000");
}

TEST_F(BindTest, AResetConnectionKnowsNothingOfTheFormer) {
  prepare("s", "select 1");
  bound("p", "s");
  PQreset(conn());
  run("BEGIN");
  EXPECT_EQ(sqlstate(bind("p", "s").get()), "26000");
}

TEST_F(BindTest, ALostConnectionIsAnErrorAndNoHang) {
  prepare("s", "select pg_terminate_backend(pg_backend_pid()), pg_sleep(5)");
  bound("p", "s");
  const Result lost = fetch("p");
  EXPECT_EQ(PQresultStatus(lost.get()), PGRES_FATAL_ERROR);
  EXPECT_EQ(PQstatus(conn()), CONNECTION_BAD);
  EXPECT_EQ(PQsendBindPrepared(conn(), "q", "s", 0, nullptr, nullptr, nullptr, 0), 0);
  EXPECT_STRNE(PQerrorMessage(conn()), "");
  EXPECT_EQ(PQsendFetchPrepared(conn(), "p", 1), 0);
  EXPECT_EQ(PQsendClosePortal(conn(), "p"), 0);
  EXPECT_EQ(PQextGetResult(conn()), nullptr);
}

TEST(AttachTest, TakesAConnectionTwiceAndNoneNever) {
  const Connection conn = connectToServer();
  EXPECT_EQ(PQextAttach(conn.get()), 1);
  EXPECT_EQ(PQextAttach(conn.get()), 1);
  EXPECT_EQ(PQextAttach(nullptr), 0);
  EXPECT_EQ(PQextGetResult(nullptr), nullptr);
}

}  // namespace
}  // namespace zev::test
