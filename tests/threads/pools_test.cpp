/// Session pools of many threads: one to each, and one that the threads take turns with.
#include <gtest/gtest.h>
#include <oci.h>

#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/server/address.h"

namespace zev::test {
namespace {

constexpr int kThreads = 8;

/// An environment with a pool that makes `sessMin` sessions at once and adds more up to
/// `sessMax`.
class PooledProgram {
 public:
  PooledProgram(ub4 sessMin, ub4 sessMax) {
    EXPECT_EQ(
        OCIEnvCreate(&env_, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
        OCI_SUCCESS);
    errhp_ = alloc<OCIError>(OCI_HTYPE_ERROR);
    const ServerAddress &server = testServer();
    std::string target = server.host + ':' + server.port + '/' + server.db;
    std::string user = server.user, password = server.password;
    OraText *name = nullptr;
    ub4 nameLength = 0;
    status_ = OCISessionPoolCreate(env_, errhp_, alloc<OCISPool>(OCI_HTYPE_SPOOL), &name,
                                   &nameLength, text(target), size(target), sessMin,
                                   sessMax, 1, text(user), size(user), text(password),
                                   size(password), OCI_SPC_HOMOGENEOUS);
    std::free(name);
  }
  ~PooledProgram() { OCIHandleFree(env_, OCI_HTYPE_ENV); }
  PooledProgram(const PooledProgram &) = delete;
  PooledProgram &operator=(const PooledProgram &) = delete;

  sword status() const { return status_; }

  template <class T>
  T *alloc(ub4 type) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env_, &made, type, 0, nullptr), OCI_SUCCESS);
    return static_cast<T *>(made);
  }

  /// A session, or null once the pool is exhausted.
  OCISvcCtx *take(OCISession *as, OCIError *errhp) {
    std::string name = "pool";
    OCISvcCtx *svchp = nullptr;
    const sword status =
        OCISessionGet(env_, errhp, &svchp, as, text(name), size(name), nullptr, 0,
                      nullptr, nullptr, nullptr, OCI_SESSGET_SPOOL);
    return status == OCI_SUCCESS ? svchp : nullptr;
  }

  static OraText *text(std::string &value) {
    return reinterpret_cast<OraText *>(value.data());
  }
  static ub4 size(const std::string &value) { return static_cast<ub4>(value.size()); }

 private:
  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  sword status_ = OCI_ERROR;
};

/// Uses up a pool of its own; how many sessions worked.
int useUp() {
  PooledProgram program(2, 5);
  auto *errhp = program.alloc<OCIError>(OCI_HTYPE_ERROR);
  auto *as = program.alloc<OCISession>(OCI_HTYPE_SESSION);
  int worked = 0;
  while (OCISvcCtx *svchp = program.take(as, errhp)) {
    worked += OCIPing(svchp, errhp, OCI_DEFAULT) == OCI_SUCCESS;
    if (worked % 2) OCILogoff(svchp, errhp);
  }
  return worked;
}

TEST(ThreadsPools, APoolOfEachThread) {
  std::atomic<int> worked{0};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&worked] {
      for (int round = 0; round < 2; ++round) worked += useUp();
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(worked, kThreads * 2 * 5);
}

/// A pool is for one thread at a time, its sessions are then each for their own.
TEST(ThreadsPools, OnePoolWhoseSessionsGoToManyThreads) {
  PooledProgram program(4, 4 * kThreads);
  ASSERT_EQ(program.status(), OCI_SUCCESS);
  std::mutex turn;
  std::atomic<int> worked{0}, ended{0};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      std::unique_lock<std::mutex> lock(turn);
      auto *errhp = program.alloc<OCIError>(OCI_HTYPE_ERROR);
      auto *as = program.alloc<OCISession>(OCI_HTYPE_SESSION);
      while (OCISvcCtx *svchp = program.take(as, errhp)) {
        lock.unlock();
        worked += OCIPing(svchp, errhp, OCI_DEFAULT) == OCI_SUCCESS;
        lock.lock();
        ended += OCISessionRelease(svchp, errhp, nullptr, 0, OCI_DEFAULT) == OCI_SUCCESS;
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(worked, 4 * kThreads);
  EXPECT_EQ(ended, 4 * kThreads - 4) << "the first four were made with the pool";
}

}  // namespace
}  // namespace zev::test
