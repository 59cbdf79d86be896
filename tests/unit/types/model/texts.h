/// The model's own printing and reading of numbers.
#pragma once

#include <optional>
#include <string>

namespace zevtest::model {

/// Digits of the magnitude, least significant first, behind a "-"; 0 is empty.
std::string i64toa(long long value);
/// The same; 0 is "0", except for 16 bits, where it is empty and -32768 is "-".
std::string int16ToCharArray(long long value);
std::string int32ToCharArray(long long value);
std::string int64ToCharArray(long long value);
std::string itoa(long long value);
/// Integer part and fraction, each least significant digit first; nothing where printing
/// fails.
std::optional<std::string> dtostr(int precision, bool trim, double x);
/// Folds every character in; "-" negates, "." ends with the magnitude.
long long atoi64(const std::string &text);

struct ReadLong {
  long value;
  bool outOfRange;
};
ReadLong readLong(const std::string &text);

struct ReadDouble {
  double value;
  bool wholeText;
  bool outOfRange;
};
ReadDouble readDouble(const std::string &text);
/// Toward zero; what does not fit in 64 bits is the smallest integer.
long long truncated(double x);

/// Decimal text to the two forms of a number; nothing for bad text.
std::optional<std::string> toNumber(const std::string &text);
/// A NUMBER as it stands in its 21 bytes, which a full negative one passes by its
/// terminator.
std::string wholeNumber(const std::string &number);
std::optional<std::string> toVarnum(const std::string &text);
/// A NUMBER, or a VARNUM, as "0.xxxxEn"; nothing for a bad encoding.
std::optional<std::string> numberText(const std::string &number);
std::optional<std::string> varnumText(const std::string &varnum);

}  // namespace zevtest::model
