#include <algorithm>
#include <cstring>

#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/wire.h"
#include "zevoci/connection.h"
#include "zevoci/transaction.h"

namespace {

// What this library reports as the client's version, whatever the server.
constexpr sword kClientVersion[] = {11, 0, 1, 1, 0};

/// The server that a break or reset means: the handle itself, or that of a service
/// context.
OCIServer *serverOf(void *hndlp) {
  if (const OCISvcCtx *svchp = zev::asService(hndlp)) return svchp->server;
  return zev::asServer(hndlp);
}

/// The server that a version call means, by the handle type given.
sword findServer(OCIServer **server, void *hndlp, ub1 hndltype, OCIError *errhp) {
  switch (hndltype) {
    case OCI_HTYPE_SVCCTX:
      return getServerHandleFromService(server, static_cast<OCISvcCtx *>(hndlp), errhp);
    case OCI_HTYPE_SERVER:
      *server = zev::asServer(hndlp);
      return *server ? OCI_SUCCESS : OCI_INVALID_HANDLE;
    default:
      return OCI_ERROR;
  }
}

/// The server's number packed as programs expect it.
ub4 packedVersion(int version) {
  const auto v = static_cast<ub4>(version);
  const ub4 rest = v % 10000;
  return v / 10000 << 24 | (rest / 100 & 15) << 20 | (rest % 100 & 255) << 12;
}

}  // namespace

extern "C" {

ZEV_API sword OCIPing(OCISvcCtx *svchp, OCIError *errhp, ub4 mode) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (mode != OCI_DEFAULT) return zev::fail(errhp, 25407);
  if (!zev::parentEnv(svchp)) return OCI_INVALID_HANDLE;
  OCIServer *server = nullptr;
  const sword status = getServerHandleFromService(&server, svchp, errhp);
  if (status != OCI_SUCCESS) return status;
  const zev::PgResult result = zev::wire::exec(server->conn, "select 1");
  return PQresultStatus(result.get()) == PGRES_TUPLES_OK ? OCI_SUCCESS
                                                         : zev::fail(errhp, 1041);
}

ZEV_API sword OCIBreak(void *hndlp, OCIError *errhp) {
  if (!hndlp || !zev::asError(errhp)) return OCI_ERROR;
  OCIServer *server = serverOf(hndlp);
  if (!server) return OCI_ERROR;
  const zev::PgCancel cancel(PQgetCancel(server->conn));
  char message[256];
  if (!cancel || !PQcancel(cancel.get(), message, sizeof message)) return OCI_ERROR;
  __atomic_store_n(&server->breakRequested, 1, __ATOMIC_RELAXED);
  return OCI_SUCCESS;
}

ZEV_API sword OCIReset(void *hndlp, OCIError *errhp) {
  if (!hndlp || !zev::asError(errhp)) return OCI_ERROR;
  OCIServer *server = serverOf(hndlp);
  if (!server) return OCI_ERROR;
  const zev::PgResult result = zev::wire::getResult(server->conn);
  if (PQresultStatus(result.get()) == PGRES_TUPLES_OK) return OCI_SUCCESS;
  AddPGErrorRecord(errhp, OCI_ERROR, result.get());
  ROLLBACK_TRANSACTION(server);
  return OCI_ERROR;
}

ZEV_API sword OCIServerVersion(void *hndlp, OCIError *errhp, OraText *bufp, ub4 bufsz,
                               ub1 hndltype) {
  if (!hndlp || !zev::asError(errhp) || !bufp || !bufsz) return OCI_ERROR;
  OCIServer *server = nullptr;
  const sword found = findServer(&server, hndlp, hndltype, errhp);
  if (found != OCI_SUCCESS) return found;
  OCIEnv *env = zev::climbToEnv(server);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kServerVersion, env, errhp,
      [&](sword &status) {
        const zev::PgResult result = zev::wire::exec(server->conn, "SELECT VERSION()");
        if (PQresultStatus(result.get()) != PGRES_TUPLES_OK) {
          status = OCI_ERROR;
          return zev::Leave::AtOnce;
        }
        const char *version = PQgetvalue(result.get(), 0, 0);
        const zev::EdgeResult edge(env, version, std::strlen(version) + 1);
        if (!edge) {
          status = edge.fail(errhp);
          return zev::Leave::AtOnce;
        }
        std::memcpy(bufp, edge.data(), std::min<std::size_t>(bufsz, edge.size()));
        return zev::Leave::ThroughExitCallbacks;
      },
      hndlp, errhp, bufp, bufsz, hndltype);
}

ZEV_API sword OCIServerRelease(void *hndlp, OCIError *errhp, OraText *bufp, ub4 bufsz,
                               ub1 hndltype, ub4 *version) {
  if (!hndlp || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  OCIServer *server = nullptr;
  const sword status = findServer(&server, hndlp, hndltype, errhp);
  if (status != OCI_SUCCESS) return status;
  if (PQstatus(server->conn) != CONNECTION_OK) {
    return zev::fail(errhp, 25407, PQerrorMessage(server->conn));
  }
  if (version) *version = packedVersion(PQserverVersion(server->conn));
  return OCIServerVersion(hndlp, errhp, bufp, bufsz, hndltype);
}

ZEV_API sword OCIServerRelease2(void *hndlp, OCIError *errhp, OraText *bufp, ub4 bufsz,
                                ub1 hndltype, ub4 *version, ub4) {
  return OCIServerRelease(hndlp, errhp, bufp, bufsz, hndltype, version);
}

ZEV_API void OCIClientVersion(sword *major, sword *minor, sword *update, sword *patch,
                              sword *port_update) {
  const sword *part = kClientVersion;
  for (sword *out : {major, minor, update, patch, port_update}) *out = *part++;
}

}  // extern "C"
