/// Rows by the array: INSERT, UPDATE and DELETE, and what a failing row leaves.
#include <malloc.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <vector>

#include "tests/integration/support/statement_fixture.h"
#include "tests/server/address.h"
#include "tests/server/delaying_proxy.h"

#ifdef __SANITIZE_ADDRESS__
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace zev::test {
namespace {

constexpr ub4 kBatch = 1000;

/// The bytes that the process has allocated.
std::size_t allocated() {
#ifdef __SANITIZE_ADDRESS__
  return __sanitizer_get_current_allocated_bytes();
#else
  return mallinfo2().uordblks;
#endif
}

/// The buffers of a batch: an id and a text of up to eleven characters for each row.
struct Batch {
  explicit Batch(ub4 rows) : ids(rows), texts(rows), indicators(rows) {}
  std::vector<sb4> ids;
  std::vector<std::array<char, 24>> texts;
  std::vector<sb2> indicators;

  void fill(sb4 first) {
    for (std::size_t i = 0; i < ids.size(); ++i) {
      ids[i] = first + static_cast<sb4>(i);
      put(texts[i].data(), "t" + std::to_string(ids[i]));
    }
  }
  void bind(Statement &stmt) {
    stmt.bind(":i", ids.data(), sizeof(sb4), SQLT_INT);
    stmt.bind(":t", texts.data(), sizeof texts[0], SQLT_STR, indicators.data());
  }
};

class ArrayTest : public StatementFixture {
 protected:
  Statement insert() { return statement("INSERT INTO " + table() + " VALUES (:i, :t)"); }
  /// Inserts rows `first` to `last` in batches.
  void insertRange(sb4 first, sb4 last) {
    Statement stmt = insert();
    Batch batch(kBatch);
    batch.bind(stmt);
    for (sb4 id = first; id <= last; id += kBatch) {
      batch.fill(id);
      const auto rows = static_cast<ub4>(std::min<sb4>(kBatch, last - id + 1));
      ASSERT_EQ(stmt.execute(rows), OCI_SUCCESS) << errorText();
    }
  }
  void insertIndexed(sb4 rows) {
    run("CREATE INDEX ON " + table() + " (id)");
    insertRange(1, rows);
  }
  /// The last batch of so many rows is not full.
  static sb4 manyRows() { return std::getenv("ZEVOCI_TEST_LONG") ? 1'000'500 : 20'500; }

  std::string sums() {
    return inSession(
        "SELECT count(*) || ':' || coalesce(sum(id), 0) || ':' ||"
        " coalesce(sum(hashtext(t)), 0) FROM " +
        table());
  }
  std::string sumsOf(sb4 last) {
    return inSession(
        "SELECT count(*) || ':' || sum(i) || ':' || sum(hashtext('t' || i))"
        " FROM generate_series(1, " +
        std::to_string(last) + ") i");
  }
};

TEST_F(ArrayTest, ArraysOfAThousandArriveWhole) {
  const sb4 rows = manyRows();
  insertRange(1, rows);
  EXPECT_EQ(sums(), sumsOf(rows));
}

TEST_F(ArrayTest, RowCountIsThatOfTheBatch) {
  Statement stmt = insert();
  Batch batch(5);
  batch.fill(1);
  batch.bind(stmt);
  ASSERT_EQ(stmt.execute(5), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 5u);
}

TEST_F(ArrayTest, RowCountOfAnUpdateIsThatOfTheBatchWhateverChanged) {
  insertRange(1, 3);
  Statement stmt = statement("UPDATE " + table() + " SET t = :t WHERE id = :i");
  Batch batch(5);
  batch.fill(3);
  batch.bind(stmt);
  ASSERT_EQ(stmt.execute(5), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 5u);
}

TEST_F(ArrayTest, UpdateByArrayChangesEachRow) {
  const sb4 rows = manyRows();
  insertIndexed(rows);
  Statement stmt = statement("UPDATE " + table() + " SET t = :t || '!' WHERE id = :i");
  Batch batch(kBatch);
  batch.bind(stmt);
  for (sb4 first = 1; first <= rows; first += kBatch) {
    batch.fill(first);
    ASSERT_EQ(stmt.execute(static_cast<ub4>(std::min<sb4>(kBatch, rows - first + 1))),
              OCI_SUCCESS)
        << errorText();
  }
  EXPECT_EQ(inSession("SELECT count(*) || ':' || sum(id) FROM " + table() +
                      " WHERE t = 't' || id || '!'"),
            inSession("SELECT count(*) || ':' || sum(i) FROM generate_series(1, " +
                      std::to_string(rows) + ") i"));
}

TEST_F(ArrayTest, DeleteByArrayDeletesEachRow) {
  const sb4 rows = manyRows();
  insertIndexed(rows + 500);
  Statement stmt = statement("DELETE FROM " + table() + " WHERE id = :i");
  std::vector<sb4> ids(static_cast<std::size_t>(rows));
  std::iota(ids.begin(), ids.end(), 1);
  stmt.bind(":i", ids.data(), sizeof(sb4), SQLT_INT);
  ASSERT_EQ(stmt.execute(static_cast<ub4>(rows)), OCI_SUCCESS) << errorText();
  EXPECT_EQ(inSession("SELECT count(*) || ':' || min(id) FROM " + table()),
            "500:" + std::to_string(rows + 1));
}

TEST_F(ArrayTest, RowCountOfADeleteIsThatOfItsLastRow) {
  insertRange(1, 5);
  run("INSERT INTO " + table() + " VALUES (3, 'again')");
  Statement stmt = statement("DELETE FROM " + table() + " WHERE id = :i");
  sb4 ids[] = {1, 2, 3};
  stmt.bind(":i", ids, sizeof *ids, SQLT_INT);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 2u);
  EXPECT_EQ(inSession("SELECT string_agg(id::text, ',' ORDER BY id) FROM " + table()),
            "4,5");
}

TEST_F(ArrayTest, AThousandRowsCostOneRoundTrip) {
  Statement stmt = insert();
  Batch batch(kBatch);
  batch.fill(1);
  batch.bind(stmt);
  for (int i = 0; i < 2; ++i) ASSERT_EQ(stmt.execute(kBatch), OCI_SUCCESS);
  const WireLog log = wireOf([&] { EXPECT_EQ(stmt.execute(kBatch), OCI_SUCCESS); });
  EXPECT_EQ(log.roundTrips, 1);

  Statement remove = statement("DELETE FROM " + table() + " WHERE id = :i");
  remove.bind(":i", batch.ids.data(), sizeof(sb4), SQLT_INT);
  ASSERT_EQ(remove.execute(kBatch), OCI_SUCCESS);
  const WireLog second = wireOf([&] { EXPECT_EQ(remove.execute(kBatch), OCI_SUCCESS); });
  EXPECT_EQ(second.roundTrips, 1);
}

TEST_F(ArrayTest, TenThousandRowsTakeNoMoreThanThirtyRoundTrips) {
  const WireLog log = wireOf([&] { insertRange(1, 10'000); });
  EXPECT_LE(log.roundTrips, 30);
  EXPECT_EQ(sums(), sumsOf(10'000));
}

TEST_F(ArrayTest, TenThousandRowsTakeNoMoreThanThirtyTripsToADistantServer) {
  using std::chrono::milliseconds;
  constexpr milliseconds kTrip{20};
  const ServerAddress &at = testServer();
  const DelayingProxy proxy(at.host, at.port, kTrip / 2);
  const Given user(at.user), password(at.password),
      target(at.host + ":" + proxy.port() + "/" + at.db);
  OCISvcCtx *distant = nullptr;
  ASSERT_EQ(OCILogon(env(), errhp(), &distant, user.text(), user.size(), password.text(),
                     password.size(), target.text(), target.size()),
            OCI_SUCCESS)
      << errorText();
  const auto insertTenBatches = [&](OCISvcCtx *svchp) {
    const auto start = std::chrono::steady_clock::now();
    Statement stmt(env(), errhp(), svchp);
    EXPECT_EQ(stmt.prepare("INSERT INTO " + table() + " VALUES (:i, :t)"), OCI_SUCCESS);
    Batch batch(kBatch);
    batch.bind(stmt);
    for (sb4 first = 1; first <= 10'000; first += kBatch) {
      batch.fill(first);
      EXPECT_EQ(stmt.execute(kBatch), OCI_SUCCESS) << errorText();
    }
    EXPECT_EQ(OCITransCommit(svchp, errhp(), OCI_DEFAULT), OCI_SUCCESS);
    return std::chrono::steady_clock::now() - start;
  };
  const auto near = insertTenBatches(svchp());
  const auto far = insertTenBatches(distant);
  EXPECT_LE((far - near) / kTrip, 30);
  EXPECT_EQ(query("SELECT count(*) FROM " + table()), "20000");
  EXPECT_EQ(OCILogoff(distant, errhp()), OCI_SUCCESS);
}

TEST_F(ArrayTest, FailingRowStoresNothingOfItsBatchAndSaysWhich) {
  run("CREATE UNIQUE INDEX ON " + table() + " (id)");
  insertRange(1, 100);
  commit();
  for (const ub4 bad : {0u, 499u, 999u}) {
    Statement stmt = insert();
    Batch batch(kBatch);
    batch.fill(5000);
    batch.ids[bad] = 42;
    batch.bind(stmt);
    EXPECT_EQ(stmt.execute(kBatch), OCI_ERROR) << bad;
    expectError(24338, "Key (id)=(42)");
    EXPECT_EQ(inSession("SELECT count(*) FROM " + table()), "100");
  }
}

TEST_F(ArrayTest, FirstFailingRowIsTheOneThatIsTold) {
  run("CREATE UNIQUE INDEX ON " + table() + " (id)");
  run("ALTER TABLE " + table() + " ADD CHECK (length(t) < 8)");
  commit();
  Statement stmt = insert();
  Batch batch(kBatch);
  batch.fill(1);
  batch.ids[700] = 300;
  put(batch.texts[350].data(), "far too ok");
  batch.bind(stmt);
  EXPECT_EQ(stmt.execute(kBatch), OCI_ERROR);
  EXPECT_NE(errorText().find("check constraint"), std::string::npos) << errorText();
  EXPECT_NE(errorText().find("far too ok"), std::string::npos) << errorText();
}

TEST_F(ArrayTest, NullsAmongRowsStayNulls) {
  Statement stmt = insert();
  Batch batch(300);
  batch.fill(1);
  for (std::size_t i = 0; i < batch.indicators.size(); i += 3) batch.indicators[i] = -1;
  batch.bind(stmt);
  ASSERT_EQ(stmt.execute(300), OCI_SUCCESS) << errorText();
  EXPECT_EQ(inSession("SELECT count(*) || ':' || count(t) FROM " + table()), "300:200");
}

TEST_F(ArrayTest, FormatsAreThoseOfTheLastRow) {
  run("CREATE TEMP TABLE array_formats (a int, b text)");
  Statement stmt = statement("INSERT INTO array_formats VALUES (:a, :b)");
  sb4 a[] = {11, 22, 33};
  sb2 aInd[] = {0, 0, 0};
  char b[3][4] = {};
  for (int i = 0; i < 3; ++i) put(b[i], std::string(1, "xyz"[i]));
  stmt.bind(":a", a, sizeof *a, SQLT_INT, aInd);
  stmt.bind(":b", b, sizeof *b, SQLT_STR);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(inSession("SELECT string_agg(a::text, ',' ORDER BY a) FROM array_formats"),
            "11,22,33");
  aInd[2] = -1;
  // The last row's NULL is text, and so the bytes of the other rows are read as text.
  EXPECT_EQ(stmt.execute(3), OCI_ERROR);
  expectError(24338, "invalid");
}

TEST_F(ArrayTest, ConversionThatFailsSendsNothing) {
  Statement stmt = insert();
  Batch batch(5);
  batch.fill(1);
  batch.indicators[2] = -2;
  batch.bind(stmt);
  ASSERT_LT(stmt.execute(5), 0);
  EXPECT_EQ(inSession("SELECT count(*) FROM " + table()), "0");
}

TEST_F(ArrayTest, DeleteRunsTheRowsBeforeAConversionThatFails) {
  insertRange(1, 5);
  Statement stmt = statement("DELETE FROM " + table() + " WHERE t = :t");
  Batch batch(5);
  batch.fill(1);
  batch.indicators[2] = -2;
  stmt.bind(":t", batch.texts.data(), sizeof batch.texts[0], SQLT_STR,
            batch.indicators.data());
  EXPECT_LT(stmt.execute(5), 0);
  EXPECT_EQ(inSession("SELECT string_agg(id::text, ',' ORDER BY id) FROM " + table()),
            "3,4,5");
}

TEST_F(ArrayTest, DeleteThatReturnsRowsIsRefused) {
  insertRange(1, 5);
  commit();
  Statement stmt = statement("DELETE FROM " + table() + " WHERE id = :i RETURNING id");
  sb4 ids[] = {1, 2, 3};
  stmt.bind(":i", ids, sizeof *ids, SQLT_INT);
  EXPECT_EQ(stmt.execute(3), OCI_ERROR);
  expectError(0, "Support for RETURNING clause is not yet implemented");
  EXPECT_EQ(inSession("SELECT count(*) FROM " + table()), "5");
}

TEST_F(ArrayTest, StructBindsTakeTheArrayRoadAlsoForOneRow) {
  struct Row {
    sb4 id;
    char text[24];
  } rows[3] = {};
  for (sb4 i = 0; i < 3; ++i) {
    rows[i].id = i + 1;
    constexpr const char *kTexts[] = {"one", "two", "three"};
    put(rows[i].text, kTexts[i]);
  }
  Statement stmt = insert();
  OCIBind *id = nullptr, *text = nullptr;
  OCIBindByPos(stmt.handle(), &id, errhp(), 1, &rows[0].id, sizeof(sb4), SQLT_INT,
               nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT);
  OCIBindByPos(stmt.handle(), &text, errhp(), 2, &rows[0].text, sizeof rows[0].text,
               SQLT_STR, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT);
  OCIBindArrayOfStruct(id, errhp(), sizeof(Row), 0, 0, 0);
  OCIBindArrayOfStruct(text, errhp(), sizeof(Row), 0, 0, 0);
  ASSERT_EQ(stmt.execute(1), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 1u);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(inSession("SELECT string_agg(t, ',' ORDER BY id, t) FROM " + table()),
            "one,one,two,three");
}

TEST_F(ArrayTest, OffsetLeavesRowsOut) {
  Statement stmt = insert();
  Batch batch(5);
  batch.fill(1);
  batch.bind(stmt);
  ASSERT_EQ(OCIStmtExecute(svchp(), stmt.handle(), errhp(), 5, 3, nullptr, nullptr,
                           OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_EQ(inSession("SELECT string_agg(id::text, ',' ORDER BY id) FROM " + table()),
            "4,5");
  EXPECT_EQ(OCIStmtExecute(svchp(), stmt.handle(), errhp(), 3, 3, nullptr, nullptr,
                           OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_EQ(OCIStmtExecute(svchp(), stmt.handle(), errhp(), 2, 4, nullptr, nullptr,
                           OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_EQ(inSession("SELECT count(*) FROM " + table()), "2");
}

TEST_F(ArrayTest, PlaceholderThatOccursTwiceIsFreedOnce) {
  Statement stmt = statement("INSERT INTO " + table() + " VALUES (length(:t), :t || :t)");
  Batch batch(50);
  batch.fill(1);
  stmt.bind(":t", batch.texts.data(), sizeof batch.texts[0], SQLT_STR);
  ASSERT_EQ(stmt.execute(50), OCI_SUCCESS) << errorText();
  EXPECT_EQ(inSession("SELECT max(t) FROM " + table()), "t9t9");
}

TEST_F(ArrayTest, TriggersSeeEachRowByItself) {
  run("CREATE FUNCTION pg_temp.array_count() RETURNS trigger LANGUAGE plpgsql AS"
      " 'BEGIN NEW.t := (SELECT count(*) FROM " +
      table() + "); RETURN NEW; END'");
  run("CREATE TRIGGER each BEFORE INSERT ON " + table() +
      " FOR EACH ROW EXECUTE FUNCTION pg_temp.array_count()");
  insertRange(1, 200);
  EXPECT_EQ(inSession("SELECT count(*) FROM " + table() + " WHERE t::int = id - 1"),
            "200");
}

TEST_F(ArrayTest, TriggerThatComesBetweenTwoRunsIsHonoured) {
  Statement stmt = insert();
  Batch batch(200);
  batch.fill(1);
  batch.bind(stmt);
  ASSERT_EQ(stmt.execute(200), OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(200), OCI_SUCCESS);
  run("DELETE FROM " + table());
  run("CREATE FUNCTION pg_temp.array_stmt() RETURNS trigger LANGUAGE plpgsql AS"
      " 'BEGIN INSERT INTO array_trips VALUES (1); RETURN NULL; END'");
  run("CREATE TEMP TABLE array_trips (a int)");
  run("CREATE TRIGGER each AFTER INSERT ON " + table() +
      " FOR EACH STATEMENT EXECUTE FUNCTION pg_temp.array_stmt()");
  ASSERT_EQ(stmt.execute(200), OCI_SUCCESS) << errorText();
  EXPECT_EQ(inSession("SELECT count(*) FROM array_trips"), "200");
  EXPECT_EQ(inSession("SELECT count(*) FROM " + table()), "200");
}

TEST_F(ArrayTest, MemoryStaysFlatOverManyBatches) {
  Statement stmt = insert();
  Batch batch(100);
  batch.bind(stmt);
  sb4 id = 1;
  const auto insertSome = [&] {
    for (int i = 0; i < 20; ++i, id += 100) {
      batch.fill(id);
      ASSERT_EQ(stmt.execute(100), OCI_SUCCESS) << errorText();
    }
  };
  insertSome();
  const std::size_t before = allocated();
  for (int i = 0; i < 50; ++i) insertSome();
  EXPECT_GT(before, 0u);
  EXPECT_LE(allocated(), before + 100'000);
}

TEST_F(ArrayTest, CommitOnSuccessCommitsTheBatch) {
  Statement stmt = insert();
  Batch batch(50);
  batch.fill(1);
  batch.bind(stmt);
  ASSERT_EQ(stmt.execute(50, OCI_COMMIT_ON_SUCCESS), OCI_SUCCESS) << errorText();
  EXPECT_EQ(committed().substr(0, 3), "50:");
}

}  // namespace
}  // namespace zev::test
