/// Arithmetic on limbs of eight decimal digits, most significant first, into which the
/// digit pairs of a number are gathered for multiplication and division.
#pragma once

#include <cstddef>
#include <cstdint>

#include "decimal/base100.h"

namespace zev::decimal {

using Limb = std::uint32_t;

inline constexpr std::uint32_t kLimbBase = 100'000'000;
inline constexpr int kLimbDigits = 8;
inline constexpr int kLimbBytes = 4;

/// Limbs that hold so many bytes of pairs.
constexpr std::size_t limbsFor(std::size_t bytes) {
  return (bytes + kLimbBytes - 1) / kLimbBytes;
}

/// Two limbs, the first in the upper half, from eight pairs.
inline Word limbsOfWord(Word pairs) {
  const Word fours = ((pairs >> 8) & 0x00ff00ff00ff00ff) * 100 +  //
                     (pairs & 0x00ff00ff00ff00ff);
  return ((fours >> 16) & 0x0000ffff0000ffff) * 10000 + (fours & 0x0000ffff0000ffff);
}

/// Eight pairs from two limbs.
inline Word wordOfLimbs(Limb first, Limb second) {
  const Word fours = Word{first / 10000} << 48 | Word{first % 10000} << 32 |
                     Word{second / 10000} << 16 | Word{second % 10000};
  constexpr Word kFours = 0x0000ffff0000ffff, kPairs = 0x0000007f0000007f;
  const Word odd = ((fours & kFours) * 5243 >> 19) & kPairs;  // hundreds of the fours
  const Word even = (((fours >> 16) & kFours) * 5243 >> 19) & kPairs;
  const Word hundreds = odd | even << 16;
  return fours + hundreds * (256 - 100);
}

/// Gathers `bytes` pairs into limbsFor(bytes) limbs, filled up with zeros. Whole words
/// are written: `limbs` has room for one more.
inline void gather(Limb *limbs, const Byte *pairs, std::size_t bytes) {
  std::size_t at = 0;
  for (; at + 8 <= bytes; at += 8, limbs += 2) {
    const Word two = limbsOfWord(loadWord(pairs + at));
    limbs[0] = static_cast<Limb>(two >> 32);
    limbs[1] = static_cast<Limb>(two);
  }
  if (at == bytes) return;
  Byte rest[8] = {};
  std::memcpy(rest, pairs + at, bytes - at);
  const Word two = limbsOfWord(loadWord(rest));
  limbs[0] = static_cast<Limb>(two >> 32);
  limbs[1] = static_cast<Limb>(two);
}

/// Spreads limbs to pairs, eight bytes for two limbs; an odd last one gets a zero beside.
inline void spread(Byte *pairs, const Limb *limbs, std::size_t count) {
  for (std::size_t i = 0; i < count; i += 2, pairs += 8)
    storeWord(pairs, wordOfLimbs(limbs[i], i + 1 < count ? limbs[i + 1] : 0));
}

/// Schoolbook product of `n` by `m` limbs, n + m of them, each made of its whole column:
/// the faster way for few limbs.
void multiplyByColumns(Limb *product, const Limb *a, std::size_t n, const Limb *b,
                       std::size_t m);

/// The same, row by row into `columns`, scratch of n + m: the faster way for many limbs,
/// as rows are worth vector instructions. No column overflows as long as the lesser count
/// is at most 1800.
void multiplyByRows(Limb *product, const Limb *a, std::size_t n, const Limb *b,
                    std::size_t m, std::uint64_t *columns);

/// Long division of fractions: `quotient` gets the first `wanted` limbs of
/// dividend / divisor, which must be below 1, the rest cut off. `rest` is scratch of
/// restLimbs() limbs, the dividend and zeros behind it. The divisor's first limb is not
/// 0. Returns the count of limbs made: fewer than wanted when nothing remains.
std::size_t divideLimbs(Limb *quotient, std::size_t wanted, Limb *rest,
                        std::size_t dividend, const Limb *divisor, std::size_t n);

/// Limbs that `rest` of divideLimbs needs.
constexpr std::size_t restLimbs(std::size_t wanted, std::size_t dividend, std::size_t n) {
  return (dividend > n + wanted ? dividend : n + wanted) + 4;
}

/// Square root of a fraction from 0.01 up to below 1: `root` gets its first `wanted`
/// limbs, two at least, the rest cut off. `rest` is scratch of 2 * wanted limbs, the
/// first `square` of which are the fraction and the others 0. `twice` is scratch of
/// wanted + 1 limbs. Returns the count of limbs made: fewer than wanted when nothing
/// remains.
std::size_t rootLimbs(Limb *root, std::size_t wanted, Limb *rest, std::size_t square,
                      Limb *twice);

}  // namespace zev::decimal
