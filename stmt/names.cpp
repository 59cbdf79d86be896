#include "stmt/names.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Shared by all connections of the process.
std::atomic<ub4> preparedStmtCount{0};
std::atomic<ub4> portalCount{0};

}  // namespace

extern "C" char *makeUniqueName(const char *prefix, ub4 number) {
  const std::size_t size = std::strlen(prefix) + sizeof "00000000";
  auto *name = static_cast<char *>(std::malloc(size));
  if (name) std::snprintf(name, size, "%s%08x", prefix, number);
  return name;
}

namespace zev {

char *nextStatementName() {
  return makeUniqueName("stmt_", preparedStmtCount++);
}
char *nextPortalName() {
  return makeUniqueName("portal_", portalCount++);
}
char *nextCursorName() {
  return makeUniqueName("cursor_", portalCount++);
}

}  // namespace zev
