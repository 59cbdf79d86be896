/// The handle layer on a live connection.
#pragma once

#include "core_fixture.h"
#include "tests/server/address.h"

namespace zev::test {

/// An environment that is logged on to the test server.
class ServerTest : public testing::Test {
 protected:
  ServerTest() {
    for (const char *name : {"OCI_TRACE_PROTOCOL", "NLS_DATE_FORMAT", "OCI_WITH_HOLD",
                             "NODEFAULTPARAMS", "NLS_LANG"}) {
      unsetenv(name);
    }
    svchp = logon();
    server = svchp ? svchp->server : nullptr;
    session = svchp ? svchp->session : nullptr;
  }
  ~ServerTest() override {
    if (svchp && svchp->server && svchp->session) OCILogoff(svchp, errhp);
  }

  OCISvcCtx *logon() {
    const ServerAddress &at = testServer();
    const std::string target = at.host + ':' + at.port + '/' + at.db;
    const auto length = [](const std::string &s) { return static_cast<ub4>(s.size()); };
    OCISvcCtx *made = nullptr;
    EXPECT_EQ(OCILogon(env.get(), errhp, &made, asText(at.user), length(at.user),
                       asText(at.password), length(at.password), asText(target),
                       length(target)),
              OCI_SUCCESS)
        << firstText(errhp);
    return made;
  }

  Environment env;
  OCIError *errhp = env.errhp();
  OCISvcCtx *svchp = nullptr;
  OCIServer *server = nullptr;
  OCISession *session = nullptr;
};

}  // namespace zev::test
