/// Helpers of the logarithm.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// ln x for x from 1E-4 up to below 1000 that is not near 1.
ZEV_HELPER void M_log_basic_iteration(M_APM r, int places, M_APM x);
/// The same, in iterations that triple the right digits.
ZEV_HELPER void M_log_solve_cubic(M_APM r, int places, M_APM x);
}
