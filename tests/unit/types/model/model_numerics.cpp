#include <algorithm>
#include <cmath>
#include <limits>

#include "outcome.h"
#include "texts.h"
#include "wire_numeric.h"

namespace zevtest::model {
namespace {

using std::optional;
using std::string;

/// The null rule; most members of the row clear the length for it, and none tells which.
Outcome null(Run &run) {
  Outcome outcome = run.nullRule();
  outcome.length.reset();
  return outcome;
}

Outcome chr(Run &run, const string &text) {
  run.put(0, head(text, run.cap));
  run.blanks(sizeOf(text), run.cap);
  if (sizeOf(text) <= run.cap) run.setLength(sizeOf(text));
  if (sizeOf(text) > run.cap) run.out.length.reset();
  return run.returns(0);
}

Outcome str(Run &run, const string &text) {
  if (run.cap < sizeOf(text)) return run.fails();
  run.put(0, text + kNul);
  run.setLength(sizeOf(text));
  return run.returns(0);
}

Outcome lng(Run &run, const string &text) {
  const long n = std::min(run.cap, sizeOf(text)) & 0xFFFF;
  run.put(0, head(text, n));
  run.setLength(n);
  return run.returns(0);
}

Outcome prefixed(Run &run, const string &text, int prefix) {
  const long n = std::min(run.cap - prefix, sizeOf(text));
  run.put(0, native(n, prefix) + head(text, n));
  run.setLength(n + prefix);
  return run.returns(0);
}
Outcome vcs(Run &run, const string &text) {
  return prefixed(run, text, 2);
}
Outcome lvc(Run &run, const string &text) {
  return prefixed(run, text, 4);
}

Outcome afc(Run &run, const string &text) {
  const long n = std::min(run.cap, sizeOf(text));
  run.put(0, head(text, n));
  run.blanks(n, run.cap);
  run.setLength(n);
  return run.returns(0);
}

Outcome avc(Run &run, const string &text) {
  const long n = std::min(run.cap, sizeOf(text));
  run.put(0, head(text, n));
  run.blanks(n, run.cap);
  run.put(n, kNul);
  run.setLength(n + 1);
  return run.returns(0);
}

struct TextCell {
  ub2 dty;
  long longest;  ///< of valueLength
  Outcome (*place)(Run &, const string &);
};
const TextCell kTextCells[] = {
    {SQLT_CHR, 4000, chr},  {SQLT_STR, 4000, str},       {SQLT_LNG, 0x7FFFFFFE, lng},
    {SQLT_VCS, 65533, vcs}, {SQLT_LVC, 0x7FFFFFFA, lvc}, {SQLT_AFC, 2000, afc},
    {SQLT_AVC, 2000, avc},
};

/// The text form, or nothing where the field has none.
optional<string> textOf(const Run &run) {
  if (run.call.format == 0) return run.call.value;
  if (run.call.format != 1) return std::nullopt;
  const optional<WireNumeric> v = parseWire(run.call.value);
  if (!v) return std::nullopt;
  return printed(*v, v->dscale);
}

Outcome textMember(Run &run, const TextCell &cell) {
  if (run.valueLength > cell.longest) return run.fails();
  if (cell.dty == SQLT_VCS && run.cap < 2) return run.fails();
  if (cell.dty == SQLT_LVC && run.cap < 4) return run.fails();
  if (run.isNull()) return null(run);
  const optional<string> text = textOf(run);
  if (!text) return run.fails();
  return cell.place(run, *text);
}

Outcome integer(Run &run) {
  if (run.isNull()) return null(run);
  if (run.cap < 1) return run.fails();
  const int width = run.cap < 2 ? 1 : run.cap < 4 ? 2 : run.cap > 7 ? 8 : 4;
  if (run.call.format == 0) {
    run.put(0, native(atoi64(run.cText()), width));
    run.setLength(width);
    return run.returns(0);
  }
  if (run.call.format != 1) return run.fails();
  const optional<WireNumeric> v = parseWire(run.call.value);
  if (!v) {
    run.out.length.reset();
    return run.fails();
  }
  const WireInteger read = integerOf(*v);
  const bool fits =
      read.status == 0 && (width == 8 || (read.value >= -(1LL << (8 * width - 1)) &&
                                          read.value < (1LL << (8 * width - 1))));
  if (fits) run.put(0, native(read.value, width));
  run.setLength(width == 1 ? 2 : width);
  return run.returns(0);
}

Outcome flt(Run &run) {
  if (run.isNull()) return null(run);
  if (run.cap < 4) return run.fails();
  const optional<string> text = textOf(run);
  if (!text) return run.fails();
  const ReadDouble read = readDouble(text->substr(0, text->find('\0')));
  if (!read.wholeText) return run.fails();
  const bool wide = run.cap > 7;
  run.put(0, wide ? nativeDouble(read.value) : nativeFloat(read.value));
  run.setLength(wide ? 8 : 4);
  const bool beyond = std::fabs(read.value) > std::numeric_limits<double>::max();
  const bool changed =
      !wide && static_cast<double>(static_cast<float>(read.value)) != read.value;
  if (!beyond && !changed) return run.returns(0);
  run.out.record = 1426;
  return run.returns(1);
}

optional<Outcome> vst(Run &run) {
  if (run.cap < 1) return run.returns(0);
  if (run.isNull()) return null(run);
  string text = run.call.value;
  if (run.call.format == 1) {
    const optional<WireNumeric> v = parseWire(run.call.value, false);
    if (!v) return std::nullopt;
    text = printed(*v, 21);
  } else if (run.call.format != 0) {
    return run.fails();
  }
  Outcome outcome = placeInString(run, text, text);
  outcome.length.reset();
  return outcome;
}

Outcome varnum(Run &run) {
  run.put(0, string(22, '\0'));
  if (run.cap < 2 && run.isNull()) {
    run.setLength(0);
    if (run.call.indicator) {
      run.out.indicator = -1;
      return run.returns(0);
    }
    run.out.record = 1405;
    return run.returns(1);
  }
  if (run.call.format == 1) {
    const optional<WireNumeric> v = parseWire(run.call.value);
    const optional<string> encoded = v ? varnumOf(*v) : std::nullopt;
    if (!encoded) return run.failsWith(1722);
    run.put(0, *encoded);
    run.setLength((*encoded)[0] + 1);
    return run.returns(0);
  }
  if (run.call.format != 0) return run.fails();
  const optional<string> encoded = toNumber(run.cText());
  if (!encoded) return run.failsWith(1722);
  const string number = head(*encoded, kLongestNumber);
  run.put(1, number);
  long count = 1;
  for (std::size_t i = 1; i < number.size(); ++i) {
    const int byte = static_cast<unsigned char>(number[i]);
    if (byte < 1 || byte > 102) break;
    ++count;
  }
  run.put(0, native(count, 1));
  run.setLength(count + 1);
  return run.returns(0);
}

}  // namespace

optional<Outcome> predictNumeric(Run &run) {
  for (const TextCell &cell : kTextCells) {
    if (cell.dty == run.call.dty) return textMember(run, cell);
  }
  switch (run.call.dty) {
    case SQLT_INT:
    case SQLT_UIN:
      return integer(run);
    case SQLT_FLT:
      return flt(run);
    case SQLT_BFLOAT:
      return fixedFloat(run, 4, flt);
    case SQLT_BDOUBLE:
      return fixedFloat(run, 8, flt);
    case SQLT_VST:
      return vst(run);
    case SQLT_NUM:
    case SQLT_VNU:
      return varnum(run);
    default:
      return std::nullopt;
  }
}

}  // namespace zevtest::model
