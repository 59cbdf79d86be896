/// Encodings as numbers of the engine and back without text, digit by digit. No published
/// call goes this way, since it does not round; programs may ask for it by name.
#pragma once

#include <oci.h>

#include "decimal/m_apm.h"

extern "C" {
/// The power of ten of an encoding's point, twice that of its base; 0 for zero.
ZEV_HELPER sb2 DecodeOCIExponent(const OCINumber *number);
/// The exponent byte of half a power of ten, cut toward zero.
ZEV_HELPER ub1 EncodeOCIExponent(sb2 exponent, boolean positive);
/// Cuts zeros off both ends of the digits and ends a negative number. The power of ten of
/// each zero in front counts double.
ZEV_HELPER void StripOCINumber(OCINumber *number);
/// Whether a number is zero: 1 or 0.
ZEV_HELPER boolean MAPMIsZero(M_APM number);
ZEV_HELPER boolean OCINumberIsZero2(const OCINumber *number);
/// 0; -1 for null, a number that is not alive, and one of more than 80 digits, of which
/// 40 are kept.
ZEV_HELPER sword ConvertM_APMToOCINumber(M_APM from, OCINumber *to);
/// 0, or -1 for null and for bytes that are no digits.
ZEV_HELPER sword ConvertOCINumberToM_APM(const OCINumber *from, M_APM to);
}
