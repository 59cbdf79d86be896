#include "zevoci/charsets.h"
#include "zevoci/text.h"

namespace {

/// The place of an ASCII letter in the alphabet, or -1.
int letterOf(char c) {
  if (c >= 'A' && c <= 'Z') return c - 'A';
  return c >= 'a' && c <= 'z' ? c - 'a' : -1;
}

bool isNamed(const CharacterSet *row, const char *name) {
  return oci_stricmp(name, row->name) == 0;
}

}  // namespace

extern "C" {

const CharacterSet *search_charset(const char *name, const CharacterSet *table,
                                   const sb4 *index) {
  const int letter = name ? letterOf(*name) : -1;
  if (letter < 0 || index[letter] < 0) return nullptr;
  int next = letter + 1;
  while (index[next] < 0) ++next;
  return bsearch_charset(name, table + index[letter], table + index[next]);
}

const CharacterSet *bsearch_charset(const char *name, const CharacterSet *low,
                                    const CharacterSet *high) {
  if (!high->name) --high;
  if (isNamed(low, name)) return low;
  if (isNamed(high, name)) return high;
  while (high - low > 1) {
    const CharacterSet *middle = low + (high - low) / 2;
    const int order = oci_stricmp(name, middle->name);
    if (order == 0) return middle;
    (order < 0 ? high : low) = middle;
  }
  return nullptr;
}

ub4 search_charsetID(const char *name) {
  const CharacterSet *row = search_charset(name, CSTlist, CST_index);
  return row ? row->id : 0;
}

}  // extern "C"
