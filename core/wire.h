/// The one door for plain commands: whoever sends to or receives from a connection
/// outside the extended client operations does it here, so that round trips stay
/// countable.
#pragma once

#include <libpq-fe.h>

#include "core/owned.h"

namespace zev::wire {

/// Arrays of the parameters of one execution, in $n order.
struct Parameters {
  int count = 0;
  const Oid *types = nullptr;
  const char *const *values = nullptr;
  const int *lengths = nullptr;
  const int *formats = nullptr;
};

/// One round trip each. The result is null when the client library could not even send.
PgResult exec(PGconn *conn, const char *sql);
PgResult execParams(PGconn *conn, const char *sql, const Parameters &parameters);
PgResult prepare(PGconn *conn, const char *name, const char *sql, int count,
                 const Oid *types);
PgResult execPrepared(PGconn *conn, const char *name, const Parameters &parameters);
PgResult describePrepared(PGconn *conn, const char *name);
PgResult describePortal(PGconn *conn, const char *name);

/// The same without waiting; false when the client library could not send. What an
/// earlier command left is taken first.
bool sendPrepare(PGconn *conn, const char *name, const char *sql, int count,
                 const Oid *types);
bool sendPrepared(PGconn *conn, const char *name, const Parameters &parameters);
bool sendDescribePortal(PGconn *conn, const char *name);

/// The next result of what was sent, waiting for it; null when there is none left.
PgResult getResult(PGconn *conn);

}  // namespace zev::wire
