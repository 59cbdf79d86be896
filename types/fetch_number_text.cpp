/// Numbers that are fetched into characters. A field in text form is copied as it stands;
/// one in binary form is printed first. What happens where a text does not fit differs by
/// member, and the table at the end tells it.
#include <algorithm>
#include <string_view>

#include "core/owned.h"
#include "types/fetch_rules.h"
#include "types/number_text.h"
#include "types/numeric.h"

namespace zev {
namespace {

/// Room for the printed form of a binary field.
struct Scratch {
  char digits[100];
  Malloced<> longText;
};

/// Which text has room in a target of `cap` bytes.
enum class Fit {
  Below,  ///< shorter than the target
  UpTo,   ///< as long as the target at most
};

/// What a text does that has no room.
enum class Spill {
  ReportMissing,  ///< missing bytes in the indicator; without one status 1, nothing
                  ///< copied
  Record1406,     ///< record, missing bytes in the indicator if there is one, status 0
  Silent,         ///< what fits is copied, status 0
  Refuse,         ///< status -1
};

/// What is written around the characters.
enum class Layout {
  Padded,            ///< blanks up to the end of the target
  PaddedFullLength,  ///< as Padded; the length is that of the whole text, room or not
  Terminated,        ///< a NUL, when the text is cut in the last byte of the target
  TerminatedBehind,  ///< a NUL, when the text is cut one byte behind the target
};

/// Which fields are null.
enum class Null {
  Missing,              ///< no value
  Empty,                ///< no value, no bytes or an empty text
  EmptyAndClearsLength  ///< the same, and the length becomes 0
};

/// One member of the family.
struct TextRule {
  Layout layout;
  Fit fit;
  Spill spill;
  int terminatorMissing =
      0;  ///< 1 where the count of missing bytes includes the terminator
  Null null = Null::Empty;
  ub4 minCap = 0;
  sb4 minValue = 0;  ///< bounds of the field's length in either format
  sb4 maxValue = SB4MAXVAL;

  constexpr bool terminates() const {
    return layout == Layout::Terminated || layout == Layout::TerminatedBehind;
  }
};

template <TextRule Rule>
sword placeFitting(std::string_view chars, char *target, ub4 *targetLength) {
  copyBytes(target, chars.data(), chars.size());
  if constexpr (Rule.terminates()) {
    target[chars.size()] = '\0';
  } else {
    const std::size_t rest = *targetLength - chars.size();
    if (rest != 0) std::memset(target + chars.size(), ' ', rest);
  }
  *targetLength = static_cast<ub4>(chars.size());
  return 0;
}

template <TextRule Rule>
sword placeCut(OCIError *errhp, std::string_view chars, char *target, ub4 *targetLength,
               sb2 *indicator) {
  const ub4 cap = *targetLength;
  if constexpr (Rule.spill == Spill::Refuse) return -1;
  if constexpr (Rule.spill == Spill::ReportMissing) {
    if (!indicator) return 1;
  }
  if constexpr (Rule.spill != Spill::Silent) {
    reportMissing(indicator, chars.size() + Rule.terminatorMissing - cap);
  }
  if constexpr (Rule.spill == Spill::Record1406) record(errhp, 1406, 0);
  if constexpr (Rule.layout == Layout::PaddedFullLength) {
    *targetLength = static_cast<ub4>(chars.size());
  }
  if (!Rule.terminates()) {
    copyBytes(target, chars.data(), cap);
  } else if (cap != 0) {
    copyBytes(target, chars.data(), cap - 1);
    target[Rule.layout == Layout::TerminatedBehind ? cap : cap - 1] = '\0';
  }
  return 0;
}

template <TextRule Rule>
sword place(OCIError *errhp, std::string_view chars, void *target, ub4 *targetLength,
            sb2 *indicator) {
  auto *out = static_cast<char *>(target);
  const bool hasRoom = Rule.fit == Fit::Below ? chars.size() < *targetLength
                                              : chars.size() <= *targetLength;
  return hasRoom ? placeFitting<Rule>(chars, out, targetLength)
                 : placeCut<Rule>(errhp, chars, out, targetLength, indicator);
}

/// The body of all members. `print` turns a binary field into text; false when it cannot.
template <auto Print, TextRule Rule>
sword fetchText(FETCH_PARAMS) {
  clearIndicator(indicator);
  const bool null =
      Rule.null == Null::Missing ? !value : isNullField(value, valueLength, format);
  if (null) {
    if constexpr (Rule.null == Null::EmptyAndClearsLength) *targetLength = 0;
    return deliverNull(errhp, indicator, returnCode);
  }
  if (*targetLength < Rule.minCap) return -1;
  if (valueLength < Rule.minValue || valueLength > Rule.maxValue) return -1;
  if (format == kFieldText) {
    const std::string_view chars(static_cast<const char *>(value),
                                 static_cast<std::size_t>(valueLength));
    return place<Rule>(errhp, chars, target, targetLength, indicator);
  }
  Scratch scratch;
  std::string_view chars;
  if (format != kFieldBinary || !Print(value, valueLength, scratch, chars)) return -1;
  return place<Rule>(errhp, chars, target, targetLength, indicator);
}

// The printers of binary fields. Digits come out in the order of the helper that prints
// them.

template <class Wire>
bool hasBytes(sb4 valueLength) {
  return valueLength >= static_cast<sb4>(sizeof(Wire));
}

bool printInt2(const void *value, sb4 valueLength, Scratch &scratch,
               std::string_view &out) {
  if (!hasBytes<sb2>(valueLength)) return false;
  sb4 length = sizeof scratch.digits;
  Int16ToCharArray(readNetwork<sb2>(value), scratch.digits, &length);
  out = {scratch.digits, static_cast<std::size_t>(length)};
  return true;
}

bool printInt4(const void *value, sb4 valueLength, Scratch &scratch,
               std::string_view &out) {
  if (!hasBytes<sb4>(valueLength)) return false;
  out = oci_itoa(readNetwork<sb4>(value), scratch.digits, 10);
  return true;
}

bool printInt8(const void *value, sb4 valueLength, Scratch &scratch,
               std::string_view &out) {
  if (!hasBytes<sb8>(valueLength)) return false;
  out = _i64toa(readNetwork<sb8>(value), scratch.digits, 10);
  return true;
}

bool printFloat8(const void *value, sb4 valueLength, Scratch &scratch,
                 std::string_view &out) {
  if (!hasBytes<double>(valueLength)) return false;
  const sb4 length =
      dtostr(scratch.digits, sizeof scratch.digits, 15, TRUE, readNetwork<double>(value));
  if (length < 0) return false;
  out = {scratch.digits, static_cast<std::size_t>(length)};
  return true;
}

bool printNumeric(const void *value, sb4 valueLength, Scratch &scratch,
                  std::string_view &out) {
  const Malloced<numeric> number(copyNumericField(value, valueLength));
  char *printed = nullptr;
  if (!number || ConvertNumericToString(number.get(), &printed, number->dscale) != 0) {
    return false;
  }
  scratch.longText.reset(printed);
  out = printed;
  return true;
}

}  // namespace
}  // namespace zev

// clang-format off
#define TEXT_MEMBERS(X)                                                          \
  X(ConvertINT2OIDToSQLT_CHR, printInt2,                                         \
    .layout = Layout::Padded, .fit = Fit::Below, .spill = Spill::ReportMissing)  \
  X(ConvertINT4OIDToSQLT_CHR, printInt4,                                         \
    .layout = Layout::Padded, .fit = Fit::UpTo, .spill = Spill::Record1406)      \
  X(ConvertINT8OIDToSQLT_CHR, printInt8,                                         \
    .layout = Layout::PaddedFullLength, .fit = Fit::UpTo, .spill = Spill::Silent) \
  X(ConvertFLOAT8OIDToSQLT_CHR, printFloat8,                                     \
    .layout = Layout::Padded, .fit = Fit::UpTo, .spill = Spill::Record1406)      \
  X(ConvertNUMERICOIDToSQLT_CHR, printNumeric,                                   \
    .layout = Layout::Padded, .fit = Fit::UpTo, .spill = Spill::Silent,          \
    .null = Null::EmptyAndClearsLength, .maxValue = 4000)                        \
  X(ConvertINT2OIDToSQLT_STR, printInt2,                                         \
    .layout = Layout::Terminated, .fit = Fit::Below, .spill = Spill::ReportMissing, \
    .maxValue = 2000)                                                            \
  X(ConvertINT4OIDToSQLT_STR, printInt4,                                         \
    .layout = Layout::TerminatedBehind, .fit = Fit::Below, .spill = Spill::Silent) \
  X(ConvertINT8OIDToSQLT_STR, printInt8,                                         \
    .layout = Layout::TerminatedBehind, .fit = Fit::Below, .spill = Spill::Silent) \
  X(ConvertFLOAT8OIDToSQLT_STR, printFloat8,                                     \
    .layout = Layout::Terminated, .fit = Fit::Below, .spill = Spill::Record1406, \
    .terminatorMissing = 1, .null = Null::Missing, .minCap = 1, .minValue = 4)   \
  X(ConvertNUMERICOIDToSQLT_STR, printNumeric,                                   \
    .layout = Layout::Terminated, .fit = Fit::UpTo, .spill = Spill::Refuse,      \
    .null = Null::EmptyAndClearsLength, .maxValue = 4000)
// clang-format on

#define DEFINE(name, print, ...)                                     \
  extern "C" sword name(FETCH_PARAMS) {                              \
    using namespace zev;                                             \
    return fetchText<print, TextRule{__VA_ARGS__}>(FETCH_ARGUMENTS); \
  }
TEXT_MEMBERS(DEFINE)
#undef DEFINE
#undef TEXT_MEMBERS
