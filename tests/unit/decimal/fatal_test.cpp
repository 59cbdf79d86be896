/// Exhausted memory ends the process and says who wanted it.
#include <atomic>
#include <cstdlib>

#include "allocation_count.h"
#include "decimal/engine.h"
#include "decimal/fast_multiply.h"
#include "decimal_fixture.h"

namespace {

std::atomic<long> living{0};
thread_local long counted = 0;
thread_local long successesLeft = -1;
bool isToEnd = false;

bool mayAllocate() {
  ++counted;
  if (successesLeft < 0) return true;
  if (successesLeft == 0) return false;
  --successesLeft;
  return true;
}

}  // namespace

extern "C" {
/// What a process that ends at once still holds is no leak.
int __lsan_is_turned_off() {
  return isToEnd;
}

void *__real_malloc(std::size_t);
void *__real_realloc(void *, std::size_t);
void __real_free(void *);

void *__wrap_malloc(std::size_t size) {
  if (!mayAllocate()) return nullptr;
  ++living;
  return __real_malloc(size);
}

void *__wrap_realloc(void *block, std::size_t size) {
  if (!mayAllocate()) return nullptr;
  if (!block) ++living;
  return __real_realloc(block, size);
}

void __wrap_free(void *block) {
  if (block) --living;
  __real_free(block);
}
}

namespace zevtest {

long allocations() {
  return counted;
}
long livingBlocks() {
  return living;
}
void failAfter(long successes) {
  successesLeft = successes;
}

namespace {

TEST(DecimalReport, WarningGoesOn) {
  EXPECT_EQ(warningsOf([] { M_apm_log_error_msg(0, "text"); }), "MAPM Warning: text\n");
}

TEST(DecimalReport, ErrorEndsTheProcessWithStatus100) {
  EXPECT_EXIT((isToEnd = true, M_apm_log_error_msg(1, "text")),
              testing::ExitedWithCode(100), "^MAPM Error: text\n$");
}

struct FatalCase {
  const char *name;
  void (*work)();
  const char *message;
};

class ExhaustedMemory : public testing::TestWithParam<FatalCase> {};

TEST_P(ExhaustedMemory, EndsTheProcess) {
  const auto &[name, work, message] = GetParam();
  EXPECT_EXIT(
      {
        isToEnd = true;
        m_apm_trim_mem_usage();
        work();
      },
      testing::ExitedWithCode(100),
      std::string("^MAPM Error: '") + message + "', Out of memory\n$");
}

void useUpThePool() {
  for (int i = 0; i < 64; ++i) m_apm_init();
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Decimal, ExhaustedMemory, testing::Values(
    FatalCase{"Init", [] { useUpThePool(); failAfter(0); m_apm_init(); }, "m_apm_init"},
    FatalCase{"FirstInit", [] { m_apm_free_all_mem(); failAfter(0); m_apm_init(); }, "m_apm_init"},
    FatalCase{"SetString", [] { Number x; failAfter(0); m_apm_set_string(x, std::string(2000, '7').c_str()); }, "m_apm_set_string"},
    FatalCase{"Normalize", [] { Number x; failAfter(2); m_apm_set_string(x, std::string(2000, '7').c_str()); }, "M_apm_normalize"},
    FatalCase{"Copy", [] { Number x(std::string(2000, '7')), y; failAfter(0); m_apm_copy(y, x); }, "m_apm_copy"},
    FatalCase{"Scale", [] { Number x("7"); failAfter(1); M_apm_scale(x, 3000); }, "M_apm_scale"},
    FatalCase{"Pad", [] { Number x("7"); failAfter(0); M_apm_pad(x, 2000); }, "M_apm_pad"},
    FatalCase{"Stack", [] { failAfter(0); M_get_stack_var(); }, "M_get_stack_var"},
    FatalCase{"Add", [] { Number x("7"), y("1E-9000"), r; failAfter(0); m_apm_add(r, x, y); }, "m_apm_add"},
    FatalCase{"Subtract", [] { Number x("7"), y("1E-9000"), r; failAfter(0); m_apm_subtract(r, x, y); }, "m_apm_subtract"},
    FatalCase{"AddTooFarApart", [] { Number x("1E2000000000"), y("1E-2000000000"), r; m_apm_add(r, x, y); }, "m_apm_add"},
    FatalCase{"Multiply", [] { Number x(std::string(60, '7')), r; failAfter(0); m_apm_multiply(r, x, x); }, "m_apm_multiply"},
    FatalCase{"FastMultiply", [] { Number x(std::string(6000, '7')), r; failAfter(0); m_apm_multiply(r, x, x); }, "M_fast_multiply"},
    FatalCase{"Transform", [] { Number x(std::string(6000, '7')), r; failAfter(3); m_apm_multiply(r, x, x); }, "M_fast_mul_fft"},
    FatalCase{"Divide", [] { Number x("7"), y("3"), r; failAfter(0); m_apm_divide(r, 40, x, y); }, "M_apm_sdivide"},
    FatalCase{"ExtendedText", [] { Number x("7"); char text[2100]; M_get_stack_var(); failAfter(0); m_apm_to_fixpt_stringex(text, 2000, x, '.', ',', 3); }, "m_apm_to_fixpt_stringex"}),
    [](const auto &row) { return std::string(row.param.name); });
// clang-format on

TEST(DecimalReport, ImpossiblePowerOfTwo) {
  EXPECT_EXIT((isToEnd = true, M_next_power_of_2((1 << 30) + 1)),
              testing::ExitedWithCode(100),
              "'M_next_power_of_2', ERROR :sizeof\\(int\\) too small \\?\\?");
}

TEST(DecimalText, ExtendedFormIsNullWithoutMemory) {
  const Number x("7");
  failAfter(0);
  char *text = m_apm_to_fixpt_stringexp(5, x, '.', ',', 3);
  failAfter(-1);
  EXPECT_EQ(text, nullptr);
}

}  // namespace
}  // namespace zevtest
