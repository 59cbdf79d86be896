#include <algorithm>

#include "decimal/limbs.h"

namespace zev::decimal {

void multiplyByRows(Limb *product, const Limb *a, std::size_t n, const Limb *b,
                    std::size_t m, std::uint64_t *columns) {
  if (n > m) {
    std::swap(a, b);
    std::swap(n, m);
  }
  std::fill_n(columns, n + m, 0);
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint64_t factor = a[i];
    std::uint64_t *row = columns + i + 1;
    for (std::size_t j = 0; j < m; ++j) row[j] += factor * b[j];
  }
  std::uint64_t carry = 0;
  for (std::size_t i = n + m; i-- > 0;) {
    const std::uint64_t sum = columns[i] + carry;
    carry = sum / kLimbBase;
    product[i] = static_cast<Limb>(sum - carry * kLimbBase);
  }
}

}  // namespace zev::decimal
