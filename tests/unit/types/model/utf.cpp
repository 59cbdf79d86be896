#include "utf.h"

#include <cerrno>

namespace zevtest::model {
namespace {

unsigned byteAt(const std::string &s, std::size_t i) {
  return static_cast<unsigned char>(s[i]);
}

std::string utf8Of(unsigned code) {
  const auto tail = [&](int shift) {
    return static_cast<char>(0x80 | ((code >> shift) & 0x3F));
  };
  if (code < 0x80) return {static_cast<char>(code)};
  if (code < 0x800) return {static_cast<char>(0xC0 | (code >> 6)), tail(0)};
  if (code < 0x10000) return {static_cast<char>(0xE0 | (code >> 12)), tail(6), tail(0)};
  return {static_cast<char>(0xF0 | (code >> 18)), tail(12), tail(6), tail(0)};
}

std::string unit(unsigned code) {
  return {static_cast<char>(code), static_cast<char>(code >> 8)};
}

std::string utf16Of(unsigned code) {
  if (code < 0x10000) return unit(code);
  return unit(0xD800 + ((code - 0x10000) >> 10)) + unit(0xDC00 + (code & 0x3FF));
}

}  // namespace

Converted utf16ToUtf8(const std::string &input) {
  Converted out;
  for (std::size_t i = 0; i < input.size(); i += 2) {
    if (i + 1 == input.size()) return {out.text, EINVAL};
    const unsigned first = byteAt(input, i) + 256 * byteAt(input, i + 1);
    if (first >= 0xDC00 && first < 0xE000) return {out.text, EILSEQ};
    if (first < 0xD800 || first >= 0xE000) {
      out.text += utf8Of(first);
      continue;
    }
    i += 2;
    if (i + 1 >= input.size()) return {out.text, EINVAL};
    const unsigned second = byteAt(input, i) + 256 * byteAt(input, i + 1);
    if (second < 0xDC00 || second >= 0xE000) return {out.text, EILSEQ};
    out.text += utf8Of(0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00));
  }
  return out;
}

Converted utf8ToUtf16(const std::string &input) {
  Converted out;
  for (std::size_t i = 0; i < input.size();) {
    const unsigned first = byteAt(input, i);
    const std::size_t length = first < 0x80                    ? 1
                               : first >= 0xC2 && first < 0xE0 ? 2
                               : first >= 0xE0 && first < 0xF0 ? 3
                               : first >= 0xF0 && first < 0xF5 ? 4
                                                               : 0;
    if (length == 0) return {out.text, EILSEQ};
    unsigned code = length == 1 ? first : first & (0xFFu >> (length + 1));
    for (std::size_t k = 1; k < length; ++k) {
      if (i + k == input.size()) return {out.text, EINVAL};
      if ((byteAt(input, i + k) & 0xC0) != 0x80) return {out.text, EILSEQ};
      code = code * 64 + (byteAt(input, i + k) & 0x3F);
    }
    out.text += utf16Of(code);
    i += length;
  }
  return out;
}

}  // namespace zevtest::model
