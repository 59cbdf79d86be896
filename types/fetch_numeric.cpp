/// The numeric row into native integers and floats.
#include "core/owned.h"
#include "types/fetch_rules.h"
#include "types/number_text.h"
#include "types/numeric.h"

namespace zev {
namespace {

/// Rounds a binary numeric into `target`; out of range leaves the target as it was.
template <class T>
sword storeRounded(numeric *number, void *target, sword (*round)(numeric *, T *)) {
  T value;
  const sword status = round(number, &value);
  if (status == 0) writeNative(target, value);
  return status < 0 ? -1 : 0;
}

/// The width of a native integer in a target of `cap` bytes.
ub4 widthOf(ub4 cap) {
  if (cap < 2) return 1;
  if (cap < 4) return 2;
  return cap > 7 ? 8 : 4;
}

void storeText(sb8 value, void *target, ub4 width) {
  // The low bytes stand first.
  std::memcpy(target, &value, width);
}

sword storeBinary(numeric *number, void *target, ub4 width) {
  switch (width) {
    case 1:
      return storeRounded<sb1>(number, target, numericvar_to_int1);
    case 2:
      return storeRounded<sb2>(number, target, numericvar_to_int2);
    case 4:
      return storeRounded<sb4>(number, target, numericvar_to_int4);
    default:
      return storeRounded<sb8>(number, target, numericvar_to_int8);
  }
}

/// Stores a parsed number; one that a float or a double does not hold exactly is
/// recorded, and delivered with a warning.
sword storeNumber(OCIError *errhp, const Parsed<double> &number, void *target,
                  ub4 *targetLength) {
  bool exact = !number.outOfRange && !beyondDouble(number.value);
  if (*targetLength > 7) {
    writeNative(target, number.value);
    *targetLength = sizeof(double);
  } else {
    const auto narrow = static_cast<float>(number.value);
    exact = exact && static_cast<double>(narrow) == number.value;
    writeNative(target, narrow);
    *targetLength = sizeof(float);
  }
  return exact ? 0 : record(errhp, 1426, 1);
}

sword storeNumberText(OCIError *errhp, const char *s, void *target, ub4 *targetLength) {
  const CleanErrno clean;
  const auto number = parseDouble(s);
  if (*number.end != '\0') return -1;
  return storeNumber(errhp, number, target, targetLength);
}

}  // namespace
}  // namespace zev

extern "C" {

sword ConvertNUMERICOIDToSQLT_INT(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNullWithoutLength(errhp, targetLength, indicator, returnCode);
  }
  if (*targetLength < 1) return -1;
  const ub4 width = zev::widthOf(*targetLength);
  if (format == zev::kFieldText) {
    zev::storeText(atoi64(static_cast<const char *>(value)), target, width);
    *targetLength = width;
    return 0;
  }
  if (format != zev::kFieldBinary) return -1;
  const zev::Malloced<numeric> number(zev::copyNumericField(value, valueLength));
  const sword status = number ? zev::storeBinary(number.get(), target, width) : -1;
  // A one-byte result reports two bytes.
  *targetLength = status < 0 ? 0 : (width == 1 ? 2 : width);
  return status;
}

sword ConvertNUMERICOIDToSQLT_FLT(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNullWithoutLength(errhp, targetLength, indicator, returnCode);
  }
  if (*targetLength < sizeof(float)) return -1;
  if (format == zev::kFieldText) {
    return zev::storeNumberText(errhp, static_cast<const char *>(value), target,
                                targetLength);
  }
  if (format != zev::kFieldBinary) return -1;
  const zev::Malloced<numeric> number(zev::copyNumericField(value, valueLength));
  char *printed = nullptr;
  if (!number || ConvertNumericToString(number.get(), &printed, number->dscale) != 0)
    return -1;
  const zev::Malloced<> owned(printed);
  return zev::storeNumberText(errhp, printed, target, targetLength);
}

sword ConvertNUMERICOIDToSQLT_UIN(FETCH_PARAMS) {
  return ConvertNUMERICOIDToSQLT_INT(FETCH_ARGUMENTS);
}
sword ConvertNUMERICOIDToSQLT_BFLOAT(FETCH_PARAMS) {
  return zev::fetchFixedFloat<ConvertNUMERICOIDToSQLT_FLT, 4>(FETCH_ARGUMENTS);
}
sword ConvertNUMERICOIDToSQLT_BDOUBLE(FETCH_PARAMS) {
  return zev::fetchFixedFloat<ConvertNUMERICOIDToSQLT_FLT, 8>(FETCH_ARGUMENTS);
}

}  // extern "C"
