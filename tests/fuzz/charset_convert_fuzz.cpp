/// The published conversion of any bytes between any two encodings into a target of any
/// size: the target holds the start of the whole result and nothing behind it is touched.
/// The first three bytes pick the encodings and the target's size.
#include <ociap.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "zevoci/errors.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

OCIEnv *environment() {
  static OCIEnv *env = [] {
    OCIEnv *made = nullptr;
    OCIEnvCreate(&made, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    return made;
  }();
  return env;
}

struct Result {
  sword status;
  std::vector<char> target;
  std::size_t size = 4711;
};

Result convert(ub2 to, ub2 from, const void *source, std::size_t bytes,
               std::size_t room) {
  OCIEnv *env = environment();
  Result result{.target = std::vector<char>(room, '#')};
  result.status = OCINlsCharSetConvert(env, env->errh, to, result.target.data(), room,
                                       from, source, bytes, &result.size);
  return result;
}

void checkFailure(const Result &result) {
  require(result.status == OCI_ERROR && result.size == 4711);
  require(std::ranges::all_of(result.target, [](char c) { return c == '#'; }));
  require(list_length(environment()->errh->records) <= 1);
  ClearErrorHandle(environment()->errh);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 3) return 0;
  // One number behind the last encoding is tried too.
  const ub2 to = data[0] % 42, from = data[1] % 42;
  const std::size_t bytes = size - 3;
  const Result whole = convert(to, from, data + 3, bytes, 4 * bytes);
  if (whole.status != OCI_SUCCESS) {
    checkFailure(whole);
    return 0;
  }
  require(whole.size <= 4 * bytes);
  const Result cut = convert(to, from, data + 3, bytes, data[2]);
  const std::size_t held = std::min<std::size_t>(whole.size, data[2]);
  require(cut.status == OCI_SUCCESS && cut.size == whole.size);
  require(held == 0 || std::memcmp(cut.target.data(), whole.target.data(), held) == 0);
  require(std::all_of(cut.target.begin() + static_cast<std::ptrdiff_t>(held),
                      cut.target.end(), [](char c) { return c == '#'; }));
  return 0;
}
