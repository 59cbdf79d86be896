/// Result sets beside a statement's own. They arrive as statements in the program's
/// buffers (SQLT_RSET); a block returns none by itself.
#include "zevoci/errors.h"
#include "zevoci/statement.h"

extern "C" {

ZEV_API sword OCIStmtGetNextResult(OCIStmt *stmthp, OCIError *errhp, void **result,
                                   ub4 *rtype, ub4) {
  if (!zev::asStmt(stmthp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  if (!result || !rtype) return zev::fail(errhp, 1084);
  return OCI_NO_DATA;
}

ZEV_API sword OCIResultSetToStmt(OCIResult *rsetdp, OCIError *errhp) {
  if (!zev::asStmt(rsetdp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  return OCI_SUCCESS;
}

}  // extern "C"
