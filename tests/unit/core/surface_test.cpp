/// The table of the published interface against a list of its own.
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>

namespace zev::test {
namespace {

/// What becomes of a call.
enum class Fate { Works, Stops, Fails };

struct Row {
  Fate fate;
  unsigned code;  ///< under which callbacks watch a function that stops
  bool operator==(const Row &) const = default;
};

using Interface = std::multimap<std::string, Row>;

#define WORKS(result, name, ...) {#name, {Fate::Works, 0}},
#define FAILS(result, name, ...) {#name, {Fate::Fails, 0}},
#define FRAME_STUB(result, name, parameters, code, ...) {#name, {Fate::Stops, code}},
#define QUIET_FRAME_STUB(...) FRAME_STUB(__VA_ARGS__)
#define OBJECT_STUB(...) FRAME_STUB(__VA_ARGS__)
#define PLAIN_STUB(result, name, ...) {#name, {Fate::Stops, 0}},
#define BARE_STUB(...) PLAIN_STUB(__VA_ARGS__)
#define SOFT_STUB(...) FAILS(__VA_ARGS__)
#define NULL_STUB(...) FAILS(__VA_ARGS__)
#define UNSUPPORTED_STUB(...) FAILS(__VA_ARGS__)
#define UNDECLARED_STUB(name) {#name, {Fate::Fails, 0}},

const Interface kTable = {
#include "core/surface/surface.def"
};

#define PUBLISHED(name, fate, code) {#name, {Fate::fate, code}},

const Interface kPublished = {
#include "published.inc"
};

#undef PUBLISHED

TEST(Surface, HoldsEveryPublishedFunctionWithItsFate) {
  for (const auto &[name, row] : kPublished) {
    ASSERT_EQ(kTable.count(name), 1u) << name;
    EXPECT_EQ(kTable.find(name)->second, row) << name;
  }
}

TEST(Surface, HoldsNoNameTwice) {
  for (const auto &[name, row] : kTable) EXPECT_EQ(kTable.count(name), 1u) << name;
}

TEST(Surface, WhatIsAddedFails) {
  for (const auto &[name, row] : kTable) {
    if (kPublished.contains(name)) continue;
    EXPECT_EQ(row.fate, Fate::Fails) << name;
  }
}

}  // namespace
}  // namespace zev::test
