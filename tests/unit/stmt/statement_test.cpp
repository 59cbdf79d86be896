#include <libpq-fe.h>

#include <cstring>
#include <set>

#include "stmt/names.h"
#include "stmt/statement_text.h"
#include "stmt_fixture.h"

namespace zevtest {
namespace {

constexpr ub4 kCursorStrategy = 5001;
constexpr ub4 kHoldPolicy = 5003;

TEST(GetStatementType, GoesByTheLeadingKeyword) {
  const struct {
    const char *text;
    ub2 type;
  } rows[] = {
      {"SELECT 1", OCI_STMT_SELECT},
      {"UPDATE t", OCI_STMT_UPDATE},
      {"DELETE t", OCI_STMT_DELETE},
      {"INSERT t", OCI_STMT_INSERT},
      {"CREATE t", OCI_STMT_CREATE},
      {"DROP t", OCI_STMT_DROP},
      {"ALTER t", OCI_STMT_ALTER},
      {"BEGIN x", OCI_STMT_BEGIN},
      {"DECLARE x", OCI_STMT_DECLARE},
      {"TRUNCATE t", STMT_TRUNCATE},
      {"COMMENT x", STMT_COMMENT},
      {"GRANT x", STMT_GRANT},
      {"REVOKE x", STMT_REVOKE},
      {"sElEcT 1", OCI_STMT_SELECT},
      {"revoke", STMT_REVOKE},
      {"SELECTED", OCI_STMT_SELECT},
      {"BEGINNING", OCI_STMT_BEGIN},
      {"DROPX", OCI_STMT_DROP},
      {"SELEC", STMT_UNKNOWN},
      {"", STMT_UNKNOWN},
      {" SELECT 1", STMT_UNKNOWN},
      {"-- x\nSELECT 1", STMT_UNKNOWN},
      {"/* x */ SELECT 1", STMT_UNKNOWN},
      {"(SELECT 1)", STMT_UNKNOWN},
      {"WITH a AS (SELECT 1) SELECT 1", STMT_UNKNOWN},
      {"CALL p()", STMT_UNKNOWN},
      {"MERGE INTO t", STMT_UNKNOWN},
      {"COMMIT", STMT_UNKNOWN},
  };
  for (const auto &row : rows)
    EXPECT_EQ(GetStatementType(row.text), row.type) << row.text;
}

class Statement : public testing::Test {
 protected:
  sword prepare(const char *text, ub4 length, ub4 language = OCI_NTV_SYNTAX,
                ub4 mode = OCI_DEFAULT) {
    return OCIStmtPrepare(stmt(), session.errhp, reinterpret_cast<const OraText *>(text),
                          length, language, mode);
  }
  OCIStmt *stmt() { return session.stmt; }
  OCIBind *bind(const char *name) {
    OCIBind *made = nullptr;
    EXPECT_EQ(OCIBindByName(stmt(), &made, session.errhp, oraText(name), -1, nullptr, 4,
                            SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
              OCI_SUCCESS);
    return made;
  }
  template <class T>
  T get(ub4 attribute) {
    T value{};
    EXPECT_EQ(Get_OCIStmt(stmt(), &value, nullptr, attribute, session.errhp), OCI_SUCCESS)
        << attribute;
    return value;
  }
  sword set(ub4 attribute, ub4 value) {
    return Set_OCIStmt(stmt(), &value, 0, attribute, session.errhp);
  }

  Session session;
};

TEST_F(Statement, PrepareRefusesBadArguments) {
  AddErrorRecord(session.errhp, OCI_ERROR, 1405);
  EXPECT_EQ(prepare(nullptr, 5), OCI_ERROR);
  EXPECT_EQ(list_length(session.errhp->records), 1u);  // the former record went
  EXPECT_EQ(session.takeRecord(), 21560);
  EXPECT_NE(session.lastMessage.find("argument 3"), std::string::npos)
      << session.lastMessage;
  EXPECT_EQ(prepare("select 1", 0), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24373);
  EXPECT_EQ(prepare("select 1", 8, OCI_NTV_SYNTAX, 1), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24300);
  for (const ub4 language : {0u, 3u, 99u}) {
    EXPECT_EQ(prepare("select 1", 8, language), OCI_ERROR);
    EXPECT_EQ(session.takeRecord(), kNoRecord);
  }
  EXPECT_EQ(prepare("select 1", 8, OCI_V7_SYNTAX), OCI_SUCCESS);
  EXPECT_EQ(stmt()->language, OCI_V7_SYNTAX);
  EXPECT_EQ(OCIStmtPrepare(nullptr, session.errhp, oraText("x"), 1, 1, 0),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIStmtPrepare(stmt(), nullptr, oraText("x"), 1, 1, 0), OCI_INVALID_HANDLE);
}

TEST_F(Statement, PrepareTrimsAndClassifies) {
  const struct {
    std::string text;
    const char *kept;
    ub2 type;
  } rows[] = {
      {"  select 1  ", "select 1", OCI_STMT_SELECT},
      {"\t\n\f\r select 1\r\n\f\t", "select 1", OCI_STMT_SELECT},
      {"\vselect 1\v", "\vselect 1\v", STMT_UNKNOWN},
      {"select 1;", "select 1;", OCI_STMT_SELECT},
      {"declare x int; begin null; end;", "declare x int; begin null; end;",
       OCI_STMT_DECLARE},
      {"x", "x", STMT_UNKNOWN},
  };
  for (const auto &row : rows) {
    ASSERT_EQ(session.prepare(row.text), OCI_SUCCESS) << row.text;
    EXPECT_STREQ(stmt()->stmtText, row.kept);
    EXPECT_EQ(stmt()->textLen, std::strlen(row.kept));
    EXPECT_EQ(stmt()->stmtType, row.type);
    EXPECT_TRUE(stmt()->prepared);
  }
  ASSERT_EQ(prepare("select 12345", 8), OCI_SUCCESS);  // only the bytes that were given
  EXPECT_STREQ(stmt()->stmtText, "select 1");
}

TEST_F(Statement, BlankTextIsRefused) {
  for (const char *text : {" ", "\t\n\f\r "}) {
    EXPECT_EQ(session.prepare(text), OCI_ERROR);
    EXPECT_EQ(session.takeRecord(), 24373);
    EXPECT_FALSE(stmt()->prepared);
  }
}

TEST_F(Statement, ABlockThatIsNoCallIsRefused) {
  for (const char *text : {"BEGINX", "BEGIN x := 1; END;", "begin"}) {
    ASSERT_EQ(session.prepare("select 1"), OCI_SUCCESS);
    EXPECT_EQ(session.prepare(text), OCI_ERROR) << text;
    EXPECT_EQ(session.takeRecord(), 13780) << text;
    EXPECT_FALSE(stmt()->prepared);
    EXPECT_EQ(stmt()->stmtText, nullptr);
  }
}

TEST_F(Statement, PreparingAgainForgetsWhatHungOnTheFormerText) {
  ASSERT_EQ(session.prepare("select :a"), OCI_SUCCESS);
  stmt()->returnBind = bind(":a");
  stmt()->placeholderBinds = lappend(nullptr, stmt()->returnBind);
  stmt()->placeholderNames = lappend(nullptr, strdup("a"));
  OCIDefine *define = nullptr;
  ASSERT_EQ(OCIDefineByPos(stmt(), &define, session.errhp, 1, nullptr, 4, SQLT_INT,
                           nullptr, nullptr, nullptr, OCI_DEFAULT),
            OCI_SUCCESS);
  stmt()->callText = strdup("call p()");
  stmt()->returnParam = strdup(":a");
  stmt()->pgResult = PQmakeEmptyPGresult(nullptr, PGRES_TUPLES_OK);
  stmt()->pgOutResult = PQmakeEmptyPGresult(nullptr, PGRES_TUPLES_OK);
  stmt()->isCallable = stmt()->argModesKnown = stmt()->hasOutParams = 1;
  stmt()->executed = stmt()->serverPrepared = 1;
  stmt()->paramCount = 1;
  ASSERT_EQ(session.prepare("select 2"), OCI_SUCCESS);
  const void *const gone[] = {
      stmt()->binds,    stmt()->defines,     stmt()->placeholderBinds,
      stmt()->callText, stmt()->returnParam, stmt()->placeholderNames,
      stmt()->pgResult, stmt()->pgOutResult, stmt()->returnBind};
  for (const void *pointer : gone) EXPECT_EQ(pointer, nullptr);
  EXPECT_FALSE(stmt()->isCallable || stmt()->argModesKnown || stmt()->hasOutParams);
  EXPECT_FALSE(stmt()->executed || stmt()->serverPrepared);
  EXPECT_EQ(stmt()->paramCount, 0u);
}

TEST(StatementUtf16, TheTextIsTranscoded) {
  Session session(OCI_UTF16);
  ASSERT_EQ(session.prepare(utf16(" select 1 ")), OCI_SUCCESS);
  EXPECT_STREQ(session.stmt->stmtText, "select 1");
  const struct {
    std::string bytes;
    const char *message;
  } rows[] = {
      {utf16("select") + "x",
       "An incomplete multibyte sequence has been encountered in the input"},
      {utf16("select") + "\0\xdc"s + utf16("x"),
       "An invalid multibyte sequence has been encountered in the input"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(session.prepare(row.bytes), OCI_ERROR);
    session.takeRecord();
    EXPECT_EQ(session.lastMessage, row.message);
  }
}

TEST_F(Statement, AttributesWithoutAResult) {
  EXPECT_EQ(get<void *>(OCI_ATTR_ENV), session.env);
  EXPECT_EQ(get<ub4>(OCI_ATTR_STMT_STATE), 1u);
  EXPECT_STREQ(get<char *>(OCI_ATTR_STATEMENT), "");
  ASSERT_EQ(session.prepare(" select 1 "), OCI_SUCCESS);
  EXPECT_STREQ(get<char *>(OCI_ATTR_STATEMENT), "select 1");
  EXPECT_EQ(get<ub2>(OCI_ATTR_STMT_TYPE), OCI_STMT_SELECT);
  stmt()->arrayRowCount = 12;
  EXPECT_EQ(get<ub4>(OCI_ATTR_ROW_COUNT), 12u);
  stmt()->rowsFetched = 5;
  for (const ub4 attribute :
       {OCI_ATTR_PARAM_COUNT, OCI_ATTR_CURRENT_POSITION, OCI_ATTR_ROWS_FETCHED}) {
    EXPECT_EQ(get<ub4>(attribute), 0u) << attribute;
  }
  stmt()->executed = 1;
  EXPECT_EQ(get<ub4>(OCI_ATTR_STMT_STATE), 3u);  // without a result
  ub4 size = 4711;
  char *text = nullptr;
  EXPECT_EQ(Get_OCIStmt(stmt(), &text, &size, OCI_ATTR_STATEMENT, session.errhp),
            OCI_SUCCESS);
  EXPECT_EQ(size, 4711u);
}

TEST_F(Statement, PrivateTypesReadAsNone) {
  for (const char *text : {"truncate t", "comment x", "grant x", "revoke x"}) {
    ASSERT_EQ(session.prepare(text), OCI_SUCCESS);
    EXPECT_GE(stmt()->stmtType, STMT_TRUNCATE);
    EXPECT_EQ(get<ub2>(OCI_ATTR_STMT_TYPE), 0) << text;
  }
}

TEST_F(Statement, AttributesOfAResult) {
  PGresAttDesc columns[2] = {};
  char name[] = "c";
  columns[0].name = columns[1].name = name;
  stmt()->pgResult = PQmakeEmptyPGresult(nullptr, PGRES_TUPLES_OK);
  ASSERT_TRUE(PQsetResultAttrs(stmt()->pgResult, 2, columns));
  for (int row = 0; row < 3; ++row)
    ASSERT_TRUE(PQsetvalue(stmt()->pgResult, row, 0, name, 1));
  stmt()->rowsFetched = 2;
  stmt()->arrayRowCount = 12;
  stmt()->executed = 1;
  stmt()->stmtType = OCI_STMT_INSERT;
  EXPECT_EQ(get<ub4>(OCI_ATTR_PARAM_COUNT), 0u);
  stmt()->stmtType = OCI_STMT_SELECT;
  EXPECT_EQ(get<ub4>(OCI_ATTR_PARAM_COUNT), 2u);
  EXPECT_EQ(get<ub4>(OCI_ATTR_ROW_COUNT), 3u);
  EXPECT_EQ(get<ub4>(OCI_ATTR_ROWS_FETCHED), 2u);
  for (ub4 row = 0; row < 3; ++row) {
    stmt()->resultRowPos = row;
    EXPECT_EQ(get<ub4>(OCI_ATTR_STMT_STATE), row == 2 ? 3u : 2u);
  }
  stmt()->cursor = static_cast<PortalState *>(std::calloc(1, sizeof(PortalState)));
  stmt()->cursor->maxRow = 40;
  stmt()->cursor->currentRow = 30;
  EXPECT_EQ(get<ub4>(OCI_ATTR_ROW_COUNT), 3u);  // the portal is closed
  stmt()->cursor->state = kPortalOpen;
  EXPECT_EQ(get<ub4>(OCI_ATTR_ROW_COUNT), 40u);
  EXPECT_EQ(get<ub4>(OCI_ATTR_CURRENT_POSITION), 30u);
}

TEST_F(Statement, SettingAttributes) {
  const struct {
    ub4 attribute;
    ub4 value;
    int record;
  } rows[] = {
      {kCursorStrategy, 0, 0},
      {kCursorStrategy, 1, 0},
      {kCursorStrategy, 2, 0},
      {kCursorStrategy, 3, 24328},
      {kHoldPolicy, 0, 0},
      {kHoldPolicy, 5, 0},
      {kHoldPolicy, 6, 0},
      {kHoldPolicy, 1, 24328},
      {kHoldPolicy, 4, 24328},
      {kHoldPolicy, 7, 24328},
      {OCI_ATTR_PREFETCH_ROWS, 9, 0},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << row.attribute << " " << row.value);
    EXPECT_EQ(set(row.attribute, row.value), row.record ? OCI_ERROR : OCI_SUCCESS);
    EXPECT_EQ(session.takeRecord(), row.record);
    if (row.record || row.attribute == OCI_ATTR_PREFETCH_ROWS) continue;
    EXPECT_EQ(get<ub4>(row.attribute), row.value);
  }
  EXPECT_EQ(stmt()->prefetchRows, 9u);
  for (const ub4 attribute :
       {OCI_ATTR_ENV, OCI_ATTR_ROW_COUNT, OCI_ATTR_PARAM_COUNT, OCI_ATTR_STMT_TYPE,
        OCI_ATTR_STATEMENT, OCI_ATTR_CURRENT_POSITION, OCI_ATTR_STMT_STATE,
        OCI_ATTR_ROWS_FETCHED, OCI_ATTR_PREFETCH_MEMORY}) {
    EXPECT_EQ(set(static_cast<ub4>(attribute), 1), OCI_ERROR) << attribute;
    EXPECT_EQ(session.takeRecord(), 24328) << attribute;
  }
}

TEST_F(Statement, AttributeCallsCheckTheirHandles) {
  ub4 value = 0;
  auto *wrong = reinterpret_cast<OCIStmt *>(session.errhp);
  EXPECT_EQ(Get_OCIStmt(wrong, &value, nullptr, 9, session.errhp), OCI_INVALID_HANDLE);
  EXPECT_EQ(Get_OCIStmt(stmt(), nullptr, nullptr, 9, session.errhp), OCI_INVALID_HANDLE);
  EXPECT_EQ(Get_OCIStmt(stmt(), &value, nullptr, 9, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(Set_OCIStmt(wrong, &value, 0, 11, session.errhp), OCI_ERROR);
  EXPECT_EQ(Set_OCIStmt(stmt(), nullptr, 0, 11, session.errhp), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
  EXPECT_EQ(Get_OCIStmt(stmt(), &value, nullptr, OCI_ATTR_PREFETCH_ROWS, session.errhp),
            OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24328);
}

TEST_F(Statement, AChildStatementFetchesFromItsCursor) {
  stmt()->preparedName = strdup("cur 1");
  stmt()->executed = 1;
  InitializeChildStmt(stmt());
  EXPECT_STREQ(stmt()->stmtText, "FETCH NEXT IN \"cur 1\"");
  EXPECT_EQ(stmt()->stmtType, OCI_STMT_SELECT);
  EXPECT_TRUE(stmt()->prepared && stmt()->serverPrepared && stmt()->isRefCursor);
  EXPECT_FALSE(stmt()->executed);
}

TEST_F(Statement, TheMemoryCacheLivesWithItsStatement) {
  EXPECT_EQ(AllocateMemFromStmtCache(stmt(), 0), nullptr);
  EXPECT_EQ(AllocateMemFromStmtCache(nullptr, 8), nullptr);
  EXPECT_EQ(AllocateMemFromStmtCache(reinterpret_cast<OCIStmt *>(session.env), 8),
            nullptr);
  EXPECT_EQ(stmt()->memCache, nullptr);
  std::set<void *> blocks;
  for (int i = 1; i <= 3; ++i) {
    void *block = AllocateMemFromStmtCache(stmt(), static_cast<std::size_t>(i));
    std::memset(block, 'x', static_cast<std::size_t>(i));
    blocks.insert(block);
  }
  EXPECT_EQ(blocks.size(), 3u);
  EXPECT_EQ(list_length(stmt()->memCache), 3u);
  FreeMemFromStmtCache(stmt());
  EXPECT_EQ(stmt()->memCache, nullptr);
  FreeMemFromStmtCache(nullptr);
}

TEST(MakeUniqueName, WritesEightLowerCaseDigits) {
  const struct {
    const char *prefix;
    ub4 number;
    const char *name;
  } rows[] = {{"stmt_", 0, "stmt_00000000"},
              {"portal_", 0xABC, "portal_00000abc"},
              {"", 0xFFFFFFFF, "ffffffff"}};
  for (const auto &row : rows) {
    const zev::Malloced<char> name(makeUniqueName(row.prefix, row.number));
    EXPECT_STREQ(name.get(), row.name);
  }
}

}  // namespace
}  // namespace zevtest
