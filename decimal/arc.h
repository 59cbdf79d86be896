/// Helpers of the inverse trigonometric functions.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// Arc sine and arc cosine of |x| below 1E-4.
ZEV_HELPER void M_arcsin_near_0(M_APM r, int places, M_APM x);
ZEV_HELPER void M_arccos_near_0(M_APM r, int places, M_APM x);
/// Arc tangent of |x| from 1000 on.
ZEV_HELPER void M_arctan_large_input(M_APM r, int places, M_APM x);
}
