/// The model's own reading and writing of the server's binary numeric.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zevtest::model {

/// Digits in base 10000, the first counting 10000 to the power of `weight`.
struct WireNumeric {
  int weight = 0;
  int sign = 0;
  int dscale = 0;
  std::vector<int> digits;
};

enum Sign { kPlus = 0, kMinus = 0x4000, kNaN = 0xC000 };

/// The record in `bytes`, whose 16-bit words are in network or native order; nothing for
/// bytes that are no whole record.
std::optional<WireNumeric> parseWire(const std::string &bytes, bool networkOrder = true);
/// The record's bytes in network or native order.
std::string toWire(const WireNumeric &v, bool networkOrder = true);
/// The record of a plain decimal text such as "-12.50" or "NaN", without zero digits at
/// its ends.
WireNumeric wireOf(const std::string &text);
/// The same for texts with an exponent of ten.
WireNumeric wireOfScientific(const std::string &text);

/// In decimal with `dscale` digits behind the point, rounded half up in magnitude.
std::string printed(const WireNumeric &v, int dscale);
/// The VARNUM that the record's fields give; nothing for NaN.
std::optional<std::string> varnumOf(const WireNumeric &v);

/// An integer: rounded; out of range; or with a fraction left.
struct WireInteger {
  int status;
  long long value;
};
WireInteger integerOf(const WireNumeric &v);

/// The record that a NUMBER, or a VARNUM, becomes; nothing for a bad encoding.
std::optional<WireNumeric> numericOfNumber(const std::string &number);
std::optional<WireNumeric> numericOfVarnum(const std::string &varnum);

}  // namespace zevtest::model
