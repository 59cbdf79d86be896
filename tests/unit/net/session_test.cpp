/// What sessions, breaks and failed logons leave behind in the handles.
#include "tests/unit/core/server_fixture.h"

namespace zev::test {
namespace {

class Session : public ServerTest {
 protected:
  static ub4 countBelow(const OCIEnv *env, HandleTag tag) {
    ub4 found = 0;
    for (OCIHandle *child : Elements<OCIHandle>(env->children))
      found += child->handleType == tag;
    return found;
  }
  sword begin(ub4 mode) {
    return OCISessionBegin(svchp, errhp, session, OCI_CRED_RDBMS, mode);
  }
  sword logonWith(OCIEnv *at, OCIError *error, const std::string &target,
                  const std::string &password) {
    const std::string &user = testServer().user;
    OCISvcCtx *made = nullptr;
    const sword status =
        OCILogon(at, error, &made, asText(user), static_cast<ub4>(user.size()),
                 asText(password), static_cast<ub4>(password.size()), asText(target),
                 static_cast<ub4>(target.size()));
    EXPECT_EQ(made == nullptr, status != OCI_SUCCESS);
    return status;
  }
  static std::string target() {
    return testServer().host + ':' + testServer().port + '/' + testServer().db;
  }
};

TEST_F(Session, TheStatementCacheGoesByTheModeOfEachBeginning) {
  for (const ub4 mode : {ub4{OCI_STMT_CACHE}, ub4{0}, ub4{OCI_STMT_CACHE | 1}, ub4{1}}) {
    OCISessionEnd(svchp, errhp, session, OCI_DEFAULT);
    svchp->server = server;
    ASSERT_EQ(begin(mode), OCI_SUCCESS);
    EXPECT_EQ(svchp->stmtCacheEnabled, mode & OCI_STMT_CACHE ? 1 : 0);
  }
}

TEST_F(Session, ABeginningThatFailsClearsTheStatementCache) {
  svchp->stmtCacheEnabled = 1;
  svchp->server = nullptr;
  EXPECT_EQ(begin(OCI_STMT_CACHE), OCI_ERROR);
  EXPECT_EQ(svchp->stmtCacheEnabled, 0);
  svchp->server = server;
}

TEST_F(Session, TheSecondFormOfLogonTurnsTheStatementCacheOn) {
  const ServerAddress &at = testServer();
  for (const ub4 mode : {0u, 4u, 5u}) {
    OCISvcCtx *made = nullptr;
    ASSERT_EQ(OCILogon2(env.get(), errhp, &made, asText(at.user),
                        static_cast<ub4>(at.user.size()), asText(at.password),
                        static_cast<ub4>(at.password.size()), asText(target()),
                        static_cast<ub4>(target().size()), mode),
              OCI_SUCCESS);
    EXPECT_EQ(made->stmtCacheEnabled, mode & 4 ? 1 : 0);
    EXPECT_EQ(OCILogoff(made, errhp), OCI_SUCCESS);
  }
}

TEST_F(Session, TheServersVersionIsKeptForTheProcess) {
  gDBServerVersion = 0;
  OCISvcCtx *second = logon();
  EXPECT_EQ(gDBServerVersion, PQserverVersion(server->conn));
  OCILogoff(second, errhp);
}

TEST_F(Session, ALogonThatFindsNoAddressLeavesNothing) {
  const Variable home("HOME", nullptr), admin("TNS_ADMIN", nullptr);
  const ub4 before = list_length(env.get()->children);
  EXPECT_EQ(logonWith(env.get(), errhp, "a/b:c", "x"), OCI_ERROR);
  EXPECT_EQ(list_length(env.get()->children), before);
}

TEST_F(Session, ALogonThatIsRefusedLeavesTheServerHandleAlone) {
  const ub4 servers = countBelow(env.get(), HANDLE_OCIServer);
  const ub4 before = list_length(env.get()->children);
  EXPECT_EQ(logonWith(env.get(), errhp, target(), "wrong"), OCI_ERROR);
  EXPECT_EQ(countBelow(env.get(), HANDLE_OCIServer), servers + 1);
  EXPECT_EQ(list_length(env.get()->children), before + 1);
  const auto *left = static_cast<OCIServer *>(list_tail(env.get()->children)->data);
  EXPECT_EQ(left->conn, nullptr);
  EXPECT_EQ(left->attached, 1);
}

TEST_F(Session, AnEncodingThatTheServerCannotConvertIsReportedAndTheConnectionStays) {
  constexpr ub2 kMuleInternal = 7;
  OCIEnv *other = nullptr;
  ASSERT_EQ(OCIEnvNlsCreate(&other, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0,
                            nullptr, kMuleInternal, 0),
            OCI_SUCCESS);
  auto *error = env.alloc<OCIError>(OCI_HTYPE_ERROR, other);
  EXPECT_EQ(logonWith(other, error, target(), testServer().password), OCI_ERROR);
  EXPECT_EQ(codesOf(error), Codes{24338});
  EXPECT_NE(firstText(error).find("MULE_INTERNAL"), std::string::npos)
      << firstText(error);
  const auto *left = static_cast<OCIServer *>(list_tail(other->children)->data);
  ASSERT_EQ(left->handleType, HANDLE_OCIServer);
  EXPECT_EQ(PQstatus(left->conn), CONNECTION_OK);
  EXPECT_EQ(OCIHandleFree(other, OCI_HTYPE_ENV), OCI_SUCCESS);
}

TEST_F(Session, ADateFormatThatTheServerRefusesLeavesTheConnectionOpen) {
  OCISessionEnd(svchp, errhp, session, OCI_DEFAULT);
  svchp->server = server;
  const Variable format("NLS_DATE_FORMAT", "YYYY");
  EXPECT_EQ(begin(OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{16945});
  EXPECT_EQ(PQstatus(server->conn), CONNECTION_OK);
}

TEST_F(Session, ABrokenConnectionIsClosedBeforeTheNextBegins) {
  const std::string kill = "select pg_terminate_backend(" +
                           std::to_string(PQbackendPID(server->conn)) + ", 10000)";
  OCISvcCtx *killer = logon();
  PQclear(PQexec(killer->server->conn, kill.c_str()));
  PQclear(PQexec(server->conn, "select 1"));
  ASSERT_EQ(PQstatus(server->conn), CONNECTION_BAD);
  EXPECT_EQ(begin(OCI_DEFAULT), OCI_SUCCESS);  // the former one would leak
  EXPECT_EQ(PQstatus(server->conn), CONNECTION_OK);
  OCILogoff(killer, errhp);
}

TEST_F(Session, ABreakMarksItsServer) {
  EXPECT_EQ(OCIBreak(svchp, errhp), OCI_SUCCESS);
  EXPECT_EQ(server->breakRequested, 1);
  server->breakRequested = 0;
  EXPECT_EQ(OCIBreak(server, errhp), OCI_SUCCESS);
  EXPECT_EQ(server->breakRequested, 1);
  EXPECT_EQ(errhp->records, nullptr);
}

TEST_F(Session, AResetTakesThePendingRows) {
  ASSERT_EQ(PQsendQuery(server->conn, "select 1"), 1);
  EXPECT_EQ(OCIReset(svchp, errhp), OCI_SUCCESS);
  EXPECT_EQ(errhp->records, nullptr);
}

TEST_F(Session, AResetReportsThePendingFailureAndRollsBack) {
  PQclear(PQexec(server->conn, "begin"));
  ASSERT_EQ(PQsendQuery(server->conn, "select 1/0"), 1);
  EXPECT_EQ(OCIReset(server, errhp), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{1476});
  EXPECT_EQ(PQtransactionStatus(server->conn), PQTRANS_IDLE);
}

TEST_F(Session, APasswordIsChangedFromUtf16) {
  PQclear(PQexec(server->conn, "drop role if exists zev_wide; create role zev_wide"));
  Environment wide(OCI_UTF16);
  const ServerAddress &at = testServer();
  const std::string user = utf16(at.user), password = utf16(at.password),
                    where = utf16(target()), role = utf16(std::string("zev_wide") + '\0'),
                    next = utf16(std::string("next") + '\0');
  const auto length = [](const std::string &s) { return static_cast<ub4>(s.size()); };
  OCISvcCtx *made = nullptr;
  ASSERT_EQ(OCILogon(wide.get(), wide.errhp(), &made, asText(user), length(user),
                     asText(password), length(password), asText(where), length(where)),
            OCI_SUCCESS);
  EXPECT_EQ(
      OCIPasswordChange(made, wide.errhp(), asText(role), length(role), asText(next),
                        length(next), asText(next), length(next), OCI_DEFAULT),
      OCI_SUCCESS)
      << firstText(wide.errhp());
  EXPECT_EQ(OCIPasswordChange(made, wide.errhp(), asText(role), 3, asText(next),
                              length(next), asText(next), length(next), OCI_DEFAULT),
            OCI_ERROR);
  EXPECT_EQ(firstText(wide.errhp()),
            "An incomplete multibyte sequence has been encountered in the input");
  EXPECT_EQ(OCILogoff(made, wide.errhp()), OCI_SUCCESS);
  PQclear(PQexec(server->conn, "drop role zev_wide"));
}

}  // namespace
}  // namespace zev::test
