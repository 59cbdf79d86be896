// Fetching many rows of six columns.
#include <memory>

#include "bench/cases.h"
#include "bench/rows.h"

namespace bench {
namespace {

using Read = Sum (*)(Session &, const std::string &, Batch &);

/// Both connections and the buffers that both sides fill, kept over all rounds.
struct Sides {
  explicit Sides(const Setup &setup)
      : conn(connect(setup.target)), session(setup.target), rows(setup.tableRows()) {}

  PgConnection conn;
  Session session;
  Batch batch;
  Sum theirs, ours;
  long rows;
};

const std::string kQuery = std::string("SELECT a, b, c, d, e, f FROM ") + kRowsTable;

Case selectCase(const char *name, const Setup &setup, Read read) {
  const auto sides = std::make_shared<Sides>(setup);
  const auto libpq = [sides] {
    return seconds(
        [&] { sides->theirs = readByLibpq(sides->conn.get(), kQuery, sides->batch); });
  };
  const auto ours = [sides, read] {
    const double taken =
        seconds([&] { sides->ours = read(sides->session, kQuery, sides->batch); });
    checkSums(sides->theirs, sides->ours, sides->rows);
    return taken;
  };
  return {.name = name,
          .unit = "us/row",
          .factor = 1e6 / static_cast<double>(sides->rows),
          .libpq = libpq,
          .ours = ours};
}

}  // namespace

Case arrayFetchCase(const Setup &setup) {
  return selectCase("array fetch of 1000", setup, readByArray);
}

Case prefetchCase(const Setup &setup) {
  return selectCase("single fetch, prefetch 1000", setup, readByPrefetch);
}

}  // namespace bench
