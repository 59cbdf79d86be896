/// A text that is read as a POSIX TZ string, and bytes as TZif data: whatever is accepted
/// answers for any moment.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "types/ocitimestamp/zone.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

void ask(const pg_tz &zone) {
  for (const std::int64_t time : {INT64_MIN, INT64_MAX, std::int64_t{0},
                                  std::int64_t{981173106}, std::int64_t{2145916799}}) {
    PGtm tm{};
    pg_localtime(time, &zone, &tm);
    require(tm.tm_mon >= 0 && tm.tm_mon < 12 && tm.tm_wday >= 0 && tm.tm_wday < 7);
    require(strnlen(tm.tm_zone, zev::kMostZoneChars) < zev::kMostZoneChars);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  auto zone = std::make_unique<pg_tz>();
  for (const sb4 lastditch : {0, 1}) {
    if (tzparse(text.c_str(), &zone->state, lastditch) == 0) ask(*zone);
  }
  pg_tz *named = pg_tzset(text.c_str());
  if (named) ask(*named);
  std::free(named);
  const auto exact = std::make_unique<unsigned char[]>(size);
  std::copy_n(data, size, exact.get());
  if (zev::readZoneData(exact.get(), size, zone->state)) ask(*zone);
  return 0;
}
