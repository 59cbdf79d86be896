/// Programs that take their sessions from a pool.
#include <cstdlib>
#include <set>
#include <string>

#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

/// A pool below an environment of its own, so that a test can free both.
class SessionPool : public OciTest {
 protected:
  void SetUp() override {
    OciTest::SetUp();
    ASSERT_EQ(createEnv(&pooled_), OCI_SUCCESS);
    error_ = alloc<OCIError>(OCI_HTYPE_ERROR);
    as_ = alloc<OCISession>(OCI_HTYPE_SESSION);
  }
  void TearDown() override {
    freePooled();
    OciTest::TearDown();
  }
  void freePooled() {
    if (pooled_) OCIHandleFree(pooled_, OCI_HTYPE_ENV);
    pooled_ = nullptr;
  }

  template <class T>
  T *alloc(ub4 type) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(pooled_, &made, type, 0, nullptr), OCI_SUCCESS);
    return static_cast<T *>(made);
  }

  sword create(ub4 sessMin, ub4 sessMax, ub4 mode = OCI_SPC_HOMOGENEOUS) {
    Given target(connectString()), user(at_.user), password(at_.password);
    OraText *name = nullptr;
    ub4 length = 0;
    const sword status = OCISessionPoolCreate(
        pooled_, error_, alloc<OCISPool>(OCI_HTYPE_SPOOL), &name, &length, target.text(),
        target.size(), sessMin, sessMax, 1, user.text(), user.size(), password.text(),
        password.size(), mode);
    if (name) name_.assign(reinterpret_cast<char *>(name), length - 1);
    std::free(name);
    return status;
  }

  /// The pool's name, which the library gives as ASCII.
  OraText *nameText() { return reinterpret_cast<OraText *>(name_.data()); }
  ub4 nameLength() const { return static_cast<ub4>(name_.size()); }

  /// A session, null when there is none.
  OCISvcCtx *get() {
    OCISvcCtx *svchp = nullptr;
    const sword status =
        OCISessionGet(pooled_, error_, &svchp, as_, nameText(), nameLength(), nullptr, 0,
                      nullptr, nullptr, nullptr, OCI_SESSGET_SPOOL);
    EXPECT_EQ(svchp != nullptr, status == OCI_SUCCESS);
    return svchp;
  }

  /// The server's process behind a session.
  std::string process(OCISvcCtx *svchp) {
    Statement asking(pooled_, error_, svchp);
    TextBuffer<> pid;
    EXPECT_EQ(asking.prepare("select pg_backend_pid()::text"), OCI_SUCCESS);
    asking.define(1, pid);
    EXPECT_EQ(asking.execute(), OCI_SUCCESS);
    return pid.text();
  }

  /// How many of these processes run, asked again until it is `expected` or time is up.
  int running(const std::set<std::string> &processes, int expected) {
    std::string list = "0";
    for (const std::string &pid : processes) list += ',' + pid;
    int count = -1;
    for (int i = 0; i < 100 && count != expected; ++i) {
      count = std::stoi(
          query("select count(*) from pg_stat_activity where pid in (" + list + ')'));
      if (count != expected) query("select pg_sleep(0.05)");
    }
    return count;
  }

  const ServerAddress &at_ = testServer();
  OCIEnv *pooled_ = nullptr;
  OCIError *error_ = nullptr;
  OCISession *as_ = nullptr;
  std::string name_;
};

TEST_F(SessionPool, EachSessionIsAConnectionOfItsOwnUntilItsEnvironmentEnds) {
  ASSERT_EQ(create(3, 5), OCI_SUCCESS);
  EXPECT_EQ(name_, "OCI:SP:XXXXXXXXXXXXXXXXXXXXX");
  std::set<std::string> processes;
  for (int i = 0; i < 5; ++i) {
    OCISvcCtx *svchp = get();
    ASSERT_NE(svchp, nullptr);
    processes.insert(process(svchp));
  }
  EXPECT_EQ(get(), nullptr);
  EXPECT_EQ(processes.size(), 5u);
  EXPECT_EQ(running(processes, 5), 5);
  freePooled();
  EXPECT_EQ(running(processes, 0), 0);
}

TEST_F(SessionPool, SessionsWorkSideBySide) {
  ASSERT_EQ(create(1, 2), OCI_SUCCESS);
  OCISvcCtx *writer = get(), *reader = get();
  ASSERT_TRUE(writer && reader);
  const std::string table = "session_pool_" + process(writer);
  query("create table " + table + " (n int)");
  const auto count = [&] {
    Statement asking(pooled_, error_, reader);
    TextBuffer<> n;
    asking.prepare("select count(*)::text from " + table);
    asking.define(1, n);
    EXPECT_EQ(asking.execute(), OCI_SUCCESS);
    EXPECT_EQ(OCITransRollback(reader, error_, OCI_DEFAULT), OCI_SUCCESS);
    return n.text();
  };
  {
    Statement writing(pooled_, error_, writer);
    writing.prepare("insert into " + table + " values (1)");
    EXPECT_EQ(writing.execute(), OCI_SUCCESS);
  }
  EXPECT_EQ(count(), "0");
  EXPECT_EQ(OCITransCommit(writer, error_, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(count(), "1");
  query("drop table " + table);
}

TEST_F(SessionPool, AReleasedSessionIsClosedAndDoesNotReturn) {
  ASSERT_EQ(create(0, 2), OCI_SUCCESS);
  OCISvcCtx *svchp = get();
  const std::string first = process(svchp);
  EXPECT_EQ(OCISessionRelease(svchp, error_, nullptr, 0, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(running({first}, 0), 0);
  svchp = get();
  EXPECT_NE(process(svchp), first);
  EXPECT_EQ(get(), nullptr);
}

TEST_F(SessionPool, APoolThatLogsOnNobodyLeavesTheContextAsItWas) {
  ASSERT_EQ(create(3, 5, OCI_DEFAULT), OCI_SUCCESS);
  OCISvcCtx *const mine = svchp();
  OCISvcCtx *given = mine;
  EXPECT_EQ(OCISessionGet(pooled_, error_, &given, as_, nameText(), nameLength(), nullptr,
                          0, nullptr, nullptr, nullptr, OCI_SESSGET_SPOOL),
            OCI_SUCCESS);
  EXPECT_EQ(given, mine);
  given = nullptr;
  EXPECT_EQ(OCISessionGet(pooled_, error_, &given, as_, nameText(), nameLength(), nullptr,
                          0, nullptr, nullptr, nullptr, OCI_SESSGET_SPOOL),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(given, nullptr);
}

TEST_F(SessionPool, AUserWithoutAPoolIsLoggedOnByName) {
  Given user(at_.user), password(at_.password), target(connectString());
  OCIAttrSet(as_, OCI_HTYPE_SESSION, user.data(), user.size(), OCI_ATTR_USERNAME, error_);
  OCIAttrSet(as_, OCI_HTYPE_SESSION, password.data(), password.size(), OCI_ATTR_PASSWORD,
             error_);
  OCISvcCtx *svchp = nullptr;
  ASSERT_EQ(OCISessionGet(pooled_, error_, &svchp, as_, target.text(), target.size(),
                          nullptr, 0, nullptr, nullptr, nullptr, OCI_DEFAULT),
            OCI_SUCCESS);
  const std::string pid = process(svchp);
  EXPECT_EQ(running({pid}, 1), 1);
  EXPECT_EQ(OCISessionRelease(svchp, error_, nullptr, 0, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(running({pid}, 0), 0);
}

TEST_F(SessionPool, ASessionWhoseConnectionBrokeIsStillFreed) {
  ASSERT_EQ(create(0, 1), OCI_SUCCESS);
  OCISvcCtx *svchp = get();
  query("select pg_terminate_backend(" + process(svchp) + ')');
  while (OCIPing(svchp, error_, OCI_DEFAULT) == OCI_SUCCESS) {
  }
  EXPECT_EQ(OCISessionRelease(svchp, error_, nullptr, 0, OCI_DEFAULT), OCI_SUCCESS);
}

}  // namespace
}  // namespace zev::test
