#include <cstdlib>

#include "core/attribute_value.h"
#include "zevoci/connection.h"
#include "zevoci/errors.h"
#include "zevoci/statement.h"
#include "zevoci/trace.h"
#include "zevoci/transaction.h"

namespace {

void forgetText(char *&text) {
  std::free(text);
  text = nullptr;
}

/// Hands out a linked handle that must carry `tag`.
sword getLink(void *value, const void *link, HandleTag tag) {
  if (!zev::checked<OCIHandle>(link, tag)) return OCI_INVALID_HANDLE;
  zev::putAttribute(value, link);
  return OCI_SUCCESS;
}

/// Stores a link; a non-null one must carry `tag`.
template <class T>
sword setLink(T *&link, void *value, HandleTag tag) {
  if (value && !zev::checked<OCIHandle>(value, tag)) return OCI_ERROR;
  link = static_cast<T *>(value);
  return OCI_SUCCESS;
}

void traceLink(const OCISvcCtx *svchp, const char *field, const void *link) {
  ocitrace(kTraceService, "Set_OCISvcCtx", "setting %p.%s = %p\n",
           static_cast<const void *>(svchp), field, link);
}

}  // namespace

extern "C" {

OCISvcCtx *Alloc_OCISvcCtx() {
  return zev::allocHandle<OCISvcCtx>(HANDLE_OCISvcCtx);
}

void Free_OCISvcCtx(OCISvcCtx *svchp) {
  if (!zev::asService(svchp)) return;
  std::free(svchp->userMem);
  if (OCIEnv *env = zev::parentEnv(svchp)) {
    for (OCIHandle *child : zev::Elements<OCIHandle>(env->children)) {
      OCIStmt *stmt = zev::asStmt(child);
      if (stmt && stmt->service == svchp) stmt->service = nullptr;
    }
    if (svchp->server) markCursorsClosed(env, svchp->server);
  }
  for (OCIStmt *stmt : zev::Elements<OCIStmt>(svchp->stmts)) stmt->service = nullptr;
  list_free(svchp->stmts);
  *svchp = OCISvcCtx{};
  std::free(svchp);
}

sword Get_OCISvcCtx(OCISvcCtx *svchp, void *value, ub4 *size, ub4 attribute,
                    OCIError *errhp) {
  if (size) *size = 0;
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_ERROR;
  if (!value) return OCI_INVALID_HANDLE;
  switch (attribute) {
    case OCI_ATTR_ENV:
      return getLink(value, svchp->parenth, HANDLE_OCIEnv);
    case OCI_ATTR_SERVER:
      return getLink(value, svchp->server, HANDLE_OCIServer);
    case OCI_ATTR_SESSION:
      return getLink(value, svchp->session, HANDLE_OCISession);
    case OCI_ATTR_TRANS:
    case OCI_ATTR_IN_V8_MODE:
    case OCI_ATTR_STMTCACHESIZE:
      return OCI_SUCCESS;
    default:
      return OCI_ERROR;
  }
}

sword Set_OCISvcCtx(OCISvcCtx *svchp, void *value, ub4, ub4 attribute, OCIError *errhp) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_ERROR;
  switch (attribute) {
    case OCI_ATTR_SERVER:
      traceLink(svchp, "server", value);
      return setLink(svchp->server, value, HANDLE_OCIServer);
    case OCI_ATTR_SESSION:
      traceLink(svchp, "session", value);
      return setLink(svchp->session, value, HANDLE_OCISession);
    case OCI_ATTR_TRANS:
      svchp->trans = static_cast<OCITrans *>(value);
      return OCI_SUCCESS;
    case OCI_ATTR_STMTCACHESIZE:
      return OCI_SUCCESS;
    default:
      return OCI_ERROR;
  }
}

sword getServerHandleFromService(OCIServer **server, OCISvcCtx *svchp, OCIError *errhp) {
  void *found = nullptr;
  const sword status =
      OCIAttrGet(svchp, OCI_HTYPE_SVCCTX, &found, nullptr, OCI_ATTR_SERVER, errhp);
  if (status != OCI_SUCCESS) return status;
  *server = zev::asServer(found);
  return *server ? OCI_SUCCESS : OCI_INVALID_HANDLE;
}

void markCursorsClosed(OCIEnv *env, OCIServer *server) {
  for (OCIHandle *child : zev::Elements<OCIHandle>(env->children)) {
    OCIStmt *stmt = zev::asStmt(child);
    if (!stmt) continue;
    if (PortalState *cursor = stmt->cursor; cursor && cursor->server == server) {
      cursor->state = kPortalClosed;
      forgetText(cursor->stmtName);
      forgetText(cursor->portalName);
      cursor->server = nullptr;
      stmt->serverPrepared = 0;
    }
    const bool serviceIsHere = stmt->service && stmt->service->server == server;
    if (serviceIsHere) stmt->service->server = nullptr;
    if (serviceIsHere || stmt->pgPreparedServer == server) {
      forgetText(stmt->preparedName);
      stmt->pgPreparedServer = nullptr;
      stmt->serverPrepared = 0;
    }
  }
}

}  // extern "C"
