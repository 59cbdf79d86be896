/// Attaching by names that tnsnames.ora files are asked for.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>

#include "tests/unit/core/core_fixture.h"
#include "tests/unit/net/tnsnames_fixture.h"

namespace zev::test {
namespace {

namespace fs = std::filesystem;

/// A name that is looked up in a file: it has a "/" before its ":".
const std::string kName = "a/b:c";

class TnsnamesAttach : public testing::Test {
 protected:
  TnsnamesAttach() : directory(fs::path(testing::TempDir()) / temporaryName()) {
    fs::create_directories(directory / "home");
    fs::create_directories(directory / "admin");
    home.emplace("HOME", (directory / "home").c_str());
    admin.emplace("TNS_ADMIN", (directory / "admin").c_str());
  }
  ~TnsnamesAttach() override { fs::remove_all(directory); }

  static std::string temporaryName() {
    const auto *info = testing::UnitTest::GetInstance()->current_test_info();
    return std::string("zevoci-tns-") + info->name() + '-' + std::to_string(getpid());
  }
  static void write(const fs::path &path, std::string_view text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
  }
  void writeHome(std::string_view text) { write(directory / "home/.tnsnames.ora", text); }
  void writeAdmin(std::string_view text) {
    write(directory / "admin/tnsnames.ora", text);
  }

  sword attach(const std::string &target = kName) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const sword status = OCIServerAttach(server, env.errhp(), asText(target),
                                         static_cast<sb4>(target.size()), OCI_DEFAULT);
    err = testing::internal::GetCapturedStderr();
    std::fflush(stdout);
    testing::internal::GetCapturedStdout();
    return status;
  }
  void expectFailure(sb4 code) {
    EXPECT_EQ(attach(), OCI_ERROR);
    EXPECT_EQ(codesOf(env.errhp()), Codes{code});
    EXPECT_EQ(server->attached, 0);
  }
  void expectDefaults() {
    EXPECT_EQ(attach(), OCI_SUCCESS);
    EXPECT_EQ(codesOf(env.errhp()), Codes{});
    EXPECT_EQ(server->attached, 1);
    EXPECT_STREQ(server->dblink, kName.c_str());
    EXPECT_EQ(server->uri, nullptr);
    EXPECT_STREQ(server->host, "localhost");
    EXPECT_STREQ(server->port, "5444");
    EXPECT_STREQ(server->dbname, "zev");
    EXPECT_EQ(OCIServerDetach(server, env.errhp(), OCI_DEFAULT), OCI_SUCCESS);
  }

  fs::path directory;
  std::optional<Variable> home, admin;
  Environment env;
  OCIServer *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  std::string err;
};

const std::string kGood =
    "c=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))\n";

TEST_F(TnsnamesAttach, WithNeitherVariableThereIsNoFile) {
  const Variable noHome("HOME", nullptr), noAdmin("TNS_ADMIN", nullptr);
  expectFailure(12154);
  EXPECT_EQ(firstText(env.errhp()),
            "KESTREL-12154: TNS:could not resolve the connect identifier specified \n");
}

TEST_F(TnsnamesAttach, WithNeitherFileThereIsNone) {
  expectFailure(12154);
}

TEST_F(TnsnamesAttach, FilesOfOtherNamesAreNotLookedAt) {
  write(directory / "home/tnsnames.ora", kGood);
  write(directory / "admin/.tnsnames.ora", kGood);
  expectFailure(12154);
}

TEST_F(TnsnamesAttach, AFileThatDoesNotKnowTheNameGivesTheDefaults) {
  writeHome(kGood);
  expectDefaults();
}

TEST_F(TnsnamesAttach, TheFileInTheAdministratorsDirectoryIsRead) {
  writeAdmin(kGood);
  expectDefaults();
  const Variable noHome("HOME", nullptr);
  expectDefaults();
}

TEST_F(TnsnamesAttach, TheHiddenFileAtHomeWins) {
  writeHome("wrong");
  writeAdmin(kGood);
  expectFailure(12227);
  const Variable noHome("HOME", nullptr);
  expectDefaults();
}

TEST_F(TnsnamesAttach, AnEmptyFileAtHomeIsASyntaxErrorWhateverStandsElsewhere) {
  writeHome("");
  writeAdmin(kGood);
  expectFailure(12227);
  EXPECT_EQ(firstText(env.errhp()), "KESTREL-12227: syntax error");
  EXPECT_TRUE(err.ends_with(":syntax error, unexpected end of file, expecting IDENT\n"))
      << err;
}

TEST_F(TnsnamesAttach, ASyntaxErrorIsToldOnStandardErrorAndNothingIsAttached) {
  tnsnameslineno = 1;
  writeAdmin(kGood + "d=(DESCRIPTION=(ADDRESS=(HOST=1.2.3)))");
  expectFailure(12227);
  EXPECT_EQ(err, "2:syntax error, unexpected INTEGER, expecting IDENT or INET_IP\n");
}

TEST_F(TnsnamesAttach, AfterAFailureTheNameStaysUntilTheNextAttempt) {
  expectFailure(12154);
  EXPECT_STREQ(server->dblink, kName.c_str());
  EXPECT_EQ(server->dblinkLen, kName.size());
  EXPECT_EQ(server->host, nullptr);
  EXPECT_EQ(OCIServerDetach(server, env.errhp(), OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), (Codes{12154, 24324}));
  EXPECT_EQ(attach("h:1/d"), OCI_SUCCESS);
  EXPECT_STREQ(server->dblink, "h:1/d");
  EXPECT_STREQ(server->host, "h");
}

TEST_F(TnsnamesAttach, EverySyntaxErrorLeavesTheNextAttemptFree) {
  for (int i = 0; i < 3; ++i) {
    writeHome("wrong");
    expectFailure(12227);
    writeHome(kGood);
    expectDefaults();
  }
}

TEST_F(TnsnamesAttach, OnlyASlashBeforeAColonIsLookedUp) {
  writeHome("wrong");
  for (const char *target : {"c", "c:1", "c/d", "c:1/d", "//c:1/d", "postgres://c/d:e"}) {
    EXPECT_EQ(attach(target), OCI_SUCCESS) << target;
    EXPECT_EQ(OCIServerDetach(server, env.errhp(), OCI_DEFAULT), OCI_SUCCESS);
  }
}

TEST_F(TnsnamesAttach, AFileThatCannotBeOpenedIsRefused) {
  writeHome(kGood);
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  const int next = open("/dev/null", O_RDONLY);
  ASSERT_GE(next, 0);
  close(next);
  const rlimit none{static_cast<rlim_t>(next), limit.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  const sword status = OCIServerAttach(server, env.errhp(), asText(kName),
                                       static_cast<sb4>(kName.size()), OCI_DEFAULT);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  EXPECT_EQ(status, OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), Codes{12555});
  EXPECT_EQ(firstText(env.errhp()), "KESTREL-12555: permission denied");
  EXPECT_EQ(server->attached, 0);
}

TEST_F(TnsnamesAttach, APathMayHave1023BytesAndNotMore) {
  // Slashes in a row count as one for the file system.
  const std::string path = (directory / "home").string();
  for (const std::size_t length : {1022u, 1023u, 1024u, 5000u}) {
    writeHome(kGood);
    const std::size_t slashes = length - path.size() - std::strlen("/.tnsnames.ora");
    const Variable longer("HOME", (path + std::string(slashes, '/')).c_str());
    if (length < 1024) {
      expectDefaults();
    } else {
      expectFailure(12154);
    }
  }
}

TEST_F(TnsnamesAttach, NoDescriptorIsLeft) {
  const auto count = [] {
    return std::distance(fs::directory_iterator("/proc/self/fd"),
                         fs::directory_iterator());
  };
  writeHome(kGood);
  const auto before = count();
  for (int i = 0; i < 20; ++i) {
    writeHome(i % 2 ? "wrong" : kGood);
    attach();
    OCIServerDetach(server, env.errhp(), OCI_DEFAULT);
  }
  EXPECT_EQ(count(), before);
}

TEST_F(TnsnamesAttach, AFileThatCannotBeReadEndsTheProcess) {
  fs::create_directories(directory / "home/.tnsnames.ora");
  EXPECT_EXIT(OCIServerAttach(server, env.errhp(), asText(kName),
                              static_cast<sb4>(kName.size()), OCI_DEFAULT),
              testing::ExitedWithCode(2), "^input in flex scanner failed\n$");
}

TEST_F(TnsnamesAttach, TextInUtf16IsLookedUpToo) {
  Environment wide(OCI_UTF16);
  auto *other = wide.alloc<OCIServer>(OCI_HTYPE_SERVER);
  const std::string name = utf16(kName);
  writeHome(kGood);
  EXPECT_EQ(OCIServerAttach(other, wide.errhp(), asText(name),
                            static_cast<sb4>(name.size()), OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_STREQ(other->dblink, kName.c_str());
  EXPECT_STREQ(other->dbname, "zev");
}

TEST_F(TnsnamesAttach, RandomFilesAttachAndChangedOnesAttachOrAreRefused) {
  auto random = zevtest::generator();
  int refused = 0;
  for (int i = 0; i < 10000; ++i) {
    const bool change = i % 2;
    std::string text = RandomFile(random).text;
    if (change) text = mutated(std::move(text), random);
    writeHome(text);
    const sword status = attach();
    if (status == OCI_SUCCESS) {
      EXPECT_STREQ(server->host, "localhost");
      ASSERT_EQ(OCIServerDetach(server, env.errhp(), OCI_DEFAULT), OCI_SUCCESS);
      continue;
    }
    ++refused;
    ASSERT_TRUE(change) << text << err;
    ASSERT_EQ(codesOf(env.errhp()), Codes{12227}) << text;
    ASSERT_NE(err.find(":syntax error, "), err.npos) << text << err;
  }
  EXPECT_GT(refused, 1000);
  EXPECT_LT(refused, 5000);
}

}  // namespace
}  // namespace zev::test
