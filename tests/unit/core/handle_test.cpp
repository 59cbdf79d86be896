#include "core/handle_kinds.h"
#include "core_fixture.h"

namespace zev::test {
namespace {

struct KindCase {
  const char *name;
  ub4 type;
  HandleTag tag;
  bool onStatement = false;
};

class HandleKinds : public testing::TestWithParam<KindCase> {
 protected:
  void *parent() {
    return GetParam().onStatement ? static_cast<void *>(stmt) : env.get();
  }
  Environment env;
  OCIStmt *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
};

TEST_P(HandleKinds, AllocatesZeroedMemoryWithItsTagAndParent) {
  auto *handle = env.alloc<OCIHandle>(GetParam().type, parent());
  EXPECT_EQ(handle->handleType, GetParam().tag);
  EXPECT_EQ(handle->parenth, parent());
  EXPECT_EQ(handle->userMem, nullptr);
  EXPECT_EQ(handle->userMemSize, 0u);
}

TEST_P(HandleKinds, EntersTheListOfItsOwner) {
  auto *handle = env.alloc<OCIHandle>(GetParam().type, parent());
  const List *owner = GetParam().type == OCI_HTYPE_BIND     ? stmt->binds
                      : GetParam().type == OCI_HTYPE_DEFINE ? stmt->defines
                                                            : env.get()->children;
  EXPECT_EQ(list_tail(owner)->data, handle);
  EXPECT_EQ(list_member(env.get()->children, handle), GetParam().onStatement ? 0 : 1);
}

TEST_P(HandleKinds, UserMemoryIsZeroedAndGoesWithTheHandle) {
  void *made = nullptr, *memory = nullptr;
  ASSERT_EQ(OCIHandleAlloc(parent(), &made, GetParam().type, 16, &memory), OCI_SUCCESS);
  const auto *handle = static_cast<const OCIHandle *>(made);
  EXPECT_EQ(handle->userMem, memory);
  EXPECT_EQ(handle->userMemSize, 16u);
  EXPECT_EQ(std::string(static_cast<char *>(memory), 16), std::string(16, '\0'));
}

TEST_P(HandleKinds, UserMemoryWithoutAPlaceForItIsRecordedOnTheEnvironment) {
  void *made = nullptr;
  EXPECT_EQ(OCIHandleAlloc(parent(), &made, GetParam().type, 16, nullptr), OCI_ERROR);
  EXPECT_EQ(codesOf(env.get()->errh), Codes{16530});
}

TEST_P(HandleKinds, IsFreedByItsTypeUnlessAStatementOwnsIt) {
  auto *handle = env.alloc<OCIHandle>(GetParam().type, parent());
  const bool freed = !GetParam().onStatement;
  EXPECT_EQ(OCIHandleFree(handle, GetParam().type),
            freed ? OCI_SUCCESS : OCI_INVALID_HANDLE);
  EXPECT_EQ(list_member(env.get()->children, handle), 0);
  if (!freed) {
    EXPECT_EQ(handle->handleType, GetParam().tag);
    EXPECT_EQ(list_member(GetParam().type == OCI_HTYPE_BIND ? stmt->binds : stmt->defines,
                          handle),
              1);
  }
}

TEST_P(HandleKinds, NeedsAParentOfTheRightKind) {
  const ub4 type = GetParam().type;
  void *wrongParent = GetParam().onStatement ? static_cast<void *>(env.get()) : stmt;
  for (void *wrong : {wrongParent, static_cast<void *>(env.errhp())}) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(wrong, &made, type, 0, nullptr), OCI_INVALID_HANDLE);
    EXPECT_EQ(made, nullptr);
  }
  void *made = nullptr;
  EXPECT_EQ(OCIHandleAlloc(nullptr, &made, type, 0, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIHandleAlloc(parent(), nullptr, type, 0, nullptr), OCI_INVALID_HANDLE);
}

TEST_P(HandleKinds, TheTableKnowsItByTypeAndByTag) {
  const HandleKind *kind = findHandleKind(GetParam().type);
  ASSERT_NE(kind, nullptr);
  EXPECT_EQ(kind->tag, GetParam().tag);
  EXPECT_EQ(findHandleKindByTag(GetParam().tag), kind);
}

TEST_P(HandleKinds, ItsFreeFunctionLeavesNullAndOtherKindsAlone) {
  const HandleKind *kind = findHandleKind(GetParam().type);
  kind->free(nullptr);
  OCIHandle *other =
      GetParam().tag == HANDLE_OCIError ? static_cast<OCIHandle *>(stmt) : env.errhp();
  const ub4 tag = other->handleType;
  kind->free(other);
  EXPECT_EQ(other->handleType, tag);
}

INSTANTIATE_TEST_SUITE_P(Types, HandleKinds,
                         testing::Values(KindCase{"Env", 1, HANDLE_OCIEnv},
                                         KindCase{"Error", 2, HANDLE_OCIError},
                                         KindCase{"SvcCtx", 3, HANDLE_OCISvcCtx},
                                         KindCase{"Stmt", 4, HANDLE_OCIStmt},
                                         KindCase{"Bind", 5, HANDLE_OCIBind, true},
                                         KindCase{"Define", 6, HANDLE_OCIDefine, true},
                                         KindCase{"Server", 8, HANDLE_OCIServer},
                                         KindCase{"Session", 9, HANDLE_OCISession},
                                         KindCase{"Trans", 10, HANDLE_OCITrans}),
                         [](const auto &p) { return std::string(p.param.name); });

TEST(HandleTags, HaveTheirNumbers) {
  EXPECT_EQ(HANDLE_OCIEnv, 1u);
  EXPECT_EQ(HANDLE_OCIError, 2u);
  EXPECT_EQ(HANDLE_OCISvcCtx, 3u);
  EXPECT_EQ(HANDLE_OCISession, 4u);
  EXPECT_EQ(HANDLE_OCIServer, 5u);
  EXPECT_EQ(HANDLE_OCIBind, 6u);
  EXPECT_EQ(HANDLE_OCIDefine, 7u);
  EXPECT_EQ(HANDLE_OCIStmt, 8u);
  EXPECT_EQ(HANDLE_OCIParam, 9u);
  EXPECT_EQ(HANDLE_OCIDescribe, 10u);
  EXPECT_EQ(HANDLE_OCIDateTime, 11u);
  EXPECT_EQ(HANDLE_OCITrans, 12u);
  EXPECT_EQ(HANDLE_OCIThreadId, 13u);
  EXPECT_EQ(HANDLE_OCIThreadHandle, 14u);
  EXPECT_EQ(HANDLE_OCIThreadMutex, 15u);
  EXPECT_EQ(HANDLE_OCIThreadKey, 16u);
  EXPECT_EQ(HANDLE_OCIInterval, 17u);
  EXPECT_EQ(HANDLE_OCISPool, 18u);
  EXPECT_EQ(HANDLE_OCILobLocator, 19u);
}

TEST(HandleAlloc, TypesWithoutAHandleAreInvalid) {
  Environment env;
  for (const ub4 type : {0u, 11u, 12u, 13u, 14u, 15u, 16u, 17u, 18u, 26u, 28u, 50u, 53u,
                         100u, 0xffffffffu}) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env.get(), &made, type, 0, nullptr), OCI_INVALID_HANDLE)
        << type;
  }
}

TEST(HandleAlloc, ClearsTheEnvironmentsOwnRecords) {
  Environment env;
  AddErrorRecord(env.get()->errh, OCI_ERROR, 1);
  env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  EXPECT_EQ(codesOf(env.get()->errh), Codes{});
}

TEST(HandleFree, TypesThatAreNotFreedAreInvalid) {
  Environment env;
  for (const ub4 type : {0u, 5u, 6u, 11u, 17u, 26u, 28u, 50u, 53u, 0xffffffffu}) {
    EXPECT_EQ(OCIHandleFree(env.errhp(), type), OCI_INVALID_HANDLE) << type;
    EXPECT_EQ(list_member(env.get()->children, env.errhp()), 1) << type;
  }
  EXPECT_EQ(OCIHandleFree(nullptr, OCI_HTYPE_ERROR), OCI_INVALID_HANDLE);
}

TEST(HandleFree, TagsThatAreNotFreedHereAreInvalid) {
  Environment env;
  for (ub4 tag : {0u, 9u, 11u, 13u, 14u, 15u, 16u, 17u, 19u, 20u, 0xffffffffu}) {
    OCIHandle fake{.handleType = tag, .parenth = env.get()};
    EXPECT_EQ(OCIHandleFree(&fake, OCI_HTYPE_ERROR), OCI_INVALID_HANDLE) << tag;
  }
}

TEST(HandleFree, AParentThatIsNoEnvironmentIsInvalid) {
  Environment env;
  OCIError fake{};
  fake.handleType = HANDLE_OCIError;
  fake.parenth = env.errhp();
  EXPECT_EQ(OCIHandleFree(&fake, OCI_HTYPE_ERROR), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIHandleFree(env.get()->errh, OCI_HTYPE_ERROR), OCI_INVALID_HANDLE);
}

TEST(HandleFree, AWrongTypeUnlinksTheHandleAndFreesNothing) {
  Environment env;
  auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  EXPECT_EQ(OCIHandleFree(server, OCI_HTYPE_SVCCTX), OCI_SUCCESS);
  EXPECT_EQ(list_member(env.get()->children, server), 0);
  EXPECT_EQ(server->handleType, HANDLE_OCIServer);
  Free_OCIServer(server);
}

TEST(HandleFree, AWrongTypeLeavesATopLevelEnvironmentAsItIs) {
  Environment env;
  EXPECT_EQ(OCIHandleFree(env.get(), OCI_HTYPE_SVCCTX), OCI_SUCCESS);
  EXPECT_EQ(env.get()->handleType, HANDLE_OCIEnv);
}

TEST(HandleFree, AStatementOfTheCacheRefusesToGo) {
  Environment env;
  auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  stmt->fromPrepare2 = 1;
  EXPECT_EQ(OCIHandleFree(stmt, OCI_HTYPE_STMT), OCI_ERROR);
  EXPECT_EQ(codesOf(env.get()->errh), Codes{24436});
  EXPECT_EQ(list_member(env.get()->children, stmt), 1);
  env.free();  // which takes it along without a word
}

TEST(Descriptors, TypesOutsideTheRangeAreInvalid) {
  Environment env;
  for (ub4 type = 0; type <= 100; ++type) {
    void *made = nullptr;
    const bool known = findHandleKind(type) && type >= 50;
    if (known) continue;
    EXPECT_EQ(OCIDescriptorAlloc(env.get(), &made, type, 0, nullptr), OCI_INVALID_HANDLE)
        << type;
  }
}

TEST(Descriptors, WrongArgumentsAreInvalid) {
  Environment env;
  void *made = nullptr;
  EXPECT_EQ(OCIDescriptorAlloc(nullptr, &made, 50, 0, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDescriptorAlloc(env.errhp(), &made, 50, 0, nullptr), OCI_INVALID_HANDLE);
  EXPECT_EQ(OCIDescriptorAlloc(env.get(), nullptr, 50, 0, nullptr), OCI_INVALID_HANDLE);
}

TEST(Descriptors, MissingUserMemoryPlaceComesBeforeTheType) {
  Environment env;
  void *made = nullptr;
  AddErrorRecord(env.get()->errh, OCI_ERROR, 1);
  EXPECT_EQ(OCIDescriptorAlloc(env.get(), &made, 49, 8, nullptr), OCI_ERROR);
  EXPECT_EQ(codesOf(env.get()->errh), Codes{16530});
}

TEST(Descriptors, FreeingAsksForTypeTagAndParent) {
  Environment env;
  OCIHandle lob{.handleType = HANDLE_OCILobLocator, .parenth = env.get()};
  EXPECT_EQ(OCIDescriptorFree(&lob, OCI_DTYPE_LOB), OCI_INVALID_HANDLE);
  for (const ub4 type :
       {0u, 2u, 49u, 50u, 53u, 61u, 62u, 63u, 65u, 66u, 68u, 69u, 70u, 80u}) {
    EXPECT_EQ(OCIDescriptorFree(env.errhp(), type), OCI_INVALID_HANDLE) << type;
    EXPECT_EQ(OCIDescriptorFree(nullptr, type), OCI_INVALID_HANDLE) << type;
  }
}

}  // namespace
}  // namespace zev::test
