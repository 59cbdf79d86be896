/// Format models in many threads: what one thread compiles, prints and reads is its own.
#include <gtest/gtest.h>
#include <oci.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "types/ocitimestamp/format_execution.h"

namespace zevtest {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 400;

/// A model and a text that only the right flags print and read: fill mode and exact
/// matching differ from one model to the next.
struct Model {
  const char *format;
  const char *text;
};
constexpr Model kModels[] = {
    {"YYYY-MM-DD HH24:MI:SS", "2001-02-03 04:05:06"},
    {"FMYYYY-MM-DD HH24:MI:SS", "2001-2-3 4:5:6"},
    {"FXYYYY/MM/DD HH24:MI:SS", "2001/02/03 04:05:06"},
    {"FMDay, DDth \"of\" Month YYYY HH24:MI:SS", "Saturday, 3rd of February 2001 4:5:6"},
    {"SS MI HH24 DD MON YYYY", "06 05 04 03 FEB 2001"},
};

/// What one thread does in a round, as one text: what it printed, read and failed with.
std::string run(OCIError *errhp, const Model &model) {
  TmToChar value{};
  value.tm = {6, 5, 4, 3, 2, 2001, 6, 33, 0, 0, nullptr};
  char *printed =
      datetime_to_char_body(errhp, &value, model.format, zev::format::kOCIDate);
  std::string result = printed ? printed : "?";
  std::free(printed);
  PGtm tm{};
  double fsec = 0;
  for (const char *text : {model.text, "2001x02x03"}) {
    const sb4 status =
        do_to_timestamp(errhp, text, model.format, &tm, &fsec, zev::format::kOCIDate);
    sb4 code = 0;
    OraText message[512] = {};
    if (status != 0)
      OCIErrorGet(errhp, 1, nullptr, &code, message, sizeof message, OCI_HTYPE_ERROR);
    result += '|' + std::to_string(status) + ' ' + std::to_string(code);
    if (status == 0)
      result += ' ' + std::to_string((tm.tm_year * 100 + tm.tm_mon) * 100 + tm.tm_mday) +
                ' ' + std::to_string((tm.tm_hour * 60 + tm.tm_min) * 60 + tm.tm_sec);
  }
  return result;
}

/// The results of all rounds in an environment of its own.
std::vector<std::string> runRounds(int first, int rounds) {
  OCIEnv *env = nullptr;
  OCIEnvCreate(&env, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
  void *handle = nullptr;
  OCIHandleAlloc(env, &handle, OCI_HTYPE_ERROR, 0, nullptr);
  std::vector<std::string> results;
  for (int i = 0; i < rounds; ++i)
    results.push_back(
        run(static_cast<OCIError *>(handle), kModels[(first + i) % std::size(kModels)]));
  OCIHandleFree(env, OCI_HTYPE_ENV);
  return results;
}

TEST(Threads, FormatModelsDoNotDisturbEachOther) {
  const std::vector<std::string> alone = runRounds(0, std::size(kModels));
  for (std::size_t i = 0; i < alone.size(); ++i)
    EXPECT_EQ(alone[i].rfind(std::string(kModels[i].text) + "|0 0 20010203 14706|-1 ", 0),
              0u)
        << alone[i];
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([number, &alone, &wrong] {
      const std::vector<std::string> results = runRounds(number, kRounds);
      for (int i = 0; i < kRounds; ++i)
        wrong += results[i] != alone[(number + i) % std::size(kModels)];
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace zevtest
