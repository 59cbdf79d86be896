#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "core/wire.h"
#include "pqext/pqext.h"
#include "stmt/bind_data.h"
#include "stmt/execute.h"
#include "stmt/execute_block.h"
#include "stmt/names.h"
#include "stmt/placeholder.h"
#include "stmt/result.h"
#include "stmt/statement_text.h"
#include "zevoci/trace.h"

namespace {

using zev::Execution;

/// What is about to be prepared: a rewritten text, or one without placeholders.
struct Preparation {
  const char *name = nullptr;
  const char *query;
  const Oid *types = nullptr;
  const ub4 *directions = nullptr;
};

/// Sends a statement to be prepared without waiting for the answer, which the next
/// command takes. False when it could not be sent.
bool sendPreparation(const Execution &x, const Preparation &p) {
  if (x.stmt->isCallable) {
    return zev::sendPrepareCall(x, p.name, p.query, p.types, p.directions);
  }
  return zev::wire::sendPrepare(x.server->conn, p.name, p.query,
                                static_cast<int>(x.stmt->paramCount), p.types);
}

zev::PgResult awaitPreparation(const Execution &x, const Preparation &p) {
  if (x.stmt->isCallable) {
    return zev::prepareCall(x, p.name, p.query, p.types, p.directions);
  }
  return zev::wire::prepare(x.server->conn, p.name, p.query,
                            static_cast<int>(x.stmt->paramCount), p.types);
}

/// Prepares a statement; a non-blocking server's answer is not awaited. The status is
/// that of the call.
sword prepareAs(const Execution &x, const Preparation &p) {
  zev::traceRewriting(x.stmt->stmtText, p.query);
  const zev::NoticeScope notices(x.server->conn, x.errhp);
  if (x.server->nonBlocking) {
    if (sendPreparation(x, p)) return OCI_SUCCESS;
    return zev::failAndRollBack(x.server, x.errhp, PQerrorMessage(x.server->conn));
  }
  const zev::PgResult result = awaitPreparation(x, p);
  zev::takeNotice(x.errhp);
  if (PQresultStatus(result.get()) == PGRES_COMMAND_OK) return OCI_SUCCESS;
  return zev::failAndRollBack(x.server, x.errhp, result.get());
}

/// Prepares under a new name, which the statement keeps on success.
sword prepareNamed(const Execution &x, Preparation p) {
  OCIStmt *stmt = x.stmt;
  zev::Malloced<> name(zev::nextStatementName());
  if (!name) return zev::fail(x.errhp, 16506);
  p.name = name.get();
  if (const sword status = prepareAs(x, p); status != OCI_SUCCESS) return status;
  ocitrace(kTracePortals, "prepareOnServer", "prepared %s for(%s)\n", p.name, p.query);
  if (!stmt->isCallable) {
    PQextRememberPrepared(x.server->conn, p.name, p.query,
                          static_cast<int>(stmt->paramCount), p.types);
  }
  stmt->preparedName = name.release();
  return OCI_SUCCESS;
}

sword prepareText(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  const char *text = stmt->isCallable ? stmt->callText : stmt->stmtText;
  if (!stmt->binds) {
    stmt->paramCount = 0;
    return prepareNamed(x, {.query = text});
  }
  const zev::RewrittenText rewritten(stmt, text);
  if (!rewritten.query()) return zev::fail(x.errhp, 16506);
  if (!stmt->placeholderBinds && !stmt->returnParam) return zev::fail(x.errhp, 24305);
  return prepareNamed(x, {.query = rewritten.query(),
                          .types = rewritten.types(),
                          .directions = rewritten.directions()});
}

/// What the server made of one row of a DML statement.
sword takeOutcome(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  switch (PQresultStatus(stmt->pgResult)) {
    case PGRES_COMMAND_OK:
      return zev::noticeStatus(x.errhp);
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

/// Runs one row and holds its result. A non-blocking server's answer is not awaited, and
/// without one the row counts as failed.
void sendRow(const Execution &x, const zev::wire::Parameters &parameters) {
  OCIStmt *stmt = x.stmt;
  const zev::NoticeScope notices(x.server->conn, x.errhp);
  if (x.server->nonBlocking) {
    zev::wire::sendPrepared(x.server->conn, stmt->preparedName, parameters);
    return;
  }
  zev::holdResult(
      stmt, zev::wire::execPrepared(x.server->conn, stmt->preparedName, parameters));
}

sword executeRow(const Execution &x, zev::ParameterArrays &arrays, ub4 iteration) {
  OCIStmt *stmt = x.stmt;
  ClearOCIStmtResultset(x.server, stmt);
  const sword status = GetOCIBindData(stmt, x.errhp, iteration);
  if (!zev::isSuccess(status)) return status;
  arrays.gather();
  sendRow(x, arrays.parameters(stmt->paramCount));
  release_binds_pgdata(stmt->binds);
  return takeOutcome(x);
}

/// Whether several rows may go out in one round trip. Where a failing statement keeps its
/// transaction, the rows behind one that returns rows must not run; and a callback is
/// asked for a row only when those before it are done.
bool mayShareTrip(const Execution &x) {
  if (x.iters - x.rowoff < 2 || x.server->nonBlocking || x.server->stmtLevelTx) {
    return false;
  }
  const auto isDynamic = [](const OCIBind *bind) { return bind && bind->isDynamic; };
  const zev::Elements<OCIBind> binds(x.stmt->binds);
  return std::none_of(binds.begin(), binds.end(), isDynamic);
}

/// The rows of one round trip at most, which bounds the memory of their values.
constexpr int kRowsPerTrip = 1000;

/// Runs the rows that have been converted, and holds the last result.
sword sendRows(const Execution &x, zev::RowValues &rows) {
  OCIStmt *stmt = x.stmt;
  if (rows.count() == 0) return OCI_SUCCESS;
  ClearOCIStmtResultset(x.server, stmt);
  {
    const zev::NoticeScope notices(x.server->conn, x.errhp);
    zev::holdResult(
        stmt, zev::PgResult(PQextExecRows(
                  x.server->conn, stmt->preparedName, static_cast<int>(stmt->paramCount),
                  rows.count(), rows.values(), rows.lengths(), rows.formats())));
  }
  rows.clear();
  return takeOutcome(x);
}

/// An error handle for what the program is not to see, under the environment of its own.
class ScratchError {
 public:
  explicit ScratchError(const OCIError *of) : errhp_(Alloc_OCIError()) {
    if (!errhp_) throw std::bad_alloc();
    errhp_->parenth = of->parenth;
  }
  ~ScratchError() { Free_OCIError(errhp_); }
  ScratchError(const ScratchError &) = delete;
  ScratchError &operator=(const ScratchError &) = delete;
  OCIError *get() const { return errhp_; }

 private:
  OCIError *errhp_;
};

/// All rows, many to a round trip. A row whose conversion has something to say runs by
/// itself, behind those before it, so that nothing is recorded out of turn.
sword executeRowsTogether(const Execution &x, zev::ParameterArrays &arrays) {
  OCIStmt *stmt = x.stmt;
  const ScratchError scratch(x.errhp);
  zev::RowValues rows(stmt->placeholderBinds, stmt->paramCount);
  sword worst = OCI_SUCCESS;
  for (ub4 iteration = x.rowoff; iteration < x.iters; ++iteration) {
    const bool isQuiet = GetOCIBindData(stmt, scratch.get(), iteration) == OCI_SUCCESS;
    if (isQuiet) rows.take(stmt->binds);
    const bool isLast = iteration + 1 == x.iters;
    if (isQuiet && !isLast && rows.count() < kRowsPerTrip) continue;
    release_binds_pgdata(stmt->binds);
    sword status = sendRows(x, rows);
    if (zev::isSuccess(status) && !isQuiet) {
      worst = std::max(worst, status);
      status = executeRow(x, arrays, iteration);
    }
    if (!zev::isSuccess(status)) return status;
    worst = std::max(worst, status);
  }
  return worst;
}

sword executeRowByRow(const Execution &x, zev::ParameterArrays &arrays) {
  sword worst = OCI_SUCCESS;
  for (ub4 iteration = x.rowoff; iteration < x.iters; ++iteration) {
    const sword status = executeRow(x, arrays, iteration);
    if (!zev::isSuccess(status)) return status;
    worst = std::max(worst, status);
  }
  return worst;
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
  if (iters <= rowoff) return OCI_SUCCESS;
  if (!mayShareTrip(x)) return executeRowByRow(x, arrays);
  try {
    return executeRowsTogether(x, arrays);
  } catch (const std::bad_alloc &) {
    release_binds_pgdata(stmt->binds);
    return zev::fail(errhp, 16506);
  }
}
