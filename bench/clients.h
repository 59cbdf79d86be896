/// The two clients: libpq as one would use it by hand, and this library through oci.h.
#pragma once

#include <libpq-fe.h>
#include <oci.h>

#include <memory>
#include <string>

namespace bench {

/// Address and credentials, from ZEVOCI_TEST_HOST, _PORT, _DB, _USER and _PASSWORD.
struct Target {
  std::string host, port, db, user, password;

  static Target fromEnvironment();
  /// "host:port/db", the connect string of OCILogon.
  std::string connectString() const { return host + ":" + port + "/" + db; }
};

struct CloseConnection {
  void operator()(PGconn *conn) const noexcept { PQfinish(conn); }
};
struct ClearResult {
  void operator()(PGresult *result) const noexcept { PQclear(result); }
};
using PgConnection = std::unique_ptr<PGconn, CloseConnection>;
using PgResult = std::unique_ptr<PGresult, ClearResult>;

/// Connects as OCILogon does: parameters, client encoding, date style. Throws on failure.
PgConnection connect(const Target &to);

/// Throws with the server's words unless the result is one of success.
PgResult good(PGresult *result, PGconn *conn);
inline PgResult exec(PGconn *conn, const char *sql) {
  return good(PQexec(conn, sql), conn);
}

struct FreeEnvironment {
  void operator()(OCIEnv *env) const noexcept { OCIHandleFree(env, OCI_HTYPE_ENV); }
};
struct FreeStatement {
  void operator()(OCIStmt *stmt) const noexcept { OCIHandleFree(stmt, OCI_HTYPE_STMT); }
};
using Statement = std::unique_ptr<OCIStmt, FreeStatement>;

/// An environment that is logged on until it is destroyed.
class Session {
 public:
  explicit Session(const Target &to);
  ~Session();
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;

  Statement prepare(const std::string &sql);
  /// Binds `value` to a placeholder named with its colon.
  void bind(OCIStmt *stmt, const char *name, void *value, sb4 size, ub2 type);
  /// Gives a column an array of buffers of `size` bytes each, and of indicators.
  void define(OCIStmt *stmt, ub4 position, void *value, sb4 size, ub2 type, sb2 *nulls);
  void execute(OCIStmt *stmt, ub4 iters);
  /// Fetches up to `rows`; gives the number that came, 0 at the end.
  ub4 fetch(OCIStmt *stmt, ub4 rows);
  void commit();
  /// Throws with the record's text unless `status` is success.
  void must(sword status) const;

  OCIEnv *env() const { return env_.get(); }
  OCIError *err() const { return err_; }
  OCISvcCtx *svc() const { return svc_; }
  void logOn(const Target &to);
  void logOff();

 private:
  std::unique_ptr<OCIEnv, FreeEnvironment> env_;
  OCIError *err_ = nullptr;
  OCISvcCtx *svc_ = nullptr;
};

/// A protocol trace in a temporary file, as libpq writes it.
class Trace {
 public:
  Trace();
  ~Trace();
  Trace(const Trace &) = delete;
  Trace &operator=(const Trace &) = delete;

  const std::string &path() const { return path_; }
  /// Starts to trace a libpq connection here.
  void attach(PGconn *conn);
  /// Round trips traced so far: turns from sending to receiving.
  int trips() const;

 private:
  std::string path_;
  FILE *file_ = nullptr;
};

/// A session whose connection is traced into `trace`.
std::unique_ptr<Session> tracedSession(const Target &to, const Trace &trace);

}  // namespace bench
