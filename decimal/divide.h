/// The two ways of dividing.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// Long division of numbers other than zero: the first `places` + 1 digits of the
/// quotient, and as many more as the exponent of `a` exceeds that of `b`, the rest cut
/// off.
ZEV_HELPER void M_apm_sdivide(M_APM r, int places, M_APM a, M_APM b);
}
