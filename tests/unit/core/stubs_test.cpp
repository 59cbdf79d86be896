/// Every function that does nothing, with and without the operator's leave to go on.
#include <ociap.h>

#include <algorithm>
#include <array>
#include <functional>

#include "core_fixture.h"
#include "zevoci/user_callbacks.h"

namespace zev::test {
namespace {

constexpr const char *kGoOn = "ZEV_OCI_UIFCTN_RET_OK";

/// Values for the parameters of any function: handles where they are asked for, and for
/// each other pointer a block whose bytes are looked at afterwards.
class Arguments {
 public:
  explicit Arguments(Environment &env)
      : env_(env),
        svchp_(env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX)),
        stmtp_(env.alloc<OCIStmt>(OCI_HTYPE_STMT)) {}

  template <class T>
  T make() {
    if constexpr (std::is_same_v<T, OCIEnv *>) {
      return env_.get();
    } else if constexpr (std::is_same_v<T, OCIError *>) {
      return env_.errhp();
    } else if constexpr (std::is_same_v<T, OCISvcCtx *>) {
      return svchp_;
    } else if constexpr (std::is_same_v<T, const OCIStmt *>) {
      return stmtp_;
    } else if constexpr (std::is_pointer_v<T> &&
                         !std::is_function_v<std::remove_pointer_t<T>>) {
      return static_cast<T>(static_cast<void *>(block_.data()));
    } else {
      return T{};
    }
  }
  bool areUntouched() const {
    return std::ranges::all_of(block_, [](unsigned char c) { return c == 0; });
  }

 private:
  Environment &env_;
  OCISvcCtx *svchp_;
  OCIStmt *stmtp_;
  alignas(16) std::array<unsigned char, 512> block_ = {};
};

template <class... Parameters>
sword callWith(Arguments &arguments, sword (*function)(Parameters...)) {
  return function(arguments.make<Parameters>()...);
}

/// A function, and its code when callbacks may watch it.
struct Stub {
  const char *name;
  std::function<sword(Arguments &)> call;
  ub4 code;
};

#define ROW(name, code) \
  Stub{#name, [](Arguments &arguments) { return callWith(arguments, name); }, code},
#define FRAME_STUB(name, code, ...) ROW(name, code)
#define QUIET_FRAME_STUB(name, code, ...) ROW(name, code)
#define PLAIN_STUB(name, ...) ROW(name, 0)
#define BARE_STUB(name, ...) ROW(name, 0)

const Stub kStubs[] = {
#include "core/stub_table.def"
};

#undef BARE_STUB
#undef PLAIN_STUB
#undef QUIET_FRAME_STUB
#undef FRAME_STUB
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
                  " IN FILE [^ ]*stub_table.def AT LINE [0-9]+\n$");
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

/// The functions whose first argument leads to the callbacks.
std::vector<Stub> watched() {
  std::vector<Stub> all;
  std::ranges::copy_if(kStubs, std::back_inserter(all), [](const Stub &stub) {
    return stub.code != 0 && std::string(stub.name) != "OCIStmtSetPieceInfo";
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
