/// Many steps of Euclid's algorithm at once.
#pragma once

#include "decimal/m_apm.h"

namespace zev::decimal {

/// Replaces two positive integers, `x` not below `y`, by others with the same greatest
/// common divisor, in the same order, many quotients further on. False, nothing being
/// changed, when the next quotient is too large for that.
bool shortenPair(M_APM x, M_APM y);

}  // namespace zev::decimal
