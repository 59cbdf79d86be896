/// Any text is read as a decimal number, with warnings or without. What is read must be
/// in normal form and print, in both forms, as texts that read as the same number.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "decimal/m_apm.h"

namespace {

constexpr int kLongestPlain = 100'000;

class Number {
 public:
  Number() : number_(m_apm_init()) {}
  Number(const Number &) = delete;
  Number &operator=(const Number &) = delete;
  ~Number() { m_apm_free(number_); }
  operator M_APM() const { return number_; }
  M_APM operator->() const { return number_; }

 private:
  M_APM number_;
};

bool isNormal(M_APM number) {
  const unsigned char first = number->digits[0];
  const unsigned char last = number->digits[(number->digitCount - 1) / 2];
  if (number->sign == 0)
    return number->exponent == 0 && number->digitCount == 1 && first == 0;
  return first >= 10 && last != 0 && (last % 10 == 0) == (number->digitCount % 2 != 0);
}

void expectSame(M_APM number, const char *text) {
  const Number again;
  m_apm_set_string(again, text);
  if (m_apm_compare(number, again) != 0) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  // Warnings are part of the behaviour, but of no interest by the million. What the
  // fuzzer and the sanitizers have to say goes by the descriptor and is seen all the
  // same.
  stderr = std::fopen("/dev/null", "w");
  return stderr ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  const Number number;
  m_apm_set_string(number, text.c_str());
  if (!isNormal(number)) __builtin_trap();
  std::vector<char> out(static_cast<std::size_t>(number->digitCount) + 32);
  m_apm_to_string(out.data(), -1, number);
  expectSame(number, out.data());
  if (number->exponent > kLongestPlain || number->exponent < -kLongestPlain) return 0;
  out.resize(out.size() + 2 * kLongestPlain);
  m_apm_to_fixpt_string(out.data(), -1, number);
  expectSame(number, out.data());
  return 0;
}
