/// Calls of procedures and functions, and what they give back.
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

/// What the tests call. `%` stands for the schema.
const char *const kRoutines[] = {
    "CREATE TABLE %.call_log (a int)",
    "CREATE PROCEDURE %.ct_in(a int) LANGUAGE sql AS"
    " 'INSERT INTO %.call_log VALUES (a)'",
    "CREATE PROCEDURE %.ct_mixed(a int, OUT b int, INOUT c text) LANGUAGE plpgsql AS"
    " 'BEGIN b := a * 2; c := c || ''!''; END'",
    "CREATE PROCEDURE %.ct_out(OUT a int, OUT b text, OUT c numeric) LANGUAGE plpgsql AS"
    " 'BEGIN a := 7; b := ''seven''; c := 7.25; END'",
    "CREATE PROCEDURE %.ct_null_out(OUT a int, OUT b int) LANGUAGE plpgsql AS"
    " 'BEGIN b := 1; END'",
    "CREATE FUNCTION %.ct_add(a int, b int) RETURNS int LANGUAGE sql AS"
    " 'SELECT a + b'",
    "CREATE FUNCTION %.ct_outs(a int, OUT b int, OUT c text) LANGUAGE plpgsql AS"
    " 'BEGIN b := a + 1; c := ''c'' || a; END'",
    "CREATE FUNCTION %.ct_null(a int) RETURNS text LANGUAGE sql AS 'SELECT NULL::text'",
    "CREATE FUNCTION %.ct_void(a int) RETURNS void LANGUAGE sql AS"
    " 'INSERT INTO %.call_log VALUES (a)'",
    "CREATE FUNCTION %.ct_set(n int) RETURNS SETOF int LANGUAGE sql AS"
    " 'SELECT generate_series(10, 9 + n)'",
    "CREATE FUNCTION %.ct_def(a int, b int DEFAULT 5) RETURNS int LANGUAGE sql AS"
    " 'SELECT a * b'",
    "CREATE FUNCTION %.ct_cursor(n int) RETURNS refcursor LANGUAGE plpgsql AS"
    " 'DECLARE c refcursor; BEGIN OPEN c FOR SELECT g, ''row '' || g FROM"
    " generate_series(1, n) g; RETURN c; END'",
    "CREATE PROCEDURE %.ct_cursor_out(n int, OUT c refcursor, OUT k int)"
    " LANGUAGE plpgsql AS 'BEGIN OPEN c FOR SELECT g FROM generate_series(1, n) g;"
    " k := n; END'",
    "CREATE FUNCTION %.ct_fail(a int) RETURNS int LANGUAGE plpgsql AS"
    " 'BEGIN RAISE EXCEPTION ''no % today'', a; END'",
    "CREATE PROCEDURE %.ct_notice(INOUT a int) LANGUAGE plpgsql AS"
    " 'BEGIN RAISE NOTICE ''hear''; a := a + 1; END'",
    "CREATE FUNCTION %.ct_over(a int) RETURNS text LANGUAGE sql AS 'SELECT ''one'''",
    "CREATE FUNCTION %.ct_over(a int, b int) RETURNS text LANGUAGE sql AS"
    " 'SELECT ''two'''",
};

bool sent(const WireLog &log, std::string_view sql) {
  return std::ranges::find(log.sql, sql) != log.sql.end();
}

class CallTest : public OciTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    query("CREATE SCHEMA " + schema_);
    for (const char *text : kRoutines) query(inSchema(text));
    Statement path = statement("SET search_path = " + schema_ + ", public");
    ASSERT_EQ(path.execute(), OCI_SUCCESS) << errorText();
    commit();
  }
  void TearDown() override {
    OciTest::TearDown();
    query("DROP SCHEMA " + schema_ + " CASCADE");
  }

  std::string inSchema(const char *text) {
    std::string sql;
    for (; *text; ++text) {
      const bool isSchema = text[0] == '%' && text[1] == '.';
      sql += isSchema ? schema_ : std::string(1, *text);
    }
    return sql;
  }
  std::string logged() {
    commit();
    return query("SELECT string_agg(a::text, ',' ORDER BY a) FROM " + schema_ +
                 ".call_log");
  }

  std::string schema_ = dressed("call_test_" + std::to_string(getpid()));
};

TEST_F(CallTest, ProcedureTakesItsArgument) {
  Statement call = statement("BEGIN ct_in(:a); END;");
  sb4 a = 41;
  call.bind(":a", a);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(a, 41);
  EXPECT_EQ(logged(), "41");
}

TEST_F(CallTest, InOutAndInOutComeBack) {
  Statement call = statement("BEGIN ct_mixed(:a, :b, :c); END;");
  sb4 a = 21, b = 0;
  sb2 bInd = 77;
  TextBuffer<> c;
  c.set("hi");
  c.length = bytes(3);
  call.bind(":a", a);
  call.bind(":b", b, &bInd);
  call.bind(":c", c.value, c.size(), SQLT_STR, &c.indicator, &c.length);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(a, 21);
  EXPECT_EQ(b, 42);
  EXPECT_EQ(bInd, 0);
  EXPECT_EQ(c.textUpToEnd(), "hi!");
  EXPECT_EQ(c.length, 3) << "the length of the server's text";
}

TEST_F(CallTest, ACallCanBeRepeatedInOneRoundTrip) {
  Statement call = statement("BEGIN ct_mixed(:a, :b, :c); END;");
  sb4 a = 1, b = 0;
  TextBuffer<> c;
  c.set("x");
  call.bind(":a", a);
  call.bind(":b", b);
  call.bind(":c", c);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  a = 5;
  const WireLog log = wireOf([&] { EXPECT_EQ(call.execute(), OCI_SUCCESS); });
  EXPECT_EQ(b, 10);
  EXPECT_EQ(c.textUpToEnd(), "x!!");
  EXPECT_EQ(log.roundTrips, 1);
}

TEST_F(CallTest, OutParametersOfAllKindsComeBack) {
  Statement call = statement("BEGIN ct_out(:a, :b, :c); END;");
  sb4 a = 0;
  TextBuffer<> b;
  double c = 0;
  call.bind(":a", a);
  call.bind(":b", b);
  call.bind(":c", &c, sizeof c, SQLT_FLT);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(a, 7);
  EXPECT_EQ(b.textUpToEnd(), "seven");
  EXPECT_EQ(c, 7.25);
}

TEST_F(CallTest, NullOutLeavesBufferAndIndicator) {
  Statement call = statement("BEGIN ct_null_out(:a, :b); END;");
  sb4 a = 99, b = 0;
  sb2 aInd = 5, bInd = 5;
  call.bind(":a", a, &aInd);
  call.bind(":b", b, &bInd);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(a, 99);
  EXPECT_EQ(aInd, 5);
  EXPECT_EQ(b, 1);
  EXPECT_EQ(bInd, 0);
}

TEST_F(CallTest, FunctionReturnsItsValue) {
  Statement call = statement("BEGIN :r := ct_add(:a, :b); END;");
  sb4 r = 0, a = 40, b = 2;
  sb2 rInd = 5;
  call.bind(":r", r, &rInd);
  call.bind(":a", a);
  call.bind(":b", b);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r, 42);
  EXPECT_EQ(rInd, 0);
  a = 50;
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r, 52);
}

TEST_F(CallTest, FunctionsOutParametersComeBack) {
  Statement call = statement("BEGIN ct_outs(:a, :b, :c); END;");
  sb4 a = 3, b = 0;
  TextBuffer<> c;
  call.bind(":a", a);
  call.bind(":b", b);
  call.bind(":c", c);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(b, 4);
  EXPECT_EQ(c.textUpToEnd(), "c3");
}

TEST_F(CallTest, NullReturnValueSetsTheIndicator) {
  Statement call = statement("BEGIN :r := ct_null(:a); END;");
  TextBuffer<> r;
  sb4 a = 1;
  call.bind(":r", r.value, r.size(), SQLT_STR, &r.indicator, &r.length, &r.returnCode);
  r.length = static_cast<ub2>(r.size());
  call.bind(":a", a);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r.indicator, -1);
  EXPECT_EQ(r.returnCode, 1405);
}

TEST_F(CallTest, VoidFunctionRuns) {
  Statement call = statement("BEGIN ct_void(:a); END;");
  sb4 a = 8;
  call.bind(":a", a);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(logged(), "8");
}

TEST_F(CallTest, SetReturningFunctionGivesItsFirstRow) {
  Statement call = statement("BEGIN :r := ct_set(:n); END;");
  sb4 r = 0, n = 3;
  sb2 rInd = 5;
  call.bind(":r", r, &rInd);
  call.bind(":n", n);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r, 10);
  n = 0;
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(rInd, -1);
}

TEST_F(CallTest, DefaultsFillMissingArguments) {
  Statement call = statement("BEGIN :r := ct_def(:a); END;");
  sb4 r = 0, a = 6;
  call.bind(":r", r);
  call.bind(":a", a);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r, 30);
}

TEST_F(CallTest, OverloadsAreToldApartByTheirArguments) {
  TextBuffer<> r;
  sb4 a = 1, b = 2;
  Statement one = statement("BEGIN :r := ct_over(:a); END;");
  one.bind(":r", r);
  one.bind(":a", a);
  ASSERT_EQ(one.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r.textUpToEnd(), "one");
  Statement two = statement("BEGIN :r := ct_over(:a, :b); END;");
  two.bind(":r", r);
  two.bind(":a", a);
  two.bind(":b", b);
  ASSERT_EQ(two.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r.textUpToEnd(), "two");
}

TEST_F(CallTest, TextReachesAnIntegerArgument) {
  Statement call = statement("BEGIN :r := ct_add(:a, :b); END;");
  TextBuffer<> r;
  Given a("40"), b("2");
  call.bind(":r", r);
  call.bind(":a", a);
  call.bind(":b", b);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_STREQ(r.value, "42");
}

TEST_F(CallTest, NameMayHaveASchema) {
  Statement call = statement("BEGIN " + schema_ + ".ct_mixed(:a, :b, :c); END;");
  sb4 a = 4, b = 0;
  TextBuffer<> c;
  c.set("s");
  call.bind(":a", a);
  call.bind(":b", b);
  call.bind(":c", c);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(a, 4);
  EXPECT_EQ(b, 8);
  EXPECT_EQ(c.textUpToEnd(), "s!");
}

TEST_F(CallTest, NamesFoldToLowerCase) {
  Statement call = statement("BEGIN :R := CT_Add(:A, :B); END;");
  sb4 r = 0, a = 1, b = 2;
  call.bind(":R", r);
  call.bind(":A", a);
  call.bind(":B", b);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(r, 3);
}

TEST_F(CallTest, RefCursorOfAFunctionIsDrainedThroughItsStatement) {
  Statement call = statement("BEGIN :c := ct_cursor(:n); END;");
  void *child = nullptr;
  ASSERT_EQ(OCIHandleAlloc(env(), &child, OCI_HTYPE_STMT, 0, nullptr), OCI_SUCCESS);
  auto *cursor = static_cast<OCIStmt *>(child);
  sb4 n = 3;
  call.bind(":c", &cursor, 0, SQLT_RSET);
  call.bind(":n", n);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();

  OCIDefine *define = nullptr;
  sb4 number = 0;
  TextBuffer<> text;
  OCIDefineByPos(cursor, &define, errhp(), 1, &number, sizeof number, SQLT_INT, nullptr,
                 nullptr, nullptr, OCI_DEFAULT);
  define = nullptr;
  OCIDefineByPos(cursor, &define, errhp(), 2, text.value, text.size(), SQLT_STR, nullptr,
                 nullptr, nullptr, OCI_DEFAULT);
  for (int i = 1; i <= 3; ++i) {
    ASSERT_EQ(OCIStmtFetch(cursor, errhp(), 1, OCI_FETCH_NEXT, OCI_DEFAULT), OCI_SUCCESS)
        << errorText();
    EXPECT_EQ(number, i);
    EXPECT_EQ(text.textUpToEnd(), "row " + std::to_string(i));
  }
  EXPECT_EQ(OCIStmtFetch(cursor, errhp(), 1, OCI_FETCH_NEXT, OCI_DEFAULT), OCI_NO_DATA);
  OCIHandleFree(cursor, OCI_HTYPE_STMT);
}

TEST_F(CallTest, RefCursorOutParameterIsDrainedThroughItsStatement) {
  Statement call = statement("BEGIN ct_cursor_out(:n, :c, :k); END;");
  void *child = nullptr;
  ASSERT_EQ(OCIHandleAlloc(env(), &child, OCI_HTYPE_STMT, 0, nullptr), OCI_SUCCESS);
  auto *cursor = static_cast<OCIStmt *>(child);
  sb4 n = 5, k = 0;
  call.bind(":n", n);
  call.bind(":c", &cursor, 0, SQLT_RSET);
  call.bind(":k", k);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(k, 5);
  OCIDefine *define = nullptr;
  sb4 numbers[10] = {};
  OCIDefineByPos(cursor, &define, errhp(), 1, numbers, sizeof *numbers, SQLT_INT, nullptr,
                 nullptr, nullptr, OCI_DEFAULT);
  EXPECT_EQ(OCIStmtFetch(cursor, errhp(), 10, OCI_FETCH_NEXT, OCI_DEFAULT), OCI_NO_DATA);
  EXPECT_EQ(std::vector<sb4>(numbers, numbers + 6), (std::vector<sb4>{1, 2, 3, 4, 5, 0}));
  OCIHandleFree(cursor, OCI_HTYPE_STMT);
}

TEST_F(CallTest, RefCursorIsGoneWithItsTransaction) {
  Statement call = statement("BEGIN :c := ct_cursor(:n); END;");
  void *child = nullptr;
  OCIHandleAlloc(env(), &child, OCI_HTYPE_STMT, 0, nullptr);
  auto *cursor = static_cast<OCIStmt *>(child);
  sb4 n = 3, number = 0;
  call.bind(":c", &cursor, 0, SQLT_RSET);
  call.bind(":n", n);
  ASSERT_EQ(call.execute(), OCI_SUCCESS) << errorText();
  commit();
  OCIDefine *define = nullptr;
  OCIDefineByPos(cursor, &define, errhp(), 1, &number, sizeof number, SQLT_INT, nullptr,
                 nullptr, nullptr, OCI_DEFAULT);
  EXPECT_EQ(OCIStmtFetch(cursor, errhp(), 1, OCI_FETCH_NEXT, OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(serverState(), "34000");
  OCIHandleFree(cursor, OCI_HTYPE_STMT);
  sb4 one = 0;
  Statement next = statement("SELECT 1");
  next.define(1, one);
  EXPECT_EQ(next.execute(), OCI_SUCCESS) << errorText();
}

TEST_F(CallTest, FailingBodyTellsTheServersError) {
  Statement call = statement("BEGIN :r := ct_fail(:a); END;");
  sb4 r = 5, a = 9;
  call.bind(":r", r);
  call.bind(":a", a);
  EXPECT_EQ(call.execute(), OCI_ERROR);
  EXPECT_EQ(serverState(), "P0001");
  EXPECT_NE(errorText().find("no 9 today"), std::string::npos) << errorText();
  EXPECT_EQ(r, 5);
  a = 1;
  EXPECT_EQ(call.execute(), OCI_ERROR);
  EXPECT_EQ(serverState(), "P0001");
}

TEST_F(CallTest, UnknownRoutineTellsTheServersError) {
  Statement call = statement("BEGIN ct_nobody(:a); END;");
  sb4 a = 9;
  call.bind(":a", a);
  EXPECT_EQ(call.execute(), OCI_ERROR);
  EXPECT_EQ(serverState(), "42883");
  Statement next = statement("BEGIN ct_in(:a); END;");
  next.bind(":a", a);
  EXPECT_EQ(next.execute(), OCI_SUCCESS) << errorText();
}

TEST_F(CallTest, WrongNumberOfArgumentsTellsTheServersError) {
  sb4 a = 9;
  for (const char *text : {"BEGIN ct_mixed(:a); END;", "BEGIN ct_in(:a, :a2); END;",
                           "BEGIN :r := ct_add(:a); END;"}) {
    Statement call = statement(text);
    for (const char *name : {":a", ":a2", ":r"}) call.bind(name, a);
    EXPECT_EQ(call.execute(), OCI_ERROR) << text;
    EXPECT_EQ(serverState(), "42883") << text << ": " << errorText();
  }
}

TEST_F(CallTest, NoticeOfABodyBecomesARecord) {
  Statement call = statement("BEGIN ct_notice(:a); END;");
  sb4 a = 1;
  call.bind(":a", a);
  EXPECT_EQ(call.execute(), OCI_SUCCESS_WITH_INFO);
  EXPECT_NE(errorText().find("hear"), std::string::npos) << errorText();
  EXPECT_EQ(a, 2);
}

TEST_F(CallTest, EachIterationGivesItsRowBack) {
  Statement call = statement("BEGIN ct_mixed(:a, :b, :c); END;");
  sb4 a[3] = {1, 2, 3}, b[3] = {};
  char c[3][8] = {};
  for (int i = 0; i < 3; ++i) put(c[i], std::string(1, "xyz"[i]));
  call.bind(":a", a, sizeof *a, SQLT_INT);
  call.bind(":b", b, sizeof *b, SQLT_INT);
  call.bind(":c", c, sizeof *c, SQLT_STR);
  ASSERT_EQ(call.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(b[0] + 10 * b[1] + 100 * b[2], 642);
  EXPECT_EQ(decodedUpToEnd(c[0]), "x!");
  EXPECT_EQ(decodedUpToEnd(c[2]), "z!");
}

TEST_F(CallTest, WithoutPlaceholdersOneIterationRuns) {
  query("CREATE PROCEDURE " + schema_ + ".ct_none() LANGUAGE sql AS 'INSERT INTO " +
        schema_ + ".call_log VALUES (1)'");
  Statement call = statement("BEGIN ct_none(); END;");
  ASSERT_EQ(call.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(logged(), "1");
}

TEST_F(CallTest, DeclareCursorIsNotSupported) {
  Statement call = statement("DECLARE ct_c CURSOR FOR SELECT 1");
  EXPECT_EQ(call.execute(), OCI_ERROR);
  expectError(0, "DECLARE CURSOR statement is not supported");
}

TEST_F(CallTest, BindsThatStandNowhereAreRefused) {
  Statement call = statement("BEGIN ct_in(:ab); END;");
  sb4 a = 1;
  call.bind(":a", a);
  EXPECT_EQ(call.execute(), OCI_ERROR);
  expectError(24305);
}

TEST_F(CallTest, StructBindsTakeAColumnEach) {
  struct Row {
    sb4 a, b;
  } rows[2] = {{1, 0}, {2, 0}};
  Statement call = statement("BEGIN ct_null_out(:a, :b); END;");
  OCIBind *binds[2] = {};
  const Given names[] = {Given(":a"), Given(":b")};
  for (int i = 0; i < 2; ++i) {
    OCIBindByName(call.handle(), &binds[i], errhp(), names[i].text(), -1,
                  i == 0 ? &rows[0].a : &rows[0].b, sizeof(sb4), SQLT_INT, nullptr,
                  nullptr, nullptr, 0, nullptr, OCI_DEFAULT);
    OCIBindArrayOfStruct(binds[i], errhp(), sizeof(Row), 0, 0, 0);
  }
  ASSERT_EQ(call.execute(2), OCI_SUCCESS) << errorText();
  EXPECT_EQ(rows[0].b, 1);
  EXPECT_EQ(rows[1].b, 1);
  EXPECT_EQ(rows[1].a, 2);
}

TEST_F(CallTest, ArgumentLookupAsksTheCatalogue) {
  Statement call = statement("BEGIN CT_def.x(:a); END;");
  sb4 a = 1;
  call.bind(":a", a);
  const WireLog log = wireOf([&] { call.execute(); });
  EXPECT_TRUE(sent(log, "select pronargdefaults from pg_proc where proname = 'ct_def'"));
  EXPECT_TRUE(sent(log, "select pronargs from pg_proc where proname = 'ct_def.x'"));
  EXPECT_TRUE(sent(log, "select proargmodes from pg_proc where  proname='ct_def'"));
  rollback();
  setVariable("NODEFAULTPARAMS", "1");
  reconnect();
  Statement again = statement("BEGIN ct_in(:a); END;");
  again.bind(":a", a);
  const WireLog second = wireOf([&] { again.execute(); });
  EXPECT_FALSE(
      sent(second, "select pronargdefaults from pg_proc where proname = 'ct_in'"));
}

}  // namespace
}  // namespace zev::test
