/// Blocks that live as long as the handle that owns them.
#pragma once

#include <cstdlib>

#include "zevoci/list.h"

namespace zev {

/// A block of `size` bytes, not zeroed, appended to `cache`; null for a size of 0 and
/// when memory runs out.
inline void *allocateInCache(List *&cache, std::size_t size) {
  void *block = size ? std::malloc(size) : nullptr;
  if (!block) return nullptr;
  List *longer = lappend(cache, block);
  if (!longer) {
    std::free(block);
    return nullptr;
  }
  cache = longer;
  return block;
}

/// Frees each element of `list` and the list, and leaves it null.
inline void freeListAndMembers(List *&list) {
  free_list_members(list);
  list_free(list);
  list = nullptr;
}

}  // namespace zev
