/// The string functions on wide characters.
#include <cstdint>

#include "zevoci/multibyte.h"

namespace {

pg_wchar wide(char c) {
  return static_cast<unsigned char>(c);
}
pg_wchar wide(pg_wchar c) {
  return c;
}

/// Compares at most `n` characters; the sign of the first difference.
template <class Character>
int compare(const Character *a, const pg_wchar *b, std::size_t n) {
  for (; n > 0; --n, ++a, ++b) {
    const pg_wchar left = wide(*a), right = *b;
    if (left != right) return left < right ? -1 : 1;
    if (left == 0) return 0;
  }
  return 0;
}

}  // namespace

extern "C" {

int pg_wchar_strcmp(const pg_wchar *a, const pg_wchar *b) {
  return compare(a, b, SIZE_MAX);
}

int pg_wchar_strncmp(const pg_wchar *a, const pg_wchar *b, std::size_t n) {
  return compare(a, b, n);
}

int pg_char_and_wchar_strcmp(const char *a, const pg_wchar *b) {
  return compare(a, b, SIZE_MAX);
}

int pg_char_and_wchar_strncmp(const char *a, const pg_wchar *b, std::size_t n) {
  return compare(a, b, n);
}

std::size_t pg_wchar_strlen(const pg_wchar *s) {
  const pg_wchar *end = s;
  while (*end) ++end;
  return static_cast<std::size_t>(end - s);
}

}  // extern "C"
