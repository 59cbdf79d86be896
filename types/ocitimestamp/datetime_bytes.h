/// The byte forms of dates, times and intervals: SQLT_DAT, OCIDate and the descriptors.
#pragma once

#include "types/ocitimestamp/calendar.h"

namespace zev {

inline constexpr std::size_t kDateSize = 7;  ///< of SQLT_DAT

/// `handle` as a descriptor with its body; null for anything else.
inline OCIDateTime *asDateTime(const void *handle) {
  auto *descriptor = checked<OCIDateTime>(handle, HANDLE_OCIDateTime);
  return descriptor && descriptor->body ? descriptor : nullptr;
}
inline OCIInterval *asInterval(const void *handle) {
  auto *descriptor = checked<OCIInterval>(handle, HANDLE_OCIInterval);
  return descriptor && descriptor->body ? descriptor : nullptr;
}

/// What a value has by its type.
inline bool hasTime(const OCIDateTimeBody &body) {
  return body.dateTimeType != OCI_DTYPE_DATE;
}
inline bool hasZone(const OCIDateTimeBody &body) {
  return hasTime(body) && body.dateTimeType != OCI_DTYPE_TIMESTAMP;
}
/// Whether the zone is the value's own, and whether it is that of the session.
inline bool isZoned(const OCIDateTimeBody &body) {
  return body.dateTimeType == OCI_DTYPE_TIMESTAMP_TZ;
}
inline bool isLocal(const OCIDateTimeBody &body) {
  return body.dateTimeType == OCI_DTYPE_TIMESTAMP_LTZ;
}

/// The count behind the seconds, which the body holds big-endian.
ub4 fractionOf(const OCIDateTimeBody &body);
void setFraction(OCIDateTimeBody &body, ub4 count);

/// The zone's displacement in minutes east of Greenwich.
sb4 zoneMinutesOf(const OCIDateTimeBody &body);
/// Writes "+hh:mm" as the zone's text.
void writeZoneText(OCIDateTimeBody &body, sb1 hour, ub1 minute);
/// Appends a displacement as EncodeTimezone does, as far as the text has room.
void appendZoneText(OCIDateTimeBody &body, sb4 seconds);

}  // namespace zev

extern "C" {
/// The seven bytes of SQLT_DAT, and an OCIDate, as a record and back. Without `withTime`
/// only the date is read, and written with time bytes of midnight, or in an OCIDate with
/// those that were there. 0, or -1 for a null pointer.
ZEV_HELPER sb4 DecodeOracleDATE(const ub1 *bytes, PGtm *tm, sb4 withTime);
ZEV_HELPER sb4 EncodeOracleDATE(ub1 *bytes, const PGtm *tm, sb4 withTime);
ZEV_HELPER sb4 DecodeOracleOCIDate(const OCIDate *date, PGtm *tm, sb4 withTime);
ZEV_HELPER sb4 EncodeOracleOCIDate(OCIDate *date, const PGtm *tm, sb4 withTime);
/// A descriptor as a record whose `fsec` is the count as it stands; with `withZone` its
/// zone too, `tm_zone` pointing into the body.
ZEV_HELPER sb4 DecodeOracleOCIDateTime(const OCIDateTime *descriptor, PGtm *tm,
                                       double *fsec, sb4 withZone);
/// A record as a body with a count of microseconds; with `withZone` the zone of
/// `tm_gmtoff`, whose text shows the opposite sign.
ZEV_HELPER sb4 EncodeOracleOCIDateTime(OCIDateTimeBody *body, const PGtm *tm,
                                       sb4 withZone, double fsec);

/// A descriptor as a Timestamp, on which the count lands as whole seconds; 0.0 out of
/// range.
ZEV_HELPER Timestamp ConvertOCIDateTimeToTimestamp(const OCIDateTime *descriptor);
/// Stores what a descriptor of its type shows of a Timestamp, without the fraction, and
/// appends the displacement to its zone text. 0, or -1 out of range.
ZEV_HELPER sb4 ConvertOCIDateTimeFromTimestamp(OCIDateTime *descriptor,
                                               Timestamp timestamp);

/// The displacement of the local zone now, in seconds west of Greenwich; hour and minute
/// are east positive.
ZEV_HELPER sb4 GetCurrTimeZone(ub1 *hour, ub1 *minute);
/// A displacement from text, "+05:30", in seconds east of Greenwich; null gives that of
/// the local zone, west of Greenwich. 0, -1 for text behind it with the outputs stored,
/// -5 out of -12:59 to +14:59.
ZEV_HELPER sb4 DecodeTZ(const char *text, sb4 *seconds, sb1 *hour, ub1 *minute,
                        ub1 *second);
}
