/// Session pools: what they hold, hand out and refuse.
#include "zevoci/session_pool.h"

#include <ociap.h>

#include <memory>

#include "core/owned.h"
#include "tests/unit/core/server_fixture.h"

namespace zev::test {
namespace {

constexpr const char *kPoolName = "OCI:SP:XXXXXXXXXXXXXXXXXXXXX";

/// An environment with a pool and what the calls on it take.
class PoolTest : public testing::Test {
 protected:
  explicit PoolTest(ub4 mode = OCI_DEFAULT) : env(mode) {}

  /// ASCII in the environment's encoding.
  std::string edge(std::string_view text) const {
    return env.get()->utf16 ? utf16(text) : std::string(text);
  }
  static ub4 length(const std::string &text) { return static_cast<ub4>(text.size()); }
  static OraText *bytes(std::string &text) {
    return reinterpret_cast<OraText *>(text.data());
  }

  sword create(OCISPool *at, ub4 sessMin, ub4 sessMax, ub4 mode) {
    name.reset();
    OraText *made = nullptr;
    const sword status = OCISessionPoolCreate(
        env.get(), errhp, at, &made, &nameLength, asText(target), length(target), sessMin,
        sessMax, 1, bytes(user), length(user), bytes(password), length(password), mode);
    name.reset(made);
    return status;
  }
  sword create(ub4 sessMin, ub4 sessMax, ub4 mode = OCI_SPC_HOMOGENEOUS) {
    return create(pool, sessMin, sessMax, mode);
  }
  sword get(OCISvcCtx **svchp, ub4 mode = OCI_SESSGET_SPOOL) {
    std::string any = mode == OCI_SESSGET_SPOOL ? edge("any name") : target;
    return OCISessionGet(env.get(), errhp, svchp, auth, bytes(any), length(any), nullptr,
                         0, nullptr, nullptr, nullptr, mode);
  }
  sword release(OCISvcCtx *svchp, ub4 mode = OCI_DEFAULT) {
    return OCISessionRelease(svchp, errhp, nullptr, 0, mode);
  }
  sword setAuth(ub4 attribute, std::string &text) {
    return OCIAttrSet(auth, OCI_HTYPE_SESSION, text.data(), length(text), attribute,
                      errhp);
  }

  const ServerAddress &at = testServer();
  Environment env;
  OCIError *errhp = env.errhp();
  OCISPool *pool = env.alloc<OCISPool>(OCI_HTYPE_SPOOL);
  OCISession *auth = env.alloc<OCISession>(OCI_HTYPE_SESSION);
  std::string target = edge(at.host + ':' + at.port + '/' + at.db);
  std::string user = edge(at.user);
  std::string password = edge(at.password);
  Malloced<OraText> name;
  ub4 nameLength = 0;
};

TEST_F(PoolTest, AHandleStandsAmongTheEnvironmentsPoolsUntilItIsFreed) {
  EXPECT_EQ(pool->handleType, HANDLE_OCISPool);
  EXPECT_TRUE(list_member(env.get()->children, pool));
  auto *second = env.alloc<OCISPool>(OCI_HTYPE_SPOOL);
  ASSERT_EQ(list_length(env.get()->sessionPools), 2u);
  EXPECT_EQ(list_nth(env.get()->sessionPools, 0), pool);
  EXPECT_EQ(list_nth(env.get()->sessionPools, 1), second);
  EXPECT_EQ(OCIHandleFree(pool, OCI_HTYPE_SPOOL), OCI_SUCCESS);
  EXPECT_EQ(list_length(env.get()->sessionPools), 1u);
  EXPECT_EQ(list_nth(env.get()->sessionPools, 0), second);
}

TEST_F(PoolTest, FreeingLeavesNullAndOtherTags) {
  Free_OCISPool(nullptr);
  Free_OCISPool(reinterpret_cast<OCISPool *>(errhp));
  EXPECT_EQ(errhp->handleType, HANDLE_OCIError);
}

TEST_F(PoolTest, OneAttributeIsKeptAndTwoAreLetPass) {
  const auto set = [&](ub4 attribute, ub4 value) {
    return OCIAttrSet(pool, OCI_HTYPE_SPOOL, &value, 0, attribute, errhp);
  };
  for (ub4 attribute = 0; attribute < 700; ++attribute) {
    const bool known = attribute == OCI_ATTR_SPOOL_STMTCACHESIZE ||
                       attribute == OCI_ATTR_SPOOL_TIMEOUT ||
                       attribute == OCI_ATTR_SPOOL_GETMODE;
    EXPECT_EQ(set(attribute, 77), known ? OCI_SUCCESS : OCI_ERROR) << attribute;
    EXPECT_EQ(codesOf(errhp), Codes{}) << attribute;
  }
  EXPECT_EQ(pool->stmtCacheSize, 77u);
  EXPECT_EQ(OCIAttrSet(pool, OCI_HTYPE_SPOOL, nullptr, 0, 208, errhp), OCI_ERROR);
  EXPECT_EQ(pool->stmtCacheSize, 77u);
}

TEST_F(PoolTest, AttributesNeedAPoolAndAnErrorHandle) {
  ub4 value = 1;
  EXPECT_EQ(Set_OCISPool(nullptr, &value, 0, 308, errhp), OCI_ERROR);
  EXPECT_EQ(Set_OCISPool(pool, &value, 0, 308, nullptr), OCI_ERROR);
  EXPECT_EQ(OCIAttrSet(auth, OCI_HTYPE_SPOOL, &value, 0, 308, errhp), OCI_ERROR);
}

TEST_F(PoolTest, AttributesAreNotRead) {
  ub4 value = 5, size = 6;
  for (const ub4 attribute : {208u, 308u, 309u, 310u, 311u}) {
    EXPECT_EQ(OCIAttrGet(pool, OCI_HTYPE_SPOOL, &value, &size, attribute, errhp),
              OCI_ERROR);
    EXPECT_EQ(Get_OCISPool(pool, &value, &size, attribute, errhp), OCI_ERROR);
  }
  EXPECT_EQ(codesOf(errhp), Codes{});
  EXPECT_EQ(value, 5u);
  EXPECT_EQ(size, 6u);
}

TEST_F(PoolTest, CreationChecksItsHandles) {
  OraText *made = nullptr;
  const auto call = [&](void *envhp, void *error, void *handle) {
    return OCISessionPoolCreate(static_cast<OCIEnv *>(envhp),
                                static_cast<OCIError *>(error),
                                static_cast<OCISPool *>(handle), &made, &nameLength,
                                nullptr, 0, 0, 0, 0, nullptr, 0, nullptr, 0, OCI_DEFAULT);
  };
  for (void *wrong : {static_cast<void *>(nullptr), static_cast<void *>(auth)}) {
    EXPECT_EQ(call(wrong, errhp, pool), OCI_INVALID_HANDLE);
    EXPECT_EQ(call(env.get(), wrong, pool), OCI_INVALID_HANDLE);
    EXPECT_EQ(call(env.get(), errhp, wrong), OCI_INVALID_HANDLE);
  }
  EXPECT_EQ(made, nullptr);
  EXPECT_EQ(codesOf(errhp), Codes{});
}

TEST_F(PoolTest, CreationNeedsPlacesForTheName) {
  OraText *made = nullptr;
  AddErrorRecord(errhp, OCI_ERROR, 1);
  EXPECT_EQ(OCISessionPoolCreate(env.get(), errhp, pool, nullptr, nullptr, nullptr, 0, 0,
                                 0, 0, nullptr, 0, nullptr, 0, 99),
            OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{21560});
  EXPECT_EQ(firstText(errhp), "KESTREL-21560: null, invalid, or out of range argument 4");
  EXPECT_EQ(OCISessionPoolCreate(env.get(), errhp, pool, &made, nullptr, nullptr, 0, 0, 0,
                                 0, nullptr, 0, nullptr, 0, 99),
            OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{21560});
  EXPECT_EQ(firstText(errhp), "KESTREL-21560: null, invalid, or out of range argument 5");
}

TEST_F(PoolTest, OtherModesAreRefused) {
  for (const ub4 mode : {ub4{OCI_SPC_REINITIALIZE}, ub4{OCI_SPC_STMTCACHE}}) {
    ClearErrorHandle(errhp);
    EXPECT_EQ(create(1, 1, mode), OCI_ERROR);
    EXPECT_EQ(codesOf(errhp), Codes{30475});
    EXPECT_EQ(firstText(errhp), "KESTREL-30475: unsupported feature: %s");
  }
  for (const ub4 mode : {3u, 5u, 6u, 8u, 0x10000u, 0xffffffffu}) {
    ClearErrorHandle(errhp);
    EXPECT_EQ(create(1, 1, mode), OCI_ERROR);
    EXPECT_EQ(codesOf(errhp), Codes{24300});
  }
  EXPECT_EQ(pool->poolMode, 0u);
  EXPECT_EQ(pool->freeCount, 0u);
  EXPECT_EQ(name, nullptr);
}

TEST_F(PoolTest, WithoutHomogeneousSessionsNobodyIsLoggedOn) {
  const ub4 before = list_length(env.get()->children);
  EXPECT_EQ(create(3, 5, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(pool->freeCount, 3u);
  EXPECT_EQ(pool->totalCount, 3u);
  ASSERT_EQ(list_length(pool->free), 3u);
  for (const PoolEntry *entry : Elements<PoolEntry>(pool->free)) {
    EXPECT_EQ(entry->svchp, nullptr);
  }
  EXPECT_EQ(list_length(env.get()->children), before);
}

TEST_F(PoolTest, CreationKeepsWhatItWasGiven) {
  target = "no.such.host:1/d";
  user = "u";
  password = "secret";
  EXPECT_EQ(create(0, 5, OCI_SPC_HOMOGENEOUS), OCI_SUCCESS);
  EXPECT_STREQ(reinterpret_cast<char *>(name.get()), kPoolName);
  EXPECT_EQ(nameLength, 29u);
  EXPECT_STREQ(pool->poolName, kPoolName);
  EXPECT_NE(pool->poolName, reinterpret_cast<char *>(name.get()));
  EXPECT_STREQ(pool->connStr, target.c_str());
  EXPECT_EQ(pool->connStrLen, target.size());
  EXPECT_STREQ(pool->userid, "u");
  EXPECT_EQ(pool->useridLen, 1u);
  EXPECT_STREQ(pool->password, "secret");
  EXPECT_EQ(pool->passwordLen, 6u);
  EXPECT_EQ(pool->sessMin, 0u);
  EXPECT_EQ(pool->sessMax, 5u);
  EXPECT_EQ(pool->sessIncr, 1u);
  EXPECT_EQ(pool->poolMode, 2u);
  EXPECT_EQ(pool->freeCount, 0u);
}

TEST_F(PoolTest, TextsOfNoLengthAreNotKeptButAPasswordIs) {
  target = user = password = "";
  EXPECT_EQ(create(0, 0, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(pool->connStr, nullptr);
  EXPECT_EQ(pool->userid, nullptr);
  EXPECT_STREQ(pool->password, "");
}

TEST_F(PoolTest, CreatingAnewReplacesTheTexts) {
  EXPECT_EQ(create(1, 1, OCI_DEFAULT), OCI_SUCCESS);
  user = "other";
  EXPECT_EQ(create(1, 1, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_STREQ(pool->userid, "other");
  EXPECT_EQ(pool->useridLen, 5u);
  EXPECT_EQ(pool->freeCount, 2u);
}

TEST_F(PoolTest, DestructionDoesNothing) {
  EXPECT_EQ(create(2, 2, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(OCISessionPoolDestroy(nullptr, nullptr, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(OCISessionPoolDestroy(pool, errhp, OCI_SPD_FORCE), OCI_SUCCESS);
  EXPECT_EQ(pool->freeCount, 2u);
  EXPECT_STREQ(pool->poolName, kPoolName);
}

TEST_F(PoolTest, ALogonThatFailsEndsTheCreation) {
  password = "wrong";
  EXPECT_EQ(create(3, 3), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{12154});
  EXPECT_EQ(pool->freeCount, 0u);
  EXPECT_EQ(pool->totalCount, 0u);
  EXPECT_EQ(pool->free, nullptr);
}

TEST_F(PoolTest, SessionsAreHandedOutInTheOrderInWhichTheyWereMade) {
  ASSERT_EQ(create(2, 2), OCI_SUCCESS);
  EXPECT_EQ(pool->freeCount, 2u);
  const auto *first = static_cast<PoolEntry *>(list_nth(pool->free, 0));
  const auto *second = static_cast<PoolEntry *>(list_nth(pool->free, 1));
  OCISvcCtx *one = nullptr, *two = nullptr;
  EXPECT_EQ(get(&one), OCI_SUCCESS);
  EXPECT_EQ(pool->freeCount, 1u);
  EXPECT_EQ(list_nth(pool->busy, 0), first);
  EXPECT_EQ(get(&two), OCI_SUCCESS);
  EXPECT_EQ(pool->freeCount, 0u);
  EXPECT_EQ(pool->free, nullptr);
  EXPECT_EQ(list_nth(pool->busy, 1), second);
  EXPECT_EQ(one, first->svchp);
  EXPECT_EQ(two, second->svchp);
  EXPECT_NE(one->server->conn, two->server->conn);
  EXPECT_EQ(OCIPing(one, errhp, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(pool->totalCount, 2u);
}

TEST_F(PoolTest, ASessionMadeWithThePoolIsNotReleasedButLoggedOff) {
  ASSERT_EQ(create(1, 1), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  ASSERT_EQ(get(&svchp), OCI_SUCCESS);
  EXPECT_EQ(svchp->session->pooled, 0);
  EXPECT_EQ(release(svchp), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{24421});
  EXPECT_EQ(OCIPing(svchp, errhp, OCI_DEFAULT), OCI_SUCCESS);
  EXPECT_EQ(OCILogoff(svchp, errhp), OCI_SUCCESS);
}

TEST_F(PoolTest, AnEmptyPoolLogsOnUntilItsMostAreMade) {
  ASSERT_EQ(create(1, 3), OCI_SUCCESS);
  OCISvcCtx *svchp[4] = {};
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(get(&svchp[i]), OCI_SUCCESS);
    EXPECT_EQ(svchp[i]->session->pooled, i > 0);
    EXPECT_EQ(svchp[i]->stmtCacheEnabled, 0);
    EXPECT_EQ(OCIPing(svchp[i], errhp, OCI_DEFAULT), OCI_SUCCESS);
  }
  EXPECT_EQ(pool->totalCount, 3u);
  EXPECT_EQ(list_length(pool->busy), 3u);
  EXPECT_EQ(get(&svchp[3]), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{});
  EXPECT_EQ(svchp[3], nullptr);
}

TEST_F(PoolTest, AReleasedSessionStillCounts) {
  ASSERT_EQ(create(0, 2), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  for (int i = 0; i < 2; ++i) {
    ASSERT_EQ(get(&svchp), OCI_SUCCESS);
    EXPECT_EQ(release(svchp), OCI_SUCCESS);
    EXPECT_FALSE(list_member(env.get()->children, svchp));
  }
  EXPECT_EQ(pool->totalCount, 2u);
  EXPECT_EQ(list_length(pool->busy), 2u);
  EXPECT_EQ(pool->freeCount, 0u);
  svchp = nullptr;
  EXPECT_EQ(get(&svchp), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{});
}

TEST_F(PoolTest, AFailedLogonLeavesItsRecordsAndDoesNotCount) {
  password = "wrong";
  ASSERT_EQ(create(0, 2), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(get(&svchp), OCI_ERROR);
    EXPECT_EQ(codesOf(errhp), Codes{12154});
    EXPECT_EQ(svchp, nullptr);
    EXPECT_EQ(pool->totalCount, 0u);
  }
}

TEST_F(PoolTest, APoolWithoutAUserCannotLogOnLater) {
  user = "";
  ASSERT_EQ(create(0, 1), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  EXPECT_EQ(get(&svchp), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{21560});
}

TEST_F(PoolTest, OnlyTheFirstPoolOfAnEnvironmentIsUsed) {
  auto *second = env.alloc<OCISPool>(OCI_HTYPE_SPOOL);
  ASSERT_EQ(create(second, 1, 1, OCI_SPC_HOMOGENEOUS), OCI_SUCCESS);
  ASSERT_EQ(create(pool, 0, 0, OCI_SPC_HOMOGENEOUS), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  EXPECT_EQ(get(&svchp), OCI_ERROR);
  EXPECT_EQ(second->freeCount, 1u);
  EXPECT_EQ(OCIHandleFree(pool, OCI_HTYPE_SPOOL), OCI_SUCCESS);
  EXPECT_EQ(get(&svchp), OCI_SUCCESS);
  EXPECT_EQ(second->freeCount, 0u);
}

TEST_F(PoolTest, SessionsOutliveTheHandleOfTheirPool) {
  ASSERT_EQ(create(2, 2), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  ASSERT_EQ(get(&svchp), OCI_SUCCESS);
  EXPECT_EQ(OCIHandleFree(pool, OCI_HTYPE_SPOOL), OCI_SUCCESS);
  EXPECT_EQ(OCIPing(svchp, errhp, OCI_DEFAULT), OCI_SUCCESS);
}

TEST_F(PoolTest, WithoutAPoolThereIsNoSession) {
  EXPECT_EQ(OCIHandleFree(pool, OCI_HTYPE_SPOOL), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  EXPECT_EQ(get(&svchp), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{});
}

TEST_F(PoolTest, APoolSessionIsAskedForByName) {
  ASSERT_EQ(create(1, 1), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  std::string any = "x";
  EXPECT_EQ(OCISessionGet(env.get(), errhp, &svchp, auth, nullptr, 1, nullptr, 0, nullptr,
                          nullptr, nullptr, OCI_SESSGET_SPOOL),
            OCI_ERROR);
  EXPECT_EQ(OCISessionGet(env.get(), errhp, &svchp, auth, bytes(any), 0, nullptr, 0,
                          nullptr, nullptr, nullptr, OCI_SESSGET_SPOOL),
            OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{});
  EXPECT_EQ(pool->freeCount, 1u);
}

TEST_F(PoolTest, AnUnfilledPoolLeavesTheContextAndMarksItsSession) {
  ASSERT_EQ(create(3, 5, OCI_DEFAULT), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  EXPECT_EQ(get(&svchp), OCI_INVALID_HANDLE);
  EXPECT_EQ(svchp, nullptr);
  auto *mine = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  svchp = mine;
  EXPECT_EQ(get(&svchp), OCI_INVALID_HANDLE);  // it has no session
  EXPECT_EQ(svchp, mine);
  mine->session = auth;
  EXPECT_EQ(get(&svchp), OCI_SUCCESS);
  EXPECT_EQ(svchp, mine);
  EXPECT_EQ(auth->pooled, 1);
  EXPECT_EQ(mine->stmtCacheEnabled, 0);
  EXPECT_EQ(pool->freeCount, 3u);
  EXPECT_EQ(pool->busy, nullptr);
}

TEST_F(PoolTest, OtherModesOfAskingAreRefused) {
  ASSERT_EQ(create(1, 1), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  for (const ub4 mode : {2u, 3u, 5u, 8u, 0x20u, 0xffffffffu}) {
    EXPECT_EQ(get(&svchp, mode), OCI_ERROR) << mode;
    EXPECT_EQ(codesOf(errhp), Codes{});
    EXPECT_EQ(svchp, nullptr);
  }
  EXPECT_EQ(pool->freeCount, 1u);
}

TEST_F(PoolTest, AskingChecksItsHandles) {
  OCISvcCtx *svchp = nullptr;
  std::string any = "x";
  const auto call = [&](void *envhp, void *error, OCISvcCtx **out, void *session) {
    return OCISessionGet(static_cast<OCIEnv *>(envhp), static_cast<OCIError *>(error),
                         out, static_cast<OCIAuthInfo *>(session), bytes(any), 1, nullptr,
                         0, nullptr, nullptr, nullptr, OCI_SESSGET_SPOOL);
  };
  EXPECT_EQ(call(env.get(), errhp, nullptr, auth), OCI_INVALID_HANDLE);
  for (void *wrong : {static_cast<void *>(nullptr), static_cast<void *>(pool)}) {
    EXPECT_EQ(call(wrong, errhp, &svchp, auth), OCI_INVALID_HANDLE);
    EXPECT_EQ(call(env.get(), wrong, &svchp, auth), OCI_INVALID_HANDLE);
    EXPECT_EQ(call(env.get(), errhp, &svchp, wrong), OCI_INVALID_HANDLE);
  }
}

TEST_F(PoolTest, ASessionOfNoPoolIsThatOfItsUser) {
  ASSERT_EQ(setAuth(OCI_ATTR_USERNAME, user), OCI_SUCCESS);
  ASSERT_EQ(setAuth(OCI_ATTR_PASSWORD, password), OCI_SUCCESS);
  for (const ub4 mode : {ub4{OCI_DEFAULT}, ub4{OCI_SESSGET_STMTCACHE}}) {
    OCISvcCtx *svchp = nullptr;
    ASSERT_EQ(get(&svchp, mode), OCI_SUCCESS) << firstText(errhp);
    EXPECT_EQ(svchp->session->pooled, 1);
    EXPECT_NE(svchp->session, auth);
    EXPECT_EQ(svchp->stmtCacheEnabled, mode == OCI_SESSGET_STMTCACHE ? 1 : 0);
    EXPECT_EQ(OCIPing(svchp, errhp, OCI_DEFAULT), OCI_SUCCESS);
    EXPECT_EQ(release(svchp), OCI_SUCCESS);
  }
  EXPECT_EQ(pool->totalCount, 0u);
}

TEST_F(PoolTest, ASessionOfNoPoolThatFailsLeavesTheRecordsOfItsLogon) {
  OCISvcCtx *svchp = nullptr;
  EXPECT_EQ(get(&svchp, OCI_DEFAULT), OCI_ERROR);  // authhp names nobody
  EXPECT_EQ(codesOf(errhp), Codes{21560});
  EXPECT_EQ(firstText(errhp), "KESTREL-21560: null, invalid, or out of range argument 4");
  std::string wrong = "wrong";
  setAuth(OCI_ATTR_USERNAME, user);
  setAuth(OCI_ATTR_PASSWORD, wrong);
  EXPECT_EQ(get(&svchp, OCI_DEFAULT), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{12154});
  EXPECT_EQ(svchp, nullptr);
  EXPECT_EQ(OCISessionGet(env.get(), errhp, &svchp, auth, nullptr, 0, nullptr, 0, nullptr,
                          nullptr, nullptr, OCI_DEFAULT),
            OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{21560});
  EXPECT_EQ(firstText(errhp), "KESTREL-21560: null, invalid, or out of range argument 8");
}

TEST_F(PoolTest, FoundAndTagsAreNotWritten) {
  ASSERT_EQ(create(1, 1), OCI_SUCCESS);
  OCISvcCtx *svchp = nullptr;
  std::string any = "x";
  OraText *tag = bytes(any);
  ub4 tagLength = 7;
  boolean found = 9;
  EXPECT_EQ(OCISessionGet(env.get(), errhp, &svchp, auth, bytes(any), 1, asText("t"), 1,
                          &tag, &tagLength, &found, OCI_SESSGET_SPOOL),
            OCI_SUCCESS);
  EXPECT_EQ(tag, bytes(any));
  EXPECT_EQ(tagLength, 7u);
  EXPECT_EQ(found, 9);
}

TEST_F(PoolTest, ReleaseChecksItsHandlesAndMode) {
  auto *svchp = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  EXPECT_EQ(release(nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(release(reinterpret_cast<OCISvcCtx *>(auth)), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCISessionRelease(svchp, nullptr, nullptr, 0, 0), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCISessionRelease(svchp, reinterpret_cast<OCIError *>(auth), nullptr, 0, 0),
            OCI_INVALID_HANDLE);
  EXPECT_EQ(release(svchp, OCI_SESSRLS_DROPSESS), OCI_ERROR);
  EXPECT_EQ(release(svchp, OCI_SESSRLS_RETAG), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{});
  EXPECT_EQ(release(svchp), OCI_INVALID_HANDLE);  // it has no session
}

TEST_F(PoolTest, ASessionOfALogonIsNotReleased) {
  OCISvcCtx *svchp = nullptr;
  ASSERT_EQ(OCILogon(env.get(), errhp, &svchp, asText(user), length(user),
                     asText(password), length(password), asText(target), length(target)),
            OCI_SUCCESS);
  EXPECT_EQ(release(svchp), OCI_ERROR);
  EXPECT_EQ(codesOf(errhp), Codes{24421});
  EXPECT_EQ(firstText(errhp),
            "KESTREL-24421: cannot release session with OCISessionRelease");
  EXPECT_EQ(OCILogoff(svchp, errhp), OCI_SUCCESS);
}

TEST_F(PoolTest, ConnectionPoolsAreRefusedWithoutARecord) {
  const Variable noGoingOn("ZEV_OCI_UIFCTN_RET_OK", nullptr);
  for (OCIError *error : {errhp, static_cast<OCIError *>(nullptr)}) {
    EXPECT_EQ(OCIConnectionPoolCreate(env.get(), error, nullptr, nullptr, nullptr,
                                      nullptr, 0, 1, 2, 1, nullptr, 0, nullptr, 0, 0),
              OCI_ERROR);
    EXPECT_EQ(OCIConnectionPoolDestroy(nullptr, error, 0), OCI_ERROR);
  }
  EXPECT_EQ(codesOf(errhp), Codes{});
  EXPECT_STREQ(errhp->scratchText, "KESTREL-03001: unsupported feature");
}

class WidePoolTest : public PoolTest {
 protected:
  WidePoolTest() : PoolTest(OCI_UTF16) {}
};

TEST_F(WidePoolTest, TextsAreKeptInTheLibrarysEncodingAndLogOnAllTheSame) {
  ASSERT_EQ(create(1, 2), OCI_SUCCESS) << firstText(errhp);
  EXPECT_EQ(pool->userid, at.user);
  EXPECT_EQ(pool->useridLen, at.user.size());
  EXPECT_STREQ(pool->poolName, kPoolName);
  OCISvcCtx *made = nullptr, *added = nullptr;
  EXPECT_EQ(get(&made), OCI_SUCCESS);
  EXPECT_EQ(get(&added), OCI_SUCCESS) << firstText(errhp);
  EXPECT_EQ(added->session->username, at.user);
  EXPECT_EQ(release(added), OCI_SUCCESS);
}

TEST_F(WidePoolTest, ASessionOfNoPoolLogsOnAllTheSame) {
  setAuth(OCI_ATTR_USERNAME, user);
  setAuth(OCI_ATTR_PASSWORD, password);
  OCISvcCtx *svchp = nullptr;
  ASSERT_EQ(get(&svchp, OCI_DEFAULT), OCI_SUCCESS) << firstText(errhp);
  EXPECT_EQ(release(svchp), OCI_SUCCESS);
}

TEST_F(WidePoolTest, BrokenTextIsRecorded) {
  user.pop_back();
  EXPECT_EQ(create(0, 1), OCI_ERROR);
  EXPECT_EQ(firstText(errhp),
            "An incomplete multibyte sequence has been encountered in the input");
}

}  // namespace
}  // namespace zev::test
