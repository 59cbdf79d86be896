#include <cstring>
#include <string>

#include "core/cursor_attributes.h"
#include "core/memory_cache.h"
#include "core/wire.h"
#include "pqext/pqext.h"
#include "stmt/bind_data.h"
#include "stmt/execute.h"
#include "stmt/execute_bulk.h"
#include "stmt/fetch.h"
#include "stmt/fill.h"
#include "stmt/names.h"
#include "stmt/placeholder.h"
#include "stmt/result.h"
#include "stmt/statement_text.h"
#include "zevoci/trace.h"

namespace {

using zev::Execution;

/// The value in force of an attribute that a statement takes from its server unless it
/// has its own.
ub4 inForce(ub4 own, ub4 inherited) {
  return own ? own : inherited;
}

bool isDeclared(const Execution &x) {
  return inForce(x.stmt->cursorStrategy, x.server->cursorStrategy) ==
         zev::kStrategyDeclared;
}

/// Whether the prepared statement behind a portal stands. A declared cursor has none, so
/// that a statement whose strategy changes is prepared then.
bool standsPrepared(const OCIStmt *stmt) {
  return stmt->serverPrepared && stmt->cursor && stmt->cursor->stmtName;
}

bool isScrollable(const OCIStmt *stmt) {
  return stmt->execMode == OCI_STMT_SCROLLABLE_READONLY;
}

/// Rewrites for a description, where placeholders need no binds.
class DescribedText {
 public:
  explicit DescribedText(OCIStmt *stmt) {
    zev::freeListAndMembers(stmt->placeholderNames);
    char *query = nullptr;
    stmt->placeholderNames =
        ReplacePlaceholdersEx(nullptr, stmt->stmtText, &query, &stmt->paramCount);
    query_.reset(query);
  }
  const char *query() const { return query_.get(); }

 private:
  zev::Malloced<> query_;
};

/// Makes the prepared statement behind the portals of a SELECT.
sword prepareSelect(const Execution &x, const char *query, const Oid *types) {
  OCIStmt *stmt = x.stmt;
  if (!query) return zev::fail(x.errhp, 16506);
  zev::traceRewriting(stmt->stmtText, query);
  ZEV_ASSERT(stmt->cursor->stmtName == nullptr, "stmtp->cursor->stmtName == ((void *)0)");
  zev::Malloced<> name(zev::nextStatementName());
  if (!name) return zev::fail(x.errhp, 16506);
  zev::PgResult result;
  {
    const zev::NoticeScope notices(x.server->conn, x.errhp);
    result = zev::wire::prepare(x.server->conn, name.get(), query,
                                static_cast<int>(stmt->paramCount), types);
  }
  ocitrace(kTracePortals, "prepareSelect", "prepared %s for(%s)\n", name.get(), query);
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    return zev::failAndRollBack(x.server, x.errhp, result.get());
  }
  PQextRememberPrepared(x.server->conn, name.get(), query,
                        static_cast<int>(stmt->paramCount), types);
  stmt->cursor->stmtName = name.release();
  stmt->serverPrepared = 1;
  stmt->pgPreparedServer = x.server;
  return OCI_SUCCESS;
}

/// Makes sure that the statement stands on the server and its binds are in "$n" order.
sword settleStatement(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  if (standsPrepared(stmt)) {
    if (!stmt->placeholderBinds) const zev::RewrittenText bindsOnly(stmt, stmt->stmtText);
    return OCI_SUCCESS;
  }
  ZEV_ASSERT(stmt->pgPreparedServer == nullptr, "stmtp->pgPreparedServer == ((void *)0)");
  if (stmt->execMode == OCI_DESCRIBE_ONLY) {
    const DescribedText described(stmt);
    return prepareSelect(x, described.query(), nullptr);
  }
  const zev::RewrittenText rewritten(stmt, stmt->stmtText);
  return prepareSelect(x, rewritten.query(), rewritten.types());
}

sword describeStatement(const Execution &x) {
  zev::holdResult(x.stmt,
                  zev::wire::describePrepared(x.server->conn, x.stmt->cursor->stmtName));
  if (PQresultStatus(x.stmt->pgResult) == PGRES_COMMAND_OK) return OCI_SUCCESS;
  zev::failAndRollBack(x.server, x.errhp, x.stmt->pgResult);
  zev::holdResult(x.stmt, nullptr);
  return OCI_ERROR;
}

/// How many rows a first fetch asks for and how many of them it delivers.
struct FirstRows {
  ub4 asked;
  ub4 delivered;
};

FirstRows planFirstRows(const OCIStmt *stmt, ub4 iters) {
  if (stmt->execMode == OCI_EXACT_FETCH) return {iters + 1, iters};
  if (stmt->prefetchRows && iters < 2) return {stmt->prefetchRows, 1};
  return {iters, iters};
}

/// Whether the execution that opens a portal goes on to fetch from it.
bool willFetch(const Execution &x) {
  return x.iters && !x.server->nonBlocking && !x.rowoff && x.stmt->defines &&
         x.stmt->execMode != OCI_PARSE_ONLY;
}

/// Opens the portal over the converted binds, which are released.
sword openPortal(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  PortalState *cursor = stmt->cursor;
  PGconn *conn = x.server->conn;
  zev::ParameterArrays arrays(stmt->placeholderBinds);
  arrays.gather();
  const zev::wire::Parameters parameters = arrays.parameters(stmt->paramCount);
  zev::traceSending(x, stmt->stmtText);
  zev::freeText(cursor->portalName);
  cursor->portalName = zev::nextPortalName();
  ZEV_ASSERT(cursor->portalName, "stmtp->cursor->portalName != ((void *)0)");
  ocitrace(kTracePortals, "openPortal", "opened portal %s\n", cursor->portalName);

  const zev::NoticeScope notices(conn, x.errhp);
  PQextScrollNext(conn, isScrollable(stmt));
  if (willFetch(x)) PQextExpectFetch(conn, planFirstRows(stmt, x.iters).asked);
  const int sent =
      PQsendBindPrepared(conn, cursor->portalName, cursor->stmtName, parameters.count,
                         parameters.values, parameters.lengths, parameters.formats, 0);
  release_binds_pgdata(stmt->binds);
  if (!sent) return zev::failAndRollBack(x.server, x.errhp, PQerrorMessage(conn));
  const zev::PgResult result(PQextGetResult(conn));
  if (const zev::PgResult second(PQextGetResult(conn)); second) {
    return zev::failAndRollBack(x.server, x.errhp, "unexpected result set");
  }
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    return zev::failAndRollBack(x.server, x.errhp, result.get());
  }
  cursor->state = kPortalOpen;
  return OCI_SUCCESS;
}

/// The portal of a former execution is closed in the round trip that opens the next one.
void closeWithNext(const Execution &x) {
  PortalState *cursor = x.stmt->cursor;
  const bool isOurs = cursor && cursor->server == x.server && cursor->portalName &&
                      standsPrepared(x.stmt) && x.stmt->execMode != OCI_DESCRIBE_ONLY;
  if (!isOurs) return;
  ocitrace(kTracePortals, "closePortal", "closing %s\n", cursor->portalName);
  PQextCloseLater(x.server->conn, cursor->portalName);
  zev::freeText(cursor->portalName);
}

/// Opens the transaction, together with the portal where nothing has to be prepared
/// first.
void beginWithPortal(const Execution &x) {
  if (standsPrepared(x.stmt) && x.stmt->execMode != OCI_DESCRIBE_ONLY) {
    PQextBeginFirst(x.server->conn);
  } else {
    START_TRANSACTION(x.server->conn);
  }
}

std::optional<sword> openByPortal(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  closeWithNext(x);
  if (const sword status = prepareCursor(x.server, stmt, x.errhp); status != 0)
    return status;
  zev::freeText(stmt->callText);
  beginWithPortal(x);
  if (const sword status = settleStatement(x); status != OCI_SUCCESS) return status;
  ClearOCIStmtResultset(x.server, stmt);
  if (stmt->execMode == OCI_DESCRIBE_ONLY) return describeStatement(x);
  if (const sword status = GetOCIBindData(stmt, x.errhp, x.rowoff);
      !zev::isSuccess(status)) {
    PQextFlush(x.server->conn);
    return status;
  }
  if (const sword status = openPortal(x); status != OCI_SUCCESS) return status;
  return std::nullopt;
}

/// The text that declares a statement's cursor.
std::string declaration(const OCIStmt *stmt) {
  return std::string("DECLARE ") + stmt->cursor->portalName +
         (isScrollable(stmt) ? " SCROLL" : " NO SCROLL") + " CURSOR WITH HOLD FOR " +
         stmt->stmtText;
}

/// Sends the declaration with the statement's binds, which are released.
sword declareCursor(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  const zev::RewrittenText rewritten(stmt, stmt->callText);
  if (!rewritten.query()) return zev::fail(x.errhp, 16506);
  ClearOCIStmtResultset(x.server, stmt);
  zev::traceRewriting(stmt->callText, rewritten.query());
  if (const sword status = GetOCIBindData(stmt, x.errhp, x.rowoff);
      !zev::isSuccess(status)) {
    return status;
  }
  zev::ParameterArrays arrays(stmt->placeholderBinds);
  arrays.gather();
  zev::wire::Parameters parameters = arrays.parameters(stmt->paramCount);
  parameters.types = rewritten.types();
  zev::traceSending(x, stmt->callText);
  zev::PgResult result;
  {
    const zev::NoticeScope notices(x.server->conn, x.errhp);
    result = zev::wire::execParams(x.server->conn, rewritten.query(), parameters);
  }
  release_binds_pgdata(stmt->binds);
  if (result && PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    return zev::failAndRollBack(x.server, x.errhp, result.get());
  }
  return OCI_SUCCESS;
}

std::optional<sword> openByDeclaration(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  if (const sword status = prepareCursor(x.server, stmt, x.errhp); status != 0)
    return status;
  zev::freeText(stmt->callText);
  zev::freeText(stmt->cursor->portalName);
  stmt->cursor->portalName = zev::nextCursorName();
  if (!stmt->cursor->portalName) return zev::fail(x.errhp, 16506);
  stmt->callText = strdup(declaration(stmt).c_str());
  if (!stmt->callText) return zev::fail(x.errhp, 16506);

  const ub4 policy = inForce(stmt->holdPolicy, x.server->holdPolicy);
  if (policy == zev::kHoldInherited) START_TRANSACTION(x.server->conn);
  if (const sword status = declareCursor(x); status != OCI_SUCCESS) return status;
  stmt->serverPrepared = 1;
  stmt->cursor->state = kPortalOpen;
  if (policy == zev::kHoldCommitted) COMMIT_TRANSACTION(x.server->conn);
  if (stmt->execMode == OCI_DESCRIBE_ONLY) return OCI_SUCCESS;
  return std::nullopt;
}

sword describePortal(const Execution &x) {
  zev::holdResult(x.stmt,
                  zev::wire::describePortal(x.server->conn, x.stmt->cursor->portalName));
  if (PQresultStatus(x.stmt->pgResult) == PGRES_COMMAND_OK) return OCI_SUCCESS;
  zev::failAndRollBack(x.server, x.errhp, x.stmt->pgResult);
  zev::holdResult(x.stmt, nullptr);
  return OCI_ERROR;
}

/// Delivers the rows of a first fetch that has some.
sword deliverFirstRows(const Execution &x, const FirstRows &rows) {
  OCIStmt *stmt = x.stmt;
  PortalState *cursor = stmt->cursor;
  cursor->currentRow += static_cast<ub4>(PQntuples(stmt->pgResult));
  if (cursor->maxRow < cursor->currentRow) cursor->maxRow = cursor->currentRow;
  stmt->resultRowPos = 0;
  const sword notice = zev::noticeStatus(x.errhp);
  const sword filled = zev::fillDefines(stmt, x.errhp, rows.delivered);
  stmt->heldDelivered = stmt->rowsFetched;
  if (stmt->execMode == OCI_EXACT_FETCH && stmt->prefetchedRows == rows.asked) {
    zev::fail(x.errhp, 1422, o2pGetErrorText(1422));
    zev::dropResults(stmt);
    return OCI_ERROR;
  }
  ++stmt->prefetchConsumed;
  return filled != OCI_SUCCESS ? filled : notice;
}

}  // namespace

std::optional<sword> zev::openSelect(const Execution &x) {
  return isDeclared(x) ? openByDeclaration(x) : openByPortal(x);
}

sword zev::fetchFirstRows(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  stmt->prefetchedRows = 0;
  stmt->prefetchConsumed = 0;
  stmt->heldDelivered = 0;
  if (x.server->nonBlocking) {
    return continueAsyncSelect(x.server, x.stmt, x.errhp, x.iters, x.rowoff);
  }
  if (x.rowoff) return fail(x.errhp, 1002);
  if (!x.iters) return describePortal(x);
  ZEV_ASSERT(stmt->cursor, "cursor != ((void *)0)");
  traceSending(x, stmt->stmtText);

  const FirstRows rows = planFirstRows(stmt, x.iters);
  if (stmt->execMode == OCI_EXACT_FETCH) stmt->prefetchRows = 0;
  {
    const NoticeScope notices(x.server->conn, x.errhp);
    const sword status =
        fetchBatch(x.server, stmt, x.errhp, stmt->cursor->portalName, rows.asked);
    if (status != OCI_SUCCESS) return status;
  }
  ocitrace(kTraceResults, "ExecuteOCIStmt", "stmtp(%p) ntuples(%d) nfields(%d)\n",
           static_cast<void *>(stmt), PQntuples(stmt->pgResult),
           PQnfields(stmt->pgResult));
  if (simpleCommandFailed(stmt->pgResult)) {
    failAndRollBack(x.server, x.errhp, stmt->pgResult);
    dropResults(stmt);
    return OCI_ERROR;
  }
  if (PQntuples(stmt->pgResult)) return deliverFirstRows(x, rows);
  takeNotice(x.errhp);
  dropResults(stmt);
  return OCI_NO_DATA;
}
