/// The diagnostic queries and plain commands on a live connection.
#include <sys/socket.h>

#include <utility>

#include "server_fixture.h"
#include "stmt/portal.h"
#include "zevoci/trace.h"

namespace zev::test {
namespace {

class Diagnostics : public ServerTest {
 protected:
  Diagnostics() { oci_debug_log = std::tmpfile(); }
  ~Diagnostics() override {
    if (oci_debug_log) std::fclose(oci_debug_log);
    oci_debug_log = nullptr;
    oci_debug_mask = 0xFFFFDFFF;
  }
  /// What is written from here to the end of the work under a mask.
  template <class Work>
  static std::string traced(std::uint64_t mask, Work work) {
    oci_debug_mask = mask;
    std::fflush(oci_debug_log);
    const long from = std::ftell(oci_debug_log);
    work();
    std::fflush(oci_debug_log);
    std::fseek(oci_debug_log, from, SEEK_SET);
    std::string text;
    for (int c; (c = std::fgetc(oci_debug_log)) != EOF;) text += static_cast<char>(c);
    return text;
  }
  void run(const char *sql) {
    PGresult *result = execSimpleCommand(server->conn, sql, errhp);
    EXPECT_FALSE(simpleCommandFailed(result)) << PQerrorMessage(server->conn);
    PQclear(result);
  }
  /// `text` with what stands in the first brackets of each line, a time, left out.
  static std::string withoutTimes(std::string text) {
    for (std::size_t at = 0; (at = text.find("\t(", at)) != text.npos; at += 2) {
      text.erase(at + 2, text.find(')', at) - at - 2);
    }
    return text;
  }
};

TEST_F(Diagnostics, OpenCursorsAreListed) {
  run("begin; declare c cursor for select 1");
  EXPECT_EQ(withoutTimes(traced(0x400, [&] { debugLogCursors(server->conn, "here"); })),
            "open cursors: (1) here\n\t() c - begin; declare c cursor for select 1\n");
}

TEST_F(Diagnostics, PreparedStatementsAreListedByTheirOrigin) {
  run("prepare p as select 1");
  PQclear(PQprepare(server->conn, "q", "select 2", 0, nullptr));
  const std::string text =
      withoutTimes(traced(0x400, [&] { debugLogPreparedStmts(server->conn, "there"); }));
  EXPECT_EQ(text.find("prepared statements: (2) there\n"), 0u);
  EXPECT_NE(text.find("\t() (SQL) p - prepare p as select 1\n"), text.npos);
  EXPECT_NE(text.find("\t() (protocol) q - select 2\n"), text.npos);
}

TEST_F(Diagnostics, AFailedListingIsItsHeadingOnly) {
  PQclear(PQexec(server->conn, "begin; select 1/0"));
  EXPECT_EQ(traced(0x400, [&] { debugLogCursors(server->conn, "here"); }),
            "open cursors: (0) here\n");
}

TEST_F(Diagnostics, NothingIsAskedWhileTheMaskIsOff) {
  PQclear(PQexec(server->conn, "begin"));
  EXPECT_EQ(traced(~0x400ul & 0xFFFFDFFF,
                   [&] {
                     debugLogCursors(nullptr, "here");
                     debugLogPreparedStmts(nullptr, "here");
                     traceMoltaCounters(nullptr);
                   }),
            "");
}

TEST_F(Diagnostics, WaitStatisticsAreWrittenByColumnName) {
  run("begin; create function zev_molta_session_waits() returns setof record language "
      "sql as "
      "$$ select pg_backend_pid()::bigint, 30::bigint, 70::bigint, 2::bigint, 'lw "
      "lock'::text "
      "union all select 1, 2, 3, 4, 'another session' "
      "union all select pg_backend_pid(), 1, 1, 0, 'never waited' $$");
  const std::string pid = std::to_string(PQbackendPID(server->conn));
  EXPECT_EQ(traced(0x2000, [&] { traceMoltaCounters(server->conn); }),
            "traceMoltaCounters: MOLTA Counters (at disconnect)\nmolta, " + pid +
                ", \"lw lock\", 2, 70, 30\n");
}

TEST_F(Diagnostics, WithoutWaitStatisticsOnlyTheHeadingIsWrittenAtDisconnect) {
  EXPECT_EQ(traced(0x2000, [&] { OCISessionEnd(svchp, errhp, session, OCI_DEFAULT); }),
            "traceMoltaCounters: MOLTA Counters (at disconnect)\n");
}

TEST_F(Diagnostics, TransactionsAreTracedUnderTheirMask) {
  char wanted[160];
  std::snprintf(wanted, sizeof wanted, "committing on service(%p), server(%p)\n",
                static_cast<void *>(svchp), static_cast<void *>(server));
  EXPECT_EQ(
      traced(0x100, [&] { OCITransCommit(svchp, errhp, OCI_DEFAULT); }).find(wanted), 0u);
  std::snprintf(wanted, sizeof wanted, "rollback on service(%p), server(%p)\n",
                static_cast<void *>(svchp), static_cast<void *>(server));
  EXPECT_EQ(
      traced(0x100, [&] { OCITransRollback(svchp, errhp, OCI_DEFAULT); }).find(wanted),
      0u);
}

TEST_F(Diagnostics, ASessionsStartIsTracedWithItsAddressAndNotItsPassword) {
  OCISessionEnd(svchp, errhp, session, OCI_DEFAULT);
  OCIAttrSet(session, OCI_HTYPE_SESSION, const_cast<OraText *>(asText("app")), 3,
             OCI_ATTR_MODULE, errhp);
  const ServerAddress &at = testServer();
  const std::string text = traced(0x4000, [&] {
    EXPECT_EQ(OCISessionBegin(svchp, errhp, session, OCI_CRED_RDBMS, OCI_DEFAULT),
              OCI_SUCCESS);
  });
  EXPECT_NE(text.find("OCISessionBegin started\n"), text.npos);
  EXPECT_NE(text.find("host [" + at.host + "] port [" + at.port + "] db [" + at.db +
                      "], user [" + at.user + "] app [app] uri [(null)]\n"),
            text.npos);
  EXPECT_NE(text.find("OCISessionBegin() OK\n"), text.npos);
}

TEST_F(Diagnostics, ASessionThatCannotBeSetUpIsTracedByItsStep) {
  OCISessionEnd(svchp, errhp, session, OCI_DEFAULT);
  svchp->server = server;
  const auto begin = [this] {
    EXPECT_EQ(OCISessionBegin(svchp, errhp, session, OCI_CRED_RDBMS, OCI_DEFAULT),
              OCI_ERROR);
  };
  const auto endsWith = [](const std::string &text, const std::string &line) {
    return text.ends_with("OCISessionBegin: " + line);
  };
  constexpr sb4 kMuleInternal = 7;  // the server has no conversion from it
  const sb4 encoding = std::exchange(env.get()->encoding, kMuleInternal);
  EXPECT_TRUE(endsWith(traced(0x4000, begin), "PQsetClientEncoding failed\n"));
  env.get()->encoding = encoding;
  PQfinish(std::exchange(server->conn, nullptr));
  const Variable format("NLS_DATE_FORMAT", "DD");  // no statement of this server
  EXPECT_TRUE(endsWith(traced(0x4000, begin), "PQexec(set datestyle) failed\n"));
  PQfinish(std::exchange(server->conn, nullptr));
}

TEST_F(Diagnostics, ObjectsThatCannotBeClosedAreTraced) {
  EXPECT_EQ(traced(0x400, [this] { deallocateStatement(server, errhp, "absent"); }),
            "deallocateStatement: deallocating absent\n"
            "deallocateCursor: deallocating absent FAILED\n");
  auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  prepareCursor(server, stmt, errhp);
  stmt->isRefCursor = 1;
  stmt->cursor->stmtName = strdup("absent");
  EXPECT_EQ(traced(0x400, [&] { deallocateCursor(server, stmt, errhp, 1); }),
            "closeStatement: closing absent\ncloseStatement: closing absent FAILED\n");
  std::free(std::exchange(stmt->cursor->stmtName, nullptr));
  stmt->isRefCursor = 0;
  stmt->cursor->portalName = strdup("absent");
  shutdown(PQsocket(server->conn), SHUT_RDWR);
  PQclear(PQexec(server->conn, "select 1"));
  EXPECT_EQ(traced(0x400, [&] { closePortal(stmt->cursor, errhp); }),
            "closePortal: closing absent\nclosePortal: close of absent FAILED\n");
  std::free(std::exchange(stmt->cursor->portalName, nullptr));
}

TEST_F(Diagnostics, ASimpleCommandsNoticesGoToItsErrorHandleForThatCallOnly) {
  const char *notice = "do $$ begin raise notice 'hello'; end $$";
  PQclear(execSimpleCommand(server->conn, notice, errhp));
  EXPECT_EQ(firstText(errhp), "NOTICE:  hello\n");
  ClearErrorHandle(errhp);
  testing::internal::CaptureStderr();
  EXPECT_EQ(traced(0x100, [&] { PQclear(PQexec(server->conn, notice)); }),
            "notice: NOTICE:  hello\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(errhp->records, nullptr);
}

TEST_F(Diagnostics, ACommandFailedUnlessItIsDoneOrGivesRows) {
  const struct {
    ExecStatusType status;
    int failed;
  } rows[] = {{PGRES_COMMAND_OK, 0}, {PGRES_TUPLES_OK, 0},    {PGRES_EMPTY_QUERY, 1},
              {PGRES_COPY_OUT, 1},   {PGRES_BAD_RESPONSE, 1}, {PGRES_FATAL_ERROR, 1}};
  for (const auto &row : rows) {
    PGresult *result = PQmakeEmptyPGresult(nullptr, row.status);
    EXPECT_EQ(simpleCommandFailed(result), row.failed) << row.status;
    PQclear(result);
  }
  EXPECT_EQ(simpleCommandFailed(nullptr), 1);
}

}  // namespace
}  // namespace zev::test
