/// A statement's own text and what hangs on it.
#pragma once

#include "zevoci/statement.h"

extern "C" {
/// The type of a statement by its leading keyword, compared by prefix without regard to
/// case.
ZEV_HELPER ub2 GetStatementType(const char *text);
/// Makes a statement that names a server cursor (preparedName) a fetchable SELECT.
ZEV_HELPER void InitializeChildStmt(OCIStmt *child);
}

namespace zev {

/// Frees the bind handles of a statement with all lists of them.
void freeBinds(OCIStmt *stmt);
/// Frees the define handles of a statement.
void freeDefines(OCIStmt *stmt);
/// Frees a text and leaves null.
void freeText(char *&text);

}  // namespace zev
