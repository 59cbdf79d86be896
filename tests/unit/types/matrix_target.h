/// What the tests of the fetch matrix share: targets, sessions, and how they are shown.
#pragma once

#include <cstdio>

#include "model/outcome.h"
#include "types_fixture.h"
#include "zevoci/string_value.h"

namespace zevtest {

using model::Call;
using model::Outcome;

constexpr ub4 kTextLengthBefore = 0xABCD;

/// In quotes, with what does not print in hexadecimal; long ones cut.
inline std::string escaped(const std::string &bytes) {
  std::string text = "\"";
  for (const char c : bytes.substr(0, 80)) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "\\%02X", static_cast<unsigned char>(c));
    const bool plain = c >= ' ' && c < 127 && c != '\\' && c != '"';
    text += plain ? std::string(1, c) : hex;
  }
  return text + (bytes.size() > 80 ? "... of " + std::to_string(bytes.size()) : "\"");
}

/// For messages.
inline std::string described(const Outcome &o, bool isString) {
  const std::string &bytes = isString ? o.text : o.target;
  const auto last = bytes.find_last_not_of(model::kUntouched);
  std::string text = "result " + std::to_string(o.result) + " bytes " +
                     escaped(bytes.substr(0, last + 1)) + " length " +
                     (o.length ? std::to_string(static_cast<sb4>(*o.length)) : "open") +
                     " ind " + std::to_string(o.indicator) + " rc " +
                     std::to_string(o.returnCode) + " record " + std::to_string(o.record);
  if (isString) text += " string length " + std::to_string(o.textLength.value_or(0));
  return text;
}

inline std::string described(const Call &c) {
  std::string text = "format " + std::to_string(c.format) + " value " + escaped(c.value) +
                     " cap " + std::to_string(c.cap);
  if (c.dty == SQLT_VST) text += " size " + std::to_string(c.stringSize);
  text += c.indicator ? " ind" : " no-ind";
  text += c.returnCode ? " rc" : " no-rc";
  if (!c.env.oracleVarchars) text += " no-varchars";
  if (c.env.utf16) text += " utf16";
  return text;
}

/// The sessions of one environment each, for all environments that the model knows.
class Sessions {
 public:
  Session &of(const model::Environment &env) {
    Session &session = env.utf16 ? wide_ : narrow_;
    session.env->oracleVarchars = env.oracleVarchars;
    return session;
  }

 private:
  Session narrow_;
  Session wide_{OCI_UTF16};
};

/// A target with everything around it, and one conversion into it.
class Target {
 public:
  /// `room` is the size of the block of bytes, or of the text of the string.
  Target(const Call &call, std::size_t room) : call_(call), room_(room) {
    block_ = guarded(room_);
    string_ = {call.stringSize, kTextLengthBefore,
               reinterpret_cast<OraText *>(block_.get())};
    length_ = call.cap;
  }

  bool isString() const { return call_.dty == SQLT_VST; }
  void *address() { return isString() ? static_cast<void *>(&pointer_) : block_.get(); }
  ub4 *length() { return &length_; }
  sb2 *indicator() { return call_.indicator ? &indicator_ : nullptr; }
  ub2 *returnCode() { return call_.returnCode ? &returnCode_ : nullptr; }

  Outcome seen(sword result, int record) const {
    Outcome out;
    out.result = result;
    (isString() ? out.text : out.target).assign(block_.get(), room_);
    out.length = length_;
    out.indicator = indicator_;
    out.returnCode = returnCode_;
    out.record = record;
    if (string_.length != kTextLengthBefore) out.textLength = string_.length;
    return out;
  }

 private:
  const Call &call_;
  std::size_t room_;
  std::unique_ptr<char[]> block_;
  OCIString string_{};
  OCIString *pointer_ = &string_;
  ub4 length_ = 0;
  sb2 indicator_ = 0;
  ub2 returnCode_ = 0;
};

/// Whether all agrees that can be seen, the first `bytes` bytes among it.
inline bool agree(const Outcome &expected, const Outcome &seen, std::size_t bytes) {
  return expected.result == seen.result && expected.indicator == seen.indicator &&
         expected.returnCode == seen.returnCode && expected.record == seen.record &&
         (!expected.length || expected.length == seen.length) &&
         expected.textLength == seen.textLength &&
         expected.target.compare(0, bytes, seen.target, 0, bytes) == 0 &&
         expected.text.compare(0, bytes, seen.text, 0, bytes) == 0;
}

/// Bytes that a program's buffer of `cap` bytes must have: text that ends in a NUL may
/// have it behind them.
inline std::size_t exactRoom(const Call &call) {
  if (call.dty == SQLT_VST) return call.stringSize + 1;
  const bool endsInNul =
      call.dty == SQLT_STR || call.dty == SQLT_AVC || call.dty == SQLT_RSET;
  return call.cap + (endsInNul ? 1 : 0);
}

}  // namespace zevtest
