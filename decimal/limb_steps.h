/// The steps that long division and the square root have in common: both find one limb of
/// the result at a time, from the first limbs of what remains.
#pragma once

#include <algorithm>

#include "decimal/limbs.h"

namespace zev::decimal {

/// The first three limbs as a double.
inline double leading(const Limb *limbs) {
  return (limbs[0] * 1e8 + limbs[1]) * 1e8 + limbs[2];
}

/// The next limb of the result from its value to more than 14 digits: never too low and
/// at most one too high, as the value's error is far below the allowance.
inline std::uint64_t estimate(double value) {
  constexpr double kAllowance = 1e-6;
  return static_cast<std::uint64_t>(value + kAllowance);
}

/// rest -= q * divisor, both of `n` limbs; returns what is to be borrowed from the limbs
/// before. The divisor's limbs may be up to twice the base.
inline std::uint64_t subtractMultiple(Limb *rest, std::uint64_t q, const Limb *divisor,
                                      std::size_t n) {
  std::uint64_t carry = 0;
  for (std::size_t j = n; j-- > 0;) {
    const std::uint64_t product = q * divisor[j] + carry;
    carry = product / kLimbBase;
    const auto low = static_cast<Limb>(product - carry * kLimbBase);
    const bool borrow = rest[j] < low;
    rest[j] += (borrow ? kLimbBase : 0) - low;
    carry += borrow;
  }
  return carry;
}

/// rest += divisor, of the same kinds; returns the carry.
inline Limb addBack(Limb *rest, const Limb *divisor, std::size_t n) {
  Limb carry = 0;
  for (std::size_t j = n; j-- > 0;) {
    const Limb sum = rest[j] + divisor[j] + carry;
    carry = sum / kLimbBase;
    rest[j] = sum % kLimbBase;
  }
  return carry;
}

inline bool isZero(const Limb *limbs, std::size_t n) {
  return std::all_of(limbs, limbs + n, [](Limb limb) { return limb == 0; });
}

}  // namespace zev::decimal
