/// Marks of what the shared library shows, and the hard assertion.
#pragma once

#include <cassert>

/// A function of the published interface: always exported.
#define ZEV_API __attribute__((visibility("default")))

/// A helper that the library exports under its own name unless it was built to hide them.
#ifdef ZEVOCI_HIDE_HELPERS
#define ZEV_HELPER
#else
#define ZEV_HELPER __attribute__((visibility("default")))
#endif

/// glibc's own end of assert, which <cassert> declares only without NDEBUG.
extern "C" void __assert_fail(const char *assertion, const char *file, unsigned int line,
                              const char *function) noexcept
    __attribute__((__noreturn__));

/// Ends the process with `text` in the C library's words when `condition` is false. For
/// states that only a fault in this library can bring about; stands in release builds
/// too.
#define ZEV_ASSERT(condition, text) \
  ((condition) ? static_cast<void>(0) : __assert_fail(text, __FILE__, __LINE__, __func__))
