#include "stmt/execute_block.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/wire.h"
#include "pqext/pqext.h"
#include "stmt/bind_data.h"
#include "stmt/out_values.h"
#include "stmt/result.h"
#include "zevoci/text.h"
#include "zevoci/trace.h"

namespace {

using zev::Execution;

/// The first server whose catalogue tells the modes of arguments.
constexpr sb4 kFirstWithArgumentModes = 80400;

std::string lowered(const char *name) {
  std::string copy(name ? name : "");
  str_tolower(copy.data());
  return copy;
}

/// The name up to its first ".".
std::string beforeDot(std::string name) {
  name.resize(std::min(name.size(), name.find('.')));
  return name;
}

zev::PgResult ask(PGconn *conn, const std::string &question) {
  return zev::wire::exec(conn, question.c_str());
}

/// Asks whether the routine has defaults, and for its number of arguments if it has. The
/// answers change nothing.
void askForDefaults(PGconn *conn, const char *procName) {
  const std::string name = lowered(procName);
  const zev::PgResult defaults =
      ask(conn, "select pronargdefaults from pg_proc where proname = '" +
                    beforeDot(name) + "'");
  if (PQresultStatus(defaults.get()) != PGRES_TUPLES_OK || !PQntuples(defaults.get())) {
    return;
  }
  const char *count = PQgetvalue(defaults.get(), 0, 0);
  if (!*count || std::strcmp(count, "0") == 0) return;
  ask(conn, "select pronargs from pg_proc where proname = '" + name + "'");
}

/// Reads the catalogue's list of modes, "{i,o,b}", into the directions. A mode that no
/// call can serve leaves those behind it as they are.
void readModes(OCIStmt *stmt, const char *modes, ub4 *directions) {
  if (!*modes) {
    std::fill_n(directions, stmt->paramCount, kParamIn);
    stmt->argModesKnown = 1;
    return;
  }
  if (*modes != '{') return;
  ub4 known = 0;
  for (; *modes; ++modes) {
    switch (*modes) {
      case '{':
      case ',':
        continue;
      case 'i':
        directions[known++] = kParamIn;
        break;
      case 'o':
        directions[known++] = kParamOut;
        stmt->hasOutParams = 1;
        break;
      case 'b':
        directions[known++] = kParamInOut;
        stmt->hasOutParams = 1;
        break;
      case '}':
        stmt->argModesKnown = 1;
        return;
      default:
        return;
    }
    if (known == stmt->paramCount) {
      stmt->argModesKnown = 1;
      return;
    }
  }
}

/// Settles the directions of the call's parameters, of which the catalogue's answer for
/// the first routine of that name decides. False when memory runs out.
bool settleDirections(const Execution &x, const ub4 *ofBinds) {
  OCIStmt *stmt = x.stmt;
  PGconn *conn = x.server->conn;
  if (stmt->argModesKnown || gDBServerVersion < kFirstWithArgumentModes) {
    return stmt->paramDirs || zev::keepDirections(stmt, ofBinds);
  }
  if (!zev::keepDirections(stmt, ofBinds)) return false;
  if (x.server->defaultParams) askForDefaults(conn, stmt->procName);
  const zev::Malloced<> question(ConstructQuery(stmt->procName));
  if (!question) return false;
  const zev::PgResult modes = zev::wire::exec(conn, question.get());
  const bool answered =
      PQresultStatus(modes.get()) == PGRES_TUPLES_OK && PQntuples(modes.get());
  if (answered && stmt->paramDirs && stmt->paramCount) {
    readModes(stmt, PQgetvalue(modes.get(), 0, 0), stmt->paramDirs);
  }
  return true;
}

/// Runs the call for the values that the binds hold, and takes its results.
sword sendCall(const Execution &x, const zev::wire::Parameters &parameters) {
  OCIStmt *stmt = x.stmt;
  PGconn *conn = x.server->conn;
  const zev::NoticeScope notices(conn, x.errhp);
  const int sent = PQsendQueryPreparedOut(conn, stmt->preparedName, parameters.count,
                                          parameters.values, parameters.lengths,
                                          parameters.formats, 0);
  release_binds_pgdata(stmt->binds);
  if (!sent) {
    zev::fail(x.errhp, 24338, PQerrorMessage(conn));
    ROLLBACK_TRANSACTION(x.server);
    return OCI_ERROR;
  }
  zev::holdResult(stmt, zev::PgResult(PQextGetResult(conn)));
  if (simpleCommandFailed(stmt->pgResult)) {
    zev::failAndRollBack(x.server, x.errhp, stmt->pgResult);
    zev::dropResults(stmt);
    return OCI_ERROR;
  }
  if (std::strcmp(PQcmdStatus(stmt->pgResult), "DECLARE CURSOR") == 0) {
    zev::dropResults(stmt);
    return zev::failAndRollBack(x.server, x.errhp,
                                "DECLARE CURSOR statement is not supported");
  }
  if (stmt->paramCount) stmt->pgOutResult = PQgetOutResult(conn);
  return OCI_SUCCESS;
}

sword callOnce(const Execution &x, zev::ParameterArrays &arrays, ub4 iteration) {
  OCIStmt *stmt = x.stmt;
  ClearOCIStmtResultset(x.server, stmt);
  if (const sword status = GetOCIBindData(stmt, x.errhp, iteration);
      !zev::isSuccess(status)) {
    return status;
  }
  arrays.gather();
  if (const sword status = sendCall(x, arrays.parameters(stmt->paramCount));
      status != OCI_SUCCESS) {
    return status;
  }
  const bool noticed = zev::takeNotice(x.errhp);
  if (!stmt->paramCount) {
    zev::dropResults(stmt);
    return noticed ? OCI_SUCCESS_WITH_INFO : OCI_SUCCESS;
  }
  const sword filled =
      fill_bind_parameters(stmt, x.errhp, stmt->returnBind, stmt->placeholderBinds,
                           stmt->pgResult, stmt->pgOutResult, stmt->hasReturn, iteration);
  if (!zev::isSuccess(filled)) ClearOCIStmtResultset(x.server, stmt);
  return filled == OCI_SUCCESS && noticed ? OCI_SUCCESS_WITH_INFO : filled;
}

}  // namespace

extern "C" char *ConstructQuery(const char *procName) {
  const std::string query = "select proargmodes from pg_proc where  proname='" +
                            beforeDot(lowered(procName)) + "'";
  return strdup(query.c_str());
}

bool zev::keepDirections(OCIStmt *stmt, const ub4 *directions) {
  std::free(stmt->paramDirs);
  stmt->paramDirs = nullptr;
  if (!directions || !stmt->paramCount) return true;
  const std::size_t size = stmt->paramCount * sizeof *directions;
  stmt->paramDirs = static_cast<ub4 *>(std::malloc(size));
  if (!stmt->paramDirs) return false;
  std::memcpy(stmt->paramDirs, directions, size);
  return true;
}

zev::PgResult zev::prepareCall(const Execution &x, const char *name, const char *query,
                               const Oid *types, const ub4 *directions) {
  OCIStmt *stmt = x.stmt;
  PGconn *conn = x.server->conn;
  if (!settleDirections(x, directions)) return nullptr;
  const int count = static_cast<int>(stmt->paramCount);
  return PgResult(PQprepareOut(conn, name, query, count, types, stmt->paramDirs));
}

bool zev::sendPrepareCall(const Execution &x, const char *name, const char *query,
                          const Oid *types, const ub4 *directions) {
  if (!settleDirections(x, directions)) return false;
  return PQsendPrepareOut(x.server->conn, name, query,
                          static_cast<int>(x.stmt->paramCount), types,
                          x.stmt->paramDirs) != 0;
}

sword zev::executeBlock(const Execution &x) {
  OCIStmt *stmt = x.stmt;
  if (stmt->paramCount && list_length(stmt->placeholderBinds) != stmt->paramCount) {
    return OCI_ERROR;
  }
  ParameterArrays arrays(stmt->paramCount ? stmt->placeholderBinds : nullptr);
  sword status = OCI_SUCCESS;
  for (ub4 iteration = x.rowoff; iteration < x.iters; ++iteration) {
    status = callOnce(x, arrays, iteration);
    if (!zev::isSuccess(status) || !stmt->paramCount) return status;
  }
  return status;
}
