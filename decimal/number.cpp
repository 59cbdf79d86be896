/// Making, copying, comparing and reading of numbers, and the scratch stack.
#include <algorithm>
#include <cstring>
#include <limits>

#include "decimal/engine.h"
#include "decimal/tables.h"

namespace zev::decimal {
namespace {

constexpr int kFirstBytes = 84, kFirstCapacity = 80;
constexpr int kSpareBytes = 32, kSpareCapacity = 28;
constexpr int kFirstSlots = 18, kMoreSlots = 12, kNumbersAtOnce = 4;

M_APM newNumber() {
  auto *number = static_cast<M_APM>(allocate(sizeof(M_APM_struct), "m_apm_init"));
  number->digits = static_cast<Byte *>(allocate(kFirstBytes, "m_apm_init"));
  number->capacityBytes = kFirstCapacity;
  return number;
}

void copyDigits(M_APM to, M_APM from) {
  const std::size_t bytes = bytesFor(from->digitCount);
  ensureBytes(to, bytes, "m_apm_copy");
  std::memcpy(to->digits, from->digits, bytes);
}

void copyWithSign(M_APM to, M_APM from, int sign) {
  if (to != from) copyDigits(to, from);
  to->digitCount = from->digitCount;
  to->exponent = from->exponent;
  to->sign = sign;
}

/// The digit that stands for ones; the exponent is positive.
int lastIntegerDigit(M_APM a) {
  const int at = a->exponent - 1;
  if (at >= a->digitCount) return 0;
  const Byte pair = a->digits[at / 2];
  return at % 2 ? M_mul_rem_10[pair] : M_mul_div_10[pair];
}

void growStack(Engine &own) {
  const int slots = own.stackSlots ? own.stackSlots + kMoreSlots : kFirstSlots;
  auto *array = static_cast<M_APM *>(std::realloc(
      own.M_stack_array, static_cast<std::size_t>(slots) * sizeof *own.M_stack_array));
  if (!array) failForMemory("M_get_stack_var");
  own.M_stack_array = array;
  own.stackSlots = slots;
}

void makeStackNumbers(Engine &own) {
  if (own.M_last_init + kNumbersAtOnce >= own.stackSlots) growStack(own);
  for (int i = 0; i < kNumbersAtOnce; ++i)
    own.M_stack_array[++own.M_last_init] = m_apm_init();
}

}  // namespace

void ensureBytes(M_APM number, std::size_t bytes, const char *function) {
  if (bytes <= static_cast<std::size_t>(number->capacityBytes)) return;
  if (bytes > std::numeric_limits<int>::max() / 2) failForMemory(function);
  void *digits = std::realloc(number->digits, bytes + kSpareBytes);
  if (!digits) failForMemory(function);
  number->digits = static_cast<Byte *>(digits);
  number->capacityBytes = static_cast<int>(bytes) + kSpareCapacity;
}

int compareDigits(M_APM a, M_APM b) {
  const std::size_t bytes = bytesFor(std::min(a->digitCount, b->digitCount));
  const int order = std::memcmp(a->digits, b->digits, bytes);
  if (order != 0) return order < 0 ? -1 : 1;
  return (a->digitCount > b->digitCount) - (a->digitCount < b->digitCount);
}

int compareMagnitudes(M_APM a, M_APM b) {
  if (a->exponent != b->exponent) return a->exponent < b->exponent ? -1 : 1;
  return compareDigits(a, b);
}

}  // namespace zev::decimal

using namespace zev::decimal;

M_APM m_apm_init() {
  Engine &own = engine();
  M_APM number = own.pooled > 0 ? own.pool[--own.pooled] : newNumber();
  number->cookie = kLiving;
  number->refCount = 1;
  M_set_to_zero(number);
  return number;
}

void m_apm_free(M_APM number) {
  if (number->cookie != kLiving) {
    M_apm_log_error_msg(0, "'m_apm_free', Invalid M_APM variable");
    return;
  }
  number->cookie = kFreed;
  Engine &own = engine();
  if (number->capacityBytes == kFirstCapacity && own.pooled < Engine::kPoolSize) {
    own.pool[own.pooled++] = number;
    return;
  }
  std::free(number->digits);
  std::free(number);
}

void M_set_to_zero(M_APM number) {
  number->digits[0] = 0;
  number->digitCount = 1;
  number->exponent = 0;
  number->sign = 0;
}

void m_apm_copy(M_APM r, M_APM a) {
  copyWithSign(r, a, a->sign);
}

void m_apm_negate(M_APM r, M_APM a) {
  copyWithSign(r, a, -a->sign);
}

void m_apm_absolute_value(M_APM r, M_APM a) {
  copyWithSign(r, a, a->sign != 0);
}

int m_apm_compare(M_APM a, M_APM b) {
  if (a->sign != b->sign) return a->sign < b->sign ? -1 : 1;
  return a->sign == 0 ? 0 : a->sign * compareMagnitudes(a, b);
}

int m_apm_sign(M_APM a) {
  return a->sign;
}

int m_apm_exponent(M_APM a) {
  return a->sign == 0 ? 0 : a->exponent - 1;
}

int m_apm_significant_digits(M_APM a) {
  return a->digitCount;
}

int m_apm_is_integer(M_APM a) {
  return a->sign == 0 || a->exponent >= a->digitCount;
}

int m_apm_is_even(M_APM a) {
  return a->sign == 0 || (m_apm_is_integer(a) && lastIntegerDigit(a) % 2 == 0);
}

int m_apm_is_odd(M_APM a) {
  return a->sign != 0 && m_apm_is_integer(a) && lastIntegerDigit(a) % 2 == 1;
}

M_APM M_get_stack_var() {
  Engine &own = engine();
  if (++own.M_stack_ptr > own.M_last_init) makeStackNumbers(own);
  return own.M_stack_array[own.M_stack_ptr];
}

void M_restore_stack(int count) {
  engine().M_stack_ptr -= count;
}

void M_get_div_rem(int x, unsigned char *quotient, unsigned char *remainder) {
  *quotient = M_mul_div[x];
  *remainder = M_mul_rem[x];
}

void M_get_div_rem_10(int x, unsigned char *quotient, unsigned char *remainder) {
  *quotient = M_mul_div_10[x];
  *remainder = M_mul_rem_10[x];
}

void M_get_div_rem_addr(const unsigned char **quotients,
                        const unsigned char **remainders) {
  *quotients = M_mul_div.data();
  *remainders = M_mul_rem.data();
}
