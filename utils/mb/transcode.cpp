#include <cerrno>
#include <cstdint>
#include <cstdlib>

#include "core/owned.h"
#include "zevoci/encodings.h"

namespace {

/// Enough for one character of any encoding in any other.
constexpr std::size_t kGrowth = 4;

constexpr std::size_t kFailed = SIZE_MAX;

void reset(iconv_t cd) {
  iconv(cd, nullptr, nullptr, nullptr, nullptr);
}

}  // namespace

extern "C" std::size_t transcode(iconv_t cd, int *error, const void *source,
                                 std::size_t sourceLength, void **out,
                                 std::size_t *outLength) {
  *out = nullptr;
  *outLength = 0;
  if (!source || !sourceLength) return 0;

  const std::size_t room = sourceLength * kGrowth;
  zev::Malloced<> block(static_cast<char *>(std::malloc(room + 1)));
  if (!block) return 0;

  reset(cd);
  char *from = const_cast<char *>(static_cast<const char *>(source));
  char *to = block.get();
  std::size_t left = room;
  while (sourceLength > 0) {
    if (iconv(cd, &from, &sourceLength, &to, &left) == static_cast<std::size_t>(-1)) {
      *error = errno;
      return kFailed;
    }
  }
  // A decoder that waits for a combining mark gives its last character only now.
  if (iconv(cd, nullptr, nullptr, &to, &left) == static_cast<std::size_t>(-1)) {
    *error = errno;
    return kFailed;
  }
  reset(cd);
  *to = '\0';
  *outLength = room - left;
  *out = block.release();
  return *outLength;
}
