/// Transactions: the handle and the only ways in which the engine changes the server's
/// state.
#pragma once

#include <libpq-fe.h>
#include <xa.h>

#include "zevoci/connection.h"

struct OCITrans : OCIHandle {
  XID *xid;  ///< owned; null until set
  ub4 transTimeout;
};

extern "C" {
ZEV_HELPER OCITrans *Alloc_OCITrans();
ZEV_HELPER void Free_OCITrans(OCITrans *trans);
ZEV_HELPER sword Get_OCITrans(OCITrans *trans, void *value, ub4 *size, ub4 attribute,
                              OCIError *errhp);
ZEV_HELPER sword Set_OCITrans(OCITrans *trans, void *value, ub4 size, ub4 attribute,
                              OCIError *errhp);
/// A new text "formatID.data" with the data bytes as they stand; null when memory runs
/// out.
ZEV_HELPER char *GetTransactionNameFromXID(const XID *xid);
/// Sends BEGIN unless a transaction is open, active or failed.
ZEV_HELPER void START_TRANSACTION(PGconn *conn);
/// Sends COMMIT when a transaction is open; one that failed is left alone.
ZEV_HELPER void COMMIT_TRANSACTION(PGconn *conn);
/// Sends ROLLBACK when a transaction is open or failed, unless the server keeps
/// transactions after a failing statement (stmtLevelTx).
ZEV_HELPER void ROLLBACK_TRANSACTION(OCIServer *server);
}

namespace zev {
inline OCITrans *asTrans(const void *h) {
  return checked<OCITrans>(h, HANDLE_OCITrans);
}
}  // namespace zev
