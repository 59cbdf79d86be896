/// What statements open on the server, and how it is closed.
#pragma once

#include "zevoci/statement.h"

extern "C" {
/// Makes the statement's portal record, or closes the portal of the one it has; 0.
ZEV_HELPER sword prepareCursor(OCIServer *server, OCIStmt *stmt, OCIError *errhp);
/// Closes the portal of `cursor` on the server. 0, or -1 with a record and a rolled back
/// transaction.
ZEV_HELPER sword closePortal(PortalState *cursor, OCIError *errhp);
/// Drops a prepared statement. 0, or -1 with a record and a rolled back transaction.
ZEV_HELPER sword deallocateStatement(OCIServer *server, OCIError *errhp,
                                     const char *name);
/// Drops what a statement has on the server: the portal with the statement behind it, the
/// declared cursor, or, when `flag` is set, the prepared statement of a non-SELECT. 0 or
/// -1.
ZEV_HELPER sword deallocateCursor(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                                  boolean flag);
}

namespace zev {

/// Records `text` and rolls back; OCI_ERROR.
sword failAndRollBack(OCIServer *server, OCIError *errhp, const char *text);
/// Records what the server said and rolls back; OCI_ERROR.
sword failAndRollBack(OCIServer *server, OCIError *errhp, const PGresult *result);

}  // namespace zev
