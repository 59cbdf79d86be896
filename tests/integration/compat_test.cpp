/// sql/compat.sql in a database of its own: what it brings, and that it may be run again.
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

struct Finish {
  void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
};
using Connection = std::unique_ptr<PGconn, Finish>;

class CompatTest : public OciTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    query("CREATE DATABASE " + database_);
  }
  void TearDown() override {
    OciTest::TearDown();
    query("DROP DATABASE IF EXISTS " + database_ + " WITH (FORCE)");
  }

  Connection connect() const {
    const char *const names[] = {"host", "port", "user", "password", "dbname", nullptr};
    const char *const values[] = {server_.host.c_str(), server_.port.c_str(),
                                  server_.user.c_str(), server_.password.c_str(),
                                  database_.c_str(),    nullptr};
    Connection conn(PQconnectdbParams(names, values, 0));
    EXPECT_EQ(PQstatus(conn.get()), CONNECTION_OK) << PQerrorMessage(conn.get());
    return conn;
  }

  /// Runs SQL; the first value, or the SQLSTATE and message of a failure.
  static std::string run(PGconn *conn, const std::string &sql) {
    PGresult *result = PQexec(conn, sql.c_str());
    std::string answer;
    if (PQresultStatus(result) == PGRES_TUPLES_OK && PQntuples(result) > 0) {
      answer = PQgetvalue(result, 0, 0);
    } else if (PQresultStatus(result) == PGRES_FATAL_ERROR) {
      answer = std::string(PQresultErrorField(result, PG_DIAG_SQLSTATE)) + " " +
               PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
    }
    PQclear(result);
    return answer;
  }

  static std::string script() {
    std::ifstream file(ZEVOCI_SOURCE_DIR "/sql/compat.sql");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  const ServerAddress &server_ = testServer();
  std::string database_ = "compat_test_" + std::to_string(getpid());
};

TEST_F(CompatTest, RunsTwiceAndBringsItsItems) {
  const Connection conn = connect();
  ASSERT_NE(script(), "");
  for (int i = 0; i < 2; ++i) ASSERT_EQ(run(conn.get(), script()), "");
  EXPECT_EQ(run(conn.get(), "SELECT dummy FROM dual"), "X");
  EXPECT_EQ(run(conn.get(), "SELECT count(*) FROM dual"), "1");
  EXPECT_NE(run(conn.get(), "SELECT 'raw'::regtype::oid"), "12487");
  run(conn.get(),
      "CREATE TABLE t (i int, n numeric(9,2), d date, s timestamp, r raw, c varchar)");
  EXPECT_EQ(run(conn.get(),
                "INSERT INTO t SELECT '12'::varchar, '3.5'::text, '2024-02-29'::varchar,"
                " '2024-02-29 12:00'::text, '\\x00ff'::bytea, 4711"),
            "");
  EXPECT_EQ(run(conn.get(),
                "SELECT i + n || ' ' || d || ' ' || s || ' ' || r || ' ' || c"
                " || ' ' || (r = '\\x00ff'::bytea) FROM t"),
            "15.50 2024-02-29 2024-02-29 12:00:00 \\x00ff 4711 true");
  EXPECT_EQ(run(conn.get(), "INSERT INTO t (i) SELECT 'twelve'::varchar").substr(0, 5),
            "22P02");
  EXPECT_EQ(run(conn.get(), "SELECT 1 WHERE 1 = '1'::varchar").substr(0, 5), "42883");
}

TEST_F(CompatTest, RefusesARoleWithoutTheRights) {
  const Connection conn = connect();
  run(conn.get(), "CREATE ROLE " + database_);
  run(conn.get(), "SET ROLE " + database_);
  const std::string refused = run(conn.get(), script());
  EXPECT_EQ(refused.substr(0, 5), "42501");
  EXPECT_NE(refused.find("must be run by a superuser"), std::string::npos) << refused;
  run(conn.get(), "ROLLBACK");
  run(conn.get(), "RESET ROLE");
  EXPECT_EQ(run(conn.get(), "SELECT to_regclass('public.dual') IS NULL"), "t");
  run(conn.get(), "DROP ROLE " + database_);
}

TEST_F(CompatTest, BoundStringsReachColumnsAndRawArrivesAsBytes) {
  const Connection conn = connect();
  ASSERT_EQ(run(conn.get(), script()), "");
  run(conn.get(), "CREATE TABLE t (i int, d date, r raw)");
  const Given target(server_.host + ":" + server_.port + "/" + database_),
      user(server_.user), password(server_.password);
  OCISvcCtx *other = nullptr;
  ASSERT_EQ(OCILogon(env(), errhp(), &other, user.text(), user.size(), password.text(),
                     password.size(), target.text(), target.size()),
            OCI_SUCCESS)
      << errorText();
  {
    Statement insert(env(), errhp(), other);
    insert.prepare("INSERT INTO t VALUES (:i, :d, '\\x0102ff')");
    Given i("42"), d("2024-02-29");
    insert.bind(":i", i);
    insert.bind(":d", d);
    ASSERT_EQ(insert.execute(1, OCI_COMMIT_ON_SUCCESS), OCI_SUCCESS) << errorText();
    Statement select(env(), errhp(), other);
    select.prepare("SELECT i, d::text, r FROM t");
    sb4 number = 0;
    TextBuffer<> date;
    char raw[8] = {};
    ub2 length = 0;
    select.define(1, number);
    select.define(2, date);
    select.define(3, raw, sizeof raw, SQLT_BIN, nullptr, &length);
    ASSERT_EQ(select.execute(0), OCI_SUCCESS) << errorText();
    ASSERT_EQ(select.fetch(), OCI_SUCCESS) << errorText();
    EXPECT_EQ(number, 42);
    EXPECT_EQ(date.text(), "2024-02-29");
    EXPECT_EQ(std::string(raw, length), std::string("\x01\x02\xff", 3));
  }
  EXPECT_EQ(OCILogoff(other, errhp()), OCI_SUCCESS);
}

}  // namespace
}  // namespace zev::test
