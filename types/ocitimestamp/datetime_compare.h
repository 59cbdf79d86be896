/// The order of dates and times.
#pragma once

#include "types/ocitimestamp/datetime_bytes.h"

extern "C" {
/// Compares two values of `type`: OCIDates for SQLT_DATE, else descriptors of a published
/// descriptor type, zoned ones by their moments. `*result` gets -1, 0 or 1. Months are
/// taken one lower than they are, so that the days behind the end of a shorter month
/// before compare as those of the month after. 0, or -1 out of range without a record.
ZEV_HELPER sword DateTimeCompare(const void *a, const void *b, ub4 type, sword *result);
}
