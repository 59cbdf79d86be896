/// What happens around the work of each exported function: callbacks of the three stages
/// and the clearing of the error handle.
#include "core/frame_rows.h"
#include "frame_fixture.h"

namespace zev::test {
namespace {

/// A callback's answer, and what it saw.
struct Probe {
  char stage;
  sword answer = OCI_SUCCESS;
  std::string *log = nullptr;
  const OCIError *watched = nullptr;  ///< "!" is written when it holds a record
  UcbEntry entry{};
};

sword probe(void *ctxp, void *, ub4, ub4 fcode, ub4 when, sword returned, sb4 *errnop,
            va_list) {
  auto *self = static_cast<Probe *>(ctxp);
  *self->log += self->stage;
  if (self->watched && self->watched->records) *self->log += '!';
  EXPECT_EQ(fcode, 13u);
  EXPECT_EQ(when, 1u);
  EXPECT_EQ(returned, 0);
  EXPECT_EQ(errnop, &errno);
  return self->answer;
}

/// Registrations of one function code, taken out of the environment at the end.
class Callbacks {
 public:
  Callbacks(OCIEnv *env, ub4 code, const OCIError *watched, std::string *log)
      : env_(env), code_(code), watched_(watched), log_(log) {}
  ~Callbacks() {
    if (!env_) return;
    env_->entryUcbs[code_] = env_->replaceUcbs[code_] = env_->exitUcbs[code_] = nullptr;
  }
  Callbacks(const Callbacks &) = delete;
  Callbacks &operator=(const Callbacks &) = delete;

  /// The environment goes first.
  void outlive() { env_ = nullptr; }

  void add(char stage, sword answer = OCI_CONTINUE) {
    probes_.push_back(std::make_unique<Probe>(Probe{stage, answer, log_, watched_}));
    Probe &made = *probes_.back();
    made.entry.callback = probe;
    made.entry.ctxp = &made;
    Stage &list = stageOf(stage);
    list.entries.push_back(&made.entry);
    list.list = {list.entries.data(), static_cast<sb4>(list.entries.size())};
    tableOf(stage)[code_] = &list.list;
  }

 private:
  struct Stage {
    std::vector<UcbEntry *> entries;
    UcbList list{};
  };
  Stage &stageOf(char stage) { return stages_[stage == 'E' ? 0 : stage == 'R' ? 1 : 2]; }
  UcbList **tableOf(char stage) {
    return stage == 'E'   ? env_->entryUcbs
           : stage == 'R' ? env_->replaceUcbs
                          : env_->exitUcbs;
  }

  OCIEnv *env_;
  ub4 code_;
  const OCIError *watched_;
  std::string *log_;
  std::vector<std::unique_ptr<Probe>> probes_;
  Stage stages_[3];
};

struct FrameCase {
  const char *name;
  ub4 code;
  /// Callbacks that run on success, in order: entry, replace, exit; "!" behind one that
  /// still finds the former call's record.
  const char *stages;
  bool keeps;  ///< the former record is still there afterwards
  sword (*call)(F &);
  void (*setUp)(F &) = [](F &) {};
  bool onEnvironment = false;  ///< records go to the environment's own handle
  sword status = OCI_SUCCESS;
};

class Frame : public FrameFixture, public testing::WithParamInterface<FrameCase> {
 protected:
  OCIError *records() { return GetParam().onEnvironment ? env.get()->errh : errhp; }
};

TEST_P(Frame, CallbacksRunInOrderAndTheFormerRecordGoesInItsPlace) {
  const FrameCase &c = GetParam();
  c.setUp(*this);
  std::string log;
  Callbacks callbacks(env.get(), c.code, records(), &log);
  for (const char stage : {'E', 'R', 'X'}) callbacks.add(stage, OCI_CONTINUE);
  ClearErrorHandle(records());
  AddErrorRecord(records(), OCI_ERROR, 24343);
  EXPECT_EQ(c.call(*this), c.status) << firstText(errhp);
  EXPECT_EQ(log, c.stages);
  const Codes left = codesOf(records());
  EXPECT_EQ(!left.empty() && left[0] == 24343, c.keeps);
}

// clang-format off
const FrameCase kFrames[] = {
    {"HandleAlloc", 2, "E!R!X", false, [](F &f) {
       return OCIHandleAlloc(f.env.get(), &f.made, OCI_HTYPE_STMT, 0, nullptr); }, kNothing, true},
    {"HandleFree", 3, "E!R!X", false, [](F &f) { return OCIHandleFree(f.stmt, OCI_HTYPE_STMT); }, kNothing, true},
    {"DescriptorAlloc", 4, "ER", false, [](F &f) {
       return OCIDescriptorAlloc(f.env.get(), &f.made, 79, 0, nullptr); }, kNothing, true, OCI_INVALID_HANDLE},
    {"ServerAttach", 7, "ERX", false, [](F &f) {
       return OCIServerAttach(static_cast<OCIServer *>(f.made), f.errhp, asText("h"), 1, OCI_DEFAULT); },
     [](F &f) { f.made = f.env.alloc<OCIServer>(OCI_HTYPE_SERVER); }},
    {"ServerDetach", 8, "R!", true, [](F &f) { return OCIServerDetach(f.server, f.errhp, OCI_DEFAULT); }},
    {"SessionBegin", 10, "E!R!X", false, [](F &f) {
       return OCISessionBegin(f.svchp, f.errhp, f.session, OCI_CRED_RDBMS, OCI_DEFAULT); },
     [](F &f) { OCISessionEnd(f.svchp, f.errhp, f.session, OCI_DEFAULT); f.link(f.server, OCI_ATTR_SERVER); }},
    {"SessionEnd", 11, "E!R!X", false, [](F &f) {
       return OCISessionEnd(f.svchp, f.errhp, f.session, OCI_DEFAULT); }},
    {"PasswordChange", 12, "ERX", false, [](F &f) {
       return OCIPasswordChange(f.svchp, f.errhp, asText("zev_frame"), 9, asText("a"), 1, asText("b"), 1, OCI_DEFAULT); },
     [](F &f) { PQclear(PQexec(f.server->conn, "begin; create role zev_frame")); }},
    {"StmtPrepare", 13, "E!R!X", false, [](F &f) { return f.prepare(kSelect); }},
    {"BindDynamic", 17, "E!R!X", false, [](F &f) {
       return OCIBindDynamic(f.bound, f.errhp, nullptr, nullptr, nullptr, nullptr); }, kBound},
    {"StmtExecute", 21, "E!R!X", false, [](F &f) { return f.exec(); }, kBound},
    {"DefineDynamic", 26, "E!R!X", false, [](F &f) {
       return OCIDefineDynamic(f.defined, f.errhp, nullptr, nullptr); }, kBound},
    {"DefineArrayOfStruct", 27, "E!R!X", false, [](F &f) {
       return OCIDefineArrayOfStruct(f.defined, f.errhp, 4, 0, 0, 0); }, kBound},
    {"StmtFetch", 28, "E!R!", false, [](F &f) {
       return OCIStmtFetch(f.stmt, f.errhp, 1, OCI_FETCH_NEXT, OCI_DEFAULT); }, kExecuted},
    {"TransStart", 33, "E!R!X", false, [](F &f) {
       return OCITransStart(f.svchp, f.errhp, 0, OCI_TRANS_NEW); }, [](F &f) { f.transaction(); }},
    {"TransCommit", 35, "E!R!X", false, [](F &f) { return OCITransCommit(f.svchp, f.errhp, OCI_DEFAULT); }},
    {"ErrorGet", 37, "E!R!X!", true, [](F &f) {
       sb4 code = 0;
       return OCIErrorGet(f.errhp, 1, nullptr, &code, f.text, sizeof f.text, OCI_HTYPE_ERROR); }},
    {"ServerVersion", 51, "E!R!X!", true, [](F &f) {
       return OCIServerVersion(f.server, f.errhp, f.text, sizeof f.text, OCI_HTYPE_SERVER); }},
    {"AttrSet", 55, "E!R!X", false, [](F &f) {
       return OCIAttrSet(f.server, OCI_HTYPE_SERVER, nullptr, 0, 129, f.errhp); }},
    {"AttrSetOfAnEnvironment", 55, "E!R!X", false, [](F &f) {
       f.text[0] = 3;
       return OCIAttrSet(f.env.get(), OCI_HTYPE_ENV, f.text, 0, 5002, f.errhp); }},
    {"TransPrepare", 63, "E!R!X", false, [](F &f) { return OCITransPrepare(f.svchp, f.errhp, OCI_DEFAULT); },
     [](F &f) { f.transaction();
       PQclear(PQexec(f.server->conn, "rollback prepared '0.frame'"));
       OCIAttrSet(f.svchp->trans, OCI_HTYPE_TRANS, const_cast<OraText *>(asText("frame")), 5, OCI_ATTR_TRANS_NAME, f.errhp);
       PQclear(PQexec(f.server->conn, "begin")); }},
    {"TransRollback", 64, "E!R!X", false, [](F &f) { return OCITransRollback(f.svchp, f.errhp, OCI_DEFAULT); }},
    {"DefineByPos", 65, "E!R!X!", true, [](F &f) { return f.define(); }, kPrepared},
    {"BindByPos", 66, "E!R!X", false, [](F &f) {
       return OCIBindByPos(f.stmt, &f.bound, f.errhp, 1, &f.number, 4, SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT); }, kPrepared},
    {"BindByName", 67, "E!R!X", false, [](F &f) { return f.bind(); }, kPrepared},
    {"StmtGetBindInfo", 29, "E!R!X", false, [](F &f) {
       sb4 found = 0;
       OraText *names[1], *indicators[1];
       ub1 lengths[1], indicatorLengths[1], duplicate[1];
       OCIBind *binds[1];
       return OCIStmtGetBindInfo(f.stmt, f.errhp, 1, 1, &found, names, lengths, indicators, indicatorLengths, duplicate, binds); }, kBound},
    {"StmtPrepare2", 108, "E!R!X", false, [](F &f) { return f.prepare2(); }},
    {"StmtRelease", 109, "E!R!X", false, [](F &f) {
       return OCIStmtRelease(static_cast<OCIStmt *>(f.made), f.errhp, nullptr, 0, OCI_DEFAULT); },
     [](F &f) { f.prepare2(); }},
    {"StmtFetch2", 152, "E!R!X", false, [](F &f) {
       return OCIStmtFetch2(f.stmt, f.errhp, 1, OCI_FETCH_NEXT, 0, OCI_DEFAULT); }, kExecuted},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Functions, Frame, testing::ValuesIn(kFrames),
                         [](const auto &p) { return std::string(p.param.name); });

struct StageCase {
  const char *name;
  std::vector<std::pair<char, sword>> callbacks;
  sword status;
  const char *log;
};

class Stages : public ServerTest, public testing::WithParamInterface<StageCase> {};

TEST_P(Stages, SettleTheStatusOfACallThatSucceeds) {
  std::string log;
  Callbacks callbacks(env.get(), 2, nullptr, &log);
  for (const auto &[stage, answer] : GetParam().callbacks) callbacks.add(stage, answer);
  void *made = nullptr;
  EXPECT_EQ(OCIHandleAlloc(env.get(), &made, OCI_HTYPE_STMT, 0, nullptr),
            GetParam().status);
  EXPECT_EQ(log, GetParam().log);
  EXPECT_NE(made, nullptr);
}

constexpr sword kOn = OCI_CONTINUE;

INSTANTIATE_TEST_SUITE_P(
    Answers, Stages,
    testing::Values(
        StageCase{"NoCallbacks", {}, 0, ""},
        StageCase{"EntryAnswersZero", {{'E', 0}}, 0, "E"},
        StageCase{"EntryAnswersOne", {{'E', 1}}, 1, "E"},
        StageCase{"EntryContinues", {{'E', kOn}}, 0, "E"},
        StageCase{"TheFirstContinueDropsLaterAnswers", {{'E', kOn}, {'E', -1}}, 0, "EE"},
        StageCase{"TheLastEntryAnswerHolds", {{'E', 1}, {'E', 2}}, 2, "EE"},
        StageCase{
            "AContinueAfterAnAnswerRestoresTheStatus", {{'E', 1}, {'E', kOn}}, 0, "EE"},
        StageCase{"ReplaceDoesNotStopTheWork", {{'R', -1}}, -1, "R"},
        StageCase{"ReplaceContinues", {{'R', kOn}}, 0, "R"},
        StageCase{"ReplaceKeepsTheEntrysStatusWhenItContinues",
                  {{'E', 1}, {'R', kOn}},
                  1,
                  "ER"},
        StageCase{
            "AReplaceThatEndsRunsExitTwice", {{'R', 1}, {'R', 2}, {'X', 5}}, 5, "RXX"},
        StageCase{"AnExitThatContinuesLeavesTheStatus", {{'E', 1}, {'X', kOn}}, 1, "EX"},
        StageCase{"TheLastExitAnswerHolds", {{'X', 1}, {'X', 2}}, 2, "XX"}),
    [](const auto &p) { return std::string(p.param.name); });

struct FailureCase {
  const char *name;
  ub4 code;
  sword (*call)(F &);
};

class Failures : public FrameFixture, public testing::WithParamInterface<FailureCase> {};

TEST_P(Failures, KeepExitCallbacksFromRunning) {
  std::string log;
  Callbacks callbacks(env.get(), GetParam().code, nullptr, &log);
  for (const char stage : {'E', 'R', 'X'}) callbacks.add(stage);
  EXPECT_LT(GetParam().call(*this), 0);
  EXPECT_EQ(log.find('X'), std::string::npos) << log;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Functions, Failures, testing::Values(
    FailureCase{"HandleAlloc", 2, [](F &f) { return OCIHandleAlloc(f.env.get(), &f.made, OCI_HTYPE_STMT, 8, nullptr); }},
    FailureCase{"HandleFree", 3, [](F &f) { f.stmt->fromPrepare2 = 1; return OCIHandleFree(f.stmt, OCI_HTYPE_STMT); }},
    FailureCase{"DescriptorAlloc", 4, [](F &f) { return OCIDescriptorAlloc(f.env.get(), &f.made, 79, 0, nullptr); }},
    FailureCase{"ServerAttach", 7, [](F &f) { return OCIServerAttach(f.server, f.errhp, asText("h"), 1, OCI_DEFAULT); }},
    FailureCase{"ServerDetach", 8, [](F &f) {
        return OCIServerDetach(f.env.alloc<OCIServer>(OCI_HTYPE_SERVER), f.errhp, OCI_DEFAULT); }},
    FailureCase{"SessionBegin", 10, [](F &f) {
        return OCISessionBegin(f.env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX), f.errhp, f.session, 1, OCI_DEFAULT); }},
    FailureCase{"SessionEnd", 11, [](F &f) {
        return OCISessionEnd(f.env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX), f.errhp, f.session, OCI_DEFAULT); }},
    FailureCase{"PasswordChange", 12, [](F &f) {
        return OCIPasswordChange(f.svchp, f.errhp, asText("zev_nobody"), 10, asText("a"), 1, asText("b"), 1, OCI_DEFAULT); }},
    FailureCase{"TransStart", 33, [](F &f) { return OCITransStart(f.svchp, f.errhp, 0, OCI_TRANS_NEW); }},
    FailureCase{"TransPrepare", 63, [](F &f) { f.transaction(); return OCITransPrepare(f.svchp, f.errhp, OCI_DEFAULT); }},
    FailureCase{"AttrSetOfATypeWithoutAttributes", 55, [](F &f) {
        return OCIAttrSet(f.server, OCI_HTYPE_ERROR, nullptr, 0, 1, f.errhp); }}),
    [](const auto &p) { return std::string(p.param.name); });
// clang-format on

TEST_F(FrameFixture, AnAttributeThatASetterRefusesStillRunsExitCallbacks) {
  std::string log;
  Callbacks callbacks(env.get(), 55, nullptr, &log);
  callbacks.add('X', OCI_CONTINUE);
  EXPECT_EQ(OCIAttrSet(server, OCI_HTYPE_SERVER, text, 0, 9999, errhp), OCI_ERROR);
  EXPECT_EQ(log, "X");
}

TEST_F(FrameFixture, WrongHandlesRunNoCallbacks) {
  std::string log;
  Callbacks callbacks(env.get(), 7, nullptr, &log);
  callbacks.add('E');
  EXPECT_EQ(OCIServerAttach(nullptr, errhp, nullptr, 0, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIServerAttach(server, nullptr, nullptr, 0, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(log, "");
}

TEST_F(FrameFixture, CallsWithoutAFrameRunNoCallbacksAtAll) {
  std::string log;
  std::vector<std::unique_ptr<Callbacks>> all;
  for (ub4 code = 0; code < kUcbSlots; ++code) {
    all.push_back(std::make_unique<Callbacks>(env.get(), code, nullptr, &log));
    for (const char stage : {'E', 'R', 'X'}) all.back()->add(stage);
  }
  OCIPing(svchp, errhp, OCI_DEFAULT);
  OCIBreak(svchp, errhp);
  OCIReset(svchp, errhp);
  OCIAttrGet(server, OCI_HTYPE_SERVER, text, nullptr, 5001, errhp);
  OCIDescriptorFree(server, OCI_DTYPE_LOB);
  OCIPGErrorGet(errhp, 1, text, 6, nullptr, 0, OCI_HTYPE_ERROR);
  EXPECT_EQ(log, "");
  ub4 version = 0;
  OCIServerRelease(server, errhp, text, sizeof text, OCI_HTYPE_SERVER, &version);
  EXPECT_EQ(log, "ERX");  // those of the version call inside it
}

TEST_F(FrameFixture, ATopLevelEnvironmentIsFreedWithoutCallbacksOfItsOwn) {
  Environment other;
  std::string log;
  Callbacks callbacks(other.get(), 3, nullptr, &log);
  for (const char stage : {'E', 'R', 'X'}) callbacks.add(stage);
  EXPECT_EQ(OCIHandleFree(other.errhp(), OCI_HTYPE_ERROR), OCI_SUCCESS);
  EXPECT_EQ(log, "ERX");
  other.free();
  EXPECT_EQ(log, "ERX");
  callbacks.outlive();
}

}  // namespace
}  // namespace zev::test
