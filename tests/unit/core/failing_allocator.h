/// An allocator that runs out when a test wants it to. The library's calls of malloc,
/// calloc and strdup reach it by the linker option --wrap, those of C++ by replacement.
#pragma once

namespace zev::test {

/// Lets this thread's next `n` allocations pass and fails the one behind them, with
/// `allFollowing` also every later one.
void failAllocationsAfter(long n, bool allFollowing);

/// Ends it; whether an allocation failed.
bool stopFailing();

}  // namespace zev::test
