#include "stmt_fixture.h"
#include "zevoci/connection.h"

namespace zevtest {
namespace {

/// A service context whose cache is turned on by its record; no server is behind it.
class StatementCache : public testing::Test {
 protected:
  StatementCache() { svchp->stmtCacheEnabled = 1; }

  sword prepare(const char *key = nullptr, ub4 mode = OCI_DEFAULT,
                const char *text = "select :a", ub4 language = OCI_NTV_SYNTAX) {
    const ub4 length = text ? static_cast<ub4>(std::string(text).size()) : 5;
    const ub4 keyLength = key ? static_cast<ub4>(std::string(key).size()) : 0;
    return OCIStmtPrepare2(
        svchp, &stmt, session.errhp, reinterpret_cast<const OraText *>(text), length,
        reinterpret_cast<const OraText *>(key), keyLength, language, mode);
  }
  sword release(OCIStmt *which, const char *key = nullptr, ub4 mode = OCI_DEFAULT) {
    const ub4 keyLength = key ? static_cast<ub4>(std::string(key).size()) : 0;
    return OCIStmtRelease(which, session.errhp, reinterpret_cast<const OraText *>(key),
                          keyLength, mode);
  }
  /// A statement in the cache, released under `key`.
  OCIStmt *released(const char *key) {
    EXPECT_NE(prepare(nullptr), OCI_ERROR);
    EXPECT_EQ(release(stmt, key), OCI_SUCCESS);
    session.takeRecord();
    return stmt;
  }
  sword search(const char *key) { return prepare(key, OCI_PREP2_CACHE_SEARCHONLY); }

  Session session;
  OCISvcCtx *svchp = session.make<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  OCIStmt *stmt = nullptr;
};

TEST_F(StatementCache, PrepareRefusesBadArguments) {
  const ub4 kSearch = OCI_PREP2_CACHE_SEARCHONLY;
  EXPECT_EQ(prepare(nullptr, 0, nullptr), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 21560);
  EXPECT_NE(session.lastMessage.find("argument 4"), std::string::npos)
      << session.lastMessage;
  EXPECT_EQ(prepare(nullptr, 1), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24300);
  for (const ub4 mode : {ub4{OCI_DEFAULT}, kSearch}) {
    EXPECT_EQ(prepare("k", mode, ""), OCI_ERROR);
    EXPECT_EQ(session.takeRecord(), 24373);
  }
  EXPECT_EQ(prepare(nullptr, 0, "select 1", 3), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
  const auto call = [&](OCISvcCtx *service, OCIStmt **out, OCIError *errhp) {
    return OCIStmtPrepare2(service, out, errhp, oraText("x"), 1, nullptr, 0, 1, 0);
  };
  EXPECT_EQ(call(nullptr, &stmt, session.errhp), OCI_INVALID_HANDLE);
  EXPECT_EQ(call(svchp, &stmt, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(call(svchp, nullptr, session.errhp), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
}

TEST_F(StatementCache, AFailedPrepareLeavesNoHandle) {
  stmt = session.stmt;
  EXPECT_EQ(prepare("k", 0, "begin x"), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 13780);
  EXPECT_EQ(stmt, nullptr);
  EXPECT_EQ(svchp->stmts, nullptr);
}

TEST_F(StatementCache, AHandleOfPrepare2IsNeitherPreparedAgainNorFreed) {
  ASSERT_EQ(prepare(), OCI_SUCCESS);
  EXPECT_TRUE(stmt->fromPrepare2 && stmt->inUse && stmt->prepared);
  EXPECT_EQ(stmt->service, svchp);
  EXPECT_EQ(OCIStmtPrepare(stmt, session.errhp, oraText("select 2"), 8, 1, 0),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIHandleFree(stmt, OCI_HTYPE_STMT), OCI_ERROR);
  ASSERT_EQ(list_length(session.env->errh->records), 1u);
  EXPECT_EQ(static_cast<ErrorRecord *>(session.env->errh->records->head->data)->errcode,
            24436);
  EXPECT_STREQ(stmt->stmtText, "select :a");
}

TEST_F(StatementCache, AKeyGivesSuccessWithInfo) {
  EXPECT_EQ(prepare("k"), OCI_SUCCESS_WITH_INFO);
  EXPECT_EQ(session.takeRecord(), 24432);
  OCIStmt *former = stmt;
  ASSERT_EQ(release(former, "k"), OCI_SUCCESS);
  EXPECT_EQ(prepare("k"), OCI_SUCCESS_WITH_INFO);  // also with one tagged like this
  EXPECT_EQ(session.takeRecord(), 24432);
  EXPECT_EQ(list_length(svchp->stmts), 1u);  // which went
  EXPECT_EQ(stmt->cacheKey, nullptr);
}

TEST_F(StatementCache, SearchFindsWhatWasReleasedUnderItsKey) {
  OCIStmt *other = released("other");
  EXPECT_EQ(search("key"), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24431);
  EXPECT_EQ(stmt, nullptr);
  OCIStmt *wanted = released("key");
  EXPECT_EQ(search("key"), OCI_SUCCESS);
  EXPECT_EQ(stmt, wanted);
  EXPECT_TRUE(stmt->inUse);
  EXPECT_EQ(search("ot"), OCI_SUCCESS);  // the bytes of the key asked for count
  EXPECT_EQ(stmt, other);
  EXPECT_EQ(search("others"), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24431);
}

TEST_F(StatementCache, SearchNeedsAKeyAndACache) {
  released("key");
  for (const char *key : {static_cast<const char *>(nullptr), ""}) {
    EXPECT_EQ(search(key), OCI_ERROR);
    EXPECT_EQ(session.takeRecord(), 24431);
  }
  svchp->stmtCacheEnabled = 0;
  stmt = session.stmt;
  EXPECT_EQ(search("key"), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24300);
  EXPECT_EQ(stmt, nullptr);
}

TEST_F(StatementCache, ReleaseTagsOrKeepsUntaggedOrDeletes) {
  OCIStmt *tagged = released("key");
  EXPECT_EQ(std::string(reinterpret_cast<char *>(tagged->cacheKey), tagged->cacheKeyLen),
            "key");
  EXPECT_FALSE(tagged->inUse);
  EXPECT_STREQ(tagged->stmtText, "select :a");
  EXPECT_EQ(release(tagged), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24434);
  ASSERT_EQ(search("key"), OCI_SUCCESS);
  EXPECT_EQ(release(tagged), OCI_SUCCESS);
  EXPECT_EQ(tagged->cacheKey, nullptr);
  EXPECT_TRUE(list_member(svchp->stmts, tagged));
  tagged->inUse = 1;
  EXPECT_EQ(release(tagged, nullptr, OCI_STRLS_CACHE_DELETE), OCI_SUCCESS);
  EXPECT_EQ(svchp->stmts, nullptr);
  EXPECT_FALSE(tagged->inUse);
}

TEST_F(StatementCache, ReleaseChecksItsArguments) {
  ASSERT_EQ(prepare(), OCI_SUCCESS);
  EXPECT_EQ(release(stmt, nullptr, 1), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
  EXPECT_EQ(release(session.stmt), OCI_INVALID_HANDLE);  // no service context
  EXPECT_EQ(release(nullptr), OCI_INVALID_HANDLE);
}

TEST_F(StatementCache, AnInUseHandleThatIsReplacedIsEmptiedAndStays) {
  ASSERT_EQ(prepare("k"), OCI_SUCCESS_WITH_INFO);
  OCIStmt *held = stmt;
  ASSERT_EQ(prepare("k"), OCI_SUCCESS_WITH_INFO);
  EXPECT_NE(stmt, held);
  EXPECT_EQ(list_length(svchp->stmts), 1u);
  EXPECT_EQ(held->handleType, HANDLE_OCIStmt);
  EXPECT_EQ(held->stmtText, nullptr);
  EXPECT_FALSE(held->prepared);
  EXPECT_TRUE(stmt->prepared);
}

TEST_F(StatementCache, ANullKeyReplacesOnlyReleasedUntaggedHandles) {
  ASSERT_EQ(prepare(), OCI_SUCCESS);
  OCIStmt *held = stmt;
  ASSERT_EQ(prepare(), OCI_SUCCESS);
  EXPECT_TRUE(held->prepared);
  EXPECT_EQ(list_length(svchp->stmts), 2u);
  ASSERT_EQ(release(held, "tag"), OCI_SUCCESS);
  ASSERT_EQ(prepare(), OCI_SUCCESS);
  EXPECT_TRUE(list_member(svchp->stmts, held));
  ASSERT_EQ(release(stmt), OCI_SUCCESS);
  EXPECT_EQ(list_length(svchp->stmts), 3u);
  ASSERT_EQ(prepare(), OCI_SUCCESS);
  EXPECT_EQ(list_length(svchp->stmts), 3u);
}

TEST_F(StatementCache, WithoutACacheReleaseEmptiesTheHandle) {
  svchp->stmtCacheEnabled = 0;
  ASSERT_EQ(prepare("k"), OCI_SUCCESS);
  EXPECT_EQ(session.takeRecord(), kNoRecord);
  EXPECT_EQ(svchp->stmts, nullptr);
  EXPECT_EQ(release(stmt, nullptr, OCI_STRLS_CACHE_DELETE), OCI_ERROR);
  EXPECT_EQ(session.takeRecord(), 24300);
  EXPECT_TRUE(stmt->prepared);
  EXPECT_EQ(release(stmt), OCI_SUCCESS);
  EXPECT_FALSE(stmt->prepared);
  EXPECT_EQ(stmt->stmtText, nullptr);
  EXPECT_EQ(stmt->handleType, HANDLE_OCIStmt);
}

TEST_F(StatementCache, AFreedStatementLeavesTheCache) {
  ASSERT_EQ(prepare(), OCI_SUCCESS);
  stmt->fromPrepare2 = 0;
  ASSERT_EQ(OCIHandleFree(stmt, OCI_HTYPE_STMT), OCI_SUCCESS);
  EXPECT_EQ(svchp->stmts, nullptr);
}

}  // namespace
}  // namespace zevtest
