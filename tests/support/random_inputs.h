/// Random inputs that can be had again, and how many of them a test takes.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>

namespace zevtest {

/// A generator whose seed is printed, and taken from ZEVOCI_TEST_SEED where that is set.
/// Each test draws numbers of its own from one seed.
inline std::mt19937_64 generator() {
  const char *given = std::getenv("ZEVOCI_TEST_SEED");
  const std::uint64_t seed =
      given ? std::strtoull(given, nullptr, 10) : std::random_device{}();
  std::printf("ZEVOCI_TEST_SEED=%llu\n", static_cast<unsigned long long>(seed));
  const auto *test = testing::UnitTest::GetInstance()->current_test_info();
  return std::mt19937_64(seed ^ std::hash<std::string>{}(test ? test->name() : ""));
}

/// One count for every day and one for the long form, which ZEVOCI_TEST_LONG asks for.
inline int rounds(int shortForm, int longForm) {
  return std::getenv("ZEVOCI_TEST_LONG") ? longForm : shortForm;
}

}  // namespace zevtest
