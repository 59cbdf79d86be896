#include "bind_model.h"

#include <algorithm>
#include <cerrno>

#include "types/server_types.h"
#include "utf.h"
#include "wire_numeric.h"

namespace zevtest::model {
namespace {

using std::optional;
using std::string;

constexpr ub1 kText = 0, kBinary = 1;
BindOutcome fails(int record = 0) {
  return {.result = -1, .record = record};
}
BindOutcome sends(const string &bytes, ub1 format) {
  return {.bytes = bytes, .format = format};
}
BindOutcome sendsNull(ub1 format) {
  return {.format = format};
}

/// A native integer of `width` bytes at `at`.
long long readNative(const string &bytes, int width, bool isSigned, std::size_t at = 0) {
  const string part = reversed(bytes.substr(at, static_cast<std::size_t>(width)));
  const long long value = fromNetwork(part, width);
  if (isSigned || width == 8) return value;
  return value & ((1LL << (8 * width)) - 1);
}

/// How much of the value a server type of `width` bytes reads, for each size of it.
long long readInteger(const BindCall &call, int width) {
  switch (call.length) {
    case 1:
      return readNative(call.bytes, 1, true);
    case 2:
      return readNative(call.bytes, std::min(width, 2), true);
    case 4:
      return readNative(call.bytes, std::min(width, 4), true);
    case 8:
      return readNative(call.bytes, width, true);
    default:
      return 0;
  }
}

BindOutcome integer(const BindCall &call) {
  if (call.length < 1 || call.isNull) return sendsNull(kBinary);
  const int width = call.oid == CHAROID   ? 1
                    : call.oid == INT2OID ? 2
                    : call.oid == INT4OID ? 4
                                          : 8;
  return sends(reversed(native(readInteger(call, width), width)), kBinary);
}

BindOutcome integerAsNumeric(const BindCall &call) {
  if (call.length < 1 || call.isNull) return sendsNull(kBinary);
  return sends(toWire(wireOf(std::to_string(readInteger(call, 4)))), kBinary);
}

BindOutcome rawBytes(const BindCall &call) {
  if (call.isNull) return fails();
  if (call.dty == SQLT_LBI && call.length == 0x7FFFFFFF) return fails();
  return sends(call.bytes.substr(0, static_cast<std::size_t>(call.length)), kBinary);
}

BindOutcome prefixedBytes(const BindCall &call) {
  if (call.isNull) return fails();
  const bool isLong = call.dty == SQLT_LVB;
  const int prefix = isLong ? 4 : 2;
  const long long length = readNative(call.bytes, prefix, false);
  if (length == 0 || length > (isLong ? 0x7FFFFFFA : 65533)) return fails();
  if (isLong ? call.length == 0x7FFFFFFF : call.length > 65535) return fails();
  return sends(call.bytes.substr(static_cast<std::size_t>(prefix),
                                 static_cast<std::size_t>(length)),
               kBinary);
}

BindOutcome single(const BindCall &call) {
  if (call.length < 4 || call.isNull) return fails();
  return sends(reversed(call.bytes.substr(0, 4)), kBinary);
}

BindOutcome twofold(const BindCall &call) {
  if (call.isNull || (call.length != 4 && call.length != 8)) return fails();
  if (call.length == 8) return sends(reversed(call.bytes.substr(0, 8)), kBinary);
  return sends(reversed(nativeDouble(readAs<float>(call.bytes))), kBinary);
}

// Character data.

/// The text in the server's encoding, or the failure that is recorded.
struct Transcoded {
  string text;
  optional<BindOutcome> failure;
};
Transcoded transcoded(const BindCall &call, const string &input) {
  if (!call.env.utf16) return {input, {}};
  const Converted converted = utf16ToUtf8(input);
  if (converted.error == 0) return {converted.text, {}};
  BindOutcome bad = fails(-1);
  bad.message = converted.error == EINVAL
                    ? "An incomplete multibyte sequence has been encountered in the input"
                    : "An invalid multibyte sequence has been encountered in the input";
  return {"", bad};
}

BindOutcome sendsText(const BindCall &call, const string &input) {
  const Transcoded t = transcoded(call, input);
  if (t.failure) return *t.failure;
  return sends(t.text + kNul, kText);
}

BindOutcome vcs(const BindCall &call) {
  if (call.length < 2) return fails(1084);
  const long long length = readNative(call.bytes, 2, false);
  if (length >= 65534 || call.length >= 65536) return fails(1458);
  const Transcoded t =
      transcoded(call, call.bytes.substr(2, static_cast<std::size_t>(length)));
  if (t.failure) return *t.failure;
  const std::size_t size = (t.text.size() + 1) & 0xFFFF;
  return sends(t.text.substr(0, size - 1) + kNul, kText);
}

BindOutcome lvc(const BindCall &call) {
  const long long length = readNative(call.bytes, 4, false);
  if (length > 0x7FFFFFFB) return fails(1458);
  return sendsText(call, call.bytes.substr(4, static_cast<std::size_t>(length)));
}

BindOutcome vst(const BindCall &call) {
  if (call.length >= 65536 || call.bytes.size() >= 65534) return fails();
  return sendsText(call, call.bytes);
}

BindOutcome blankTrimmed(const BindCall &call) {
  if (call.isNull || call.length == 0) return sendsNull(kText);
  const Transcoded t =
      transcoded(call, call.bytes.substr(0, static_cast<std::size_t>(call.length)));
  if (t.failure) return *t.failure;
  string text = t.text;
  while (text.size() > 1 && text.back() == ' ') text.pop_back();
  return sends(text + kNul, kText);
}

BindOutcome afc(const BindCall &call) {
  if (call.isNull || (call.env.oracleVarchars && call.length == 0)) {
    return sendsNull(kText);
  }
  return sendsText(call, call.bytes.substr(0, static_cast<std::size_t>(call.length)));
}

BindOutcome strOfOracle(const BindCall &call) {
  if (call.length < 2 || call.isNull) return fails();
  if (call.length == 2 && call.bytes[0] == '\0') return sendsNull(kText);
  const Transcoded t =
      transcoded(call, call.bytes.substr(0, static_cast<std::size_t>(call.length)));
  if (t.failure) return *t.failure;
  string text = t.text;
  if (text.size() == 1) return fails(1480);
  while (text.size() > 1 && text.back() != '\0') text.pop_back();
  if (text.size() <= 1 || text.size() > 4000) return fails(1480);
  return sends(text, kText);
}

BindOutcome strOfServer(const BindCall &call) {
  if (call.length == 0) return sends(kNul, kText);
  const string whole = call.bytes.substr(0, static_cast<std::size_t>(call.length));
  const auto end = whole.find('\0');
  if (end == whole.npos) return fails(1480);
  const Transcoded t = transcoded(call, whole.substr(0, end + 1));
  if (t.failure) return *t.failure;
  return sends(t.text, kText);
}

BindOutcome number(const BindCall &call) {
  const bool withLength = call.dty == SQLT_VNU;
  if (withLength ? call.length > 22 : call.length < 21) return fails();
  const optional<WireNumeric> v =
      withLength ? numericOfVarnum(call.bytes) : numericOfNumber(call.bytes);
  if (!v) return fails();
  return sends(toWire(*v), kBinary);
}

}  // namespace

optional<BindOutcome> predictBind(const BindCall &call) {
  switch (call.dty) {
    case SQLT_CHR:
    case SQLT_LNG:
      return blankTrimmed(call);
    case SQLT_NUM:
    case SQLT_VNU:
      return number(call);
    case SQLT_INT:
    case SQLT_UIN:
      return call.oid == NUMERICOID ? integerAsNumeric(call) : integer(call);
    case SQLT_FLT:
    case SQLT_BFLOAT:
    case SQLT_BDOUBLE:
      return call.oid == FLOAT4OID ? single(call) : twofold(call);
    case SQLT_STR:
    case SQLT_AVC:
    case SQLT_RSET:
      return call.env.oracleVarchars ? strOfOracle(call) : strOfServer(call);
    case SQLT_VCS:
      return vcs(call);
    case SQLT_LVC:
      return lvc(call);
    case SQLT_AFC:
      return afc(call);
    case SQLT_VST:
      return vst(call);
    case SQLT_BIN:
    case SQLT_LBI:
      return rawBytes(call);
    case SQLT_VBI:
    case SQLT_LVB:
      return prefixedBytes(call);
    default:
      return std::nullopt;
  }
}

}  // namespace zevtest::model
