/// The number codec, the server's numeric and the printing helpers against the model,
/// with random inputs.
#include <cmath>

#include "model/outcome.h"
#include "model/texts.h"
#include "model/wire_numeric.h"
#include "types/number.h"
#include "types/number_text.h"
#include "types_fixture.h"

namespace zevtest {
namespace {

constexpr int kRounds = 20'000;

class NumberModel : public testing::Test {
 protected:
  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

  std::string pick(const std::string &alphabet, int length) {
    std::string text;
    for (int i = 0; i < length; ++i) {
      text +=
          alphabet[static_cast<std::size_t>(below(static_cast<int>(alphabet.size())))];
    }
    return text;
  }

  /// A plain decimal number of up to `digits` digits on each side of its point.
  std::string decimal(int digits) {
    std::string text = below(2) ? "-" : "";
    text += std::to_string(1 + below(9)) + pick("0123456789", below(digits));
    if (below(2)) text += "." + pick("0000123456789", 1 + below(digits));
    return text;
  }

  sb8 integer() {
    const auto bits = static_cast<sb8>(random_());
    return bits >> below(64);
  }

  double real() {
    const double x = static_cast<double>(integer()) / std::pow(10.0, below(25));
    return below(4) ? x : std::floor(x);
  }

  /// A mantissa of `length` digits in base 100, the first and last of them not zero.
  std::string mantissa(bool positive, int length) {
    std::string bytes;
    for (int i = 0; i < length; ++i) {
      const bool isEnd = i == 0 || i + 1 == length;
      const int d = isEnd ? 1 + below(99) : below(100);
      bytes += static_cast<char>(positive ? d + 1 : 101 - d);
    }
    return bytes + (positive || length == 20 ? "" : "\x66");
  }

  std::mt19937_64 random_ = generator();
};

/// What an encoder wrote, or nothing where it refused.
std::optional<std::string> encoded(sword (*encode)(const char *, ub1 *),
                                   const std::string &text, std::size_t expectedSize) {
  ub1 out[24];
  std::memset(out, '~', sizeof out);
  const auto exact = exactCopy(text + '\0');
  if (encode(exact.get(), out) != 0) return std::nullopt;
  const std::string bytes(reinterpret_cast<char *>(out), sizeof out);
  EXPECT_EQ(bytes.substr(expectedSize), std::string(sizeof out - expectedSize, '~'));
  return bytes.substr(0, expectedSize);
}

TEST_F(NumberModel, TextToNumber) {
  const std::string alphabets[] = {"0123456789", "00001.", "0123456789.,eE+- ", "0.9e-",
                                   "01 \t-+.,x"};
  for (int i = 0; i < kRounds; ++i) {
    const std::string &alphabet = alphabets[below(5)];
    const std::string text =
        pick("-+ 0.123", below(3)) + pick(alphabet, below(50)) + pick("0e123", below(4));
    SCOPED_TRACE("\"" + text + "\"");
    const auto number = model::toNumber(text);
    EXPECT_EQ(encoded(ConvertStringToNUMBER, text, number ? number->size() : 0), number);
    const auto varnum = model::toVarnum(text);
    EXPECT_EQ(encoded(ConvertStringToVARNUM, text, varnum ? varnum->size() : 0), varnum);
    if (HasFailure()) return;
  }
}

TEST_F(NumberModel, LongTexts) {
  for (std::size_t length = 240; length < 260; ++length) {
    for (const char *start : {"1", "-1", " 7", "0."}) {
      std::string text = start;
      text.resize(length, '3');
      SCOPED_TRACE(length);
      const auto number = model::toNumber(text);
      EXPECT_EQ(encoded(ConvertStringToNUMBER, text, number ? number->size() : 0),
                number);
    }
  }
}

/// What a printer of numbers wrote, or nothing.
std::optional<std::string> decoded(sword (*decode)(const ub1 *, char *),
                                   const std::string &bytes) {
  char out[72] = {};
  if (decode(reinterpret_cast<const ub1 *>(bytes.data()), out) != 0) return std::nullopt;
  return out;
}

TEST_F(NumberModel, NumberToText) {
  for (int i = 0; i < kRounds; ++i) {
    const bool positive = below(2);
    const int length = 1 + below(20);
    std::string number(1, static_cast<char>(below(128) + (positive ? 128 : 0)));
    number += mantissa(positive, length);
    if (!below(3))
      number[static_cast<std::size_t>(below(length))] = static_cast<char>(below(256));
    std::string varnum = static_cast<char>(number.size()) + number;
    if (!below(20)) varnum[0] = static_cast<char>(below(256));
    number.resize(22, '\0');
    varnum.resize(260, '\0');
    SCOPED_TRACE(testing::PrintToString(varnum.substr(0, 23)));
    EXPECT_EQ(decoded(ConvertNUMBERToString, number), model::numberText(number));
    EXPECT_EQ(decoded(ConvertVARNUMToString, varnum), model::varnumText(varnum));
    if (HasFailure()) return;
  }
}

/// A record that a conversion made, as wire bytes in native order; nothing if it failed.
std::optional<std::string> recordBytes(sword status, numeric *record) {
  const std::unique_ptr<numeric, decltype(&std::free)> owned(record, std::free);
  if (status != 0) return std::nullopt;
  return std::string(reinterpret_cast<char *>(record), zev::numericSize(record->ndigits));
}

std::optional<std::string> nativeWire(const std::optional<model::WireNumeric> &v) {
  if (!v) return std::nullopt;
  return model::toWire(*v, false);
}

TEST_F(NumberModel, NumberToNumeric) {
  for (int i = 0; i < kRounds; ++i) {
    const bool positive = below(2);
    std::string number(1, static_cast<char>(below(128) + (positive ? 128 : 0)));
    const int length = 1 + below(20);
    number += mantissa(positive, length);
    if (!below(10))
      number[static_cast<std::size_t>(1 + below(length))] = positive ? '\x66' : '\x01';
    std::string varnum = static_cast<char>(number.size()) + number;
    number.resize(22, '\0');
    varnum.resize(23, '\0');
    SCOPED_TRACE(testing::PrintToString(varnum));
    numeric *record = nullptr;
    sword status =
        ConvertNUMBERToNumeric(reinterpret_cast<const ub1 *>(number.data()), &record);
    EXPECT_EQ(recordBytes(status, record), nativeWire(model::numericOfNumber(number)));
    record = nullptr;
    status =
        ConvertVARNUMBERToNumeric(reinterpret_cast<const ub1 *>(varnum.data()), &record);
    EXPECT_EQ(recordBytes(status, record), nativeWire(model::numericOfVarnum(varnum)));
    if (HasFailure()) return;
  }
}

TEST_F(NumberModel, TextToNumeric) {
  for (int i = 0; i < kRounds; ++i) {
    std::string text = decimal(30);
    if (below(2)) text += "e" + std::to_string(below(80) - 40);
    SCOPED_TRACE(text);
    numeric *record = nullptr;
    const sword status = ConvertStringToNumeric(text.c_str(), &record);
    EXPECT_EQ(recordBytes(status, record), nativeWire(model::wireOfScientific(text)));
    if (HasFailure()) return;
  }
}

/// A record of the library with the model's fields.
std::unique_ptr<numeric, decltype(&std::free)> recordOf(const model::WireNumeric &v) {
  numeric *record = nullptr;
  EXPECT_EQ(alloc_var(&record, static_cast<int>(v.digits.size())), 0);
  const std::string bytes = model::toWire(v, false);
  std::memcpy(record, bytes.data(), bytes.size());
  return {record, std::free};
}

TEST_F(NumberModel, NumericToText) {
  for (int i = 0; i < kRounds; ++i) {
    const std::string text = below(3) ? decimal(20) : "0." + pick("0059", 1 + below(12));
    const model::WireNumeric v = model::wireOf(text);
    const int dscale = below(28) - 2;
    SCOPED_TRACE(text + " to " + std::to_string(dscale));
    const auto record = recordOf(v);
    char *out = nullptr;
    ASSERT_EQ(ConvertNumericToString(record.get(), &out, dscale), 0);
    EXPECT_EQ(out, model::printed(v, dscale));
    std::free(out);
    if (HasFailure()) return;
  }
}

TEST_F(NumberModel, NumericToVarnum) {
  for (int i = 0; i < kRounds; ++i) {
    const std::string text = decimal(16);
    const model::WireNumeric v = model::wireOf(text);
    const auto record = recordOf(v);
    ub1 out[24] = {};
    ASSERT_EQ(ConvertNumericToVARNUMBER(record.get(), out), 0);
    const std::string expected = *model::varnumOf(v);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), expected.size()), expected)
        << text;
    std::memset(out, 0, sizeof out);
    const auto again = recordOf(v);
    ASSERT_EQ(ConvertNumericToNUMBER(again.get(), out), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), expected.size() - 1),
              expected.substr(1))
        << text;
    if (HasFailure()) return;
  }
}

template <class T>
void expectInteger(sword (*convert)(numeric *, T *), const model::WireNumeric &v) {
  const auto record = recordOf(v);
  T value = 99;
  const sword status = convert(record.get(), &value);
  const model::WireInteger read = model::integerOf(v);
  const bool fits = read.status == 0 && read.value >= std::numeric_limits<T>::min() &&
                    read.value <= std::numeric_limits<T>::max();
  EXPECT_EQ(status, fits ? 0 : 1);
  if (fits) {
    EXPECT_EQ(value, static_cast<T>(read.value));
  }
}

TEST_F(NumberModel, NumericToIntegers) {
  for (int i = 0; i < kRounds; ++i) {
    std::string text = std::to_string(integer());
    if (below(2)) text += "." + pick("0123456789", 1 + below(5));
    if (!below(10)) text += "00000";
    SCOPED_TRACE(text);
    const model::WireNumeric v = model::wireOf(text);
    expectInteger(numericvar_to_int8, v);
    expectInteger(numericvar_to_int4, v);
    expectInteger(numericvar_to_int2, v);
    expectInteger(numericvar_to_int1, v);
    if (HasFailure()) return;
  }
}

TEST_F(NumberModel, NumericToDouble) {
  for (int i = 0; i < kRounds; ++i) {
    const model::WireNumeric v = model::wireOf(decimal(25));
    const double expected = model::readDouble(model::printed(v, v.dscale)).value;
    double x = 0;
    EXPECT_EQ(numericvar_to_double(recordOf(v).get(), &x), 0);
    EXPECT_EQ(x, expected);
    float y = 0;
    const bool changes = static_cast<double>(static_cast<float>(expected)) != expected;
    EXPECT_EQ(numericvar_to_float(recordOf(v).get(), &y), changes ? 1 : 0);
    EXPECT_EQ(y, static_cast<float>(expected));
    if (HasFailure()) return;
  }
}

/// What a printer without a terminator wrote in room for `room` characters.
template <class T>
std::string printedInto(void (*print)(T, char *, sb4 *), sb8 value, sb4 room) {
  const auto block = guarded(static_cast<std::size_t>(room));
  sb4 length = room;
  print(static_cast<T>(value), block.get(), &length);
  EXPECT_LE(length, room);
  return {block.get(), static_cast<std::size_t>(length)};
}

TEST_F(NumberModel, PrintedIntegers) {
  for (int i = 0; i < kRounds; ++i) {
    const sb8 value = i < 8 ? (sb8[]){0,         -1,        1,         INT16_MIN,
                                      INT32_MIN, INT64_MIN, INT64_MAX, INT32_MAX}[i]
                            : integer();
    SCOPED_TRACE(value);
    const sb4 room = below(24);
    const auto cut = [room](const std::string &text) {
      return text.substr(0, static_cast<std::size_t>(room));
    };
    EXPECT_EQ(printedInto(Int16ToCharArray, value, room),
              cut(model::int16ToCharArray(static_cast<sb2>(value))));
    EXPECT_EQ(printedInto(Int32ToCharArray, value, room),
              cut(model::int32ToCharArray(static_cast<sb4>(value))));
    EXPECT_EQ(printedInto(Int64ToCharArray, value, room),
              cut(model::int64ToCharArray(value)));
    char out[32];
    EXPECT_STREQ(_i64toa(value, out, 10), model::i64toa(value).c_str());
    EXPECT_STREQ(oci_itoa(static_cast<sb4>(value), out, 10), model::itoa(value).c_str());
    if (HasFailure()) return;
  }
}

TEST_F(NumberModel, PrintedFloats) {
  for (int i = 0; i < kRounds; ++i) {
    const double x = real();
    const sb4 precision = 1 + below(18);
    const bool trim = below(2);
    SCOPED_TRACE(testing::PrintToString(x) + " precision " + std::to_string(precision));
    char out[100];
    const sb4 length = dtostr(out, sizeof out, precision, trim, x);
    const auto expected = model::dtostr(precision, trim, x);
    EXPECT_EQ(length, expected ? static_cast<sb4>(expected->size()) : -1);
    if (expected && length >= 0) {
      EXPECT_EQ(std::string(out, static_cast<std::size_t>(length)), *expected);
    }
    if (HasFailure()) return;
  }
}

TEST_F(NumberModel, ReadIntegers) {
  for (int i = 0; i < kRounds; ++i) {
    const std::string text =
        pick(below(2) ? "0123456789" : "0123456789-. xz+", below(24));
    EXPECT_EQ(atoi64(text.c_str()), model::atoi64(text)) << text;
  }
}

}  // namespace
}  // namespace zevtest
