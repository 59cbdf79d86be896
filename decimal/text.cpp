/// Numbers from and to text and machine numbers, whatever the process's locale.
#include "decimal/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "decimal/engine.h"
#include "decimal/tables.h"

namespace zev::decimal {
namespace {

constexpr std::size_t kFirstBuffer = 256, kSpare = 32, kLargestKept = 1000;

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}

/// What a text says: its digits without the point, and where the point stands.
struct Parsed {
  std::size_t digits = 0;
  std::int64_t exponent = 0;
  bool isNegative = false;
  bool isNumber = true;
};

/// An exponent of a text; far out of range is as good as any other out of range.
std::int64_t exponentOf(const char *s) {
  constexpr long kFar = 10'000'000'000;
  return std::clamp(std::strtol(s, nullptr, 10), -kFar, kFar);
}

/// Writes the values of the digits of `s` to `digits`.
Parsed parse(const char *s, char *digits) {
  Parsed result;
  while (isBlank(*s)) ++s;
  result.isNegative = *s == '-';
  if (*s == '-' || *s == '+') ++s;
  bool hasPoint = false;
  for (; *s != '\0'; ++s) {
    if (const unsigned value = static_cast<unsigned char>(*s) - unsigned{'0'};
        value <= 9) {
      digits[result.digits++] = static_cast<char>(value);
      result.exponent += !hasPoint;
    } else if (*s == '.' && !hasPoint) {
      hasPoint = true;
    } else if (*s == 'e' || *s == 'E') {
      result.exponent += exponentOf(s + 1);
      return result;
    } else {
      result.isNumber = false;
      return result;
    }
  }
  return result;
}

/// Makes `r` a number of digit values, of which an even count is there.
void assignDigits(M_APM r, const char *digits, const Parsed &parsed) {
  const std::size_t words = wordsFor(static_cast<std::int64_t>(parsed.digits));
  Byte *run = engine().M_work1.sized(8 * words, "m_apm_set_string");
  const std::size_t bytes = (parsed.digits + 1) / 2;
  for (std::size_t i = 0; i < bytes; ++i)
    run[i] = static_cast<Byte>(10 * digits[2 * i] + digits[2 * i + 1]);
  std::memset(run + bytes, 0, 8 * words - bytes);
  assignRun(r, run, words, parsed.exponent, parsed.isNegative ? -1 : 1);
}

/// Writes the digits from `from` up to `to`, with "0" behind the last one, and returns
/// the end.
char *putDigits(char *out, M_APM a, int from, int to) {
  for (int i = from; i < to; ++i) {
    int digit = 0;
    if (i < a->digitCount)
      digit = i % 2 ? M_mul_rem_10[a->digits[i / 2]] : M_mul_div_10[a->digits[i / 2]];
    *out++ = static_cast<char>('0' + digit);
  }
  return out;
}

char *putZeros(char *out, int count) {
  return std::fill_n(out, count, '0');
}

void setReal(M_APM r, double v, const char *complaint) {
  if (!std::isfinite(v)) {
    warn(r, complaint);
    return;
  }
  constexpr int kDigitsBehindPoint = 14;
  char text[32];
  *std::to_chars(text, text + sizeof text - 1, v, std::chars_format::scientific,
                 kDigitsBehindPoint)
       .ptr = '\0';
  m_apm_set_string(r, text);
}

}  // namespace

double toDouble(M_APM number) {
  constexpr int kPlaces = 15, kLargest = 308, kSmallest = -323;
  if (number->exponent - 1 > kLargest) return number->sign * HUGE_VAL;
  if (number->exponent - 1 < kSmallest) return 0;
  char text[kPlaces + 24];
  m_apm_to_string(text, kPlaces, number);
  double value = 0;
  std::from_chars(text, text + std::strlen(text), value);
  return value;
}

bool toInteger(M_APM number, int &value) {
  constexpr int kMostDigits = 10;
  if (!m_apm_is_integer(number) || number->exponent > kMostDigits) return false;
  char text[kMostDigits + 4];
  m_apm_to_integer_string(text, number);
  return std::from_chars(text, text + std::strlen(text), value).ec == std::errc();
}

}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_set_string(M_APM r, const char *s) {
  Buffer<char> &M_buf = engine().M_buf;
  const std::size_t length = std::strlen(s);
  char *digits = M_buf.sized(std::max(length + kSpare, kFirstBuffer), "m_apm_set_string");
  const Parsed parsed = parse(s, digits);
  if (!parsed.isNumber) {
    M_apm_log_error_msg(0, "'m_apm_set_string', Non-digit char found in parse");
    M_apm_log_error_msg(0, "Text =");
    warn(r, s);
  } else if (parsed.digits == 0) {
    M_set_to_zero(r);
  } else {
    digits[parsed.digits] = 0;
    assignDigits(r, digits, parsed);
  }
  if (M_buf.capacity() > kLargestKept) M_buf.release();
}

void M_long_2_ascii(char *output, long input) {
  constexpr std::size_t kMostCharacters = 20;
  *std::to_chars(output, output + kMostCharacters, input).ptr = '\0';
}

void m_apm_set_long(M_APM r, long v) {
  char text[24];
  M_long_2_ascii(text, v);
  const char *digits = text + (v < 0);
  const auto count = static_cast<int>(std::strlen(digits));
  Byte run[24] = {};
  for (int i = 0; i < count; ++i)
    run[i / 2] = static_cast<Byte>(run[i / 2] + (digits[i] - '0') * (i % 2 ? 1 : 10));
  assignRun(r, run, sizeof run / 8, count, v < 0 ? -1 : 1);
}

void m_apm_set_double(M_APM r, double v) {
  setReal(r, v, "'m_apm_set_double', Invalid double input (likely a NAN or +/- INF)");
}

void m_apm_set_float(M_APM r, float v) {
  setReal(r, v, "'m_apm_set_float', Invalid float input (likely a NAN or +/- INF)");
}

void m_apm_to_string(char *s, int places, M_APM a) {
  const Scratch rounded;
  if (places >= 0)
    m_apm_round(rounded, places, a);
  else
    m_apm_copy(rounded, a);
  const int behind = places >= 0 ? places : std::max(1, rounded->digitCount - 1);
  if (rounded->sign < 0) *s++ = '-';
  s = putDigits(s, rounded, 0, 1);
  *s++ = '.';
  s = putDigits(s, rounded, 1, 1 + behind);
  *s++ = 'E';
  const int exponent = m_apm_exponent(rounded);
  if (exponent >= 0) *s++ = '+';
  M_long_2_ascii(s, exponent);
}

void m_apm_to_fixpt_string(char *s, int places, M_APM a) {
  const Scratch rounded;
  if (places == 0) {
    if (a->sign < 0)
      m_apm_subtract(rounded, a, MM_0_5);
    else
      m_apm_add(rounded, a, MM_0_5);
    m_apm_to_integer_string(s, rounded);
    return;
  }
  if (places > 0)
    M_apm_round_fixpt(rounded, places, a);
  else
    m_apm_copy(rounded, a);
  const int exponent = rounded->exponent, digits = rounded->digitCount;
  const int behind = places > 0 ? places : std::max(1, digits - exponent);
  if (rounded->sign < 0) *s++ = '-';
  if (exponent > 0)
    s = putDigits(s, rounded, 0, exponent);
  else
    *s++ = '0';
  *s++ = '.';
  const int zeros = std::min(behind, std::max(0, -exponent));
  s = putZeros(s, zeros);
  s = putDigits(s, rounded, std::max(exponent, 0),
                std::max(exponent, 0) + behind - zeros);
  *s = '\0';
}

void m_apm_to_integer_string(char *s, M_APM a) {
  if (a->sign == 0 || a->exponent <= 0) {
    *putZeros(s, 1) = '\0';
    return;
  }
  if (a->sign < 0) *s++ = '-';
  *putDigits(s, a, 0, a->exponent) = '\0';
}
