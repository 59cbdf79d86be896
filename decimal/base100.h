/// Arithmetic on runs of digit pairs, eight bytes at a time. A run is an array of bytes
/// 0 to 99, most significant first, whose length is a multiple of eight; "words" counts
/// eights.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zev::decimal {

using Word = std::uint64_t;
using Byte = unsigned char;

/// Eight pairs as one integer, the first pair in its highest byte.
inline Word loadWord(const Byte *from) {
  Word word;
  std::memcpy(&word, from, sizeof word);
  if constexpr (std::endian::native == std::endian::little)
    word = __builtin_bswap64(word);
  return word;
}

inline void storeWord(Byte *to, Word word) {
  if constexpr (std::endian::native == std::endian::little)
    word = __builtin_bswap64(word);
  std::memcpy(to, &word, sizeof word);
}

/// The upper digit of each pair. 103/1024 is 1/10 closely enough for all pairs.
inline Word upperDigits(Word word) {
  constexpr Word kPairs = 0x00ff00ff00ff00ff, kDigits = 0x000f000f000f000f;
  const Word odd = ((word & kPairs) * 103 >> 10) & kDigits;
  const Word even = (((word >> 8) & kPairs) * 103 >> 10) & kDigits;
  return odd | even << 8;
}

/// Moves a run one digit to the right; the last digit must be 0.
inline void shiftRightOneDigit(Byte *run, std::size_t words) {
  Word carry = 0;
  for (std::size_t i = 0; i < words; ++i) {
    const Word word = loadWord(run + 8 * i), upper = upperDigits(word);
    const Word lower = word - 10 * upper;
    storeWord(run + 8 * i, upper + 10 * (lower >> 8 | carry << 56));
    carry = lower & 0xff;
  }
}

/// Moves a run one digit to the left; the first digit must be 0.
inline void shiftLeftOneDigit(Byte *run, std::size_t words) {
  Word carry = 0;
  for (std::size_t i = words; i-- > 0;) {
    const Word word = loadWord(run + 8 * i), upper = upperDigits(word);
    storeWord(run + 8 * i, 10 * (word - 10 * upper) + (upper << 8 | carry));
    carry = upper >> 56;
  }
}

/// The lowest bit of each byte that handed a carry, or a borrow, to the one above it.
/// `into` has that bit where a byte was handed one; `out` tells of the highest byte.
inline Word handedOn(Word into, bool out) {
  constexpr Word kLowBits = 0x0101010101010101;
  return (into & kLowBits) >> 8 | Word{out} << 56;
}

/// x += y for runs of one length; returns the carry. Each pair is biased by 156, so that
/// pairs carry as bytes do; the bias leaves where none was carried.
inline bool addRuns(Byte *x, const Byte *y, std::size_t words) {
  constexpr Word kBias = 0x9c9c9c9c9c9c9c9c, kLowBits = 0x0101010101010101;
  Word carry = 0;
  for (std::size_t i = words; i-- > 0;) {
    const Word a = loadWord(x + 8 * i), b = loadWord(y + 8 * i) + kBias;
    const Word partial = a + b, sum = partial + carry;
    const Word out = (partial < a) | (sum < partial);
    const Word carried = handedOn(sum ^ a ^ b, out != 0);
    storeWord(x + 8 * i, sum - (kLowBits - carried) * 156);
    carry = out;
  }
  return carry != 0;
}

/// x -= y for runs of one length; returns the borrow.
inline bool subtractRuns(Byte *x, const Byte *y, std::size_t words) {
  Word borrow = 0;
  for (std::size_t i = words; i-- > 0;) {
    const Word a = loadWord(x + 8 * i), b = loadWord(y + 8 * i);
    const Word partial = a - b, difference = partial - borrow;
    const Word out = (a < b) | (partial < borrow);
    storeWord(x + 8 * i, difference - handedOn(difference ^ a ^ b, out != 0) * 156);
    borrow = out;
  }
  return borrow != 0;
}

}  // namespace zev::decimal
