#include <new>

#include "core/wire.h"
#include "pqext/pqext.h"
#include "stmt/bind_data.h"
#include "stmt/execute_bulk.h"
#include "stmt/fill.h"
#include "stmt/result.h"
#include "stmt/statement_text.h"
#include "zevoci/trace.h"

namespace {

using zev::Execution;

/// What PQsendBulkFinish answers for a run that failed.
constexpr int kBulkFailed = PGRES_FATAL_ERROR;

bool isOpened(int outcome) {
  return outcome == 1;
}

/// Takes the answer to a PREPARE that nobody has waited for.
sword takePreparation(const Execution &x) {
  while (const zev::PgResult result = zev::wire::getResult(x.server->conn)) {
    if (simpleCommandFailed(result.get())) {
      return zev::failAndRollBack(x.server, x.errhp, result.get());
    }
  }
  return OCI_SUCCESS;
}

sword startBulk(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  PGconn *conn = x.server->conn;
  zev::RowValues rows(stmt->placeholderBinds, stmt->paramCount);
  if (const sword status = zev::gatherRows(x, rows); status != OCI_SUCCESS) {
    return status;
  }
  zev::NoticeScope notices(conn, x.errhp);
  notices.leaveInPlace();
  if (const sword status = takePreparation(x); status != OCI_SUCCESS) return status;
  if (!isOpened(PQsendBulkStart(conn, stmt->preparedName,
                                static_cast<int>(stmt->paramCount),
                                rows.lastFormats()))) {
    return zev::failBulk(x);
  }
  while (const zev::PgResult result{PQextGetResult(conn)}) continue;
  if (!isOpened(PQsendBulk(conn, rows.count(), rows.values(), rows.lengths()))) {
    return zev::failAndRollBack(x.server, x.errhp, PQextErrorMessage(conn));
  }
  stmt->asyncBulkActive = 1;
  stmt->asyncWaiting = 1;
  stmt->arrayRowCount = static_cast<ub4>(rows.count());
  return OCI_STILL_EXECUTING;
}

/// Gives the connection back, and tells of a row that failed.
sword finishBulk(const Execution &x) {
  if (PQsendBulkFinish(x.server->conn) != kBulkFailed) return OCI_SUCCESS;
  x.stmt->asyncBulkActive = 0;
  x.stmt->asyncWaiting = 0;
  return zev::failBulk(x);
}

/// The run is over. A statement that ran before goes from its rows straight to here,
/// since its finishing mark stays, and must still hear of a row that failed.
sword endBulk(const Execution &x) {
  if (const sword status = finishBulk(x); status != OCI_SUCCESS) return status;
  x.stmt->asyncBulkActive = 0;
  x.stmt->executed = 1;
  return zev::noticeStatus(x.errhp);
}

sword stepBulk(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  PGconn *conn = x.server->conn;
  if (!stmt->asyncWaiting) {
    if (const sword status = finishBulk(x); status != OCI_SUCCESS) return status;
    stmt->asyncBulkFinishing = 1;
    stmt->asyncWaiting = 1;
    return OCI_STILL_EXECUTING;
  }
  if (!PQextIsBusy(conn)) {
    if (zev::PgResult progress{PQextGetResult(conn)}) {
      zev::holdResult(stmt, std::move(progress));
      return OCI_STILL_EXECUTING;
    }
  }
  if (stmt->asyncBulkFinishing) return endBulk(x);
  stmt->asyncWaiting = 0;
  return OCI_STILL_EXECUTING;
}

/// Ends a SELECT that the program broke off while it was executing. Its server side is
/// made anew by the next execution.
sword breakSelect(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  stmt->asyncSelectActive = 0;
  stmt->asyncWaiting = 0;
  stmt->serverPrepared = 0;
  stmt->pgPreparedServer = nullptr;
  __atomic_store_n(&x.server->breakRequested, 0, __ATOMIC_RELAXED);
  zev::holdResult(stmt, nullptr);
  if (PortalState *cursor = stmt->cursor; cursor && cursor->stmtName) {
    PQextForgetPrepared(x.server->conn, cursor->stmtName);
    zev::freeText(cursor->stmtName);
  }
  return OCI_SUCCESS;
}

sword failSelect(const Execution &x) {
  x.stmt->asyncSelectActive = 0;
  x.stmt->asyncWaiting = 0;
  zev::failAndRollBack(x.server, x.errhp, x.stmt->pgResult);
  zev::dropResults(x.stmt);
  return OCI_ERROR;
}

/// Takes the answer to what startSelect has sent; without rows asked for it is the
/// portal's description.
sword takeFirstRows(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  PGconn *conn = x.server->conn;
  {
    const zev::NoticeScope notices(conn, x.errhp);
    zev::holdResult(stmt, zev::PgResult(PQextGetResult(conn)));
    if (const zev::PgResult second(PQextGetResult(conn)); second) {
      zev::dropResults(stmt);
      return zev::failAndRollBack(x.server, x.errhp, "unexpected result set");
    }
  }
  const ExecStatusType status = PQresultStatus(stmt->pgResult);
  const bool isDescription = !x.iters && status == PGRES_COMMAND_OK;
  return status == PGRES_TUPLES_OK || isDescription ? OCI_SUCCESS : failSelect(x);
}

sword stepSelect(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  if (__atomic_load_n(&x.server->breakRequested, __ATOMIC_RELAXED)) return breakSelect(x);
  if (stmt->asyncWaiting) {
    if (PQextIsBusy(x.server->conn)) return OCI_STILL_EXECUTING;
    if (const sword status = takeFirstRows(x); status != OCI_SUCCESS) return status;
  }
  release_binds_pgdata(stmt->binds);
  const sword notice = zev::noticeStatus(x.errhp);
  stmt->resultRowPos = 0;
  if (!x.iters) return notice;
  if (!PQntuples(stmt->pgResult)) {
    zev::dropResults(stmt);
    return OCI_NO_DATA;
  }
  const sword filled =
      fill_define_buffers_2(x.errhp, stmt->defines, stmt->pgResult, x.iters,
                            &stmt->resultRowPos, &stmt->rowsFetched, x.server->conn);
  return filled != OCI_SUCCESS ? filled : notice;
}

/// Sends for the first rows. The protocol takes 0 for all rows, so that no rows are asked
/// for by a description.
bool sendForRows(const Execution &x) {
  const char *portal = x.stmt->cursor->portalName;
  if (!x.iters) return zev::wire::sendDescribePortal(x.server->conn, portal);
  return PQsendFetchPrepared(x.server->conn, portal, x.iters) != 0;
}

sword startSelect(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  ZEV_ASSERT(stmt->cursor, "cursor != ((void *)0)");
  if (x.rowoff) return zev::fail(x.errhp, 1002);
  if (!sendForRows(x)) {
    zev::dropResults(stmt);
    return zev::failAndRollBack(x.server, x.errhp, "PQsendFetchPrepared failed");
  }
  stmt->asyncSelectActive = 1;
  stmt->asyncWaiting = 1;
  stmt->executed = 1;
  return OCI_STILL_EXECUTING;
}

}  // namespace

void zev::abandonBulk(OCIStmt *stmt) {
  const bool reachable = stmt->asyncBulkActive && stmt->service &&
                         stmt->service->server && stmt->service->server->conn;
  if (reachable) PQsendBulkFinish(stmt->service->server->conn);
  stmt->asyncBulkActive = 0;
  stmt->asyncWaiting = 0;
  stmt->asyncBulkFinishing = 0;
  stmt->asyncSelectActive = 0;
}

extern "C" {

sword ExecuteAsyncBulkInsertUpdateStmt(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                                       ub4 iters, ub4 rowoff) {
  if (!zev::asServer(server) || !zev::asStmt(stmt) || !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  const Execution x{server, stmt, errhp, iters, rowoff};
  if (stmt->asyncBulkActive) return stepBulk(x);
  if (static_cast<sb4>(iters - rowoff) < 0) return OCI_SUCCESS;
  ClearOCIStmtResultset(server, stmt);
  try {
    return startBulk(x);
  } catch (const std::bad_alloc &) {
    release_binds_pgdata(stmt->binds);
    return zev::fail(errhp, 27102);
  }
}

sword continueAsyncSelect(OCIServer *server, OCIStmt *stmt, OCIError *errhp, ub4 iters,
                          ub4 rowoff) {
  const Execution x{server, stmt, errhp, iters, rowoff};
  return stmt->asyncSelectActive ? stepSelect(x) : startSelect(x);
}

}  // extern "C"
