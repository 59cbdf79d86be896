/// A trace log of a test's own.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <string_view>

#include "tests/server/trace_text.h"
#include "zevoci/trace.h"

namespace zev::test {

/// Opens a log for as long as it lives, with no subject chosen; the settings of a process
/// without one come back at its end.
class TraceLog {
 public:
  explicit TraceLog(std::uint64_t mask = 0) {
    oci_debug_log = std::tmpfile();
    oci_debug_mask = mask;
  }
  ~TraceLog() {
    std::fclose(oci_debug_log);
    oci_debug_log = nullptr;
    oci_debug_mask = 0xFFFFDFFF;
    OCI2PQ_TRACE_LEVEL = 0;
  }
  TraceLog(const TraceLog &) = delete;
  TraceLog &operator=(const TraceLog &) = delete;

  /// What was written since the last time.
  std::string take() {
    std::fflush(oci_debug_log);
    std::fseek(oci_debug_log, taken_, SEEK_SET);
    std::string text;
    for (int c; (c = std::fgetc(oci_debug_log)) != EOF;) text += static_cast<char>(c);
    taken_ = std::ftell(oci_debug_log);
    return text;
  }

  /// The same for lines of o2pTrace: "LEVEL: TEXT" each, masked as maskAddresses does.
  std::string takeNarrative() {
    const std::string_view head = "-o2pTrace[trace.cpp:916]";
    std::string told;
    std::istringstream lines(maskAddresses(take()));
    for (std::string line; std::getline(lines, line);) {
      EXPECT_EQ(line.substr(0, 5), "TRACE");
      EXPECT_EQ(line.substr(6, head.size()), head);
      told += line[5] + line.substr(6 + head.size()) + '\n';
    }
    return told;
  }

 private:
  long taken_ = 0;
};

}  // namespace zev::test
