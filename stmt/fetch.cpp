#include "stmt/fetch.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/frame.h"
#include "core/frame_rows.h"
#include "pqext/pqext.h"
#include "stmt/fill.h"
#include "stmt/portal.h"
#include "stmt/result.h"
#include "zevoci/trace.h"
#include "zevoci/transaction.h"

namespace {

/// Orientations of each fetch call.
constexpr ub4 kPlainOrientations = OCI_FETCH_CURRENT | OCI_FETCH_NEXT | OCI_FETCH_FIRST |
                                   OCI_FETCH_LAST | OCI_FETCH_PRIOR;
constexpr ub4 kAllOrientations =
    kPlainOrientations | OCI_FETCH_ABSOLUTE | OCI_FETCH_RELATIVE;

bool isOrientation(ub2 orientation, ub4 allowed) {
  const bool oneBit = (orientation & (orientation - 1)) == 0;
  return oneBit && (orientation & ~allowed) == 0;
}

/// Whether rows of the held result still wait to be handed out one by one.
bool hasPendingRows(const OCIStmt *stmt) {
  return stmt->prefetchRows && stmt->prefetchConsumed != stmt->prefetchedRows;
}

/// Closes the portal before its end.
sword cancel(OCIServer *server, OCIStmt *stmt, OCIError *errhp) {
  debugLogCursors(server->conn, "nrows = 0, before");
  stmt->prefetchConsumed = stmt->prefetchedRows;
  stmt->heldDelivered = stmt->prefetchedRows;
  if (prepareCursor(server, stmt, errhp) != 0) {
    ROLLBACK_TRANSACTION(server);
    return OCI_ERROR;
  }
  debugLogCursors(server->conn, "nrows = 0, after");
  stmt->cursor->currentRow = 0;
  return OCI_SUCCESS;
}

/// The number in a command tag such as "MOVE 12".
sb4 tagCount(const char *tag) {
  const char *blank = std::strchr(tag, ' ');
  return blank ? static_cast<sb4>(std::strtol(blank, nullptr, 10)) : 0;
}

/// The row, counted from 1, at which a fetch begins. Rows that no number of a row reaches
/// are all behind the last one.
sb4 computeStartRow(const PortalState *cursor, ub2 orientation, sb4 offset) {
  const sb8 current = cursor->currentRow;
  const auto limited = [](sb8 row) {
    return static_cast<sb4>(std::clamp<sb8>(row, SB4MINVAL, SB4MAXVAL));
  };
  switch (orientation) {
    case OCI_DEFAULT:
    case OCI_FETCH_NEXT:
      return limited(current + 1);
    case OCI_FETCH_CURRENT:
      return limited(current);
    case OCI_FETCH_FIRST:
      return 1;
    case OCI_FETCH_LAST:
      return cursor->lastRow;
    case OCI_FETCH_PRIOR:
      return limited(current - 1);
    case OCI_FETCH_ABSOLUTE:
      return offset;
    case OCI_FETCH_RELATIVE:
      return limited(current + offset);
    default:
      ZEV_ASSERT(false, "unknown orientation");
      return 0;
  }
}

zev::PgResult moveAbsolute(OCIServer *server, const PortalState *cursor, OCIError *errhp,
                           sb4 row) {
  const std::string sql =
      "MOVE ABSOLUTE " + std::to_string(row) + " IN \"" + cursor->portalName + '"';
  return zev::PgResult(execSimpleCommand(server->conn, sql.c_str(), errhp));
}

/// Finds the number of the last row by moving behind it. A failure leaves it unknown.
void findLastRow(OCIServer *server, PortalState *cursor, OCIError *errhp) {
  // A position that no row was read at may lie anywhere behind the last row, and counts
  // nothing.
  if (cursor->currentRow > cursor->maxRow) {
    moveAbsolute(server, cursor, errhp, 0);
    cursor->currentRow = 0;
  }
  const std::string sql = std::string("MOVE FORWARD ALL IN ") + cursor->portalName;
  zev::PgResult result(execSimpleCommand(server->conn, sql.c_str(), errhp));
  if (simpleCommandFailed(result.get())) {
    zev::failAndRollBack(server, errhp, result.get());
    return;
  }
  cursor->lastRow =
      static_cast<sb4>(cursor->currentRow) + tagCount(PQcmdStatus(result.get()));
}

/// Puts the portal before row `target`.
sword reposition(OCIServer *server, PortalState *cursor, OCIError *errhp, sb4 target) {
  moveAbsolute(server, cursor, errhp, 0);
  const zev::PgResult result = moveAbsolute(server, cursor, errhp, target - 1);
  if (simpleCommandFailed(result.get())) {
    return zev::failAndRollBack(server, errhp, result.get());
  }
  cursor->currentRow = static_cast<ub4>(target - 1);
  return 0;
}

/// Takes rows from the server; 0 when there is nothing to take, too.
sword fetchFromServer(OCIServer *server, OCIStmt *stmt, OCIError *errhp, ub4 nrows,
                      ub2 orientation, sb4 offset) {
  PortalState *cursor = stmt->cursor;
  stmt->prefetchConsumed = 0;
  stmt->prefetchedRows = 0;
  stmt->heldDelivered = 0;
  if (!cursor->portalName && !stmt->isRefCursor)
    return 0;  // closed by a fetch of no rows
  const bool movesBehind = orientation == OCI_FETCH_LAST && cursor->lastRow < 0;
  if (movesBehind) findLastRow(server, cursor, errhp);
  const sb4 target = computeStartRow(cursor, orientation, offset);
  if (target < 1) return 0;
  if (movesBehind || target != static_cast<sb4>(cursor->currentRow) + 1) {
    const sword status = reposition(server, cursor, errhp, target);
    if (status != 0) return status;
  }
  return fetchRows(stmt, errhp, nrows);
}

/// Counts the rows of a batch in; one that is handed out row by row counts with each row.
void advance(OCIStmt *stmt) {
  PortalState *cursor = stmt->cursor;
  cursor->currentRow += static_cast<ub4>(PQntuples(stmt->pgResult));
  if (cursor->maxRow < cursor->currentRow) cursor->maxRow = cursor->currentRow;
}

/// Hands the next row of the held result out.
sword deliverHeldRow(OCIStmt *stmt, OCIError *errhp) {
  const sword status = zev::fillDefinesFromHeld(stmt, errhp, stmt->prefetchConsumed);
  ++stmt->prefetchConsumed;
  stmt->heldDelivered = std::max(stmt->heldDelivered, stmt->prefetchConsumed);
  return status;
}

/// Hands the first `nrows` rows of a fresh batch out, into the buffers from `bufferRow`
/// on.
sword deliverBatch(OCIStmt *stmt, OCIError *errhp, ub4 nrows, ub4 bufferRow) {
  stmt->resultRowPos = 0;
  const sword status = zev::fillDefines(stmt, errhp, nrows, bufferRow);
  stmt->heldDelivered = stmt->rowsFetched;
  stmt->prefetchConsumed = stmt->heldDelivered;
  return status;
}

sword deliver(OCIStmt *stmt, OCIError *errhp, ub4 nrows, ub2 orientation) {
  advance(stmt);
  stmt->resultRowPos = 0;
  const sword status = stmt->prefetchRows && nrows < 2
                           ? deliverHeldRow(stmt, errhp)
                           : deliverBatch(stmt, errhp, nrows, 0);
  if (status == OCI_NO_DATA && orientation == OCI_FETCH_LAST && stmt->rowsFetched) {
    return OCI_SUCCESS;
  }
  return status;
}

/// Rows that were prefetched for single-row fetches and that nobody has handed out yet.
ub4 undelivered(const OCIStmt *stmt) {
  const ub4 tuples = static_cast<ub4>(PQntuples(stmt->pgResult));
  return stmt->prefetchRows && tuples > stmt->heldDelivered ? tuples - stmt->heldDelivered
                                                            : 0;
}

void traceResult(const OCIStmt *stmt) {
  if (!zev::tracing(kTraceResults)) return;
  PGresult *result = stmt->pgResult;
  ocitrace(kTraceResults, "doFetch",
           "stmtp(%p) ntuples(%d) nfields(%d) cmdtuples(%d) cmdstatus(%s)\n",
           static_cast<const void *>(stmt), PQntuples(result), PQnfields(result),
           result ? std::atoi(PQcmdTuples(result)) : 0,
           result ? PQcmdStatus(result) : "");
}

sword traceFailure(const OCIStmt *stmt) {
  ocitrace(kTraceResults, "doFetch", "stmtp(%p) failed", static_cast<const void *>(stmt));
  return OCI_ERROR;
}

sword endOfData(OCIServer *server, OCIStmt *stmt) {
  ClearOCIStmtResultset(server, stmt);
  stmt->cursor->state = kPortalAtEnd;
  return OCI_NO_DATA;
}

/// An array fetch in the middle of a prefetched batch: what is held goes first, the rest
/// comes from the server.
sword fetchAcross(OCIServer *server, OCIStmt *stmt, OCIError *errhp, ub4 nrows) {
  const ub4 held = std::min(undelivered(stmt), nrows);
  stmt->resultRowPos = stmt->heldDelivered;
  const sword status = zev::fillDefines(stmt, errhp, held);
  stmt->heldDelivered += held;
  stmt->prefetchConsumed = stmt->heldDelivered;
  if (held == nrows) return status;

  ClearOCIStmtResultset(server, stmt);
  const sword fetched =
      fetchFromServer(server, stmt, errhp, nrows - held, OCI_FETCH_NEXT, 0);
  if (fetched != OCI_SUCCESS) {
    zev::dropResults(stmt);
    return traceFailure(stmt);
  }
  sword rest = OCI_NO_DATA;
  stmt->rowsFetched = 0;
  if (PQntuples(stmt->pgResult)) {
    advance(stmt);
    rest = deliverBatch(stmt, errhp, nrows - held, held);
  } else {
    stmt->cursor->state = kPortalAtEnd;
  }
  stmt->rowsFetched += held;
  return rest;
}

/// The checks that both fetch calls make before the work.
sword checkFetch(const OCIStmt *stmt, OCIError *errhp, ub2 orientation, ub4 allowed,
                 ub4 mode) {
  if (!isOrientation(orientation, allowed)) return zev::fail(errhp, 24391);
  if (mode != OCI_DEFAULT) return zev::fail(errhp, 24300);
  if (!stmt->executed) return zev::fail(errhp, 24338);
  return OCI_SUCCESS;
}

/// Opens the record of a child statement's cursor.
sword openChild(OCIStmt *stmt, OCIError *errhp) {
  OCIServer *server = nullptr;
  if (!zev::asService(stmt->service)) return OCI_INVALID_HANDLE;
  const sword status = getServerHandleFromService(&server, stmt->service, errhp);
  if (status != OCI_SUCCESS) return status;
  prepareCursor(server, stmt, errhp);
  stmt->executed = 1;
  stmt->refCursorOpened = 1;
  return OCI_SUCCESS;
}

zev::Leave leaveWith(sword &status, sword outcome) {
  if (outcome < 0) {
    status = outcome;
    return zev::Leave::AtOnce;
  }
  if (outcome != OCI_SUCCESS) status = outcome;
  return zev::Leave::ThroughExitCallbacks;
}

}  // namespace

sword zev::fetchBatch(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                      const char *portal, ub4 count) {
  if (!PQsendFetchPrepared(server->conn, portal, count)) {
    return failAndRollBack(server, errhp, "PQsendFetchPrepared failed");
  }
  holdResult(stmt, PgResult(PQextGetResult(server->conn)));
  if (PQresultStatus(stmt->pgResult) == PGRES_TUPLES_OK) {
    stmt->prefetchedRows = static_cast<ub4>(PQntuples(stmt->pgResult));
  }
  if (const PgResult second(PQextGetResult(server->conn)); second) {
    holdResult(stmt, nullptr);
    return failAndRollBack(server, errhp, "unexpected result set");
  }
  return OCI_SUCCESS;
}

extern "C" {

sword fetchRows(OCIStmt *stmt, OCIError *errhp, ub4 nrows) {
  PortalState *cursor = stmt->cursor;
  OCIServer *server = cursor->server;
  const ub4 count = stmt->prefetchRows && nrows < 2 ? stmt->prefetchRows : nrows;
  const char *portal = cursor->portalName ? cursor->portalName : cursor->stmtName;
  const sword status = zev::fetchBatch(server, stmt, errhp, portal, count);
  if (status != OCI_SUCCESS) return status;
  if (!simpleCommandFailed(stmt->pgResult)) return OCI_SUCCESS;
  if (zev::tracing(kTraceStatement)) {
    const char *words = PQresultErrorField(stmt->pgResult, PG_DIAG_MESSAGE_PRIMARY);
    ocitrace(kTraceStatement, "fetchRows", "FAILED - %s\n", words ? words : "");
  }
  return zev::failAndRollBack(server, errhp, stmt->pgResult);
}

sword doFetch(OCIStmt *stmt, OCIError *errhp, ub4 nrows, ub2 orientation, sb4 offset) {
  PortalState *cursor = stmt->cursor;
  if (!cursor) return zev::fail(errhp, 1001);
  const bool forward = orientation == OCI_DEFAULT || orientation == OCI_FETCH_NEXT;
  if (stmt->execMode != OCI_STMT_SCROLLABLE_READONLY && !forward) {
    return zev::fail(errhp, 24391);
  }
  OCIServer *server = zev::asServer(cursor->server);
  if (!server) return zev::fail(errhp, 24324);

  const bool pending = hasPendingRows(stmt);
  if (!pending) ClearOCIStmtResultset(server, stmt);
  if (!nrows) return cancel(server, stmt, errhp);
  if (forward && nrows >= 2 && undelivered(stmt)) {
    return fetchAcross(server, stmt, errhp, nrows);
  }
  if (!pending || nrows >= 2) {
    const sword status = fetchFromServer(server, stmt, errhp, nrows, orientation, offset);
    if (status != OCI_SUCCESS) {
      zev::dropResults(stmt);
      return traceFailure(stmt);
    }
  }
  traceResult(stmt);
  if (PQntuples(stmt->pgResult)) return deliver(stmt, errhp, nrows, orientation);
  return endOfData(server, stmt);
}

ZEV_API sword OCIStmtFetch(OCIStmt *stmtp, OCIError *errhp, ub4 nrows, ub2 orientation,
                           ub4 mode) {
  if (!zev::asStmt(stmtp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kStmtFetch, env, errhp,
      [&](sword &status) {
        sword outcome = stmtp->isRefCursor ? openChild(stmtp, errhp) : OCI_SUCCESS;
        if (outcome == OCI_SUCCESS) {
          outcome = checkFetch(stmtp, errhp, orientation, kPlainOrientations, mode);
        }
        if (outcome == OCI_SUCCESS)
          outcome = doFetch(stmtp, errhp, nrows, orientation, 0);
        return leaveWith(status, outcome);
      },
      stmtp, errhp, nrows, orientation, mode);
}

ZEV_API sword OCIStmtFetch2(OCIStmt *stmtp, OCIError *errhp, ub4 nrows, ub2 orientation,
                            sb4 fetchOffset, ub4 mode) {
  if (!zev::asStmt(stmtp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kStmtFetch2, env, errhp,
      [&](sword &status) {
        sword outcome = checkFetch(stmtp, errhp, orientation, kAllOrientations, mode);
        if (outcome == OCI_SUCCESS) {
          outcome = doFetch(stmtp, errhp, nrows, orientation, fetchOffset);
        }
        return leaveWith(status, outcome);
      },
      stmtp, errhp, nrows, orientation, fetchOffset, mode);
}

}  // extern "C"
