/// Which INSERTs are understood as one row that can stand beside others.
#include <gtest/gtest.h>

#include "pqext/many_rows.h"

namespace zev::pqext {
namespace {

struct Accepted {
  const char *text;
  const char *table;
  const char *two;  ///< the same for two rows of three parameters
};

// clang-format off
const Accepted kAccepted[] = {
    {"INSERT INTO t VALUES ($1, $2, $3)", "t",
     "INSERT INTO t VALUES ($1, $2, $3), ($4, $5, $6)"},
    {"insert into s.t (a, b) values ($2,$1);", "s.t ",
     "insert into s.t (a, b) values ($2,$1), ($5,$4)"},
    {"INSERT\n INTO \"T x\".\"y\"\"z\"(a)\tVALUES(  $1 , $1 ) ; ", "\"T x\".\"y\"\"z\"",
     "INSERT\n INTO \"T x\".\"y\"\"z\"(a)\tVALUES(  $1 , $1 ) , (  $4 , $4 ) "},
    {"INSERT INTO t VALUES (1, -2.5, +3, 'it''s $1', NULL, default, $3)", "t ",
     "INSERT INTO t VALUES (1, -2.5, +3, 'it''s $1', NULL, default, $3), "
     "(1, -2.5, +3, 'it''s $1', NULL, default, $6)"},
};

const char *const kRefused[] = {
    "",
    "SELECT 1",
    "UPDATE t SET a = $1",
    "INSERT INTO t SELECT $1",
    "INSERT INTO t VALUES ($1) RETURNING a",
    "INSERT INTO t VALUES ($1) ON CONFLICT DO NOTHING",
    "INSERT INTO t VALUES ($1), ($2)",
    "INSERT INTO t VALUES ($1 + 1)",
    "INSERT INTO t VALUES (f($1))",
    "INSERT INTO t VALUES ((SELECT max(a) FROM t))",
    "INSERT INTO t VALUES ($1::int)",
    "INSERT INTO t VALUES (now())",
    "INSERT INTO t VALUES (CURRENT_DATE)",
    "INSERT INTO t VALUES (nextval('s'))",
    "INSERT INTO t VALUES (E'a')",
    "INSERT INTO t VALUES ('a\\'')",
    "INSERT INTO t VALUES ($$a$$)",
    "INSERT INTO t VALUES (U&'a')",
    "INSERT INTO t VALUES (1e5)",
    "INSERT INTO t VALUES ($1a)",
    "INSERT INTO t VALUES ($)",
    "INSERT INTO t VALUES ($default)",
    "INSERT INTO t VALUES (1default)",
    "INSERT INTO t VALUES (-NULL)",
    "INSERT INTO t VALUES (- 1)",
    "INSERT INTO t VALUES ()",
    "INSERT INTO t VALUES ($1,)",
    "INSERT INTO t VALUES ($1",
    "INSERT INTO t VALUES 'a'",
    "INSERT INTO t DEFAULT VALUES",
    "INSERT INTO t AS x VALUES ($1)",
    "INSERT INTO t OVERRIDING SYSTEM VALUE VALUES ($1)",
    "INSERT INTO t (a[1]) VALUES ($1)",
    "INSERT INTO t (a.b) VALUES ($1)",
    "INSERT INTO t VALUES ($1) -- done",
    "INSERT INTO t /* all */ VALUES ($1)",
    "INSERT INTO t VALUES ($1);;",
    "INSERT INTO t VALUES ($1); DELETE FROM t",
    "INSERT t VALUES ($1)",
    "WITH x AS (SELECT 1) INSERT INTO t VALUES ($1)",
};
// clang-format on

std::string_view withoutBlanksBehind(std::string_view text) {
  return text.substr(0, text.find_last_not_of(" ") + 1);
}

TEST(InsertValues, PlainRowsAreUnderstood) {
  for (const Accepted &row : kAccepted) {
    const auto insert = parseInsert(row.text);
    ASSERT_TRUE(insert.has_value()) << row.text;
    EXPECT_EQ(withoutBlanksBehind(insert->table), withoutBlanksBehind(row.table));
    const std::string two = insertOf(insert->head, insert->values, 3, 2);
    EXPECT_EQ(withoutBlanksBehind(two), withoutBlanksBehind(row.two));
  }
}

TEST(InsertValues, EverythingElseIsRefused) {
  for (const char *text : kRefused) {
    EXPECT_FALSE(parseInsert(text).has_value()) << text;
  }
}

}  // namespace
}  // namespace zev::pqext
