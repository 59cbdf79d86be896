#include "bench/cells_by_hand.h"

#include <algorithm>
#include <cstring>

namespace bench {
namespace {

void deliver(Cell &cell, std::size_t length) {
  cell.length = static_cast<ub4>(length);
  cell.indicator = 0;
  cell.returnCode = 0;
}

int hexValue(char c) {
  return c <= '9' ? c - '0' : c - 'a' + 10;
}

}  // namespace

void integerByHand(const char *value, int length, Cell &cell) {
  const char *p = value;
  const char *const end = value + length;
  const bool negative = p != end && *p == '-';
  if (negative) ++p;
  int number = 0;
  for (; p != end; ++p) number = number * 10 + (*p - '0');
  if (negative) number = -number;
  std::memcpy(cell.bytes, &number, sizeof number);
  deliver(cell, sizeof number);
}

void stringByHand(const char *value, int length, Cell &cell) {
  const auto size = std::min<std::size_t>(static_cast<std::size_t>(length), kTarget - 1);
  std::memcpy(cell.bytes, value, size);
  cell.bytes[size] = '\0';
  deliver(cell, size);
}

void binaryByHand(const char *value, int length, Cell &cell) {
  const auto size =
      std::min<std::size_t>(static_cast<std::size_t>(length - 2) / 2, kTarget);
  for (std::size_t i = 0; i < size; ++i) {
    cell.bytes[i] =
        static_cast<char>(hexValue(value[2 + 2 * i]) << 4 | hexValue(value[3 + 2 * i]));
  }
  deliver(cell, size);
}

void varnumByHand(const char *value, int length, Cell &cell) {
  const bool negative = *value == '-';
  const char *p = value + negative;
  const char *const end = value + length;
  char digits[44];
  int count = 1;
  int beforePoint = 0;
  bool fraction = false;
  digits[0] = 0;
  for (; p != end; ++p) {
    if (*p == '.') {
      fraction = true;
      continue;
    }
    if (count > 1 || *p != '0') {
      digits[count++] = static_cast<char>(*p - '0');
      beforePoint += !fraction;
    } else {
      beforePoint -= fraction;
    }
  }
  while (count > 1 && digits[count - 1] == 0) --count;
  auto *out = reinterpret_cast<ub1 *>(cell.bytes);
  if (count == 1) {
    out[0] = 1;
    out[1] = 0x80;
    deliver(cell, 2);
    return;
  }
  digits[count] = 0;
  const int odd = beforePoint & 1;
  const int exponent = (beforePoint + odd) / 2;
  out[1] = static_cast<ub1>(negative ? 63 - exponent : 192 + exponent);
  int n = 2;
  for (int i = odd ? 0 : 1; i < count; i += 2) {
    const int pair = digits[i] * 10 + digits[i + 1];
    out[n++] = static_cast<ub1>(negative ? 101 - pair : pair + 1);
  }
  if (negative && n < 22) out[n++] = 102;
  out[0] = static_cast<ub1>(n - 1);
  deliver(cell, static_cast<std::size_t>(n));
}

}  // namespace bench
