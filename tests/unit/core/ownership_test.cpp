#include <algorithm>
#include <numeric>
#include <random>

#include "core_fixture.h"

namespace zev::test {
namespace {

/// A service context with all that can be linked to it.
struct Linked {
  explicit Linked(Environment &env)
      : server(env.alloc<OCIServer>(OCI_HTYPE_SERVER)),
        service(env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX)),
        session(env.alloc<OCISession>(OCI_HTYPE_SESSION)),
        trans(env.alloc<OCITrans>(OCI_HTYPE_TRANS)),
        stmt(env.alloc<OCIStmt>(OCI_HTYPE_STMT)) {
    const auto link = [&](void *handle, ub4 attribute) {
      EXPECT_EQ(OCIAttrSet(service, OCI_HTYPE_SVCCTX, handle, 0, attribute, env.errhp()),
                OCI_SUCCESS);
    };
    link(server, OCI_ATTR_SERVER);
    link(session, OCI_ATTR_SESSION);
    link(trans, OCI_ATTR_TRANS);
    stmt->service = service;
    EXPECT_EQ(OCIServerAttach(server, env.errhp(), asText("h:1/d"), 5, OCI_DEFAULT),
              OCI_SUCCESS);
    OCIAttrSet(session, OCI_HTYPE_SESSION, const_cast<OraText *>(asText("u")), 1,
               OCI_ATTR_USERNAME, env.errhp());
  }

  sword free(int which) {
    switch (which) {
      case 0:
        return OCIHandleFree(server, OCI_HTYPE_SERVER);
      case 1:
        return OCIHandleFree(service, OCI_HTYPE_SVCCTX);
      case 2:
        return OCIHandleFree(session, OCI_HTYPE_SESSION);
      case 3:
        return OCIHandleFree(trans, OCI_HTYPE_TRANS);
      default:
        return OCIHandleFree(stmt, OCI_HTYPE_STMT);
    }
  }

  OCIServer *server;
  OCISvcCtx *service;
  OCISession *session;
  OCITrans *trans;
  OCIStmt *stmt;
};
constexpr int kLinked = 5;

TEST(Ownership, LinkedHandlesMayBeFreedInEveryOrderAndTheRestWithTheEnvironment) {
  std::vector<int> order(kLinked);
  std::iota(order.begin(), order.end(), 0);
  do {
    for (int freed = 0; freed <= kLinked; ++freed) {
      Environment env;
      Linked linked(env);
      for (int i = 0; i < freed; ++i) ASSERT_EQ(linked.free(order[i]), OCI_SUCCESS);
    }
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Ownership, AServiceContextForgetsWhatIsFreed) {
  Environment env;
  Linked linked(env);
  linked.free(0);
  linked.free(2);
  linked.free(3);
  EXPECT_EQ(linked.service->server, nullptr);
  EXPECT_EQ(linked.service->session, nullptr);
  EXPECT_EQ(linked.service->trans, nullptr);
}

TEST(Ownership, AStatementForgetsItsServiceContext) {
  Environment env;
  Linked linked(env);
  linked.free(1);
  EXPECT_EQ(linked.stmt->service, nullptr);
}

TEST(Ownership, ASharedServerAndSessionAreForgottenByEveryServiceContext) {
  Environment env;
  Linked linked(env);
  auto *second = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  second->server = linked.server;
  second->session = linked.session;
  linked.free(0);
  linked.free(2);
  EXPECT_EQ(second->server, nullptr);
  EXPECT_EQ(second->session, nullptr);
}

TEST(Ownership, ASessionFreesTheElementsOfItsList) {
  Environment env;
  auto *session = env.alloc<OCISession>(OCI_HTYPE_SESSION);
  for (int i = 0; i < 3; ++i) session->owned = lappend(session->owned, std::malloc(8));
  EXPECT_EQ(OCIHandleFree(session, OCI_HTYPE_SESSION), OCI_SUCCESS);
}

TEST(Ownership, TheSpareListGoesWithTheEnvironment) {
  Environment env;
  for (int i = 0; i < 3; ++i) {
    env.get()->spareList = lappend(env.get()->spareList, std::malloc(8));
  }
}

TEST(Ownership, MarkingCursorsClosedForgetsWhatLivedOnTheServer) {
  Environment env;
  Linked linked(env);
  auto *other = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  auto *bystander = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  const auto open = [](OCIStmt *stmt, OCIServer *server) {
    stmt->cursor = static_cast<PortalState *>(std::calloc(1, sizeof(PortalState)));
    stmt->cursor->state = kPortalOpen;
    stmt->cursor->server = server;
    stmt->cursor->stmtName = strdup("s");
    stmt->cursor->portalName = strdup("p");
  };
  open(linked.stmt, linked.server);
  open(bystander, other);
  linked.stmt->preparedName = strdup("n");
  markCursorsClosed(env.get(), linked.server);
  EXPECT_EQ(linked.stmt->cursor->state, kPortalClosed);
  EXPECT_EQ(linked.stmt->cursor->stmtName, nullptr);
  EXPECT_EQ(linked.stmt->cursor->portalName, nullptr);
  EXPECT_EQ(linked.stmt->cursor->server, nullptr);
  EXPECT_EQ(linked.stmt->preparedName, nullptr);
  EXPECT_EQ(linked.service->server, nullptr);
  EXPECT_EQ(bystander->cursor->state, kPortalOpen);
  EXPECT_STREQ(bystander->cursor->portalName, "p");
  markCursorsClosed(env.get(), other);
}

constexpr ub4 kTypes[] = {OCI_HTYPE_ENV,  OCI_HTYPE_ERROR,  OCI_HTYPE_SVCCTX,
                          OCI_HTYPE_STMT, OCI_HTYPE_SERVER, OCI_HTYPE_SESSION,
                          OCI_HTYPE_TRANS};

TEST(Ownership, AnEnvironmentTakesHandlesOfEveryKindAlongInAnyOrder) {
  std::mt19937 random(20261120);
  for (int round = 0; round < 100; ++round) {
    Environment env(round % 2 ? OCI_UTF16 : OCI_DEFAULT);
    for (int i = 0; i < 30; ++i) {
      const ub4 type = kTypes[random() % std::size(kTypes)];
      void *made = nullptr, *memory = nullptr;
      ASSERT_EQ(OCIHandleAlloc(env.get(), &made, type, random() % 2 * 32, &memory),
                OCI_SUCCESS);
      if (type == OCI_HTYPE_STMT) {
        env.alloc<OCIBind>(OCI_HTYPE_BIND, made);
        env.alloc<OCIDefine>(OCI_HTYPE_DEFINE, made);
      }
      if (type != OCI_HTYPE_ENV && random() % 4 == 0) {
        ASSERT_EQ(OCIHandleFree(made, type), OCI_SUCCESS);
      }
    }
    AllocateMemFromEnvCache(env.get(), 100);
  }
}

TEST(Ownership, AStatementTakesItsBindsAndDefinesAlong) {
  Environment env;
  auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  for (int i = 0; i < 3; ++i) {
    env.alloc<OCIBind>(OCI_HTYPE_BIND, stmt);
    env.alloc<OCIDefine>(OCI_HTYPE_DEFINE, stmt);
  }
  EXPECT_EQ(OCIHandleFree(stmt, OCI_HTYPE_STMT), OCI_SUCCESS);
}

class ChildEnvironment : public testing::TestWithParam<ub4> {};

TEST_P(ChildEnvironment, SpeaksItsParentsEncodingAndOwnsItsHandles) {
  Environment env(GetParam());
  auto *child = env.alloc<OCIEnv>(OCI_HTYPE_ENV);
  EXPECT_EQ(child->parenth, env.get());
  EXPECT_EQ(child->encoding, env.get()->encoding);
  EXPECT_EQ(child->utf16, env.get()->utf16);
  EXPECT_EQ(child->mode, GetParam() & OCI_OBJECT);
  auto *errhp = env.alloc<OCIError>(OCI_HTYPE_ERROR, child);
  EXPECT_EQ(list_member(child->children, errhp), 1);
  EXPECT_EQ(list_member(env.get()->children, errhp), 0);
  AddErrorRecord2(errhp, OCI_ERROR, 1, "ab");
  OraText text[8] = {};
  sb4 code = 0;
  EXPECT_EQ(OCIErrorGet(errhp, 1, nullptr, &code, text, sizeof text, OCI_HTYPE_ERROR),
            OCI_SUCCESS);
  EXPECT_EQ(text[1], env.get()->utf16 ? 0 : 'b');
}

TEST_P(ChildEnvironment, MayGoBeforeOrWithItsParent) {
  Environment env(GetParam());
  auto *first = env.alloc<OCIEnv>(OCI_HTYPE_ENV);
  auto *second = env.alloc<OCIEnv>(OCI_HTYPE_ENV);
  env.alloc<OCIEnv>(OCI_HTYPE_ENV, second);
  EXPECT_EQ(OCIHandleFree(first, OCI_HTYPE_ENV), OCI_SUCCESS);
  auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
  const std::string target = env.get()->utf16 ? utf16("h") : "h";
  EXPECT_EQ(OCIServerAttach(server, env.errhp(), asText(target),
                            static_cast<sb4>(target.size()), OCI_DEFAULT),
            OCI_SUCCESS);
  EXPECT_STREQ(server->host, "h");
}

INSTANTIATE_TEST_SUITE_P(Modes, ChildEnvironment,
                         testing::Values(OCI_DEFAULT, OCI_OBJECT, OCI_UTF16,
                                         OCI_UTF16 | OCI_OBJECT, OCI_THREADED));

TEST(OwnershipDeathTest, AServerWithoutAnEnvironmentAboveIsAFault) {
  OCIServer *server = Alloc_OCIServer();
  EXPECT_DEATH(Free_OCIServer(server), "env != \\(\\(void \\*\\)0\\)");
  server->parenth = server;
  EXPECT_DEATH(Free_OCIServer(server), "env->handleType == HANDLE_OCIEnv");
  std::free(server);
}

}  // namespace
}  // namespace zev::test
