/// What reading a tnsnames.ora file and making a pool do when memory runs out in their
/// midst: each allocation fails in turn, once alone and once with all that follow.
#include <ociap.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/unit/core/core_fixture.h"
#include "tests/unit/core/failing_allocator.h"
#include "tests/unit/net/tnsnames_fixture.h"
#include "zevoci/session_pool.h"

namespace zev::test {
namespace {

class ExhaustedMemory : public testing::TestWithParam<bool> {};

const std::string kText =
    "a=(DESCRIPTION_LIST=(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=h)(HOST=i)(PORT=1)"
    "(PORT=2)(KEY=k))(ADDRESS=(HOST=1.2.3.4)))(CONNECT_DATA=(SID=s)(SID=t)(SERVICE_NAME="
    "u))(SECURITY=(SSL_SERVER_CERT_DN=\"x\")))(DESCRIPTION=(ADDRESS=(HOST=j))))\n"
    "b=(DESCRIPTION=(SDU=1))\n";

TEST_P(ExhaustedMemory, TheParserOfTnsnamesSaysSoAndLeavesNothing) {
  int failures = 0;
  for (long n = 0;; ++n) {
    ASSERT_LT(n, 10000) << "the parser never succeeds";
    tnsnamesin = fmemopen(const_cast<char *>(kText.data()), kText.size(), "r");
    testing::internal::CaptureStderr();
    failAllocationsAfter(n, GetParam());
    const int outcome = tnsnamesparse();
    const bool failed = stopFailing();
    const std::string err = testing::internal::GetCapturedStderr();
    List *list = std::exchange(tnsnames_parsetree_list, nullptr);
    std::fclose(std::exchange(tnsnamesin, nullptr));
    if (!failed) {
      EXPECT_EQ(outcome, 0);
      EXPECT_EQ(printed(list), "a=h:1/s;b=~/-;");
      tnsnames::releaseNodes(list);
      break;
    }
    ++failures;
    ASSERT_EQ(outcome, 2) << n;
    ASSERT_EQ(list, nullptr);
    ASSERT_TRUE(err.ends_with(":memory exhausted\n")) << err;
  }
  EXPECT_GT(failures, 40);
}

TEST_P(ExhaustedMemory, AttachingByTnsnamesFailsOrSucceedsWhole) {
  namespace fs = std::filesystem;
  const fs::path directory =
      fs::path(testing::TempDir()) / ("zevoci-tns-exhausted-" + std::to_string(getpid()));
  fs::create_directories(directory);
  std::ofstream(directory / ".tnsnames.ora") << kText;
  const Variable home("HOME", directory.c_str());
  Environment env;
  auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  bool failed = true;
  for (long n = 0; failed; ++n) {
    ASSERT_LT(n, 10000);
    testing::internal::CaptureStderr();
    failAllocationsAfter(n, GetParam());
    const sword status =
        OCIServerAttach(server, env.errhp(), asText("a/b:c"), 5, OCI_DEFAULT);
    failed = stopFailing();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(status, failed ? OCI_ERROR : OCI_SUCCESS) << n;
    EXPECT_EQ(server->attached, failed ? 0 : 1);
    for (const sb4 code : codesOf(env.errhp())) {
      EXPECT_TRUE(code == 16506 || code == 12555 || code == 12227) << code;
    }
  }
  EXPECT_STREQ(server->host, "localhost");
  fs::remove_all(directory);
}

TEST_P(ExhaustedMemory, AMatchThatCannotBeCopiedIsNotTakenForAnAbsentOne) {
  bool failed = true;
  for (long n = 0; failed; ++n) {
    List *entries = parseText(kText).second;
    OCIServer server{};
    server.dblink = strdup("a");
    failAllocationsAfter(n, GetParam());
    const bool applied = tnsnames::apply(entries, &server);
    failed = stopFailing();
    EXPECT_EQ(applied, !failed);
    for (char *text : {server.dblink, server.host, server.port, server.dbname}) {
      std::free(text);
    }
  }
}

TEST_P(ExhaustedMemory, APoolIsNamedOrNotMade) {
  for (const ub4 charset : {ub4{OCI_DEFAULT}, ub4{OCI_UTF16}}) {
    bool failed = true;
    for (long n = 0; failed; ++n) {
      ASSERT_LT(n, 100);
      Environment env(charset);
      auto *pool = env.alloc<OCISPool>(OCI_HTYPE_SPOOL);
      OraText *name = nullptr;
      ub4 nameLength = 0;
      OraText text[] = {'a', 0, 'b', 0};
      failAllocationsAfter(n, GetParam());
      const sword status =
          OCISessionPoolCreate(env.get(), env.errhp(), pool, &name, &nameLength, text, 4,
                               3, 3, 1, text, 4, text, 4, OCI_DEFAULT);
      failed = stopFailing();
      EXPECT_EQ(status, failed ? OCI_ERROR : OCI_SUCCESS) << n;
      EXPECT_EQ(pool->freeCount, list_length(pool->free));
      if (failed && !GetParam()) {
        // A conversion that has no memory tells so in words only.
        EXPECT_EQ(codesOf(env.errhp()),
                  Codes{firstText(env.errhp()).starts_with("Error") ? 0 : 16506})
            << n;
      }
      std::free(name);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Allocations, ExhaustedMemory, testing::Bool(),
                         [](const auto &p) { return p.param ? "FromThereOn" : "Once"; });

}  // namespace
}  // namespace zev::test
