#include <algorithm>

#include "outcome.h"
#include "texts.h"
#include "types/server_types.h"

namespace zevtest::model {
namespace {

using std::optional;
using std::string;

bool isSingle(const Run &run) {
  return run.call.oid == FLOAT4OID;
}
long width(const Run &run) {
  return isSingle(run) ? 4 : 8;
}

/// Arguments of the printing of binary floats.
struct Printing {
  ub2 dty;
  int float4Precision, float8Precision;
  bool trim;
};
const Printing kPrintings[] = {
    {SQLT_CHR, 6, 15, true},  {SQLT_STR, 6, 15, true}, {SQLT_VCS, 6, 6, false},
    {SQLT_LVC, 6, 17, false}, {SQLT_NUM, 6, 15, true}, {SQLT_VNU, 6, 15, true},
    {SQLT_VST, 6, 15, true},
};

/// Null for the members of the wide row that test for a missing value alone.
bool isWithoutValue(const Run &run) {
  return isSingle(run) ? run.isNull() : run.call.nullPointer;
}

double readBinary(const Run &run, bool swapped) {
  string bytes = run.call.value.substr(0, static_cast<std::size_t>(width(run)));
  if (swapped) bytes = reversed(bytes);
  if (isSingle(run)) return readAs<float>(bytes);
  return readAs<double>(bytes);
}

/// The text form of the value, or nothing where there is none.
optional<string> textOf(const Run &run, ub2 dty) {
  if (run.call.format == 0) return run.call.value;
  if (run.call.format != 1 || run.valueLength < width(run)) return std::nullopt;
  for (const Printing &p : kPrintings) {
    if (p.dty != dty) continue;
    const bool swapped = dty != SQLT_VCS && dty != SQLT_LVC;
    return dtostr(isSingle(run) ? p.float4Precision : p.float8Precision, p.trim,
                  readBinary(run, swapped));
  }
  return std::nullopt;
}

Outcome chr(Run &run, long cap) {
  if (run.isNull()) return run.nullRule();
  const optional<string> text = textOf(run, SQLT_CHR);
  if (!text) return run.fails();
  const long l = static_cast<long>(text->size());
  run.put(0, head(*text, cap));
  if (l <= cap) {
    run.blanks(l, cap);
    run.setLength(l);
  } else {
    run.out.record = 1406;
    run.missing(l - cap);
  }
  return run.returns(0);
}

Outcome avc(Run &run) {
  const long cap = isSingle(run) ? run.cap : std::max(run.cap - 1, 0L);
  run.setLength(cap);
  Outcome outcome = chr(run, cap);
  if (outcome.result < 0 || run.isNull()) return outcome;
  const long end = *outcome.length;
  if (end > 0) run.put(end - 1, kNul);
  return run.returns(outcome.result);
}

Outcome str(Run &run) {
  if (run.cap < 1) return run.fails();
  if (!isSingle(run) && run.valueLength < 4) return run.fails();
  if (isWithoutValue(run)) return run.nullRule();
  const optional<string> text = textOf(run, SQLT_STR);
  if (!text) return run.fails();
  const long l = static_cast<long>(text->size());
  if (l + 1 <= run.cap) {
    run.put(0, *text + kNul);
    run.setLength(l);
    return run.returns(0);
  }
  run.put(0, head(*text, run.cap - 1) + kNul);
  run.out.record = 1406;
  run.missing(l + 1 - run.cap);
  return run.returns(0);
}

Outcome prefixed(Run &run, int prefix) {
  if (run.cap < 2) return run.fails();
  if (run.isNull()) return run.nullRule();
  const optional<string> text = textOf(run, run.call.dty);
  if (!text) return run.fails();
  const long l = static_cast<long>(text->size());
  run.put(0, native(l, prefix));
  run.put(prefix, head(*text, run.cap - prefix));
  if (l + prefix <= run.cap) {
    run.setLength(l + prefix);
    return run.returns(0);
  }
  run.out.record = 1406;
  run.missing(l + prefix - run.cap);
  return run.returns(0);
}

Outcome number(Run &run) {
  const bool withLength = run.call.dty == SQLT_VNU;
  if (run.cap < 2) return run.fails();
  if (!isSingle(run) && run.valueLength < 8) return run.fails();
  if (isWithoutValue(run)) return run.nullRule();
  const optional<string> text = textOf(run, run.call.dty);
  if (!text) return run.fails();
  const optional<string> bytes = withLength ? toVarnum(*text) : toNumber(*text);
  if (!bytes) return run.fails();
  run.put(0, withLength ? *bytes : wholeNumber(*bytes));
  run.setLength(withLength ? (*bytes)[0] : 21);
  return run.returns(0);
}

Outcome vst(Run &run) {
  if (run.cap < 4) return run.fails();
  if (run.isNull()) return run.nullRule();
  const optional<string> text = textOf(run, SQLT_VST);
  if (!text) return run.fails();
  return placeInString(run, *text, run.call.value);
}

Outcome integer(Run &run) {
  const bool isSigned = run.call.dty == SQLT_INT;
  if (run.isNull()) return run.nullRule();
  double x = 0;
  if (run.call.format == 0) {
    const ReadDouble read = readDouble(run.cText());
    if (!read.wholeText) return run.fails();
    x = isSingle(run) ? static_cast<float>(read.value) : read.value;
  } else if (run.call.format == 1) {
    if (run.valueLength < width(run)) return run.fails();
    const string &v = run.call.value;
    x = isSingle(run) ? readAs<float>(reversed(v.substr(0, 4)))
                      : readAs<double>(reversed(v.substr(0, 4)) + v.substr(4, 4));
  } else {
    return run.fails();
  }
  const long long value = truncated(x);
  const int store = static_cast<int>(run.cap);
  if (store != 1 && store != 2 && store != 4 && store != 8) return run.fails();
  run.put(0, native(value, store));
  if (store <= (isSigned ? 2 : 4)) {
    const long long span = 1LL << (8 * store);
    const bool fits =
        isSigned ? value >= -span / 2 && value < span / 2 : value >= 0 && value < span;
    if (!fits) run.out.record = 22054;
  }
  return run.returns(0);
}

Outcome flt(Run &run) {
  if (isSingle(run) && run.cap < 4) return run.fails();
  if (run.isNull()) return run.nullRule();
  if (run.cap < 4) return run.fails();
  double x = 0;
  if (run.call.format == 0) {
    x = readDouble(run.cText()).value;
    if (isSingle(run)) x = static_cast<float>(x);
  } else if (run.call.format == 1 && run.valueLength >= width(run)) {
    x = readBinary(run, true);
  } else {
    return run.fails();
  }
  run.put(0, run.cap < 8 ? nativeFloat(x) : nativeDouble(x));
  run.setLength(run.cap < 8 ? 4 : 8);
  return run.returns(0);
}

}  // namespace

optional<Outcome> predictFloat(Run &run) {
  switch (run.call.dty) {
    case SQLT_CHR:
    case SQLT_LNG:
    case SQLT_AFC:
      return chr(run, run.cap);
    case SQLT_AVC:
      return avc(run);
    case SQLT_STR:
      return str(run);
    case SQLT_VCS:
      return prefixed(run, 2);
    case SQLT_LVC:
      return prefixed(run, 4);
    case SQLT_NUM:
    case SQLT_VNU:
      return number(run);
    case SQLT_VST:
      return vst(run);
    case SQLT_INT:
    case SQLT_UIN:
      return integer(run);
    case SQLT_FLT:
      return flt(run);
    case SQLT_BFLOAT:
    case SQLT_BDOUBLE:
      return fixedFloat(run, 0, flt);
    default:
      return std::nullopt;
  }
}

}  // namespace zevtest::model
