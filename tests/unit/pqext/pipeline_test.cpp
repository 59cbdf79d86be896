#include "tests/unit/pqext/pqext_fixture.h"

namespace zev::test {
namespace {

using Texts = std::vector<std::string>;

class PipelineTest : public PqextTest {
 protected:
  void SetUp() override {
    run("BEGIN");
    prepare("s", "select generate_series(1, 5)");
    prepare("bad row", "select 2 / (3 - n) from generate_series(1, 5) n");
    prepare("noisy", "select pg_temp.noisy(n) from generate_series(1, 2) n", {}, false);
  }
  // The function must stand before the statement over it.
  PipelineTest() {
    run("CREATE FUNCTION pg_temp.noisy(n int) RETURNS int LANGUAGE plpgsql AS "
        "$$BEGIN RAISE NOTICE 'row %', n; RETURN n; END$$");
  }

  /// Binds with a fetch announced.
  void boundExpecting(const std::string &portal, unsigned count) {
    PQextExpectFetch(conn(), count);
    bound(portal, "s");
  }

  /// Runs `work` and expects `trips` round trips; the SQL sent.
  template <class Work>
  Texts sqlOf(int trips, Work &&work) {
    record();
    work();
    const WireLog log = recorded();
    EXPECT_EQ(log.roundTrips, trips);
    return log.sql;
  }
};

TEST_F(PipelineTest, BindAndFetchShareATrip) {
  const Texts sql = sqlOf(1, [&] {
    boundExpecting("p", 2);
    EXPECT_EQ(fetched("p", 2), (Rows{{"1"}, {"2"}}));
  });
  EXPECT_EQ(sql, (Texts{"DECLARE \"p\" NO SCROLL CURSOR FOR select generate_series(1, 5)",
                        "FETCH FORWARD 2 FROM \"p\""}));
  EXPECT_EQ(fetched("p", 2), (Rows{{"3"}, {"4"}}));
}

TEST_F(PipelineTest, TheResultsLookLikeThoseOfTheSlowRoad) {
  bound("slow", "s");
  const Result slow = fetch("slow", 2);
  boundExpecting("fast", 2);
  const Result fast = fetch("fast", 2);
  EXPECT_STREQ(PQcmdStatus(fast.get()), PQcmdStatus(slow.get()));
  EXPECT_EQ(PQresultStatus(fast.get()), PQresultStatus(slow.get()));
  EXPECT_EQ(PQftype(fast.get(), 0), PQftype(slow.get(), 0));
  EXPECT_STREQ(PQfname(fast.get(), 0), PQfname(slow.get(), 0));
  EXPECT_EQ(rowsOf(fast.get()), rowsOf(slow.get()));
}

TEST_F(PipelineTest, TheAnnouncementHoldsForOneBind) {
  boundExpecting("p", 2);
  EXPECT_EQ(sqlOf(1, [&] { bound("q", "s"); }).size(), 1u);
}

TEST_F(PipelineTest, AllRowsMayBeAnnounced) {
  sqlOf(1, [&] {
    boundExpecting("p", 0);
    EXPECT_EQ(fetched("p", 0).size(), 5u);
  });
  EXPECT_EQ(fetched("p", 0), Rows{});
}

TEST_F(PipelineTest, AnErrorOfTheBindIsTheBindsAndTheFetchsFollows) {
  PQextRememberPrepared(conn(), "broken", "select nonsense", 0, nullptr);
  PQextExpectFetch(conn(), 2);
  const Result result = bind("p", "broken");
  EXPECT_EQ(sqlstate(result.get()), "42703");
  EXPECT_EQ(state(), PQTRANS_INERROR);
  EXPECT_EQ(sqlstate(fetch("p", 2).get()), "25P02");
  run("ROLLBACK");
  EXPECT_EQ(run("select 1"), "1");
}

TEST_F(PipelineTest, AnErrorOfTheFetchIsTheFetchs) {
  PQextExpectFetch(conn(), 4);
  bound("p", "bad row");
  EXPECT_EQ(sqlstate(fetch("p", 4).get()), "22012");
  EXPECT_EQ(state(), PQTRANS_INERROR);
  EXPECT_EQ(sqlstate(fetch("p", 4).get()), "25P02");
  closed("p");
  run("ROLLBACK");
  closed("p");
}

TEST_F(PipelineTest, NoticesReachTheProcessorOfTheReadingTime) {
  Texts heard;
  const auto listen = [](void *texts, const char *text) {
    static_cast<Texts *>(texts)->push_back(text);
  };
  PQextExpectFetch(conn(), 2);
  const int sent =
      PQsendBindPrepared(conn(), "p", "noisy", 0, nullptr, nullptr, nullptr, 0);
  const PQnoticeProcessor former = PQsetNoticeProcessor(conn(), listen, &heard);
  const Result result = only(sent);
  PQsetNoticeProcessor(conn(), former, nullptr);
  EXPECT_EQ(heard, (Texts{"NOTICE:  row 1\n", "NOTICE:  row 2\n"}));
  EXPECT_EQ(fetched("p", 2), (Rows{{"1"}, {"2"}}));
}

TEST_F(PipelineTest, OtherOperationsInBetweenWork) {
  boundExpecting("p", 2);
  boundExpecting("q", 1);
  EXPECT_EQ(run("select 'plain'"), "plain");
  const Result described(PQdescribePortal(conn(), "p"));
  EXPECT_EQ(PQnfields(described.get()), 1);
  EXPECT_EQ(fetched("q", 1), (Rows{{"1"}}));
  EXPECT_EQ(fetched("q", 1), (Rows{{"2"}}));
  closed("q");
  EXPECT_EQ(fetched("p", 2), (Rows{{"1"}, {"2"}}));
  EXPECT_EQ(fetched("p", 2), (Rows{{"3"}, {"4"}}));
}

TEST_F(PipelineTest, AFetchOfFewerRowsLosesNone) {
  boundExpecting("p", 3);
  EXPECT_EQ(fetched("p", 1), (Rows{{"1"}}));
  EXPECT_EQ(fetched("p", 1), (Rows{{"2"}}));
  EXPECT_EQ(fetched("p", 2), (Rows{{"3"}, {"4"}}));
  EXPECT_EQ(fetched("p", 2), (Rows{{"5"}}));
  EXPECT_EQ(fetched("p", 2), Rows{});
}

TEST_F(PipelineTest, AFetchOfMoreRowsGetsThemAll) {
  boundExpecting("p", 2);
  EXPECT_EQ(fetched("p", 4), (Rows{{"1"}, {"2"}, {"3"}, {"4"}}));
  boundExpecting("q", 2);
  EXPECT_EQ(fetched("q", 0).size(), 5u);
  boundExpecting("r", 9);
  sqlOf(0, [&] { EXPECT_EQ(fetched("r", 20).size(), 5u); });
}

TEST_F(PipelineTest, RowsOfManyKindsSurviveBeingSplitAndJoined) {
  prepare(
      "kinds",
      "select n, nullif(n, 2), repeat('x', n), ''::text from generate_series(1, 3) n");
  bound("slow", "kinds");
  const Rows all = fetched("slow");
  PQextExpectFetch(conn(), 2);
  bound("p", "kinds");
  Rows rows = fetched("p", 1);
  for (const Row &row : fetched("p", 5)) rows.push_back(row);
  EXPECT_EQ(rows, all);
}

TEST_F(PipelineTest, AnErrorBehindTheRowsReadAheadIsTheFetchs) {
  PQextExpectFetch(conn(), 2);
  bound("p", "bad row");
  EXPECT_EQ(sqlstate(fetch("p", 4).get()), "22012");
}

TEST_F(PipelineTest, RowsReadAheadEndWithTheTransaction) {
  boundExpecting("p", 2);
  run("COMMIT");
  EXPECT_EQ(sqlstate(fetch("p", 2).get()), "34000");
  run("BEGIN");
  boundExpecting("p", 2);
  runFailing("select 1/0");
  EXPECT_EQ(sqlstate(fetch("p", 2).get()), "25P02");
}

TEST_F(PipelineTest, RowsReadAheadOutliveASavepointFromAfterThem) {
  boundExpecting("p", 2);
  run("SAVEPOINT a");
  boundExpecting("q", 2);
  run("ROLLBACK TO SAVEPOINT a");
  EXPECT_EQ(fetched("p", 2), (Rows{{"1"}, {"2"}}));
  EXPECT_EQ(sqlstate(fetch("q", 2).get()), "34000");
}

TEST_F(PipelineTest, AScrollablePortalIsNotReadAhead) {
  PQextScrollNext(conn(), 1);
  boundExpecting("p", 2);
  run("MOVE ABSOLUTE 3 IN \"p\"");
  EXPECT_EQ(fetched("p", 2), (Rows{{"4"}, {"5"}}));
}

TEST_F(PipelineTest, ALaterCloseTravelsWithTheNextBind) {
  bound("p", "s");
  const Texts sql = sqlOf(1, [&] {
    PQextCloseLater(conn(), "p");
    boundExpecting("q", 5);
    EXPECT_EQ(fetched("q", 5).size(), 5u);
  });
  EXPECT_EQ(sql, (Texts{"CLOSE \"p\"",
                        "DECLARE \"q\" NO SCROLL CURSOR FOR select generate_series(1, 5)",
                        "FETCH FORWARD 5 FROM \"q\""}));
  EXPECT_FALSE(exists("p"));
}

TEST_F(PipelineTest, ALaterCloseLetsItsNameBeBoundAgain) {
  bound("p", "s");
  fetched("p", 3);
  PQextCloseLater(conn(), "p");
  PQextCloseLater(conn(), "p");
  bound("p", "s");
  EXPECT_EQ(fetched("p", 1), (Rows{{"1"}}));
  closed("p");
}

TEST_F(PipelineTest, ALaterCloseIsFreeWhenTheTransactionEnds) {
  bound("p", "s");
  PQextCloseLater(conn(), "p");
  run("COMMIT");
  run("BEGIN");
  EXPECT_EQ(sqlOf(1, [&] { bound("q", "s"); }).size(), 1u);
}

TEST_F(PipelineTest, ALaterCloseNeverHarmsTheBind) {
  run("SAVEPOINT a");
  bound("p", "s");
  run("ROLLBACK TO SAVEPOINT a");
  PQextCloseLater(conn(), "p");
  PQextCloseLater(conn(), "nobody");
  bound("q", "s");
  EXPECT_EQ(fetched("q", 1), (Rows{{"1"}}));
}

TEST_F(PipelineTest, ALaterCloseInAFailedTransactionWaits) {
  run("SAVEPOINT a");
  bound("p", "s");
  PQextCloseLater(conn(), "p");
  run("SAVEPOINT b");
  runFailing("select 1/0");
  EXPECT_EQ(PQextFlush(conn()), 0);
  EXPECT_EQ(sqlstate(bind("q", "s").get()), "25P02");
  run("ROLLBACK TO SAVEPOINT b");
  EXPECT_TRUE(exists("p"));
  bound("q", "s");
  EXPECT_FALSE(exists("p"));
}

TEST_F(PipelineTest, ALaterCloseCanBeDoneAtOnce) {
  bound("p", "s");
  bound("q", "s");
  PQextCloseLater(conn(), "p");
  PQextCloseLater(conn(), "q");
  EXPECT_EQ(sqlOf(1, [&] { EXPECT_EQ(PQextFlush(conn()), 1); }),
            Texts{"CLOSE \"p\";CLOSE \"q\";"});
  EXPECT_FALSE(exists("p") || exists("q"));
  EXPECT_EQ(sqlOf(0, [&] { EXPECT_EQ(PQextFlush(conn()), 1); }), Texts{});
}

TEST_F(PipelineTest, ACloseOfANameThatWasToBeClosedLaterHappensOnce) {
  bound("p", "s");
  PQextCloseLater(conn(), "p");
  closed("p");
  bound("q", "s");
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(PipelineTest, AHeldCursorCanBeClosedLater) {
  run("DECLARE cursor_00000001 CURSOR WITH HOLD FOR select 1");
  run("COMMIT");
  PQextCloseLater(conn(), "cursor_00000001");
  PQextBeginFirst(conn());
  bound("p", "s");
  EXPECT_FALSE(exists("cursor_00000001"));
  EXPECT_TRUE(exists("p"));
}

TEST_F(PipelineTest, BeginGoesFirstInTheSameTrip) {
  run("COMMIT");
  const Texts sql = sqlOf(1, [&] {
    PQextBeginFirst(conn());
    boundExpecting("p", 1);
    EXPECT_EQ(fetched("p", 1), (Rows{{"1"}}));
  });
  EXPECT_EQ(sql.front(), "BEGIN");
  EXPECT_EQ(state(), PQTRANS_INTRANS);
}

TEST_F(PipelineTest, BeginIsNotSentInsideATransaction) {
  PQextBeginFirst(conn());
  EXPECT_EQ(sqlOf(1, [&] { bound("p", "s"); }).size(), 1u);
}

TEST_F(PipelineTest, AnErrorAfterBeginLeavesAFailedTransaction) {
  run("COMMIT");
  PQextRememberPrepared(conn(), "broken", "select nonsense", 0, nullptr);
  PQextBeginFirst(conn());
  EXPECT_EQ(sqlstate(bind("p", "broken").get()), "42703");
  EXPECT_EQ(state(), PQTRANS_INERROR);
  run("ROLLBACK");
}

TEST_F(PipelineTest, ReExecutionTakesOneTripInsteadOfThree) {
  bound("p0", "s");
  fetched("p0", 5);
  EXPECT_EQ(sqlOf(3,
                  [&] {
                    closed("p0");
                    bound("p1", "s");
                    fetched("p1", 5);
                  })
                .size(),
            3u);
  EXPECT_EQ(sqlOf(1,
                  [&] {
                    PQextCloseLater(conn(), "p1");
                    boundExpecting("p2", 5);
                    fetched("p2", 5);
                  })
                .size(),
            3u);
}

TEST_F(PipelineTest, AResultThatNobodyReadsIsDropped) {
  PQextExpectFetch(conn(), 2);
  ASSERT_EQ(PQsendBindPrepared(conn(), "p", "s", 0, nullptr, nullptr, nullptr, 0), 1);
  EXPECT_EQ(fetched("p", 2), (Rows{{"1"}, {"2"}}));
  boundExpecting("q", 2);
  ASSERT_EQ(PQsendFetchPrepared(conn(), "q", 2), 1);
  EXPECT_EQ(fetched("q", 2), (Rows{{"3"}, {"4"}}));
}

TEST_F(PipelineTest, AConnectionLostInThePipelineIsAnErrorAndNoHang) {
  prepare("kill", "select pg_terminate_backend(pg_backend_pid()), pg_sleep(5)");
  PQextExpectFetch(conn(), 1);
  bound("p", "kill");
  EXPECT_EQ(PQresultStatus(fetch("p", 1).get()), PGRES_FATAL_ERROR);
  EXPECT_EQ(PQstatus(conn()), CONNECTION_BAD);
  EXPECT_EQ(PQpipelineStatus(conn()), PQ_PIPELINE_OFF);
}

TEST_F(PipelineTest, AConnectionLostBeforeThePipelineIsTheBindsError) {
  const Connection killer = connectToServer();
  run(killer.get(),
      "select pg_terminate_backend(" + std::to_string(PQbackendPID(conn())) + ", 5000)");
  PQextBeginFirst(conn());
  PQextExpectFetch(conn(), 1);
  if (PQsendBindPrepared(conn(), "p", "s", 0, nullptr, nullptr, nullptr, 0)) {
    const Result result(PQextGetResult(conn()));
    EXPECT_EQ(PQresultStatus(result.get()), PGRES_FATAL_ERROR);
    EXPECT_NE(std::string(PQresultErrorMessage(result.get())), "");
  }
  EXPECT_EQ(PQextGetResult(conn()), nullptr);
  EXPECT_EQ(PQstatus(conn()), CONNECTION_BAD);
  EXPECT_EQ(PQpipelineStatus(conn()), PQ_PIPELINE_OFF);
}

}  // namespace
}  // namespace zev::test
