// One row by its key, over and over.
#include <endian.h>

#include <memory>
#include <stdexcept>

#include "bench/cases.h"

namespace bench {
namespace {

const std::string kByKey = std::string("SELECT d FROM ") + kRowsTable + " WHERE a = ";

/// The n-th key of a walk over the table that jumps about.
sb4 keyOf(int n, int rows) {
  return static_cast<sb4>(1 + (n * 7919L) % rows);
}

class ByLibpq {
 public:
  explicit ByLibpq(PGconn *conn) : conn_(conn) {
    const Oid types[] = {23};
    good(PQprepare(conn, "bench_point", (kByKey + "$1").c_str(), 1, types), conn);
    exec(conn, "BEGIN");
  }

  void select(sb4 key, char (&found)[40]) {
    const uint32_t wire = htobe32(static_cast<uint32_t>(key));
    const char *values[] = {reinterpret_cast<const char *>(&wire)};
    const int lengths[] = {sizeof wire}, formats[] = {1};
    const PgResult result =
        good(PQexecPrepared(conn_, "bench_point", 1, values, lengths, formats, 0), conn_);
    if (PQntuples(result.get()) != 1) throw std::runtime_error("no row for a key");
    std::snprintf(found, sizeof found, "%s", PQgetvalue(result.get(), 0, 0));
  }

  void end() {
    exec(conn_, "COMMIT");
    exec(conn_, "DEALLOCATE bench_point");
  }

 private:
  PGconn *conn_;
};

class ByOci {
 public:
  explicit ByOci(Session &session)
      : session_(session), stmt_(session.prepare(kByKey + ":key")) {
    session.bind(stmt_.get(), ":key", &key_, sizeof key_, SQLT_INT);
    session.define(stmt_.get(), 1, found_, sizeof found_, SQLT_STR, &null_);
  }

  const char *select(sb4 key) {
    key_ = key;
    session_.execute(stmt_.get(), 1);
    return found_;
  }

 private:
  Session &session_;
  Statement stmt_;
  sb4 key_ = 0;
  sb2 null_ = 0;
  char found_[40] = "";
};

struct Sides {
  explicit Sides(const Setup &setup)
      : conn(connect(setup.target)), session(setup.target) {}

  PgConnection conn;
  Session session;
  long theirs = 0, ours = 0;
};

double byLibpq(Sides &sides, int executions, int rows) {
  char found[40] = "";
  sides.theirs = 0;
  return seconds([&] {
    ByLibpq statement(sides.conn.get());
    for (int i = 0; i < executions; ++i) {
      statement.select(keyOf(i, rows), found);
      sides.theirs += found[5] + found[6];
    }
    statement.end();
  });
}

double byOci(Sides &sides, int executions, int rows) {
  sides.ours = 0;
  const double taken = seconds([&] {
    ByOci statement(sides.session);
    for (int i = 0; i < executions; ++i) {
      const char *found = statement.select(keyOf(i, rows));
      sides.ours += found[5] + found[6];
    }
    sides.session.commit();
  });
  if (sides.ours != sides.theirs)
    throw std::runtime_error("the two clients found different rows");
  return taken;
}

int tripsOfLibpq(const Setup &setup) {
  Trace trace;  // must outlive the connection, which writes to it until its end
  const PgConnection conn = connect(setup.target);
  char found[40];
  ByLibpq statement(conn.get());
  trace.attach(conn.get());
  statement.select(1, found);
  return trace.trips();
}

/// Of the third execution: the first prepares.
int tripsOfOci(const Setup &setup) {
  const Trace trace;
  const auto session = tracedSession(setup.target, trace);
  ByOci statement(*session);
  statement.select(1);
  statement.select(2);
  const int before = trace.trips();
  statement.select(1);
  return trace.trips() - before;
}

}  // namespace

Case pointCase(const Setup &setup) {
  const auto sides = std::make_shared<Sides>(setup);
  const int executions = setup.scaled(20'000), rows = setup.tableRows();
  return {.name = "point SELECT",
          .unit = "us/exec",
          .factor = 1e6 / executions,
          .libpq = [=] { return byLibpq(*sides, executions, rows); },
          .ours = [=] { return byOci(*sides, executions, rows); },
          .libpqTrips = [setup] { return tripsOfLibpq(setup); },
          .oursTrips = [setup] { return tripsOfOci(setup); }};
}

}  // namespace bench
