/// Work that does not wait for the server: the same call again and again.
#include <array>
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "tests/integration/support/statement_fixture.h"

namespace zev::test {
namespace {

class StepwiseTest : public StatementFixture {
 protected:
  void SetUp() override {
    StatementFixture::SetUp();
    toggleNonBlocking();
  }

  void toggleNonBlocking() {
    ASSERT_EQ(OCIAttrSet(server(), OCI_HTYPE_SERVER, nullptr, 0,
                         OCI_ATTR_NONBLOCKING_MODE, errhp()),
              OCI_SUCCESS)
        << errorText();
  }

  /// Repeats the execution until it has ended; counts the calls.
  sword untilDone(Statement &stmt, ub4 iters, int most = 2'000'000,
                  ub4 mode = OCI_DEFAULT) {
    calls = 0;
    for (; calls < most; ++calls) {
      const sword status = stmt.execute(iters, mode);
      if (status != OCI_STILL_EXECUTING) {
        ++calls;
        return status;
      }
    }
    return OCI_STILL_EXECUTING;
  }

  Statement insert(std::vector<sb4> &ids) {
    Statement stmt = statement("INSERT INTO " + table() + " VALUES (:i, 'x')");
    stmt.bind(":i", ids.data(), sizeof(sb4), SQLT_INT);
    return stmt;
  }
  static std::vector<sb4> numbers(std::size_t count, sb4 first = 1) {
    std::vector<sb4> ids(count);
    for (std::size_t i = 0; i < count; ++i) ids[i] = first + static_cast<sb4>(i);
    return ids;
  }
  std::string plainCount() { return query("SELECT count(*) FROM " + table()); }

  int calls = 0;
};

TEST_F(StepwiseTest, ABulkTakesAtLeastThreeCalls) {
  std::vector<sb4> ids = numbers(3);
  Statement stmt = insert(ids);
  ASSERT_EQ(untilDone(stmt, 3), OCI_SUCCESS) << errorText();
  EXPECT_GE(calls, 3);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 3u);
  commit();
  EXPECT_EQ(plainCount(), "3");
}

TEST_F(StepwiseTest, AHundredThousandRowsMakeProgressCallByCall) {
  std::vector<sb4> ids = numbers(100'000);
  Statement stmt = insert(ids);
  ASSERT_EQ(untilDone(stmt, 100'000), OCI_SUCCESS) << errorText();
  EXPECT_GT(calls, 10);
  commit();
  EXPECT_EQ(query("SELECT count(*) || ':' || sum(id) FROM " + table()),
            "100000:5000050000");
}

TEST_F(StepwiseTest, NoCallWaitsForTheServer) {
  std::vector<sb4> ids = numbers(20);
  Statement stmt = statement("INSERT INTO " + table() +
                             " SELECT :i, 'x' FROM (SELECT pg_sleep(0.02)) s");
  stmt.bind(":i", ids.data(), sizeof(sb4), SQLT_INT);
  using Clock = std::chrono::steady_clock;
  // The first call begins the transaction and prepares.
  ASSERT_EQ(stmt.execute(20), OCI_STILL_EXECUTING) << errorText();
  const auto start = Clock::now();
  auto longest = Clock::duration::zero();
  sword status = OCI_STILL_EXECUTING;
  while (status == OCI_STILL_EXECUTING) {
    const auto before = Clock::now();
    status = stmt.execute(20);
    longest = std::max(longest, Clock::now() - before);
  }
  ASSERT_EQ(status, OCI_SUCCESS) << errorText();
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(300));
  EXPECT_LE(longest, std::chrono::milliseconds(200));
}

TEST_F(StepwiseTest, AFailingRowIsToldAndTheConnectionServes) {
  run("CREATE UNIQUE INDEX ON " + table() + " (id)");
  std::vector<sb4> ids = numbers(5000);
  ids[2500] = 17;
  Statement stmt = insert(ids);
  EXPECT_EQ(untilDone(stmt, 5000), OCI_ERROR);
  expectError(24338, "Key (id)=(17)");
  ids[2500] = 2501;
  ASSERT_EQ(untilDone(stmt, 5000), OCI_SUCCESS) << errorText();
  commit();
  EXPECT_EQ(plainCount(), "5000");
}

TEST_F(StepwiseTest, ASecondRunOfTheStatementStoresItsRowsToo) {
  std::vector<sb4> ids = numbers(10);
  Statement stmt = insert(ids);
  ASSERT_EQ(untilDone(stmt, 10), OCI_SUCCESS) << errorText();
  ASSERT_EQ(untilDone(stmt, 10), OCI_SUCCESS) << errorText();
  commit();
  EXPECT_EQ(plainCount(), "20");
}

TEST_F(StepwiseTest, AFailingRowOfASecondRunIsToldToo) {
  run("CREATE UNIQUE INDEX ON " + table() + " (id)");
  std::vector<sb4> ids = numbers(10);
  Statement stmt = insert(ids);
  ASSERT_EQ(untilDone(stmt, 10), OCI_SUCCESS) << errorText();
  EXPECT_EQ(untilDone(stmt, 10), OCI_ERROR);
  expectError(24338, "duplicate key");
  EXPECT_EQ(plainCount(), "0");
}

TEST_F(StepwiseTest, UpdateByArrayGoesInStepsToo) {
  std::vector<sb4> ids = numbers(100);
  Statement fill = insert(ids);
  ASSERT_EQ(untilDone(fill, 100), OCI_SUCCESS);
  Statement stmt = statement("UPDATE " + table() + " SET t = 'y' WHERE id = :i");
  stmt.bind(":i", ids.data(), sizeof(sb4), SQLT_INT);
  ASSERT_EQ(untilDone(stmt, 60), OCI_SUCCESS) << errorText();
  commit();
  EXPECT_EQ(query("SELECT count(*) FROM " + table() + " WHERE t = 'y'"), "60");
}

TEST_F(StepwiseTest, CommitOnSuccessCommitsWhenTheLastRowIsIn) {
  std::vector<sb4> ids = numbers(10);
  Statement stmt = insert(ids);
  ASSERT_EQ(untilDone(stmt, 10, 1000000, OCI_COMMIT_ON_SUCCESS), OCI_SUCCESS);
  EXPECT_EQ(plainCount(), "10");
}

TEST_F(StepwiseTest, StatementFreedInTheMiddleLeavesTheConnectionUsable) {
  std::vector<sb4> ids = numbers(20'000);
  {
    Statement stmt = insert(ids);
    ASSERT_EQ(stmt.execute(20'000), OCI_STILL_EXECUTING);
  }
  toggleNonBlocking();
  rollback();
  sb4 one = 0;
  Statement next = statement("SELECT 1");
  next.define(1, one);
  ASSERT_EQ(next.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(plainCount(), "0");
}

TEST_F(StepwiseTest, BreakFromASecondThreadEndsTheRun) {
  std::vector<sb4> ids = numbers(10'000);
  Statement stmt = statement("INSERT INTO " + table() +
                             " SELECT :i, 'x' FROM (SELECT pg_sleep(0.01)) s");
  stmt.bind(":i", ids.data(), sizeof(sb4), SQLT_INT);
  ASSERT_EQ(stmt.execute(10'000), OCI_STILL_EXECUTING) << errorText();
  std::atomic<sword> broken{-77};
  std::thread breaker([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    void *errorHandle = nullptr;
    OCIHandleAlloc(env(), &errorHandle, OCI_HTYPE_ERROR, 0, nullptr);
    broken = OCIBreak(svchp(), static_cast<OCIError *>(errorHandle));
    OCIHandleFree(errorHandle, OCI_HTYPE_ERROR);
  });
  sword status = OCI_STILL_EXECUTING;
  while (status == OCI_STILL_EXECUTING) status = stmt.execute(10'000);
  breaker.join();
  EXPECT_EQ(broken, OCI_SUCCESS);
  EXPECT_EQ(status, OCI_ERROR);
  expectError(24338, "canceling statement");
  EXPECT_EQ(plainCount(), "0");
  std::vector<sb4> few = numbers(3);
  Statement again = insert(few);
  EXPECT_EQ(untilDone(again, 3), OCI_SUCCESS) << errorText();
}

TEST_F(StepwiseTest, FirstBatchOfASelectComesInSteps) {
  Statement stmt = statement("SELECT g FROM generate_series(1, 5) g");
  sb4 values[4] = {};
  stmt.define(1, values, sizeof *values, SQLT_INT);
  ASSERT_EQ(stmt.execute(3), OCI_STILL_EXECUTING) << errorText();
  ASSERT_EQ(untilDone(stmt, 3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(values[0] + 10 * values[1] + 100 * values[2], 321);
  ASSERT_EQ(stmt.fetch(2), OCI_SUCCESS) << errorText();
  EXPECT_EQ(values[0] + 10 * values[1], 54);
  EXPECT_EQ(stmt.fetch(1), OCI_NO_DATA);
}

TEST_F(StepwiseTest, ExecuteAfterADeliveredBatchFailsOnceAndThenStartsAfresh) {
  Statement stmt = statement("SELECT g FROM generate_series(1, 5) g");
  sb4 values[5] = {};
  stmt.define(1, values, sizeof *values, SQLT_INT);
  ASSERT_EQ(untilDone(stmt, 5), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.execute(5), OCI_ERROR);
  EXPECT_EQ(stmt.execute(5), OCI_STILL_EXECUTING) << errorText();
  values[4] = 0;
  ASSERT_EQ(untilDone(stmt, 5), OCI_SUCCESS) << errorText();
  EXPECT_EQ(values[4], 5);
}

TEST_F(StepwiseTest, SelectWithoutRowsEndsWithNoData) {
  Statement stmt = statement("SELECT 1 WHERE false");
  sb4 value = 0;
  stmt.define(1, value);
  EXPECT_EQ(untilDone(stmt, 1), OCI_NO_DATA);
}

TEST_F(StepwiseTest, SelectWithoutIterationsDescribesAndLosesNoRow) {
  Statement stmt = statement("SELECT g, 'x' FROM generate_series(1, 3) g");
  ASSERT_EQ(untilDone(stmt, 0), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.attribute(OCI_ATTR_PARAM_COUNT), 2u);
  sb4 value = 0;
  TextBuffer<8> text;
  stmt.define(1, value);
  stmt.define(2, text);
  for (sb4 i = 1; i <= 3; ++i) {
    ASSERT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
    EXPECT_EQ(value, i);
  }
}

TEST_F(StepwiseTest, FailingSelectTellsTheServersError) {
  Statement stmt = statement("SELECT 1 / (g - 2) FROM generate_series(1, 3) g");
  sb4 values[3] = {};
  stmt.define(1, values, sizeof *values, SQLT_INT);
  EXPECT_EQ(untilDone(stmt, 3), OCI_ERROR);
  EXPECT_EQ(serverState(), "22012");
  EXPECT_EQ(untilDone(stmt, 1), OCI_SUCCESS) << errorText();
}

TEST_F(StepwiseTest, RowOffsetOfASelectIsOutOfSequence) {
  Statement stmt = statement("SELECT 1");
  sb4 value = 0;
  stmt.define(1, value);
  EXPECT_EQ(OCIStmtExecute(svchp(), stmt.handle(), errhp(), 2, 1, nullptr, nullptr,
                           OCI_DEFAULT),
            OCI_ERROR);
  expectError(1002);
}

TEST_F(StepwiseTest, BreakEndsASelectAndTheStatementServesAgain) {
  Statement stmt = statement("SELECT 1 FROM (SELECT pg_sleep(:s)) s");
  sb4 value = 0;
  double seconds = 30;
  stmt.bind(":s", &seconds, sizeof seconds, SQLT_FLT);
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(1), OCI_STILL_EXECUTING) << errorText();
  ASSERT_EQ(stmt.execute(1), OCI_STILL_EXECUTING) << errorText();
  ASSERT_EQ(OCIBreak(svchp(), errhp()), OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(1), OCI_SUCCESS);
  rollback();
  seconds = 0;
  ASSERT_EQ(untilDone(stmt, 1), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 1);
}

TEST_F(StepwiseTest, BreakThatComesTooLateDisturbsNothing) {
  ASSERT_EQ(OCIBreak(svchp(), errhp()), OCI_SUCCESS);
  std::vector<sb4> ids = numbers(10);
  Statement stmt = insert(ids);
  ASSERT_EQ(untilDone(stmt, 10), OCI_SUCCESS) << errorText();
  commit();
  EXPECT_EQ(plainCount(), "10");
}

TEST_F(StepwiseTest, ARowWithoutArrayReportsFailureAndStoresNothing) {
  std::vector<sb4> ids = numbers(1);
  Statement stmt = insert(ids);
  EXPECT_EQ(stmt.execute(1), OCI_ERROR);
  commit();
  EXPECT_EQ(plainCount(), "0");
}

TEST_F(StepwiseTest, PreparationThatFailsIsToldWithTheServersText) {
  std::vector<sb4> ids = numbers(3);
  Statement stmt = statement("INSERT INTO no_such_table VALUES (:i)");
  stmt.bind(":i", ids.data(), sizeof(sb4), SQLT_INT);
  EXPECT_EQ(untilDone(stmt, 3), OCI_ERROR);
  EXPECT_EQ(serverState(), "42P01") << errorText();
}

}  // namespace
}  // namespace zev::test
