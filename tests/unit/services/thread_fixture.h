/// Thread objects of a test's own environment.
#pragma once

#include "tests/unit/core/core_fixture.h"
#include "zevoci/threads.h"

namespace zev::test {

class Threads : public testing::Test {
 protected:
  void *hndl() const { return env_.get(); }
  OCIError *err() const { return env_.errhp(); }
  ub4 children() const { return list_length(env_.get()->children); }

  OCIThreadId *makeId() {
    OCIThreadId *id = nullptr;
    EXPECT_EQ(OCIThreadIdInit(hndl(), err(), &id), OCI_SUCCESS);
    return id;
  }
  OCIThreadHandle *makeHandle() {
    OCIThreadHandle *thread = nullptr;
    EXPECT_EQ(OCIThreadHndInit(hndl(), err(), &thread), OCI_SUCCESS);
    return thread;
  }
  OCIThreadMutex *makeMutex() {
    OCIThreadMutex *mutex = nullptr;
    EXPECT_EQ(OCIThreadMutexInit(hndl(), err(), &mutex), OCI_SUCCESS);
    return mutex;
  }
  OCIThreadKey *makeKey(OCIThreadKeyDestFunc destructor = nullptr) {
    OCIThreadKey *key = nullptr;
    EXPECT_EQ(OCIThreadKeyInit(hndl(), err(), &key, destructor), OCI_SUCCESS);
    return key;
  }

  void expectError(sword status, sb4 code) {
    EXPECT_EQ(status, OCI_ERROR);
    EXPECT_EQ(codesOf(err()), Codes{code});
  }

  /// Runs `work` in a thread of the library's and waits for its end. The test's error
  /// handle is the thread's meanwhile.
  template <class Work>
  void runInThread(Work &work) {
    OCIThreadId *id = makeId();
    OCIThreadHandle *thread = makeHandle();
    const auto start = [](void *arg) { (*static_cast<Work *>(arg))(); };
    auto *waiting = env_.alloc<OCIError>(OCI_HTYPE_ERROR);
    ASSERT_EQ(OCIThreadCreate(hndl(), waiting, start, &work, id, thread), OCI_SUCCESS);
    EXPECT_EQ(OCIThreadJoin(hndl(), waiting, thread), OCI_SUCCESS);
    EXPECT_EQ(OCIThreadHndDestroy(hndl(), err(), &thread), OCI_SUCCESS);
    EXPECT_EQ(OCIThreadIdDestroy(hndl(), err(), &id), OCI_SUCCESS);
  }

  Environment env_;
};

}  // namespace zev::test
