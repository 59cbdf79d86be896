#include "zevoci/trace.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "core/owned.h"

namespace {

constexpr int kBytesPerRow = 16;

/// Opens the log that the variable names; null when it cannot be opened.
std::FILE *openLog(const char *value) {
  if (std::strcmp(value, "-") == 0) return stderr;
  char *name = nullptr;
  if (asprintf(&name, "%s-%d", value, static_cast<int>(getpid())) < 0) return nullptr;
  const zev::Malloced<> path(name);
  return std::fopen(path.get(), "w");
}

/// Environments of several threads may set the settings at once; the last one holds.
template <class T>
void set(T &setting, T value) {
  __atomic_store_n(&setting, value, __ATOMIC_RELAXED);
}

/// The log, which an environment of another thread may replace at any time.
std::FILE *currentLog() {
  return __atomic_load_n(&oci_debug_log, __ATOMIC_RELAXED);
}

/// The log when `mask` is on, else null.
std::FILE *logFor(std::uint64_t mask) {
  return zev::tracing(mask) ? currentLog() : nullptr;
}

void printHexRow(std::FILE *log, const unsigned char *data, int offset, int count) {
  std::fprintf(log, "%6X   ", static_cast<unsigned>(offset));
  for (int i = 0; i < kBytesPerRow; ++i) {
    if (i < count) {
      std::fprintf(log, "%02x ", data[i]);
    } else {
      std::fputs("   ", log);
    }
  }
  for (int i = 0; i < kBytesPerRow; ++i) {
    const bool printable = i < count && data[i] >= 32 && data[i] <= 126;
    std::fputc(i >= count ? ' ' : printable ? data[i] : '.', log);
  }
  std::fputc('\n', log);
}

/// The line that every narrative trace gives as its own.
constexpr int kTraceLine = 916;

/// Writes a format whose placeholders all show the address of the argument list: as it
/// stands, its low bits, or the bytes at it up to the first zero.
void printUnexpanded(std::FILE *log, const char *format, const void *list) {
  for (; *format; ++format) {
    if (*format != '%') {
      std::fputc(*format, log);
      continue;
    }
    format += 1 + std::strspn(format + 1, "-+ #0123456789.*hljzt");
    switch (*format) {
      case 'p':
        std::fprintf(log, "%p", list);
        break;
      case 's':
        std::fprintf(log, "%.4s", static_cast<const char *>(list));
        break;
      case '%':
        std::fputc('%', log);
        break;
      case '\0':
        return;
      default:
        std::fprintf(log, "%d", static_cast<int>(reinterpret_cast<std::uintptr_t>(list)));
    }
  }
}

}  // namespace

extern "C" {

std::FILE *oci_debug_log = nullptr;
std::uint64_t oci_debug_mask = 0xFFFFDFFF;
int OCI2PQ_TRACE_LEVEL = 0;
const char *const OCIPieceCodes[] = {"OCI_ONE_PIECE", "OCI_FIRST_PIECE", "OCI_NEXT_PIECE",
                                     "OCI_LAST_PIECE"};
static_assert(OCI_ONE_PIECE == 0 && OCI_LAST_PIECE == std::size(OCIPieceCodes) - 1);

int ocitracing(std::uint64_t mask) {
  return zev::tracing(mask);
}

// The names in brackets are the functions, not the tests at their call sites.

void(o2pTrace)(int level, const char *format, ...) {
  std::FILE *log = zev::narrating(level) ? currentLog() : nullptr;
  if (!log) return;
  va_list list;
  va_start(list, format);
  std::fprintf(log, "TRACE%d-%s[%s:%d]: ", level, "o2pTrace", "trace.cpp", kTraceLine);
  printUnexpanded(log, format, &list);
  va_end(list);
  std::fflush(log);
}

void(ocitrace)(std::uint64_t mask, const char *label, const char *format, ...) {
  std::FILE *log = logFor(mask);
  if (!log) return;
  if (label) std::fprintf(log, "%s: ", label);
  std::va_list arguments;
  va_start(arguments, format);
  std::vfprintf(log, format, arguments);
  va_end(arguments);
}

void(ocitracehex)(std::uint64_t mask, const char *label, const void *data, sb4 length) {
  std::FILE *log = logFor(mask);
  if (!log) return;
  if (label) std::fprintf(log, "%s\n", label);
  std::fprintf(log, "%8s  0  1  2  3  4  5  6  7  8  9  A  B  C  D  E  F\n", "");
  if (length <= 0) std::fprintf(log, "%16s\n", "");
  const auto *bytes = static_cast<const unsigned char *>(data);
  for (sb4 offset = 0; offset < length; offset += kBytesPerRow) {
    printHexRow(log, bytes + offset, offset, length - offset);
  }
}

}  // extern "C"

void zev::readDebugVariables() {
  if (const char *level = std::getenv("OCI_DEBUG_LEVEL")) {
    set(OCI2PQ_TRACE_LEVEL, static_cast<int>(std::strtol(level, nullptr, 10)));
  }
  if (const char *log = std::getenv("OCI_DEBUG_LOG")) set(oci_debug_log, openLog(log));
  if (const char *mask = std::getenv("OCI_DEBUG_MASK")) {
    set(oci_debug_mask, std::strtoul(mask, nullptr, 0));
  }
}
