/// Callbacks of every function code: entered, replaced and left, each with the arguments
/// of the call.
#include <ociap.h>

#include <algorithm>
#include <cstdarg>
#include <functional>
#include <limits>
#include <set>

#include "frame_fixture.h"

namespace zev::test {
namespace {

/// A list of arguments that readers share.
struct ArgumentList {
  std::va_list list;
};

/// Whether the next argument is `wanted`; small integers arrive as int.
template <class T>
bool nextIs(ArgumentList &arguments, T wanted) {
  constexpr bool isSmall = std::is_integral_v<T> && std::numeric_limits<T>::digits < 31;
  using Passed = std::conditional_t<isSmall, int, T>;
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the list is copied by the caller
  return va_arg(arguments.list, Passed) == static_cast<Passed>(wanted);
}

/// Makes a call and knows its arguments.
class Caller {
 public:
  template <class... Parameters>
  sword operator()(sword (*function)(Parameters...),
                   std::type_identity_t<Parameters>... given) {
    compare_ = [=](ArgumentList &list) {
      return (nextIs<Parameters>(list, given) && ...);
    };
    return function(given...);
  }

  bool areArguments(std::va_list list) const {
    if (!compare_) return false;
    ArgumentList shared;
    va_copy(shared.list, list);
    const bool same = compare_(shared);
    va_end(shared.list);
    return same;
  }

 private:
  std::function<bool(ArgumentList &)> compare_;
};

/// A registered stage. It outlives the environment, and is silent while it has no caller.
struct Stage {
  char name;
  ub4 when;
  const Caller *caller = nullptr;
  std::string *log = nullptr;
};
Stage stages[] = {
    {'E', OCI_UCBTYPE_ENTRY}, {'R', OCI_UCBTYPE_REPLACE}, {'X', OCI_UCBTYPE_EXIT}};

sword observe(void *ctxp, void *, ub4, ub4, ub4, sword, sb4 *, va_list list) {
  const auto *stage = static_cast<Stage *>(ctxp);
  if (!stage->caller) return OCI_CONTINUE;
  *stage->log += stage->name;
  EXPECT_TRUE(stage->caller->areArguments(list)) << stage->name;
  return OCI_CONTINUE;
}

/// All stages report while it lives.
class Watch {
 public:
  Watch(const Caller &caller, std::string &log) {
    for (Stage &stage : stages) stage.caller = &caller, stage.log = &log;
  }
  ~Watch() {
    for (Stage &stage : stages) stage.caller = nullptr;
  }
  Watch(const Watch &) = delete;
  Watch &operator=(const Watch &) = delete;
};

/// A framed function by its code. Nested calls of other codes are not watched.
struct Row {
  const char *name;
  ub4 code;
  sword (*call)(F &, Caller &);
  void (*setUp)(F &) = [](F &) {};
  const char *stages = "ERX";
};

class CallbackArguments : public FrameFixture, public testing::WithParamInterface<Row> {
 protected:
  CallbackArguments() { setenv("ZEV_OCI_UIFCTN_RET_OK", "", 1); }
  ~CallbackArguments() override { unsetenv("ZEV_OCI_UIFCTN_RET_OK"); }
};

TEST_P(CallbackArguments, ArriveInEveryStage) {
  const Row &row = GetParam();
  row.setUp(*this);
  Caller caller;
  std::string log;
  for (Stage &stage : stages) {
    EXPECT_EQ(OCIUserCallbackRegister(env.get(), OCI_HTYPE_ENV, errhp, observe, &stage,
                                      row.code, stage.when, nullptr),
              row.code <= OCI_FNCODE_LOBARRAYWRITE ? OCI_SUCCESS : OCI_ERROR);
  }
  const Watch watch(caller, log);
  EXPECT_EQ(row.call(*this, caller), OCI_SUCCESS) << firstText(errhp);
  EXPECT_EQ(log, row.stages);
}

/// Addresses that no stub looks at.
template <class T>
T *at(F &f, std::size_t i = 0) {
  return reinterpret_cast<T *>(&f.text[i]);
}

sb4 inBind(void *, OCIBind *, ub4, ub4, void **, ub4 *, ub1 *, void **) {
  return OCI_CONTINUE;
}
sb4 outBind(void *, OCIBind *, ub4, ub4, void **, ub4 **, ub1 *, void **, ub2 **) {
  return OCI_CONTINUE;
}
sb4 define(void *, OCIDefine *, ub4, void **, ub4 **, ub1 *, void **, ub2 **) {
  return OCI_CONTINUE;
}

// clang-format off
const Row kRows[] = {
    {"HandleAlloc", 2, [](F &f, Caller &c) { return c(OCIHandleAlloc, f.env.get(), &f.made, OCI_HTYPE_STMT, 16, &f.made); }},
    {"HandleFree", 3, [](F &f, Caller &c) { return c(OCIHandleFree, f.stmt, OCI_HTYPE_STMT); }},
    {"DescriptorAlloc", 4, [](F &f, Caller &c) {
       return c(OCIDescriptorAlloc, f.env.get(), &f.made, OCI_DTYPE_TIMESTAMP, 0, nullptr); }},
    {"ServerAttach", 7, [](F &f, Caller &c) {
       return c(OCIServerAttach, static_cast<OCIServer *>(f.made), f.errhp, asText("h"), 1, 9); },
     [](F &f) { f.made = f.env.alloc<OCIServer>(OCI_HTYPE_SERVER); }},
    {"ServerDetach", 8, [](F &f, Caller &c) { return c(OCIServerDetach, f.server, f.errhp, 9); }, kNothing, "R"},
    {"SessionBegin", 10, [](F &f, Caller &c) {
       return c(OCISessionBegin, f.svchp, f.errhp, f.session, OCI_CRED_RDBMS, 64); },
     [](F &f) { OCISessionEnd(f.svchp, f.errhp, f.session, OCI_DEFAULT); f.link(f.server, OCI_ATTR_SERVER); }},
    {"SessionEnd", 11, [](F &f, Caller &c) { return c(OCISessionEnd, f.svchp, f.errhp, f.session, 9); }},
    {"PasswordChange", 12, [](F &f, Caller &c) {
       return c(OCIPasswordChange, f.svchp, f.errhp, asText("zev_told"), 8, asText("a"), 1, asText("bc"), 2, OCI_DEFAULT); },
     [](F &f) { PQclear(PQexec(f.server->conn, "begin; create role zev_told")); }},
    {"StmtPrepare", 13, [](F &f, Caller &c) {
       return c(OCIStmtPrepare, f.stmt, f.errhp, asText(kSelect), 22, OCI_NTV_SYNTAX, OCI_DEFAULT); }},
    {"BindDynamic", 17, [](F &f, Caller &c) {
       return c(OCIBindDynamic, f.bound, f.errhp, at<void>(f, 1), inBind, at<void>(f, 2), outBind); }, kBound},
    {"StmtExecute", 21, [](F &f, Caller &c) {
       return c(OCIStmtExecute, f.svchp, f.stmt, f.errhp, 1, 0, nullptr, nullptr, OCI_DEFAULT); }, kBound},
    {"DefineDynamic", 26, [](F &f, Caller &c) {
       return c(OCIDefineDynamic, f.defined, f.errhp, at<void>(f, 1), define); }, kBound},
    {"DefineArrayOfStruct", 27, [](F &f, Caller &c) {
       return c(OCIDefineArrayOfStruct, f.defined, f.errhp, 4, 5, 6, 7); }, kBound},
    {"StmtFetch", 28, [](F &f, Caller &c) {
       return c(OCIStmtFetch, f.stmt, f.errhp, 1, OCI_FETCH_NEXT, OCI_DEFAULT); }, kExecuted, "ER"},
    {"StmtGetBindInfo", 29, [](F &f, Caller &c) {
       sb4 found = 0;
       OraText *names[1], *indicators[1];
       ub1 lengths[1], indicatorLengths[1], duplicate[1];
       OCIBind *binds[1];
       return c(OCIStmtGetBindInfo, f.stmt, f.errhp, 1, 1, &found, names, lengths, indicators, indicatorLengths, duplicate, binds); }, kBound},
    {"DescribeAny", 32, [](F &f, Caller &c) {
       return c(OCIDescribeAny, f.svchp, f.errhp, const_cast<OraText *>(asText("pg_class")), 8, OCI_OTYPE_NAME, OCI_DEFAULT,
                OCI_PTYPE_TABLE, static_cast<OCIDescribe *>(f.made)); },
     [](F &f) { f.made = f.env.alloc<OCIDescribe>(OCI_HTYPE_DESCRIBE); }},
    {"TransStart", 33, [](F &f, Caller &c) { return c(OCITransStart, f.svchp, f.errhp, 7, OCI_TRANS_NEW); },
     [](F &f) { f.transaction(); }},
    {"TransCommit", 35, [](F &f, Caller &c) { return c(OCITransCommit, f.svchp, f.errhp, OCI_DEFAULT); }},
    {"ErrorGet", 37, [](F &f, Caller &c) {
       AddErrorRecord(f.errhp, OCI_ERROR, 1403);
       sb4 code = 0;
       return c(OCIErrorGet, f.errhp, 1, nullptr, &code, f.text, sizeof f.text, OCI_HTYPE_ERROR); }},
    {"ServerVersion", 51, [](F &f, Caller &c) {
       return c(OCIServerVersion, f.server, f.errhp, f.text, sizeof f.text, OCI_HTYPE_SERVER); }},
    {"AttrSet", 55, [](F &f, Caller &c) {
       f.text[0] = 2;
       return c(OCIAttrSet, f.server, OCI_HTYPE_SERVER, at<void>(f), 4, 5001, f.errhp); }},
    {"TransPrepare", 63, [](F &f, Caller &c) { return c(OCITransPrepare, f.svchp, f.errhp, OCI_DEFAULT); },
     [](F &f) { f.transaction();
       PQclear(PQexec(f.server->conn, "rollback prepared '0.told'"));
       OCIAttrSet(f.svchp->trans, OCI_HTYPE_TRANS, const_cast<OraText *>(asText("told")), 4, OCI_ATTR_TRANS_NAME, f.errhp);
       PQclear(PQexec(f.server->conn, "begin")); }},
    {"TransRollback", 64, [](F &f, Caller &c) { return c(OCITransRollback, f.svchp, f.errhp, OCI_DEFAULT); }},
    {"DefineByPos", 65, [](F &f, Caller &c) {
       return c(OCIDefineByPos, f.stmt, &f.defined, f.errhp, 1, &f.number, 4, SQLT_INT, at<void>(f, 2), at<ub2>(f, 4), at<ub2>(f, 6), OCI_DEFAULT); }, kPrepared},
    {"BindByPos", 66, [](F &f, Caller &c) {
       return c(OCIBindByPos, f.stmt, &f.bound, f.errhp, 1, &f.number, 4, SQLT_INT, at<void>(f, 2), at<ub2>(f, 4), at<ub2>(f, 6), 0, nullptr, OCI_DEFAULT); }, kPrepared},
    {"BindByName", 67, [](F &f, Caller &c) {
       return c(OCIBindByName, f.stmt, &f.bound, f.errhp, asText(":a"), 2, &f.number, 4, SQLT_INT, at<void>(f, 2), at<ub2>(f, 4), at<ub2>(f, 6), 0, nullptr, OCI_DEFAULT); }, kPrepared},
    {"LobClose", 82, [](F &f, Caller &c) {
       return c(OCILobClose, f.svchp, f.errhp, static_cast<OCILobLocator *>(f.made)); },
     [](F &f) { f.locator(); }},
    {"StmtPrepare2", 108, [](F &f, Caller &c) {
       return c(OCIStmtPrepare2, f.svchp, at<OCIStmt *>(f), f.errhp, asText(kSelect), 22, asText("key"), 3, OCI_NTV_SYNTAX, OCI_DEFAULT); }},
    {"StmtRelease", 109, [](F &f, Caller &c) {
       return c(OCIStmtRelease, static_cast<OCIStmt *>(f.made), f.errhp, asText("key"), 3, OCI_DEFAULT); },
     [](F &f) { f.prepare2(); }},
    {"StmtFetch2", 152, [](F &f, Caller &c) {
       return c(OCIStmtFetch2, f.stmt, f.errhp, 1, OCI_FETCH_NEXT, -3, OCI_DEFAULT); }, kExecuted},

    // Functions that do nothing else.
    {"BindObject", 18, [](F &f, Caller &c) {
       return c(OCIBindObject, f.bound, f.errhp, at<OCIType>(f, 1), at<void *>(f, 2), at<ub4>(f, 3), at<void *>(f, 4), at<ub4>(f, 5)); }, kBound},
    {"DefineObject", 25, [](F &f, Caller &c) {
       return c(OCIDefineObject, f.defined, f.errhp, at<OCIType>(f, 1), at<void *>(f, 2), at<ub4>(f, 3), at<void *>(f, 4), at<ub4>(f, 5)); }, kBound},
    {"TransDetach", 34, [](F &f, Caller &c) { return c(OCITransDetach, f.svchp, f.errhp, 9); }},
    {"LobFileClose", 39, [](F &f, Caller &c) { return c(OCILobFileClose, f.svchp, f.errhp, at<OCILobLocator>(f, 1)); }},
    {"LobCopy", 42, [](F &f, Caller &c) {
       return c(OCILobCopy, f.svchp, f.errhp, at<OCILobLocator>(f, 1), at<OCILobLocator>(f, 2), 3, 4, 5); }},
    {"LobAppend", 43, [](F &f, Caller &c) {
       return c(OCILobAppend, f.svchp, f.errhp, at<OCILobLocator>(f, 1), at<OCILobLocator>(f, 2)); }},
    {"StmtGetPieceInfo", 58, [](F &f, Caller &c) {
       return c(OCIStmtGetPieceInfo, f.stmt, f.errhp, at<void *>(f, 1), at<ub4>(f, 2), at<ub1>(f, 3), at<ub4>(f, 4), at<ub4>(f, 5), at<ub1>(f, 6)); }},
    {"LdaToSvcCtx", 59, [](F &f, Caller &c) { return c(OCILdaToSvcCtx, at<OCISvcCtx *>(f, 1), f.errhp, at<Lda_Def>(f, 2)); }},
    {"StmtSetPieceInfo", 61, [](F &f, Caller &c) {
       return c(OCIStmtSetPieceInfo, f.bound, OCI_HTYPE_BIND, f.errhp, at<void>(f, 1), at<ub4>(f, 2), OCI_NEXT_PIECE, at<void>(f, 3), at<ub2>(f, 4)); }, kBound},
    {"TransForget", 62, [](F &f, Caller &c) { return c(OCITransForget, f.svchp, f.errhp, 9); }},
    {"LobAssign", 68, [](F &f, Caller &c) {
       return c(OCILobAssign, f.env.get(), f.errhp, at<OCILobLocator>(f, 1), at<OCILobLocator *>(f, 2)); }},
    {"LobCharSetForm", 73, [](F &f, Caller &c) {
       return c(OCILobCharSetForm, f.env.get(), f.errhp, at<OCILobLocator>(f, 1), at<ub1>(f, 2)); }},
    {"AQEnq", 90, [](F &f, Caller &c) {
       return c(OCIAQEnq, f.svchp, f.errhp, at<OraText>(f, 1), at<OCIAQEnqOptions>(f, 2), at<OCIAQMsgProperties>(f, 3), at<OCIType>(f, 4),
                at<void *>(f, 5), at<void *>(f, 6), at<OCIRaw *>(f, 7), 8); }},
    {"AQDeq", 91, [](F &f, Caller &c) {
       return c(OCIAQDeq, f.svchp, f.errhp, at<OraText>(f, 1), at<OCIAQDeqOptions>(f, 2), at<OCIAQMsgProperties>(f, 3), at<OCIType>(f, 4),
                at<void *>(f, 5), at<void *>(f, 6), at<OCIRaw *>(f, 7), 8); }},
    {"SvcCtxToLda", 93, [](F &f, Caller &c) { return c(OCISvcCtxToLda, f.svchp, f.errhp, at<Lda_Def>(f, 1)); }},
    {"TransMultiPrepare", 99, [](F &f, Caller &c) {
       return c(OCITransMultiPrepare, f.svchp, 2, at<OCITrans *>(f, 1), &f.errhp); }},
    {"RowidToChar", 103, [](F &f, Caller &c) {
       return c(OCIRowidToChar, reinterpret_cast<OCIRowid *>(f.stmt), at<OraText>(f, 1), at<ub2>(f, 2), f.errhp); }},
    {"AQEnqArray", 110, [](F &f, Caller &c) {
       return c(OCIAQEnqArray, f.svchp, f.errhp, at<OraText>(f, 1), at<OCIAQEnqOptions>(f, 2), at<ub4>(f, 3), at<OCIAQMsgProperties *>(f, 4),
                at<OCIType>(f, 5), at<void *>(f, 6), at<void *>(f, 7), at<OCIRaw *>(f, 8), at<void>(f, 9), nullptr, 10); }},
    {"AQDeqArray", 111, [](F &f, Caller &c) {
       return c(OCIAQDeqArray, f.svchp, f.errhp, at<OraText>(f, 1), at<OCIAQDeqOptions>(f, 2), at<ub4>(f, 3), at<OCIAQMsgProperties *>(f, 4),
                at<OCIType>(f, 5), at<void *>(f, 6), at<void *>(f, 7), at<OCIRaw *>(f, 8), at<void>(f, 9), nullptr, 10); }},
    {"LobCopy2", 112, [](F &f, Caller &c) {
       return c(OCILobCopy2, f.svchp, f.errhp, at<OCILobLocator>(f, 1), at<OCILobLocator>(f, 2), oraub8{1} << 40, 4, 5); }},
    {"LobArrayRead", 122, [](F &f, Caller &c) {
       return c(OCILobArrayRead, f.svchp, f.errhp, at<ub4>(f, 1), at<OCILobLocator *>(f, 2), at<oraub8>(f, 3), at<oraub8>(f, 4),
                at<oraub8>(f, 5), at<void *>(f, 6), at<oraub8>(f, 7), OCI_ONE_PIECE, at<void>(f, 8), nullptr, 873, SQLCS_NCHAR); }},
    {"LobArrayWrite", 123, [](F &f, Caller &c) {
       return c(OCILobArrayWrite, f.svchp, f.errhp, at<ub4>(f, 1), at<OCILobLocator *>(f, 2), at<oraub8>(f, 3), at<oraub8>(f, 4),
                at<oraub8>(f, 5), at<void *>(f, 6), at<oraub8>(f, 7), OCI_ONE_PIECE, at<void>(f, 8), nullptr, 873, SQLCS_NCHAR); }},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Functions, CallbackArguments, testing::ValuesIn(kRows),
                         [](const auto &p) { return std::string(p.param.name); });

/// The codes of all functions that run callbacks.
TEST(CallbackCodes, AreEachOneRowOfTheTable) {
  std::vector<ub4> codes;
  codes.reserve(std::size(kRows));
  for (const Row &row : kRows) codes.push_back(row.code);
  std::ranges::sort(codes);
  EXPECT_EQ(codes, (std::vector<ub4>{2,   3,   4,   7,   8,   10,  11,  12, 13, 17, 18,
                                     21,  25,  26,  27,  28,  29,  32,  33, 34, 35, 37,
                                     39,  42,  43,  51,  55,  58,  59,  61, 62, 63, 64,
                                     65,  66,  67,  68,  73,  82,  90,  91, 93, 99, 103,
                                     108, 109, 110, 111, 112, 122, 123, 152}));
}

/// Codes of operations whose functions run no callbacks, or those of another code.
TEST_F(FrameFixture, CodesThatNoFunctionRunsStaySilent) {
  std::set<ub4> run;
  for (const Row &row : kRows) run.insert(row.code);
  Caller caller;
  std::string log;
  for (ub4 code = 0; code < kUcbSlots; ++code) {
    if (run.contains(code)) continue;
    for (Stage &stage : stages) {
      OCIUserCallbackRegister(env.get(), OCI_HTYPE_ENV, errhp, observe, &stage, code,
                              stage.when, nullptr);
    }
  }
  const Watch watch(caller, log);
  kExecuted(*this);
  OCIStmtFetch(stmt, errhp, 1, OCI_FETCH_NEXT, OCI_DEFAULT);
  OCIAttrGet(stmt, OCI_HTYPE_STMT, text, nullptr, OCI_ATTR_ROW_COUNT, errhp);
  OCIParam *column = nullptr;
  OCIParamGet(stmt, OCI_HTYPE_STMT, errhp, reinterpret_cast<void **>(&column), 1);
  OCIBindArrayOfStruct(bound, errhp, 4, 0, 0, 0);
  OCIReset(svchp, errhp);
  OCIBreak(svchp, errhp);
  OCILogoff(logon(), errhp);
  EXPECT_EQ(log, "");
}

}  // namespace
}  // namespace zev::test
