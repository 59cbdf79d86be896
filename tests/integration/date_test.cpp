/// Columns and binds of dates, times and intervals in every form that programs have.
#include <cstring>

#include "tests/integration/support/descriptor.h"
#include "tests/integration/support/statement_fixture.h"

namespace zev::test {
namespace {

class DateTest : public StatementFixture {
 protected:
  void SetUp() override {
    StatementFixture::SetUp();
    run("SET TimeZone = 'UTC'");
    run("CREATE TEMP TABLE dates (name text, d date, t timestamp, z timestamptz, x text,"
        " i interval)");
  }
  void store(const std::string &name, const std::string &moment) {
    const std::string quoted = "'" + moment + "'";
    run("INSERT INTO dates VALUES ('" + name + "', " + quoted + ", " + quoted + ", " +
        quoted + ", " + quoted + ", NULL)");
  }
  /// Fetches one value of `column`.
  sword fetch(const std::string &column, void *target, sb4 size, ub2 dty,
              sb2 *indicator = nullptr) {
    Statement stmt = statement("SELECT " + column + " FROM dates WHERE name = 'source'");
    EXPECT_EQ(stmt.define(1, target, size, dty, indicator), OCI_SUCCESS);
    return stmt.execute();
  }
  /// Stores a bound value into `column` of the row "copy".
  sword bindTo(const std::string &column, void *value, sb4 size, ub2 dty,
               sb2 *indicator = nullptr) {
    run("DELETE FROM dates WHERE name = 'copy'");
    Statement stmt =
        statement("INSERT INTO dates (name, " + column + ") VALUES ('copy', :v)");
    stmt.bind(":v", value, size, dty, indicator);
    return stmt.execute();
  }
  std::string copied(const std::string &column) {
    return inSession("SELECT coalesce(" + column +
                     "::text, 'null') FROM dates WHERE name = 'copy'");
  }
  static std::string hex(const void *bytes, std::size_t size) {
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
      char two[4];
      std::snprintf(two, sizeof two, "%02x", static_cast<const ub1 *>(bytes)[i]);
      text += two;
    }
    return text;
  }
};

TEST_F(DateTest, EveryColumnIntoSevenBytesAndBack) {
  store("source", "2001-02-03 04:05:06.25");
  const struct {
    const char *column, *bytes, *stored;
  } rows[] = {{"d", "78650203010101", "2001-02-03"},
              {"t", "78650203050607", "2001-02-03 04:05:06"},
              {"z", "78650203050607", "2001-02-03 04:05:06+00"},
              {"x", "78650203010101", "2001-02-03 00:00:00"}};
  for (const auto &[column, bytes, stored] : rows) {
    ub1 date[7];
    ASSERT_EQ(fetch(column, date, sizeof date, SQLT_DAT), OCI_SUCCESS) << errorText();
    EXPECT_EQ(hex(date, 7), bytes) << column;
    ASSERT_EQ(bindTo(column, date, sizeof date, SQLT_DAT), OCI_SUCCESS) << errorText();
    EXPECT_EQ(copied(column), stored);
  }
}

TEST_F(DateTest, EveryColumnIntoAnOciDateAndBack) {
  store("source", "2001-02-03 04:05:06");
  const struct {
    const char *column, *bytes, *stored;
  } rows[] = {{"d", "d107020300000000", "2001-02-03"},
              {"t", "d107020304050600", "2001-02-03 04:05:06"},
              {"z", "d107020304050600", "2001-02-03 04:05:06+00"},
              {"x", "d107020304050600", "2001-02-03 04:05:06"}};
  for (const auto &[column, bytes, stored] : rows) {
    OCIDate date;
    ASSERT_EQ(fetch(column, &date, sizeof date, SQLT_ODT), OCI_SUCCESS) << errorText();
    EXPECT_EQ(hex(&date, 8), bytes) << column;
    ASSERT_EQ(bindTo(column, &date, sizeof date, SQLT_ODT), OCI_SUCCESS) << errorText();
    EXPECT_EQ(copied(column), stored);
  }
}

TEST_F(DateTest, EveryColumnIntoDescriptorsAndBack) {
  store("source", "2001-02-03 04:05:06.25");
  const struct {
    ub2 dty;
    ub4 descriptor;
    const char *date, *stamp, *zoned;  ///< what arrives in the three columns
  } rows[] = {{SQLT_DATE, OCI_DTYPE_DATE, "2001-02-03", "2001-02-03 00:00:00",
               "2001-02-03 00:00:00+00"},
              {SQLT_TIMESTAMP, OCI_DTYPE_TIMESTAMP, "2001-02-03",
               "2001-02-03 04:05:06.25", "2001-02-03 04:05:06.25+00"},
              {SQLT_TIMESTAMP_TZ, OCI_DTYPE_TIMESTAMP_TZ, "2001-02-03",
               "2001-02-03 04:05:06.25", "2001-02-03 04:05:06.25+00"},
              {SQLT_TIMESTAMP_LTZ, OCI_DTYPE_TIMESTAMP_LTZ, "2001-02-03",
               "2001-02-03 04:05:06.25", "2001-02-03 04:05:06.25+00"}};
  for (const auto &row : rows) {
    const std::pair<const char *, const char *> columns[] = {
        {"d", row.date}, {"t", row.stamp}, {"z", row.zoned}};
    for (const auto &[column, stored] : columns) {
      Descriptor value(env(), row.descriptor);
      ASSERT_EQ(fetch(column, value.address(), sizeof(void *), row.dty), OCI_SUCCESS)
          << errorText();
      ASSERT_EQ(bindTo(column, value.address(), sizeof(void *), row.dty), OCI_SUCCESS)
          << row.dty << errorText();
      EXPECT_EQ(copied(column), stored) << row.dty;
    }
  }
}

TEST_F(DateTest, EveryColumnAsText) {
  store("source", "2001-02-03 04:05:06.25");
  const struct {
    const char *column, *text;
  } rows[] = {{"d", "2001-02-03"},
              {"t", "2001-02-03 04:05:06.25"},
              {"z", "2001-02-03 04:05:06.25+00"}};
  for (const auto &[column, text] : rows) {
    TextBuffer<40> value;
    ASSERT_EQ(fetch(column, value.value, 40, SQLT_STR), OCI_SUCCESS);
    EXPECT_STREQ(value.value, text);
    char chars[40];
    std::memset(chars, '~', sizeof chars);
    ASSERT_EQ(fetch(column, chars, 40, SQLT_CHR), OCI_SUCCESS);
    EXPECT_EQ(std::string(chars, std::strlen(text) + 1), std::string(text) + "~");
    sb2 indicator = 0;
    EXPECT_EQ(fetch(column, chars, 4, SQLT_CHR, &indicator), OCI_SUCCESS_WITH_INFO);
    expectError(1406);
    EXPECT_EQ(indicator, static_cast<sb2>(std::strlen(text) - 4));
  }
}

TEST_F(DateTest, NullsBothWays) {
  run("INSERT INTO dates (name) VALUES ('source')");
  for (const char *column : {"d", "t", "z", "x"}) {
    ub1 date[8] = {};
    Descriptor value(env(), OCI_DTYPE_TIMESTAMP_TZ);
    const struct {
      ub2 dty;
      void *target;
    } rows[] = {{SQLT_DAT, date},
                {SQLT_ODT, date},
                {SQLT_TIMESTAMP, value.address()},
                {SQLT_TIMESTAMP_TZ, value.address()}};
    for (const auto &[dty, target] : rows) {
      sb2 indicator = 7;
      EXPECT_EQ(fetch(column, target, 8, dty, &indicator), OCI_SUCCESS);
      EXPECT_EQ(indicator, -1);
      ASSERT_EQ(bindTo(column, target, 8, dty, &indicator), OCI_SUCCESS) << errorText();
      EXPECT_EQ(copied(column), "null");
    }
  }
}

TEST_F(DateTest, YearsBeforeChristAndTheEndsOfTime) {
  store("source", "0044-03-15 04:05:06 BC");
  ub1 bytes[7];
  ASSERT_EQ(fetch("t", bytes, 7, SQLT_DAT), OCI_SUCCESS);
  EXPECT_EQ(hex(bytes, 7), "6439030f050607");
  ASSERT_EQ(bindTo("t", bytes, 7, SQLT_DAT), OCI_SUCCESS) << errorText();
  EXPECT_EQ(copied("t"), "0044-03-15 04:05:06 BC");

  run("DELETE FROM dates");
  store("source", "infinity");
  TextBuffer<20> text;
  ASSERT_EQ(fetch("t", text.value, 20, SQLT_STR), OCI_SUCCESS);
  EXPECT_STREQ(text.value, "infinity");
  EXPECT_EQ(fetch("t", bytes, 7, SQLT_DAT), OCI_ERROR);
  expectError(1891);
}

TEST_F(DateTest, TextThatIsNoDate) {
  run("INSERT INTO dates (name, x) VALUES ('source', 'february 30 2001')");
  ub1 bytes[7];
  EXPECT_EQ(fetch("x", bytes, 7, SQLT_DAT), OCI_ERROR);
  expectError(1891);
  run("UPDATE dates SET x = '2001-02-03 24:00:00'");
  OCIDate date;
  ASSERT_EQ(fetch("x", &date, sizeof date, SQLT_ODT), OCI_SUCCESS);
  EXPECT_EQ(hex(&date, 7), "d1070203180000");
}

TEST_F(DateTest, IntervalsInEveryStyleOfTheServer) {
  for (const char *style : {"postgres", "postgres_verbose", "iso_8601", "sql_standard"}) {
    run(std::string("SET IntervalStyle = ") + style);
    for (const char *span : {"1 day 02:03:04", "1 year 2 mons", "-3 days -04:05:06"}) {
      run("DELETE FROM dates");
      run(std::string("INSERT INTO dates (name, i) VALUES ('source', '") + span + "')");
      Descriptor value(env(), OCI_DTYPE_INTERVAL_DS);
      const bool isReadable = std::string(style) != "sql_standard" || span[0] != '-';
      const sword status = fetch("i", value.address(), sizeof(void *), SQLT_INTERVAL_DS);
      if (!isReadable) continue;
      ASSERT_EQ(status, OCI_SUCCESS) << style << ' ' << span;
      ASSERT_EQ(bindTo("i", value.address(), sizeof(void *), SQLT_INTERVAL_DS),
                OCI_SUCCESS)
          << errorText();
      EXPECT_EQ(inSession("SELECT (a.i = b.i)::text FROM dates a, dates b"
                          " WHERE a.name = 'source' AND b.name = 'copy'"),
                "true")
          << style << ' ' << span;
    }
  }
}

TEST_F(DateTest, ArraysOfDatesArriveInTheirRows) {
  std::vector<ub1> bytes(7 * 100);
  for (std::size_t i = 0; i < 100; ++i) {
    const ub1 date[] = {120, 101, 2, static_cast<ub1>(1 + i % 28), 5, 6, 7};
    std::memcpy(&bytes[7 * i], date, 7);
  }
  Statement stmt = statement("INSERT INTO dates (name, t) VALUES ('row', :t)");
  stmt.bind(":t", bytes.data(), 7, SQLT_DAT);
  ASSERT_EQ(stmt.execute(100), OCI_SUCCESS) << errorText();
  Statement all = statement("SELECT t FROM dates ORDER BY ctid");
  std::vector<ub1> back(bytes.size());
  all.define(1, back.data(), 7, SQLT_DAT);
  ASSERT_EQ(all.execute(100), OCI_SUCCESS) << errorText();
  EXPECT_TRUE(back == bytes);
}

}  // namespace
}  // namespace zev::test
