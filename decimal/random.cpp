/// A linear congruence of 15 digits: X' = (a X + a) mod 1E15.
#include "decimal/random.h"

#include <sys/time.h>

#include <algorithm>
#include <string>

#include "decimal/engine.h"

using namespace zev::decimal;

void M_get_rnd_seed(M_APM r) {
  constexpr int kDigits = 15;
  timeval now{};
  gettimeofday(&now, nullptr);
  std::string seconds = std::to_string(now.tv_sec);
  std::reverse(seconds.begin(), seconds.end());
  const Scratch seed;
  m_apm_set_string(seed, (std::to_string(now.tv_usec) + seconds).c_str());
  seed->exponent = kDigits;
  m_apm_floor(r, seed);
}

void m_apm_set_random_seed(const char *s) {
  Engine &own = engine();
  m_apm_set_string(own.randomState, s);
  own.isSeeded = true;
}

void m_apm_get_random(M_APM r) {
  constexpr int kDigits = 15;
  Engine &own = engine();
  if (!own.isSeeded) {
    M_get_rnd_seed(own.randomState);
    own.isSeeded = true;
  }
  const Scratch factor, modulus, product, quotient;
  m_apm_set_string(factor, "716805947629621");
  m_apm_set_string(modulus, "1.0E15");
  m_apm_multiply(product, own.randomState, factor);
  m_apm_add(product, product, factor);
  m_apm_integer_div_rem(quotient, own.randomState, product, modulus);
  m_apm_copy(r, own.randomState);
  moveExponent(r, -kDigits);
}
