#include <cstdlib>

#include "texts.h"

namespace zevtest::model {
namespace {

/// Text taken apart: the decimal digits, and the power of ten of the last one.
struct Parsed {
  int status = 0;
  bool positive = true;
  std::string digits;
  int exponent = 0;
};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

Parsed bad() {
  return {.status = -1};
}
Parsed zero() {
  return {.status = 1};
}

Parsed parseNumber(std::string s) {
  if (s.size() >= 254) return bad();
  Parsed out;
  while (!s.empty() && isSpace(s[0])) s.erase(0, 1);
  if (s.empty()) return zero();
  if (s[0] == '+' || s[0] == '-') {
    out.positive = s[0] == '+';
    s.erase(0, 1);
  }
  while (!s.empty() && s[0] == '0') s.erase(0, 1);
  if (s.empty()) return zero();

  std::size_t trailing = 0;
  while (s[s.size() - 1 - trailing] == '0') ++trailing;
  if (trailing == s.size() - 1) {
    if (s[0] == '.' || s[0] == ',') return zero();
    if (!isDigit(s[0])) return bad();
  }

  std::size_t at = 0;
  bool inFraction = s[0] == '.';
  if (inFraction) at = 1;
  if (at == s.size() || !isDigit(s[at])) return bad();
  int fractionDigits = 0;
  for (; at < s.size(); ++at) {
    const char c = s[at];
    if (isDigit(c)) {
      if (c != '0' || !out.digits.empty()) out.digits += c;
      if (inFraction) ++fractionDigits;
    } else if (c == ',' || c == '.') {
      if (inFraction) return bad();
      inFraction = c == '.';
    } else if (c == 'E' || c == 'e') {
      const char *text = s.c_str() + at + 1;
      char *end = nullptr;
      const long power = std::strtol(text, &end, 10);
      if (end == text || power > 126 || power < -126) return bad();
      out.exponent = static_cast<int>(power);
      break;
    } else {
      break;
    }
  }
  if (at < s.size()) trailing = 0;
  if (trailing > out.digits.size()) trailing = out.digits.size();
  out.digits.erase(out.digits.size() - trailing);
  out.exponent += static_cast<int>(trailing) - fractionDigits;
  return out;
}

/// The exponent byte and the mantissa of at most `evenLimit` or 20 bytes.
struct Encoded {
  char exponentByte = 0;
  std::string mantissa;
};

Encoded encode(const Parsed &p, std::size_t evenLimit) {
  const int point =
      static_cast<signed char>(static_cast<int>(p.digits.size()) + p.exponent);
  const bool odd = point % 2 != 0;
  const int e = (point + (odd ? 1 : 0)) / 2;
  Encoded out;
  out.exponentByte = static_cast<char>(p.positive ? ((e + 64) | 0x80) : 63 - e);
  std::string digits = (odd ? "0" : "") + p.digits;
  if (digits.size() % 2 != 0) digits += '0';
  const std::size_t limit = odd ? 20 : evenLimit;
  for (std::size_t i = 0; i < digits.size() && i / 2 < limit; i += 2) {
    const int pair = (digits[i] - '0') * 10 + (digits[i + 1] - '0');
    out.mantissa += static_cast<char>(p.positive ? pair + 1 : 101 - pair);
  }
  return out;
}

}  // namespace

std::optional<std::string> toNumber(const std::string &text) {
  const Parsed p = parseNumber(text);
  if (p.status < 0) return std::nullopt;
  if (p.status == 1) return "\x80";
  const Encoded e = encode(p, 19);
  return e.exponentByte + e.mantissa + (p.positive ? "" : "\x66");
}

std::string wholeNumber(const std::string &number) {
  return (number + std::string(21, '\0')).substr(0, 21);
}

std::optional<std::string> toVarnum(const std::string &text) {
  const Parsed p = parseNumber(text);
  if (p.status < 0) return std::nullopt;
  if (p.status == 1) return "\x01\x80";
  const Encoded e = encode(p, 20);
  std::string number = e.exponentByte + e.mantissa;
  if (!p.positive && number.size() <= 20) number += '\x66';
  return static_cast<char>(number.size()) + number;
}

namespace {

int byteAt(const std::string &bytes, std::size_t i) {
  return static_cast<unsigned char>(bytes[i]);
}

std::string twoDigits(int d) {
  return (d < 10 ? "0" : "") + std::to_string(d);
}

std::string withExponent(const std::string &text, int exponentByte) {
  const int e = exponentByte & 0x80 ? exponentByte - 192 : 63 - exponentByte;
  const int power = static_cast<signed char>(2 * e);
  return power == 0 ? text : text + "E" + std::to_string(power);
}

}  // namespace

std::optional<std::string> varnumText(const std::string &varnum) {
  const int length = byteAt(varnum, 0);
  if (length < 1 || length > 21) return std::nullopt;
  const int exponent = byteAt(varnum, 1);
  const bool positive = exponent & 0x80;
  if (length == 1) {
    if (exponent != 0x80) return std::nullopt;
    return "0.0";
  }
  std::string text = positive ? "0." : "-0.";
  for (int i = 2; i <= length; ++i) {
    const int byte = byteAt(varnum, static_cast<std::size_t>(i));
    if (positive && (byte == 0 || byte > 101)) return std::nullopt;
    if (!positive && byte == 102) {
      if (i != length) return std::nullopt;
      break;
    }
    if (!positive && byte == 0) break;
    if (!positive && byte > 101) return std::nullopt;
    text += twoDigits(positive ? byte - 1 : 101 - byte);
  }
  return withExponent(text, exponent);
}

std::optional<std::string> numberText(const std::string &number) {
  const int exponent = byteAt(number, 0);
  const bool positive = exponent & 0x80;
  std::string text = positive ? "0." : "-0.";
  for (std::size_t i = 1; i <= 20; ++i) {
    const int byte = byteAt(number, i);
    if (byte > (positive ? 101 : 102)) return std::nullopt;
    if (byte == 0 || byte == 102) break;
    text += twoDigits(positive ? byte - 1 : 101 - byte);
  }
  return withExponent(text, exponent);
}

}  // namespace zevtest::model
