/// The rounds of an iteration whose right digits multiply from each to the next.
#pragma once

#include <algorithm>
#include <limits>

#include "decimal/engine.h"

namespace zev::decimal {

/// How an iteration goes: the digits that its first round works with, by what they grow,
/// and where they stop growing.
struct Growth {
  int first;
  int factor;
  int last;
};

/// Counts the rounds of an iteration that multiplies its right digits by `order`, and
/// tells when it may end.
class Rounds {
 public:
  Rounds(int places, int order, Growth growth,
         int limit = std::numeric_limits<int>::max())
      : places_(places), order_(order), growth_(growth), limit_(limit) {}

  /// Whether one more round is due.
  bool next() {
    if (done_) return false;
    if (++count_ > 1)
      digits_ = std::min<std::int64_t>(digits_ * growth_.factor, growth_.last);
    else
      digits_ = std::min(growth_.first, growth_.last);
    return true;
  }

  /// What this round works with and rounds to.
  int digits() const { return static_cast<int>(digits_); }

  /// Tells by how much this round changed the result. What is still wrong is that to the
  /// power of the order; from the second round on this may be little enough, unless the
  /// round's own precision hides it. False when the rounds were too many.
  bool correctedBy(M_APM correction) {
    const bool isPrecise = digits_ >= std::min<std::int64_t>(places_ + 8, growth_.last);
    const bool isSmall = correction->sign == 0 ||
                         std::int64_t{order_} * correction->exponent < -4 - places_;
    done_ = count_ > 1 && isPrecise && isSmall;
    if (done_ || count_ < limit_) return true;
    done_ = true;
    return false;
  }

 private:
  std::int64_t places_;
  int order_;
  Growth growth_;
  int limit_;
  int count_ = 0;
  std::int64_t digits_ = 0;
  bool done_ = false;
};

/// The growth of an iteration that starts from a double.
inline Growth fromDouble(int places) {
  return {44, 2, places + 16};
}

}  // namespace zev::decimal
