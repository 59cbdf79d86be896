#include "tests/integration/support/oci_test.h"
#include "tests/server/address.h"

namespace zev::test {
namespace {

using SupportTest = OciTest;

TEST_F(SupportTest, ConnectsAndAnswersAPing) {
  EXPECT_EQ(OCIPing(svchp(), errhp(), OCI_DEFAULT), OCI_SUCCESS);
}

TEST_F(SupportTest, SeesAFailedLogonsRecord) {
  const std::string target = connectString();
  OCISvcCtx *service = nullptr;
  const auto text = [](const std::string &s) {
    return reinterpret_cast<const OraText *>(s.c_str());
  };
  EXPECT_EQ(OCILogon(env(), errhp(), &service, text("zev"), 3, text("wrong"), 5,
                     text(target), static_cast<ub4>(target.size())),
            OCI_ERROR);
  EXPECT_NE(errorText(), "");
}

TEST_F(SupportTest, CountsTheTripsOfAPing) {
  const WireLog log = wireOf([&] { OCIPing(svchp(), errhp(), OCI_DEFAULT); });
  EXPECT_EQ(log.roundTrips, 1);
  EXPECT_EQ(log.sql.size(), 1u);
}

TEST_F(SupportTest, QueriesPastTheLibrary) {
  EXPECT_EQ(query("select 41 + 1"), "42");
  EXPECT_EQ(query("select null"), "NULL");
  EXPECT_EQ(query("select 1 where false"), "");
}

}  // namespace
}  // namespace zev::test
