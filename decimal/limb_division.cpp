#include <algorithm>

#include "decimal/limb_steps.h"

namespace zev::decimal {
namespace {

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
    Limb *window = rest + i;
    std::uint64_t q = estimate(leading(window) * inverse);
    if (subtractMultiple(window + 1, q, divisor, n) > window[0]) {
      addBack(window + 1, divisor, n);
      --q;
    }
    window[0] = 0;
    quotient[i] = static_cast<Limb>(q);
    if (i + n + 1 >= dividend && isZero(window + 1, n)) return i + 1;
  }
  return wanted;
}

}  // namespace zev::decimal
