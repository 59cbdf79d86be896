#include <algorithm>

#include "wire_numeric.h"

namespace zevtest::model {
namespace {

int byteAt(const std::string &bytes, std::size_t i) {
  return static_cast<unsigned char>(bytes[i]);
}

/// The decimal digits of a mantissa, two a byte; nothing for a bad byte.
std::optional<std::string> decimalsOf(const std::string &mantissa, bool positive) {
  std::string digits;
  for (std::size_t i = 0; i < mantissa.size() && i < 20; ++i) {
    const int byte = byteAt(mantissa, i);
    if (positive && byte == 102) return std::nullopt;
    if (!positive && byte == 1) return std::nullopt;
    if (byte < 1 || byte > 101) break;
    const int d = positive ? byte - 1 : 101 - byte;
    digits += static_cast<char>('0' + d / 10);
    digits += static_cast<char>('0' + d % 10);
  }
  return digits;
}

/// The record with `point` decimal digits before the point, aligned to base 10000.
WireNumeric recordOf(const std::string &decimals, int point, bool positive, int weight) {
  WireNumeric v;
  v.sign = positive ? kPlus : kMinus;
  v.weight = weight;
  v.dscale = std::max(static_cast<int>(decimals.size()) - point + 1, 0);
  std::string digits(static_cast<std::size_t>(((weight + 1) * 4 - point) & 3), '0');
  digits += decimals;
  while (digits.size() % 4 != 0) digits += '0';
  for (std::size_t i = 0; i < digits.size(); i += 4) {
    v.digits.push_back(std::stoi(digits.substr(i, 4)));
  }
  while (!v.digits.empty() && v.digits.front() == 0) {
    v.digits.erase(v.digits.begin());
    --v.weight;
  }
  while (!v.digits.empty() && v.digits.back() == 0) v.digits.pop_back();
  if (v.digits.empty()) v.sign = v.weight = 0;
  return v;
}

int floorOfQuarter(int x) {
  return x >= 0 ? x / 4 : -((3 - x) / 4);
}

}  // namespace

std::optional<WireNumeric> numericOfNumber(const std::string &number) {
  const int exponent = byteAt(number, 0);
  if (exponent == 0x80) return WireNumeric{};
  const bool positive = exponent & 0x80;
  const int point = (positive ? exponent * 2 - 128 : (63 - exponent) * 2) & 0xFF;
  const auto decimals = decimalsOf(number.substr(1), positive);
  if (!decimals) return std::nullopt;
  return recordOf(*decimals, point, positive, point > 0 ? (point + 3) / 4 - 1 : -1);
}

std::optional<WireNumeric> numericOfVarnum(const std::string &varnum) {
  const int length = byteAt(varnum, 0);
  const int exponent = byteAt(varnum, 1);
  if (exponent == 0x80) return WireNumeric{};
  const bool positive = exponent & 0x80;
  const int point = positive ? (exponent & 0x7F) * 2 - 128 : (63 - exponent) * 2;
  const auto mantissa = static_cast<std::size_t>(std::max(length - 1, 0));
  const auto decimals = decimalsOf(varnum.substr(2, mantissa), positive);
  if (!decimals) return std::nullopt;
  return recordOf(*decimals, point, positive, floorOfQuarter(point - 1));
}

}  // namespace zevtest::model
