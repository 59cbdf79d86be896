/// The published functions on encodings and on multibyte and wide text that do nothing:
/// each writes a narrative line and fails, without a record.
#include <ociap.h>

#include "zevoci/api.h"
#include "zevoci/trace.h"

namespace {

constexpr const char *kNarrative = "Setting Piece Information\n";

/// -1 as the result's type has it.
template <class Result>
Result refused() {
  o2pTrace(3, kNarrative);
  o2pTrace(4, "\tRETURNING %s\n", "ERROR");
  return static_cast<Result>(OCI_ERROR);
}

/// Where a character stands in a string.
using Place = OCIWchar *;

Place notFound() {
  o2pTrace(3, kNarrative);
  return nullptr;
}

}  // namespace

#define REFUSING_STUB(result, name, ...)        \
  extern "C" ZEV_API result name(__VA_ARGS__) { \
    return refused<result>();                   \
  }
#define FINDING_STUB(name, ...)                \
  extern "C" ZEV_API Place name(__VA_ARGS__) { \
    return notFound();                         \
  }

#include "utils/mb/multibyte_stub_table.def"

#undef FINDING_STUB
#undef REFUSING_STUB
