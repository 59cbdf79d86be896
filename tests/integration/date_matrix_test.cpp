/// Every pair of date column and external type, fetched and sent back: random moments and
/// the ends of the calendar, in sessions of several zones, beside what the server itself
/// says of them.
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>

#include "tests/integration/support/descriptor.h"
#include "tests/integration/support/statement_fixture.h"
#include "tests/support/random_inputs.h"

namespace zev::test {
namespace {

/// What the server says of one row.
struct Row {
  std::string text;
  bool isNull = false;
  bool isFinite = false;
  int year = 0;  ///< 0 is the first year before Christ
  int month = 0, day = 0, hour = 0, minute = 0, second = 0;
  int microseconds = 0;
  int zone = 0;  ///< seconds east of Greenwich

  /// The count that a descriptor holds: the fraction is cut, not rounded.
  ub4 count() const { return static_cast<ub4>(std::trunc(microseconds / 1e6 * 1e6)); }
  std::string date() const { return printed(false) + era(); }
  std::string moment() const { return printed(true) + era(); }
  std::string era() const { return year < 1 ? " BC" : ""; }
  std::string printed(bool withTime) const {
    char out[96];
    int length = std::snprintf(out, sizeof out, "%04d-%02d-%02d",
                               year < 1 ? 1 - year : year, month, day);
    if (withTime)
      std::snprintf(out + length, 32, " %02d:%02d:%02d", hour, minute, second);
    return out;
  }
};

struct Column {
  const char *name;
  const char *type;
  bool hasZone;
};
constexpr Column kColumns[] = {
    {"d", "date", false}, {"t", "timestamp", false}, {"z", "timestamptz", true}};

/// Whether a bound value of a type names its zone.
bool isZoned(ub2 dty) {
  return dty == SQLT_TIMESTAMP_TZ || dty == SQLT_TIMESTAMP_LTZ;
}

class DateMatrixTest : public StatementFixture,
                       public testing::WithParamInterface<const char *> {
 protected:
  void SetUp() override {
    StatementFixture::SetUp();
    run(std::string("SET TimeZone = '") + GetParam() + "'");
    run("CREATE TEMP TABLE source (n serial, t timestamp, d date, z timestamptz)");
    run("CREATE TEMP TABLE copy (t timestamp, d date, z timestamptz)");
    for (const char *value :
         {"NULL", "'0044-03-15 04:05:06 BC'", "'4712-01-01 00:00:00 BC'",
          "'0001-01-01 00:00:00'", "'0099-12-31 23:59:59'", "'2001-02-03 24:00:00'",
          "'1999-12-31 23:59:59.999999'", "'2000-02-29 12:00:00.5'",
          "'2004-01-01 00:00:00.000001'", "'9999-12-31 23:59:59'", "'12000-01-01'",
          "'infinity'", "'-infinity'"})
      store(value);
    std::mt19937_64 random = zevtest::generator();
    const int count = zevtest::rounds(40, 2000);
    for (int i = 0; i < count; ++i) {
      // Microseconds since the year 1, up to the year 9990.
      store("timestamp '0001-01-02' + " +
            std::to_string(random() % (sb8{86400} * 3648000 * 1000000)) +
            " * interval '1 microsecond'");
    }
  }
  void store(const std::string &value) {
    run("INSERT INTO source (t) VALUES (" + value + ")");
    run("UPDATE source SET d = t, z = t WHERE n = (SELECT max(n) FROM source)");
  }
  /// The rows of a column by the server's own functions.
  std::vector<Row> rowsOf(const Column &column) {
    std::vector<Row> rows;
    const int count = std::stoi(inSession("SELECT count(*) FROM source"));
    for (int n = 1; n <= count; ++n) rows.push_back(row(column, n));
    return rows;
  }
  Row row(const Column &column, int n) {
    const std::string c = column.name,
                      from = " FROM source WHERE n = " + std::to_string(n);
    Row r;
    r.text = inSession("SELECT coalesce(" + c + "::text, 'null')" + from);
    r.isNull = r.text == "null";
    r.isFinite = !r.isNull && r.text.find("infinity") == std::string::npos;
    if (!r.isFinite) return r;
    const std::string stamp = c + "::timestamp";
    const std::string all =
        inSession("SELECT to_char(" + stamp +
                  ", 'MM DD HH24 MI SS US ') || extract(year FROM " + c + ") || ' ' || " +
                  (column.hasZone ? "extract(timezone FROM z)::int" : "0") + from);
    std::sscanf(all.c_str(), "%d %d %d %d %d %d %d %d", &r.month, &r.day, &r.hour,
                &r.minute, &r.second, &r.microseconds, &r.year, &r.zone);
    if (r.year < 0) ++r.year;
    return r;
  }
  /// Fetches the column's rows one by one; `check` gets each with its status.
  template <class Check>
  void fetchAll(const Column &column, void *target, sb4 size, ub2 dty,
                const Check &check) {
    const std::vector<Row> rows = rowsOf(column);
    Statement stmt =
        statement(std::string("SELECT ") + column.name + " FROM source ORDER BY n");
    sb2 indicator = 0;
    ub2 length = 0, returnCode = 0;
    ASSERT_EQ(stmt.define(1, target, size, dty, &indicator, &length, &returnCode),
              OCI_SUCCESS);
    ASSERT_EQ(stmt.execute(0), OCI_SUCCESS) << errorText();
    for (const Row &r : rows) {
      SCOPED_TRACE(r.text);
      indicator = 77;
      const sword status = stmt.fetch();
      if (r.isNull) {
        EXPECT_EQ(status, OCI_SUCCESS);
        EXPECT_EQ(indicator, -1);
        EXPECT_EQ(returnCode, 1405);
        continue;
      }
      check(r, status, indicator, length);
    }
    EXPECT_EQ(stmt.fetch(), OCI_NO_DATA);
  }
  /// Binds a value to a column; what the server then has there is `expected`.
  void expectStored(const Column &column, void *value, sb4 size, ub2 dty,
                    const std::string &expected) {
    run("DELETE FROM copy");
    Statement stmt = statement(
        std::string("INSERT INTO copy (") + column.name + ") VALUES (" +
        (dty == SQLT_STR ? std::string("CAST(:v AS ") + column.type + ")" : ":v") + ")");
    sb2 indicator = 0;
    stmt.bind(":v", value, size, dty, &indicator);
    ASSERT_EQ(stmt.execute(), OCI_SUCCESS) << errorText();
    const std::string read = isZoned(dty) ? "::timestamptz::" : "::";
    ASSERT_EQ(inSession(std::string("SELECT (") + column.name + " = '" + expected + "'" +
                        read + column.type + ")::text FROM copy"),
              "true")
        << expected << " as " << dty << ", not "
        << inSession(std::string("SELECT ") + column.name + "::text FROM copy");
  }
  void expectRefused(sword status) {
    EXPECT_EQ(status, OCI_ERROR);
    expectError(1891);
  }
};

TEST_P(DateMatrixTest, SevenBytes) {
  for (const Column &column : kColumns) {
    ub1 bytes[7];
    fetchAll(column, bytes, 7, SQLT_DAT,
             [&](const Row &r, sword status, sb2, ub2 length) {
               if (!r.isFinite) return expectRefused(status);
               ASSERT_EQ(status, OCI_SUCCESS) << errorText();
               EXPECT_EQ(length, 7);
               const ub1 expected[7] = {static_cast<ub1>(r.year / 100 + 100),
                                        static_cast<ub1>(r.year % 100 + 100),
                                        static_cast<ub1>(r.month),
                                        static_cast<ub1>(r.day),
                                        static_cast<ub1>(r.hour + 1),
                                        static_cast<ub1>(r.minute + 1),
                                        static_cast<ub1>(r.second + 1)};
               EXPECT_EQ(std::memcmp(bytes, expected, 7), 0);
               expectStored(column, bytes, 7, SQLT_DAT, r.moment());
             });
  }
}

TEST_P(DateMatrixTest, OciDates) {
  for (const Column &column : kColumns) {
    OCIDate date;
    std::memset(&date, '~', sizeof date);
    fetchAll(column, &date, sizeof date, SQLT_ODT,
             [&](const Row &r, sword status, sb2, ub2) {
               // What is no date leaves the target as it was, and is no error of the
               // call.
               ASSERT_EQ(status, OCI_SUCCESS) << errorText();
               if (!r.isFinite) return;
               EXPECT_EQ(date.OCIDateYYYY, r.year);
               EXPECT_EQ(date.OCIDateMM, r.month);
               EXPECT_EQ(date.OCIDateDD, r.day);
               EXPECT_EQ(date.OCIDateTime.OCITimeHH, r.hour);
               EXPECT_EQ(date.OCIDateTime.OCITimeMI, r.minute);
               EXPECT_EQ(date.OCIDateTime.OCITimeSS, r.second);
               expectStored(column, &date, sizeof date, SQLT_ODT, r.moment());
             });
  }
}

/// "+05:30", "-03:30" or "+08" for a displacement, with its sign turned.
std::string mirrored(int zone) {
  char out[32];
  const int size = std::abs(zone);
  std::snprintf(out, sizeof out, "%c%02d:%02d:%02d", zone > 0 ? '-' : '+', size / 3600,
                size / 60 % 60, size % 60);
  return out;
}

TEST_P(DateMatrixTest, Descriptors) {
  struct Target {
    ub2 dty;
    ub4 descriptor;
  };
  for (const Target &target :
       {Target{SQLT_DATE, OCI_DTYPE_DATE}, Target{SQLT_TIMESTAMP, OCI_DTYPE_TIMESTAMP},
        Target{SQLT_TIMESTAMP_TZ, OCI_DTYPE_TIMESTAMP_TZ},
        Target{SQLT_TIMESTAMP_LTZ, OCI_DTYPE_TIMESTAMP_LTZ}}) {
    const bool isDate = target.dty == SQLT_DATE;
    for (const Column &column : kColumns) {
      Descriptor value(env(), target.descriptor);
      fetchAll(column, value.address(), sizeof(void *), target.dty,
               [&](const Row &r, sword status, sb2, ub2) {
                 if (!r.isFinite) return expectRefused(status);
                 ASSERT_EQ(status, OCI_SUCCESS) << errorText();
                 sb2 year = 0;
                 ub1 month = 0, day = 0, hour = 0, minute = 0, second = 0;
                 ub4 fraction = 0;
                 ASSERT_EQ(OCIDateTimeGetDate(env(), errhp(), value.as<OCIDateTime>(),
                                              &year, &month, &day),
                           OCI_SUCCESS);
                 EXPECT_EQ(year, r.year);
                 EXPECT_EQ(month, r.month);
                 EXPECT_EQ(day, r.day);
                 if (isDate)
                   return expectStored(column, value.address(), sizeof(void *),
                                       target.dty, r.date());
                 ASSERT_EQ(OCIDateTimeGetTime(env(), errhp(), value.as<OCIDateTime>(),
                                              &hour, &minute, &second, &fraction),
                           OCI_SUCCESS);
                 EXPECT_EQ(hour, r.hour);
                 EXPECT_EQ(minute, r.minute);
                 EXPECT_EQ(second, r.second);
                 EXPECT_EQ(fraction, r.count());
                 // The count's digits are sent as they are, without the zeros before
                 // them; a zone is sent as the text of its displacement west.
                 std::string sent = r.printed(true);
                 if (fraction != 0 && r.year > 0) sent += '.' + std::to_string(fraction);
                 if (isZoned(target.dty))
                   sent += column.hasZone ? mirrored(r.zone) : "-00";
                 expectStored(column, value.address(), sizeof(void *), target.dty,
                              sent + r.era());
               });
    }
  }
}

TEST_P(DateMatrixTest, Text) {
  struct Target {
    ub2 dty;
    int before;  ///< bytes of the length before the text
    bool endsInNul;
  };
  constexpr Target kTargets[] = {{SQLT_CHR, 0, false}, {SQLT_LNG, 0, false},
                                 {SQLT_AFC, 0, false}, {SQLT_STR, 0, true},
                                 {SQLT_AVC, 0, true},  {SQLT_VCS, 2, false},
                                 {SQLT_LVC, 4, false}};
  for (const Target &target : kTargets) {
    for (const Column &column : kColumns) {
      for (const int room : {60, 9}) {
        char buffer[64];
        fetchAll(
            column, buffer, room, target.dty,
            [&](const Row &r, sword status, sb2 indicator, ub2) {
              const int whole = static_cast<int>(r.text.size());
              const int kept = room - target.before - target.endsInNul;
              const bool isWhole = whole <= kept;
              const std::string text = r.text.substr(0, static_cast<std::size_t>(kept));
              EXPECT_EQ(std::string(buffer + target.before, text.size()), text)
                  << target.dty;
              if (target.endsInNul) {
                EXPECT_EQ(buffer[text.size()], '\0');
              }
              if (isWhole) {
                EXPECT_EQ(status, OCI_SUCCESS);
                EXPECT_EQ(indicator, 0);
                Given bound(r.text);
                return expectStored(column, bound.data(), bound.room(), SQLT_STR, r.text);
              }
              // A text that has room only without the length before it fails.
              const bool isNarrow = target.dty == SQLT_VCS && whole <= room;
              EXPECT_EQ(status, isNarrow           ? OCI_ERROR
                                : target.endsInNul ? OCI_SUCCESS
                                                   : OCI_SUCCESS_WITH_INFO)
                  << target.dty;
              if (!isNarrow && !target.endsInNul) expectError(1406);
              if (target.before == 0) {
                EXPECT_EQ(indicator, whole + target.endsInNul - room);
              }
            });
      }
    }
  }
}

using IntervalMatrixTest = StatementFixture;

TEST_F(IntervalMatrixTest, RandomOnesInEveryStyleOfTheServer) {
  const std::string years =
                        "years => (random() * 50)::int, months => (random() * 20)::int",
                    days = "days => (random() * 100)::int",
                    time =
                        "hours => (random() * 50)::int, mins => (random() * 100)::int,"
                        " secs => round((random() * 100)::numeric, 6)::float8",
                    minus =
                        "days => -(random() * 100)::int, hours => -(random() * 50)::int,"
                        " secs => -round((random() * 100)::numeric, 6)::float8";
  const std::vector<std::string> mixed = {years + ", " + days + ", " + time, minus};
  const struct {
    const char *style;
    std::vector<std::string> parts;
  } rows[] = {{"postgres", mixed},
              {"postgres_verbose", mixed},
              {"iso_8601", mixed},
              {"sql_standard", {years, time, days + ", " + time}}};
  run("CREATE TEMP TABLE spans (n serial, i interval, back interval)");
  for (const auto &[style, all] : rows) {
    for (const std::string &parts : all) {
      for (const ub2 dty : {SQLT_INTERVAL_YM, SQLT_INTERVAL_DS}) {
        run("TRUNCATE spans RESTART IDENTITY");
        run("INSERT INTO spans (i) SELECT make_interval(" + parts +
            ") FROM generate_series(1, 20)");
        run(std::string("SET IntervalStyle = ") + style);
        for (sb4 n = 1; n <= 20; ++n) {
          Descriptor span(env(), OCI_DTYPE_INTERVAL_DS);
          Statement select =
              statement("SELECT i FROM spans WHERE n = " + std::to_string(n));
          ASSERT_EQ(select.define(1, span.address(), sizeof(void *), dty), OCI_SUCCESS);
          ASSERT_EQ(select.execute(), OCI_SUCCESS) << errorText();
          Statement update = statement("UPDATE spans SET back = :i WHERE n = :n");
          update.bind(":i", span.address(), sizeof(void *), dty);
          update.bind(":n", n);
          ASSERT_EQ(update.execute(), OCI_SUCCESS) << errorText();
        }
        // The fraction of the seconds is not sent.
        EXPECT_EQ(
            inSession("SELECT count(*) FROM spans WHERE back = date_trunc('second', i)"),
            "20")
            << style << " of " << parts;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Zones, DateMatrixTest,
                         testing::Values("UTC", "Asia/Kolkata", "America/St_Johns"),
                         [](const auto &zone) {
                           std::string name = zone.param;
                           for (char &c : name)
                             c = std::isalpha(static_cast<unsigned char>(c)) ? c : '_';
                           return name;
                         });

}  // namespace
}  // namespace zev::test
