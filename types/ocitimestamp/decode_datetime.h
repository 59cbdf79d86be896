/// Dates, times and intervals from text: split into typed fields, then decoded.
#pragma once

#include <span>

#include "types/ocitimestamp/calendar.h"
#include "types/ocitimestamp/datetime_tokens.h"

namespace zev {

/// Kinds of fields.
enum FieldType : sb4 {
  kNumberField = 0,
  kStringField = 1,
  kDateField = 2,
  kTimeField = 3,
  kZoneField = 4,
  kSpecialField = 6,
};

/// What a text was; other numbers are values of reserved words.
enum DateType : sb4 { kPlainDate = 2, kInterval = 17 };

/// Bits of fields that were seen.
enum FieldMask : sb4 {
  kMonthBit = 0x2,
  kYearBit = 0x4,
  kDayBit = 0x8,
  kDateBits = kMonthBit | kYearBit | kDayBit,
  kZoneBit = 0x20,
  kHourBit = 0x400,
  kMinuteBit = 0x800,
  kSecondBit = 0x1000,
  kTimeBits = kHourBit | kMinuteBit | kSecondBit,
  kMillisecondBit = 0x2000,
  kMicrosecondBit = 0x4000,
  kDayOfYearBit = 0x8000,
};

inline constexpr std::size_t kWorkSize = 88;  ///< what callers give ParseDateTime
inline constexpr sb4 kWholeRange = 32767;     ///< an interval of any fields

enum Decoded : sb4 {
  kDecoded = 0,
  kTimeAlone = 1,  ///< a time without a date
  kBadFormat = -1,
  kFieldOverflow = -2,
  kZoneOverflow = -5,
};

}  // namespace zev

extern "C" {
/// Splits text into lower-case fields with their kinds, which stand in `work`. `count`
/// gets their number. 0, or -1 for characters that fit nowhere, more than `maxFields`
/// fields, and fields that need more than `workLength` bytes with their terminators.
ZEV_HELPER sb4 ParseDateTime(const char *text, char *work, std::size_t workLength,
                             char **fields, sb4 *types, sb4 maxFields, sb4 *count);

/// Decodes the fields of a date and time. `dtype` gets 2, or the value of a reserved word
/// that is no date of its own. `tz` gets the displacement west of Greenwich, that of the
/// local zone where the text names none; without `tz` a zone is refused. 0; 1 for a time
/// without a date; -1 with a record on `errhp`: 1830 for a field that comes twice, 1839
/// for dates, 1849 for hours, 1858 for numbers, 1891 for the rest. The fields are
/// changed.
ZEV_HELPER sb4 DecodeDateTime(OCIError *errhp, char **fields, sb4 *types, sb4 count,
                              sb4 *dtype, PGtm *tm, double *fsec, sb4 *tz, sb4 flag);

/// Decode one field, given the `mask` of what was seen before; `found` gets what they
/// saw. 0 or -1. `isTwoDigits` is set where the year had two digits.
ZEV_HELPER sb4 DecodeDate(char *text, sb4 mask, sb4 *found, PGtm *tm, sb4 *isTwoDigits);
/// With `dayFirst` a number that could be day or month is a day.
ZEV_HELPER sb4 DecodeNumber(sb4 length, char *text, sb4 mask, sb4 *found, PGtm *tm,
                            double *fsec, sb4 *isTwoDigits, sb4 dayFirst);
ZEV_HELPER sb4 DecodeNumberField(sb4 length, char *text, sb4 mask, sb4 *found, PGtm *tm,
                                 double *fsec, sb4 *isTwoDigits);
/// 0; -1 for text that is no time; -2 with record 1849, 1851 or 1852 for parts out of
/// range.
ZEV_HELPER sb4 DecodeTime(OCIError *errhp, const char *text, sb4 *found, PGtm *tm,
                          double *fsec);
/// A displacement with its sign, "+05:30" or "+0530", in seconds west of Greenwich. 0, -1
/// for bad text, -5 out of range.
ZEV_HELPER sb4 DecodeTimezone(const char *text, sb4 *tz);
/// The word of a zone and a displacement from it: "pst+8". 0, -1 or -5.
ZEV_HELPER sb4 DecodePosixTimezone(char *text, sb4 *tz);

/// Decodes the fields of an interval; a number without a unit is in that of `range`, a
/// mask of fields. 0, -1 for bad text, -2 for numbers out of range.
ZEV_HELPER sb4 DecodeInterval(OCIError *errhp, char **fields, sb4 *types, sb4 count,
                              sb4 range, sb4 *dtype, PGtm *tm, double *fsec);
/// Decodes an interval of ISO 8601, "P1Y2M3DT4H5M6.5S" or "P0001-02-03T04:05:06". 0, -1
/// or -2.
ZEV_HELPER sb4 DecodeISO8601Interval(const char *text, sb4 *dtype, PGtm *tm,
                                     double *fsec);
/// Splits a number in two. 0, -1 for text that is none, -2 beyond 32 bits.
ZEV_HELPER sb4 ParseISO8601Number(const char *text, const char **end, sb4 *whole,
                                  double *fraction);

/// Text as a Timestamp. Words other than "epoch" and "-infinity" that are no dates are
/// "infinity"; a text that cannot be read is 0, with a record.
ZEV_HELPER Timestamp ConvertStringToTimestamp(OCIError *errhp, const char *text);
/// Does nothing.
ZEV_HELPER void DateTimeParseError(sb4 error, const char *text, const char *type);
}

namespace zev {

constexpr bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
constexpr bool isAlphanumeric(char c) {
  return isLetter(c) || (c >= '0' && c <= '9');
}

}  // namespace zev
