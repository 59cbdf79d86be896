/// Numbers of the server that are fetched as Oracle's numbers.
#include <ociap.h>

#include "types/fetch_rules.h"
#include "types/number.h"
#include "types/number_printers.h"
#include "types/number_text.h"

namespace zev {
namespace {

/// What a member delivers, and what it tells as its length.
enum class Result {
  Number,             ///< a NUMBER; 21, whatever it takes
  VarnumAndCount,     ///< a VARNUM; its first byte
  VarnumAndItsLength  ///< a VARNUM; all its bytes
};

/// One member of the family.
struct NumberRule {
  Result result;
  ub4 minCap;
  sb4 minBinary = 0;  ///< bytes that a binary field needs
  sb4 minValue = 0;   ///< bytes that a field needs in either format
  bool emptyIsNull = true;
};

template <Result Rule>
sword storeNumber(const char *s, void *target, ub4 *targetLength) {
  auto *out = static_cast<ub1 *>(target);
  constexpr auto kConvert =
      Rule == Result::Number ? convertStringToWholeNumber : ConvertStringToVARNUM;
  if (kConvert(s, out) != 0) return -1;
  if constexpr (Rule == Result::Number) *targetLength = kNumberSize;
  if constexpr (Rule == Result::VarnumAndCount) *targetLength = out[0];
  if constexpr (Rule == Result::VarnumAndItsLength) *targetLength = out[0] + 1u;
  return 0;
}

/// The body of the members whose binary fields are printed first.
template <Printer Print, NumberRule Rule>
sword fetchNumber(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (*targetLength < Rule.minCap) return -1;
  if (Rule.emptyIsNull ? isNullField(value, valueLength, format) : !value) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (valueLength < Rule.minValue) return -1;
  if (format == kFieldText) {
    return storeNumber<Rule.result>(static_cast<const char *>(value), target,
                                    targetLength);
  }
  Scratch scratch;
  std::string_view chars;
  if (format != kFieldBinary || valueLength < Rule.minBinary) return -1;
  if (!Print(value, valueLength, scratch, chars)) return -1;
  return storeNumber<Rule.result>(chars.data(), target, targetLength);
}

/// The body of the integers' SQLT_VNU members.
template <class Wire, Clear Indicator>
sword fetchVarnum(FETCH_PARAMS) {
  if (Indicator == Clear::Yes) clearIndicator(indicator);
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  // The bytes are taken as they come, in network order.
  if (format == kFieldBinary && valueLength >= static_cast<sb4>(sizeof(Wire))) {
    auto *const number = static_cast<OCINumber *>(target);
    const sword status =
        OCINumberFromInt(errhp, value, sizeof(Wire), OCI_NUMBER_SIGNED, number);
    if (status == 0) *targetLength = number->OCINumberPart[0] + 1u;
    return status;
  }
  if (format != kFieldText || *targetLength < 3) return -1;
  return storeNumber<Result::VarnumAndItsLength>(static_cast<const char *>(value), target,
                                                 targetLength);
}

/// A binary numeric by `Convert`, or a numeric in text by `Parse`.
template <auto Convert, auto Parse>
sword convertNumeric(const void *value, sb4 valueLength, ub1 format, void *target) {
  auto *out = static_cast<ub1 *>(target);
  if (format == kFieldText) return Parse(static_cast<const char *>(value), out);
  const Malloced<numeric> number(copyNumericField(value, valueLength));
  return number ? Convert(number.get(), out) : -1;
}

// An integer needs the bytes of the longest one, whatever its own are.
constexpr NumberRule kInteger{Result::Number, kNumberSize, 8};
constexpr NumberRule kFloat4{Result::Number, 2};
constexpr NumberRule kFloat4Varnum{Result::VarnumAndCount, 2};
constexpr NumberRule kFloat8{Result::Number, 2, 8, 8, false};
constexpr NumberRule kFloat8Varnum{Result::VarnumAndCount, 2, 8, 8, false};

}  // namespace
}  // namespace zev

// clang-format off
#define NUMBER_MEMBERS(X)                                   \
  X(ConvertINT2OIDToSQLT_NUM,   printWholeInt2, kInteger)      \
  X(ConvertINT4OIDToSQLT_NUM,   printInt4,   kInteger)      \
  X(ConvertINT8OIDToSQLT_NUM,   printInt8,   kInteger)      \
  X(ConvertFLOAT4OIDToSQLT_NUM, printFloat4, kFloat4)       \
  X(ConvertFLOAT8OIDToSQLT_NUM, printFloat8, kFloat8)       \
  X(ConvertFLOAT4OIDToSQLT_VNU, printFloat4, kFloat4Varnum) \
  X(ConvertFLOAT8OIDToSQLT_VNU, printFloat8, kFloat8Varnum)

#define VARNUM_MEMBERS(X)             \
  X(ConvertINT2OIDToSQLT_VNU, sb2, No)    \
  X(ConvertINT4OIDToSQLT_VNU, sb4, No)    \
  X(ConvertINT8OIDToSQLT_VNU, sb8, Yes)
// clang-format on
#define DEFINE_NUMBER(name, print, rule)              \
  extern "C" sword name(FETCH_PARAMS) {               \
    using namespace zev;                              \
    return fetchNumber<print, rule>(FETCH_ARGUMENTS); \
  }
#define DEFINE_VARNUM(name, Wire, clear)                               \
  extern "C" sword name(FETCH_PARAMS) {                                \
    return zev::fetchVarnum<Wire, zev::Clear::clear>(FETCH_ARGUMENTS); \
  }
NUMBER_MEMBERS(DEFINE_NUMBER)
VARNUM_MEMBERS(DEFINE_VARNUM)
#undef DEFINE_VARNUM
#undef DEFINE_NUMBER
#undef VARNUM_MEMBERS
#undef NUMBER_MEMBERS

extern "C" sword ConvertNUMERICOIDToSQLT_VNU(FETCH_PARAMS) {
  std::memset(target, 0, zev::kVarnumSize);
  zev::clearIndicator(indicator);
  // Without room for any number the field may still be null; otherwise an empty one is 0.
  if (*targetLength < 2 && zev::isNullField(value, valueLength, format)) {
    return zev::deliverNullWithoutLength(errhp, targetLength, indicator, nullptr);
  }
  if (format > zev::kFieldBinary) return -1;
  const sword status =
      zev::convertNumeric<ConvertNumericToVARNUMBER, zev::convertStringToShortVarnum>(
          value, valueLength, format, target);
  if (status != 0) return zev::record(errhp, 1722, status);
  *targetLength = *static_cast<const ub1 *>(target) + 1u;
  return 0;
}

extern "C" sword ConvertNUMERICOIDToSQLT_NUM(FETCH_PARAMS) {
  zev::clearIndicator(indicator);
  if (*targetLength < zev::kNumberSize) return -1;
  if (zev::isNullField(value, valueLength, format)) {
    return zev::deliverNullWithoutLength(errhp, targetLength, indicator, returnCode);
  }
  if (format > zev::kFieldBinary) return -1;
  ub1 number[zev::kNumberSize + 1] = {};
  const sword status = zev::convertNumeric<ConvertNumericToNUMBER, ConvertStringToNUMBER>(
      value, valueLength, format, number);
  if (status != 0) return zev::record(errhp, 1722, status);
  std::memcpy(target, number, zev::kNumberSize);
  *targetLength = zev::kNumberSize;
  return 0;
}
