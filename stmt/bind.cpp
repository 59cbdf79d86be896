#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>

#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "stmt/placeholder.h"
#include "zevoci/conversion.h"
#include "zevoci/text.h"

namespace {

/// The buffers and modes that all bind calls take.
struct BindArguments {
  void *valuep;
  sb8 valueSize;
  ub2 dty;
  void *indp;
  void *alenp;
  bool wideLengths;  ///< alenp leads to ub4, not ub2
  ub2 *rcodep;
  ub4 maxarrLen;
  ub4 *curelep;
  ub4 mode;
};

/// Whether a length that a call takes is one of 32 bits.
template <class Length>
constexpr bool kIsWide = std::is_same_v<Length, ub4>;

bool isBindMode(ub4 mode) {
  return mode == OCI_DEFAULT || mode == OCI_DATA_AT_EXEC || mode == OCI_BIND_SOFT;
}

/// The value buffer of a bind; for a result set the statement that the program's pointer
/// leads to.
void *valueOf(const BindArguments &arguments) {
  if (arguments.dty != SQLT_RSET || !arguments.valuep) return arguments.valuep;
  return *static_cast<void **>(arguments.valuep);
}

void storeBuffers(OCIBind *bind, const BindArguments &arguments) {
  bind->valuep = valueOf(arguments);
  bind->indp = static_cast<sb2 *>(arguments.indp);
  bind->alenp = static_cast<ub2 *>(arguments.alenp);
  bind->wideLengths = arguments.wideLengths;
  bind->rcodep = arguments.rcodep;
  bind->maxarrLen = arguments.maxarrLen;
  bind->curelep = arguments.curelep;
}

/// A bind of the program's buffers, or of callbacks that will give them; `position` is
/// the parameter's place as far as the server has described it.
void storeBind(OCIStmt *stmt, OCIBind *bind, const BindArguments &arguments, ub4 position,
               void *dynamicValue) {
  const bool dynamic = arguments.mode == OCI_DATA_AT_EXEC;
  bind->isDynamic = dynamic;
  storeBuffers(bind, arguments);
  if (dynamic) {
    bind->valuep = dynamicValue;
    bind->indp = nullptr;
    bind->alenp = nullptr;
    bind->rcodep = nullptr;
  }
  bind->valueSize = static_cast<sb4>(arguments.valueSize);
  bind->dty = arguments.dty;
  bind->pgType = GetParamType(stmt, position, arguments.dty, bind->valueSize);
  bind->convert = nullptr;
}

/// Gives an executed bind new buffers; OCI_ERROR when it is not one of this type and
/// size.
sword rebind(const OCIStmt *stmt, OCIBind *bind, const BindArguments &arguments) {
  const bool fits = zev::asBind(bind) && bind->dty == arguments.dty &&
                    bind->valueSize == arguments.valueSize && stmt->executed;
  if (!fits) return OCI_ERROR;
  bind->isDynamic = 0;
  storeBuffers(bind, arguments);
  return OCI_SUCCESS;
}

/// A new bind of the statement under a copy of `name`; null with the failure in
/// `*status`.
OCIBind *newBind(OCIStmt *stmt, OCIError *errhp, const char *name, ub4 length,
                 sword *status) {
  void *made = nullptr;
  *status = OCIHandleAlloc(stmt, &made, OCI_HTYPE_BIND, 0, nullptr);
  if (*status != OCI_SUCCESS) return nullptr;
  auto *bind = static_cast<OCIBind *>(made);
  bind->name = makeString(name, length);
  bind->nameLen = length;
  if (bind->name) return bind;
  stmt->binds = list_delete(stmt->binds, bind);
  Free_OCIBind(bind);
  *status = zev::fail(errhp, 16506);
  return nullptr;
}

/// Whether the statement's text holds the placeholder, also as the beginning of a longer
/// one.
bool textHolds(const OCIStmt *stmt, const std::string &placeholder) {
  if (!stmt->stmtText) return false;
  for (const char *p = std::strchr(stmt->stmtText, ':'); p; p = std::strchr(p + 1, ':')) {
    if (oci_strncasecmp(p, placeholder.c_str(), placeholder.size()) == 0) return true;
  }
  return false;
}

sword bindByName(OCIStmt *stmt, OCIBind **bindpp, OCIError *errhp,
                 const std::string &name, const BindArguments &arguments) {
  if (!std::in_range<sb4>(arguments.valueSize)) return zev::fail(errhp, 1084);
  if (!textHolds(stmt, name)) return zev::fail(errhp, 16952);
  const auto length = static_cast<ub4>(name.size());
  if (arguments.mode == OCI_BIND_SOFT) {
    const sword status = rebind(stmt, *bindpp, arguments);
    if (status != OCI_SUCCESS) return status;
  } else {
    sword status = OCI_SUCCESS;
    OCIBind *bind = find_placeholder_bind_handle(stmt, name.c_str(), length);
    if (!bind) bind = newBind(stmt, errhp, name.c_str(), length, &status);
    if (!bind) return status;
    *bindpp = bind;
    const char *bare = name.c_str() + (name.empty() ? 0 : 1);
    const int position = is_member_of_list(stmt->placeholderNames, bare);
    storeBind(stmt, bind, arguments, static_cast<ub4>(position),
              arguments.dty == SQLT_RSET ? valueOf(arguments) : nullptr);
  }
  (*bindpp)->paramMode = kParamInOut;
  const bool returns = stmt->isCallable && stmt->hasReturn && stmt->returnParam &&
                       oci_strncasecmp(stmt->returnParam, name.c_str(), length) == 0;
  if (returns) stmt->returnBind = *bindpp;
  return OCI_SUCCESS;
}

/// The placeholder numbered `position`, or null: "::" and ":=" are none.
const char *placeholderAt(const OCIStmt *stmt, ub4 position) {
  const char *p = stmt->stmtText ? oci_strstr(stmt->stmtText, ":") : nullptr;
  while (p) {
    if (p[1] != ':' && p[1] != '=' && --position == 0) return p;
    p = oci_strstr(p + (p[1] == ':' ? 2 : 1), ":");
  }
  return nullptr;
}

OCIBind *findByExactName(const OCIStmt *stmt, const char *name, ub4 length) {
  for (OCIBind *bind : zev::Elements<OCIBind>(stmt->binds)) {
    const bool same = bind->name && bind->nameLen == length &&
                      std::memcmp(bind->name, name, length) == 0;
    if (same) return bind;
  }
  return nullptr;
}

sword bindByPos(OCIStmt *stmt, OCIBind **bindpp, OCIError *errhp, ub4 position,
                const BindArguments &arguments) {
  if (!std::in_range<sb4>(arguments.valueSize)) return zev::fail(errhp, 1084);
  const char *placeholder = placeholderAt(stmt, position);
  if (!placeholder) return zev::fail(errhp, 28553);
  const auto length = static_cast<ub4>(std::strcspn(placeholder, PLACEHOLDER_DELIMITERS));
  if (arguments.mode == OCI_BIND_SOFT) {
    const sword status = rebind(stmt, *bindpp, arguments);
    if (status != OCI_SUCCESS) return status;
  } else {
    sword status = OCI_SUCCESS;
    OCIBind *bind = findByExactName(stmt, placeholder, length);
    if (!bind) bind = newBind(stmt, errhp, placeholder, length, &status);
    if (!bind) return status;
    *bindpp = bind;
    storeBind(stmt, bind, arguments, position, nullptr);
  }
  OCIBind *bind = *bindpp;
  bind->position = position;
  bind->paramMode = kParamInOut;
  const bool returns = stmt->isCallable && stmt->hasReturn && stmt->returnParam &&
                       std::strncmp(stmt->returnParam, bind->name, bind->nameLen) == 0;
  if (returns) stmt->returnBind = bind;
  return OCI_SUCCESS;
}

zev::Leave leaveWith(sword &status, sword outcome) {
  if (outcome == OCI_SUCCESS) return zev::Leave::ThroughExitCallbacks;
  status = outcome;
  return zev::Leave::AtOnce;
}

/// OCIBindByName and its sister with wider numbers.
template <class Size, class Length>
sword callBindByName(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp,
                     const OraText *placeholder, sb4 placeh_len, void *valuep,
                     Size value_sz, ub2 dty, void *indp, Length *alenp, ub2 *rcodep,
                     ub4 maxarr_len, ub4 *curelep, ub4 mode) {
  if (!bindpp || !placeholder || !IsValidOraDataType(dty) || !zev::asStmt(stmtp) ||
      !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;
  if (!isBindMode(mode)) return OCI_ERROR;

  return zev::runFrame(
      zev::frame::kBindByName, env, errhp,
      [&](sword &status) {
        const std::size_t length = placeh_len < 0 ? zev::textLength(env, placeholder)
                                                  : static_cast<std::size_t>(placeh_len);
        const zev::EdgeText edge(env, placeholder, length);
        if (!edge) return leaveWith(status, edge.fail(errhp));
        return leaveWith(status,
                         bindByName(stmtp, bindpp, errhp, std::string(edge.view()),
                                    {valuep, value_sz, dty, indp, alenp, kIsWide<Length>,
                                     rcodep, maxarr_len, curelep, mode}));
      },
      stmtp, bindpp, errhp, placeholder, placeh_len, valuep, value_sz, dty, indp, alenp,
      rcodep, maxarr_len, curelep, mode);
}

/// OCIBindByPos and its sister with wider numbers.
template <class Size, class Length>
sword callBindByPos(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp, ub4 position,
                    void *valuep, Size value_sz, ub2 dty, void *indp, Length *alenp,
                    ub2 *rcodep, ub4 maxarr_len, ub4 *curelep, ub4 mode) {
  if (!bindpp || !position || !zev::asStmt(stmtp) || !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;
  if (!isBindMode(mode)) return OCI_ERROR;

  return zev::runFrame(
      zev::frame::kBindByPos, env, errhp,
      [&](sword &status) {
        return leaveWith(status,
                         bindByPos(stmtp, bindpp, errhp, position,
                                   {valuep, value_sz, dty, indp, alenp, kIsWide<Length>,
                                    rcodep, maxarr_len, curelep, mode}));
      },
      stmtp, bindpp, errhp, position, valuep, value_sz, dty, indp, alenp, rcodep,
      maxarr_len, curelep, mode);
}

}  // namespace

extern "C" {

OCIBind *Alloc_OCIBind() {
  return zev::allocHandle<OCIBind>(HANDLE_OCIBind);
}

void Free_OCIBind(OCIBind *bind) {
  if (!zev::asBind(bind)) return;
  std::free(bind->name);
  std::free(bind->pgValue);
  zev::freeHandle(bind);
}

sword Get_OCIBind(OCIBind *, void *, ub4 *, ub4, OCIError *) {
  return OCI_ERROR;
}
sword Set_OCIBind(OCIBind *, void *, ub4, ub4, OCIError *) {
  return OCI_ERROR;
}

ZEV_API sword OCIBindByName(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp,
                            const OraText *placeholder, sb4 placeh_len, void *valuep,
                            sb4 value_sz, ub2 dty, void *indp, ub2 *alenp, ub2 *rcodep,
                            ub4 maxarr_len, ub4 *curelep, ub4 mode) {
  return callBindByName(stmtp, bindpp, errhp, placeholder, placeh_len, valuep, value_sz,
                        dty, indp, alenp, rcodep, maxarr_len, curelep, mode);
}

ZEV_API sword OCIBindByName2(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp,
                             const OraText *placeholder, sb4 placeh_len, void *valuep,
                             sb8 value_sz, ub2 dty, void *indp, ub4 *alenp, ub2 *rcodep,
                             ub4 maxarr_len, ub4 *curelep, ub4 mode) {
  return callBindByName(stmtp, bindpp, errhp, placeholder, placeh_len, valuep, value_sz,
                        dty, indp, alenp, rcodep, maxarr_len, curelep, mode);
}

ZEV_API sword OCIBindByPos(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp,
                           ub4 position, void *valuep, sb4 value_sz, ub2 dty, void *indp,
                           ub2 *alenp, ub2 *rcodep, ub4 maxarr_len, ub4 *curelep,
                           ub4 mode) {
  return callBindByPos(stmtp, bindpp, errhp, position, valuep, value_sz, dty, indp, alenp,
                       rcodep, maxarr_len, curelep, mode);
}

ZEV_API sword OCIBindByPos2(OCIStmt *stmtp, OCIBind **bindpp, OCIError *errhp,
                            ub4 position, void *valuep, sb8 value_sz, ub2 dty, void *indp,
                            ub4 *alenp, ub2 *rcodep, ub4 maxarr_len, ub4 *curelep,
                            ub4 mode) {
  return callBindByPos(stmtp, bindpp, errhp, position, valuep, value_sz, dty, indp, alenp,
                       rcodep, maxarr_len, curelep, mode);
}

ZEV_API sword OCIBindDynamic(OCIBind *bindp, OCIError *errhp, void *ictxp,
                             OCICallbackInBind icbfp, void *octxp,
                             OCICallbackOutBind ocbfp) {
  if (!zev::asBind(bindp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::climbToEnv(bindp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kBindDynamic, env, errhp,
      [&](sword &) {
        bindp->icbctx = ictxp;
        bindp->icbfp = icbfp;
        bindp->ocbctx = octxp;
        bindp->ocbfp = ocbfp;
        const ub4 direction = (icbfp ? kParamIn : 0u) | (ocbfp ? kParamOut : 0u);
        if (direction) bindp->paramMode = direction;
        return zev::Leave::ThroughExitCallbacks;
      },
      bindp, errhp, ictxp, icbfp, octxp, ocbfp);
}

ZEV_API sword OCIBindArrayOfStruct(OCIBind *bindp, OCIError *errhp, ub4 pvskip,
                                   ub4 indskip, ub4 alskip, ub4 rcskip) {
  if (!zev::asBind(bindp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIStmt *stmt = zev::asStmt(bindp->parenth);
  if (!stmt) return OCI_INVALID_HANDLE;
  stmt->arrayOfStruct = 1;
  bindp->isStruct = 1;
  bindp->pvskip = pvskip;
  bindp->indskip = indskip;
  bindp->alskip = alskip;
  bindp->rcskip = rcskip;
  return OCI_SUCCESS;
}

}  // extern "C"
