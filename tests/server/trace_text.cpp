#include "tests/server/trace_text.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace zev::test {
namespace {

constexpr std::string_view kNarrativeHead = "-o2pTrace[trace.cpp:916]:";

bool isStray(char c) {
  return c != '\t' && (c < ' ' || c > '~');
}

bool isDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

/// The length of the number at the front of `line`, 0 without one.
std::size_t numberAt(std::string_view line) {
  const std::size_t sign = line[0] == '-';
  if (line.size() == sign || !isDigit(line[sign])) return 0;
  return std::min(line.find_first_not_of("0123456789", sign), line.size());
}

std::string masked(std::string_view line, bool narrative) {
  std::string text;
  while (!line.empty()) {
    std::size_t length = 1;
    if (line.starts_with("0x")) {
      length = std::min(line.find_first_not_of("0123456789abcdef", 2), line.size());
      text += "<p>";
    } else if (const std::size_t digits = numberAt(line); narrative && digits) {
      length = digits;
      text += "<d>";
    } else if (narrative && isStray(line[0])) {
      const auto *end = std::find_if_not(line.begin(), line.end(), isStray);
      length = static_cast<std::size_t>(end - line.begin());
      text += "<s>";
    } else {
      text += line[0];
    }
    line.remove_prefix(length);
  }
  return text;
}

}  // namespace

std::string maskAddresses(std::string_view text) {
  std::string all;
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) {
    const std::size_t head = line.find(kNarrativeHead);
    const std::size_t kept = head == line.npos ? 0 : head + kNarrativeHead.size();
    all += line.substr(0, kept) + masked(std::string_view(line).substr(kept), kept > 0);
    if (!lines.eof()) all += '\n';
  }
  return all;
}

std::string maskTimes(std::string text) {
  for (std::size_t at = 0; (at = text.find("\t(", at)) != text.npos; at += 2) {
    text.erase(at + 2, text.find(')', at) - at - 2);
  }
  return text;
}

}  // namespace zev::test
