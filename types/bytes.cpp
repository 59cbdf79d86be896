#include "types/bytes.h"

#include <cstdlib>

extern "C" void Convert4BytesToNetworkOrder(void *p) {
  zev::writeNative(p, zev::readNetwork<ub4>(p));
}

extern "C" void Convert8BytesToNetworkOrder(void *p) {
  zev::writeNative(p, zev::readNetwork<ub8>(p));
}

extern "C" sword AllocBufferAndCopy(void **out, sb4 size, const void *source) {
  // One byte at least, so that an empty value stays distinct from a missing one.
  const auto bytes = static_cast<std::size_t>(size > 0 ? size : 1);
  *out = size < 0 ? nullptr : std::malloc(bytes);
  if (!*out) return -1;
  zev::copyBytes(*out, source, size > 0 ? bytes : 0);
  return 0;
}
