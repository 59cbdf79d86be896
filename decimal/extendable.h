/// Constants that grow on demand.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// Makes MM_lc_PI, its half and its double good to `places` digits and two more.
ZEV_HELPER void M_check_PI_places(int places);
/// Makes the logarithms of 2 and of 10 and the reciprocal of the latter good to `places`
/// digits and four more.
ZEV_HELPER void M_check_log_places(int places);
/// pi by the arithmetic-geometric mean.
ZEV_HELPER void M_calculate_PI_AGM(M_APM r, int places);
/// R(a, b) = 1 / (1 - the sum of 2^(n - 1) (a_n^2 - b_n^2)) over the steps n = 0, 1, 2,
/// ... of the arithmetic-geometric mean of a and b: R(1, t x) and R(1, t) differ by ln x
/// when t is small.
ZEV_HELPER void M_log_AGM_R_func(M_APM r, int places, M_APM a, M_APM b);
}
