/// The extras of pqext.h where the client library has the extended operations of its own:
/// what saves round trips on stock libpq is either needless there or done at once.
#pragma once

#include <libpq-fe.h>

inline int PQextAttach(PGconn *) {
  return 1;
}
inline void PQextScrollNext(PGconn *, int) {}
inline void PQextRememberPrepared(PGconn *, const char *, const char *, int,
                                  const Oid *) {}
inline void PQextForgetPrepared(PGconn *, const char *) {}
inline void PQextExpectFetch(PGconn *, unsigned int) {}
inline int PQextFlush(PGconn *) {
  return 1;
}

inline PGresult *PQextGetResult(PGconn *conn) {
  return PQgetResult(conn);
}

/// Closes at once.
inline void PQextCloseLater(PGconn *conn, const char *portalName) {
  if (!PQsendClosePortal(conn, portalName)) return;
  while (PGresult *result = PQgetResult(conn)) PQclear(result);
}

/// Begins at once.
inline void PQextBeginFirst(PGconn *conn) {
  if (PQtransactionStatus(conn) == PQTRANS_IDLE) PQclear(PQexec(conn, "BEGIN"));
}
