/// Character data that are fetched into characters. Whether a text is too long goes by
/// the server's bytes, before they turn into the program's encoding.
#include <algorithm>

#include "types/string_copy.h"
#include "types/text_environment.h"
#include "zevoci/string_value.h"

namespace zev {
namespace {

/// What stands behind the characters of a raw target.
enum class Rest {
  AsItWas,
  Blanks,        ///< up to the end of the target
  BlanksAndNul,  ///< a NUL, which the length counts, ends the characters; in a full
                 ///< target it takes the place of the last one
};

struct RawRule {
  Rest rest;
  bool converts = true;  ///< false: the server's bytes, also in a UTF-16 environment
};

/// Reports a text that `missing` bytes of have no room; status 1.
sword reportCut(OCIError *errhp, sb2 *indicator, std::size_t missing) {
  reportMissing(indicator, missing);
  return record(errhp, 1406, 1);
}

/// Writes what stands behind the `n` characters of a target and returns the length.
template <Rest Behind>
std::size_t finishRaw(char *target, std::size_t n, ub4 cap) {
  if (Behind != Rest::AsItWas && n < cap) std::memset(target + n, ' ', cap - n);
  if constexpr (Behind != Rest::BlanksAndNul) return n;
  const std::size_t end = std::min<std::size_t>(n, cap - 1);
  target[end] = '\0';
  return end + 1;
}

/// The body of SQLT_CHR, SQLT_AVC and SQLT_LNG. A target of no bytes wants nothing.
template <RawRule Rule>
sword fetchRaw(FETCH_PARAMS) {
  clearIndicator(indicator);
  const ub4 cap = *targetLength;
  if (cap == 0) return 0;
  const TextEnvironment environment(errhp);
  if (environment.holdsNull(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format > kFieldBinary) return -1;
  const std::string_view source = fieldText(value, valueLength);
  sword status = 0;
  if (cap < source.size()) status = reportCut(errhp, indicator, source.size() - cap);
  const EdgeResult converted(Rule.converts ? environment.env : nullptr, source.data(),
                             source.size());
  if (!converted) return converted.fail(errhp);
  auto *out = static_cast<char *>(target);
  const std::size_t n = std::min<std::size_t>(converted.size(), cap);
  copyBytes(out, converted.data(), n);
  *targetLength = static_cast<ub4>(finishRaw<Rule.rest>(out, n, cap));
  return status;
}

/// What a counted target does with a text that has no room, and what it reports as its
/// length. `Prefix` is the type of the count in front of the characters.
template <class Prefix>
struct CountedRule;

template <>
struct CountedRule<ub2> {
  static void reportOverflow(sb2 *indicator, std::size_t size, ub4) {
    *indicator = static_cast<sb2>(size);
  }
  static std::size_t length(std::size_t given, std::size_t) { return given + 2; }
};

template <>
struct CountedRule<ub4> {
  static void reportOverflow(sb2 *indicator, std::size_t size, ub4 cap) {
    reportMissing(indicator, size + 4 - cap);
  }
  static std::size_t length(std::size_t, std::size_t written) { return written + 4; }
};

/// The body of SQLT_VCS and SQLT_LVC. An empty text is null whatever the environment
/// says, and leaves a count of 2. A text without room is reported and then copied whole.
template <class Prefix>
sword fetchCounted(FETCH_PARAMS) {
  using Rule = CountedRule<Prefix>;
  clearIndicator(indicator);
  const ub4 cap = *targetLength;
  if (cap < sizeof(Prefix)) return -1;
  if (!value || valueLength <= 0) {
    writeNative<ub2>(target, 2);
    *targetLength = 2;
    return deliverNull(errhp, indicator, nullptr);
  }
  if (format > kFieldBinary) return -1;
  const std::string_view source = fieldText(value, valueLength);
  if (cap < source.size() + sizeof(Prefix)) {
    if (!indicator) return 1;
    Rule::reportOverflow(indicator, source.size(), cap);
  }
  const EdgeResult converted(TextEnvironment(errhp).env, source.data(), source.size());
  if (!converted) return converted.fail(errhp);
  writeNative(target, static_cast<Prefix>(converted.size()));
  copyBytes(static_cast<char *>(target) + sizeof(Prefix), converted.data(),
            converted.size());
  *targetLength = static_cast<ub4>(Rule::length(source.size(), converted.size()));
  return 0;
}

/// Stores what `string` has room for, with a NUL in the last byte of that room.
void storeInString(OCIString *string, std::string_view text) {
  auto *out = reinterpret_cast<char *>(string->text);
  if (string->allocatedSize > text.size()) {
    copyBytes(out, text.data(), text.size());
    out[text.size()] = '\0';
    string->length = static_cast<ub4>(std::strlen(out));
    return;
  }
  string->length = std::max<ub4>(string->allocatedSize, 1) - 1;
  copyBytes(out, text.data(), string->length);
  if (string->allocatedSize != 0) out[string->length] = '\0';
}

/// Ends the `size` bytes that were cut at `target` with `terminator`; false without room
/// for it.
bool terminateCut(char *target, std::size_t size, std::string_view terminator) {
  if (size < terminator.size()) return false;
  copyBytes(target + size - terminator.size(), terminator.data(), terminator.size());
  return true;
}

/// The body of SQLT_STR for every text that is not null. The NUL behind the field is part
/// of what is delivered.
[[gnu::noinline]] sword fetchAnyString(OCIError *errhp, const OCIEnv *env,
                                       const void *value, sb4 valueLength, void *target,
                                       ub4 *targetLength) {
  const char *source = value ? static_cast<const char *>(value) : "";
  const std::size_t size = fieldText(value, valueLength).size() + 1;
  const EdgeResult converted(env, source, size);
  if (!converted) return converted.fail(errhp);
  const std::size_t n = std::min<std::size_t>(converted.size(), *targetLength);
  copyBytes(target, converted.data(), n);
  *targetLength = static_cast<ub4>(n);
  if (converted.size() > n) {
    const EdgeResult terminator(env, "", 1);
    if (!terminator) return terminator.fail(errhp);
    if (!terminateCut(static_cast<char *>(target), n, terminator.view())) {
      return fail(errhp, 1460);
    }
  }
  *targetLength = static_cast<ub4>(std::strlen(source));
  return 0;
}

}  // namespace
}  // namespace zev

extern "C" {

// clang-format off
#define RAW_MEMBERS(X)                                                           \
  X(ConvertTEXTOIDToSQLT_CHR, .rest = zev::Rest::Blanks)                         \
  X(ConvertTEXTOIDToSQLT_AVC, .rest = zev::Rest::BlanksAndNul)                   \
  X(ConvertTEXTOIDToSQLT_LNG, .rest = zev::Rest::AsItWas, .converts = false)
// clang-format on
#define DEFINE(name, ...)                                             \
  sword name(FETCH_PARAMS) {                                          \
    return zev::fetchRaw<zev::RawRule{__VA_ARGS__}>(FETCH_ARGUMENTS); \
  }
RAW_MEMBERS(DEFINE)
#undef DEFINE
#undef RAW_MEMBERS

sword ConvertTEXTOIDToSQLT_VCS(FETCH_PARAMS) {
  return zev::fetchCounted<ub2>(FETCH_ARGUMENTS);
}

sword ConvertTEXTOIDToSQLT_LVC(FETCH_PARAMS) {
  return zev::fetchCounted<ub4>(FETCH_ARGUMENTS);
}

sword ConvertTEXTOIDToSQLT_STR(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  const zev::TextEnvironment environment(errhp);
  if (environment.holdsNull(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  // A short text that fits as it stands needs no more than to be copied.
  if (const auto length = static_cast<ub4>(valueLength);
      value && length < *targetLength && length <= zev::kShortText &&
      !environment.converts()) {
    const auto *source = static_cast<const char *>(value);
    auto *out = static_cast<char *>(target);
    out[length] = '\0';
    if (!zev::copyShortText(out, source, length) && source[length] == '\0') {
      *targetLength = length;
      return 0;
    }
  }
  return zev::fetchAnyString(errhp, environment.env, value, valueLength, target,
                             targetLength);
}

sword ConvertTEXTOIDToSQLT_VST(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (*targetLength < 4) return -1;
  const zev::TextEnvironment environment(errhp);
  if (environment.holdsNull(value, valueLength, format)) {
    return zev::deliverNull(errhp, indicator, returnCode);
  }
  auto *string = zev::readNative<OCIString *>(target);
  if (format > zev::kFieldBinary || !string) return -1;
  const std::string_view source = zev::fieldText(value, valueLength);
  const ub4 room = string->allocatedSize;
  sword status = 0;
  if (source.size() > room) {
    status = zev::reportCut(errhp, indicator, source.size() - room);
  }
  const zev::EdgeResult converted(environment.env, source.data(), source.size());
  if (!converted) return converted.fail(errhp);
  zev::storeInString(string, converted.view());
  return status;
}

}  // extern "C"
