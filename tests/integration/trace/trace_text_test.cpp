/// The whole trace of a fixed program, for each subject and each level, beside a stored
/// text. With ZEVOCI_WRITE_TRACES set the stored text is written anew, for a person to
/// look at.
#include "tests/server/trace_text.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>

#include "tests/server/address.h"

namespace zev::test {
namespace {

/// The settings of one run, by the heading of its text.
struct Settings {
  const char *heading;
  const char *mask;
  const char *level;
};

constexpr Settings kRuns[] = {
    {"mask 0x1", "0x1", "-1"},       {"mask 0x2", "0x2", "-1"},
    {"mask 0x4", "0x4", "-1"},       {"mask 0x8", "0x8", "-1"},
    {"mask 0x10", "0x10", "-1"},     {"mask 0x20", "0x20", "-1"},
    {"mask 0x40", "0x40", "-1"},     {"mask 0x80", "0x80", "-1"},
    {"mask 0x100", "0x100", "-1"},   {"mask 0x200", "0x200", "-1"},
    {"mask 0x400", "0x400", "-1"},   {"mask 0x800", "0x800", "-1"},
    {"mask 0x1000", "0x1000", "-1"}, {"mask 0x2000", "0x2000", "-1"},
    {"mask 0x4000", "0x4000", "-1"}, {"level 0", "0", "0"},
    {"level 1", "0", "1"},           {"level 2", "0", "2"},
    {"level 3", "0", "3"},           {"level 4", "0", "4"},
};

/// `text` with `from` replaced wherever it stands.
std::string replaced(std::string text, const std::string &from, const std::string &to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
  return text;
}

/// Standard error of the program, with what differs from run to run masked.
std::string traceOf(const Settings &settings) {
  const ServerAddress &at = testServer();
  const std::string command =
      std::string("OCI_DEBUG_LOG=- OCI_DEBUG_MASK=") + settings.mask +
      " OCI_DEBUG_LEVEL=" + settings.level + " '" ZEVOCI_TRACE_PROGRAM "' '" + at.user +
      "' '" + at.password + "' '" + at.host + ':' + at.port + '/' + at.db + "' 2>&1";
  const std::unique_ptr<FILE, int (*)(FILE *)> out(popen(command.c_str(), "r"), pclose);
  std::string text;
  for (int c; (c = std::fgetc(out.get())) != EOF;) text += static_cast<char>(c);
  const std::pair<std::string, const char *> masked[] = {
      {'[' + at.host + ']', "[<host>]"},
      {'[' + at.port + ']', "[<port>]"},
      {'[' + at.db + ']', "[<database>]"},
      {'[' + at.user + ']', "[<user>]"}};
  for (const auto &[value, name] : masked) text = replaced(text, value, name);
  text = maskAddresses(maskTimes(text));
  return text.empty() || text.ends_with('\n') ? text : text + '\n';
}

/// Sections "== heading ==" of the stored text.
std::map<std::string, std::string> storedTexts() {
  std::map<std::string, std::string> sections;
  std::ifstream file(ZEVOCI_TRACE_TEXT);
  std::string heading;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("== ")) {
      heading = line.substr(3, line.size() - 6);
      sections[heading];
    } else {
      sections[heading] += line + '\n';
    }
  }
  return sections;
}

class TraceText : public testing::TestWithParam<Settings> {};

TEST_P(TraceText, IsTheStoredOne) {
  const auto stored = storedTexts();
  ASSERT_TRUE(stored.contains(GetParam().heading));
  EXPECT_EQ(traceOf(GetParam()), stored.at(GetParam().heading));
}

INSTANTIATE_TEST_SUITE_P(Each, TraceText, testing::ValuesIn(kRuns), [](const auto &p) {
  return replaced(p.param.heading, " ", "_");
});

TEST(StoredTraces, AreWrittenAnewOnRequest) {
  if (!std::getenv("ZEVOCI_WRITE_TRACES")) {
    EXPECT_EQ(storedTexts().size(), std::size(kRuns));
    return;
  }
  std::ofstream file(ZEVOCI_TRACE_TEXT);
  for (const Settings &settings : kRuns)
    file << "== " << settings.heading << " ==\n" << traceOf(settings);
}

/// Without a log neither the mask nor the level writes anything.
TEST(TraceWithoutALog, IsEmpty) {
  const ServerAddress &at = testServer();
  const std::string command =
      "OCI_DEBUG_MASK=0xFFFFFFFF OCI_DEBUG_LEVEL=9 '" ZEVOCI_TRACE_PROGRAM "' '" +
      at.user + "' '" + at.password + "' '" + at.host + ':' + at.port + '/' + at.db +
      "' 2>&1";
  const std::unique_ptr<FILE, int (*)(FILE *)> out(popen(command.c_str(), "r"), pclose);
  EXPECT_EQ(std::fgetc(out.get()), EOF);
}

}  // namespace
}  // namespace zev::test
