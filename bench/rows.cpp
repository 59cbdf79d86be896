#include "bench/rows.h"

#include <charconv>
#include <cstring>
#include <stdexcept>

namespace bench {
namespace {

/// A decimal integer as the server prints it.
template <class Int>
Int parseInteger(const char *text) {
  const bool negative = *text == '-';
  Int value = 0;
  for (text += negative; *text; ++text) value = value * 10 + (*text - '0');
  return negative ? -value : value;
}

double parseDouble(const char *text, int length) {
  double value = 0;
  std::from_chars(text, text + length, value);
  return value;
}

template <size_t Size>
void copyText(std::array<char, Size> &to, const char *text, int length) {
  const size_t n = std::min(static_cast<size_t>(length), Size - 1);
  std::memcpy(to.data(), text, n);
  to[n] = '\0';
}

/// Runs `store` over the cells of one column that are not NULL.
template <class Store>
void fillColumn(const PGresult *result, int rows, int column, Batch &batch, Store store) {
  auto &null = batch.null[static_cast<size_t>(column)];
  for (int row = 0; row < rows; ++row) {
    const auto at = static_cast<size_t>(row);
    null[at] = PQgetisnull(result, row, column) ? -1 : 0;
    if (null[at] == 0)
      store(at, PQgetvalue(result, row, column), PQgetlength(result, row, column));
  }
}

int convert(const PGresult *result, Batch &batch) {
  const int rows = PQntuples(result);
  fillColumn(result, rows, 0, batch,
             [&](size_t i, const char *t, int) { batch.a[i] = parseInteger<sb4>(t); });
  fillColumn(result, rows, 1, batch,
             [&](size_t i, const char *t, int) { batch.b[i] = parseInteger<sb8>(t); });
  fillColumn(result, rows, 2, batch,
             [&](size_t i, const char *t, int n) { batch.c[i] = parseDouble(t, n); });
  fillColumn(result, rows, 3, batch,
             [&](size_t i, const char *t, int n) { copyText(batch.d[i], t, n); });
  fillColumn(result, rows, 4, batch,
             [&](size_t i, const char *t, int n) { copyText(batch.e[i], t, n); });
  fillColumn(result, rows, 5, batch,
             [&](size_t i, const char *t, int n) { copyText(batch.f[i], t, n); });
  return rows;
}

template <class Array>
sb4 elementSize(const Array &array) {
  return static_cast<sb4>(sizeof array[0]);
}

void defineAll(Session &session, OCIStmt *stmt, Batch &batch) {
  session.define(stmt, 1, batch.a.data(), elementSize(batch.a), SQLT_INT,
                 batch.null[0].data());
  session.define(stmt, 2, batch.b.data(), elementSize(batch.b), SQLT_INT,
                 batch.null[1].data());
  session.define(stmt, 3, batch.c.data(), elementSize(batch.c), SQLT_FLT,
                 batch.null[2].data());
  session.define(stmt, 4, batch.d.data(), elementSize(batch.d), SQLT_STR,
                 batch.null[3].data());
  session.define(stmt, 5, batch.e.data(), elementSize(batch.e), SQLT_STR,
                 batch.null[4].data());
  session.define(stmt, 6, batch.f.data(), elementSize(batch.f), SQLT_STR,
                 batch.null[5].data());
}

Sum fetchAll(Session &session, OCIStmt *stmt, ub4 rows, Batch &batch) {
  Sum sum;
  defineAll(session, stmt, batch);
  session.execute(stmt, 0);
  for (;;) {
    const ub4 fetched = session.fetch(stmt, rows);
    sum.add(batch, static_cast<int>(fetched));
    if (fetched < rows) return sum;
  }
}

}  // namespace

void Sum::add(const Batch &batch, int count) {
  rows += count;
  for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
    for (const auto &null : batch.null) nulls += null[i] != 0;
    value += batch.a[i] + static_cast<double>(batch.b[i]) + batch.c[i] + batch.d[i][0] +
             batch.e[i][0] + batch.f[i][0];
  }
}

Sum readByLibpq(PGconn *conn, const std::string &sql, Batch &batch) {
  Sum sum;
  exec(conn, "BEGIN");
  exec(conn, ("DECLARE bench_cursor NO SCROLL CURSOR FOR " + sql).c_str());
  const std::string fetch =
      "FETCH FORWARD " + std::to_string(kBatch) + " FROM bench_cursor";
  for (int rows = kBatch; rows == kBatch;) {
    const PgResult result = exec(conn, fetch.c_str());
    rows = convert(result.get(), batch);
    sum.add(batch, rows);
  }
  exec(conn, "CLOSE bench_cursor");
  exec(conn, "COMMIT");
  return sum;
}

Sum readByArray(Session &session, const std::string &sql, Batch &batch) {
  const Statement stmt = session.prepare(sql);
  const Sum sum = fetchAll(session, stmt.get(), kBatch, batch);
  session.commit();
  return sum;
}

Sum readByPrefetch(Session &session, const std::string &sql, Batch &batch) {
  const Statement stmt = session.prepare(sql);
  ub4 rows = kBatch;
  session.must(OCIAttrSet(stmt.get(), OCI_HTYPE_STMT, &rows, sizeof rows,
                          OCI_ATTR_PREFETCH_ROWS, session.err()));
  const Sum sum = fetchAll(session, stmt.get(), 1, batch);
  session.commit();
  return sum;
}

void checkSums(const Sum &theirs, const Sum &ours, long rows) {
  if (theirs.rows != rows || !(theirs == ours))
    throw std::runtime_error(
        "the two clients did not read the same: " + std::to_string(theirs.rows) +
        " and " + std::to_string(ours.rows) + " rows of " + std::to_string(rows));
}

}  // namespace bench
