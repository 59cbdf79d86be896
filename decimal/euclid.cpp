// Lehmer's method: as long as the leading digits alone tell the quotients, these are
// gathered in a matrix of machine integers, which is then applied to all digits in one
// pass.
#include "decimal/euclid.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

__extension__ typedef unsigned __int128 Wide;

/// x' = a x + b y, y' = c x + d y.
struct Matrix {
  std::int64_t a = 1, b = 0, c = 0, d = 1;
};

/// Keeps a row times two limbs within 64 bits.
constexpr std::int64_t kLargestEntry = std::int64_t{1} << 34;
constexpr std::size_t kLeading = 3;

Wide leadingLimbs(const Limb *limbs) {
  return (Wide{limbs[0]} * kLimbBase + limbs[1]) * kLimbBase + limbs[2];
}

int bitsOf(Wide value) {
  int bits = 0;
  for (; value != 0; value >>= 1) ++bits;
  return bits;
}

/// The quotients that the leading limbs of both tell for certain.
Matrix certainQuotients(const Limb *x, const Limb *y) {
  constexpr int kBits = 62;
  const Wide leadingX = leadingLimbs(x);
  const int drop = std::max(0, bitsOf(leadingX) - kBits);
  auto u = static_cast<std::int64_t>(leadingX >> drop);
  auto v = static_cast<std::int64_t>(leadingLimbs(y) >> drop);
  Matrix m;
  while (v + m.c != 0 && v + m.d != 0) {
    const std::int64_t q = (u + m.a) / (v + m.c);
    if (q != (u + m.b) / (v + m.d) || q > kLargestEntry) break;
    if (std::llabs(m.c) > kLargestEntry / (q + 1) ||
        std::llabs(m.d) > kLargestEntry / (q + 1))
      break;
    m = {m.c, m.d, m.a - q * m.c, m.b - q * m.d};
    u = std::exchange(v, u - q * v);
  }
  return m;
}

/// Splits a sum into a carry, rounded down, and the limb that stays.
Limb carryOut(std::int64_t &sum) {
  std::int64_t carry = sum / kLimbBase, rest = sum % kLimbBase;
  if (rest < 0) {
    rest += kLimbBase;
    --carry;
  }
  sum = carry;
  return static_cast<Limb>(rest);
}

void apply(const Matrix &m, Limb *x, Limb *y, std::size_t count) {
  std::int64_t sumX = 0, sumY = 0;
  for (std::size_t i = count; i-- > 0;) {
    const std::int64_t limbX = x[i], limbY = y[i];
    sumX += m.a * limbX + m.b * limbY;
    sumY += m.c * limbX + m.d * limbY;
    x[i] = carryOut(sumX);
    y[i] = carryOut(sumY);
  }
}

/// The digits of an integer as limbs, right-aligned in `count` of them.
Limb *toLimbs(Buffer<Limb> &buffer, M_APM a, std::size_t count) {
  constexpr auto kName = "m_apm_gcd";
  const std::size_t words = (count + 1) / 2;
  Limb *limbs = buffer.sized(2 * words + kLeading, kName);
  Byte *run = engine().M_work1.sized(8 * words, kName);
  layOut(run, words, a, static_cast<std::int64_t>(kLimbDigits * count) - a->exponent);
  gather(limbs, run, 8 * words);
  return limbs;
}

void fromLimbs(M_APM r, const Limb *limbs, std::size_t count) {
  const std::size_t words = (count + 1) / 2;
  Byte *run = engine().M_work1.sized(8 * words, "m_apm_gcd");
  spread(run, limbs, count);
  assignRun(r, run, words, static_cast<std::int64_t>(kLimbDigits * count), 1);
}

}  // namespace

bool shortenPair(M_APM x, M_APM y) {
  if (std::int64_t{x->exponent} - y->exponent > kLimbDigits) return false;
  Engine &own = engine();
  std::size_t count = (static_cast<std::size_t>(x->exponent) + kLimbDigits - 1) / 8;
  if (count < kLeading) return false;
  Limb *limbsX = toLimbs(own.limbsA, x, count), *limbsY = toLimbs(own.limbsB, y, count);
  bool isShortened = false;
  while (count >= kLeading) {
    const Matrix m = certainQuotients(limbsX, limbsY);
    if (m.b == 0) break;
    apply(m, limbsX, limbsY, count);
    isShortened = true;
    for (; count > 0 && limbsX[0] == 0; --count) {
      ++limbsX;
      ++limbsY;
    }
  }
  if (!isShortened) return false;
  fromLimbs(x, limbsX, count);
  fromLimbs(y, limbsY, count);
  return true;
}

}  // namespace zev::decimal
