/// Names of the objects that statements leave on the server.
#pragma once

#include <oratypes.h>

#include "zevoci/api.h"

namespace zev {

/// Takes the next number of the process for a prepared statement: "stmt_%08x". A new
/// text, freed by the caller; null when memory runs out.
char *nextStatementName();
/// Portals and declared cursors share one count: "portal_%08x", "cursor_%08x".
char *nextPortalName();
char *nextCursorName();

}  // namespace zev

extern "C" {
/// A new text of `prefix` and `number` as eight lower-case hexadecimal digits.
ZEV_HELPER char *makeUniqueName(const char *prefix, ub4 number);
}
