#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "zevoci/errors.h"
#include "zevoci/parameter.h"
#include "zevoci/transaction.h"

namespace {

/// The last type of object that there is.
constexpr ub1 kLastObjectType = 24;

/// Takes over what was found and gives the program its descriptor.
sword answer(OCIEnv *env, OCIError *errhp, OCIParamHandle *found, OCIStmt *source,
             void **parmdpp) {
  if (!found) return zev::fail(errhp, 24334);
  OCIParam *param = nullptr;
  const sword status = zev::wrapParameter(env, found, source, &param);
  *parmdpp = param;
  return status;
}

sword getColumn(OCIStmt *stmt, OCIError *errhp, void **parmdpp, ub4 pos) {
  OCIEnv *env = zev::parentEnv(stmt);
  if (!env) return OCI_INVALID_HANDLE;
  if (!pos || stmt->stmtType != OCI_STMT_SELECT) return zev::fail(errhp, 24334);
  if (!stmt->pgResult) return zev::fail(errhp, 24338);
  if (pos > static_cast<ub4>(PQnfields(stmt->pgResult))) return zev::fail(errhp, 24334);
  return answer(
      env, errhp,
      Alloc_OCIColumnParamHandle(env, stmt, static_cast<int>(pos) - 1, stmt->ranOnce),
      stmt, parmdpp);
}

/// A copy of element `pos`, counted from 1 without arguments; null when there is none.
OCIParamHandle *copyElement(const OCIListParamHandle *list, ub4 pos) {
  for (const OCIParamHandle *element : zev::Elements<OCIParamHandle>(list->handles)) {
    if (element->kind == kParameterArgument) continue;
    if (--pos == 0) return CopyOCIParamHandle(element);
  }
  return nullptr;
}

sword getElement(OCIParam *list, OCIError *errhp, void **parmdpp, ub4 pos) {
  OCIEnv *env = zev::parentEnv(list);
  if (!env) return OCI_INVALID_HANDLE;
  OCIParamHandle *element =
      pos ? copyElement(static_cast<const OCIListParamHandle *>(list->handle), pos)
          : nullptr;
  return answer(env, errhp, element, list->source, parmdpp);
}

/// What is wrong with a describe call; OCI_SUCCESS for one that goes on.
sword checkArguments(OCIError *errhp, const void *objptr, ub4 length, ub1 objptr_typ,
                     ub1 info_level, ub1 objtyp) {
  switch (objptr_typ) {
    case OCI_OTYPE_NAME:
      break;
    case OCI_OTYPE_REF:
    case OCI_OTYPE_PTR:
      return zev::fail(errhp, 3001);
    default:
      return zev::fail(errhp, 24332);
  }
  if (!objptr || !length) return zev::fail(errhp, 1009);
  if (info_level || objtyp > kLastObjectType) return OCI_INVALID_HANDLE;
  return objtyp == OCI_PTYPE_TABLE ? OCI_SUCCESS : zev::fail(errhp, 3001);
}

sword describe(OCISvcCtx *svchp, OCIError *errhp, const void *objptr, ub4 length,
               ub1 objtyp, OCIDescribe *dschp) {
  OCIServer *server = nullptr;
  const sword found = getServerHandleFromService(&server, svchp, errhp);
  if (found != OCI_SUCCESS) return found;
  if (PQstatus(server->conn) != CONNECTION_OK) return zev::fail(errhp, 25407);
  FreeOCIParamHandle(dschp->handle);
  dschp->handle = nullptr;
  OCIEnv *env = zev::parentEnv(svchp);
  const zev::EdgeText name(env, objptr, length);
  if (!name) return name.fail(errhp);
  START_TRANSACTION(server->conn);
  return Build_OCITableParamHandle(env, errhp, server->conn, name.data(),
                                   static_cast<ub4>(name.size()), objtyp, &dschp->handle);
}

}  // namespace

extern "C" {

ZEV_API sword OCIParamGet(const void *hndlp, ub4 htype, OCIError *errhp, void **parmdpp,
                          ub4 pos) {
  if (!hndlp || !parmdpp || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  *parmdpp = nullptr;
  ClearErrorHandle(errhp);
  if (htype == OCI_HTYPE_STMT) {
    OCIStmt *stmt = zev::asStmt(hndlp);
    return stmt ? getColumn(stmt, errhp, parmdpp, pos) : OCI_INVALID_HANDLE;
  }
  if (htype != OCI_DTYPE_PARAM) return zev::fail(errhp, 24316);
  OCIParam *list = zev::asParam(hndlp);
  const bool isList = list && list->handle && list->handle->kind == kParameterList;
  return isList ? getElement(list, errhp, parmdpp, pos) : OCI_INVALID_HANDLE;
}

ZEV_API sword OCIDescribeAny(OCISvcCtx *svchp, OCIError *errhp, void *objptr,
                             ub4 objnm_len, ub1 objptr_typ, ub1 info_level, ub1 objtyp,
                             OCIDescribe *dschp) {
  if (!zev::asService(svchp) || !zev::asError(errhp) || !zev::asDescribe(dschp)) {
    return OCI_INVALID_HANDLE;
  }
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  if (const sword wrong =
          checkArguments(errhp, objptr, objnm_len, objptr_typ, info_level, objtyp);
      wrong != OCI_SUCCESS) {
    return wrong;
  }
  return zev::runFrame(
      zev::frame::kDescribeAny, env, errhp,
      [&](sword &status) {
        status = describe(svchp, errhp, objptr, objnm_len, objtyp, dschp);
        return dschp->handle ? zev::Leave::ThroughExitCallbacks : zev::Leave::AtOnce;
      },
      svchp, errhp, objptr, objnm_len, objptr_typ, info_level, objtyp, dschp);
}

}  // extern "C"
