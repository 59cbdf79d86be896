/// What SELECTs open on the server, how long it lives, and that nothing of it is left.
#include "tests/integration/support/statement_fixture.h"

namespace zev::test {
namespace {

enum Strategy : ub4 { kDeclared = 1, kPortal = 2 };
enum Policy : ub4 { kInherited = 0, kPlain = 5, kCommitted = 6 };

class CursorTest : public StatementFixture {
 protected:
  Statement numbers(ub4 strategy, ub4 policy = kInherited) {
    Statement stmt = statement("SELECT g FROM generate_series(1, 9) g");
    EXPECT_EQ(stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, strategy), OCI_SUCCESS);
    EXPECT_EQ(stmt.setAttribute(ZEVOCI_ATTR_HOLD_POLICY, policy), OCI_SUCCESS);
    stmt.define(1, value);
    return stmt;
  }
  std::string insertOf(int id) {
    return "INSERT INTO " + table() + " VALUES (" + std::to_string(id) + ", 'x')";
  }

  sb4 value = 0;
};

TEST_F(CursorTest, APortalAndItsStatementStandOnTheServer) {
  Statement stmt = numbers(kPortal);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(leftovers(), "1/1");
  EXPECT_EQ(
      inSession("SELECT name FROM pg_cursors WHERE statement LIKE '%generate_series%' "
                "AND statement NOT LIKE '%pg_cursors%'")
          .substr(0, 7),
      "portal_");
}

TEST_F(CursorTest, ADeclaredCursorStandsWithoutStatement) {
  Statement stmt = numbers(kDeclared);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(leftovers(), "0/1");
  EXPECT_EQ(
      inSession("SELECT name FROM pg_cursors WHERE is_holdable AND NOT is_scrollable")
          .substr(0, 7),
      "cursor_");
}

TEST_F(CursorTest, ADeclaredCursorIsScrollableInModeEightOnly) {
  for (const auto &[mode, scrollable] :
       {std::pair<ub4, const char *>{OCI_STMT_SCROLLABLE_READONLY, "true"},
        {OCI_DEFAULT, "false"},
        {OCI_STMT_SCROLLABLE_READONLY | OCI_COMMIT_ON_SUCCESS, "false"}}) {
    Statement stmt = numbers(kDeclared);
    ASSERT_EQ(stmt.execute(1, mode), OCI_SUCCESS);
    EXPECT_EQ(inSession("SELECT is_scrollable::text FROM pg_cursors WHERE name LIKE "
                        "'cursor\\_%'"),
              scrollable)
        << mode;
    commit();
  }
}

TEST_F(CursorTest, TheTextOfTheDeclarationIsAsDocumented) {
  Statement stmt = statement("select :a::int");
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, kDeclared);
  stmt.define(1, value);
  sb4 bound = 6;
  stmt.bind(":a", bound);
  const WireLog log =
      wireOf([&] { ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText(); });
  ASSERT_GE(log.sql.size(), 2u);
  EXPECT_EQ(masked(log.sql[1]),
            "DECLARE cursor_# NO SCROLL CURSOR WITH HOLD FOR select $1::int");
  EXPECT_EQ(value, 6);
}

struct HoldCase {
  ub4 policy;
  const char *begins;  ///< what is sent before the declaration
  bool commitsAfter;
  const char *rowsAfter;
};

TEST_F(CursorTest, HoldPoliciesSurroundTheDeclaration) {
  const HoldCase cases[] = {{kInherited, "BEGIN", false, "0:0"},
                            {kPlain, "", false, "0:0"},
                            {kCommitted, "", true, "1:1"}};
  for (const HoldCase &c : cases) {
    SCOPED_TRACE(c.policy);
    Statement fresh = numbers(kDeclared, c.policy);
    const WireLog log = wireOf([&] { ASSERT_EQ(fresh.execute(0), OCI_SUCCESS); });
    EXPECT_EQ(log.sql.at(0) == "BEGIN", *c.begins != '\0');
    EXPECT_NE(log.sql.back(),
              "COMMIT");  // without a transaction there is nothing to commit
    rollback();

    run(insertOf(1));
    Statement inside = numbers(kDeclared, c.policy);
    const WireLog within = wireOf([&] { ASSERT_EQ(inside.execute(0), OCI_SUCCESS); });
    EXPECT_EQ(within.sql.back() == "COMMIT", c.commitsAfter);
    EXPECT_EQ(committed(), c.rowsAfter);
    rollback();
    query("DELETE FROM " + table());
  }
}

TEST_F(CursorTest, ADeclaredCursorIsFetchedAcrossACommit) {
  for (const ub4 policy : {kInherited, kPlain, kCommitted}) {
    Statement stmt = numbers(kDeclared, policy);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    EXPECT_EQ(value, 1);
    for (sb4 expected = 2; expected <= 9; ++expected) {
      commit();
      ASSERT_EQ(stmt.fetch(), OCI_SUCCESS) << policy << ": " << errorText();
      EXPECT_EQ(value, expected);
    }
    EXPECT_EQ(stmt.fetch(), OCI_NO_DATA);
  }
}

TEST_F(CursorTest, TheServerHandleDecidesWhereTheStatementDoesNot) {
  const auto set = [&](ub4 number, ub4 wanted) {
    EXPECT_EQ(
        OCIAttrSet(server(), OCI_HTYPE_SERVER, &wanted, sizeof wanted, number, errhp()),
        OCI_SUCCESS);
  };
  const struct {
    ub4 ofServer;
    ub4 ofStatement;
    const char *left;
  } cases[] = {{0, 0, "1/1"}, {1, 0, "0/1"}, {2, 0, "1/1"}, {1, 2, "1/1"}, {2, 1, "0/1"}};
  for (const auto &c : cases) {
    set(ZEVOCI_ATTR_CURSOR_STRATEGY, c.ofServer);
    Statement stmt = numbers(c.ofStatement);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    set(ZEVOCI_ATTR_CURSOR_STRATEGY, kPortal);
    EXPECT_EQ(leftovers(), c.left) << c.ofServer << c.ofStatement;
    rollback();
  }
  set(ZEVOCI_ATTR_HOLD_POLICY, kPlain);
  Statement plain = numbers(kDeclared);
  const WireLog log = wireOf([&] { plain.execute(0); });
  EXPECT_NE(log.sql.at(0), "BEGIN");
}

TEST_F(CursorTest, TheVariableMakesDeclaredCursorsTheDefault) {
  setVariable("OCI_WITH_HOLD", "1");
  reconnect();
  Statement stmt = statement("SELECT g FROM generate_series(1, 9) g");
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(stmt.attribute(ZEVOCI_ATTR_CURSOR_STRATEGY), 0u);
  commit();
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 2);
}

TEST_F(CursorTest, APortalIsGoneAfterTheCommitAndTheTransactionStateStaysSane) {
  run(insertOf(1));
  Statement stmt = numbers(kPortal);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  commit();
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  EXPECT_EQ(serverState(), "34000");
  run(insertOf(2));
  commit();
  EXPECT_EQ(committed(), "2:3");
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 1);
  EXPECT_EQ(stmt.fetch(), OCI_SUCCESS);
}

TEST_F(CursorTest, EachExecutionReplacesThePortalAndKeepsTheStatement) {
  Statement stmt = numbers(kPortal);
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    ASSERT_EQ(stmt.fetch(), OCI_SUCCESS);
    EXPECT_EQ(value, 2);
  }
  EXPECT_EQ(leftovers(), "1/1");
}

TEST_F(CursorTest, EachExecutionReplacesTheDeclaredCursor) {
  Statement stmt = numbers(kDeclared);
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    if (i % 3 == 0) commit();
  }
  EXPECT_EQ(leftovers(), "0/1");
}

TEST_F(CursorTest, FreeingLeavesNothingOnTheServer) {
  for (const ub4 strategy : {kDeclared, kPortal}) {
    { ASSERT_EQ(numbers(strategy).execute(), OCI_SUCCESS); }
    EXPECT_EQ(leftovers(), "0/0") << strategy;
    {
      Statement committedFirst = numbers(strategy);
      ASSERT_EQ(committedFirst.execute(), OCI_SUCCESS);
      commit();
    }
    EXPECT_EQ(leftovers(), "0/0") << strategy;
  }
  {
    Statement insert = statement(insertOf(1));
    ASSERT_EQ(insert.execute(), OCI_SUCCESS);
  }
  EXPECT_EQ(leftovers(), "0/0");
}

TEST_F(CursorTest, PreparingAnewLeavesNothingOnTheServer) {
  for (const ub4 strategy : {kDeclared, kPortal}) {
    Statement stmt = numbers(strategy);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    ASSERT_EQ(stmt.prepare(insertOf(1)), OCI_SUCCESS);
    EXPECT_EQ(leftovers(), "0/0") << strategy;
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    EXPECT_EQ(leftovers(), "1/0");
    ASSERT_EQ(stmt.prepare("SELECT 5"), OCI_SUCCESS);
    EXPECT_EQ(leftovers(), "0/0");
    stmt.define(1, value);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(leftovers(), strategy == kDeclared ? "0/1" : "1/1");
    rollback();
  }
}

TEST_F(CursorTest, OneHandleThroughManyStatementsLeavesNothing) {
  {
    Statement stmt(env(), errhp(), svchp());
    for (int i = 0; i < 60; ++i) {
      ASSERT_EQ(stmt.prepare(i % 2 ? insertOf(i) : "SELECT " + std::to_string(i)),
                OCI_SUCCESS);
      stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, i % 4 ? kPortal : kDeclared);
      stmt.define(1, value);
      ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
      EXPECT_EQ(value, i - i % 2);
      if (i % 7 == 0) commit();
      if (i % 11 == 0) rollback();
    }
  }
  EXPECT_EQ(leftovers(), "0/0");
}

TEST_F(CursorTest, AFailedTransactionLeavesNoPortalBehind) {
  Statement stmt = statement("SELECT 10 / (3 - g) FROM generate_series(1, 9) g");
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS);
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  EXPECT_EQ(serverState(), "22012");
  EXPECT_EQ(leftovers(), "1/0");
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(leftovers(), "1/1");
}

TEST_F(CursorTest, SwitchingTheStrategyOfAnExecutedStatementLeavesOneObject) {
  Statement stmt = numbers(kPortal);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, kDeclared);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS);
  EXPECT_EQ(value, 2);
  EXPECT_EQ(leftovers(), "1/1");
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, kPortal);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 2);
  EXPECT_EQ(leftovers(), "1/1");
}

TEST_F(CursorTest, ADeclaredCursorMayBecomeAPortal) {
  Statement stmt = numbers(kDeclared);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, kPortal);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 1);
}

TEST_F(CursorTest, PortalsOfSeveralStatementsAreIndependent) {
  Statement first = numbers(kPortal);
  sb4 other = 0;
  Statement second = statement("SELECT g FROM generate_series(101, 109) g");
  second.define(1, other);
  ASSERT_EQ(first.execute(), OCI_SUCCESS);
  ASSERT_EQ(second.execute(), OCI_SUCCESS);
  for (sb4 i = 2; i <= 9; ++i) {
    ASSERT_EQ(first.fetch(), OCI_SUCCESS);
    ASSERT_EQ(second.fetch(), OCI_SUCCESS);
    EXPECT_EQ(value, i);
    EXPECT_EQ(other, 100 + i);
  }
}

TEST_F(CursorTest, AStatementOfADetachedConnectionSendsNothing) {
  OCISvcCtx *other = logon();
  Statement stmt(env(), errhp(), other);
  ASSERT_EQ(stmt.prepare("SELECT 1"), OCI_SUCCESS);
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  ASSERT_EQ(OCILogoff(other, errhp()), OCI_SUCCESS);
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  const WireLog log = wireOf([&] { EXPECT_EQ(stmt.prepare("SELECT 2"), OCI_SUCCESS); });
  EXPECT_TRUE(log.messages.empty());
}

}  // namespace
}  // namespace zev::test
