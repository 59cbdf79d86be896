#include <cmath>

#include "outcome.h"
#include "types/server_types.h"
#include "values.h"
#include "wire_numeric.h"

namespace zevtest::model {
namespace {

using std::string;

/// Random choices of one generator.
class Dice {
 public:
  explicit Dice(std::mt19937_64 &random) : random_(random) {}

  int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
  bool oneIn(int n) { return below(n) == 0; }

  string pick(const string &alphabet, int length) {
    string text;
    for (int i = 0; i < length; ++i) {
      text +=
          alphabet[static_cast<std::size_t>(below(static_cast<int>(alphabet.size())))];
    }
    return text;
  }

  /// An integer of up to `bits` bits, small ones as likely as large ones.
  long long integer(int bits) {
    const auto value = static_cast<long long>(random_());
    return value >> (64 - bits + below(bits));
  }

  string decimal(int digits) {
    string text = oneIn(2) ? "-" : "";
    text +=
        oneIn(4) ? "0" : std::to_string(1 + below(9)) + pick("0123456789", below(digits));
    if (oneIn(2)) text += "." + pick("0000123456789", 1 + below(digits));
    return text;
  }

  double real() {
    const double x = static_cast<double>(integer(60)) / std::pow(10.0, below(22));
    return oneIn(4) ? std::floor(x) : x;
  }

 private:
  std::mt19937_64 &random_;
};

string byteaText(Dice &dice) {
  if (dice.oneIn(2)) return "\\x" + dice.pick("0123456789abcdefABCDEF", dice.below(30));
  string text;
  for (int i = dice.below(12); i > 0; --i) {
    switch (dice.below(8)) {
      case 0:
        text += "\\\\";
        break;
      case 1:
        text += "\\" + dice.pick("01234", 1) + dice.pick("012345678", 2);
        break;
      default:
        text += dice.pick("abcxyz 059~", 1);
    }
  }
  return text;
}

/// The bytes, half of the time reversed where they still are a number; what becomes of
/// the payload of a NaN is the processor's business.
template <class T>
string inEitherOrder(const string &bytes, Dice &dice) {
  return dice.oneIn(2) || std::isnan(readAs<T>(bytes)) ? bytes : reversed(bytes);
}

int widthOf(Oid row) {
  return row == INT2OID ? 2 : row == INT4OID ? 4 : 8;
}

}  // namespace

string randomText(Oid row, std::mt19937_64 &random) {
  Dice dice(random);
  switch (row) {
    case CHAROID:
      return dice.pick("0123456789A- .", dice.below(4));
    case INT2OID:
    case INT4OID:
    case INT8OID:
      return std::to_string(dice.integer(8 * widthOf(row)));
    case FLOAT4OID:
    case FLOAT8OID:
      return dice.decimal(12) +
             (dice.oneIn(3) ? "e" + std::to_string(dice.below(60) - 30) : "");
    case NUMERICOID:
      return dice.oneIn(20) ? "NaN" : dice.decimal(30);
    case BYTEAOID:
    case zev::kRawOid:
      return byteaText(dice);
    default:
      if (dice.oneIn(4)) return byteaText(dice);
      if (dice.oneIn(2)) return dice.decimal(20);
      return dice.pick(dice.oneIn(2) ? "0123456789.,-eE " : "abc xyz\xC3\xA9",
                       dice.below(30));
  }
}

string randomBinary(Oid row, std::mt19937_64 &random) {
  Dice dice(random);
  switch (row) {
    case INT2OID:
    case INT4OID:
    case INT8OID:
      return networkInteger(dice.integer(8 * widthOf(row)), widthOf(row));
    case FLOAT4OID:
      return inEitherOrder<float>(networkFloat(static_cast<float>(dice.real())), dice);
    case FLOAT8OID:
      return inEitherOrder<double>(networkDouble(dice.real()), dice);
    case NUMERICOID:
      return toWire(wireOf(dice.decimal(18)), !dice.oneIn(4));
    default:
      return dice.pick(string("\0\1abc\xFF\xDE", 7), dice.below(20));
  }
}

}  // namespace zevtest::model
