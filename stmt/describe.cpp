#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "zevoci/parameter.h"
#include "zevoci/transaction.h"

namespace {

/// Object types that exist elsewhere and cannot be described here.
constexpr ub1 kLastObjectType = 24;

sword checkColumn(const OCIStmt *stmt, OCIError *errhp, ub4 pos) {
  if (!stmt) return OCI_INVALID_HANDLE;
  if (!pos) return zev::fail(errhp, 24334);
  if (!stmt->pgResult) return zev::fail(errhp, 24338);
  if (pos > static_cast<ub4>(PQnfields(stmt->pgResult))) return zev::fail(errhp, 24334);
  return OCI_SUCCESS;
}

/// The list in a parameter, or null.
OCIListParamHandle *listOf(const OCIParam *param) {
  const bool isList = param && param->body && param->body->kind == kListParam;
  return isList ? static_cast<OCIListParamHandle *>(param->body) : nullptr;
}

/// Element `pos` of a list, from 1, arguments not counted; null beyond its end.
OCIParamHandle *elementAt(const OCIListParamHandle *list, ub4 pos) {
  ub4 number = 0;
  for (OCIParamHandle *handle : zev::Elements<OCIParamHandle>(list->handles)) {
    if (handle->kind != kArgumentParam && ++number == pos) return handle;
  }
  return nullptr;
}

sword newDescriptor(OCIEnv *env, OCIParam **out) {
  void *descriptor = nullptr;
  const sword status = OCIDescriptorAlloc(env, &descriptor, OCI_DTYPE_PARAM, 0, nullptr);
  *out = static_cast<OCIParam *>(descriptor);
  return status;
}

/// Gives a new descriptor its body; without one the descriptor is freed.
sword fill(OCIParam *param, OCIParamHandle *body, OCIStmt *source, OCIError *errhp,
           void **out) {
  if (!body) {
    OCIDescriptorFree(param, OCI_DTYPE_PARAM);
    return zev::fail(errhp, 24334);
  }
  param->body = body;
  param->source = source;
  *out = param;
  return OCI_SUCCESS;
}

sword columnOfStatement(OCIStmt *stmt, OCIError *errhp, ub4 pos, void **out) {
  if (const sword status = checkColumn(stmt, errhp, pos)) return status;
  OCIEnv *env = zev::parentEnv(stmt);
  if (!env) return OCI_INVALID_HANDLE;
  OCIParam *param = nullptr;
  if (const sword status = newDescriptor(env, &param)) return status;
  // The descriptor stays with the environment.
  if (stmt->stmtType != OCI_STMT_SELECT) return zev::fail(errhp, 24334);
  return fill(
      param,
      Alloc_OCIColumnParamHandle(env, stmt, static_cast<int>(pos - 1), stmt->ranOnce),
      stmt, errhp, out);
}

sword elementOfList(OCIParam *parent, OCIError *errhp, ub4 pos, void **out) {
  const OCIListParamHandle *list = listOf(parent);
  OCIEnv *env = list ? zev::parentEnv(parent) : nullptr;
  if (!env) return OCI_INVALID_HANDLE;
  OCIParam *param = nullptr;
  if (const sword status = newDescriptor(env, &param)) return status;
  return fill(param, CopyOCIParamHandle(elementAt(list, pos)), parent->source, errhp,
              out);
}

sword checkObjectType(ub1 objtyp, OCIError *errhp) {
  if (objtyp == OCI_PTYPE_TABLE) return OCI_SUCCESS;
  return objtyp <= kLastObjectType ? zev::fail(errhp, 3001) : OCI_INVALID_HANDLE;
}

/// Whether the object is one that can be described: a table, by its name.
sword checkObject(OCIError *errhp, const void *objptr, ub4 objnm_len, ub1 objptr_typ,
                  ub1 info_level, ub1 objtyp) {
  switch (objptr_typ) {
    case OCI_OTYPE_NAME:
      if (!objptr || !objnm_len) return zev::fail(errhp, 1009);
      return info_level ? OCI_INVALID_HANDLE : checkObjectType(objtyp, errhp);
    case OCI_OTYPE_REF:
    case OCI_OTYPE_PTR:
      return zev::fail(errhp, 3001);
    default:
      return zev::fail(errhp, 24332);
  }
}

/// Replaces what `dschp` holds by the tree of a table.
sword describeTable(OCIEnv *env, OCISvcCtx *svchp, OCIError *errhp, const void *name,
                    ub4 length, ub1 objtyp, OCIDescribe *dschp) {
  OCIServer *server = nullptr;
  if (const sword status = getServerHandleFromService(&server, svchp, errhp)) {
    return status;
  }
  if (PQstatus(server->conn) != CONNECTION_OK) {
    return zev::fail(errhp, 25407, PQerrorMessage(server->conn));
  }
  const zev::EdgeText edge(env, name, length);
  if (!edge) return edge.fail(errhp);
  FreeOCIParamHandle(dschp->body);
  dschp->body = nullptr;
  START_TRANSACTION(server->conn);
  return Build_OCITableParamHandle(env, errhp, server->conn, edge.data(),
                                   static_cast<ub4>(edge.size()), objtyp, &dschp->body);
}

}  // namespace

extern "C" {

ZEV_API sword OCIParamGet(const void *hndlp, ub4 htype, OCIError *errhp, void **parmdpp,
                          ub4 pos) {
  if (!hndlp || !parmdpp || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  *parmdpp = nullptr;
  ClearErrorHandle(errhp);
  switch (htype) {
    case OCI_HTYPE_STMT:
      return columnOfStatement(zev::asStmt(hndlp), errhp, pos, parmdpp);
    case OCI_DTYPE_PARAM:
      return elementOfList(zev::asParam(hndlp), errhp, pos, parmdpp);
    default:
      return zev::fail(errhp, 24316);
  }
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
  const sword refused =
      checkObject(errhp, objptr, objnm_len, objptr_typ, info_level, objtyp);
  if (refused) return refused;

  return zev::runFrame(
      zev::frame::kDescribeAny, env, errhp,
      [&](sword &status) {
        const sword outcome =
            describeTable(env, svchp, errhp, objptr, objnm_len, objtyp, dschp);
        if (outcome == OCI_SUCCESS) return zev::Leave::ThroughExitCallbacks;
        status = outcome;
        return zev::Leave::AtOnce;
      },
      svchp, errhp, objptr, objnm_len, objptr_typ, info_level, objtyp, dschp);
}

}  // extern "C"
