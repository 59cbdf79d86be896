/// Dates and intervals that many threads read and print at once are what one thread gets.
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/encode_datetime.h"
#include "types/ocitimestamp/zone.h"

namespace zev::test {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 300;

const char *const kDates[] = {"2001-02-03 04:05:06.25",
                              "3-FEB-2001 12:00 am pst",
                              "saturday, february 3, 2001",
                              "j2451545.25",
                              "tomorrow",
                              "2001-02-03 04:05:06+05:30",
                              "february 30 2001",
                              "now"};
const char *const kIntervals[] = {"@ 1 day 2 hours 3 mins 4 secs",
                                  "1 year 2 mons -3 days", "1.5 weeks ago", "nothing"};

/// A text split, decoded and printed again in every style.
class Reader {
 public:
  Reader() {
    OCIEnvCreate(&env_, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    void *handle = nullptr;
    OCIHandleAlloc(env_, &handle, OCI_HTYPE_ERROR, 0, nullptr);
    errhp_ = static_cast<OCIError *>(handle);
  }
  ~Reader() { OCIHandleFree(env_, OCI_HTYPE_ENV); }
  Reader(const Reader &) = delete;
  Reader &operator=(const Reader &) = delete;

  std::string readAll() {
    std::string all;
    for (const char *text : kDates) all += readDate(text) + '\n';
    for (const char *text : kIntervals) all += readInterval(text) + '\n';
    pg_tz *zone = pg_tzset("CET-1CEST");
    PGtm tm{};
    pg_localtime(981173106, zone, &tm);
    all += tm.tm_zone;
    free(zone);
    GetEpochTime(&tm);
    return all + std::to_string(tm.tm_year);
  }

 private:
  bool split(const char *text) {
    return ParseDateTime(text, work_, sizeof work_, fields_, types_, kMostFields,
                         &count_) == 0;
  }
  std::string readDate(const char *text) {
    PGtm tm{};
    double fsec = 0;
    sb4 dtype = 0, tz = 0;
    if (!split(text) ||
        DecodeDateTime(errhp_, fields_, types_, count_, &dtype, &tm, &fsec, &tz, 0) != 0)
      return "bad";
    std::string all;
    for (sb4 style = 0; style < 5; ++style) {
      EncodeDateTime(&tm, &tz, nullptr, style, out_, fsec);
      all += out_;
    }
    return all;
  }
  std::string readInterval(const char *text) {
    PGtm tm{};
    double fsec = 0;
    sb4 dtype = 0;
    if (!split(text) || DecodeInterval(errhp_, fields_, types_, count_, kWholeRange,
                                       &dtype, &tm, &fsec) != 0)
      return "bad";
    std::string all;
    for (sb4 style = 0; style < 4; ++style) {
      EncodeInterval(&tm, style, out_, fsec);
      all += out_;
    }
    return all;
  }

  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  char work_[kWorkSize];
  char *fields_[kMostFields];
  sb4 types_[kMostFields];
  sb4 count_ = 0;
  char out_[kLongestDateTime];
};

TEST(Dates, AreTheSameInEveryThread) {
  const std::string expected = Reader().readAll();
  std::vector<int> differences(kThreads);
  std::vector<std::thread> threads;
  for (int &found : differences) {
    threads.emplace_back([&found, &expected] {
      Reader reader;
      for (int i = 0; i < kRounds; ++i) found += reader.readAll() != expected;
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(differences, std::vector<int>(kThreads));
}

}  // namespace
}  // namespace zev::test
