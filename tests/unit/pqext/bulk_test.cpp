/// Bulk runs against the same rows one by one.
#include <chrono>
#include <random>
#include <thread>

#include "tests/unit/pqext/pqext_fixture.h"

namespace zev::test {
namespace {

using Cells = std::vector<std::optional<std::string>>;

/// Rows of text parameters in the arrays that a bulk run takes.
struct Arrays {
  Arrays(const std::vector<Cells> &rows, std::size_t width) : params(width) {
    for (const Cells &row : rows) {
      for (const auto &cell : row) {
        values.push_back(cell ? cell->c_str() : nullptr);
        lengths.push_back(cell ? static_cast<int>(cell->size()) : 0);
      }
    }
    formats.resize(width);
    count = static_cast<int>(rows.size());
  }
  std::size_t params;
  int count;
  std::vector<const char *> values;
  std::vector<int> lengths;
  std::vector<int> formats;
};

class BulkTest : public PqextTest {
 protected:
  Result bulk(const std::string &name, const std::vector<Cells> &rows,
              std::size_t width) {
    const Arrays a(rows, width);
    return Result(PQexecBulkPrepared(conn(), name.c_str(), static_cast<int>(width),
                                     a.count, a.values.data(), a.lengths.data(),
                                     a.formats.data()));
  }
  Result rowByRow(const std::string &name, const std::vector<Cells> &rows,
                  std::size_t width) {
    Result last;
    for (const Cells &row : rows) {
      const std::vector<Cells> single = {row};
      const Arrays a(single, width);
      last.reset(PQexecPrepared(conn(), name.c_str(), static_cast<int>(width),
                                a.values.data(), a.lengths.data(), a.formats.data(), 0));
      if (PQresultStatus(last.get()) != PGRES_COMMAND_OK) break;
    }
    return last;
  }
  static std::vector<Cells> numbered(int count) {
    std::vector<Cells> rows;
    for (int i = 1; i <= count; ++i)
      rows.push_back({std::to_string(i), "t" + std::to_string(i)});
    return rows;
  }
  void makeTable(const std::string &more = "") {
    run("CREATE TEMP TABLE bulk_t (a int, b text" + more + ")");
    prepare("bulk_s", "INSERT INTO bulk_t VALUES ($1, $2)", {23, 25});
  }
  std::string sums() {
    return run(
        "SELECT count(*) || ':' || coalesce(sum(a), 0) || ':' || count(b) FROM bulk_t");
  }
};

TEST_F(BulkTest, RowsArriveInAndOutsideATransaction) {
  makeTable();
  EXPECT_EQ(PQresultStatus(bulk("bulk_s", numbered(1000), 2).get()), PGRES_COMMAND_OK);
  EXPECT_EQ(sums(), "1000:500500:1000");
  run("BEGIN");
  EXPECT_EQ(PQresultStatus(bulk("bulk_s", numbered(1001), 2).get()), PGRES_COMMAND_OK);
  EXPECT_EQ(sums(), "2001:1002001:2001");
  run("ROLLBACK");
  EXPECT_EQ(sums(), "1000:500500:1000");
}

TEST_F(BulkTest, NoRowsAreASuccess) {
  makeTable();
  EXPECT_EQ(PQresultStatus(bulk("bulk_s", {}, 2).get()), PGRES_COMMAND_OK);
  EXPECT_EQ(sums(), "0:0:0");
}

TEST_F(BulkTest, RowsThatReturnSomethingAreASuccess) {
  makeTable();
  prepare("bulk_r", "INSERT INTO bulk_t VALUES ($1, $2) RETURNING a", {23, 25});
  run("BEGIN");
  EXPECT_EQ(PQresultStatus(bulk("bulk_r", numbered(40), 2).get()), PGRES_COMMAND_OK);
  EXPECT_EQ(sums(), "40:820:40");
}

TEST_F(BulkTest, VariantsGoWithTheirStatement) {
  makeTable();
  run("BEGIN");
  for (int i = 0; i < 2; ++i) bulk("bulk_s", numbered(300), 2);
  EXPECT_NE(run("SELECT count(*) FROM pg_prepared_statements"), "1");
  run("DEALLOCATE bulk_s");
  PQextForgetPrepared(conn(), "bulk_s");
  EXPECT_EQ(run("SELECT count(*) FROM pg_prepared_statements"), "0");
}

TEST_F(BulkTest, UnknownStatementTellsTheServersError) {
  const Result result = bulk("bulk_nobody", numbered(3), 2);
  EXPECT_EQ(sqlstate(result.get()), "26000");
  EXPECT_NE(std::string(PQextErrorMessage(conn())).find("bulk_nobody"),
            std::string::npos);
  EXPECT_EQ(run("SELECT 1"), "1");
}

TEST_F(BulkTest, LargeRowsAndManyOfThemDoNotBlock) {
  makeTable();
  run("CREATE FUNCTION pg_temp.loud() RETURNS trigger LANGUAGE plpgsql AS"
      " 'BEGIN RAISE NOTICE ''%'', repeat(''x'', 20000); RETURN NEW; END'");
  run("CREATE TRIGGER loud BEFORE INSERT ON bulk_t FOR EACH ROW EXECUTE FUNCTION "
      "pg_temp.loud()");
  PQsetNoticeProcessor(
      conn(), [](void *, const char *) {}, nullptr);
  std::vector<Cells> rows(400, {"1", std::string(50'000, 'y')});
  EXPECT_EQ(PQresultStatus(bulk("bulk_s", rows, 2).get()), PGRES_COMMAND_OK);
  EXPECT_EQ(sums(), "400:400:400");
}

TEST_F(BulkTest, ServerThatGoesAwayLeavesItsWords) {
  run("CREATE TEMP TABLE bulk_end (a int)");
  prepare("bulk_e",
          "INSERT INTO bulk_end SELECT $1 WHERE pg_terminate_backend(CASE WHEN $1 = 50"
          " THEN pg_backend_pid() ELSE 0 END) IS NOT NULL",
          {23});
  PQsetNoticeProcessor(
      conn(), [](void *, const char *) {}, nullptr);
  // As many as the server reads at once: input that it leaves unread makes the network
  // drop what it said.
  std::vector<Cells> rows;
  for (int i = 0; i < 60; ++i) rows.push_back({std::to_string(i)});
  const Result result = bulk("bulk_e", rows, 1);
  EXPECT_NE(PQresultStatus(result.get()), PGRES_COMMAND_OK);
  EXPECT_NE(std::string(PQextErrorMessage(conn())).find("terminating"), std::string::npos)
      << PQextErrorMessage(conn());
  EXPECT_EQ(PQstatus(conn()), CONNECTION_BAD);
}

TEST_F(BulkTest, TimeLimitOfAStatementIsThatOfARow) {
  makeTable(", CHECK (pg_sleep(0.002) IS NOT NULL)");
  run("SET statement_timeout = '100ms'");
  run("BEGIN");
  EXPECT_EQ(PQresultStatus(bulk("bulk_s", numbered(200), 2).get()), PGRES_COMMAND_OK)
      << PQextErrorMessage(conn());
  EXPECT_EQ(sums(), "200:20100:200");
}

TEST_F(BulkTest, BreakEndsTheRunAndIsNotTriedAgain) {
  makeTable(", CHECK (pg_sleep(0.005) IS NOT NULL)");
  run("BEGIN");
  PGcancel *cancel = PQgetCancel(conn());
  std::thread breaker([cancel] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    char message[256];
    EXPECT_TRUE(PQcancel(cancel, message, sizeof message)) << message;
  });
  const Result result = bulk("bulk_s", numbered(256), 2);
  breaker.join();
  PQfreeCancel(cancel);
  EXPECT_EQ(sqlstate(result.get()), "57014");
  EXPECT_NE(std::string(PQextErrorMessage(conn())).find("canceling"), std::string::npos);
  EXPECT_EQ(state(), PQTRANS_INERROR);
  run("ROLLBACK");
  EXPECT_EQ(sums(), "0:0:0");
}

TEST_F(BulkTest, ServerThatGoesAwayDuringManyRowsLeavesItsWords) {
  makeTable(", CHECK (pg_sleep(0.005) IS NOT NULL)");
  const std::string backend = run("SELECT pg_backend_pid()");
  run("BEGIN");
  std::thread killer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const Connection other = connectToServer();
    run(other.get(), "SELECT pg_terminate_backend(" + backend + ")");
  });
  const Result result = bulk("bulk_s", numbered(256), 2);
  killer.join();
  EXPECT_EQ(sqlstate(result.get()), "57P01");
  EXPECT_NE(std::string(PQextErrorMessage(conn())).find("terminating"),
            std::string::npos);
}

/// What can be wrong with a row, and the table that finds out.
struct Refusal {
  const char *name;
  Cells row;
};

TEST_F(BulkTest, TheFirstFailingRowIsToldAsRowByRow) {
  makeTable(", CHECK (a <> 666), UNIQUE (a)");
  run("ALTER TABLE bulk_t ALTER b SET NOT NULL");
  const Refusal refusals[] = {{"unique", {"1", "again"}},
                              {"not null", {"7001", std::nullopt}},
                              {"check", {"666", "x"}},
                              {"bad text", {"seven", "x"}},
                              {"overflow", {"99999999999", "x"}}};
  std::mt19937 random(11);
  for (int round = 0; round < 60; ++round) {
    std::vector<Cells> rows = numbered(33 + static_cast<int>(random() % 300));
    rows.erase(rows.begin() + 1, rows.begin() + 2);
    for (Cells &row : rows) {
      if (row[0] == "666") row[0] = "6660";
    }
    for (auto n = random() % 3; n > 0; --n) {
      rows[2 + random() % (rows.size() - 2)] =
          refusals[random() % std::size(refusals)].row;
    }
    run("BEGIN");
    const Result one = rowByRow("bulk_s", rows, 2);
    const std::string oneState = sqlstate(one.get());
    const std::string oneMessage = PQresultErrorMessage(one.get());
    const auto oneTransaction = state();
    run("ROLLBACK");
    run("BEGIN");
    const Result all = bulk("bulk_s", rows, 2);
    EXPECT_EQ(sqlstate(all.get()), oneState) << round;
    EXPECT_EQ(PQresultErrorMessage(all.get()), oneMessage) << round;
    EXPECT_EQ(state(), oneTransaction) << round;
    if (oneState.empty()) {
      EXPECT_EQ(sums(), run("SELECT '" + std::to_string(rows.size()) +
                            ":' || sum(a) || ':' || count(b) FROM bulk_t"));
    }
    run("ROLLBACK");
  }
}

/// Tables whose rows must go one by one, and a question that shows whether they did.
struct Special {
  const char *name;
  std::vector<std::string> setup;
  const char *question;
  const char *answer;
};

TEST_F(BulkTest, TablesThatAreNotPlainGetTheirRowsOneByOne) {
  const Special specials[] = {
      {"statement trigger",
       {"CREATE TEMP TABLE sp_log (a int)",
        "CREATE FUNCTION pg_temp.sp_f() RETURNS trigger LANGUAGE plpgsql AS"
        " 'BEGIN INSERT INTO sp_log VALUES (1); RETURN NULL; END'",
        "CREATE TRIGGER sp AFTER INSERT ON bulk_t EXECUTE FUNCTION pg_temp.sp_f()"},
       "SELECT count(*) FROM sp_log",
       "100"},
      {"rule",
       {"CREATE TEMP TABLE sp_log (a int)",
        "CREATE RULE sp AS ON INSERT TO bulk_t DO ALSO INSERT INTO sp_log"
        " SELECT count(*) FROM bulk_t"},
       "SELECT count(DISTINCT a) FROM sp_log",
       "100"},
      {"reference to itself",
       {"ALTER TABLE bulk_t ADD UNIQUE (a)",
        "ALTER TABLE bulk_t ADD c int DEFAULT 1 REFERENCES bulk_t (a)"},
       "SELECT count(*) FROM bulk_t",
       "100"},
      {"function in a default",
       {"CREATE FUNCTION pg_temp.sp_n() RETURNS bigint LANGUAGE sql AS"
        " 'SELECT count(*) FROM bulk_t'",
        "ALTER TABLE bulk_t ADD c bigint DEFAULT pg_temp.sp_n()"},
       "SELECT count(DISTINCT c) FROM bulk_t",
       "100"},
      {"function in a check",
       {"CREATE FUNCTION pg_temp.sp_m(int) RETURNS boolean LANGUAGE sql AS"
        " 'SELECT count(*) = $1 - 1 FROM bulk_t'",
        "ALTER TABLE bulk_t ADD CHECK (pg_temp.sp_m(a))"},
       "SELECT count(*) FROM bulk_t",
       "100"},
  };
  for (const Special &special : specials) {
    run("BEGIN");
    run("CREATE TEMP TABLE bulk_t (a int, b text)");
    for (const std::string &sql : special.setup) run(sql);
    prepare("bulk_s", "INSERT INTO bulk_t (a, b) VALUES ($1, $2)", {23, 25});
    for (int i = 0; i < 2; ++i) {
      if (i == 1) run("SAVEPOINT second");
      const Result result = bulk("bulk_s", numbered(100), 2);
      if (i == 1) {
        run("ROLLBACK TO second");
        continue;
      }
      EXPECT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK)
          << special.name << ": " << PQextErrorMessage(conn());
    }
    EXPECT_EQ(run(special.question), special.answer) << special.name;
    run("ROLLBACK");
    run("DEALLOCATE ALL");
    PQextForgetPrepared(conn(), "bulk_s");
  }
}

class RowsTest : public BulkTest {};

TEST_F(RowsTest, ResultIsThatOfTheLastRow) {
  makeTable();
  bulk("bulk_s", numbered(10), 2);
  prepare("bulk_d", "DELETE FROM bulk_t WHERE a <= $1", {23});
  const char *values[] = {"3", "4", "9"};
  const int lengths[3] = {}, formats[3] = {};
  const Result result(PQextExecRows(conn(), "bulk_d", 1, 3, values, lengths, formats));
  EXPECT_EQ(std::string(PQcmdStatus(result.get())), "DELETE 5");
  EXPECT_EQ(run("SELECT string_agg(a::text, ',') FROM bulk_t"), "10");
}

TEST_F(RowsTest, FirstRowThatReturnsSomethingIsTold) {
  makeTable();
  bulk("bulk_s", numbered(3), 2);
  prepare("bulk_d", "DELETE FROM bulk_t WHERE a = $1 RETURNING a", {23});
  const char *values[] = {"2", "1"};
  const int lengths[2] = {}, formats[2] = {};
  const Result result(PQextExecRows(conn(), "bulk_d", 1, 2, values, lengths, formats));
  EXPECT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK);
  EXPECT_EQ(std::string(PQgetvalue(result.get(), 0, 0)), "2");
}

class StepsTest : public BulkTest {
 protected:
  /// Gives the run its rows and steps until all are answered.
  int stepThrough(const std::vector<Cells> &rows, std::size_t width) {
    const Arrays a(rows, width);
    EXPECT_EQ(PQsendBulk(conn(), a.count, a.values.data(), a.lengths.data()), 1);
    int steps = 0;
    while (Result progress{PQextGetResult(conn())}) {
      EXPECT_EQ(PQresultStatus(progress.get()), PGRES_COMMAND_OK);
      EXPECT_EQ(PQextIsBusy(conn()), 0);
      ++steps;
    }
    return steps;
  }
};

TEST_F(StepsTest, RunIsGivenRowsAndFinished) {
  makeTable();
  const int formats[] = {0, 0};
  ASSERT_EQ(PQsendBulkStart(conn(), "bulk_s", 2, formats), 1);
  EXPECT_EQ(PQextGetResult(conn()), nullptr);
  EXPECT_GT(stepThrough(numbered(20'000), 2), 1);
  EXPECT_EQ(PQsendBulkFinish(conn()), 1);
  EXPECT_EQ(sums(), "20000:200010000:20000");
}

TEST_F(StepsTest, ASecondBatchOfTheRunIsTaken) {
  makeTable();
  const int formats[] = {0, 0};
  ASSERT_EQ(PQsendBulkStart(conn(), "bulk_s", 2, formats), 1);
  stepThrough(numbered(10), 2);
  stepThrough(numbered(20), 2);
  EXPECT_EQ(PQsendBulkFinish(conn()), 1);
  EXPECT_EQ(sums(), "30:265:30");
}

TEST_F(StepsTest, FailingRowFailsTheRun) {
  makeTable();
  const int formats[] = {0, 0};
  std::vector<Cells> rows = numbered(5000);
  rows[4000][0] = "none";
  ASSERT_EQ(PQsendBulkStart(conn(), "bulk_s", 2, formats), 1);
  stepThrough(rows, 2);
  EXPECT_EQ(PQsendBulkFinish(conn()), 7);
  EXPECT_NE(std::string(PQextErrorMessage(conn())).find("none"), std::string::npos);
  EXPECT_EQ(sums(), "0:0:0");
}

TEST_F(StepsTest, FinishWaitsForRowsOnTheirWay) {
  makeTable();
  const int formats[] = {0, 0};
  const std::vector<Cells> rows = numbered(50'000);
  const Arrays a(rows, 2);
  ASSERT_EQ(PQsendBulkStart(conn(), "bulk_s", 2, formats), 1);
  ASSERT_EQ(PQsendBulk(conn(), a.count, a.values.data(), a.lengths.data()), 1);
  EXPECT_EQ(PQsendBulkFinish(conn()), 1);
  EXPECT_EQ(run("SELECT count(*) FROM bulk_t"), "50000");
}

TEST_F(StepsTest, NextOperationEndsARunThatIsLeft) {
  makeTable();
  const int formats[] = {0, 0};
  const std::vector<Cells> rows = numbered(500);
  const Arrays a(rows, 2);
  ASSERT_EQ(PQsendBulkStart(conn(), "bulk_s", 2, formats), 1);
  ASSERT_EQ(PQsendBulk(conn(), a.count, a.values.data(), a.lengths.data()), 1);
  EXPECT_EQ(PQextFlush(conn()), 1);
  EXPECT_EQ(PQpipelineStatus(conn()), PQ_PIPELINE_OFF);
  EXPECT_EQ(PQisnonblocking(conn()), 0);
  EXPECT_EQ(sums(), "500:125250:500");
}

}  // namespace
}  // namespace zev::test
