/// What the owner of a program is told.
#include "tools/ocicheck/report.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "elf_builder.h"

namespace zev::test {
namespace {

using namespace ocicheck;
namespace fs = std::filesystem;

FileReport judged(const ElfPlan &plan) {
  const ElfBuilder builder(plan);
  return judge("program", readElf(builder.bytes()));
}

/// "function group how", one a line, in order.
std::string usesOf(const FileReport &report) {
  static const char *const kNames[] = {"works", "fails", "stops", "unknown"};
  std::string lines;
  for (const Use &use : report.uses) {
    lines += use.function + ' ' + kNames[static_cast<int>(use.fate)] +
             (use.imported ? " imported\n" : " named\n");
  }
  return lines;
}

TEST(Judging, GroupsEveryFunctionWorstFirst) {
  const FileReport report =
      judged({.imported = {"OCIPing", "OCILobErase", "OCIObjectNew", "OCINoSuchCall",
                           "printf", "ologof", "OCIAttrGet", "OCISodaFind", "OCIAQDeq"}});
  EXPECT_EQ(usesOf(report),
            "OCINoSuchCall unknown imported\n"
            "ologof unknown imported\n"
            "OCIAQDeq stops imported\n"
            "OCILobErase stops imported\n"
            "OCIObjectNew fails imported\n"
            "OCISodaFind fails imported\n"
            "OCIAttrGet works imported\n"
            "OCIPing works imported\n");
}

TEST(Judging, NamesToBeLookedUpCount) {
  const FileReport report =
      judged({.imported = {"dlsym", "OCIPing"},
              .texts = {"OCIPing", "OCIStmtFetch2", "OCINewerCall", "OCIEnv",
                        "OCILobLocator", "OCIError", "OCI_ATTR_ENV"}});
  EXPECT_EQ(usesOf(report),
            "OCINewerCall unknown named\n"
            "OCIPing works imported\n"
            "OCIStmtFetch2 works named\n");
}

TEST(Judging, WithoutAKnownNameTextsSayNothing) {
  EXPECT_EQ(usesOf(judged({.texts = {"OCINewerCall", "OCIImageTool"}})), "");
}

TEST(Judging, AFilesOwnFunctionsAreNotTakenFromElsewhere) {
  EXPECT_EQ(usesOf(judged({.defined = {"OCIPing", "OCIReset"}, .texts = {"OCIPing"}})),
            "");
}

TEST(Judging, TellsTheClientLibrariesAskedFor) {
  const FileReport report =
      judged({.needed = {"libc.so.6", "libclntsh.so.19.1", "libpq.so.5"},
              .texts = {"libclntsh.so.12.1", "libclntshcore.so", "libfoo.so"}});
  EXPECT_EQ(report.libraries,
            (std::vector<std::string>{"libclntsh.so.19.1", "libclntsh.so.12.1"}));
}

TEST(Verdicts, AreThoseOfTheWorstFunction) {
  const FileReport works = judged({.imported = {"OCIPing"}});
  const FileReport fails = judged({.imported = {"OCIPing", "OCIRawPtr"}});
  const FileReport stops = judged({.imported = {"OCIRawPtr", "OCILobErase"}});
  const FileReport unknown = judged({.imported = {"OCINoSuchCall"}});
  FileReport unreadable;
  unreadable.error = "not an ELF file";
  EXPECT_EQ(verdictOf({}), kAllWork);
  EXPECT_EQ(verdictOf({works}), kAllWork);
  EXPECT_EQ(verdictOf({fails, works}), kSomeFail);
  EXPECT_EQ(verdictOf({works, stops, fails}), kSomeStop);
  EXPECT_EQ(verdictOf({unknown}), kSomeStop);
  EXPECT_EQ(verdictOf({stops, unreadable}), kUnreadable);
}

TEST(Reports, AreATable) {
  std::ostringstream out;
  printTable(out, {judged({.imported = {"OCIPing", "OCILobErase", "OCIRawPtr"}})});
  EXPECT_EQ(
      out.str(),
      "program (64-bit little-endian shared object or executable)\n"
      "  stops the process  imported OCILobErase\n"
      "  fails softly       imported OCIRawPtr\n"
      "  works              imported OCIPing\n"
      "\n"
      "Verdict: 1 function stops the process, 1 function fails softly, 1 works.\n"
      "Set ZEV_OCI_UIFCTN_RET_OK to let a program go on behind a function that stops "
      "the\n"
      "process; it then returns OCI_SUCCESS and has done nothing.\n");
}

TEST(Reports, CountTheFilesThatUseNothing) {
  const FileReport nothing = judged({.imported = {"printf"}});
  std::ostringstream one, several;
  printTable(one, {nothing});
  EXPECT_EQ(one.str(),
            "program (64-bit little-endian shared object or executable)\n"
            "  uses no function of the interface\n"
            "\n"
            "Verdict: no function of the interface is used.\n");
  printTable(several, {nothing, judged({.imported = {"OCIPing"}}), nothing});
  EXPECT_EQ(several.str(),
            "program (64-bit little-endian shared object or executable)\n"
            "  works              imported OCIPing\n"
            "2 files use no function of the interface\n"
            "\n"
            "Verdict: every function works (1 works).\n");
}

TEST(Reports, AreOneJsonObject) {
  FileReport bad;
  bad.path = "a\"b\\c\n\xff\xc3\xa9";
  bad.error = "not an ELF file";
  std::ostringstream out;
  printJson(out, {judged({.is64 = false,
                          .bigEndian = true,
                          .needed = {"libclntsh.so.11.1"},
                          .imported = {"OCIPing"},
                          .texts = {"OCILobErase"}}),
                  bad});
  EXPECT_EQ(
      out.str(),
      "{\"files\":[{\"path\":\"program\",\"kind\":\"32-bit big-endian shared object or "
      "executable\",\"libraries\":[\"libclntsh.so.11.1\"],\"functions\":["
      "{\"name\":\"OCILobErase\",\"group\":\"stops\",\"how\":\"named\"},"
      "{\"name\":\"OCIPing\",\"group\":\"works\",\"how\":\"imported\"}]},"
      "{\"path\":\"a\\\"b\\\\c\\u000a\\ufffd\xc3\xa9\",\"error\":\"not an ELF file\"}],"
      "\"counts\":{\"works\":1,\"fails\":0,\"stops\":1,\"unknown\":0},\"verdict\":3}\n");
}

class Checking : public testing::Test {
 protected:
  Checking() { fs::create_directories(dir_ / "sub"); }
  ~Checking() override { fs::remove_all(dir_); }

  void write(const fs::path &name, const std::vector<unsigned char> &bytes) {
    std::ofstream(dir_ / name, std::ios::binary)
        .write(reinterpret_cast<const char *>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  fs::path dir_ = fs::path(testing::TempDir()) / ("ocicheck" + std::to_string(getpid()));
};

TEST_F(Checking, ADirectoryIsSearchedForElfFiles) {
  write("b", ElfBuilder({.imported = {"OCIPing"}}).bytes());
  write("sub/a", ElfBuilder({.imported = {"OCIRawPtr"}}).bytes());
  write("text", {'O', 'C', 'I'});
  write("empty", {});
  fs::create_symlink("b", dir_ / "link");
  const auto reports = check(dir_);
  ASSERT_EQ(reports.size(), 2u);
  EXPECT_EQ(reports[0].path, (dir_ / "b").string());
  EXPECT_EQ(reports[1].path, (dir_ / "sub" / "a").string());
  EXPECT_EQ(verdictOf(reports), kSomeFail);
}

TEST_F(Checking, ADamagedFileOfADirectoryIsAnError) {
  std::vector<unsigned char> bytes = ElfBuilder({.imported = {"OCIPing"}}).bytes();
  bytes.resize(bytes.size() - 1);
  write("damaged", bytes);
  const auto reports = check(dir_);
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].error, "the file ends before what it announces");
}

TEST_F(Checking, ANamedFileMustBeElf) {
  write("text", {'O', 'C', 'I'});
  const auto reports = check(dir_ / "text");
  ASSERT_EQ(reports.size(), 1u);
  EXPECT_EQ(reports[0].error, "not an ELF file");
  EXPECT_EQ(check(dir_ / "missing").at(0).error, "does not exist");
}

}  // namespace
}  // namespace zev::test
