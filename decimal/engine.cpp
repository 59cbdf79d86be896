#include "decimal/engine.h"

#include <cxxabi.h>

#include <initializer_list>
#include <new>

extern "C" void *__dso_handle __attribute__((visibility("hidden")));

namespace zev::decimal {
namespace {

constinit thread_local Engine *current = nullptr;
constinit thread_local bool isReleaseArranged = false;

void release(void *) {
  isReleaseArranged = false;
  m_apm_free_all_mem();
}

/// An engine that is made while its thread ends, by another destructor, is released too.
void arrangeRelease() {
  if (isReleaseArranged) return;
  abi::__cxa_thread_atexit(release, nullptr, &__dso_handle);
  isReleaseArranged = true;
}

struct Constant {
  M_APM *number;
  const char *text;
};

// The transcendental ones to 128 digits.
#define PI_TEXT                                                                 \
  "3.1415926535897932384626433832795028841971693993751058209749445923078164062" \
  "862089986280348253421170679821480865132823066470938446"
#define HALF_PI_TEXT                                                            \
  "1.5707963267948966192313216916397514420985846996875529104874722961539082031" \
  "431044993140174126710585339910740432566411533235469223"
#define TWO_PI_TEXT                                                             \
  "6.2831853071795864769252867665590057683943387987502116419498891846156328125" \
  "724179972560696506842341359642961730265646132941876892"
#define E_TEXT                                                                  \
  "2.7182818284590452353602874713526624977572470936999595749669676277240766303" \
  "535475945713821785251664274274663919320030599218174136"
#define LOG_2_TEXT                                                              \
  "0.6931471805599453094172321214581765680755001343602552541206800094933936219" \
  "6969471560586332699641868754200148102057068573368552024"
#define LOG_3_TEXT                                                              \
  "1.0986122886681096913952452369225257046474905578227494517346943336374942932" \
  "186089668736157548137320887879700290659578657423680042"
#define LOG_10_TEXT                                                             \
  "2.3025850929940456840179914546843642076011014886287729760333279009675726096" \
  "773524802359972050895982983419677840422862486334095255"
#define LOG_10_OF_E_TEXT                                                        \
  "0.4342944819032518276511289189166050822943970058036665661144537831658646492" \
  "0887077472922494933843174831870610674476630373364167929"

// Each thread has its own numbers, but the same table of where they are: a row holds how
// to find a number, not the number.
#define FOR_EACH_CONSTANT(X)            \
  X(MM_Zero, "0")                       \
  X(MM_One, "1")                        \
  X(MM_Two, "2")                        \
  X(MM_Three, "3")                      \
  X(MM_Four, "4")                       \
  X(MM_Five, "5")                       \
  X(MM_Ten, "10")                       \
  X(MM_0_5, "0.5")                      \
  X(MM_0_85, "0.85")                    \
  X(MM_5x_125R, "8.0E-3")               \
  X(MM_5x_64R, "1.5625E-2")             \
  X(MM_5x_256R, "3.90625E-3")           \
  X(MM_5x_Eight, "8")                   \
  X(MM_5x_Sixteen, "16")                \
  X(MM_5x_Twenty, "20")                 \
  X(MM_LOG_2_BASE_E, LOG_2_TEXT)        \
  X(MM_LOG_3_BASE_E, LOG_3_TEXT)        \
  X(MM_LOG_10_BASE_E, LOG_10_TEXT)      \
  X(MM_LOG_E_BASE_10, LOG_10_OF_E_TEXT) \
  X(MM_E, E_TEXT)                       \
  X(MM_PI, PI_TEXT)                     \
  X(MM_HALF_PI, HALF_PI_TEXT)           \
  X(MM_2_PI, TWO_PI_TEXT)               \
  X(MM_lc_PI, PI_TEXT)                  \
  X(MM_lc_HALF_PI, HALF_PI_TEXT)        \
  X(MM_lc_2_PI, TWO_PI_TEXT)            \
  X(MM_lc_log2, LOG_2_TEXT)             \
  X(MM_lc_log10, LOG_10_TEXT)           \
  X(MM_lc_log10R, LOG_10_OF_E_TEXT)

constexpr int kStoredDigits = 128;

template <class Visit>
void forEachConstant(Visit visit) {
#define VISIT(number, text) visit(number, text);
  FOR_EACH_CONSTANT(VISIT)
#undef VISIT
}

void makeConstants() {
  forEachConstant([](M_APM &number, const char *text) {
    number = m_apm_init();
    m_apm_set_string(number, text);
  });
  MM_lc_PI_digits = MM_lc_log_digits = kStoredDigits;
}

Engine &makeEngine() {
  current = new (allocate(sizeof(Engine), "m_apm_init")) Engine;
  arrangeRelease();
  makeConstants();
  return *current;
}

}  // namespace

Engine &engine() {
  return current ? *current : makeEngine();
}

void *allocate(std::size_t bytes, const char *function) {
  void *memory = std::malloc(bytes);
  if (!memory) failForMemory(function);
  return memory;
}

}  // namespace zev::decimal

using namespace zev::decimal;

#define DEFINE(number, text) constinit thread_local M_APM number = nullptr;
FOR_EACH_CONSTANT(DEFINE)
#undef DEFINE
constinit thread_local int MM_lc_PI_digits = kStoredDigits;
constinit thread_local int MM_lc_log_digits = kStoredDigits;
constinit thread_local int MM_cpp_min_precision = 30;

void M_free_all_add() {
  engine().M_work1.release();
  engine().M_work2.release();
}

void M_free_all_div() {
  engine().limbsA.release();
  engine().limbsB.release();
  engine().limbsResult.release();
}

void M_free_all_exp() {}

void M_free_all_fft() {
  Engine &own = engine();
  own.M_aa_array.release();
  own.M_bb_array.release();
  for (const int parity : {0, 1}) {
    own.twiddles[parity].release();
    own.twiddlePoints[parity] = 0;
  }
  own.weights.release();
  own.weightPoints = 0;
}

void M_free_all_fmul() {
  Engine &own = engine();
  own.columns.release();
  own.M_ain.release();
  own.M_bin.release();
  own.mul_stack_data.release();
}

void M_free_all_pow() {
  engine().M_last_xx_input.release();
  engine().M_last_xx_log.release();
  engine().M_last_log_digits = 0;
}

void M_free_all_rnd() {
  engine().randomState.release();
  engine().isSeeded = false;
}

void M_free_all_set() {
  engine().M_buf.release();
}

void M_free_all_stck() {
  Engine &own = engine();
  for (int i = 0; i <= own.M_last_init; ++i) m_apm_free(own.M_stack_array[i]);
  std::free(own.M_stack_array);
  own.M_stack_array = nullptr;
  own.stackSlots = 0;
  own.M_stack_ptr = own.M_last_init = -1;
}

void M_free_all_util() {
  Engine &own = engine();
  while (own.pooled > 0) {
    M_APM number = own.pool[--own.pooled];
    std::free(number->digits);
    std::free(number);
  }
}

void M_free_all_cnst() {
  forEachConstant([](M_APM &number, const char *) {
    if (number) m_apm_free(number);
    number = nullptr;
  });
  MM_lc_PI_digits = MM_lc_log_digits = kStoredDigits;
}

void m_apm_free_all_mem() {
  if (!current) return;
  M_free_all_add();
  M_free_all_div();
  M_free_all_exp();
  M_free_all_fft();
  M_free_all_fmul();
  M_free_all_pow();
  M_free_all_rnd();
  M_free_all_set();
  M_free_all_stck();
  M_free_all_cnst();
  M_free_all_util();
  current->~Engine();
  std::free(current);
  current = nullptr;
}

void m_apm_trim_mem_usage() {
  m_apm_free_all_mem();
  engine();
}
