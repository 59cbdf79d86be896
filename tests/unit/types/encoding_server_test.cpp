/// Text in every encoding that the library, the server and iconv know: what the server
/// stores comes to the program in its environment's encoding, and goes back.
#include <iconv.h>
#include <libpq-fe.h>
#include <unistd.h>

#include <algorithm>

#include "core/owned.h"
#include "tests/server/address.h"
#include "types_fixture.h"
#include "zevoci/encodings.h"

namespace zevtest {
namespace {

/// An encoding of the library and the name by which iconv has its characters.
struct EncodingCase {
  int number;
  const char *iconvName;
  unsigned percentAgreed = 98;
};

std::ostream &operator<<(std::ostream &out, const EncodingCase &c) {
  return out << pg_encoding_to_char(c.number);
}

/// A conversion of the test's own.
class Conversion {
 public:
  Conversion(const char *to, const char *from) : cd_(iconv_open(to, from)) {
    if (cd_ == reinterpret_cast<iconv_t>(-1)) throw std::runtime_error(to);
  }
  ~Conversion() { iconv_close(cd_); }
  Conversion(const Conversion &) = delete;
  Conversion &operator=(const Conversion &) = delete;

  /// Empty when some character has no counterpart.
  std::string operator()(std::string from) const {
    std::string out(from.size() * 4 + 8, '\0');
    char *source = from.data();
    char *target = out.data();
    std::size_t left = from.size();
    std::size_t room = out.size();
    iconv(cd_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(cd_, &source, &left, &target, &room) != 0) return {};
    iconv(cd_, nullptr, nullptr, &target, &room);
    return out.substr(0, out.size() - room);
  }

 private:
  iconv_t cd_;
};

std::string hexOf(const std::string &bytes) {
  std::string out;
  char pair[3];
  for (const char c : bytes) {
    std::snprintf(pair, sizeof pair, "%02x",
                  static_cast<unsigned>(static_cast<unsigned char>(c)));
    out += pair;
  }
  return out;
}

std::string utf8Of(ub4 codePoint) {
  static const Conversion convert("UTF-8", "UTF-32LE");
  return convert(native(codePoint));
}

/// Code points of all scripts below the ideographs, and random ones of the rest.
std::vector<ub4> candidates() {
  std::vector<ub4> points;
  const auto all = [&points](ub4 from, ub4 to) {
    for (ub4 c = from; c <= to; ++c) points.push_back(c);
  };
  auto random = generator();
  const auto some = [&points, &random](ub4 from, ub4 to, int count) {
    while (count-- > 0) points.push_back(from + static_cast<ub4>(random() % (to - from)));
  };
  all(0x21, 0x7E);
  all(0xA1, 0x6FF);
  all(0xE01, 0xE5B);
  all(0x1E00, 0x1EFF);
  all(0x2010, 0x26FF);
  all(0x3001, 0x33FF);
  some(0x4E00, 0x9FA5, 2500);
  some(0xAC00, 0xD7A3, 1000);
  all(0xFF01, 0xFFE6);
  some(0x20000, 0x2A6D6, 200);
  return points;
}

/// A program in an environment of one encoding, logged on.
class Program {
 public:
  Program(ub4 mode, ub2 charset) : wide_(mode == OCI_UTF16) {
    unsetenv("NLS_LANG");
    unsetenv("NLS_DATE_FORMAT");
    EXPECT_EQ(OCIEnvNlsCreate(&env_, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr,
                              charset, 0),
              OCI_SUCCESS);
    void *handle = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env_, &handle, OCI_HTYPE_ERROR, 0, nullptr), OCI_SUCCESS);
    errhp_ = static_cast<OCIError *>(handle);
  }
  ~Program() {
    if (svchp_) OCILogoff(svchp_, errhp_);
    OCIHandleFree(env_, OCI_HTYPE_ENV);
  }
  Program(const Program &) = delete;
  Program &operator=(const Program &) = delete;

  sword logon() {
    const auto &at = zev::test::testServer();
    const std::string user = edge(at.user);
    const std::string password = edge(at.password);
    const std::string target = edge(at.host + ':' + at.port + '/' + at.db);
    return OCILogon(env_, errhp_, &svchp_, text(user), size(user), text(password),
                    size(password), text(target), size(target));
  }

  /// Stores `value` in the column that `insert` names as ":v".
  sword store(const std::string &insert, std::string value) {
    Statement statement(*this, insert);
    OCIBind *bind = nullptr;
    const std::string name = edge(":v");
    EXPECT_EQ(OCIBindByName(statement.handle, &bind, errhp_, text(name),
                            static_cast<sb4>(name.size()), value.data(),
                            static_cast<sb4>(value.size()), SQLT_CHR, nullptr, nullptr,
                            nullptr, 0, nullptr, OCI_DEFAULT),
              OCI_SUCCESS);
    return OCIStmtExecute(svchp_, statement.handle, errhp_, 1, 0, nullptr, nullptr,
                          OCI_COMMIT_ON_SUCCESS);
  }

  /// The one value of a query.
  std::string fetch(const std::string &query) {
    Statement statement(*this, query);
    std::vector<char> value(60000);
    ub2 length = 0;
    sb2 indicator = 0;
    OCIDefine *define = nullptr;
    EXPECT_EQ(OCIDefineByPos(statement.handle, &define, errhp_, 1, value.data(),
                             static_cast<sb4>(value.size()), SQLT_CHR, &indicator,
                             &length, nullptr, OCI_DEFAULT),
              OCI_SUCCESS);
    EXPECT_EQ(OCIStmtExecute(svchp_, statement.handle, errhp_, 1, 0, nullptr, nullptr,
                             OCI_DEFAULT),
              OCI_SUCCESS);
    EXPECT_EQ(indicator, 0);
    return {value.data(), length};
  }

 private:
  struct Statement {
    Statement(Program &program, const std::string &sql) {
      void *made = nullptr;
      EXPECT_EQ(OCIHandleAlloc(program.env_, &made, OCI_HTYPE_STMT, 0, nullptr),
                OCI_SUCCESS);
      handle = static_cast<OCIStmt *>(made);
      const std::string given = program.edge(sql);
      EXPECT_EQ(OCIStmtPrepare(handle, program.errhp_, text(given), size(given),
                               OCI_NTV_SYNTAX, OCI_DEFAULT),
                OCI_SUCCESS);
    }
    ~Statement() { OCIHandleFree(handle, OCI_HTYPE_STMT); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;
    OCIStmt *handle = nullptr;
  };

  static const OraText *text(const std::string &s) {
    return reinterpret_cast<const OraText *>(s.c_str());
  }
  static ub4 size(const std::string &s) { return static_cast<ub4>(s.size()); }
  /// An ASCII text as this program writes it.
  std::string edge(const std::string &ascii) const {
    return wide_ ? utf16(ascii) : ascii;
  }

  bool wide_;
  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  OCISvcCtx *svchp_ = nullptr;
};

/// A table of one text, on a connection that speaks UTF-8.
class Encodings : public testing::TestWithParam<EncodingCase> {
 protected:
  Encodings()
      : conn(PQconnectdb(zev::test::testServer().conninfo().c_str())),
        table("encoded_" + std::to_string(::getpid())) {
    if (PQstatus(conn) != CONNECTION_OK) throw std::runtime_error(PQerrorMessage(conn));
    PQsetClientEncoding(conn, "UTF8");
    run("create table " + table + " (t text)");
  }
  ~Encodings() override {
    run("drop table " + table);
    PQfinish(conn);
  }

  zev::PgResult run(const std::string &sql, const char *parameter = nullptr) {
    zev::PgResult result(PQexecParams(conn, sql.c_str(), parameter ? 1 : 0, nullptr,
                                      &parameter, nullptr, nullptr, 0));
    const auto status = PQresultStatus(result.get());
    EXPECT_TRUE(status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK)
        << PQerrorMessage(conn);
    return result;
  }

  /// What the server makes of each character in its own encoding of that name, in hex;
  /// empty where it has none, or another character comes back.
  std::vector<std::string> serversOwn(const std::vector<ub4> &points,
                                      const std::string &encoding) {
    run("create function pg_temp.encoded(c int) returns text language plpgsql as "
        "$$ declare bytes bytea; begin bytes := convert_to(chr(c), '" +
        encoding + "'); return case when convert_from(bytes, '" + encoding +
        "') = chr(c) then encode(bytes, 'hex') else '' end;"
        " exception when others then return ''; end $$");
    std::string list;
    for (const ub4 point : points)
      list += (list.empty() ? '{' : ',') + std::to_string(point);
    const auto result =
        run("select pg_temp.encoded(c) from unnest($1::int[]) with ordinality u(c, n) "
            "order by n",
            (list + '}').c_str());
    std::vector<std::string> out;
    for (int i = 0; i < PQntuples(result.get()); ++i) {
      out.emplace_back(PQgetvalue(result.get(), i, 0));
    }
    return out;
  }

  /// The text, in UTF-8, of the characters for which the server's table and iconv's
  /// agree. Most must; a few characters of one encoding differ between the two.
  std::string commonText(const EncodingCase &c) {
    const Conversion encode(c.iconvName, "UTF-8");
    std::vector<ub4> points = candidates();
    std::erase_if(points, [&encode](ub4 point) { return encode(utf8Of(point)).empty(); });
    const auto own = serversOwn(points, pg_encoding_to_char(c.number));
    EXPECT_EQ(own.size(), points.size());
    std::string text;
    std::size_t shared = 0;
    std::size_t agreed = 0;
    for (std::size_t i = 0; i < own.size(); ++i) {
      if (own[i].empty()) continue;
      ++shared;
      if (own[i] != hexOf(encode(utf8Of(points[i])))) continue;
      ++agreed;
      text += utf8Of(points[i]);
    }
    EXPECT_GE(agreed * 100, shared * c.percentAgreed);
    EXPECT_GT(agreed, 94u) << "nothing but ASCII";
    RecordProperty("characters", static_cast<int>(agreed));
    return text;
  }

  PGconn *conn;
  std::string table;
};

TEST_P(Encodings, TextComesAndGoesAsIconvConvertsIt) {
  const EncodingCase &c = GetParam();
  const std::string text = commonText(c);
  const std::string encoded = Conversion(c.iconvName, "UTF-8")(text);
  run("insert into " + table + " values ($1)", text.c_str());
  Program program(OCI_DEFAULT, static_cast<ub2>(c.number));
  ASSERT_EQ(program.logon(), OCI_SUCCESS);
  EXPECT_EQ(hexOf(program.fetch("select t from " + table)), hexOf(encoded));

  run("delete from " + table);
  EXPECT_EQ(program.store("insert into " + table + " values (:v)", encoded), OCI_SUCCESS);
  const auto stored = run("select encode(convert_to(t, 'UTF8'), 'hex') from " + table);
  ASSERT_EQ(PQntuples(stored.get()), 1);
  EXPECT_EQ(PQgetvalue(stored.get(), 0, 0), hexOf(text));
}

std::string nameOfEncoding(const testing::TestParamInfo<EncodingCase> &tested) {
  std::string name = pg_encoding_to_char(tested.param.number);
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(All, Encodings, testing::Values(
    EncodingCase{1,  "EUC-JP"},      EncodingCase{2,  "EUC-CN"},
    EncodingCase{3,  "EUC-KR"},      EncodingCase{4,  "EUC-TW", 75},
    EncodingCase{5,  "JOHAB"},       EncodingCase{6,  "UTF-8"},
    EncodingCase{8,  "ISO-8859-1"},  EncodingCase{9,  "ISO-8859-2"},
    EncodingCase{10, "ISO-8859-3"},  EncodingCase{11, "ISO-8859-4"},
    EncodingCase{12, "ISO-8859-9"},  EncodingCase{13, "ISO-8859-10"},
    EncodingCase{14, "ISO-8859-13"}, EncodingCase{15, "ISO-8859-14"},
    EncodingCase{16, "ISO-8859-15"}, EncodingCase{17, "ISO-8859-16"},
    EncodingCase{18, "CP1256"},      EncodingCase{19, "CP1258"},
    EncodingCase{21, "CP874"},       EncodingCase{22, "KOI8-R"},
    EncodingCase{23, "CP1251"},      EncodingCase{24, "CP1252"},
    EncodingCase{25, "ISO-8859-5"},  EncodingCase{26, "ISO-8859-6"},
    EncodingCase{27, "ISO-8859-7"},  EncodingCase{28, "ISO-8859-8"},
    EncodingCase{29, "CP1250"},      EncodingCase{30, "CP1253"},
    EncodingCase{31, "CP1254"},      EncodingCase{32, "CP1255"},
    EncodingCase{33, "CP1257"},      EncodingCase{34, "CP932"},
    EncodingCase{35, "BIG5"},        EncodingCase{36, "CP936"},
    EncodingCase{37, "UHC"},         EncodingCase{38, "GB18030"}),
    nameOfEncoding);
// clang-format on

// The bytes of the server's own encoding.
TEST_F(Encodings, SqlAsciiConvertsNothing) {
  const std::string text = "a\xE2\x82\xAC\xF0\x9F\x98\x80z";
  run("insert into " + table + " values ($1)", text.c_str());
  Program program(OCI_DEFAULT, kSqlAscii);
  ASSERT_EQ(program.logon(), OCI_SUCCESS);
  EXPECT_EQ(program.fetch("select t from " + table), text);
  run("delete from " + table);
  EXPECT_EQ(program.store("insert into " + table + " values (:v)", text), OCI_SUCCESS);
  EXPECT_STREQ(PQgetvalue(run("select t from " + table).get(), 0, 0), text.c_str());
}

TEST_F(Encodings, Utf16ComesAndGoesAsIconvConvertsIt) {
  std::string text;
  for (const ub4 point : candidates()) text += utf8Of(point);
  const std::string encoded = Conversion("UTF-16LE", "UTF-8")(text);
  run("insert into " + table + " values ($1)", text.c_str());
  Program program(OCI_UTF16, 0);
  ASSERT_EQ(program.logon(), OCI_SUCCESS);
  EXPECT_EQ(hexOf(program.fetch("select t from " + table)), hexOf(encoded));
  run("delete from " + table);
  EXPECT_EQ(program.store("insert into " + table + " values (:v)", encoded), OCI_SUCCESS);
  EXPECT_STREQ(PQgetvalue(run("select t from " + table).get(), 0, 0), text.c_str());
}

/// An encoding that this server has for itself alone.
TEST_F(Encodings, SessionFailsWhereTheServerCannotConvert) {
  constexpr ub2 kMuleInternal = 7;
  EXPECT_EQ(PQsetClientEncoding(conn, pg_encoding_to_char(kMuleInternal)), -1);
  Program program(OCI_DEFAULT, kMuleInternal);
  EXPECT_EQ(program.logon(), OCI_ERROR);
}

}  // namespace
}  // namespace zevtest
