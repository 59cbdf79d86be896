/// Counts what the decimal engine does, as a measure of time that no machine changes.
#pragma once

namespace zevtest {

/// Products, quotients and sums of limbs, of eight digits each, that were computed so
/// far. The program must be linked with --wrap for m_apm_add, m_apm_subtract,
/// m_apm_multiply and M_apm_sdivide.
long decimalSteps();

}  // namespace zevtest
