/// Reading and writing values in memory of any alignment, and network byte order.
#pragma once

#include <oratypes.h>

#include <bit>
#include <cstddef>
#include <cstring>
#include <type_traits>

#include "zevoci/api.h"

extern "C" {
/// Swap the bytes in place.
ZEV_HELPER void Convert4BytesToNetworkOrder(void *p);
ZEV_HELPER void Convert8BytesToNetworkOrder(void *p);
/// A new block of `size` bytes copied from `source`, which the caller frees, in `*out`.
/// 0, or -1 with `*out` null when memory runs out.
ZEV_HELPER sword AllocBufferAndCopy(void **out, sb4 size, const void *source);
}

namespace zev {

static_assert(std::endian::native == std::endian::little, "byte swaps are unconditional");

/// memcpy that takes null with a size of 0.
inline void copyBytes(void *to, const void *from, std::size_t size) {
  if (size != 0) std::memcpy(to, from, size);
}

template <class T>
T readNative(const void *p) {
  T value;
  std::memcpy(&value, p,
              sizeof(T));  // NOLINT(bugprone-sizeof-expression): T may be a pointer
  return value;
}

template <class T>
void writeNative(void *p, T value) {
  std::memcpy(p, &value, sizeof value);
}

/// The bytes of `value` in reverse; floats too.
template <class T>
T swapBytes(T value) {
  static_assert(std::is_trivially_copyable_v<T>);
  if constexpr (sizeof(T) == 1) {
    return value;
  } else if constexpr (sizeof(T) == 2) {
    return std::bit_cast<T>(__builtin_bswap16(std::bit_cast<ub2>(value)));
  } else if constexpr (sizeof(T) == 4) {
    return std::bit_cast<T>(__builtin_bswap32(std::bit_cast<ub4>(value)));
  } else {
    return std::bit_cast<T>(__builtin_bswap64(std::bit_cast<ub8>(value)));
  }
}

template <class T>
T readNetwork(const void *p) {
  return swapBytes(readNative<T>(p));
}

}  // namespace zev
