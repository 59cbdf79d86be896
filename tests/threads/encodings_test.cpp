/// Programs of different encodings in threads of one process: statements, placeholders,
/// names, values and error texts of each come and go in its own.
#include <gtest/gtest.h>
#include <iconv.h>
#include <libpq-fe.h>
#include <oci.h>
#include <unistd.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/server/address.h"

namespace zev::test {
namespace {

constexpr int kRounds = 4;
constexpr int kRows = 15;

/// An encoding and letters that it has and the others, but for UTF-16, do not.
struct Encoding {
  const char *iconvName;
  ub4 mode;
  ub2 charset;
  std::size_t unit;
  const char *letters;  ///< in UTF-8
};
constexpr Encoding kEncodings[] = {
    {"UTF-16LE", OCI_UTF16, 0, 2, "äЖ漢한😀"}, {"UTF-8", 0, 6, 1, "ßЯ字글𝒳"},
    {"ISO-8859-1", 0, 8, 1, "àéîõü"},         {"CP1251", 0, 23, 1, "Привет"},
    {"EUC-JP", 0, 1, 1, "日本語カナ"},        {"GB18030", 0, 38, 1, "汉语😀"},
    {"UTF-16LE", OCI_UTF16, 0, 2, "שלום😎"},   {"KOI8-R", 0, 22, 1, "мир"},
};

std::string converted(const char *to, const char *from, const std::string &text) {
  const iconv_t conversion = iconv_open(to, from);
  const auto none = reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)
  if (conversion == none) throw std::runtime_error(to);
  std::string out(4 * text.size(), '\0');
  char *in = const_cast<char *>(text.data()), *at = out.data();
  std::size_t left = text.size(), room = out.size();
  const bool failed = iconv(conversion, &in, &left, &at, &room) == std::size_t(-1);
  iconv_close(conversion);
  if (failed) throw std::runtime_error(std::string(from) + " to " + to + ": " + text);
  out.resize(out.size() - room);
  return out;
}

struct Finish {
  void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
};

/// The one value of a query that is run past the library.
std::string ask(const std::string &sql) {
  const std::unique_ptr<PGconn, Finish> conn(
      PQconnectdb(testServer().conninfo().c_str()));
  PQsetClientEncoding(conn.get(), "UTF8");
  PGresult *result = PQexec(conn.get(), sql.c_str());
  const std::string value =
      PQntuples(result) == 1 ? PQgetvalue(result, 0, 0) : PQresultErrorMessage(result);
  PQclear(result);
  return value;
}

/// One thread's program. Its texts are in UTF-8 here and in its encoding to the library.
class Program {
 public:
  Program(const Encoding &encoding, const std::string &table)
      : encoding_(encoding), table_(table) {}

  /// The whole life of an environment; what it met that is not as it must be, or "".
  std::string run(int round) {
    const sword made =
        encoding_.charset
            ? OCIEnvNlsCreate(&env_, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0,
                              nullptr, encoding_.charset, 0)
            : OCIEnvCreate(&env_, OCI_THREADED | encoding_.mode, nullptr, nullptr,
                           nullptr, nullptr, 0, nullptr);
    if (made != OCI_SUCCESS) return "no environment";
    std::string wrong = logOn() ? work(round) : "no logon: " + message();
    if (svchp_ && OCILogoff(svchp_, errhp_) != OCI_SUCCESS) wrong += message();
    svchp_ = nullptr;
    OCIHandleFree(env_, OCI_HTYPE_ENV);
    return wrong.empty() ? "" : std::string(encoding_.iconvName) + ": " + wrong;
  }

 private:
  std::string encoded(const std::string &utf8) const {
    return converted(encoding_.iconvName, "UTF-8", utf8);
  }
  std::string decoded(const std::string &bytes) const {
    return converted("UTF-8", encoding_.iconvName, bytes);
  }
  static const OraText *text(const std::string &bytes) {
    return reinterpret_cast<const OraText *>(bytes.data());
  }
  static ub4 size(const std::string &bytes) { return static_cast<ub4>(bytes.size()); }

  void *alloc(ub4 type) {
    void *handle = nullptr;
    OCIHandleAlloc(env_, &handle, type, 0, nullptr);
    return handle;
  }
  bool logOn() {
    const ServerAddress &at = testServer();
    errhp_ = static_cast<OCIError *>(alloc(OCI_HTYPE_ERROR));
    const std::string user = encoded(at.user), password = encoded(at.password),
                      target = encoded(at.host + ':' + at.port + '/' + at.db);
    return OCILogon(env_, errhp_, &svchp_, text(user), size(user), text(password),
                    size(password), text(target), size(target)) == OCI_SUCCESS;
  }
  OCIStmt *statement(const std::string &sql) {
    auto *stmt = static_cast<OCIStmt *>(alloc(OCI_HTYPE_STMT));
    const std::string given = encoded(sql);
    const sword status = OCIStmtPrepare(stmt, errhp_, text(given), size(given),
                                        OCI_NTV_SYNTAX, OCI_DEFAULT);
    return status == OCI_SUCCESS ? stmt : nullptr;
  }
  sword execute(OCIStmt *stmt) {
    return OCIStmtExecute(svchp_, stmt, errhp_, 1, 0, nullptr, nullptr, OCI_DEFAULT);
  }

  std::string work(int round) {
    const std::string value = encoding_.letters + std::to_string(round);
    std::string wrong = store(value);
    if (wrong.empty()) wrong = readBack(value);
    if (wrong.empty()) wrong = fail(value);
    return wrong;
  }
  std::string store(const std::string &value) {
    OCIStmt *stmt = statement("INSERT INTO " + table_ + " VALUES (:v, '" + value + "')");
    std::string bytes = encoded(value);
    const std::string name = encoded(":v");
    OCIBind *bind = nullptr;
    if (!stmt ||
        OCIBindByName(stmt, &bind, errhp_, text(name), static_cast<sb4>(name.size()),
                      bytes.data(), static_cast<sb4>(bytes.size()), SQLT_CHR, nullptr,
                      nullptr, nullptr, 0, nullptr, OCI_DEFAULT)) {
      return "no bind: " + message();
    }
    for (int row = 0; row < kRows; ++row) {
      if (execute(stmt) != OCI_SUCCESS) return "no row: " + message();
    }
    return OCITransCommit(svchp_, errhp_, OCI_DEFAULT) ? message() : "";
  }
  std::string readBack(const std::string &value) {
    OCIStmt *stmt = statement("SELECT bound, written FROM " + table_ +
                              " WHERE bound = '" + value + "' AND bound = written");
    char bound[64], written[64];
    ub2 boundLength = 0, writtenLength = 0;
    OCIDefine *first = nullptr, *second = nullptr;
    if (!stmt ||
        OCIDefineByPos(stmt, &first, errhp_, 1, bound, sizeof bound, SQLT_CHR, nullptr,
                       &boundLength, nullptr, OCI_DEFAULT) ||
        OCIDefineByPos(stmt, &second, errhp_, 2, written, sizeof written, SQLT_CHR,
                       nullptr, &writtenLength, nullptr, OCI_DEFAULT)) {
      return "no define: " + message();
    }
    int rows = 0;
    for (sword status = execute(stmt); status == OCI_SUCCESS;
         status = OCIStmtFetch(stmt, errhp_, 1, OCI_FETCH_NEXT, OCI_DEFAULT)) {
      if (decoded({bound, boundLength}) != value)
        return "bound " + decoded({bound, boundLength});
      if (decoded({written, writtenLength}) != value) return "written differs";
      ++rows;
    }
    return rows == kRows ? "" : std::to_string(rows) + " rows: " + message();
  }
  /// An error of the server in this program's own words.
  std::string fail(const std::string &value) {
    OCIStmt *stmt = statement("DO $$ BEGIN RAISE EXCEPTION 'no " + value + "'; END $$");
    if (!stmt || execute(stmt) != OCI_ERROR) return "no failure";
    const std::string told = message();
    return told.find("no " + value) != told.npos ? "" : "told: " + told;
  }
  std::string message() {
    sb4 code = 0;
    OraText buffer[1024] = {};
    if (OCIErrorGet(errhp_, 1, nullptr, &code, buffer, sizeof buffer, OCI_HTYPE_ERROR)) {
      return "no record";
    }
    const char *bytes = reinterpret_cast<char *>(buffer);
    std::size_t length = 0;
    while (bytes[length] || (encoding_.unit == 2 && bytes[length + 1])) {
      length += encoding_.unit;
    }
    return decoded({bytes, length});
  }

  const Encoding &encoding_;
  std::string table_;
  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  OCISvcCtx *svchp_ = nullptr;
};

/// Keeps the C library's modules for all encodings loaded: ThreadSanitizer does not see
/// the lock under which they come and go.
class LoadedModules {
 public:
  LoadedModules() {
    for (const Encoding &encoding : kEncodings) {
      open_.push_back(iconv_open("UTF-8", encoding.iconvName));
      open_.push_back(iconv_open(encoding.iconvName, "UTF-8"));
    }
  }
  ~LoadedModules() {
    for (const iconv_t conversion : open_) iconv_close(conversion);
  }
  LoadedModules(const LoadedModules &) = delete;
  LoadedModules &operator=(const LoadedModules &) = delete;

 private:
  std::vector<iconv_t> open_;
};

TEST(EncodingThreads, DoNotDisturbEachOther) {
  const LoadedModules modules;
  const std::string table = "threads_encodings_" + std::to_string(getpid());
  ask("CREATE TABLE " + table + " (bound text, written text)");
  std::vector<std::string> wrong(std::size(kEncodings));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < std::size(kEncodings); ++i) {
    threads.emplace_back([&, i] {
      Program program(kEncodings[i], table);
      for (int round = 0; round < kRounds && wrong[i].empty(); ++round) {
        wrong[i] = program.run(round);
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  for (const std::string &each : wrong) EXPECT_EQ(each, "");
  // What the server has is the letters themselves, whatever they came as.
  for (const Encoding &encoding : kEncodings) {
    EXPECT_EQ(ask("SELECT count(*) FROM " + table + " WHERE bound LIKE '" +
                  encoding.letters + "_'"),
              std::to_string(kRounds * kRows))
        << encoding.iconvName;
  }
  ask("DROP TABLE " + table);
}

}  // namespace
}  // namespace zev::test
