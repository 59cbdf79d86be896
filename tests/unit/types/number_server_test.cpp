/// Random numbers from client text through VARNUM into the server's numeric and back. The
/// server's own arithmetic says what must arrive.
#include "core/owned.h"
#include "decimal_text.h"
#include "tests/server/address.h"
#include "types/number.h"
#include "types_fixture.h"
#include "zevoci/conversion.h"

namespace zevtest {
namespace {

constexpr int kBatch = 100;
constexpr int kParams = 3;  ///< of one number

/// The number as bound, the same as text, and how many decimals of it a VARNUM keeps.
std::string batchQuery() {
  std::string sql = "select n::text, n = trunc(t, k) from (values ";
  for (int i = 0; i < kBatch; ++i) {
    const auto param = [i](int n) { return "$" + std::to_string(i * kParams + n); };
    sql += (i ? ", (" : "(") + std::to_string(i) + ", " + param(1) + "::numeric, " +
           param(2) + "::numeric, " + param(3) + "::int4)";
  }
  return sql + ") as v (i, n, t, k) order by i";
}

/// A parameter that a converter made.
struct Sent {
  zev::Malloced<void> value;
  ub4 length = 0;
  ub1 format = 0;
};

class NumbersOnServer : public testing::Test {
 protected:
  NumbersOnServer() : conn(PQconnectdb(zev::test::testServer().conninfo().c_str())) {
    const zev::PgResult prepared(
        PQprepare(conn, "batch", batchQuery().c_str(), 0, nullptr));
    EXPECT_EQ(PQresultStatus(prepared.get()), PGRES_COMMAND_OK) << PQerrorMessage(conn);
  }
  ~NumbersOnServer() override { PQfinish(conn); }

  Sent bind(ub2 dty, const std::string &number) {
    Sent sent;
    void *out = nullptr;
    sb2 indicator = 0;
    std::string buffer = number;
    EXPECT_EQ(
        OCI2PQType(session.errhp, dty, buffer.data(), static_cast<sb4>(buffer.size()),
                   &indicator, NUMERICOID, &out, &sent.length, &sent.format),
        0);
    sent.value.reset(out);
    return sent;
  }

  /// The value of a server text that is fetched as a number.
  Decimal fetch(const char *field) {
    ub1 varnum[zev::kVarnumSize];
    ub4 length = sizeof varnum;
    sb2 indicator = 0;
    char text[80] = "";
    EXPECT_EQ(
        PQ2OCIType(session.errhp, NUMERICOID, field, static_cast<sb4>(std::strlen(field)),
                   0, SQLT_VNU, varnum, &length, &indicator, nullptr, 0),
        0);
    EXPECT_EQ(length, varnum[0] + 1u);
    EXPECT_EQ(ConvertVARNUMToString(varnum, text), 0);
    return decimalOf(text);
  }

  /// Sends `decimals` as the numbers that `encode` makes of them and compares.
  template <class Encode>
  void cross(ub2 dty, const std::vector<std::string> &decimals, std::size_t evenPairs,
             Encode &&encode);

  Session session;
  PGconn *conn;
};

template <class Encode>
void NumbersOnServer::cross(ub2 dty, const std::vector<std::string> &decimals,
                            std::size_t evenPairs, Encode &&encode) {
  std::vector<Sent> sent;
  std::vector<std::string> scales;
  std::vector<const char *> values;
  std::vector<int> lengths, formats;
  const auto add = [&](const char *value, ub4 length, int format) {
    values.push_back(value);
    lengths.push_back(static_cast<int>(length));
    formats.push_back(format);
  };
  scales.reserve(decimals.size());
  for (const std::string &decimal : decimals) {
    const Decimal value = decimalOf(decimal);
    const long kept = value.point % 2 != 0 ? 39 : static_cast<long>(2 * evenPairs);
    sent.push_back(bind(dty, encode(decimal)));
    scales.push_back(std::to_string(kept - value.point));
    add(static_cast<const char *>(sent.back().value.get()), sent.back().length,
        sent.back().format);
    add(decimal.c_str(), 0, 0);
    add(scales.back().c_str(), 0, 0);
  }
  const zev::PgResult result(
      PQexecPrepared(conn, "batch", static_cast<int>(values.size()), values.data(),
                     lengths.data(), formats.data(), 0));
  ASSERT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK) << PQerrorMessage(conn);
  for (int i = 0; i < kBatch; ++i) {
    const std::string &decimal = decimals[static_cast<std::size_t>(i)];
    const char *field = PQgetvalue(result.get(), i, 0);
    ASSERT_STREQ(PQgetvalue(result.get(), i, 1), "t") << decimal << " came as " << field;
    const Decimal arrived = cutToPairs(decimalOf(decimal), evenPairs);
    ASSERT_EQ(decimalOf(field), arrived) << decimal;
    ASSERT_EQ(fetch(field), cutToPairs(arrived, 19)) << decimal;
  }
}

int numbersToSend() {
  return rounds(20'000, 1'000'000);
}

template <class Make>
std::vector<std::string> batchOf(Make &&make) {
  std::vector<std::string> decimals;
  while (decimals.size() < kBatch) {
    const std::string decimal = make();
    if (!decimalOf(decimal).digits.empty()) decimals.push_back(decimal);
  }
  return decimals;
}

TEST_F(NumbersOnServer, RandomVarnumsCrossAndComeBack) {
  auto random = generator();
  for (int i = 0; i < numbersToSend() && !HasFatalFailure(); i += kBatch) {
    cross(SQLT_VNU, batchOf([&] { return randomDecimal(random); }), 20,
          [](const std::string &decimal) {
            ub1 out[zev::kVarnumSize] = {};
            EXPECT_EQ(ConvertStringToVARNUM(decimal.c_str(), out), 0);
            return std::string(out, out + sizeof out);
          });
  }
}

// A NUMBER below a hundredth is taken as a huge one on its way to the server.
TEST_F(NumbersOnServer, RandomNumbersCrossAndComeBack) {
  auto random = generator();
  const auto make = [&] {
    for (;;) {
      const std::string decimal = randomDecimal(random);
      if (decimalOf(decimal).point >= -1) return decimal;
    }
  };
  for (int i = 0; i < numbersToSend() / 10 && !HasFatalFailure(); i += kBatch) {
    cross(SQLT_NUM, batchOf(make), 19, [](const std::string &decimal) {
      ub1 out[zev::kNumberSize + 1] = {};
      EXPECT_EQ(ConvertStringToNUMBER(decimal.c_str(), out), 0);
      return std::string(out, out + zev::kNumberSize);
    });
  }
}

TEST_F(NumbersOnServer, ZeroCrosses) {
  for (const ub2 dty : {SQLT_NUM, SQLT_VNU}) {
    const std::string zero =
        dty == SQLT_NUM ? "\x80" + std::string(20, '\0') : "\x01\x80";
    const Sent sent = bind(dty, zero);
    const Oid type = NUMERICOID;
    const auto *value = static_cast<const char *>(sent.value.get());
    const int length = static_cast<int>(sent.length), format = sent.format;
    const zev::PgResult result(
        PQexecParams(conn, "select $1 + 1", 1, &type, &value, &length, &format, 0));
    EXPECT_STREQ(PQgetvalue(result.get(), 0, 0), "1");
  }
}

}  // namespace
}  // namespace zevtest
