/// Which elements a kind of value can carry, and which cannot stand in one model that is
/// read.
#pragma once

#include <initializer_list>

#include "types/ocitimestamp/format_model.h"

namespace zev::format {

/// A set of elements.
class Elements {
 public:
  constexpr Elements(std::initializer_list<sb4> ids) {
    for (const sb4 id : ids) add(id);
  }
  static constexpr Elements all() {
    Elements set = {};
    for (ub8 &bits : set.bits_) bits = ~ub8{0};
    return set;
  }
  constexpr Elements operator|(Elements other) const {
    for (int i = 0; i < 2; ++i) other.bits_[i] |= bits_[i];
    return other;
  }
  constexpr void add(sb4 id) { bits_[id / 64] |= ub8{1} << id % 64; }
  constexpr bool has(sb4 id) const { return bits_[id / 64] >> id % 64 & 1; }

 private:
  ub8 bits_[2] = {0, 0};
};

enum Direction : ub1 { kReading = 1, kPrinting = 2, kBoth = 3 };

/// The errors of all elements for a kind of value, 0 for those that it can carry.
const ub2 *classErrorsOf(Direction direction, sb4 dateKind);

/// Whether an element may conflict with others than itself.
bool conflictsWithOthers(sb4 id);

}  // namespace zev::format
