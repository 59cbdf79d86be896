/// Every bind pair into the server, through the types that the library declares and
/// through those that the server described, against the conversion model: what the server
/// reads in the model's bytes it must read in the library's.
#include <algorithm>

#include "tests/integration/support/statement_fixture.h"
#include "tests/server/address.h"
#include "tests/unit/types/model/bind_model.h"
#include "tests/unit/types/model/pairs.h"
#include "tests/unit/types/model/texts.h"
#include "zevoci/string_value.h"

namespace zev::test {
namespace {

using zevtest::model::BindCall;
using zevtest::model::BindOutcome;
using zevtest::model::native;
using zevtest::model::nativeDouble;
using zevtest::model::nativeFloat;

constexpr const char *kNull = "NULL";

/// A server type, and an expression that shows a value of it.
struct Shown {
  Oid oid;
  const char *type;
  const char *before;
  const char *after;
};
const Shown kShown[] = {
    {17, "bytea", "encode(", ", 'hex')"},
    {18, "\"char\"", "'<' || ", "::text || '>'"},
    {20, "int8", "", "::text"},
    {21, "int2", "", "::text"},
    {23, "int4", "", "::text"},
    {25, "text", "'<' || ", " || '>'"},
    {700, "float4", "", "::text"},
    {701, "float8", "", "::text"},
    {1043, "varchar", "'<' || ", " || '>'"},
    {1700, "numeric", "", "::text"},
    {1790, "refcursor", "", "::text"},
};

const Shown &shownOf(Oid oid) {
  return *std::find_if(std::begin(kShown), std::end(kShown),
                       [oid](const Shown &s) { return s.oid == oid; });
}

std::string show(Oid oid, const std::string &value) {
  const Shown &s = shownOf(oid);
  return s.before + value + s.after;
}

/// A program's buffer and the size it gives for it.
struct Sample {
  std::string bytes;
  sb4 size;
};

std::vector<Sample> integers() {
  std::vector<Sample> all;
  for (const long long value : {0LL, 1LL, -5LL, 65LL, 200LL, 40000LL, 4294967301LL}) {
    for (const sb4 size : {1, 2, 3, 4, 8}) all.push_back({native(value, 8), size});
  }
  return all;
}

std::vector<Sample> floats() {
  std::vector<Sample> all;
  for (const double value : {0.0, 1.5, -2.25, 0.1, 1e300}) {
    for (const sb4 size : {2, 4, 6, 8}) all.push_back({nativeDouble(value), size});
    all.push_back({nativeFloat(value == 1e300 ? 1e30 : value), 4});
  }
  return all;
}

std::vector<Sample> numbers(bool withLength) {
  std::vector<Sample> all;
  for (const char *text : {"0", "1", "-1", "100", "0.5", "123.45", "-123.45", "0.001",
                           "99999999999999999999", "-1e-20", "1e100", "1000000"}) {
    std::string bytes =
        withLength ? *zevtest::model::toVarnum(text) : *zevtest::model::toNumber(text);
    bytes.resize(22, '\0');
    for (const sb4 size : {21, 22}) all.push_back({bytes, size});
  }
  return all;
}

std::vector<Sample> prefixed(int prefix) {
  std::vector<Sample> all;
  for (const int length : {0, 1, 3, 8, 300}) {
    all.push_back({native(length, prefix) + "ab  cd  " + std::string(300, 'x'), 308});
  }
  return all;
}

/// Samples of an external type: telling buffers, refused ones among them.
std::vector<Sample> samplesOf(ub2 dty) {
  using namespace std::string_literals;
  switch (dty) {
    case SQLT_INT:
    case SQLT_UIN:
      return integers();
    case SQLT_FLT:
    case SQLT_BFLOAT:
    case SQLT_BDOUBLE:
      return floats();
    case SQLT_NUM:
    case SQLT_VNU:
      return numbers(dty == SQLT_VNU);
    case SQLT_VCS:
    case SQLT_VBI:
      return prefixed(2);
    case SQLT_LVC:
    case SQLT_LVB:
      return prefixed(4);
    case SQLT_BIN:
    case SQLT_LBI:
      return {{"\0\xFF\x10 "s, 4}, {"a", 1}, {"abc  ", 5}};
    case SQLT_VST:
      return {{"", 8}, {"abc", 8}, {"a  ", 8}, {std::string(5000, 's'), 8}};
    case SQLT_STR:
    case SQLT_AVC:
      return {{"abc\0"s, 4},
              {"abc\0zz"s, 6},
              {"abc", 3},
              {"\0\0"s, 2},
              {"a\0\0\0"s, 4},
              {"\0zz"s, 3},
              {"x", 1},
              {std::string(3999, 't') + '\0', 4000},
              {std::string(4500, 't') + '\0', 4501}};
    default:
      return {{"abc", 3}, {"abc  ", 5}, {"   ", 3},
              {"a", 1},   {"", 0},      {std::string(5000, 't'), 5000}};
  }
}

struct Pair {
  ub2 dty;
  Oid oid;
};

std::string nameOf(const Pair &pair) {
  const std::string name = zevtest::model::nameOf({pair.oid, pair.dty});
  const auto middle = name.find("_to_");
  return name.substr(middle + 4) + "_to_" + name.substr(0, middle);
}
void PrintTo(const Pair &pair, std::ostream *out) {
  *out << nameOf(pair);
}

const Pair kPairs[] = {
    {SQLT_CHR, 1043},    {SQLT_NUM, 1700}, {SQLT_INT, 18},   {SQLT_INT, 20},
    {SQLT_INT, 21},      {SQLT_INT, 23},   {SQLT_INT, 1700}, {SQLT_FLT, 700},
    {SQLT_FLT, 701},     {SQLT_STR, 25},   {SQLT_STR, 1043}, {SQLT_VNU, 1700},
    {SQLT_LNG, 1043},    {SQLT_VCS, 1043}, {SQLT_VBI, 17},   {SQLT_BFLOAT, 700},
    {SQLT_BDOUBLE, 701}, {SQLT_BIN, 17},   {SQLT_LBI, 17},   {SQLT_UIN, 18},
    {SQLT_UIN, 20},      {SQLT_UIN, 21},   {SQLT_UIN, 23},   {SQLT_LVC, 1043},
    {SQLT_LVB, 17},      {SQLT_AFC, 1043}, {SQLT_AVC, 1043}, {SQLT_VST, 1043},
};

/// Pairs that only a described statement brings about: no bind declares these types.
const Pair kNeverDeclared[] = {
    {SQLT_INT, 18}, {SQLT_INT, 1700}, {SQLT_FLT, 700}, {SQLT_STR, 25}, {SQLT_UIN, 18},
};

/// The type that a bind of this size declares.
Oid declaredFor(ub2 dty, sb4 size) {
  switch (dty) {
    case SQLT_INT:
    case SQLT_UIN:
      return size == 2 ? 21 : size == 8 ? 20 : 23;
    case SQLT_FLT:
    case SQLT_BDOUBLE:
      return 701;
    case SQLT_BFLOAT:
      return 700;
    case SQLT_NUM:
    case SQLT_VNU:
      return 1700;
    case SQLT_BIN:
    case SQLT_LBI:
    case SQLT_VBI:
    case SQLT_LVB:
      return 17;
    default:
      return 1043;
  }
}

class MatrixBindTest : public StatementFixture, public testing::WithParamInterface<Pair> {
 protected:
  void SetUp() override {
    StatementFixture::SetUp();
    plain_.reset(PQconnectdb(testServer().conninfo().c_str()));
    ASSERT_EQ(PQstatus(plain_.get()), CONNECTION_OK);
  }

  /// From now on empty text is a value of its own.
  void tellEmptyTextFromNull() {
    ub1 off = 4;
    ASSERT_EQ(
        OCIAttrSet(env(), OCI_HTYPE_ENV, &off, sizeof off, ZEVOCI_ATTR_VARCHARS, errhp()),
        OCI_SUCCESS);
    oracleVarchars_ = false;
  }

  BindOutcome expected(const Sample &sample) {
    const BindCall call{.dty = GetParam().dty,
                        .oid = GetParam().oid,
                        .bytes = sample.bytes,
                        .length = sample.size,
                        .env = {.oracleVarchars = oracleVarchars_}};
    return *zevtest::model::predictBind(call);
  }

  /// What the server reads in a parameter of the library's own making.
  std::string readByServer(const BindOutcome &e) {
    if (!e.bytes) return kNull;
    const Oid oid = GetParam().oid;
    const char *value = e.bytes->data();
    const int length = static_cast<int>(e.bytes->size());
    const int format = e.format;
    const std::string sql = "SELECT " + show(oid, "$1");
    const std::unique_ptr<PGresult, Clear> result(
        PQexecParams(plain_.get(), sql.c_str(), 1, &oid, &value, &length, &format, 0));
    EXPECT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK)
        << PQerrorMessage(plain_.get());
    return PQntuples(result.get()) ? PQgetvalue(result.get(), 0, 0) : "";
  }

  /// A sample in memory of exactly its size, with a string around it where one is meant.
  struct Buffer {
    Buffer(ub2 dty, const Sample &sample)
        : isString(dty == SQLT_VST), bytes(sample.bytes.begin(), sample.bytes.end()) {
      bytes.reserve(1);
      const auto length = static_cast<ub4>(bytes.size());
      string = {length, length, reinterpret_cast<OraText *>(bytes.data())};
    }
    void *address() {
      return isString ? static_cast<void *>(&pointer) : static_cast<void *>(bytes.data());
    }
    bool isString;
    std::vector<char> bytes;
    OCIString string;
    OCIString *pointer = &string;
  };

  sword bindTo(Statement &stmt, Buffer &buffer, const Sample &sample, sb2 *indicator) {
    return bindByPos(stmt, errhp(), 1, buffer.address(), sample.size, GetParam().dty,
                     indicator);
  }

  /// Inserts a sample; what the column then shows.
  void insertsAsDeclared(const Sample &sample, sb2 indicator) {
    const Shown &shown = shownOf(GetParam().oid);
    const BindOutcome e = indicator == -1 ? BindOutcome{} : expected(sample);
    Buffer buffer(GetParam().dty, sample);
    Statement insert = statement("INSERT INTO " + column() + " VALUES (:1)");
    ASSERT_EQ(bindTo(insert, buffer, sample, &indicator), OCI_SUCCESS) << errorText();
    const sword status = insert.execute(1, OCI_COMMIT_ON_SUCCESS);
    if (e.result != 0) return expectRefused(status, e);
    ASSERT_EQ(status, OCI_SUCCESS) << errorText();
    EXPECT_EQ(query("DELETE FROM " + column() + " RETURNING " + show(shown.oid, "c")),
              readByServer(e));
  }

  /// Selects a sample as an expression whose parameter the server has described.
  void selectsAsDescribed(const Sample &sample, sb2 indicator) {
    const Shown &shown = shownOf(GetParam().oid);
    const BindOutcome e = indicator == -1 ? BindOutcome{} : expected(sample);
    Buffer buffer(GetParam().dty, sample);
    Statement select =
        statement("SELECT " + show(shown.oid, std::string("(:1::") + shown.type + ")"));
    ASSERT_EQ(select.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS) << errorText();
    ASSERT_EQ(bindTo(select, buffer, sample, &indicator), OCI_SUCCESS) << errorText();
    TextBuffer<20000> text;
    ASSERT_EQ(select.define(1, text), OCI_SUCCESS);
    const sword status = select.execute();
    if (e.result != 0) return expectRefused(status, e);
    ASSERT_EQ(status, OCI_SUCCESS) << errorText();
    EXPECT_EQ(text.indicator == -1 ? kNull : text.text(), readByServer(e));
  }

  /// The execute is given up with the record of the converter, if it makes one.
  void expectRefused(sword status, const BindOutcome &e) {
    EXPECT_EQ(status, OCI_ERROR);
    if (e.record != 0) {
      expectError(e.record);
    }
    rollback();
  }

  /// A table with one column "c" of the pair's type.
  std::string column() const { return table() + "_column"; }

  void createColumn() {
    query("DROP TABLE IF EXISTS " + column());
    query("CREATE TABLE " + column() + " (c " + shownOf(GetParam().oid).type + ")");
  }

  template <class Work>
  void forEachSample(const Work &work) {
    for (const Sample &sample : samplesOf(GetParam().dty)) {
      if (sample.size == 0 && oracleVarchars_) continue;
      SCOPED_TRACE("\"" + sample.bytes.substr(0, 20) + "\" size " +
                   std::to_string(sample.size));
      work(sample, sb2{0});
    }
    SCOPED_TRACE("indicator -1");
    work(samplesOf(GetParam().dty)[1], sb2{-1});
  }

 private:
  struct Finish {
    void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
  };
  struct Clear {
    void operator()(PGresult *result) const noexcept { PQclear(result); }
  };
  std::unique_ptr<PGconn, Finish> plain_;
  bool oracleVarchars_ = true;
};

class DeclaredBindTest : public MatrixBindTest {};
class DescribedBindTest : public MatrixBindTest {};

TEST_P(DeclaredBindTest, TheColumnHoldsWhatTheModelSends) {
  createColumn();
  int inserted = 0;
  forEachSample([&](const Sample &sample, sb2 indicator) {
    if (declaredFor(GetParam().dty, sample.size) != GetParam().oid) return;
    ++inserted;
    insertsAsDeclared(sample, indicator);
  });
  EXPECT_GT(inserted, 0);
  query("DROP TABLE " + column());
}

TEST_P(DescribedBindTest, TheServerReadsWhatTheModelSends) {
  forEachSample([&](const Sample &sample, sb2 indicator) {
    selectsAsDescribed(sample, indicator);
  });
}

TEST_P(DescribedBindTest, TheSameWhileEmptyTextIsNotNull) {
  tellEmptyTextFromNull();
  forEachSample([&](const Sample &sample, sb2 indicator) {
    selectsAsDescribed(sample, indicator);
  });
}

std::vector<Pair> declaredPairs() {
  std::vector<Pair> pairs;
  for (const Pair &pair : kPairs) {
    const bool isDeclared = std::none_of(
        std::begin(kNeverDeclared), std::end(kNeverDeclared),
        [&](const Pair &p) { return p.dty == pair.dty && p.oid == pair.oid; });
    if (isDeclared) pairs.push_back(pair);
  }
  return pairs;
}

INSTANTIATE_TEST_SUITE_P(Binds, DeclaredBindTest, testing::ValuesIn(declaredPairs()),
                         [](const auto &pair) { return nameOf(pair.param); });
INSTANTIATE_TEST_SUITE_P(Binds, DescribedBindTest, testing::ValuesIn(kPairs),
                         [](const auto &pair) { return nameOf(pair.param); });

using CursorBindTest = StatementFixture;

TEST_F(CursorBindTest, ABoundCursorSendsNothing) {
  Statement select = statement("SELECT (:1::refcursor)::text");
  ASSERT_EQ(select.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS) << errorText();
  Statement child(env(), errhp(), svchp());
  OCIStmt *handle = child.handle();
  sb2 indicator = 0;
  ASSERT_EQ(bindByPos(select, errhp(), 1, &handle, sizeof handle, SQLT_RSET, &indicator),
            OCI_SUCCESS);
  TextBuffer<> text;
  ASSERT_EQ(select.define(1, text), OCI_SUCCESS);
  EXPECT_EQ(select.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(text.indicator, -1);
}

}  // namespace
}  // namespace zev::test
