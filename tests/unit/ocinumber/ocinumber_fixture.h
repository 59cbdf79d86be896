/// What the tests of the OCINumber functions share: numbers from text and as text.
#pragma once

#include <gtest/gtest.h>
#include <ociap.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "tests/support/environment.h"
#include "tests/support/random_inputs.h"
#include "types/number.h"

namespace zevtest {

inline const OraText *oraText(const char *text) {
  return reinterpret_cast<const OraText *>(text);
}

inline OCINumber number(const std::string &text) {
  OCINumber out;
  std::memset(&out, 0x55, sizeof out);
  EXPECT_EQ(ConvertStringToVARNUM(text.c_str(), out.OCINumberPart), 0) << text;
  return out;
}

/// The bytes that count.
inline std::string bytes(const OCINumber &value) {
  return {reinterpret_cast<const char *>(value.OCINumberPart),
          std::min<std::size_t>(value.OCINumberPart[0] + std::size_t{1}, sizeof value)};
}
inline std::string hex(const OCINumber &value) {
  std::string text;
  for (const char byte : bytes(value)) {
    char two[8];
    std::snprintf(two, sizeof two, "%02X ", static_cast<unsigned char>(byte));
    text += two;
  }
  return text.substr(0, text.size() - 1);
}

/// The value as its digits and the power of ten: "123e-1", whatever zeros end it.
inline std::string value(const OCINumber &of) {
  char text[80];
  if (ConvertVARNUMToString(of.OCINumberPart, text) != 0) return "bad";
  std::string digits = text;
  long exponent = 0;
  if (const auto e = digits.find('E'); e != digits.npos) {
    exponent = std::stol(digits.substr(e + 1));
    digits.resize(e);
  }
  const bool isNegative = digits[0] == '-';
  digits = digits.substr(digits.find('.') + 1);
  const auto first = digits.find_first_not_of('0');
  if (first == digits.npos) return "0";
  exponent -= static_cast<long>(digits.size());
  digits.erase(0, first);
  while (digits.back() == '0') {
    digits.pop_back();
    ++exponent;
  }
  return (isNegative ? "-" : "") + digits + "e" + std::to_string(exponent);
}

class Numbers : public testing::Test {
 protected:
  OCIError *err() { return records_.errhp; }
  OCIEnv *env() { return records_.env; }

  /// The code of the last record, 0 for none; forgets them all.
  int take(std::string *text = nullptr) {
    const int code = records_.takeRecord();
    if (text) *text = records_.lastMessage;
    return code;
  }
  int between(int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random_);
  }
  /// Decimal text of up to `digits` digits and a power of ten within `power`.
  std::string decimal(int digits, int power) {
    std::string text = between(0, 1) ? "-" : "";
    text += static_cast<char>('0' + between(1, 9));
    for (int i = between(1, digits); i > 1; --i)
      text +=
          static_cast<char>('0' + (between(0, 3) ? between(0, 9) : between(0, 1) * 9));
    return text + "E" + std::to_string(between(-power, power));
  }
  OCINumber random(int digits = 40, int power = 40) {
    return number(decimal(digits, power));
  }

  std::mt19937_64 random_ = generator();

 private:
  Environment records_;
};

}  // namespace zevtest
