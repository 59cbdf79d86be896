/// The extras of pqext.h where the client library has the extended operations of its own:
/// what saves round trips on stock libpq is either needless there or done at once.
#pragma once

#include <libpq-fe.h>

#include <cstddef>

enum PQextDirection { kDirectionIn = 1, kDirectionOut = 2, kDirectionInOut = 3 };

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

/// One row after the other.
inline PGresult *PQextExecRows(PGconn *conn, const char *stmtName, int nParams, int nRows,
                               const char *const *values, const int *lengths,
                               const int *formats) {
  PGresult *result = nullptr;
  for (int row = 0; row < nRows; ++row) {
    const auto start = static_cast<std::ptrdiff_t>(row) * nParams;
    PQclear(result);
    result = PQexecPrepared(conn, stmtName, nParams, values + start, lengths + start,
                            formats + start, 0);
    if (PQresultStatus(result) != PGRES_COMMAND_OK) break;
  }
  return result;
}

inline int PQextIsBusy(PGconn *conn) {
  return PQconsumeInput(conn) && PQisBusy(conn);
}

inline const char *PQextErrorMessage(PGconn *conn) {
  return PQerrorMessage(conn);
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
