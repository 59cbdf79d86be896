/// Rows by the array.
#pragma once

#include "stmt/execute.h"

extern "C" {
/// Runs a prepared INSERT or UPDATE for the rows from `rowoff` to `iters` - 1 at once. 0,
/// 1 with a notice, -1 with record 24338 and the server's text, 27102 when memory runs
/// out, or the status of the row whose conversion failed, before anything is sent.
ZEV_HELPER sword ExecuteBulkInsertUpdateStmt(OCIServer *server, OCIStmt *stmt,
                                             OCIError *errhp, ub4 iters, ub4 rowoff);
/// The same in steps that do not wait for the server: OCI_STILL_EXECUTING until all rows
/// are answered. The first call takes the rows, the later ones ignore `iters` and
/// `rowoff`.
ZEV_HELPER sword ExecuteAsyncBulkInsertUpdateStmt(OCIServer *server, OCIStmt *stmt,
                                                  OCIError *errhp, ub4 iters, ub4 rowoff);
/// The first rows of an open SELECT in steps: OCI_STILL_EXECUTING until they are there.
/// `iters` 0 describes the portal.
ZEV_HELPER sword continueAsyncSelect(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                                     ub4 iters, ub4 rowoff);
}

namespace zev {

class RowValues;

/// Converts the rows of an execution. 0, or the status of the row that failed; then none
/// is to be sent. Throws std::bad_alloc.
sword gatherRows(const Execution &x, RowValues &rows);

/// Records 24338 with what the client library says of a bulk operation, and rolls back;
/// OCI_ERROR.
sword failBulk(const Execution &x);

/// Ends a stepwise run that nobody will go on with.
void abandonBulk(OCIStmt *stmt);

}  // namespace zev
