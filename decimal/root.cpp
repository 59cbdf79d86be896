/// Square and cube roots: the square root limb by limb, and from many digits on, as the
/// cube root, by Newton's iteration on the inverse.
#include <algorithm>

#include "decimal/engine.h"
#include "decimal/estimates.h"
#include "decimal/newton.h"

namespace zev::decimal {
namespace {

constexpr int kNewtonPlaces = 1000;  ///< from here on the iteration is the faster way

/// Limbs that hold one digit more than so many places have.
std::size_t wantedLimbs(int places) {
  return std::max(2, (places + 2 + kLimbDigits - 1) / kLimbDigits);
}

/// Limb by limb: the digits that follow the last place are cut, not rounded, which leaves
/// the rounding right.
void rootByLimbs(M_APM r, int places, M_APM x) {
  constexpr auto kName = "m_apm_sqrt";
  Engine &own = engine();
  // An odd exponent moves the digits one to the right, to become even.
  const int shift = x->exponent % 2 != 0;
  const std::int64_t exponent = (std::int64_t{x->exponent} + shift) / 2;
  const std::size_t wanted = wantedLimbs(places);
  const std::size_t room =
      std::max(2 * wanted, 2 * wordsFor(std::int64_t{x->digitCount} + shift));
  Limb *rest = own.limbsA.sized(room + 1, kName);
  Limb *twice = own.limbsB.sized(wanted + 1, kName);
  Limb *root = own.limbsResult.sized(wanted, kName);
  const std::size_t square = std::min(toLimbs(rest, room, x, shift, kName), 2 * wanted);
  const std::size_t made = rootLimbs(root, wanted, rest, square, twice);
  const std::size_t words = (made + 1) / 2;
  Byte *run = own.M_work1.sized(8 * words, kName);
  spread(run, root, made);
  assignRun(r, run, words, exponent, 1);
  m_apm_round(r, places, r);
}

/// By g' = g (3 - x g g) / 2 for the inverse root.
void rootByNewton(M_APM r, int places, M_APM x) {
  const int half = x->exponent / 2;
  const Scratch mantissa, rounded, g, next, product;
  m_apm_copy(mantissa, x);
  mantissa->exponent -= 2 * half;
  M_get_sqrt_guess(g, mantissa);
  Rounds rounds(places, 2, fromDouble(places));
  while (rounds.next()) {
    const int digits = rounds.digits();
    m_apm_round(rounded, digits, mantissa);
    m_apm_multiply(product, g, g);
    m_apm_round(product, digits, product);
    m_apm_multiply(next, rounded, product);
    m_apm_subtract(product, MM_Three, next);
    m_apm_round(product, digits, product);
    m_apm_multiply(next, g, product);
    m_apm_multiply(next, next, MM_0_5);
    m_apm_round(next, digits, next);
    m_apm_subtract(product, next, g);
    rounds.correctedBy(product);
    m_apm_copy(g, next);
  }
  m_apm_multiply(product, g, mantissa);
  m_apm_round(r, places, product);
  moveExponent(r, half);
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_sqrt(M_APM r, int places, M_APM x) {
  if (x->sign < 0)
    warn(r, "'m_apm_sqrt', Negative argument");
  else if (x->sign == 0)
    M_set_to_zero(r);
  else if (places < kNewtonPlaces)
    rootByLimbs(r, places, x);
  else
    rootByNewton(r, places, x);
}

void m_apm_cbrt(M_APM r, int places, M_APM x) {
  if (x->sign == 0) {
    M_set_to_zero(r);
    return;
  }
  const int third = x->exponent / 3, sign = x->sign;
  const Scratch mantissa, rounded, g, next, product;
  m_apm_absolute_value(mantissa, x);
  mantissa->exponent -= 3 * third;
  M_get_cbrt_guess(g, mantissa);
  // g' = (4 g - x g^4) / 3
  Rounds rounds(places, 2, {14, 3, places + 16});
  while (rounds.next()) {
    const int digits = rounds.digits();
    m_apm_round(rounded, digits, mantissa);
    m_apm_multiply(product, g, g);
    m_apm_round(product, digits, product);
    m_apm_multiply(next, product, product);
    m_apm_round(next, digits, next);
    m_apm_multiply(product, next, rounded);
    m_apm_multiply(next, g, MM_Four);
    m_apm_subtract(rounded, next, product);
    m_apm_divide(product, digits + 1, rounded, MM_Three);
    m_apm_round(next, digits, product);
    m_apm_subtract(product, next, g);
    rounds.correctedBy(product);
    m_apm_copy(g, next);
  }
  // x times the square of its inverse cube root.
  m_apm_multiply(product, g, g);
  m_apm_round(product, places + 16, product);
  m_apm_multiply(next, product, mantissa);
  m_apm_round(r, places, next);
  r->sign = sign;
  moveExponent(r, third);
}
