/// Random byte strings to and from the server, in each form that it sends.
#include "core/owned.h"
#include "tests/server/address.h"
#include "types/conversion_dispatch.h"
#include "types_fixture.h"
#include "zevoci/string_value.h"

namespace zevtest {
namespace {

constexpr ub4 kRoom = 12000;

std::string randomBytes(std::mt19937_64 &random) {
  // Short ones are as likely as long ones; every fourth is text, with backslashes.
  std::string bytes(random() % (std::size_t{1} << random() % 13), '\0');
  const bool printable = random() % 4 == 0;
  for (char &c : bytes)
    c = printable ? "ab\\ z09"[random() % 7] : static_cast<char>(random());
  return bytes;
}

std::string digitsOf(const std::string &bytes, const char *digits) {
  std::string out;
  for (const char c : bytes) {
    out += digits[static_cast<unsigned char>(c) >> 4];
    out += digits[static_cast<unsigned char>(c) & 15];
  }
  return out;
}

/// Bytes behind a target's count.
template <class Prefix>
std::string counted(const std::string &bytes) {
  return native(static_cast<Prefix>(bytes.size())) + bytes;
}

class BytesOnServer : public testing::Test {
 protected:
  BytesOnServer() : conn(PQconnectdb(zev::test::testServer().conninfo().c_str())) {
    if (PQstatus(conn) != CONNECTION_OK) throw std::runtime_error(PQerrorMessage(conn));
  }
  ~BytesOnServer() override { PQfinish(conn); }

  zev::PgResult send(const char *sql, const void *value, ub4 length, int format,
                     int resultFormat) {
    const Oid type = BYTEAOID;
    const auto *chars = static_cast<const char *>(value);
    const int size = static_cast<int>(length);
    zev::PgResult result(
        PQexecParams(conn, sql, 1, &type, &chars, &size, &format, resultFormat));
    EXPECT_EQ(PQresultStatus(result.get()), PGRES_TUPLES_OK) << PQerrorMessage(conn);
    return result;
  }

  /// The bytes of a target that a field of `bytes` fills, as far as the length says.
  std::string fetched(const PGresult *field, ub1 format, ub2 type) {
    std::vector<char> target(kRoom + 1);
    std::vector<OraText> text(kRoom + 1);
    OCIString string{kRoom, 0, text.data()};
    OCIString *pointer = &string;
    const bool isString = type == SQLT_VST;
    ub4 length = kRoom;
    sb2 indicator = 0;
    EXPECT_EQ(PQ2OCIType(session.errhp, BYTEAOID, PQgetvalue(field, 0, 0),
                         PQgetlength(field, 0, 0), format, type,
                         isString ? static_cast<void *>(&pointer) : target.data(),
                         &length, &indicator, nullptr, 0),
              0);
    EXPECT_EQ(indicator, 0);
    if (!isString) return {target.data(), length};
    return {text.data(), text.data() + string.length};
  }

  void expectDigits(const PGresult *field, const std::string &digits);
  void expectBytes(const PGresult *field, ub1 format, const std::string &bytes);

  Session session;
  PGconn *conn;
};

void BytesOnServer::expectDigits(const PGresult *field, const std::string &digits) {
  for (const ub2 type : {SQLT_CHR, SQLT_AFC, SQLT_LNG, SQLT_STR, SQLT_VST}) {
    ASSERT_EQ(fetched(field, 0, type), digits) << type;
  }
  ASSERT_EQ(fetched(field, 0, SQLT_AVC), digits + '\0');
  ASSERT_EQ(fetched(field, 0, SQLT_VCS), counted<ub2>(digits));
  ASSERT_EQ(fetched(field, 0, SQLT_LVC), counted<ub4>(digits));
}

void BytesOnServer::expectBytes(const PGresult *field, ub1 format,
                                const std::string &bytes) {
  ASSERT_EQ(fetched(field, format, SQLT_BIN), bytes);
  ASSERT_EQ(fetched(field, format, SQLT_LBI), bytes);
  ASSERT_EQ(fetched(field, format, SQLT_VBI), counted<ub2>(bytes));
  ASSERT_EQ(fetched(field, format, SQLT_LVB), counted<ub4>(bytes));
}

TEST_F(BytesOnServer, RandomBytesArriveInEveryForm) {
  auto random = generator();
  for (int i = 0; i < 400 && !HasFatalFailure(); ++i) {
    const std::string bytes = randomBytes(random);
    if (bytes.empty()) continue;
    const bool asHex = random() % 2 == 0;
    PQclear(PQexec(conn, asHex ? "set bytea_output = hex" : "set bytea_output = escape"));
    const auto length = static_cast<ub4>(bytes.size());
    const auto text = send("select $1", bytes.data(), length, 1, 0);
    // The server's own digits are lower case; those made from escapes are upper case.
    expectDigits(text.get(),
                 digitsOf(bytes, asHex ? "0123456789abcdef" : "0123456789ABCDEF"));
    expectBytes(text.get(), 0, bytes);
    const auto binary = send("select $1", bytes.data(), length, 1, 1);
    expectBytes(binary.get(), 1, bytes);
  }
}

TEST_F(BytesOnServer, RandomBytesAreBoundWhole) {
  auto random = generator();
  for (int i = 0; i < 400 && !HasFatalFailure(); ++i) {
    const std::string bytes = randomBytes(random);
    if (bytes.empty()) continue;
    for (const ub2 type : {SQLT_BIN, SQLT_LBI, SQLT_VBI, SQLT_LVB}) {
      std::string value = type == SQLT_VBI   ? counted<ub2>(bytes)
                          : type == SQLT_LVB ? counted<ub4>(bytes)
                                             : bytes;
      void *out = nullptr;
      ub4 length = 0;
      ub1 format = 0;
      sb2 indicator = 0;
      ASSERT_EQ(
          OCI2PQType(session.errhp, type, value.data(), static_cast<sb4>(value.size()),
                     &indicator, BYTEAOID, &out, &length, &format),
          0);
      const zev::Malloced<void> owned(out);
      const auto shown = send("select encode($1, 'hex')", out, length, format, 0);
      ASSERT_EQ(PQgetvalue(shown.get(), 0, 0), digitsOf(bytes, "0123456789abcdef"));
    }
  }
}

}  // namespace
}  // namespace zevtest
