#include "types/ocitimestamp/zone.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <tuple>

#include "types/ocitimestamp/system_time.h"

namespace {

using std::int64_t;
using zev::ZoneState;
using zev::ZoneType;

constexpr int64_t kSecondsPerDay = zev::kSecondsPerDay;

/// Whether the C library's 32-bit clock knows a date.
bool isKnownToTheSystem(const PGtm &tm) {
  const auto date = std::tuple(tm.tm_year, tm.tm_mon, tm.tm_mday);
  return date >= std::tuple(1901, 12, 14) && date <= std::tuple(2038, 1, 18);
}

/// The fields as if they were UTC, in seconds since the Unix epoch.
int64_t asUtc(const PGtm &tm) {
  const int64_t days =
      int64_t{date2j(tm.tm_year, tm.tm_mon, tm.tm_mday)} - zev::kUnixEpochDay;
  return days * kSecondsPerDay + (int64_t{tm.tm_hour} * 60 + tm.tm_min) * 60 + tm.tm_sec;
}

int64_t secondsOf(const std::tm &system) {
  const int64_t days =
      int64_t{date2j(system.tm_year + 1900, system.tm_mon + 1, system.tm_mday)} -
      zev::kUnixEpochDay;
  return days * kSecondsPerDay + (int64_t{system.tm_hour} * 60 + system.tm_min) * 60 +
         system.tm_sec;
}

sb4 takeUtc(PGtm &tm) {
  tm.tm_isdst = 0;
  tm.tm_gmtoff = 0;
  return 0;
}

/// The displacement that the clock around a local time shows, for times that the C
/// library does not place.
sb4 estimateZone(PGtm &tm) {
  const int64_t local = asUtc(tm);
  int64_t delta = 0;
  for (int round = 0; round < 3; ++round) {
    const auto system = zev::systemLocalTime(local + delta);
    if (!system) {
      tm.tm_isdst = 0;
      return 0;
    }
    tm.tm_isdst = system->tm_isdst;
    const int64_t shown = local + delta - secondsOf(*system);
    if (round > 0 && shown == delta) break;
    delta = shown;
  }
  return static_cast<sb4>(delta);
}

/// The type before any change: the first of standard time, or else the first.
const ZoneType &firstType(const ZoneState &state) {
  const ZoneType *end = state.ttis + std::max(state.typecnt, 1);
  const ZoneType *standard =
      std::find_if(state.ttis, end, [](const ZoneType &type) { return !type.isdst; });
  return standard == end ? state.ttis[0] : *standard;
}

/// How many changes lie at or before a moment.
int changesUpTo(const ZoneState &state, int64_t time) {
  return static_cast<int>(std::upper_bound(state.ats, state.ats + state.timecnt, time) -
                          state.ats);
}

const ZoneType &typeAfter(const ZoneState &state, int changes) {
  return changes == 0 ? firstType(state) : state.ttis[state.types[changes - 1]];
}

const ZoneState &gmtState() {
  static const ZoneState gmtmem = [] {
    ZoneState loaded{};
    gmtload(&loaded);
    return loaded;
  }();
  return gmtmem;
}

int64_t leapCorrection(const ZoneState &state, int64_t time) {
  int64_t correction = 0;
  for (int i = 0; i < state.leapcnt && state.lsis[i].transition <= time; ++i) {
    correction = state.lsis[i].correction;
  }
  return correction;
}

/// Whether the second of `time` is one that was inserted, which shows as 60.
bool isLeapSecond(const ZoneState &state, int64_t time) {
  for (int i = 0; i < state.leapcnt; ++i) {
    const int64_t before = i ? state.lsis[i - 1].correction : 0;
    if (state.lsis[i].transition == time) return state.lsis[i].correction > before;
  }
  return false;
}

/// Date and day of the year of a day counted from the Unix epoch. The calendar repeats
/// itself after 400 years.
void fillDate(int64_t days, PGtm &out) {
  constexpr int64_t kDaysOfCycle = 146097;
  int64_t cycles = days / kDaysOfCycle;
  if (days % kDaysOfCycle < 0) --cycles;
  const auto julian = static_cast<sb4>(days - cycles * kDaysOfCycle + zev::kUnixEpochDay);
  sb4 year = 0, month = 0;
  j2date(julian, &year, &month, &out.tm_mday);
  out.tm_year =
      static_cast<sb4>(std::clamp<int64_t>(year + cycles * 400 - 1900, INT_MIN, INT_MAX));
  out.tm_mon = month - 1;
  out.tm_yday = julian - date2j(year, 1, 1);
}

struct Change {
  int64_t beforeOffset, boundary, afterOffset;
  sb4 beforeIsDst, afterIsDst;
};

}  // namespace

extern "C" {

const sb4 year_lengths[2] = {365, 366};
const sb4 mon_lengths[2][12] = {{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31},
                                {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31}};
const char wildabbr[] = "WILDABBR";
const char gmt[] = "GMT";

sb4 DetermineLocalTimeZone(PGtm *tm) {
  if (!isKnownToTheSystem(*tm)) return takeUtc(*tm);
  std::tm system{};
  ConvertPGtmToSystm(tm, &system);
  system.tm_isdst = -1;
  if (zev::systemMakeTime(system) != -1 && system.tm_isdst >= 0) {
    tm->tm_isdst = system.tm_isdst;
    tm->tm_zone = system.tm_zone;
    tm->tm_gmtoff = system.tm_gmtoff;
    return static_cast<sb4>(-tm->tm_gmtoff);
  }
  return estimateZone(*tm);
}

sb4 DetermineTimeZoneOffset(PGtm *tm, const pg_tz *zone) {
  Timestamp inRange = 0;
  if (tm2timestamp(tm, 0, nullptr, &inRange) != 0) return takeUtc(*tm);
  const int64_t local = asUtc(*tm);
  Change change{};
  const sb4 found = pg_next_dst_boundary(local - kSecondsPerDay, &change.beforeOffset,
                                         &change.beforeIsDst, &change.boundary,
                                         &change.afterOffset, &change.afterIsDst, zone);
  if (found < 0) return takeUtc(*tm);
  const auto take = [tm](int64_t offset, sb4 isdst) {
    tm->tm_isdst = isdst;
    tm->tm_gmtoff = offset;
    return static_cast<sb4>(-offset);
  };
  if (found == 0) return take(change.beforeOffset, change.beforeIsDst);
  const bool fitsBefore = local - change.beforeOffset < change.boundary;
  const bool fitsAfter = local - change.afterOffset >= change.boundary;
  const bool isAfter = fitsBefore == fitsAfter ? !change.afterIsDst : fitsAfter;
  return isAfter ? take(change.afterOffset, change.afterIsDst)
                 : take(change.beforeOffset, change.beforeIsDst);
}

pg_tz *pg_tzset(const char *name) {
  if (!name || std::strlen(name) > zev::kLongestZoneName) return nullptr;
  auto *zone = static_cast<pg_tz *>(std::calloc(1, sizeof(pg_tz)));
  if (!zone) return nullptr;
  std::transform(name, name + std::strlen(name), zone->name,
                 [](char c) { return c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c; });
  char canonical[zev::kLongestZoneName + 1];
  if (tzload(zone->name, canonical, &zone->state) == 0 ||
      (zone->name[0] != ':' && tzparse(zone->name, &zone->state, 0) == 0)) {
    return zone;
  }
  std::free(zone);
  return nullptr;
}

sb4 gmtload(ZoneState *state) {
  return tzload(gmt, nullptr, state) == 0 ? 0 : tzparse(gmt, state, 1);
}

void pg_localtime(int64_t time, const pg_tz *zone, PGtm *out) {
  const ZoneState &state = zone->state;
  const ZoneType &type = typeAfter(state, changesUpTo(state, time));
  timesub(time, type.gmtoff, &state, out);
  out->tm_isdst = type.isdst;
  out->tm_zone = state.chars + type.abbrind;
}

void pg_gmtime(int64_t time, PGtm *out) {
  const ZoneState &state = gmtState();
  timesub(time, 0, &state, out);
  out->tm_isdst = 0;
  out->tm_zone = state.chars;
}

void timesub(int64_t time, int64_t offset, const ZoneState *state, PGtm *out) {
  const int64_t shift = offset - leapCorrection(*state, time);
  int64_t days = time / kSecondsPerDay;
  int64_t rest = time % kSecondsPerDay + shift;
  days += rest / kSecondsPerDay;
  rest %= kSecondsPerDay;
  if (rest < 0) {
    rest += kSecondsPerDay;
    --days;
  }
  out->tm_hour = static_cast<sb4>(rest / 3600);
  out->tm_min = static_cast<sb4>(rest / 60 % 60);
  out->tm_sec = static_cast<sb4>(rest % 60) + isLeapSecond(*state, time);
  const int64_t weekday = (days + 4) % 7;
  out->tm_wday = static_cast<sb4>(weekday < 0 ? weekday + 7 : weekday);
  fillDate(days, *out);
  out->tm_gmtoff = offset;
}

sb4 pg_next_dst_boundary(int64_t time, int64_t *beforeOffset, sb4 *beforeIsDst,
                         int64_t *boundary, int64_t *afterOffset, sb4 *afterIsDst,
                         const pg_tz *zone) {
  if (!zone) return -1;
  const ZoneState &state = zone->state;
  const int changes = changesUpTo(state, time);
  const ZoneType &before = typeAfter(state, changes);
  *beforeOffset = before.gmtoff;
  *beforeIsDst = before.isdst;
  if (changes == state.timecnt) return 0;
  const ZoneType &after = typeAfter(state, changes + 1);
  *boundary = state.ats[changes];
  *afterOffset = after.gmtoff;
  *afterIsDst = after.isdst;
  return 1;
}

}  // extern "C"
