/// Every function that ends the process, with and without the operator's leave to go on.
#include <functional>

#include "stub_calls.h"
#include "zevoci/user_callbacks.h"

namespace zev::test {
namespace {

/// A function, and its code when callbacks may watch it.
struct Stub {
  const char *name;
  std::function<sword(Arguments &)> call;
  ub4 code;
};

std::ostream &operator<<(std::ostream &out, const Stub &stub) {
  return out << stub.name;
}

#define ROW(name, code) \
  Stub{#name, [](Arguments &arguments) { return callWith(arguments, name); }, code},
#define FRAME_STUB(result, name, parameters, code, ...) ROW(name, code)
#define QUIET_FRAME_STUB(result, name, parameters, code, ...) ROW(name, code)
#define OBJECT_STUB(result, name, parameters, code, ...) ROW(name, code)
#define PLAIN_STUB(result, name, ...) ROW(name, 0)
#define BARE_STUB(result, name, ...) ROW(name, 0)

const Stub kStubs[] = {
#include "core/surface/surface.def"
};

#undef ROW

class StubTest : public testing::TestWithParam<Stub> {
 protected:
  StubTest() { unsetenv(kGoOn); }
  ~StubTest() override { unsetenv(kGoOn); }

  Environment env_;
  Arguments arguments_{env_};
};

class StubDeathTest : public StubTest {};

TEST_P(StubDeathTest, EndsTheProcessAndNamesItself) {
  const Stub &stub = GetParam();
  EXPECT_EXIT(stub.call(arguments_), testing::ExitedWithCode(1),
              std::string("^UNIMPLEMENTED FUNCTION CALL ") + stub.name +
                  " IN FILE [^ ]*core/surface/[a-z]+.def AT LINE [0-9]+\n$");
  EXPECT_TRUE(arguments_.areUntouched());
}

TEST_P(StubTest, GoesOnWithTheOperatorsLeave) {
  setenv(kGoOn, "", 1);
  EXPECT_EQ(GetParam().call(arguments_), OCI_SUCCESS);
  EXPECT_TRUE(arguments_.areUntouched());
  sb4 code = 0;
  OraText text[64];
  EXPECT_EQ(
      OCIErrorGet(env_.errhp(), 1, nullptr, &code, text, sizeof text, OCI_HTYPE_ERROR),
      OCI_NO_DATA);
}

sword answer(void *ctxp, void *, ub4, ub4, ub4, sword, sb4 *, va_list) {
  return *static_cast<sword *>(ctxp);
}

class WatchedStubTest : public StubTest {
 protected:
  WatchedStubTest() { setenv(kGoOn, "1", 1); }

  /// Calls `call` with a callback in each of the three stages of `code`.
  void watch(ub4 code, const std::function<sword()> &call) {
    sword status = OCI_SUCCESS_WITH_INFO;
    UcbEntry entry{};
    entry.callback = answer;
    entry.ctxp = &status;
    UcbEntry *entries[] = {&entry};
    UcbList list{entries, 1};
    OCIEnv *env = env_.get();
    for (UcbList **table : {env->entryUcbs, env->replaceUcbs, env->exitUcbs}) {
      table[code] = &list;
      EXPECT_EQ(call(), OCI_SUCCESS_WITH_INFO);
      table[code] = nullptr;
    }
    EXPECT_EQ(call(), OCI_SUCCESS);
  }
};

TEST_P(WatchedStubTest, ReturnsWhatACallbackSays) {
  watch(GetParam().code, [this] { return GetParam().call(arguments_); });
}

TEST_F(WatchedStubTest, SettingPiecesIsWatchedBelowAnyHandle) {
  watch(61, [this] {
    return OCIStmtSetPieceInfo(env_.errhp(), OCI_HTYPE_ERROR, env_.errhp(), nullptr,
                               nullptr, 0, nullptr, nullptr);
  });
}

TEST_F(StubTest, LeavesItsTextWhereNobodyReadsIt) {
  setenv(kGoOn, "1", 1);
  EXPECT_EQ(OCILobFileCloseAll(nullptr, env_.errhp()), OCI_SUCCESS);
  EXPECT_STREQ(env_.errhp()->scratchText, "KESTREL-03001: unsupported feature");
  EXPECT_EQ(OCILobFileCloseAll(nullptr, nullptr), OCI_SUCCESS);
}

TEST_F(StubTest, ATextForSeveralHandlesGoesToTheFirst) {
  setenv(kGoOn, "1", 1);
  OCIError *first = env_.errhp();
  OCIError *handles[] = {first, env_.alloc<OCIError>(OCI_HTYPE_ERROR)};
  EXPECT_EQ(OCITransMultiPrepare(nullptr, 2, nullptr, handles), OCI_SUCCESS);
  EXPECT_STREQ(first->scratchText, "KESTREL-03001: unsupported feature");
  EXPECT_STREQ(handles[1]->scratchText, "");
}

TEST_F(StubTest, ObjectsInStatementsLeaveNoText) {
  setenv(kGoOn, "1", 1);
  callWith(arguments_, OCIBindObject);
  callWith(arguments_, OCIDefineObject);
  EXPECT_STREQ(env_.errhp()->scratchText, "");
}

TEST_F(StubTest, AFrameTracesItsStages) {
  setenv(kGoOn, "1", 1);
  const std::string lines = traced(4, [&] { callWith(arguments_, OCITransForget); });
  const char *const kOrder[] = {"BEFORE PerformEntryUcbs\n",
                                "AFTER PerformEntryUcbs\n",
                                "BEFORE PerformReplaceUcbs\n",
                                "AFTER PerformReplaceUcbs\n",
                                "Forgetting about transaction\n",
                                "\tsvchp = ",
                                "\terrhp = ",
                                "\tflags = ",
                                "BEFORE PerformExitUcbs\n",
                                "AFTER PerformExitUcbs\n",
                                "\tRETURNING "};
  std::size_t at = 0;
  for (const char *line : kOrder) {
    const std::size_t found = lines.find(line, at);
    ASSERT_NE(found, std::string::npos) << line << "in\n" << lines;
    at = found + 1;
  }
}

TEST_F(StubTest, PiecesAndObjectsTraceNoStages) {
  setenv(kGoOn, "1", 1);
  for (const auto &call : std::initializer_list<std::function<void()>>{
           [&] { callWith(arguments_, OCIStmtGetPieceInfo); },
           [&] { callWith(arguments_, OCIStmtSetPieceInfo); },
           [&] { callWith(arguments_, OCIBindObject); },
           [&] { callWith(arguments_, OCIDefineObject); }}) {
    const std::string lines = traced(4, call);
    EXPECT_EQ(lines.find("BEFORE"), std::string::npos) << lines;
    EXPECT_NE(lines.find("\tRETURNING "), std::string::npos) << lines;
  }
}

TEST_F(StubTest, NarrativesAreThoseOfTheOperation) {
  setenv(kGoOn, "1", 1);
  EXPECT_EQ(traced(3, [&] { callWith(arguments_, OCIAQDeq); }),
            "Dequeuing Message from Queue");
  EXPECT_EQ(traced(3, [&] { callWith(arguments_, OCILobAppend); }),
            "Appending to a LOB\n");
  EXPECT_EQ(traced(3, [&] { callWith(arguments_, OCIRowidToChar); }),
            "Converting ROWID to base 64 text\n");
}

/// The functions whose first argument leads to the callbacks. No handle of this library
/// is a row identifier.
std::vector<Stub> watched() {
  std::vector<Stub> all;
  std::ranges::copy_if(kStubs, std::back_inserter(all), [](const Stub &stub) {
    const std::string name(stub.name);
    return stub.code != 0 && name != "OCIStmtSetPieceInfo" && name != "OCIRowidToChar";
  });
  return all;
}

const auto nameOf = [](const testing::TestParamInfo<Stub> &row) {
  return row.param.name;
};
INSTANTIATE_TEST_SUITE_P(Each, StubDeathTest, testing::ValuesIn(kStubs), nameOf);
INSTANTIATE_TEST_SUITE_P(Each, StubTest, testing::ValuesIn(kStubs), nameOf);
INSTANTIATE_TEST_SUITE_P(Each, WatchedStubTest, testing::ValuesIn(watched()), nameOf);

}  // namespace
}  // namespace zev::test
