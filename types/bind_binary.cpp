/// Binary strings on their way to the server.
#include "types/bind_rules.h"

namespace zev {
namespace {

/// The input of a member: the width of the length before the bytes, and what is refused.
struct BinaryRule {
  ub1 prefix = 0;
  ub4 maxLength =
      UB4MAXVAL;  ///< of the bytes behind a prefix, which may not be empty either
  sb4 maxSize = SB4MAXVAL;  ///< of the whole input
};

template <BinaryRule Rule>
sword bindBinary(BIND_PARAMS) {
  clearOutputs(outBuffer, outLength, outFormat, kBinaryFormat);
  if (!value || valueLength > Rule.maxSize) return -1;
  auto *bytes = static_cast<const char *>(value);
  ub4 length = static_cast<ub4>(valueLength);
  if constexpr (Rule.prefix != 0) {
    length = Rule.prefix == 2 ? readNative<ub2>(bytes) : readNative<ub4>(bytes);
    if (length == 0 || length > Rule.maxLength) return -1;
    bytes += Rule.prefix;
  }
  if (AllocBufferAndCopy(outBuffer, static_cast<sb4>(length), bytes) != 0) return -1;
  *outLength = length;
  return 0;
}

constexpr sb4 kBelowMax = SB4MAXVAL - 1;

}  // namespace
}  // namespace zev

// clang-format off
#define BINARY_MEMBERS(X)                                                        \
  X(ConvertSQLT_BINToBYTEAOID, .prefix = 0)                                      \
  X(ConvertSQLT_LBIToBYTEAOID, .prefix = 0, .maxSize = zev::kBelowMax)           \
  X(ConvertSQLT_VBIToBYTEAOID, .prefix = 2, .maxLength = 65533, .maxSize = 65535) \
  X(ConvertSQLT_LVBToBYTEAOID, .prefix = 4, .maxLength = 0x7FFFFFFA,             \
    .maxSize = zev::kBelowMax)
// clang-format on
#define DEFINE(name, ...)                                                 \
  extern "C" sword name(BIND_PARAMS) {                                    \
    return zev::bindBinary<zev::BinaryRule{__VA_ARGS__}>(BIND_ARGUMENTS); \
  }
BINARY_MEMBERS(DEFINE)
#undef DEFINE
#undef BINARY_MEMBERS
