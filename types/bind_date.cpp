/// Dates, times and intervals that are bound: all go to the server as text.
#include "types/bind_rules.h"
#include "types/ocitimestamp/datetime_bytes.h"
#include "types/ocitimestamp/encode_datetime.h"

namespace {

using zev::clearOutputs;

sword sendText(const char *text, void **outBuffer, ub4 *outLength) {
  const auto size = static_cast<sb4>(std::strlen(text) + 1);
  if (AllocBufferAndCopy(outBuffer, size, text) != 0) return -1;
  *outLength = static_cast<ub4>(size);
  return 0;
}

/// Sends a record without a zone.
sword sendDateTime(PGtm tm, double fsec, void **outBuffer, ub4 *outLength) {
  char text[zev::kLongestDateTime];
  if (EncodeDateTime(&tm, nullptr, nullptr, zev::kIsoDates, text, fsec) != 1) return -1;
  return sendText(text, outBuffer, outLength);
}

/// The descriptor whose address the program bound.
template <class Descriptor>
Descriptor *boundDescriptor(const void *value) {
  return value ? zev::readNative<Descriptor *>(value) : nullptr;
}

enum Time { kDateAlone = 0, kWithTime = 1 };

/// The form of SQLT_DAT and OCIDate.
template <auto Decode, class Form, sb4 Size, Time WithTime>
sword bindDate(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  PGtm tm{};
  if (valueLength < Size || Decode(static_cast<const Form *>(value), &tm, WithTime) != 0)
    return -1;
  return sendDateTime(tm, 0, outBuffer, outLength);
}

}  // namespace

extern "C" {

sword ConvertSQLT_DATToDATEOID(BIND_PARAMS) {
  return bindDate<DecodeOracleDATE, ub1, 7, kDateAlone>(BIND_ARGUMENTS);
}
sword ConvertSQLT_DATToTIMESTAMPOID(BIND_PARAMS) {
  return bindDate<DecodeOracleDATE, ub1, 7, kWithTime>(BIND_ARGUMENTS);
}
sword ConvertSQLT_ODTToTIMESTAMPOID(BIND_PARAMS) {
  return bindDate<DecodeOracleOCIDate, OCIDate, 8, kWithTime>(BIND_ARGUMENTS);
}

sword ConvertSQLT_DATEToTIMESTAMPOID(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  const OCIDateTime *descriptor = zev::asDateTime(boundDescriptor<OCIDateTime>(value));
  if (!descriptor) return -1;
  PGtm tm{};
  DecodeOracleOCIDate(&descriptor->body->date, &tm, kDateAlone);
  return sendDateTime(tm, 0, outBuffer, outLength);
}

sword ConvertSQLT_TIMESTAMPToTIMESTAMPOID(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  PGtm tm{};
  double count = 0;
  if (DecodeOracleOCIDateTime(boundDescriptor<OCIDateTime>(value), &tm, &count, 1) != 0)
    return -1;
  return sendDateTime(tm, count, outBuffer, outLength);
}

sword ConvertSQLT_TIMESTAMP_TZToTIMESTAMPTZOID(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  const auto *descriptor = boundDescriptor<OCIDateTime>(value);
  PGtm tm{};
  double count = 0;
  if (DecodeOracleOCIDateTime(descriptor, &tm, &count, 1) != 0) return -1;
  char text[zev::kLongestDateTime];
  if (EncodeDateTime(&tm, &descriptor->body->tzSeconds, nullptr, zev::kIsoDates, text,
                     count) != 1)
    return -1;
  return sendText(text, outBuffer, outLength);
}

sword ConvertSQLT_INTERVAL_DSToINTERVALOID(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, zev::kTextFormat);
  if (valueLength < 7) return -1;
  const OCIInterval *descriptor = zev::asInterval(boundDescriptor<OCIInterval>(value));
  if (!descriptor) return -1;
  PGtm tm{};
  double fsec = 0;
  interval2tm(descriptor->body->interval, &tm, &fsec);
  char text[zev::kLongestDateTime];
  EncodeInterval(&tm, zev::kVerboseIntervals, text, 0.0);
  return sendText(text, outBuffer, outLength);
}

}  // extern "C"
