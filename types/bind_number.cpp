/// Integers and floats on their way to the server, in its binary form.
#include <charconv>

#include "types/bind_rules.h"
#include "types/number.h"

namespace zev {
namespace {

/// A native integer of `size` bytes, sign-extended; 0 for sizes that no integer has.
sb8 readInteger(const void *value, sb4 size) {
  switch (size) {
    case 1:
      return readNative<sb1>(value);
    case 2:
      return readNative<sb2>(value);
    case 4:
      return readNative<sb4>(value);
    case 8:
      return readNative<sb8>(value);
    default:
      return 0;
  }
}

/// Sends the low bytes of an integer as a `Wire`.
template <class Wire, sword WhenOutOfMemory>
sword bindInteger(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, kBinaryFormat);
  if (valueLength < 1 || !value) return 0;
  const Wire wire = swapBytes(static_cast<Wire>(readInteger(value, valueLength)));
  if (AllocBufferAndCopy(outBuffer, sizeof wire, &wire) != 0) {
    *outFormat = kTextFormat;
    return WhenOutOfMemory;
  }
  *outLength = sizeof wire;
  return 0;
}

/// Hands out a record, which the caller has made, in its wire form.
void sendRecord(numeric *record, void **outBuffer, ub4 *outLength) {
  *outLength = static_cast<ub4>(numericSize(record->ndigits));
  ConvertNumericFromHostToNetOrder(record);
  *outBuffer = record;
}

/// An Oracle number by `Convert`, from a buffer that holds it.
template <auto Convert>
sword bindNumber(const void *value, void **outBuffer, ub4 *outLength) {
  numeric *record = nullptr;
  const sword status = Convert(static_cast<const ub1 *>(value), &record);
  if (status == 0) sendRecord(record, outBuffer, outLength);
  return status;
}

template <class Float>
sword sendFloat(Float number, void **outBuffer, ub4 *outLength) {
  const Float wire = swapBytes(number);
  const sword status = AllocBufferAndCopy(outBuffer, sizeof wire, &wire);
  *outLength = sizeof wire;
  return status;
}

}  // namespace
}  // namespace zev

extern "C" {

// Without memory an INT2OID goes as NULL; the others fail.
#define INTEGER_MEMBERS(X)             \
  X(ConvertSQLT_INTToCHAROID, sb1, -1) \
  X(ConvertSQLT_INTToINT2OID, sb2, 0)  \
  X(ConvertSQLT_INTToINT4OID, sb4, -1) \
  X(ConvertSQLT_INTToINT8OID, sb8, -1)
#define DEFINE(name, Wire, whenOutOfMemory)                         \
  sword name(BIND_PARAMS) {                                         \
    return zev::bindInteger<Wire, whenOutOfMemory>(BIND_ARGUMENTS); \
  }
INTEGER_MEMBERS(DEFINE)
#undef DEFINE
#undef INTEGER_MEMBERS

sword ConvertSQLT_INTToNUMERICOID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kBinaryFormat);
  if (valueLength < 1 || !value) return 0;
  // Only 32 bits reach a numeric parameter, whatever the size of the integer.
  const auto integer = static_cast<sb4>(zev::readInteger(value, valueLength));
  char digits[16] = {};
  std::to_chars(digits, digits + sizeof digits - 1, integer);
  numeric *record = nullptr;
  const sword status = ConvertStringToNumeric(digits, &record);
  if (status != 0) return status;
  zev::sendRecord(record, outBuffer, outLength);
  return 0;
}

sword ConvertSQLT_NUMToNUMERICOID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kBinaryFormat);
  // No length is stored, so that only a full buffer is known to hold the number.
  if (!value || valueLength < static_cast<sb4>(zev::kNumberSize)) return -1;
  return zev::bindNumber<ConvertNUMBERToNumeric>(value, outBuffer, outLength);
}

sword ConvertSQLT_VNUToNUMERICOID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kBinaryFormat);
  if (!value || valueLength > static_cast<sb4>(zev::kVarnumSize)) return -1;
  return zev::bindNumber<ConvertVARNUMBERToNumeric>(value, outBuffer, outLength);
}

sword ConvertSQLT_FLTToFLOAT4OID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kBinaryFormat);
  if (valueLength < 4 || !value) return -1;
  return zev::sendFloat(zev::readNative<float>(value), outBuffer, outLength);
}

sword ConvertSQLT_FLTToFLOAT8OID(BIND_PARAMS) {
  zev::clearOutputs(outBuffer, outLength, outFormat, zev::kBinaryFormat);
  if (!value || (valueLength != 4 && valueLength != 8)) return -1;
  const double number = valueLength == 4
                            ? static_cast<double>(zev::readNative<float>(value))
                            : zev::readNative<double>(value);
  return zev::sendFloat(number, outBuffer, outLength);
}

}  // extern "C"
