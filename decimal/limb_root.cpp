#include <cmath>

#include "decimal/limb_steps.h"

namespace zev::decimal {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr std::uint64_t kTwoLimbs = std::uint64_t{kLimbBase} * kLimbBase;

/// The root of an integer of 31 or 32 digits, its fraction cut off.
std::uint64_t rootOf(Wide square) {
  auto root = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(square)));
  while (Wide{root} * root > square) --root;
  while (Wide{root + 1} * (root + 1) <= square) ++root;
  return root;
}

void storeTwo(Limb *limbs, std::uint64_t value) {
  limbs[0] = static_cast<Limb>(value / kLimbBase);
  limbs[1] = static_cast<Limb>(value % kLimbBase);
}

std::uint64_t loadTwo(const Limb *limbs) {
  return std::uint64_t{limbs[0]} * kLimbBase + limbs[1];
}

/// The first two limbs of the root from the first four of the square, which become what
/// remains.
void startRoot(Limb *root, Limb *rest) {
  const Wide square = Wide{loadTwo(rest)} * kTwoLimbs + loadTwo(rest + 2);
  const std::uint64_t first = rootOf(square);
  const auto remainder = static_cast<std::uint64_t>(square - Wide{first} * first);
  storeTwo(root, first);
  rest[0] = 0;
  rest[1] = static_cast<Limb>(remainder / kTwoLimbs);
  storeTwo(rest + 2, remainder % kTwoLimbs);
}

}  // namespace

std::size_t rootLimbs(Limb *root, std::size_t wanted, Limb *rest, std::size_t square,
                      Limb *twice) {
  startRoot(root, rest);
  twice[0] = 2 * root[0];
  twice[1] = 2 * root[1];
  twice[2] = 0;
  double inverse = 0;
  for (std::size_t i = 2; i < wanted; ++i) {
    if (2 * i >= square && isZero(rest + i - 1, i + 1)) return i;
    // (root + q)^2 = root^2 + (2 root + q) q, so that the divisor is twice the root with
    // the new limb behind it. What remains starts one limb earlier, with at most 2.
    if (i <= 3) inverse = 1e16 / leading(twice);
    Limb *window = rest + i - 1;
    std::uint64_t q = estimate(leading(window) * inverse);
    const std::uint64_t before = loadTwo(window);
    twice[i] = static_cast<Limb>(q);
    std::uint64_t after = before - subtractMultiple(window + 2, q, twice, i + 1);
    if (after > before) {
      // (2 root + q) q - (2 root + q - 1) (q - 1) = 2 root + 2 q - 1
      twice[i] = static_cast<Limb>(2 * q - 1);
      after += addBack(window + 2, twice, i + 1);
      --q;
    }
    window[0] = 0;
    window[1] = static_cast<Limb>(after);
    root[i] = static_cast<Limb>(q);
    twice[i] = static_cast<Limb>(2 * q);
    twice[i + 1] = 0;
  }
  return wanted;
}

}  // namespace zev::decimal
