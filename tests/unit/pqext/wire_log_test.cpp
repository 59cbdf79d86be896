#include "tests/server/wire_log.h"

#include "tests/unit/pqext/pqext_fixture.h"

namespace zev::test {
namespace {

TEST(WireLogTest, ReadsQueriesWithAndWithoutTimestamps) {
  const WireLog log = parseWireLog(
      "2026-01-02 03:04:05.678901\tF\t13\tQuery\t \"BEGIN\"\n"
      "2026-01-02 03:04:05.678901\tB\t10\tCommandComplete\t \"BEGIN\"\n"
      "B\t5\tReadyForQuery\t T\n"
      "F\tN\tParse\t \"stmt\" \"select \"a\"\nfrom t\" 1 23\n"
      "F\t4\tSync\n"
      "B\t5\tReadyForQuery\t T\n");
  EXPECT_EQ(log.roundTrips, 2);
  EXPECT_EQ(log.sql, (std::vector<std::string>{"BEGIN", "select \"a\"\nfrom t"}));
  EXPECT_EQ(log.messages.front(), "F Query");
}

TEST_F(PqextTest, TheWireLogSeesWhatLibpqSends) {
  record();
  run("SELECT 'two\nlines'");
  const Result result(PQexecParams(conn(), "SELECT \"oid\" FROM pg_class\nLIMIT 1", 0,
                                   nullptr, nullptr, nullptr, nullptr, 0));
  const WireLog log = recorded();
  EXPECT_EQ(log.roundTrips, 2);
  EXPECT_EQ(log.sql, (std::vector<std::string>{"SELECT 'two\nlines'",
                                               "SELECT \"oid\" FROM pg_class\nLIMIT 1"}));
}

}  // namespace
}  // namespace zev::test
