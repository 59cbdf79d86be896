/// Text of dates that programs ask the library for by name; the engine itself does not.
#pragma once

#include "types/ocitimestamp/datetime_bytes.h"

extern "C" {
/// Writes a Timestamp as text without a terminator; `*length` is the size of
/// `destination`, and then what was written. 0, or -1: no destination, out of range with
/// a record, or a text that is too long.
ZEV_HELPER sword ConvertTimestampToChars(OCIError *errhp, char *destination, ub4 *length,
                                         Timestamp timestamp);

/// Text to the seven bytes of SQLT_DAT by a format of words, "DD-MON-YYYY HH/MM/SS",
/// which are matched to those of the text one by one. Months are "M" or "MO", minutes
/// "MM", and "YY" is of the last century. 0, or -1 for words that do not fit, also for
/// days above 30 and December by its name.
ZEV_HELPER sword ConvertStringToDATE(const char *text, const char *format, ub1 *out);
/// The seven bytes to text in such a format, whose separators stay. `out` has room for
/// the format and each number's digits. 0; an unknown word ends the text.
ZEV_HELPER sword ConvertDATEToString(const ub1 *bytes, const char *format, char *out);
/// Text of a date and time as "dd-mm-yyyy", with time and fraction where there is one. 0,
/// or -1 for text that is no date.
ZEV_HELPER sword ConvertISODateToRedwoodDate(OCIError *errhp, const char *text,
                                             char *out);
/// The month of a name, 1 to 11: by its short name (mode 0), its long one (mode 1) or
/// either (mode 2). 0 for any other word, and for December, whose number wraps.
ZEV_HELPER sb4 ismonth(const char *word, sb4 mode);
extern ZEV_HELPER const char *const ocimonths[24];
}
