/// The integer rows, and the single character as a number, into native integers and
/// floats.
#include "types/fetch_rules.h"
#include "types/number_text.h"

namespace zev {
namespace {

/// Values of the 32-bit reading that stand for one that was out of range.
enum class Edges { Accept, Refuse };

/// What a member does with a target whose size is no integer's.
enum class OtherSize { Refuse, Ignore };

/// Reads an integer of `Wire` from the text that `strtol` would; -1 in `status` when
/// refused.
template <class Wire, Edges Rule>
Wire readLong(OCIError *errhp, const char *s, sword &status) {
  const auto parsed = parseLong(s);
  const auto value = static_cast<sb4>(parsed.value);
  const bool atEdge = value == SB4MAXVAL || value == SB4MINVAL;
  // An ERANGE from before the call counts as well.
  if (errno == ERANGE || (Rule == Edges::Refuse && atEdge)) {
    status = -1;
  } else if (!std::in_range<Wire>(value)) {
    status = fail(errhp, 22053);
  }
  return static_cast<Wire>(value);
}

sb8 readInt8(OCIError *, const char *s, sword &) {
  return atoi64(s);
}

/// Stores `value` in the width of the target, signed or not as it is itself; one that
/// does not fit is recorded when it has been stored.
template <class Value, OtherSize Rule>
sword storeChecked(OCIError *errhp, Value value, void *target, ub4 cap) {
  constexpr Sign kSign = std::is_signed_v<Value> ? Sign::Signed : Sign::Unsigned;
  switch (storeInteger<4, kSign>(target, cap, value)) {
    case Stored::Whole:
      return 0;
    case Stored::Cut:
      return fail(errhp, 22053);
    case Stored::NoSuchWidth:
      break;
  }
  return Rule == OtherSize::Refuse ? -1 : 0;
}

/// The body of the INT and UIN members. `Read` takes the text form.
template <class Wire, auto Read, OtherSize Rule>
sword fetchInteger(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  Wire integer = 0;
  sword status = 0;
  if (format == kFieldText) {
    integer = static_cast<Wire>(Read(errhp, static_cast<const char *>(value), status));
  } else if (format == kFieldBinary) {
    if (valueLength < static_cast<sb4>(sizeof(Wire))) return -1;
    integer = readNetwork<Wire>(value);
  }
  if (status != 0) return status;
  return storeChecked<Wire, Rule>(errhp, integer, target, *targetLength);
}

template <class Value>
sword storeFloat(Value value, void *target, ub4 cap) {
  if (cap == sizeof(float)) {
    writeNative(target, static_cast<float>(value));
  } else if (cap == sizeof(double)) {
    writeNative(target, static_cast<double>(value));
  } else {
    return -1;
  }
  return 0;
}

/// The body of the FLT members: `Read` takes the text, a binary field needs `minBinary`
/// bytes.
template <class Wire, auto Read, sb4 minBinary>
sword fetchFloat(FETCH_PARAMS) {
  clearIndicator(indicator);
  if (isNullField(value, valueLength, format)) {
    return deliverNull(errhp, indicator, returnCode);
  }
  if (format == kFieldText) {
    const auto integer = static_cast<Wire>(Read(static_cast<const char *>(value)));
    return storeFloat(integer, target, *targetLength);
  }
  if (format != kFieldBinary || valueLength < minBinary) return -1;
  return storeFloat(readNetwork<Wire>(value), target, *targetLength);
}

long readAsLong(const char *s) {
  return parseLong(s).value;
}

}  // namespace
}  // namespace zev

// clang-format off
//   member                     wire  text form                      other sizes
#define INTEGER_MEMBERS(X)                                                       \
  X(ConvertCHAROIDToSQLT_INT,   sb1, (readLong<sb1, Edges::Refuse>), OtherSize::Refuse) \
  X(ConvertINT2OIDToSQLT_INT,   sb2, (readLong<sb2, Edges::Refuse>), OtherSize::Refuse) \
  X(ConvertINT4OIDToSQLT_INT,   sb4, (readLong<sb4, Edges::Accept>), OtherSize::Ignore) \
  X(ConvertINT8OIDToSQLT_INT,   sb8, readInt8,                       OtherSize::Refuse) \
  X(ConvertCHAROIDToSQLT_UIN,   ub1, (readLong<ub1, Edges::Refuse>), OtherSize::Refuse) \
  X(ConvertINT2OIDToSQLT_UIN,   ub2, (readLong<ub2, Edges::Refuse>), OtherSize::Refuse) \
  X(ConvertINT4OIDToSQLT_UIN,   ub4, (readLong<sb4, Edges::Refuse>), OtherSize::Ignore) \
  X(ConvertINT8OIDToSQLT_UIN,   ub8, readInt8,                       OtherSize::Refuse)

//   member                     wire  text form   bytes that a binary field needs
#define FLOAT_MEMBERS(X)                          \
  X(ConvertINT2OIDToSQLT_FLT,   sb2,  readAsLong, 2) \
  X(ConvertINT4OIDToSQLT_FLT,   sb4,  atoi64,     8) \
  X(ConvertINT8OIDToSQLT_FLT,   sb8,  atoi64,     8)

//   member                     native form of   width  smallest target
#define FIXED_MEMBERS(X)                                                 \
  X(ConvertCHAROIDToSQLT_BFLOAT,  ConvertCHAROIDToSQLT_FLT, 4, 4) \
  X(ConvertINT2OIDToSQLT_BFLOAT,  ConvertINT2OIDToSQLT_FLT, 4, 4) \
  X(ConvertINT4OIDToSQLT_BFLOAT,  ConvertINT4OIDToSQLT_FLT, 4, 4) \
  X(ConvertINT8OIDToSQLT_BFLOAT,  ConvertINT8OIDToSQLT_FLT, 4, 4) \
  X(ConvertCHAROIDToSQLT_BDOUBLE, ConvertCHAROIDToSQLT_FLT, 8, 8) \
  X(ConvertINT2OIDToSQLT_BDOUBLE, ConvertINT2OIDToSQLT_FLT, 8, 8) \
  X(ConvertINT4OIDToSQLT_BDOUBLE, ConvertINT4OIDToSQLT_FLT, 8, 8) \
  X(ConvertINT8OIDToSQLT_BDOUBLE, ConvertINT8OIDToSQLT_FLT, 8, 4)
// clang-format on

#define DEFINE_INTEGER(name, Wire, read, otherSize)              \
  extern "C" sword name(FETCH_PARAMS) {                          \
    using namespace zev;                                         \
    return fetchInteger<Wire, read, otherSize>(FETCH_ARGUMENTS); \
  }
#define DEFINE_FLOAT(name, Wire, read, minBinary)              \
  extern "C" sword name(FETCH_PARAMS) {                        \
    using namespace zev;                                       \
    return fetchFloat<Wire, read, minBinary>(FETCH_ARGUMENTS); \
  }
#define DEFINE_FIXED(name, fetch, width, minCap)                        \
  extern "C" sword name(FETCH_PARAMS) {                                 \
    return zev::fetchFixedFloat<fetch, width, minCap>(FETCH_ARGUMENTS); \
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
