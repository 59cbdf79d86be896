/// Registration of user callbacks, and what each of them is told.
#include "zevoci/user_callbacks.h"

#include <ociap.h>

#include <algorithm>
#include <cerrno>

#include "core_fixture.h"
#include "trace_log.h"

namespace zev::test {
namespace {

/// One call of a callback.
struct Seen {
  void *ctxp, *hndlp;
  ub4 type, fcode, when;
  sword returned;
  bool errnoGiven;
};
std::vector<Seen> seen;
sword answer = OCI_CONTINUE;

sword observe(void *ctxp, void *hndlp, ub4 type, ub4 fcode, ub4 when, sword returned,
              sb4 *errnop, va_list) {
  seen.push_back({ctxp, hndlp, type, fcode, when, returned, errnop == &errno});
  return answer;
}

sword answerTwo(void *, void *, ub4, ub4, ub4, sword, sb4 *, va_list) {
  return 2;
}

class UserCallbacks : public testing::Test {
 protected:
  UserCallbacks() {
    seen.clear();
    answer = OCI_CONTINUE;
  }

  sword registerFor(ub4 fcode, ub4 when, void *ctxp = nullptr,
                    OCIUserCallback callback = observe) {
    return OCIUserCallbackRegister(env_.get(), OCI_HTYPE_ENV, env_.errhp(), callback,
                                   ctxp, fcode, when, nullptr);
  }
  sword allocate() {
    void *made = nullptr;
    const sword status = OCIHandleAlloc(env_.get(), &made, OCI_HTYPE_STMT, 0, nullptr);
    EXPECT_NE(made, nullptr);
    return status;
  }

  /// How many stand in the environment's tables.
  int registrations() const {
    int count = 0;
    const OCIEnv *env = env_.get();
    for (const auto *table : {&env->entryUcbs, &env->replaceUcbs, &env->exitUcbs}) {
      for (const UcbList *list : *table) count += list ? list->count : 0;
    }
    return count;
  }

  Environment env_;
};

TEST_F(UserCallbacks, AreCalledWithWhatWasRegisteredAndThreeConstants) {
  int context = 0;
  ASSERT_EQ(OCIUserCallbackRegister(env_.get(), 77, nullptr, observe, &context,
                                    OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_EXIT, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(allocate(), OCI_SUCCESS);
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].ctxp, &context);
  EXPECT_EQ(seen[0].hndlp, env_.get());
  EXPECT_EQ(seen[0].type, 77u);
  EXPECT_EQ(seen[0].fcode, 13u);
  EXPECT_EQ(seen[0].when, 1u);
  EXPECT_EQ(seen[0].returned, 0);
  EXPECT_TRUE(seen[0].errnoGiven);
}

TEST_F(UserCallbacks, RunInTheOrderOfRegistrationWithinAStage) {
  int contexts[9];
  for (int i = 0; i < 9; ++i) {
    const ub4 when = i % 3 == 0   ? OCI_UCBTYPE_EXIT
                     : i % 3 == 1 ? OCI_UCBTYPE_REPLACE
                                  : OCI_UCBTYPE_ENTRY;
    ASSERT_EQ(registerFor(OCI_FNCODE_HANDLEALLOC, when, &contexts[i]), OCI_SUCCESS);
  }
  EXPECT_EQ(allocate(), OCI_SUCCESS);
  std::vector<std::ptrdiff_t> order(seen.size());
  std::ranges::transform(seen, order.begin(), [&](const Seen &one) {
    return static_cast<int *>(one.ctxp) - contexts;
  });
  EXPECT_EQ(order, (std::vector<std::ptrdiff_t>{2, 5, 8, 1, 4, 7, 0, 3, 6}));
}

TEST_F(UserCallbacks, AnEntryIsStoredAsGiven) {
  int context = 0;
  auto *descriptor = reinterpret_cast<OCIUcb *>(&context);
  OCIUserCallbackRegister(env_.get(), 5, env_.errhp(), observe, &context, 21,
                          OCI_UCBTYPE_REPLACE, descriptor);
  const UcbList *list = env_.get()->replaceUcbs[21];
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->count, 1);
  const UcbEntry &entry = *list->callbacks[0];
  EXPECT_EQ(entry.hndlp, env_.get());
  EXPECT_EQ(entry.type, 5u);
  EXPECT_EQ(entry.ehndlp, env_.errhp());
  EXPECT_EQ(entry.callback, observe);
  EXPECT_EQ(entry.ctxp, &context);
  EXPECT_EQ(entry.ucbDesc, descriptor);
}

TEST_F(UserCallbacks, EveryCodeOfAFunctionIsAcceptedInEveryStage) {
  for (ub4 code = 1; code <= 123; ++code) {
    const std::vector<ub4> none = {9,  14, 15, 16, 19, 22, 23, 24,
                                   30, 31, 36, 40, 41, 49, 53, 60};
    const bool hasFunction = std::ranges::find(none, code) == none.end();
    for (const ub4 when : {OCI_UCBTYPE_ENTRY, OCI_UCBTYPE_EXIT, OCI_UCBTYPE_REPLACE}) {
      EXPECT_EQ(registerFor(code, static_cast<ub4>(when)),
                hasFunction ? OCI_SUCCESS : OCI_ERROR)
          << code;
    }
    EXPECT_EQ(env_.get()->entryUcbs[code]->count, 1);
    EXPECT_EQ(env_.get()->exitUcbs[code]->count, 1);
    EXPECT_EQ(env_.get()->replaceUcbs[code]->count, 1);
  }
}

TEST_F(UserCallbacks, CodeNineIsAnErrorWhoseEntryStandsAndNeverRuns) {
  EXPECT_EQ(registerFor(9, OCI_UCBTYPE_ENTRY), OCI_ERROR);
  ASSERT_NE(env_.get()->entryUcbs[9], nullptr);
  EXPECT_EQ(env_.get()->entryUcbs[9]->count, 1);
  EXPECT_EQ(codesOf(env_.errhp()), Codes{});
  EXPECT_EQ(allocate(), OCI_SUCCESS);
  EXPECT_TRUE(seen.empty());
}

TEST_F(UserCallbacks, CodesWithoutAFunctionKeepTheirEntryWhileTheyHaveASlot) {
  for (const ub4 code : {0u, 124u, 152u}) {
    EXPECT_EQ(registerFor(code, OCI_UCBTYPE_EXIT), OCI_ERROR) << code;
    EXPECT_EQ(env_.get()->exitUcbs[code]->count, 1) << code;
  }
  const int before = registrations();
  for (const ub4 code : {153u, 1000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(registerFor(code, OCI_UCBTYPE_EXIT), OCI_ERROR) << code;
  }
  EXPECT_EQ(registrations(), before);
}

TEST_F(UserCallbacks, AnUnknownStageOrNoEnvironmentChangesNothing) {
  const int before = registrations();
  for (const ub4 when : {0u, 4u, 100u}) {
    EXPECT_EQ(registerFor(OCI_FNCODE_HANDLEALLOC, when), OCI_ERROR) << when;
  }
  for (void *hndlp : {static_cast<void *>(nullptr), static_cast<void *>(env_.errhp())}) {
    EXPECT_EQ(OCIUserCallbackRegister(hndlp, OCI_HTYPE_ENV, nullptr, observe, nullptr, 2,
                                      OCI_UCBTYPE_ENTRY, nullptr),
              OCI_INVALID_HANDLE);
  }
  EXPECT_EQ(registrations(), before);
}

TEST_F(UserCallbacks, ANullCallbackIsPassedOver) {
  EXPECT_EQ(registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY, nullptr, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(allocate(), OCI_SUCCESS);
}

TEST_F(UserCallbacks, AReplacementIsTheStatusAndNotTheWork) {
  answer = OCI_ERROR;
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_REPLACE);
  EXPECT_EQ(allocate(), OCI_ERROR);
}

TEST_F(UserCallbacks, TheFirstContinueFixesTheStatus) {
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY);
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY, nullptr, answerTwo);
  EXPECT_EQ(allocate(), OCI_SUCCESS);
}

TEST_F(UserCallbacks, TheLastOfSeveralAnswersHolds) {
  answer = 1;
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY);
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY, nullptr, answerTwo);
  EXPECT_EQ(allocate(), 2);
}

TEST_F(UserCallbacks, BelongToTheirEnvironment) {
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY);
  const Environment other;
  EXPECT_TRUE(seen.empty());
  auto *child = env_.alloc<OCIEnv>(OCI_HTYPE_ENV);
  EXPECT_EQ(seen.size(), 1u);
  env_.alloc<OCIStmt>(OCI_HTYPE_STMT, child);
  EXPECT_EQ(seen.size(), 1u);
}

TEST_F(UserCallbacks, ARegistrationCannotBeReadBack) {
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY);
  OCIUserCallback callback = nullptr;
  void *context = nullptr;
  EXPECT_EQ(OCIUserCallbackGet(env_.get(), OCI_HTYPE_ENV, env_.errhp(), 2, 1, &callback,
                               &context, nullptr),
            OCI_ERROR);
  EXPECT_EQ(callback, nullptr);
  EXPECT_EQ(OCIUserCallbackGet(nullptr, 0, nullptr, 0, 0, nullptr, nullptr, nullptr),
            OCI_ERROR);
  EXPECT_EQ(codesOf(env_.errhp()), Codes{});
}

sword passArguments(const UcbEntry *entry, sb4 *errnop, ...) {
  va_list list;
  va_start(list, errnop);
  const sword status = o2pVaToListUCB(entry, errnop, list);
  va_end(list);
  return status;
}

sword readArguments(void *ctxp, void *, ub4, ub4, ub4, sword, sb4 *errnop, va_list list) {
  *errnop = 7;
  const int first = va_arg(list, int);
  return first + (va_arg(list, void *) == ctxp ? 1 : 0);
}

TEST(VariableArguments, ReachOneCallbackAsAList) {
  int context = 0;
  const UcbEntry entry{nullptr, 0, nullptr, readArguments, &context, nullptr};
  sb4 number = 0;
  EXPECT_EQ(passArguments(&entry, &number, 40, static_cast<void *>(&context)), 41);
  EXPECT_EQ(number, 7);
}

/// The three functions that run a stage, on a status that is no call's own.
class Stages : public testing::Test {
 protected:
  /// Answers one after the other; with each, the argument that it found.
  static sword reply(void *ctxp, void *, ub4, ub4, ub4, sword, sb4 *, va_list list) {
    auto *self = static_cast<Stages *>(ctxp);
    self->arguments_.push_back(va_arg(list, int));
    return self->answers_[self->next_++];
  }
  void add(ub4 when, std::initializer_list<sword> answers) {
    for (const sword one : answers) {
      answers_.push_back(one);
      OCIUserCallbackRegister(env_.get(), OCI_HTYPE_ENV, nullptr, reply, this,
                              OCI_FNCODE_SERVERATTACH, when, nullptr);
    }
  }
  UcbList *entry() { return env_.get()->entryUcbs[OCI_FNCODE_SERVERATTACH]; }
  UcbList *exit() { return env_.get()->exitUcbs[OCI_FNCODE_SERVERATTACH]; }

  Environment env_;
  std::vector<sword> answers_;
  std::vector<int> arguments_;
  std::size_t next_ = 0;
  sword status_ = 7;
};

TEST_F(Stages, WithoutCallbacksLeaveTheStatus) {
  EXPECT_EQ(PerformEntryUcbs(nullptr, &status_, 1, 2), 7);
  EXPECT_EQ(PerformReplaceUcbs(env_.get(), &status_, OCI_FNCODE_SERVERATTACH, 1, 2), 7);
  EXPECT_EQ(PerformExitUcbs(nullptr, &status_, 1, 2), 7);
  EXPECT_EQ(status_, 7);
}

TEST_F(Stages, AnEntryThatAnswersZeroMakesTheStatusZero) {
  add(OCI_UCBTYPE_ENTRY, {0});
  PerformEntryUcbs(entry(), &status_, 1, 2);
  EXPECT_EQ(status_, 0);
}

TEST_F(Stages, AContinueLeavesTheStatusAsItWasBefore) {
  add(OCI_UCBTYPE_ENTRY, {OCI_CONTINUE, -1});
  PerformEntryUcbs(entry(), &status_, 1, 2);
  EXPECT_EQ(status_, 7);
  EXPECT_EQ(arguments_, (std::vector{1, 1})) << "each entry begins with the first";
}

TEST_F(Stages, ExitCallbacksReadOnWhereTheFormerOneEnded) {
  add(OCI_UCBTYPE_EXIT, {3, 4});
  PerformExitUcbs(exit(), &status_, 1, 2);
  EXPECT_EQ(status_, 4);
  EXPECT_EQ(arguments_, (std::vector{1, 2}));
}

TEST_F(Stages, AReplacementEndsTheRunWithTheExitCallbacks) {
  add(OCI_UCBTYPE_REPLACE, {OCI_CONTINUE, 3, 99});
  answers_[2] = 4;  // of the exit callback: the third replacement does not run
  add(OCI_UCBTYPE_EXIT, {99});
  EXPECT_EQ(PerformReplaceUcbs(env_.get(), &status_, OCI_FNCODE_SERVERATTACH, 1, 2),
            0x800);
  EXPECT_EQ(status_, 4);
  EXPECT_EQ(next_, 3u);
}

TEST_F(Stages, ReplacementsThatAllContinueRestoreTheStatus) {
  add(OCI_UCBTYPE_REPLACE, {OCI_CONTINUE, OCI_CONTINUE});
  EXPECT_EQ(PerformReplaceUcbs(env_.get(), &status_, OCI_FNCODE_SERVERATTACH, 1, 2), 7);
  EXPECT_EQ(status_, 7);
}

/// What a package's callback is given.
struct Start {
  void *env;
  ub4 mode;
  size_t xtramem;
  void *userMemory;
  OCIUcb *descriptor;
} start;

sword startPackage(OCIEnv *env, ub4 mode, size_t xtramem, void *userMemory,
                   OCIUcb *descriptor) {
  start = {env, mode, xtramem, userMemory, descriptor};
  return 42;
}

TEST_F(UserCallbacks, ASharedLibrarysStartGetsTheEnvironmentAndZeros) {
  start = {nullptr, 1, 1, &start, reinterpret_cast<OCIUcb *>(&start)};
  TraceLog log;
  OCI2PQ_TRACE_LEVEL = 4;
  EXPECT_EQ(OCISharedLibInit(env_.get(), &start, 3, 4, nullptr, startPackage), 42);
  EXPECT_EQ(start.env, env_.get());
  EXPECT_EQ(start.mode, 0u);
  EXPECT_EQ(start.xtramem, 0u);
  EXPECT_EQ(start.userMemory, nullptr);
  EXPECT_EQ(start.descriptor, nullptr);
  EXPECT_EQ(log.takeNarrative(), "4: \tRETURNING <s>\n");
}

TEST_F(UserCallbacks, ASharedLibraryWithoutAStartIsAnError) {
  EXPECT_EQ(OCISharedLibInit(env_.get(), nullptr, 0, 0, nullptr, nullptr), OCI_ERROR);
}

TEST_F(UserCallbacks, ARegistrationIsToldByNarrativeAndArguments) {
  TraceLog log;
  OCI2PQ_TRACE_LEVEL = 4;
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY);
  EXPECT_EQ(log.takeNarrative(),
            "3: Registering User Callback\n"
            "4: \thndlp = <p>\n"
            "4: \ttype = <s>\n"
            "4: \tehndlp = <p>\n"
            "4: \tcallback = <p>\n"
            "4: \tctxp = <p>\n"
            "4: \tfcode = <s>\n"
            "4: \twhen = <s>\n"
            "4: \tucbDesc = <p>\n"
            "4: \tRETURNING <s>\n");
  OCI2PQ_TRACE_LEVEL = 3;
  registerFor(OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY);
  EXPECT_EQ(log.takeNarrative(), "3: Registering User Callback\n");
  OCI2PQ_TRACE_LEVEL = 0;
  registerFor(9, 9);
  EXPECT_EQ(log.takeNarrative(), "0: \tERROR for FNCODE <s>\n0: \tERROR for WHEN <s>\n");
  OCI2PQ_TRACE_LEVEL = 4;
  OCIUserCallbackGet(nullptr, 0, nullptr, 0, 0, nullptr, nullptr, nullptr);
  EXPECT_EQ(log.takeNarrative(),
            "3: Getting User Callback for Handle\n4: \tRETURNING <s>\n");
}

}  // namespace
}  // namespace zev::test
