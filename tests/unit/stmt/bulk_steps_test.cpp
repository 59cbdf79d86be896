/// The steps of a bulk run that nobody waits for, each from the state that it begins in.
#include <unistd.h>

#include <chrono>
#include <thread>

#include "pqext/pqext.h"
#include "stmt/execute_bulk.h"
#include "stmt_fixture.h"
#include "tests/server/address.h"
#include "zevoci/connection.h"

namespace zevtest {
namespace {

constexpr sb4 kUnexecuted = 24338;

struct Flags {
  bool active, waiting, finishing;
  bool operator==(const Flags &) const = default;
};
constexpr Flags kRowsOnTheirWay = {true, true, false};
constexpr Flags kRowsAnswered = {true, false, false};
constexpr Flags kFinishing = {true, true, true};

/// How the connection answers.
enum class Server {
  Busy,          ///< a command is on its way that is no part of the run
  HoldsTheRows,  ///< the run's rows wait for a lock
  Silent,        ///< nothing is on its way
};

struct Step {
  const char *name;
  Flags before;
  Server server;
  sword status;
  Flags after;
};

// clang-format off
constexpr Step kSteps[] = {
    {"ABusyServerIsNotAwaited",      kRowsOnTheirWay, Server::Busy,         OCI_STILL_EXECUTING, {true,  false, false}},
    {"ABusyServerEndsAFinishedRun",  kFinishing,      Server::Busy,         OCI_SUCCESS,         {false, true,  true}},
    {"AResultIsKeptAndTheRunGoesOn", kRowsOnTheirWay, Server::HoldsTheRows, OCI_STILL_EXECUTING, {true,  true,  false}},
    {"AllAnswersAreThere",           kRowsOnTheirWay, Server::Silent,       OCI_STILL_EXECUTING, {true,  false, false}},
    {"AFinishedRunEnds",             kFinishing,      Server::Silent,       OCI_SUCCESS,         {false, true,  true}},
    {"TheRunIsFinished",             kRowsAnswered,   Server::Silent,       OCI_STILL_EXECUTING, {true,  true,  true}},
};
// clang-format on

class BulkSteps : public testing::TestWithParam<Step> {
 protected:
  BulkSteps() : conn_(connect()), other_(connect()) {
    server_ = session_.make<OCIServer>(OCI_HTYPE_SERVER);
    server_->conn = conn_;
    run(conn_, "DROP TABLE IF EXISTS " + table_);
    run(conn_, "CREATE TABLE " + table_ + " (a int UNIQUE)");
    run(conn_, "PREPARE bulk_steps AS INSERT INTO " + table_ + " VALUES (1)");
    run(conn_, "BEGIN");
    session_.stmt->preparedName = strdup("bulk_steps");
  }
  ~BulkSteps() override {
    run(other_, "ROLLBACK");
    PQsendBulkFinish(conn_);
    while (PGresult *left = PQgetResult(conn_)) PQclear(left);
    run(conn_, "ROLLBACK; DROP TABLE " + table_);
    server_->conn = nullptr;
    PQfinish(conn_);
    PQfinish(other_);
  }

  static PGconn *connect() {
    PGconn *conn = PQconnectdb(zev::test::testServer().conninfo().c_str());
    EXPECT_EQ(PQstatus(conn), CONNECTION_OK) << PQerrorMessage(conn);
    EXPECT_TRUE(PQextAttach(conn));
    PQsetNoticeProcessor(
        conn, [](void *, const char *) {}, nullptr);
    return conn;
  }
  static std::string run(PGconn *conn, const std::string &sql) {
    const zev::PgResult result(PQexec(conn, sql.c_str()));
    EXPECT_EQ(std::string(PQresultErrorMessage(result.get())), "");
    return PQntuples(result.get()) ? PQgetvalue(result.get(), 0, 0) : "";
  }

  sword step(ub4 rows = 0) {
    return ExecuteAsyncBulkInsertUpdateStmt(server_, session_.stmt, session_.errhp, rows,
                                            0);
  }
  void begin(Server server) {
    if (server == Server::Busy) {
      EXPECT_TRUE(PQsendQuery(conn_, "SELECT pg_sleep(0.3)"));
    } else if (server == Server::HoldsTheRows) {
      run(other_, "BEGIN; LOCK TABLE " + table_ + " IN ACCESS EXCLUSIVE MODE");
      EXPECT_EQ(step(1), OCI_STILL_EXECUTING);
    }
  }
  void set(const Flags &flags) {
    session_.stmt->asyncBulkActive = flags.active;
    session_.stmt->asyncWaiting = flags.waiting;
    session_.stmt->asyncBulkFinishing = flags.finishing;
  }
  Flags flags() const {
    const OCIStmt *stmt = session_.stmt;
    return {stmt->asyncBulkActive != 0, stmt->asyncWaiting != 0,
            stmt->asyncBulkFinishing != 0};
  }

  /// No other process uses it.
  std::string table_ = "bulk_steps_" + std::to_string(getpid());
  Session session_;
  OCIServer *server_ = nullptr;
  PGconn *conn_;
  PGconn *other_;
};

TEST_P(BulkSteps, LeadsOn) {
  const Step &row = GetParam();
  begin(row.server);
  set(row.before);
  EXPECT_EQ(step(), row.status);
  EXPECT_EQ(flags(), row.after);
  EXPECT_EQ(session_.stmt->pgResult != nullptr, row.server == Server::HoldsTheRows);
  EXPECT_EQ(session_.takeRecord(), kNoRecord);
}

INSTANTIATE_TEST_SUITE_P(States, BulkSteps, testing::ValuesIn(kSteps), nameOf<Step>);

TEST_F(BulkSteps, FirstCallSendsTheRows) {
  EXPECT_EQ(step(1), OCI_STILL_EXECUTING);
  EXPECT_EQ(flags(), kRowsOnTheirWay);
}

TEST_F(BulkSteps, AFailedRunTellsTheServersTextAndIsRolledBack) {
  EXPECT_EQ(step(2), OCI_STILL_EXECUTING);
  sword status = OCI_STILL_EXECUTING;
  for (int i = 0; status == OCI_STILL_EXECUTING && i < 5000; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    status = step();
  }
  EXPECT_EQ(status, OCI_ERROR);
  EXPECT_EQ(flags(), (Flags{false, false, false}));
  EXPECT_EQ(session_.takeRecord(), kUnexecuted);
  EXPECT_NE(session_.lastMessage.find(table_ + "_a_key"), std::string::npos);
  EXPECT_EQ(run(conn_, "SELECT count(*) FROM " + table_), "0");
  run(conn_, "BEGIN");
}

TEST_F(BulkSteps, FewerIterationsThanTheOffsetAreNoWork) {
  EXPECT_EQ(
      ExecuteAsyncBulkInsertUpdateStmt(server_, session_.stmt, session_.errhp, 1, 2),
      OCI_SUCCESS);
  EXPECT_EQ(flags(), (Flags{false, false, false}));
}

}  // namespace
}  // namespace zevtest
