#include "stmt/execute.h"

#include <cstdlib>

#include "core/cursor_attributes.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/wire.h"
#include "stmt/execute_block.h"
#include "stmt/execute_bulk.h"
#include "stmt/result.h"
#include "zevoci/trace.h"

namespace {

using zev::Execution;

/// Whether a statement goes to the server as it stands, without a prepared statement.
bool skipsPreparation(ub2 type) {
  return type == STMT_UNKNOWN || type == OCI_STMT_CREATE || type == OCI_STMT_DROP ||
         type == OCI_STMT_ALTER;
}

/// Whether a statement of the plain road ends its transaction.
bool commitsItself(ub2 type) {
  return type != STMT_UNKNOWN;
}

/// Whether every statement but a SELECT commits what went before it; settled by the
/// first.
bool commitsBefore() {
  static const bool ddl_commit = std::getenv("OCI_DDL_COMMIT") != nullptr;
  return ddl_commit;
}

/// The end of every road but describe.
sword runStatement(const Execution &x, ub4 mode) {
  OCIStmt *stmt = x.stmt;
  if (mode == OCI_PARSE_ONLY) return stmt->serverPrepared ? OCI_SUCCESS : OCI_ERROR;
  const sword status = ExecuteOCIStmt(x.server, stmt, x.errhp, x.iters, x.rowoff);
  if (mode == OCI_STMT_SCROLLABLE_READONLY) return status;
  if (zev::isSuccess(status)) {
    stmt->ranOnce = 1;
    if (mode & OCI_COMMIT_ON_SUCCESS) COMMIT_TRANSACTION(x.server->conn);
  }
  return status;
}

sword executeSelect(const Execution &x, ub4 mode) {
  if (const std::optional<sword> ended = zev::openSelect(x)) return *ended;
  return runStatement(x, mode);
}

sword executeOther(const Execution &x, ub4 mode) {
  OCIStmt *stmt = x.stmt;
  if (commitsBefore()) COMMIT_TRANSACTION(x.server->conn);
  START_TRANSACTION(x.server->conn);
  stmt->execMode = mode;
  if (!skipsPreparation(stmt->stmtType)) {
    deallocateCursor(x.server, stmt, x.errhp, 0);
    if (!stmt->serverPrepared) {
      const sword status = zev::prepareOnServer(x);
      if (status != OCI_SUCCESS) return status;
    }
  }
  return runStatement(x, mode);
}

/// One more step of an execution that has not waited for its rows.
sword continueBulk(const Execution &x, ub4 mode) {
  const sword status = ExecuteAsyncBulkInsertUpdateStmt(x.server, x.stmt, x.errhp, 0, 0);
  const bool isDone = zev::isSuccess(status);
  if (isDone && mode & OCI_COMMIT_ON_SUCCESS) COMMIT_TRANSACTION(x.server->conn);
  return status;
}

sword execute(OCISvcCtx *svchp, OCIStmt *stmt, OCIError *errhp, ub4 iters, ub4 rowoff,
              ub4 mode) {
  if (!stmt->prepared) return zev::fail(errhp, 24337);
  if (stmt->stmtType != OCI_STMT_SELECT && !iters) return zev::fail(errhp, 24333);
  zev::holdResult(stmt, nullptr);
  OCIServer *server = nullptr;
  const sword status = getServerHandleFromService(&server, svchp, errhp);
  if (status != OCI_SUCCESS) return status;
  if (PQstatus(server->conn) != CONNECTION_OK) return zev::fail(errhp, 25407);
  const Execution x{server, stmt, errhp, iters, rowoff};
  if (stmt->asyncBulkActive) return continueBulk(x, mode);
  if (stmt->asyncSelectActive && mode != OCI_DESCRIBE_ONLY) {
    return continueAsyncSelect(server, stmt, errhp, iters, 0);
  }
  if (stmt->stmtType != OCI_STMT_SELECT) return executeOther(x, mode);
  stmt->execMode = mode;
  return executeSelect(x, mode);
}

/// Sends the statement's text as it stands.
sword executePlain(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  zev::NoticeScope notices(x.server->conn, x.errhp);
  zev::PgResult result = zev::wire::exec(x.server->conn, stmt->stmtText);
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    notices.leaveInPlace();
    return zev::failAndRollBack(x.server, x.errhp, result.get());
  }
  zev::holdResult(stmt, std::move(result));
  if (commitsItself(stmt->stmtType)) COMMIT_TRANSACTION(x.server->conn);
  return zev::noticeStatus(x.errhp);
}

/// An INSERT or UPDATE, whose rows go together where there are several.
sword executeByArray(const Execution &x) {
  const auto rows = static_cast<sb4>(x.iters - x.rowoff);
  auto road = &ExecuteBulkInsertUpdateStmt;
  if (!x.stmt->arrayOfStruct) {
    if (rows <= 1) {
      road = &ExecuteDMLStmt;
    } else if (x.server->nonBlocking) {
      road = &ExecuteAsyncBulkInsertUpdateStmt;
    }
  }
  return road(x.server, x.stmt, x.errhp, x.iters, x.rowoff);
}

sword executeByType(const Execution &x) {
  switch (x.stmt->stmtType) {
    case STMT_UNKNOWN:
    case OCI_STMT_CREATE:
    case OCI_STMT_DROP:
    case OCI_STMT_ALTER:
    case STMT_TRUNCATE:
    case STMT_COMMENT:
    case STMT_GRANT:
    case STMT_REVOKE:
      return executePlain(x);
    case OCI_STMT_SELECT:
      return zev::fetchFirstRows(x);
    case OCI_STMT_INSERT:
    case OCI_STMT_UPDATE:
      return executeByArray(x);
    case OCI_STMT_DELETE:
      return ExecuteDMLStmt(x.server, x.stmt, x.errhp, x.iters, x.rowoff);
    case OCI_STMT_BEGIN:
    case OCI_STMT_DECLARE:
      return zev::executeBlock(x);
    default:
      return OCI_SUCCESS;
  }
}

}  // namespace

extern "C" sword ExecuteOCIStmt(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                                ub4 iters, ub4 rowoff) {
  if (!zev::asServer(server) || !zev::asStmt(stmt) || !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  if (iters && stmt->stmtType == OCI_STMT_SELECT && !stmt->defines) return OCI_ERROR;
  stmt->executed = 0;
  ClearOCIStmtResultset(server, stmt);
  const sword status = executeByType({server, stmt, errhp, iters, rowoff});
  const bool hasNoRows = status == OCI_NO_DATA && stmt->stmtType == OCI_STMT_SELECT;
  if (zev::isSuccess(status) || hasNoRows) stmt->executed = 1;
  return status;
}

extern "C" ZEV_API sword OCIStmtExecute(OCISvcCtx *svchp, OCIStmt *stmtp, OCIError *errhp,
                                        ub4 iters, ub4 rowoff, const OCISnapshot *snap_in,
                                        OCISnapshot *snap_out, ub4 mode) {
  if (!zev::asService(svchp) || !zev::asStmt(stmtp) || !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;
  ocitrace(kTraceExecute, "OCIStmtExecute", "stmtp(%p) service(%p) %s\n",
           static_cast<void *>(stmtp), static_cast<void *>(svchp),
           stmtp->stmtText ? stmtp->stmtText : "");
  if (!stmtp->service) stmtp->service = svchp;

  return zev::runFrame(
      zev::frame::kStmtExecute, env, errhp,
      [&](sword &status) {
        const sword outcome = execute(svchp, stmtp, errhp, iters, rowoff, mode);
        if (outcome != OCI_SUCCESS) status = outcome;
        return outcome < 0 ? zev::Leave::AtOnce : zev::Leave::ThroughExitCallbacks;
      },
      svchp, stmtp, errhp, iters, rowoff, snap_in, snap_out, mode);
}
