/// Keywords of the grammars, looked up without regard to case.
#pragma once

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace zev {

struct Keyword {
  std::string_view word;
  int token;
};

/// The token of `word`, A to Z lowered, in a table of Keywords in byte order; 0 for any
/// other word, as all of more than 63 characters are.
template <class Table>
int findKeyword(const Table &keywords, const char *word) {
  constexpr std::size_t kLongestWord = 63;
  char folded[kLongestWord];
  const std::size_t length = strnlen(word, kLongestWord + 1);
  if (length > kLongestWord) return 0;
  std::transform(word, word + length, folded, [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  const std::string_view key(folded, length);
  const auto found = std::ranges::lower_bound(keywords, key, {}, &Keyword::word);
  return found != std::end(keywords) && found->word == key ? found->token : 0;
}

}  // namespace zev
