#include "types/string_copy.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

/// Copies the `length` bytes of `source`, which has exactly as many, into a block of the
/// same size.
struct Copied {
  explicit Copied(const std::vector<char> &source) : bytes(source.size(), '?') {
    foundZero = zev::copyShortText(bytes.data(), source.data(), source.size());
  }
  std::vector<char> bytes;
  bool foundZero;
};

std::vector<char> textOf(std::size_t length) {
  std::vector<char> text(length);
  for (std::size_t i = 0; i < length; ++i) text[i] = static_cast<char>(255 - i);
  text.shrink_to_fit();
  return text;
}

TEST(CopyShortText, CopiesEveryLengthWhole) {
  for (std::size_t length = 0; length <= zev::kShortText; ++length) {
    const auto source = textOf(length);
    const Copied copied(source);
    EXPECT_EQ(copied.bytes, source) << length;
    EXPECT_FALSE(copied.foundZero) << length;
  }
}

TEST(CopyShortText, FindsAZeroAtEveryPlace) {
  for (std::size_t length = 1; length <= zev::kShortText; ++length) {
    for (std::size_t at = 0; at < length; ++at) {
      auto source = textOf(length);
      source[at] = '\0';
      const Copied copied(source);
      EXPECT_EQ(copied.bytes, source) << length << " at " << at;
      EXPECT_TRUE(copied.foundZero) << length << " at " << at;
    }
  }
}

TEST(CopyShortText, TakesNoByteNextToZeroForOne) {
  for (std::size_t length = 1; length <= zev::kShortText; ++length) {
    for (const char byte : {'\x01', '\x7f', '\x80', '\xff'}) {
      EXPECT_FALSE(Copied(std::vector<char>(length, byte)).foundZero) << length;
    }
  }
}

}  // namespace
