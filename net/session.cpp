#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/attribute_value.h"
#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/memory_cache.h"
#include "core/wire.h"
#include "zevoci/connection.h"
#include "zevoci/encodings.h"
#include "zevoci/text.h"
#include "zevoci/trace.h"

extern "C" {
sb4 gDBServerVersion = 0;
}

namespace {

/// Attributes that programs set without caring whether they have an effect.
constexpr ub4 kIgnoredAttributes[] = {86,  99,  100, 169, 273, 275, 276,
                                      277, 278, 300, 367, 368, 369};

/// Where a text attribute is kept; null for other attributes.
char **textAttribute(OCISession *session, ub4 attribute) {
  switch (attribute) {
    case OCI_ATTR_USERNAME:
      return &session->username;
    case OCI_ATTR_PASSWORD:
      return &session->password;
    case OCI_ATTR_MODULE:
      return &session->module;
    default:
      return nullptr;
  }
}

sword setText(OCISession *session, char *&kept, const void *value, ub4 size,
              ub4 attribute) {
  std::free(kept);
  kept = nullptr;
  if (!value || !size) return OCI_SUCCESS;
  const OCIEnv *env = zev::parentEnv(session);
  const zev::EdgeText edge(env, value, size);
  if (!edge) return edge.fail(env->errh);
  // A module name runs to its own end, a name or password no further than the size given.
  const std::size_t length = attribute == OCI_ATTR_MODULE
                                 ? std::strlen(edge.data())
                                 : strnlen(edge.data(), edge.size());
  kept = makeString(edge.data(), length);
  return kept ? OCI_SUCCESS : zev::fail(env->errh, 16506);
}

sword getUsername(const OCISession *session, void *value, ub4 *size, OCIError *errhp) {
  if (!session->username) return OCI_SUCCESS;
  const zev::EdgeResult name(zev::parentEnv(session), session->username,
                             std::strlen(session->username));
  if (!name) return name.fail(errhp);
  char *copy = name.copy();
  if (!copy) return zev::fail(errhp, 16506);
  zev::putAttribute(value, copy);
  if (size) *size = static_cast<ub4>(name.size());
  return OCI_SUCCESS;
}

PGconn *connect(const OCIServer *server, const OCISession *session) {
  std::vector<const char *> keywords, values;
  const auto add = [&](const char *keyword, const char *value) {
    keywords.push_back(keyword);
    values.push_back(value);
  };
  // A URI stands first, where the client library expands it; it then decides the address.
  if (server->uri) add("dbname", server->uri);
  add("host", server->host);
  add("port", server->port);
  add("dbname", server->dbname);
  add("user", session->username);
  add("password", session->password);
  add("application_name", session->module);
  add(nullptr, nullptr);
  return PQconnectdbParams(keywords.data(), values.data(), 1);
}

void traceProtocol(OCIServer *server) {
  const char *path = std::getenv("OCI_TRACE_PROTOCOL");
  if (!path) return;
  server->protocolTrace = std::fopen(path, "a");
  if (!server->protocolTrace) return;
  std::setvbuf(server->protocolTrace, nullptr, _IOLBF, 0);
  PQtrace(server->conn, server->protocolTrace);
}

/// The name under which the server converts for this environment.
const char *clientEncoding(const OCIEnv *env) {
  const bool wide = env->encoding == kUtf16Le || env->encoding == kUtf16Be;
  return pg_encoding_to_char(wide ? kUtf8 : env->encoding);
}

/// The one command of a session's start.
std::string dateCommand() {
  const char *format = std::getenv("NLS_DATE_FORMAT");
  if (!format) return "set DateStyle to 'ISO'";
  return std::string("ALTER SESSION SET NLS_DATE_FORMAT = '") + format + "'";
}

constexpr const char *kLabel = "OCISessionBegin";

sword beginSession(OCISvcCtx *svchp, OCIError *errhp, const OCISession *session) {
  OCIServer *server = svchp->server;
  const OCIEnv *env = zev::parentEnv(svchp);
  if (!server || !server->attached) return zev::fail(errhp, 24314);
  const auto shown = [](const char *text) { return text ? text : "(null)"; };
  ocitrace(kTraceSession, kLabel,
           "host [%s] port [%s] db [%s], user [%s] app [%s] uri [%s]\n",
           shown(server->host), shown(server->port), shown(server->dbname),
           shown(session->username), shown(session->module), shown(server->uri));

  // A connection that broke is of no use to anybody; one that works is left as it is.
  if (server->conn && PQstatus(server->conn) == CONNECTION_BAD)
    zev::closeConnection(server);
  server->conn = connect(server, session);
  if (PQstatus(server->conn) != CONNECTION_OK) {
    zev::fail(errhp, 12154, PQerrorMessage(server->conn));
    PQfinish(server->conn);
    server->conn = nullptr;
    return OCI_ERROR;
  }
  zev::NoticeScope::quieten(server->conn);
  traceProtocol(server);
  __atomic_store_n(&gDBServerVersion, PQserverVersion(server->conn), __ATOMIC_RELAXED);

  if (PQsetClientEncoding(server->conn, clientEncoding(env)) != 0) {
    ClearErrorHandle(errhp);
    zev::fail(errhp, 24338, PQerrorMessage(server->conn));
    ocitrace(kTraceSession, kLabel, "PQsetClientEncoding failed\n");
    return OCI_ERROR;
  }
  const zev::PgResult result = zev::wire::exec(server->conn, dateCommand().c_str());
  if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
    ClearErrorHandle(errhp);
    zev::failFromServer(errhp, result.get());
    ocitrace(kTraceSession, kLabel, "PQexec(set datestyle) failed\n");
    return OCI_ERROR;
  }
  return OCI_SUCCESS;
}

sword endSession(OCIEnv *env, OCISvcCtx *svchp, OCIError *errhp,
                 const OCISession *usrhp) {
  OCIServer *server = nullptr;
  sword status = getServerHandleFromService(&server, svchp, errhp);
  if (status != OCI_SUCCESS) return status;
  if (!usrhp) {
    void *session = nullptr;
    status =
        OCIAttrGet(svchp, OCI_HTYPE_SVCCTX, &session, nullptr, OCI_ATTR_SESSION, errhp);
    if (status != OCI_SUCCESS) return status;
  }
  markCursorsClosed(env, server);
  if (PQstatus(server->conn) == CONNECTION_BAD) return zev::fail(errhp, 25407);
  zev::closeConnection(server);
  return OCI_SUCCESS;
}

}  // namespace

extern "C" {

OCISession *Alloc_OCISession() {
  return zev::allocHandle<OCISession>(HANDLE_OCISession);
}

void Free_OCISession(OCISession *session) {
  if (!zev::asSession(session)) return;
  if (const OCIEnv *env = zev::parentEnv(session)) {
    for (OCIHandle *child : zev::Elements<OCIHandle>(env->children)) {
      OCISvcCtx *svchp = zev::asService(child);
      if (svchp && svchp->session == session) svchp->session = nullptr;
    }
  }
  for (char *text : {session->username, session->password, session->module})
    std::free(text);
  zev::freeListAndMembers(session->owned);
  zev::freeHandle(session);
}

sword Get_OCISession(OCISession *session, void *value, ub4 *size, ub4 attribute,
                     OCIError *errhp) {
  if (!zev::asSession(session) || !zev::asError(errhp)) return OCI_ERROR;
  if (attribute == OCI_ATTR_USERNAME) return getUsername(session, value, size, errhp);
  return zev::fail(errhp, 24315);
}

sword Set_OCISession(OCISession *session, void *value, ub4 size, ub4 attribute,
                     OCIError *errhp) {
  if (!zev::asSession(session) || !zev::asError(errhp)) return OCI_ERROR;
  if (char **kept = textAttribute(session, attribute)) {
    return setText(session, *kept, value, size, attribute);
  }
  const bool ignored =
      std::find(std::begin(kIgnoredAttributes), std::end(kIgnoredAttributes),
                attribute) != std::end(kIgnoredAttributes);
  return ignored ? OCI_SUCCESS : OCI_ERROR;
}

ZEV_API sword OCISessionBegin(OCISvcCtx *svchp, OCIError *errhp, OCISession *usrhp,
                              ub4 credt, ub4 mode) {
  if (!zev::asService(svchp) || !zev::asError(errhp) || !zev::asSession(usrhp)) {
    return OCI_INVALID_HANDLE;
  }
  ocitrace(kTraceSession, kLabel, "OCISessionBegin started\n");
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;
  svchp->stmtCacheEnabled = 0;

  return zev::runFrame(
      zev::frame::kSessionBegin, env, errhp,
      [&](sword &status) {
        const sword outcome = beginSession(svchp, errhp, usrhp);
        if (outcome != OCI_SUCCESS) {
          status = outcome;
          return zev::Leave::AtOnce;
        }
        if (mode & OCI_STMT_CACHE) svchp->stmtCacheEnabled = 1;
        ocitrace(kTraceSession, kLabel, "OCISessionBegin() OK\n");
        return zev::Leave::ThroughExitCallbacks;
      },
      svchp, errhp, usrhp, credt, mode);
}

ZEV_API sword OCISessionEnd(OCISvcCtx *svchp, OCIError *errhp, OCISession *usrhp,
                            ub4 mode) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kSessionEnd, env, errhp,
      [&](sword &status) {
        const sword outcome = endSession(env, svchp, errhp, usrhp);
        if (outcome == OCI_SUCCESS) return zev::Leave::ThroughExitCallbacks;
        status = outcome;
        return zev::Leave::AtOnce;
      },
      svchp, errhp, usrhp, mode);
}

}  // extern "C"
