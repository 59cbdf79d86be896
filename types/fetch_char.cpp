/// The row of a single character: into characters, numbers and floats. Its integers stand
/// with the other integers.
#include "types/fetch_rules.h"
#include "types/number.h"
#include "zevoci/string_value.h"

namespace zev {
namespace {

/// Stores the character and fills the target up with blanks, whatever the format.
template <Clear Indicator>
sword fetchPadded(FETCH_PARAMS) {
  if (Indicator == Clear::Yes) clearIndicator(indicator);
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (*targetLength != 0) {
    std::memset(target, ' ', *targetLength);
    std::memcpy(target, value, 1);
  }
  *targetLength = 1;
  return 0;
}

/// Stores the character behind a native length.
template <class Prefix>
sword fetchCounted(FETCH_PARAMS) {
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format > kFieldBinary) return -1;
  writeNative(target, Prefix{1});
  std::memcpy(static_cast<char *>(target) + sizeof(Prefix), value, 1);
  return 0;
}

/// The body of NUM and VNU: a binary field is a text of one character. The length told
/// is that of the longest NUMBER in both, to a caller who asks for it.
template <ub4 MinCap, auto Convert>
sword fetchNumber(FETCH_PARAMS) {
  if (targetLength && *targetLength < MinCap) return -1;
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format > kFieldBinary) return -1;
  const char one[] = {*static_cast<const char *>(value), '\0'};
  const auto *s = format == kFieldBinary ? one : static_cast<const char *>(value);
  if (Convert(s, static_cast<ub1 *>(target)) != 0) return -1;
  if (targetLength) *targetLength = kNumberSize;
  return 0;
}

sword storeInString(OCIError *errhp, char character, OCIString &string, sb2 *indicator) {
  if (string.allocatedSize >= 2) {
    string.text[0] = static_cast<OraText>(character);
    string.text[1] = '\0';
    string.length = 1;
    return 0;
  }
  if (indicator) *indicator = static_cast<sb2>(2 - string.allocatedSize);
  if (string.allocatedSize > 0) string.text[0] = '\0';
  string.length = 0;
  return record(errhp, 1406, 1);
}

}  // namespace
}  // namespace zev

extern "C" {

#define PADDED_MEMBERS(X)          \
  X(ConvertCHAROIDToSQLT_CHR, No)  \
  X(ConvertCHAROIDToSQLT_AFC, Yes) \
  X(ConvertCHAROIDToSQLT_LNG, Yes)
#define DEFINE(name, clear)                                      \
  sword name(FETCH_PARAMS) {                                     \
    return zev::fetchPadded<zev::Clear::clear>(FETCH_ARGUMENTS); \
  }
PADDED_MEMBERS(DEFINE)
#undef DEFINE
#undef PADDED_MEMBERS

sword ConvertCHAROIDToSQLT_AVC(FETCH_PARAMS) {
  const ub4 cap = *targetLength;
  const bool null = zev::isNullField(value, valueLength, format);
  // The last byte is kept for the NUL, unless it is the only one.
  if (cap > 1 || (cap == 1 && null)) *targetLength = cap - 1;
  const sword status = zev::fetchPadded<zev::Clear::Yes>(FETCH_ARGUMENTS);
  if (!null && cap > 1) static_cast<char *>(target)[*targetLength] = '\0';
  return status;
}

sword ConvertCHAROIDToSQLT_STR(FETCH_PARAMS) {
  if (*targetLength < 2) return -1;
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  const char text[] = {*static_cast<const char *>(value), '\0'};
  std::memcpy(target, text, sizeof text);
  *targetLength = 1;
  return 0;
}

sword ConvertCHAROIDToSQLT_VCS(FETCH_PARAMS) {
  return zev::fetchCounted<ub2>(FETCH_ARGUMENTS);
}
sword ConvertCHAROIDToSQLT_LVC(FETCH_PARAMS) {
  return zev::fetchCounted<ub4>(FETCH_ARGUMENTS);
}

sword ConvertCHAROIDToSQLT_NUM(FETCH_PARAMS) {
  return zev::fetchNumber<zev::kNumberSize, zev::convertStringToWholeNumber>(
      FETCH_ARGUMENTS);
}
sword ConvertCHAROIDToSQLT_VNU(FETCH_PARAMS) {
  return zev::fetchNumber<4, ConvertStringToVARNUM>(FETCH_ARGUMENTS);
}

sword ConvertCHAROIDToSQLT_VST(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (*targetLength < 4) return -1;
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  return zev::storeInString(errhp, *static_cast<const char *>(value),
                            *zev::readNative<OCIString *>(target), indicator);
}

// The float is the character's code, not the digit's value.
sword ConvertCHAROIDToSQLT_FLT(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  sb1 code = 0;
  ub4 one = 1;
  const sword status = ConvertCHAROIDToSQLT_CHR(errhp, value, valueLength, format, &code,
                                                &one, indicator, returnCode);
  if (status != 0) return zev::record(errhp, 1722, status);
  if (zev::isNullField(value, valueLength, format)) return 0;
  if (*targetLength == sizeof(float)) zev::writeNative(target, static_cast<float>(code));
  if (*targetLength == sizeof(double)) {
    zev::writeNative(target, static_cast<double>(code));
  }
  return 0;
}

}  // extern "C"
