/// Helpers of the random numbers.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// A seed of 15 digits from the clock, the digits that change fastest first.
ZEV_HELPER void M_get_rnd_seed(M_APM r);
}
