/// What went over a connection, read from libpq's trace.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zev::test {

struct WireLog {
  int roundTrips = 0;                 ///< ReadyForQuery messages
  std::vector<std::string> sql;       ///< texts of Query and Parse messages, in order
  std::vector<std::string> messages;  ///< each message as "F Query" or "B DataRow"
};

/// Reads the text that PQtrace wrote (libpq manual, "Control Functions"), with or without
/// timestamps. SQL of several lines stays whole.
WireLog parseWireLog(std::string_view trace);

/// The content of a file; empty when there is none.
std::string readFile(const std::string &path);

}  // namespace zev::test
