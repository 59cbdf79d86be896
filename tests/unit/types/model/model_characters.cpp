#include <algorithm>

#include "outcome.h"
#include "texts.h"

namespace zevtest::model {
namespace {

using std::optional;
using std::string;

Outcome chr(Run &run) {
  if (run.isNull()) return run.nullRule();
  if (run.cap > 0) run.put(0, run.call.value.substr(0, 1));
  run.blanks(1, run.cap);
  run.setLength(1);
  return run.returns(0);
}

Outcome avc(Run &run) {
  if (run.isNull()) {
    run.setLength(std::max(run.cap - 1, 0L));
    return run.nullRule();
  }
  if (run.cap > 0) run.put(0, run.call.value.substr(0, 1));
  run.blanks(1, run.cap - 1);
  if (run.cap >= 2) run.put(1, kNul);
  run.setLength(1);
  return run.returns(0);
}

Outcome str(Run &run) {
  if (run.cap < 2) return run.fails();
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  run.put(0, run.call.value.substr(0, 1) + kNul);
  run.setLength(1);
  return run.returns(0);
}

Outcome prefixed(Run &run, int prefix) {
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  run.put(0, native(1, prefix) + run.call.value.substr(0, 1));
  return run.returns(0);
}

Outcome vst(Run &run) {
  if (run.cap < 4) return run.fails();
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  const long size = run.call.stringSize;
  if (size < 2) {
    run.out.record = 1406;
    run.setIndicator(2 - size);
    if (size > 0) run.putText(0, kNul);
    run.out.textLength = 0;
    return run.returns(1);
  }
  run.putText(0, run.call.value.substr(0, 1) + kNul);
  run.out.textLength = 1;
  return run.returns(0);
}

Outcome number(Run &run, long least, optional<string> (*encode)(const string &)) {
  if (run.cap < least) return run.fails();
  if (run.isNull()) return run.nullRule();
  if (run.call.format > 1) return run.fails();
  string text = run.cText();
  if (run.call.format == 1) text = text.substr(0, 1);
  const optional<string> bytes = encode(text);
  if (!bytes) return run.fails();
  run.put(0, encode == toNumber ? wholeNumber(*bytes) : *bytes);
  run.setLength(21);
  return run.returns(0);
}

Outcome integer(Run &run, bool isSigned) {
  if (run.isNull()) return run.nullRule();
  long long value = 0;
  if (run.call.format == 1) {
    value = static_cast<signed char>(run.call.value[0]);
    if (!isSigned) value &= 0xFF;
  } else if (run.call.format == 0) {
    const ReadLong read = readLong(run.cText());
    const int low32 = static_cast<int>(read.value);
    if (read.outOfRange || low32 == INT32_MAX || low32 == INT32_MIN) return run.fails();
    value = read.value;
    if (value < (isSigned ? -128 : 0) || value > (isSigned ? 127 : 255)) {
      return run.failsWith(22053);
    }
  }
  if (run.cap != 1 && run.cap != 2 && run.cap != 4 && run.cap != 8) return run.fails();
  run.put(0, native(value, static_cast<int>(run.cap)));
  return run.returns(0);
}

Outcome flt(Run &run) {
  if (run.isNull()) {
    Outcome null = run.nullRule();
    if (null.result != 0) null.record = 1722;
    return null;
  }
  const double code = static_cast<signed char>(run.call.value[0]);
  if (run.cap == 4) run.put(0, nativeFloat(code));
  if (run.cap == 8) run.put(0, nativeDouble(code));
  return run.returns(0);
}

}  // namespace

optional<Outcome> predictCharacter(Run &run) {
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
    case SQLT_NUM:
      return number(run, 21, toNumber);
    case SQLT_VNU:
      return number(run, 4, toVarnum);
    case SQLT_INT:
      return integer(run, true);
    case SQLT_UIN:
      return integer(run, false);
    case SQLT_FLT:
      return flt(run);
    case SQLT_BFLOAT:
      return fixedFloat(run, 4, flt);
    case SQLT_BDOUBLE:
      return fixedFloat(run, 8, flt);
    default:
      return std::nullopt;
  }
}

}  // namespace zevtest::model
