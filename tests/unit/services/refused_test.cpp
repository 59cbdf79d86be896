/// What the services do when the system gives them no memory, thread or mutex. The
/// library's calls come here first (linker option --wrap).
#include <cerrno>
#include <functional>

#include "tests/unit/core/failing_allocator.h"
#include "thread_fixture.h"

namespace {

bool refuses = false;

}  // namespace

extern "C" {
int __real_pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                          void *(*start)(void *), void *arg);
int __real_pthread_mutex_init(pthread_mutex_t *mutex,
                              const pthread_mutexattr_t *attributes);

int __wrap_pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                          void *(*start)(void *), void *arg) {
  return refuses ? EAGAIN : __real_pthread_create(thread, attributes, start, arg);
}
int __wrap_pthread_mutex_init(pthread_mutex_t *mutex,
                              const pthread_mutexattr_t *attributes) {
  return refuses ? EAGAIN : __real_pthread_mutex_init(mutex, attributes);
}
}

namespace zev::test {
namespace {

class Refused : public Threads {
 protected:
  ~Refused() override { refuses = false; }

  /// Lets the n-th allocation of `work` fail, for n = 1, 2, ... until none does. Each
  /// failure must leave one of `codes` alone, and what `unchanged` checks.
  void exhaust(const std::function<sword()> &work, const Codes &codes,
               const std::function<void()> &unchanged) {
    for (long n = 0;; ++n) {
      failAllocationsAfter(n, false);
      const sword status = work();
      if (!stopFailing()) {
        EXPECT_EQ(status, OCI_SUCCESS);
        EXPECT_GT(n, 0);
        return;
      }
      EXPECT_EQ(status, OCI_ERROR);
      EXPECT_EQ(codesOf(err()), codes);
      unchanged();
      ASSERT_LT(n, 100);
    }
  }

  /// Making an object fails with 16506, gives null and leaves nothing behind.
  template <class T, class Make>
  void exhaustMaking(Make make) {
    T *const before = reinterpret_cast<T *>(this);
    T *object = before;
    const ub4 had = children();
    exhaust([&] { return make(hndl(), err(), &object); }, {16506},
            [&] {
              EXPECT_EQ(object, nullptr);
              EXPECT_EQ(children(), had);
              object = before;
            });
    EXPECT_EQ(children(), had + 1);
  }
};

TEST_F(Refused, WithoutMemoryNoObjectIsMade) {
  exhaustMaking<OCIThreadId>(OCIThreadIdInit);
  exhaustMaking<OCIThreadHandle>(OCIThreadHndInit);
  exhaustMaking<OCIThreadMutex>(OCIThreadMutexInit);
  exhaustMaking<OCIThreadKey>([](void *h, OCIError *e, OCIThreadKey **key) {
    return OCIThreadKeyInit(h, e, key, nullptr);
  });
}

TEST_F(Refused, WithoutMemoryAKeyKeepsItsFormerValue) {
  OCIThreadKey *key = makeKey([](void *) {});
  exhaust([&] { return OCIThreadKeySet(hndl(), err(), key, this); }, {16506},
          [&] {
            void *value = this;
            OCIThreadKeyGet(hndl(), err(), key, &value);
            EXPECT_EQ(value, nullptr);
          });
  EXPECT_EQ(OCIThreadKeySet(hndl(), err(), key, nullptr), OCI_SUCCESS);
}

TEST_F(Refused, WithoutMemoryNoThreadStarts) {
  OCIThreadHandle *thread = makeHandle();
  OCIThreadId *id = makeId();
  exhaust(
      [&] {
        return OCIThreadCreate(
            hndl(), err(), [](void *) {}, nullptr, id, thread);
      },
      {30135}, [&] { EXPECT_EQ(thread->running, 0); });
  EXPECT_EQ(OCIThreadJoin(hndl(), err(), thread), OCI_SUCCESS);
}

TEST_F(Refused, AThreadThatTheSystemRefusesIs30135) {
  OCIThreadHandle *thread = makeHandle();
  OCIThreadId *id = makeId();
  refuses = true;
  expectError(OCIThreadCreate(
                  hndl(), err(), [](void *) {}, nullptr, id, thread),
              30135);
  EXPECT_EQ(thread->running, 0);
  EXPECT_EQ(id->tid, 0u);
  expectError(OCIThreadJoin(hndl(), err(), thread), 30135);
  expectError(OCIThreadClose(hndl(), err(), thread), 30135);
}

TEST_F(Refused, AMutexThatTheSystemRefusesIs24320) {
  OCIThreadMutex *mutex = reinterpret_cast<OCIThreadMutex *>(this);
  refuses = true;
  expectError(OCIThreadMutexInit(hndl(), err(), &mutex), 24320);
  EXPECT_EQ(firstText(err()), "KESTREL-24320: mutex initialization error");
  EXPECT_EQ(mutex, nullptr);
  EXPECT_EQ(children(), 1u);
}

TEST_F(Refused, WithoutMemoryAContextValueIsNotKept) {
  ub1 key[] = {'k'};
  exhaust([&] { return OCIContextSetValue(hndl(), err(), 10, key, 1, this); }, {16506},
          [&] { EXPECT_EQ(list_length(env_.get()->contextValues), 0u); });
  EXPECT_EQ(list_length(env_.get()->contextValues), 1u);
}

TEST_F(Refused, WithoutMemoryABlockIsNull) {
  void *block = this;
  failAllocationsAfter(0, false);
  EXPECT_EQ(OCIMemoryAlloc(hndl(), err(), &block, OCI_DURATION_SESSION, 8, 0), OCI_ERROR);
  EXPECT_TRUE(stopFailing());
  EXPECT_EQ(block, nullptr);
}

TEST_F(Refused, WithoutMemoryNoFileIsOpened) {
  EXPECT_EQ(OCIFileInit(hndl(), err()), OCI_SUCCESS);
  OraText name[] = "null", path[] = "/dev";
  OCIFileObject *file = nullptr;
  exhaust(
      [&] {
        return OCIFileOpen(hndl(), err(), &file, name, path, OCI_FILE_READ_ONLY,
                           OCI_FILE_CREATE, OCI_FILE_BIN);
      },
      {16506}, [&] { EXPECT_EQ(file, nullptr); });
  EXPECT_EQ(OCIFileClose(hndl(), err(), file), OCI_SUCCESS);
}

}  // namespace
}  // namespace zev::test
