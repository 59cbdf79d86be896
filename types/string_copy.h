/// Copying short texts of a known length.
#pragma once

#include "types/bytes.h"

namespace zev {

/// Sixteen bytes at once: a vector register on every machine that has one.
using ByteBlock = signed char __attribute__((vector_size(16)));

/// Bits where bytes of `word` are zero; none where all are not.
template <class Word>
inline Word zeroBytes(Word word) {
  constexpr Word kOnes = static_cast<Word>(~Word{}) / 255;
  return (word - kOnes) & ~word & kOnes << 7;
}
inline ub8 zeroBytes(const ByteBlock &block) {
  using Halves = long long __attribute__((vector_size(sizeof block)));
  const auto found = reinterpret_cast<Halves>(block == ByteBlock{});
  return static_cast<ub8>(found[0] | found[1]);
}

/// Copies one word; returns its `zeroBytes`.
template <class Word>
[[gnu::always_inline]] inline auto copyWord(char *target, const char *source) {
  Word word;
  std::memcpy(&word, source, sizeof word);
  std::memcpy(target, &word, sizeof word);
  return zeroBytes(word);
}

/// Copies the words at `offset` and at `last`, which may share bytes; returns whether one
/// of the bytes was zero.
template <class Word>
[[gnu::always_inline]] inline bool copyWords(char *target, const char *source,
                                             std::size_t offset, std::size_t last) {
  return (copyWord<Word>(target + offset, source + offset) |
          copyWord<Word>(target + last, source + last)) != 0;
}

/// The longest text that copyShortText takes.
constexpr std::size_t kShortText = 64;

/// Copies `length` bytes, at most kShortText, and returns whether one of them was zero.
/// Most texts of a column are short, and a call of memcpy and one of strlen would cost
/// more than all else that is done for them.
[[gnu::always_inline]] inline bool copyShortText(char *target, const char *source,
                                                 std::size_t length) {
  if (length >= 16) {
    bool zero = copyWords<ByteBlock>(target, source, 0, length - 16);
    if (length > 32) zero |= copyWords<ByteBlock>(target, source, 16, length - 32);
    return zero;
  }
  if (length >= 8) return copyWords<ub8>(target, source, 0, length - 8);
  if (length >= 4) return copyWords<ub4>(target, source, 0, length - 4);
  bool zero = false;
  for (std::size_t i = 0; i < length; ++i) zero |= (target[i] = source[i]) == '\0';
  return zero;
}

}  // namespace zev
