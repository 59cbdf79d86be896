/// The text forms of the server's byte strings: hex ("\x" and two digits a byte) and
/// escape (bytes as they are, "\\" for a backslash, "\" and three octal digits for any
/// byte).
///
/// All three functions set `*indicator`, when it is given, to 0 first. `*length` is the
/// room of `out` on entry, a negative one counting as none, and the bytes produced on
/// exit; it stays where the outcome is a truncation or a failure. They return 0, 1 with
/// record 1406 where room ran out, and -1 with record 1465 for a bad escape.
#pragma once

#include <oci.h>

#include "zevoci/api.h"

extern "C" {
/// The hex digits, upper case: "0123456789ABCDEF" without a terminator.
extern ZEV_HELPER const char OracleBinaryStringReps[16];

/// The server's text to hex digits without "\x". Digits that come as hex are copied as
/// they are, and cut without a report. In the escape form a byte whose two digits do not
/// fit is dropped without a report when one byte of room is left; with none left
/// `*indicator` becomes minus the count of remaining source characters.
ZEV_HELPER sword ConvertPQBinStrToOCIBinStr(OCIError *errhp, const void *value,
                                            sb4 valueLength, char *out, sb4 *length,
                                            sb2 *indicator);

/// Bytes to hex digits. Each digit is stored as a word of 32 bits, from the address of
/// `length` on and not in `out`, so that the first digit replaces the length: `length`
/// points to as many words as the room it tells, at least one. No bytes leave 0 in it.
/// After a truncation `*indicator` is twice the count of remaining bytes, 65534 at most.
ZEV_HELPER sword ConvertBinaryToString(OCIError *errhp, const void *value,
                                       sb4 valueLength, char *out, sb4 *length,
                                       sb2 *indicator);

/// The server's text to bytes. Of a hex digit only the low four bits count, so that both
/// cases work and no character is refused; a last digit without a partner is no byte.
/// After a truncation `*indicator` is the count of bytes in the hex form (65534 stands
/// for more than fit), and minus the count of remaining source characters in the escape
/// form.
ZEV_HELPER sword ConvertStringToBinary(OCIError *errhp, const void *text, sb4 textLength,
                                       char *out, sb4 *length, sb2 *indicator);
}

namespace zev {

/// ConvertBinaryToString for a length that is no array of words: all that is visible of
/// the digits is the first one in `*length`.
sword binaryToTextLength(OCIError *errhp, const void *value, sb4 valueLength, sb4 *length,
                         sb2 *indicator);

/// The value of a hex digit as ConvertStringToBinary reads it.
constexpr ub1 hexDigitValue(char c) {
  const bool isDecimal = c >= '0' && c <= '9';
  const bool isUpper = c >= 'A' && c <= 'E';
  return static_cast<ub1>(c - (isDecimal ? '0' : isUpper ? '7' : 'W')) & 0xF;
}

}  // namespace zev
