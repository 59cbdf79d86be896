/// Helpers of the text forms.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// The digits of an integer, with "-" before a negative one: 21 bytes at most.
ZEV_HELPER void M_long_2_ascii(char *output, long input);
/// Rounds to `places` digits behind the point, half away from zero.
ZEV_HELPER void M_apm_round_fixpt(M_APM r, int places, M_APM a);
}
