#include <algorithm>
#include <cmath>
#include <limits>

#include "bytea.h"
#include "outcome.h"
#include "texts.h"
#include "utf.h"

namespace zevtest::model {
namespace {

using std::optional;
using std::string;

/// In the client's encoding; nothing for bad text.
optional<string> transcoded(const Run &run, const string &text) {
  if (!run.call.env.utf16) return text;
  const Converted converted = utf8ToUtf16(text);
  if (converted.error != 0) return std::nullopt;
  return converted.text;
}

/// A text without a number is recorded.
constexpr int kTextOnly = -1;

bool isTextNull(const Run &run) {
  return run.call.env.oracleVarchars && run.isNull();
}

/// What the three members with room for whole values share, as far as the copy.
struct Copied {
  sword result;
  long n;
};
Copied copyWhole(Run &run, const optional<string> &output) {
  const bool cut = run.cap < run.valueLength;
  if (cut) {
    run.out.record = 1406;
    run.missing(run.valueLength - run.cap);
  }
  if (!output) {
    run.out.record = kTextOnly;
    return {-1, 0};
  }
  const long n = std::min(sizeOf(*output), run.cap);
  run.put(0, head(*output, n));
  return {cut ? 1 : 0, n};
}

Outcome chr(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (isTextNull(run)) return run.nullRule();
  const Copied copied = copyWhole(run, transcoded(run, run.call.value));
  if (copied.result < 0) return run.fails();
  run.blanks(copied.n, run.cap);
  run.setLength(copied.n);
  return run.returns(copied.result);
}

Outcome avc(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (isTextNull(run)) return run.nullRule();
  const Copied copied = copyWhole(run, transcoded(run, run.call.value));
  if (copied.result < 0) return run.fails();
  run.blanks(copied.n, run.cap);
  const long length = copied.n < run.cap ? copied.n + 1 : run.cap;
  run.setLength(length);
  run.put(length - 1, kNul);
  return run.returns(copied.result);
}

Outcome lng(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (isTextNull(run)) return run.nullRule();
  const Copied copied = copyWhole(run, run.call.value);
  run.setLength(copied.n);
  return run.returns(copied.result);
}

Outcome str(Run &run) {
  if (isTextNull(run)) return run.nullRule();
  const string terminator = *transcoded(run, kNul);
  const optional<string> whole = transcoded(run, run.call.value + kNul);
  if (!whole) return run.failsWith(kTextOnly);
  const string &output = *whole;
  const long n = std::min(sizeOf(output), run.cap);
  run.put(0, head(output, n));
  run.setLength(n);
  if (sizeOf(output) > n) {
    if (run.cap < sizeOf(terminator)) return run.failsWith(1460);
    run.put(run.cap - sizeOf(terminator), terminator);
  }
  run.setLength(sizeOf(run.cText()));
  return run.returns(0);
}

Outcome vst(Run &run) {
  if (run.cap < 4) return run.fails();
  if (isTextNull(run)) return run.nullRule();
  const long size = run.call.stringSize;
  sword result = 0;
  if (run.valueLength > size) {
    run.out.record = 1406;
    run.missing(run.valueLength - size);
    result = 1;
  }
  const optional<string> whole = transcoded(run, run.call.value);
  if (!whole) return run.failsWith(kTextOnly);
  const string &output = *whole;
  if (size <= sizeOf(output)) {
    run.putText(0, head(output, size - 1));
    run.putText(size - 1, kNul);
    run.out.textLength = static_cast<ub4>(std::max(size - 1, 0L));
  } else {
    run.putText(0, output + kNul);
    run.out.textLength =
        static_cast<ub4>(std::min((output + kNul).find('\0'), output.size()));
  }
  return run.returns(result);
}

/// An empty value: a 16-bit 2, and no return code.
Outcome emptyPrefixed(Run &run) {
  run.put(0, native(2, 2));
  run.setLength(2);
  Outcome outcome = run.nullRule();
  outcome.returnCode = 0;
  return outcome;
}

Outcome vcs(Run &run) {
  if (run.cap < 2) return run.fails();
  if (run.valueLength == 0) return emptyPrefixed(run);
  if (run.cap <= run.valueLength + 1) {
    if (!run.call.indicator) return run.returns(1);
    run.setIndicator(run.valueLength);
  }
  const optional<string> whole = transcoded(run, run.call.value);
  if (!whole) return run.failsWith(kTextOnly);
  const string &output = *whole;
  run.put(0, native(sizeOf(output), 2) + output);
  run.setLength(run.valueLength + 2);
  return run.returns(0);
}

Outcome lvc(Run &run) {
  if (run.cap < 4) return run.fails();
  if (run.valueLength == 0) return emptyPrefixed(run);
  if (run.cap <= run.valueLength + 3) {
    if (!run.call.indicator) return run.returns(1);
    const long over = run.valueLength - run.cap;
    run.setIndicator(over >= -4 && over <= 65531 ? over + 4 : 65534);
  }
  const optional<string> whole = transcoded(run, run.call.value);
  if (!whole) return run.failsWith(kTextOnly);
  const string &output = *whole;
  run.put(0, native(sizeOf(output), 4) + output);
  run.setLength(sizeOf(output) + 4);
  return run.returns(0);
}

Outcome number(Run &run) {
  if (run.cap < 2) return run.failsWith(1406);
  const optional<string> bytes = toNumber(run.cText());
  if (!bytes) return run.failsWith(1722);
  run.put(0, wholeNumber(*bytes));
  run.setLength(21);
  return run.returns(0);
}

Outcome varnum(Run &run) {
  if (run.cap < 2) return run.failsWith(1459);
  if (run.valueLength == 0 || run.call.value[0] == '\0') {
    run.setLength(0);
    Outcome outcome = run.nullRule();
    outcome.returnCode = 0;
    return outcome;
  }
  const optional<string> bytes = toNumber(run.cText());
  if (!bytes) return run.failsWith(1722);
  run.put(1, head(*bytes, kLongestNumber));
  long count = 1;
  while (count < 21 && count < sizeOf(*bytes)) {
    const int byte =
        static_cast<unsigned char>((*bytes)[static_cast<std::size_t>(count)]);
    if (byte < 1 || byte > 102) break;
    ++count;
  }
  run.put(0, native(count, 1));
  run.setLength(count + 1);
  return run.returns(0);
}

Outcome integer(Run &run) {
  const bool isSigned = run.call.dty == SQLT_INT;
  if (run.isNull()) return run.nullRule();
  const string text = run.cText();
  if (text.empty() || text[0] < '0' || text[0] > '9') return run.failsWith(1722);
  const ReadLong read = readLong(text);
  if (read.outOfRange || read.value >= 0x7FFFFFFF) return run.failsWith(1426);
  const int width = static_cast<int>(run.cap);
  const bool known = width == 1 || width == 2 || width == 4 || (width == 8 && isSigned);
  if (!known) return run.failsWith(1460);
  run.put(0, native(read.value, width));
  const long limit = 1L << (8 * std::min(width, 4) - (isSigned ? 1 : 0));
  if (width <= 2 && read.value >= limit) {
    run.out.record = 1426;
    return run.returns(1);
  }
  return run.returns(0);
}

Outcome flt(Run &run) {
  if (run.isNull()) return run.nullRule();
  const ReadDouble read = readDouble(run.cText());
  if (!read.wholeText) return run.failsWith(1722);
  if (std::fabs(read.value) > std::numeric_limits<double>::max() || read.outOfRange) {
    return run.failsWith(1426);
  }
  if (run.cap == 8) {
    run.put(0, nativeDouble(read.value));
    return run.returns(0);
  }
  if (run.cap != 4) return run.failsWith(1460);
  run.put(0, nativeFloat(read.value));
  if (static_cast<double>(static_cast<float>(read.value)) == read.value) {
    return run.returns(0);
  }
  run.out.record = 1426;
  return run.returns(1);
}

Outcome binary(Run &run) {
  if (run.cap == 0) return run.returns(0);
  if (isTextNull(run)) return run.nullRule();
  return stringToBinary(run, 0);
}

Outcome prefixedBinary(Run &run, int prefix) {
  if (run.cap == 0) return run.returns(0);
  if (isTextNull(run)) return run.nullRule();
  if (run.cap < 2) return run.fails();
  return stringToBinary(run, prefix);
}

}  // namespace

optional<Outcome> predictText(Run &run) {
  if (run.call.format > 1) return run.fails();
  switch (run.call.dty) {
    case SQLT_CHR:
    case SQLT_AFC:
      return chr(run);
    case SQLT_AVC:
      return avc(run);
    case SQLT_LNG:
      return lng(run);
    case SQLT_STR:
    case SQLT_RSET:
      return str(run);
    case SQLT_VST:
      return vst(run);
    case SQLT_VCS:
      return vcs(run);
    case SQLT_LVC:
      return lvc(run);
    case SQLT_NUM:
      return number(run);
    case SQLT_VNU:
      return varnum(run);
    case SQLT_INT:
    case SQLT_UIN:
      return integer(run);
    case SQLT_FLT:
      return flt(run);
    case SQLT_BFLOAT:
      return fixedFloat(run, 4, flt);
    case SQLT_BDOUBLE:
      return fixedFloat(run, 8, flt);
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
