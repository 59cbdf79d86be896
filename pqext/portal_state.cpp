#include <algorithm>
#include <set>

#include "pqext/adapter.h"
#include "pqext/pqext.h"

namespace zev::pqext {
namespace {

using Names = std::set<std::string, std::less<>>;

void markAll(Adapter &adapter, Presence presence) {
  for (auto &[name, portal] : adapter.portals) {
    if (portal.presence == Presence::Gone) continue;
    portal.presence = presence;
    if (presence == Presence::Gone) portal.ahead.reset();
  }
}

/// Asks for the cursors of the session and removes the doubt from all portals.
std::optional<Names> askCursors(PGconn *conn, Adapter &adapter) {
  if (!takesQuestions(conn)) return std::nullopt;
  const Result answer(PQexec(conn, "SELECT name FROM pg_catalog.pg_cursors"));
  if (PQresultStatus(answer.get()) != PGRES_TUPLES_OK) return std::nullopt;
  Names names;
  for (int row = 0; row < PQntuples(answer.get()); ++row) {
    names.emplace(PQgetvalue(answer.get(), row, 0));
  }
  for (auto &[name, portal] : adapter.portals) {
    if (portal.presence != Presence::Doubtful) continue;
    portal.presence = names.contains(name) ? Presence::Live : Presence::Gone;
    if (portal.presence == Presence::Gone) portal.ahead.reset();
  }
  return names;
}

bool has(const Adapter &adapter, std::string_view name, Presence presence) {
  const auto portal = adapter.portals.find(name);
  return portal != adapter.portals.end() && portal->second.presence == presence;
}

}  // namespace

void notePortals(Adapter &adapter, std::string_view tag) {
  if (tag == "COMMIT" || tag == "PREPARE TRANSACTION" || tag == "CLOSE CURSOR ALL" ||
      tag == "DISCARD ALL") {
    markAll(adapter, Presence::Gone);
  } else if (tag == "ROLLBACK") {  // of the transaction or to a savepoint
    markAll(adapter, Presence::Doubtful);
  } else if (tag == "CLOSE CURSOR") {
    if (adapter.closesSent > 0) {
      --adapter.closesSent;
    } else {
      markAll(adapter, Presence::Doubtful);
    }
  }
}

void settlePortals(PGconn *conn, Adapter &adapter) {
  if (PQtransactionStatus(conn) == PQTRANS_IDLE) markAll(adapter, Presence::Gone);
}

bool settlePortal(PGconn *conn, Adapter &adapter, Portal &portal) {
  return portal.presence != Presence::Doubtful || askCursors(conn, adapter);
}

std::optional<bool> cursorExists(PGconn *conn, Adapter &adapter, std::string_view name) {
  const std::optional<Names> names = askCursors(conn, adapter);
  if (!names) return std::nullopt;
  return names->contains(name);
}

void queueClose(Adapter &adapter, std::string_view name) {
  if (std::ranges::find(adapter.closes, name) == adapter.closes.end()) {
    adapter.closes.emplace_back(name);
  }
}

void unqueueClose(Adapter &adapter, std::string_view name) {
  std::erase(adapter.closes, name);
}

bool settleCloses(PGconn *conn, Adapter &adapter) {
  std::erase_if(adapter.closes, [&](const std::string &name) {
    return has(adapter, name, Presence::Gone) && adapter.portals.erase(name);
  });
  if (adapter.closes.empty()) return true;
  if (!takesQuestions(conn)) return false;
  const auto isLive = [&](const std::string &name) {
    return has(adapter, name, Presence::Live);
  };
  if (std::ranges::all_of(adapter.closes, isLive)) return true;
  const std::optional<Names> names = askCursors(conn, adapter);
  if (!names) return false;
  std::erase_if(adapter.closes, [&](const std::string &name) {
    if (names->contains(name)) return false;
    adapter.portals.erase(name);
    return true;
  });
  return true;
}

bool flushCloses(PGconn *conn, Adapter &adapter) {
  if (!settleCloses(conn, adapter)) return false;
  std::string all;
  for (const std::string &command : takeCloses(conn, adapter)) all += command + ';';
  if (all.empty()) return true;
  return succeeded(Result(PQexec(conn, all.c_str())).get());
}

std::vector<std::string> takeCloses(PGconn *conn, Adapter &adapter) {
  std::vector<std::string> commands;
  for (const std::string &name : adapter.closes) {
    const std::string identifier = quoted(conn, name);
    if (!identifier.empty()) commands.push_back("CLOSE " + identifier);
    adapter.portals.erase(name);
  }
  adapter.closes.clear();
  adapter.closesOverdue = false;
  adapter.closesSent += static_cast<int>(commands.size());
  return commands;
}

}  // namespace zev::pqext
