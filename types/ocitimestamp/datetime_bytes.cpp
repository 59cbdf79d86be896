#include "types/ocitimestamp/datetime_bytes.h"

#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "types/bytes.h"
#include "types/number_text.h"
#include "types/ocitimestamp/encode_datetime.h"
#include "types/ocitimestamp/text_writer.h"
#include "types/ocitimestamp/zone.h"

namespace {

constexpr int kExcess = 100;  ///< what the bytes of a year have on top

/// A descriptor with a body of zeros; null without memory.
template <class Descriptor>
Descriptor *allocate(HandleTag tag) {
  using Body = std::remove_pointer_t<decltype(Descriptor::body)>;
  auto *body = static_cast<Body *>(std::calloc(1, sizeof(Body)));
  if (!body) return nullptr;
  auto *descriptor = zev::allocHandle<Descriptor>(tag);
  if (!descriptor) {
    std::free(body);
    return nullptr;
  }
  descriptor->body = body;
  return descriptor;
}

template <class Descriptor>
void release(Descriptor *descriptor, HandleTag tag) {
  if (!zev::checked<Descriptor>(descriptor, tag)) return;
  std::free(descriptor->body);
  zev::freeHandle(descriptor);
}

void readTime(const OCIDate &date, PGtm &tm) {
  tm.tm_hour = date.OCIDateTime.OCITimeHH;
  tm.tm_min = date.OCIDateTime.OCITimeMI;
  tm.tm_sec = date.OCIDateTime.OCITimeSS;
}

void writeTime(OCIDate &date, const PGtm &tm) {
  date.OCIDateTime.OCITimeHH = static_cast<ub1>(tm.tm_hour);
  date.OCIDateTime.OCITimeMI = static_cast<ub1>(tm.tm_min);
  date.OCIDateTime.OCITimeSS = static_cast<ub1>(tm.tm_sec);
}

/// Puts a text into the zone text, as far as that has room.
void setZoneText(OCIDateTimeBody &body, const char *text) {
  const std::size_t length = strnlen(text, sizeof body.tzText - 1);
  std::memmove(body.tzText, text, length);
  body.tzText[length] = '\0';
}

/// The zone of a value of the local zone's kind, west of Greenwich, from what the local
/// zone is now.
sb4 localZoneOf(const OCIDateTimeBody &body, sb4 west, ub1 hour, ub1 minute) {
  const int minutes =
      (body.tzHour < 0 ? minute - body.tzMinute : minute + body.tzMinute) & 0xff;
  const auto hours = static_cast<sb1>(hour + body.tzHour);
  return west + (minutes + hours * 60) * 60;
}

void decodeZone(const OCIDateTimeBody &body, PGtm &tm) {
  tm.tm_zone = body.tzText;
  if (body.dateTimeType != OCI_DTYPE_TIMESTAMP_LTZ) {
    tm.tm_gmtoff = -sb8{body.tzSeconds};
    return;
  }
  ub1 hour = 0, minute = 0;
  const sb4 west = GetCurrTimeZone(&hour, &minute);
  const bool isLocal = static_cast<ub1>(body.tzHour) == hour && body.tzMinute == minute;
  tm.tm_gmtoff = isLocal ? west : -sb8{localZoneOf(body, west, hour, minute)};
}

/// The zone of `tm_gmtoff`; the sign of its text is that of the displacement west.
void encodeZone(OCIDateTimeBody &body, const PGtm &tm) {
  const sb4 west = static_cast<sb4>(-static_cast<ub4>(tm.tm_gmtoff));
  const sb8 size = std::abs(sb8{west});
  body.tzSeconds = west;
  body.tzSecond = static_cast<ub1>(size % 60);
  body.tzMinute = static_cast<ub1>(size / 60 % 60);
  const auto hours = static_cast<sb1>(size / 3600);
  body.tzHour = tm.tm_gmtoff < 0 ? static_cast<sb1>(-hours) : hours;
  char text[16];
  zev::TextWriter out(text);
  out << (west < 0 ? '-' : '+');
  out.number(body.tzHour, 2) << ':';
  out.number(body.tzMinute, 2).end();
  setZoneText(body, text);
}

}  // namespace

ub4 zev::fractionOf(const OCIDateTimeBody &body) {
  return readNetwork<ub4>(body.fraction);
}

void zev::setFraction(OCIDateTimeBody &body, ub4 count) {
  writeNative(body.fraction, swapBytes(count));
}

sb4 zev::zoneMinutesOf(const OCIDateTimeBody &body) {
  return body.tzHour * 60 + (body.tzHour < 0 ? -body.tzMinute : body.tzMinute);
}

void zev::appendZoneText(OCIDateTimeBody &body, sb4 seconds) {
  char text[sizeof body.tzText + 16] = {};
  std::memcpy(text, body.tzText, strnlen(body.tzText, sizeof body.tzText - 1));
  EncodeTimezone(text, seconds);
  setZoneText(body, text);
}

void zev::writeZoneText(OCIDateTimeBody &body, sb1 hour, ub1 minute) {
  char text[16];
  TextWriter out(text);
  out << (hour < 0 ? '-' : '+');
  out.number(std::abs(hour), 2) << ':';
  out.number(minute, 2).end();
  setZoneText(body, text);
}

extern "C" {

OCIDateTime *Alloc_OCIDateTime(ub4 type) {
  auto *descriptor = allocate<OCIDateTime>(HANDLE_OCIDateTime);
  if (!descriptor) return nullptr;
  descriptor->body->dateTimeType = static_cast<ub1>(type);
  descriptor->body->valid = 1;
  return descriptor;
}

OCIInterval *Alloc_OCIInterval(ub4 type) {
  auto *descriptor = allocate<OCIInterval>(HANDLE_OCIInterval);
  if (!descriptor) return nullptr;
  descriptor->body->intervalType = static_cast<ub1>(type);
  descriptor->body->valid = 1;
  return descriptor;
}

void Free_OCIDateTime(OCIDateTime *descriptor) {
  release(descriptor, HANDLE_OCIDateTime);
}

void Free_OCIInterval(OCIInterval *descriptor) {
  release(descriptor, HANDLE_OCIInterval);
}

sword DecodeOracleDATE(const ub1 *bytes, PGtm *tm, sb4 withTime) {
  if (!bytes || !tm) return -1;
  *tm = {};
  tm->tm_year = (bytes[0] - kExcess) * 100 + bytes[1] - kExcess;
  tm->tm_mon = bytes[2];
  tm->tm_mday = bytes[3];
  if (!withTime) return 0;
  tm->tm_hour = bytes[4] - 1;
  tm->tm_min = bytes[5] - 1;
  tm->tm_sec = bytes[6] - 1;
  return 0;
}

sword EncodeOracleDATE(ub1 *bytes, const PGtm *tm, sb4 withTime) {
  if (!bytes || !tm) return -1;
  const auto put = [bytes](int place, sb4 value) {
    bytes[place] = static_cast<ub1>(value);
  };
  put(0, tm->tm_year / 100 + kExcess);
  put(1, tm->tm_year % 100 + kExcess);
  put(2, tm->tm_mon);
  put(3, tm->tm_mday);
  put(4, withTime ? tm->tm_hour + 1 : 1);
  put(5, withTime ? tm->tm_min + 1 : 1);
  put(6, withTime ? tm->tm_sec + 1 : 1);
  return 0;
}

sword DecodeOracleOCIDate(const OCIDate *date, PGtm *tm, sb4 withTime) {
  if (!date || !tm) return -1;
  *tm = {};
  tm->tm_year = date->OCIDateYYYY;
  tm->tm_mon = date->OCIDateMM;
  tm->tm_mday = date->OCIDateDD;
  if (withTime) readTime(*date, *tm);
  return 0;
}

sword EncodeOracleOCIDate(OCIDate *date, const PGtm *tm, sb4 withTime) {
  if (!date || !tm) return -1;
  date->OCIDateYYYY = static_cast<sb2>(tm->tm_year);
  date->OCIDateMM = static_cast<ub1>(tm->tm_mon);
  date->OCIDateDD = static_cast<ub1>(tm->tm_mday);
  if (withTime) writeTime(*date, *tm);
  return 0;
}

sword DecodeOracleOCIDateTime(const OCIDateTime *descriptor, PGtm *tm, double *fsec,
                              sb4 withZone) {
  if (!zev::asDateTime(descriptor) || !tm || !fsec) return -1;
  const OCIDateTimeBody &body = *descriptor->body;
  DecodeOracleOCIDate(&body.date, tm, 1);
  *fsec = zev::fractionOf(body);
  if (withZone) decodeZone(body, *tm);
  return 0;
}

sword EncodeOracleOCIDateTime(OCIDateTimeBody *body, const PGtm *tm, sb4 withZone,
                              double fsec) {
  if (!body || !tm) return -1;
  EncodeOracleOCIDate(&body->date, tm, 1);
  zev::setFraction(*body, static_cast<ub4>(zev::truncated(fsec * 1e6)));
  if (withZone) encodeZone(*body, *tm);
  return 0;
}

Timestamp ConvertOCIDateTimeToTimestamp(const OCIDateTime *descriptor) {
  if (!zev::asDateTime(descriptor)) return 0;
  const OCIDateTimeBody &body = *descriptor->body;
  PGtm tm{};
  DecodeOracleOCIDate(&body.date, &tm, 1);
  sb4 tz = 0;
  if (body.dateTimeType == OCI_DTYPE_TIMESTAMP_LTZ) {
    DetermineLocalTimeZone(&tm);
    tz = static_cast<sb4>(tm.tm_gmtoff) - zev::zoneMinutesOf(body) * 60;
  }
  Timestamp timestamp = 0;
  tm2timestamp(&tm, zev::fractionOf(body), &tz, &timestamp);
  return timestamp;
}

sb4 ConvertOCIDateTimeFromTimestamp(OCIDateTime *descriptor, Timestamp timestamp) {
  PGtm tm{};
  double fsec = 0;
  if (!zev::asDateTime(descriptor) ||
      timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr) != 0)
    return -1;
  OCIDateTimeBody &body = *descriptor->body;
  EncodeOracleOCIDate(&body.date, &tm, body.dateTimeType != OCI_DTYPE_DATE);
  if (body.dateTimeType == OCI_DTYPE_DATE || body.dateTimeType == OCI_DTYPE_TIMESTAMP)
    return 0;
  const sb4 seconds = body.tzSeconds;
  body.tzHour = static_cast<sb1>(-(seconds / 3600));
  body.tzMinute = static_cast<ub1>(std::abs(sb8{seconds}) / 60 % 60);
  zev::appendZoneText(body, seconds);
  return 0;
}

sb4 GetCurrTimeZone(ub1 *hour, ub1 *minute) {
  PGtm now{};
  sb4 tz = 0;
  abstime2tm(GetCurrentAbsoluteTime(), &tz, &now, nullptr);
  const sb4 west = DetermineLocalTimeZone(&now);
  *hour = static_cast<ub1>(-(west / 3600));
  *minute = static_cast<ub1>(std::abs(west) / 60 % 60);
  return west;
}

sb4 DecodeTZ(const char *text, sb4 *seconds, sb1 *hour, ub1 *minute, ub1 *second) {
  constexpr sb4 kOutOfRange = -5;
  *second = 0;
  if (!text) {
    ub1 hours = 0;
    *seconds = GetCurrTimeZone(&hours, minute);
    *hour = static_cast<sb1>(hours);
    return 0;
  }
  const zev::CleanErrno clean;
  const auto hours = zev::parseLong(text);
  if (errno == ERANGE) return kOutOfRange;
  const int size = std::abs(static_cast<sb1>(hours.value));
  const char *rest = hours.end;
  *minute = 0;
  if (*rest == ':') {
    const auto minutes = zev::parseLong(rest + 1);
    if (errno == ERANGE) return kOutOfRange;
    if (minutes.value >= 1) *minute = static_cast<ub1>(minutes.value);
    rest = minutes.end;
  }
  const bool isWest = *text == '-';
  const sb4 total = (size * 60 + *minute) * 60 + *second;
  *seconds = isWest ? -total : total;
  *hour = static_cast<sb1>(isWest ? -size : size);
  if (*hour < -12 || *hour > 14 || *minute > 59) return kOutOfRange;
  return *rest == '\0' ? 0 : -1;
}

}  // extern "C"
