/// The descriptors of date, time and interval values.
#pragma once

#include "zevoci/handle.h"
#include "zevoci/pgtm.h"

/// The value behind an OCIDateTime. What a count in `fraction` measures depends on who
/// wrote it, and so does the sign of `tzSeconds`; `tzHour` and `tzMinute`, which programs
/// see, are always east positive.
struct OCIDateTimeBody {
  ub1 fraction[4];   ///< fractional seconds, big-endian
  char tzText[12];   ///< of the zone, mostly "+hh:mm"
  sb4 tzSeconds;     ///< displacement of the zone
  sb1 tzHour;        ///< of the zone, east positive
  ub1 tzMinute;      ///< of the zone
  ub1 tzSecond;      ///< of the zone
  ub1 dateTimeType;  ///< OCI_DTYPE_DATE, _TIMESTAMP, _TIMESTAMP_TZ or _TIMESTAMP_LTZ
  OCIDate date;
  ub1 valid;  ///< 1 when the value may be read
};

struct OCIDateTime : OCIHandle {
  OCIDateTimeBody *body;  ///< owned
};

/// The value behind an OCIInterval.
struct OCIIntervalBody {
  Interval interval;
  ub1 intervalType;  ///< OCI_DTYPE_INTERVAL_YM or OCI_DTYPE_INTERVAL_DS
  ub1 valid;         ///< 1 when the value may be read
};

struct OCIInterval : OCIHandle {
  OCIIntervalBody *body;  ///< owned
};

extern "C" {
/// A new descriptor of a published type, 65, 68, 69 or 70; and 62 or 63. Its value may be
/// read at once. Null without memory.
ZEV_HELPER OCIDateTime *Alloc_OCIDateTime(ub4 type);
ZEV_HELPER OCIInterval *Alloc_OCIInterval(ub4 type);
/// Free a descriptor with its body; anything else is left alone.
ZEV_HELPER void Free_OCIDateTime(OCIDateTime *descriptor);
ZEV_HELPER void Free_OCIInterval(OCIInterval *descriptor);
}
