#include "tests/unit/pqext/pqext_fixture.h"

#include "tests/server/address.h"

namespace zev::test {

Connection connectToServer() {
  Connection conn(PQconnectdb(testServer().conninfo().c_str()));
  if (PQstatus(conn.get()) != CONNECTION_OK) {
    throw std::runtime_error(PQerrorMessage(conn.get()));
  }
  return conn;
}

Rows rowsOf(const PGresult *result) {
  Rows rows;
  for (int row = 0; row < PQntuples(result); ++row) {
    Row &values = rows.emplace_back();
    for (int field = 0; field < PQnfields(result); ++field) {
      const bool null = PQgetisnull(result, row, field);
      values.emplace_back(null ? "NULL" : PQgetvalue(result, row, field));
    }
  }
  return rows;
}

std::string sqlstate(const PGresult *result) {
  const char *state = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  return state ? state : "";
}

std::string PqextTest::run(PGconn *conn, const std::string &sql) {
  const Result result(PQexec(conn, sql.c_str()));
  EXPECT_TRUE(pqext::succeeded(result.get())) << sql << ": " << PQerrorMessage(conn);
  return PQntuples(result.get()) > 0 ? PQgetvalue(result.get(), 0, 0) : "";
}

std::string PqextTest::runFailing(const std::string &sql) {
  const Result result(PQexec(conn(), sql.c_str()));
  EXPECT_FALSE(pqext::succeeded(result.get())) << sql;
  return sqlstate(result.get());
}

void PqextTest::prepare(const std::string &name, const std::string &sql,
                        std::vector<Oid> types, bool tell) {
  const int count = static_cast<int>(types.size());
  const Result result(PQprepare(conn(), name.c_str(), sql.c_str(), count, types.data()));
  ASSERT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK) << PQerrorMessage(conn());
  if (tell) PQextRememberPrepared(conn(), name.c_str(), sql.c_str(), count, types.data());
}

Result PqextTest::only(PGconn *conn, int sent) {
  EXPECT_NE(sent, 0) << PQerrorMessage(conn);
  if (!sent) return nullptr;
  Result first(PQextGetResult(conn));
  EXPECT_NE(first, nullptr);
  const Result second(PQextGetResult(conn));
  EXPECT_EQ(second, nullptr) << "a second result: " << PQresultErrorMessage(second.get());
  EXPECT_EQ(PQpipelineStatus(conn), PQ_PIPELINE_OFF);
  return first;
}

Result PqextTest::bind(const std::string &portal, const std::string &statement,
                       const std::vector<const char *> &values) {
  return only(PQsendBindPrepared(conn(), portal.c_str(), statement.c_str(),
                                 static_cast<int>(values.size()), values.data(), nullptr,
                                 nullptr, 0));
}

Result PqextTest::fetch(const std::string &portal, unsigned count) {
  return only(PQsendFetchPrepared(conn(), portal.c_str(), count));
}

Result PqextTest::close(const std::string &portal) {
  return only(PQsendClosePortal(conn(), portal.c_str()));
}

void PqextTest::bound(const std::string &portal, const std::string &statement,
                      const std::vector<const char *> &values) {
  const Result result = bind(portal, statement, values);
  ASSERT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK) << PQerrorMessage(conn());
}

Rows PqextTest::fetched(const std::string &portal, unsigned count) {
  const Result result = fetch(portal, count);
  EXPECT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK)
      << PQresultErrorMessage(result.get());
  return rowsOf(result.get());
}

void PqextTest::closed(const std::string &portal) {
  const Result result = close(portal);
  EXPECT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK)
      << PQresultErrorMessage(result.get());
}

bool PqextTest::exists(const std::string &cursor) {
  return run("SELECT count(*) FROM pg_cursors WHERE name = '" + cursor + "'") == "1";
}

void PqextTest::record() {
  trace_.reset(std::tmpfile());
  PQtrace(conn(), trace_.get());
  PQsetTraceFlags(conn(), PQTRACE_SUPPRESS_TIMESTAMPS | PQTRACE_REGRESS_MODE);
}

WireLog PqextTest::recorded() {
  PQuntrace(conn());
  std::string text;
  std::rewind(trace_.get());
  for (int c; (c = std::fgetc(trace_.get())) != EOF;) text += static_cast<char>(c);
  trace_.reset();
  return parseWireLog(text);
}

}  // namespace zev::test
