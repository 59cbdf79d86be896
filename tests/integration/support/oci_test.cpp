#include "tests/integration/support/oci_test.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "tests/server/address.h"

namespace zev::test {
namespace {

constexpr const char *kVariables[] = {
    "OCI_DEBUG_LEVEL",    "OCI_DEBUG_LOG", "OCI_DEBUG_MASK",  "OCI_DDL_COMMIT",
    "OCI_PG_VARCHARS",    "OCI_WITH_HOLD", "NODEFAULTPARAMS", "NLS_LANG",
    "NLS_DATE_FORMAT",    "NLS_NCHAR",     "ORA_OCI_UCBPKG",  "TNS_ADMIN",
    "OCI_TRACE_PROTOCOL",
};

void clearVariables() {
  for (const char *name : kVariables) unsetenv(name);
}

void *allocate(OCIEnv *env, ub4 type) {
  void *handle = nullptr;
  if (OCIHandleAlloc(env, &handle, type, 0, nullptr) != OCI_SUCCESS) {
    throw std::runtime_error("OCIHandleAlloc failed");
  }
  return handle;
}

std::string makeTraceFile() {
  std::string path = testing::TempDir() + "zevoci-wire-XXXXXX";
  const int file = mkstemp(path.data());
  if (file < 0) throw std::runtime_error("no file for the wire trace");
  close(file);
  return path;
}

}  // namespace

Statement::Statement(OCIEnv *env, OCIError *errhp, OCISvcCtx *svchp)
    : errhp_(errhp),
      svchp_(svchp),
      handle_(static_cast<OCIStmt *>(allocate(env, OCI_HTYPE_STMT))) {}

sword Statement::prepare(std::string_view text) {
  const Given given(text);
  return OCIStmtPrepare(handle(), errhp_, given.text(), given.size(), OCI_NTV_SYNTAX,
                        OCI_DEFAULT);
}

sword Statement::execute(ub4 iters, ub4 mode) {
  return OCIStmtExecute(svchp_, handle(), errhp_, iters, 0, nullptr, nullptr, mode);
}

sword Statement::fetch(ub4 rows, ub2 orientation, sb4 offset) {
  return OCIStmtFetch2(handle(), errhp_, rows, orientation, offset, OCI_DEFAULT);
}

sword Statement::bind(std::string_view placeholder, void *value, sb4 size, ub2 type,
                      sb2 *indicator, ub2 *length, ub2 *returnCode) {
  OCIBind *bind = nullptr;
  const Given name(placeholder);
  return OCIBindByName(handle(), &bind, errhp_, name.text(), name.size<sb4>(), value,
                       size, type, indicator, length, returnCode, 0, nullptr,
                       OCI_DEFAULT);
}

sword Statement::define(ub4 position, void *value, sb4 size, ub2 type, sb2 *indicator,
                        ub2 *length, ub2 *returnCode) {
  OCIDefine *define = nullptr;
  return OCIDefineByPos(handle(), &define, errhp_, position, value, size, type, indicator,
                        length, returnCode, OCI_DEFAULT);
}

ub4 Statement::attribute(ub4 number) const {
  ub4 value = 0;
  EXPECT_EQ(OCIAttrGet(handle(), OCI_HTYPE_STMT, &value, nullptr, number, errhp_),
            OCI_SUCCESS);
  return value;
}

sword Statement::setAttribute(ub4 number, ub4 value) {
  return OCIAttrSet(handle(), OCI_HTYPE_STMT, &value, sizeof value, number, errhp_);
}

OciTest::OciTest() : tracePath_(makeTraceFile()) {
  clearVariables();
}

OciTest::~OciTest() {
  clearVariables();
  unlink(tracePath_.c_str());
}

void OciTest::SetUp() {
  ASSERT_EQ(createEnv(&env_), OCI_SUCCESS);
  errhp_ = static_cast<OCIError *>(allocate(env_, OCI_HTYPE_ERROR));
  reconnect();
}

void OciTest::TearDown() {
  logoff();
  if (!env_) return;
  EXPECT_EQ(OCIHandleFree(env_, OCI_HTYPE_ENV), OCI_SUCCESS);
}

void OciTest::logoff() {
  if (!svchp_) return;
  EXPECT_EQ(OCILogoff(svchp_, errhp_), OCI_SUCCESS) << errorText();
  svchp_ = nullptr;
}

std::string OciTest::connectString() {
  const ServerAddress &server = testServer();
  return server.host + ':' + server.port + '/' + server.db;
}

OCISvcCtx *OciTest::logon() {
  const Given user(testServer().user), password(testServer().password),
      target(connectString());
  OCISvcCtx *service = nullptr;
  EXPECT_EQ(OCILogon(env_, errhp_, &service, user.text(), user.size(), password.text(),
                     password.size(), target.text(), target.size()),
            OCI_SUCCESS)
      << errorText();
  return service;
}

void OciTest::reconnect() {
  logoff();
  setenv("OCI_TRACE_PROTOCOL", tracePath_.c_str(), 1);
  svchp_ = logon();
  unsetenv("OCI_TRACE_PROTOCOL");
  ASSERT_NE(svchp_, nullptr);
}

void OciTest::setVariable(const char *name, const std::string &value) {
  setenv(name, value.c_str(), 1);
}

Statement OciTest::statement(std::string_view text) {
  Statement result(env_, errhp_, svchp_);
  EXPECT_EQ(result.prepare(text), OCI_SUCCESS) << errorText();
  return result;
}

void OciTest::run(std::string_view text) {
  EXPECT_EQ(statement(text).execute(), OCI_SUCCESS) << text << ": " << errorText();
}

void OciTest::commit() {
  EXPECT_EQ(OCITransCommit(svchp_, errhp_, OCI_DEFAULT), OCI_SUCCESS) << errorText();
}

void OciTest::rollback() {
  EXPECT_EQ(OCITransRollback(svchp_, errhp_, OCI_DEFAULT), OCI_SUCCESS) << errorText();
}

void OciTest::expectError(sb4 code, std::string_view text) {
  sb4 recorded = 0;
  OraText message[4096] = {};
  EXPECT_EQ(OCIErrorGet(errhp_, 1, nullptr, &recorded, message, sizeof message,
                        OCI_HTYPE_ERROR),
            OCI_SUCCESS)
      << "no error is recorded, expected " << code;
  const std::string got = decodedUpToEnd(message);
  EXPECT_EQ(recorded, code) << got;
  EXPECT_NE(got.find(text), std::string::npos) << got << " lacks " << text;
}

std::string OciTest::errorText(ub4 record) {
  sb4 code = 0;
  OraText message[4096] = {};
  const sword status = OCIErrorGet(errhp_, record, nullptr, &code, message,
                                   sizeof message, OCI_HTYPE_ERROR);
  return status == OCI_SUCCESS ? decodedUpToEnd(message) : "";
}

std::string OciTest::serverState() {
  OraText state[6] = {};
  OraText message[4096] = {};
  const sword status = OCIPGErrorGet(errhp_, 1, state, sizeof state, message,
                                     sizeof message, OCI_HTYPE_ERROR);
  return status == OCI_SUCCESS ? reinterpret_cast<const char *>(state) : "";
}

std::string OciTest::query(const std::string &sql) {
  if (!plain_) plain_.reset(PQconnectdb(testServer().conninfo().c_str()));
  struct Clear {
    void operator()(PGresult *result) const noexcept { PQclear(result); }
  };
  const std::unique_ptr<PGresult, Clear> result(PQexec(plain_.get(), sql.c_str()));
  const ExecStatusType status = PQresultStatus(result.get());
  EXPECT_TRUE(status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK)
      << sql << ": " << PQerrorMessage(plain_.get());
  if (PQntuples(result.get()) == 0) return "";
  return PQgetisnull(result.get(), 0, 0) ? "NULL" : PQgetvalue(result.get(), 0, 0);
}

WireLog OciTest::wireOf(const std::function<void()> &work) {
  std::fflush(nullptr);  // the library's trace stream among all others
  const std::size_t before = readFile(tracePath_).size();
  work();
  std::fflush(nullptr);
  WireLog log = parseWireLog(std::string_view(readFile(tracePath_)).substr(before));
  // The server is spoken to in the program's encoding of 8 bits, in UTF-8 otherwise.
  if (!isUtf16()) {
    for (std::string &sql : log.sql) sql = decoded(sql);
  }
  return log;
}

}  // namespace zev::test
