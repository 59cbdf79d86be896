/// A trace log of a test's own.
#pragma once

#include <cstdio>
#include <regex>
#include <string>

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

  /// The same for lines of o2pTrace: "LEVEL: TEXT", and in the text what stands for a
  /// placeholder, which no caller's value reaches, as "<p>", "<d>" or "<s>".
  std::string takeNarrative() {
    std::string text = take();
    text = std::regex_replace(text, std::regex(R"(TRACE(\d)-o2pTrace\[trace\.cpp:916\])"),
                              "$1");
    text = std::regex_replace(text, std::regex("0x[0-9a-f]+"), "<p>");
    text = std::regex_replace(text, std::regex(R"(([ (])-?\d+([)\n]))"), "$1<d>$2");
    return std::regex_replace(text, std::regex(R"([\x01-\x08\x0e-\x1f\x7f-\xff]+)"),
                              "<s>");
  }

 private:
  long taken_ = 0;
};

}  // namespace zev::test
