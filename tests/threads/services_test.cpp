/// Threads, mutexes and keys of the interface itself.
#include <gtest/gtest.h>
#include <ociap.h>

#include <vector>

namespace zev::test {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 2000;

/// What the threads share, behind a mutex.
struct Shared {
  OCIEnv *env;
  OCIThreadMutex *mutex;
  OCIThreadKey *key;
  long counter = 0;
  long destroyed = 0;
};

/// What one thread has: an error handle of its own, and where its key's value is counted.
struct Worker {
  Shared *shared;
  OCIError *errhp;
  int differences = 0;
};

void count(Worker &worker, long &counter) {
  OCIThreadMutexAcquire(worker.shared->env, worker.errhp, worker.shared->mutex);
  ++counter;
  OCIThreadMutexRelease(worker.shared->env, worker.errhp, worker.shared->mutex);
}

void destroyValue(void *value) {
  auto &worker = *static_cast<Worker *>(value);
  count(worker, worker.shared->destroyed);
}

void work(void *arg) {
  auto &worker = *static_cast<Worker *>(arg);
  Shared &shared = *worker.shared;
  OCIThreadKeySet(shared.env, worker.errhp, shared.key, &worker);
  for (int i = 0; i < kRounds; ++i) {
    count(worker, shared.counter);
    void *value = nullptr;
    OCIThreadKeyGet(shared.env, worker.errhp, shared.key, &value);
    worker.differences += value != &worker;
  }
}

OCIError *makeError(OCIEnv *env) {
  void *made = nullptr;
  EXPECT_EQ(OCIHandleAlloc(env, &made, OCI_HTYPE_ERROR, 0, nullptr), OCI_SUCCESS);
  return static_cast<OCIError *>(made);
}

TEST(Services, ThreadsShareAMutexAndHaveValuesOfTheirOwn) {
  OCIThreadProcessInit();
  Shared shared = {};
  ASSERT_EQ(OCIEnvCreate(&shared.env, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0,
                         nullptr),
            OCI_SUCCESS);
  OCIEnv *env = shared.env;
  OCIError *errhp = makeError(env);
  ASSERT_EQ(OCIThreadInit(env, errhp), OCI_SUCCESS);
  ASSERT_EQ(OCIThreadMutexInit(env, errhp, &shared.mutex), OCI_SUCCESS);
  ASSERT_EQ(OCIThreadKeyInit(env, errhp, &shared.key, destroyValue), OCI_SUCCESS);
  std::vector<Worker> workers(kThreads);
  std::vector<OCIThreadId *> ids(kThreads);
  std::vector<OCIThreadHandle *> handles(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    workers[i] = {&shared, makeError(env)};
    ASSERT_EQ(OCIThreadIdInit(env, errhp, &ids[i]), OCI_SUCCESS);
    ASSERT_EQ(OCIThreadHndInit(env, errhp, &handles[i]), OCI_SUCCESS);
  }
  for (int i = 0; i < kThreads; ++i) {
    ASSERT_EQ(OCIThreadCreate(env, errhp, work, &workers[i], ids[i], handles[i]),
              OCI_SUCCESS);
  }
  for (int i = 0; i < kThreads; ++i) {
    EXPECT_EQ(OCIThreadJoin(env, errhp, handles[i]), OCI_SUCCESS);
    EXPECT_EQ(OCIThreadClose(env, errhp, handles[i]), OCI_SUCCESS);
    EXPECT_EQ(workers[i].differences, 0);
  }
  EXPECT_EQ(shared.counter, long{kThreads} * kRounds);
  EXPECT_EQ(shared.destroyed, kThreads);
  EXPECT_EQ(OCIThreadTerm(env, errhp), OCI_SUCCESS);
  EXPECT_EQ(OCIHandleFree(env, OCI_HTYPE_ENV), OCI_SUCCESS);
}

}  // namespace
}  // namespace zev::test
