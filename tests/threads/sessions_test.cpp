/// Programs that run in many threads at once, each with its own environment and
/// connection.
#include <gtest/gtest.h>
#include <libpq-fe.h>
#include <oci.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/server/address.h"

namespace zev::test {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 6;
constexpr int kRowsPerRound = 20;

struct Finish {
  void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
};
using Connection = std::unique_ptr<PGconn, Finish>;

std::string ask(const std::string &sql) {
  const Connection conn(PQconnectdb(testServer().conninfo().c_str()));
  PGresult *result = PQexec(conn.get(), sql.c_str());
  const std::string value =
      PQntuples(result) == 1 ? PQgetvalue(result, 0, 0) : PQresultErrorMessage(result);
  PQclear(result);
  return value;
}

const OraText *text(const std::string &value) {
  return reinterpret_cast<const OraText *>(value.c_str());
}

ub4 size(const std::string &value) {
  return static_cast<ub4>(value.size());
}

/// One thread's program. Each step answers whether it went as it must.
class Program {
 public:
  explicit Program(int number) : number_(number) {
    const ServerAddress &server = testServer();
    target_ = server.host + ':' + server.port + '/' + server.db;
  }

  /// Runs a whole life of an environment; the sum of the values read back, or -1.
  long runRound(int round) {
    if (OCIEnvCreate(&env_, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0,
                     nullptr)) {
      return -1;
    }
    const long sum = logOn() && insertRows(round) ? readRows(round) : -1;
    if (sum < 0) ADD_FAILURE() << "thread " << number_ << ": " << message();
    if (svchp_ && OCILogoff(svchp_, errhp_) != OCI_SUCCESS) ADD_FAILURE() << message();
    svchp_ = nullptr;
    OCIHandleFree(env_, OCI_HTYPE_ENV);
    return sum;
  }

 private:
  bool logOn() {
    const ServerAddress &server = testServer();
    void *made = nullptr;
    if (OCIHandleAlloc(env_, &made, OCI_HTYPE_ERROR, 0, nullptr)) return false;
    errhp_ = static_cast<OCIError *>(made);
    return OCILogon(env_, errhp_, &svchp_, text(server.user), size(server.user),
                    text(server.password), size(server.password), text(target_),
                    size(target_)) == OCI_SUCCESS;
  }

  OCIStmt *statement(const std::string &sql) {
    void *made = nullptr;
    if (OCIHandleAlloc(env_, &made, OCI_HTYPE_STMT, 0, nullptr)) return nullptr;
    auto *stmt = static_cast<OCIStmt *>(made);
    const sword status =
        OCIStmtPrepare(stmt, errhp_, text(sql), size(sql), OCI_NTV_SYNTAX, OCI_DEFAULT);
    return status == OCI_SUCCESS ? stmt : nullptr;
  }

  bool bind(OCIStmt *stmt, const std::string &name, sb4 &value) {
    OCIBind *bind = nullptr;
    return OCIBindByName(stmt, &bind, errhp_, text(name), -1, &value, sizeof value,
                         SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr,
                         OCI_DEFAULT) == OCI_SUCCESS;
  }

  bool insertRows(int round) {
    OCIStmt *stmt = statement("INSERT INTO threads_rows VALUES (:owner, :round, :value)");
    sb4 owner = number_, roundValue = round, value = 0;
    if (!stmt || !bind(stmt, ":owner", owner) || !bind(stmt, ":round", roundValue) ||
        !bind(stmt, ":value", value)) {
      return false;
    }
    for (value = 1; value <= kRowsPerRound; ++value) {
      if (OCIStmtExecute(svchp_, stmt, errhp_, 1, 0, nullptr, nullptr, OCI_DEFAULT)) {
        return false;
      }
    }
    return OCITransCommit(svchp_, errhp_, OCI_DEFAULT) == OCI_SUCCESS;
  }

  long readRows(int round) {
    OCIStmt *stmt = statement(
        "SELECT value FROM threads_rows WHERE owner = :owner AND round = :round");
    sb4 owner = number_, roundValue = round, value = 0;
    ub4 prefetch = 7;
    OCIDefine *define = nullptr;
    if (!stmt || !bind(stmt, ":owner", owner) || !bind(stmt, ":round", roundValue) ||
        OCIAttrSet(stmt, OCI_HTYPE_STMT, &prefetch, 0, OCI_ATTR_PREFETCH_ROWS, errhp_) ||
        OCIDefineByPos(stmt, &define, errhp_, 1, &value, sizeof value, SQLT_INT, nullptr,
                       nullptr, nullptr, OCI_DEFAULT)) {
      return -1;
    }
    long sum = 0;
    sword status =
        OCIStmtExecute(svchp_, stmt, errhp_, 1, 0, nullptr, nullptr, OCI_DEFAULT);
    while (status == OCI_SUCCESS) {
      sum += value;
      status = OCIStmtFetch2(stmt, errhp_, 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT);
    }
    return status == OCI_NO_DATA ? sum : -1;
  }

  std::string message() {
    OraText buffer[512] = {};
    sb4 code = 0;
    OCIErrorGet(errhp_, 1, nullptr, &code, buffer, sizeof buffer, OCI_HTYPE_ERROR);
    return std::to_string(code) + ' ' + reinterpret_cast<char *>(buffer);
  }

  int number_;
  std::string target_;
  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  OCISvcCtx *svchp_ = nullptr;
};

TEST(Threads, SeparateEnvironmentsDoNotDisturbEachOtherAndLoseNothing) {
  ask("CREATE TABLE IF NOT EXISTS threads_rows (owner int, round int, value int)");
  ask("TRUNCATE threads_rows");

  std::atomic<long> sum{0};
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([number, &sum] {
      Program program(number);
      for (int round = 0; round < kRounds; ++round) sum += program.runRound(round);
    });
  }
  for (std::thread &thread : threads) thread.join();

  constexpr long kSumOfRound = kRowsPerRound * (kRowsPerRound + 1) / 2;
  EXPECT_EQ(sum, kThreads * kRounds * kSumOfRound);
  EXPECT_EQ(ask("SELECT count(*) FROM threads_rows"),
            std::to_string(kThreads * kRounds * kRowsPerRound));
  EXPECT_EQ(ask("SELECT count(DISTINCT (owner, round, value)) FROM threads_rows"),
            std::to_string(kThreads * kRounds * kRowsPerRound));
  ask("DROP TABLE threads_rows");
}

/// A program that breaks a statement from a second thread and goes on with the
/// connection.
TEST(Threads, BreakFromASecondThreadEndsARunningStatement) {
  const ServerAddress &server = testServer();
  const std::string target = server.host + ':' + server.port + '/' + server.db;
  OCIEnv *env = nullptr;
  ASSERT_EQ(
      OCIEnvCreate(&env, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
      OCI_SUCCESS);
  void *made = nullptr;
  ASSERT_EQ(OCIHandleAlloc(env, &made, OCI_HTYPE_ERROR, 0, nullptr), OCI_SUCCESS);
  auto *errhp = static_cast<OCIError *>(made);
  OCISvcCtx *svchp = nullptr;
  ASSERT_EQ(
      OCILogon(env, errhp, &svchp, text(server.user), size(server.user),
               text(server.password), size(server.password), text(target), size(target)),
      OCI_SUCCESS);
  ASSERT_EQ(OCIHandleAlloc(env, &made, OCI_HTYPE_STMT, 0, nullptr), OCI_SUCCESS);
  auto *stmt = static_cast<OCIStmt *>(made);
  const std::string sql = "DELETE FROM pg_class WHERE pg_sleep(60) IS NULL";
  ASSERT_EQ(
      OCIStmtPrepare(stmt, errhp, text(sql), size(sql), OCI_NTV_SYNTAX, OCI_DEFAULT),
      OCI_SUCCESS);

  std::atomic<bool> done{false};
  std::thread breaker([&] {
    const std::string running =
        "SELECT count(*) FROM pg_stat_activity WHERE query LIKE 'DELETE FROM pg_class%' "
        "AND "
        "wait_event = 'PgSleep'";
    while (!done && ask(running) != "1") std::this_thread::yield();
    while (!done && OCIBreak(svchp, errhp) == OCI_SUCCESS) {
      std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
  });
  EXPECT_EQ(OCIStmtExecute(svchp, stmt, errhp, 1, 0, nullptr, nullptr, OCI_DEFAULT),
            OCI_ERROR);
  done = true;
  breaker.join();

  OraText state[6] = {};
  EXPECT_EQ(OCIPGErrorGet(errhp, 1, state, sizeof state, nullptr, 0, OCI_HTYPE_ERROR),
            OCI_SUCCESS);
  EXPECT_STREQ(reinterpret_cast<char *>(state), "57014");
  EXPECT_EQ(OCILogoff(svchp, errhp), OCI_SUCCESS);
  OCIHandleFree(env, OCI_HTYPE_ENV);
}

/// Prepares call blocks, whose scanner and parser work on what belongs to the thread;
/// counts those that were not understood as they must be.
int prepareBlocks(int number) {
  OCIEnv *env = nullptr;
  if (OCIEnvCreate(&env, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr))
    return -1;
  void *err = nullptr, *stmt = nullptr;
  OCIHandleAlloc(env, &err, OCI_HTYPE_ERROR, 0, nullptr);
  OCIHandleAlloc(env, &stmt, OCI_HTYPE_STMT, 0, nullptr);
  int wrong = 0;
  for (int i = 0; i < 300; ++i) {
    const std::string name = ":t" + std::to_string(number) + "_" + std::to_string(i);
    const bool isCall = i % 10 != 0;
    const std::string block = "BEGIN p(:a, " + name + (isCall ? "); END;" : ", ); END;");
    const sword status =
        OCIStmtPrepare(static_cast<OCIStmt *>(stmt), static_cast<OCIError *>(err),
                       text(block), size(block), OCI_NTV_SYNTAX, OCI_DEFAULT);
    wrong += (status == OCI_SUCCESS) != isCall;
  }
  OCIHandleFree(env, OCI_HTYPE_ENV);
  return wrong;
}

TEST(Threads, BlocksArePreparedSideBySide) {
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] { wrong += prepareBlocks(i); });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace zev::test
