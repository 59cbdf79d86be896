/// The transform under fast multiplication: complex, over powers of two.
#pragma once

#include <cstddef>

namespace zev::decimal {

/// Points of one transform: real parts and imaginary parts stand apart.
struct Points {
  double *re;
  double *im;
  std::size_t count;  ///< a power of two, at least 2
};

/// The transform in place; its values stand in an order of their own.
void transform(Points points);
/// From that order back, without division by the count.
void transformBack(Points points);

/// Powers of the root of unity of order 4 `points`, whose `points`-th power is i:
/// cos and sin stand side by side, `stride` pairs from one power to the next.
struct Weights {
  const double *pairs;
  std::size_t stride;
};
Weights weightsFor(std::size_t points);

}  // namespace zev::decimal
