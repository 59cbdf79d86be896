/// The float rows into native integers and floats.
#include <cmath>

#include "types/fetch_rules.h"
#include "types/number_text.h"

namespace zev {
namespace {

/// Toward zero; a value beyond 64 bits is the lowest integer, as the processor has it.
sb8 truncate(double x) {
  constexpr double kBeyond = 9223372036854775808.0;
  return x >= -kBeyond && x < kBeyond ? static_cast<sb8>(x)
                                      : std::numeric_limits<sb8>::min();
}

/// A binary double of which only the first four bytes are swapped.
double readHalfSwapped(const void *value) {
  char bytes[8];
  std::memcpy(bytes, value, sizeof bytes);
  Convert4BytesToNetworkOrder(bytes);
  return readNative<double>(bytes);
}

/// Stores an integer; one that does not fit a short target is recorded and delivered all
/// the same.
sword storeTruncated(OCIError *errhp, sb8 value, void *target, ub4 cap) {
  switch (storeInteger<2>(target, cap, value)) {
    case Stored::Whole:
      return 0;
    case Stored::Cut:
      return record(errhp, 22054, 0);
    case Stored::NoSuchWidth:
      break;
  }
  return -1;
}

}  // namespace
}  // namespace zev

extern "C" {

sword ConvertFLOAT8OIDToSQLT_INT(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  double number = 0;
  if (format == zev::kFieldText) {
    const auto parsed = zev::parseDouble(static_cast<const char *>(value));
    if (*parsed.end != '\0') return -1;
    number = parsed.value;
  } else {
    if (format != zev::kFieldBinary || valueLength < 8) return -1;
    number = zev::readHalfSwapped(value);
  }
  return zev::storeTruncated(errhp, zev::truncate(number), target, *targetLength);
}

sword ConvertFLOAT8OIDToSQLT_FLT(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (*targetLength < sizeof(float)) return -1;
  double number = 0;
  if (format == zev::kFieldText) {
    number = zev::parseDouble(static_cast<const char *>(value)).value;
  } else {
    if (format != zev::kFieldBinary || valueLength < 8) return -1;
    number = zev::readNetwork<double>(value);
  }
  if (*targetLength < sizeof(double)) {
    zev::writeNative(target, static_cast<float>(number));
    *targetLength = sizeof(float);
  } else {
    zev::writeNative(target, number);
    *targetLength = sizeof(double);
  }
  return 0;
}

}  // extern "C"
