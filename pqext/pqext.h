/// Client operations that stock libpq lacks, beside it on the same connection.
///
/// Each leaves the connection in a state in which the next plain libpq call works. An
/// operation whose results have not been read yet counts as unread, as with libpq's own
/// PQsend functions: read until null before the next call of any kind.
///
/// With ZEVOCI_NATIVE_PQEXT the client library itself has the operations, and only the
/// PQext functions are defined here, as far as they mean anything then.
#pragma once

#include <libpq-fe.h>

#ifdef ZEVOCI_NATIVE_PQEXT
#include "pqext/native.h"
#else

extern "C" {

/// Opens the portal `portalName` over the prepared statement `stmtName`. Non-zero when
/// sent; the connection's error message tells why not. Exactly one result follows through
/// PQextGetResult, PGRES_COMMAND_OK on success. `resultFormat` must be 0 (text). Arrays
/// are as for PQexecPrepared. The portal is an SQL cursor and, like one, needs an open
/// transaction.
int PQsendBindPrepared(PGconn *conn, const char *portalName, const char *stmtName,
                       int nParams, const char *const *paramValues,
                       const int *paramLengths, const int *paramFormats,
                       int resultFormat);

/// Fetches `count` rows (0, or more than INT_MAX: all that are left) of a portal or
/// cursor. Non-zero when sent; exactly one result follows, PGRES_TUPLES_OK on success.
int PQsendFetchPrepared(PGconn *conn, const char *portalName, unsigned int count);

/// Closes a portal or declared cursor. 1 when sent; exactly one result follows,
/// PGRES_COMMAND_OK also when the portal is gone already and in a failed transaction,
/// where what survives the failure is closed by the first operation after it. A name that
/// was not opened here costs a question whether it exists.
int PQsendClosePortal(PGconn *conn, const char *portalName);

/// The next result of an operation of this header, waiting for it; null when there is
/// none left.
PGresult *PQextGetResult(PGconn *conn);

/// The way of a parameter of a called routine.
enum PQextDirection { kDirectionIn = 1, kDirectionOut = 2, kDirectionInOut = 3 };

/// As PQprepare for a call of one routine, "CALL name ( $1 , $2 );", with a direction for
/// each parameter (null: all IN). The routine may be a procedure or a function, its name
/// may have a schema in front. Where exactly one routine of that name exists, every
/// argument is cast to the type that it is declared with. PGRES_COMMAND_OK on success;
/// null when nothing could be sent.
PGresult *PQprepareOut(PGconn *conn, const char *stmtName, const char *query, int nParams,
                       const Oid *paramTypes, const unsigned int *paramDirs);
/// The same without waiting for the answer to the PREPARE itself. Non-zero when sent; one
/// result follows.
int PQsendPrepareOut(PGconn *conn, const char *stmtName, const char *query, int nParams,
                     const Oid *paramTypes, const unsigned int *paramDirs);
/// Runs a call that was prepared with directions; values of OUT parameters are not sent.
/// Non-zero when sent. One main result follows through PQextGetResult: PGRES_TUPLES_OK
/// with the return value of a function in row 0, column 0, PGRES_COMMAND_OK or
/// PGRES_TUPLES_OK for a procedure; then PQgetOutResult.
int PQsendQueryPreparedOut(PGconn *conn, const char *stmtName, int nParams,
                           const char *const *paramValues, const int *paramLengths,
                           const int *paramFormats, int resultFormat);
/// The values that the call just run gave back: one row, one column per OUT or INOUT
/// parameter in order, none where there is no such parameter. Null when there is none
/// left. The caller clears it.
PGresult *PQgetOutResult(PGconn *conn);

/// Runs a prepared statement for each of `nRows` rows in one round trip or a few.
/// `values` and `lengths` are row-major, `nParams` to a row; `formats` serve all rows.
/// PGRES_COMMAND_OK when all rows ran; else the result of the first row that failed,
/// whose message PQextErrorMessage gives too. Null when nothing could be sent. Rows that
/// the statement returns are dropped.
PGresult *PQexecBulkPrepared(PGconn *conn, const char *stmtName, int nParams, int nRows,
                             const char *const *values, const int *lengths,
                             const int *formats);

/// Opens a bulk run that no call waits for. 1 when opened. No result follows.
int PQsendBulkStart(PGconn *conn, const char *stmtName, int nParams, const int *formats);
/// Gives the open run `nRows` rows, whose values are copied. 1 when taken. Then, as long
/// as PQextGetResult gives a result, rows are still on their way; each call sends and
/// reads what is possible without waiting and answers at once. Null: all rows are
/// answered.
int PQsendBulk(PGconn *conn, int nRows, const char *const *values, const int *lengths);
/// Ends the run and gives the connection back: 1, or 7 (PGRES_FATAL_ERROR) when a row
/// failed or the connection did; PQextErrorMessage tells. Rows still on their way are
/// waited for. No result follows.
int PQsendBulkFinish(PGconn *conn);

/// Runs a prepared statement for each of `nRows` rows as PQexecBulkPrepared does, but
/// each row has formats of its own (`formats` is row-major too) and the result is that of
/// the last row, or of the first one that failed or returned rows.
PGresult *PQextExecRows(PGconn *conn, const char *stmtName, int nParams, int nRows,
                        const char *const *values, const int *lengths,
                        const int *formats);

/// Whether the next PQextGetResult would have to wait for the server. False during a bulk
/// run.
int PQextIsBusy(PGconn *conn);
/// The message of the last bulk operation that failed; PQerrorMessage when none did.
const char *PQextErrorMessage(PGconn *conn);

/// Attaches the adapter's state to a new connection; non-zero on success. Every operation
/// does this by itself on first use. The state is freed with the connection.
int PQextAttach(PGconn *conn);

/// Says whether the next PQsendBindPrepared, and only that one, must be able to move
/// backward whatever the plan. Without it a portal moves forward only, at no extra cost.
void PQextScrollNext(PGconn *conn, int scroll);

/// Tells the adapter the text and declared parameter types of a statement that was
/// prepared on the connection, which saves it a question to the server, and that a
/// statement is gone. A null `paramTypes`, or a zero in it, leaves the type to the
/// server.
void PQextRememberPrepared(PGconn *conn, const char *stmtName, const char *query,
                           int nParams, const Oid *paramTypes);
void PQextForgetPrepared(PGconn *conn, const char *stmtName);

/// Closes a portal or declared cursor together with the next PQsendBindPrepared, in the
/// same round trip. No result of it is to be seen. Costs nothing when the transaction
/// ends before.
void PQextCloseLater(PGconn *conn, const char *portalName);

/// Does now what is still to be closed: at most one question and one command. Non-zero
/// when nothing is left to close; zero in a failed transaction with something to close,
/// and when the server refused.
int PQextFlush(PGconn *conn);

/// Announces that the next PQsendBindPrepared, and only that one, will be followed by
/// PQsendFetchPrepared of the same portal with this `count`: both go out in one round
/// trip, and that fetch then hands out what has been read. Each operation still has its
/// own result: an error of the fetch is the fetch's. Notices of both reach the notice
/// processor that is set while the bind's result is read. A fetch of another count gets
/// the rows read ahead first and the missing ones from the server, but its command tag
/// may name another number; SQL of one's own that moves the portal before that fetch
/// moves it from behind the rows read ahead. Ignored for a portal that can move backward,
/// whose position must stand where the program sees it.
void PQextExpectFetch(PGconn *conn, unsigned int count);

/// Has the next PQsendBindPrepared, and only that one, send BEGIN before it in the same
/// round trip when no transaction is open by then. Its failure is dropped: the bind then
/// fails itself.
void PQextBeginFirst(PGconn *conn);
}

#endif
