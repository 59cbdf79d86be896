#include "tests/integration/support/statement_fixture.h"

#include <unistd.h>

namespace zev::test {

void StatementFixture::SetUp() {
  OciTest::SetUp();
  table_ = dressed("rows_" + std::to_string(getpid()));
  query("SET client_min_messages = warning");
  query("DROP TABLE IF EXISTS " + table_);
  query("CREATE TABLE " + table_ + " (id int, t text)");
}

void StatementFixture::TearDown() {
  if (svchp()) OCITransRollback(svchp(), errhp(), OCI_DEFAULT);
  query("DROP TABLE IF EXISTS " + table_);
  OciTest::TearDown();
}

std::string StatementFixture::committed() {
  return query("SELECT count(*) || ':' || coalesce(sum(id), 0) FROM " + table_);
}

std::string StatementFixture::inSession(const std::string &sql) {
  // Only columns of text are converted to UTF-16.
  Statement stmt = statement(isUtf16() ? "SELECT (" + sql + ")::text" : sql);
  TextBuffer<> value;
  EXPECT_EQ(stmt.define(1, value), OCI_SUCCESS);
  EXPECT_EQ(stmt.execute(), OCI_SUCCESS) << sql << ": " << errorText();
  return value.indicator == -1 ? "NULL" : value.text();
}

std::string StatementFixture::leftovers() {
  // The client protocol's own portal has no name.
  const std::string notThis = " WHERE name <> '' AND statement NOT LIKE '%pg_cursors%'";
  return inSession("SELECT (SELECT count(*) FROM pg_prepared_statements" + notThis +
                   ") || '/' || (SELECT count(*) FROM pg_cursors" + notThis + ")");
}

std::vector<sb4> StatementFixture::codes() {
  std::vector<sb4> all;
  sb4 code = 0;
  OraText message[4096];
  for (ub4 record = 1; OCIErrorGet(errhp(), record, nullptr, &code, message,
                                   sizeof message, OCI_HTYPE_ERROR) == OCI_SUCCESS;
       ++record) {
    all.push_back(code);
  }
  return all;
}

OCIServer *StatementFixture::server() {
  OCIServer *found = nullptr;
  EXPECT_EQ(
      OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &found, nullptr, OCI_ATTR_SERVER, errhp()),
      OCI_SUCCESS);
  return found;
}

std::string StatementFixture::masked(const std::string &sql) {
  std::string result = sql;
  for (const char *prefix : {"stmt_", "portal_", "cursor_"}) {
    const std::string name(prefix);
    for (std::size_t at = result.find(name); at != result.npos;
         at = result.find(name, at + name.size())) {
      const std::size_t digits = at + name.size();
      if (result.find_first_not_of("0123456789abcdef", digits) == digits + 8 ||
          result.size() == digits + 8) {
        result.replace(digits, 8, "#");
      }
    }
  }
  return result;
}

std::vector<std::string> StatementFixture::masked(const WireLog &log) {
  std::vector<std::string> texts;
  for (const std::string &sql : log.sql) texts.push_back(masked(sql));
  return texts;
}

sword StatementFixture::bindByPos(Statement &stmt, OCIError *errhp, ub4 position,
                                  void *value, sb4 size, ub2 type, sb2 *indicator,
                                  ub2 *length, ub4 mode, OCIBind **bind) {
  OCIBind *own = nullptr;
  return OCIBindByPos(stmt.handle(), bind ? bind : &own, errhp, position, value, size,
                      type, indicator, length, nullptr, 0, nullptr, mode);
}

}  // namespace zev::test
