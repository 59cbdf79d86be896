#include "pqext/adapter.h"
#include "pqext/pqext.h"

namespace {

using namespace zev::pqext;

/// Answers PGRES_COMMAND_OK, also in a failed transaction.
int sendNothing(PGconn *conn, Adapter &adapter) {
  adapter.sent = PQsendPrepare(conn, "", "", 0, nullptr) != 0;
  return adapter.sent;
}

/// Whether a cursor of that name is there to be closed. In a failed transaction nothing
/// can be: what may survive it waits.
bool closesNow(PGconn *conn, Adapter &adapter, std::string_view name) {
  unqueueClose(adapter, name);
  const auto portal = adapter.portals.find(name);
  Presence presence = Presence::Doubtful;
  if (portal != adapter.portals.end()) presence = portal->second.presence;
  if (presence != Presence::Gone && PQtransactionStatus(conn) == PQTRANS_INERROR) {
    queueClose(adapter, name);
    adapter.closesOverdue = true;
    return false;
  }
  if (portal != adapter.portals.end()) adapter.portals.erase(portal);
  if (presence != Presence::Doubtful) return presence == Presence::Live;
  return cursorExists(conn, adapter, name).value_or(false);
}

}  // namespace

int PQsendClosePortal(PGconn *conn, const char *portalName) {
  return guarded(0, [&] {
    Adapter *adapter = beginOperation(conn);
    if (!adapter) return 0;
    if (!closesNow(conn, *adapter, portalName)) return sendNothing(conn, *adapter);
    adapter->closesSent = 1;
    return sendOnly(conn, *adapter, "CLOSE " + quoted(conn, portalName));
  });
}

void PQextCloseLater(PGconn *conn, const char *portalName) {
  guarded(0, [&] {
    if (Adapter *adapter = attach(conn)) queueClose(*adapter, portalName);
    return 1;
  });
}

int PQextFlush(PGconn *conn) {
  return guarded(0, [&] {
    Adapter *adapter = beginOperation(conn);
    return adapter && flushCloses(conn, *adapter) ? 1 : 0;
  });
}
