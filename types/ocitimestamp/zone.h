/// Time zones. The displacement of a broken-down local time comes from the C library and
/// its TZ variable; moments in a zone from a reader of POSIX TZ strings and TZif data,
/// which opens no files: the library behaves alike with and without a zone directory.
#pragma once

#include <cstddef>

#include "types/ocitimestamp/calendar.h"

namespace zev {

inline constexpr int kMostTransitions = 370;
inline constexpr int kMostZoneTypes = 256;
inline constexpr int kMostZoneChars = 512;
inline constexpr int kMostLeaps = 50;
inline constexpr int kLongestZoneName = 255;

/// One kind of local time of a zone.
struct ZoneType {
  std::int64_t gmtoff;  ///< seconds east of Greenwich
  sb4 isdst;
  sb4 abbrind;  ///< where the abbreviation begins in ZoneState::chars
  sb4 ttisstd;
  sb4 ttisgmt;
};

/// Seconds that were inserted up to a moment.
struct LeapSecond {
  std::int64_t transition;
  std::int64_t correction;
};

/// When a zone changes and to what. Zero bytes are UTC with an empty abbreviation.
struct ZoneState {
  sb4 leapcnt;
  sb4 timecnt;
  sb4 typecnt;
  sb4 charcnt;
  std::int64_t ats[kMostTransitions];  ///< moments of change, ascending
  ub1 types[kMostTransitions];         ///< and the type from then on
  ZoneType ttis[kMostZoneTypes];
  char chars[kMostZoneChars];  ///< abbreviations, each with its NUL
  LeapSecond lsis[kMostLeaps];
};

}  // namespace zev

/// A zone by its name.
struct pg_tz {
  char name[zev::kLongestZoneName + 1];
  zev::ZoneState state;
};

extern "C" {
/// The displacement of a local time, in seconds west of Greenwich; stores `tm_isdst`,
/// `tm_gmtoff` and `tm_zone` as far as they are known. 0 for dates outside 1901-12-14 to
/// 2038-01-18.
ZEV_HELPER sb4 DetermineLocalTimeZone(PGtm *tm);
/// The same in `zone`. A time that occurs twice or not at all is taken as standard time.
ZEV_HELPER sb4 DetermineTimeZoneOffset(PGtm *tm, const pg_tz *zone);

/// A new zone, which the caller frees, from a POSIX TZ string; null for text that is none
/// and without memory.
ZEV_HELPER pg_tz *pg_tzset(const char *name);

/// Always -1: no file is opened.
ZEV_HELPER sb4 pg_open_tzfile(const char *name, char *canonicalName);
/// Reads TZif data into `state`. 0, or -1 for data that is none, which is always so as
/// long as no file opens.
ZEV_HELPER sb4 tzload(const char *name, char *canonicalName, zev::ZoneState *state);
/// Reads a POSIX TZ string; with `lastditch` the whole name is an abbreviation of UTC. 0,
/// or -1 for bad text.
ZEV_HELPER sb4 tzparse(const char *name, zev::ZoneState *state, sb4 lastditch);
ZEV_HELPER sb4 gmtload(zev::ZoneState *state);

/// A moment, in seconds since the Unix epoch, in a zone and in UTC, as a record whose
/// years count from 1900 and months from 0. `tm_zone` belongs to the zone.
ZEV_HELPER void pg_localtime(std::int64_t time, const pg_tz *zone, PGtm *out);
ZEV_HELPER void pg_gmtime(std::int64_t time, PGtm *out);
/// The same at `offset` seconds east of Greenwich, with the leap seconds of `state`.
ZEV_HELPER void timesub(std::int64_t time, std::int64_t offset,
                        const zev::ZoneState *state, PGtm *out);

/// The next change of a zone from `time` on: its moment and the displacements, in seconds
/// east of Greenwich, and daylight flags before and after. 1; 0 when the zone changes no
/// more, with what is before alone; -1 for a zone without types.
ZEV_HELPER sb4 pg_next_dst_boundary(std::int64_t time, std::int64_t *beforeOffset,
                                    sb4 *beforeIsDst, std::int64_t *boundary,
                                    std::int64_t *afterOffset, sb4 *afterIsDst,
                                    const pg_tz *zone);

extern ZEV_HELPER const sb4 year_lengths[2];
extern ZEV_HELPER const sb4 mon_lengths[2][12];
extern ZEV_HELPER const char wildabbr[];
extern ZEV_HELPER const char gmt[];
}

namespace zev {

/// Reads TZif data (RFC 8536, version 1). False for data that is none.
bool readZoneData(const unsigned char *data, std::size_t size, ZoneState &state);

}  // namespace zev
