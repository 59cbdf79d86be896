/// Columns of select lists, and tables of the catalogue, as parameters.
#include "tests/integration/support/statement_fixture.h"

namespace zev::test {
namespace {

struct FreeParam {
  void operator()(OCIParam *param) const noexcept {
    OCIDescriptorFree(param, OCI_DTYPE_PARAM);
  }
};
using Param = std::unique_ptr<OCIParam, FreeParam>;

/// What a column answers.
struct Answers {
  std::string name, typeName, schema;
  ub2 type = 0;
  ub4 dataSize = 0;
  ub2 charSize = 0;
  ub1 precision = 0;
  sb1 scale = 0;
  ub1 isNull = 0, charUsed = 0;
};

class DescribeTest : public StatementFixture {
 protected:
  void SetUp() override {
    StatementFixture::SetUp();
    described_ = "described_" + table();
    query("DROP TABLE IF EXISTS " + described_);
    void *handle = nullptr;
    ASSERT_EQ(OCIHandleAlloc(env(), &handle, OCI_HTYPE_DESCRIBE, 0, nullptr),
              OCI_SUCCESS);
    dschp_ = static_cast<OCIDescribe *>(handle);
  }
  void TearDown() override {
    if (svchp()) OCITransRollback(svchp(), errhp(), OCI_DEFAULT);
    query("DROP TABLE IF EXISTS " + described_);
    StatementFixture::TearDown();
  }

  sword paramGet(const void *handle, ub4 type, ub4 pos, Param &out) {
    void *param = nullptr;
    const sword status = OCIParamGet(handle, type, errhp(), &param, pos);
    out.reset(static_cast<OCIParam *>(param));
    return status;
  }
  Param column(Statement &stmt, ub4 pos) {
    Param param;
    EXPECT_EQ(paramGet(stmt.handle(), OCI_HTYPE_STMT, pos, param), OCI_SUCCESS)
        << errorText();
    return param;
  }
  template <class T>
  T get(const Param &param, ub4 attribute) {
    T value{};
    EXPECT_EQ(
        OCIAttrGet(param.get(), OCI_DTYPE_PARAM, &value, nullptr, attribute, errhp()),
        OCI_SUCCESS)
        << attribute;
    return value;
  }
  std::string text(const Param &param, ub4 attribute) {
    OraText *value = nullptr;
    ub4 size = 77;
    EXPECT_EQ(OCIAttrGet(param.get(), OCI_DTYPE_PARAM, &value, &size, attribute, errhp()),
              OCI_SUCCESS);
    const std::string name = decoded({reinterpret_cast<char *>(value), size});
    EXPECT_EQ(decodedUpToEnd(value), name);
    return name;
  }
  Answers answers(const Param &param) {
    return {.name = text(param, OCI_ATTR_NAME),
            .typeName = text(param, OCI_ATTR_TYPE_NAME),
            .schema = text(param, OCI_ATTR_SCHEMA_NAME),
            .type = get<ub2>(param, OCI_ATTR_DATA_TYPE),
            .dataSize = get<ub4>(param, OCI_ATTR_DATA_SIZE),
            .charSize = get<ub2>(param, OCI_ATTR_CHAR_SIZE),
            .precision = get<ub1>(param, OCI_ATTR_PRECISION),
            .scale = get<sb1>(param, OCI_ATTR_SCALE),
            .isNull = get<ub1>(param, OCI_ATTR_IS_NULL),
            .charUsed = get<ub1>(param, OCI_ATTR_CHAR_USED)};
  }

  sword describe(const std::string &name, ub1 how = OCI_OTYPE_NAME, ub1 level = 0,
                 ub1 type = OCI_PTYPE_TABLE) {
    Given given(name);
    return OCIDescribeAny(svchp(), errhp(), given.data(), given.size(), how, level, type,
                          dschp_);
  }
  Param describedTable(const std::string &name) {
    EXPECT_EQ(describe(name), OCI_SUCCESS) << errorText();
    OCIParam *param = nullptr;
    EXPECT_EQ(
        OCIAttrGet(dschp_, OCI_HTYPE_DESCRIBE, &param, nullptr, OCI_ATTR_PARAM, errhp()),
        OCI_SUCCESS);
    return Param(param);
  }
  Param listOf(const Param &of) {
    return Param(get<OCIParam *>(of, OCI_ATTR_LIST_COLUMNS));
  }
  Param element(const Param &list, ub4 pos) {
    Param param;
    EXPECT_EQ(paramGet(list.get(), OCI_DTYPE_PARAM, pos, param), OCI_SUCCESS);
    return param;
  }
  const std::string &described() const { return described_; }
  OCIDescribe *dschp() const { return dschp_; }

 private:
  std::string described_;
  OCIDescribe *dschp_ = nullptr;
};

/// A column type and what it answers: in a result without rows, and in the catalogue.
struct TypeCase {
  const char *declared;
  const char *typeName;
  ub2 type;
  ub4 resultSize;
  ub2 resultChars;
  ub4 catalogueSize;
  ub2 catalogueChars;
  ub1 resultPrecision = 0;
  sb1 resultScale = 0;
  ub1 cataloguePrecision = 0;
  sb1 catalogueScale = 0;
};

// clang-format off
constexpr TypeCase kTypes[] = {
    {"numeric(10,2)", "numeric", SQLT_NUM, 22, 0, 0, 0, 10, 2, 10, 2},
    {"numeric(38,0)", "numeric", SQLT_NUM, 22, 0, 0, 0, 38, 0, 38, 0},
    {"numeric",       "numeric", SQLT_NUM, 22, 0, 0, 0, 255, -1, 0, 0},
    {"varchar(17)",   "varchar", SQLT_CHR, 17, 17, 0, 17},
    {"varchar",       "varchar", SQLT_CHR, 4000, 4000, 0, 0},
    {"char(9)",       "bpchar",  SQLT_AFC, 9, 9, 0, 9},
    {"text",          "text",    SQLT_STR, 4000, 4000, 0, 0},
    {"name",          "name",    0, 4000, 4000, 0, 0},
    {"int2",          "int2",    SQLT_INT, 2, 0, 0, 0},
    {"int4",          "int4",    SQLT_INT, 4, 0, 0, 0},
    {"int8",          "int8",    SQLT_INT, 8, 0, 0, 0},
    {"float4",        "float4",  SQLT_FLT, 4, 0, 0, 0},
    {"float8",        "float8",  SQLT_FLT, 8, 0, 0, 0},
    {"bool",          "bool",    SQLT_INT, 4, 0, 0, 0},
    {"bytea",         "bytea",   SQLT_BIN, 4000, 4000, 0, 0},
    {"date",          "date",    SQLT_ODT, 4000, 4000, 0, 0},
    {"timestamp",     "timestamp", SQLT_TIMESTAMP, 4000, 4000, 0, 0},
};
// clang-format on

TEST_F(DescribeTest, ResultAndCatalogueDescribeEveryType) {
  std::string columns, list;
  for (std::size_t i = 0; i < std::size(kTypes); ++i) {
    columns += (i ? ", c" : "c") + std::to_string(i) + " " + kTypes[i].declared +
               (i % 2 ? " NOT NULL" : "");
  }
  query("CREATE TABLE " + described() + " (" + columns + ")");
  Statement stmt = statement("SELECT * FROM " + described());
  ASSERT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS) << errorText();
  const Param all = listOf(describedTable(described()));
  for (std::size_t i = 0; i < std::size(kTypes); ++i) {
    const TypeCase &t = kTypes[i];
    SCOPED_TRACE(t.declared);
    const ub4 pos = static_cast<ub4>(i + 1);
    const Answers result = answers(column(stmt, pos));
    const Answers catalogue = answers(element(all, pos));
    for (const Answers &a : {result, catalogue}) {
      EXPECT_EQ(a.name, "c" + std::to_string(i));
      EXPECT_EQ(a.typeName, t.typeName);
      EXPECT_EQ(a.schema, "pg_catalog");
      EXPECT_EQ(a.type, t.type);
      EXPECT_EQ(a.isNull, i % 2 == 0);
    }
    EXPECT_EQ(result.charUsed, catalogue.charUsed);
    EXPECT_EQ(result.dataSize, t.resultSize);
    EXPECT_EQ(result.charSize, t.resultChars);
    EXPECT_EQ(result.precision, t.resultPrecision);
    EXPECT_EQ(result.scale, t.resultScale);
    EXPECT_EQ(catalogue.dataSize + catalogue.charSize,
              t.catalogueSize + t.catalogueChars);
    EXPECT_EQ(catalogue.precision, t.cataloguePrecision);
    EXPECT_EQ(catalogue.scale, t.catalogueScale);
  }
}

TEST_F(DescribeTest, TheServersOwnTypesAreDescribed) {
  Statement stmt = statement("SELECT oid, typname FROM pg_type");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  EXPECT_EQ(answers(column(stmt, 1)).typeName, "oid");
  EXPECT_EQ(answers(column(stmt, 2)).typeName, "name");
  EXPECT_EQ(answers(column(stmt, 2)).isNull, 0);
  EXPECT_EQ(stmt.fetch(0), OCI_SUCCESS);
}

TEST_F(DescribeTest, NamesAreThoseOfTheSelectList) {
  Statement stmt =
      statement("SELECT id AS " + dressed("other") + ", t || 'x' FROM " + table());
  ASSERT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.attribute(OCI_ATTR_PARAM_COUNT), 2u);
  EXPECT_EQ(answers(column(stmt, 1)).name, dressed("other"));
  EXPECT_EQ(answers(column(stmt, 2)).isNull, 1) << "no column stands behind it";
}

TEST_F(DescribeTest, DefinesCanFollowADescribedPortal) {
  Statement stmt = statement("SELECT 'abc'::text");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS) << errorText();
  EXPECT_EQ(answers(column(stmt, 1)).dataSize, 4000u);
  TextBuffer<8> value;
  stmt.define(1, value);
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(value.text(), "abc");
}

TEST_F(DescribeTest, SizesBeforeAndAfterRows) {
  Statement stmt =
      statement("SELECT v::varchar FROM (VALUES ('ab'), (NULL), ('abcde')) AS t (v)");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  EXPECT_EQ(answers(column(stmt, 1)).dataSize, 4000u);
  TextBuffer<8> value;
  stmt.define(1, value);
  ASSERT_EQ(stmt.fetch(1), OCI_SUCCESS);
  EXPECT_EQ(answers(column(stmt, 1)).dataSize, 2u);
  char many[3][16];
  sb2 nulls[3];
  stmt.define(1, many, sizeof many[0], SQLT_CHR, nulls);
  const sword status = stmt.fetch(2);
  ASSERT_TRUE(status == OCI_SUCCESS || status == OCI_NO_DATA);
  EXPECT_EQ(answers(column(stmt, 1)).dataSize, 5u);
  EXPECT_EQ(answers(column(stmt, 1)).charSize, 5u);
  EXPECT_EQ(answers(column(stmt, 1)).isNull, 1) << "no table stands behind the column";
}

TEST_F(DescribeTest, PrecisionIsTheSameBeforeAndAfterTheFirstExecute) {
  Statement stmt = statement("SELECT 1::numeric(12,3), 1::numeric");
  ASSERT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS);
  for (int round = 0; round < 2; ++round) {
    const Param declared = column(stmt, 1), open = column(stmt, 2);
    EXPECT_EQ(get<ub1>(declared, OCI_ATTR_PRECISION), 12);
    EXPECT_EQ(get<sb1>(declared, OCI_ATTR_SCALE), 3);
    EXPECT_EQ(get<ub1>(open, OCI_ATTR_PRECISION), 255);
    EXPECT_EQ(get<sb1>(open, OCI_ATTR_SCALE), -1);
    ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  }
}

TEST_F(DescribeTest, ATextIsOneBlock) {
  Statement stmt = statement("SELECT 1 AS one");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  const Param param = column(stmt, 1);
  EXPECT_EQ(get<void *>(param, OCI_ATTR_NAME), get<void *>(param, OCI_ATTR_NAME));
}

TEST_F(DescribeTest, AParameterOutlivesItsStatement) {
  Param param;
  {
    Statement stmt = statement("SELECT 1 AS kept");
    ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
    param = column(stmt, 1);
    EXPECT_EQ(text(param, OCI_ATTR_NAME), "kept");
  }
  EXPECT_EQ(text(param, OCI_ATTR_NAME), "kept");
}

TEST_F(DescribeTest, PlainAttributesAndUnknownOnes) {
  Statement stmt = statement("SELECT 1");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  const Param param = column(stmt, 1);
  EXPECT_EQ(get<ub2>(param, OCI_ATTR_CHARSET_ID), 0);
  EXPECT_EQ(get<ub1>(param, OCI_ATTR_CHARSET_FORM), 0);
  void *value = nullptr;
  EXPECT_EQ(OCIAttrGet(param.get(), OCI_DTYPE_PARAM, &value, nullptr, OCI_ATTR_REF_TDO,
                       errhp()),
            OCI_ERROR);
  expectError(21301, "KESTREL-21301: incorrect initialization mode");
  EXPECT_EQ(OCIAttrGet(param.get(), OCI_DTYPE_PARAM, &value, nullptr, 9999, errhp()),
            OCI_ERROR);
  expectError(24328, "KESTREL-24328: attribute value is invalid");
}

TEST_F(DescribeTest, WrongPositionsAndHandles) {
  Statement stmt = statement("SELECT 1, 2");
  Param param;
  EXPECT_EQ(paramGet(stmt.handle(), OCI_HTYPE_STMT, 1, param), OCI_ERROR);
  expectError(24338, "KESTREL-24338: unexecuted statement handle");
  EXPECT_EQ(paramGet(stmt.handle(), OCI_HTYPE_STMT, 0, param), OCI_ERROR);
  expectError(24334, "KESTREL-24334: missing descriptor for position");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  EXPECT_EQ(paramGet(stmt.handle(), OCI_HTYPE_STMT, 3, param), OCI_ERROR);
  expectError(24334);
  EXPECT_EQ(paramGet(stmt.handle(), OCI_HTYPE_ENV, 1, param), OCI_ERROR);
  expectError(24316, "KESTREL-24316: handle is invalid");
  EXPECT_EQ(paramGet(nullptr, OCI_HTYPE_STMT, 1, param), OCI_INVALID_HANDLE);
  EXPECT_EQ(paramGet(env(), OCI_HTYPE_STMT, 1, param), OCI_INVALID_HANDLE);
  EXPECT_EQ(paramGet(stmt.handle(), OCI_DTYPE_PARAM, 1, param), OCI_INVALID_HANDLE);
  const Param one = column(stmt, 1);
  EXPECT_EQ(paramGet(one.get(), OCI_DTYPE_PARAM, 1, param), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIParamGet(stmt.handle(), OCI_HTYPE_STMT, errhp(), nullptr, 1),
            OCI_INVALID_HANDLE);
}

TEST_F(DescribeTest, NothingButAQueryHasColumns) {
  for (const std::string &sql : {"INSERT INTO " + table() + " VALUES (1, 'x')",
                                 "UPDATE " + table() + " SET id = 2"}) {
    Statement stmt = statement(sql);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
    Param param;
    EXPECT_EQ(paramGet(stmt.handle(), OCI_HTYPE_STMT, 1, param), OCI_ERROR);
    expectError(24334);
  }
}

TEST_F(DescribeTest, TheTableItselfAnswers) {
  const Param param = describedTable(table());
  EXPECT_EQ(get<ub2>(param, OCI_ATTR_NUM_COLS), 2);
  EXPECT_EQ(std::to_string(get<ub4>(param, OCI_ATTR_OBJID)),
            query("SELECT '" + table() + "'::regclass::oid"));
  EXPECT_EQ(get<ub4>(param, OCI_ATTR_RDBA), 0u);
  for (const ub4 flag : {OCI_ATTR_CLUSTERED, OCI_ATTR_PARTITIONED, OCI_ATTR_INDEX_ONLY,
                         OCI_ATTR_IS_TEMPORARY, OCI_ATTR_IS_TYPED}) {
    ub1 value = 9;
    EXPECT_EQ(OCIAttrGet(param.get(), OCI_DTYPE_PARAM, &value, nullptr, flag, errhp()),
              OCI_SUCCESS);
    EXPECT_EQ(value, 0) << flag;
  }
  EXPECT_EQ(get<ub4>(param, OCI_ATTR_TABLESPACE), 0u);
  EXPECT_EQ(get<ub2>(param, OCI_ATTR_DURATION), 0);
  void *value = nullptr;
  EXPECT_EQ(OCIAttrGet(param.get(), OCI_DTYPE_PARAM, &value, nullptr, OCI_ATTR_REF_TDO,
                       errhp()),
            OCI_ERROR);
  expectError(21301);
  EXPECT_EQ(
      OCIAttrGet(param.get(), OCI_DTYPE_PARAM, &value, nullptr, OCI_ATTR_NAME, errhp()),
      OCI_ERROR);
  expectError(24328);
  const Param list = listOf(param);
  EXPECT_EQ(
      OCIAttrGet(list.get(), OCI_DTYPE_PARAM, &value, nullptr, OCI_ATTR_NAME, errhp()),
      OCI_ERROR);
  Param beyond;
  for (const ub4 pos : {0u, 3u}) {
    EXPECT_EQ(paramGet(list.get(), OCI_DTYPE_PARAM, pos, beyond), OCI_ERROR);
    expectError(24334);
  }
}

TEST_F(DescribeTest, NamesAreTakenAsTheyStand) {
  std::string upper = table();
  for (char &c : upper) c = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  EXPECT_EQ(describe(upper), OCI_ERROR);
  expectError(4043, "KESTREL-04043: object " + upper + " does not exist");
}

TEST_F(DescribeTest, ViewsAndIndexesAnswerLikeTables) {
  query("CREATE TABLE " + described() + " (id int PRIMARY KEY)");
  query("CREATE VIEW " + described() + "_v AS SELECT id, id + 1 AS next FROM " +
        described());
  EXPECT_EQ(get<ub2>(describedTable(described() + "_pkey"), OCI_ATTR_NUM_COLS), 1);
  EXPECT_EQ(get<ub2>(describedTable(described() + "_v"), OCI_ATTR_NUM_COLS), 2);
  rollback();
  query("DROP VIEW " + described() + "_v");
}

TEST_F(DescribeTest, ACompositeTypeIsTyped) {
  query("DROP TYPE IF EXISTS " + described() + "_t");
  query("CREATE TYPE " + described() + "_t AS (a int)");
  EXPECT_EQ(get<ub1>(describedTable(described() + "_t"), OCI_ATTR_IS_TYPED), 1);
  rollback();
  query("DROP TYPE " + described() + "_t");
}

TEST_F(DescribeTest, ATableWithADroppedColumnHasNone) {
  query("CREATE TABLE " + described() + " (a int, b int, c int)");
  query("ALTER TABLE " + described() + " DROP COLUMN b");
  EXPECT_EQ(get<ub2>(describedTable(described()), OCI_ATTR_NUM_COLS), 0);
}

TEST_F(DescribeTest, WhatCannotBeDescribedIsRefused) {
  EXPECT_EQ(describe(""), OCI_ERROR);
  expectError(1009, "KESTREL-01009: mandatory parameter absent");
  EXPECT_EQ(OCIDescribeAny(svchp(), errhp(), nullptr, 4, OCI_OTYPE_NAME, 0,
                           OCI_PTYPE_TABLE, dschp()),
            OCI_ERROR);
  expectError(1009);
  EXPECT_EQ(describe(table(), OCI_OTYPE_NAME, 1), OCI_INVALID_HANDLE);
  for (int type = 0; type <= 25; ++type) {
    if (type == OCI_PTYPE_TABLE) continue;
    const sword status = describe(table(), OCI_OTYPE_NAME, 0, static_cast<ub1>(type));
    EXPECT_EQ(status, type <= 24 ? OCI_ERROR : OCI_INVALID_HANDLE) << type;
    if (type <= 24) expectError(3001, "KESTREL-03001: unsupported feature");
  }
  for (const ub1 how : {2, 3}) {
    EXPECT_EQ(describe(table(), how), OCI_ERROR);
    expectError(3001);
  }
  for (const ub1 how : {0, 4}) {
    EXPECT_EQ(describe(table(), how), OCI_ERROR);
    expectError(24332, "KESTREL-24332: object type is illegal");
  }
  EXPECT_EQ(OCIDescribeAny(nullptr, errhp(), nullptr, 0, 1, 0, 1, dschp()),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDescribeAny(svchp(), errhp(), nullptr, 0, 1, 0, 1, nullptr),
            OCI_INVALID_HANDLE);
}

TEST_F(DescribeTest, TheDescribeHandleAnswers) {
  ub4 count = 0;
  void *param = nullptr;
  EXPECT_EQ(
      OCIAttrGet(dschp(), OCI_HTYPE_DESCRIBE, &param, nullptr, OCI_ATTR_PARAM, errhp()),
      OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIAttrGet(dschp(), OCI_HTYPE_DESCRIBE, &count, nullptr, OCI_ATTR_PARAM_COUNT,
                       errhp()),
            OCI_ERROR);
  expectError(3001);
  EXPECT_EQ(
      OCIAttrGet(dschp(), OCI_HTYPE_DESCRIBE, &count, nullptr, OCI_ATTR_NAME, errhp()),
      OCI_ERROR);
  expectError(24315, "KESTREL-24315: attribute is invalid");
}

TEST_F(DescribeTest, AFailedDescribeForgetsTheFormerOne) {
  const Param kept = describedTable(table());
  EXPECT_EQ(describe("no_such_" + table()), OCI_ERROR);
  void *param = nullptr;
  EXPECT_EQ(
      OCIAttrGet(dschp(), OCI_HTYPE_DESCRIBE, &param, nullptr, OCI_ATTR_PARAM, errhp()),
      OCI_INVALID_HANDLE);
  EXPECT_EQ(get<ub2>(kept, OCI_ATTR_NUM_COLS), 2);
}

TEST_F(DescribeTest, EachReadGivesACopyThatItsOwnerFrees) {
  Param first = describedTable(table());
  OCIParam *again = nullptr;
  ASSERT_EQ(
      OCIAttrGet(dschp(), OCI_HTYPE_DESCRIBE, &again, nullptr, OCI_ATTR_PARAM, errhp()),
      OCI_SUCCESS);
  const Param second(again);
  EXPECT_NE(first.get(), second.get());
  EXPECT_EQ(OCIDescriptorFree(first.release(), OCI_DTYPE_PARAM), OCI_SUCCESS);
  EXPECT_EQ(get<ub2>(second, OCI_ATTR_NUM_COLS), 2);
}

TEST_F(DescribeTest, AKindOfTheServersOwnIsTemporary) {
  query("CREATE TABLE " + described() + " (a int)");
  run("UPDATE pg_class SET relkind = 'u' WHERE relname = '" + described() + "'");
  EXPECT_EQ(get<ub1>(describedTable(described()), OCI_ATTR_IS_TEMPORARY), 1);
  EXPECT_EQ(get<ub1>(describedTable(table()), OCI_ATTR_IS_TEMPORARY), 0);
  rollback();
}

TEST_F(DescribeTest, ALostConnectionIsReported) {
  const std::string pid = inSession("SELECT pg_backend_pid()::text");
  query("SELECT pg_terminate_backend(" + pid + ")");
  Statement stmt = statement("SELECT 1");
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  EXPECT_EQ(describe(table()), OCI_ERROR);
  expectError(25407);
}

}  // namespace
}  // namespace zev::test
