#include <cstdio>
#include <cstring>

#include "zevoci/encodings.h"
#include "zevoci/text.h"

namespace {

constexpr std::size_t kLongestName = 63;

/// What is left of a name without case and punctuation.
void cleanName(const char *name, char *out) {
  for (; *name; ++name) {
    const auto c = static_cast<unsigned char>(*name);
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (letter || (c >= '0' && c <= '9')) {
      *out++ = static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    }
  }
  *out = '\0';
}

}  // namespace

extern "C" {

const pg_encname *pg_char_to_encname_struct(const char *name) {
  if (!name || !*name) return nullptr;
  if (std::strlen(name) > kLongestName) {
    std::fputs("encoding name too long\n", stderr);
    return nullptr;
  }
  char wanted[kLongestName + 1];
  cleanName(name, wanted);

  const pg_encname *low = zev_encname_tbl;
  const pg_encname *high = zev_encname_tbl + zev_encname_tbl_sz;
  while (low < high) {
    const pg_encname *middle = low + (high - low) / 2;
    const int order = oci_strcasecmp(wanted, middle->name);
    if (order == 0) return middle;
    if (order < 0) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return nullptr;
}

int pg_char_to_encoding(const char *name) {
  if (!name) return -1;
  const pg_encname *row = pg_char_to_encname_struct(name);
  return row ? row->encoding : kUtf8;
}

const char *pg_encoding_to_char(int encoding) {
  if (encoding < 0 || encoding > kLastEncoding) return "";
  const pg_enc2name *p = &zev_enc2name_tbl[encoding];
  ZEV_ASSERT(encoding == p->encoding, "encoding == p->encoding");
  return p->name;
}

}  // extern "C"
