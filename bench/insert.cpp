// Single-row inserts through one prepared statement, in one transaction.
#include <endian.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <memory>

#include "bench/cases.h"

namespace bench {
namespace {

const std::string kInto =
    std::string("INSERT INTO ") + kInsertTable + " (id, weight, name)";

/// One row as the program has it.
struct Row {
  sb4 id;
  double weight;
  char name[24];

  void set(int i) {
    id = i;
    weight = i * 0.25;
    std::snprintf(name, sizeof name, "item %d", i);
  }
};

/// Executes through libpq with integers and floats in binary, text as text.
class ByLibpq {
 public:
  ByLibpq(PGconn *conn, const char *name) : conn_(conn), name_(name) {
    const Oid types[] = {23, 701, 1043};
    good(PQprepare(conn, name, (kInto + " VALUES ($1, $2, $3)").c_str(), 3, types), conn);
  }

  void insert(const Row &row) {
    const uint32_t id = htobe32(static_cast<uint32_t>(row.id));
    const uint64_t weight = htobe64(std::bit_cast<uint64_t>(row.weight));
    const char *values[] = {reinterpret_cast<const char *>(&id),
                            reinterpret_cast<const char *>(&weight), row.name};
    const int lengths[] = {sizeof id, sizeof weight,
                           static_cast<int>(std::strlen(row.name))};
    const int formats[] = {1, 1, 0};
    good(PQexecPrepared(conn_, name_, 3, values, lengths, formats, 0), conn_);
  }

 private:
  PGconn *conn_;
  const char *name_;
};

/// Executes through a statement that is bound to `row`.
class ByOci {
 public:
  ByOci(Session &session, Row &row)
      : session_(session),
        stmt_(session.prepare(kInto + " VALUES (:id, :weight, :name)")) {
    session.bind(stmt_.get(), ":id", &row.id, sizeof row.id, SQLT_INT);
    session.bind(stmt_.get(), ":weight", &row.weight, sizeof row.weight, SQLT_FLT);
    session.bind(stmt_.get(), ":name", row.name, sizeof row.name, SQLT_STR);
  }

  void insert() { session_.execute(stmt_.get(), 1); }

 private:
  Session &session_;
  Statement stmt_;
};

struct Sides {
  explicit Sides(const Setup &setup)
      : conn(connect(setup.target)), session(setup.target) {}

  PgConnection conn;
  Session session;
  Row row = {};
};

double byLibpq(Sides &sides, int rows) {
  PGconn *conn = sides.conn.get();
  exec(conn, (std::string("TRUNCATE ") + kInsertTable).c_str());
  const double taken = seconds([&] {
    ByLibpq statement(conn, "bench_insert");
    exec(conn, "BEGIN");
    for (int i = 0; i < rows; ++i) {
      sides.row.set(i);
      statement.insert(sides.row);
    }
    exec(conn, "COMMIT");
  });
  exec(conn, "DEALLOCATE bench_insert");
  return taken;
}

double byOci(Sides &sides, int rows) {
  exec(sides.conn.get(), (std::string("TRUNCATE ") + kInsertTable).c_str());
  return seconds([&] {
    ByOci statement(sides.session, sides.row);
    for (int i = 0; i < rows; ++i) {
      sides.row.set(i);
      statement.insert();
    }
    sides.session.commit();
  });
}

int tripsOfLibpq(const Setup &setup) {
  Trace trace;  // must outlive the connection, which writes to it until its end
  const PgConnection conn = connect(setup.target);
  Row row = {};
  row.set(-1);
  exec(conn.get(), "BEGIN");
  ByLibpq statement(conn.get(), "bench_insert");
  trace.attach(conn.get());
  statement.insert(row);
  return trace.trips();
}

int tripsOfOci(const Setup &setup) {
  const Trace trace;
  const auto session = tracedSession(setup.target, trace);
  Row row = {};
  ByOci statement(*session, row);
  row.set(-1);
  statement.insert();
  row.set(-2);
  const int before = trace.trips();
  statement.insert();
  return trace.trips() - before;
}

}  // namespace

Case insertCase(const Setup &setup) {
  const auto sides = std::make_shared<Sides>(setup);
  const int rows = setup.scaled(5'000);
  return {.name = "bound INSERT",
          .unit = "us/row",
          .factor = 1e6 / rows,
          .libpq = [sides, rows] { return byLibpq(*sides, rows); },
          .ours = [sides, rows] { return byOci(*sides, rows); },
          .libpqTrips = [setup] { return tripsOfLibpq(setup); },
          .oursTrips = [setup] { return tripsOfOci(setup); }};
}

}  // namespace bench
