/// Quotients and remainders of small numbers by 100 and by 10, as constants of the build.
#pragma once

#include <array>

#include "decimal/m_apm.h"

namespace zev::decimal {

template <int kCount, int kDivisor>
constexpr auto quotients() {
  std::array<unsigned char, kCount> table{};
  for (int x = 0; x < kCount; ++x) table[x] = static_cast<unsigned char>(x / kDivisor);
  return table;
}
template <int kCount, int kDivisor>
constexpr auto remainders() {
  std::array<unsigned char, kCount> table{};
  for (int x = 0; x < kCount; ++x) table[x] = static_cast<unsigned char>(x % kDivisor);
  return table;
}

inline constexpr auto M_mul_div = quotients<10000, 100>();
inline constexpr auto M_mul_rem = remainders<10000, 100>();
inline constexpr auto M_mul_div_10 = quotients<100, 10>();
inline constexpr auto M_mul_rem_10 = remainders<100, 10>();

}  // namespace zev::decimal

extern "C" {
/// x / 100 and x % 100 for x up to 9999.
ZEV_HELPER void M_get_div_rem(int x, unsigned char *quotient, unsigned char *remainder);
/// x / 10 and x % 10 for x up to 99.
ZEV_HELPER void M_get_div_rem_10(int x, unsigned char *quotient,
                                 unsigned char *remainder);
/// The tables of M_get_div_rem, of 10000 bytes each.
ZEV_HELPER void M_get_div_rem_addr(const unsigned char **quotients,
                                   const unsigned char **remainders);
}
