#include <cstring>

#include "types/bytes.h"
#include "types/ocitimestamp/datetime_parts.h"
#include "zevoci/errors.h"

namespace {

constexpr int kYearExcess = 100;
constexpr int kHourExcess = 20;    ///< of a zone
constexpr int kMinuteExcess = 60;  ///< of a zone

/// Lengths of the array up to the ends of its parts.
enum Length : ub4 {
  kDateLength = 4,
  kTimeLength = 7,
  kFractionLength = 11,
  kZoneLength = 13,
};

/// Turns the day, hour and minute of an array from the zone's into those of UTC.
void moveToUtc(const OCIDateTimeBody &body, ub1 *out) {
  const OCITime &time = body.date.OCIDateTime;
  const int minuteEast = body.tzHour < 0 ? -body.tzMinute : body.tzMinute;
  int minute = time.OCITimeMI - minuteEast, carried = 0;
  if (minute < 0) {
    const int size = -minute;
    carried = ~(size / 59);
    minute = size / 59 * 59 - size + 60;
  } else if (minute > 59) {
    carried = minute / 59;
    minute -= carried * 59 + 1;
  }
  out[5] = static_cast<ub1>(minute + 1);
  const int hour = time.OCITimeHH - body.tzHour + carried;
  const int n = hour + 1;
  if (hour >= 0 && hour <= 23) {
    out[4] = static_cast<ub1>(n);
  } else if (n < 1) {
    const int days = -n / 24;
    out[4] = static_cast<ub1>(days * 24 + n + 24);
    out[3] = static_cast<ub1>(out[3] + ~days);
  } else {
    out[4] = static_cast<ub1>(n % 24);
    out[3] = static_cast<ub1>(out[3] + n / 24);
  }
}

/// The descriptor type of an external type; 0 for a type that has none.
ub1 descriptorTypeOf(ub1 type) {
  switch (type) {
    case SQLT_DATE:
      return OCI_DTYPE_DATE;
    case SQLT_TIMESTAMP:
      return OCI_DTYPE_TIMESTAMP;
    case SQLT_TIMESTAMP_TZ:
      return OCI_DTYPE_TIMESTAMP_TZ;
    case SQLT_TIMESTAMP_LTZ:
      return OCI_DTYPE_TIMESTAMP_LTZ;
    default:
      return 0;
  }
}

/// The bytes of an array as far as there are any.
struct Bytes {
  const ub1 *bytes;
  ub4 length;

  /// The byte at a place less what it has on top; 0 behind the end.
  int at(ub4 place, int excess) const {
    return place < length ? bytes[place] - excess : 0;
  }
};

}  // namespace

namespace zev::dates {

sword toArray(OCIError *err, const OCIDateTimeBody &body, ub1 *out, ub4 *length) {
  const ub4 room = *length;
  const auto fits = [&](Length needed) {
    if (room < needed) return false;
    *length = needed;
    return true;
  };
  const auto failShort = [err] { return fail(err, 1891, o2pGetErrorText(1891)); };
  std::memset(out, 0, room);
  if (!fits(kDateLength)) return failShort();
  PGtm tm{};
  DecodeOracleOCIDate(&body.date, &tm, 1);
  ub1 bytes[kDateSize];
  EncodeOracleDATE(bytes, &tm, 1);
  std::memcpy(out, bytes, kDateLength);
  if (body.dateTimeType == OCI_DTYPE_DATE) return OCI_SUCCESS;
  if (!fits(kTimeLength)) return failShort();
  std::memcpy(out, bytes, kTimeLength);
  if (body.dateTimeType != OCI_DTYPE_TIMESTAMP_TZ) return OCI_SUCCESS;
  moveToUtc(body, out);
  if (!fits(kFractionLength)) return failShort();
  std::memcpy(out + kTimeLength, body.fraction, sizeof body.fraction);
  if (!fits(kZoneLength)) return failShort();
  const int minuteEast = body.tzHour < 0 ? -body.tzMinute : body.tzMinute;
  out[11] = static_cast<ub1>(body.tzHour + kHourExcess);
  out[12] = static_cast<ub1>(minuteEast + kMinuteExcess);
  return OCI_SUCCESS;
}

sword fromArray(OCIError *err, OCIDateTimeBody &body, const ub1 *bytes, ub4 length,
                ub1 type) {
  const ub1 descriptorType = descriptorTypeOf(type);
  if (descriptorType == 0) return fail(err, 1866);
  body.dateTimeType = descriptorType;
  body.tzHour = 0;
  body.tzMinute = 0;
  body.date.OCIDateYYYY = 0;
  if (length == 0) return OCI_SUCCESS;
  const Bytes array{bytes, length};
  const auto byteAt = [&array](ub4 place, int excess) {
    return static_cast<ub1>(array.at(place, excess));
  };
  Parts parts{static_cast<sb2>(array.at(0, kYearExcess) * 100 + array.at(1, kYearExcess)),
              byteAt(2, 0),
              byteAt(3, 0),
              0,
              0,
              0,
              0};
  body.date = {parts.year, parts.month, parts.day, {0, 0, 0}};
  if (descriptorType == OCI_DTYPE_DATE) return OCI_SUCCESS;
  parts.hour = byteAt(4, 1);
  parts.minute = byteAt(5, 1);
  parts.second = byteAt(6, 1);
  body.date.OCIDateTime = {parts.hour, parts.minute, parts.second};
  for (ub4 i = 0; i < sizeof body.fraction; ++i)
    body.fraction[i] = byteAt(kTimeLength + i, 0);
  if (descriptorType == OCI_DTYPE_TIMESTAMP_LTZ) {
    ub1 hour = 0;
    body.tzSeconds = GetCurrTimeZone(&hour, &body.tzMinute);
    body.tzHour = static_cast<sb1>(hour);
  }
  if (descriptorType != OCI_DTYPE_TIMESTAMP_TZ) return OCI_SUCCESS;
  const int zoneHour = array.at(11, kHourExcess),
            zoneMinute = array.at(12, kMinuteExcess);
  body.tzHour = static_cast<sb1>(zoneHour);
  body.tzMinute = static_cast<ub1>(std::abs(zoneMinute));
  parts.hour = static_cast<ub1>(parts.hour + zoneHour);
  parts.minute = static_cast<ub1>(parts.minute + zoneMinute);
  ConstructTmFromData(body.date, parts);
  return OCI_SUCCESS;
}

}  // namespace zev::dates
