#include <cstdlib>
#include <cstring>

#include "core/wire.h"
#include "stmt/bind_data.h"
#include "stmt/execute.h"
#include "stmt/names.h"
#include "stmt/placeholder.h"
#include "stmt/result.h"
#include "stmt/statement_text.h"
#include "zevoci/trace.h"

namespace {

using zev::Execution;

/// Prepares `query` under a new name, which the statement keeps on success.
sword prepareNamed(const Execution &x, zev::Malloced<> name, const char *query,
                   const Oid *types) {
  OCIStmt *stmt = x.stmt;
  zev::traceRewriting(stmt->stmtText, query);
  zev::PgResult result;
  {
    const zev::NoticeScope notices(x.server->conn, x.errhp);
    result = zev::wire::prepare(x.server->conn, name.get(), query,
                                static_cast<int>(stmt->paramCount), types);
  }
  zev::takeNotice(x.errhp);
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    return zev::failAndRollBack(x.server, x.errhp, result.get());
  }
  ocitrace(kTracePortals, "prepareOnServer", "prepared %s for(%s)\n", name.get(), query);
  stmt->preparedName = name.release();
  return OCI_SUCCESS;
}

sword prepareText(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  zev::Malloced<> name(zev::nextStatementName());
  if (!name) return zev::fail(x.errhp, 16506);
  if (!stmt->binds) {
    stmt->paramCount = 0;
    return prepareNamed(x, std::move(name), stmt->stmtText, nullptr);
  }
  const zev::RewrittenText rewritten(stmt, stmt->stmtText);
  if (!rewritten.query()) return zev::fail(x.errhp, 16506);
  if (!stmt->placeholderBinds) return zev::fail(x.errhp, 24305);
  return prepareNamed(x, std::move(name), rewritten.query(), rewritten.types());
}

/// What the server made of one row of a DML statement.
sword takeOutcome(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  switch (PQresultStatus(stmt->pgResult)) {
    case PGRES_COMMAND_OK:
      return zev::takeNotice(x.errhp) ? OCI_SUCCESS_WITH_INFO : OCI_SUCCESS;
    case PGRES_TUPLES_OK:
      zev::holdResult(stmt, nullptr);
      return zev::failAndRollBack(x.server, x.errhp,
                                  "Support for RETURNING clause is not yet implemented");
    default:
      zev::failAndRollBack(x.server, x.errhp, stmt->pgResult);
      zev::holdResult(stmt, nullptr);
      return OCI_ERROR;
  }
}

sword executeRow(const Execution &x, zev::ParameterArrays &arrays, ub4 iteration) {
  OCIStmt *stmt = x.stmt;
  ClearOCIStmtResultset(x.server, stmt);
  const sword status = GetOCIBindData(stmt, x.errhp, iteration);
  if (status < 0 || status > OCI_SUCCESS_WITH_INFO) return status;
  arrays.gather();
  {
    const zev::NoticeScope notices(x.server->conn, x.errhp);
    zev::holdResult(stmt, zev::wire::execPrepared(x.server->conn, stmt->preparedName,
                                                  arrays.parameters(stmt->paramCount)));
  }
  release_binds_pgdata(stmt->binds);
  return takeOutcome(x);
}

}  // namespace

zev::RewrittenText::RewrittenText(OCIStmt *stmt, const char *text) {
  list_free(stmt->placeholderBinds);
  stmt->placeholderBinds =
      ReplacePlaceholders(stmt->binds, text, static_cast<ub4>(std::strlen(text)), &query_,
                          &stmt->paramCount, &types_, &directions_);
}

zev::RewrittenText::~RewrittenText() {
  std::free(query_);
  std::free(types_);
  std::free(directions_);
}

void zev::traceRewriting(const char *original, const char *query) {
  ocitrace(kTraceStatement, "ReplacePlaceholders", "original - %s\n", original);
  ocitrace(kTraceStatement, "ReplacePlaceholders", "pg form  - %s\n", query);
}

void zev::traceSending(const Execution &x, const char *text) {
  ocitrace(kTraceStatement, "ExecuteOCIStmt",
           "stmtp(%p), svrhp(%p), conn(%p), stmt(%s)\n", static_cast<void *>(x.stmt),
           static_cast<void *>(x.server), static_cast<void *>(x.server->conn), text);
}

sword zev::prepareOnServer(const Execution &x) {
  const sword status = prepareText(x);
  x.stmt->serverPrepared = 1;
  x.stmt->pgPreparedServer = x.server;
  return status;
}

extern "C" sword ExecuteDMLStmt(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                                ub4 iters, ub4 rowoff) {
  if (!zev::asServer(server) || !zev::asStmt(stmt) || !zev::asError(errhp)) {
    return OCI_INVALID_HANDLE;
  }
  if (stmt->paramCount && list_length(stmt->placeholderBinds) != stmt->paramCount) {
    return OCI_ERROR;
  }
  const Execution x{server, stmt, errhp, iters, rowoff};
  zev::ParameterArrays arrays(stmt->paramCount ? stmt->placeholderBinds : nullptr);
  sword status = OCI_SUCCESS;
  for (ub4 iteration = rowoff; iteration < iters; ++iteration) {
    status = executeRow(x, arrays, iteration);
    if (status < 0 || status > OCI_SUCCESS_WITH_INFO) return status;
  }
  return status;
}
