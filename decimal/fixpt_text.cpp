/// Plain text with a radix character of choice and groups of digits.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "decimal/engine.h"

namespace zev::decimal {
namespace {

/// The characters of a plain text at most, with its end.
std::size_t plainSize(M_APM a, int places) {
  const std::int64_t before = std::max<std::int64_t>(1, a->exponent);
  const std::int64_t behind =
      places >= 0 ? places
                  : std::max<std::int64_t>(1, std::int64_t{a->digitCount} - a->exponent);
  return static_cast<std::size_t>(before + behind) + 5;
}

/// Copies an integer part, with `separator` before each whole group that others precede.
char *putGroups(char *out, const char *digits, std::size_t count, char separator,
                int group) {
  for (std::size_t i = 0; i < count; ++i) {
    const bool isFirstOfGroup = (count - i) % static_cast<std::size_t>(group) == 0;
    if (i > 0 && isFirstOfGroup) *out++ = separator;
    *out++ = digits[i];
  }
  return out;
}

}  // namespace
}  // namespace zev::decimal

using namespace zev::decimal;

void m_apm_to_fixpt_stringex(char *s, int places, M_APM a, char radix, char separator,
                             int group) {
  const Scratch magnitude;
  m_apm_absolute_value(magnitude, a);
  char *plain = engine().M_buf.sized(plainSize(a, places), "m_apm_to_fixpt_stringex");
  m_apm_to_fixpt_string(plain, places, magnitude);
  if (a->sign < 0 && std::strpbrk(plain, "123456789")) *s++ = '-';
  const std::size_t before = std::strcspn(plain, ".");
  if (separator != 0 && group > 0)
    s = putGroups(s, plain, before, separator, group);
  else
    s = std::copy_n(plain, before, s);
  if (plain[before] == '.') {
    *s++ = radix;
    s = std::copy_n(plain + before + 1, std::strlen(plain + before + 1), s);
  }
  *s = '\0';
}

char *m_apm_to_fixpt_stringexp(int places, M_APM a, char radix, char separator,
                               int group) {
  std::size_t size = plainSize(a, places);
  if (separator != 0 && group > 0)
    size += static_cast<std::size_t>(std::max(0, a->exponent) / group) + 1;
  auto *text = static_cast<char *>(std::malloc(size));
  if (text) m_apm_to_fixpt_stringex(text, places, a, radix, separator, group);
  return text;
}
