#include "values.h"

#include <limits>

#include "outcome.h"
#include "types/server_types.h"
#include "wire_numeric.h"

namespace zevtest::model {
namespace {

using std::string;
using std::vector;

const string k60Digits(60, '7');
const string k45Digits = "1" + string(44, '3');
const string k46Digits = "-1" + string(45, '4');

vector<string> operator+(vector<string> a, const vector<string> &b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

const vector<string> kIntegerTexts = {
    "1",     "-5",    "0",     "",           kNul,          "123",
    "-128",  "300",   "32767", "-32768",     "65535",       "70000",
    "-129",  "40000", "256",   "2147483647", "-2147483648", "99999999999999999999",
    "abc",   "12abc", " 7",    "7 ",         "1.5",         "-1.5",
    "000120"};

vector<string> integerBinaries(int width) {
  vector<string> all;
  for (const long long value : {1, 0, -5, 123, -1, 300, -32768, 32767, 120}) {
    all.push_back(networkInteger(value, width));
  }
  if (width == 4) {
    all.push_back(networkInteger(INT32_MAX, 4));
    all.push_back(networkInteger(INT32_MIN, 4));
  }
  if (width == 8) {
    all.push_back(networkInteger(INT64_MAX, 8));
    all.push_back(networkInteger(INT64_MIN, 8));
    all.push_back(networkInteger(4294967301, 8));
  }
  all.push_back("");
  all.push_back(string(static_cast<std::size_t>(width) - 1, '\1'));
  return all;
}

const vector<string> kFloatTexts = {"1.5",        "-2.25", "0",    "3",
                                    "1234567",    "0.1",   "1e10", "-3e1",
                                    "300",        "-129",  "",     "40000",
                                    "70000",      "-1",    "abc",  "1x",
                                    "5000000000", kNul,    "NaN",  "1.23456789012345678"};

vector<string> floatBinaries(bool isSingle) {
  vector<string> all;
  for (const double x :
       {1.5, -2.25, 0.0, 0.1, 1234567.0, 100.0, -0.5, 1e30, 0.99999999, 5.9999999999,
        300.0, 0.05, 17.0, std::numeric_limits<double>::quiet_NaN(),
        std::numeric_limits<double>::infinity()}) {
    all.push_back(isSingle ? networkFloat(static_cast<float>(x)) : networkDouble(x));
  }
  for (const double x : {1.5, 123.25, -7.0, 0.5}) {
    all.push_back(isSingle ? nativeFloat(x) : nativeDouble(x));
  }
  all.push_back("");
  all.push_back("\1\2\3");
  if (!isSingle) all.push_back("\1\2\3\4\5\6\7");
  return all;
}

const vector<string> kNumericTexts = {"1.50",
                                      "0",
                                      "-0.5",
                                      "123.45",
                                      "-123.45",
                                      "100",
                                      "",
                                      kNul,
                                      "NaN",
                                      k60Digits,
                                      k45Digits,
                                      k46Digits,
                                      "0.001",
                                      "128",
                                      "-129",
                                      "32768",
                                      "-40000.5",
                                      "2147483648.25",
                                      "12abc",
                                      "abc",
                                      "000123.4500",
                                      "99999999999999999999"};

vector<string> numericBinaries() {
  vector<string> all;
  for (const char *text :
       {"1.50", "0", "-0.5", "123.45", "-123.45", "100", "NaN", "0.001", "127.5", "128",
        "-128", "32767", "-40000.5", "2147483648", "99999999999999999999", "12345678.9",
        "9223372036854775807", "1000000", "-20000000000.000030"}) {
    all.push_back(toWire(wireOf(text)));
  }
  for (const char *text : {"1.50", "-123.45", "NaN", "0.00000000000000000000015"}) {
    all.push_back(toWire(wireOf(text), false));
  }
  all.push_back(toWire(wireOf(k60Digits)));
  all.push_back("");
  all.push_back(string(6, '\0'));
  all.push_back(toWire(wireOf("123.45")).substr(0, 10));
  return all;
}

const vector<string> kByteaTexts = {
    "",    kNul,       "\\xDEAD",     "\\xff",  "a\\\\", "a\\001b", "\\9",      "x\\1",
    "\\x", "\\xABCDE", "\\377\\000z", "abcdef", "\\xG1", "a\\400",  "\\\\\\\\", "\\x4"};

const vector<string> kCharacterTexts = vector<string>{"abc",
                                                      "123",
                                                      "-5",
                                                      " 5",
                                                      "12.5",
                                                      "0.1",
                                                      "1e400",
                                                      "0",
                                                      "2147483647",
                                                      "300",
                                                      "200",
                                                      "40000",
                                                      "70000",
                                                      "NaN",
                                                      "1e-320",
                                                      "7",
                                                      "1.50",
                                                      "2147483646",
                                                      "1,000",
                                                      "1.000,5",
                                                      "-0.25",
                                                      ".",
                                                      "   ",
                                                      "99999999999999999999",
                                                      k45Digits,
                                                      k46Digits,
                                                      "\xC3\xA9t\xE2\x82\xAC",
                                                      "\xF0\x9F\x98\x80",
                                                      "ab\xC3",
                                                      "a\xFFz"} +
                                       kByteaTexts;

}  // namespace

string networkInteger(long long value, int width) {
  return reversed(native(value, width));
}
string networkFloat(float value) {
  return reversed(nativeFloat(value));
}
string networkDouble(double value) {
  return reversed(nativeDouble(value));
}

Values valuesOf(Oid row) {
  switch (row) {
    case BYTEAOID:
    case zev::kRawOid:
      return {kByteaTexts, {"", kNul + "a", "\xDE\xAD", "abcdef", "\x01"}};
    case CHAROID:
      return {{"A", "7", "", kNul, "12", "-", "-5", "200", "300", " ", "\xC8",
               "99999999999999999999", "2147483647"},
              {"A", "7", "", kNul, "\xC8", "12"}};
    case INT8OID:
      return {kIntegerTexts + vector<string>{"9223372036854775807", "4294967296",
                                             "-9223372036854775808", "4294967301",
                                             "-4294967301"},
              integerBinaries(8)};
    case INT2OID:
      return {kIntegerTexts, integerBinaries(2)};
    case INT4OID:
      return {kIntegerTexts, integerBinaries(4)};
    case FLOAT4OID:
      return {kFloatTexts, floatBinaries(true)};
    case FLOAT8OID:
      return {kFloatTexts, floatBinaries(false)};
    case NUMERICOID:
      return {kNumericTexts, numericBinaries()};
    default:
      return {kCharacterTexts, {"abc", "", "12"}};
  }
}

}  // namespace zevtest::model
