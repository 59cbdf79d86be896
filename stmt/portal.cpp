#include "stmt/portal.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "core/owned.h"
#include "core/wire.h"
#include "pqext/pqext.h"
#include "zevoci/text.h"
#include "zevoci/trace.h"
#include "zevoci/transaction.h"

namespace {

void forget(char *&text) {
  std::free(text);
  text = nullptr;
}

PortalState *newCursor(OCIServer *server, const OCIStmt *stmt) {
  auto *cursor = static_cast<PortalState *>(std::calloc(1, sizeof(PortalState)));
  if (!cursor) return nullptr;
  cursor->server = server;
  cursor->lastRow = -1;
  if (stmt->isRefCursor && stmt->preparedName)
    cursor->stmtName = strdup(stmt->preparedName);
  return cursor;
}

/// Closes the cursor that a routine of the server opened for a child statement.
sword closeChildCursor(OCIServer *server, OCIStmt *stmt, OCIError *errhp) {
  PortalState *cursor = stmt->cursor;
  const std::string sql = std::string("CLOSE \"") + cursor->stmtName + '"';
  ocitrace(kTracePortals, "closeStatement", "closing %s\n", cursor->stmtName);
  const zev::PgResult result = zev::wire::exec(server->conn, sql.c_str());
  if (simpleCommandFailed(result.get())) {
    ocitrace(kTracePortals, "closeStatement", "closing %s FAILED\n", cursor->stmtName);
    return zev::failAndRollBack(server, errhp, result.get());
  }
  cursor->state = kPortalClosed;
  closePortal(cursor, errhp);
  forget(cursor->stmtName);
  forget(stmt->preparedName);
  return 0;
}

/// Drops the prepared statement behind a portal, and the portal.
sword dropPortalStatement(OCIServer *server, PortalState *cursor, OCIError *errhp) {
  const sword status = deallocateStatement(server, errhp, cursor->stmtName);
  if (status != 0) return status;
  cursor->state = kPortalClosed;
  closePortal(cursor, errhp);
  forget(cursor->stmtName);
  return 0;
}

/// Closes a declared cursor.
void dropDeclaredCursor(OCIServer *server, PortalState *cursor) {
  if (cursor->state != kPortalClosed) {
    const std::string sql = std::string("CLOSE ") + cursor->portalName;
    zev::wire::exec(server->conn, sql.c_str());
    cursor->state = kPortalClosed;
  }
  forget(cursor->portalName);
}

sword dropPreparedName(OCIServer *server, OCIStmt *stmt, OCIError *errhp) {
  const sword status = deallocateStatement(server, errhp, stmt->preparedName);
  if (status != 0) return status;
  forget(stmt->preparedName);
  stmt->serverPrepared = 0;
  stmt->pgPreparedServer = nullptr;
  return 0;
}

}  // namespace

sword zev::failAndRollBack(OCIServer *server, OCIError *errhp, const char *text) {
  AddErrorRecordMsg(errhp, OCI_ERROR, text);
  ROLLBACK_TRANSACTION(server);
  return OCI_ERROR;
}

sword zev::failAndRollBack(OCIServer *server, OCIError *errhp, const PGresult *result) {
  AddPGErrorRecord(errhp, OCI_ERROR, result);
  ROLLBACK_TRANSACTION(server);
  return OCI_ERROR;
}

extern "C" {

sword prepareCursor(OCIServer *server, OCIStmt *stmt, OCIError *errhp) {
  if (stmt->cursor) {
    closePortal(stmt->cursor, errhp);
    stmt->cursor->server = server;
  } else {
    stmt->cursor = newCursor(server, stmt);
    if (!stmt->cursor) return zev::fail(errhp, 16506);
  }
  stmt->cursor->maxRow = 0;
  stmt->cursor->currentRow = 0;
  stmt->cursor->lastRow = -1;
  return 0;
}

sword closePortal(PortalState *cursor, OCIError *errhp) {
  if (!cursor->portalName) {
    cursor->state = kPortalClosed;
    return 0;
  }
  OCIServer *server = cursor->server;
  ocitrace(kTracePortals, "closePortal", "closing %s\n", cursor->portalName);
  if (PQsendClosePortal(server->conn, cursor->portalName) != 1) {
    ocitrace(kTracePortals, "closePortal", "close of %s FAILED\n", cursor->portalName);
    return zev::failAndRollBack(server, errhp, "PQsendClosePortal failed");
  }
  const zev::PgResult result(PQextGetResult(server->conn));
  if (const zev::PgResult second(PQextGetResult(server->conn)); second) {
    return zev::failAndRollBack(server, errhp, "unexpected result set");
  }
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    return zev::failAndRollBack(server, errhp, result.get());
  }
  forget(cursor->portalName);
  cursor->state = kPortalClosed;
  return 0;
}

sword deallocateStatement(OCIServer *server, OCIError *errhp, const char *name) {
  ocitrace(kTracePortals, "deallocateStatement", "deallocating %s\n", name);
  const std::string sql = std::string("DEALLOCATE ") + name;
  const zev::PgResult result = zev::wire::exec(server->conn, sql.c_str());
  if (simpleCommandFailed(result.get())) {
    ocitrace(kTracePortals, "deallocateCursor", "deallocating %s FAILED\n", name);
    return zev::failAndRollBack(server, errhp, result.get());
  }
  PQextForgetPrepared(server->conn, name);
  return 0;
}

sword deallocateCursor(OCIServer *server, OCIStmt *stmt, OCIError *errhp, boolean flag) {
  PortalState *cursor = stmt->cursor;
  if (cursor && cursor->stmtName) {
    return stmt->isRefCursor ? closeChildCursor(server, stmt, errhp)
                             : dropPortalStatement(server, cursor, errhp);
  }
  if (cursor && cursor->portalName) {
    dropDeclaredCursor(server, cursor);
    return 0;
  }
  return stmt->preparedName && flag ? dropPreparedName(server, stmt, errhp) : 0;
}

}  // extern "C"
