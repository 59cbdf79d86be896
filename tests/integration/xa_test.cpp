/// Handles that are made from XA open strings.
#include <xa.h>

#include <cstdlib>

#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

class XaTest : public OciTest {
 protected:
  /// A session by an open string, null without one. The former one's environment goes.
  OCISvcCtx *open(std::string openString) {
    close();
    return svchp_ = xaoSvcCtx(reinterpret_cast<OraText *>(openString.data()));
  }
  void close() {
    if (!svchp_) return;
    OCIEnv *env = nullptr;
    ASSERT_EQ(OCIAttrGet(svchp_, OCI_HTYPE_SVCCTX, &env, nullptr, OCI_ATTR_ENV, errhp()),
              OCI_SUCCESS);
    EXPECT_EQ(OCIHandleFree(env, OCI_HTYPE_ENV), OCI_SUCCESS);
    svchp_ = nullptr;
  }
  void TearDown() override {
    close();
    OciTest::TearDown();
  }

  /// What the lines of the trace say while a session is opened.
  std::string traceOf(const std::string &openString) {
    setVariable("OCI_DEBUG_LOG", "-");
    setVariable("OCI_DEBUG_MASK", "0x4000");
    OCIHandleFree(xaoEnv(nullptr), OCI_HTYPE_ENV);  // reads the variables
    testing::internal::CaptureStderr();
    open(openString);
    std::string trace = testing::internal::GetCapturedStderr();
    setVariable("OCI_DEBUG_MASK", "0");
    OCIHandleFree(xaoEnv(nullptr), OCI_HTYPE_ENV);
    return trace;
  }

  /// The first value of a query on the opened session.
  std::string ask(const std::string &sql) {
    OCIEnv *env = nullptr;
    OCIAttrGet(svchp_, OCI_HTYPE_SVCCTX, &env, nullptr, OCI_ATTR_ENV, errhp());
    Statement asking(env, errhp(), svchp_);
    TextBuffer<> value;
    EXPECT_EQ(asking.prepare(sql), OCI_SUCCESS) << errorText();
    EXPECT_EQ(asking.define(1, value), OCI_SUCCESS) << errorText();
    EXPECT_EQ(asking.execute(), OCI_SUCCESS) << errorText();
    return value.text();
  }

  std::string account() const { return "acc=P/" + at_.user + '/' + at_.password; }
  std::string address() const {
    return "hostname=" + at_.host + "+portnumber=" + at_.port + "+sqlnet=" + at_.db;
  }
  std::string sqlnet() const { return "sqlnet=" + connectString(); }

  const ServerAddress &at_ = testServer();

 private:
  OCISvcCtx *svchp_ = nullptr;
};

TEST_F(XaTest, AnEnvironmentIsMadeWhateverTheName) {
  OraText name[] = "name";
  OCIEnv *one = xaoEnv(name), *other = xaoEnv(nullptr);
  ASSERT_NE(one, nullptr);
  ASSERT_NE(other, nullptr);
  EXPECT_NE(one, other);
  EXPECT_EQ(OCIHandleFree(one, OCI_HTYPE_ENV), OCI_SUCCESS);
  EXPECT_EQ(OCIHandleFree(other, OCI_HTYPE_ENV), OCI_SUCCESS);
}

TEST_F(XaTest, AnAccountAndAConnectStringGiveASession) {
  ASSERT_NE(open(account() + '+' + sqlnet()), nullptr);
  EXPECT_EQ(ask("select current_user::text"), at_.user);
  EXPECT_EQ(ask("select current_database()::text"), at_.db);
}

TEST_F(XaTest, HostAndPortStandBeforeTheDatabaseName) {
  ASSERT_NE(open(address() + '+' + account()), nullptr);
  EXPECT_EQ(ask("select inet_server_port()::text"), at_.port);
}

TEST_F(XaTest, AHostWithoutAPortIsIgnored) {
  EXPECT_NE(open("hostname=nowhere.invalid+" + sqlnet() + '+' + account()), nullptr);
  EXPECT_NE(open("portnumber=1+" + sqlnet() + '+' + account()), nullptr);
}

TEST_F(XaTest, NamesAreReadInEitherCase) {
  EXPECT_NE(open("ACC=P/" + at_.user + '/' + at_.password + "+SqlNet=" + connectString()),
            nullptr);
}

TEST_F(XaTest, TheApplicationsNameReachesTheServer) {
  ASSERT_NE(open("appname=ledger+" + sqlnet() + '+' + account()), nullptr);
  EXPECT_EQ(ask("select application_name from pg_stat_activity where pid = "
                "pg_backend_pid()"),
            "ledger");
}

TEST_F(XaTest, EachCallHasAnEnvironmentOfItsOwn) {
  OCISvcCtx *first = open(account() + '+' + sqlnet());
  std::string again = account() + '+' + sqlnet();
  OCISvcCtx *second = xaoSvcCtx(reinterpret_cast<OraText *>(again.data()));
  ASSERT_NE(second, nullptr);
  OCIEnv *one = nullptr, *other = nullptr;
  OCIAttrGet(first, OCI_HTYPE_SVCCTX, &one, nullptr, OCI_ATTR_ENV, errhp());
  OCIAttrGet(second, OCI_HTYPE_SVCCTX, &other, nullptr, OCI_ATTR_ENV, errhp());
  EXPECT_NE(one, other);
  OCIHandleFree(other, OCI_HTYPE_ENV);
}

TEST_F(XaTest, AStringOf256BytesIsRefusedAndOneOf255IsRead) {
  std::string whole = account() + '+' + sqlnet() + "+logdir=";
  whole.resize(255, 'x');
  EXPECT_NE(open(whole), nullptr);
  EXPECT_EQ(open(whole + 'x'), nullptr);
  EXPECT_EQ(xaoSvcCtx(nullptr), nullptr);
}

TEST_F(XaTest, AFailedConnectionLeavesNothingBehind) {
  ASSERT_EQ(OCIInitialize(OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr), OCI_SUCCESS);
  EXPECT_EQ(open("acc=P/" + at_.user + "/wrong+" + sqlnet()), nullptr);
  // The process-wide state was ended with it.
  EXPECT_EQ(OCIInitialize(OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr), OCI_SUCCESS);
  EXPECT_EQ(OCITerminate(OCI_DEFAULT), OCI_SUCCESS);
}

TEST_F(XaTest, AStringThatIsNotUnderstoodKeepsTheProcessState) {
  ASSERT_EQ(OCIInitialize(OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr), OCI_SUCCESS);
  EXPECT_EQ(open("acc=user+" + sqlnet()), nullptr);
  EXPECT_EQ(OCITerminate(OCI_DEFAULT), OCI_SUCCESS);
}

TEST_F(XaTest, StepsAreTraced) {
  EXPECT_EQ(traceOf(address() + "+appname=app+" + account()),
            "xaoSvcCtx() started\n"
            "host[" +
                at_.host + "] port[" + at_.port + "] db[" + at_.db + "] user[" +
                at_.user + "] app[app]\ndb_uri [//" + connectString() +
                "]\n"
                "OCISessionBegin: OCISessionBegin started\n"
                "OCISessionBegin: host [" +
                at_.host + "] port [" + at_.port + "] db [" + at_.db + "], user [" +
                at_.user +
                "] app [app] uri [(null)]\n"
                "OCISessionBegin: OCISessionBegin() OK\n"
                "xaoSvcCtx() complete\n");
}

TEST_F(XaTest, AFailureIsTracedByItsStep) {
  const std::string parse = "xaoSvcCtx() started\nxa_parse_connection_str() failed\n";
  for (const char *text : {"", "acc=user", "acc=P+sqlnet=d", "sqlnet=d", "x"}) {
    EXPECT_EQ(traceOf(text), parse) << text;
  }
  setVariable("HOME", "/nonexistent");
  EXPECT_EQ(traceOf("acc=P/u/p+sqlnet=a/b:c"),
            "xaoSvcCtx() started\nhost[] port[] db[a/b:c] user[u] app[]\n"
            "db_uri [a/b:c]\nOCIServerAttach() failed\n");
  const std::string begin = traceOf("acc=P/u/p+hostname=127.0.0.1+portnumber=1+sqlnet=d");
  EXPECT_NE(begin.find("db_uri [//127.0.0.1:1/d]\n"), begin.npos) << begin;
  EXPECT_EQ(begin.rfind("OCISessionBegin() failed\n"),
            begin.size() - std::string("OCISessionBegin() failed\n").size())
      << begin;
}

}  // namespace
}  // namespace zev::test
