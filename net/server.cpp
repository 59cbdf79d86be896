#include <cstdlib>

#include "core/attribute_value.h"
#include "core/cursor_attributes.h"
#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/wire.h"
#include "net/tnsnames.h"
#include "zevoci/connection.h"
#include "zevoci/text.h"
#include "zevoci/trace.h"

namespace {

void release(char *&text) {
  std::free(text);
  text = nullptr;
}

void forgetParts(OCIServer *server) {
  for (char **part : {&server->host, &server->port, &server->dbname, &server->uri}) {
    release(*part);
  }
}

void forgetAddress(OCIServer *server) {
  release(server->dblink);
  server->dblinkLen = 0;
  forgetParts(server);
}

/// Whether the address has a URI or all three parts.
bool isComplete(const OCIServer *server) {
  return server->uri || (server->host && server->port && server->dbname);
}

/// Fills what nobody has named.
void useDefaults(OCIServer *server) {
  if (!server->host) server->host = strdup("localhost");
  if (!server->port) server->port = strdup("5444");
  if (!server->dbname) server->dbname = strdup("zev");
}

/// Stores the connect string and what it says of the address.
sword resolve(OCIServer *server, OCIError *errhp, const zev::EdgeText &dblink) {
  server->dblink = makeString(dblink.data(), dblink.size());
  if (!server->dblink) return zev::fail(errhp, 16506);
  server->dblinkLen = static_cast<ub4>(dblink.size());
  const boolean understood =
      parse_connect_str(server->dblink, static_cast<sb4>(server->dblinkLen),
                        &server->host, &server->port, &server->dbname, &server->uri);
  if (!understood) {
    const sword found = zev::tnsnames::resolve(server, errhp);
    if (found != OCI_SUCCESS) return found;
    useDefaults(server);
  }
  return isComplete(server) ? OCI_SUCCESS : zev::fail(errhp, 16506);
}

/// Where to connect: what the connect string says, or the defaults.
sword settleAddress(OCIServer *server, OCIError *errhp, const OCIEnv *env,
                    const OraText *dblink, sb4 length) {
  forgetAddress(server);
  if (dblink && length > 0) {
    const zev::EdgeText edge(env, dblink, static_cast<std::size_t>(length));
    return edge ? resolve(server, errhp, edge) : edge.fail(errhp);
  }
  useDefaults(server);
  return isComplete(server) ? OCI_SUCCESS : zev::fail(errhp, 16506);
}

sword setStatementLevelRollback(OCIServer *server, ub1 on, OCIError *errhp) {
  const zev::PgResult result = zev::wire::exec(
      server->conn, on ? "SET zev_stmt_level_tx = on" : "SET zev_stmt_level_tx = off");
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    ClearErrorHandle(errhp);
    return zev::failFromServer(errhp, result.get());
  }
  server->stmtLevelTx = on;
  return OCI_SUCCESS;
}

/// Service contexts stop pointing to a server that goes away.
void unlinkServer(const OCIEnv *env, const OCIServer *server) {
  for (OCIHandle *child : zev::Elements<OCIHandle>(env->children)) {
    OCISvcCtx *svchp = zev::asService(child);
    if (svchp && svchp->server == server) svchp->server = nullptr;
  }
}

}  // namespace

void zev::closeConnection(OCIServer *server) {
  if (!server->conn) return;
  traceMoltaCounters(server->conn);
  PQuntrace(server->conn);
  PQfinish(server->conn);
  server->conn = nullptr;
  if (server->protocolTrace) std::fclose(server->protocolTrace);
  server->protocolTrace = nullptr;
}

extern "C" {

OCIServer *Alloc_OCIServer() {
  auto *server = zev::allocHandle<OCIServer>(HANDLE_OCIServer);
  if (!server) return nullptr;
  server->cursorStrategy = std::getenv("OCI_WITH_HOLD") ? 1 : 0;
  server->defaultParams = std::getenv("NODEFAULTPARAMS") ? 0 : 1;
  return server;
}

void Free_OCIServer(OCIServer *server) {
  if (!zev::asServer(server)) return;
  auto *env = static_cast<OCIEnv *>(server->parenth);
  ZEV_ASSERT(env, "env != ((void *)0)");
  ZEV_ASSERT(env->handleType == HANDLE_OCIEnv, "env->handleType == HANDLE_OCIEnv");
  forgetAddress(server);
  markCursorsClosed(env, server);
  unlinkServer(env, server);
  zev::closeConnection(server);
  zev::freeHandle(server);
}

sword Get_OCIServer(OCIServer *server, void *value, ub4 *, ub4 attribute,
                    OCIError *errhp) {
  if (!zev::asServer(server) || !zev::asError(errhp) || !value) return OCI_INVALID_HANDLE;
  switch (attribute) {
    case OCI_ATTR_NONBLOCKING_MODE:
      zev::putAttribute(value, server->nonBlocking);
      return OCI_SUCCESS;
    case OCI_ATTR_ENV:
      if (!zev::parentEnv(server)) return OCI_INVALID_HANDLE;
      zev::putAttribute(value, server->parenth);
      return OCI_SUCCESS;
    case OCI_ATTR_SERVER_STATUS:
      zev::putAttribute<ub4>(value, PQstatus(server->conn) == CONNECTION_OK
                                        ? OCI_SERVER_NORMAL
                                        : OCI_SERVER_NOT_CONNECTED);
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_STMT_LEVEL_TX:
      zev::putAttribute(value, server->stmtLevelTx);
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_CURSOR_STRATEGY:
      zev::putAttribute(value, server->cursorStrategy);
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_HOLD_POLICY:
      zev::putAttribute(value, server->holdPolicy);
      return OCI_SUCCESS;
    default:
      return zev::fail(errhp, 24328);
  }
}

sword Set_OCIServer(OCIServer *server, void *value, ub4, ub4 attribute, OCIError *errhp) {
  if (!zev::asServer(server) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  switch (attribute) {
    case OCI_ATTR_NONBLOCKING_MODE:
      server->nonBlocking = !server->nonBlocking;
      return OCI_SUCCESS;
    case OCI_ATTR_PARSE_ERROR_OFFSET:
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_STMT_LEVEL_TX:
      if (!value) return OCI_INVALID_HANDLE;
      return setStatementLevelRollback(server, zev::takeAttribute<ub1>(value), errhp);
    case ZEVOCI_ATTR_CURSOR_STRATEGY:
      if (!value) return OCI_INVALID_HANDLE;
      return zev::storeCursorStrategy(server->cursorStrategy, value, errhp);
    case ZEVOCI_ATTR_HOLD_POLICY:
      if (!value) return OCI_INVALID_HANDLE;
      return zev::storeHoldPolicy(server->holdPolicy, value, errhp);
    default:
      return zev::fail(errhp, 24328);
  }
}

ZEV_API sword OCIServerAttach(OCIServer *srvhp, OCIError *errhp, const OraText *dblink,
                              sb4 dblink_len, ub4 mode) {
  if (!zev::asServer(srvhp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  if (srvhp->attached) return zev::fail(errhp, 24309);
  OCIEnv *env = zev::parentEnv(srvhp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kServerAttach, env, errhp,
      [&](sword &status) {
        const sword outcome = settleAddress(srvhp, errhp, env, dblink, dblink_len);
        if (outcome != OCI_SUCCESS) {
          forgetParts(srvhp);  // the connect string stays until the next attempt
          status = outcome;
          return zev::Leave::AtOnce;
        }
        srvhp->attached = 1;
        return zev::Leave::ThroughExitCallbacks;
      },
      srvhp, errhp, dblink, dblink_len, mode);
}

ZEV_API sword OCIServerDetach(OCIServer *srvhp, OCIError *errhp, ub4 mode) {
  if (!zev::asServer(srvhp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(srvhp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kServerDetach, env, errhp,
      [&](sword &status) {
        if (!srvhp->attached) {
          status = zev::fail(errhp, 24324);
          return zev::Leave::AtOnce;
        }
        forgetAddress(srvhp);
        srvhp->attached = 0;
        return zev::Leave::ThroughExitCallbacks;
      },
      srvhp, errhp, mode);
}

}  // extern "C"
