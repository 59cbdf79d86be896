/// Text written piece by piece into a buffer that is known to be large enough.
#pragma once

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>

#include "zevoci/handle.h"

namespace zev {

/// "00" to "99".
struct TwoDigits {
  constexpr TwoDigits() {
    for (int i = 0; i < 100; ++i) {
      text[i][0] = static_cast<char>('0' + i / 10);
      text[i][1] = static_cast<char>('0' + i % 10);
    }
  }
  char text[100][2] = {};
};
inline constexpr TwoDigits kTwoDigits;

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
  /// The two digits of a value below 100.
  TextWriter &two(unsigned value) {
    std::memcpy(at_, kTwoDigits.text[value], 2);
    at_ += 2;
    return *this;
  }
  /// With zeros in front up to `width` characters, of which a sign is one.
  TextWriter &number(sb8 value, int width = 0) {
    if (width == 2 && value >= 0 && value < 100) return two(static_cast<unsigned>(value));
    if (width == 4 && value >= 0 && value < 10000) {
      const auto small = static_cast<unsigned>(value);
      return two(small / 100).two(small % 100);
    }
    constexpr std::ptrdiff_t kLongest = 20;
    if (width == 0 && value >= 0) {
      at_ = std::to_chars(at_, at_ + kLongest, value).ptr;
      return *this;
    }
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
    constexpr double kExact = 0x1p53;
    if (decimals == 0 && value >= 0 && value < kExact &&
        value == static_cast<double>(static_cast<sb8>(value)) && !std::signbit(value))
      return number(static_cast<sb8>(value), width);
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
