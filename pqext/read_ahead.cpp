#include "pqext/adapter.h"

namespace zev::pqext {
namespace {

/// Appends the rows from `first` to before `last` of `source`, which has the same
/// columns.
void appendRows(PGresult *target, const PGresult *source, int first, int last) {
  int row = PQntuples(target);
  for (int from = first; from < last; ++from, ++row) {
    for (int field = 0; field < PQnfields(source); ++field) {
      const bool null = PQgetisnull(source, from, field);
      char *value = null ? nullptr : PQgetvalue(source, from, field);
      const int length = null ? -1 : PQgetlength(source, from, field);
      if (!PQsetvalue(target, row, field, value, length)) throw std::bad_alloc();
    }
  }
}

/// A result with the columns of `source` and no rows.
Result emptyCopy(const PGresult *source) {
  Result copy(PQcopyResult(source, PG_COPYRES_ATTRS));
  if (!copy) throw std::bad_alloc();
  return copy;
}

Result copyRows(const PGresult *source, int first, int last) {
  Result copy = emptyCopy(source);
  appendRows(copy.get(), source, first, last);
  return copy;
}

}  // namespace

std::optional<unsigned> takeAhead(Adapter &adapter, Portal &portal, unsigned count) {
  PGresult *const held = portal.ahead.get();
  const auto rows = static_cast<unsigned>(PQntuples(held));
  const bool atEnd = portal.aheadCount == 0 || rows < portal.aheadCount;
  const bool whole = count == portal.aheadCount || !succeeded(held);
  if (whole || (atEnd && (count == 0 || count > rows))) {
    adapter.ready = std::move(portal.ahead);
    return std::nullopt;
  }
  if (count != 0 && count <= rows) {
    const int split = static_cast<int>(count);
    adapter.ready = copyRows(held, 0, split);
    portal.ahead = copyRows(held, split, static_cast<int>(rows));
    if (portal.aheadCount != 0) portal.aheadCount -= count;
    if (count == rows) portal.ahead.reset();
    return std::nullopt;
  }
  adapter.head = std::move(portal.ahead);
  return count == 0 ? 0 : count - rows;
}

Result joinRows(Result head, Result tail) {
  if (PQresultStatus(tail.get()) != PGRES_TUPLES_OK) return tail;
  Result all = emptyCopy(tail.get());
  appendRows(all.get(), head.get(), 0, PQntuples(head.get()));
  appendRows(all.get(), tail.get(), 0, PQntuples(tail.get()));
  return all;
}

}  // namespace zev::pqext
