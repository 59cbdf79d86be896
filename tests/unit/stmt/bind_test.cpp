#include <cstring>

#include "stmt/placeholder.h"
#include "stmt_fixture.h"

namespace zevtest {
namespace {

constexpr sb4 kMeasured = -1;

class Bind : public testing::Test {
 protected:
  sword byName(const std::string &name, ub2 dty = SQLT_INT, ub4 mode = OCI_DEFAULT,
               sb4 size = sizeof(sb4)) {
    return OCIBindByName(session.stmt, &bind, session.errhp, oraText(name),
                         static_cast<sb4>(name.size()), value, size, dty, &indicator,
                         &length, &returnCode, 7, &current, mode);
  }
  sword byPos(ub4 position, ub2 dty = SQLT_INT, ub4 mode = OCI_DEFAULT,
              sb4 size = sizeof(sb4)) {
    return OCIBindByPos(session.stmt, &bind, session.errhp, position, value, size, dty,
                        &indicator, &length, &returnCode, 7, &current, mode);
  }
  void expectBuffers() const {
    EXPECT_EQ(bind->valuep, value);
    EXPECT_EQ(bind->indp, &indicator);
    EXPECT_EQ(bind->alenp, &length);
    EXPECT_EQ(bind->rcodep, &returnCode);
    EXPECT_EQ(bind->maxarrLen, 7u);
    EXPECT_EQ(bind->curelep, &current);
  }

  Session session;
  OCIBind *bind = nullptr;
  char value[16] = {};
  sb2 indicator = 0;
  ub2 length = 0;
  ub2 returnCode = 0;
  ub4 current = 0;
};

TEST_F(Bind, ByNameFindsThePlaceholderInTheText) {
  const struct {
    const char *text;
    const char *placeholder;
    int record;
  } rows[] = {
      {"select :a", ":a", kNoRecord},   {"select :abc", ":a", kNoRecord},
      {"select :a", ":A", kNoRecord},   {"select :A", ":a", kNoRecord},
      {"select ':a'", ":a", kNoRecord}, {"select a::int", ":int", kNoRecord},
      {"x :=1", ":=", kNoRecord},       {"select :a, :b", ":b", kNoRecord},
      {"select :1", ":1", kNoRecord},   {"select :a", ":ab", 16952},
      {"select :a", "a", 16952},        {"select a", ":a", 16952},
      {"select : a", ":a", 16952},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text + " "s + row.placeholder);
    ASSERT_EQ(session.prepare(row.text), OCI_SUCCESS);
    bind = nullptr;
    EXPECT_EQ(byName(row.placeholder), row.record ? OCI_ERROR : OCI_SUCCESS);
    EXPECT_EQ(session.takeRecord(), row.record);
    ASSERT_EQ(bind != nullptr, row.record == kNoRecord);
    if (!bind) continue;
    EXPECT_STREQ(bind->name, row.placeholder);
  }
}

TEST_F(Bind, ByNameNeedsAText) {
  EXPECT_EQ(byName(":a"), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 16952);
}

TEST_F(Bind, ByPosFindsThePlaceholderByNumber) {
  const struct {
    const char *text;
    ub4 position;
    const char *name;  // null for 28553
  } rows[] = {
      {"select :a, :b", 1, ":a"},
      {"select :a, :b", 2, ":b"},
      {"select :a, :b", 3, nullptr},
      {"select 1", 1, nullptr},
      {"select ':x', :a", 1, ":a"},
      {"select ':x'", 1, nullptr},
      {"select 'it''s :x', :a", 1, ":a"},
      {"select 'open :a", 1, nullptr},
      {"select a::int, :b", 1, ":b"},
      {"select a:::b", 1, ":b"},
      {"x := :a", 1, ":a"},
      {"x := :a", 2, nullptr},
      {":a, :b, :a", 3, ":a"},
      // What ends a name, and what does not.
      {":a b", 1, ":a"},
      {":a,b", 1, ":a"},
      {":a(b", 1, ":a"},
      {":a)b", 1, ":a"},
      {":a;b", 1, ":a"},
      {":a%b", 1, ":a"},
      {":a&b", 1, ":a"},
      {":a*b", 1, ":a"},
      {":a-b", 1, ":a"},
      {":a+b", 1, ":a"},
      {":a[b", 1, ":a"},
      {":a]b", 1, ":a"},
      {":a\\b", 1, ":a"},
      {":a/b", 1, ":a"},
      {":a'b", 1, ":a"},
      {":a\"b", 1, ":a"},
      {":a<b", 1, ":a"},
      {":a>b", 1, ":a"},
      {":a?b", 1, ":a"},
      {":a=b", 1, ":a=b"},
      {":a|b", 1, ":a|b"},
      {":a\tb c", 1, ":a\tb"},
      {":a\nfrom t", 1, ":a\nfrom"},
      {":a:b", 1, ":a:b"},
      {":a:b", 2, ":b"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text + " "s + std::to_string(row.position));
    ASSERT_EQ(session.prepare(row.text), OCI_SUCCESS);
    bind = nullptr;
    EXPECT_EQ(byPos(row.position), row.name ? OCI_SUCCESS : OCI_ERROR);
    EXPECT_EQ(session.takeRecord(), row.name ? kNoRecord : 28553);
    ASSERT_EQ(bind != nullptr, row.name != nullptr);
    if (!bind) continue;
    EXPECT_STREQ(bind->name, row.name);
    EXPECT_EQ(bind->nameLen, std::strlen(row.name));
    EXPECT_EQ(bind->position, row.position);
  }
}

TEST_F(Bind, WrongHandlesModesAndTypesAreRefusedWithoutARecord) {
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  OCIStmt *stmt = session.stmt;
  OCIError *errhp = session.errhp;
  auto *notAStatement = reinterpret_cast<OCIStmt *>(errhp);
  auto *notAnError = reinterpret_cast<OCIError *>(stmt);
  const OraText *name = oraText(":a");
  const auto named = [&](OCIStmt *s, OCIBind **b, OCIError *e, const OraText *n, ub2 dty,
                         ub4 mode) {
    return OCIBindByName(s, b, e, n, kMeasured, value, 4, dty, nullptr, nullptr, nullptr,
                         0, nullptr, mode);
  };
  const auto placed = [&](OCIStmt *s, OCIBind **b, OCIError *e, ub4 position, ub4 mode) {
    return OCIBindByPos(s, b, e, position, value, 4, SQLT_INT, nullptr, nullptr, nullptr,
                        0, nullptr, mode);
  };
  EXPECT_EQ(named(nullptr, &bind, errhp, name, SQLT_INT, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(named(notAStatement, &bind, errhp, name, SQLT_INT, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(named(stmt, nullptr, errhp, name, SQLT_INT, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(named(stmt, &bind, nullptr, name, SQLT_INT, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(named(stmt, &bind, notAnError, name, SQLT_INT, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(named(stmt, &bind, errhp, nullptr, SQLT_INT, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(named(stmt, &bind, errhp, name, 9999, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(placed(nullptr, &bind, errhp, 1, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(placed(notAStatement, &bind, errhp, 1, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(placed(stmt, nullptr, errhp, 1, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(placed(stmt, &bind, notAnError, 1, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(placed(stmt, &bind, errhp, 0, 0), OCI_INVALID_HANDLE);
  for (const ub4 mode : {1u, 3u, 4u, 16u, 65u, 66u}) {
    EXPECT_EQ(named(stmt, &bind, errhp, name, SQLT_INT, mode), OCI_ERROR) << mode;
    EXPECT_EQ(placed(stmt, &bind, errhp, 1, mode), OCI_ERROR) << mode;
  }
  EXPECT_EQ(session.takeRecord(), kNoRecord);
  EXPECT_EQ(stmt->binds, nullptr);
}

TEST_F(Bind, DefaultModeStoresTheBuffers) {
  ASSERT_EQ(session.prepare("select :abc, :b"), OCI_SUCCESS);
  AddErrorRecord(session.errhp, OCI_ERROR, 1405);
  ASSERT_EQ(byName(":abc"), OCI_SUCCESS);
  EXPECT_EQ(session.takeRecord(), kNoRecord);  // the call forgot what was there
  expectBuffers();
  EXPECT_EQ(bind->handleType, HANDLE_OCIBind);
  EXPECT_EQ(bind->parenth, session.stmt);
  EXPECT_EQ(bind->nameLen, 4u);
  EXPECT_EQ(bind->position, 0u);
  EXPECT_EQ(bind->dty, SQLT_INT);
  EXPECT_EQ(bind->valueSize, 4);
  EXPECT_EQ(bind->pgType, 23u);
  EXPECT_EQ(bind->paramMode, kParamInOut);
  EXPECT_FALSE(bind->isDynamic);
  ASSERT_EQ(byPos(2, SQLT_STR), OCI_SUCCESS);
  expectBuffers();
  EXPECT_EQ(bind->pgType, 1043u);
  EXPECT_EQ(list_length(session.stmt->binds), 2u);
}

TEST_F(Bind, DataAtExecClearsTheBuffers) {
  ASSERT_EQ(session.prepare("select :a, :b"), OCI_SUCCESS);
  for (const bool named : {true, false}) {
    ASSERT_EQ(named ? byName(":a", SQLT_INT, OCI_DATA_AT_EXEC)
                    : byPos(2, SQLT_INT, OCI_DATA_AT_EXEC),
              OCI_SUCCESS);
    EXPECT_TRUE(bind->isDynamic);
    EXPECT_EQ(bind->valuep, nullptr);
    EXPECT_EQ(bind->indp, nullptr);
    EXPECT_EQ(bind->alenp, nullptr);
    EXPECT_EQ(bind->rcodep, nullptr);
    EXPECT_EQ(bind->maxarrLen, 7u);
    EXPECT_EQ(bind->curelep, &current);
    EXPECT_EQ(bind->valueSize, 4);
    EXPECT_EQ(bind->dty, SQLT_INT);
    EXPECT_EQ(bind->pgType, 23u);
    EXPECT_EQ(bind->paramMode, kParamInOut);
  }
}

TEST_F(Bind, ResultSetTakesTheStatementBehindThePointer) {
  ASSERT_EQ(session.prepare("select :a, :b"), OCI_SUCCESS);
  std::memcpy(value, &session.stmt, sizeof session.stmt);
  ASSERT_EQ(byName(":a", SQLT_RSET), OCI_SUCCESS);
  EXPECT_EQ(bind->valuep, session.stmt);
  ASSERT_EQ(byPos(2, SQLT_RSET), OCI_SUCCESS);
  EXPECT_EQ(bind->valuep, session.stmt);
  ASSERT_EQ(byName(":a", SQLT_RSET, OCI_DATA_AT_EXEC), OCI_SUCCESS);
  EXPECT_EQ(bind->valuep, session.stmt);
  ASSERT_EQ(byPos(2, SQLT_RSET, OCI_DATA_AT_EXEC), OCI_SUCCESS);
  EXPECT_EQ(bind->valuep, nullptr);
}

TEST_F(Bind, ABindOfTheSameNameIsReused) {
  ASSERT_EQ(session.prepare("select :a, :b, :a, :abc"), OCI_SUCCESS);
  ASSERT_EQ(byPos(1), OCI_SUCCESS);
  const OCIBind *first = bind;
  ASSERT_EQ(byPos(3, SQLT_STR), OCI_SUCCESS);
  EXPECT_EQ(bind, first);
  EXPECT_EQ(bind->position, 3u);
  EXPECT_EQ(bind->dty, SQLT_STR);
  ASSERT_EQ(byName(":A"), OCI_SUCCESS);
  EXPECT_EQ(bind, first);
  EXPECT_STREQ(bind->name, ":a");
  ASSERT_EQ(byPos(4), OCI_SUCCESS);  // a longer name is another one by position
  const OCIBind *longer = bind;
  EXPECT_NE(longer, first);
  ASSERT_EQ(byName(":ab"), OCI_SUCCESS);  // and the beginning of one is that one by name
  EXPECT_EQ(bind, longer);
  EXPECT_EQ(list_length(session.stmt->binds), 2u);
}

TEST_F(Bind, OneThatTheProgramAllocatedItselfIsPassedOver) {
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  void *own = nullptr;
  ASSERT_EQ(OCIHandleAlloc(session.stmt, &own, OCI_HTYPE_BIND, 0, nullptr), OCI_SUCCESS);
  bind = static_cast<OCIBind *>(own);
  ASSERT_EQ(byName(":a"), OCI_SUCCESS);
  EXPECT_NE(bind, own);
  ASSERT_EQ(byPos(1), OCI_SUCCESS);
  EXPECT_EQ(list_length(session.stmt->binds), 2u);
}

TEST_F(Bind, SoftModeGivesAnExecutedBindNewBuffers) {
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  char former[4];
  for (const bool named : {true, false}) {
    const auto soft = [&](ub2 dty, sb4 size) {
      return named ? byName(":a", dty, OCI_BIND_SOFT, size)
                   : byPos(1, dty, OCI_BIND_SOFT, size);
    };
    session.stmt->executed = 0;
    bind = nullptr;
    EXPECT_EQ(soft(SQLT_INT, 4), OCI_ERROR);
    ASSERT_EQ(byName(":a", SQLT_INT, OCI_DATA_AT_EXEC), OCI_SUCCESS);
    EXPECT_EQ(soft(SQLT_INT, 4), OCI_ERROR);  // not executed yet
    session.stmt->executed = 1;
    EXPECT_EQ(soft(SQLT_UIN, 4), OCI_ERROR);
    EXPECT_EQ(soft(SQLT_INT, 2), OCI_ERROR);
    EXPECT_EQ(session.takeRecord(), kNoRecord);
    EXPECT_TRUE(bind->isDynamic);
    bind->valuep = former;
    bind->pgType = 4711;
    EXPECT_EQ(soft(SQLT_INT, 4), OCI_SUCCESS);
    expectBuffers();
    EXPECT_FALSE(bind->isDynamic);
    EXPECT_EQ(bind->pgType, 4711u);
    EXPECT_EQ(bind->paramMode, kParamInOut);
  }
}

TEST_F(Bind, ReturnPlaceholderIsFoundByNameWithoutRegardToCase) {
  ASSERT_EQ(session.prepare("call :Ret, :RET"), OCI_SUCCESS);
  session.stmt->isCallable = 1;
  session.stmt->hasReturn = 1;
  session.stmt->returnParam = strdup(":RET");
  ASSERT_EQ(byPos(1), OCI_SUCCESS);
  EXPECT_EQ(session.stmt->returnBind, nullptr);  // by position case counts
  ASSERT_EQ(byName(":Ret"), OCI_SUCCESS);
  EXPECT_EQ(session.stmt->returnBind, bind);
  session.stmt->returnBind = nullptr;
  ASSERT_EQ(byPos(2), OCI_SUCCESS);
  EXPECT_EQ(session.stmt->returnBind, bind);
  session.stmt->returnBind = nullptr;
  session.stmt->hasReturn = 0;
  ASSERT_EQ(byName(":Ret"), OCI_SUCCESS);
  EXPECT_EQ(session.stmt->returnBind, nullptr);
}

TEST(BindUtf16, PlaceholderIsTranscoded) {
  Session session(OCI_UTF16);
  ASSERT_EQ(session.prepare(utf16("select :abc")), OCI_SUCCESS);
  const std::string name = utf16(":abc") + "\0\0"s;
  OCIBind *bind = nullptr;
  for (const sb4 length : {8, kMeasured}) {
    ASSERT_EQ(
        OCIBindByName(session.stmt, &bind, session.errhp, oraText(name), length, nullptr,
                      4, SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
        OCI_SUCCESS);
    EXPECT_STREQ(bind->name, ":abc");
  }
  EXPECT_EQ(
      OCIBindByName(session.stmt, &bind, session.errhp, oraText(name), 7, nullptr, 4,
                    SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
      OCI_ERROR);
  session.takeRecord();
  EXPECT_EQ(session.lastMessage,
            "An incomplete multibyte sequence has been encountered in the input");
}

sb4 askIn(void *, OCIBind *, ub4, ub4, void **, ub4 *, ub1 *, void **) {
  return OCI_CONTINUE;
}
sb4 askOut(void *, OCIBind *, ub4, ub4, void **, ub4 **, ub1 *, void **, ub2 **) {
  return OCI_CONTINUE;
}

TEST_F(Bind, CallbacksDecideTheDirection) {
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  ASSERT_EQ(byName(":a"), OCI_SUCCESS);
  const struct {
    OCICallbackInBind in;
    OCICallbackOutBind out;
    ub4 direction;
  } rows[] = {{askIn, nullptr, kParamIn},
              {nullptr, nullptr, kParamIn},  // as it was
              {nullptr, askOut, kParamOut},
              {askIn, askOut, kParamInOut}};
  for (const auto &row : rows) {
    ASSERT_EQ(OCIBindDynamic(bind, session.errhp, &value, row.in, &current, row.out),
              OCI_SUCCESS);
    EXPECT_EQ(bind->icbctx, &value);
    EXPECT_EQ(bind->icbfp, row.in);
    EXPECT_EQ(bind->ocbctx, &current);
    EXPECT_EQ(bind->ocbfp, row.out);
    EXPECT_EQ(bind->paramMode, row.direction);
    EXPECT_FALSE(bind->isDynamic);
  }
  EXPECT_EQ(OCIBindDynamic(nullptr, session.errhp, nullptr, askIn, nullptr, askOut),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIBindDynamic(bind, nullptr, nullptr, askIn, nullptr, askOut),
            OCI_INVALID_HANDLE);
}

TEST_F(Bind, ArrayOfStructStoresTheSkipsAndKeepsRecords) {
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  ASSERT_EQ(byName(":a"), OCI_SUCCESS);
  AddErrorRecord(session.errhp, OCI_ERROR, 1405);
  ASSERT_EQ(OCIBindArrayOfStruct(bind, session.errhp, 1, 2, 3, 4), OCI_SUCCESS);
  EXPECT_EQ(session.takeRecord(), 1405);
  EXPECT_TRUE(session.stmt->arrayOfStruct);
  EXPECT_TRUE(bind->isStruct);
  EXPECT_EQ(bind->pvskip, 1u);
  EXPECT_EQ(bind->indskip, 2u);
  EXPECT_EQ(bind->alskip, 3u);
  EXPECT_EQ(bind->rcskip, 4u);
  bind->parenth = session.env;
  EXPECT_EQ(OCIBindArrayOfStruct(bind, session.errhp, 1, 2, 3, 4), OCI_INVALID_HANDLE);
  bind->parenth = session.stmt;
  EXPECT_EQ(OCIBindArrayOfStruct(nullptr, session.errhp, 1, 2, 3, 4), OCI_INVALID_HANDLE);
}

}  // namespace
}  // namespace zevtest
