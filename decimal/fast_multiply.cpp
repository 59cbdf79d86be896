#include "decimal/fast_multiply.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "decimal/engine.h"
#include "decimal/fft.h"
#include "decimal/tables.h"

namespace zev::decimal {
namespace {

constexpr int kLongestTransform = 0x40000;
constexpr std::size_t kKeptDoubles = 8200;

/// The digits of one operand as points: element j, of base 10000, times the j-th weight.
/// With the weights the product comes out whole from a transform of half its elements:
/// the elements of its lower half as real, those of its upper half as imaginary parts.
void load(Points points, const Byte *digits) {
  const Weights weights = weightsFor(points.count);
  for (std::size_t j = 0; j < points.count; ++j) {
    const double element = digits[2 * j] * 100 + digits[2 * j + 1];
    const double *weight = weights.pairs + 2 * j * weights.stride;
    points.re[j] = element * weight[0];
    points.im[j] = element * weight[1];
  }
}

void multiplyPoints(Points a, Points b) {
  for (std::size_t j = 0; j < a.count; ++j) {
    const double re = a.re[j] * b.re[j] - a.im[j] * b.im[j];
    a.im[j] = a.re[j] * b.im[j] + a.im[j] * b.re[j];
    a.re[j] = re;
  }
}

/// Takes weights and scale off again.
void unload(Points points) {
  const Weights weights = weightsFor(points.count);
  const double scale = 1.0 / static_cast<double>(points.count);
  for (std::size_t j = 0; j < points.count; ++j) {
    const double *weight = weights.pairs + 2 * j * weights.stride;
    const double re = points.re[j] * weight[0] + points.im[j] * weight[1];
    points.im[j] = (points.im[j] * weight[0] - points.re[j] * weight[1]) * scale;
    points.re[j] = re * scale;
  }
}

/// Carries elements into digit pairs, the last element first. Adding one half before the
/// fraction is cut rounds the transform's error away.
std::int64_t carry(Byte *out, const double *elements, std::size_t count,
                   std::int64_t carried) {
  for (std::size_t j = count; j-- > 0;) {
    // Elements are not negative but for the transform's error, which is far below a half.
    // NOLINTNEXTLINE(bugprone-incorrect-roundings)
    carried += static_cast<std::int64_t>(elements[j] + 0.5);
    const auto rest = static_cast<std::size_t>(carried % 10000);
    carried /= 10000;
    out[2 * j] = M_mul_div[rest];
    out[2 * j + 1] = M_mul_rem[rest];
  }
  return carried;
}

/// An operand's array: kept for the next call unless it is long.
Points arrayFor(Buffer<double> &kept, Buffer<double> &passing, std::size_t points) {
  constexpr auto kName = "M_fast_mul_fft";
  double *array = 2 * points <= kKeptDoubles ? kept.sized(kKeptDoubles, kName)
                                             : passing.sized(2 * points, kName);
  return {array, array + points, points};
}

void addInto(Byte *run, std::size_t offset, const Byte *addend, std::size_t bytes) {
  if (!addRuns(run + offset, addend, bytes / 8)) return;
  while (run[--offset] == 99) run[offset] = 0;
  ++run[offset];
}

void subtractFrom(Byte *run, std::size_t offset, const Byte *less, std::size_t bytes) {
  if (!subtractRuns(run + offset, less, bytes / 8)) return;
  while (run[--offset] == 0) run[offset] = 99;
  --run[offset];
}

/// Working space of all levels over operands of n bytes.
constexpr std::size_t workingSpace(int n) {
  return 8 * static_cast<std::size_t>(n);
}

/// a b = high B^2 + (high + low + (a1 - a0)(b0 - b1)) B + low, where high is a1 b1, low
/// a0 b0, and B stands for half the bytes.
void divideAndConquer(Byte *out, const Byte *a, const Byte *b, int n, Byte *space) {
  if (n <= kLongestTransform) {
    M_fast_mul_fft(out, a, b, n);
    return;
  }
  const int half = n / 2;
  const auto whole = static_cast<std::size_t>(n);
  Byte *differenceA = space, *differenceB = space + half, *stmp = space + whole;
  Byte *products = stmp + whole, *deeper = products + 2 * whole;
  const int sign = M_fmul_subtract(differenceA, a, a + half, half) *
                   M_fmul_subtract(differenceB, b + half, b, half);
  if (sign != 0) divideAndConquer(stmp, differenceA, differenceB, half, deeper);
  divideAndConquer(products, a, b, half, deeper);
  divideAndConquer(products + whole, a + half, b + half, half, deeper);
  std::memcpy(out, products, 2 * whole);
  const auto middle = static_cast<std::size_t>(half);
  addInto(out, middle, products, whole);
  addInto(out, middle, products + whole, whole);
  if (sign > 0) addInto(out, middle, stmp, whole);
  if (sign < 0) subtractFrom(out, middle, stmp, whole);
}

/// The digits of an operand with zeros behind.
const Byte *padded(Buffer<Byte> &buffer, M_APM a, std::size_t bytes) {
  const std::size_t used = bytesFor(a->digitCount);
  Byte *digits = buffer.sized(bytes, "M_fast_multiply");
  std::memcpy(digits, a->digits, used);
  std::memset(digits + used, 0, bytes - used);
  return digits;
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

int M_next_power_of_2(int n) {
  if (n < 3) return n;
  constexpr int kLargest = 1 << 30;
  if (n > kLargest)
    M_apm_log_error_msg(1, "'M_next_power_of_2', ERROR :sizeof(int) too small ??");
  return static_cast<int>(std::bit_ceil(static_cast<unsigned>(n)));
}

void M_fast_multiply(M_APM r, M_APM a, M_APM b) {
  Engine &own = engine();
  const int n = M_next_power_of_2((std::max(a->digitCount, b->digitCount) + 1) / 2);
  const auto bytes = static_cast<std::size_t>(n);
  const Byte *digitsA = padded(own.M_ain, a, bytes);
  const Byte *digitsB = a == b ? digitsA : padded(own.M_bin, b, bytes);
  Byte *out = own.M_work1.sized(2 * bytes, "M_fast_multiply");
  if (n <= kLongestTransform)
    M_fast_mul_fft(out, digitsA, digitsB, n);
  else
    M_fmul_div_conq(out, digitsA, digitsB, n);
  assignRun(r, out, 2 * bytes / 8, std::int64_t{a->exponent} + b->exponent,
            a->sign * b->sign);
}

void M_fmul_div_conq(Byte *out, const Byte *a, const Byte *b, int n) {
  Byte *space = n > kLongestTransform
                    ? engine().mul_stack_data.sized(workingSpace(n), "M_fmul_div_conq")
                    : nullptr;
  divideAndConquer(out, a, b, n, space);
}

int M_fmul_subtract(Byte *result, const Byte *a, const Byte *b, int n) {
  const auto bytes = static_cast<std::size_t>(n);
  const int order = std::memcmp(a, b, bytes);
  if (order == 0) {
    std::memset(result, 0, bytes);
    return 0;
  }
  std::memcpy(result, order > 0 ? a : b, bytes);
  subtractRuns(result, order > 0 ? b : a, bytes / 8);
  return order > 0 ? 1 : -1;
}

void M_fast_mul_fft(Byte *out, const Byte *a, const Byte *b, int n) {
  Engine &own = engine();
  const auto points = static_cast<std::size_t>(n) / 2;
  Buffer<double> passingA, passingB;
  const Points aa = arrayFor(own.M_aa_array, passingA, points);
  load(aa, a);
  transform(aa);
  if (a == b) {
    multiplyPoints(aa, aa);
  } else {
    const Points bb = arrayFor(own.M_bb_array, passingB, points);
    load(bb, b);
    transform(bb);
    multiplyPoints(aa, bb);
  }
  transformBack(aa);
  unload(aa);
  // The product has one element less than the operands together: the last one is 0, and
  // the first pair of bytes takes the carry.
  const std::int64_t upper = carry(out + n + 2, aa.im, points - 1, 0);
  const std::int64_t last = carry(out + 2, aa.re, points, upper);
  out[0] = M_mul_div[static_cast<std::size_t>(last)];
  out[1] = M_mul_rem[static_cast<std::size_t>(last)];
}
