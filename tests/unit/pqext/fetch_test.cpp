#include <climits>

#include "tests/unit/pqext/pqext_fixture.h"

namespace zev::test {
namespace {

class FetchTest : public PqextTest {
 protected:
  void SetUp() override {
    run("BEGIN");
    prepare("five", "select generate_series(1, 5)");
    bound("p", "five");
  }
};

TEST_F(FetchTest, GivesTheRowsAskedForAndThenTheRest) {
  EXPECT_EQ(fetched("p", 2), (Rows{{"1"}, {"2"}}));
  EXPECT_EQ(fetched("p", 1), (Rows{{"3"}}));
  EXPECT_EQ(fetched("p", 10), (Rows{{"4"}, {"5"}}));
}

TEST_F(FetchTest, ZeroAndMoreThanIntMaxMeanAll) {
  bound("q", "five");
  bound("r", "five");
  EXPECT_EQ(fetched("p", 0).size(), 5u);
  EXPECT_EQ(fetched("q", UINT_MAX).size(), 5u);
  EXPECT_EQ(fetched("r", INT_MAX).size(), 5u);
}

TEST_F(FetchTest, AtTheEndGivesNoRowsButTheColumns) {
  fetched("p");
  for (int time = 0; time < 2; ++time) {
    const Result result = fetch("p", 3);
    EXPECT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK);
    EXPECT_EQ(PQntuples(result.get()), 0);
    EXPECT_EQ(PQnfields(result.get()), 1);
  }
}

TEST_F(FetchTest, TellsTheNumberOfRowsInTheCommandTag) {
  EXPECT_STREQ(PQcmdStatus(fetch("p", 3).get()), "FETCH 3");
}

TEST_F(FetchTest, ReachesACursorThatWasDeclaredInPlainSql) {
  run("DECLARE cursor_0000000a NO SCROLL CURSOR WITH HOLD FOR select 7");
  run("COMMIT");
  EXPECT_EQ(fetched("cursor_0000000a", 1), (Rows{{"7"}}));
}

TEST_F(FetchTest, AnErrorOfARowIsTheFetchsError) {
  prepare("bad", "select 2 / (3 - n) from generate_series(1, 5) n");
  bound("q", "bad");
  EXPECT_EQ(fetched("q", 2), (Rows{{"1"}, {"2"}}));
  EXPECT_EQ(sqlstate(fetch("q", 2).get()), "22012");
  EXPECT_EQ(state(), PQTRANS_INERROR);
  EXPECT_EQ(sqlstate(fetch("p", 2).get()), "25P02");
  run("ROLLBACK");
  EXPECT_EQ(run("select 9"), "9");
}

TEST_F(FetchTest, AfterTheTransactionThePortalIsUnknown) {
  run("COMMIT");
  EXPECT_EQ(sqlstate(fetch("p", 2).get()), "34000");
}

TEST_F(FetchTest, SendsOneQuery) {
  record();
  fetched("p", 2);
  const WireLog log = recorded();
  EXPECT_EQ(log.roundTrips, 1);
  EXPECT_EQ(log.sql, std::vector<std::string>{"FETCH FORWARD 2 FROM \"p\""});
}

}  // namespace
}  // namespace zev::test
