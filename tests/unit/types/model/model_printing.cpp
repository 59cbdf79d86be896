#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "texts.h"

namespace zevtest::model {

std::string i64toa(long long value) {
  if (value == 0) return "";
  std::string digits = std::to_string(value);
  const bool negative = digits[0] == '-';
  if (negative) digits.erase(0, 1);
  return (negative ? "-" : "") + std::string(digits.rbegin(), digits.rend());
}

std::string int16ToCharArray(long long value) {
  if (value == -32768) return "-";
  return i64toa(value);
}
std::string int32ToCharArray(long long value) {
  return value ? i64toa(value) : "0";
}
std::string int64ToCharArray(long long value) {
  return value ? i64toa(value) : "0";
}
std::string itoa(long long value) {
  return std::to_string(static_cast<int>(value));
}

std::optional<std::string> dtostr(int precision, bool trim, double x) {
  if (precision > 17 || !std::isfinite(x)) return std::nullopt;
  const bool negative = x < 0;
  double whole = 0;
  const double fraction = std::modf(std::fabs(x), &whole);
  const double scale = std::pow(10.0, precision);
  double rounded = std::floor(fraction * scale + 0.5);
  if (rounded == scale && whole == 0) return std::nullopt;
  if (rounded == scale) {
    whole += 1;
    rounded = 0;
  }
  if (whole >= 9223372036854775808.0) return std::nullopt;
  std::string text = negative ? "-" : "";
  text += i64toa(static_cast<long long>(whole));
  if (rounded != 0 && !negative) text += "." + i64toa(static_cast<long long>(rounded));
  if (trim) text.erase(text.find_last_not_of('0') + 1);
  return text;
}

long long atoi64(const std::string &text) {
  std::uint64_t value = 0;
  bool negative = false;
  for (const char c : text) {
    if (c == '.') return static_cast<long long>(value);
    if (c == '+') break;
    if (c == '-') {
      negative = true;
    } else {
      value = value * 10 + static_cast<std::uint64_t>(c - '0');
    }
  }
  return static_cast<long long>(negative ? 0 - value : value);
}

ReadLong readLong(const std::string &text) {
  errno = 0;
  const long value = std::strtol(text.c_str(), nullptr, 10);
  return {value, errno == ERANGE};
}

ReadDouble readDouble(const std::string &text) {
  errno = 0;
  char *end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  return {value, *end == '\0', errno == ERANGE};
}

long long truncated(double x) {
  if (!(x >= -9223372036854775808.0 && x < 9223372036854775808.0)) return INT64_MIN;
  return static_cast<long long>(x);
}

}  // namespace zevtest::model
