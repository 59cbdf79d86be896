/// The normal form, and moving digits within a number.
#include <algorithm>
#include <cstring>
#include <limits>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

constexpr std::int64_t kLimit = std::numeric_limits<std::int32_t>::max();

/// The same for each function that shapes: the run is in M_work1.
Byte *runOf(M_APM number, std::size_t words, std::int64_t shift) {
  Byte *run = engine().M_work1.sized(words * 8, "M_apm_normalize");
  layOut(run, words, number, shift);
  return run;
}

bool isExponent(std::int64_t exponent) {
  return exponent >= -kLimit && exponent <= kLimit;
}

void setExponent(M_APM number, std::int64_t exponent) {
  if (isExponent(exponent))
    number->exponent = static_cast<std::int32_t>(exponent);
  else
    warn(number, "'M_apm_normalize', Exponent out of range");
}

/// Index of the first byte that is not 0, or `bytes`.
std::size_t firstUsed(const Byte *run, std::size_t words) {
  for (std::size_t i = 0; i < words; ++i)
    if (const Word word = loadWord(run + 8 * i))
      return 8 * i + static_cast<std::size_t>(std::countl_zero(word)) / 8;
  return 8 * words;
}

/// Index of the last byte that is not 0, of a run that has one.
std::size_t lastUsed(const Byte *run, std::size_t words) {
  std::size_t i = words - 1;
  while (loadWord(run + 8 * i) == 0) --i;
  const auto zeros = static_cast<std::size_t>(std::countr_zero(loadWord(run + 8 * i)));
  return 8 * i + 7 - zeros / 8;
}

}  // namespace

void assignRun(M_APM number, Byte *run, std::size_t words, std::int64_t exponent,
               int sign) {
  std::size_t first = firstUsed(run, words);
  if (first == 8 * words) {
    M_set_to_zero(number);
    return;
  }
  exponent -= static_cast<std::int64_t>(2 * first);
  if (run[first] < 10) {
    const std::size_t from = first / 8;
    shiftLeftOneDigit(run + 8 * from, words - from);
    --exponent;
  }
  const std::size_t last = lastUsed(run, words), bytes = last + 1 - first;
  ensureBytes(number, bytes, "M_apm_normalize");
  std::memcpy(number->digits, run + first, bytes);
  number->digitCount = static_cast<std::int32_t>(2 * bytes) - (run[last] % 10 == 0);
  number->sign = sign;
  setExponent(number, exponent);
}

void layOut(Byte *run, std::size_t words, M_APM a, std::int64_t shift) {
  const std::size_t before = static_cast<std::size_t>(shift) / 2;
  const std::size_t bytes = bytesFor(a->digitCount);
  std::memset(run, 0, before);
  std::memcpy(run + before, a->digits, bytes);
  std::memset(run + before + bytes, 0, 8 * words - before - bytes);
  if (shift % 2 == 0) return;
  const std::size_t from = before / 8;
  shiftRightOneDigit(run + 8 * from, words - from);
}

std::size_t toLimbs(Limb *limbs, std::size_t room, M_APM a, int shift,
                    const char *function) {
  const std::size_t words = wordsFor(std::int64_t{a->digitCount} + shift);
  if (shift == 0) {
    gather(limbs, a->digits, bytesFor(a->digitCount));
  } else {
    Byte *run = engine().M_work1.sized(8 * words, function);
    layOut(run, words, a, shift);
    gather(limbs, run, 8 * words);
  }
  std::fill(limbs + 2 * words, limbs + std::max(room, 2 * words), 0);
  std::size_t used = 2 * words;
  while (limbs[used - 1] == 0) --used;
  return used;
}

void moveExponent(M_APM number, std::int64_t by) {
  if (number->sign != 0) setExponent(number, number->exponent + by);
}

}  // namespace zev::decimal

using namespace zev::decimal;

void M_apm_normalize(M_APM number) {
  if (number->digitCount <= 0) {
    M_set_to_zero(number);
    return;
  }
  if (number->digitCount % 2 != 0) {
    Byte &last = number->digits[number->digitCount / 2];
    last = static_cast<Byte>(last - last % 10);
  }
  const std::size_t words = wordsFor(number->digitCount);
  assignRun(number, runOf(number, words, 0), words, number->exponent, number->sign);
}

void M_apm_scale(M_APM number, int count) {
  const std::int64_t digits = std::int64_t{number->digitCount} + count;
  if (digits > kLimit) failForMemory("M_apm_scale");
  const std::size_t words = wordsFor(digits);
  const Byte *run = runOf(number, words, count);
  ensureBytes(number, bytesFor(digits), "M_apm_scale");
  std::memcpy(number->digits, run, bytesFor(digits));
  number->digitCount = static_cast<std::int32_t>(digits);
  number->exponent += count;
}

void M_apm_pad(M_APM number, int digits) {
  const std::size_t used = bytesFor(number->digitCount), bytes = bytesFor(digits);
  ensureBytes(number, bytes, "M_apm_pad");
  if (number->digitCount % 2 != 0) {
    Byte &last = number->digits[used - 1];
    last = static_cast<Byte>(last - last % 10);
  }
  if (bytes > used) std::memset(number->digits + used, 0, bytes - used);
  number->digitCount = digits;
}
