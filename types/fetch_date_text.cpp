/// Dates and times that are fetched as text.
#include "types/fetch_rules.h"
#include "types/ocitimestamp/date_text.h"
#include "zevoci/string_value.h"

namespace {

using zev::isNullField;
using zev::kFieldBinary;
using zev::kFieldText;

constexpr sword kNoRoom = -1;

bool isTimestamp(sb4 valueLength) {
  return valueLength >= static_cast<sb4>(sizeof(Timestamp));
}

/// A binary field as text without a terminator.
sword printBinary(OCIError *errhp, const void *value, sb4 valueLength, char *target,
                  ub4 *length) {
  if (!isTimestamp(valueLength)) return -1;
  return ConvertTimestampToChars(errhp, target, length,
                                 zev::readNetwork<Timestamp>(value));
}

std::string_view fieldWords(const void *value, sb4 valueLength) {
  const auto *text = static_cast<const char *>(value);
  return {text, strnlen(text, static_cast<std::size_t>(valueLength))};
}

/// Records 1406 and tells how many bytes are missing.
void tellCut(OCIError *errhp, sb2 *indicator, std::size_t missing) {
  AddErrorRecord(errhp, OCI_ERROR, 1406);
  zev::reportMissing(indicator, missing);
}

/// Text without a terminator. A target that is too short is filled and keeps its length.
sword fetchPlain(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (isNullField(value, valueLength, format))
    return zev::deliverNull(errhp, indicator, returnCode);
  auto *out = static_cast<char *>(target);
  if (format == kFieldBinary)
    return printBinary(errhp, value, valueLength, out, targetLength);
  if (format != kFieldText || !out) return -1;
  const std::string_view text = fieldWords(value, valueLength);
  const ub4 cap = *targetLength;
  if (text.size() > cap) {
    tellCut(errhp, indicator, text.size() - cap);
    zev::copyBytes(out, text.data(), cap);
    return 1;
  }
  zev::copyBytes(out, text.data(), text.size());
  *targetLength = static_cast<ub4>(text.size());
  return 0;
}

/// Text with a terminator. A binary field's length counts one byte more, behind which its
/// terminator stands.
sword fetchTerminated(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (isNullField(value, valueLength, kFieldText))
    return zev::deliverNull(errhp, indicator, nullptr);
  auto *out = static_cast<char *>(target);
  if (!out) return -1;
  const ub4 cap = *targetLength;
  if (format == kFieldBinary) {
    if (printBinary(errhp, value, valueLength, out, targetLength) != 0) return -1;
    ++*targetLength;
    if (*targetLength < cap) out[*targetLength] = '\0';
    return 0;
  }
  if (format != kFieldText) return -1;
  const std::string_view text = fieldWords(value, valueLength);
  if (text.size() + 1 > cap) {
    tellCut(errhp, indicator, text.size() + 1 - cap);
    if (cap == 0) return 0;
    zev::copyBytes(out, text.data(), cap - 1);
    out[cap - 1] = '\0';
    return 0;
  }
  zev::copyBytes(out, text.data(), text.size());
  out[text.size()] = '\0';
  *targetLength = static_cast<ub4>(text.size());
  return 0;
}

/// The longest field that a member takes.
template <sb4 Longest, FromServerConverter Fetch>
sword fetchUpTo(FETCH_PARAMS) {
  return valueLength > Longest ? -1 : Fetch(FETCH_ARGUMENTS);
}

}  // namespace

extern "C" {

sword ConvertDATEOIDToSQLT_CHR(FETCH_PARAMS) {
  return fetchUpTo<4000, fetchPlain>(FETCH_ARGUMENTS);
}
sword ConvertDATEOIDToSQLT_LNG(FETCH_PARAMS) {
  return fetchPlain(FETCH_ARGUMENTS);
}
sword ConvertDATEOIDToSQLT_AFC(FETCH_PARAMS) {
  return fetchUpTo<2000, fetchPlain>(FETCH_ARGUMENTS);
}
sword ConvertDATEOIDToSQLT_STR(FETCH_PARAMS) {
  return fetchTerminated(FETCH_ARGUMENTS);
}
sword ConvertDATEOIDToSQLT_AVC(FETCH_PARAMS) {
  return fetchUpTo<2000, fetchTerminated>(FETCH_ARGUMENTS);
}

sword ConvertDATEOIDToSQLT_VCS(FETCH_PARAMS) {
  constexpr ub4 kPrefix = sizeof(ub2);
  constexpr sb4 kLongest = 65533;
  zev::clearIndicator(indicator);
  if (valueLength > kLongest || !target || *targetLength < kPrefix) return kNoRoom;
  if (isNullField(value, valueLength, format))
    return zev::deliverNull(errhp, indicator, returnCode);
  const ub4 cap = *targetLength;
  auto *out = static_cast<char *>(target);
  ub4 kept = cap - kPrefix;
  sword status = 0;
  if (format == kFieldBinary) {
    if (printBinary(errhp, value, valueLength, out + kPrefix, &kept) != 0) return -1;
  } else if (format == kFieldText) {
    const std::string_view text = fieldWords(value, valueLength);
    if (text.size() > cap) {
      tellCut(errhp, indicator, text.size() - cap);
      status = 1;
    } else if (text.size() > kept) {
      status = -1;
    }
    kept = std::min(kept, static_cast<ub4>(text.size()));
    zev::copyBytes(out + kPrefix, text.data(), kept);
  } else {
    return -1;
  }
  zev::writeNative(out, static_cast<ub2>(kept));
  *targetLength = kept + kPrefix;
  return status;
}

sword ConvertDATEOIDToSQLT_LVC(FETCH_PARAMS) {
  constexpr ub4 kPrefix = sizeof(ub4);
  constexpr ub4 kLongest = 0x8ffffffc;
  if (*targetLength <= 3 || static_cast<ub4>(valueLength) >= kLongest || !target)
    return -1;
  auto *out = static_cast<char *>(target);
  if (isNullField(value, valueLength, format))
    return ConvertDATEOIDToSQLT_LNG(FETCH_ARGUMENTS);
  ub4 length = *targetLength - kPrefix;
  const sword status = ConvertDATEOIDToSQLT_LNG(
      errhp, value, valueLength, format, out + kPrefix, &length, indicator, returnCode);
  if (status < 0) return status;
  zev::writeNative(out, length);
  *targetLength = length + kPrefix;
  return status;
}

sword ConvertDATEOIDToSQLT_VST(FETCH_PARAMS) {
  if (!target || *targetLength < sizeof(ub4)) return -1;
  auto *string = zev::readNative<OCIString *>(target);
  if (!string) return -1;
  if (isNullField(value, valueLength, kFieldText))
    return ConvertDATEOIDToSQLT_STR(FETCH_ARGUMENTS);
  ub4 length = string->allocatedSize;
  const sword status = ConvertDATEOIDToSQLT_STR(
      errhp, value, valueLength, format, string->text, &length, indicator, returnCode);
  if (status >= 0) string->length = length == 0 ? 0 : length - 1;
  return status;
}

}  // extern "C"
