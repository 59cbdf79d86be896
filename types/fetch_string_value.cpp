/// Numbers that are fetched into a string value, whose allocated size is the limit.
#include <algorithm>
#include <string_view>

#include "types/fetch_rules.h"
#include "types/number_printers.h"
#include "types/number_text.h"
#include "zevoci/string_value.h"

namespace zev {
namespace {

/// Which bytes a string gets that is too short for the text.
enum class CutFrom {
  Text,
  Field,  ///< those of the field, printed or not
};

/// What a target does that is shorter than the member asks for.
enum class ShortTarget { Refuse, Leave };

/// One member of the family.
struct StringRule {
  CutFrom cutFrom;
  ub4 minCap;
  ShortTarget whenShort;
  bool nullClearsLength;
};

sword storeWhole(std::string_view chars, OCIString &string) {
  copyBytes(string.text, chars.data(), chars.size());
  string.text[chars.size()] = '\0';
  string.length = static_cast<ub4>(chars.size());
  return 0;
}

/// Stores as many of `chars` as have room before a NUL.
sword storeCut(OCIError *errhp, std::string_view chars, OCIString &string) {
  const sword status = record(errhp, 1406, 1);
  const ub4 size = string.allocatedSize;
  string.length = size == 0 ? 0 : size - 1;
  if (size == 0) return status;
  copyBytes(string.text, chars.data(), std::min<std::size_t>(chars.size(), size - 1));
  string.text[size - 1] = '\0';
  return status;
}

template <Printer Print, StringRule Rule>
sword fetchString(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (*targetLength < Rule.minCap) return Rule.whenShort == ShortTarget::Refuse ? -1 : 0;
  if (isNullField(value, valueLength, format)) {
    return Rule.nullClearsLength
               ? deliverNullWithoutLength(errhp, targetLength, indicator, returnCode)
               : deliverNull(errhp, indicator, returnCode);
  }
  const std::string_view field = fieldText(value, valueLength);
  Scratch scratch;
  std::string_view chars = field;
  if (format != kFieldText) {
    if (format != kFieldBinary || !Print(value, valueLength, scratch, chars)) return -1;
  }
  OCIString &string = *readNative<OCIString *>(target);
  if (chars.size() + 1 <= string.allocatedSize) return storeWhole(chars, string);
  reportMissing(indicator, chars.size() + 1 - string.allocatedSize);
  return storeCut(errhp, Rule.cutFrom == CutFrom::Field ? field : chars, string);
}

constexpr StringRule kRawCut{CutFrom::Field, 4, ShortTarget::Refuse, false};
constexpr StringRule kTextCut{CutFrom::Text, 4, ShortTarget::Refuse, false};
constexpr StringRule kNumeric{CutFrom::Text, 1, ShortTarget::Leave, true};

}  // namespace
}  // namespace zev

// clang-format off
#define STRING_MEMBERS(X)                                                        \
  X(ConvertINT2OIDToSQLT_VST,    printWholeInt2,                  kRawCut)      \
  X(ConvertINT4OIDToSQLT_VST,    printInt4,                       kRawCut)      \
  X(ConvertINT8OIDToSQLT_VST,    printInt8,                       kTextCut)     \
  X(ConvertFLOAT4OIDToSQLT_VST,  printFloat4,                      kRawCut)      \
  X(ConvertFLOAT8OIDToSQLT_VST,  printFloat8,                      kRawCut)      \
  X(ConvertNUMERICOIDToSQLT_VST, printUnswappedNumeric,            kNumeric)
// clang-format on
#define DEFINE(name, print, rule)                     \
  extern "C" sword name(FETCH_PARAMS) {               \
    using namespace zev;                              \
    return fetchString<print, rule>(FETCH_ARGUMENTS); \
  }
STRING_MEMBERS(DEFINE)
#undef DEFINE
#undef STRING_MEMBERS
