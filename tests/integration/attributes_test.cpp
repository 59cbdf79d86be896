#include "tests/integration/support/oci_test.h"

namespace zev::test {
namespace {

class ServerAttributes : public OciTest {
 protected:
  OCIServer *server() {
    OCIServer *found = nullptr;
    EXPECT_EQ(
        OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &found, nullptr, OCI_ATTR_SERVER, errhp()),
        OCI_SUCCESS);
    return found;
  }
  template <class T>
  T get(ub4 attribute) {
    T value{};
    EXPECT_EQ(OCIAttrGet(server(), OCI_HTYPE_SERVER, &value, nullptr, attribute, errhp()),
              OCI_SUCCESS);
    return value;
  }
  template <class T>
  sword set(ub4 attribute, T value) {
    return OCIAttrSet(server(), OCI_HTYPE_SERVER, &value, 0, attribute, errhp());
  }
  using Sql = std::vector<std::string>;
};

TEST_F(ServerAttributes, StatementLevelRollbackIsAskedOfTheServer) {
  // A plain server knows no such parameter, and says so.
  const WireLog log = wireOf([&] {
    EXPECT_EQ(set<ub1>(5000, 1), OCI_ERROR);
    EXPECT_EQ(serverState(), "42704");
    EXPECT_EQ(set<ub1>(5000, 0), OCI_ERROR);
  });
  EXPECT_EQ(log.sql, (Sql{"SET zev_stmt_level_tx = on", "SET zev_stmt_level_tx = off"}));
  EXPECT_EQ(log.roundTrips, 2);
  EXPECT_EQ(get<ub1>(5000), 0);
}

TEST_F(ServerAttributes, ReadingAndWritingTheRestSendsNothing) {
  const WireLog log = wireOf([&] {
    EXPECT_EQ(get<ub4>(OCI_ATTR_SERVER_STATUS), 1u);
    EXPECT_EQ(get<OCIEnv *>(OCI_ATTR_ENV), env());
    EXPECT_EQ(set<ub4>(5001, 2), OCI_SUCCESS);
    EXPECT_EQ(get<ub4>(5001), 2u);
    EXPECT_EQ(set<ub4>(5001, 3), OCI_ERROR);
    expectError(24328, "KESTREL-24328: attribute value is invalid");
    EXPECT_EQ(set<ub4>(5003, 6), OCI_SUCCESS);
    EXPECT_EQ(set<ub4>(5003, 1), OCI_ERROR);
    expectError(24328);
    EXPECT_EQ(get<ub4>(5003), 6u);
    EXPECT_EQ(set<ub1>(OCI_ATTR_NONBLOCKING_MODE, 1), OCI_SUCCESS);
    EXPECT_EQ(get<ub1>(OCI_ATTR_NONBLOCKING_MODE), 1);
    EXPECT_EQ(set<ub1>(OCI_ATTR_NONBLOCKING_MODE, 1), OCI_SUCCESS);
  });
  EXPECT_EQ(log.messages, Sql{});
}

TEST_F(ServerAttributes, VariablesAreReadWhenTheServerHandleIsAllocated) {
  EXPECT_EQ(get<ub4>(5001), 0u);
  setVariable("OCI_WITH_HOLD", "1");
  EXPECT_EQ(get<ub4>(5001), 0u);
  reconnect();
  EXPECT_EQ(get<ub4>(5001), 1u);
}

TEST_F(ServerAttributes, ASessionTellsItsNameAndNotItsPassword) {
  OCISession *session = nullptr;
  OCIAttrGet(svchp(), OCI_HTYPE_SVCCTX, &session, nullptr, OCI_ATTR_SESSION, errhp());
  char *name = nullptr;
  ub4 size = 0;
  EXPECT_EQ(
      OCIAttrGet(session, OCI_HTYPE_SESSION, &name, &size, OCI_ATTR_USERNAME, errhp()),
      OCI_SUCCESS);
  EXPECT_EQ(decoded({name, size}), "zev");
  EXPECT_EQ(decodedUpToEnd(name), "zev");
  std::free(name);
  char *password = nullptr;
  EXPECT_EQ(OCIAttrGet(session, OCI_HTYPE_SESSION, &password, &size, OCI_ATTR_PASSWORD,
                       errhp()),
            OCI_ERROR);
  expectError(24315, "KESTREL-24315: attribute is invalid");
}

TEST_F(ServerAttributes, AFailedReadKeepsItsValueUntouched) {
  ub4 value = 4711;
  EXPECT_EQ(OCIAttrGet(server(), OCI_HTYPE_SERVER, &value, nullptr, 9999, errhp()),
            OCI_ERROR);
  expectError(24328);
  EXPECT_EQ(value, 4711u);
  EXPECT_EQ(OCIAttrGet(errhp(), OCI_HTYPE_ERROR, &value, nullptr, 1, errhp()), OCI_ERROR);
  EXPECT_EQ(errorText(), "");
}

}  // namespace
}  // namespace zev::test
