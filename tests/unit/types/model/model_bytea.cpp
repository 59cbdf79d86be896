#include <algorithm>

#include "bytea.h"

namespace zevtest::model {
namespace {

using std::optional;
using std::string;
const string kHex = "0123456789ABCDEF";

bool isOctal(char c) {
  return c >= '0' && c <= '7';
}

string hexOf(unsigned char byte) {
  return {kHex[byte / 16], kHex[byte % 16]};
}

/// One step of the escape format at `at`, which moves on; nothing for a bad escape.
optional<unsigned char> escapeStep(const string &text, std::size_t &at) {
  if (text[at] != '\\') return static_cast<unsigned char>(text[at++]);
  const string rest = text.substr(at + 1, 3);
  if (!rest.empty() && rest[0] == '\\') {
    at += 2;
    return static_cast<unsigned char>('\\');
  }
  if (rest.size() < 3 || rest[0] > '3') return std::nullopt;
  if (!std::all_of(rest.begin(), rest.end(), isOctal)) return std::nullopt;
  at += 4;
  return static_cast<unsigned char>((rest[0] - '0') * 64 + (rest[1] - '0') * 8 + rest[2] -
                                    '0');
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'A' && c <= 'E') return c - '7';
  return (c - 'W') & 15;
}

}  // namespace

Parsed pqBinStrToHex(const string &text, long capacity) {
  Parsed out{.length = capacity};
  if (text.empty()) {
    out.length = 0;
    return out;
  }
  if (text.substr(0, 2) == "\\x") {
    out.length = std::min(static_cast<long>(text.size()) - 2, capacity);
    out.bytes = text.substr(2, static_cast<std::size_t>(out.length));
    return out;
  }
  std::size_t at = 0;
  while (capacity - static_cast<long>(out.bytes.size()) >= 2 && at < text.size()) {
    const optional<unsigned char> byte = escapeStep(text, at);
    if (!byte) {
      out.record = 1465;
      out.result = -1;
      return out;
    }
    out.bytes += hexOf(*byte);
  }
  const long count = static_cast<long>(out.bytes.size());
  if (at == text.size() || capacity - count == 1) {
    out.length = count;
    return out;
  }
  out.record = 1406;
  out.indicator = -static_cast<long>(text.size() - at);
  out.result = 1;
  return out;
}

Parsed stringToBytes(const string &text, long capacity) {
  Parsed out{.length = capacity};
  if (text.empty()) {
    out.length = 0;
    return out;
  }
  if (text.substr(0, 2) == "\\x") {
    const long pairs = static_cast<long>(text.size() - 2) / 2;
    for (long i = 0; i < std::min(pairs, capacity); ++i) {
      const auto at = static_cast<std::size_t>(2 + 2 * i);
      out.bytes += static_cast<char>(hexValue(text[at]) * 16 + hexValue(text[at + 1]));
    }
    if (pairs <= capacity) {
      out.length = pairs;
      return out;
    }
    out.record = 1406;
    out.indicator = pairs >= 65536 ? 65534 : pairs;
    out.result = 1;
    return out;
  }
  std::size_t at = 0;
  while (static_cast<long>(out.bytes.size()) < capacity && at < text.size()) {
    const optional<unsigned char> byte = escapeStep(text, at);
    if (!byte) {
      out.record = 1465;
      out.result = -1;
      return out;
    }
    out.bytes += static_cast<char>(*byte);
  }
  if (at == text.size()) {
    out.length = static_cast<long>(out.bytes.size());
    return out;
  }
  out.record = 1406;
  out.indicator = -static_cast<long>(text.size() - at);
  out.result = 1;
  return out;
}

Parsed binaryToString(const string &value, long capacity) {
  Parsed out{.length = capacity};
  const long size = static_cast<long>(value.size());
  const long taken = std::min(size, std::max(capacity, 0L) / 2);
  if (taken > 0) out.length = hexOf(static_cast<unsigned char>(value[0]))[0];
  if (taken < size) {
    out.record = 1406;
    out.indicator = std::min(2 * (size - taken), 65534L);
    out.result = 1;
  }
  return out;
}

Outcome stringToBinary(Run &run, int prefix) {
  const long capacity = std::max(run.cap - prefix, 0L);
  const Parsed parsed = stringToBytes(run.call.value, capacity);
  run.put(prefix, parsed.bytes);
  run.out.record = parsed.record;
  if (parsed.indicator) run.setIndicator(*parsed.indicator);
  if (parsed.result < 0) {
    run.put(0, native(run.cap, prefix));
    return run.fails();
  }
  run.put(0, native(parsed.length, prefix));
  run.setLength(parsed.length + prefix);
  return run.returns(parsed.result);
}

namespace {

/// The text of a field in room for `capacity` characters, written at `at`.
Parsed place(Run &run, long at, long capacity) {
  const Parsed parsed = run.call.format == 0 ? pqBinStrToHex(run.call.value, capacity)
                                             : binaryToString(run.call.value, capacity);
  if (run.call.dty != SQLT_VST) run.put(at, parsed.bytes);
  run.out.record = parsed.record;
  if (parsed.indicator) run.setIndicator(*parsed.indicator);
  return parsed;
}

Outcome chr(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  const Parsed parsed = place(run, 0, run.cap);
  if (parsed.result < 0) return run.fails();
  run.blanks(parsed.length, run.cap);
  run.setLength(parsed.length);
  return run.returns(parsed.result);
}

Outcome avc(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  const Parsed parsed = place(run, 0, run.cap - 1);
  if (parsed.result < 0) return run.fails();
  run.blanks(parsed.length, run.cap - 1);
  if (parsed.length < run.cap) run.put(parsed.length, kNul);
  run.setLength(parsed.length + 1);
  return run.returns(parsed.result);
}

Outcome str(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  const Parsed parsed = place(run, 0, run.cap);
  if (parsed.result < 0) return run.fails();
  if (parsed.length <= run.cap) run.put(parsed.length, kNul);
  run.setLength(parsed.length);
  return run.returns(parsed.result);
}

Outcome prefixed(Run &run, int prefix) {
  if (run.cap == 0) return run.returns(0);
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1 || run.cap < prefix) return run.fails();
  const Parsed parsed = place(run, prefix, run.cap - prefix);
  if (parsed.result < 0) return run.fails();
  run.put(0, native(parsed.length, prefix));
  run.setLength(parsed.length + prefix);
  return run.returns(parsed.result);
}

Outcome vst(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  const Parsed parsed = place(run, 0, run.call.stringSize);
  run.putText(0, parsed.bytes);
  if (parsed.result < 0) {
    run.out.textLength = 0;
    return run.fails();
  }
  const long length = std::min(parsed.length, static_cast<long>(run.call.stringSize));
  run.putText(length, kNul);
  run.out.textLength = static_cast<ub4>(length);
  return run.returns(parsed.result);
}

Outcome binary(Run &run) {
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  if (run.call.format == 0) return stringToBinary(run, 0);
  if (run.cap < run.valueLength) {
    if (!run.call.indicator) {
      run.out.record = 1405;
      return run.returns(1);
    }
    run.missing(run.valueLength - run.cap);
  }
  const long n = std::min(run.cap, run.valueLength);
  run.put(0, run.call.value.substr(0, static_cast<std::size_t>(n)));
  run.setLength(n);
  return run.returns(0);
}

Outcome prefixedBinary(Run &run, int prefix) {
  if (prefix == 2 && run.valueLength > 65535) return run.fails();
  if (run.isNull()) return run.nullRule();
  if (run.cap < 2) return run.fails();
  if (run.call.format > 1) return run.fails();
  if (run.call.format == 0) return stringToBinary(run, prefix);
  if (run.cap <= run.valueLength + prefix - 1) {
    if (!run.call.indicator) {
      run.out.record = 1405;
      return run.returns(1);
    }
    run.missing(run.valueLength + prefix - run.cap);
  }
  run.put(0, native(run.valueLength, prefix) + run.call.value);
  run.setLength(run.valueLength + prefix);
  return run.returns(0);
}

}  // namespace

optional<Outcome> predictBytea(Run &run) {
  switch (run.call.dty) {
    case SQLT_CHR:
    case SQLT_AFC:
    case SQLT_LNG:
      return chr(run);
    case SQLT_AVC:
      return avc(run);
    case SQLT_STR:
      return str(run);
    case SQLT_VCS:
      return prefixed(run, 2);
    case SQLT_LVC:
      return prefixed(run, 4);
    case SQLT_VST:
      return vst(run);
    case SQLT_BIN:
    case SQLT_LBI:
      return binary(run);
    case SQLT_VBI:
      return prefixedBinary(run, 2);
    case SQLT_LVB:
      return prefixedBinary(run, 4);
    default:
      return std::nullopt;
  }
}

}  // namespace zevtest::model
