/// What the tests of dates and times share: random moments, and zones of the process.
#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "tests/support/environment.h"
#include "tests/support/random_inputs.h"
#include "types/ocitimestamp/calendar.h"

namespace zevtest {

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
