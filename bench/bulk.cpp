// Arrays of a thousand rows, by hand through pipeline mode with one Sync a batch; and
// calls.
#include <endian.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <vector>

#include "bench/cases.h"

namespace bench {
namespace {

constexpr int kBatch = 1000;
constexpr const char *kTable = "zevoci_bench_bulk";
constexpr const char *kRoutine = "zevoci_bench_call";

/// A batch as the program has it.
struct Batch {
  std::vector<sb4> ids = std::vector<sb4>(kBatch);
  std::vector<char> names = std::vector<char>(kBatch * kName);
  static constexpr int kName = 24;

  char *name(int i) { return names.data() + i * kName; }
  void fill(int first) {
    for (int i = 0; i < kBatch; ++i) {
      ids[static_cast<std::size_t>(i)] = first + i;
      std::snprintf(name(i), kName, "item %d", first + i);
    }
  }
};

/// One kind of statement, in both ways of writing its placeholders.
struct Work {
  const char *name;
  std::string byHand;
  std::string byOci;
  bool takesNames;
  bool needsRows;
};

std::string onTable(const char *before, const char *behind) {
  return std::string(before) + kTable + behind;
}

Work insertWork() {
  return {"array INSERT", onTable("INSERT INTO ", " VALUES ($1, $2)"),
          onTable("INSERT INTO ", " VALUES (:id, :name)"), true, false};
}
Work updateWork() {
  return {"array UPDATE", onTable("UPDATE ", " SET name = $2 WHERE id = $1"),
          onTable("UPDATE ", " SET name = :name WHERE id = :id"), true, true};
}
Work deleteWork() {
  return {"array DELETE", onTable("DELETE FROM ", " WHERE id = $1"),
          onTable("DELETE FROM ", " WHERE id = :id"), false, true};
}

/// Sends a batch through pipeline mode and reads its answers.
void pipeline(PGconn *conn, Batch &batch, bool takesNames) {
  if (!PQenterPipelineMode(conn)) throw std::runtime_error("no pipeline");
  for (int i = 0; i < kBatch; ++i) {
    const uint32_t id =
        htobe32(static_cast<uint32_t>(batch.ids[static_cast<std::size_t>(i)]));
    const char *values[] = {reinterpret_cast<const char *>(&id), batch.name(i)};
    const int lengths[] = {sizeof id, static_cast<int>(std::strlen(batch.name(i)))};
    const int formats[] = {1, 0};
    if (!PQsendQueryPrepared(conn, "bench_bulk", takesNames ? 2 : 1, values, lengths,
                             formats, 0))
      throw std::runtime_error(PQerrorMessage(conn));
  }
  PQpipelineSync(conn);
  for (bool synced = false; !synced;) {
    const PgResult result(PQgetResult(conn));
    const ExecStatusType status = PQresultStatus(result.get());
    synced = status == PGRES_PIPELINE_SYNC;
    if (result && !synced && status != PGRES_COMMAND_OK)
      throw std::runtime_error(PQresultErrorMessage(result.get()));
  }
  PQexitPipelineMode(conn);
}

struct Sides {
  Sides(const Setup &setup, const Work &of)
      : work(of), conn(connect(setup.target)), session(setup.target) {
    exec(conn.get(), onTable("DROP TABLE IF EXISTS ", "").c_str());
    exec(conn.get(),
         onTable("CREATE TABLE ", " (id int4 PRIMARY KEY, name varchar(30))").c_str());
    const Oid types[] = {23, 1043};
    good(PQprepare(conn.get(), "bench_bulk", work.byHand.c_str(), work.takesNames ? 2 : 1,
                   types),
         conn.get());
    stmt = session.prepare(work.byOci);
    session.bind(stmt.get(), ":id", batch.ids.data(), sizeof(sb4), SQLT_INT);
    if (work.takesNames)
      session.bind(stmt.get(), ":name", batch.names.data(), Batch::kName, SQLT_STR);
  }
  ~Sides() { PQclear(PQexec(conn.get(), onTable("DROP TABLE IF EXISTS ", "").c_str())); }
  Sides(const Sides &) = delete;
  Sides &operator=(const Sides &) = delete;

  void reset(int rows) {
    exec(conn.get(), onTable("TRUNCATE ", "").c_str());
    if (!work.needsRows) return;
    exec(conn.get(), (onTable("INSERT INTO ", " SELECT g, 'x' FROM generate_series(0, ") +
                      std::to_string(rows - 1) + ") g")
                         .c_str());
    exec(conn.get(), onTable("VACUUM ANALYZE ", "").c_str());
  }
  double byLibpq(int rows) {
    reset(rows);
    return seconds([&] {
      exec(conn.get(), "BEGIN");
      for (int first = 0; first < rows; first += kBatch) {
        batch.fill(first);
        pipeline(conn.get(), batch, work.takesNames);
      }
      exec(conn.get(), "COMMIT");
    });
  }
  double byOci(int rows) {
    reset(rows);
    return seconds([&] {
      for (int first = 0; first < rows; first += kBatch) {
        batch.fill(first);
        session.execute(stmt.get(), kBatch);
      }
      session.commit();
    });
  }

  Work work;
  PgConnection conn;
  Session session;
  Batch batch;
  Statement stmt;
};

Case bulkCase(const Setup &setup, const Work &work) {
  const auto sides = std::make_shared<Sides>(setup, work);
  const int rows = setup.scaled(20) * kBatch;
  return {.name = work.name,
          .unit = "us/row",
          .factor = 1e6 / rows,
          .libpq = [sides, rows] { return sides->byLibpq(rows); },
          .ours = [sides, rows] { return sides->byOci(rows); }};
}

/// A procedure called with an IN and an OUT argument.
struct CallSides {
  explicit CallSides(const Setup &setup)
      : conn(connect(setup.target)), session(setup.target) {
    exec(conn.get(), (std::string("CREATE OR REPLACE PROCEDURE ") + kRoutine +
                      "(a int, OUT b int) LANGUAGE plpgsql AS 'BEGIN b := a + 1; END'")
                         .c_str());
    const Oid types[] = {23};
    good(PQprepare(conn.get(), "bench_call",
                   (std::string("CALL ") + kRoutine + "($1, NULL)").c_str(), 1, types),
         conn.get());
    stmt = session.prepare(std::string("BEGIN ") + kRoutine + "(:a, :b); END;");
    session.bind(stmt.get(), ":a", &in, sizeof in, SQLT_INT);
    session.bind(stmt.get(), ":b", &out, sizeof out, SQLT_INT);
  }
  ~CallSides() {
    PQclear(PQexec(conn.get(), (std::string("DROP PROCEDURE ") + kRoutine).c_str()));
  }
  CallSides(const CallSides &) = delete;
  CallSides &operator=(const CallSides &) = delete;

  double byLibpq(int calls) {
    return seconds([&] {
      exec(conn.get(), "BEGIN");
      for (int i = 0; i < calls; ++i) {
        const uint32_t a = htobe32(static_cast<uint32_t>(i));
        const char *values[] = {reinterpret_cast<const char *>(&a)};
        const int lengths[] = {sizeof a}, formats[] = {1};
        const PgResult row =
            good(PQexecPrepared(conn.get(), "bench_call", 1, values, lengths, formats, 0),
                 conn.get());
        if (std::atoi(PQgetvalue(row.get(), 0, 0)) != i + 1)
          throw std::runtime_error("another value came back");
      }
      exec(conn.get(), "COMMIT");
    });
  }
  double byOci(int calls) {
    return seconds([&] {
      for (in = 0; in < calls; ++in) {
        session.execute(stmt.get(), 1);
        if (out != in + 1) throw std::runtime_error("another value came back");
      }
      session.commit();
    });
  }

  PgConnection conn;
  Session session;
  Statement stmt;
  sb4 in = 0, out = 0;
};

}  // namespace

Case arrayInsertCase(const Setup &setup) {
  return bulkCase(setup, insertWork());
}
Case arrayUpdateCase(const Setup &setup) {
  return bulkCase(setup, updateWork());
}
Case arrayDeleteCase(const Setup &setup) {
  return bulkCase(setup, deleteWork());
}

Case callCase(const Setup &setup) {
  const auto sides = std::make_shared<CallSides>(setup);
  const int calls = setup.scaled(5'000);
  return {.name = "procedure call with OUT",
          .unit = "us/call",
          .factor = 1e6 / calls,
          .libpq = [sides, calls] { return sides->byLibpq(calls); },
          .ours = [sides, calls] { return sides->byOci(calls); }};
}

}  // namespace bench
