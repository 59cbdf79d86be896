/// Dates, times and intervals as the server writes them, read beside the server's own
/// arithmetic.
#include <cmath>
#include <cstring>
#include <vector>

#include "core/owned.h"
#include "datetime_fixture.h"
#include "tests/server/address.h"
#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/encode_datetime.h"

namespace zevtest {
namespace {

class ServersText : public testing::Test {
 protected:
  ServersText() : conn_(PQconnectdb(zev::test::testServer().conninfo().c_str())) {
    EXPECT_EQ(PQstatus(conn_), CONNECTION_OK) << PQerrorMessage(conn_);
    run("SELECT setseed(" +
        std::to_string(static_cast<double>(generator()() % 1000) / 1000) + ")");
  }
  ~ServersText() override { PQfinish(conn_); }

  zev::PgResult run(const std::string &sql) {
    zev::PgResult result(PQexec(conn_, sql.c_str()));
    EXPECT_EQ(std::string(PQresultErrorMessage(result.get())), "") << sql;
    return result;
  }
  /// Each row of a query of moments: its text, and its microseconds since 1970.
  void expectMoments(const std::string &moments) {
    const zev::PgResult rows = run(
        "SELECT t::text, (extract(epoch FROM t) * 1000000)::numeric(30)::text FROM (" +
        moments + ") AS s (t)");
    ASSERT_GT(PQntuples(rows.get()), 0);
    for (int i = 0; i < PQntuples(rows.get()); ++i) {
      const std::string text = PQgetvalue(rows.get(), i, 0);
      char work[zev::kWorkSize];
      char *fields[zev::kMostFields];
      sb4 types[zev::kMostFields], count = 0, dtype = 0, tz = 0;
      PGtm tm{};
      double fsec = 0;
      ASSERT_EQ(ParseDateTime(text.c_str(), work, sizeof work, fields, types,
                              zev::kMostFields, &count),
                0);
      ASSERT_EQ(DecodeDateTime(records_.errhp, fields, types, count, &dtype, &tm, &fsec,
                               &tz, 0),
                0)
          << text;
      Timestamp whole = 0;
      ASSERT_EQ(tm2timestamp(&tm, 0, &tz, &whole), 0) << text;
      const auto micros = (static_cast<sb8>(whole) + 946684800) * 1000000 +
                          static_cast<sb8>(std::lround(fsec * 1e6));
      ASSERT_EQ(std::to_string(micros), PQgetvalue(rows.get(), i, 1)) << text;
    }
  }

  LocalZone zone_{"UTC"};
  Environment records_;
  PGconn *conn_;
};

const std::string kMany = std::to_string(rounds(1000, 50'000));

TEST_F(ServersText, OfTimestamps) {
  expectMoments(
      "SELECT timestamp '0001-01-01' + random() * interval '9998 years'"
      " FROM generate_series(1, " +
      kMany + ")");
  expectMoments(
      "SELECT timestamp '4700-01-01 BC' + random() * interval '4699 years'"
      " FROM generate_series(1, " +
      kMany + ")");
  expectMoments(
      "SELECT date_trunc('second', timestamp '1970-01-01' + random() *"
      " interval '100 years') FROM generate_series(1, " +
      kMany + ")");
}

TEST_F(ServersText, OfDates) {
  expectMoments(
      "SELECT date '0001-01-01' + (random() * 3652000)::int"
      " FROM generate_series(1, " +
      kMany + ")");
}

TEST_F(ServersText, OfTimestampsInManyZones) {
  for (const char *zone :
       {"UTC", "Asia/Kolkata", "America/New_York", "Europe/Paris", "Australia/Lord_Howe",
        "America/St_Johns", "Asia/Kathmandu", "Pacific/Apia"}) {
    run(std::string("SET TimeZone = '") + zone + "'");
    expectMoments(
        "SELECT timestamptz '1950-01-01 00:00:00+00' + random() *"
        " interval '100 years' FROM generate_series(1, " +
        kMany + ")");
  }
}

/// Random intervals of one sign, since a mixed one has no SQL form that these fields
/// hold.
std::string intervals(const std::string &parts) {
  return "SELECT i::text, (extract(year FROM i) * 12 + extract(month FROM i))::int,"
         " extract(day FROM i)::int, (extract(hour FROM i) * 3600 + extract(minute FROM "
         "i)"
         " * 60 + extract(second FROM i))::float8 FROM (SELECT make_interval(" +
         parts + ") FROM generate_series(1, " + kMany + ")) AS s (i)";
}

TEST_F(ServersText, OfIntervalsInEveryStyle) {
  const std::string years =
                        "years => (random() * 50)::int, months => (random() * 20)::int",
                    days = "days => (random() * 100)::int",
                    time =
                        "hours => (random() * 50)::int, mins => (random() * 100)::int,"
                        " secs => round((random() * 100)::numeric, 6)::float8",
                    minus =
                        "days => -(random() * 100)::int, hours => -(random() * 50)::int,"
                        " secs => -round((random() * 100)::numeric, 6)::float8";
  const struct {
    const char *style;
    std::vector<std::string> parts;
  } rows[] = {
      {"postgres", {years + ", " + days + ", " + time, minus, years + ", " + minus}},
      {"postgres_verbose",
       {years + ", " + days + ", " + time, minus, years + ", " + minus}},
      {"iso_8601", {years + ", " + days + ", " + time, minus, years + ", " + minus}},
      {"sql_standard", {years, time, days + ", " + time}}};
  for (const auto &[style, all] : rows) {
    run(std::string("SET IntervalStyle = ") + style);
    for (const std::string &parts : all) {
      const zev::PgResult result = run(intervals(parts));
      ASSERT_GT(PQntuples(result.get()), 0);
      for (int i = 0; i < PQntuples(result.get()); ++i) {
        const std::string text = PQgetvalue(result.get(), i, 0);
        char work[zev::kWorkSize];
        char *fields[zev::kMostFields];
        sb4 types[zev::kMostFields], count = 0, dtype = 0;
        PGtm tm{};
        double fsec = 0;
        sb4 status = ParseDateTime(text.c_str(), work, sizeof work, fields, types,
                                   zev::kMostFields, &count);
        if (status == 0) {
          status = DecodeInterval(records_.errhp, fields, types, count, zev::kWholeRange,
                                  &dtype, &tm, &fsec);
        }
        if (status == -1)
          status = DecodeISO8601Interval(text.c_str(), &dtype, &tm, &fsec);
        ASSERT_EQ(status, 0) << text;
        Interval interval{};
        tm2interval(&tm, fsec, &interval);
        ASSERT_EQ(interval.month, std::atoi(PQgetvalue(result.get(), i, 1))) << text;
        ASSERT_EQ(interval.day, std::atoi(PQgetvalue(result.get(), i, 2))) << text;
        ASSERT_NEAR(interval.time, std::atof(PQgetvalue(result.get(), i, 3)), 1e-5)
            << text;
      }
    }
  }
}

TEST_F(ServersText, IsReadBackByTheServer) {
  auto random = generator();
  const auto pick = [&](sb4 least, sb4 most) {
    return std::uniform_int_distribution<sb4>(least, most)(random);
  };
  const struct {
    sb4 style;
    const char *dateStyle;
  } styles[] = {{1, "ISO, MDY"}, {2, "SQL, MDY"}, {3, "German"}, {0, "Postgres, MDY"}};
  for (const auto &[style, dateStyle] : styles) {
    run(std::string("SET DateStyle = '") + dateStyle + "'");
    for (int i = 0; i < 200; ++i) {
      const sb4 month = pick(1, 12);
      PGtm tm = dateTime(pick(-4000, 9999), month, pick(1, day_tab[0][month - 1]),
                         pick(0, 23), pick(0, 59), pick(0, 59));
      char text[zev::kLongestDateTime];
      EncodeDateTime(&tm, nullptr, nullptr, style, text, 0);
      const zev::PgResult row =
          run(std::string("SELECT extract(epoch FROM timestamp '") + text + "')::int8");
      Timestamp timestamp = 0;
      tm2timestamp(&tm, 0, nullptr, &timestamp);
      ASSERT_EQ(std::to_string(static_cast<sb8>(timestamp) + 946684800),
                PQgetvalue(row.get(), 0, 0))
          << text;
    }
  }
}

}  // namespace
}  // namespace zevtest
