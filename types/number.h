/// Oracle's number in its two forms, and their exchange with text and with the server's
/// numeric.
///
/// NUMBER: an exponent byte, then the mantissa in base 100, the most significant digit
/// first. With E base-100 digits before the point, a positive number has the exponent
/// byte 192 + E and its digits plus 1; a negative one 63 - E, 101 minus its digits, and a
/// terminator 102 unless it is full. Zero is the byte 0x80. No length is stored.
/// VARNUM, which is also an OCINumber: a byte that counts what follows, then a NUMBER; 22
/// bytes at most. Zero is 01 80.
#pragma once

#include <oci.h>

#include "types/numeric.h"

namespace zev {
inline constexpr ub4 kNumberSize = 21;  ///< longest NUMBER
inline constexpr ub4 kVarnumSize = 22;  ///< longest VARNUM
}  // namespace zev

extern "C" {
/// The number zero as a VARNUM.
extern ZEV_HELPER const OCINumber OCIZero;

/// Splits decimal text into digits (one a byte, without zeros in front and, where the
/// digits end the text, behind), a sign (1 plus, 0 minus, as the caller set it when the
/// text has none) and the power of ten of the last digit. "," groups the integer part;
/// what follows the number is ignored. `digits` has room for as many bytes as the text.
/// 0; 1 for zero or empty text; -1 for bad text, an exponent outside -126 to 126, null
/// arguments and texts that 8-bit counts cannot measure (254 characters and more).
ZEV_HELPER sword ParseNumber(const char *s, ub1 *sign, ub1 *exponent, ub1 *digits,
                             ub1 *count);

/// Text to number: `out` has room for 22 bytes, since a terminator may stand behind the
/// longest NUMBER. Digits that do not fit are cut, and a power of ten beyond 8 bits
/// wraps. 0, or -1 for bad text with `out` as it was.
ZEV_HELPER sword ConvertStringToNUMBER(const char *s, ub1 *out);
ZEV_HELPER sword ConvertStringToVARNUM(const char *s, ub1 *out);
/// Number to text "0.xxxxEn" with a NUL, in at most 72 bytes of `out`. 0, or -1 for a bad
/// encoding.
ZEV_HELPER sword ConvertNUMBERToString(const ub1 *n, char *out);
ZEV_HELPER sword ConvertVARNUMToString(const ub1 *n, char *out);

/// Number to a new record that the caller frees. 0, or -1 for a bad encoding or without
/// memory. A NUMBER below 0.01 in magnitude comes out as a huge one, since its negative
/// power of ten is taken as an unsigned byte; a VARNUM does not.
ZEV_HELPER sword ConvertNUMBERToNumeric(const ub1 *n, numeric **out);
ZEV_HELPER sword ConvertVARNUMBERToNumeric(const ub1 *n, numeric **out);
/// Record in host order to number; `out` has room for the longest form. The power of 100
/// comes from `dscale` and `weight` alone and is right only for records in which they fit
/// together. 0, or -1 for null.
ZEV_HELPER sword ConvertNumericToNUMBER(numeric *v, ub1 *out);
ZEV_HELPER sword ConvertNumericToVARNUMBER(numeric *v, ub1 *out);
}

namespace zev {
/// Text to the 21 bytes of a longest NUMBER, 0 behind a shorter one, so that its end
/// shows whatever stood there. 0, or -1 for bad text with `out` as it was.
sword convertStringToWholeNumber(const char *s, ub1 *out);
/// Text to VARNUM with the digits that a NUMBER keeps, which are two less than a VARNUM's
/// when an even count stands before the point. 0, or -1 for bad text.
sword convertStringToShortVarnum(const char *s, ub1 *out);
}  // namespace zev
