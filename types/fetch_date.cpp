/// Dates, times and intervals that are fetched into SQLT_DAT, OCIDate and descriptors.
#include <optional>
#include <string>

#include "types/fetch_rules.h"
#include "types/ocitimestamp/datetime_bytes.h"
#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/iso_text.h"

namespace {

using zev::isNullField;
using zev::kFieldBinary;
using zev::kFieldText;

using Moment = zev::IsoMoment;

/// Outcomes of reading a field.
enum class Read { Whole, NotSplit, NotDecoded };

/// The fields of a text.
struct Fields {
  char work[zev::kWorkSize];
  char *fields[zev::kMostFields];
  sb4 types[zev::kMostFields];
  sb4 count = 0;

  sb4 split(const std::string &text) {
    return ParseDateTime(text.c_str(), work, sizeof work, fields, types, zev::kMostFields,
                         &count);
  }
};

/// The text of a field, which ends at its length or a NUL.
std::string textOf(const void *value, sb4 valueLength) {
  const auto *text = static_cast<const char *>(value);
  return {text, strnlen(text, static_cast<std::size_t>(valueLength))};
}

/// Words such as "infinity" are no date that any of these forms can hold.
Read readAnyText(OCIError *errhp, const void *value, sb4 valueLength, Moment &moment) {
  Fields split;
  if (split.split(textOf(value, valueLength)) != 0) return Read::NotSplit;
  sb4 dtype = 0, tz = 0;
  if (DecodeDateTime(errhp, split.fields, split.types, split.count, &dtype, &moment.tm,
                     &moment.fsec, &tz, 0) != 0)
    return Read::NotDecoded;
  if (dtype == zev::kPlainDate) return Read::Whole;
  AddErrorRecord(errhp, OCI_ERROR, 1891);
  return Read::NotDecoded;
}

/// Whether a form shows the zone, which is the local one where the text names none.
enum class Zone { Ignored, Shown };

Read readText(OCIError *errhp, const void *value, sb4 valueLength, Zone zone,
              Moment &moment) {
  if (valueLength > 0 &&
      zev::readIsoText(static_cast<const char *>(value),
                       static_cast<std::size_t>(valueLength), moment) &&
      (moment.hasZone || zone == Zone::Ignored))
    return Read::Whole;
  moment = {};
  return readAnyText(errhp, value, valueLength, moment);
}

Read readBinary(const void *value, sb4 valueLength, Moment &moment) {
  if (valueLength < static_cast<sb4>(sizeof(Timestamp))) return Read::NotDecoded;
  const auto timestamp = zev::readNetwork<Timestamp>(value);
  return timestamp2tm(timestamp, nullptr, &moment.tm, &moment.fsec, nullptr, nullptr) == 0
             ? Read::Whole
             : Read::NotDecoded;
}

/// What a field in binary format is taken for.
enum class Binary { Timestamp, Text };

/// Which failures of reading are successes without a value.
enum class BadText { Fails, LeavesTheTarget };

/// How a value goes into a target of fixed size.
struct ByteRule {
  ub4 size;
  Binary binary;
  BadText badText;
  bool storesLength;
};

/// Reads a field that is no null.
Read readField(OCIError *errhp, const void *value, sb4 valueLength, ub1 format,
               Binary binary, Zone zone, Moment &moment) {
  if (format == kFieldBinary && binary == Binary::Timestamp)
    return readBinary(value, valueLength, moment);
  return readText(errhp, value, valueLength, zone, moment);
}

bool isKnownFormat(ub1 format) {
  return format == kFieldText || format == kFieldBinary;
}

/// SQLT_DAT and OCIDate.
template <ByteRule Rule, class Encode>
sword fetchBytes(FETCH_PARAMS, const Encode &encode) {
  zev::clearIndicator(indicator);
  if (!target || !targetLength || *targetLength < Rule.size) return -1;
  if (isNullField(value, valueLength, format))
    return zev::deliverNull(errhp, indicator, returnCode);
  if (!isKnownFormat(format)) return -1;
  Moment moment;
  if (readField(errhp, value, valueLength, format, Rule.binary, Zone::Ignored, moment) !=
      Read::Whole)
    return Rule.badText == BadText::LeavesTheTarget ? 0 : -1;
  if (Rule.storesLength && format == kFieldText) *targetLength = Rule.size;
  return encode(moment.tm);
}

sword encodeDate(void *target, const PGtm &tm, sb4 withTime) {
  return EncodeOracleDATE(static_cast<ub1 *>(target), &tm, withTime);
}

sword encodeOciDate(void *target, const PGtm &tm) {
  OCIDate date{};
  EncodeOracleOCIDate(&date, &tm, 1);
  std::memcpy(target, &date, sizeof date);
  return 0;
}

/// How a value goes into a descriptor.
struct DescriptorRule {
  Binary binary;
  enum Parts { DateAlone, WithoutZone, WithZone } parts;
  bool recordsUnreadable = false;  ///< text that cannot be split is record 1843
  bool binaryLeavesNoLength = false;
  bool emptyIsNullInBinary = false;
};

constexpr ub4 kDescriptorLength = 40;

sword encodeDescriptor(const DescriptorRule &rule, OCIDateTimeBody &body,
                       const Moment &moment) {
  if (rule.parts == DescriptorRule::DateAlone)
    return EncodeOracleOCIDate(&body.date, &moment.tm, 0);
  return EncodeOracleOCIDateTime(&body, &moment.tm,
                                 rule.parts == DescriptorRule::WithZone, moment.fsec);
}

bool isNull(const DescriptorRule &rule, const void *value, sb4 valueLength, ub1 format) {
  return isNullField(value, valueLength,
                     rule.emptyIsNullInBinary ? ub1{kFieldText} : format);
}

template <DescriptorRule Rule>
sword fetchDescriptor(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (isNull(Rule, value, valueLength, format))
    return zev::deliverNull(errhp, indicator, returnCode);
  if (!isKnownFormat(format) || !target || !targetLength) return -1;
  OCIDateTime *descriptor = zev::asDateTime(zev::readNative<OCIDateTime *>(target));
  if (!descriptor) return -1;
  Moment moment;
  constexpr Zone kZone =
      Rule.parts == DescriptorRule::WithZone ? Zone::Shown : Zone::Ignored;
  const Read read =
      readField(errhp, value, valueLength, format, Rule.binary, kZone, moment);
  if (read == Read::NotSplit && Rule.recordsUnreadable)
    AddErrorRecord(errhp, OCI_ERROR, 1843);
  if (read != Read::Whole) return -1;
  const bool showsLength = format == kFieldText || !Rule.binaryLeavesNoLength;
  *targetLength = showsLength ? kDescriptorLength : 0;
  const sword status = encodeDescriptor(Rule, *descriptor->body, moment);
  if (status != 0) *targetLength = 0;
  return status;
}

}  // namespace

extern "C" {

sword ConvertTIMESTAMPOIDToSQLT_DAT(FETCH_PARAMS) {
  constexpr ByteRule kRule{7, Binary::Timestamp, BadText::Fails, true};
  return fetchBytes<kRule>(
      FETCH_ARGUMENTS, [target](const PGtm &tm) { return encodeDate(target, tm, 1); });
}
sword ConvertTEXTOIDToSQLT_DAT(FETCH_PARAMS) {
  constexpr ByteRule kRule{7, Binary::Text, BadText::Fails, false};
  return fetchBytes<kRule>(
      FETCH_ARGUMENTS, [target](const PGtm &tm) { return encodeDate(target, tm, 0); });
}
sword ConvertTIMESTAMPOIDToSQLT_ODT(FETCH_PARAMS) {
  constexpr ByteRule kRule{8, Binary::Timestamp, BadText::LeavesTheTarget, true};
  return fetchBytes<kRule>(
      FETCH_ARGUMENTS, [target](const PGtm &tm) { return encodeOciDate(target, tm); });
}
sword ConvertTEXTOIDToSQLT_ODT(FETCH_PARAMS) {
  constexpr ByteRule kRule{8, Binary::Text, BadText::LeavesTheTarget, false};
  return fetchBytes<kRule>(
      FETCH_ARGUMENTS, [target](const PGtm &tm) { return encodeOciDate(target, tm); });
}

// clang-format off
#define DESCRIPTOR_MEMBERS(X)                                                                          \
  X(ConvertTIMESTAMPOIDToSQLT_DATE,           Binary::Text, DescriptorRule::DateAlone,   .emptyIsNullInBinary = true)  \
  X(ConvertTIMESTAMPOIDToSQLT_TIMESTAMP,      Binary::Text, DescriptorRule::WithoutZone)                               \
  X(ConvertTIMESTAMPOIDToSQLT_TIMESTAMP_TZ,   Binary::Timestamp,   DescriptorRule::WithoutZone, .binaryLeavesNoLength = true) \
  X(ConvertTIMESTAMPTZOIDToSQLT_TIMESTAMP_TZ, Binary::Text, DescriptorRule::WithZone)                                  \
  X(ConvertTEXTOIDToSQLT_DATE,                Binary::Text, DescriptorRule::DateAlone)                                 \
  X(ConvertTEXTOIDToSQLT_TIMESTAMP,           Binary::Text, DescriptorRule::WithoutZone, .recordsUnreadable = true)    \
  X(ConvertTEXTOIDToSQLT_TIMESTAMP_TZ,        Binary::Text, DescriptorRule::WithZone)
// clang-format on
#define MEMBER(name, Format, Parts, ...)                                       \
  sword name(FETCH_PARAMS) {                                                   \
    constexpr DescriptorRule kRule{.binary = Format,                           \
                                   .parts = Parts __VA_OPT__(, ) __VA_ARGS__}; \
    return fetchDescriptor<kRule>(FETCH_ARGUMENTS);                            \
  }
DESCRIPTOR_MEMBERS(MEMBER)
#undef MEMBER
#undef DESCRIPTOR_MEMBERS

sword ConvertINTERVALOIDToSQLT_INTERVAL_DS(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (isNullField(value, valueLength, format))
    return zev::deliverNull(errhp, indicator, returnCode);
  if (!isKnownFormat(format) || !target || !targetLength) return -1;
  OCIInterval *descriptor = zev::asInterval(zev::readNative<OCIInterval *>(target));
  if (!descriptor) return -1;
  const std::string text = textOf(value, valueLength);
  Fields split;
  PGtm tm{};
  double fsec = 0;
  sb4 dtype = 0;
  sb4 status = split.split(text);
  if (status == 0) {
    status = DecodeInterval(errhp, split.fields, split.types, split.count,
                            zev::kWholeRange, &dtype, &tm, &fsec);
  }
  if (status == zev::kBadFormat)
    status = DecodeISO8601Interval(text.c_str(), &dtype, &tm, &fsec);
  if (status != 0) return -1;
  *targetLength = kDescriptorLength;
  Interval &interval = descriptor->body->interval;
  tm2interval(&tm, fsec, &interval);
  interval_justify_hours(descriptor, interval.time, interval.day, interval.month);
  return 0;
}

}  // extern "C"
