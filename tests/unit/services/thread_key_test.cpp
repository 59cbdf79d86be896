#include <thread>

#include "thread_fixture.h"

namespace zev::test {
namespace {

/// What the destructors of a test were given, in order.
std::vector<std::string> destroyed;
template <char Key>
void destroy(void *value) {
  destroyed.push_back(std::string{Key} + ":" + static_cast<char *>(value));
}

class Keys : public Threads {
 protected:
  Keys() { destroyed.clear(); }

  void set(OCIThreadKey *key, const char *value) {
    EXPECT_EQ(OCIThreadKeySet(hndl(), err(), key, const_cast<char *>(value)),
              OCI_SUCCESS);
  }
  std::string get(OCIThreadKey *key) {
    void *value = nullptr;
    EXPECT_EQ(OCIThreadKeyGet(hndl(), err(), key, &value), OCI_SUCCESS);
    return value ? static_cast<char *>(value) : "null";
  }
};

using Destroyed = std::vector<std::string>;

TEST_F(Keys, HaveAValueOfTheirOwnInEachThread) {
  OCIThreadKey *key = makeKey();
  EXPECT_EQ(get(key), "null");
  set(key, "here");
  auto ask = [&] {
    EXPECT_EQ(get(key), "null");
    set(key, "there");
    EXPECT_EQ(get(key), "there");
  };
  runInThread(ask);
  EXPECT_EQ(get(key), "here");
  set(key, nullptr);
  EXPECT_EQ(get(key), "null");
}

TEST_F(Keys, ADestructorRunsAtTheEndOfAThreadOfTheLibrary) {
  OCIThreadKey *key = makeKey(destroy<'a'>);
  auto work = [&] {
    set(key, "first");
    set(key, "second");
    EXPECT_EQ(get(key), "second");
    EXPECT_TRUE(destroyed.empty());
  };
  runInThread(work);
  EXPECT_EQ(destroyed, Destroyed{"a:second"});
}

TEST_F(Keys, ADestructorDoesNotRunInAThreadMadeOtherwise) {
  OCIThreadKey *key = makeKey(destroy<'a'>);
  std::thread([&] { set(key, "value"); }).join();
  EXPECT_TRUE(destroyed.empty());
}

TEST_F(Keys, WithoutADestructorNothingRuns) {
  OCIThreadKey *key = makeKey();
  auto work = [&] { set(key, "value"); };
  runInThread(work);
  EXPECT_TRUE(destroyed.empty());
}

TEST_F(Keys, ANullValueTakesTheDestructorAway) {
  OCIThreadKey *key = makeKey(destroy<'a'>);
  auto work = [&] {
    set(key, nullptr);
    set(key, "value");
    set(key, nullptr);
    EXPECT_EQ(pthread_getspecific(g_ThreadKeyDestructorListIndex), nullptr);
  };
  runInThread(work);
  EXPECT_TRUE(destroyed.empty());
}

TEST_F(Keys, AnotherKeyTakesThePlaceOfTheOneSetLast) {
  OCIThreadKey *a = makeKey(destroy<'a'>), *b = makeKey(destroy<'b'>);
  auto work = [&] {
    set(a, "1");
    set(b, "2");
    EXPECT_EQ(get(a), "1");
    EXPECT_EQ(get(b), "2");
  };
  runInThread(work);
  EXPECT_EQ(destroyed, Destroyed{"b:2"});
}

TEST_F(Keys, NullForAKeyThatIsNotInTheListTakesTheLastOneAway) {
  OCIThreadKey *a = makeKey(destroy<'a'>), *b = makeKey(destroy<'b'>);
  auto work = [&] {
    set(a, "1");
    set(b, nullptr);
    EXPECT_EQ(get(a), "1");
  };
  runInThread(work);
  EXPECT_TRUE(destroyed.empty());
}

TEST_F(Keys, AKeyWithoutADestructorLeavesTheOthersAlone) {
  OCIThreadKey *a = makeKey(destroy<'a'>), *plain = makeKey();
  auto work = [&] {
    set(a, "1");
    set(plain, "2");
    set(plain, nullptr);
  };
  runInThread(work);
  EXPECT_EQ(destroyed, Destroyed{"a:1"});
}

/// What a thread does with its keys, one call after the other, and what it leaves to
/// destructors: key and value in the order of the list.
class KeyModel {
 public:
  void set(char key, char value) {
    if (left_.empty()) {
      if (value) left_.push_back({key, value});
      return;
    }
    std::size_t at = 0;
    while (at < left_.size() && left_[at].key != key) ++at;
    if (at == left_.size()) --at;
    if (value) {
      left_[at] = {key, value};
    } else {
      left_.erase(left_.begin() + static_cast<long>(at));
    }
  }

  Destroyed destroyed() const {
    Destroyed all;
    for (const Entry &entry : left_) all.push_back({entry.key, ':', entry.value});
    return all;
  }

 private:
  struct Entry {
    char key, value;
  };
  std::vector<Entry> left_;
};

/// Calls of one thread: the digits of `sequence` name one key each, and whether it is
/// given a value.
struct KeyCalls {
  Environment *env;
  OCIThreadKey *keys[3];
  int sequence;
  KeyModel model;

  static constexpr int kLength = 5;
  static constexpr int kSequences = 6 * 6 * 6 * 6 * 6;

  void run() {
    static const char *const kValues[] = {"1", "2", "3", "4", "5"};
    int rest = sequence;
    for (int i = 0; i < kLength; ++i, rest /= 6) {
      const int key = rest % 6 / 2;
      const char *value = rest % 2 ? kValues[i] : nullptr;
      OCIThreadKeySet(env->get(), env->errhp(), keys[key], const_cast<char *>(value));
      model.set("abc"[key], value ? *value : '\0');
    }
  }
};

TEST_F(Keys, EverySequenceOfCallsLeavesToDestructorsWhatTheRulesSay) {
  OCIThreadHandle *thread = makeHandle();
  KeyCalls calls = {&env_,
                    {makeKey(destroy<'a'>), makeKey(destroy<'b'>), makeKey(destroy<'c'>)},
                    0,
                    {}};
  thread->proc = [](void *arg) { static_cast<KeyCalls *>(arg)->run(); };
  thread->arg = &calls;
  for (; calls.sequence < KeyCalls::kSequences; ++calls.sequence) {
    destroyed.clear();
    calls.model = {};
    ThreadProc(thread);
    ASSERT_EQ(destroyed, calls.model.destroyed()) << calls.sequence;
    ASSERT_EQ(pthread_getspecific(g_ThreadKeyDestructorListIndex), nullptr);
  }
}

TEST_F(Keys, ADestroyedKeyStillGivesItsValueToTheDestructor) {
  OCIThreadKey *key = makeKey(destroy<'a'>);
  auto work = [&] {
    set(key, "value");
    EXPECT_EQ(OCIThreadKeyDestroy(hndl(), err(), &key), OCI_SUCCESS);
  };
  runInThread(work);
  EXPECT_EQ(destroyed, Destroyed{"a:value"});
}

/// The key that a destructor takes its value from, as tidy programs do.
OCIThreadKey *tidied = nullptr;
Environment *tidier = nullptr;

TEST_F(Keys, ADestructorMaySetItsKeyToNull) {
  const auto tidy = [](void *value) {
    destroy<'t'>(value);
    EXPECT_EQ(OCIThreadKeySet(tidier->get(), tidier->errhp(), tidied, nullptr),
              OCI_SUCCESS);
  };
  tidier = &env_;
  tidied = makeKey(tidy);
  auto work = [&] { set(tidied, "value"); };
  runInThread(work);
  EXPECT_EQ(destroyed, Destroyed{"t:value"});
}

TEST_F(Keys, WhatADestructorSetsAnewIsNotGivenToADestructor) {
  const auto refill = [](void *value) {
    destroy<'r'>(value);
    EXPECT_EQ(OCIThreadKeySet(tidier->get(), tidier->errhp(), tidied, value),
              OCI_SUCCESS);
  };
  tidier = &env_;
  tidied = makeKey(refill);
  auto work = [&] { set(tidied, "value"); };
  runInThread(work);
  EXPECT_EQ(destroyed, Destroyed{"r:value"});
}

TEST_F(Keys, WhenTheSystemHasNoneLeftIs30135AndAnEnvironmentGivesItsBack) {
  int made = 0;
  {
    Environment greedy;
    OCIThreadKey *key = nullptr;
    sword status;
    while ((status = OCIThreadKeyInit(greedy.get(), greedy.errhp(), &key, nullptr)) ==
           OCI_SUCCESS) {
      ASSERT_LT(++made, 100000);
    }
    EXPECT_EQ(status, OCI_ERROR);
    EXPECT_EQ(codesOf(greedy.errhp()), Codes{30135});
    EXPECT_EQ(key, nullptr);
    EXPECT_EQ(list_length(greedy.get()->children), made + 1u);
  }
  EXPECT_GT(made, 0);
  OCIThreadKey *key = makeKey();
  EXPECT_EQ(OCIThreadKeyDestroy(hndl(), err(), &key), OCI_SUCCESS);
}

TEST_F(Keys, ANewOneWithoutInitialisationTakesNoKeyOfOthersAlong) {
  OCIThreadKey *key = makeKey();
  set(key, "value");
  Free_OCIThreadKey(Alloc_OCIThreadKey());
  EXPECT_EQ(get(key), "value");
}

TEST_F(Keys, TheKeyOfTheListsIsMadeWithTheFirstEnvironment) {
  EXPECT_NE(g_ThreadKeyDestructorListIndex, kNoThreadKey);
  const pthread_key_t before = g_ThreadKeyDestructorListIndex;
  const Environment second;
  EXPECT_EQ(g_ThreadKeyDestructorListIndex, before);
}

}  // namespace
}  // namespace zev::test
