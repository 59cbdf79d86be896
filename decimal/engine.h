/// What the engine keeps for each thread, and the helpers that its files share.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "decimal/base100.h"
#include "decimal/limbs.h"
#include "decimal/m_apm.h"

extern "C" {

// --- Shaping ---

/// Restores the normal form from any `digitCount` digits. An exponent beyond 32 bits
/// draws a warning and gives zero.
ZEV_HELPER void M_apm_normalize(M_APM number);
/// Puts `count` zeros before the digits; the value stays.
ZEV_HELPER void M_apm_scale(M_APM number, int count);
/// Puts zeros behind the digits until there are `digits`; the value stays.
ZEV_HELPER void M_apm_pad(M_APM number, int digits);
ZEV_HELPER void M_set_to_zero(M_APM number);

// --- Scratch numbers ---

/// The next number of the scratch stack, of any value.
ZEV_HELPER M_APM M_get_stack_var(void);
/// Gives back the last `count` of them.
ZEV_HELPER void M_restore_stack(int count);

// --- Reporting ---

/// Writes "MAPM Warning: " and the text to standard error; with `fatal`, "MAPM Error: ",
/// and ends the process with status 100.
ZEV_HELPER void M_apm_log_error_msg(int fatal, const char *text);

// --- Release of what the calling thread keeps, by concern ---

ZEV_HELPER void M_free_all_add(void);   ///< addition
ZEV_HELPER void M_free_all_div(void);   ///< division
ZEV_HELPER void M_free_all_exp(void);   ///< exponential: keeps nothing between calls
ZEV_HELPER void M_free_all_fft(void);   ///< transform
ZEV_HELPER void M_free_all_fmul(void);  ///< multiplication
ZEV_HELPER void M_free_all_pow(void);   ///< the last logarithm of a power
ZEV_HELPER void M_free_all_rnd(void);   ///< random state
ZEV_HELPER void M_free_all_set(void);   ///< text buffer
ZEV_HELPER void M_free_all_stck(void);  ///< scratch numbers
ZEV_HELPER void M_free_all_util(void);  ///< freed numbers held for reuse
ZEV_HELPER void M_free_all_cnst(void);  ///< constants

}  // extern "C"

namespace zev::decimal {

inline constexpr std::int64_t kLiving = 0x6BCC9AE5, kFreed = 0x0FFFFFF0;

/// Ends the process: "'<function>', Out of memory".
[[noreturn]] void failForMemory(const char *function);

/// Memory from the system, or the process ends in the name of `function`.
void *allocate(std::size_t bytes, const char *function);

/// A buffer that grows and keeps its size between calls. Its content does not survive
/// growing.
template <class T>
class Buffer {
 public:
  Buffer() = default;
  Buffer(const Buffer &) = delete;
  Buffer &operator=(const Buffer &) = delete;
  ~Buffer() { release(); }

  T *sized(std::size_t count, const char *function) {
    if (count > capacity_) grow(count, function);
    return data_;
  }
  std::size_t capacity() const { return capacity_; }
  void release() {
    std::free(data_);
    data_ = nullptr;
    capacity_ = 0;
  }

 private:
  void grow(std::size_t count, const char *function) {
    release();
    data_ = static_cast<T *>(allocate(count * sizeof(T), function));
    capacity_ = count;
  }

  T *data_ = nullptr;
  std::size_t capacity_ = 0;
};

/// A number that is made at its first use and kept.
class Kept {
 public:
  Kept() = default;
  Kept(const Kept &) = delete;
  Kept &operator=(const Kept &) = delete;
  ~Kept() { release(); }

  operator M_APM() { return number_ ? number_ : number_ = m_apm_init(); }
  explicit operator bool() const { return number_ != nullptr; }
  void release() {
    if (number_) m_apm_free(number_);
    number_ = nullptr;
  }

 private:
  M_APM number_ = nullptr;
};

/// A number of the scratch stack for the length of a scope.
class Scratch {
 public:
  Scratch() : number_(M_get_stack_var()) {}
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;
  ~Scratch() { M_restore_stack(1); }

  operator M_APM() const { return number_; }
  M_APM operator->() const { return number_; }

 private:
  M_APM number_;
};

/// Everything that belongs to one thread, but for its constants.
struct Engine {
  // Numbers that were freed, for m_apm_init to take up again.
  static constexpr int kPoolSize = 32;
  M_APM pool[kPoolSize];
  int pooled = 0;

  // The scratch stack: numbers up to M_last_init are made, up to M_stack_ptr in use.
  M_APM *M_stack_array = nullptr;
  int stackSlots = 0, M_stack_ptr = -1, M_last_init = -1;

  Buffer<Byte> M_work1, M_work2;             ///< aligned operands, results being shaped
  Buffer<Limb> limbsA, limbsB, limbsResult;  ///< of multiplication and division
  Buffer<std::uint64_t> columns;             ///< of schoolbook multiplication
  Buffer<Byte> M_ain, M_bin;                 ///< padded operands of fast multiplication
  Buffer<char> M_buf;                        ///< text being parsed or printed

  Buffer<double> M_aa_array, M_bb_array;  ///< operands of the transform
  // Its roots of unity, for counts that are powers of four and for the others.
  Buffer<double> twiddles[2], weights;
  std::size_t twiddlePoints[2] = {}, weightPoints = 0;

  Buffer<Byte> mul_stack_data;  ///< working space of divide and conquer

  Kept M_last_xx_input, M_last_xx_log;  ///< the last logarithm of a power
  int M_last_log_digits = 0;            ///< and its digits, 0 for none

  Kept randomState;
  bool isSeeded = false;
};

/// The calling thread's engine, made with its constants at the first call.
Engine &engine();

/// Room for `bytes` in a number. What it holds stays.
void ensureBytes(M_APM number, std::size_t bytes, const char *function);

/// Bytes that hold so many digits.
constexpr std::size_t bytesFor(std::int64_t digits) {
  return static_cast<std::size_t>(digits + 1) / 2;
}

/// Words that hold so many digits.
constexpr std::size_t wordsFor(std::int64_t digits) {
  return static_cast<std::size_t>(digits + 15) / 16;
}

/// Makes `number` the normal form of the fraction in `run`, times ten to the power of
/// `exponent`. The run is used up. `number` may be an operand that `run` was made of.
void assignRun(M_APM number, Byte *run, std::size_t words, std::int64_t exponent,
               int sign);

/// Writes the digits of `a`, moved `shift` digits to the right, to a run that is long
/// enough, zeros before and behind.
void layOut(Byte *run, std::size_t words, M_APM a, std::int64_t shift);

/// Writes the digits of `a`, moved `shift` digits to the right, as limbs, and zeros
/// behind them up to `room`. `limbs` has room for that and for 2 * wordsFor() the moved
/// digits. Returns the count up to the last limb that is not 0.
std::size_t toLimbs(Limb *limbs, std::size_t room, M_APM a, int shift,
                    const char *function);

/// -1, 0 or 1 as the magnitude of `a` is less than, equal to or greater than that of `b`,
/// of which none is zero.
int compareMagnitudes(M_APM a, M_APM b);
/// The same for their digits alone, as if both exponents were equal.
int compareDigits(M_APM a, M_APM b);

/// Writes a warning, "'<function>', <text>", and makes `r` zero.
void warn(M_APM r, const char *text);

/// Multiplies by a power of ten; a result beyond the range of exponents draws a warning
/// and gives zero.
void moveExponent(M_APM number, std::int64_t by);

/// The integer that `number` holds, when it is one and fits.
bool toInteger(M_APM number, int &value);

/// The value to 15 places as a double: infinite or zero beyond a double's range.
double toDouble(M_APM number);

}  // namespace zev::decimal
