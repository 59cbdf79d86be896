#include "zevoci/trace.h"

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <optional>

#include "core_fixture.h"
#include "tests/server/trace_text.h"
#include "tests/server/wire_log.h"

namespace zev::test {
namespace {

/// Trace settings of a test's own; the former ones come back at its end.
class Trace : public testing::Test {
 protected:
  Trace() { oci_debug_log = std::tmpfile(); }
  ~Trace() override {
    if (oci_debug_log && oci_debug_log != stderr) std::fclose(oci_debug_log);
    oci_debug_log = nullptr;
    oci_debug_mask = kFirstMask;
    OCI2PQ_TRACE_LEVEL = 0;
  }

  /// What stands in the log.
  static std::string written() {
    std::fflush(oci_debug_log);
    std::rewind(oci_debug_log);
    std::string text;
    for (int c; (c = std::fgetc(oci_debug_log)) != EOF;) text += static_cast<char>(c);
    return text;
  }

  static constexpr std::uint64_t kFirstMask = 0xFFFFDFFF;
};

TEST_F(Trace, WritesLabelAndTextUnderItsMask) {
  oci_debug_mask = 0x20;
  ocitrace(0x20, "label", "%d %s\n", 5, "x");
  ocitrace(0x21, nullptr, "bare\n");
  ocitrace(0x20, "", "  field\n");
  ocitrace(0x40, "other", "not seen\n");
  ocitrace(0, "none", "not seen\n");
  EXPECT_EQ(written(), "label: 5 x\nbare\n:   field\n");
}

TEST_F(Trace, AsksBeforehandWhetherALineWouldBeWritten) {
  for (const std::uint64_t mask : {0x1u, 0x20u, 0x4000u}) EXPECT_TRUE(ocitracing(mask));
  EXPECT_FALSE(ocitracing(0x2000));
  EXPECT_FALSE(ocitracing(0));
  oci_debug_mask = 0x20;
  EXPECT_TRUE(ocitracing(0x60));
  EXPECT_FALSE(ocitracing(0x40));
  std::fclose(oci_debug_log);
  oci_debug_log = nullptr;
  EXPECT_FALSE(ocitracing(0x20));
}

TEST_F(Trace, NothingIsWrittenWithoutALog) {
  std::fclose(oci_debug_log);
  oci_debug_log = nullptr;
  oci_debug_mask = ~std::uint64_t{0};
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  ocitrace(0x20, "x", "y");
  ocitracehex(0x20, "x", "y", 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

const std::string kHeading = "          0  1  2  3  4  5  6  7  8  9  A  B  C  D  E  F\n";

TEST_F(Trace, SeventeenBytesAreTwoRows) {
  ocitracehex(0x20, "bytes", "0123456789ABCDE\x7fz", 17);
  EXPECT_EQ(written(), "bytes\n" + kHeading +
                           "     0   30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 7f "
                           "0123456789ABCDE.\n"
                           "    10   7a " +
                           std::string(45, ' ') + "z" + std::string(15, ' ') + "\n");
}

TEST_F(Trace, AnEmptyDumpIsAHeadingAndALineOfBlanks) {
  ocitracehex(0x20, nullptr, "", 0);
  EXPECT_EQ(written(), kHeading + std::string(16, ' ') + "\n");
}

/// A dump written by other means: row by row into strings.
std::string dumpModel(const std::string &bytes) {
  std::string out = kHeading;
  if (bytes.empty()) return out + std::string(16, ' ') + "\n";
  for (std::size_t at = 0; at < bytes.size(); at += 16) {
    char offset[24];
    std::snprintf(offset, sizeof offset, "%6zX   ", at);
    std::string hex, text;
    for (const char c : bytes.substr(at, 16)) {
      constexpr const char *kDigits = "0123456789abcdef";
      const auto byte = static_cast<unsigned char>(c);
      hex += {kDigits[byte >> 4], kDigits[byte & 15], ' '};
      text += byte < 32 || byte > 126 ? '.' : c;
    }
    hex.resize(48, ' ');
    text.resize(16, ' ');
    out += offset + hex + text + "\n";
  }
  return out;
}

TEST_F(Trace, DumpsOfEveryLengthAndByteAgreeWithAModel) {
  std::string bytes, wanted;
  for (int length = 0; length <= 300; ++length) {
    ocitracehex(0x20, nullptr, bytes.data(), length);
    wanted += dumpModel(bytes);
    bytes += static_cast<char>(length * 37);
  }
  EXPECT_EQ(written(), wanted);
}

TEST_F(Trace, AnErrorRecordNamesItsFieldsInOrder) {
  oci_debug_mask = 0x20;
  Environment env;
  char handle[32];
  std::snprintf(handle, sizeof handle, "%p", static_cast<void *>(env.errhp()));
  const std::string raising =
      std::string("finishErr: raising error on handle(") + handle + ")\n";
  AddErrorRecord(env.errhp(), OCI_ERROR, 1403);
  AddErrorRecordMsg(env.errhp(), OCI_ERROR, "words");
  AddPGErrorRecord(env.errhp(), OCI_ERROR, nullptr);
  EXPECT_EQ(written(), raising + ":   severity = -1\n:   errcode  = 1403\n" +       //
                           raising + ":   severity = -1\n:   msg      = words\n" +  //
                           raising +
                           ":   severity = -1\n:   errcode  = 0\n"
                           ":   msg      = Unexpected NULL PGresult\n"
                           ":   sqlstate = 08P01\n"
                           ":   pg_msg   = Unexpected NULL PGresult\n");
}

TEST_F(Trace, AMaskOfErrorsShowsNothingElse) {
  oci_debug_mask = 0x20;
  Environment env;
  auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  auto *service = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  OCIAttrSet(service, OCI_HTYPE_SVCCTX, server, 0, OCI_ATTR_SERVER, env.errhp());
  EXPECT_EQ(written(), "");
}

TEST_F(Trace, AnAttributeWriteIsTracedUnderTheNameOfTheRead) {
  oci_debug_mask = 0x200;
  Environment env;
  auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  ub4 value = 0x01020304;
  OCIAttrSet(server, OCI_HTYPE_SERVER, &value, sizeof value, 5001, env.errhp());
  char line[96];
  std::snprintf(line, sizeof line, "OCIAttrGet(%p, 8, ..., 4, 5001)\n",
                static_cast<void *>(server));
  EXPECT_EQ(written(),
            line + std::string("attributep\n") + dumpModel(std::string("\4\3\2\1", 4)));
}

TEST_F(Trace, LinksOfAServiceContextAreTracedUnderTheirMask) {
  oci_debug_mask = 0x80;
  Environment env;
  auto *service = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  OCIAttrSet(service, OCI_HTYPE_SVCCTX, nullptr, 0, OCI_ATTR_SERVER, env.errhp());
  OCIAttrSet(service, OCI_HTYPE_SVCCTX, nullptr, 0, OCI_ATTR_SESSION, env.errhp());
  char lines[160];
  const void *at = service;
  std::snprintf(lines, sizeof lines, "setting %p.server = (nil)\n%s", at, "");
  EXPECT_NE(written().find(lines), std::string::npos);
  std::snprintf(lines, sizeof lines, "setting %p.session = (nil)\n", at);
  EXPECT_NE(written().find(lines), std::string::npos);
}

TEST_F(Trace, ANarrativeShowsNoCallersValues) {
  oci_debug_mask = 0;
  OCI2PQ_TRACE_LEVEL = 3;
  o2pTrace(4, "not seen\n");
  o2pTrace(3, "all %% of %s, %-5d and %p\n", "text", 1, nullptr);
  o2pTrace(0, "plain\n");
  o2pTrace(3, "cut %");
  EXPECT_EQ(maskAddresses(written()),
            "TRACE3-o2pTrace[trace.cpp:916]: all % of <s>, <d> and <p>\n"
            "TRACE0-o2pTrace[trace.cpp:916]: plain\n"
            "TRACE3-o2pTrace[trace.cpp:916]: cut ");
}

TEST_F(Trace, ArgumentsOfALineThatIsNotWrittenAreNotEvaluated) {
  int evaluated = 0;
  oci_debug_mask = 0x20;
  ocitrace(0x40, nullptr, "%d\n", ++evaluated);
  ocitracehex(0x40, nullptr, (++evaluated, ""), 0);
  o2pTrace(3, "%d\n", ++evaluated);
  EXPECT_EQ(evaluated, 0);
  ocitrace(0x20, nullptr, "%d\n", ++evaluated);
  EXPECT_EQ(evaluated, 1);
  (ocitrace)(0x40, nullptr, "%s\n", "the function tests for itself too");
  EXPECT_EQ(written(), "1\n");
}

/// The three variables, read when an environment is created.
class TraceVariables : public Trace {
 protected:
  TraceVariables() {
    std::fclose(oci_debug_log);
    oci_debug_log = nullptr;
  }
};

TEST_F(TraceVariables, UnsetVariablesLeaveTheSettingsAsTheyAre) {
  oci_debug_mask = 0x1234;
  OCI2PQ_TRACE_LEVEL = 3;
  const Environment env;
  EXPECT_EQ(oci_debug_log, nullptr);
  EXPECT_EQ(oci_debug_mask, 0x1234u);
  EXPECT_EQ(OCI2PQ_TRACE_LEVEL, 3);
}

TEST_F(TraceVariables, TheMaskIsReadInAnyBaseAndTheLevelInTen) {
  struct Row {
    const char *mask;
    std::uint64_t value;
  };
  for (const Row &row : {Row{"0x20", 0x20}, Row{"32", 32}, Row{"040", 32}, Row{"", 0},
                         Row{"0xFFFFFFFFFF", 0xFFFFFFFFFF}, Row{"x", 0}}) {
    const Variable mask("OCI_DEBUG_MASK", row.mask);
    const Variable level("OCI_DEBUG_LEVEL", "010");
    const Environment env;
    EXPECT_EQ(oci_debug_mask, row.value) << row.mask;
    EXPECT_EQ(OCI2PQ_TRACE_LEVEL, 10);
  }
}

TEST_F(TraceVariables, TheMaskAloneOpensNoLog) {
  const Variable mask("OCI_DEBUG_MASK", "0xffffffff");
  const Environment env;
  EXPECT_EQ(oci_debug_log, nullptr);
}

TEST_F(TraceVariables, ADashMeansStandardError) {
  const Variable log("OCI_DEBUG_LOG", "-");
  testing::internal::CaptureStderr();
  const Environment env;
  EXPECT_EQ(oci_debug_log, stderr);
  ocitrace(0x20, "here", "it is\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "here: it is\n");
}

TEST_F(TraceVariables, AnyOtherValueNamesAFileWithTheProcessNumber) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(testing::TempDir());
  const std::string file = "-x-" + std::to_string(getpid());
  const Variable log("OCI_DEBUG_LOG", "-x");
  {
    const Environment env;
    AddErrorRecord(env.errhp(), OCI_ERROR, 1403);
    std::fflush(oci_debug_log);
    EXPECT_NE(readFile(file).find("errcode  = 1403"), std::string::npos);
  }
  std::FILE *former = oci_debug_log;
  const Environment later;  // truncates the file and leaves the former stream open
  EXPECT_NE(oci_debug_log, former);
  EXPECT_EQ(readFile(file).find("errcode  = 1403"), std::string::npos);
  std::fclose(former);
  std::filesystem::remove(file);
  std::filesystem::current_path(before);
}

TEST_F(TraceVariables, AFileThatCannotBeOpenedTurnsTracingOff) {
  oci_debug_log = std::tmpfile();
  std::FILE *former = oci_debug_log;
  const Variable log("OCI_DEBUG_LOG", "/no such directory/log");
  const Environment env;
  EXPECT_EQ(oci_debug_log, nullptr);
  std::fclose(former);
}

}  // namespace
}  // namespace zev::test
