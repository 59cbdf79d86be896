/// Helpers of the exponential.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// Sets `b` and `*n` to x / ln 2, rounded to an integer, halves away from zero. Not 0
/// when it does not fit, `*n` untouched then.
ZEV_HELPER int M_exp_compute_nn(int *n, M_APM b, M_APM x);
}
