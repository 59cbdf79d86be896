/// What the tests of dates and times share: an environment's error handle, random
/// moments, and zones of the process.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>

#include "types/ocitimestamp/calendar.h"
#include "zevoci/errors.h"

namespace zevtest {

/// A generator whose seed is printed, and taken from ZEVOCI_TEST_SEED where that is set.
inline std::mt19937_64 generator() {
  const char *given = std::getenv("ZEVOCI_TEST_SEED");
  const std::uint64_t run =
      given ? std::strtoull(given, nullptr, 10) : std::random_device{}();
  std::printf("ZEVOCI_TEST_SEED=%llu\n", static_cast<unsigned long long>(run));
  return std::mt19937_64(run);
}

/// How many random inputs a test takes.
inline int samples(int shortForm, int longForm) {
  return std::getenv("ZEVOCI_TEST_LONG") ? longForm : shortForm;
}

/// An environment with an error handle.
class Records {
 public:
  Records() {
    EXPECT_EQ(
        OCIEnvCreate(&env, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
        OCI_SUCCESS);
    void *handle = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env, &handle, OCI_HTYPE_ERROR, 0, nullptr), OCI_SUCCESS);
    errhp = static_cast<OCIError *>(handle);
  }
  ~Records() { OCIHandleFree(env, OCI_HTYPE_ENV); }
  Records(const Records &) = delete;
  Records &operator=(const Records &) = delete;

  /// The code of the last record, 0 for none, with its text in `text`; forgets them all.
  int take() {
    int code = 0;
    text.clear();
    for (const ErrorRecord *record : zev::Elements<ErrorRecord>(errhp->records)) {
      code = record->errcode;
      if (record->content & kHasMsg) text = record->msg;
    }
    ClearErrorHandle(errhp);
    return code;
  }

  OCIEnv *env = nullptr;
  OCIError *errhp = nullptr;
  std::string text;
};

/// The process's local zone for the time of a test.
class LocalZone {
 public:
  explicit LocalZone(const char *name) {
    if (const char *former = std::getenv("TZ")) former_ = former;
    set(name);
  }
  ~LocalZone() { set(former_ ? former_->c_str() : nullptr); }
  LocalZone(const LocalZone &) = delete;
  LocalZone &operator=(const LocalZone &) = delete;

 private:
  static void set(const char *name) {
    name ? setenv("TZ", name, 1) : unsetenv("TZ");
    tzset();
  }
  std::optional<std::string> former_;
};

/// "2001-02-03 04:05:06", and the zone's displacement where `withZone` is set.
inline std::string shown(const PGtm &tm) {
  char text[96];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", tm.tm_year, tm.tm_mon,
                tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
  return text;
}

inline PGtm dateTime(sb4 year, sb4 month, sb4 day, sb4 hour = 0, sb4 minute = 0,
                     sb4 second = 0) {
  PGtm tm{};
  tm.tm_year = year;
  tm.tm_mon = month;
  tm.tm_mday = day;
  tm.tm_hour = hour;
  tm.tm_min = minute;
  tm.tm_sec = second;
  tm.tm_isdst = -1;
  return tm;
}

/// Days between 1970-01-01 and a date by the C++ library's calendar.
inline sb8 daysSinceEpoch(sb4 year, sb4 month, sb4 day) {
  using namespace std::chrono;
  return sys_days(std::chrono::year(year) / month / day).time_since_epoch().count();
}

}  // namespace zevtest
