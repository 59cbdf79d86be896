#include "core/wire.h"

namespace zev::wire {
namespace {

constexpr int kTextResults = 0;

}  // namespace

PgResult exec(PGconn *conn, const char *sql) { return PgResult(PQexec(conn, sql)); }

PgResult execParams(PGconn *conn, const char *sql, const Parameters &p) {
  return PgResult(
      PQexecParams(conn, sql, p.count, p.types, p.values, p.lengths, p.formats, kTextResults));
}

PgResult prepare(PGconn *conn, const char *name, const char *sql, int count,
                 const Oid *types) {
  return PgResult(PQprepare(conn, name, sql, count, types));
}

PgResult execPrepared(PGconn *conn, const char *name, const Parameters &p) {
  return PgResult(
      PQexecPrepared(conn, name, p.count, p.values, p.lengths, p.formats, kTextResults));
}

PgResult describePrepared(PGconn *conn, const char *name) {
  return PgResult(PQdescribePrepared(conn, name));
}

PgResult describePortal(PGconn *conn, const char *name) {
  return PgResult(PQdescribePortal(conn, name));
}

int sendPrepare(PGconn *conn, const char *name, const char *sql, int count,
                const Oid *types) {
  return PQsendPrepare(conn, name, sql, count, types);
}

int sendQueryPrepared(PGconn *conn, const char *name, const Parameters &p) {
  return PQsendQueryPrepared(conn, name, p.count, p.values, p.lengths, p.formats,
                             kTextResults);
}

PgResult getResult(PGconn *conn) { return PgResult(PQgetResult(conn)); }

}  // namespace zev::wire
