#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "wire_numeric.h"

namespace zevtest::model {
namespace {

std::string fourDigits(int digit) {
  char text[8];
  std::snprintf(text, sizeof text, "%04d", digit);
  return text;
}

/// Adds one to the last digit of a decimal text, which may grow.
std::string plusOne(std::string digits) {
  for (std::size_t i = digits.size(); i-- > 0;) {
    if (digits[i] != '9') {
      ++digits[i];
      return digits;
    }
    digits[i] = '0';
  }
  return "1" + digits;
}

/// Whole decimal digits, then `fraction` of them behind the point.
struct Decimal {
  std::string digits;
  std::size_t fraction;
};

Decimal decimalOf(const WireNumeric &v) {
  std::string whole, fraction;
  for (int position = v.weight; position >= 0; --position) {
    const auto i = static_cast<std::size_t>(v.weight - position);
    whole += fourDigits(i < v.digits.size() ? v.digits[i] : 0);
  }
  const int last = v.weight - static_cast<int>(v.digits.size()) + 1;
  for (int position = -1; position >= last; --position) {
    const int i = v.weight - position;
    fraction += fourDigits(i >= 0 ? v.digits[static_cast<std::size_t>(i)] : 0);
  }
  return {whole + fraction, fraction.size()};
}

/// Rounded half up to `dscale` decimals, with exactly so many.
Decimal rounded(Decimal d, std::size_t dscale) {
  while (d.fraction < dscale) {
    d.digits += '0';
    ++d.fraction;
  }
  if (d.fraction > dscale) {
    const std::size_t keep = d.digits.size() - (d.fraction - dscale);
    const bool up = d.digits[keep] >= '5';
    d.digits.erase(keep);
    if (up) d.digits = plusOne(d.digits);
  }
  return {d.digits, dscale};
}

}  // namespace

std::optional<WireNumeric> parseWire(const std::string &bytes, bool networkOrder) {
  const auto word = [&](std::size_t i) {
    const int first = static_cast<unsigned char>(bytes[2 * i]);
    const int second = static_cast<unsigned char>(bytes[2 * i + 1]);
    return networkOrder ? first * 256 + second : second * 256 + first;
  };
  if (bytes.size() < 8 || bytes.size() != 8 + 2 * static_cast<std::size_t>(word(0))) {
    return std::nullopt;
  }
  WireNumeric v;
  v.weight = static_cast<short>(word(1));
  v.sign = word(2);
  v.dscale = static_cast<short>(word(3));
  for (std::size_t i = 4; 2 * i < bytes.size(); ++i) v.digits.push_back(word(i));
  return v;
}

std::string toWire(const WireNumeric &v, bool networkOrder) {
  std::string bytes;
  const auto add = [&](int word) {
    const char high = static_cast<char>(word >> 8);
    const char low = static_cast<char>(word);
    bytes += networkOrder ? std::string{high, low} : std::string{low, high};
  };
  add(static_cast<int>(v.digits.size()));
  add(v.weight);
  add(v.sign);
  add(v.dscale);
  for (const int digit : v.digits) add(digit);
  return bytes;
}

WireNumeric wireOf(const std::string &text) {
  WireNumeric v;
  if (text == "NaN") return {.sign = kNaN};
  std::string whole = text.substr(0, text.find('.'));
  std::string fraction =
      text.find('.') == text.npos ? "" : text.substr(text.find('.') + 1);
  v.dscale = static_cast<int>(fraction.size());
  if (whole[0] == '-') {
    v.sign = kMinus;
    whole.erase(0, 1);
  }
  while (whole.size() % 4 != 0) whole = "0" + whole;
  while (fraction.size() % 4 != 0) fraction += '0';
  v.weight = static_cast<int>(whole.size()) / 4 - 1;
  const std::string all = whole + fraction;
  for (std::size_t i = 0; i < all.size(); i += 4) {
    v.digits.push_back(std::atoi(all.substr(i, 4).c_str()));
  }
  while (!v.digits.empty() && v.digits.front() == 0) {
    v.digits.erase(v.digits.begin());
    --v.weight;
  }
  while (!v.digits.empty() && v.digits.back() == 0) v.digits.pop_back();
  if (v.digits.empty()) v.sign = v.weight = 0;
  return v;
}

WireNumeric wireOfScientific(const std::string &text) {
  const auto e = text.find_first_of("eE");
  if (e == text.npos) return wireOf(text);
  int shift = std::atoi(text.c_str() + e + 1);
  std::string plain = text.substr(0, e);
  const std::string sign = plain[0] == '-' ? "-" : "";
  plain.erase(0, sign.size());
  const auto point = plain.find('.');
  const int fraction =
      point == plain.npos ? 0 : static_cast<int>(plain.size() - point) - 1;
  if (point != plain.npos) plain.erase(point, 1);
  shift -= fraction;
  if (shift >= 0) {
    plain += std::string(static_cast<std::size_t>(shift), '0');
  } else {
    const auto behind = static_cast<std::size_t>(-shift);
    if (plain.size() < behind) plain = std::string(behind - plain.size(), '0') + plain;
    plain.insert(plain.size() - behind, ".");
  }
  return wireOf(sign + plain);
}

std::string printed(const WireNumeric &v, int dscale) {
  dscale = std::max(dscale, 0);
  if (v.sign & 0x8000) return "NaN";
  Decimal d = rounded(decimalOf(v), static_cast<std::size_t>(dscale));
  std::string whole = d.digits.substr(0, d.digits.size() - d.fraction);
  const std::string fraction = d.digits.substr(d.digits.size() - d.fraction);
  whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
  if (whole.empty()) whole = "0";
  const bool vanished = (v.weight + 1) * 4 + dscale < 0;
  const std::string sign = v.sign == kMinus && !vanished ? "-" : "";
  return sign + whole + (dscale > 0 ? "." + fraction : "");
}

std::optional<std::string> varnumOf(const WireNumeric &v) {
  if (v.sign & 0x8000) return std::nullopt;
  if (v.digits.empty()) return "\x01\x80";
  const bool positive = v.sign == kPlus;
  int e = v.dscale - v.weight;
  if (e % 2 != 0) ++e;
  e /= 2;
  std::vector<int> pairs;
  for (const int digit : v.digits) {
    pairs.push_back(digit / 100);
    pairs.push_back(digit % 100);
  }
  while (!pairs.empty() && pairs.back() == 0) pairs.pop_back();
  while (!pairs.empty() && pairs.front() == 0) pairs.erase(pairs.begin());
  if (pairs.size() > 20) pairs.resize(20);
  std::string number(1, static_cast<char>(positive ? 192 + e : 63 - e));
  for (const int pair : pairs)
    number += static_cast<char>(positive ? pair + 1 : 101 - pair);
  if (!positive && number.size() <= 20) number += '\x66';
  return static_cast<char>(number.size()) + number;
}

WireInteger integerOf(const WireNumeric &v) {
  if (v.digits.empty()) return {0, 0};
  const std::string text = printed(v, 0);
  errno = 0;
  const long long value = std::strtoll(text.c_str(), nullptr, 10);
  return {errno == ERANGE ? 1 : 0, value};
}

}  // namespace zevtest::model
