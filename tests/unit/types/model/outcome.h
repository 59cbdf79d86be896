/// A second, naive model of the fetch matrix, written to be compared with the library:
/// what one conversion gets, and all that it may be seen to do.
#pragma once

#include <libpq-fe.h>
#include <oci.h>

#include <optional>
#include <string>
#include <vector>

namespace zevtest::model {

/// What stands in every byte that nothing was written to.
constexpr char kUntouched = '~';

struct Environment {
  bool oracleVarchars = true;
  bool utf16 = false;
};

/// One conversion. `value` is the field, which libpq ends with a NUL of its own; `cap` is
/// `*targetLength` on entry; `stringSize` is the size of the string of a SQLT_VST.
struct Call {
  Oid oid = 0;
  ub2 dty = 0;
  ub1 format = 0;
  std::string value;
  ub4 cap = 0;
  bool indicator = true;
  bool returnCode = true;
  Environment env;
  ub4 stringSize = 0;
  bool nullPointer = false;  ///< no value at all, whatever `value` says of its length
};

/// Bytes that a member may be seen to write, for a target of `call.cap` bytes.
std::size_t targetSize(const Call &call);

/// All that can be seen afterwards. `target` and `text` (of the string of a SQLT_VST) are
/// whole buffers, longer than `cap`; indicator and return code start as 0; `record` is
/// the number of the last record, 0 for none. A length that nothing tells is missing.
struct Outcome {
  sword result = 0;
  std::string target;
  std::optional<ub4> length;
  int indicator = 0;
  int returnCode = 0;
  int record = 0;
  std::string text;
  std::optional<ub4> textLength;
};

/// One conversion under way: what comes in, and the few things that all members do.
class Run {
 public:
  explicit Run(const Call &c);

  /// The value as far as its first NUL.
  std::string cText() const;
  bool isNull() const;

  Outcome returns(sword result);
  Outcome fails() { return returns(-1); }
  Outcome failsWith(int record);
  /// 1405 in the return code; -1 in the indicator and 0, or record 1405 and 1.
  Outcome nullRule();

  /// Writes inside the buffer; what would stand before it falls away.
  void put(long at, const std::string &bytes);
  void blanks(long from, long to);
  void putText(long at, const std::string &bytes);
  void setIndicator(long value);
  /// The count of missing bytes, or 65534 from 65536 on.
  void missing(long count);
  void setLength(long length) { out.length = static_cast<ub4>(length); }

  const Call &call;
  const long cap;
  const long valueLength;
  Outcome out;
};

/// Bytes of a NUMBER; the terminator of a longer one falls away.
constexpr long kLongestNumber = 21;
/// A single NUL.
inline const std::string kNul(1, '\0');
inline long sizeOf(const std::string &text) {
  return static_cast<long>(text.size());
}
/// As much of `text` as `room` bytes hold; none for a negative room.
std::string head(const std::string &text, long room);
/// The low `width` bytes of `value` in native order; a native length prefix too.
std::string native(long long value, int width);
std::string nativeFloat(double value);
std::string nativeDouble(double value);
std::string reversed(const std::string &bytes);
template <class T>
T readAs(const std::string &bytes);
/// The first `width` bytes as a signed integer in network order.
long long fromNetwork(const std::string &bytes, int width);

/// What the library does with `call`; nothing for pairs that are not modelled, and for
/// fields that are nonsense in their format.
std::optional<Outcome> predict(const Call &call);
std::optional<Outcome> predictInteger(Run &run);
std::optional<Outcome> predictCharacter(Run &run);
std::optional<Outcome> predictFloat(Run &run);
std::optional<Outcome> predictNumeric(Run &run);
std::optional<Outcome> predictText(Run &run);
std::optional<Outcome> predictBytea(Run &run);

/// Text placed in the string of a SQLT_VST; a text that does not fit leaves the first
/// bytes of `cut`.
Outcome placeInString(Run &run, const std::string &text, const std::string &cut);
/// SQLT_BFLOAT and SQLT_BDOUBLE around the SQLT_FLT member: a target below `least` is
/// refused.
Outcome fixedFloat(Run &run, long least, Outcome (*member)(Run &));

}  // namespace zevtest::model
