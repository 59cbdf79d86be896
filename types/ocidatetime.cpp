/// OCIDateTime on the client: parts, text, arrays, zones and arithmetic.
#include <ociap.h>

#include <cmath>
#include <cstdlib>
#include <limits>

#include "core/owned.h"
#include "types/ocitimestamp/date_call.h"
#include "types/ocitimestamp/datetime_compare.h"
#include "types/ocitimestamp/datetime_parts.h"
#include "types/ocitimestamp/encode_datetime.h"
#include "types/ocitimestamp/format_execution.h"
#include "types/ocitimestamp/zone.h"

namespace {

using zev::Argument;
using zev::hasTime;
using zev::hasZone;
using zev::isLocal;
using zev::isZoned;
using zev::dates::Parts;

/// With the catalogue's text.
sword failWithText(OCIError *err, sb4 code) {
  return zev::fail(err, code, o2pGetErrorText(code));
}

/// The frame of all functions: the arguments' checks, then `work` on the bodies of
/// `descriptors`, each of which is a descriptor with a body.
template <class Work, class... Descriptors>
sword call(const char *line, OCIError *err, std::initializer_list<Argument> arguments,
           const Work &work, Descriptors *...descriptors) {
  return zev::dates::run(line, err, arguments, [&]() -> sword {
    if (!((descriptors && descriptors->body) && ...)) return OCI_INVALID_HANDLE;
    return work();
  });
}

const OCIDateTime *dateTimeOf(const OCIDateTime *descriptor) {
  return zev::asDateTime(descriptor);
}
OCIDateTime *dateTimeOf(OCIDateTime *descriptor) {
  return zev::asDateTime(descriptor);
}

/// Records 16384 for a value that may not be read.
bool isReadable(OCIError *err, const OCIDateTime *descriptor) {
  if (descriptor->body->valid) return true;
  failWithText(err, 16384);
  return false;
}

/// Hour and minute of a zone.
struct Zone {
  sb1 hour = 0;
  ub1 minute = 0;
};

/// The zone that a value shows; false for one without.
bool zoneOf(const OCIDateTimeBody &body, Zone &zone) {
  if (isZoned(body)) {
    zone = {body.tzHour, body.tzMinute};
    return true;
  }
  if (!isLocal(body)) return false;
  ub1 hour = 0;
  GetCurrTimeZone(&hour, &zone.minute);
  zone.hour = static_cast<sb1>(hour);
  return true;
}

void decodeZoneText(OCIDateTimeBody &body) {
  ub1 second = 0;
  DecodeTZ(body.tzText, &body.tzSeconds, &body.tzHour, &body.tzMinute, &second);
}

// --- Text ---

/// The kind of value that a format is used on, and the format where none is given.
struct Format {
  sb4 dateKind;
  const char *toRead;
  const char *toPrint;
};

Format formatOf(const OCIDateTimeBody &body) {
  using namespace zev::format;
  switch (body.dateTimeType) {
    case OCI_DTYPE_DATE:
      return {kDateDescriptor, "DD-MON-YY", "DD-MON-YY"};
    case OCI_DTYPE_TIMESTAMP:
      return {kTimestampDescriptor, "DD-MON-YY HH.MI.SS.FF AM",
              "DD-MON-YY HH:MI:SS:FF3 AM"};
    default:
      return {kZonedDescriptor, "DD-MON-YY HH.MI.SS.FF AM TZH",
              "DD-MON-YY HH.MI.SS.FF3 AM TZR"};
  }
}

/// Stores a displacement east; one below an hour west has its sign on the minutes.
void setZone(OCIDateTimeBody &body, sb4 minutesEast) {
  const sb4 size = std::abs(minutesEast);
  body.tzHour = static_cast<sb1>(size / 60);
  body.tzMinute = static_cast<ub1>(size % 60);
  if (minutesEast >= 0) return;
  if (body.tzHour != 0) {
    body.tzHour = static_cast<sb1>(-body.tzHour);
  } else {
    body.tzMinute = static_cast<ub1>(-body.tzMinute);
  }
}

/// Moves a value that was read with a zone of its own into the local zone.
sword moveToLocalZone(OCIDateTimeBody &body, PGtm &tm, sb4 minutesEast) {
  DetermineLocalTimeZone(&tm);
  const auto local = static_cast<sb4>(tm.tm_gmtoff / 60);
  if (local == minutesEast) return OCI_SUCCESS;
  const sb4 shift = (local - minutesEast) * 60;
  Timestamp timestamp = 0;
  double fsec = 0;
  if (tm2timestamp(&tm, 0, &shift, &timestamp) != 0 ||
      timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr) != 0)
    return OCI_ERROR;
  setZone(body, local);
  return OCI_SUCCESS;
}

sword readText(OCIError *err, OCIDateTimeBody &body, const char *text,
               const char *format) {
  PGtm tm{};
  double fsec = 0;
  if (do_to_timestamp(err, text, format, &tm, &fsec, formatOf(body).dateKind) != 0)
    return OCI_ERROR;
  if (tm.tm_mday > zev::daysOfMonth(tm.tm_year, tm.tm_mon))
    return failWithText(err, 1839);
  if (hasZone(body)) {
    const auto minutesEast = static_cast<sb4>(tm.tm_gmtoff / 60);
    setZone(body, minutesEast);
    if (isLocal(body)) {
      if (const sword status = moveToLocalZone(body, tm, minutesEast);
          status != OCI_SUCCESS)
        return status;
    }
  }
  EncodeOracleOCIDate(&body.date, &tm, hasTime(body));
  if (hasTime(body)) {
    constexpr double kMost = std::numeric_limits<ub4>::max();
    const double count = std::trunc(fsec);
    zev::setFraction(body, static_cast<ub4>(std::min(std::max(count, 0.0), kMost)));
  }
  body.valid = 1;
  return OCI_SUCCESS;
}

/// What is printed of a value: with its days of the week and of the year.
bool fillPrinted(const OCIDateTimeBody &body, TmToChar &value) {
  DecodeOracleOCIDate(&body.date, &value.tm, 1);
  sb4 tz = 0;
  if (isZoned(body)) {
    value.tzHour = body.tzHour;
    value.tzMinute = body.tzMinute;
  } else if (isLocal(body)) {
    DetermineLocalTimeZone(&value.tm);
    const auto east = static_cast<sb4>(value.tm.tm_gmtoff);
    tz = east - zev::zoneMinutesOf(body) * 60;
    value.tzHour = static_cast<sb1>(east / 3600);
    value.tzMinute = static_cast<ub1>(std::abs(east) / 60 % 60);
  }
  static constexpr pg_tz kUtc{};
  Timestamp timestamp = 0;
  double fsec = 0;
  if (tm2timestamp(&value.tm, 0, &tz, &timestamp) != 0 ||
      timestamp2tm(timestamp, &tz, &value.tm, &fsec, nullptr, &kUtc) != 0)
    return false;
  value.fsec = zev::fractionOf(body);
  return true;
}

// --- Conversion between types ---

/// The parts of a value as other types take them.
Parts convertedParts(const OCIDateTimeBody &body) {
  Parts parts{body.date.OCIDateYYYY, body.date.OCIDateMM, body.date.OCIDateDD, 0, 0, 0,
              zev::fractionOf(body)};
  if (!hasTime(body)) {
    parts.fraction = 0;
    return parts;
  }
  const OCITime &time = body.date.OCIDateTime;
  parts.hour = time.OCITimeHH;
  parts.minute = time.OCITimeMI;
  parts.second = time.OCITimeSS;
  return parts;
}

/// The parts of a value of the local zone as they are in what the local zone is now.
sword localParts(const OCIDateTime *source, Parts &parts) {
  PGtm tm{};
  double count = 0;
  DecodeOracleOCIDateTime(source, &tm, &count, 1);
  const auto displacement = static_cast<sb4>(tm.tm_gmtoff);
  ub1 hour = 0, minute = 0;
  const sb4 current = GetCurrTimeZone(&hour, &minute);
  Timestamp timestamp = 0;
  double fsec = 0;
  if (tm2timestamp(&tm, zev::rint(count / 1000.0) / 1e6, &displacement, &timestamp) !=
          0 ||
      timestamp2tm(dt2local(timestamp, current), nullptr, &tm, &fsec, nullptr, nullptr) !=
          0)
    return OCI_ERROR;
  OCIDateTimeBody moved = *source->body;
  EncodeOracleOCIDate(&moved.date, &tm, 1);
  parts = convertedParts(moved);
  return OCI_SUCCESS;
}

void storeConverted(const OCIDateTimeBody &source, const Parts &parts,
                    OCIDateTimeBody &target) {
  target.date.OCIDateYYYY = parts.year;
  target.date.OCIDateMM = parts.month;
  target.date.OCIDateDD = parts.day;
  target.valid = 1;
  if (!hasTime(target)) return;
  target.date.OCIDateTime = {parts.hour, parts.minute, parts.second};
  zev::setFraction(target, parts.fraction);
  if (!hasZone(target)) return;
  if (isZoned(source) && isZoned(target)) {
    constexpr std::size_t kCopied = 10;
    std::memmove(target.tzText, source.tzText, kCopied);
    target.tzText[kCopied] = '\0';
  } else {
    ub1 hour = 0, minute = 0;
    GetCurrTimeZone(&hour, &minute);
    zev::writeZoneText(target, static_cast<sb1>(hour), minute);
  }
  decodeZoneText(target);
}

// --- Arithmetic ---

/// Adds months to a Timestamp's date, of which the day is cut to the month's length.
sb4 addMonths(Timestamp &timestamp, sb4 months) {
  PGtm tm{};
  double fsec = 0;
  if (timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr) != 0) return -1;
  const sb8 month = sb8{tm.tm_mon} + months;
  sb8 year = tm.tm_year;
  if (month > 12) {
    year += (month - 1) / 12;
    tm.tm_mon = static_cast<sb4>((month - 1) % 12 + 1);
  } else if (month < 1) {
    year += month / 12 - 1;
    tm.tm_mon = static_cast<sb4>(month % 12 + 12);
  } else {
    tm.tm_mon = static_cast<sb4>(month);
  }
  tm.tm_year = static_cast<sb4>(year);
  tm.tm_mday = std::min(tm.tm_mday, zev::daysOfMonth(tm.tm_year, tm.tm_mon));
  return tm2timestamp(&tm, fsec, nullptr, &timestamp);
}

sb4 addDays(Timestamp &timestamp, sb4 days) {
  PGtm tm{};
  double fsec = 0;
  if (timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr) != 0) return -1;
  const sb8 julian = sb8{date2j(tm.tm_year, tm.tm_mon, tm.tm_mday)} + days;
  if (julian < 0 || julian > std::numeric_limits<sb4>::max()) return -1;
  j2date(static_cast<sb4>(julian), &tm.tm_year, &tm.tm_mon, &tm.tm_mday);
  return tm2timestamp(&tm, fsec, nullptr, &timestamp);
}

sword addInterval(OCIError *err, const OCIDateTime *source, const OCIInterval *inter,
                  OCIDateTime *target) {
  if (!inter || !inter->body->valid || !source->body->valid || !target->body->valid)
    return zev::fail(err, 932);
  const Interval &span = inter->body->interval;
  Timestamp timestamp = ConvertOCIDateTimeToTimestamp(source);
  if ((span.month != 0 && addMonths(timestamp, span.month) != 0) ||
      (span.day != 0 && addDays(timestamp, span.day) != 0))
    return zev::fail(err, 21560);
  return ConvertOCIDateTimeFromTimestamp(target, timestamp + span.time);
}

void negate(Interval &span) {
  span.month = static_cast<sb4>(-static_cast<ub4>(span.month));
  span.day = static_cast<sb4>(-static_cast<ub4>(span.day));
  span.time = -span.time;
}

sword failNoReference(OCIError *err) {
  zev::fail(err, 100);
  return OCI_INVALID_HANDLE;
}

}  // namespace

extern "C" {

ZEV_API sword OCIDateTimeAssign(void *hndl, OCIError *err, const OCIDateTime *from,
                                OCIDateTime *to) {
  const auto *source = dateTimeOf(from);
  auto *target = dateTimeOf(to);
  return call(
      "OCIDateTimeAssign\n", err, {{hndl, "1"}, {from, "3"}, {to, "4"}},
      [&] {
        if (source->body->dateTimeType != target->body->dateTimeType)
          return zev::fail(err, 932);
        *target->body = *source->body;
        return OCI_SUCCESS;
      },
      source, target);
}

ZEV_API sword OCIDateTimeCheck(void *, OCIError *err, const OCIDateTime *date,
                               ub4 *valid) {
  const auto *value = dateTimeOf(date);
  return call(
      "OCIDateTimeCheck\n", err, {{date, "3"}, {valid, "4"}},
      [&] {
        const OCIDateTimeBody &body = *value->body;
        const bool isBadZone = hasZone(body) && (body.tzHour < -12 || body.tzHour > 14 ||
                                                 body.tzMinute > 59);
        *valid = VerifyDate(err, body.date) | (isBadZone ? OCI_DT_INVALID_TIMEZONE : 0u);
        return OCI_SUCCESS;
      },
      value);
}

ZEV_API sword OCIDateTimeCompare(void *env, OCIError *err, const OCIDateTime *date1,
                                 const OCIDateTime *date2, sword *result) {
  if (!zev::asError(err) || !zev::asEnv(env)) return OCI_INVALID_HANDLE;
  const auto *first = dateTimeOf(date1), *second = dateTimeOf(date2);
  return call(
      "OCIDateTimeCompare\n", err, {{date1, "3"}, {date2, "4"}, {result, "5"}},
      [&]() -> sword {
        if (!isReadable(err, first) || !isReadable(err, second)) return OCI_ERROR;
        const ub1 type = first->body->dateTimeType;
        if (type != second->body->dateTimeType) return failWithText(err, 1870);
        return DateTimeCompare(first, second, type, result);
      },
      first, second);
}

ZEV_API sword OCIDateTimeConstruct(void *hndl, OCIError *err, OCIDateTime *datetime,
                                   sb2 year, ub1 month, ub1 day, ub1 hour, ub1 min,
                                   ub1 sec, ub4 fsec, OraText *timezone, size_t) {
  auto *target = dateTimeOf(datetime);
  return call(
      "OCIDateTimeConstruct\n", err, {{hndl, "1"}, {datetime, "3"}},
      [&] {
        const zev::EdgeText zone(zev::parentEnv(err), timezone);
        if (!zone) return zev::dates::failText(err, zone);
        return zev::dates::construct(err, *target->body,
                                     {year, month, day, hour, min, sec, fsec},
                                     timezone ? zone.cString() : nullptr);
      },
      target);
}

ZEV_API sword OCIDateTimeConvert(void *env, OCIError *err, OCIDateTime *indate,
                                 OCIDateTime *outdate) {
  if (!zev::asError(err) || !zev::asEnv(env)) return OCI_INVALID_HANDLE;
  const auto *source = dateTimeOf(indate);
  auto *target = dateTimeOf(outdate);
  return call(
      "OCIDateTimeConvert\n", err, {{indate, "3"}, {outdate, "4"}},
      [&]() -> sword {
        if (!isReadable(err, source)) return OCI_ERROR;
        Parts parts = convertedParts(*source->body);
        if (isLocal(*source->body)) {
          if (const sword status = localParts(source, parts); status != OCI_SUCCESS)
            return status;
        }
        storeConverted(*source->body, parts, *target->body);
        return OCI_SUCCESS;
      },
      source, target);
}

ZEV_API sword OCIDateTimeFromArray(void *hndl, OCIError *err, const ub1 *inarray, ub4 len,
                                   ub1 type, OCIDateTime *datetime,
                                   const OCIInterval *reftz, ub1) {
  auto *target = dateTimeOf(datetime);
  return call(
      "OCIDateTimeFromArray\n", err, {{hndl, "1"}, {datetime, "3"}, {inarray, "5"}},
      [&] {
        if (!reftz) return failNoReference(err);
        return zev::dates::fromArray(err, *target->body, inarray, len, type);
      },
      target);
}

ZEV_API sword OCIDateTimeFromText(void *hndl, OCIError *err, const OraText *date_str,
                                  size_t dstr_length, const OraText *fmt, ub1 fmt_length,
                                  const OraText *, size_t, OCIDateTime *datetime) {
  auto *target = dateTimeOf(datetime);
  return call(
      "OCIDateTimeFromText\n", err, {{hndl, "1"}, {date_str, "3"}, {datetime, "9"}},
      [&] {
        const zev::dates::Terminated text(err, date_str, dstr_length);
        if (!text) return text.fail(err);
        if (!fmt) {
          return readText(err, *target->body, text.get(), formatOf(*target->body).toRead);
        }
        const zev::dates::Terminated format(err, fmt, fmt_length);
        if (!format) return format.fail(err);
        return readText(err, *target->body, text.get(), format.get());
      },
      target);
}

ZEV_API sword OCIDateTimeGetDate(void *hndl, OCIError *err, const OCIDateTime *datetime,
                                 sb2 *year, ub1 *month, ub1 *day) {
  const auto *value = dateTimeOf(datetime);
  return call(
      "OCIDateTimeGetDate\n", err,
      {{hndl, "1"}, {datetime, "3"}, {year, "4"}, {month, "5"}, {day, "6"}},
      [&]() -> sword {
        if (!isReadable(err, value)) return OCI_ERROR;
        OCIDateGetDate(&value->body->date, year, month, day);
        return OCI_SUCCESS;
      },
      value);
}

ZEV_API sword OCIDateTimeGetTime(void *hndl, OCIError *err, OCIDateTime *datetime,
                                 ub1 *hour, ub1 *min, ub1 *sec, ub4 *fsec) {
  const auto *value = dateTimeOf(datetime);
  return call(
      "OCIDateTimeGetTime\n", err,
      {{hndl, "1"}, {datetime, "3"}, {hour, "4"}, {min, "5"}, {sec, "6"}, {fsec, "7"}},
      [&]() -> sword {
        if (!isReadable(err, value)) return OCI_ERROR;
        const OCIDateTimeBody &body = *value->body;
        if (!hasTime(body)) {
          *hour = *min = *sec = 0;
          *fsec = 0;
          return failWithText(err, 1878);
        }
        OCIDateGetTime(&body.date, hour, min, sec);
        *fsec = zev::fractionOf(body);
        return OCI_SUCCESS;
      },
      value);
}

ZEV_API sword OCIDateTimeGetTimeZoneName(void *hndl, OCIError *err,
                                         const OCIDateTime *datetime, ub1 *buf,
                                         ub4 *buflen) {
  constexpr ub4 kRoom = 7;
  const auto *value = dateTimeOf(datetime);
  const OCIEnv *env = zev::parentEnv(err);
  return call(
      "OCIDateTimeGetTimeZoneName\n", err,
      {{hndl, "1"}, {datetime, "3"}, {buf, "4"}, {buflen, "5"}},
      [&]() -> sword {
        if (*buflen < kRoom * zev::terminatorSize(env)) return OCI_ERROR;
        if (!isReadable(err, value)) return OCI_ERROR;
        Zone zone;
        if (!zoneOf(*value->body, zone)) return failWithText(err, 1878);
        OCIDateTimeBody named{};
        zev::writeZoneText(named, zone.hour, zone.minute);
        return zev::dates::deliverCut(
            err, {named.tzText, strnlen(named.tzText, kRoom - 1)}, buf, buflen);
      },
      value);
}

ZEV_API sword OCIDateTimeGetTimeZoneOffset(void *hndl, OCIError *err,
                                           const OCIDateTime *datetime, sb1 *hour,
                                           sb1 *min) {
  const auto *value = dateTimeOf(datetime);
  return call(
      "OCIDateTimeGetTimeZoneOffset\n", err,
      {{hndl, "1"}, {datetime, "3"}, {hour, "4"}, {min, "5"}},
      [&]() -> sword {
        if (!isReadable(err, value)) return OCI_ERROR;
        Zone zone;
        if (!zoneOf(*value->body, zone)) return failWithText(err, 1878);
        *hour = zone.hour;
        *min = static_cast<sb1>(zone.minute);
        return OCI_SUCCESS;
      },
      value);
}

ZEV_API sword OCIDateTimeIntervalAdd(void *hndl, OCIError *err, OCIDateTime *datetime,
                                     OCIInterval *inter, OCIDateTime *outdatetime) {
  const auto *source = dateTimeOf(datetime);
  auto *target = dateTimeOf(outdatetime);
  return call(
      "OCIDateTimeIntervalAdd\n", err, {{hndl, "1"}, {datetime, "3"}, {outdatetime, "5"}},
      [&] { return addInterval(err, source, zev::asInterval(inter), target); }, source,
      target);
}

ZEV_API sword OCIDateTimeIntervalSub(void *hndl, OCIError *err, OCIDateTime *datetime,
                                     OCIInterval *inter, OCIDateTime *outdatetime) {
  const auto *source = dateTimeOf(datetime);
  auto *target = dateTimeOf(outdatetime);
  auto *span = zev::asInterval(inter);
  return call(
      "OCIDateTimeIntervalSub\n", err,
      {{hndl, "1"}, {datetime, "3"}, {inter, "4"}, {outdatetime, "5"}},
      [&]() -> sword {
        if (!span->body->valid || !source->body->valid || !target->body->valid)
          return zev::fail(err, 932);
        negate(span->body->interval);
        return OCIDateTimeIntervalAdd(hndl, err, datetime, inter, outdatetime);
      },
      source, target, span);
}

ZEV_API sword OCIDateTimeSubtract(void *, OCIError *err, OCIDateTime *indate1,
                                  OCIDateTime *indate2, OCIInterval *inter) {
  const auto *first = dateTimeOf(indate1), *second = dateTimeOf(indate2);
  auto *result = zev::asInterval(inter);
  return call(
      "OCIDateTimeSubtract\n", err, {{indate1, "3"}, {indate2, "4"}, {inter, "5"}},
      [&]() -> sword {
        if (!isReadable(err, first) || !isReadable(err, second)) return OCI_ERROR;
        interval_justify_interval(
            result,
            ConvertOCIDateTimeToTimestamp(first) - ConvertOCIDateTimeToTimestamp(second),
            0, 0);
        return OCI_SUCCESS;
      },
      first, second, result);
}

ZEV_API sword OCIDateTimeSysTimeStamp(void *hndl, OCIError *err, OCIDateTime *sys_date) {
  auto *target = dateTimeOf(sys_date);
  return call(
      "OCIDateTimeSysTimeStamp\n", err, {{hndl, "1"}, {sys_date, "3"}},
      [&] {
        OCIDateTimeBody &body = *target->body;
        PGtm now{};
        sb4 tz = 0;
        abstime2tm(GetCurrentAbsoluteTime(), &tz, &now, nullptr);
        body.tzHour = 0;
        body.tzMinute = 0;
        body.date = {};
        body.tzSeconds = DetermineLocalTimeZone(&now);
        EncodeOracleOCIDate(&body.date, &now, hasTime(body));
        if (hasZone(body)) {
          body.tzHour = static_cast<sb1>(-(body.tzSeconds / 3600));
          body.tzMinute = static_cast<ub1>(std::abs(body.tzSeconds) / 60 % 60);
          zev::appendZoneText(body, body.tzSeconds);
        }
        body.valid = 1;
        return OCI_SUCCESS;
      },
      target);
}

ZEV_API sword OCIDateTimeToArray(void *hndl, OCIError *err, const OCIDateTime *datetime,
                                 const OCIInterval *reftz, ub1 *outarray, ub4 *len, ub1) {
  const auto *value = dateTimeOf(datetime);
  return call(
      "OCIDateTimeToArray\n", err, {{hndl, "1"}, {datetime, "3"}, {outarray, "5"}},
      [&]() -> sword {
        if (!reftz) return failNoReference(err);
        if (!len) return OCI_INVALID_HANDLE;
        if (!isReadable(err, value)) return OCI_ERROR;
        return zev::dates::toArray(err, *value->body, outarray, len);
      },
      value);
}

ZEV_API sword OCIDateTimeToText(void *, OCIError *err, const OCIDateTime *date,
                                const OraText *fmt, ub1 fmt_length, ub1, const OraText *,
                                size_t, ub4 *buf_size, OraText *buf) {
  const auto *value = dateTimeOf(date);
  return call(
      "OCIDateTimeToText\n", err, {{date, "2"}, {buf_size, "6"}, {buf, "7"}},
      [&]() -> sword {
        if (!isReadable(err, value)) return OCI_ERROR;
        const Format known = formatOf(*value->body);
        const zev::dates::Terminated given(err, fmt, fmt ? fmt_length : 0);
        if (!given) return given.fail(err);
        TmToChar printed{};
        if (!fillPrinted(*value->body, printed)) return zev::dates::failAfresh(err, 1841);
        zev::format::PrintedText text;
        if (!text.print(err, printed, fmt ? given.get() : known.toPrint, known.dateKind))
          return OCI_ERROR;
        return zev::dates::deliverCut(err, text.text(), buf, buf_size);
      },
      value);
}

}  // extern "C"
