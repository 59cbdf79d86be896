#include "failing_allocator.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr long kUnlimited = std::numeric_limits<long>::max();
thread_local long allowed = kUnlimited;
thread_local bool failsToTheEnd = false;
thread_local bool failed = false;

bool fails() {
  if (allowed == kUnlimited) return false;
  if (allowed > 0) {
    --allowed;
    return false;
  }
  if (failed && !failsToTheEnd) return false;
  failed = true;
  return true;
}

}  // namespace

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
char *__real_strdup(const char *text);
void *__wrap_malloc(std::size_t size) {
  return fails() ? nullptr : __real_malloc(size);
}
void *__wrap_calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : __real_calloc(count, size);
}
char *__wrap_strdup(const char *text) {
  return fails() ? nullptr : __real_strdup(text);
}
}

void *operator new(std::size_t size) {
  void *block = fails() ? nullptr : __real_malloc(size);
  if (!block) throw std::bad_alloc();
  return block;
}
void operator delete(void *block) noexcept {
  std::free(block);
}
void operator delete(void *block, std::size_t) noexcept {
  std::free(block);
}

void zev::test::failAllocationsAfter(long n, bool allFollowing) {
  failed = false;
  failsToTheEnd = allFollowing;
  allowed = n;
}

bool zev::test::stopFailing() {
  allowed = kUnlimited;
  return failed;
}
