#include "utils/mb/unicode.h"

#include <algorithm>
#include <iterator>

namespace {

/// Code points of one width other than 1.
struct WidthRange {
  char32_t first, last;
  int width;
};

// clang-format off
constexpr WidthRange kWidths[] = {
#include "utils/mb/unicode_widths.inc"
};
// clang-format on

constexpr bool endsBefore(const WidthRange &range, char32_t c) {
  return range.last < c;
}

constexpr bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

}  // namespace

int zev::widthOf(char32_t c) {
  if (c == 0) return 0;
  if (isControl(c)) return -1;
  if (c < kWidths[0].first) return 1;
  const auto *range =
      std::lower_bound(std::begin(kWidths), std::end(kWidths), c, endsBefore);
  return range != std::end(kWidths) && range->first <= c ? range->width : 1;
}
