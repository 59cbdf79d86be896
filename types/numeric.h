/// The server's binary numeric (type numeric, the form of its binary send and receive
/// functions) in host byte order, and what converts it to text and native numbers.
#pragma once

#include <oratypes.h>

#include <cstddef>

#include "zevoci/api.h"

/// Sign words; any sign with the top bit set is not a number.
enum NumericSign : ub2 {
  kNumericPositive = 0,
  kNumericNegative = 0x4000,
  kNumericNaN = 0xC000,
};

/// A number in base 10000: digits[0] counts 10000 to the power of `weight`. The record is
/// 8 + 2 * ndigits bytes, in network order on the wire.
struct numeric {
  sb2 ndigits;
  sb2 weight;
  ub2 sign;
  sb2 dscale;  ///< decimal digits after the point
  sb2 digits[];
};

extern "C" {
extern ZEV_HELPER const int round_powers[4];

/// A record with room for `ndigits` digits, and for one more that rounding may add, in
/// `*out`; the other fields are the caller's, who also frees it. 0, or -1 when memory
/// runs out.
ZEV_HELPER sword alloc_var(numeric **out, int ndigits);
/// Removes leading and trailing zero digits; nothing left is a positive zero. With
/// leading zeros only the first two digits behind them move to the front, so that a
/// record with leading zeros must not have more; those made here never have any.
ZEV_HELPER void strip_var(numeric *v);
/// Rounds half up in magnitude to `dscale` decimal digits, which may be negative.
ZEV_HELPER void round_var(numeric *v, int dscale);

/// Reads a decimal number with optional exponent, or "NaN", in white space. A new record
/// that the caller frees in `*out`. 0, or -1 for other text and for numbers that the
/// record cannot hold.
ZEV_HELPER sword ConvertStringToNumeric(const char *s, numeric **out);
/// Prints with exactly `dscale` digits behind the point (a negative one is 0) and rounds
/// `v` to that. A new text that the caller frees in `*out`. 0, or -1 when memory runs
/// out.
ZEV_HELPER sword ConvertNumericToString(numeric *v, char **out, int dscale);

/// Round to an integer. 0; 1 when it is out of range, with `*out` as it was; -1 when a
/// fraction is left. Not a number is 0.
ZEV_HELPER sword numericvar_to_int8(numeric *v, sb8 *out);
ZEV_HELPER sword numericvar_to_int4(numeric *v, sb4 *out);
ZEV_HELPER sword numericvar_to_int2(numeric *v, sb2 *out);
ZEV_HELPER sword numericvar_to_int1(numeric *v, sb1 *out);
/// 0; 1 when out of range, or for the float when narrowing changes the value, which is
/// stored all the same; -1 when the printed text is no number.
ZEV_HELPER sword numericvar_to_double(numeric *v, double *out);
ZEV_HELPER sword numericvar_to_float(numeric *v, float *out);

/// Swap all fields and digits in place.
ZEV_HELPER void ConvertNumericFromNetToHostOrder(numeric *v);
ZEV_HELPER void ConvertNumericFromHostToNetOrder(numeric *v);
}

namespace zev {

/// Bytes of a record with `ndigits` digits.
constexpr std::size_t numericSize(int ndigits) {
  return sizeof(numeric) + sizeof(sb2) * static_cast<std::size_t>(ndigits);
}

/// Whether the fields are in the ranges that the functions above keep.
bool isWellFormed(const numeric &v);

/// A host-order copy of a binary field of `length` bytes, to be freed; null when the
/// bytes are no whole record or memory runs out.
numeric *copyNumericField(const void *value, sb4 length);

}  // namespace zev
