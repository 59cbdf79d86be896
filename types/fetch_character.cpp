/// Character data that are fetched into numbers.
#include "types/fetch_rules.h"
#include "types/number.h"
#include "types/number_text.h"

namespace zev {
namespace {

Stored storeSigned(void *target, ub4 cap, long value) {
  return storeInteger<2>(target, cap, value);
}

/// No unsigned target has eight bytes.
Stored storeUnsigned(void *target, ub4 cap, long value) {
  if (cap == sizeof(ub8)) return Stored::NoSuchWidth;
  return storeInteger<4, Sign::Unsigned>(target, cap, value);
}

/// The body of SQLT_INT and SQLT_UIN. The text starts with a digit, and what follows the
/// digits is not looked at; both refuse what a signed integer of four bytes cannot hold.
template <Stored Store(void *target, ub4 cap, long value)>
sword fetchInteger(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format > kFieldBinary) return -1;
  const auto *s = static_cast<const char *>(value);
  if (!isDigit(*s)) return fail(errhp, 1722);
  const CleanErrno clean;
  const auto parsed = parseLong(s);
  if (parsed.outOfRange || parsed.value >= SB4MAXVAL) return fail(errhp, 1426);
  switch (Store(target, *targetLength, parsed.value)) {
    case Stored::Whole:
      return 0;
    case Stored::Cut:
      return record(errhp, 1426, 1);
    case Stored::NoSuchWidth:
      break;
  }
  return fail(errhp, 1460);
}

/// Stores a number that was read from a text; a float that differs from it is reported.
sword storeFromText(OCIError *errhp, double value, void *target, ub4 *targetLength) {
  if (*targetLength == sizeof(double)) {
    writeNative(target, value);
    return 0;
  }
  if (*targetLength != sizeof(float)) return fail(errhp, 1460);
  const auto narrow = static_cast<float>(value);
  writeNative(target, narrow);
  return static_cast<double>(narrow) == value ? 0 : record(errhp, 1426, 1);
}

}  // namespace
}  // namespace zev

extern "C" {

sword ConvertTEXTOIDToSQLT_INT(FETCH_PARAMS) {
  return zev::fetchInteger<zev::storeSigned>(FETCH_ARGUMENTS);
}

sword ConvertTEXTOIDToSQLT_UIN(FETCH_PARAMS) {
  return zev::fetchInteger<zev::storeUnsigned>(FETCH_ARGUMENTS);
}

sword ConvertTEXTOIDToSQLT_FLT(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  const zev::CleanErrno clean;
  const auto parsed = zev::parseDouble(static_cast<const char *>(value));
  if (*parsed.end != '\0') return zev::fail(errhp, 1722);
  if (parsed.outOfRange || zev::beyondDouble(parsed.value)) return zev::fail(errhp, 1426);
  return zev::storeFromText(errhp, parsed.value, target, targetLength);
}

sword ConvertTEXTOIDToSQLT_BFLOAT(FETCH_PARAMS) {
  return zev::fetchFixedFloat<ConvertTEXTOIDToSQLT_FLT, 4>(FETCH_ARGUMENTS);
}

sword ConvertTEXTOIDToSQLT_BDOUBLE(FETCH_PARAMS) {
  return zev::fetchFixedFloat<ConvertTEXTOIDToSQLT_FLT, 8>(FETCH_ARGUMENTS);
}

sword ConvertTEXTOIDToSQLT_NUM(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (!targetLength || *targetLength > SB4MAXVAL || !target) return -1;
  if (format > zev::kFieldBinary) return -1;
  if (*targetLength < 2) return zev::fail(errhp, 1406);
  const sword status = zev::convertStringToWholeNumber(static_cast<const char *>(value),
                                                       static_cast<ub1 *>(target));
  if (status != 0) return zev::record(errhp, 1722, status);
  *targetLength = zev::kNumberSize;
  return 0;
}

sword ConvertTEXTOIDToSQLT_VNU(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (*targetLength < 2) return zev::fail(errhp, 1459);
  const auto *s = static_cast<const char *>(value);
  if (!s || valueLength <= 0 || *s == '\0') {
    *targetLength = 0;
    return zev::deliverNull(errhp, indicator, nullptr);
  }
  if (format > zev::kFieldBinary) return -1;
  ub1 number[zev::kVarnumSize];
  const sword status = zev::convertStringToShortVarnum(s, number);
  if (status != 0) return zev::record(errhp, 1722, status);
  *targetLength = number[0] + 1u;
  std::memcpy(target, number, *targetLength);
  return 0;
}

}  // extern "C"
