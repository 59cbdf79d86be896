#include "decimal/engine.h"

namespace zev::decimal {
namespace {

/// Running products, parked when they are long, so that in the end numbers of like sizes
/// are multiplied.
class Products {
 public:
  Products() {
    for (M_APM &slot : slots_) slot = m_apm_init();
  }
  Products(const Products &) = delete;
  Products &operator=(const Products &) = delete;
  ~Products() {
    for (M_APM slot : slots_) m_apm_free(slot);
  }

  /// Takes in a product that has grown beyond limit().
  void park(M_APM product) {
    if (used_ < kSlots) {
      m_apm_copy(slots_[used_++], product);
      return;
    }
    // All are taken: multiply into them, from the last to the first.
    if (next_ == 0) {
      next_ = kSlots;
      digits_ *= 2;
    }
    const Scratch result;
    M_APM slot = slots_[--next_];
    m_apm_multiply(result, slot, product);
    m_apm_copy(slot, result);
  }

  std::int64_t limit() const { return digits_ - kMargin; }

  /// Multiplies all of them, in a balanced tree, with `rest`.
  void multiplyAll(M_APM r, M_APM rest) {
    const Scratch result;
    if (used_ < kSlots)
      m_apm_copy(slots_[used_++], rest);
    else
      park(rest);
    for (int distance = 1; distance < used_; distance *= 2) {
      for (int i = 0; i + distance < used_; i += 2 * distance) {
        m_apm_multiply(result, slots_[i], slots_[i + distance]);
        m_apm_copy(slots_[i], result);
      }
    }
    m_apm_copy(r, slots_[0]);
  }

 private:
  static constexpr int kSlots = 32;
  static constexpr std::int64_t kMargin = 20;

  M_APM slots_[kSlots];
  int used_ = 0, next_ = kSlots;
  std::int64_t digits_ = 256;
};

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_factorial(M_APM r, M_APM x) {
  Products products;
  const Scratch n, less, pair, product, result;
  m_apm_copy(n, x);
  m_apm_copy(product, MM_One);
  while (m_apm_compare(n, MM_One) > 0) {
    m_apm_subtract(less, n, MM_One);
    m_apm_multiply(pair, n, less);
    m_apm_multiply(result, product, pair);
    m_apm_copy(product, result);
    m_apm_subtract(n, less, MM_One);
    if (product->digitCount > products.limit()) {
      products.park(product);
      m_apm_copy(product, MM_One);
    }
  }
  products.multiplyAll(r, product);
}
