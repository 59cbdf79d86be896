/// The system allocator, counted and, on demand, failing.
#pragma once

namespace zevtest {

/// Calls of malloc and realloc by this thread so far.
long allocations();
/// Blocks that are allocated and not freed, of all threads.
long livingBlocks();
/// Lets the allocation after `successes` more of this thread fail, and all that follow;
/// negative for none.
void failAfter(long successes);

}  // namespace zevtest
