/// Calls with OUT parameters at the level of the client operations.
#include <libpq-fe.h>
#include <unistd.h>

#include <string>

#include "pqext/call.h"
#include "tests/unit/pqext/pqext_fixture.h"

namespace zev::test {
namespace {

using Directions = std::vector<unsigned>;

class OutTest : public PqextTest {
 protected:
  void SetUp() override {
    run("CREATE SCHEMA " + schema_);
    run("SET search_path = " + schema_ + ", public");
    run("CREATE PROCEDURE p(a int, OUT b int, INOUT c text)"
        " LANGUAGE plpgsql AS 'BEGIN b := a + 1; c := c || a; END'");
    run("CREATE FUNCTION f(a int) RETURNS refcursor LANGUAGE sql AS"
        " 'SELECT ''named''::refcursor'");
  }

  void TearDown() override { run("DROP SCHEMA " + schema_ + " CASCADE"); }

  Result prepareCall(const std::string &query, const Directions &directions,
                     std::vector<Oid> types = {}) {
    types.resize(directions.size());
    return Result(PQprepareOut(conn(), "out_s", query.c_str(),
                               static_cast<int>(directions.size()), types.data(),
                               directions.data()));
  }
  /// Runs the call; its main result.
  Result call(const std::vector<const char *> &values) {
    const std::vector<int> zeros(values.size());
    if (!PQsendQueryPreparedOut(conn(), "out_s", static_cast<int>(values.size()),
                                values.data(), zeros.data(), zeros.data(), 0))
      return nullptr;
    Result main(PQextGetResult(conn()));
    EXPECT_EQ(PQextGetResult(conn()), nullptr);
    return main;
  }

  /// One for each process: the tests run side by side in one database.
  const std::string schema_ = "out_test_" + std::to_string(getpid());
};

TEST_F(OutTest, OutRowIsHandedOutOnce) {
  ASSERT_EQ(PQresultStatus(prepareCall("CALL p ( $1 , $2 , $3 );", {1, 2, 3}).get()),
            PGRES_COMMAND_OK);
  const Result main = call({"4", nullptr, "x"});
  EXPECT_TRUE(pqext::succeeded(main.get()));
  const Result out(PQgetOutResult(conn()));
  EXPECT_EQ(rowsOf(out.get()), (Rows{{"5", "x4"}}));
  EXPECT_EQ(PQftype(out.get(), 0), 23u);
  EXPECT_EQ(PQftype(out.get(), 1), 25u);
  EXPECT_EQ(PQgetOutResult(conn()), nullptr);
}

TEST_F(OutTest, NextOperationDropsAnOutRow) {
  prepareCall("CALL p ( $1 , $2 , $3 );", {1, 2, 3});
  call({"4", nullptr, "x"});
  PQextFlush(conn());
  EXPECT_EQ(PQgetOutResult(conn()), nullptr);
}

TEST_F(OutTest, PreparingAsksOnceAndACallIsOneTrip) {
  record();
  prepareCall("CALL p ( $1 , $2 , $3 );", {1, 2, 3});
  EXPECT_EQ(recorded().roundTrips, 2);
  record();
  call({"4", nullptr, "x"});
  EXPECT_EQ(recorded().roundTrips, 1);
}

TEST_F(OutTest, CallersDirectionsDecideOnTheColumns) {
  // The catalogue says IN, OUT, INOUT.
  prepareCall("CALL p ( $1 , $2 , $3 );", {3, 3, 3});
  call({"4", "ignored", "x"});
  const Result all(PQgetOutResult(conn()));
  EXPECT_EQ(rowsOf(all.get()), (Rows{{"4", "5", "x4"}}));
  run("DEALLOCATE out_s");
  PQextForgetPrepared(conn(), "out_s");
  prepareCall("CALL p ( $1 , $2 , $3 );", {2, 1, 1});
  call({"4", "ignored", "x"});
  const Result one(PQgetOutResult(conn()));
  ASSERT_EQ(PQnfields(one.get()), 1);
  EXPECT_TRUE(PQgetisnull(one.get(), 0, 0));
}

TEST_F(OutTest, FunctionIsSelectedAndItsTypeIsTold) {
  prepareCall("CALL " + schema_ + ".f ( $1 );", {1});
  const Result main = call({"1"});
  EXPECT_EQ(PQresultStatus(main.get()), PGRES_TUPLES_OK);
  EXPECT_EQ(PQftype(main.get(), 0), 1790u);
  EXPECT_EQ(rowsOf(main.get()), (Rows{{"named"}}));
  const Result out(PQgetOutResult(conn()));
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(PQnfields(out.get()), 0);
}

TEST_F(OutTest, UnknownRoutineIsTheServersError) {
  EXPECT_EQ(sqlstate(prepareCall("CALL nobody ( $1 );", {1}).get()), "42883");
  EXPECT_EQ(run("SELECT 1"), "1");
}

TEST_F(OutTest, FailedTransactionIsTheServersError) {
  run("BEGIN");
  runFailing("SELECT 1/0");
  EXPECT_EQ(sqlstate(prepareCall("CALL p ( $1 , $2 , $3 );", {1, 2, 3}).get()), "25P02");
  run("ROLLBACK");
}

TEST_F(OutTest, FailingCallLeavesTheConnectionUsable) {
  prepareCall("CALL p ( $1 , $2 , $3 );", {1, 2, 3});
  EXPECT_EQ(sqlstate(call({"four", nullptr, "x"}).get()), "22P02");
  EXPECT_EQ(PQgetOutResult(conn()), nullptr);
  const Result again = call({"4", nullptr, "x"});
  EXPECT_TRUE(pqext::succeeded(again.get()));
}

TEST_F(OutTest, PreparationCanBeSentWithoutWaiting) {
  const unsigned directions[] = {1, 2, 3};
  const Oid types[3] = {};
  ASSERT_NE(
      PQsendPrepareOut(conn(), "out_s", "CALL p ( $1 , $2 , $3 );", 3, types, directions),
      0);
  const Result prepared(PQextGetResult(conn()));
  EXPECT_EQ(PQresultStatus(prepared.get()), PGRES_COMMAND_OK);
  call({"4", nullptr, "x"});
  const Result out(PQgetOutResult(conn()));
  EXPECT_EQ(rowsOf(out.get()), (Rows{{"5", "x4"}}));
}

TEST_F(OutTest, StatementThatIsNoCallRunsAsItIs) {
  ASSERT_EQ(PQresultStatus(prepareCall("SELECT $1 || '!'", {1}, {25}).get()),
            PGRES_COMMAND_OK);
  EXPECT_EQ(rowsOf(call({"hello"}).get()), (Rows{{"hello!"}}));
}

TEST(CallText, IsTakenApart) {
  const auto call = pqext::parseCall("CALL s.p ( $2 , $1 );");
  ASSERT_TRUE(call.has_value());
  EXPECT_EQ(call->name, "s.p");
  EXPECT_EQ(call->arguments, (std::vector<int>{2, 1}));
  const auto none = pqext::parseCall("CALL p (  );");
  ASSERT_TRUE(none.has_value());
  EXPECT_TRUE(none->arguments.empty());
  for (const char *text :
       {"", "CALL p", "CALL p ( $1 ", "CALL p ( :a );", "CALL p ( $ );", "CALL p ( $0 );",
        "SELECT p ( $1 )", "CALL p ( $1x );"}) {
    EXPECT_FALSE(pqext::parseCall(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace zev::test
