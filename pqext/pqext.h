/// Client operations that stock libpq lacks, beside it on the same connection.
///
/// Each leaves the connection in a state in which the next plain libpq call works.
#pragma once

#include <libpq-fe.h>

extern "C" {

/// Opens the portal `portalName` over the prepared statement `stmtName`. Non-zero when sent; the
/// connection's error message tells why not. Exactly one result follows through PQextGetResult,
/// PGRES_COMMAND_OK on success. `resultFormat` must be 0 (text). Arrays are as for
/// PQexecPrepared.
int PQsendBindPrepared(PGconn *conn, const char *portalName, const char *stmtName, int nParams,
                       const char *const *paramValues, const int *paramLengths,
                       const int *paramFormats, int resultFormat);

/// Fetches `count` rows (0: all) of a portal or cursor. Non-zero when sent; exactly one result
/// follows, PGRES_TUPLES_OK on success.
int PQsendFetchPrepared(PGconn *conn, const char *portalName, unsigned int count);

/// Closes a portal or declared cursor. 1 when sent; exactly one result follows,
/// PGRES_COMMAND_OK also when the portal is gone already and in a failed transaction.
int PQsendClosePortal(PGconn *conn, const char *portalName);

/// The next result of an operation of this header, waiting for it; null when there is none left.
PGresult *PQextGetResult(PGconn *conn);

/// Attaches the adapter's state to a new connection; non-zero on success. Every operation does
/// this by itself on first use.
int PQextAttach(PGconn *conn);

/// Says whether the next PQsendBindPrepared must be able to move backward whatever the plan.
void PQextScrollNext(PGconn *conn, int scroll);

/// Tells the adapter the text and declared parameter types of a statement that was prepared on
/// the connection, which saves it a question to the server, and that a statement is gone.
void PQextRememberPrepared(PGconn *conn, const char *stmtName, const char *query, int nParams,
                           const Oid *paramTypes);
void PQextForgetPrepared(PGconn *conn, const char *stmtName);
}
