#include <algorithm>

#include "decimal/limbs.h"

namespace zev::decimal {
namespace {

/// The first three limbs as a double.
double leading(const Limb *limbs) {
  return (limbs[0] * 1e8 + limbs[1]) * 1e8 + limbs[2];
}

/// window -= q * divisor, of n + 1 and n limbs. True when the result is negative, as the
/// window's first limb does not show.
bool subtractMultiple(Limb *window, std::uint64_t q, const Limb *divisor, std::size_t n) {
  std::uint64_t carry = 0;
  for (std::size_t j = n; j-- > 0;) {
    const std::uint64_t product = q * divisor[j] + carry;
    carry = product / kLimbBase;
    const auto low = static_cast<Limb>(product - carry * kLimbBase);
    const bool borrow = window[j + 1] < low;
    window[j + 1] += (borrow ? kLimbBase : 0) - low;
    carry += borrow;
  }
  const bool negative = window[0] < carry;
  window[0] = 0;
  return negative;
}

void addBack(Limb *window, const Limb *divisor, std::size_t n) {
  Limb carry = 0;
  for (std::size_t j = n; j-- > 0;) {
    const Limb sum = window[j + 1] + divisor[j] + carry;
    carry = sum >= kLimbBase;
    window[j + 1] = sum - (carry ? kLimbBase : 0);
  }
}

std::size_t divideByOneLimb(Limb *quotient, std::size_t wanted, const Limb *rest,
                            std::size_t dividend, Limb divisor) {
  std::uint64_t remainder = rest[0];
  for (std::size_t i = 0; i < wanted; ++i) {
    remainder = remainder * kLimbBase + rest[i + 1];
    quotient[i] = static_cast<Limb>(remainder / divisor);
    remainder %= divisor;
    if (remainder == 0 && i + 2 >= dividend) return i + 1;
  }
  return wanted;
}

}  // namespace

std::size_t divideLimbs(Limb *quotient, std::size_t wanted, Limb *rest,
                        std::size_t dividend, const Limb *divisor, std::size_t n) {
  if (n == 1) return divideByOneLimb(quotient, wanted, rest, dividend, divisor[0]);
  const Limb top[3] = {divisor[0], divisor[1], n > 2 ? divisor[2] : 0};
  const double inverse = 1e8 / leading(top);
  for (std::size_t i = 0; i < wanted; ++i) {
    // The window slides along the remainder; its first limb is what the last step left.
    // The estimate is never too low and at most one too high: its error is far below the
    // allowance.
    Limb *window = rest + i;
    constexpr double kAllowance = 1e-6;
    auto q = static_cast<std::uint64_t>(leading(window) * inverse + kAllowance);
    if (subtractMultiple(window, q, divisor, n)) {
      addBack(window, divisor, n);
      --q;
    }
    quotient[i] = static_cast<Limb>(q);
    if (i + n + 1 >= dividend &&
        std::all_of(window + 1, window + n + 1, [](Limb limb) { return limb == 0; }))
      return i + 1;
  }
  return wanted;
}

}  // namespace zev::decimal
