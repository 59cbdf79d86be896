/// Who allocates, and what a thread leaves behind.
#include <thread>

#include "allocation_count.h"
#include "decimal_fixture.h"

namespace zevtest {
namespace {

using Function = void (*)(M_APM, int, M_APM);

/// Operands of 40 digits, results of 80: nothing is allocated once the engine has worked.
TEST(DecimalMemory, SteadyStateAllocatesNothing) {
  const std::string digits = "7" + std::string(39, '3');
  const Number a("0." + digits), b("0.1" + digits.substr(1));
  Number r, rest;
  char text[200];
  const auto work = [&] {
    m_apm_add(r, a, b);
    m_apm_subtract(r, a, b);
    m_apm_multiply(r, a, b);
    m_apm_divide(r, 40, a, b);
    m_apm_integer_div_rem(r, rest, a, b);
    for (const Function function :
         {m_apm_sqrt, m_apm_cbrt, m_apm_log, m_apm_log10, m_apm_exp, m_apm_sin, m_apm_cos,
          m_apm_tan, m_apm_arcsin, m_apm_arccos, m_apm_arctan, m_apm_sinh, m_apm_cosh,
          m_apm_tanh, m_apm_arcsinh, m_apm_arctanh, m_apm_reciprocal, m_apm_round})
      function(r, 40, a);
    m_apm_pow(r, 40, a, b);
    m_apm_arctan2(r, 40, a, b);
    m_apm_floor(r, a);
    m_apm_to_fixpt_string(text, 40, a);
    m_apm_set_string(r, text);
    m_apm_set_double(r, 1.5);
    M_APM passing = m_apm_init();
    m_apm_multiply(passing, a, b);
    m_apm_free(passing);
  };
  work();
  const long before = allocations();
  work();
  work();
  EXPECT_EQ(allocations() - before, 0);
}

TEST(DecimalMemory, AThreadThatEndsReleasesAllItsOwn) {
  const auto work = [] {
    Number a(std::string(3000, '7')), r;
    m_apm_multiply(r, a, a);
    m_apm_set_string(a, "0.7");
    for (const Function function : {m_apm_sin, m_apm_log, m_apm_arctan})
      function(r, 300, a);
    m_apm_pow(r, 40, a, a);
    m_apm_get_random(r);
    m_apm_factorial(r, MM_Ten);
  };
  std::thread(work).join();  // what the system keeps of a first thread
  const long before = livingBlocks();
  std::thread(work).join();
  EXPECT_EQ(livingBlocks() - before, 0);
}

/// Another destructor of the same thread may compute after the engine's.
struct ComputesAtTheEnd {
  ~ComputesAtTheEnd() {
    Number r;
    m_apm_sqrt(r, 40, Number("2"));
    result = r.plain(10);
  }
  static inline std::string result;
};

TEST(DecimalMemory, ThreadThatComputesWhileItEndsReleasesAllItsOwn) {
  const auto work = [] {
    static thread_local ComputesAtTheEnd last;
    static_cast<void>(&last);
    Number r;
    m_apm_exp(r, 40, MM_One);
  };
  std::thread(work).join();
  const long before = livingBlocks();
  std::thread(work).join();
  EXPECT_EQ(livingBlocks() - before, 0);
  EXPECT_EQ(ComputesAtTheEnd::result, "1.4142135624");
}

TEST(DecimalMemory, LongTextsDoNotKeepTheirBuffer) {
  Number r;
  m_apm_set_string(r, "1");
  const long before = livingBlocks();
  m_apm_set_string(r, ("0." + std::string(5000, '0')).c_str());
  EXPECT_EQ(livingBlocks() - before, -1);
  m_apm_set_string(r, "1");
  EXPECT_EQ(livingBlocks() - before, 0);
}

TEST(DecimalMemory, NumbersMayBeFreedByAnotherThread) {
  M_APM number = m_apm_init();
  m_apm_set_string(number, "12.5");
  std::thread([number] { m_apm_free(number); }).join();
}

}  // namespace
}  // namespace zevtest
