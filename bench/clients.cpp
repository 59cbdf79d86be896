#include "bench/clients.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace bench {
namespace {

const OraText *oraText(const std::string &s) {
  return reinterpret_cast<const OraText *>(s.c_str());
}

ub4 length(const std::string &s) {
  return static_cast<ub4>(s.size());
}

std::string required(const char *name) {
  const char *value = std::getenv(name);
  if (!value)
    throw std::runtime_error(std::string(name) + " is not set; see bench/README.md");
  return value;
}

}  // namespace

Target Target::fromEnvironment() {
  return {required("ZEVOCI_TEST_HOST"), required("ZEVOCI_TEST_PORT"),
          required("ZEVOCI_TEST_DB"), required("ZEVOCI_TEST_USER"),
          required("ZEVOCI_TEST_PASSWORD")};
}

PgConnection connect(const Target &to) {
  const char *keywords[] = {"host", "port", "dbname", "user", "password", nullptr};
  const char *values[] = {to.host.c_str(), to.port.c_str(),     to.db.c_str(),
                          to.user.c_str(), to.password.c_str(), nullptr};
  PgConnection conn(PQconnectdbParams(keywords, values, 1));
  if (PQstatus(conn.get()) != CONNECTION_OK ||
      PQsetClientEncoding(conn.get(), "UTF8") != 0)
    throw std::runtime_error(PQerrorMessage(conn.get()));
  exec(conn.get(), "set DateStyle to 'ISO'");
  return conn;
}

PgResult good(PGresult *result, PGconn *conn) {
  PgResult owned(result);
  const ExecStatusType status = PQresultStatus(result);
  if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
    throw std::runtime_error(PQerrorMessage(conn));
  return owned;
}

Session::Session(const Target &to) {
  OCIEnv *env = nullptr;
  if (OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr) !=
      OCI_SUCCESS)
    throw std::runtime_error("no environment");
  env_.reset(env);
  void *err = nullptr;
  must(OCIHandleAlloc(env, &err, OCI_HTYPE_ERROR, 0, nullptr));
  err_ = static_cast<OCIError *>(err);
  logOn(to);
}

Session::~Session() {
  if (svc_) OCILogoff(svc_, err_);
}

void Session::logOn(const Target &to) {
  const std::string at = to.connectString();
  must(OCILogon(env(), err_, &svc_, oraText(to.user), length(to.user),
                oraText(to.password), length(to.password), oraText(at), length(at)));
}

void Session::logOff() {
  must(OCILogoff(svc_, err_));
  svc_ = nullptr;
}

Statement Session::prepare(const std::string &sql) {
  void *made = nullptr;
  must(OCIHandleAlloc(env(), &made, OCI_HTYPE_STMT, 0, nullptr));
  Statement stmt(static_cast<OCIStmt *>(made));
  must(OCIStmtPrepare(stmt.get(), err_, oraText(sql), length(sql), OCI_NTV_SYNTAX,
                      OCI_DEFAULT));
  return stmt;
}

void Session::bind(OCIStmt *stmt, const char *name, void *value, sb4 size, ub2 type) {
  OCIBind *bind = nullptr;
  must(OCIBindByName(stmt, &bind, err_, oraText(name), -1, value, size, type, nullptr,
                     nullptr, nullptr, 0, nullptr, OCI_DEFAULT));
}

void Session::define(OCIStmt *stmt, ub4 position, void *value, sb4 size, ub2 type,
                     sb2 *nulls) {
  OCIDefine *define = nullptr;
  must(OCIDefineByPos(stmt, &define, err_, position, value, size, type, nulls, nullptr,
                      nullptr, OCI_DEFAULT));
}

void Session::execute(OCIStmt *stmt, ub4 iters) {
  must(OCIStmtExecute(svc_, stmt, err_, iters, 0, nullptr, nullptr, OCI_DEFAULT));
}

ub4 Session::fetch(OCIStmt *stmt, ub4 rows) {
  const sword status = OCIStmtFetch2(stmt, err_, rows, OCI_FETCH_NEXT, 0, OCI_DEFAULT);
  if (status == OCI_SUCCESS) return rows;
  if (status != OCI_NO_DATA) must(status);
  ub4 fetched = 0;
  must(OCIAttrGet(stmt, OCI_HTYPE_STMT, &fetched, nullptr, OCI_ATTR_ROWS_FETCHED, err_));
  return fetched;
}

void Session::commit() {
  must(OCITransCommit(svc_, err_, OCI_DEFAULT));
}

void Session::must(sword status) const {
  if (status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO) return;
  OraText words[1024] = "";
  sb4 code = 0;
  if (err_) OCIErrorGet(err_, 1, nullptr, &code, words, sizeof words, OCI_HTYPE_ERROR);
  throw std::runtime_error("status " + std::to_string(status) + ", " +
                           std::to_string(code) + ": " +
                           reinterpret_cast<const char *>(words));
}

Trace::Trace() {
  char path[] = "/tmp/zevoci-bench-XXXXXX";
  const int fd = mkstemp(path);
  if (fd < 0) throw std::runtime_error("no temporary file for a trace");
  path_ = path;
  file_ = fdopen(fd, "w");
}

Trace::~Trace() {
  std::fclose(file_);
  unlink(path_.c_str());
}

void Trace::attach(PGconn *conn) {
  PQtrace(conn, file_);
  PQsetTraceFlags(conn, PQTRACE_SUPPRESS_TIMESTAMPS);
}

int Trace::trips() const {
  std::fflush(nullptr);  // the library's own stream to this file, too
  std::ifstream in(path_);
  int trips = 0;
  bool sending = false;
  for (std::string line; std::getline(in, line);) {
    const bool sent = line.find("\tF\t") != std::string::npos || line.starts_with("F\t");
    const bool received =
        line.find("\tB\t") != std::string::npos || line.starts_with("B\t");
    if (received && sending) ++trips;
    if (sent || received) sending = sent;
  }
  return trips;
}

std::unique_ptr<Session> tracedSession(const Target &to, const Trace &trace) {
  setenv("OCI_TRACE_PROTOCOL", trace.path().c_str(), 1);
  auto session = std::make_unique<Session>(to);
  unsetenv("OCI_TRACE_PROTOCOL");
  return session;
}

}  // namespace bench
