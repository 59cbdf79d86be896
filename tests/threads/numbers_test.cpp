/// OCINumber functions in many threads at once.
#include <gtest/gtest.h>
#include <oci.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/unit/ocinumber/number_functions.h"

namespace zevtest {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 60;

/// The bytes of what every function gives on two numbers, which differ by round.
std::string computeAll(OCIError *errhp, int round) {
  const double first = 0.125 + round / 1000.0, second = 0.75 - round / 2000.0;
  OCINumber a{}, b{};
  OCINumberFromReal(errhp, &first, sizeof first, &a);
  OCINumberFromReal(errhp, &second, sizeof second, &b);
  std::string all;
  const auto append = [&all](const OCINumber &result) {
    all.append(reinterpret_cast<const char *>(result.OCINumberPart),
               result.OCINumberPart[0] + std::size_t{1});
  };
  for (const UnaryNumber function : kUnaryNumbers) {
    OCINumber result{};
    function(errhp, &a, &result);
    append(result);
  }
  for (const BinaryNumber function : kBinaryNumbers) {
    OCINumber result{};
    function(errhp, &a, &b, &result);
    append(result);
  }
  return all;
}

/// All rounds in an environment of its own.
std::vector<std::string> computeRounds() {
  OCIEnv *env = nullptr;
  OCIEnvCreate(&env, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  void *handle = nullptr;
  OCIHandleAlloc(env, &handle, OCI_HTYPE_ERROR, 0, nullptr);
  std::vector<std::string> results;
  for (int round = 0; round < kRounds; ++round)
    results.push_back(computeAll(static_cast<OCIError *>(handle), round));
  OCIHandleFree(env, OCI_HTYPE_ENV);
  return results;
}

TEST(Threads, NumbersAreWhatOneThreadComputes) {
  const std::vector<std::string> expected = computeRounds();
  ASSERT_GT(expected[0].size(), 24u * 2);
  ASSERT_NE(expected[0], expected[1]);
  std::vector<int> differences(kThreads);
  std::vector<std::thread> threads;
  for (int &found : differences)
    threads.emplace_back([&found, &expected] { found = computeRounds() != expected; });
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(differences, std::vector<int>(kThreads));
}

}  // namespace
}  // namespace zevtest
