/// Rows of a single-row INSERT sent as an INSERT of many rows, where the outcome is the
/// same.
#pragma once

#include <libpq-fe.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pqext/adapter.h"
#include "pqext/bulk_run.h"

namespace zev::pqext {

// insert_values.cpp

/// "INSERT INTO table (columns) VALUES ($1, 'x', DEFAULT)" taken apart.
struct InsertText {
  std::string_view table;   ///< as written
  std::string_view head;    ///< up to the parenthesis of the values
  std::string_view values;  ///< with its parentheses
};

/// Empty for every other text: only names, parameters, plain numbers and strings, NULL
/// and DEFAULT are understood, so that nothing in it can depend on the rows before.
std::optional<InsertText> parseInsert(std::string_view text);

/// The command for `rows` rows of `params` parameters each.
std::string insertOf(std::string_view head, std::string_view values, int params,
                     int rows);

// many_rows.cpp

/// Runs the rows of an INSERT many at a time. Null when they must go one by one: the
/// statement is no such INSERT, or the attempt failed and has been undone.
Result runTogether(PGconn *conn, Adapter &adapter, const char *name,
                   const RowArrays &rows);

// bulk.cpp

/// Runs the rows one by one in one pipeline, behind the commands of `before`.
Result runRows(PGconn *conn, Adapter &adapter, const char *name, const RowArrays &rows,
               const std::vector<std::string> &before);

}  // namespace zev::pqext
