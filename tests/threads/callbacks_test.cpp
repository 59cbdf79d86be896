/// Callbacks and traces of many environments at once. The trace settings are the
/// process's: each new environment replaces the log while others write to it.
#include <gtest/gtest.h>
#include <oci.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace zev::test {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 20;
constexpr int kCalls = 20;

sword count(void *ctxp, void *, ub4, ub4, ub4, sword, sb4 *, va_list) {
  ++*static_cast<int *>(ctxp);
  return OCI_CONTINUE;
}

/// Environments made one after the other, each with a callback that counts its calls;
/// how many of them were seen.
int work() {
  int seen = 0;
  for (int round = 0; round < kRounds; ++round) {
    OCIEnv *env = nullptr;
    OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    OCIUserCallbackRegister(env, OCI_HTYPE_ENV, nullptr, count, &seen,
                            OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY, nullptr);
    for (int i = 0; i < kCalls; ++i) {
      void *made = nullptr;
      OCIHandleAlloc(env, &made, OCI_HTYPE_SVCCTX, 0, nullptr);
      OCIHandleAlloc(env, &made, OCI_HTYPE_SVCCTX, 8, nullptr);  // a traced error
    }
    OCIHandleFree(env, OCI_HTYPE_ENV);
  }
  return seen;
}

TEST(Callbacks, OfSeparateEnvironmentsDoNotMeetWhileAllAreTraced) {
  const std::string log = testing::TempDir() + "zevoci-callbacks";
  setenv("OCI_DEBUG_LOG", log.c_str(), 1);
  setenv("OCI_DEBUG_MASK", "0x20", 1);
  setenv("OCI_DEBUG_LEVEL", "4", 1);
  std::vector<int> seen(kThreads);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int &one : seen) threads.emplace_back([&one] { one = work(); });
  for (std::thread &thread : threads) thread.join();
  for (const int one : seen) EXPECT_EQ(one, kRounds * kCalls * 2);
  for (const char *name : {"OCI_DEBUG_MASK", "OCI_DEBUG_LEVEL"}) setenv(name, "0", 1);
  setenv("OCI_DEBUG_LOG", "/nonexistent/log", 1);  // an environment turns tracing off
  OCIEnv *env = nullptr;
  OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  OCIHandleFree(env, OCI_HTYPE_ENV);
  for (const char *name : {"OCI_DEBUG_LOG", "OCI_DEBUG_MASK", "OCI_DEBUG_LEVEL"}) {
    unsetenv(name);
  }
  std::filesystem::remove(log + '-' + std::to_string(getpid()));
}

}  // namespace
}  // namespace zev::test
