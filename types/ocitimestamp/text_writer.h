/// Text written piece by piece into a buffer that is known to be large enough.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>

#include "zevoci/handle.h"

namespace zev {

/// Keeps no terminator until `end`.
class TextWriter {
 public:
  /// Goes on behind the text of `length` bytes in `out`.
  explicit TextWriter(char *out, std::size_t length = 0)
      : start_(out), at_(out + length) {}

  TextWriter &operator<<(char c) {
    *at_++ = c;
    return *this;
  }
  TextWriter &operator<<(std::string_view text) {
    at_ = std::copy(text.begin(), text.end(), at_);
    return *this;
  }
  /// With zeros in front up to `width` characters, of which a sign is one.
  TextWriter &number(sb8 value, int width = 0) {
    char digits[24];
    const ub8 magnitude = value < 0 ? -static_cast<ub8>(value) : static_cast<ub8>(value);
    const char *end = std::to_chars(digits, digits + sizeof digits, magnitude).ptr;
    if (value < 0) {
      *at_++ = '-';
      --width;
    }
    for (long i = end - digits; i < width; ++i) *at_++ = '0';
    at_ = std::copy(static_cast<const char *>(digits), end, at_);
    return *this;
  }
  /// With `decimals` digits behind the point and zeros in front up to `width` characters.
  TextWriter &fixed(double value, int decimals, int width = 0) {
    char digits[352];
    const char *end = std::to_chars(digits, digits + sizeof digits, value,
                                    std::chars_format::fixed, decimals)
                          .ptr;
    for (long i = end - digits; i < width; ++i) *at_++ = '0';
    at_ = std::copy(static_cast<const char *>(digits), end, at_);
    return *this;
  }

  char *at() const { return at_; }
  std::size_t length() const { return static_cast<std::size_t>(at_ - start_); }
  /// Goes back, or on over what others wrote.
  void moveTo(char *place) { at_ = place; }
  /// Puts the terminator behind the text.
  void end() const { *at_ = '\0'; }

 private:
  char *start_;
  char *at_;
};

}  // namespace zev
