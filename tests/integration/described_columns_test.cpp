/// What select lists and tables look like.
#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

/// Reading the attributes of one descriptor.
class Described {
 public:
  Described(OCIError *errhp, void *param) : errhp_(errhp), param_(param) {}

  template <class T>
  T get(ub4 attribute) const {
    T value{};
    EXPECT_EQ(OCIAttrGet(param_, OCI_DTYPE_PARAM, &value, nullptr, attribute, errhp_),
              OCI_SUCCESS)
        << attribute;
    return value;
  }
  std::string text(ub4 attribute) const {
    OraText *value = nullptr;
    ub4 size = 4711;
    EXPECT_EQ(OCIAttrGet(param_, OCI_DTYPE_PARAM, &value, &size, attribute, errhp_),
              OCI_SUCCESS);
    return value ? std::string(reinterpret_cast<char *>(value), size) : "";
  }
  sword status(ub4 attribute) const {
    std::uint64_t value = 0;
    return OCIAttrGet(param_, OCI_DTYPE_PARAM, &value, nullptr, attribute, errhp_);
  }
  void *handle() const { return param_; }

 private:
  OCIError *errhp_;
  void *param_;
};

class DescribedColumnsTest : public OciTest {
 protected:
  sword paramGet(Statement &stmt, ub4 position) {
    param_ = nullptr;
    return OCIParamGet(stmt.handle(), OCI_HTYPE_STMT, errhp(), &param_, position);
  }
  Described column(Statement &stmt, ub4 position) {
    EXPECT_EQ(paramGet(stmt, position), OCI_SUCCESS) << errorText();
    return {errhp(), param_};
  }
  void *param_ = nullptr;
};

/// A column by its declaration and what is told of it before any row is there.
struct Column {
  const char *name;
  const char *type;
  ub2 dataType;
  ub4 dataSize;
  ub2 charSize;
  int precision;  ///< -1: not looked at
  int scale;
  const char *typeName;
};

// clang-format off
const Column kColumns[] = {
    {"Int2",       "int2",          SQLT_INT, 2,    0,    0,   0,  "int2"},
    {"Int4",       "int4",          SQLT_INT, 4,    0,    0,   0,  "int4"},
    {"Int8",       "int8",          SQLT_INT, 8,    0,    0,   0,  "int8"},
    {"Float4",     "float4",        SQLT_FLT, 4,    0,    0,   0,  "float4"},
    {"Float8",     "float8",        SQLT_FLT, 8,    0,    0,   0,  "float8"},
    {"Numeric",    "numeric(10,3)", SQLT_NUM, 22,   0,    10,  3,  "numeric"},
    {"Wide",       "numeric(38,0)", SQLT_NUM, 22,   0,    38,  0,  "numeric"},
    {"Undeclared", "numeric",       SQLT_NUM, 22,   0,    255, -1, "numeric"},
    {"Varchar",    "varchar(17)",   0,        17,   17,   0,   0,  "varchar"},
    {"Unlimited",  "varchar",       0,        4000, 4000, 0,   0,  "varchar"},
    {"Text",       "text",          0,        4000, 4000, 0,   0,  "text"},
    {"Char",       "char(5)",       0,        5,    5,    0,   0,  "bpchar"},
    {"Bytea",      "bytea",         0,        4000, 4000, 0,   0,  "bytea"},
    {"Name",       "name",          0,        4000, 4000, 0,   0,  "name"},
};
// clang-format on

class ColumnTypeTest : public DescribedColumnsTest,
                       public testing::WithParamInterface<Column> {};

TEST_P(ColumnTypeTest, IsToldBeforeAnyRow) {
  const Column &row = GetParam();
  run(std::string("CREATE TEMP TABLE described (c ") + row.type + ", n " + row.type +
      " NOT NULL)");
  Statement stmt = statement("SELECT c, n AS other FROM described");
  ASSERT_EQ(stmt.execute(0, OCI_DESCRIBE_ONLY), OCI_SUCCESS) << errorText();
  const Described c = column(stmt, 1);
  EXPECT_EQ(c.text(OCI_ATTR_NAME), "c");
  if (row.dataType) {
    EXPECT_EQ(c.get<ub2>(OCI_ATTR_DATA_TYPE), row.dataType);
  }
  EXPECT_EQ(c.get<ub4>(OCI_ATTR_DATA_SIZE), row.dataSize);
  EXPECT_EQ(c.get<ub2>(OCI_ATTR_CHAR_SIZE), row.charSize);
  EXPECT_EQ(c.get<ub1>(OCI_ATTR_PRECISION), row.precision);
  EXPECT_EQ(c.get<sb1>(OCI_ATTR_SCALE), row.scale);
  EXPECT_EQ(c.get<ub1>(OCI_ATTR_IS_NULL), 1);
  EXPECT_EQ(c.text(OCI_ATTR_TYPE_NAME), row.typeName);
  EXPECT_EQ(c.text(OCI_ATTR_SCHEMA_NAME), "pg_catalog");
  const Described n = column(stmt, 2);
  EXPECT_EQ(n.text(OCI_ATTR_NAME), "other");
  EXPECT_EQ(n.get<ub1>(OCI_ATTR_IS_NULL), 0);
  EXPECT_EQ(n.get<ub2>(OCI_ATTR_CHARSET_ID), 0);
  EXPECT_EQ(n.get<ub1>(OCI_ATTR_CHARSET_FORM), 0);
}

INSTANTIATE_TEST_SUITE_P(Types, ColumnTypeTest, testing::ValuesIn(kColumns),
                         [](const auto &row) { return std::string(row.param.name); });

TEST_F(DescribedColumnsTest, NoIterationsDescribeThePortal) {
  Statement stmt = statement("SELECT 'abc'::text AS t, 1 AS i");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS) << errorText();
  EXPECT_EQ(stmt.attribute(OCI_ATTR_PARAM_COUNT), 2u);
  EXPECT_EQ(column(stmt, 1).get<ub4>(OCI_ATTR_DATA_SIZE), 4000u);
  EXPECT_EQ(column(stmt, 1).get<ub1>(OCI_ATTR_IS_NULL), 1);
  TextBuffer<> text;
  stmt.define(1, text);
  ASSERT_EQ(stmt.fetch(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(text.text(), "abc");
}

TEST_F(DescribedColumnsTest, FetchedTextTellsItsLongestValue) {
  Statement stmt = statement("SELECT repeat('x', g) FROM generate_series(3, 7) g");
  TextBuffer<> texts[5];
  stmt.define(1, texts[0].value, 256, SQLT_STR);
  char buffer[5][256];
  stmt.define(1, buffer, 256, SQLT_STR);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  EXPECT_EQ(column(stmt, 1).get<ub4>(OCI_ATTR_DATA_SIZE), 5u);
  ASSERT_EQ(stmt.fetch(2), OCI_SUCCESS);
  EXPECT_EQ(column(stmt, 1).get<ub4>(OCI_ATTR_DATA_SIZE), 7u);
  EXPECT_EQ(column(stmt, 1).get<ub2>(OCI_ATTR_CHAR_SIZE), 7u);
}

TEST_F(DescribedColumnsTest, PrecisionIsImplicitAfterTheFirstExecute) {
  Statement stmt = statement("SELECT 1::numeric(12,4)");
  TextBuffer<> text;
  stmt.define(1, text);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(column(stmt, 1).get<ub1>(OCI_ATTR_PRECISION), 12);
  EXPECT_EQ(column(stmt, 1).get<sb1>(OCI_ATTR_SCALE), 4);
}

TEST_F(DescribedColumnsTest, NameIsOneBlockHoweverOftenItIsRead) {
  Statement stmt = statement("SELECT 1 AS a_name");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  const Described c = column(stmt, 1);
  EXPECT_EQ(c.get<void *>(OCI_ATTR_NAME), c.get<void *>(OCI_ATTR_NAME));
  EXPECT_NE(column(stmt, 1).get<void *>(OCI_ATTR_NAME), c.get<void *>(OCI_ATTR_NAME));
}

TEST_F(DescribedColumnsTest, PositionsOutsideTheListAreMissing) {
  Statement stmt = statement("SELECT 1, 2");
  EXPECT_EQ(paramGet(stmt, 1), OCI_ERROR);
  expectError(24338);
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  for (const ub4 position : {0u, 3u, 4711u}) {
    EXPECT_EQ(paramGet(stmt, position), OCI_ERROR);
    expectError(24334);
  }
}

TEST_F(DescribedColumnsTest, OtherStatementsHaveNoList) {
  run("CREATE TEMP TABLE no_list (a int)");
  Statement stmt = statement("INSERT INTO no_list VALUES (1)");
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(paramGet(stmt, 1), OCI_ERROR);
  expectError(24334);
}

TEST_F(DescribedColumnsTest, WrongHandlesAreRefused) {
  Statement stmt = statement("SELECT 1");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  void *param = nullptr;
  EXPECT_EQ(OCIParamGet(nullptr, OCI_HTYPE_STMT, errhp(), &param, 1), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIParamGet(stmt.handle(), OCI_HTYPE_STMT, nullptr, &param, 1),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIParamGet(stmt.handle(), OCI_HTYPE_STMT, errhp(), nullptr, 1),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIParamGet(svchp(), OCI_HTYPE_STMT, errhp(), &param, 1), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIParamGet(stmt.handle(), OCI_DTYPE_PARAM, errhp(), &param, 1),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIParamGet(stmt.handle(), OCI_HTYPE_SVCCTX, errhp(), &param, 1), OCI_ERROR);
  expectError(24316);
}

TEST_F(DescribedColumnsTest, UnknownAttributesAreRefused) {
  Statement stmt = statement("SELECT 1");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  const Described c = column(stmt, 1);
  EXPECT_EQ(c.status(OCI_ATTR_NUM_COLS), OCI_ERROR);
  expectError(24328);
  EXPECT_EQ(c.status(OCI_ATTR_REF_TDO), OCI_ERROR);
  expectError(21301);
}

TEST_F(DescribedColumnsTest, DescriptorIsFreedByItsOwner) {
  Statement stmt = statement("SELECT 1");
  ASSERT_EQ(stmt.execute(0), OCI_SUCCESS);
  const Described c = column(stmt, 1);
  EXPECT_EQ(OCIDescriptorFree(c.handle(), OCI_DTYPE_PARAM), OCI_SUCCESS);
}

class DescribedTableTest : public DescribedColumnsTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    void *handle = nullptr;
    ASSERT_EQ(OCIHandleAlloc(env(), &handle, OCI_HTYPE_DESCRIBE, 0, nullptr),
              OCI_SUCCESS);
    describe_ = static_cast<OCIDescribe *>(handle);
    run("CREATE TEMP TABLE \"Described_t\" (id int NOT NULL, n numeric(9,2),"
        " v varchar(30) NOT NULL, t text, b bytea)");
  }
  sword describe(std::string name, ub1 pointerType = OCI_OTYPE_NAME, ub1 level = 0,
                 ub1 type = OCI_PTYPE_TABLE) {
    return OCIDescribeAny(svchp(), errhp(), name.data(), static_cast<ub4>(name.size()),
                          pointerType, level, type, describe_);
  }
  /// The descriptor of what was described last.
  Described table() {
    void *param = nullptr;
    EXPECT_EQ(OCIAttrGet(describe_, OCI_HTYPE_DESCRIBE, &param, nullptr, OCI_ATTR_PARAM,
                         errhp()),
              OCI_SUCCESS)
        << errorText();
    return {errhp(), param};
  }
  Described element(const Described &list, ub4 position) {
    EXPECT_EQ(OCIParamGet(list.handle(), OCI_DTYPE_PARAM, errhp(), &param_, position),
              OCI_SUCCESS)
        << errorText();
    return {errhp(), param_};
  }
  OCIDescribe *describe_ = nullptr;
};

TEST_F(DescribedTableTest, TableTellsItsColumns) {
  ASSERT_EQ(describe("Described_t"), OCI_SUCCESS) << errorText();
  const Described t = table();
  EXPECT_EQ(t.get<ub2>(OCI_ATTR_NUM_COLS), 5);
  const Described list(errhp(), t.get<void *>(OCI_ATTR_LIST_COLUMNS));
  struct Row {
    const char *name;
    ub1 isNull;
    const char *type;
  };
  const Row rows[] = {{"id", 0, "int4"},
                      {"n", 1, "numeric"},
                      {"v", 0, "varchar"},
                      {"t", 1, "text"},
                      {"b", 1, "bytea"}};
  for (ub4 i = 0; i < 5; ++i) {
    const Described c = element(list, i + 1);
    EXPECT_EQ(c.text(OCI_ATTR_NAME), rows[i].name);
    EXPECT_EQ(c.get<ub1>(OCI_ATTR_IS_NULL), rows[i].isNull);
    EXPECT_EQ(c.text(OCI_ATTR_TYPE_NAME), rows[i].type);
    EXPECT_EQ(c.text(OCI_ATTR_SCHEMA_NAME), "pg_catalog");
  }
  EXPECT_EQ(element(list, 1).get<ub4>(OCI_ATTR_DATA_SIZE), 0u);
  const Described n = element(list, 2);
  EXPECT_EQ(n.get<ub1>(OCI_ATTR_PRECISION), 9);
  EXPECT_EQ(n.get<sb1>(OCI_ATTR_SCALE), 2);
  EXPECT_EQ(n.get<ub2>(OCI_ATTR_DATA_TYPE), SQLT_NUM);
  EXPECT_EQ(element(list, 3).get<ub4>(OCI_ATTR_DATA_SIZE) +
                element(list, 3).get<ub2>(OCI_ATTR_CHAR_SIZE),
            30u);
}

TEST_F(DescribedTableTest, TableTellsItself) {
  ASSERT_EQ(describe("Described_t"), OCI_SUCCESS);
  const Described t = table();
  Statement stmt = statement("SELECT '\"Described_t\"'::regclass::oid::int8::int4");
  sb4 oid = 0;
  stmt.define(1, oid);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS);
  EXPECT_EQ(t.get<ub4>(OCI_ATTR_OBJID), static_cast<ub4>(oid));
  EXPECT_EQ(t.get<ub4>(OCI_ATTR_RDBA), 0u);
  for (const ub4 flag : {OCI_ATTR_CLUSTERED, OCI_ATTR_PARTITIONED, OCI_ATTR_INDEX_ONLY,
                         OCI_ATTR_IS_TEMPORARY, OCI_ATTR_IS_TYPED}) {
    EXPECT_EQ(t.get<ub1>(flag), 0) << flag;
  }
  EXPECT_EQ(t.get<ub4>(OCI_ATTR_TABLESPACE), 0u);
  EXPECT_EQ(t.get<ub2>(OCI_ATTR_DURATION), 0);
  EXPECT_EQ(t.status(OCI_ATTR_NAME), OCI_ERROR);
  expectError(24328);
  EXPECT_EQ(t.status(OCI_ATTR_REF_TDO), OCI_ERROR);
  expectError(21301);
}

TEST_F(DescribedTableTest, NameIsTakenAsItIs) {
  EXPECT_EQ(describe("described_t"), OCI_ERROR);
  expectError(4043, "described_t");
  EXPECT_EQ(describe("Described_t "), OCI_ERROR);
  expectError(4043);
}

TEST_F(DescribedTableTest, ViewAndIndexAnswerLikeTables) {
  run("CREATE TEMP VIEW described_v AS SELECT id, v FROM \"Described_t\"");
  run("CREATE INDEX described_i ON \"Described_t\" (n, id)");
  for (const char *name : {"described_v", "described_i"}) {
    ASSERT_EQ(describe(name), OCI_SUCCESS) << errorText();
    EXPECT_EQ(table().get<ub2>(OCI_ATTR_NUM_COLS), 2) << name;
  }
}

TEST_F(DescribedTableTest, CompositeTypeIsTyped) {
  run("CREATE TYPE pg_temp.described_c AS (a int, b text)");
  ASSERT_EQ(describe("described_c"), OCI_SUCCESS) << errorText();
  EXPECT_EQ(table().get<ub1>(OCI_ATTR_IS_TYPED), 1);
}

TEST_F(DescribedTableTest, DroppedColumnLeavesNone) {
  run("ALTER TABLE \"Described_t\" DROP COLUMN n");
  ASSERT_EQ(describe("Described_t"), OCI_SUCCESS);
  const Described t = table();
  EXPECT_EQ(t.get<ub2>(OCI_ATTR_NUM_COLS), 0);
  void *list = t.get<void *>(OCI_ATTR_LIST_COLUMNS);
  EXPECT_EQ(OCIParamGet(list, OCI_DTYPE_PARAM, errhp(), &param_, 1), OCI_ERROR);
  expectError(24334);
}

TEST_F(DescribedTableTest, ListsHaveNoAttributes) {
  ASSERT_EQ(describe("Described_t"), OCI_SUCCESS);
  const Described list(errhp(), table().get<void *>(OCI_ATTR_LIST_COLUMNS));
  EXPECT_EQ(list.status(OCI_ATTR_NUM_COLS), OCI_ERROR);
  for (const ub4 position : {0u, 6u}) {
    EXPECT_EQ(OCIParamGet(list.handle(), OCI_DTYPE_PARAM, errhp(), &param_, position),
              OCI_ERROR);
    expectError(24334);
  }
}

TEST_F(DescribedTableTest, EachReadGivesACopyOfItsOwn) {
  ASSERT_EQ(describe("Described_t"), OCI_SUCCESS);
  const Described first = table(), second = table();
  EXPECT_NE(first.handle(), second.handle());
  EXPECT_EQ(OCIDescriptorFree(first.handle(), OCI_DTYPE_PARAM), OCI_SUCCESS);
  EXPECT_EQ(second.get<ub2>(OCI_ATTR_NUM_COLS), 5);
  run("DROP TABLE \"Described_t\"");
  EXPECT_EQ(table().get<ub2>(OCI_ATTR_NUM_COLS), 5);
}

TEST_F(DescribedTableTest, WhatIsNotServedIsRefused) {
  struct Row {
    ub1 pointerType, level, type;
    sword status;
    sb4 code;
  };
  const Row rows[] = {{OCI_OTYPE_NAME, 0, 0, OCI_ERROR, 3001},
                      {OCI_OTYPE_NAME, 0, OCI_PTYPE_VIEW, OCI_ERROR, 3001},
                      {OCI_OTYPE_NAME, 0, 24, OCI_ERROR, 3001},
                      {OCI_OTYPE_NAME, 0, 25, OCI_INVALID_HANDLE, 0},
                      {OCI_OTYPE_NAME, 1, OCI_PTYPE_TABLE, OCI_INVALID_HANDLE, 0},
                      {OCI_OTYPE_REF, 0, OCI_PTYPE_TABLE, OCI_ERROR, 3001},
                      {OCI_OTYPE_PTR, 0, OCI_PTYPE_TABLE, OCI_ERROR, 3001},
                      {0, 0, OCI_PTYPE_TABLE, OCI_ERROR, 24332},
                      {4, 0, OCI_PTYPE_TABLE, OCI_ERROR, 24332}};
  for (const Row &row : rows) {
    EXPECT_EQ(describe("Described_t", row.pointerType, row.level, row.type), row.status);
    if (row.code) expectError(row.code);
  }
  EXPECT_EQ(describe(""), OCI_ERROR);
  expectError(1009);
  EXPECT_EQ(OCIDescribeAny(svchp(), errhp(), nullptr, 3, OCI_OTYPE_NAME, 0,
                           OCI_PTYPE_TABLE, describe_),
            OCI_ERROR);
  expectError(1009);
  EXPECT_EQ(OCIDescribeAny(svchp(), errhp(), describe_, 3, OCI_OTYPE_NAME, 0,
                           OCI_PTYPE_TABLE, nullptr),
            OCI_INVALID_HANDLE);
}

TEST_F(DescribedTableTest, NothingIsToldBeforeADescribe) {
  void *param = nullptr;
  EXPECT_EQ(
      OCIAttrGet(describe_, OCI_HTYPE_DESCRIBE, &param, nullptr, OCI_ATTR_PARAM, errhp()),
      OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIAttrGet(describe_, OCI_HTYPE_DESCRIBE, &param, nullptr,
                       OCI_ATTR_PARAM_COUNT, errhp()),
            OCI_ERROR);
  expectError(3001);
  EXPECT_EQ(
      OCIAttrGet(describe_, OCI_HTYPE_DESCRIBE, &param, nullptr, OCI_ATTR_NAME, errhp()),
      OCI_ERROR);
  expectError(24315);
}

}  // namespace
}  // namespace zev::test
