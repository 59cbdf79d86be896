/// Conversion of any bytes between any two encodings: the same text or error as the
/// system's iconv gives a few bytes at a time. The first two bytes pick the encodings.
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <utility>

#include "zevoci/encodings.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

const iconv_t kNone = reinterpret_cast<iconv_t>(-1);

/// The conversion of a pair, opened once; kNone when the system has none.
iconv_t conversion(int to, int from) {
  static auto &open = *new std::map<std::pair<int, int>, iconv_t>;
  const auto [place, isNew] = open.try_emplace({to, from}, kNone);
  if (isNew) {
    place->second = iconv_open(pg_encoding_to_char(to), pg_encoding_to_char(from));
  }
  return place->second;
}

struct Outcome {
  std::string text;
  int error = 0;
  bool operator==(const Outcome &) const = default;
};

Outcome transcoded(iconv_t cd, const char *source, std::size_t size) {
  void *out = nullptr;
  std::size_t length = 4711;
  Outcome outcome;
  if (transcode(cd, &outcome.error, source, size, &out, &length) == SIZE_MAX) {
    require(!out && outcome.error);
    return outcome;
  }
  require((out != nullptr) == (size > 0));
  if (out) outcome.text.assign(static_cast<char *>(out), length + 1);
  std::free(out);
  return outcome;
}

/// One call of iconv with little room; false after a failure other than for room.
bool step(iconv_t cd, char **from, std::size_t *left, Outcome &outcome, bool &full) {
  char room[16];
  char *to = room;
  std::size_t space = sizeof room;
  const std::size_t done = iconv(cd, from, left, &to, &space);
  const int error = errno;
  outcome.text.append(room, sizeof room - space);
  full = done == SIZE_MAX && error == E2BIG;
  if (done != SIZE_MAX || full) return true;
  outcome = {"", error};
  return false;
}

Outcome stepwise(iconv_t cd, const char *source, std::size_t size) {
  iconv(cd, nullptr, nullptr, nullptr, nullptr);
  Outcome outcome;
  char *from = const_cast<char *>(source);
  bool full = false;
  while (size > 0) {
    if (!step(cd, &from, &size, outcome, full)) return outcome;
  }
  do {
    if (!step(cd, nullptr, nullptr, outcome, full)) return outcome;
  } while (full);
  outcome.text += '\0';
  return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 2) return 0;
  const iconv_t cd =
      conversion(data[0] % (kLastEncoding + 1), data[1] % (kLastEncoding + 1));
  if (cd == kNone) return 0;
  const char *source = reinterpret_cast<const char *>(data + 2);
  const Outcome got = transcoded(cd, source, size - 2);
  if (size > 2) require(got == stepwise(cd, source, size - 2));
  return 0;
}
