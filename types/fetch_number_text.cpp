/// Numbers that are fetched into characters. A field in text form is copied as it stands;
/// one in binary form is printed first. What happens where a text does not fit differs by
/// member, and the table at the end tells it.
#include <algorithm>
#include <string_view>

#include "types/fetch_rules.h"
#include "types/number_printers.h"
#include "types/number_text.h"

namespace zev {
namespace {

/// What is written around the characters.
enum class Layout {
  Plain,
  Padded,            ///< blanks up to the end of the target
  PaddedFullLength,  ///< as Padded; the length is that of the whole text, room or not
  PaddedTerminated,  ///< blanks, and a NUL behind the text that its length counts
  Terminated,        ///< a NUL, when the text is cut in the last byte of the target
  TerminatedBehind,  ///< a NUL, when the text is cut one byte behind the target
  Counted2,          ///< a native length of 2 bytes in front
  Counted4,          ///< a native length of 4 bytes in front
};

/// What a text does that has no room.
enum class Spill {
  ReportMissing,       ///< missing bytes in the indicator; without one status 1, nothing
                       ///< copied
  ReportMissingField,  ///< the same by the length of the field instead of the text's
  Record1406,          ///< record, missing bytes in the indicator if there is one
  Record22053,         ///< the same; without an indicator status 1
  Silent,              ///< what fits is copied
  Clip,                ///< what fits is delivered as if it were the whole text
  Refuse,              ///< status -1
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
  ub4 room;  ///< what a target needs beyond the characters to have room for them
  Spill spill;
  ub4 missing = 0;  ///< what the count of missing bytes has beyond the characters
  ub4 minCap = 0;
  Null null = Null::Empty;
  sb4 minValue = 0;  ///< bounds of the field's length in either format
  sb4 maxValue = SB4MAXVAL;
  ub4 clipMask = UB4MAXVAL;  ///< the bits that a clipped text's length has

  constexpr ub4 prefix() const {
    return layout == Layout::Counted2 ? 2 : layout == Layout::Counted4 ? 4 : 0;
  }
};

/// Where a text goes, and what is told about it.
struct Place {
  OCIError *errhp;
  char *target;
  ub4 *length;
  sb2 *indicator;
  std::size_t fieldLength;
};

template <TextRule Rule>
void storePrefix(char *target, std::size_t count) {
  if constexpr (Rule.prefix() == 2) writeNative(target, static_cast<ub2>(count));
  if constexpr (Rule.prefix() == 4) writeNative(target, static_cast<ub4>(count));
}

void fillBlanks(char *target, std::size_t from, std::size_t cap) {
  if (from < cap) std::memset(target + from, ' ', cap - from);
}

template <TextRule Rule>
sword placeWhole(std::string_view chars, const Place &place) {
  constexpr Layout kLayout = Rule.layout;
  char *const out = place.target + Rule.prefix();
  const std::size_t n = chars.size();
  storePrefix<Rule>(place.target, n);
  copyBytes(out, chars.data(), n);
  if constexpr (kLayout == Layout::Padded || kLayout == Layout::PaddedFullLength ||
                kLayout == Layout::PaddedTerminated) {
    fillBlanks(out, n, *place.length);
  }
  if constexpr (kLayout == Layout::Terminated || kLayout == Layout::TerminatedBehind ||
                kLayout == Layout::PaddedTerminated) {
    out[n] = '\0';
  }
  *place.length =
      static_cast<ub4>(n + Rule.prefix() + (kLayout == Layout::PaddedTerminated));
  return 0;
}

/// Tells of a text that has no room. False when it is not to be copied at all.
template <TextRule Rule>
bool tellSpill(std::size_t length, const Place &place, sword &status) {
  const std::size_t missing = length + Rule.missing - *place.length;
  switch (Rule.spill) {
    case Spill::ReportMissing:
    case Spill::ReportMissingField:
      if (!place.indicator) {
        status = 1;
        return false;
      }
      break;
    case Spill::Record1406:
      record(place.errhp, 1406, 0);
      break;
    case Spill::Record22053:
      status = record(place.errhp, 22053, place.indicator ? 0 : 1);
      break;
    case Spill::Silent:
      return true;
    case Spill::Refuse:
    case Spill::Clip:
      status = -1;
      return false;
  }
  if constexpr (Rule.spill == Spill::ReportMissingField) {
    const auto told = static_cast<sb2>(place.fieldLength + Rule.missing - *place.length);
    *place.indicator = missing >= 65536 ? static_cast<sb2>(65534) : told;
  } else {
    reportMissing(place.indicator, missing);
  }
  return true;
}

template <TextRule Rule>
sword placeCut(std::string_view chars, const Place &place) {
  const ub4 cap = *place.length;
  const std::size_t room = cap > Rule.prefix() ? cap - Rule.prefix() : 0;
  sword status = 0;
  if (!tellSpill<Rule>(chars.size(), place, status)) return status;
  // A member that records the cut still counts the whole text in front of it.
  storePrefix<Rule>(place.target, Rule.spill == Spill::Record1406 ? chars.size() : room);
  if constexpr (Rule.layout == Layout::TerminatedBehind) {
    copyBytes(place.target, chars.data(), cap != 0 ? cap - 1 : 0);
    place.target[cap] = '\0';
  } else {
    copyBytes(place.target + Rule.prefix(), chars.data(), std::min(room, chars.size()));
  }
  if constexpr (Rule.layout == Layout::Terminated ||
                Rule.layout == Layout::PaddedTerminated) {
    if (cap != 0) place.target[cap - 1] = '\0';
  }
  if constexpr (Rule.layout == Layout::PaddedFullLength) {
    *place.length = static_cast<ub4>(chars.size());
  }
  return status;
}

/// Delivers as much of a text as has room.
template <TextRule Rule>
sword placeClipped(std::string_view chars, const Place &place) {
  const std::size_t room = *place.length - Rule.prefix();
  return placeWhole<Rule>(chars.substr(0, std::min(chars.size(), room) & Rule.clipMask),
                          place);
}

template <TextRule Rule>
sword place(std::string_view chars, const Place &place) {
  if constexpr (Rule.spill == Spill::Clip) return placeClipped<Rule>(chars, place);
  return chars.size() + Rule.room <= *place.length ? placeWhole<Rule>(chars, place)
                                                   : placeCut<Rule>(chars, place);
}

template <TextRule Rule>
bool isNull(const void *value, sb4 valueLength, ub1 format) {
  return Rule.null == Null::Missing ? !value : isNullField(value, valueLength, format);
}

/// The body of all members.
template <Printer Print, TextRule Rule>
sword fetchText(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (*targetLength < Rule.minCap) return -1;
  if (isNull<Rule>(value, valueLength, format)) {
    return Rule.null == Null::EmptyAndClearsLength
               ? deliverNullWithoutLength(errhp, targetLength, indicator, returnCode)
               : deliverNull(errhp, indicator, returnCode);
  }
  if (valueLength < Rule.minValue || valueLength > Rule.maxValue) return -1;
  const auto fieldLength = static_cast<std::size_t>(valueLength);
  const Place into{errhp, static_cast<char *>(target), targetLength, indicator,
                   fieldLength};
  if (format == kFieldText) {
    return place<Rule>({static_cast<const char *>(value), fieldLength}, into);
  }
  Scratch scratch;
  std::string_view chars;
  if (format != kFieldBinary || !Print(value, valueLength, scratch, chars)) return -1;
  return place<Rule>(chars, into);
}

/// The SQLT_AVC members of floats: as SQLT_CHR does, and a NUL over the last byte. The
/// target is taken as `Reserved` bytes shorter.
template <FromServerConverter FetchChr, ub4 Reserved>
sword fetchOverwritten(FETCH_PARAMS) {
  *targetLength -= std::min(Reserved, *targetLength);
  const sword status = FetchChr(FETCH_ARGUMENTS);
  const bool delivered = status >= 0 && !isNullField(value, valueLength, format);
  if (delivered && *targetLength > 0) {
    static_cast<char *>(target)[*targetLength - 1] = '\0';
  }
  return status;
}

}  // namespace
}  // namespace zev

// clang-format off
#define OVERWRITTEN_MEMBERS(X)                                           \
  X(ConvertFLOAT4OIDToSQLT_AVC, ConvertFLOAT4OIDToSQLT_CHR, 0)           \
  X(ConvertFLOAT8OIDToSQLT_AVC, ConvertFLOAT8OIDToSQLT_CHR, 1)

// What several members have beside the first columns of the table.
#define FLOAT4_STR   .missing = 1, .minCap = 1
#define FLOAT8_STR   .missing = 1, .minCap = 1, .null = Null::Missing, .minValue = 4
#define FLOAT_COUNTED(width) .missing = (width), .minCap = 2
#define NUMERIC(max) .null = Null::EmptyAndClearsLength, .maxValue = (max)

// A member, how a binary field is printed, the layout, what a text needs beyond its
// characters to fit, and what happens where it does not.
//  member                       binary             layout          room spill          ...
#define TEXT_MEMBERS(X)                                                                   \
  X(ConvertINT2OIDToSQLT_CHR,    printInt2,         Padded,           1, ReportMissing)   \
  X(ConvertINT4OIDToSQLT_CHR,    printInt4,         Padded,           0, Record1406)      \
  X(ConvertINT8OIDToSQLT_CHR,    printInt8,         PaddedFullLength, 0, Silent)          \
  X(ConvertINT2OIDToSQLT_AFC,    printInt2,         Padded,           1, ReportMissing)   \
  X(ConvertINT4OIDToSQLT_AFC,    printInt4Array,    Padded,           1, ReportMissing)   \
  X(ConvertINT8OIDToSQLT_AFC,    printInt8Array,    Padded,           1, ReportMissing)   \
  X(ConvertINT2OIDToSQLT_LNG,    printInt2,         Plain,            1, ReportMissing)   \
  X(ConvertINT4OIDToSQLT_LNG,    printInt4,         Plain,            0, Silent)          \
  X(ConvertINT8OIDToSQLT_LNG,    printInt8,         Plain,            0, Silent)          \
  X(ConvertINT2OIDToSQLT_STR,    printInt2,         Terminated,       1, ReportMissing,   \
    .maxValue = 2000)                                                                     \
  X(ConvertINT4OIDToSQLT_STR,    printInt4,         TerminatedBehind, 1, Silent)          \
  X(ConvertINT8OIDToSQLT_STR,    printInt8,         TerminatedBehind, 1, Silent)          \
  X(ConvertINT2OIDToSQLT_VCS,    printInt2,         Counted2,         1, ReportMissing,   \
    .missing = 2, .minCap = 2)                                                            \
  X(ConvertINT4OIDToSQLT_VCS,    printInt4,         Counted2,         2, Silent, .minCap = 2) \
  X(ConvertINT8OIDToSQLT_VCS,    printInt8,         Counted2,         2, Silent, .minCap = 2) \
  X(ConvertINT2OIDToSQLT_LVC,    printInt2,         Counted4,         1, Record22053,     \
    .missing = 4, .minCap = 4)                                                            \
  X(ConvertINT4OIDToSQLT_LVC,    printInt4Array,    Counted4,         5, ReportMissingField, \
    .missing = 4, .minCap = 4)                                                            \
  X(ConvertINT8OIDToSQLT_LVC,    printInt8Array,    Counted4,         5, ReportMissingField, \
    .missing = 4, .minCap = 4)                                                            \
  X(ConvertINT2OIDToSQLT_AVC,    printInt2,         PaddedTerminated, 1, ReportMissing)   \
  X(ConvertINT4OIDToSQLT_AVC,    printInt4Array,    PaddedTerminated, 1, ReportMissing)   \
  X(ConvertINT8OIDToSQLT_AVC,    printInt8Array,    PaddedTerminated, 1, ReportMissing)   \
  \
  X(ConvertFLOAT4OIDToSQLT_CHR,  printFloat4,       Padded,           0, Record1406)      \
  X(ConvertFLOAT8OIDToSQLT_CHR,  printFloat8,       Padded,           0, Record1406)      \
  X(ConvertFLOAT4OIDToSQLT_LNG,  printFloat4,       Padded,           0, Record1406)      \
  X(ConvertFLOAT8OIDToSQLT_LNG,  printFloat8,       Padded,           0, Record1406)      \
  X(ConvertFLOAT4OIDToSQLT_AFC,  printFloat4,       Padded,           0, Record1406)      \
  X(ConvertFLOAT8OIDToSQLT_AFC,  printFloat8,       Padded,           0, Record1406)      \
  X(ConvertFLOAT4OIDToSQLT_STR,  printFloat4,       Terminated,       1, Record1406, FLOAT4_STR) \
  X(ConvertFLOAT8OIDToSQLT_STR,  printFloat8,       Terminated,       1, Record1406, FLOAT8_STR) \
  X(ConvertFLOAT4OIDToSQLT_VCS,  printRawFloat4,    Counted2,         2, Record1406, FLOAT_COUNTED(2)) \
  X(ConvertFLOAT8OIDToSQLT_VCS,  printRawFloat8,    Counted2,         2, Record1406, FLOAT_COUNTED(2)) \
  X(ConvertFLOAT4OIDToSQLT_LVC,  printRawFloat4,    Counted4,         4, Record1406, FLOAT_COUNTED(4)) \
  X(ConvertFLOAT8OIDToSQLT_LVC,  printLongRawFloat8, Counted4,        4, Record1406, FLOAT_COUNTED(4)) \
  \
  X(ConvertNUMERICOIDToSQLT_CHR, printNumeric,      Padded,           0, Clip, NUMERIC(4000)) \
  X(ConvertNUMERICOIDToSQLT_STR, printNumeric,      Terminated,       0, Refuse, NUMERIC(4000)) \
  X(ConvertNUMERICOIDToSQLT_LNG, printNumeric,      Plain,            0, Clip,            \
    NUMERIC(SB4MAXVAL - 1), .clipMask = UB2MAXVAL)                                         \
  X(ConvertNUMERICOIDToSQLT_VCS, printNumeric,      Counted2,         2, Clip,            \
    .minCap = 2, NUMERIC(65533))                                                          \
  X(ConvertNUMERICOIDToSQLT_LVC, printNumeric,      Counted4,         4, Clip,            \
    .minCap = 4, NUMERIC(0x7FFFFFFA))                                                     \
  X(ConvertNUMERICOIDToSQLT_AFC, printNumeric,      Padded,           0, Clip, NUMERIC(2000)) \
  X(ConvertNUMERICOIDToSQLT_AVC, printNumeric,      PaddedTerminated, 0, Clip, NUMERIC(2000))
// clang-format on

#define DEFINE(name, print, layoutOf, roomOf, spillOf, ...)                       \
  extern "C" sword name(FETCH_PARAMS) {                                           \
    using namespace zev;                                                          \
    constexpr TextRule kRule{.layout = Layout::layoutOf,                          \
                             .room = roomOf,                                      \
                             .spill = Spill::spillOf __VA_OPT__(, ) __VA_ARGS__}; \
    return fetchText<print, kRule>(FETCH_ARGUMENTS);                              \
  }
#define DEFINE_OVERWRITTEN(name, fetchChr, reserved)                   \
  extern "C" sword name(FETCH_PARAMS) {                                \
    return zev::fetchOverwritten<fetchChr, reserved>(FETCH_ARGUMENTS); \
  }
TEXT_MEMBERS(DEFINE)
OVERWRITTEN_MEMBERS(DEFINE_OVERWRITTEN)
#undef DEFINE_OVERWRITTEN
#undef DEFINE
#undef TEXT_MEMBERS
#undef NUMERIC
#undef FLOAT_COUNTED
#undef FLOAT8_STR
#undef FLOAT4_STR
#undef OVERWRITTEN_MEMBERS
