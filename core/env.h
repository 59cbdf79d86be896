/// What the handle layer needs of environments beside their published functions.
#pragma once

#include "zevoci/handle.h"

namespace zev {

/// Opens the environment's two conversions between `encodingName` and UTF-8 and turns
/// UTF-16 mode on. False when the system knows no such conversion.
bool openConversions(OCIEnv *env, const char *encodingName);

/// As InitNls; false when memory runs out, and the encoding is then not settled.
bool settleEncoding(OCIEnv *env, ub2 csid);

}  // namespace zev
