/// Power series, and what their arguments are brought to. `places` counts as everywhere,
/// but nothing is rounded to it here: the results carry guard digits.
#pragma once

#include <algorithm>
#include <cstdint>

#include "decimal/m_apm.h"

extern "C" {
/// exp x for a small x.
ZEV_HELPER void M_raw_exp(M_APM r, int places, M_APM x);
/// Sine and cosine of a small angle.
ZEV_HELPER void M_raw_sin(M_APM r, int places, M_APM x);
ZEV_HELPER void M_raw_cos(M_APM r, int places, M_APM x);
/// arctan x for |x| below 1E-4.
ZEV_HELPER void M_arctan_near_0(M_APM r, int places, M_APM x);
/// ln (1 + d) for |d| below 1E-4.
ZEV_HELPER void M_log_near_1(M_APM r, int places, M_APM d);
}

namespace zev::decimal {

/// The digits that a term needs whose exponent lies so far below that of the sum.
inline int termPlaces(int places, std::int64_t below) {
  constexpr std::int64_t kGuard = 6, kLeast = 20;
  return static_cast<int>(std::max(kLeast, places + kGuard - below));
}

/// Whether x squared is too small beside 1 to show in so many places.
inline bool isSquareLost(M_APM x, int places) {
  return 2 * std::int64_t{x->exponent} < -8 - std::int64_t{places};
}

}  // namespace zev::decimal
