/// Character data that are fetched into characters and native numbers.
#include <algorithm>
#include <string_view>

#include "core/edge_text.h"
#include "types/fetch_rules.h"
#include "types/number_text.h"

namespace zev {
namespace {

/// The environment of a fetch as far as text is concerned.
struct TextEnvironment {
  explicit TextEnvironment(const OCIError *errhp)
      : env(parentEnv(errhp)), emptyIsNull(env && env->oracleVarchars) {}
  const OCIEnv *env;
  bool emptyIsNull;

  /// Whether text changes its bytes on the way to the program.
  bool converts() const { return env && env->utf16; }
};

std::string_view fieldText(const void *value, sb4 valueLength) {
  if (!value || valueLength <= 0) return {};
  return {static_cast<const char *>(value), static_cast<std::size_t>(valueLength)};
}

/// Ends the `size` bytes that were cut at `target` with `terminator`; false without room
/// for it.
bool terminateCut(char *target, std::size_t size, std::string_view terminator) {
  if (size < terminator.size()) return false;
  copyBytes(target + size - terminator.size(), terminator.data(), terminator.size());
  return true;
}

/// Stores an integer that was read from a text.
sword storeFromText(OCIError *errhp, long value, void *target, ub4 *targetLength) {
  switch (storeInteger<2>(target, *targetLength, value)) {
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

sword ConvertTEXTOIDToSQLT_CHR(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  const ub4 cap = *targetLength;
  if (cap == 0) return 0;
  const zev::TextEnvironment environment(errhp);
  if (environment.emptyIsNull && zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  const std::string_view source = zev::fieldText(value, valueLength);
  sword status = 0;
  if (cap < source.size()) {
    status = zev::record(errhp, 1406, 1);
    zev::reportMissing(indicator, source.size() - cap);
  }
  const zev::EdgeResult converted(environment.env, source.data(), source.size());
  if (!converted) return converted.fail(errhp);
  const std::size_t n = std::min<std::size_t>(converted.view().size(), cap);
  auto *out = static_cast<char *>(target);
  zev::copyBytes(out, converted.view().data(), n);
  if (n < cap) {
    std::memset(out + n, ' ', cap - n);
    *targetLength = static_cast<ub4>(n);
  }
  return status;
}

sword ConvertTEXTOIDToSQLT_STR(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  const zev::TextEnvironment environment(errhp);
  if (environment.emptyIsNull && zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  const ub4 cap = *targetLength;
  const auto *source = value ? static_cast<const char *>(value) : "";
  const auto length = static_cast<std::size_t>(value ? std::max(valueLength, 0) : 0);
  // The NUL behind the field is part of what is delivered. Where it fits as it stands,
  // that is all there is to do.
  if (length < cap && !environment.converts()) {
    zev::copyBytes(target, source, length + 1);
    *targetLength = static_cast<ub4>(std::strlen(source));
    return 0;
  }
  const zev::EdgeResult converted(environment.env, source, length + 1);
  if (!converted) return converted.fail(errhp);
  const std::size_t n = std::min<std::size_t>(converted.view().size(), cap);
  zev::copyBytes(target, converted.view().data(), n);
  *targetLength = static_cast<ub4>(n);
  if (converted.view().size() > n) {
    const zev::EdgeResult terminator(environment.env, "", 1);
    if (!terminator) return terminator.fail(errhp);
    if (!zev::terminateCut(static_cast<char *>(target), n, terminator.view())) {
      return zev::fail(errhp, 1460);
    }
  }
  *targetLength = static_cast<ub4>(std::strlen(source));
  return 0;
}

sword ConvertTEXTOIDToSQLT_INT(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  const auto *s = static_cast<const char *>(value);
  if (!zev::isDigit(*s)) return zev::fail(errhp, 1722);
  const zev::CleanErrno clean;
  const auto parsed = zev::parseLong(s);
  if (parsed.outOfRange || parsed.value >= SB4MAXVAL) return zev::fail(errhp, 1426);
  return zev::storeFromText(errhp, parsed.value, target, targetLength);
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

}  // extern "C"
