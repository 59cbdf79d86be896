/// Any bytes as text in any encoding: nothing is read behind the given length or the
/// terminator, and lengths, counts and boundaries fit together. The first byte picks the
/// encoding, the second a limit.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

#include "zevoci/multibyte.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// A text in a block of its own, and zeros behind it.
std::unique_ptr<char[]> blockOf(std::string_view text, std::size_t zeros) {
  std::unique_ptr<char[]> block(new char[text.size() + zeros]());
  if (!text.empty()) std::memcpy(block.get(), text.data(), text.size());
  return block;
}

void checkVerifier(int encoding, const char *text, int length) {
  for (int at = 0; at < length;) {
    const int verified = pg_verifymb(encoding, text + at, length - at);
    require(verified == -1 || (verified > 0 && verified <= length - at));
    if (verified > 1) {
      for (int cut = 0; cut < verified; ++cut) {
        require(pg_verifymb(encoding, text + at, cut) == -1);
      }
    }
    at += std::max(verified, 1);
  }
}

void checkClip(int encoding, const char *text, int length, int limit) {
  const int clipped = pg_mbcliplen(encoding, text, length, limit);
  require(clipped >= 0 && clipped <= std::min(length, limit));
  require(pg_mbcliplen(encoding, text, length, clipped) == clipped);
  require(pg_mbcliplen(encoding, text, clipped, clipped) == clipped);
  const int characters = pg_mbcharcliplen(encoding, text, length, limit);
  require(characters >= 0 && characters <= length);
  require(pg_mbcliplen(encoding, text, length, characters) == characters);
}

void checkCounts(int encoding, const char *text, int length) {
  const bool oneByte = pg_encoding_max_length(encoding) == 1;
  const int count = pg_mbstrlen_with_len(encoding, text, length);
  require(count >= 0 && count <= length);
  const int width = pg_mbstrdsplen_with_len(encoding, text, length);
  require(width >= -length && width <= 2 * length);
  if (oneByte) require(count == length && width <= length);
}

void checkWide(int encoding, const char *text, int length) {
  if (!oci_wchar_table[encoding].mb2wchar_with_len) return;
  const std::unique_ptr<pg_wchar[]> wide(
      new pg_wchar[static_cast<std::size_t>(length) + 1]);
  const int count = pg_mb2wchar_with_len(encoding, text, wide.get(), length);
  require(count >= 0 && count <= length && wide[static_cast<std::size_t>(count)] == 0);
}

void checkTerminated(int encoding, std::string_view bytes) {
  const auto text = blockOf(bytes, 3);  // a unit of 0 behind an odd byte too
  const int count = pg_mbstrlen(encoding, text.get());
  const auto size = static_cast<int>(bytes.size());
  if (pg_encoding_max_length(encoding) > 1) {
    require(count == pg_mbstrlen_with_len(encoding, text.get(), size + size % 2));
  }
  require(pg_mbstrdsplen(encoding, text.get()) ==
          pg_mbstrdsplen_with_len(encoding, text.get(), size + size % 2));
  require(pg_mblen(encoding, text.get()) >= 1);
  if (!oci_wchar_table[encoding].mb2wchar_with_len) return;
  const std::unique_ptr<pg_wchar[]> wide(new pg_wchar[bytes.size() + 2]);
  require(pg_mb2wchar(encoding, text.get(), wide.get()) <= size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 2) return 0;
  const int encoding = data[0] % (kLastEncoding + 1);
  const std::string_view bytes(reinterpret_cast<const char *>(data + 2), size - 2);
  const auto block = blockOf(bytes, 0);
  const auto length = static_cast<int>(bytes.size());
  checkVerifier(encoding, block.get(), length);
  checkClip(encoding, block.get(), length, data[1]);
  checkCounts(encoding, block.get(), length);
  checkWide(encoding, block.get(), length);
  checkTerminated(encoding, bytes);
  return 0;
}
