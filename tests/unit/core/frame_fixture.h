/// What calls of every framed function need: a connection, a statement and its parts.
#pragma once

#include "server_fixture.h"

namespace zev::test {

inline constexpr const char *kSelect = "select 1 where 1 = :a ";

class FrameFixture : public ServerTest {
 public:
  using ServerTest::env, ServerTest::errhp, ServerTest::svchp, ServerTest::server,
      ServerTest::session;

  sword exec(ub4 iters = 1) {
    return OCIStmtExecute(svchp, stmt, errhp, iters, 0, nullptr, nullptr, OCI_DEFAULT);
  }
  sword prepare(std::string_view text) {
    return OCIStmtPrepare(stmt, errhp, asText(text), static_cast<ub4>(text.size()),
                          OCI_NTV_SYNTAX, OCI_DEFAULT);
  }
  sword prepare2() {
    OCIStmt *found = nullptr;
    const sword status = OCIStmtPrepare2(svchp, &found, errhp, asText(kSelect), 22,
                                         nullptr, 0, OCI_NTV_SYNTAX, OCI_DEFAULT);
    made = found;
    return status;
  }
  sword define() {
    return OCIDefineByPos(stmt, &defined, errhp, 1, &number, sizeof number, SQLT_INT,
                          nullptr, nullptr, nullptr, OCI_DEFAULT);
  }
  sword bind() {
    return OCIBindByName(stmt, &bound, errhp, asText(":a"), 2, &number, sizeof number,
                         SQLT_INT, nullptr, nullptr, nullptr, 0, nullptr, OCI_DEFAULT);
  }
  void link(void *handle, ub4 attribute) {
    OCIAttrSet(svchp, OCI_HTYPE_SVCCTX, handle, 0, attribute, errhp);
  }
  /// A locator, which the environment does not free: it stays reachable here.
  void locator() {
    static auto *kept = new std::vector<void *>;
    OCIDescriptorAlloc(env.get(), &made, OCI_DTYPE_LOB, 0, nullptr);
    kept->push_back(made);
  }
  void transaction() { link(env.alloc<OCITrans>(OCI_HTYPE_TRANS), OCI_ATTR_TRANS); }

  OCIStmt *stmt = env.alloc<OCIStmt>(OCI_HTYPE_STMT);
  OCIBind *bound = nullptr;
  OCIDefine *defined = nullptr;
  int number = 1;
  void *made = nullptr;
  OraText text[200] = {};
};
using F = FrameFixture;

/// What is done before the calls of a case.
constexpr auto kNothing = [](FrameFixture &) {};
constexpr auto kPrepared = [](FrameFixture &f) { f.prepare(kSelect); };
constexpr auto kBound = [](FrameFixture &f) {
  kPrepared(f);
  f.bind();
  f.define();
};
constexpr auto kExecuted = [](FrameFixture &f) {
  kBound(f);
  f.exec(0);
};

}  // namespace zev::test
