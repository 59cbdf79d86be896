#include "decimal/estimates.h"

#include <cmath>

#include "decimal/engine.h"

using zev::decimal::toDouble;

void M_get_sqrt_guess(M_APM r, M_APM x) {
  m_apm_set_double(r, 1.0 / std::sqrt(toDouble(x)));
}

void M_get_cbrt_guess(M_APM r, M_APM x) {
  m_apm_set_double(r, 1.00001 / std::exp(std::log(toDouble(x)) / 3.0));
}

void M_get_log_guess(M_APM r, M_APM x) {
  m_apm_set_double(r, std::log(toDouble(x)) * 1.00001);
}

void M_get_asin_guess(M_APM r, M_APM x) {
  m_apm_set_double(r, std::asin(toDouble(x)) * 1.00001);
}

void M_get_acos_guess(M_APM r, M_APM x) {
  m_apm_set_double(r, std::acos(toDouble(x)) * 1.00001);
}
