#include <cstdlib>
#include <cstring>

#include "core/frame.h"
#include "core/frame_rows.h"
#include "stmt/statement_text.h"

namespace {

bool beginsWith(const ub1 *kept, ub4 keptLength, const OraText *key, ub4 keyLength) {
  return kept && keptLength >= keyLength && std::memcmp(kept, key, keyLength) == 0;
}

/// The first cached statement that was released under this key, or null. A null element
/// ends the walk.
OCIStmt *findReleased(const OCISvcCtx *svchp, const OraText *key, ub4 keyLength) {
  for (OCIStmt *stmt : zev::Elements<OCIStmt>(svchp->stmts)) {
    if (!stmt) return nullptr;
    if (beginsWith(stmt->cacheKey, stmt->cacheKeyLen, key, keyLength)) return stmt;
  }
  return nullptr;
}

/// The first statement whose place one prepared under `key` takes: one with that key,
/// released or still held; for a null key one that was released without.
OCIStmt *findReplaced(const OCISvcCtx *svchp, const OraText *key, ub4 keyLength) {
  for (OCIStmt *stmt : zev::Elements<OCIStmt>(svchp->stmts)) {
    if (!stmt) return nullptr;
    const bool replaced =
        key ? beginsWith(stmt->cacheKey, stmt->cacheKeyLen, key, keyLength) ||
                  beginsWith(stmt->heldKey, stmt->heldKeyLen, key, keyLength)
            : !stmt->inUse && !stmt->cacheKey;
    if (replaced) return stmt;
  }
  return nullptr;
}

/// A new copy of a key in `kept`; false when memory runs out.
bool keepKey(ub1 *&kept, ub4 &keptLength, const OraText *key, ub4 keyLength) {
  std::free(kept);
  kept = nullptr;
  keptLength = 0;
  if (!key) return true;
  kept = static_cast<ub1 *>(std::malloc(keyLength ? keyLength : 1));
  if (!kept) return false;
  std::memcpy(kept, key, keyLength);
  keptLength = keyLength;
  return true;
}

/// Takes a statement's text, binds and defines away; the handle stays.
void empty(OCIStmt *stmt) {
  zev::freeBinds(stmt);
  zev::freeDefines(stmt);
  zev::freeText(stmt->callText);
  zev::freeText(stmt->returnParam);
  zev::freeText(stmt->stmtText);
  stmt->textLen = 0;
  stmt->isCallable = 0;
  stmt->prepared = 0;
}

/// Frees a statement that OCIStmtPrepare2 made. One that the program still holds is
/// emptied instead, so that its use fails cleanly, and goes with the environment.
void retire(OCIStmt *stmt) {
  if (stmt->inUse) {
    empty(stmt);
    return;
  }
  stmt->fromPrepare2 = 0;
  OCIHandleFree(stmt, OCI_HTYPE_STMT);
}

sword search(OCISvcCtx *svchp, OCIStmt **stmtp, OCIError *errhp, const OraText *key,
             ub4 keyLength) {
  *stmtp = nullptr;
  if (!svchp->stmtCacheEnabled) return zev::fail(errhp, 24300);
  if (key && keyLength) *stmtp = findReleased(svchp, key, keyLength);
  if (!*stmtp) return zev::fail(errhp, 24431);
  (*stmtp)->inUse = 1;
  return OCI_SUCCESS;
}

/// Enters a new statement in the cache in the place of one with its key. Its own tag
/// comes with its release.
sword enterCache(OCISvcCtx *svchp, OCIStmt *stmt, OCIError *errhp, const OraText *key,
                 ub4 keyLength) {
  if (OCIStmt *former = findReplaced(svchp, key, keyLength)) {
    svchp->stmts = list_delete(svchp->stmts, former);
    retire(former);
  }
  if (!keepKey(stmt->heldKey, stmt->heldKeyLen, key, keyLength)) {
    return zev::fail(errhp, 16506);
  }
  List *longer = lappend(svchp->stmts, stmt);
  if (!longer) return OCI_ERROR;
  svchp->stmts = longer;
  if (!key) return OCI_SUCCESS;
  AddErrorRecord(errhp, OCI_SUCCESS_WITH_INFO, 24432);
  return OCI_SUCCESS_WITH_INFO;
}

sword prepareNew(OCIEnv *env, OCISvcCtx *svchp, OCIStmt **stmtp, OCIError *errhp,
                 const OraText *text, ub4 length, const OraText *key, ub4 keyLength,
                 ub4 language) {
  void *made = nullptr;
  sword status = OCIHandleAlloc(env, &made, OCI_HTYPE_STMT, 0, nullptr);
  *stmtp = static_cast<OCIStmt *>(made);
  if (status != OCI_SUCCESS) return status;

  OCIStmt *stmt = *stmtp;
  status = OCIStmtPrepare(stmt, errhp, text, length, language, OCI_DEFAULT);
  if (status == OCI_SUCCESS && svchp->stmtCacheEnabled) {
    status = enterCache(svchp, stmt, errhp, key, keyLength);
  }
  if (!zev::isSuccess(status)) {
    retire(stmt);
    *stmtp = nullptr;
    return status;
  }
  stmt->service = svchp;
  stmt->fromPrepare2 = 1;
  stmt->inUse = 1;
  return status;
}

/// Gives a statement back to the cache of its service context.
sword releaseToCache(OCIStmt *stmt, OCIError *errhp, const OraText *key, ub4 keyLength,
                     ub4 mode) {
  if (!stmt->inUse) return zev::fail(errhp, 24434);
  stmt->inUse = 0;
  keepKey(stmt->heldKey, stmt->heldKeyLen, nullptr, 0);
  const bool deleted = mode == OCI_STRLS_CACHE_DELETE;
  if (!keepKey(stmt->cacheKey, stmt->cacheKeyLen, deleted ? nullptr : key, keyLength)) {
    return zev::fail(errhp, 16506);
  }
  if (deleted) stmt->service->stmts = list_delete(stmt->service->stmts, stmt);
  return OCI_SUCCESS;
}

/// Empties a statement that no cache holds; the handle stays.
sword releaseUncached(OCIStmt *stmt, OCIError *errhp, ub4 mode) {
  if (mode == OCI_STRLS_CACHE_DELETE) return zev::fail(errhp, 24300);
  empty(stmt);
  return OCI_SUCCESS;
}

}  // namespace

extern "C" ZEV_API sword OCIStmtPrepare2(OCISvcCtx *svchp, OCIStmt **stmtp,
                                         OCIError *errhp, const OraText *stmt,
                                         ub4 stmt_len, const OraText *key, ub4 key_len,
                                         ub4 language, ub4 mode) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;
  if (!stmtp) return OCI_ERROR;

  return zev::runFrame(
      zev::frame::kStmtPrepare2, env, errhp,
      [&](sword &status) {
        const auto leaveWith = [&status](sword outcome) {
          status = outcome;
          return zev::Leave::AtOnce;
        };
        if (!stmt) return leaveWith(zev::failArgument(errhp, "4"));
        if (mode != OCI_DEFAULT && mode != OCI_PREP2_CACHE_SEARCHONLY) {
          return leaveWith(zev::fail(errhp, 24300));
        }
        if (!stmt_len) return leaveWith(zev::fail(errhp, 24373));
        if (language != OCI_NTV_SYNTAX && language != OCI_V7_SYNTAX)
          return leaveWith(OCI_ERROR);
        const sword outcome = mode == OCI_PREP2_CACHE_SEARCHONLY
                                  ? search(svchp, stmtp, errhp, key, key_len)
                                  : prepareNew(env, svchp, stmtp, errhp, stmt, stmt_len,
                                               key, key_len, language);
        if (outcome < 0) return leaveWith(outcome);
        if (outcome != OCI_SUCCESS) status = outcome;
        return zev::Leave::ThroughExitCallbacks;
      },
      svchp, stmtp, errhp, stmt, stmt_len, key, key_len, language, mode);
}

extern "C" ZEV_API sword OCIStmtRelease(OCIStmt *stmtp, OCIError *errhp,
                                        const OraText *key, ub4 key_len, ub4 mode) {
  if (!zev::asStmt(stmtp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;
  if (mode != OCI_DEFAULT && mode != OCI_STRLS_CACHE_DELETE) return OCI_ERROR;
  if (!zev::asService(stmtp->service)) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kStmtRelease, env, errhp,
      [&](sword &status) {
        const sword outcome = stmtp->service->stmtCacheEnabled
                                  ? releaseToCache(stmtp, errhp, key, key_len, mode)
                                  : releaseUncached(stmtp, errhp, mode);
        if (outcome == OCI_SUCCESS) return zev::Leave::ThroughExitCallbacks;
        status = outcome;
        return zev::Leave::AtOnce;
      },
      stmtp, errhp, key, key_len, mode);
}
