#include <array>

#include "core/wire.h"
#include "zevoci/trace.h"

namespace {

using Columns = std::array<const char *, 4>;

/// Runs a listing of the session's objects and writes a line a row by `writeRow`.
template <class WriteRow>
void logListing(PGconn *conn, const char *label, const char *where, const char *sql,
                WriteRow writeRow) {
  if (!zev::tracing(kTracePortals)) return;
  const zev::PgResult result(execSimpleCommand(conn, sql, nullptr));
  const int rows = PQntuples(result.get());
  ocitrace(kTracePortals, label, "(%d) %s\n", rows, where);
  if (simpleCommandFailed(result.get())) return;
  for (int row = 0; row < rows; ++row) {
    Columns columns{};
    for (int i = 0; i < PQnfields(result.get()); ++i) {
      columns[static_cast<std::size_t>(i)] = PQgetvalue(result.get(), row, i);
    }
    writeRow(columns);
  }
}

}  // namespace

extern "C" {

PGresult *execSimpleCommand(PGconn *conn, const char *sql, OCIError *errhp) {
  const zev::NoticeScope notices(conn, errhp);
  return zev::wire::exec(conn, sql).release();
}

int simpleCommandFailed(const PGresult *result) {
  const ExecStatusType status = PQresultStatus(result);
  return status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK;
}

void debugLogCursors(PGconn *conn, const char *where) {
  logListing(conn, "open cursors", where,
             "SELECT creation_time, name, statement FROM pg_cursors",
             [](const Columns &c) {
               ocitrace(kTracePortals, nullptr, "\t(%s) %s - %s\n", c[0], c[1], c[2]);
             });
}

void debugLogPreparedStmts(PGconn *conn, const char *where) {
  logListing(conn, "prepared statements", where,
             "SELECT prepare_time, from_sql, name, statement FROM pg_prepared_statements",
             [](const Columns &c) {
               ocitrace(kTracePortals, nullptr, "\t(%s) (%s) %s - %s\n", c[0],
                        c[1][0] == 't' ? "SQL" : "protocol", c[2], c[3]);
             });
}

void traceMoltaCounters(PGconn *conn) {
  if (!zev::tracing(kTraceWaits)) return;
  const zev::PgResult result = zev::wire::exec(
      conn,
      "SELECT * FROM zev_molta_session_waits() t1(backend_id bigint, max_wait bigint, "
      "total_wait bigint, num_waits bigint, wait_name text) WHERE num_waits != 0 AND "
      "backend_id = pg_backend_pid()");
  ocitrace(kTraceWaits, "traceMoltaCounters", "MOLTA Counters (at disconnect)\n");
  if (simpleCommandFailed(result.get())) return;
  const auto value = [&result](int row, const char *column) {
    return PQgetvalue(result.get(), row, PQfnumber(result.get(), column));
  };
  for (int row = 0; row < PQntuples(result.get()); ++row) {
    ocitrace(kTraceWaits, nullptr, "molta, %s, \"%s\", %s, %s, %s\n",
             value(row, "backend_id"), value(row, "wait_name"), value(row, "num_waits"),
             value(row, "total_wait"), value(row, "max_wait"));
  }
}

}  // extern "C"
