#include "zevoci/text.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view kWhiteSpace = " \t\n\f\r";

enum Ends { kLeft = 1, kRight = 2 };

char *trimmed(const char *text, int ends) {
  if (!text || !*text) return nullptr;
  std::string_view rest(text);
  if (ends & kLeft) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kWhiteSpace), rest.size()));
  }
  if (ends & kRight) {
    rest = rest.substr(0, rest.find_last_not_of(kWhiteSpace) + 1);
  }
  return makeString(rest.data(), rest.size());
}

constexpr char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
constexpr char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

/// ASCII as ever, what is above it as the process's locale has it.
char lowerInLocale(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x80 ? lower(c) : static_cast<char>(std::tolower(byte));
}

template <char (*Fold)(char)>
int compare(const char *a, const char *b, std::size_t n) {
  for (; n; --n, ++a, ++b) {
    const int difference =
        static_cast<unsigned char>(Fold(*a)) - static_cast<unsigned char>(Fold(*b));
    if (difference || !*a) return difference;
  }
  return 0;
}

template <char (*Fold)(char)>
char *foldInPlace(char *text) {
  for (char *p = text; *p; ++p) *p = Fold(*p);
  return text;
}

}  // namespace

extern "C" {

char *strltrim(const char *text) {
  return trimmed(text, kLeft);
}
char *strrtrim(const char *text) {
  return trimmed(text, kRight);
}
char *strtrim(const char *text) {
  return trimmed(text, kLeft | kRight);
}

char *makeString(const void *text, std::size_t length) {
  auto *copy = static_cast<char *>(std::malloc(length + 1));
  if (!copy) return nullptr;
  if (length) std::memcpy(copy, text, length);
  copy[length] = '\0';
  return copy;
}

int oci_strncasecmp(const char *a, const char *b, std::size_t n) {
  return compare<lower>(a, b, n);
}
int oci_strcasecmp(const char *a, const char *b) {
  return compare<lower>(a, b, SIZE_MAX);
}
int oci_stricmp(const char *a, const char *b) {
  return compare<lowerInLocale>(a, b, SIZE_MAX);
}

char *str_tolower(char *text) {
  return foldInPlace<lower>(text);
}
char *str_toupper(char *text) {
  return foldInPlace<upper>(text);
}

char *oci_strstr(const char *text, const char *wanted) {
  const std::size_t length = std::strlen(wanted);
  for (const char *p = text; *p; ++p) {
    if (*p == '\'') {
      p = std::strchr(p + 1, '\'');
      if (!p) return nullptr;
      continue;
    }
    if (std::strncmp(p, wanted, length) == 0) return const_cast<char *>(p);
  }
  return nullptr;
}

}  // extern "C"
