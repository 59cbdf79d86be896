/// What both ways of describing a column ask of the catalogues.
#pragma once

#include <array>
#include <string>

#include "core/wire.h"

namespace zev {

/// Runs a query of `values` as text parameters; `types` may be null.
template <std::size_t N>
PgResult askCatalogue(PGconn *conn, const char *sql,
                      const std::array<std::string, N> &values,
                      const Oid *types = nullptr) {
  std::array<const char *, N> texts;
  for (std::size_t i = 0; i < N; ++i) texts[i] = values[i].c_str();
  return wire::execParams(conn, sql,
                          {.count = N, .types = types, .values = texts.data()});
}

/// A column may be null unless the catalogue says "t".
inline bool mayBeNull(const char *attnotnull) {
  return attnotnull[0] != 't';
}

/// The modifier less its header of four bytes, -1 for none.
inline int declaredSize(int modifier) {
  return modifier == -1 ? -1 : modifier - 4;
}

/// The precision in a numeric's declared size.
inline unsigned precisionOf(int declared) {
  return static_cast<unsigned>(declared) >> 16;
}

}  // namespace zev
