#include "tests/server/wire_log.h"

#include <fstream>
#include <optional>
#include <sstream>

namespace zev::test {
namespace {

struct Message {
  char from;  ///< F frontend, B backend
  std::string name;
  std::string body;
};

/// The part before the next tab, which is cut off `line` together with the tab.
std::string_view takeField(std::string_view &line) {
  const std::size_t tab = line.find('\t');
  const std::string_view field = line.substr(0, tab);
  line.remove_prefix(tab == line.npos ? line.size() : tab + 1);
  return field;
}

bool isTimestamp(std::string_view field) {
  return field.size() == 26 && field.find_first_not_of("0123456789-:. ") == field.npos;
}

/// Reads `[timestamp] direction length name body`, parted by tabs; the length may be
/// masked.
std::optional<Message> parseHead(std::string_view line) {
  std::string_view from = takeField(line);
  if (isTimestamp(from)) from = takeField(line);
  if (from != "F" && from != "B") return std::nullopt;
  const std::string_view length = takeField(line);
  if (length.find_first_not_of("0123456789N") != length.npos) return std::nullopt;
  const std::string_view name = takeField(line);
  if (name.empty()) return std::nullopt;
  return Message{from.front(), std::string(name), std::string(line)};
}

/// Cuts the trace into messages; a line that does not begin one continues the one before.
std::vector<Message> cutMessages(std::string_view trace) {
  std::vector<Message> messages;
  std::istringstream lines{std::string(trace)};
  for (std::string line; std::getline(lines, line);) {
    if (std::optional<Message> message = parseHead(line)) {
      messages.push_back(std::move(*message));
    } else if (!messages.empty()) {
      messages.back().body += '\n' + line;
    }
  }
  return messages;
}

/// The SQL of ` "text"` (Query) or ` "name" "text" types...` (Parse).
std::string sqlOf(const Message &message) {
  std::size_t first = message.body.find('"');
  if (message.name == "Parse")
    first = message.body.find('"', message.body.find("\" \"") + 1);
  const std::size_t last = message.body.rfind('"');
  return message.body.substr(first + 1, last - first - 1);
}

}  // namespace

WireLog parseWireLog(std::string_view trace) {
  WireLog log;
  for (const Message &message : cutMessages(trace)) {
    log.messages.push_back(std::string(1, message.from) + ' ' + message.name);
    if (message.name == "ReadyForQuery") ++log.roundTrips;
    if (message.name == "Query" || message.name == "Parse")
      log.sql.push_back(sqlOf(message));
  }
  return log;
}

std::string readFile(const std::string &path) {
  const std::ifstream file(path);
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

}  // namespace zev::test
