/// Every pair of column type and external type, fetched from the server row by row, with
/// prefetching and as an array, against the conversion model.
#include <algorithm>
#include <cstring>
#include <optional>

#include "tests/integration/support/statement_fixture.h"
#include "tests/unit/types/model/outcome.h"
#include "tests/unit/types/model/pairs.h"
#include "zevoci/string_value.h"

namespace zev::test {
namespace {

using zevtest::model::Call;
using zevtest::model::Outcome;
using zevtest::model::Pair;

/// Columns of one server type; "NULL" among the values is SQL NULL.
struct Column {
  Oid oid;
  const char *name;
  const char *type;
  std::vector<const char *> values;
};

void PrintTo(const Column &column, std::ostream *out) {
  *out << column.name;
}

// clang-format off
const Column kColumns[] = {
    {17,   "Bytea",   "bytea",   {R"('\xDEAD')", "'abc'", R"('\x')", "NULL", R"('\x00ff10203040506070')", R"('\x61')"}},
    {18,   "Char",    "\"char\"", {"'A'", "'7'", "NULL", "''", "'-'", "'1'"}},
    {20,   "Int8",    "int8",    {"1", "-5", "300", "NULL", "9223372036854775807", "-9223372036854775808", "0", "123"}},
    {21,   "Int2",    "int2",    {"1", "-5", "300", "NULL", "32767", "-32768", "0", "123"}},
    {23,   "Int4",    "int4",    {"1", "-5", "70000", "NULL", "2147483647", "-2147483648", "0", "123"}},
    {25,   "Text",    "text",    {"'abc'", "'12.5'", "''", "NULL", R"('\xDEAD')", R"('a\9')", "'-5'", "'0.1'", "'a long text, longer than all buffers'", "'300'"}},
    {700,  "Float4",  "float4",  {"1.5", "-2.25", "0.1", "NULL", "1e10", "40000", "'NaN'", "3"}},
    {701,  "Float8",  "float8",  {"1.5", "-2.25", "0.1", "NULL", "1e300", "40000.125", "'NaN'", "12345678.25"}},
    {1042, "Bpchar",  "char(6)", {"'abc'", "'12'", "NULL", "''", "'abcdef'", "'1.5'"}},
    {1043, "Varchar", "varchar", {"'abc'", "'12.5'", "''", "NULL", R"('\xDEAD')", "'7'"}},
    {1700, "Numeric", "numeric", {"1.50", "-0.5", "123.45", "NULL", "100", "'NaN'", "99999999999999999999", "0.001", "0", "-7"}},
};
// clang-format on

/// Pairs that no result column of this server can bring about: a child statement takes
/// the name of a cursor itself, and a type that is called raw has another number here.
const Oid kRowsOfOtherServers[] = {1790, 12487};

std::vector<ub4> sizesOf(ub2 dty) {
  switch (dty) {
    case SQLT_INT:
    case SQLT_UIN:
      return {1, 2, 4, 8};
    case SQLT_FLT:
      return {4, 8};
    case SQLT_BFLOAT:
      return {4};
    case SQLT_BDOUBLE:
      return {8};
    case SQLT_NUM:
    case SQLT_VNU:
      return {22};
    case SQLT_VST:
      return {sizeof(OCIString *)};
    default:
      return {30, 5, 2};
  }
}

/// A NUL of these may stand one byte behind the buffer.
bool endsInNul(ub2 dty) {
  return dty == SQLT_STR || dty == SQLT_AVC;
}

constexpr ub4 kStringSize = 6;
constexpr char kUntouched = zevtest::model::kUntouched;

/// The program's buffers for some rows of one column.
class Buffers {
 public:
  Buffers(ub2 dty, ub4 size, std::size_t rows)
      : dty_(dty),
        size_(size),
        bytes_(rows * size + (endsInNul(dty) ? 1 : 0), kUntouched),
        texts_(rows, std::string(kStringSize + 1, kUntouched)),
        strings_(rows),
        indicators_(rows, 0),
        lengths_(rows, 0),
        returnCodes_(rows, 0) {
    bytes_.shrink_to_fit();
    for (std::size_t row = 0; row < rows; ++row) {
      strings_[row] = {kStringSize, 0, reinterpret_cast<OraText *>(texts_[row].data())};
      pointers_.push_back(&strings_[row]);
    }
  }

  void *values() {
    return dty_ == SQLT_VST ? static_cast<void *>(pointers_.data()) : bytes_.data();
  }
  sb2 *indicators() { return indicators_.data(); }
  ub2 *lengths() { return lengths_.data(); }
  ub2 *returnCodes() { return returnCodes_.data(); }

  sb2 indicator(std::size_t row) const { return indicators_[row]; }
  ub2 length(std::size_t row) const { return lengths_[row]; }
  ub2 returnCode(std::size_t row) const { return returnCodes_[row]; }
  std::string bytes() const { return {bytes_.begin(), bytes_.end()}; }
  const std::string &text(std::size_t row) const { return texts_[row]; }
  ub4 textLength(std::size_t row) const { return strings_[row].length; }

  /// What the model writes for one row, on top of `image`.
  void overlay(std::string &image, std::size_t row, const Outcome &expected) const {
    const std::size_t end = size_ + (endsInNul(dty_) ? 1 : 0);
    for (std::size_t i = 0; i < std::min(end, expected.target.size()); ++i) {
      if (expected.target[i] != kUntouched) image[row * size_ + i] = expected.target[i];
    }
  }

 private:
  ub2 dty_;
  ub4 size_;
  std::vector<char> bytes_;
  std::vector<std::string> texts_;
  std::vector<OCIString> strings_;
  std::vector<OCIString *> pointers_;
  std::vector<sb2> indicators_;
  std::vector<ub2> lengths_;
  std::vector<ub2> returnCodes_;
};

class MatrixFetchTest : public StatementFixture,
                        public testing::WithParamInterface<Column> {
 protected:
  /// Values in rows, in order.
  std::string selectAll() const {
    std::string rows;
    for (std::size_t i = 0; i < GetParam().values.size(); ++i) {
      rows += (i ? ", (" : "(") + std::to_string(i) + ", " + literal(i) + ")";
    }
    return "SELECT v FROM (VALUES " + rows + ") AS t(n, v) ORDER BY n";
  }

  std::string literal(std::size_t row) const {
    return std::string("CAST(") + GetParam().values[row] + " AS " + GetParam().type + ")";
  }

  bool isNull(std::size_t row) const {
    return std::strcmp(GetParam().values[row], "NULL") == 0;
  }

  std::size_t rows() const { return GetParam().values.size(); }

  /// From now on empty text is a value of its own.
  void tellEmptyTextFromNull() {
    ub1 off = 4;
    ASSERT_EQ(
        OCIAttrSet(env(), OCI_HTYPE_ENV, &off, sizeof off, ZEVOCI_ATTR_VARCHARS, errhp()),
        OCI_SUCCESS);
    oracleVarchars_ = false;
  }

  /// The server's own texts of the values.
  const std::vector<std::string> &texts() {
    for (std::size_t i = texts_.size(); i < rows(); ++i) {
      texts_.push_back(query("SELECT " + literal(i)));
    }
    return texts_;
  }

  Outcome expected(ub2 dty, ub4 size, std::size_t row, bool indicator) {
    Call call{.oid = GetParam().oid,
              .dty = dty,
              .value = texts()[row],
              .cap = size,
              .indicator = indicator,
              .env = {.oracleVarchars = oracleVarchars_},
              .stringSize = kStringSize};
    if (isNull(row)) {
      Outcome null;
      null.indicator = indicator ? -1 : 0;
      null.returnCode = 1405;
      null.length = size;
      null.text.assign(kStringSize, kUntouched);
      return null;
    }
    const auto predicted = zevtest::model::predict(call);
    EXPECT_TRUE(predicted.has_value());
    return predicted.value_or(Outcome{});
  }

  sword define(Statement &stmt, ub2 dty, ub4 size, Buffers &buffers, bool indicator) {
    return stmt.define(1, buffers.values(), static_cast<sb4>(size), dty,
                       indicator ? buffers.indicators() : nullptr, buffers.lengths(),
                       buffers.returnCodes());
  }

  static sword statusOf(const Outcome &o) {
    return o.result == 1 ? OCI_SUCCESS_WITH_INFO : o.result;
  }

  void expectRow(const Buffers &buffers, ub2 dty, std::size_t at, const Outcome &e) {
    EXPECT_EQ(buffers.indicator(at), e.indicator);
    EXPECT_EQ(buffers.returnCode(at), e.returnCode);
    if (e.length) {
      EXPECT_EQ(buffers.length(at), static_cast<ub2>(*e.length));
    }
    if (dty != SQLT_VST) return;
    EXPECT_EQ(buffers.text(at).substr(0, kStringSize), e.text.substr(0, kStringSize));
    EXPECT_EQ(buffers.textLength(at), e.textLength.value_or(0));
  }

  /// Fetches one row at a time; a refused row does not keep the next from coming.
  void fetchSingly(ub2 dty, ub4 size, bool indicator, ub4 prefetch) {
    Buffers buffers(dty, size, 1);
    Statement stmt = statement(selectAll());
    if (prefetch) stmt.setAttribute(OCI_ATTR_PREFETCH_ROWS, prefetch);
    ASSERT_EQ(define(stmt, dty, size, buffers, indicator), OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(0), OCI_SUCCESS) << errorText();
    for (std::size_t row = 0; row < rows(); ++row) {
      SCOPED_TRACE("row " + std::to_string(row) + ": " + GetParam().values[row]);
      buffers = Buffers(dty, size, 1);
      ASSERT_EQ(define(stmt, dty, size, buffers, indicator), OCI_SUCCESS);
      const Outcome e = expected(dty, size, row, indicator);
      EXPECT_EQ(stmt.fetch(), statusOf(e)) << errorText();
      const std::vector<sb4> recorded = codes();
      EXPECT_EQ(recorded.empty() ? 0 : recorded.back(), e.record);
      std::string image(buffers.bytes().size(), kUntouched);
      buffers.overlay(image, 0, e);
      if (dty != SQLT_VST) {
        EXPECT_EQ(buffers.bytes(), image);
      }
      expectRow(buffers, dty, 0, e);
    }
    EXPECT_EQ(stmt.fetch(), OCI_NO_DATA);
  }

  /// Fetches all rows at once; the last one decides the status.
  void fetchArray(ub2 dty, ub4 size, ub4 cursorStrategy) {
    Buffers buffers(dty, size, rows());
    Statement stmt = statement(selectAll());
    stmt.setAttribute(ZEVOCI_ATTR_CURSOR_STRATEGY, cursorStrategy);
    ASSERT_EQ(define(stmt, dty, size, buffers, true), OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(0), OCI_SUCCESS) << errorText();
    const Outcome last = expected(dty, size, rows() - 1, true);
    EXPECT_EQ(stmt.fetch(static_cast<ub4>(rows())), statusOf(last)) << errorText();
    std::string image(buffers.bytes().size(), kUntouched);
    for (std::size_t row = 0; row < rows(); ++row) {
      SCOPED_TRACE("array row " + std::to_string(row) + ": " + GetParam().values[row]);
      const Outcome e = expected(dty, size, row, true);
      buffers.overlay(image, row, e);
      expectRow(buffers, dty, row, e);
    }
    if (dty != SQLT_VST) {
      EXPECT_EQ(buffers.bytes(), image);
    }
    EXPECT_EQ(stmt.attribute(OCI_ATTR_ROWS_FETCHED), rows());
  }

  /// Runs `work` with each external type of the row in each size.
  template <class Work>
  void forEachTarget(const Work &work) {
    for (const Pair &pair : zevtest::model::modelledPairs()) {
      if (pair.oid != GetParam().oid) continue;
      for (const ub4 size : sizesOf(pair.dty)) {
        SCOPED_TRACE(zevtest::model::nameOf(pair) + " size " + std::to_string(size));
        work(pair.dty, size);
      }
    }
  }

 private:
  std::vector<std::string> texts_;
  bool oracleVarchars_ = true;
};

TEST_P(MatrixFetchTest, SingleRows) {
  forEachTarget([&](ub2 dty, ub4 size) { fetchSingly(dty, size, true, 0); });
}

TEST_P(MatrixFetchTest, SingleRowsWithoutAnIndicator) {
  forEachTarget([&](ub2 dty, ub4 size) { fetchSingly(dty, size, false, 0); });
}

TEST_P(MatrixFetchTest, SingleRowsWhileEmptyTextIsNotNull) {
  tellEmptyTextFromNull();
  forEachTarget([&](ub2 dty, ub4 size) { fetchSingly(dty, size, true, 0); });
}

TEST_P(MatrixFetchTest, PrefetchedRows) {
  forEachTarget([&](ub2 dty, ub4 size) { fetchSingly(dty, size, true, 3); });
}

TEST_P(MatrixFetchTest, AnArrayOfAPortal) {
  forEachTarget([&](ub2 dty, ub4 size) { fetchArray(dty, size, 2); });
}

TEST_P(MatrixFetchTest, AnArrayOfADeclaredCursor) {
  forEachTarget([&](ub2 dty, ub4 size) { fetchArray(dty, size, 1); });
}

INSTANTIATE_TEST_SUITE_P(Columns, MatrixFetchTest, testing::ValuesIn(kColumns),
                         [](const auto &column) { return column.param.name; });

TEST(MatrixFetch, EveryRowOfTheMatrixHasAColumn) {
  for (const Pair &pair : zevtest::model::modelledPairs()) {
    const bool here = std::any_of(std::begin(kColumns), std::end(kColumns),
                                  [&](const Column &c) { return c.oid == pair.oid; });
    const bool elsewhere = std::count(std::begin(kRowsOfOtherServers),
                                      std::end(kRowsOfOtherServers), pair.oid) != 0;
    EXPECT_NE(here, elsewhere) << zevtest::model::nameOf(pair);
  }
}

}  // namespace
}  // namespace zev::test
