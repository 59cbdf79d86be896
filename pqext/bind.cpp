#include <algorithm>
#include <utility>

#include "pqext/adapter.h"
#include "pqext/pqext.h"

namespace zev::pqext {
namespace {

/// The parameters of a bind, as they came.
struct Parameters {
  int count;
  const char *const *values;
  const int *lengths;
  const int *formats;
};

std::string declareCommand(PGconn *conn, const char *portal, const Statement &statement,
                           bool scrolls) {
  const std::string identifier = quoted(conn, portal);
  if (identifier.empty()) return {};
  return "DECLARE " + identifier + (scrolls ? " SCROLL" : " NO SCROLL") + " CURSOR FOR " +
         statement.text;
}

/// Reads up to the end of a pipeline. A lost connection answers the sync with errors and
/// then with nothing more.
void leavePipeline(PGconn *conn) {
  for (int silent = 0; silent < 2;) {
    const Result result(PQgetResult(conn));
    if (PQresultStatus(result.get()) == PGRES_PIPELINE_SYNC) break;
    silent = result ? 0 : silent + 1;
  }
  PQexitPipelineMode(conn);
}

/// Sends a command without parameters in pipeline mode. Non-zero when sent.
int sendCommand(PGconn *conn, const std::string &sql) {
  return PQsendQueryParams(conn, sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, 0);
}

/// Keeps the first failure of the commands before the DECLARE.
void readBefore(PGconn *conn, Result &failure) {
  Result result = readCommand(conn);
  if (!failure && result && !succeeded(result.get())) failure = std::move(result);
}

/// What goes out with a bind, in this order.
struct Batch {
  std::vector<std::string> before;
  std::string declare;
  std::string fetch;  ///< may be empty
};

bool sendBatch(PGconn *conn, const Batch &batch, const std::vector<Oid> &types,
               const Parameters &parameters) {
  for (const std::string &command : batch.before) {
    if (!sendCommand(conn, command)) return false;
  }
  return PQsendQueryParams(conn, batch.declare.c_str(), parameters.count, types.data(),
                           parameters.values, parameters.lengths, parameters.formats,
                           0) &&
         (batch.fetch.empty() || sendCommand(conn, batch.fetch));
}

/// Sends the batch and notes `bind` as on its way. Nothing here allocates once the
/// connection is in pipeline mode.
int sendBind(PGconn *conn, Adapter &adapter, Bind bind, const Batch &batch,
             const std::vector<Oid> &types, const Parameters &parameters) {
  adapter.portals[bind.portal] = {};
  bind.before = batch.before.size();
  bind.pipelined = bind.before > 0 || !batch.fetch.empty();
  if (bind.pipelined && !PQenterPipelineMode(conn)) return 0;
  const bool sent = sendBatch(conn, batch, types, parameters);
  if (!bind.pipelined && !sent) return 0;
  const bool synced = !bind.pipelined || PQpipelineSync(conn);
  adapter.bind = std::move(bind);
  if (sent && synced) return 1;
  collectBind(conn, adapter);
  return 0;
}

/// The commands that the next bind was to take along: BEGIN, and closes that are due.
std::vector<std::string> commandsBefore(PGconn *conn, Adapter &adapter,
                                        const NextBind &next) {
  std::vector<std::string> commands;
  if (!adapter.closes.empty() && settleCloses(conn, adapter)) {
    commands = takeCloses(conn, adapter);
  }
  if (next.begins && PQtransactionStatus(conn) == PQTRANS_IDLE) {
    commands.insert(commands.begin(), "BEGIN");
  }
  return commands;
}

}  // namespace

Result collectBind(PGconn *conn, Adapter &adapter) {
  const Bind bind = std::move(*adapter.bind);
  adapter.bind.reset();
  Result failure;
  for (std::size_t command = 0; command < bind.before; ++command)
    readBefore(conn, failure);
  Result own = readCommand(conn);
  Result rows;
  if (bind.fetches) rows = readCommand(conn);
  if (bind.pipelined) leavePipeline(conn);
  if (failure) return failure;
  if (succeeded(own.get())) {
    adapter.portals[bind.portal] =
        Portal{Presence::Live, std::move(rows), bind.fetches.value_or(0)};
  }
  return own;
}

}  // namespace zev::pqext

using namespace zev::pqext;

int PQsendBindPrepared(PGconn *conn, const char *portalName, const char *stmtName,
                       int nParams, const char *const *paramValues,
                       const int *paramLengths, const int *paramFormats,
                       int resultFormat) {
  return guarded(0, [&] {
    Adapter *adapter = beginOperation(conn);
    if (!adapter || resultFormat != 0) return 0;
    const NextBind next = std::exchange(adapter->next, {});
    const Statement *statement = findStatement(conn, *adapter, stmtName, adapter->ready);
    if (adapter->ready) return 1;
    if (!statement) return sendOnly(conn, *adapter, "EXECUTE " + quoted(conn, stmtName));
    Bind bind{.portal = portalName};
    Batch batch{.before = {},
                .declare = declareCommand(conn, portalName, *statement, next.scrolls),
                .fetch = {}};
    if (batch.declare.empty()) return 0;
    if (next.fetches && !next.scrolls) {
      bind.fetches = next.fetches;
      batch.fetch = fetchCommand(conn, portalName, *next.fetches);
    }
    std::vector<Oid> types = statement->types;
    types.resize(static_cast<std::size_t>(std::max(nParams, 0)));
    batch.before = commandsBefore(conn, *adapter, next);
    return sendBind(conn, *adapter, std::move(bind), batch, types,
                    {nParams, paramValues, paramLengths, paramFormats});
  });
}

void PQextScrollNext(PGconn *conn, int scroll) {
  guarded(0, [&] {
    if (Adapter *adapter = attach(conn)) adapter->next.scrolls = scroll != 0;
    return 1;
  });
}

void PQextExpectFetch(PGconn *conn, unsigned int count) {
  guarded(0, [&] {
    if (Adapter *adapter = attach(conn)) adapter->next.fetches = count;
    return 1;
  });
}

void PQextBeginFirst(PGconn *conn) {
  guarded(0, [&] {
    if (Adapter *adapter = attach(conn)) adapter->next.begins = true;
    return 1;
  });
}
