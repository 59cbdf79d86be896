/// The result that a statement holds.
#pragma once

#include "core/owned.h"
#include "zevoci/statement.h"

extern "C" {
/// Clears both results of a statement and takes what the connection still has to give,
/// leaving both null. Does nothing for a wrong server or statement.
ZEV_HELPER void ClearOCIStmtResultset(OCIServer *server, OCIStmt *stmt);
}

namespace zev {

/// Gives the statement a new current result; the former one is cleared.
void holdResult(OCIStmt *stmt, PgResult result);

/// Clears the results that a statement holds, without the connection.
void dropResults(OCIStmt *stmt);

}  // namespace zev
