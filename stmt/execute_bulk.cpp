#include "stmt/execute_bulk.h"

#include <new>

#include "pqext/pqext.h"
#include "stmt/bind_data.h"
#include "stmt/result.h"

namespace {

using zev::Execution;

sword sendTogether(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  zev::RowValues rows(stmt->placeholderBinds, stmt->paramCount);
  if (const sword status = zev::gatherRows(x, rows); status != OCI_SUCCESS) {
    return status;
  }
  PGconn *conn = x.server->conn;
  const zev::NoticeScope notices(conn, x.errhp);
  const zev::PgResult result(PQexecBulkPrepared(
      conn, stmt->preparedName, static_cast<int>(stmt->paramCount), rows.count(),
      rows.values(), rows.lengths(), rows.lastFormats()));
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) return zev::failBulk(x);
  stmt->arrayRowCount = static_cast<ub4>(rows.count());
  return zev::noticeStatus(x.errhp);
}

}  // namespace

sword zev::gatherRows(const Execution &x, RowValues &rows) {
  for (ub4 iteration = x.rowoff; iteration < x.iters; ++iteration) {
    const sword status = GetOCIBindData(x.stmt, x.errhp, iteration);
    if (!zev::isSuccess(status)) return status;
    rows.take(x.stmt->binds);
  }
  return OCI_SUCCESS;
}

sword zev::failBulk(const Execution &x) {
  fail(x.errhp, 24338, PQextErrorMessage(x.server->conn));
  ROLLBACK_TRANSACTION(x.server);
  return OCI_ERROR;
}

extern "C" sword ExecuteBulkInsertUpdateStmt(OCIServer *server, OCIStmt *stmt,
                                             OCIError *errhp, ub4 iters, ub4 rowoff) {
  if (!zev::asServer(server) || !zev::asStmt(stmt) || !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  if (static_cast<sb4>(iters - rowoff) < 0) return OCI_SUCCESS;
  ClearOCIStmtResultset(server, stmt);
  try {
    return sendTogether({server, stmt, errhp, iters, rowoff});
  } catch (const std::bad_alloc &) {
    release_binds_pgdata(stmt->binds);
    return zev::fail(errhp, 27102);
  }
}
