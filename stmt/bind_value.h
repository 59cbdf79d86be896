/// From one buffer of the program to a bind's value for the server.
#pragma once

#include "zevoci/statement.h"

namespace zev {

/// Converts `length` bytes at `buffer` into pgValue, pgLength and pgFormat. `*indicator`
/// is set for a null buffer; it may not be null. An empty value is null where the
/// environment says so.
sword convertBindValue(OCIBind *bind, OCIError *errhp, void *buffer, sb4 length,
                       sb2 *indicator);

}  // namespace zev
