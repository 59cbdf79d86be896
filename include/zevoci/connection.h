/// Servers, service contexts and sessions.
#pragma once

#include <libpq-fe.h>

#include <cstdio>

#include "zevoci/handle.h"

/// A server address and the one connection to it.
struct OCIServer : OCIHandle {
  ub1 attached;
  char *dblink;  ///< owned; the connect string as given
  ub4 dblinkLen;
  char *host;  ///< owned, as are the next three; each may be null
  char *port;
  char *dbname;
  char *uri;
  PGconn *conn;
  ub1 nonBlocking;
  ub1 breakRequested;
  ub1 stmtLevelTx;     ///< the server keeps a transaction after a failing statement
  ub4 cursorStrategy;  ///< 1 declared cursor, else portal; default for statements
  ub4 holdPolicy;      ///< 0, 5 or 6; default for statements
  ub1 defaultParams;   ///< argument lookup of routine calls asks for defaults
  std::FILE
      *protocolTrace;  ///< owned; where the connection's protocol is traced, or null
};

/// The context of calls: which server, session and transaction.
struct OCISvcCtx : OCIHandle {
  OCIServer *server;
  OCISession *session;
  OCITrans *trans;
  ub1 stmtCacheEnabled;
  List *stmts;  ///< OCIStmt of OCIStmtPrepare2; the elements are not owned
};

/// A user.
struct OCISession : OCIHandle {
  char *username;  ///< owned, NUL-terminated, as are the next two
  char *password;
  char *module;
  ub1 pooled;
  List *owned;  ///< elements and list are freed with the session
};

extern "C" {
ZEV_HELPER OCIServer *Alloc_OCIServer();
ZEV_HELPER void Free_OCIServer(OCIServer *server);
ZEV_HELPER sword Get_OCIServer(OCIServer *server, void *value, ub4 *size, ub4 attribute,
                               OCIError *errhp);
ZEV_HELPER sword Set_OCIServer(OCIServer *server, void *value, ub4 size, ub4 attribute,
                               OCIError *errhp);
ZEV_HELPER OCISvcCtx *Alloc_OCISvcCtx();
ZEV_HELPER void Free_OCISvcCtx(OCISvcCtx *svchp);
ZEV_HELPER sword Get_OCISvcCtx(OCISvcCtx *svchp, void *value, ub4 *size, ub4 attribute,
                               OCIError *errhp);
ZEV_HELPER sword Set_OCISvcCtx(OCISvcCtx *svchp, void *value, ub4 size, ub4 attribute,
                               OCIError *errhp);
ZEV_HELPER OCISession *Alloc_OCISession();
ZEV_HELPER void Free_OCISession(OCISession *session);
ZEV_HELPER sword Get_OCISession(OCISession *session, void *value, ub4 *size,
                                ub4 attribute, OCIError *errhp);
ZEV_HELPER sword Set_OCISession(OCISession *session, void *value, ub4 size, ub4 attribute,
                                OCIError *errhp);

/// PQserverVersion of the connection made last in this process.
extern ZEV_HELPER sb4 gDBServerVersion;

/// Splits a connect string into new copies; all four outputs start null. 0 only for a
/// text with a
/// "/" before its first ":", which is looked up by name instead. `length` is not used.
ZEV_HELPER boolean parse_connect_str(const char *text, sb4 length, char **host,
                                     char **port, char **dbname, char **uri);
/// Makes every statement below `env` forget what it owns on `server`.
ZEV_HELPER void markCursorsClosed(OCIEnv *env, OCIServer *server);
/// The server of a service context in `*server`; OCI_INVALID_HANDLE when there is none.
ZEV_HELPER sword getServerHandleFromService(OCIServer **server, OCISvcCtx *svchp,
                                            OCIError *errhp);
}

namespace zev {

/// Closes the connection of a server, if there is one.
void closeConnection(OCIServer *server);

inline OCIServer *asServer(const void *h) {
  return checked<OCIServer>(h, HANDLE_OCIServer);
}
inline OCISvcCtx *asService(const void *h) {
  return checked<OCISvcCtx>(h, HANDLE_OCISvcCtx);
}
inline OCISession *asSession(const void *h) {
  return checked<OCISession>(h, HANDLE_OCISession);
}

}  // namespace zev
