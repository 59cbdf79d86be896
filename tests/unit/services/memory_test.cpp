#include <algorithm>

#include "tests/unit/core/core_fixture.h"

namespace zev::test {
namespace {

TEST(Memory, IsZeroedAndTheProgramsUntilItIsFreed) {
  for (const OCIDuration duration : {OCI_DURATION_SESSION, OCI_DURATION_STATEMENT}) {
    void *block = nullptr;
    ASSERT_EQ(OCIMemoryAlloc(nullptr, nullptr, &block, duration, 1000, 0), OCI_SUCCESS);
    auto *bytes = static_cast<unsigned char *>(block);
    EXPECT_TRUE(std::all_of(bytes, bytes + 1000, [](auto b) { return b == 0; }));
    std::fill_n(bytes, 1000, 0xff);
    EXPECT_EQ(OCIMemoryFree(nullptr, nullptr, block), OCI_SUCCESS);
  }
}

TEST(Memory, OtherDurationsAreRefused) {
  for (ub4 duration = 0; duration <= 0xffff; ++duration) {
    if (duration == OCI_DURATION_SESSION || duration == OCI_DURATION_STATEMENT) continue;
    void *block = &duration;
    ASSERT_EQ(OCIMemoryAlloc(nullptr, nullptr, &block, static_cast<OCIDuration>(duration),
                             8, 0),
              OCI_ERROR);
    ASSERT_EQ(block, &duration);
  }
}

TEST(Memory, NeedsAPlaceForTheBlock) {
  EXPECT_EQ(OCIMemoryAlloc(nullptr, nullptr, nullptr, OCI_DURATION_SESSION, 8, 0),
            OCI_ERROR);
}

TEST(Memory, FreeingNothingSucceeds) {
  EXPECT_EQ(OCIMemoryFree(nullptr, nullptr, nullptr), OCI_SUCCESS);
}

TEST(Memory, RecordsNothing) {
  Environment env;
  AddErrorRecord(env.errhp(), OCI_ERROR, 1403);
  EXPECT_EQ(OCIMemoryAlloc(env.get(), env.errhp(), nullptr, 1, 8, 0), OCI_ERROR);
  EXPECT_EQ(codesOf(env.errhp()), Codes{1403});
}

TEST(ExternalProcedures, HaveNoCallingSession) {
  Environment env;
  OCIEnv *envhp = env.get();
  auto *service = env.alloc<OCISvcCtx>(OCI_HTYPE_SVCCTX);
  OCIError *errhp = env.errhp();
  EXPECT_EQ(ociepgoe(nullptr, &envhp, &service, &errhp), OCI_SUCCESS);
  EXPECT_EQ(envhp, nullptr);
  EXPECT_EQ(service, nullptr);
  EXPECT_EQ(errhp, nullptr);
  errhp = env.errhp();
  EXPECT_EQ(ociepgoe(nullptr, nullptr, nullptr, &errhp), OCI_SUCCESS);
  EXPECT_EQ(errhp, nullptr);
  EXPECT_EQ(ociepgoe(nullptr, nullptr, nullptr, nullptr), OCI_SUCCESS);
  EXPECT_EQ(ocieperr(nullptr, 1403), static_cast<size_t>(-1));
}

}  // namespace
}  // namespace zev::test
