/// Decimal numbers as plain strings: what they are worth, for comparison.
#pragma once

#include <algorithm>
#include <random>
#include <string>

namespace zevtest {

/// A number as sign, digits without zeros at either end, and the count of digits before
/// the point, negative for zeros behind it. Zero has no digits.
struct Decimal {
  bool negative = false;
  std::string digits;
  long point = 0;

  bool operator==(const Decimal &) const = default;
};

/// The value of "[-+]digits[.digits][E[-]digits]", where either run of digits may miss.
inline Decimal decimalOf(const std::string &text) {
  Decimal out;
  std::size_t at = 0;
  if (text[at] == '-' || text[at] == '+') out.negative = text[at++] == '-';
  bool fraction = false;
  for (; at < text.size() && text[at] != 'E' && text[at] != 'e'; ++at) {
    if (text[at] == '.') {
      fraction = true;
      continue;
    }
    out.digits += text[at];
    if (!fraction) ++out.point;
  }
  if (at < text.size()) out.point += std::stol(text.substr(at + 1));
  const std::size_t leading =
      std::min(out.digits.find_first_not_of('0'), out.digits.size());
  out.digits.erase(0, leading);
  out.point -= static_cast<long>(leading);
  out.digits.erase(out.digits.find_last_not_of('0') + 1);
  if (out.digits.empty()) out = {};
  return out;
}

/// `number` with no more than its first `count` digits.
inline Decimal cutTo(Decimal number, std::size_t count) {
  if (number.digits.size() > count) number.digits.erase(count);
  number.digits.erase(number.digits.find_last_not_of('0') + 1);
  return number;
}

/// Digits that stay of a number in base 100: 20 pairs, or `evenPairs` where an even count
/// stands before the point.
inline Decimal cutToPairs(const Decimal &number, std::size_t evenPairs) {
  return cutTo(number, number.point % 2 != 0 ? 39 : 2 * evenPairs);
}

inline std::string randomDigits(std::mt19937_64 &random, std::size_t count) {
  std::string digits(count, '0');
  for (char &c : digits) c = static_cast<char>('0' + random() % 10);
  return digits;
}

/// A decimal of 1 to 60 digits with the point anywhere in or in front of them; every
/// fourth has zeros at its ends.
inline std::string randomDecimal(std::mt19937_64 &random) {
  std::string digits = randomDigits(random, 1 + random() % 60);
  if (random() % 4 == 0) digits = std::string(random() % 9, '0') + digits;
  if (random() % 4 == 0) digits += std::string(random() % 9, '0');
  const std::size_t scale = random() % (digits.size() + 1);
  if (scale != 0) digits.insert(digits.size() - scale, ".");
  return (random() % 2 ? "-" : "") + digits;
}

}  // namespace zevtest
