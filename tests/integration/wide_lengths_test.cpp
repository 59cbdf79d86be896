/// Binds and defines with lengths of 32 and sizes of 64 bits, and the other calls that
/// later releases of the interface added.
#include <climits>
#include <cstring>
#include <vector>

#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

constexpr ub4 kLong = 100'000;  ///< bytes, more than 16 bits count
constexpr sb8 kTooLarge = sb8{1} << 32;

const OraText *asText(const char *text) {
  return reinterpret_cast<const OraText *>(text);
}

class WideLengths : public OciTest {
 protected:
  /// Binds ":v" by its name or position.
  sword bind(const Statement &stmt, bool byName, void *value, sb8 size, ub2 type,
             sb2 *indicator, ub4 *length, ub4 mode = OCI_DEFAULT) {
    if (byName) {
      return OCIBindByName2(stmt.handle(), &bindp_, errhp(), asText(":v"), -1, value,
                            size, type, indicator, length, nullptr, 0, nullptr, mode);
    }
    return OCIBindByPos2(stmt.handle(), &bindp_, errhp(), 1, value, size, type, indicator,
                         length, nullptr, 0, nullptr, mode);
  }
  sword define(const Statement &stmt, void *value, sb8 size, ub2 type, ub4 *length,
               sb2 *indicator = nullptr, ub2 *returnCode = nullptr) {
    return OCIDefineByPos2(stmt.handle(), &defnp_, errhp(), 1, value, size, type,
                           indicator, length, returnCode, OCI_DEFAULT);
  }

  OCIBind *bindp_ = nullptr;
  OCIDefine *defnp_ = nullptr;
};

TEST_F(WideLengths, ABindOfMoreThan65535BytesArrivesWhole) {
  for (const bool byName : {true, false}) {
    Statement stmt = statement("SELECT length(:v::text) || ':' || right(:v, 3)");
    std::string value(kLong, 'x');
    value += "abc, and what the length leaves out";
    ub4 length = kLong + 3;
    ASSERT_EQ(bind(stmt, byName, value.data(), static_cast<sb8>(value.size()), SQLT_CHR,
                   nullptr, &length),
              OCI_SUCCESS);
    TextBuffer<> seen;
    ASSERT_EQ(stmt.define(1, seen), OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    EXPECT_EQ(seen.text(), "100003:abc");
    EXPECT_EQ(length, kLong + 3);
  }
}

TEST_F(WideLengths, ADefineTellsALengthOfMoreThan65535Bytes) {
  Statement stmt = statement("SELECT repeat('x', 100000)");
  std::vector<char> value(2 * kLong);
  ub4 length = 0;
  sb2 indicator = -7;
  ub2 returnCode = 7;
  ASSERT_EQ(define(stmt, value.data(), static_cast<sb8>(value.size()), SQLT_CHR, &length,
                   &indicator, &returnCode),
            OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(length, kLong);
  EXPECT_EQ(indicator, 0);
  EXPECT_EQ(returnCode, 0);
  EXPECT_EQ(value[kLong - 1], 'x');
}

TEST_F(WideLengths, PlainArraysHaveALengthOfFourBytesEach) {
  Statement stmt = statement("SELECT repeat('y', n) FROM generate_series(1, 3) n");
  char values[3][8] = {};
  ub4 lengths[4] = {~0U, ~0U, ~0U, ~0U};
  ASSERT_EQ(define(stmt, values, sizeof values[0], SQLT_CHR, lengths), OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  for (ub4 i = 0; i < 3; ++i) EXPECT_EQ(lengths[i], i + 1);
  EXPECT_EQ(lengths[3], ~0U);
}

TEST_F(WideLengths, ArraysOfStructsAreWalkedByTheirSkips) {
  struct Row {
    char value[8];
    ub4 length;
    sb2 indicator;
  };
  run("CREATE TEMP TABLE wide_rows (t text)");
  Row rows[] = {{"abcdef", 2, 0}, {"ghijkl", 6, 0}, {"mnopqr", 3, -1}};
  Statement stmt = statement("INSERT INTO wide_rows VALUES (:v)");
  ASSERT_EQ(bind(stmt, true, rows[0].value, sizeof rows[0].value, SQLT_CHR,
                 &rows[0].indicator, &rows[0].length),
            OCI_SUCCESS);
  ASSERT_EQ(
      OCIBindArrayOfStruct(bindp_, errhp(), sizeof(Row), sizeof(Row), sizeof(Row), 0),
      OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  Statement read =
      statement("SELECT string_agg(coalesce(t, 'NULL'), ',') FROM wide_rows");
  TextBuffer<> seen;
  ASSERT_EQ(read.define(1, seen), OCI_SUCCESS);
  ASSERT_EQ(read.execute(), OCI_SUCCESS);
  EXPECT_EQ(seen.text(), "ab,ghijkl,NULL");
}

TEST_F(WideLengths, PlainArraysOfBindsReadALengthOfFourBytesEach) {
  run("CREATE TEMP TABLE wide_array (t text)");
  char values[3][4] = {{'a', 'b', 'c', 'd'}, {'e', 'f', 'g', 'h'}, {'i', 'j', 'k', 'l'}};
  ub4 lengths[] = {1, 4, 2};
  for (const bool byName : {true, false}) {
    Statement stmt = statement("INSERT INTO wide_array VALUES (:v)");
    ASSERT_EQ(bind(stmt, byName, values, sizeof values[0], SQLT_CHR, nullptr, lengths),
              OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(3), OCI_SUCCESS) << errorText();
  }
  Statement read = statement("SELECT string_agg(t, ',') FROM wide_array");
  TextBuffer<> seen;
  ASSERT_EQ(read.define(1, seen), OCI_SUCCESS);
  ASSERT_EQ(read.execute(), OCI_SUCCESS);
  EXPECT_EQ(seen.text(), "a,efgh,ij,a,efgh,ij");
}

TEST_F(WideLengths, AnOutValueTellsItsLength) {
  run("CREATE PROCEDURE pg_temp.wide_out(INOUT v text) LANGUAGE plpgsql AS "
      "$$BEGIN v := repeat(v, 50000); END$$");
  Statement stmt = statement("BEGIN pg_temp.wide_out(:v); END;");
  std::vector<char> value(2 * kLong);
  std::memcpy(value.data(), "ab", 2);
  ub4 length = 2;
  sb2 indicator = 0;
  ASSERT_EQ(bind(stmt, true, value.data(), static_cast<sb8>(value.size()), SQLT_CHR,
                 &indicator, &length),
            OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(length, kLong);
  EXPECT_EQ(value[kLong - 1], 'b');
}

TEST_F(WideLengths, TheElderCallTakesABindOver) {
  Statement stmt = statement("SELECT length(:v::text)");
  char value[] = "abcdef";
  ub4 wide = 0x10002;  // as 16 bits: 2
  ASSERT_EQ(bind(stmt, true, value, sizeof value, SQLT_CHR, nullptr, &wide), OCI_SUCCESS);
  ub2 narrow[] = {3, 3};
  ASSERT_EQ(stmt.bind(":v", value, sizeof value, SQLT_CHR, nullptr, narrow), OCI_SUCCESS);
  sb4 length = 0;
  ASSERT_EQ(stmt.define(1, length), OCI_SUCCESS);
  ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
  EXPECT_EQ(length, 3);
}

TEST_F(WideLengths, ASizeThatDoesNotFit32BitsIs1084) {
  Statement stmt = statement("SELECT :v::text");
  char value[4] = {};
  for (const sb8 size : {kTooLarge, sb8{INT_MAX} + 1, -kTooLarge}) {
    EXPECT_EQ(bind(stmt, true, value, size, SQLT_CHR, nullptr, nullptr), OCI_ERROR);
    expectError(1084);
    EXPECT_EQ(bind(stmt, false, value, size, SQLT_CHR, nullptr, nullptr), OCI_ERROR);
    expectError(1084);
    EXPECT_EQ(define(stmt, value, size, SQLT_CHR, nullptr), OCI_ERROR);
  }
  EXPECT_EQ(bindp_, nullptr);
  EXPECT_EQ(defnp_, nullptr);
}

TEST_F(WideLengths, ALengthOfTwoGigabytesIs24330) {
  Statement stmt = statement("SELECT :v::text");
  char value[4] = {};
  ub4 length = 0x80000000;
  ASSERT_EQ(bind(stmt, true, value, sizeof value, SQLT_CHR, nullptr, &length),
            OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(), OCI_ERROR);
  expectError(24330);
}

TEST_F(WideLengths, ChecksAreThoseOfTheElderCalls) {
  Statement stmt = statement("SELECT :v::text");
  char value[4] = {};
  EXPECT_EQ(OCIBindByName2(nullptr, &bindp_, errhp(), asText(":v"), -1, value, 4,
                           SQLT_CHR, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIBindByPos2(stmt.handle(), &bindp_, errhp(), 0, value, 4, SQLT_CHR, nullptr,
                          nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDefineByPos2(stmt.handle(), nullptr, errhp(), 1, value, 4, SQLT_CHR,
                            nullptr, nullptr, nullptr, OCI_DEFAULT),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(bind(stmt, true, value, 4, SQLT_CHR, nullptr, nullptr, 0x8000), OCI_ERROR);
  EXPECT_EQ(OCIBindByPos2(stmt.handle(), &bindp_, errhp(), 2, value, 4, SQLT_CHR, nullptr,
                          nullptr, nullptr, 0, nullptr, OCI_DEFAULT),
            OCI_ERROR);
  expectError(28553);
}

using LaterCalls = OciTest;

TEST_F(LaterCalls, ServerRelease2IsServerReleaseInEveryMode) {
  OraText elder[128] = {}, text[128] = {};
  ub4 expected = 0, version = 0;
  ASSERT_EQ(OCIServerRelease(svchp(), errhp(), elder, sizeof elder, OCI_HTYPE_SVCCTX,
                             &expected),
            OCI_SUCCESS);
  for (const ub4 mode : {OCI_DEFAULT, OCI_SRVRELEASE2_CACHED}) {
    version = 0;
    EXPECT_EQ(OCIServerRelease2(svchp(), errhp(), text, sizeof text, OCI_HTYPE_SVCCTX,
                                &version, mode),
              OCI_SUCCESS);
    EXPECT_EQ(version, expected);
    EXPECT_STREQ(reinterpret_cast<char *>(text), reinterpret_cast<char *>(elder));
  }
  EXPECT_EQ(OCIServerRelease2(nullptr, errhp(), text, sizeof text, OCI_HTYPE_SVCCTX,
                              &version, OCI_DEFAULT),
            OCI_INVALID_HANDLE);
}

TEST_F(LaterCalls, ABlockReturnsNoResultByItself) {
  Statement stmt = statement("SELECT 1");
  void *result = this;
  ub4 type = 7;
  EXPECT_EQ(OCIStmtGetNextResult(stmt.handle(), errhp(), &result, &type, OCI_DEFAULT),
            OCI_NO_DATA);
  EXPECT_EQ(result, this);
  EXPECT_EQ(type, 7u);
  EXPECT_EQ(OCIStmtGetNextResult(stmt.handle(), errhp(), nullptr, &type, OCI_DEFAULT),
            OCI_ERROR);
  expectError(1084);
  EXPECT_EQ(OCIStmtGetNextResult(nullptr, errhp(), &result, &type, OCI_DEFAULT),
            OCI_INVALID_HANDLE);
}

TEST_F(LaterCalls, AResultSetIsAStatementAlready) {
  Statement stmt = statement("SELECT 1");
  auto *result = reinterpret_cast<OCIResult *>(stmt.handle());
  EXPECT_EQ(OCIResultSetToStmt(result, errhp()), OCI_SUCCESS);
  EXPECT_EQ(OCIResultSetToStmt(nullptr, errhp()), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIResultSetToStmt(reinterpret_cast<OCIResult *>(svchp()), errhp()),
            OCI_INVALID_HANDLE);
}

}  // namespace
}  // namespace zev::test
