#include <functional>

#include "thread_fixture.h"

namespace zev::test {
namespace {

void doNothing(void *) {}

/// One function, called with the handles and with an object of its kind.
struct Call {
  const char *name;
  std::function<sword(void *hndl, OCIError *err, void *object)> run;
  HandleTag object;  ///< of what kind; the environment's for a function without one
};

template <class T>
std::function<sword(void *, OCIError *, void *)> on(sword (*function)(void *, OCIError *,
                                                                      T *)) {
  return [function](void *h, OCIError *e, void *o) {
    return function(h, e, static_cast<T *>(o));
  };
}

/// For a function that takes the place of the object: a copy of it, so that what is
/// destroyed is not used again.
template <class T>
std::function<sword(void *, OCIError *, void *)> at(sword (*function)(void *, OCIError *,
                                                                      T **)) {
  return [function](void *h, OCIError *e, void *o) {
    auto *object = static_cast<T *>(o);
    return function(h, e, &object);
  };
}

boolean result;
void *value;

// clang-format off
const Call kCalls[] = {
    {"Init", [](void *h, OCIError *e, void *) { return OCIThreadInit(h, e); }, HANDLE_OCIEnv},
    {"Term", [](void *h, OCIError *e, void *) { return OCIThreadTerm(h, e); }, HANDLE_OCIEnv},
    {"IdSet", [](void *h, OCIError *e, void *o) {
       auto *id = static_cast<OCIThreadId *>(o);
       return OCIThreadIdSet(h, e, id, id); }, HANDLE_OCIThreadId},
    {"IdSetNull", on(OCIThreadIdSetNull), HANDLE_OCIThreadId},
    {"IdGet", on(OCIThreadIdGet), HANDLE_OCIThreadId},
    {"IdSame", [](void *h, OCIError *e, void *o) {
       auto *id = static_cast<OCIThreadId *>(o);
       return OCIThreadIdSame(h, e, id, id, &result); }, HANDLE_OCIThreadId},
    {"IdNull", [](void *h, OCIError *e, void *o) {
       return OCIThreadIdNull(h, e, static_cast<OCIThreadId *>(o), &result); },
     HANDLE_OCIThreadId},
    {"IdDestroy", at(OCIThreadIdDestroy), HANDLE_OCIThreadId},
    {"HandleGet", on(OCIThreadHandleGet), HANDLE_OCIThreadHandle},
    {"Close", on(OCIThreadClose), HANDLE_OCIThreadHandle},
    {"Join", on(OCIThreadJoin), HANDLE_OCIThreadHandle},
    {"HndDestroy", at(OCIThreadHndDestroy), HANDLE_OCIThreadHandle},
    {"MutexAcquire", on(OCIThreadMutexAcquire), HANDLE_OCIThreadMutex},
    {"MutexRelease", on(OCIThreadMutexRelease), HANDLE_OCIThreadMutex},
    {"MutexDestroy", at(OCIThreadMutexDestroy), HANDLE_OCIThreadMutex},
    {"KeySet", [](void *h, OCIError *e, void *o) {
       return OCIThreadKeySet(h, e, static_cast<OCIThreadKey *>(o), nullptr); },
     HANDLE_OCIThreadKey},
    {"KeyGet", [](void *h, OCIError *e, void *o) {
       return OCIThreadKeyGet(h, e, static_cast<OCIThreadKey *>(o), &value); },
     HANDLE_OCIThreadKey},
    {"KeyDestroy", at(OCIThreadKeyDestroy), HANDLE_OCIThreadKey},
};
// clang-format on

class EveryThreadCall : public Threads, public testing::WithParamInterface<Call> {
 protected:
  void *objectOf(HandleTag tag) {
    switch (tag) {
      case HANDLE_OCIThreadId:
        return makeId();
      case HANDLE_OCIThreadHandle:
        return makeHandle();
      case HANDLE_OCIThreadMutex:
        return GetParam().name == std::string("MutexRelease") ? makeHeldMutex()
                                                              : makeMutex();
      case HANDLE_OCIThreadKey:
        return makeKey();
      default:
        return nullptr;
    }
  }

  OCIThreadMutex *makeHeldMutex() {
    OCIThreadMutex *mutex = makeMutex();
    EXPECT_EQ(OCIThreadMutexAcquire(hndl(), err(), mutex), OCI_SUCCESS);
    return mutex;
  }

  /// Nothing is recorded, and what was recorded stays.
  void expectRefused(void *hndl, OCIError *errhp, void *object) {
    ClearErrorHandle(err());
    AddErrorRecord(err(), OCI_ERROR, 1403);
    EXPECT_EQ(GetParam().run(hndl, errhp, object), OCI_INVALID_HANDLE);
    EXPECT_EQ(codesOf(err()), Codes{1403});
  }
};

TEST_P(EveryThreadCall, RefusesNullAndForeignHandles) {
  void *object = objectOf(GetParam().object);
  const ub4 before = children();
  expectRefused(nullptr, err(), object);
  expectRefused(err(), err(), object);
  expectRefused(hndl(), nullptr, object);
  expectRefused(hndl(), static_cast<OCIError *>(hndl()), object);
  if (GetParam().object != HANDLE_OCIEnv) {
    expectRefused(hndl(), err(), nullptr);
    expectRefused(hndl(), err(), err());
    for (const HandleTag other : {HANDLE_OCIThreadId, HANDLE_OCIThreadMutex}) {
      if (other != GetParam().object) expectRefused(hndl(), err(), objectOf(other));
    }
  }
  EXPECT_GE(children(), before);
}

TEST_P(EveryThreadCall, ForgetsEarlierRecords) {
  void *object = objectOf(GetParam().object);
  AddErrorRecord(err(), OCI_ERROR, 1403);
  const sword status = GetParam().run(hndl(), err(), object);
  EXPECT_EQ(codesOf(err()), status == OCI_SUCCESS ? Codes{} : Codes{30135});
}

TEST_P(EveryThreadCall, WorksThroughTheEnvironmentOfASession) {
  auto *session = env_.alloc<OCISession>(OCI_HTYPE_SESSION);
  void *object = objectOf(GetParam().object);
  EXPECT_NE(GetParam().run(session, err(), object), OCI_INVALID_HANDLE);
}

TEST_P(EveryThreadCall, RefusesASessionBelowNoEnvironment) {
  OCISession *session = Alloc_OCISession();
  void *object = objectOf(GetParam().object);
  expectRefused(session, err(), object);
  session->parenth = err();
  expectRefused(session, err(), object);
  session->parenth = nullptr;
  Free_OCISession(session);
}

INSTANTIATE_TEST_SUITE_P(Functions, EveryThreadCall, testing::ValuesIn(kCalls),
                         [](const auto &p) { return std::string(p.param.name); });

TEST_F(Threads, MakingAnObjectRefusesNullAndForeignHandles) {
  OCIThreadId *id = nullptr;
  OCIThreadHandle *thread = nullptr;
  OCIThreadMutex *mutex = nullptr;
  OCIThreadKey *key = nullptr;
  const ub4 before = children();
  for (void *wrong : {static_cast<void *>(nullptr), static_cast<void *>(err())}) {
    EXPECT_EQ(OCIThreadIdInit(wrong, err(), &id), OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIThreadHndInit(wrong, err(), &thread), OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIThreadMutexInit(wrong, err(), &mutex), OCI_INVALID_HANDLE);
    EXPECT_EQ(OCIThreadKeyInit(wrong, err(), &key, nullptr), OCI_INVALID_HANDLE);
  }
  EXPECT_EQ(OCIThreadIdInit(hndl(), nullptr, &id), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadHndInit(hndl(), nullptr, &thread), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadMutexInit(hndl(), nullptr, &mutex), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadKeyInit(hndl(), nullptr, &key, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadIdInit(hndl(), err(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadHndInit(hndl(), err(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadMutexInit(hndl(), err(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadKeyInit(hndl(), err(), nullptr, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(children(), before);
}

TEST_F(Threads, NullResultsAreRefused) {
  OCIThreadId *id = makeId();
  EXPECT_EQ(OCIThreadIdSame(hndl(), err(), id, id, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadIdNull(hndl(), err(), id, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadKeyGet(hndl(), err(), makeKey(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadIdDestroy(hndl(), err(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadHndDestroy(hndl(), err(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadMutexDestroy(hndl(), err(), nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIThreadKeyDestroy(hndl(), err(), nullptr), OCI_INVALID_HANDLE);
}

TEST_F(Threads, MayBeManyAndNeedNoPreparation) {
  OCIThreadProcessInit();
  EXPECT_EQ(OCIThreadIsMulti(), 1);
}

TEST_F(Threads, TermBeforeInitIs30135AndTheMarkOutlivesIt) {
  expectError(OCIThreadTerm(hndl(), err()), 30135);
  EXPECT_EQ(firstText(err()), "KESTREL-30135: failed OCI Thread operation");
  EXPECT_EQ(OCIThreadInit(hndl(), err()), OCI_SUCCESS);
  EXPECT_EQ(OCIThreadTerm(hndl(), err()), OCI_SUCCESS);
  EXPECT_EQ(OCIThreadTerm(hndl(), err()), OCI_SUCCESS);
}

TEST_F(Threads, ObjectsAreChildrenOfTheEnvironmentUntilTheyAreDestroyed) {
  OCIThreadId *id = makeId();
  OCIThreadHandle *thread = makeHandle();
  OCIThreadMutex *mutex = makeMutex();
  OCIThreadKey *key = makeKey();
  for (OCIHandle *object :
       {static_cast<OCIHandle *>(id), static_cast<OCIHandle *>(thread),
        static_cast<OCIHandle *>(mutex), static_cast<OCIHandle *>(key)}) {
    EXPECT_EQ(list_member(env_.get()->children, object), 1);
    EXPECT_EQ(object->parenth, env_.get());
  }
  EXPECT_EQ(OCIThreadIdDestroy(hndl(), err(), &id), OCI_SUCCESS);
  EXPECT_EQ(OCIThreadHndDestroy(hndl(), err(), &thread), OCI_SUCCESS);
  EXPECT_EQ(OCIThreadMutexDestroy(hndl(), err(), &mutex), OCI_SUCCESS);
  EXPECT_EQ(OCIThreadKeyDestroy(hndl(), err(), &key), OCI_SUCCESS);
  EXPECT_EQ(id, nullptr);
  EXPECT_EQ(thread, nullptr);
  EXPECT_EQ(mutex, nullptr);
  EXPECT_EQ(key, nullptr);
  EXPECT_EQ(children(), 1u);
}

TEST_F(Threads, ObjectsThatRemainGoWithTheEnvironment) {
  for (int i = 0; i < 3; ++i) {
    makeId();
    makeHandle();
    OCIThreadMutexAcquire(hndl(), err(), makeMutex());
    makeKey();
  }
}

TEST_F(Threads, AnObjectLeavesItsOwnEnvironmentThroughWhicheverItIsDestroyed) {
  Environment other;
  OCIThreadId *id = makeId();
  EXPECT_EQ(OCIThreadIdDestroy(other.get(), other.errhp(), &id), OCI_SUCCESS);
  EXPECT_EQ(children(), 1u);
}

TEST_F(Threads, ASessionStandsForItsEnvironment) {
  auto *session = env_.alloc<OCISession>(OCI_HTYPE_SESSION);
  OCIThreadId *id = nullptr;
  EXPECT_EQ(OCIThreadIdInit(session, err(), &id), OCI_SUCCESS);
  EXPECT_EQ(list_member(env_.get()->children, id), 1);
}

TEST_F(Threads, NeitherHandleFreeNorAttributesKnowThreadObjects) {
  OCIThreadId *id = makeId();
  ub4 out = 0;
  EXPECT_EQ(OCIHandleFree(id, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDescriptorFree(id, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIAttrGet(id, 0, &out, nullptr, 1, err()), OCI_ERROR);
  EXPECT_EQ(list_member(env_.get()->children, id), 1);
}

TEST_F(Threads, FreeingIgnoresNullAndOtherKinds) {
  OCIHandle other = {HANDLE_OCIEnv, nullptr, 0, nullptr};
  for (OCIHandle *handle : {static_cast<OCIHandle *>(nullptr), &other}) {
    Free_OCIThreadId(static_cast<OCIThreadId *>(handle));
    Free_OCIThreadHandle(static_cast<OCIThreadHandle *>(handle));
    Free_OCIThreadMutex(static_cast<OCIThreadMutex *>(handle));
    Free_OCIThreadKey(static_cast<OCIThreadKey *>(handle));
  }
  EXPECT_EQ(other.handleType, HANDLE_OCIEnv);
}

class ThreadIds : public Threads {
 protected:
  boolean isNull(OCIThreadId *id) {
    boolean null = -1;
    EXPECT_EQ(OCIThreadIdNull(hndl(), err(), id, &null), OCI_SUCCESS);
    return null;
  }
  boolean same(OCIThreadId *a, OCIThreadId *b) {
    boolean equal = -1;
    EXPECT_EQ(OCIThreadIdSame(hndl(), err(), a, b, &equal), OCI_SUCCESS);
    return equal;
  }
};

TEST_F(ThreadIds, ANewOneIsOfNoThread) {
  EXPECT_EQ(isNull(makeId()), 1);
}

TEST_F(ThreadIds, TwoOfOneThreadAreTheSame) {
  OCIThreadId *a = makeId(), *b = makeId();
  EXPECT_EQ(OCIThreadIdGet(hndl(), err(), a), OCI_SUCCESS);
  EXPECT_EQ(a->tid, pthread_self());
  EXPECT_EQ(same(a, b), 0);
  EXPECT_EQ(OCIThreadIdGet(hndl(), err(), b), OCI_SUCCESS);
  EXPECT_EQ(same(a, b), 1);
}

TEST_F(ThreadIds, AreSetToAnotherAndToNone) {
  OCIThreadId *a = makeId(), *b = makeId();
  OCIThreadIdGet(hndl(), err(), a);
  EXPECT_EQ(OCIThreadIdSet(hndl(), err(), b, a), OCI_SUCCESS);
  EXPECT_EQ(same(a, b), 1);
  EXPECT_EQ(OCIThreadIdSetNull(hndl(), err(), a), OCI_SUCCESS);
  EXPECT_EQ(isNull(a), 1);
  EXPECT_EQ(isNull(b), 0);
  EXPECT_EQ(OCIThreadIdSet(hndl(), err(), b, a), OCI_SUCCESS);
  EXPECT_EQ(same(a, b), 1);
}

TEST_F(ThreadIds, OfTwoThreadsDiffer) {
  OCIThreadId *here = makeId(), *there = makeId();
  OCIThreadIdGet(hndl(), err(), here);
  auto ask = [&] { OCIThreadIdGet(hndl(), err(), there); };
  runInThread(ask);
  EXPECT_EQ(same(here, there), 0);
}

class ThreadHandles : public Threads {};

TEST_F(ThreadHandles, RunTheStartFunctionWithItsArgument) {
  OCIThreadId *id = makeId();
  OCIThreadHandle *thread = makeHandle();
  pthread_t ran = 0;
  const auto start = [](void *arg) { *static_cast<pthread_t *>(arg) = pthread_self(); };
  ASSERT_EQ(OCIThreadCreate(hndl(), err(), start, &ran, id, thread), OCI_SUCCESS);
  EXPECT_EQ(thread->running, 1);
  EXPECT_EQ(thread->proc, +start);
  EXPECT_EQ(thread->arg, &ran);
  EXPECT_EQ(OCIThreadJoin(hndl(), err(), thread), OCI_SUCCESS);
  EXPECT_EQ(ran, id->tid);
  EXPECT_EQ(ran, thread->tid);
  EXPECT_NE(ran, pthread_self());
}

TEST_F(ThreadHandles, ACreatedThreadNeedsAStartFunctionAnIdAndAHandle) {
  OCIThreadId *id = makeId();
  OCIThreadHandle *thread = makeHandle();
  auto *notAnId = reinterpret_cast<OCIThreadId *>(thread);
  auto *notAHandle = reinterpret_cast<OCIThreadHandle *>(id);
  const auto create = [&](auto *start, OCIThreadId *i, OCIThreadHandle *t) {
    return OCIThreadCreate(hndl(), err(), start, nullptr, i, t);
  };
  void (*const none)(void *) = nullptr;
  EXPECT_EQ(create(none, id, thread), OCI_INVALID_HANDLE);
  EXPECT_EQ(create(doNothing, nullptr, thread), OCI_INVALID_HANDLE);
  EXPECT_EQ(create(doNothing, notAnId, thread), OCI_INVALID_HANDLE);
  EXPECT_EQ(create(doNothing, id, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(create(doNothing, id, notAHandle), OCI_INVALID_HANDLE);
  EXPECT_EQ(thread->running, 0);
}

TEST_F(ThreadHandles, ClosingTwiceIs30135) {
  OCIThreadHandle *thread = makeHandle();
  EXPECT_EQ(OCIThreadCreate(hndl(), err(), doNothing, nullptr, makeId(), thread),
            OCI_SUCCESS);
  EXPECT_EQ(OCIThreadClose(hndl(), err(), thread), OCI_SUCCESS);
  EXPECT_EQ(thread->running, 0);
  expectError(OCIThreadClose(hndl(), err(), thread), 30135);
  EXPECT_EQ(OCIThreadJoin(hndl(), err(), thread), OCI_SUCCESS);
}

TEST_F(ThreadHandles, JoiningNoThreadOrTwiceOrOneselfIs30135) {
  OCIThreadHandle *thread = makeHandle();
  expectError(OCIThreadJoin(hndl(), err(), thread), 30135);
  OCIThreadCreate(hndl(), err(), doNothing, nullptr, makeId(), thread);
  EXPECT_EQ(OCIThreadJoin(hndl(), err(), thread), OCI_SUCCESS);
  expectError(OCIThreadJoin(hndl(), err(), thread), 30135);
  EXPECT_EQ(OCIThreadHandleGet(hndl(), err(), thread), OCI_SUCCESS);
  expectError(OCIThreadJoin(hndl(), err(), thread), 30135);
}

TEST_F(ThreadHandles, AHandleMayStartOneThreadAfterAnother) {
  OCIThreadId *id = makeId();
  OCIThreadHandle *thread = makeHandle();
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(OCIThreadCreate(hndl(), err(), doNothing, nullptr, id, thread),
              OCI_SUCCESS);
    EXPECT_EQ(OCIThreadJoin(hndl(), err(), thread), OCI_SUCCESS);
    EXPECT_EQ(OCIThreadClose(hndl(), err(), thread), OCI_SUCCESS);
  }
}

TEST_F(ThreadHandles, TheHandleOfTheCallingThreadIsRunning) {
  OCIThreadHandle *thread = makeHandle();
  EXPECT_EQ(OCIThreadHandleGet(hndl(), err(), thread), OCI_SUCCESS);
  EXPECT_EQ(thread->tid, pthread_self());
  EXPECT_EQ(OCIThreadClose(hndl(), err(), thread), OCI_SUCCESS);
}

TEST_F(ThreadHandles, AHandleMayBeDestroyedBeforeItsThreadHasBegun) {
  for (int i = 0; i < 50; ++i) {
    OCIThreadHandle *thread = makeHandle();
    OCIThreadId *id = makeId();
    ASSERT_EQ(OCIThreadCreate(hndl(), err(), doNothing, nullptr, id, thread),
              OCI_SUCCESS);
    OCIThreadHndDestroy(hndl(), err(), &thread);
    EXPECT_EQ(pthread_join(id->tid, nullptr), 0);
  }
}

TEST_F(ThreadHandles, TheStartRoutineRunsTheFunctionAndGivesNull) {
  OCIThreadHandle *thread = makeHandle();
  int ran = 0;
  thread->proc = [](void *arg) { ++*static_cast<int *>(arg); };
  thread->arg = &ran;
  EXPECT_EQ(ThreadProc(thread), nullptr);
  EXPECT_EQ(ran, 1);
}

}  // namespace
}  // namespace zev::test
