#include "stmt/fill.h"

#include <cstring>

#include "core/owned.h"
#include "stmt_fixture.h"

namespace zevtest {
namespace {

constexpr Oid kText = 25;
constexpr Oid kInt4 = 23;
constexpr Oid kBytea = 17;
constexpr Oid kPoint = 600;

/// A result of columns in text form, made without a server; a null cell is SQL NULL.
zev::PgResult makeResult(const std::vector<Oid> &columns,
                         const std::vector<std::vector<const char *>> &rows) {
  zev::PgResult result(PQmakeEmptyPGresult(nullptr, PGRES_TUPLES_OK));
  std::vector<PGresAttDesc> attributes;
  char name[] = "c";
  for (const Oid type : columns) attributes.push_back({name, 0, 0, 0, type, -1, -1});
  EXPECT_TRUE(PQsetResultAttrs(result.get(), static_cast<int>(attributes.size()),
                               attributes.data()));
  for (int row = 0; row < static_cast<int>(rows.size()); ++row) {
    for (int field = 0; field < static_cast<int>(columns.size()); ++field) {
      const char *cell =
          rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(field)];
      const std::string value = cell ? cell : "";
      std::vector<char> bytes(value.begin(), value.end());
      bytes.push_back('\0');
      EXPECT_TRUE(PQsetvalue(result.get(), row, field, bytes.data(),
                             cell ? static_cast<int>(value.size()) : -1));
    }
  }
  return result;
}

/// The buffers of one column for up to four rows, and their define.
struct Column {
  static constexpr ub4 kWidth = 8;
  explicit Column(ub4 position, ub2 dty = SQLT_CHR, ub4 size = kWidth) {
    std::memset(values, '~', sizeof values);
    define.position = position;
    define.valuep = values;
    define.valueSize = size;
    define.dty = dty;
    define.indp = indicators;
    define.alenp = lengths;
    define.rcodep = codes;
  }
  std::string value(int row) const { return {values[row], kWidth}; }

  OCIDefine define{};
  char values[4][kWidth];
  sb2 indicators[4] = {77, 77, 77, 77};
  ub2 lengths[4] = {77, 77, 77, 77};
  ub2 codes[4] = {77, 77, 77, 77};
};

class Fill : public testing::Test {
 protected:
  ~Fill() override { list_free(defines); }
  void add(Column &column) { defines = lappend(defines, &column.define); }
  sword fill(const zev::PgResult &result, ub4 rows) {
    return fill_define_buffers(session.errhp, defines, result.get(), rows, &position,
                               &fetched);
  }

  Session session;
  List *defines = nullptr;
  ub4 position = 0;
  ub4 fetched = 99;
};

TEST_F(Fill, FindsTheDefineOfAColumn) {
  Column second(2), first(1);
  add(second);
  add(first);
  EXPECT_EQ(find_define(defines, 0), &first.define);
  EXPECT_EQ(find_define(defines, 1), &second.define);
  EXPECT_EQ(find_define(defines, 2), nullptr);
  EXPECT_EQ(find_define(nullptr, 0), nullptr);
}

TEST_F(Fill, NothingToFillIs24374OrNoData) {
  Column column(1);
  const auto result = makeResult({kText}, {{"a"}});
  const List *none = nullptr;
  add(column);
  const struct {
    const List *defines;
    const PGresult *result;
    ub4 rows;
    ub4 *position;
  } rows[] = {{none, result.get(), 1, &position},
              {defines, nullptr, 1, &position},
              {defines, result.get(), 0, &position},
              {defines, result.get(), 1, nullptr}};
  for (const auto &row : rows) {
    EXPECT_EQ(fill_define_buffers(session.errhp, row.defines, row.result, row.rows,
                                  row.position, &fetched),
              OCI_ERROR);
    EXPECT_EQ(session.takeRecord(), 24374);
    EXPECT_EQ(fill_define_buffers_prefetch(session.errhp, row.defines, row.result,
                                           row.rows, row.position, &fetched, 0),
              OCI_NO_DATA);
    EXPECT_EQ(fill_define_buffers_2(session.errhp, row.defines, row.result, row.rows,
                                    row.position, &fetched, nullptr),
              OCI_NO_DATA);
    EXPECT_EQ(session.takeRecord(), kNoRecord);
  }
  EXPECT_EQ(column.value(0), "~~~~~~~~");
}

TEST_F(Fill, RowsComeInBatchesUntilNoneAreLeft) {
  Column column(1);
  add(column);
  const auto result = makeResult({kText}, {{"a"}, {"b"}, {"c"}});
  EXPECT_EQ(fill(result, 2), OCI_SUCCESS);
  EXPECT_EQ(fetched, 2u);
  EXPECT_EQ(position, 2u);
  EXPECT_EQ(column.values[1][0], 'b');
  EXPECT_EQ(fill(result, 2), OCI_NO_DATA);
  EXPECT_EQ(fetched, 1u);
  EXPECT_EQ(position, 3u);
  EXPECT_EQ(column.values[0][0], 'c');
  EXPECT_EQ(column.values[1][0], 'b');
  EXPECT_EQ(fill(result, 1), OCI_NO_DATA);
  EXPECT_EQ(fetched, 0u);
  EXPECT_EQ(position, 3u);
}

TEST_F(Fill, EachRowHasItsLengthIndicatorAndCode) {
  Column column(1, SQLT_CHR, 4);
  add(column);
  const auto result = makeResult({kText}, {{"ab"}, {nullptr}, {"abcdefg"}});
  EXPECT_EQ(fill(result, 4), OCI_NO_DATA);
  EXPECT_EQ(fetched, 3u);
  EXPECT_EQ(column.lengths[0], 2);
  EXPECT_EQ(column.indicators[0], 0);
  EXPECT_EQ(column.codes[0], 0);
  EXPECT_EQ(column.lengths[1], 4);  // the buffer's size
  EXPECT_EQ(column.indicators[1], -1);
  EXPECT_EQ(column.codes[1], 1405);
  EXPECT_EQ(column.lengths[2], 4);
  EXPECT_GT(column.indicators[2], 0);  // cut
  EXPECT_EQ(column.lengths[3], 77);
  EXPECT_EQ(column.indicators[3], 77);
  EXPECT_EQ(std::memcmp(column.values, "ab", 2), 0);
  EXPECT_EQ(std::memcmp(column.values[1], "abcd", 4), 0);  // row 2, four bytes a row
}

TEST_F(Fill, ANullLeavesTheBufferAndNeedsNoIndicator) {
  Column column(1);
  column.define.indp = nullptr;
  column.define.rcodep = nullptr;
  column.define.alenp = nullptr;
  add(column);
  EXPECT_EQ(fill(makeResult({kText}, {{nullptr}}), 1), OCI_SUCCESS);
  EXPECT_EQ(column.value(0), "~~~~~~~~");
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(Fill, AMissingDefineEndsTheWalk) {
  Column first(1), third(3);
  add(third);
  add(first);
  EXPECT_EQ(fill(makeResult({kText, kText, kText}, {{"a", "b", "c"}}), 1), OCI_SUCCESS);
  EXPECT_EQ(first.values[0][0], 'a');
  EXPECT_EQ(third.value(0), "~~~~~~~~");
  EXPECT_EQ(third.indicators[0], 77);
}

TEST_F(Fill, WithoutTheFirstDefineNoRowIsConsumed) {
  Column second(2);
  add(second);
  EXPECT_EQ(fill(makeResult({kText, kText}, {{"a", "b"}, {"c", "d"}}), 1), OCI_SUCCESS);
  EXPECT_EQ(fetched, 1u);  // so many were asked for
  EXPECT_EQ(position, 0u);
  EXPECT_EQ(second.value(0), "~~~~~~~~");
}

TEST_F(Fill, AResultWithoutFieldsIsSuccess) {
  Column column(1);
  add(column);
  EXPECT_EQ(fill(zev::PgResult(PQmakeEmptyPGresult(nullptr, PGRES_COMMAND_OK)), 1),
            OCI_SUCCESS);
  EXPECT_EQ(fetched, 0u);
}

TEST_F(Fill, OnlyTheLastCellDecidesTheStatus) {
  Column first(1, SQLT_INT, 1), second(2);
  add(first);
  add(second);
  EXPECT_EQ(fill(makeResult({kInt4, kText}, {{"300", "a"}, {"1", "b"}}), 2), OCI_SUCCESS);
  EXPECT_EQ(session.takeRecord(), 22053);  // what failed before is told by its record
  EXPECT_EQ(second.values[1][0], 'b');
  position = 0;
  second.define.dty = SQLT_INT;
  EXPECT_EQ(fill(makeResult({kInt4, kPoint}, {{"1", "(1,2)"}}), 1), OCI_ERROR);
}

TEST_F(Fill, ALastRowThatIsMissingHidesAFailure) {
  Column column(1, SQLT_INT, 1);
  add(column);
  const auto result = makeResult({kInt4}, {{"300"}});
  EXPECT_EQ(fill(result, 1), OCI_ERROR);
  position = 0;
  EXPECT_EQ(fill(result, 2), OCI_NO_DATA);
}

TEST_F(Fill, AnUnknownPairNamesBothClasses) {
  Column column(1, SQLT_INT, 4);
  add(column);
  EXPECT_EQ(fill(makeResult({kBytea}, {{"t"}}), 1), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 932);
  for (const char *name : {"expected BINARY", "got NUMBER"}) {
    EXPECT_NE(session.lastMessage.find(name), std::string::npos) << session.lastMessage;
  }
  position = 0;
  EXPECT_EQ(fill(makeResult({kBytea}, {{nullptr}}), 1),
            OCI_SUCCESS);  // a null needs no converter
  EXPECT_EQ(column.indicators[0], -1);
}

TEST_F(Fill, StructsStepByTheSkips) {
  struct Row {
    char value[5];
    sb2 indicator;
    ub2 length;
    ub2 code;
    double other;
  } rows[3] = {};
  Column column(1, SQLT_STR, sizeof rows[0].value);
  column.define.isStruct = 1;
  column.define.valuep = rows[0].value;
  column.define.indp = &rows[0].indicator;
  column.define.alenp = &rows[0].length;
  column.define.rcodep = &rows[0].code;
  column.define.pvskip = column.define.indskip = sizeof(Row);
  column.define.alskip = column.define.rcskip = sizeof(Row);
  add(column);
  EXPECT_EQ(fill(makeResult({kText}, {{"one"}, {nullptr}, {"six"}}), 3), OCI_SUCCESS);
  EXPECT_STREQ(rows[0].value, "one");
  EXPECT_EQ(rows[1].indicator, -1);
  EXPECT_EQ(rows[1].code, 1405);
  EXPECT_STREQ(rows[2].value, "six");
  EXPECT_EQ(rows[2].code, 0);
}

TEST_F(Fill, PrefetchDeliversTheRowAskedForIntoTheFirst) {
  Column column(1);
  add(column);
  const auto result = makeResult({kText}, {{"a"}, {"b"}, {"c"}});
  for (const ub4 row : {2u, 0u, 1u}) {
    position = 0;
    EXPECT_EQ(fill_define_buffers_prefetch(session.errhp, defines, result.get(), 1,
                                           &position, &fetched, row),
              OCI_SUCCESS);
    EXPECT_EQ(column.values[0][0], "abc"[row]);
    EXPECT_EQ(column.values[1][0], '~');
    EXPECT_EQ(fetched, 1u);
    EXPECT_EQ(position, 1u);
  }
}

TEST_F(Fill, TheVariantWithAConnectionReadsFromTheStart) {
  Column column(1);
  add(column);
  position = 1;
  const auto result = makeResult({kText}, {{"a"}, {"b"}});
  EXPECT_EQ(fill_define_buffers_2(session.errhp, defines, result.get(), 1, &position,
                                  &fetched, nullptr),
            OCI_SUCCESS);
  EXPECT_EQ(column.values[0][0], 'b');
  EXPECT_EQ(position, 2u);
}

}  // namespace
}  // namespace zevtest
