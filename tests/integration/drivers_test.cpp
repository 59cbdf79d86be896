/// Whole programs in the manner of real drivers, run as their own processes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>
#include <vector>

#include "tests/server/address.h"

namespace zev::test {
namespace {

struct Outcome {
  int status;
  std::string output;  ///< standard output and error
};

Outcome run(const std::string &program, const std::vector<std::string> &arguments) {
  std::string command = program;
  for (const std::string &argument : arguments) command += " '" + argument + "'";
  FILE *out = popen((command + " 2>&1").c_str(), "r");
  std::string text;
  for (int c; (c = std::fgetc(out)) != EOF;) text += static_cast<char>(c);
  const int status = pclose(out);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
}

void expectOutput(const Outcome &outcome, const std::string &output) {
  EXPECT_EQ(outcome.output, output);
  EXPECT_EQ(outcome.status, 0);
}

class Drivers : public testing::Test {
 protected:
  const ServerAddress &at_ = testServer();
  const std::string target_ = at_.host + ':' + at_.port + '/' + at_.db;
};

TEST_F(Drivers, AWrapperInCLoadsEveryFunctionByName) {
  expectOutput(run(ZEVOCI_LOADING_DRIVER,
                   {ZEVOCI_LIBRARY, ZEVOCI_PUBLISHED, at_.user, at_.password, target_}),
               "all published functions: found\n"
               "client: 11.0\n"
               "inserted: 3\n"
               "error: 1\n"
               "column: id\n"
               "column: name\n"
               "row: 1 one\n"
               "row: 2 two\n"
               "row: 3 (null)\n"
               "done\n");
}

TEST_F(Drivers, AClientInCppLinksTheLibrary) {
  expectOutput(run(ZEVOCI_LINKED_DRIVER, {at_.user, at_.password, target_}),
               "error 1\n"
               "[id][amount][day][nothing]\n"
               "[1][2.50][2024-02-29][(null)]\n"
               "[2][0.25][2024-03-01][(null)]\n"
               "done\n");
}

TEST_F(Drivers, AnApplicationServerUsesPoolsAndXa) {
  expectOutput(
      run(ZEVOCI_POOLED_DRIVER, {at_.user, at_.password, at_.host, at_.port, at_.db}),
      "two of two sessions, and no more\n"
      "of processes: different\n"
      "prepared, seen by others: 0\n"
      "committed, seen by others: 42\n"
      "done\n");
}

}  // namespace
}  // namespace zev::test
