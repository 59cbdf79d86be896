/// The converters against a real server: what it prints and sends is the measure of the
/// codecs.
#include <cinttypes>

#include "core/owned.h"
#include "tests/server/address.h"
#include "tests/server/wire_log.h"
#include "types/conversion_dispatch.h"
#include "types/numeric.h"
#include "types_fixture.h"

namespace zevtest {
namespace {

class ConversionOnServer : public testing::Test {
 protected:
  ConversionOnServer() : conn(PQconnectdb(zev::test::testServer().conninfo().c_str())) {
    if (PQstatus(conn) != CONNECTION_OK) throw std::runtime_error(PQerrorMessage(conn));
  }
  ~ConversionOnServer() override { PQfinish(conn); }

  zev::PgResult run(const char *sql) {
    zev::PgResult result(PQexec(conn, sql));
    const auto status = PQresultStatus(result.get());
    EXPECT_TRUE(status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK)
        << PQerrorMessage(conn);
    return result;
  }

  /// The texts of what `work` sends.
  template <class Work>
  std::vector<std::string> sentBy(Work &&work) {
    const std::string path =
        testing::TempDir() + "zev_types_" + std::to_string(::getpid());
    std::FILE *trace = std::fopen(path.c_str(), "w");
    PQtrace(conn, trace);
    work();
    PQuntrace(conn);
    std::fclose(trace);
    const auto log = zev::test::parseWireLog(zev::test::readFile(path));
    std::remove(path.c_str());
    return log.sql;
  }

  /// What the server shows of a parameter that was bound.
  std::string shown(const char *sql, Oid type, const void *value, ub4 length,
                    int format) {
    const auto *chars = static_cast<const char *>(value);
    const int size = static_cast<int>(length);
    const zev::PgResult result(
        PQexecParams(conn, sql, 1, &type, &chars, &size, &format, 0));
    EXPECT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK) << PQerrorMessage(conn);
    return PQgetvalue(result.get(), 0, 0);
  }

  /// What the server shows of a value that a converter made.
  std::string bound(const char *sql, ub2 dty, Oid type, std::string value) {
    void *out = nullptr;
    ub4 length = 0;
    ub1 format = 0;
    sb2 indicator = 0;
    EXPECT_EQ(OCI2PQType(session.errhp, dty, value.data(), static_cast<sb4>(value.size()),
                         &indicator, type, &out, &length, &format),
              0);
    const zev::Malloced<void> owned(out);
    return shown(sql, type, out, length, format);
  }

  /// The one value of a query, fetched in `format`.
  zev::PgResult value(const std::string &sql, int format) {
    zev::PgResult result(
        PQexecParams(conn, sql.c_str(), 0, nullptr, nullptr, nullptr, nullptr, format));
    EXPECT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK) << PQerrorMessage(conn);
    return result;
  }

  template <class T>
  T fetched(const std::string &sql, int format, ub2 dty) {
    const auto result = value(sql, format);
    T out{};
    ub4 size = sizeof out;
    EXPECT_EQ(PQ2OCIType(session.errhp, PQftype(result.get(), 0),
                         PQgetvalue(result.get(), 0, 0), PQgetlength(result.get(), 0, 0),
                         static_cast<ub1>(format), dty, &out, &size, nullptr, nullptr, 0),
              0)
        << sql;
    return out;
  }

  Session session;
  PGconn *conn;
};

constexpr Oid kNobodysOid = 4000000000u;

TEST_F(ConversionOnServer, UnknownTypeAsksOnceAndFails) {
  const auto sent = sentBy([&] {
    ub4 size = 0;
    EXPECT_EQ(PQ2OCIType_2(session.errhp, kNobodysOid, "x", 1, 0, SQLT_STR, nullptr,
                           &size, nullptr, nullptr, conn, 0),
              -1);
  });
  EXPECT_EQ(sent,
            std::vector<std::string>{"select oid from pg_type where typname = 'raw';"});
  EXPECT_EQ(session.takeRecord(), 932);
}

TEST_F(ConversionOnServer, UnknownTypeWithoutConnectionAsksNobody) {
  const auto sent = sentBy([&] {
    ub4 size = 0;
    EXPECT_EQ(PQ2OCIType(session.errhp, kNobodysOid, "x", 1, 0, SQLT_STR, nullptr, &size,
                         nullptr, nullptr, 0),
              -1);
  });
  EXPECT_TRUE(sent.empty());
  EXPECT_EQ(session.takeRecord(), 932);
}

TEST_F(ConversionOnServer, KnownTypeAsksNobody) {
  const auto sent = sentBy([&] {
    sb4 number = 0;
    ub4 size = sizeof number;
    EXPECT_EQ(PQ2OCIType_2(session.errhp, INT4OID, "5", 1, 0, SQLT_INT, &number, &size,
                           nullptr, nullptr, conn, 0),
              0);
    EXPECT_EQ(number, 5);
  });
  EXPECT_TRUE(sent.empty());
}

TEST_F(ConversionOnServer, NullOfAnUnknownTypeAsksNobody) {
  const auto sent = sentBy([&] {
    EXPECT_EQ(PQ2OCIType_2(session.errhp, kNobodysOid, nullptr, 0, 0, SQLT_STR, nullptr,
                           nullptr, nullptr, nullptr, conn, 1),
              0);
  });
  EXPECT_TRUE(sent.empty());
}

TEST_F(ConversionOnServer, RawTypeOfAnotherNumberHasTheRowOfRaw) {
  run("BEGIN");
  if (PQntuples(run("select 1 from pg_type where typname = 'raw'").get()) == 0) {
    run("CREATE TYPE raw AS ENUM ('x')");
  }
  const auto found = run("select oid from pg_type where typname = 'raw'");
  const auto oid =
      static_cast<Oid>(std::strtoul(PQgetvalue(found.get(), 0, 0), nullptr, 10));
  ASSERT_NE(IsValidPQDataType(oid), 0);
  for (const ub2 type : {SQLT_BIN, SQLT_STR, SQLT_VBI, SQLT_INT}) {
    EXPECT_EQ(findPQToOCIConversion(oid, type, conn),
              findPQToOCIConversion(12487, type, nullptr));
  }
  EXPECT_EQ(findPQToOCIConversion(oid, SQLT_BIN, conn), ConvertBYTEAOIDToSQLT_BIN);
  EXPECT_EQ(findPQToOCIConversion(oid, SQLT_BIN, nullptr), nullptr);
  run("ROLLBACK");
}

TEST_F(ConversionOnServer, FailedQuestionIsNoConversion) {
  run("BEGIN");
  zev::PgResult failed(PQexec(conn, "no such command"));
  EXPECT_EQ(findPQToOCIConversion(kNobodysOid, SQLT_STR, conn), nullptr);
  run("ROLLBACK");
}

TEST_F(ConversionOnServer, DescribedParametersGoByTheServer) {
  zev::PgResult(PQprepare(conn, "p", "select $1::int2, $2::text", 0, nullptr));
  const zev::PgResult described(PQdescribePrepared(conn, "p"));
  OCIStmt stmt{};
  stmt.pgResult = described.get();
  EXPECT_EQ(GetParamType(&stmt, 1, SQLT_STR, 10), Oid{INT2OID});
  EXPECT_EQ(GetParamType(&stmt, 2, SQLT_INT, 4), Oid{TEXTOID});
  EXPECT_EQ(GetParamType(&stmt, 0, SQLT_INT, 4), Oid{INT4OID})
      << "no position, no description";
}

TEST_F(ConversionOnServer, BoundValuesAreWhatTheServerReads) {
  const auto one = [&](ub2 dty, Oid type, const std::string &bytes) {
    return bound("select $1::text", dty, type, bytes);
  };
  EXPECT_EQ(one(SQLT_INT, INT2OID, native<sb4>(-300)), "-300");
  EXPECT_EQ(one(SQLT_INT, INT4OID, native<sb1>(-5)), "-5");
  EXPECT_EQ(one(SQLT_UIN, INT4OID, "\xC8"), "-56");
  EXPECT_EQ(one(SQLT_INT, INT8OID, native<sb8>(4294967301)), "4294967301");
  EXPECT_EQ(one(SQLT_INT, NUMERICOID, native<sb8>(4294967301)), "5");
  EXPECT_EQ(one(SQLT_FLT, FLOAT8OID, native(0.1)), "0.1");
  EXPECT_EQ(one(SQLT_FLT, FLOAT8OID, native(0.5f)), "0.5");
  EXPECT_EQ(one(SQLT_BFLOAT, FLOAT4OID, native(0.1f)), "0.1");
  EXPECT_EQ(one(SQLT_STR, 1043, "abc\0"s), "abc");
  EXPECT_EQ(one(SQLT_CHR, 1043, "abc  "), "abc");
  EXPECT_EQ(one(SQLT_AFC, 1043, "abc  "), "abc  ");
  EXPECT_EQ(one(SQLT_VCS, 1043, native<ub2>(3) + "abcdef"), "abc");
  EXPECT_EQ(one(SQLT_LVC, 1043, native<ub4>(3) + "abcdef"), "abc");
  EXPECT_EQ(one(SQLT_BIN, BYTEAOID, "\xDE\xAD"), "\\xdead");
  EXPECT_EQ(one(SQLT_VBI, BYTEAOID, native<ub2>(2) + "\xDE\xAD"), "\\xdead");
  EXPECT_EQ(one(SQLT_LVB, BYTEAOID, native<ub4>(1) + "\xDE\xAD"), "\\xde");
}

std::string randomNumber(std::mt19937_64 &random) {
  std::string number = random() % 2 ? "-" : "";
  for (std::size_t n = 1 + random() % 40; n > 0; --n)
    number += static_cast<char>('0' + random() % 10);
  if (random() % 4 != 0) {
    number += '.';
    for (std::size_t n = random() % 40; n > 0; --n) {
      number += random() % 3 ? static_cast<char>('0' + random() % 10) : '0';
    }
  }
  if (random() % 3 == 0)
    number += "e" + std::to_string(static_cast<int>(random() % 60) - 30);
  return number;
}

TEST_F(ConversionOnServer, RandomNumericsAreTheServersInBothDirections) {
  auto random = generator();
  for (int i = 0; i < 2000; ++i) {
    const std::string number = randomNumber(random);
    SCOPED_TRACE(number);
    const auto binary = value("select '" + number + "'::numeric", 1);
    const std::string text =
        PQgetvalue(value("select '" + number + "'::numeric", 0).get(), 0, 0);
    char target[400];
    ub4 size = sizeof target;
    ASSERT_EQ(ConvertNUMERICOIDToSQLT_STR(session.errhp, PQgetvalue(binary.get(), 0, 0),
                                          PQgetlength(binary.get(), 0, 0), 1, target,
                                          &size, nullptr, nullptr),
              0);
    ASSERT_EQ(target, text);

    numeric *record = nullptr;
    ASSERT_EQ(ConvertStringToNumeric(number.c_str(), &record), 0);
    const zev::Malloced<numeric> owned(record);
    const auto length = static_cast<ub4>(zev::numericSize(record->ndigits));
    ConvertNumericFromHostToNetOrder(record);
    ASSERT_EQ(std::string(reinterpret_cast<char *>(record), length),
              std::string(PQgetvalue(binary.get(), 0, 0),
                          static_cast<std::size_t>(PQgetlength(binary.get(), 0, 0))));
  }
}

TEST_F(ConversionOnServer, RandomNumericsRoundAsTheServerDoes) {
  auto random = generator();
  for (int i = 0; i < 1000; ++i) {
    const std::string number = randomNumber(random);
    const int dscale = static_cast<int>(random() % 45);
    SCOPED_TRACE(number + " to " + std::to_string(dscale));
    const auto rounded = value(
        "select round('" + number + "'::numeric, " + std::to_string(dscale) + ")", 0);
    numeric *record = nullptr;
    ASSERT_EQ(ConvertStringToNumeric(number.c_str(), &record), 0);
    const zev::Malloced<numeric> owned(record);
    char *printed = nullptr;
    ASSERT_EQ(ConvertNumericToString(record, &printed, dscale), 0);
    const zev::Malloced<> ownedText(printed);
    std::string ours = printed;
    if (ours.find_first_of("123456789") == ours.npos && ours[0] == '-') ours.erase(0, 1);
    ASSERT_EQ(ours, PQgetvalue(rounded.get(), 0, 0));
  }
}

TEST_F(ConversionOnServer, IntegersOfBothFormats) {
  for (const int format : {0, 1}) {
    EXPECT_EQ(fetched<sb2>("select (-32768)::int2", format, SQLT_INT), -32768);
    EXPECT_EQ(fetched<sb4>("select (-2147483648)::int4", format, SQLT_INT), SB4MINVAL);
    EXPECT_EQ(fetched<sb8>("select (-9223372036854775808)::int8", format, SQLT_INT),
              INT64_MIN);
    EXPECT_EQ(fetched<sb8>("select 9223372036854775807::numeric", format, SQLT_INT),
              INT64_MAX);
    EXPECT_EQ(fetched<double>("select (-0.1)::float8", format, SQLT_FLT), -0.1);
    EXPECT_EQ(fetched<double>("select 12.5::numeric", format, SQLT_FLT), 12.5);
    EXPECT_EQ(fetched<double>("select 7::int2", format, SQLT_FLT), 7);
    EXPECT_EQ(fetched<double>("select (-7)::int8", format, SQLT_FLT), -7);
  }
}

TEST_F(ConversionOnServer, RandomDoublesAsTheServerPrintsThem) {
  auto random = generator();
  char sql[80];
  for (int i = 0; i < 1000; ++i) {
    const auto bits = random();
    const auto number = std::bit_cast<double>(bits);
    if (number != number) continue;
    std::snprintf(sql, sizeof sql, "select '%.17g'::float8", number);
    ASSERT_EQ(fetched<sb8>(sql, 0, SQLT_FLT), static_cast<sb8>(bits)) << sql;
    ASSERT_EQ(fetched<sb8>(sql, 1, SQLT_FLT), static_cast<sb8>(bits)) << sql;
  }
}

}  // namespace
}  // namespace zevtest
