/// What the functions of dates and times do around their work, and share beside it.
#pragma once

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "core/arguments.h"
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

/// Text of a given length with a terminator behind it. Short ones take no memory.
class Terminated {
 public:
  /// Not inline: of a length below 256 the compiler makes a string instruction, which
  /// takes longer than the C library's copy.
  [[gnu::noinline]] Terminated(const OraText *text, std::size_t length) {
    const auto *chars = reinterpret_cast<const char *>(text);
    if (length >= sizeof short_) {
      long_.assign(chars, length);
    } else {
      if (length != 0) std::memcpy(short_, chars, length);
      short_[length] = '\0';
    }
  }
  const char *get() const { return long_.empty() ? short_ : long_.c_str(); }

 private:
  char short_[256];
  std::string long_;
};

/// Puts text with its terminator into `room` bytes, cut where it is too long. How many
/// characters there are of it.
inline ub4 deliverCut(std::string_view text, OraText *buffer, ub4 room) {
  if (room == 0) return 0;
  const std::size_t length = std::min<std::size_t>(text.size(), room - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
  return static_cast<ub4>(length);
}

}  // namespace zev::dates
