#include <type_traits>
#include <utility>

#include "core/frame.h"
#include "core/frame_rows.h"
#include "stmt/fill.h"
#include "zevoci/conversion.h"

namespace {

/// The buffers and mode of a define call.
struct DefineArguments {
  ub4 position;
  void *valuep;
  sb8 valueSize;
  ub2 dty;
  void *indp;
  void *rlenp;
  bool wideLengths;  ///< rlenp leads to ub4, not ub2
  ub2 *rcodep;
  ub4 mode;
};

bool isDefineMode(ub4 mode) {
  return mode == OCI_DEFAULT || mode == OCI_DYNAMIC_FETCH || mode == OCI_DEFINE_SOFT;
}

void storeBuffers(OCIDefine *define, const DefineArguments &arguments) {
  define->position = arguments.position;
  define->valuep = arguments.valuep;
  define->indp = static_cast<sb2 *>(arguments.indp);
  define->alenp = static_cast<ub2 *>(arguments.rlenp);
  define->wideLengths = arguments.wideLengths;
  define->rcodep = arguments.rcodep;
}

/// Gives the define of an executed statement new buffers; OCI_ERROR when it is not one of
/// this type and size.
sword redefine(const OCIStmt *stmt, OCIDefine *define, const DefineArguments &arguments) {
  const bool fits = zev::asDefine(define) && define->dty == arguments.dty &&
                    define->valueSize == static_cast<ub4>(arguments.valueSize) &&
                    stmt->executed;
  if (!fits) return OCI_ERROR;
  storeBuffers(define, arguments);
  return OCI_SUCCESS;
}

/// A new define in the place of the one at its position.
sword define(OCIStmt *stmt, OCIDefine **defnpp, const DefineArguments &arguments) {
  if (OCIDefine *former = find_define(stmt->defines, arguments.position - 1)) {
    stmt->defines = list_delete(stmt->defines, former);
    Free_OCIDefine(former);
  }
  void *made = nullptr;
  const sword status = OCIHandleAlloc(stmt, &made, OCI_HTYPE_DEFINE, 0, nullptr);
  if (status != OCI_SUCCESS) return status;
  auto *added = static_cast<OCIDefine *>(made);
  added->position = arguments.position;
  added->valueSize = static_cast<ub4>(arguments.valueSize);
  added->dty = arguments.dty;
  added->isDynamic = arguments.mode == OCI_DYNAMIC_FETCH;
  if (!added->isDynamic) storeBuffers(added, arguments);
  *defnpp = added;
  return OCI_SUCCESS;
}

/// The part that the calls on an existing define share.
template <class Store, class... Arguments>
sword change(const zev::FrameRow &row, OCIDefine *defnp, OCIError *errhp, Store store,
             Arguments... arguments) {
  if (!zev::asDefine(defnp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIStmt *stmt = zev::asStmt(defnp->parenth);
  OCIEnv *env = stmt ? zev::parentEnv(stmt) : nullptr;
  if (!env) return OCI_INVALID_HANDLE;
  return zev::runFrame(
      row, env, errhp,
      [&](sword &) {
        store();
        zev::forgetFetchPlan(stmt);
        return zev::Leave::ThroughExitCallbacks;
      },
      defnp, errhp, arguments...);
}

/// OCIDefineByPos and its sister with wider numbers.
template <class Size, class Length>
sword callDefineByPos(OCIStmt *stmtp, OCIDefine **defnpp, OCIError *errhp, ub4 position,
                      void *valuep, Size value_sz, ub2 dty, void *indp, Length *rlenp,
                      ub2 *rcodep, ub4 mode) {
  if (!position || !defnpp || !IsValidOraDataType(dty) || !zev::asStmt(stmtp) ||
      !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;
  if (!isDefineMode(mode)) return OCI_ERROR;

  return zev::runFrame(
      zev::frame::kDefineByPos, env, errhp,
      [&](sword &status) {
        const bool wide = std::is_same_v<Length, ub4>;
        const DefineArguments arguments{position, valuep, value_sz, dty, indp,
                                        rlenp,    wide,   rcodep,   mode};
        const sword outcome = !std::in_range<sb4>(value_sz) ? zev::fail(errhp, 1084)
                              : mode == OCI_DEFINE_SOFT
                                  ? redefine(stmtp, *defnpp, arguments)
                                  : define(stmtp, defnpp, arguments);
        zev::forgetFetchPlan(stmtp);
        if (outcome == OCI_SUCCESS) return zev::Leave::ThroughExitCallbacks;
        status = outcome;
        return zev::Leave::AtOnce;
      },
      stmtp, defnpp, errhp, position, valuep, value_sz, dty, indp, rlenp, rcodep, mode);
}

}  // namespace

extern "C" {

OCIDefine *Alloc_OCIDefine() {
  return zev::allocHandle<OCIDefine>(HANDLE_OCIDefine);
}

void Free_OCIDefine(OCIDefine *define) {
  if (zev::asDefine(define)) zev::freeHandle(define);
}

sword Get_OCIDefine(OCIDefine *, void *, ub4 *, ub4, OCIError *) {
  return OCI_ERROR;
}
sword Set_OCIDefine(OCIDefine *, void *, ub4, ub4, OCIError *) {
  return OCI_ERROR;
}

ZEV_API sword OCIDefineByPos(OCIStmt *stmtp, OCIDefine **defnpp, OCIError *errhp,
                             ub4 position, void *valuep, sb4 value_sz, ub2 dty,
                             void *indp, ub2 *rlenp, ub2 *rcodep, ub4 mode) {
  return callDefineByPos(stmtp, defnpp, errhp, position, valuep, value_sz, dty, indp,
                         rlenp, rcodep, mode);
}

ZEV_API sword OCIDefineByPos2(OCIStmt *stmtp, OCIDefine **defnpp, OCIError *errhp,
                              ub4 position, void *valuep, sb8 value_sz, ub2 dty,
                              void *indp, ub4 *rlenp, ub2 *rcodep, ub4 mode) {
  return callDefineByPos(stmtp, defnpp, errhp, position, valuep, value_sz, dty, indp,
                         rlenp, rcodep, mode);
}

ZEV_API sword OCIDefineArrayOfStruct(OCIDefine *defnp, OCIError *errhp, ub4 pvskip,
                                     ub4 indskip, ub4 rlskip, ub4 rcskip) {
  return change(
      zev::frame::kDefineArrayOfStruct, defnp, errhp,
      [&] {
        defnp->isStruct = 1;
        defnp->pvskip = pvskip;
        defnp->indskip = indskip;
        defnp->alskip = rlskip;
        defnp->rcskip = rcskip;
      },
      pvskip, indskip, rlskip, rcskip);
}

ZEV_API sword OCIDefineDynamic(OCIDefine *defnp, OCIError *errhp, void *octxp,
                               OCICallbackDefine ocbfp) {
  return change(
      zev::frame::kDefineDynamic, defnp, errhp,
      [&] {
        defnp->isDynamic = 1;
        defnp->ocbfpDef = ocbfp;
        defnp->ocbctxDef = octxp;
      },
      octxp, ocbfp);
}

}  // extern "C"
