#include "thread_fixture.h"

namespace zev::test {
namespace {

class Mutexes : public Threads {};

TEST_F(Mutexes, AreHeldByOneThreadAtATime) {
  OCIThreadMutex *mutex = makeMutex();
  EXPECT_EQ(OCIThreadMutexAcquire(hndl(), err(), mutex), OCI_SUCCESS);
  EXPECT_EQ(pthread_mutex_trylock(&mutex->mutex), EBUSY);
  EXPECT_EQ(OCIThreadMutexRelease(hndl(), err(), mutex), OCI_SUCCESS);
  EXPECT_EQ(pthread_mutex_trylock(&mutex->mutex), 0);
  EXPECT_EQ(OCIThreadMutexRelease(hndl(), err(), mutex), OCI_SUCCESS);
}

TEST_F(Mutexes, AreDestroyedHeldAndFree) {
  OCIThreadMutex *held = makeMutex(), *free = makeMutex();
  EXPECT_EQ(OCIThreadMutexAcquire(hndl(), err(), held), OCI_SUCCESS);
  EXPECT_EQ(OCIThreadMutexDestroy(hndl(), err(), &held), OCI_SUCCESS);
  EXPECT_EQ(OCIThreadMutexDestroy(hndl(), err(), &free), OCI_SUCCESS);
}

TEST_F(Mutexes, ANewOneWithoutInitialisationMayBeFreed) {
  OCIThreadMutex *mutex = Alloc_OCIThreadMutex();
  ASSERT_NE(mutex, nullptr);
  Free_OCIThreadMutex(mutex);
}

}  // namespace
}  // namespace zev::test
