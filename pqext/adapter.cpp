#include "pqext/adapter.h"

#include <libpq-events.h>

#include <utility>

#include "pqext/bulk_run.h"
#include "pqext/pqext.h"

namespace zev::pqext {
namespace {

void noteResult(Adapter &adapter, PGresult *result) {
  if (PQresultStatus(result) != PGRES_COMMAND_OK) return;
  const std::string_view tag = PQcmdStatus(result);
  notePortals(adapter, tag);
  noteStatements(adapter, tag);
}

int onEvent(PGEventId id, void *info, void *) noexcept {
  if (id == PGEVT_RESULTCREATE) {
    const auto *event = static_cast<PGEventResultCreate *>(info);
    if (Adapter *adapter = attached(event->conn)) noteResult(*adapter, event->result);
  } else if (id == PGEVT_CONNRESET) {
    const auto *event = static_cast<PGEventConnReset *>(info);
    if (Adapter *adapter = attached(event->conn)) *adapter = Adapter{};
  } else if (id == PGEVT_CONNDESTROY) {
    delete attached(static_cast<PGEventConnDestroy *>(info)->conn);
  }
  return 1;
}

}  // namespace

Adapter::Adapter() = default;
Adapter::Adapter(Adapter &&) noexcept = default;
Adapter &Adapter::operator=(Adapter &&) noexcept = default;
Adapter::~Adapter() = default;

Adapter *attached(PGconn *conn) {
  return static_cast<Adapter *>(PQinstanceData(conn, onEvent));
}

Adapter *attach(PGconn *conn) {
  if (Adapter *adapter = attached(conn)) return adapter;
  auto adapter = std::make_unique<Adapter>();
  if (!PQregisterEventProc(conn, onEvent, "pqext", nullptr)) return nullptr;
  PQsetInstanceData(conn, onEvent, adapter.get());
  return adapter.release();
}

Adapter *beginOperation(PGconn *conn) {
  Adapter *adapter = attach(conn);
  if (!adapter) return nullptr;
  if (adapter->run) endRun(conn, *adapter);
  adapter->bulkError.clear();
  if (adapter->bind && adapter->bind->pipelined) collectBind(conn, *adapter);
  adapter->bind.reset();
  adapter->sent = false;
  adapter->ready.reset();
  adapter->head.reset();
  adapter->call.reset();
  adapter->out.reset();
  adapter->closesSent = 0;
  settlePortals(conn, *adapter);
  if (adapter->closesOverdue) flushCloses(conn, *adapter);
  return adapter;
}

bool takesQuestions(PGconn *conn) {
  const PGTransactionStatusType status = PQtransactionStatus(conn);
  return status == PQTRANS_IDLE || status == PQTRANS_INTRANS;
}

bool succeeded(const PGresult *result) {
  const ExecStatusType status = PQresultStatus(result);
  return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK;
}

Result readCommand(PGconn *conn) {
  Result first(PQgetResult(conn));
  if (first) {
    while (Result more{PQgetResult(conn)}) continue;
  }
  return first;
}

std::string quoted(PGconn *conn, std::string_view name) {
  struct FreeText {
    void operator()(char *text) const noexcept { PQfreemem(text); }
  };
  const std::unique_ptr<char, FreeText> text(
      PQescapeIdentifier(conn, name.data(), name.size()));
  return text ? std::string(text.get()) : std::string();
}

int sendOnly(PGconn *conn, Adapter &adapter, const std::string &sql) {
  adapter.sent = PQsendQuery(conn, sql.c_str()) != 0;
  return adapter.sent;
}

}  // namespace zev::pqext

using namespace zev::pqext;

int PQextAttach(PGconn *conn) {
  return guarded(0, [&] { return attach(conn) ? 1 : 0; });
}

PGresult *PQextGetResult(PGconn *conn) {
  return guarded<PGresult *>(nullptr, [&] {
    Adapter *adapter = attached(conn);
    if (!adapter) return PQgetResult(conn);
    if (adapter->run) return adapter->run->progress(conn).release();
    if (adapter->bind) return collectBind(conn, *adapter).release();
    if (adapter->ready) return adapter->ready.release();
    if (!std::exchange(adapter->sent, false)) return PQgetResult(conn);
    Result result = readCommand(conn);
    if (adapter->call) result = takeAnswer(conn, *adapter, std::move(result));
    if (!adapter->head) return result.release();
    return joinRows(std::move(adapter->head), std::move(result)).release();
  });
}
