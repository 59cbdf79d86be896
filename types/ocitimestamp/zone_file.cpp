/// TZif data (RFC 8536, version 1), for a zone directory that this library has none of.
#include <unistd.h>

#include <algorithm>
#include <array>

#include "types/ocitimestamp/zone.h"

namespace {

using zev::ZoneState;

constexpr std::size_t kHeaderSize = 44;
constexpr std::size_t kCountsAt = 20;
constexpr std::size_t kLargestFile = 10852;
constexpr sb4 kMostChars = 50;

/// A big-endian 32-bit number with its sign.
sb4 detzcode(const unsigned char *bytes) {
  ub4 value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | bytes[i];
  return static_cast<sb4>(value);
}

/// The counts of a header, in their order there.
struct Counts {
  sb4 ttisgmt, ttisstd, leap, time, type, chars;

  explicit Counts(const unsigned char *header) {
    const unsigned char *at = header + kCountsAt;
    for (sb4 *count : {&ttisgmt, &ttisstd, &leap, &time, &type, &chars}) {
      *count = detzcode(at);
      at += 4;
    }
  }
  bool areGood() const {
    const auto within = [](sb4 count, sb4 least, sb4 most) {
      return count >= least && count <= most;
    };
    return within(leap, 0, zev::kMostLeaps) && within(type, 1, zev::kMostZoneTypes) &&
           within(time, 0, zev::kMostTransitions) && within(chars, 0, kMostChars) &&
           (ttisstd == 0 || ttisstd == type) && (ttisgmt == 0 || ttisgmt == type);
  }
  std::size_t dataSize() const {
    return static_cast<std::size_t>(time * 5 + type * 6 + chars + leap * 8 + ttisstd +
                                    ttisgmt);
  }
};

bool isFlag(unsigned char byte) {
  return byte <= 1;
}

bool readType(const unsigned char *bytes, sb4 chars, zev::ZoneType &type) {
  type.gmtoff = detzcode(bytes);
  type.isdst = bytes[4];
  type.abbrind = bytes[5];
  return isFlag(bytes[4]) && type.abbrind <= chars;
}

}  // namespace

bool zev::readZoneData(const unsigned char *data, std::size_t size, ZoneState &state) {
  state = {};
  if (size < kHeaderSize) return false;
  const Counts counts(data);
  if (!counts.areGood() || size - kHeaderSize < counts.dataSize()) return false;
  state.leapcnt = counts.leap;
  state.timecnt = counts.time;
  state.typecnt = counts.type;
  state.charcnt = counts.chars;
  const unsigned char *at = data + kHeaderSize;
  for (sb4 i = 0; i < counts.time; ++i, at += 4) state.ats[i] = detzcode(at);
  for (sb4 i = 0; i < counts.time; ++i) {
    state.types[i] = *at++;
    if (state.types[i] >= counts.type) return false;
  }
  for (sb4 i = 0; i < counts.type; ++i, at += 6) {
    if (!readType(at, counts.chars, state.ttis[i])) return false;
  }
  std::copy_n(at, counts.chars, state.chars);
  at += counts.chars;
  for (sb4 i = 0; i < counts.leap; ++i, at += 8) {
    state.lsis[i] = {detzcode(at), detzcode(at + 4)};
  }
  for (sb4 i = 0; i < counts.ttisstd; ++i) {
    if (!isFlag(*at)) return false;
    state.ttis[i].ttisstd = *at++;
  }
  for (sb4 i = 0; i < counts.ttisgmt; ++i) {
    if (!isFlag(*at)) return false;
    state.ttis[i].ttisgmt = *at++;
  }
  return true;
}

extern "C" {

sb4 pg_open_tzfile(const char *, char *) {
  return -1;
}

sb4 tzload(const char *name, char *canonicalName, ZoneState *state) {
  const int file = pg_open_tzfile(name, canonicalName);
  if (file < 0) return -1;
  std::array<unsigned char, kLargestFile> data;
  const ssize_t size = read(file, data.data(), data.size());
  close(file);
  return size > 0 &&
                 zev::readZoneData(data.data(), static_cast<std::size_t>(size), *state)
             ? 0
             : -1;
}

}  // extern "C"
