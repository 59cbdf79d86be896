/// What the published text functions do when memory runs out in their midst.
#include <functional>

#include "mb_fixture.h"
#include "tests/unit/core/failing_allocator.h"

namespace zev::test {
namespace {

class ExhaustedMemory : public testing::Test {
 protected:
  /// Lets the first allocation of `work` fail: 16506 on `errhp` alone.
  void exhaust(const OCIError *errhp, const std::function<sword()> &work) {
    failAllocationsAfter(0, false);
    const sword status = work();
    ASSERT_TRUE(stopFailing());
    EXPECT_EQ(status, OCI_ERROR);
    EXPECT_EQ(codesOf(errhp), Codes{16506});
    EXPECT_EQ(firstText(errhp), "KESTREL-16506: no more memory");
  }

  EncodedEnvironment env{8};
  std::size_t size = 4711;
};

TEST_F(ExhaustedMemory, FailsConversionsBetweenEncodings) {
  exhaust(env.errors(), [&] {
    return OCICharSetToUnicode(env.get(), nullptr, 0, asText("abc"), 3, &size);
  });
  exhaust(env.errors(), [&] {
    const ub2 source[] = {0x6161, 0x6161};
    return OCIUnicodeToCharSet(env.get(), nullptr, 0, source, 4, &size);
  });
  Environment other;
  exhaust(other.errhp(), [&] {
    return OCINlsCharSetConvert(other.get(), other.errhp(), 6, nullptr, 0, 8, "abc", 3,
                                &size);
  });
  EXPECT_EQ(size, 4711u);
}

TEST_F(ExhaustedMemory, FailsTheWideFormAndItsMeasuring) {
  OCIWchar dst[4] = {0xAAAA};
  exhaust(env.errors(), [&] {
    return OCIMultiByteInSizeToWideChar(env.get(), dst, 4, asText("abc"), 3, &size);
  });
  EXPECT_EQ(dst[0], 0xAAAAu);
  ClearErrorHandle(env.errors());
  exhaust(env.errors(), [&] {
    return OCIMultiByteInSizeToWideChar(env.get(), nullptr, 0, asText("abc"), 3, &size);
  });
  EXPECT_EQ(size, 4711u);
}

}  // namespace
}  // namespace zev::test
