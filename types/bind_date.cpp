/// Dates, times and intervals that are bound: all go to the server as text.
#include "types/bind_rules.h"
#include "types/ocitimestamp/datetime_bytes.h"
#include "types/ocitimestamp/encode_datetime.h"

namespace {

using zev::clearOutputs;

/// Sends text of a length that has its terminator behind it.
sword sendText(const char *text, std::size_t length, void **outBuffer, ub4 *outLength) {
  const auto size = static_cast<sb4>(length + 1);
  if (AllocBufferAndCopy(outBuffer, size, text) != 0) return -1;
  *outLength = static_cast<ub4>(size);
  return 0;
}

/// Sends a record with the zone of `tz`, if any.
sword sendDateTime(PGtm &tm, double fsec, void **outBuffer, ub4 *outLength,
                   const sb4 *tz = nullptr) {
  char text[zev::kLongestDateTime];
  zev::TextWriter writer(text);
  zev::writeDateTime(writer, &tm, tz, nullptr, zev::kIsoDates, fsec);
  return sendText(text, writer.length(), outBuffer, outLength);
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
  return sendDateTime(tm, count, outBuffer, outLength, &descriptor->body->tzSeconds);
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
  const sb4 length = EncodeInterval(&tm, zev::kVerboseIntervals, text, 0.0);
  return sendText(text, static_cast<std::size_t>(length), outBuffer, outLength);
}

}  // extern "C"
