/// The six columns of kRowsTable as a program holds them, and both ways to fill them.
#pragma once

#include <array>
#include <functional>

#include "bench/clients.h"

namespace bench {

inline constexpr int kBatch = 1000;

/// Column-wise buffers for one batch of rows.
struct Batch {
  std::array<sb4, kBatch> a;                   ///< int4
  std::array<sb8, kBatch> b;                   ///< int8
  std::array<double, kBatch> c;                ///< float8
  std::array<std::array<char, 40>, kBatch> d;  ///< text, terminated
  std::array<std::array<char, 40>, kBatch> e;  ///< varchar, terminated
  std::array<std::array<char, 24>, kBatch> f;  ///< numeric as text, terminated
  std::array<std::array<sb2, kBatch>, 6> null;
};

/// Adds up what came, so that both clients can be shown to have read the same.
struct Sum {
  long rows = 0, nulls = 0;
  double value = 0;

  void add(const Batch &batch, int rows);
  bool operator==(const Sum &) const = default;
};

/// Reads all rows of `sql` through a cursor, kBatch a FETCH, with hand-written
/// converters.
Sum readByLibpq(PGconn *conn, const std::string &sql, Batch &batch);

/// Reads all rows of `sql` through array defines, kBatch a fetch.
Sum readByArray(Session &session, const std::string &sql, Batch &batch);

/// Reads all rows of `sql` one a fetch, kBatch prefetched.
Sum readByPrefetch(Session &session, const std::string &sql, Batch &batch);

/// Throws unless both sums are those of `rows` rows.
void checkSums(const Sum &theirs, const Sum &ours, long rows);

}  // namespace bench
