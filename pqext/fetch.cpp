#include <climits>

#include "pqext/adapter.h"
#include "pqext/pqext.h"

namespace zev::pqext {

std::string fetchCommand(PGconn *conn, std::string_view portal, unsigned count) {
  const std::string identifier = quoted(conn, portal);
  if (identifier.empty()) return {};
  const bool all = count == 0 || count > INT_MAX;
  return "FETCH FORWARD " + (all ? "ALL" : std::to_string(count)) + " FROM " + identifier;
}

}  // namespace zev::pqext

namespace {

using namespace zev::pqext;

/// The count that must come from the server; nothing when the result stands in `ready`.
std::optional<unsigned> stillToFetch(PGconn *conn, Adapter &adapter,
                                     std::string_view name, unsigned count) {
  const auto entry = adapter.portals.find(name);
  if (entry == adapter.portals.end() || !entry->second.ahead) return count;
  Portal &portal = entry->second;
  const bool failed = PQtransactionStatus(conn) == PQTRANS_INERROR;
  if (failed && succeeded(portal.ahead.get())) portal.ahead.reset();
  settlePortal(conn, adapter, portal);
  return portal.ahead ? takeAhead(adapter, portal, count) : count;
}

}  // namespace

int PQsendFetchPrepared(PGconn *conn, const char *portalName, unsigned int count) {
  return guarded(0, [&] {
    Adapter *adapter = beginOperation(conn);
    if (!adapter) return 0;
    const std::optional<unsigned> missing =
        stillToFetch(conn, *adapter, portalName, count);
    if (!missing) return 1;
    const std::string command = fetchCommand(conn, portalName, *missing);
    return command.empty() ? 0 : sendOnly(conn, *adapter, command);
  });
}
