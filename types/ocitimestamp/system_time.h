/// The C library's clock of the local zone. Calls take their turn: each may read the TZ
/// variable anew and replace what the library keeps of it.
#pragma once

#include <ctime>
#include <optional>

namespace zev {

/// A moment in the local zone; empty when the library cannot tell.
std::optional<std::tm> systemLocalTime(std::time_t time);
/// The fields of a local time as a moment, normalised in place; -1 when there is none.
std::time_t systemMakeTime(std::tm &fields);

}  // namespace zev
