/// The float rows into native integers and floats.
#include <cmath>
#include <limits>

#include "types/fetch_rules.h"
#include "types/number_text.h"

namespace zev {
namespace {

/// Toward zero; a value beyond 64 bits is the lowest integer, as the processor has it.
sb8 truncate(double x) {
  constexpr double kBeyond = 9223372036854775808.0;
  return x >= -kBeyond && x < kBeyond ? static_cast<sb8>(x)
                                      : std::numeric_limits<sb8>::min();
}

/// A binary field on its way to an integer: of a double only the first four bytes are
/// swapped.
template <class Float>
double readForInteger(const void *value) {
  char bytes[sizeof(Float)];
  std::memcpy(bytes, value, sizeof bytes);
  Convert4BytesToNetworkOrder(bytes);
  return static_cast<double>(readNative<Float>(bytes));
}

/// Stores an integer; one that does not fit a short target is recorded and delivered all
/// the same.
template <std::size_t Checked, Sign Target>
sword storeTruncated(OCIError *errhp, sb8 value, void *target, ub4 cap) {
  switch (storeInteger<Checked, Target>(target, cap, value)) {
    case Stored::Whole:
      return 0;
    case Stored::Cut:
      return record(errhp, 22054, 0);
    case Stored::NoSuchWidth:
      break;
  }
  return -1;
}

/// The body of the INT and UIN members, which check widths up to `Checked`.
template <class Float, std::size_t Checked, Sign Target>
sword fetchTruncated(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  double number = 0;
  if (format == kFieldText) {
    const auto parsed = parseDouble(static_cast<const char *>(value));
    if (*parsed.end != '\0') return -1;
    number = static_cast<double>(static_cast<Float>(parsed.value));
  } else {
    if (format != kFieldBinary || valueLength < static_cast<sb4>(sizeof(Float)))
      return -1;
    number = readForInteger<Float>(value);
  }
  return storeTruncated<Checked, Target>(errhp, truncate(number), target, *targetLength);
}

/// When a target is found too short for a float.
enum class CapTest { BeforeNull, AfterNull };

/// The body of the FLT members: a float below 8 bytes, a double from there on.
template <class Float, CapTest Order>
sword fetchFloat(FETCH_PARAMS) {
  clearIndicator(indicator);
  const bool tooShort = *targetLength < sizeof(float);
  if (Order == CapTest::BeforeNull && tooShort) return -1;
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (tooShort) return -1;
  Float number = 0;
  if (format == kFieldText) {
    number = static_cast<Float>(parseDouble(static_cast<const char *>(value)).value);
  } else {
    if (format != kFieldBinary || valueLength < static_cast<sb4>(sizeof(Float)))
      return -1;
    number = readNetwork<Float>(value);
  }
  if (*targetLength < sizeof(double)) {
    writeNative(target, static_cast<float>(number));
    *targetLength = sizeof(float);
  } else {
    writeNative(target, static_cast<double>(number));
    *targetLength = sizeof(double);
  }
  return 0;
}

}  // namespace
}  // namespace zev

// clang-format off
#define INTEGER_MEMBERS(X)                             \
  X(ConvertFLOAT4OIDToSQLT_INT, float,  2, Signed)     \
  X(ConvertFLOAT4OIDToSQLT_UIN, float,  4, Unsigned)   \
  X(ConvertFLOAT8OIDToSQLT_INT, double, 2, Signed)     \
  X(ConvertFLOAT8OIDToSQLT_UIN, double, 4, Unsigned)

#define FLOAT_MEMBERS(X)                               \
  X(ConvertFLOAT4OIDToSQLT_FLT, float,  BeforeNull)    \
  X(ConvertFLOAT8OIDToSQLT_FLT, double, AfterNull)

// The size of the target is not looked at.
#define FIXED_MEMBERS(X)                                         \
  X(ConvertFLOAT4OIDToSQLT_BFLOAT,  ConvertFLOAT4OIDToSQLT_FLT, 4) \
  X(ConvertFLOAT8OIDToSQLT_BFLOAT,  ConvertFLOAT8OIDToSQLT_FLT, 4) \
  X(ConvertFLOAT4OIDToSQLT_BDOUBLE, ConvertFLOAT4OIDToSQLT_FLT, 8) \
  X(ConvertFLOAT8OIDToSQLT_BDOUBLE, ConvertFLOAT8OIDToSQLT_FLT, 8)
// clang-format on

#define DEFINE_INTEGER(name, Float, checked, sign)                                \
  extern "C" sword name(FETCH_PARAMS) {                                           \
    return zev::fetchTruncated<Float, checked, zev::Sign::sign>(FETCH_ARGUMENTS); \
  }
#define DEFINE_FLOAT(name, Float, order)                                 \
  extern "C" sword name(FETCH_PARAMS) {                                  \
    return zev::fetchFloat<Float, zev::CapTest::order>(FETCH_ARGUMENTS); \
  }
#define DEFINE_FIXED(name, fetch, width)                           \
  extern "C" sword name(FETCH_PARAMS) {                            \
    return zev::fetchFixedFloat<fetch, width, 0>(FETCH_ARGUMENTS); \
  }
INTEGER_MEMBERS(DEFINE_INTEGER)
FLOAT_MEMBERS(DEFINE_FLOAT)
FIXED_MEMBERS(DEFINE_FIXED)
#undef DEFINE_FIXED
#undef DEFINE_FLOAT
#undef DEFINE_INTEGER
#undef FIXED_MEMBERS
#undef FLOAT_MEMBERS
#undef INTEGER_MEMBERS
