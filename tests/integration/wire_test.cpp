/// What each call costs: the round trips and the SQL that reach the server.
#include <unistd.h>

#include <string>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

using Sql = std::vector<std::string>;

/// `text` with "#" in the place of the eight digits of each generated name.
std::string maskNames(std::string text) {
  for (const char *prefix : {"stmt_", "portal_", "cursor_"}) {
    const std::string start = prefix;
    for (std::size_t at = text.find(start); at != text.npos;
         at = text.find(start, at + 1)) {
      const std::size_t digits = at + start.size();
      if (text.find_first_not_of("0123456789abcdef", digits) - digits >= 8) {
        text.replace(digits, 8, "#");
      }
    }
  }
  return text;
}

class WireTest : public OciTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    query("DROP TABLE IF EXISTS " + table_);
    query("CREATE TABLE " + table_ + " (id int, name text)");
    query("INSERT INTO " + table_ +
          " SELECT g, 'row ' || g FROM generate_series(1, 30) g");
  }
  void TearDown() override {
    OciTest::TearDown();
    query("DROP TABLE IF EXISTS " + table_);
  }

  /// Runs `work` and compares its trips and SQL; numbers in generated names read "#".
  void expectWire(int trips, const Sql &sql, const std::function<void()> &work) {
    const WireLog log = wireOf(work);
    Sql masked;
    for (const std::string &text : log.sql) masked.push_back(maskNames(text));
    EXPECT_EQ(log.roundTrips, trips);
    EXPECT_EQ(masked, sql);
  }

  /// A query of `table_` with one bind and one define, ready to run.
  Statement selection() {
    Statement stmt = statement("SELECT id FROM " + table_ + " WHERE id <= :top");
    stmt.bind(":top", top_);
    stmt.define(1, id_);
    return stmt;
  }
  std::string selectionText() const {
    return "SELECT id FROM " + table_ + " WHERE id <= $1";
  }
  std::string opened() const {
    return "DECLARE \"portal_#\" NO SCROLL CURSOR FOR " + selectionText();
  }

  const std::string table_ = dressed("wire_rows_" + std::to_string(getpid()));
  sb4 top_ = 30;
  sb4 id_ = 0;
};

TEST_F(WireTest, FirstExecuteOfASelectBeginsPreparesAndOpensWithItsFirstRows) {
  Statement stmt = selection();
  expectWire(3, {"BEGIN", selectionText(), opened(), "FETCH FORWARD 1 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, RepeatedExecuteOfASelectInItsTransactionIsOneTrip) {
  Statement stmt = selection();
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  expectWire(1, {"CLOSE \"portal_#\"", opened(), "FETCH FORWARD 1 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, RepeatedExecuteOfASelectAfterACommitBeginsInTheSameTrip) {
  Statement stmt = selection();
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  commit();
  expectWire(1, {"BEGIN", opened(), "FETCH FORWARD 1 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, ExecuteWithoutRowsOpensAndDescribes) {
  Statement stmt = selection();
  EXPECT_EQ(stmt.execute(0), OCI_SUCCESS);
  expectWire(2, {"CLOSE \"portal_#\"", opened()},
             [&] { EXPECT_EQ(stmt.execute(0), OCI_SUCCESS); });
}

TEST_F(WireTest, DescribingASelectPreparesAndDescribesItOnce) {
  Statement stmt = statement("SELECT id FROM " + table_ + " WHERE id = :id");
  expectWire(3, {"BEGIN", "SELECT id FROM " + table_ + " WHERE id = $1"},
             [&] { EXPECT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS); });
  expectWire(1, {}, [&] { EXPECT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS); });
}

TEST_F(WireTest, FetchesAreOneTripEachAndPrefetchedOnesNone) {
  Statement stmt = selection();
  sb4 ids[10] = {};
  stmt.define(1, ids, sizeof ids[0], SQLT_INT);
  EXPECT_EQ(stmt.execute(10), OCI_SUCCESS);
  expectWire(1, {"FETCH FORWARD 10 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.fetch(10), OCI_SUCCESS); });

  stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, 10);
  stmt.define(1, id_);
  expectWire(1, {"CLOSE \"portal_#\"", opened(), "FETCH FORWARD 10 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.execute(1), OCI_SUCCESS); });
  expectWire(0, {}, [&] {
    for (sb4 row = 2; row <= 10; ++row) {
      EXPECT_EQ(stmt.fetch(), OCI_SUCCESS);
      EXPECT_EQ(id_, row);
    }
  });
  expectWire(1, {"FETCH FORWARD 10 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.fetch(), OCI_SUCCESS); });
  EXPECT_EQ(id_, 11);
}

TEST_F(WireTest, AScrolledFetchMovesTwiceAndFetches) {
  Statement stmt = selection();
  EXPECT_EQ(stmt.execute(1, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS);
  expectWire(3,
             {"MOVE ABSOLUTE 0 IN \"portal_#\"", "MOVE ABSOLUTE 6 IN \"portal_#\"",
              "FETCH FORWARD 1 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.fetch(1, OCI_FETCH_ABSOLUTE, 7), OCI_SUCCESS); });
  EXPECT_EQ(id_, 7);
  expectWire(1, {"FETCH FORWARD 1 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.fetch(1, OCI_FETCH_NEXT), OCI_SUCCESS); });
  expectWire(4,
             {"MOVE FORWARD ALL IN portal_#", "MOVE ABSOLUTE 0 IN \"portal_#\"",
              "MOVE ABSOLUTE 29 IN \"portal_#\"", "FETCH FORWARD 1 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.fetch(1, OCI_FETCH_LAST), OCI_SUCCESS); });
  EXPECT_EQ(id_, 30);
  expectWire(3,
             {"MOVE ABSOLUTE 0 IN \"portal_#\"", "MOVE ABSOLUTE 29 IN \"portal_#\"",
              "FETCH FORWARD 1 FROM \"portal_#\""},
             [&] { EXPECT_EQ(stmt.fetch(1, OCI_FETCH_LAST), OCI_SUCCESS); });
}

TEST_F(WireTest, AScrollableSelectIsOpenedScrollable) {
  Statement stmt = selection();
  expectWire(
      4,
      {"BEGIN", selectionText(),
       "DECLARE \"portal_#\" SCROLL CURSOR FOR " + selectionText(),
       "FETCH FORWARD 1 FROM \"portal_#\""},
      [&] { EXPECT_EQ(stmt.execute(1, OCI_STMT_SCROLLABLE_READONLY), OCI_SUCCESS); });
}

TEST_F(WireTest, ACancelledFetchClosesThePortal) {
  Statement stmt = selection();
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  expectWire(1, {"CLOSE \"portal_#\""}, [&] { EXPECT_EQ(stmt.fetch(0), OCI_SUCCESS); });
  expectWire(0, {}, [&] { EXPECT_EQ(stmt.fetch(1), OCI_NO_DATA); });
}

TEST_F(WireTest, SingleRowDmlIsPreparedOnceAndThenOneTripARow) {
  Statement stmt = statement("INSERT INTO " + table_ + " (id) VALUES (:id)");
  stmt.bind(":id", id_);
  expectWire(3, {"BEGIN", "INSERT INTO " + table_ + " (id) VALUES ($1)"},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
  expectWire(1, {}, [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
  commit();
  expectWire(2, {"BEGIN"}, [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, CommitOnSuccessAddsTheCommit) {
  Statement stmt = statement("DELETE FROM " + table_);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  expectWire(2, {"COMMIT"},
             [&] { EXPECT_EQ(stmt.execute(1, OCI_COMMIT_ON_SUCCESS), OCI_SUCCESS); });
}

TEST_F(WireTest, DdlGoesAsItStandsInATransactionOfItsOwn) {
  Statement stmt = statement("ALTER TABLE " + table_ + " ADD extra int");
  expectWire(3, {"BEGIN", "ALTER TABLE " + table_ + " ADD extra int", "COMMIT"},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, TruncateIsPreparedAndSentAsItStands) {
  Statement stmt = statement("TRUNCATE " + table_);
  expectWire(4, {"BEGIN", "TRUNCATE " + table_, "TRUNCATE " + table_, "COMMIT"},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, AFailingStatementIsRolledBackAtOnce) {
  Statement stmt = statement("INSERT INTO " + table_ + " VALUES (1 / :zero)");
  sb4 zero = 0;
  stmt.bind(":zero", zero);
  expectWire(4, {"BEGIN", "INSERT INTO " + table_ + " VALUES (1 / $1)", "ROLLBACK"},
             [&] { EXPECT_EQ(stmt.execute(), OCI_ERROR); });
}

TEST_F(WireTest, ADeclaredCursorIsDeclaredAndFetched) {
  Statement stmt = selection();
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, 1);
  const std::string declaration =
      "DECLARE cursor_# NO SCROLL CURSOR WITH HOLD FOR " + selectionText();
  expectWire(3, {"BEGIN", declaration, "FETCH FORWARD 1 FROM \"cursor_#\""},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
  expectWire(4,
             {"SELECT name FROM pg_catalog.pg_cursors", "CLOSE \"cursor_#\"", declaration,
              "FETCH FORWARD 1 FROM \"cursor_#\""},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, ADeclaredCursorOfHoldPolicySixCommitsBehindItsDeclaration) {
  Statement stmt = selection();
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, 1);
  stmt.setAttribute(ZEVOCI_ATTR_HOLD_POLICY, 6);
  expectWire(2,
             {"DECLARE cursor_# NO SCROLL CURSOR WITH HOLD FOR " + selectionText(),
              "FETCH FORWARD 1 FROM \"cursor_#\""},
             [&] { EXPECT_EQ(stmt.execute(), OCI_SUCCESS); });
  run("CREATE TABLE " + table_ + "_2 (a int)");
  run("DROP TABLE " + table_ + "_2");
  Statement update = statement("UPDATE " + table_ + " SET id = id");
  EXPECT_EQ(update.execute(), OCI_SUCCESS);
  Statement second = selection();
  second.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, 1);
  second.setAttribute(ZEVOCI_ATTR_HOLD_POLICY, 6);
  expectWire(3,
             {"DECLARE cursor_# NO SCROLL CURSOR WITH HOLD FOR " + selectionText(),
              "COMMIT", "FETCH FORWARD 1 FROM \"cursor_#\""},
             [&] { EXPECT_EQ(second.execute(), OCI_SUCCESS); });
}

TEST_F(WireTest, PreparingAnewDropsAPortalWithItsStatement) {
  Statement stmt = selection();
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  expectWire(2, {"DEALLOCATE stmt_#", "CLOSE \"portal_#\""},
             [&] { EXPECT_EQ(stmt.prepare("SELECT 1"), OCI_SUCCESS); });
}

TEST_F(WireTest, PreparingAnewDropsTheStatementOfDml) {
  Statement stmt = statement("DELETE FROM " + table_);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  expectWire(1, {"DEALLOCATE stmt_#"},
             [&] { EXPECT_EQ(stmt.prepare("SELECT 1"), OCI_SUCCESS); });
}

TEST_F(WireTest, FreeingAStatementDropsWhatItHas) {
  auto select = std::make_unique<Statement>(selection());
  EXPECT_EQ(select->execute(), OCI_SUCCESS);
  expectWire(2, {"DEALLOCATE stmt_#", "CLOSE \"portal_#\""}, [&] { select.reset(); });

  auto declared = std::make_unique<Statement>(selection());
  declared->setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, 1);
  EXPECT_EQ(declared->execute(), OCI_SUCCESS);
  expectWire(1, {"CLOSE cursor_#"}, [&] { declared.reset(); });

  auto dml = std::make_unique<Statement>(statement("DELETE FROM " + table_));
  EXPECT_EQ(dml->execute(), OCI_SUCCESS);
  expectWire(1, {"DEALLOCATE stmt_#"}, [&] { dml.reset(); });
}

TEST_F(WireTest, FreeingAStatementAfterTheConnectionIsGoneSendsNothing) {
  auto select = std::make_unique<Statement>(selection());
  EXPECT_EQ(select->execute(), OCI_SUCCESS);
  void *server = nullptr;
  void *session = nullptr;
  OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &server, nullptr, OCI_ATTR_SERVER, errhp());
  OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &session, nullptr, OCI_ATTR_SESSION, errhp());
  EXPECT_EQ(OCISessionEnd(svchp(), errhp(), nullptr, OCI_DEFAULT), OCI_SUCCESS);
  expectWire(0, {}, [&] { select.reset(); });

  // The context's server was unlinked with the connection; the session goes on with it
  // again.
  OCIAttrSet(svchp(), OCI_HTYPE_SVCCTX, server, 0, OCI_ATTR_SERVER, errhp());
  EXPECT_EQ(OCISessionBegin(svchp(), errhp(), static_cast<OCISession *>(session),
                            OCI_CRED_RDBMS, OCI_DEFAULT),
            OCI_SUCCESS);
}

}  // namespace
}  // namespace zev::test
