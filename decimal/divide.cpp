#include "decimal/divide.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

constexpr int kReciprocalPlaces = 250;  ///< from here on by the reciprocal

/// Sets what lies behind so many digits of a run to 0.
void cutRun(Byte *run, std::size_t words, std::int64_t digits) {
  const std::size_t bytes = bytesFor(digits);
  if (bytes > 8 * words) return;
  if (digits % 2 != 0) run[bytes - 1] = static_cast<Byte>(run[bytes - 1] / 10 * 10);
  std::memset(run + bytes, 0, 8 * words - bytes);
}

void setPowerOfTen(M_APM r, std::int64_t power, int sign) {
  m_apm_copy(r, MM_One);
  r->sign = sign;
  moveExponent(r, power);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void M_apm_sdivide(M_APM r, int places, M_APM a, M_APM b) {
  constexpr auto kName = "M_apm_sdivide";
  const int order = compareDigits(a, b), sign = a->sign * b->sign;
  const std::int64_t distance = std::int64_t{a->exponent} - b->exponent;
  if (order == 0) {
    setPowerOfTen(r, distance, sign);
    return;
  }
  const std::int64_t digits = std::max<std::int64_t>(
      1, std::int64_t{places} + 1 + std::max<std::int64_t>(distance, 0));
  if (digits > std::numeric_limits<std::int32_t>::max()) failForMemory(kName);

  // A dividend whose digits are the larger moves one to the right, so that the quotient's
  // first digit stands right behind the point.
  Engine &own = engine();
  const int shift = order > 0;
  const std::size_t wanted = (static_cast<std::size_t>(digits) + 7) / 8;
  const std::size_t roomB = 2 * wordsFor(b->digitCount) + 1;
  const std::size_t roomA = 2 * wordsFor(std::int64_t{a->digitCount} + shift);
  const std::size_t room = restLimbs(wanted, roomA, roomB);
  Limb *divisor = own.limbsB.sized(roomB, kName);
  Limb *rest = own.limbsA.sized(room, kName);
  const std::size_t n = toLimbs(divisor, roomB, b, 0, kName);
  const std::size_t dividend = toLimbs(rest, room, a, shift, kName);

  Limb *quotient = own.limbsResult.sized(wanted, kName);
  const std::size_t made = divideLimbs(quotient, wanted, rest, dividend, divisor, n);
  const std::size_t words = (made + 1) / 2;
  Byte *run = own.M_work1.sized(8 * words, kName);
  spread(run, quotient, made);
  cutRun(run, words, digits);
  assignRun(r, run, words, distance + shift, sign);
}

void m_apm_divide(M_APM r, int places, M_APM a, M_APM b) {
  if (b->sign == 0) {
    warn(r, "'m_apm_divide', Divide by 0");
  } else if (a->sign == 0) {
    M_set_to_zero(r);
  } else if (places < kReciprocalPlaces) {
    M_apm_sdivide(r, places, a, b);
  } else {
    const std::int64_t distance = std::int64_t{a->exponent} - b->exponent;
    const std::int64_t digits = places + std::max<std::int64_t>(distance, 0);
    if (digits > std::numeric_limits<std::int32_t>::max() / 2)
      failForMemory("m_apm_divide");
    const int working = static_cast<int>(digits);
    const Scratch reciprocal, product;
    m_apm_reciprocal(reciprocal, working + 8, b);
    m_apm_multiply(product, a, reciprocal);
    m_apm_round(r, working, product);
  }
}

void m_apm_integer_divide(M_APM r, M_APM a, M_APM b) {
  if (b->sign == 0) {
    warn(r, "'m_apm_divide', Divide by 0");
    return;
  }
  if (a->sign == 0 || a->exponent < b->exponent) {
    M_set_to_zero(r);
    return;
  }
  constexpr int kPlaces = 4;
  M_apm_sdivide(r, kPlaces, a, b);
  if (r->exponent <= 0) {
    M_set_to_zero(r);
  } else if (r->digitCount > r->exponent) {
    r->digitCount = r->exponent;
    M_apm_normalize(r);
  }
}

void m_apm_integer_div_rem(M_APM q, M_APM rem, M_APM a, M_APM b) {
  m_apm_integer_divide(q, a, b);
  const Scratch product;
  m_apm_multiply(product, q, b);
  m_apm_subtract(rem, a, product);
}
