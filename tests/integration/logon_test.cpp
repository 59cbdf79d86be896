#include <unistd.h>

#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

std::string percentEncoded(const std::string &text) {
  std::string out;
  for (const char c : text) {
    char encoded[8];
    std::snprintf(encoded, sizeof encoded, "%%%02X", static_cast<unsigned char>(c));
    out += encoded;
  }
  return out;
}

class Logon : public OciTest {
 protected:
  const ServerAddress &at = testServer();

  sword logonTo(const std::string &target, const std::string &user,
                const std::string &password, OCISvcCtx **service) {
    const Given name(user), secret(password), where(target);
    return OCILogon(env(), errhp(), service, name.text(), name.size(), secret.text(),
                    secret.size(), where.text(), where.size());
  }
  /// Logs on to `target`, which must fail with 12154 and `words`.
  void expectRefused(const std::string &target, const std::string &password,
                     const std::string &words) {
    OCISvcCtx *service = reinterpret_cast<OCISvcCtx *>(this);
    EXPECT_EQ(logonTo(target, at.user, password, &service), OCI_ERROR);
    EXPECT_EQ(service, nullptr);
    expectError(12154, words);
  }
  std::string ask(OCISvcCtx *service, const std::string &sql) {
    Statement asking(env(), errhp(), service);
    TextBuffer<> answer;
    EXPECT_EQ(asking.prepare(sql), OCI_SUCCESS);
    asking.define(1, answer);
    EXPECT_EQ(asking.execute(), OCI_SUCCESS) << errorText();
    return answer.text();
  }
  void expectConnected(const std::string &target) {
    OCISvcCtx *service = nullptr;
    ASSERT_EQ(logonTo(target, at.user, at.password, &service), OCI_SUCCESS)
        << errorText();
    EXPECT_EQ(ask(service, "select current_database()::text"), at.db);
    EXPECT_EQ(OCILogoff(service, errhp()), OCI_SUCCESS);
  }
};

TEST_F(Logon, ReachesTheServerByEveryFormOfAddress) {
  expectConnected(at.host + ":" + at.port + "/" + at.db);
  expectConnected("//" + at.host + ":" + at.port + "/" + at.db);
  for (const char *scheme : {"postgres://", "postgresql://"}) {
    expectConnected(scheme + at.host + ":" + at.port + "/" + at.db);
    expectConnected(scheme + percentEncoded(at.host) + ":" + at.port + "/" +
                    percentEncoded(at.db) + "?connect_timeout=10");
  }
  // The session's own name and password count, whatever the URI says.
  expectConnected("postgres://nobody:wrong@" + at.host + ":" + at.port + "/" + at.db);
}

TEST_F(Logon, AWrongPasswordIsRefusedInTheServersWords) {
  expectRefused(connectString(), "wrong",
                "password authentication failed for user \"" + at.user);
}

TEST_F(Logon, AnAbsentDatabaseIsRefusedInTheServersWords) {
  expectRefused(at.host + ":" + at.port + "/no_such_db", at.password,
                "database \"no_such_db\" does not exist");
}

TEST_F(Logon, NobodyListeningIsRefusedInTheClientLibrarysWords) {
  expectRefused("127.0.0.1:1/zev", at.password, "Connection refused");
}

TEST_F(Logon, ANameThatIsNotKnownIsRefused) {
  setVariable("HOME", "/nonexistent");
  setVariable("TNS_ADMIN", "/nonexistent");
  expectRefused(
      "a/b:c", at.password,
      "KESTREL-12154: TNS:could not resolve the connect identifier specified \n");
}

TEST_F(Logon, UserAndAddressMustBeGivenAndAPasswordNeedNot) {
  OCISvcCtx *service = nullptr;
  const Given user(at.user), password(at.password), target(connectString());
  EXPECT_EQ(OCILogon(env(), errhp(), &service, nullptr, 0, password.text(),
                     password.size(), target.text(), target.size()),
            OCI_ERROR);
  expectError(21560, "KESTREL-21560: null, invalid, or out of range argument 4");
  EXPECT_EQ(OCILogon(env(), errhp(), &service, user.text(), user.size(), password.text(),
                     password.size(), nullptr, 0),
            OCI_ERROR);
  expectError(21560, "KESTREL-21560: null, invalid, or out of range argument 8");
  EXPECT_EQ(OCILogon(env(), errhp(), &service, user.text(), user.size(), nullptr, 0,
                     target.text(), target.size()),
            OCI_ERROR);
  expectError(12154, "no password supplied");
  EXPECT_EQ(OCILogon(env(), errhp(), nullptr, user.text(), user.size(), nullptr, 0,
                     target.text(), target.size()),
            OCI_ERROR);
}

TEST_F(Logon, AFailureLeavesNoServiceContextAndTheEnvironmentUsable) {
  for (int i = 0; i < 3; ++i) expectRefused(connectString(), "wrong", "");
  expectConnected(connectString());
}

TEST_F(Logon, TheStatementCacheModeOfTheSecondFormConnectsToo) {
  OCISvcCtx *service = nullptr;
  const Given user(at.user), password(at.password), target(connectString());
  for (const ub4 mode : {0u, 4u, 1u}) {
    EXPECT_EQ(
        OCILogon2(env(), errhp(), &service, user.text(), user.size(), password.text(),
                  password.size(), target.text(), target.size(), mode),
        OCI_SUCCESS);
    EXPECT_EQ(OCILogoff(service, errhp()), OCI_SUCCESS);
  }
}

TEST_F(Logon, LogoffNeedsServerAndSession) {
  OCISvcCtx *empty = nullptr;
  OCIHandleAlloc(env(), reinterpret_cast<void **>(&empty), OCI_HTYPE_SVCCTX, 0, nullptr);
  EXPECT_EQ(OCILogoff(empty, errhp()), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCILogoff(nullptr, errhp()), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIHandleFree(empty, OCI_HTYPE_SVCCTX), OCI_SUCCESS);
}

TEST_F(Logon, ASessionStartsWithTwoCommandsAndEndsWithNone) {
  std::string path = testing::TempDir() + "zevoci-logon-XXXXXX";
  close(mkstemp(path.data()));
  setVariable("OCI_TRACE_PROTOCOL", path);
  OCISvcCtx *service = logon();
  unsetenv("OCI_TRACE_PROTOCOL");
  const char *encoding = isUtf16()               ? "UTF8"
                         : programText().charset ? "WINDOWS-1251"
                                                 : "SQL_ASCII";
  const std::vector<std::string> wanted = {
      "set client_encoding to '" + std::string(encoding) + "'", "set DateStyle to 'ISO'"};
  const WireLog start = parseWireLog(readFile(path));
  EXPECT_EQ(start.sql, wanted);
  EXPECT_EQ(start.roundTrips, 2);
  EXPECT_EQ(OCILogoff(service, errhp()), OCI_SUCCESS);
  EXPECT_EQ(parseWireLog(readFile(path)).messages, start.messages);
  unlink(path.c_str());
}

TEST_F(Logon, DatesAreInIsoStyleAndATransactionIsNotOpen) {
  EXPECT_EQ(ask(svchp(), "select current_setting('DateStyle')").substr(0, 3), "ISO");
}

TEST_F(Logon, ADateFormatThatTheServerDoesNotKnowIsItsError) {
  setVariable("NLS_DATE_FORMAT", "YYYY");
  OCISvcCtx *service = nullptr;
  EXPECT_EQ(logonTo(connectString(), at.user, at.password, &service), OCI_ERROR);
  unsetenv("NLS_DATE_FORMAT");
  EXPECT_EQ(serverState(), "42601");
  expectError(16945);
}

/// The steps of a logon one by one.
class Steps : public Logon {
 protected:
  template <class T>
  T *alloc(ub4 type) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env(), &made, type, 0, nullptr), OCI_SUCCESS);
    return static_cast<T *>(made);
  }
  void SetUp() override {
    Logon::SetUp();
    server = alloc<OCIServer>(OCI_HTYPE_SERVER);
    service = alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
    session = alloc<OCISession>(OCI_HTYPE_SESSION);
    link();
    set(OCI_ATTR_USERNAME, at.user);
    set(OCI_ATTR_PASSWORD, at.password);
  }
  void link() {
    OCIAttrSet(service, OCI_HTYPE_SVCCTX, server, 0, OCI_ATTR_SERVER, errhp());
    OCIAttrSet(service, OCI_HTYPE_SVCCTX, session, 0, OCI_ATTR_SESSION, errhp());
  }
  void set(ub4 attribute, const std::string &text) {
    Given given(text);
    OCIAttrSet(session, OCI_HTYPE_SESSION, given.data(), given.room<ub4>(), attribute,
               errhp());
  }
  sword attach() {
    const Given target(connectString());
    return OCIServerAttach(server, errhp(), target.text(), target.size<sb4>(),
                           OCI_DEFAULT);
  }
  sword detach() {
    status();  // which clears the records; a detach does not
    return OCIServerDetach(server, errhp(), OCI_DEFAULT);
  }
  sword begin(ub4 mode = OCI_DEFAULT) {
    return OCISessionBegin(service, errhp(), session, OCI_CRED_RDBMS, mode);
  }
  sword end() { return OCISessionEnd(service, errhp(), session, OCI_DEFAULT); }
  ub4 status() {
    ub4 value = 77;
    OCIAttrGet(server, OCI_HTYPE_SERVER, &value, nullptr, OCI_ATTR_SERVER_STATUS,
               errhp());
    return value;
  }
  void expect(sword status, sword wanted, sb4 code = 0) {
    EXPECT_EQ(status, wanted) << errorText();
    if (code) expectError(code);
  }
  OCIServer *server = nullptr;
  OCISvcCtx *service = nullptr;
  OCISession *session = nullptr;
};

TEST_F(Steps, EachStateTakesItsStepsAndRefusesTheOthers) {
  expect(begin(), OCI_ERROR, 24314);  // new
  expect(detach(), OCI_ERROR, 24324);
  expect(end(), OCI_ERROR, 25407);
  expect(attach(), OCI_SUCCESS);  // addressed
  EXPECT_EQ(status(), 0u);
  expect(attach(), OCI_ERROR, 24309);
  expect(end(), OCI_ERROR, 25407);
  expect(begin(), OCI_SUCCESS);  // connected
  EXPECT_EQ(status(), 1u);
  expect(attach(), OCI_ERROR, 24309);
  expect(detach(), OCI_SUCCESS);  // orphaned: the connection works on
  EXPECT_EQ(status(), 1u);
  expect(OCIPing(service, errhp(), OCI_DEFAULT), OCI_SUCCESS);
  expect(begin(), OCI_ERROR, 24314);
  expect(end(), OCI_SUCCESS);  // new again
  EXPECT_EQ(status(), 0u);
  link();
  expect(attach(), OCI_SUCCESS);
  expect(begin(OCI_STMT_CACHE), OCI_SUCCESS);
  expect(end(), OCI_SUCCESS);
  expect(detach(), OCI_SUCCESS);
}

TEST_F(Steps, AnOrphanedConnectionGoesWithItsServerHandle) {
  attach();
  set(OCI_ATTR_MODULE, "zev orphan");
  ASSERT_EQ(begin(), OCI_SUCCESS);
  detach();
  EXPECT_EQ(OCIHandleFree(server, OCI_HTYPE_SERVER), OCI_SUCCESS);
  for (int i = 0; query("select count(*) from pg_stat_activity where application_name = "
                        "'zev orphan'") != "0";
       ++i) {
    ASSERT_LT(i, 10000) << "the connection is still there";
  }
}

TEST_F(Steps, TheModuleIsTheApplicationsName) {
  attach();
  set(OCI_ATTR_MODULE, "zev module");
  ASSERT_EQ(begin(), OCI_SUCCESS);
  EXPECT_EQ(
      query(
          "select count(*) from pg_stat_activity where application_name = 'zev module'"),
      "1");
  EXPECT_EQ(end(), OCI_SUCCESS);
}

TEST_F(Steps, EndingWithoutASessionArgumentNeedsOneInTheContext) {
  attach();
  begin();
  OCIAttrSet(service, OCI_HTYPE_SVCCTX, nullptr, 0, OCI_ATTR_SESSION, errhp());
  EXPECT_EQ(OCISessionEnd(service, errhp(), nullptr, OCI_DEFAULT), OCI_INVALID_HANDLE);
  OCIAttrSet(service, OCI_HTYPE_SVCCTX, session, 0, OCI_ATTR_SESSION, errhp());
  EXPECT_EQ(OCISessionEnd(service, errhp(), nullptr, OCI_DEFAULT), OCI_SUCCESS);
  OCIAttrSet(service, OCI_HTYPE_SVCCTX, nullptr, 0, OCI_ATTR_SERVER, errhp());
  EXPECT_EQ(end(), OCI_INVALID_HANDLE);
}

}  // namespace
}  // namespace zev::test
