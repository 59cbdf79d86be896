/// Numbers from and to the server's numeric.
#include <algorithm>

#include "core/owned.h"
#include "types/number.h"

namespace zev {
namespace {

constexpr int kMantissa = kNumberSize - 1;  ///< most mantissa bytes
constexpr ub1 kZero = 0x80;

bool isPositive(ub1 exponentByte) {
  return (exponentByte & 0x80) != 0;
}

/// Base-100 digits of a mantissa, two decimal digits each.
struct Mantissa {
  int digits[kMantissa];
  int count = 0;
};

/// Drops digits that are 0 in front; how many.
int dropLeadingZeros(Mantissa &mantissa) {
  int *const end = mantissa.digits + mantissa.count;
  int *const first = std::find_if(mantissa.digits, end, [](int d) { return d != 0; });
  std::copy(first, end, mantissa.digits);
  const auto dropped = static_cast<int>(first - mantissa.digits);
  mantissa.count -= dropped;
  return dropped;
}

/// Reads up to `most` mantissa bytes, until one that is no digit; false for one that no
/// number of this sign has.
bool readMantissa(const ub1 *bytes, int most, bool positive, Mantissa &out) {
  for (int i = 0; i < most; ++i) {
    const ub1 byte = bytes[i];
    if (byte == (positive ? 102 : 1)) return false;
    if (byte < 1 || byte > 101) break;
    out.digits[out.count++] = positive ? byte - 1 : 101 - byte;
  }
  return true;
}

/// A record of the digits before which `power` decimal digits stand in front of the
/// point; null when memory runs out.
numeric *makeRecord(const Mantissa &mantissa, bool positive, int power) {
  // The first base-10000 digit holds two decimal digits or four.
  const bool leadsWithHalf = power % 4 != 0;
  const int ndigits = (mantissa.count + leadsWithHalf + 1) / 2;
  numeric *record = nullptr;
  if (alloc_var(&record, ndigits) != 0) return nullptr;
  std::fill_n(record->digits, ndigits, sb2{0});
  for (int i = 0; i < mantissa.count; ++i) {
    const int half = i + leadsWithHalf;
    const int unit = half % 2 == 0 ? 100 : 1;
    record->digits[half / 2] =
        static_cast<sb2>(record->digits[half / 2] + mantissa.digits[i] * unit);
  }
  // Rounded up: the point stands behind that many base-10000 digits.
  record->weight = static_cast<sb2>((power + (power > 0 ? 3 : 0)) / 4 - 1);
  record->sign = positive ? kNumericPositive : kNumericNegative;
  record->dscale = static_cast<sb2>(std::max(0, 2 * mantissa.count - power + 1));
  strip_var(record);
  return record;
}

numeric *zeroRecord() {
  numeric *record = nullptr;
  if (alloc_var(&record, 0) != 0) return nullptr;
  record->weight = record->dscale = 0;
  record->sign = kNumericPositive;
  return record;
}

sword numberToRecord(const ub1 *number, int mantissaBytes, int power, numeric **out) {
  const bool positive = isPositive(number[0]);
  Mantissa mantissa;
  if (!readMantissa(number + 1, mantissaBytes, positive, mantissa)) return -1;
  power -= 2 * dropLeadingZeros(mantissa);
  *out = makeRecord(mantissa, positive, power);
  return *out ? 0 : -1;
}

/// Twice the power of 100.
int powerOfTen(ub1 exponentByte) {
  return 2 * (isPositive(exponentByte) ? exponentByte - 192 : 63 - exponentByte);
}

/// The mantissa bytes of a record, two for each of its digits, without zeros at either
/// end; how many.
int mantissaOf(const numeric &v, bool positive, ub1 *out) {
  int count = 0;
  const auto put = [&](int digit) {
    if ((count != 0 || digit != 0) && count < kMantissa) {
      out[count++] = static_cast<ub1>(positive ? digit + 1 : 101 - digit);
    }
  };
  for (int i = 0; i < v.ndigits; ++i) {
    put(v.digits[i] / 100);
    put(v.digits[i] % 100);
  }
  const ub1 zero = positive ? 1 : 101;
  while (count > 0 && out[count - 1] == zero) out[--count] = 0;
  return count;
}

/// Writes a NUMBER into `out` and returns its size; 0 for what is not a number.
std::size_t numberFromRecord(const numeric &v, ub1 *out) {
  // The server's infinities have the top bit too, and no digits.
  if (v.sign & 0x8000) return 0;
  const bool positive = (v.sign & 0xC000) == 0;
  const int mantissa = mantissaOf(v, positive, out + 1);
  if (mantissa == 0) {
    out[0] = kZero;
    return 1;
  }
  const int doubled = v.dscale - v.weight;
  const int exponent = (doubled + (doubled & 1)) / 2;
  out[0] = static_cast<ub1>(positive ? (exponent + 64) | 0x80 : 63 - exponent);
  auto size = static_cast<std::size_t>(mantissa) + 1;
  if (!positive && size < kNumberSize) out[size++] = 102;
  return size;
}

}  // namespace
}  // namespace zev

extern "C" sword ConvertNUMBERToNumeric(const ub1 *n, numeric **out) {
  if (!n || !out) return -1;
  *out = nullptr;
  if (n[0] == zev::kZero) {
    *out = zev::zeroRecord();
    return *out ? 0 : -1;
  }
  // The power is taken as an unsigned byte, also where it is negative.
  return zev::numberToRecord(n, zev::kMantissa, static_cast<ub1>(zev::powerOfTen(n[0])),
                             out);
}

extern "C" sword ConvertVARNUMBERToNumeric(const ub1 *n, numeric **out) {
  if (!n || !out || n[0] < 1) return -1;
  *out = nullptr;
  if (n[1] == zev::kZero) {
    *out = zev::zeroRecord();
    return *out ? 0 : -1;
  }
  return zev::numberToRecord(n + 1, std::min(n[0] - 1, zev::kMantissa),
                             zev::powerOfTen(n[1]), out);
}

extern "C" sword ConvertNumericToNUMBER(numeric *v, ub1 *out) {
  return v && out && zev::numberFromRecord(*v, out) != 0 ? 0 : -1;
}

extern "C" sword ConvertNumericToVARNUMBER(numeric *v, ub1 *out) {
  const std::size_t size = v && out ? zev::numberFromRecord(*v, out + 1) : 0;
  if (size == 0) return -1;
  out[0] = static_cast<ub1>(size);
  return 0;
}
