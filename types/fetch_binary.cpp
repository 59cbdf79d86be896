/// Byte strings that are fetched: into hex digits, into bytes, and character data that
/// hold the text form of bytes; and the OIDs of large objects.
#include <algorithm>

#include "types/binary_text.h"
#include "types/text_environment.h"
#include "zevoci/lob_locator.h"
#include "zevoci/string_value.h"

namespace zev {
namespace {

sb4 roomIn(ub4 cap, ub4 taken) {
  return static_cast<sb4>(std::min<ub4>(cap > taken ? cap - taken : 0, SB4MAXVAL));
}

/// Writes the count in front of a counted target; `Prefix` is its width, 0 for none.
template <ub1 Prefix>
void writeCount(void *target, ub4 count) {
  if constexpr (Prefix == 2) writeNative(target, static_cast<ub2>(count));
  if constexpr (Prefix == 4) writeNative(target, count);
}

sword toHexDigits(OCIError *errhp, const void *value, sb4 valueLength, ub1 format,
                  char *out, sb4 *length, sb2 *indicator) {
  return format == kFieldText
             ? ConvertPQBinStrToOCIBinStr(errhp, value, valueLength, out, length,
                                          indicator)
             : binaryToTextLength(errhp, value, valueLength, length, indicator);
}

/// What stands around the hex digits of a bytea.
struct HexRule {
  ub1 prefix = 0;     ///< width of the count in front
  ub1 kept = 0;       ///< bytes at the end that no digit takes, counted in the length
  bool pad = false;   ///< blanks behind
  bool ends = false;  ///< a NUL behind, of a full target one byte behind it
};

template <HexRule Rule>
sword fetchHex(FETCH_PARAMS) {
  clearIndicator(indicator);
  const ub4 cap = *targetLength;
  if (cap == 0) return 0;
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format > kFieldBinary || cap < Rule.prefix) return -1;
  auto *digits = static_cast<char *>(target) + Rule.prefix;
  const sb4 room = roomIn(cap, Rule.prefix + Rule.kept);
  sb4 length = room;
  const sword status =
      toHexDigits(errhp, value, valueLength, format, digits, &length, indicator);
  if (status < 0) return status;
  writeCount<Rule.prefix>(target, static_cast<ub4>(length));
  if (Rule.pad && length < room) {
    std::memset(digits + length, ' ', static_cast<std::size_t>(room - length));
  }
  if (Rule.ends && length <= room) digits[length] = '\0';
  *targetLength = static_cast<ub4>(length) + Rule.prefix + Rule.kept;
  return status;
}

/// The bytes of a text form behind the count of a target. After a failure the count is
/// the target's size.
template <ub1 Prefix>
sword parseBinary(OCIError *errhp, const void *value, sb4 valueLength, void *target,
                  ub4 *targetLength, sb2 *indicator) {
  writeCount<Prefix>(target, *targetLength);
  sb4 length = roomIn(*targetLength, Prefix);
  const sword status =
      ConvertStringToBinary(errhp, value, valueLength,
                            static_cast<char *>(target) + Prefix, &length, indicator);
  if (status < 0) return status;
  writeCount<Prefix>(target, static_cast<ub4>(length));
  *targetLength = static_cast<ub4>(length) + Prefix;
  return status;
}

/// Character data in the text form of bytes, as bytes.
template <ub1 Prefix>
sword fetchTextAsBinary(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (*targetLength == 0) return 0;
  if (TextEnvironment(errhp).holdsNull(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format > kFieldBinary || (Prefix != 0 && *targetLength < 2)) return -1;
  return parseBinary<Prefix>(errhp, value, valueLength, target, targetLength, indicator);
}

/// A bytea as bytes.
struct BinaryRule {
  ub1 prefix = 0;            ///< width of the count in front
  sb4 maxValue = SB4MAXVAL;  ///< longest field in either format
};

/// Raw bytes behind the count of a target. What has no room is reported; behind a count
/// the value is copied whole all the same.
template <ub1 Prefix>
sword copyBinary(OCIError *errhp, std::string_view bytes, void *target, ub4 *targetLength,
                 sb2 *indicator) {
  const std::size_t whole = bytes.size() + Prefix;
  const ub4 cap = *targetLength;
  if (cap < whole) {
    if (!indicator) return record(errhp, 1405, 1);
    reportMissing(indicator, whole - cap);
    if (Prefix == 0) bytes = bytes.substr(0, cap);
  }
  writeCount<Prefix>(target, static_cast<ub4>(bytes.size()));
  copyBytes(static_cast<char *>(target) + Prefix, bytes.data(), bytes.size());
  *targetLength = static_cast<ub4>(bytes.size() + Prefix);
  return 0;
}

template <BinaryRule Rule>
sword fetchBinary(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format > kFieldBinary || valueLength > Rule.maxValue) return -1;
  if (Rule.prefix != 0 && *targetLength < 2) return -1;
  return format == kFieldText
             ? parseBinary<Rule.prefix>(errhp, value, valueLength, target, targetLength,
                                        indicator)
             : copyBinary<Rule.prefix>(errhp, fieldText(value, valueLength), target,
                                       targetLength, indicator);
}

constexpr sb4 kBelowMax = SB4MAXVAL - 1;

}  // namespace
}  // namespace zev

// clang-format off
#define HEX_MEMBERS(X)                                     \
  X(ConvertBYTEAOIDToSQLT_CHR, .pad = true)                \
  X(ConvertBYTEAOIDToSQLT_AFC, .pad = true)                \
  X(ConvertBYTEAOIDToSQLT_LNG, .pad = true)                \
  X(ConvertBYTEAOIDToSQLT_AVC, .kept = 1, .pad = true, .ends = true) \
  X(ConvertBYTEAOIDToSQLT_STR, .ends = true)               \
  X(ConvertBYTEAOIDToSQLT_VCS, .prefix = 2)                \
  X(ConvertBYTEAOIDToSQLT_LVC, .prefix = 4)
#define BINARY_MEMBERS(X)                                  \
  X(ConvertBYTEAOIDToSQLT_BIN, .prefix = 0)                \
  X(ConvertBYTEAOIDToSQLT_LBI, .prefix = 0, .maxValue = kBelowMax) \
  X(ConvertBYTEAOIDToSQLT_VBI, .prefix = 2, .maxValue = 65535)     \
  X(ConvertBYTEAOIDToSQLT_LVB, .prefix = 4, .maxValue = kBelowMax)
#define TEXT_MEMBERS(X)                                    \
  X(ConvertTEXTOIDToSQLT_BIN, 0)                           \
  X(ConvertTEXTOIDToSQLT_LBI, 0)                           \
  X(ConvertTEXTOIDToSQLT_VBI, 2)                           \
  X(ConvertTEXTOIDToSQLT_LVB, 4)
// clang-format on

extern "C" {

#define DEFINE(name, ...)                                   \
  sword name(FETCH_PARAMS) {                                \
    using namespace zev;                                    \
    return fetchHex<HexRule{__VA_ARGS__}>(FETCH_ARGUMENTS); \
  }
HEX_MEMBERS(DEFINE)
#undef DEFINE
#define DEFINE(name, ...)                                         \
  sword name(FETCH_PARAMS) {                                      \
    using namespace zev;                                          \
    return fetchBinary<BinaryRule{__VA_ARGS__}>(FETCH_ARGUMENTS); \
  }
BINARY_MEMBERS(DEFINE)
#undef DEFINE
#define DEFINE(name, prefix)                                \
  sword name(FETCH_PARAMS) {                                \
    return zev::fetchTextAsBinary<prefix>(FETCH_ARGUMENTS); \
  }
TEXT_MEMBERS(DEFINE)
#undef DEFINE

sword ConvertBYTEAOIDToSQLT_VST(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (*targetLength == 0) return 0;
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  auto *string = zev::readNative<OCIString *>(target);
  if (format > zev::kFieldBinary || !string) return -1;
  auto *digits = reinterpret_cast<char *>(string->text);
  const sb4 room = zev::roomIn(string->allocatedSize, 0);
  sb4 length = room;
  const sword status =
      zev::toHexDigits(errhp, value, valueLength, format, digits, &length, indicator);
  if (status < 0) length = 0;
  // The length of a binary value is the code of its first digit, whatever the room.
  string->length = static_cast<ub4>(std::min(length, room));
  if (status >= 0 && digits) digits[string->length] = '\0';
  return status;
}

sword ConvertOIDOIDToSQLT_BLOB(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (*targetLength == 0) return 0;
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  auto *locator =
      target ? zev::asLobLocator(zev::readNative<const void *>(target)) : nullptr;
  if (!locator) return zev::fail(errhp, 1733);
  switch (format) {
    case zev::kFieldText:
      locator->loOid =
          static_cast<ub4>(std::strtoul(static_cast<const char *>(value), nullptr, 10));
      return 0;
    case zev::kFieldBinary:
      if (valueLength < static_cast<sb4>(sizeof(ub4))) return -1;
      locator->loOid = zev::readNetwork<ub4>(value);
      return 0;
    default:
      return -1;
  }
}

}  // extern "C"

#undef TEXT_MEMBERS
#undef BINARY_MEMBERS
#undef HEX_MEMBERS
