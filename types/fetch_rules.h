/// What the converters of fetched values share: arguments, the null rule, reports of
/// overflow.
#pragma once

#include <string_view>
#include <type_traits>
#include <utility>

#include "types/bytes.h"
#include "types/converters.h"
#include "zevoci/errors.h"

/// The arguments of a converter from the server; conversion.h tells what they are.
/// `*targetLength` is the size of the target on entry.
#define FETCH_PARAMS                                                                     \
  [[maybe_unused]] OCIError *errhp, const void *value, [[maybe_unused]] sb4 valueLength, \
      [[maybe_unused]] ub1 format, void *target, [[maybe_unused]] ub4 *targetLength,     \
      [[maybe_unused]] sb2 *indicator, [[maybe_unused]] ub2 *returnCode
#define FETCH_ARGUMENTS \
  errhp, value, valueLength, format, target, targetLength, indicator, returnCode

namespace zev {

/// Formats of a fetched field.
enum FieldFormat : ub1 { kFieldText = 0, kFieldBinary = 1 };

inline void clearIndicator(sb2 *indicator) {
  if (indicator) *indicator = 0;
}
/// Whether a member clears the indicator on entry.
enum class Clear { Yes, No };

/// The bytes of a field; none for a missing value.
inline std::string_view fieldText(const void *value, sb4 valueLength) {
  if (!value || valueLength <= 0) return {};
  return {static_cast<const char *>(value), static_cast<std::size_t>(valueLength)};
}

/// Whether a field counts as null: no value, no bytes, or an empty text.
inline bool isNullField(const void *value, sb4 valueLength, ub1 format) {
  return !value || valueLength <= 0 ||
         (format == kFieldText && *static_cast<const char *>(value) == '\0');
}

/// What a null field does: 1405 in `*returnCode`, -1 in `*indicator` and success; without
/// an indicator record 1405 and status 1.
sword deliverNull(OCIError *errhp, sb2 *indicator, ub2 *returnCode);
/// The same, and the length becomes 0.
inline sword deliverNullWithoutLength(OCIError *errhp, ub4 *targetLength, sb2 *indicator,
                                      ub2 *returnCode) {
  *targetLength = 0;
  return deliverNull(errhp, indicator, returnCode);
}

/// Stores how many bytes are missing; 65534 stands for all counts from 65536 on.
inline void reportMissing(sb2 *indicator, std::size_t missing) {
  if (indicator) *indicator = static_cast<sb2>(missing >= 65536 ? 65534 : missing);
}

/// Records `code` and returns `status`, where a record does not make the call fail.
inline sword record(OCIError *errhp, sb4 code, sword status) {
  AddErrorRecord(errhp, OCI_ERROR, code);
  return status;
}

/// What became of an integer in a native target.
enum class Stored { Whole, Cut, NoSuchWidth };

/// Stores the low bytes of `value`.
template <class Narrow, class Wide>
Stored storeLow(void *target, Wide value) {
  writeNative(target, static_cast<Narrow>(value));
  return std::in_range<Narrow>(value) ? Stored::Whole : Stored::Cut;
}

enum class Sign { Signed, Unsigned };

/// Stores the low bytes of `value` in a target of 1, 2, 4 or 8 bytes. A value that does
/// not fit is told of for widths up to `Checked`; wider targets cut it in silence.
template <std::size_t Checked, Sign Target = Sign::Signed, class Value>
Stored storeInteger(void *target, ub4 cap, Value value) {
  const auto store = [&]<class SignedNarrow>(SignedNarrow) {
    using Narrow = std::conditional_t<Target == Sign::Signed, SignedNarrow,
                                      std::make_unsigned_t<SignedNarrow>>;
    const Stored stored = storeLow<Narrow>(target, value);
    return sizeof(Narrow) > Checked ? Stored::Whole : stored;
  };
  switch (cap) {
    case 1:
      return store(sb1{});
    case 2:
      return store(sb2{});
    case 4:
      return store(sb4{});
    case 8:
      return store(sb8{});
    default:
      return Stored::NoSuchWidth;
  }
}

/// A float of a fixed width, by `Fetch`, the member whose target's size tells the width:
/// that size becomes `Width`, and what it was again after a failure. A target below
/// `MinCap` bytes is refused; 0 refuses none.
template <FromServerConverter Fetch, ub4 Width, ub4 MinCap = Width>
sword fetchFixedFloat(FETCH_PARAMS) {
  const ub4 cap = *targetLength;
  if constexpr (MinCap != 0) {
    if (cap < MinCap) return -1;
  }
  *targetLength = Width;
  const sword status = Fetch(FETCH_ARGUMENTS);
  if (status < 0) *targetLength = cap;
  return status;
}

}  // namespace zev
