/// What a call does when memory runs out in its midst: each allocation of a call fails in
/// turn, once alone and once with all that follow. The library's calls of malloc, calloc
/// and strdup come here first (linker option --wrap), those of C++ by replacement.
#include <ociap.h>

#include <functional>

#include "core/edge_text.h"
#include "core_fixture.h"
#include "failing_allocator.h"
#include "zevoci/encodings.h"
#include "zevoci/user_callbacks.h"

namespace zev::test {
namespace {

/// Whether the allocations after the one that fails fail too.
enum class Failing { Once, FromThereOn };

class ExhaustedMemory : public testing::TestWithParam<Failing> {
 protected:
  bool once() const { return GetParam() == Failing::Once; }

  /// Runs `work` with its n-th allocation failing, for n = 1, 2, ... until none fails;
  /// `check` sees each status after a failure, `undo` follows every run. The last run
  /// must give `success`.
  void exhaust(
      const std::function<sword()> &work, const std::function<void(sword)> &check,
      const std::function<void()> &undo = [] {}, sword success = OCI_SUCCESS) {
    int failures = 0;
    for (long n = 0; n < 10000; ++n) {
      failAllocationsAfter(n, !once());
      sword status = 0;
      bool escaped = false;
      try {
        status = work();
      } catch (...) {
        escaped = true;
      }
      const bool failed = stopFailing();
      ASSERT_FALSE(escaped) << "an exception left a call at allocation " << n + 1;
      if (!failed) {
        EXPECT_EQ(status, success);
        undo();
        EXPECT_GT(failures, 0);
        return;
      }
      ++failures;
      check(status);
      undo();
      if (HasFatalFailure()) return;
    }
    FAIL() << "the call never succeeds";
  }

  /// A failure leaves record 16506, unless there was no memory for the record either.
  void expectOutOfMemory(sword status, const OCIError *errhp) const {
    EXPECT_EQ(status, OCI_ERROR);
    if (once()) {
      EXPECT_EQ(codesOf(errhp), Codes{16506});
    }
  }
};

struct EnvCase {
  ub4 mode;
  const char *nlsLang;
  const char *locale;
};

TEST_P(ExhaustedMemory, AnEnvironmentIsMadeWholeOrNotAtAll) {
  const EnvCase cases[] = {
      {OCI_DEFAULT, nullptr, "C"},
      {OCI_UTF16, nullptr, "C"},
      {OCI_DEFAULT, "LANGUAGE_A TERRITORY NAME THAT IS LONG.UTF-8", "C"},
      {OCI_DEFAULT, "A_C.ISO-8859-1", "C"},
  };
  for (const EnvCase &c : cases) {
    const Variable lang("NLS_LANG", c.nlsLang);
    const Variable locale("LC_ALL", c.locale);
    const sb4 encoding = Environment(c.mode).get()->encoding;
    OCIEnv *env = nullptr;
    void *memory = nullptr;
    exhaust(
        [&] {
          return OCIEnvCreate(&env, c.mode, nullptr, nullptr, nullptr, nullptr, 64,
                              &memory);
        },
        [&](sword status) {
          EXPECT_EQ(status, OCI_ERROR);
          EXPECT_EQ(env, nullptr);
        },
        [&] {
          if (env) {
            EXPECT_EQ(env->encoding, encoding);
          }
          Free_OCIEnv(env);
          env = nullptr;
        });
  }
}

sword silent(void *, void *, ub4, ub4, ub4, sword, sb4 *, va_list) {
  return OCI_CONTINUE;
}

TEST_P(ExhaustedMemory, ACallbackIsRegisteredWholeOrNotAtAll) {
  const Environment env;
  for (sb4 registered = 0; registered < 5; ++registered) {
    const auto count = [&] {
      const UcbList *list = env.get()->exitUcbs[OCI_FNCODE_HANDLEALLOC];
      return list ? list->count : 0;
    };
    exhaust(
        [&] {
          return OCIUserCallbackRegister(env.get(), OCI_HTYPE_ENV, env.errhp(), silent,
                                         nullptr, OCI_FNCODE_HANDLEALLOC,
                                         OCI_UCBTYPE_EXIT, nullptr);
        },
        [&](sword status) {
          EXPECT_EQ(status, OCI_ERROR);
          EXPECT_EQ(count(), registered);
        });
    EXPECT_EQ(count(), registered + 1);
  }
}

TEST_P(ExhaustedMemory, AnEnvironmentWithoutItsPackagesIsStillOne) {
  const Variable packages("ORA_OCI_UCBPKG",
                          "a package of a name that is long;and another of such a name");
  Environment env;
  exhaust([&] { return o2pLoadUCBs(env.get()); },
          [](sword status) { EXPECT_LE(status, OCI_SUCCESS); });
}

TEST_P(ExhaustedMemory, ALocaleIsSplitIntoCopiesThatMayBeMissing) {
  char *parts[3] = {};
  exhaust(
      [&]() -> sword { return ParseLocale("a_b.c", &parts[0], &parts[1], &parts[2]); },
      [](sword) {},
      [&] {
        for (char *&part : parts) {
          std::free(part);
          part = nullptr;
        }
      },
      1);
}

TEST_P(ExhaustedMemory, AHandleIsAllocatedWithItsUserMemoryOrNotAtAll) {
  for (const ub4 mode : {OCI_DEFAULT, OCI_UTF16}) {
    Environment env(mode);
    auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
    for (const ub4 type : {1u, 2u, 3u, 4u, 5u, 6u, 8u, 9u, 10u}) {
      const bool onStatement = type == OCI_HTYPE_BIND || type == OCI_HTYPE_DEFINE;
      const ub4 children = list_length(env.get()->children);
      void *made = nullptr, *memory = nullptr;
      exhaust(
          [&] {
            return OCIHandleAlloc(onStatement ? static_cast<void *>(stmt) : env.get(),
                                  &made, type, 32, &memory);
          },
          [&](sword status) {
            expectOutOfMemory(status, env.get()->errh);
            EXPECT_EQ(made, nullptr);
            EXPECT_EQ(list_length(env.get()->children), children);
          },
          [&] {
            if (made && !onStatement) OCIHandleFree(made, type);
            made = nullptr;
          });
    }
    EXPECT_EQ(list_length(stmt->binds), 1u);
    EXPECT_EQ(list_length(stmt->defines), 1u);
  }
}

TEST_P(ExhaustedMemory, AnArrayOfDescriptorsIsMadeWholeOrNotAtAll) {
  Environment env;
  const ub4 before = list_length(env.get()->children);
  void *made[3] = {};
  void *memory = nullptr;
  exhaust(
      [&] {
        return OCIArrayDescriptorAlloc(env.get(), made, OCI_DTYPE_TIMESTAMP, 3, 8,
                                       &memory);
      },
      [&](sword status) {
        expectOutOfMemory(status, env.get()->errh);
        for (const void *descriptor : made) EXPECT_EQ(descriptor, nullptr);
        EXPECT_EQ(list_length(env.get()->children), before);
        EXPECT_EQ(list_length(env.get()->descriptorArrays), 0u);
      });
  EXPECT_EQ(list_length(env.get()->children), before + 3);
  EXPECT_EQ(OCIArrayDescriptorFree(made, OCI_DTYPE_TIMESTAMP), OCI_SUCCESS);
}

TEST_P(ExhaustedMemory, AServerIsAttachedToItsAddressOrNotAtAll) {
  struct Target {
    ub4 mode;
    std::string text;
    const char *host, *port, *dbname, *uri;
  };
  const Target targets[] = {
      {OCI_DEFAULT, "h:1/d", "h", "1", "d", nullptr},
      {OCI_DEFAULT, "", "localhost", "5444", "zev", nullptr},
      {OCI_DEFAULT, "postgres://h/d", nullptr, nullptr, nullptr, "postgres://h/d"},
      {OCI_UTF16, utf16("h:1/d"), "h", "1", "d", nullptr},
  };
  for (const Target &target : targets) {
    Environment env(target.mode);
    auto *server = env.alloc<OCIServer>(OCI_HTYPE_SERVER);
    exhaust(
        [&] {
          return OCIServerAttach(server, env.errhp(), asText(target.text),
                                 static_cast<sb4>(target.text.size()), OCI_DEFAULT);
        },
        [&](sword status) {
          EXPECT_EQ(status, OCI_ERROR);
          EXPECT_EQ(server->attached, 0);
          EXPECT_EQ(server->host, nullptr);
          if (once() && target.mode == OCI_DEFAULT) {
            EXPECT_EQ(codesOf(env.errhp()), Codes{16506});
          }
        },
        [&] {
          if (!server->attached) return;
          EXPECT_STREQ(server->host, target.host);
          EXPECT_STREQ(server->port, target.port);
          EXPECT_STREQ(server->dbname, target.dbname);
          EXPECT_STREQ(server->uri, target.uri);
          OCIServerDetach(server, env.errhp(), OCI_DEFAULT);
        });
  }
}

TEST_P(ExhaustedMemory, AStatementIsPreparedOrNotAtAll) {
  for (const ub4 mode : {OCI_DEFAULT, OCI_UTF16}) {
    Environment env(mode);
    auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
    const std::string text = mode == OCI_UTF16 ? utf16("select 1") : "select 1";
    exhaust(
        [&] {
          return OCIStmtPrepare(stmt, env.errhp(), asText(text),
                                static_cast<ub4>(text.size()), OCI_NTV_SYNTAX,
                                OCI_DEFAULT);
        },
        [&](sword status) {
          EXPECT_EQ(status, OCI_ERROR);
          EXPECT_EQ(stmt->prepared, 0);
          EXPECT_EQ(stmt->stmtText, nullptr);
        });
    EXPECT_STREQ(stmt->stmtText, "select 1");
  }
}

TEST_P(ExhaustedMemory, ASessionsTextIsSetOrCleared) {
  for (const ub4 mode : {OCI_DEFAULT, OCI_UTF16}) {
    Environment env(mode);
    auto *session = env.alloc<OCISession>(OCI_HTYPE_SESSION);
    std::string text =
        mode == OCI_UTF16 ? utf16("scott") + std::string(2, '\0') : "scott";
    text.push_back('\0');
    const auto size = static_cast<ub4>(mode == OCI_UTF16 ? 10 : 5);
    for (const ub4 attribute : {OCI_ATTR_USERNAME, OCI_ATTR_PASSWORD, OCI_ATTR_MODULE}) {
      char *const &kept = attribute == OCI_ATTR_USERNAME   ? session->username
                          : attribute == OCI_ATTR_PASSWORD ? session->password
                                                           : session->module;
      exhaust(
          [&] {
            return OCIAttrSet(session, OCI_HTYPE_SESSION, text.data(), size, attribute,
                              env.errhp());
          },
          [&](sword status) {
            EXPECT_EQ(status, OCI_ERROR);
            EXPECT_EQ(kept, nullptr);
          });
      EXPECT_STREQ(kept, "scott");
    }
    char *name = nullptr;
    exhaust(
        [&] {
          return OCIAttrGet(session, OCI_HTYPE_SESSION, &name, nullptr, OCI_ATTR_USERNAME,
                            env.errhp());
        },
        [&](sword status) {
          EXPECT_EQ(status, OCI_ERROR);
          EXPECT_EQ(name, nullptr);
        },
        [&] { std::free(name); });
  }
}

TEST_P(ExhaustedMemory, AnXidAndANameAreSetOrRefused) {
  Environment env;
  auto *trans = env.alloc<OCITrans>(OCI_HTYPE_TRANS);
  auto *other = env.alloc<OCITrans>(OCI_HTYPE_TRANS);
  XID xid{};
  exhaust(
      [&] {
        return OCIAttrSet(trans, OCI_HTYPE_TRANS, &xid, sizeof xid, OCI_ATTR_XID,
                          env.errhp());
      },
      [&](sword status) { expectOutOfMemory(status, env.errhp()); });
  exhaust(
      [&] {
        return OCIAttrSet(other, OCI_HTYPE_TRANS, &xid, 4, OCI_ATTR_TRANS_NAME,
                          env.errhp());
      },
      [&](sword status) { expectOutOfMemory(status, env.errhp()); });
}

TEST_P(ExhaustedMemory, ARecordIsAddedOrTheListStaysAsItWas) {
  Environment env;
  OCIError *errhp = env.errhp();
  const std::function<sword()> adders[] = {
      [&] { return AddErrorRecord(errhp, OCI_ERROR, 1403); },
      [&] { return AddErrorRecord2(errhp, OCI_ERROR, 1403, "text"); },
      [&] { return AddErrorRecordMsg(errhp, OCI_ERROR, "text"); },
      [&] { return AddErrorRecordStringX(errhp, OCI_ERROR, 932, 2, "A", "B"); },
      [&] { return AddPGErrorRecord(errhp, OCI_ERROR, nullptr); },
  };
  for (const auto &add : adders) {
    for (const bool toAnEmptyHandle : {true, false}) {
      exhaust([&] { return add(); },
              [&](sword status) {
                sb4 code = 0;
                OraText text[64];
                const ub4 n = list_length(errhp->records);
                EXPECT_EQ(n, (toAnEmptyHandle ? 0u : 1u) + (status == 0 ? 1u : 0u));
                // A record whose text found no room is still there to be read.
                for (ub4 i = 1; i <= n; ++i) {
                  EXPECT_EQ(OCIErrorGet(errhp, i, nullptr, &code, text, sizeof text,
                                        OCI_HTYPE_ERROR),
                            OCI_SUCCESS);
                }
              },
              [&] {
                ClearErrorHandle(errhp);
                if (!toAnEmptyHandle) AddErrorRecord(errhp, OCI_ERROR, 1);
              });
      ClearErrorHandle(errhp);
      AddErrorRecord(errhp, OCI_ERROR, 1);
    }
    ClearErrorHandle(errhp);
  }
}

TEST_P(ExhaustedMemory, CachesAndListsGiveNullAndStayWhole) {
  Environment env;
  auto *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  exhaust([&]() -> sword { return AllocateMemFromEnvCache(env.get(), 8) ? 0 : -1; },
          [](sword status) { EXPECT_EQ(status, -1); });
  exhaust([&]() -> sword { return AllocateMemFromStmtCache(stmt, 8) ? 0 : -1; },
          [](sword status) { EXPECT_EQ(status, -1); });
  EXPECT_EQ(list_length(env.get()->memCache), 1u);
  List *made = nullptr;
  exhaust([&]() -> sword { return (made = new_list()) ? 0 : -1; },
          [](sword status) { EXPECT_EQ(status, -1); });
  List *copy = nullptr;
  made = lappend(made, stmt);
  exhaust([&]() -> sword { return (copy = list_copy(made)) ? 0 : -1; },
          [](sword status) { EXPECT_EQ(status, -1); });
  list_free(copy);
  exhaust([&]() -> sword { return lcons(stmt, made) ? 0 : -1; },
          [](sword status) { EXPECT_EQ(status, -1); });
  EXPECT_EQ(list_length(made), 3u);
  list_free(made);
}

TEST_P(ExhaustedMemory, ALogonFailsAndLeavesAtMostTheServerHandle) {
  Environment env;
  OCISvcCtx *service = nullptr;
  const auto left = [&] {
    ub4 others = 0;
    for (OCIHandle *child : Elements<OCIHandle>(env.get()->children)) {
      others +=
          child->handleType != HANDLE_OCIError && child->handleType != HANDLE_OCIServer;
    }
    return others;
  };
  exhaust(
      [&] {
        return OCILogon(env.get(), env.errhp(), &service, asText("u"), 1, asText("p"), 1,
                        asText("127.0.0.1:1/d"), 13);
      },
      [&](sword status) {
        EXPECT_EQ(status, OCI_ERROR);
        EXPECT_EQ(service, nullptr);
        EXPECT_EQ(left(), 0u);
      },
      [] {}, OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), Codes{12154});
}

TEST_P(ExhaustedMemory, TextThatFindsNoRoomForConversionIsAFailure) {
  Environment env(OCI_UTF16);
  exhaust(
      [&]() -> sword {
        const EdgeText edge(env.get(), "a", 2);
        return edge ? 0 : edge.fail(env.errhp());
      },
      [&](sword status) {
        EXPECT_EQ(status, OCI_ERROR);
        if (once()) {
          EXPECT_EQ(firstText(env.errhp()), "Error in byte conversion");
        }
      });
}

INSTANTIATE_TEST_SUITE_P(Allocations, ExhaustedMemory,
                         testing::Values(Failing::Once, Failing::FromThereOn),
                         [](const auto &p) {
                           return p.param == Failing::Once ? "OneFails"
                                                           : "AllFollowingFail";
                         });

}  // namespace
}  // namespace zev::test
