/// What the functions of dates and times do around their work, and share beside it.
#pragma once

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "core/arguments.h"
#include "core/edge_text.h"
#include "types/ocitimestamp/datetime_bytes.h"
#include "zevoci/errors.h"
#include "zevoci/trace.h"

/// What is wrong with a date, as OCI_DATE_ bits.
uword VerifyDate(OCIError *err, const OCIDate &date);

namespace zev::dates {

enum TraceLevel { kNarrative = 3, kArguments = 4 };

/// What every function does around its work: `line`, if any, is traced.
template <class Work>
sword run(const char *line, OCIError *err, std::initializer_list<Argument> arguments,
          const Work &work) {
  if (!zev::asError(err)) return OCI_INVALID_HANDLE;
  if (line) o2pTrace(kNarrative, line);
  if (checkArguments(err, arguments) != OCI_SUCCESS) return OCI_ERROR;
  try {
    const sword status = work();
    if (status == OCI_SUCCESS) o2pTrace(kArguments, "\tRETURNING %s\n");
    return status;
  } catch (const std::bad_alloc &) {
    return zev::fail(err, 16506);
  }
}

inline sword failAfresh(OCIError *err, sb4 code) {
  ClearErrorHandle(err);
  return zev::fail(err, code);
}

/// The record of a text that is none in the program's encoding.
inline sword failText(OCIError *err, const EdgeText &text) {
  ClearErrorHandle(err);
  return text.fail(err);
}

/// A text of the program's in the library's encoding, with a terminator behind it. Short
/// ones take no memory where they are not converted.
class Terminated {
 public:
  /// Not inline: of a length below 256 the compiler makes a string instruction, which
  /// takes longer than the C library's copy.
  [[gnu::noinline]] Terminated(const OCIError *err, const OraText *text,
                               std::size_t length)
      : edge_(parentEnv(err), text, length) {
    if (edge_.size() >= sizeof short_) {
      long_.assign(edge_.view());
    } else {
      if (edge_.size() != 0) std::memcpy(short_, edge_.data(), edge_.size());
      short_[edge_.size()] = '\0';
    }
  }
  explicit operator bool() const { return static_cast<bool>(edge_); }
  sword fail(OCIError *err) const { return failText(err, edge_); }
  const char *get() const { return long_.empty() ? short_ : long_.c_str(); }

 private:
  EdgeText edge_;
  char short_[256];
  std::string long_;
};

/// Puts text with its terminator into `*room` bytes, cut where it is too long, in the
/// program's encoding; `*room` is then how many bytes there are of it. OCI_ERROR with a
/// record where it cannot be converted.
inline sword deliverCut(OCIError *err, std::string_view text, OraText *buffer,
                        ub4 *room) {
  const EdgeResult edge(parentEnv(err), text);
  if (!edge) return failText(err, edge);
  *room = static_cast<ub4>(edge.copyCut(buffer, *room));
  return OCI_SUCCESS;
}

}  // namespace zev::dates
