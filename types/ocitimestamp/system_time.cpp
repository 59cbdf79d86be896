#include "types/ocitimestamp/system_time.h"

#include <mutex>

namespace {

std::mutex turns;

}  // namespace

std::optional<std::tm> zev::systemLocalTime(std::time_t time) {
  const std::lock_guard turn(turns);
  std::tm fields{};
  tzset();
  if (!localtime_r(&time, &fields)) return std::nullopt;
  return fields;
}

std::time_t zev::systemMakeTime(std::tm &fields) {
  const std::lock_guard turn(turns);
  return std::mktime(&fields);
}
