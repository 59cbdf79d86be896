#include "core/wire.h"

namespace zev::wire {
namespace {

constexpr int kTextResults = 0;

bool isCopy(const PgResult &result) {
  switch (PQresultStatus(result.get())) {
    case PGRES_COPY_IN:
    case PGRES_COPY_OUT:
    case PGRES_COPY_BOTH:
      return true;
    default:
      return false;
  }
}

/// Takes what an earlier command left; false when a copy is under way, which only PQexec
/// ends.
bool isIdle(PGconn *conn) {
  while (const PgResult left = getResult(conn)) {
    if (isCopy(left)) return false;
  }
  return true;
}

/// Whether `next` only tells that the connection is gone, after an error in the server's
/// words.
bool repeatsFailure(const PgResult &kept, const PgResult &next) {
  return PQresultStatus(kept.get()) == PGRES_FATAL_ERROR && kept &&
         PQresultStatus(next.get()) == PGRES_FATAL_ERROR &&
         !PQresultErrorField(next.get(), PG_DIAG_SQLSTATE);
}

/// The last result of a command, as the client library's own waiting calls give it, but
/// for a server that goes away: what it said before counts, not that it is gone.
PgResult collect(PGconn *conn) {
  PgResult kept;
  while (PgResult next = getResult(conn)) {
    if (repeatsFailure(kept, next)) continue;
    kept = std::move(next);
    if (isCopy(kept)) break;
  }
  return kept;
}

}  // namespace

PgResult exec(PGconn *conn, const char *sql) {
  if (!isIdle(conn)) return PgResult(PQexec(conn, sql));
  return PQsendQuery(conn, sql) ? collect(conn) : nullptr;
}

PgResult execParams(PGconn *conn, const char *sql, const Parameters &p) {
  if (!isIdle(conn)) return nullptr;
  return PQsendQueryParams(conn, sql, p.count, p.types, p.values, p.lengths, p.formats,
                           kTextResults)
             ? collect(conn)
             : nullptr;
}

PgResult prepare(PGconn *conn, const char *name, const char *sql, int count,
                 const Oid *types) {
  return sendPrepare(conn, name, sql, count, types) ? collect(conn) : nullptr;
}

PgResult execPrepared(PGconn *conn, const char *name, const Parameters &p) {
  return sendPrepared(conn, name, p) ? collect(conn) : nullptr;
}

PgResult describePrepared(PGconn *conn, const char *name) {
  return PgResult(PQdescribePrepared(conn, name));
}

PgResult describePortal(PGconn *conn, const char *name) {
  return PgResult(PQdescribePortal(conn, name));
}

bool sendPrepare(PGconn *conn, const char *name, const char *sql, int count,
                 const Oid *types) {
  return isIdle(conn) && PQsendPrepare(conn, name, sql, count, types);
}

bool sendPrepared(PGconn *conn, const char *name, const Parameters &p) {
  return isIdle(conn) && PQsendQueryPrepared(conn, name, p.count, p.values, p.lengths,
                                             p.formats, kTextResults);
}

bool sendDescribePortal(PGconn *conn, const char *name) {
  return isIdle(conn) && PQsendDescribePortal(conn, name);
}

PgResult getResult(PGconn *conn) {
  return PgResult(PQgetResult(conn));
}

}  // namespace zev::wire
