/// Decimal arithmetic in many threads: each has constants, scratch numbers and caches of
/// its own and gets what one alone gets.
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "decimal/m_apm.h"

namespace zevtest {
namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 30;

using Function = void (*)(M_APM, int, M_APM);
constexpr Function kFunctions[] = {
    m_apm_sqrt, m_apm_cbrt, m_apm_log,     m_apm_log10,   m_apm_exp,       m_apm_sin,
    m_apm_cos,  m_apm_tan,  m_apm_arcsin,  m_apm_arccos,  m_apm_arctan,    m_apm_sinh,
    m_apm_cosh, m_apm_tanh, m_apm_arcsinh, m_apm_arctanh, m_apm_reciprocal};

std::string textOf(M_APM number) {
  std::string text(static_cast<std::size_t>(number->digitCount) + 32, '\0');
  m_apm_to_string(text.data(), -1, number);
  return text.c_str();
}

/// The results of all kinds of calls on arguments that follow from `round`; the places
/// make the constants grow at different times.
std::string results(int round) {
  const int places = 40 + round % 3 * 60;
  M_APM x = m_apm_init(), y = m_apm_init(), r = m_apm_init();
  m_apm_set_string(x, ("0." + std::to_string(1234567 + 98765 * round)).c_str());
  m_apm_set_long(y, 3 + round);
  std::string all;
  for (const Function function : kFunctions) {
    function(r, places, x);
    all += textOf(r) + ' ';
  }
  m_apm_pow(r, places, y, x);
  all += textOf(r) + ' ';
  m_apm_add(y, y, MM_Two);
  m_apm_divide(r, 300, x, y);
  m_apm_multiply(x, r, r);
  all += textOf(x) + ' ';
  m_apm_factorial(r, y);
  m_apm_set_random_seed(std::to_string(round).c_str());
  m_apm_get_random(x);
  all += textOf(r) + ' ' + textOf(x);
  for (M_APM number : {x, y, r}) m_apm_free(number);
  return all;
}

TEST(Threads, DecimalNumbersDoNotDisturbEachOther) {
  std::vector<std::string> alone;
  for (int round = 0; round < kRounds; ++round) alone.push_back(results(round));
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([number, &alone, &wrong] {
      for (int i = 0; i < kRounds; ++i) {
        const int round = (i + 7 * number) % kRounds;
        wrong += results(round) != alone[static_cast<std::size_t>(round)];
      }
    });
  }
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace zevtest
