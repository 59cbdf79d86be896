#include "stmt/result.h"

#include "core/wire.h"
#include "pqext/pqext.h"
#include "stmt/fill.h"

extern "C" void ClearOCIStmtResultset(OCIServer *server, OCIStmt *stmt) {
  if (!zev::asServer(server) || !zev::asStmt(stmt)) return;
  if (stmt->pgResult) {
    while (zev::wire::getResult(server->conn)) continue;
    while (const zev::PgResult left{PQgetOutResult(server->conn)}) continue;
  }
  zev::dropResults(stmt);
}

void zev::holdResult(OCIStmt *stmt, PgResult result) {
  PQclear(stmt->pgResult);
  stmt->pgResult = result.release();
  forgetFetchPlan(stmt);
}

void zev::dropResults(OCIStmt *stmt) {
  PQclear(stmt->pgOutResult);
  stmt->pgOutResult = nullptr;
  holdResult(stmt, nullptr);
}
