#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <thread>

#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

class Services : public OciTest {
 protected:
  template <class T>
  T *linked(OCISvcCtx *service, ub4 attribute) {
    T *found = nullptr;
    EXPECT_EQ(OCIAttrGet(service, OCI_HTYPE_SVCCTX, &found, nullptr, attribute, errhp()),
              OCI_SUCCESS);
    return found;
  }
  OCIServer *server() { return linked<OCIServer>(svchp(), OCI_ATTR_SERVER); }
  OCISession *session() { return linked<OCISession>(svchp(), OCI_ATTR_SESSION); }
  int backend(OCISvcCtx *service) {
    Statement asking(env(), errhp(), service);
    asking.prepare("select pg_backend_pid()");
    sb4 pid = 0;
    asking.define(1, pid);
    EXPECT_EQ(asking.execute(), OCI_SUCCESS) << errorText();
    return pid;
  }
  /// Ends the backend from another connection and returns when it is gone.
  void kill(int pid) {
    EXPECT_EQ(query("select pg_terminate_backend(" + std::to_string(pid) + ", 10000)"),
              "t");
  }
  using Sql = std::vector<std::string>;
};

TEST_F(Services, APingIsOneRoundTrip) {
  const WireLog log =
      wireOf([&] { EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_SUCCESS); });
  EXPECT_EQ(log.sql, Sql{"select 1"});
  EXPECT_EQ(log.roundTrips, 1);
}

TEST_F(Services, APingWithAModeIsRefusedWithoutAsking) {
  for (const ub4 mode : {1u, 0x80000000u}) {
    const WireLog log =
        wireOf([&] { EXPECT_EQ(OCIPing(svchp(), errhp(), mode), OCI_ERROR); });
    expectError(25407, "KESTREL-25407: connection terminated");
    EXPECT_EQ(log.messages, Sql{});
  }
}

TEST_F(Services, CommitAndRollbackAreOneRoundTripEach) {
  const WireLog log = wireOf([&] {
    commit();
    rollback();
  });
  EXPECT_EQ(log.sql, (Sql{"COMMIT", "ROLLBACK"}));
  EXPECT_EQ(log.roundTrips, 2);
}

TEST_F(Services, TheVersionIsTheServersTextWithItsTerminator) {
  const Given wanted(query("select version()"));
  for (const bool byServer : {true, false}) {
    OraText text[1024];
    std::fill(std::begin(text), std::end(text), '#');
    void *handle = byServer ? static_cast<void *>(server()) : svchp();
    const ub1 type = byServer ? OCI_HTYPE_SERVER : OCI_HTYPE_SVCCTX;
    const WireLog log = wireOf([&] {
      EXPECT_EQ(OCIServerVersion(handle, errhp(), text, sizeof text, type), OCI_SUCCESS);
    });
    EXPECT_EQ(log.sql, Sql{"SELECT VERSION()"});
    EXPECT_EQ(log.roundTrips, 1);
    EXPECT_EQ(std::memcmp(text, wanted.text(), wanted.room<std::size_t>()), 0);
    EXPECT_EQ(text[wanted.room()], '#');
  }
}

TEST_F(Services, AVersionThatIsCutHasNoTerminator) {
  const std::string whole = encoded(query("select version()") + '\0');
  const auto length = static_cast<ub4>(whole.size());
  for (const ub4 size : {1u, 5u, length - bytes(1u), length}) {
    std::string buffer(whole.size() + 9, '#');
    EXPECT_EQ(
        OCIServerVersion(server(), errhp(), reinterpret_cast<OraText *>(buffer.data()),
                         size, OCI_HTYPE_SERVER),
        OCI_SUCCESS);
    EXPECT_EQ(buffer, whole.substr(0, size) + std::string(buffer.size() - size, '#'));
  }
}

TEST_F(Services, AVersionNeedsItsArguments) {
  OraText text[16];
  EXPECT_EQ(OCIServerVersion(nullptr, errhp(), text, 16, OCI_HTYPE_SERVER), OCI_ERROR);
  EXPECT_EQ(OCIServerVersion(server(), errhp(), nullptr, 16, OCI_HTYPE_SERVER),
            OCI_ERROR);
  EXPECT_EQ(OCIServerVersion(server(), errhp(), text, 0, OCI_HTYPE_SERVER), OCI_ERROR);
  EXPECT_EQ(OCIServerVersion(server(), errhp(), text, 16, OCI_HTYPE_ENV), OCI_ERROR);
  EXPECT_EQ(OCIServerVersion(svchp(), errhp(), text, 16, OCI_HTYPE_SERVER),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIServerRelease(server(), errhp(), text, 16, OCI_HTYPE_ENV, nullptr),
            OCI_ERROR);
  EXPECT_EQ(OCIServerRelease(nullptr, errhp(), text, 16, OCI_HTYPE_SERVER, nullptr),
            OCI_INVALID_HANDLE);
}

TEST_F(Services, TheReleasePacksTheServersNumber) {
  const ub4 number = static_cast<ub4>(std::stoul(query("show server_version_num")));
  OraText text[1024];
  ub4 version = 0;
  EXPECT_EQ(
      OCIServerRelease(svchp(), errhp(), text, sizeof text, OCI_HTYPE_SVCCTX, &version),
      OCI_SUCCESS);
  EXPECT_EQ(version >> 24, number / 10000);
  EXPECT_EQ(version >> 20 & 15, number / 100 % 100);
  EXPECT_EQ(version >> 12 & 255, number % 100);
  EXPECT_EQ(version & 0xfff, 0u);
  EXPECT_EQ(decodedUpToEnd(text), query("select version()"));
  EXPECT_EQ(
      OCIServerRelease(server(), errhp(), text, sizeof text, OCI_HTYPE_SERVER, nullptr),
      OCI_SUCCESS);
}

TEST_F(Services, ABreakFromASecondThreadEndsARunningStatement) {
  const int pid = backend(svchp());
  commit();
  for (const bool byServer : {true, false}) {
    void *handle = byServer ? static_cast<void *>(server()) : svchp();
    OCIError *other = nullptr;
    OCIHandleAlloc(env(), reinterpret_cast<void **>(&other), OCI_HTYPE_ERROR, 0, nullptr);
    std::atomic<sword> broken{77};
    const std::string running =
        "select count(*) from pg_stat_activity where pid = " + std::to_string(pid) +
        " and wait_event = 'PgSleep'";
    ASSERT_EQ(query(running), "0");
    std::thread breaker([&] {
      while (query(running) == "0") std::this_thread::yield();
      broken = OCIBreak(handle, other);
    });
    auto sleeping = statement("select pg_sleep(600)");
    TextBuffer<> nothing;
    sleeping.define(1, nothing);
    EXPECT_EQ(sleeping.execute(), OCI_ERROR);
    breaker.join();
    EXPECT_EQ(broken, OCI_SUCCESS);
    EXPECT_EQ(serverState(), "57014");
    rollback();
    EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_SUCCESS);
    OCIHandleFree(other, OCI_HTYPE_ERROR);
  }
}

TEST_F(Services, ABreakNeedsAConnectionAndLeavesNoRecord) {
  OCIServer *unattached = nullptr;
  OCIHandleAlloc(env(), reinterpret_cast<void **>(&unattached), OCI_HTYPE_SERVER, 0,
                 nullptr);
  OCISvcCtx *empty = nullptr;
  OCIHandleAlloc(env(), reinterpret_cast<void **>(&empty), OCI_HTYPE_SVCCTX, 0, nullptr);
  for (void *handle : {static_cast<void *>(nullptr), static_cast<void *>(unattached),
                       static_cast<void *>(empty), static_cast<void *>(session()),
                       static_cast<void *>(env())}) {
    EXPECT_EQ(OCIBreak(handle, errhp()), OCI_ERROR);
    EXPECT_EQ(errorText(), "");
  }
  EXPECT_EQ(OCIBreak(svchp(), nullptr), OCI_ERROR);
}

TEST_F(Services, AResetWithoutAPendingResultIsAnError) {
  const WireLog log = wireOf([&] { EXPECT_EQ(OCIReset(svchp(), errhp()), OCI_ERROR); });
  expectError(0, "Unexpected NULL PGresult");
  EXPECT_EQ(serverState(), "08P01");
  EXPECT_EQ(log.messages, Sql{});
}

TEST_F(Services, AResetRollsAnOpenTransactionBack) {
  run("create temporary table reset_test (n int)");
  commit();
  run("insert into reset_test values (1)");
  const WireLog log = wireOf([&] { EXPECT_EQ(OCIReset(server(), errhp()), OCI_ERROR); });
  EXPECT_EQ(log.sql, Sql{"ROLLBACK"});
  EXPECT_EQ(OCIReset(nullptr, errhp()), OCI_ERROR);
  EXPECT_EQ(OCIReset(svchp(), nullptr), OCI_ERROR);
  EXPECT_EQ(OCIReset(session(), errhp()), OCI_ERROR);
}

TEST_F(Services, ADeadBackendIsReportedAndItsHandlesServeAgain) {
  OCISvcCtx *service = logon();
  auto *dead = linked<OCIServer>(service, OCI_ATTR_SERVER);
  auto *user = linked<OCISession>(service, OCI_ATTR_SESSION);
  kill(backend(service));
  EXPECT_EQ(OCIPing(service, errhp(), OCI_DEFAULT), OCI_ERROR);
  expectError(1041, "KESTREL-01041: host definition extension not found");
  OraText text[64];
  EXPECT_EQ(OCIServerRelease(dead, errhp(), text, 64, OCI_HTYPE_SERVER, nullptr),
            OCI_ERROR);
  expectError(25407, "terminat");
  EXPECT_EQ(OCITransCommit(service, errhp(), OCI_DEFAULT), OCI_ERROR);
  expectError(25407);
  EXPECT_EQ(OCISessionEnd(service, errhp(), user, OCI_DEFAULT), OCI_ERROR);
  expectError(25407, "KESTREL-25407: connection terminated");
  // The same handles begin a session anew.
  OCIAttrSet(service, OCI_HTYPE_SVCCTX, dead, 0, OCI_ATTR_SERVER, errhp());
  EXPECT_EQ(OCISessionBegin(service, errhp(), user, OCI_CRED_RDBMS, OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_EQ(OCIPing(service, errhp(), OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(OCILogoff(service, errhp()), OCI_SUCCESS);
}

TEST_F(Services, LogoffOfADeadConnectionFreesItsHandles) {
  OCISvcCtx *service = logon();
  kill(backend(service));
  EXPECT_EQ(OCILogoff(service, errhp()), OCI_SUCCESS);
}

/// A role of the process's own, so that the fixture's password stays.
class PasswordChange : public Services {
 protected:
  void SetUp() override {
    Services::SetUp();
    query("create role " + role_ + " login password 'first'");
    service_ = logonAs("first");
    ASSERT_NE(service_, nullptr) << errorText();
  }
  void TearDown() override {
    if (service_) OCILogoff(service_, errhp());
    query("drop role if exists " + role_);
    Services::TearDown();
  }
  OCISvcCtx *logonAs(const std::string &password) {
    const Given role(role_), secret(password), target(connectString());
    OCISvcCtx *made = nullptr;
    OCILogon(env(), errhp(), &made, role.text(), role.size(), secret.text(),
             secret.size(), target.text(), target.size());
    return made;
  }
  sword change(const std::string &password, ub4 mode = OCI_DEFAULT,
               const std::string &other = {}) {
    const Given user(other.empty() ? role_ : other), former("not looked at"),
        next(password);
    // A text runs to its end, and with it in UTF-16.
    return OCIPasswordChange(service_, errhp(), user.text(), user.room<ub4>(),
                             former.text(), former.room<ub4>(), next.text(),
                             next.room<ub4>(), mode);
  }
  bool logsOnWith(const std::string &password) {
    OCISvcCtx *made = logonAs(password);
    if (made) OCILogoff(made, errhp());
    return made;
  }
  /// The server reads names and passwords of a logon as they stand in its own encoding.
  static std::string own(const std::string &ascii) {
    return isUtf16() ? dressed(ascii) : ascii;
  }
  const std::string role_ = own("zev_changing_" + std::to_string(getpid()));
  OCISvcCtx *service_ = nullptr;
};

TEST_F(PasswordChange, HoldsForLaterLogonsAndInTheSession) {
  EXPECT_EQ(change(own("second")), OCI_SUCCESS) << errorText();
  EXPECT_FALSE(logsOnWith("first"));
  EXPECT_TRUE(logsOnWith(own("second")));
  // The session has the new password: its next beginning succeeds.
  OCISession *user = linked<OCISession>(service_, OCI_ATTR_SESSION);
  EXPECT_EQ(OCISessionEnd(service_, errhp(), user, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(OCISessionBegin(service_, errhp(), user, OCI_CRED_RDBMS, OCI_DEFAULT),
            OCI_SUCCESS);
}

TEST_F(PasswordChange, OnlyTheAuthenticatingModeOrNoneIsTaken) {
  for (const ub4 mode : {1u, 2u, 4u, 16u, 64u}) {
    EXPECT_EQ(change("second", mode), OCI_INVALID_HANDLE) << mode;
  }
  EXPECT_EQ(change("second", OCI_AUTH), OCI_SUCCESS);
  EXPECT_EQ(change("third", OCI_AUTH | 1), OCI_SUCCESS);
  EXPECT_TRUE(logsOnWith("third"));
}

TEST_F(PasswordChange, WithoutASessionTheAuthenticatingModeBeginsOne) {
  OCISession *user = linked<OCISession>(service_, OCI_ATTR_SESSION);
  EXPECT_EQ(OCISessionEnd(service_, errhp(), user, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(change("second"), OCI_ERROR);
  expectError(25407);
  EXPECT_EQ(change("second", OCI_AUTH), OCI_SUCCESS) << errorText();
  EXPECT_EQ(OCIPing(service_, errhp(), OCI_DEFAULT), OCI_SUCCESS);
}

TEST_F(PasswordChange, ASessionThatCannotBeginIsItsError) {
  OCISession *user = linked<OCISession>(service_, OCI_ATTR_SESSION);
  OCISessionEnd(service_, errhp(), user, OCI_DEFAULT);
  query("alter role " + role_ + " password 'elsewhere'");
  EXPECT_EQ(change("second", OCI_AUTH), OCI_ERROR);
  expectError(12154, "password authentication failed");
}

TEST_F(PasswordChange, AnotherUsersPasswordIsTheServersAffair) {
  EXPECT_EQ(change("second", OCI_DEFAULT, "no_such_role"), OCI_ERROR);
  EXPECT_NE(serverState(), "");
  EXPECT_TRUE(logsOnWith("first"));
}

TEST_F(PasswordChange, NeedsServerAndSession) {
  OCISession *user = linked<OCISession>(service_, OCI_ATTR_SESSION);
  OCIAttrSet(service_, OCI_HTYPE_SVCCTX, nullptr, 0, OCI_ATTR_SESSION, errhp());
  EXPECT_EQ(change("second"), OCI_INVALID_HANDLE);
  OCIAttrSet(service_, OCI_HTYPE_SVCCTX, user, 0, OCI_ATTR_SESSION, errhp());
  OCIServer *at = linked<OCIServer>(service_, OCI_ATTR_SERVER);
  OCIAttrSet(service_, OCI_HTYPE_SVCCTX, nullptr, 0, OCI_ATTR_SERVER, errhp());
  EXPECT_EQ(change("second"), OCI_INVALID_HANDLE);
  OCIAttrSet(service_, OCI_HTYPE_SVCCTX, at, 0, OCI_ATTR_SERVER, errhp());
}

}  // namespace
}  // namespace zev::test
