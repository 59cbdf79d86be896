/// OCIDate and OCIDateTime by their published calls in many threads at once.
#include <gtest/gtest.h>
#include <oci.h>

#include <string>
#include <thread>
#include <vector>

namespace zevtest {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 300;

/// An environment with what the calls compute on.
class Calls {
 public:
  Calls() {
    OCIEnvCreate(&env_, OCI_THREADED, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    void *handle = nullptr;
    OCIHandleAlloc(env_, &handle, OCI_HTYPE_ERROR, 0, nullptr);
    errhp_ = static_cast<OCIError *>(handle);
    interval_ = static_cast<OCIInterval *>(descriptor(OCI_DTYPE_INTERVAL_DS));
  }
  ~Calls() { OCIHandleFree(env_, OCI_HTYPE_ENV); }
  Calls(const Calls &) = delete;
  Calls &operator=(const Calls &) = delete;

  /// What every call gives on one value, as a line.
  std::string runAll() {
    std::string all = date();
    for (const ub4 type : {OCI_DTYPE_DATE, OCI_DTYPE_TIMESTAMP, OCI_DTYPE_TIMESTAMP_TZ,
                           OCI_DTYPE_TIMESTAMP_LTZ})
      all += '|' + dateTime(type);
    return all;
  }

 private:
  void *descriptor(ub4 type) {
    void *made = nullptr;
    OCIDescriptorAlloc(env_, &made, type, 0, nullptr);
    return made;
  }
  static const OraText *text(const char *chars) {
    return reinterpret_cast<const OraText *>(chars);
  }

  std::string date() {
    const std::string given = "31-JAN-2001 23:59:58", format = "DD-MON-YYYY HH24:MI:SS";
    const auto length = static_cast<ub1>(format.size());
    OCIDate read{};
    ub4 room = 64;
    OraText printed[64] = {};
    sb4 days = 0;
    sword status =
        OCIDateFromText(errhp_, text(given.c_str()), static_cast<ub4>(given.size()),
                        text(format.c_str()), length, nullptr, 0, &read);
    status += OCIDateAddMonths(errhp_, &read, 1, &read);
    OCIDate sum = read;
    status += OCIDateAddDays(errhp_, &read, 40, &sum);
    status += OCIDateDaysBetween(errhp_, &sum, &read, &days);
    status += OCIDateNextDay(errhp_, &sum, text("MONDAY"), 6, &sum);
    status += OCIDateToText(errhp_, &sum, text(format.c_str()), length, nullptr, 0, &room,
                            printed);
    return std::to_string(status) + reinterpret_cast<char *>(printed) +
           std::to_string(days);
  }

  std::string dateTime(ub4 type) {
    auto *read = static_cast<OCIDateTime *>(descriptor(type));
    auto *sum = static_cast<OCIDateTime *>(descriptor(type));
    const bool isDate = type == OCI_DTYPE_DATE;
    const std::string given = isDate ? "2001-02-03" : "2001-02-03 04:05:06",
                      format = isDate ? "YYYY-MM-DD" : "YYYY-MM-DD HH24:MI:SS";
    const auto length = static_cast<ub1>(format.size());
    ub4 room = 64;
    OraText printed[64] = {};
    sword order = 9;
    sword status = OCIDateTimeFromText(env_, errhp_, text(given.c_str()), given.size(),
                                       text(format.c_str()), length, nullptr, 0, read);
    status += OCIDateTimeConvert(env_, errhp_, read, sum);
    status += OCIDateTimeSubtract(env_, errhp_, read, sum, interval_);
    status += OCIDateTimeIntervalAdd(env_, errhp_, sum, interval_, sum);
    status += OCIDateTimeCompare(env_, errhp_, read, sum, &order);
    status +=
        OCIDateTimeToText(env_, errhp_, sum, nullptr, 0, 0, nullptr, 0, &room, printed);
    OCIDescriptorFree(read, type);
    OCIDescriptorFree(sum, type);
    return std::to_string(status) + reinterpret_cast<char *>(printed) +
           std::to_string(order);
  }

  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
  OCIInterval *interval_ = nullptr;
};

TEST(Threads, DateCallsGiveWhatOneThreadGets) {
  const std::string expected = Calls().runAll();
  EXPECT_EQ(expected.rfind("016-APR-2001 00:00:0040|003-FEB-010|0", 0), 0u) << expected;
  std::vector<int> differences(kThreads);
  std::vector<std::thread> threads;
  for (int &found : differences) {
    threads.emplace_back([&found, &expected] {
      Calls calls;
      for (int i = 0; i < kRounds; ++i) found += calls.runAll() != expected;
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(differences, std::vector<int>(kThreads));
}

}  // namespace
}  // namespace zevtest
