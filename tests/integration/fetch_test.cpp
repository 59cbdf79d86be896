/// Fetching: arrays, prefetching, ends, nulls and truncation.
#include <unistd.h>

#include <cstring>
#include <numeric>

#include "tests/integration/support/oci_test.h"
#include "zevoci/lob_locator.h"

namespace zev::test {
namespace {

class FetchTest : public OciTest {
 protected:
  Statement series(int last) {
    return statement("SELECT g FROM generate_series(1, " + std::to_string(last) + ") g");
  }

  /// Fetches single rows until the end; what they gave.
  std::vector<sb4> fetchRest(Statement &stmt, sb4 &value) {
    std::vector<sb4> rows;
    sword status;
    while ((status = stmt.fetch()) == OCI_SUCCESS) rows.push_back(value);
    EXPECT_EQ(status, OCI_NO_DATA) << errorText();
    return rows;
  }

  static std::vector<sb4> range(sb4 first, sb4 last) {
    std::vector<sb4> rows(static_cast<std::size_t>(last - first + 1));
    std::iota(rows.begin(), rows.end(), first);
    return rows;
  }
};

TEST_F(FetchTest, FewerRowsThanAskedForAreNoDataWithTheRowsDelivered) {
  Statement stmt = series(3);
  sb4 values[5] = {-1, -1, -1, -1, -1};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  EXPECT_EQ(stmt.execute(0), OCI_SUCCESS);
  EXPECT_EQ(stmt.fetch(5), OCI_NO_DATA);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROWS_FETCHED), 3u);
  EXPECT_EQ(std::vector<sb4>(values, values + 5), (std::vector<sb4>{1, 2, 3, -1, -1}));
  EXPECT_EQ(stmt.fetch(5), OCI_NO_DATA) << "the end stays the end";
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROWS_FETCHED), 0u);
  EXPECT_EQ(stmt.fetch(1), OCI_NO_DATA);
}

TEST_F(FetchTest, ExecuteDeliversItsFirstRowsAndFetchGoesOn) {
  Statement stmt = series(7);
  sb4 values[3] = {};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  EXPECT_EQ(stmt.execute(3), OCI_SUCCESS);
  EXPECT_EQ(values[2], 3);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 3u);
  EXPECT_EQ(stmt.fetch(3), OCI_SUCCESS);
  EXPECT_EQ(values[0], 4);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_CURRENT_POSITION), 6u);
  EXPECT_EQ(stmt.fetch(3), OCI_NO_DATA);
  EXPECT_EQ(values[0], 7);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 7u);
}

TEST_F(FetchTest, AQueryWithoutRowsIsNoDataAndStaysExecuted) {
  Statement stmt = statement("SELECT 1 WHERE false");
  sb4 value = 0;
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_NO_DATA);
  EXPECT_EQ(stmt.fetch(), OCI_NO_DATA);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_ROW_COUNT), 0u);
}

TEST_F(FetchTest, AFetchBeforeAnExecuteIsRefused) {
  Statement stmt = series(3);
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  expectError(24338, "KESTREL-24338: unexecuted statement handle");
}

TEST_F(FetchTest, AFetchOnAStatementWithoutACursorIsInvalid) {
  Statement stmt = statement("CREATE TEMP TABLE fetch_nothing (a int)");
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  expectError(1001, "invalid cursor");
}

TEST_F(FetchTest, AFetchWithoutDefinesIsRefused) {
  Statement stmt = series(3);
  EXPECT_EQ(stmt.execute(0), OCI_SUCCESS);
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  expectError(24374, "KESTREL-24374: define not available to execute or fetch");
}

TEST_F(FetchTest, AFetchOfNoRowsClosesThePortal) {
  Statement stmt = series(3);
  sb4 value = 0;
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(stmt.fetch(0), OCI_SUCCESS);
  EXPECT_EQ(stmt.attribute(OCI_ATTR_CURRENT_POSITION), 0u);
  EXPECT_EQ(stmt.fetch(), OCI_NO_DATA);
  Statement open =
      statement("SELECT count(*)::int FROM pg_cursors WHERE name LIKE 'portal%'");
  sb4 count = -1;
  open.define(1, count);
  EXPECT_EQ(open.execute(), OCI_SUCCESS);
  EXPECT_EQ(count, 1) << "its own portal only";
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << "and it can be executed again";
  EXPECT_EQ(value, 1);
}

TEST_F(FetchTest, PrefetchedRowsComeOneByOneInOrder) {
  for (const ub4 prefetch : {1u, 2u, 7u, 10u, 100u}) {
    Statement stmt = series(25);
    stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, prefetch);
    sb4 value = 0;
    stmt.define(1, value);
    ASSERT_EQ(stmt.execute(1), OCI_SUCCESS);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(fetchRest(stmt, value), range(2, 25)) << prefetch;
    ASSERT_EQ(stmt.execute(1), OCI_SUCCESS) << "executed again";
    EXPECT_EQ(value, 1);
    EXPECT_EQ(fetchRest(stmt, value), range(2, 25)) << prefetch;
  }
}

TEST_F(FetchTest, AnExecuteInTheMiddleOfAPrefetchedBatchBeginsAnew) {
  Statement stmt = series(25);
  stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, 10);
  sb4 value = 0;
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(1), OCI_SUCCESS);
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  EXPECT_EQ(fetchRest(stmt, value), range(1, 25));
}

TEST_F(FetchTest, ArrayAndSingleFetchesWithPrefetchLoseAndRepeatNothing) {
  Statement stmt = series(40);
  stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, 6);
  sb4 values[10] = {};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  std::vector<sb4> seen;
  const auto take = [&](ub4 rows) {
    const sword status = stmt.fetch(rows);
    ASSERT_TRUE(status == OCI_SUCCESS || status == OCI_NO_DATA) << errorText();
    const ub4 count = stmt.attribute(OCI_ATTR_ROWS_FETCHED);
    seen.insert(seen.end(), values, values + count);
  };
  ASSERT_EQ(stmt.execute(1), OCI_SUCCESS);
  seen.push_back(values[0]);
  for (const ub4 rows :
       {1u, 3u, 1u, 1u, 10u, 1u, 2u, 1u, 1u, 1u, 1u, 1u, 1u, 1u, 10u, 10u}) {
    take(rows);
  }
  EXPECT_EQ(seen, range(1, 40));
}

TEST_F(FetchTest, AnArrayExecuteWithPrefetchCountsOneRowAsHandedOut) {
  Statement stmt = series(10);
  stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, 4);
  sb4 values[3] = {};
  stmt.define(1, values, sizeof values[0], SQLT_INT);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS);
  EXPECT_EQ(values[2], 3);
  ASSERT_EQ(stmt.fetch(1), OCI_SUCCESS);
  EXPECT_EQ(values[0], 2) << "row 1 of the held batch, counted from 0";
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS);
  ASSERT_EQ(stmt.fetch(3), OCI_SUCCESS);
  EXPECT_EQ(values[0], 4) << "an array fetch goes on behind what the program has";
}

TEST_F(FetchTest, ANullSetsTheIndicatorAndLeavesTheValue) {
  Statement stmt = statement("SELECT NULL::text");
  char value[16];
  put(value, "before");
  const sb4 size = bytes(8);
  sb2 indicator = 7;
  ub2 length = 0, returnCode = 0;
  stmt.define(1, value, size, SQLT_CHR, &indicator, &length, &returnCode);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(indicator, -1);
  EXPECT_EQ(returnCode, 1405);
  EXPECT_EQ(length, size);
  EXPECT_EQ(decodedUpToEnd(value), "before");
  EXPECT_EQ(errorText(), "");
}

TEST_F(FetchTest, ANullWithoutAnIndicatorSucceedsInSilence) {
  Statement stmt = statement("SELECT NULL::int");
  sb4 value = 5;
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(value, 5);
  EXPECT_EQ(errorText(), "");
}

TEST_F(FetchTest, ATruncatedTextOfTheLastColumnIsSuccessWithInfo) {
  Statement stmt = statement("SELECT 'abcdefghi'::text");
  TextBuffer<3> buffer;
  stmt.define(1, buffer);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS_WITH_INFO);
  expectError(1406, "KESTREL-01406: fetched value truncated");
  EXPECT_EQ(buffer.text(), "abc");
  EXPECT_EQ(buffer.indicator, 9 - buffer.size()) << "by the server's length";
}

TEST_F(FetchTest, OnlyTheLastCellDecidesTheStatus) {
  Statement stmt = statement("SELECT 'abcdefghi'::text, 1");
  TextBuffer<3> buffer;
  sb4 number = 0;
  stmt.define(1, buffer);
  stmt.define(2, number);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  expectError(1406);
  EXPECT_EQ(buffer.indicator, 9 - buffer.size());
  EXPECT_EQ(number, 1);
}

TEST_F(FetchTest, ColumnsBehindTheFirstWithoutADefineAreNotDelivered) {
  Statement stmt = statement("SELECT 1, 2, 3");
  sb4 first = 0, third = -1;
  stmt.define(1, first);
  stmt.define(3, third);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(third, -1);
}

TEST_F(FetchTest, ATypeWithoutAConverterNamesBothClasses) {
  Statement stmt = statement("SELECT true");
  sb4 value = 0;
  stmt.define(1, value);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(932, "expected NUMBER got NUMBER");
}

TEST_F(FetchTest, StructsOfRowsAreFilledByTheirSkips) {
  struct Row {
    sb4 id;
    sb2 indicator;
    ub2 length;
    ub2 returnCode;
    char pad[6];
  } rows[4];
  std::memset(rows, 0xAB, sizeof rows);
  Statement stmt = statement("SELECT nullif(g, 2) FROM generate_series(1, 3) g");
  OCIDefine *define = nullptr;
  ASSERT_EQ(OCIDefineByPos(stmt.handle(), &define, errhp(), 1, &rows[0].id,
                           sizeof rows[0].id, SQLT_INT, &rows[0].indicator,
                           &rows[0].length, &rows[0].returnCode, OCI_DEFAULT),
            OCI_SUCCESS);
  ASSERT_EQ(OCIDefineArrayOfStruct(define, errhp(), sizeof(Row), sizeof(Row), sizeof(Row),
                                   sizeof(Row)),
            OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(4), OCI_NO_DATA);
  EXPECT_EQ(rows[0].id, 1);
  EXPECT_EQ(rows[0].indicator, 0);
  EXPECT_EQ(rows[0].length, 4);
  EXPECT_EQ(rows[0].returnCode, 0);
  EXPECT_EQ(rows[1].indicator, -1);
  EXPECT_EQ(rows[1].returnCode, 1405);
  EXPECT_EQ(rows[2].id, 3);
  EXPECT_EQ(static_cast<unsigned char>(rows[3].pad[0]), 0xABu);
  EXPECT_EQ(static_cast<unsigned>(rows[3].id), 0xABABABABu) << "no row, no byte";
  EXPECT_EQ(static_cast<unsigned char>(rows[0].pad[5]), 0xABu);
}

TEST_F(FetchTest, ASoftDefineGivesAnExecutedStatementNewBuffers) {
  Statement stmt = series(3);
  sb4 first = 0, second = 0;
  OCIDefine *define = nullptr;
  const auto call = [&](sb4 *value, sb4 size, ub4 mode) {
    return OCIDefineByPos(stmt.handle(), &define, errhp(), 1, value, size, SQLT_INT,
                          nullptr, nullptr, nullptr, mode);
  };
  ASSERT_EQ(call(&first, 4, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(call(&second, 4, OCI_DEFINE_SOFT), OCI_ERROR) << "not executed yet";
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(call(&second, 8, OCI_DEFINE_SOFT), OCI_ERROR) << "another size";
  EXPECT_EQ(call(&second, 4, OCI_DEFINE_SOFT), OCI_SUCCESS);
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 2);
  EXPECT_EQ(call(&second, 4, 4), OCI_ERROR) << "an unknown mode";
}

TEST_F(FetchTest, ADefineInTheMiddleOfABatchTakesEffect) {
  Statement stmt = series(20);
  stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, 10);
  sb4 number = 0;
  stmt.define(1, number);
  ASSERT_EQ(stmt.execute(1), OCI_SUCCESS);
  TextBuffer<16> buffer;
  stmt.define(1, buffer, SQLT_STR);
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS);
  EXPECT_EQ(buffer.digits(), "2");
  EXPECT_EQ(number, 1);
}

TEST_F(FetchTest, APortalIsGoneAfterACommit) {
  Statement stmt = series(20);
  sb4 value = 0;
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  commit();
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  expectError(0, "does not exist");
  EXPECT_EQ(serverState(), "34000");
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 1);
}

TEST_F(FetchTest, ADeclaredCursorGoesOnAfterACommit) {
  Statement stmt = series(20);
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, 1);
  sb4 value = 0;
  stmt.define(1, value);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  commit();
  EXPECT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value, 2);
}

/// A long result by arrays arrives whole on both roads.
class LongFetchTest : public FetchTest, public testing::WithParamInterface<ub4> {};

TEST_P(LongFetchTest, EveryRowArrivesOnce) {
  constexpr sb4 kRows = 200'000;
  Statement stmt =
      statement("SELECT g, 'row ' || g || '" + dressed("") +
                "' FROM generate_series(1, " + std::to_string(kRows) + ") g");
  stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, GetParam());
  std::vector<sb4> ids(1000);
  const auto room = bytes<std::size_t>(24);
  std::vector<char> names(1000 * room);
  std::vector<ub2> lengths(1000);
  stmt.define(1, ids.data(), sizeof ids[0], SQLT_INT);
  stmt.define(2, names.data(), static_cast<sb4>(room), SQLT_STR, nullptr, lengths.data());
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  sb4 next = 1;
  sword status;
  do {
    status = stmt.fetch(1000);
    ASSERT_TRUE(status == OCI_SUCCESS || status == OCI_NO_DATA) << errorText();
    for (ub4 i = 0; i < stmt.attribute(OCI_ATTR_ROWS_FETCHED); ++i, ++next) {
      ASSERT_EQ(ids[i], next);
      ASSERT_EQ(dressed("row " + std::to_string(next)),
                decodedUpToEnd(names.data() + i * room));
    }
  } while (status == OCI_SUCCESS);
  EXPECT_EQ(next, kRows + 1);
}

INSTANTIATE_TEST_SUITE_P(Roads, LongFetchTest, testing::Values(1u, 2u),
                         [](const auto &road) {
                           return road.param == 1 ? "Declared" : "Portal";
                         });

TEST_F(FetchTest, LargeObjectNumbersArriveInLocators) {
  // The environment lets go of a locator without freeing it.
  static OCILobLocator *kept;
  void *made = nullptr;
  ASSERT_EQ(OCIDescriptorAlloc(env(), &made, OCI_DTYPE_LOB, 0, nullptr), OCI_SUCCESS);
  auto *locator = kept = static_cast<OCILobLocator *>(made);
  Statement stmt =
      statement("SELECT * FROM (VALUES (4294967295::oid), (5), (NULL), (7)) v (o)");
  sb2 indicator = 0;
  stmt.define(1, &locator, sizeof locator, SQLT_BLOB, &indicator);
  EXPECT_EQ(stmt.execute(1), OCI_SUCCESS) << errorText();
  EXPECT_EQ(locator->loOid, 4294967295u);

  // What is no locator is refused, and the row behind it arrives.
  locator = reinterpret_cast<OCILobLocator *>(errhp());
  EXPECT_EQ(stmt.fetch(), OCI_ERROR);
  expectError(1733);
  locator = kept;
  EXPECT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(indicator, -1);
  EXPECT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(locator->loOid, 7u);
}

}  // namespace
}  // namespace zev::test
