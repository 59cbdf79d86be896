/// Which bytes may make a character.
#include <algorithm>
#include <iterator>
#include <span>

#include "zevoci/multibyte.h"

namespace {

/// Bytes from `first` to `last`; empty when nothing is given.
struct Range {
  unsigned char first = 1, last = 0;

  constexpr bool holds(unsigned char byte) const { return byte >= first && byte <= last; }
};

/// The values of a byte behind the lead byte.
struct Trail {
  Range a, b, c;

  constexpr bool holds(unsigned char byte) const {
    return a.holds(byte) || b.holds(byte) || c.holds(byte);
  }
};

/// Lead bytes that ask for the same bytes behind them.
struct Form {
  Range lead;
  unsigned char trails;
  Trail trail[3];
};

constexpr Trail kEuc{{0xA1, 0xFE}};
constexpr Trail kTop{{0xA0, 0xFF}};
constexpr Trail kContinued{{0x80, 0xBF}};

// clang-format off
constexpr Form kEucJpForms[] = {
    {{0xA1, 0xFE}, 1, {kEuc}},
    {{0x8E, 0x8E}, 1, {{{0xA1, 0xDF}}}},
    {{0x8F, 0x8F}, 2, {kEuc, kEuc}},
};
constexpr Form kEucKrForms[] = {
    {{0xA1, 0xFE}, 1, {kEuc}},
};
constexpr Form kEucTwForms[] = {
    {{0xA1, 0xFE}, 1, {kEuc}},
    {{0x8E, 0x8E}, 3, {{{0xA1, 0xB0}}, kEuc, kEuc}},
};
// Hangul, then symbols and ideographs.
constexpr Form kJohabForms[] = {
    {{0x84, 0xD3}, 1, {{{0x41, 0x7E}, {0x81, 0xFE}}}},
    {{0xD8, 0xDE}, 1, {{{0x31, 0x7E}, {0x91, 0xFE}}}},
    {{0xE0, 0xF9}, 1, {{{0x31, 0x7E}, {0x91, 0xFE}}}},
};
constexpr Form kUtf8Forms[] = {
    {{0xC2, 0xDF}, 1, {kContinued}},
    {{0xE0, 0xE0}, 2, {{{0xA0, 0xBF}}, kContinued}},
    {{0xE1, 0xEC}, 2, {kContinued, kContinued}},
    {{0xED, 0xED}, 2, {{{0x80, 0x9F}}, kContinued}},
    {{0xEE, 0xEF}, 2, {kContinued, kContinued}},
    {{0xF0, 0xF0}, 3, {{{0x90, 0xBF}}, kContinued, kContinued}},
    {{0xF1, 0xF3}, 3, {kContinued, kContinued, kContinued}},
    {{0xF4, 0xF4}, 3, {{{0x80, 0x8F}}, kContinued, kContinued}},
};
// Official character sets of one and two dimensions; private ones of one and two.
constexpr Form kMuleForms[] = {
    {{0x81, 0x8F}, 1, {kTop}},
    {{0x90, 0x99}, 2, {kTop, kTop}},
    {{0x9A, 0x9A}, 2, {{{0xA0, 0xDF}}, kTop}},
    {{0x9B, 0x9B}, 2, {{{0xE0, 0xEF}}, kTop}},
    {{0x9C, 0x9C}, 3, {{{0xF0, 0xF4}}, kTop, kTop}},
    {{0x9D, 0x9D}, 3, {{{0xF5, 0xFE}}, kTop, kTop}},
};
constexpr Form kShiftJisForms[] = {
    {{0xA1, 0xDF}, 0, {}},
    {{0x81, 0x9F}, 1, {{{0x40, 0x7E}, {0x80, 0xFC}}}},
    {{0xE0, 0xFC}, 1, {{{0x40, 0x7E}, {0x80, 0xFC}}}},
};
constexpr Form kBig5Forms[] = {
    {{0x81, 0xFE}, 1, {{{0x40, 0x7E}, {0xA1, 0xFE}}}},
};
constexpr Form kGbkForms[] = {
    {{0x81, 0xFE}, 1, {{{0x40, 0x7E}, {0x80, 0xFE}}}},
};
constexpr Form kUhcForms[] = {
    {{0x81, 0xFE}, 1, {{{0x41, 0x5A}, {0x61, 0x7A}, {0x81, 0xFE}}}},
};
constexpr Form kGb18030Forms[] = {
    {{0x81, 0xFE}, 1, {{{0x40, 0x7E}, {0x80, 0xFE}}}},
    {{0x81, 0xFE}, 3, {{{0x30, 0x39}}, {{0x81, 0xFE}}, {{0x30, 0x39}}}},
};
// clang-format on

bool matches(const Form &form, const unsigned char *s, int length) {
  return form.lead.holds(s[0]) && length > form.trails &&
         std::equal(form.trail, form.trail + form.trails, s + 1,
                    [](const Trail &trail, unsigned char c) { return trail.holds(c); });
}

/// ASCII in one byte, the rest by the encoding's forms.
int verify(std::span<const Form> forms, const unsigned char *s, int length) {
  if (length < 1) return -1;
  if (s[0] < 0x80) return 1;
  for (const Form &form : forms) {
    if (matches(form, s, length)) return 1 + form.trails;
  }
  return -1;
}

int verifyByte(int length) {
  return length < 1 ? -1 : 1;
}

}  // namespace

extern "C" {

int pg_ascii_verifier(const unsigned char *, int length) {
  return verifyByte(length);
}

int pg_latin1_verifier(const unsigned char *, int length) {
  return verifyByte(length);
}

int pg_utf8_islegal(const unsigned char *s, int length) {
  return length > 0 && pg_utf8_verifier(s, length) == length;
}

}  // extern "C"

#define VERIFIER(name, forms)                               \
  extern "C" int name(const unsigned char *s, int length) { \
    return verify(forms, s, length);                        \
  }
VERIFIER(pg_eucjp_verifier, kEucJpForms)
VERIFIER(pg_euckr_verifier, kEucKrForms)
VERIFIER(pg_euctw_verifier, kEucTwForms)
VERIFIER(pg_johab_verifier, kJohabForms)
VERIFIER(pg_utf8_verifier, kUtf8Forms)
VERIFIER(pg_mule_verifier, kMuleForms)
VERIFIER(pg_sjis_verifier, kShiftJisForms)
VERIFIER(pg_big5_verifier, kBig5Forms)
VERIFIER(pg_gbk_verifier, kGbkForms)
VERIFIER(pg_uhc_verifier, kUhcForms)
VERIFIER(pg_gb18030_verifier, kGb18030Forms)
#undef VERIFIER
