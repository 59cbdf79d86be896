/// How descriptors are made of parts and of bytes.
#pragma once

#include "types/ocitimestamp/datetime_bytes.h"

namespace zev::dates {

/// The parts of a date and time as a program gives them.
struct Parts {
  sb2 year;
  ub1 month, day, hour, minute, second;
  ub4 fraction;
};

/// Stores parts that do not fit their ranges where they lead: seconds into minutes and so
/// on, each in 8 bits. A day behind the end of its month is the first of the next.
void ConstructTmFromData(OCIDate &out, Parts parts);

/// Makes a value of a descriptor's type; `timezone`, which ends in a NUL, is that of the
/// local zone where it is null. 0, or -1 with a record whose number tells the part.
sword construct(OCIError *err, OCIDateTimeBody &body, const Parts &parts,
                const char *timezone);

/// A value as bytes: SQLT_DAT's, then a count of fractions and the zone, of which the
/// first seven are in UTC for a zoned value. `*length` comes in as the room and goes out
/// as what was written. 0, or -1 with 1891 where there is too little.
sword toArray(OCIError *err, const OCIDateTimeBody &body, ub1 *out, ub4 *length);

/// A value of an external type from such bytes, as far as there are any. 0, or -1 with
/// 1866 for a type that is none.
sword fromArray(OCIError *err, OCIDateTimeBody &body, const ub1 *bytes, ub4 length,
                ub1 type);

}  // namespace zev::dates
