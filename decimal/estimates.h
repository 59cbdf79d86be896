/// First estimates of iterations: functions of doubles, to 15 digits.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
ZEV_HELPER void M_get_sqrt_guess(M_APM r, M_APM x);  ///< 1 / sqrt(x)
// These are off by about 1E-5, so that a correction tells how an iteration converges.
ZEV_HELPER void M_get_cbrt_guess(M_APM r, M_APM x);  ///< 1 / cbrt(x)
ZEV_HELPER void M_get_log_guess(M_APM r, M_APM x);   ///< ln x
ZEV_HELPER void M_get_asin_guess(M_APM r, M_APM x);
ZEV_HELPER void M_get_acos_guess(M_APM r, M_APM x);
}
