/// Fetching rows and scrolling.
#pragma once

#include "zevoci/statement.h"

extern "C" {
/// Fetches `nrows` rows at an orientation into the defines; 0 closes the portal.
ZEV_HELPER sword doFetch(OCIStmt *stmt, OCIError *errhp, ub4 nrows, ub2 orientation,
                         sb4 offset);
/// Takes the next rows from the portal into the statement's result. 0, or -1 with a
/// record and a rolled back transaction.
ZEV_HELPER sword fetchRows(OCIStmt *stmt, OCIError *errhp, ub4 nrows);
}

namespace zev {

/// Sends for `count` rows of a portal or cursor and waits for them; null with a record
/// and a rolled back transaction when they could not be asked for.
sword fetchBatch(OCIServer *server, OCIStmt *stmt, OCIError *errhp, const char *portal,
                 ub4 count);

}  // namespace zev
