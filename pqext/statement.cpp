#include <charconv>

#include "pqext/adapter.h"
#include "pqext/pqext.h"

namespace zev::pqext {
namespace {

/// The numbers of an array in the server's text form, as in "{23,1043}".
std::vector<Oid> parseOids(std::string_view text) {
  std::vector<Oid> oids;
  const char *const end = text.data() + text.size();
  for (const char *at = text.data(); at < end; ++at) {
    Oid oid = 0;
    const auto [next, error] = std::from_chars(at, end, oid);
    if (error != std::errc()) continue;
    oids.push_back(oid);
    at = next;
  }
  return oids;
}

Result askStatement(PGconn *conn, const std::string &name) {
  const char *const values[] = {name.c_str()};
  return Result(PQexecParams(conn,
                             "SELECT statement, parameter_types::oid[]::text "
                             "FROM pg_catalog.pg_prepared_statements WHERE name = $1",
                             1, nullptr, values, nullptr, nullptr, 0));
}

}  // namespace

const Statement *findStatement(PGconn *conn, Adapter &adapter, std::string_view name,
                               Result &refusal) {
  if (const auto known = adapter.statements.find(name);
      known != adapter.statements.end()) {
    return &known->second;
  }
  if (PQtransactionStatus(conn) == PQTRANS_ACTIVE) return nullptr;
  std::string key(name);
  Result answer = askStatement(conn, key);
  if (PQresultStatus(answer.get()) != PGRES_TUPLES_OK) {
    refusal = std::move(answer);
    return nullptr;
  }
  if (PQntuples(answer.get()) == 0) return nullptr;
  Statement statement{PQgetvalue(answer.get(), 0, 0),
                      parseOids(PQgetvalue(answer.get(), 0, 1)), true};
  return &(adapter.statements[std::move(key)] = std::move(statement));
}

void noteStatements(Adapter &adapter, std::string_view tag) {
  if (tag == "DEALLOCATE ALL" || tag == "DISCARD ALL") {
    adapter.statements.clear();
    adapter.call.reset();
    adapter.calls.clear();
  } else if (tag == "DEALLOCATE") {
    std::erase_if(adapter.statements,
                  [](const auto &entry) { return entry.second.asked; });
  }
}

}  // namespace zev::pqext

using namespace zev::pqext;

void PQextRememberPrepared(PGconn *conn, const char *stmtName, const char *query,
                           int nParams, const Oid *paramTypes) {
  PQextForgetPrepared(conn, stmtName);
  guarded(0, [&] {
    Adapter *adapter = attach(conn);
    if (!adapter) return 0;
    Statement statement{query, {}};
    if (paramTypes) statement.types.assign(paramTypes, paramTypes + nParams);
    adapter->statements.emplace(stmtName, std::move(statement));
    return 1;
  });
}

void PQextForgetPrepared(PGconn *conn, const char *stmtName) {
  Adapter *adapter = attached(conn);
  if (!adapter) return;
  if (const auto known = adapter->statements.find(std::string_view(stmtName));
      known != adapter->statements.end()) {
    dropVariants(conn, known->second);
    adapter->statements.erase(known);
  }
  const auto call = adapter->calls.find(std::string_view(stmtName));
  if (call == adapter->calls.end()) return;
  if (adapter->call && adapter->call->call == &call->second) adapter->call.reset();
  adapter->calls.erase(call);
}
