#include <algorithm>

#include "decimal/limbs.h"

namespace zev::decimal {

void multiplyByColumns(Limb *product, const Limb *a, std::size_t n, const Limb *b,
                       std::size_t m) {
  std::uint64_t sum = 0;
  for (std::size_t column = n + m - 1; column-- > 0;) {
    const std::size_t first = column < m ? 0 : column - m + 1;
    const std::size_t last = std::min(column, n - 1);
    for (std::size_t i = first; i <= last; ++i)
      sum += std::uint64_t{a[i]} * b[column - i];
    const std::uint64_t carry = sum / kLimbBase;
    product[column + 1] = static_cast<Limb>(sum - carry * kLimbBase);
    sum = carry;
  }
  product[0] = static_cast<Limb>(sum);
}

}  // namespace zev::decimal
