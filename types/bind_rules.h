/// What the converters of bound values share.
#pragma once

#include "types/bytes.h"
#include "types/converters.h"

/// The arguments of a converter to the server; conversion.h tells what they are.
#define BIND_PARAMS                                                                      \
  [[maybe_unused]] OCIError *errhp, const void *value, [[maybe_unused]] sb4 valueLength, \
      [[maybe_unused]] sb2 *indicator, void **outBuffer, ub4 *outLength,                 \
      [[maybe_unused]] ub1 *outFormat
#define BIND_ARGUMENTS \
  errhp, value, valueLength, indicator, outBuffer, outLength, outFormat

namespace zev {

enum WireFormat : ub1 { kTextFormat = 0, kBinaryFormat = 1 };

/// Starts the outputs: no value yet, to be sent in `format`.
inline void clearOutputs(void **outBuffer, ub4 *outLength, ub1 *outFormat,
                         WireFormat format) {
  *outBuffer = nullptr;
  *outLength = 0;
  *outFormat = format;
}

}  // namespace zev
