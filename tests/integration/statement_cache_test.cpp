/// The statement cache of OCIStmtPrepare2 and OCIStmtRelease.
#include "tests/integration/support/statement_fixture.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

class StatementCacheTest : public StatementFixture {
 protected:
  void SetUp() override {
    StatementFixture::SetUp();
    const Given user(testServer().user), password(testServer().password),
        target(connectString());
    ASSERT_EQ(
        OCILogon2(env(), errhp(), &cached_, user.text(), user.size(), password.text(),
                  password.size(), target.text(), target.size(), OCI_LOGON2_STMTCACHE),
        OCI_SUCCESS)
        << errorText();
  }
  void TearDown() override {
    OCITransRollback(cached_, errhp(), OCI_DEFAULT);
    EXPECT_EQ(OCILogoff(cached_, errhp()), OCI_SUCCESS) << errorText();
    StatementFixture::TearDown();
  }

  struct Answer {
    sword status;
    OCIStmt *stmt;
  };
  Answer prepare2(OCISvcCtx *service, std::string_view text, const char *key = nullptr,
                  ub4 mode = OCI_DEFAULT, ub4 language = OCI_NTV_SYNTAX) {
    Answer answer{0, reinterpret_cast<OCIStmt *>(this)};
    const Given given(text), tag(key ? key : "");
    answer.status =
        OCIStmtPrepare2(service, &answer.stmt, errhp(), given.text(), given.size(),
                        key ? tag.text() : nullptr, tag.size(), language, mode);
    return answer;
  }
  Answer search(const char *key) {
    return prepare2(cached_, "select 1", key, OCI_PREP2_CACHE_SEARCHONLY);
  }
  sword release(OCIStmt *stmt, const char *key = nullptr, ub4 mode = OCI_DEFAULT) {
    const Given tag(key ? key : "");
    return OCIStmtRelease(stmt, errhp(), key ? tag.text() : nullptr, tag.size(), mode);
  }
  sb4 valueOf(OCIStmt *stmt) {
    sb4 value = 0;
    OCIDefine *define = nullptr;
    EXPECT_EQ(OCIDefineByPos(stmt, &define, errhp(), 1, &value, sizeof value, SQLT_INT,
                             nullptr, nullptr, nullptr, OCI_DEFAULT),
              OCI_SUCCESS);
    EXPECT_EQ(OCIStmtExecute(cached_, stmt, errhp(), 1, 0, nullptr, nullptr, OCI_DEFAULT),
              OCI_SUCCESS)
        << errorText();
    return value;
  }

  OCISvcCtx *cached_ = nullptr;
};

TEST_F(StatementCacheTest, WrongHandlesAndArgumentsAreRefused) {
  OCIStmt *stmt = nullptr;
  const Given text("select 1");
  const auto with = [&](OCISvcCtx *service, OCIStmt **stmtp, OCIError *error) {
    return OCIStmtPrepare2(service, stmtp, error, text.text(), text.size(), nullptr, 0, 1,
                           0);
  };
  EXPECT_EQ(with(nullptr, &stmt, errhp()), OCI_INVALID_HANDLE);
  EXPECT_EQ(with(cached_, &stmt, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(with(cached_, nullptr, errhp()), OCI_ERROR);
  EXPECT_TRUE(codes().empty());
  EXPECT_EQ(OCIStmtPrepare2(cached_, &stmt, errhp(), nullptr, 8, nullptr, 0, 1, 0),
            OCI_ERROR);
  expectError(21560, "argument 4");
  EXPECT_EQ(prepare2(cached_, "select 1", nullptr, 1).status, OCI_ERROR);
  expectError(24300);
  EXPECT_EQ(prepare2(cached_, "").status, OCI_ERROR);
  expectError(24373);
  EXPECT_EQ(prepare2(cached_, "", "key", OCI_PREP2_CACHE_SEARCHONLY).status, OCI_ERROR);
  expectError(24373);
  EXPECT_EQ(prepare2(cached_, "select 1", nullptr, 0, 3).status, OCI_ERROR);
  EXPECT_TRUE(codes().empty());
}

TEST_F(StatementCacheTest, SearchingNeedsACache) {
  const Answer answer = prepare2(svchp(), "select 1", "k", OCI_PREP2_CACHE_SEARCHONLY);
  EXPECT_EQ(answer.status, OCI_ERROR);
  EXPECT_EQ(answer.stmt, nullptr);
  expectError(24300);
}

TEST_F(StatementCacheTest, SearchingFindsReleasedStatementsByTheirTag) {
  const Answer made = prepare2(cached_, "SELECT 41 + 1", "tag");
  EXPECT_EQ(made.status, OCI_SUCCESS_WITH_INFO);
  expectError(24432, "KESTREL-24432: untagged statement returned");
  EXPECT_EQ(search("tag").status, OCI_ERROR);
  expectError(24431, "KESTREL-24431: non-existent statement in cache");
  EXPECT_EQ(valueOf(made.stmt), 42);
  ASSERT_EQ(release(made.stmt, "tag"), OCI_SUCCESS);
  const Answer found = search("tag");
  EXPECT_EQ(found.status, OCI_SUCCESS);
  EXPECT_EQ(found.stmt, made.stmt);
  EXPECT_EQ(valueOf(found.stmt), 42);
  EXPECT_EQ(release(found.stmt, "tag"), OCI_SUCCESS);
}

TEST_F(StatementCacheTest, SearchingComparesOverTheLengthOfTheKey) {
  const Answer made = prepare2(cached_, "SELECT 1", "abc");
  ASSERT_EQ(release(made.stmt, "abc"), OCI_SUCCESS);
  EXPECT_EQ(search("abcd").status, OCI_ERROR);
  const Answer found = search("ab");
  EXPECT_EQ(found.stmt, made.stmt);
  EXPECT_EQ(release(found.stmt, "abc"), OCI_SUCCESS);
}

TEST_F(StatementCacheTest, SearchingWithoutKeyFindsNothing) {
  const Answer made = prepare2(cached_, "SELECT 1");
  EXPECT_EQ(made.status, OCI_SUCCESS);
  ASSERT_EQ(release(made.stmt), OCI_SUCCESS);
  for (const char *key : {static_cast<const char *>(nullptr), ""}) {
    const Answer answer = search(key);
    EXPECT_EQ(answer.status, OCI_ERROR);
    EXPECT_EQ(answer.stmt, nullptr);
    expectError(24431);
  }
}

TEST_F(StatementCacheTest, AReleaseWithoutKeyUntagsTheStatement) {
  const Answer made = prepare2(cached_, "SELECT 1", "k");
  ASSERT_EQ(release(made.stmt, "k"), OCI_SUCCESS);
  ASSERT_EQ(search("k").status, OCI_SUCCESS);
  ASSERT_EQ(release(made.stmt), OCI_SUCCESS);
  EXPECT_EQ(search("k").status, OCI_ERROR);
  expectError(24431);
}

TEST_F(StatementCacheTest, DefaultModeReplacesATaggedStatementAndStillSaysUntagged) {
  const Answer first = prepare2(cached_, "SELECT 1", "k");
  ASSERT_EQ(release(first.stmt, "k"), OCI_SUCCESS);
  const Answer second = prepare2(cached_, "SELECT 2", "k");
  EXPECT_EQ(second.status, OCI_SUCCESS_WITH_INFO);
  expectError(24432);
  EXPECT_EQ(search("k").status, OCI_ERROR);
  EXPECT_EQ(valueOf(second.stmt), 2);
  ASSERT_EQ(release(second.stmt, "k"), OCI_SUCCESS);
  EXPECT_EQ(search("k").stmt, second.stmt);
}

TEST_F(StatementCacheTest, AReplacedStatementInUseIsEmptiedAndNotFreed) {
  const Answer first = prepare2(cached_, "SELECT 1", "k");
  const Answer second = prepare2(cached_, "SELECT 2", "k");
  EXPECT_NE(first.stmt, second.stmt);
  EXPECT_EQ(
      OCIStmtExecute(cached_, first.stmt, errhp(), 1, 0, nullptr, nullptr, OCI_DEFAULT),
      OCI_ERROR);
  expectError(24337);
  EXPECT_EQ(valueOf(second.stmt), 2);
}

TEST_F(StatementCacheTest, AFailedPrepareMakesNoHandle) {
  const Answer answer = prepare2(cached_, "BEGIN nothing", "k");
  EXPECT_EQ(answer.status, OCI_ERROR);
  EXPECT_EQ(answer.stmt, nullptr);
  expectError(13780);
}

TEST_F(StatementCacheTest, AHandleOfTheCacheCannotBePreparedOrFreedByTheProgram) {
  const Answer made = prepare2(cached_, "SELECT 1");
  const Given text("SELECT 2");
  EXPECT_EQ(OCIStmtPrepare(made.stmt, errhp(), text.text(), text.size(), 1, 0),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIHandleFree(made.stmt, OCI_HTYPE_STMT), OCI_ERROR);
  EXPECT_EQ(valueOf(made.stmt), 1);
}

TEST_F(StatementCacheTest, ReleasingTwiceIsRefused) {
  const Answer made = prepare2(cached_, "SELECT 1");
  EXPECT_EQ(release(made.stmt), OCI_SUCCESS);
  EXPECT_EQ(release(made.stmt), OCI_ERROR);
  expectError(24434, "KESTREL-24434: cannot call OCIStmtRelease before OCIStmtPrepare2");
}

TEST_F(StatementCacheTest, ReleaseChecksItsModeAndTheServiceContext) {
  const Answer made = prepare2(cached_, "SELECT 1");
  EXPECT_EQ(release(made.stmt, nullptr, 1), OCI_ERROR);
  EXPECT_TRUE(codes().empty());
  Statement plain = statement("select 1");
  EXPECT_EQ(release(plain.handle()), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIStmtRelease(nullptr, errhp(), nullptr, 0, 0), OCI_INVALID_HANDLE);
}

TEST_F(StatementCacheTest, DeletingTakesAStatementOutOfTheCache) {
  const Answer made = prepare2(cached_, "SELECT 1", "k");
  ASSERT_EQ(release(made.stmt, "k"), OCI_SUCCESS);
  ASSERT_EQ(search("k").status, OCI_SUCCESS);
  EXPECT_EQ(release(made.stmt, "k", OCI_STRLS_CACHE_DELETE), OCI_SUCCESS);
  EXPECT_EQ(search("k").status, OCI_ERROR);
  expectError(24431);
}

TEST_F(StatementCacheTest, WithoutCacheDeletingIsRefusedAndReleaseEmptiesTheHandle) {
  const Answer made = prepare2(svchp(), "SELECT 1", "k");
  EXPECT_EQ(made.status, OCI_SUCCESS);
  EXPECT_EQ(release(made.stmt, nullptr, OCI_STRLS_CACHE_DELETE), OCI_ERROR);
  expectError(24300);
  EXPECT_EQ(release(made.stmt), OCI_SUCCESS);
  EXPECT_EQ(
      OCIStmtExecute(svchp(), made.stmt, errhp(), 1, 0, nullptr, nullptr, OCI_DEFAULT),
      OCI_ERROR);
  expectError(24337);
}

TEST_F(StatementCacheTest, ReleasedUntaggedStatementsAreReplacedByTheNextWithoutKey) {
  const Answer kept = prepare2(cached_, "SELECT 1");
  const Answer released = prepare2(cached_, "SELECT 2");
  ASSERT_EQ(release(released.stmt), OCI_SUCCESS);
  for (int i = 0; i < 50; ++i) {
    const Answer next = prepare2(cached_, "SELECT 3");
    ASSERT_EQ(next.status, OCI_SUCCESS);
    ASSERT_EQ(release(next.stmt), OCI_SUCCESS);
  }
  EXPECT_EQ(valueOf(kept.stmt), 1);
}

TEST_F(StatementCacheTest, ARunningStatementSurvivesItsRelease) {
  const Answer made =
      prepare2(cached_, "INSERT INTO " + table() + " VALUES (1, 'x')", "k");
  const auto execute = [&] {
    return OCIStmtExecute(cached_, made.stmt, errhp(), 1, 0, nullptr, nullptr,
                          OCI_DEFAULT);
  };
  ASSERT_EQ(execute(), OCI_SUCCESS);
  ASSERT_EQ(release(made.stmt, "k"), OCI_SUCCESS);
  ASSERT_EQ(search("k").stmt, made.stmt);
  ASSERT_EQ(execute(), OCI_SUCCESS) << errorText();
  ASSERT_EQ(OCITransCommit(cached_, errhp(), OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(committed(), "2:2");
}

}  // namespace
}  // namespace zev::test
