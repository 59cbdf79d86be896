/// The roads of an execution.
#pragma once

#include <optional>

#include "stmt/portal.h"
#include "zevoci/statement.h"
#include "zevoci/transaction.h"

extern "C" {
/// Sends a statement whose server side stands, by its type.
ZEV_HELPER sword ExecuteOCIStmt(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                                ub4 iters, ub4 rowoff);
/// Runs a prepared non-SELECT once for each row from `rowoff` to `iters` - 1.
ZEV_HELPER sword ExecuteDMLStmt(OCIServer *server, OCIStmt *stmt, OCIError *errhp,
                                ub4 iters, ub4 rowoff);
}

namespace zev {

/// One call of OCIStmtExecute.
struct Execution {
  OCIServer *server;
  OCIStmt *stmt;
  OCIError *errhp;
  ub4 iters;
  ub4 rowoff;
};

/// Opens the portal or declared cursor of a SELECT. A status ends the call; none goes on
/// to the first rows.
std::optional<sword> openSelect(const Execution &x);

/// Fetches the first rows of an open SELECT, or describes it for no rows.
sword fetchFirstRows(const Execution &x);

/// Makes the server-side prepared statement of a non-SELECT. 0 or -1; in both outcomes
/// the statement counts as prepared.
sword prepareOnServer(const Execution &x);

/// A statement's text rewritten for its binds.
class RewrittenText {
 public:
  /// Rewrites `text` and makes the found binds the statement's placeholderBinds and
  /// paramCount.
  RewrittenText(OCIStmt *stmt, const char *text);
  ~RewrittenText();
  RewrittenText(const RewrittenText &) = delete;
  RewrittenText &operator=(const RewrittenText &) = delete;

  const char *query() const { return query_; }
  const Oid *types() const { return types_; }
  const ub4 *directions() const { return directions_; }

 private:
  char *query_ = nullptr;
  Oid *types_ = nullptr;
  ub4 *directions_ = nullptr;
};

/// Traces a statement's text before and after rewriting.
void traceRewriting(const char *original, const char *query);
/// Traces what is about to be sent.
void traceSending(const Execution &x, const char *text);

}  // namespace zev
