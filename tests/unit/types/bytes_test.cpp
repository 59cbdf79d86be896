#include "types_fixture.h"

namespace zevtest {
namespace {

TEST(Bytes, FourBytesAreReversedInPlace) {
  std::string bytes = "\x01\x02\x03\x04"s;
  Convert4BytesToNetworkOrder(bytes.data());
  EXPECT_EQ(bytes, "\x04\x03\x02\x01"s);
}

TEST(Bytes, EightBytesAreReversedInPlace) {
  std::string bytes = "\x01\x02\x03\x04\x05\x06\x07\x08"s;
  Convert8BytesToNetworkOrder(bytes.data());
  EXPECT_EQ(bytes, "\x08\x07\x06\x05\x04\x03\x02\x01"s);
}

TEST(Bytes, UnalignedMemoryIsFine) {
  std::string bytes = "_\x01\x02\x03\x04\x05\x06\x07\x08"s;
  Convert8BytesToNetworkOrder(bytes.data() + 1);
  EXPECT_EQ(bytes, "_\x08\x07\x06\x05\x04\x03\x02\x01"s);
}

TEST(Bytes, CopyIsANewBlock) {
  void *out = nullptr;
  ASSERT_EQ(AllocBufferAndCopy(&out, 3, "abc"), 0);
  EXPECT_EQ(std::string(static_cast<char *>(out), 3), "abc");
  std::free(out);
}

TEST(Bytes, EmptyCopyIsABlockAllTheSame) {
  void *out = nullptr;
  ASSERT_EQ(AllocBufferAndCopy(&out, 0, nullptr), 0);
  EXPECT_NE(out, nullptr);
  std::free(out);
}

TEST(Bytes, NegativeSizeFails) {
  int there = 0;
  void *out = &there;
  EXPECT_EQ(AllocBufferAndCopy(&out, -1, "abc"), -1);
  EXPECT_EQ(out, nullptr);
}

}  // namespace
}  // namespace zevtest
