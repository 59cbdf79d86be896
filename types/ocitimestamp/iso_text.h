/// The text of dates and times that the server sends under its usual DateStyle.
#pragma once

#include "types/ocitimestamp/calendar.h"

namespace zev {

/// A date and time as text says it.
struct IsoMoment {
  PGtm tm{};
  double fsec = 0;
  bool hasZone = false;  ///< whether `tm_gmtoff` is known
};

/// Reads "2001-02-03", "2001-02-03 04:05:06.25" and the latter with its zone, "+05:30",
/// as ParseDateTime and DecodeDateTime do, at a fraction of their cost. False for any
/// other text, also for dates in other forms and out of range: those are for them to
/// judge.
bool readIsoText(const char *text, std::size_t length, IsoMoment &moment);

}  // namespace zev
