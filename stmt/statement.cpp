#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/attribute_value.h"
#include "core/cursor_attributes.h"
#include "core/edge_text.h"
#include "core/memory_cache.h"
#include "stmt/execute_bulk.h"
#include "stmt/fill.h"
#include "stmt/portal.h"
#include "stmt/result.h"
#include "stmt/statement_text.h"
#include "zevoci/parameter.h"
#include "zevoci/text.h"
#include "zevoci/trace.h"

namespace {

/// Values of OCI_ATTR_STMT_STATE.
enum StatementState : ub4 {
  kStateInitialized = 1,
  kStateExecuted = 2,
  kStateEndOfFetch = 3
};

ub4 rowCount(const OCIStmt *stmt) {
  if (stmt->cursor && stmt->cursor->state != kPortalClosed) return stmt->cursor->maxRow;
  if (!stmt->pgResult) return stmt->arrayRowCount;
  if (PQnfields(stmt->pgResult) == 0) {
    return static_cast<ub4>(std::strtoul(PQcmdTuples(stmt->pgResult), nullptr, 10));
  }
  return static_cast<ub4>(PQntuples(stmt->pgResult));
}

ub4 statementState(const OCIStmt *stmt) {
  if (!stmt->executed) return kStateInitialized;
  const int tuples = PQntuples(stmt->pgResult);
  return tuples == 0 || static_cast<int>(stmt->resultRowPos) == tuples - 1
             ? kStateEndOfFetch
             : kStateExecuted;
}

/// The published number of a statement's type.
ub2 publishedType(const OCIStmt *stmt) {
  return stmt->stmtType >= STMT_TRUNCATE ? ub2{STMT_UNKNOWN} : stmt->stmtType;
}

sword getText(OCIStmt *stmt, void *value, OCIError *errhp) {
  const OCIEnv *env = zev::parentEnv(stmt);
  const zev::EdgeResult edge(env, stmt->stmtText, stmt->stmtText ? stmt->textLen : 0);
  if (!edge) return edge.fail(errhp);
  const std::size_t room = edge.size() + zev::terminatorSize(env);
  void *copy = AllocateMemFromStmtCache(stmt, room);
  if (!copy) return zev::fail(errhp, 16506);
  edge.copyInto(copy, room);
  zev::putAttribute(value, copy);
  return OCI_SUCCESS;
}

/// Drops the statement's server objects as far as the server can still be reached.
void dropServerObjects(OCIStmt *stmt) {
  if (PortalState *cursor = stmt->cursor) {
    if (OCIServer *server = cursor->server) {
      debugLogCursors(server->conn, "Free_OCIStmt, before");
      debugLogPreparedStmts(server->conn, "Free_OCIStmt, before");
      deallocateCursor(server, stmt, nullptr, 1);
      debugLogCursors(server->conn, "Free_OCIStmt, after");
      debugLogPreparedStmts(server->conn, "Free_OCIStmt, after");
    }
    // What a broken connection could not drop is gone with its session.
    std::free(cursor->stmtName);
    std::free(cursor->portalName);
    std::free(cursor);
    stmt->cursor = nullptr;
  }
  if (stmt->preparedName && stmt->service && stmt->service->server) {
    deallocateCursor(stmt->service->server, stmt, nullptr, 1);
  }
}

/// Makes all that stays in the environment forget a statement that goes away.
void leaveEnvironment(const OCIEnv *env, const OCIStmt *stmt) {
  for (OCIHandle *child : zev::Elements<OCIHandle>(env->children)) {
    OCISvcCtx *svchp = zev::asService(child);
    if (svchp && svchp == stmt->service) svchp->stmts = list_delete(svchp->stmts, stmt);
    OCIParam *param = zev::asParam(child);
    if (param && param->source == stmt) zev::forgetSource(param);
  }
}

}  // namespace

void zev::freeBinds(OCIStmt *stmt) {
  for (OCIBind *bind : Elements<OCIBind>(stmt->binds)) Free_OCIBind(bind);
  list_free(stmt->binds);
  stmt->binds = nullptr;
  list_free(stmt->placeholderBinds);
  stmt->placeholderBinds = nullptr;
  stmt->returnBind = nullptr;
}

void zev::freeDefines(OCIStmt *stmt) {
  for (OCIDefine *define : Elements<OCIDefine>(stmt->defines)) Free_OCIDefine(define);
  list_free(stmt->defines);
  stmt->defines = nullptr;
  forgetFetchPlan(stmt);
}

void zev::freeText(char *&text) {
  std::free(text);
  text = nullptr;
}

extern "C" {

OCIStmt *Alloc_OCIStmt() {
  return zev::allocHandle<OCIStmt>(HANDLE_OCIStmt);
}

void Free_OCIStmt(OCIStmt *h) {
  if (!zev::asStmt(h)) return;
  ZEV_ASSERT(h->parenth, "h->parenth != ((void *)0)");
  ZEV_ASSERT(static_cast<OCIHandle *>(h->parenth)->handleType == HANDLE_OCIEnv,
             "((OCIHandle *) h->parenth)->handleType == HANDLE_OCIEnv");
  leaveEnvironment(static_cast<OCIEnv *>(h->parenth), h);
  zev::freeBinds(h);
  zev::freeDefines(h);
  zev::freeListAndMembers(h->placeholderNames);
  zev::dropResults(h);
  zev::abandonBulk(h);
  dropServerObjects(h);
  for (char *text :
       {h->stmtText, h->callText, h->preparedName, h->returnParam, h->procName}) {
    std::free(text);
  }
  std::free(h->cacheKey);
  std::free(h->heldKey);
  std::free(h->paramDirs);
  zev::freeFetchPlan(h);
  FreeMemFromStmtCache(h);
  zev::freeHandle(h);
}

void *AllocateMemFromStmtCache(OCIStmt *stmt, std::size_t size) {
  return zev::asStmt(stmt) ? zev::allocateInCache(stmt->memCache, size) : nullptr;
}

void FreeMemFromStmtCache(OCIStmt *stmt) {
  if (zev::asStmt(stmt)) zev::freeListAndMembers(stmt->memCache);
}

void InitializeChildStmt(OCIStmt *child) {
  child->prepared = 1;
  child->serverPrepared = 1;
  child->executed = 0;
  child->language = OCI_NTV_SYNTAX;
  child->mode = OCI_DEFAULT;
  child->stmtType = OCI_STMT_SELECT;
  child->isRefCursor = 1;
  child->paramCount = 0;
  child->hasOutParams = 0;
  const std::size_t size = std::strlen(child->preparedName) + sizeof "FETCH NEXT IN \"\"";
  std::free(child->stmtText);
  child->stmtText = static_cast<char *>(std::malloc(size));
  if (!child->stmtText) {
    child->textLen = 0;
    return;
  }
  child->textLen = static_cast<ub4>(
      std::snprintf(child->stmtText, size, "FETCH NEXT IN \"%s\"", child->preparedName));
}

sword Get_OCIStmt(OCIStmt *stmt, void *value, ub4 *, ub4 attribute, OCIError *errhp) {
  if (!zev::asStmt(stmt) || !zev::parentEnv(stmt) || !zev::asError(errhp) || !value) {
    return OCI_INVALID_HANDLE;
  }
  switch (attribute) {
    case OCI_ATTR_ENV:
      zev::putAttribute(value, stmt->parenth);
      return OCI_SUCCESS;
    case OCI_ATTR_ROW_COUNT:
      zev::putAttribute(value, rowCount(stmt));
      return OCI_SUCCESS;
    case OCI_ATTR_PARAM_COUNT: {
      const bool isQuery = stmt->stmtType == OCI_STMT_SELECT;
      zev::putAttribute<ub4>(value,
                             isQuery ? static_cast<ub4>(PQnfields(stmt->pgResult)) : 0);
      return OCI_SUCCESS;
    }
    case OCI_ATTR_STMT_TYPE:
      zev::putAttribute(value, publishedType(stmt));
      return OCI_SUCCESS;
    case OCI_ATTR_STATEMENT:
      return getText(stmt, value, errhp);
    case OCI_ATTR_CURRENT_POSITION:
      zev::putAttribute<ub4>(value, stmt->cursor ? stmt->cursor->currentRow : 0);
      return OCI_SUCCESS;
    case OCI_ATTR_STMT_STATE:
      zev::putAttribute(value, statementState(stmt));
      return OCI_SUCCESS;
    case OCI_ATTR_ROWS_FETCHED:
      zev::putAttribute<ub4>(value, stmt->pgResult ? stmt->rowsFetched : 0);
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_CURSOR_STRATEGY:
      zev::putAttribute(value, stmt->cursorStrategy);
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_HOLD_POLICY:
      zev::putAttribute(value, stmt->holdPolicy);
      return OCI_SUCCESS;
    default:
      return zev::fail(errhp, 24328);
  }
}

sword Set_OCIStmt(OCIStmt *stmt, void *value, ub4, ub4 attribute, OCIError *errhp) {
  if (!zev::asStmt(stmt) || !zev::parentEnv(stmt) || !zev::asError(errhp) || !value) {
    return OCI_ERROR;
  }
  switch (attribute) {
    case OCI_ATTR_PREFETCH_ROWS:
      stmt->prefetchRows = zev::takeAttribute<ub4>(value);
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_CURSOR_STRATEGY:
      return zev::storeCursorStrategy(stmt->cursorStrategy, value, errhp);
    case ZEVOCI_ATTR_HOLD_POLICY:
      return zev::storeHoldPolicy(stmt->holdPolicy, value, errhp);
    default:
      return zev::fail(errhp, 24328);
  }
}

}  // extern "C"
