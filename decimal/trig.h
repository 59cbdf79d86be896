/// Helpers of sine and cosine. Their results carry guard digits unless they are rounded.
#pragma once

#include "decimal/m_apm.h"

extern "C" {
/// The angle between -pi and pi that differs from `x` by whole turns, to `places` digits
/// behind the point.
ZEV_HELPER void M_limit_angle_to_pi(M_APM r, int places, M_APM x);
/// Sine and cosine of an angle between -pi and pi.
ZEV_HELPER void M_5x_sin(M_APM r, int places, M_APM x);
ZEV_HELPER void M_4x_cos(M_APM r, int places, M_APM x);
/// From the sine of an angle to that of five times, from the cosine to that of four times
/// the angle.
ZEV_HELPER void M_5x_do_it(M_APM r, int places, M_APM sine);
ZEV_HELPER void M_4x_do_it(M_APM r, int places, M_APM cosine);
/// sqrt(1 - c c): the magnitude of the sine from the cosine, and the other way round.
ZEV_HELPER void M_cos_to_sin(M_APM r, int places, M_APM c);
}
