/// Tables of names by number.
#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>

namespace zev {

struct NamedNumber {
  std::size_t number;
  const char *name;
};

/// The names at their numbers minus `First`, null where none is given. A number outside
/// the table does not compile.
template <std::size_t Size, std::size_t First = 0>
consteval std::array<const char *, Size> byNumber(
    std::initializer_list<NamedNumber> rows) {
  std::array<const char *, Size> table{};
  for (const NamedNumber &row : rows) table.at(row.number - First) = row.name;
  return table;
}

/// The name of `number`, or `unknown`.
template <std::size_t Count>
constexpr const char *nameOf(const NamedNumber (&rows)[Count], std::size_t number,
                             const char *unknown) {
  for (const NamedNumber &row : rows) {
    if (row.number == number) return row.name;
  }
  return unknown;
}

}  // namespace zev
