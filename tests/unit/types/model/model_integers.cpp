#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "outcome.h"
#include "texts.h"
#include "types/server_types.h"

namespace zevtest::model {
namespace {

using std::optional;
using std::string;

int widthOf(Oid row) {
  return row == INT2OID ? 2 : row == INT4OID ? 4 : 8;
}

// Placing text of length L in a character target, one function for each way of the rows.

Outcome chr(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l < run.cap) {
    run.put(0, text);
    run.blanks(l, run.cap);
    run.setLength(l);
    return run.returns(0);
  }
  if (!run.call.indicator) return run.returns(1);
  run.missing(l - run.cap);
  run.put(0, head(text, run.cap));
  return run.returns(0);
}

Outcome chrOfInt4(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l <= run.cap) {
    run.put(0, text);
    run.blanks(l, run.cap);
    run.setLength(l);
    return run.returns(0);
  }
  run.out.record = 1406;
  run.missing(l - run.cap);
  run.put(0, head(text, run.cap));
  return run.returns(0);
}

Outcome chrOfInt8(Run &run, const string &text) {
  run.put(0, head(text, run.cap));
  run.blanks(sizeOf(text), run.cap);
  run.setLength(sizeOf(text));
  return run.returns(0);
}

Outcome lngOfInt2(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l < run.cap) {
    run.put(0, text);
    run.setLength(l);
    return run.returns(0);
  }
  if (!run.call.indicator) return run.returns(1);
  run.missing(l - run.cap);
  run.put(0, head(text, run.cap));
  return run.returns(0);
}

Outcome lng(Run &run, const string &text) {
  const long l = sizeOf(text);
  run.put(0, head(text, run.cap));
  if (l <= run.cap) run.setLength(l);
  return run.returns(0);
}

Outcome strOfInt2(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l < run.cap) {
    run.put(0, text + kNul);
    run.setLength(l);
    return run.returns(0);
  }
  if (!run.call.indicator) return run.returns(1);
  run.missing(l - run.cap);
  run.put(0, head(text, run.cap));
  run.put(run.cap - 1, kNul);
  return run.returns(0);
}

Outcome str(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l < run.cap) {
    run.put(0, text + kNul);
    run.setLength(l);
    return run.returns(0);
  }
  run.put(0, head(text, run.cap - 1));
  run.put(run.cap, kNul);
  return run.returns(0);
}

Outcome vcsOfInt2(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l < run.cap) {
    run.put(0, native(l, 2) + text);
    run.setLength(l + 2);
    return run.returns(0);
  }
  if (!run.call.indicator) return run.returns(1);
  run.missing(l - run.cap + 2);
  run.put(0, native(run.cap - 2, 2) + head(text, run.cap - 2));
  return run.returns(0);
}

Outcome vcs(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l + 1 < run.cap) {
    run.put(0, native(l, 2) + text);
    run.setLength(l + 2);
    return run.returns(0);
  }
  run.put(0, native(run.cap - 2, 2) + head(text, run.cap - 2));
  return run.returns(0);
}

Outcome lvcOfInt2(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l < run.cap) {
    run.put(0, native(l, 4) + text);
    run.setLength(l + 4);
    return run.returns(0);
  }
  run.out.record = 22053;
  run.missing(l + 4 - run.cap);
  run.put(0, native(run.cap - 4, 4) + head(text, run.cap - 4));
  return run.returns(run.call.indicator ? 0 : 1);
}

Outcome lvc(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l + 4 < run.cap) {
    run.put(0, native(l, 4) + text);
    run.setLength(l + 4);
    return run.returns(0);
  }
  if (!run.call.indicator) return run.returns(1);
  run.setIndicator(l - run.cap + 4 >= 65536 ? 65534 : run.valueLength - run.cap + 4);
  run.put(0, native(run.cap - 4, 4) + head(text, run.cap - 4));
  return run.returns(0);
}

Outcome avc(Run &run, const string &text) {
  const long l = sizeOf(text);
  if (l < run.cap) {
    run.put(0, text);
    run.blanks(l, run.cap);
    run.put(l, kNul);
    run.setLength(l + 1);
    return run.returns(0);
  }
  if (!run.call.indicator) return run.returns(1);
  run.missing(l - run.cap);
  run.put(0, head(text, run.cap));
  run.put(run.cap - 1, kNul);
  return run.returns(0);
}

/// The narrow rows cut the field as it came, never more of it than there is.
Outcome vstOfRaw(Run &run, const string &text) {
  return placeInString(run, text, run.call.value);
}
Outcome vst(Run &run, const string &text) {
  return placeInString(run, text, text);
}

struct TextCell {
  Oid row;
  ub2 dty;
  string (*print)(long long);
  Outcome (*place)(Run &, const string &);
};

const TextCell kTextCells[] = {
    {INT2OID, SQLT_CHR, int16ToCharArray, chr},
    {INT2OID, SQLT_STR, int16ToCharArray, strOfInt2},
    {INT2OID, SQLT_LNG, int16ToCharArray, lngOfInt2},
    {INT2OID, SQLT_VCS, int16ToCharArray, vcsOfInt2},
    {INT2OID, SQLT_LVC, int16ToCharArray, lvcOfInt2},
    {INT2OID, SQLT_AFC, int16ToCharArray, chr},
    {INT2OID, SQLT_AVC, int16ToCharArray, avc},
    {INT2OID, SQLT_VST, itoa, vstOfRaw},
    {INT4OID, SQLT_CHR, itoa, chrOfInt4},
    {INT4OID, SQLT_STR, itoa, str},
    {INT4OID, SQLT_LNG, itoa, lng},
    {INT4OID, SQLT_VCS, itoa, vcs},
    {INT4OID, SQLT_LVC, int32ToCharArray, lvc},
    {INT4OID, SQLT_AFC, int32ToCharArray, chr},
    {INT4OID, SQLT_AVC, int32ToCharArray, avc},
    {INT4OID, SQLT_VST, itoa, vstOfRaw},
    {INT8OID, SQLT_CHR, i64toa, chrOfInt8},
    {INT8OID, SQLT_STR, i64toa, str},
    {INT8OID, SQLT_LNG, i64toa, lng},
    {INT8OID, SQLT_VCS, i64toa, vcs},
    {INT8OID, SQLT_LVC, int64ToCharArray, lvc},
    {INT8OID, SQLT_AFC, int64ToCharArray, chr},
    {INT8OID, SQLT_AVC, int64ToCharArray, avc},
    {INT8OID, SQLT_VST, i64toa, vst},
};

Outcome textMember(Run &run, const TextCell &cell) {
  if (cell.dty == SQLT_VST && run.cap < 4) return run.fails();
  if (cell.row == INT2OID && cell.dty == SQLT_STR && run.valueLength > 2000) {
    return run.fails();
  }
  if (cell.dty == SQLT_VCS && run.cap < 2) return run.fails();
  if (cell.dty == SQLT_LVC && run.cap < 4) return run.fails();
  if (run.isNull()) return run.nullRule();
  if (run.call.format == 0) return cell.place(run, run.call.value);
  if (run.call.format != 1) return run.fails();
  const int width = widthOf(cell.row);
  if (run.valueLength < width) return run.fails();
  return cell.place(run, cell.print(fromNetwork(run.call.value, width)));
}

enum class Read { Strtol, Atoi64 };
enum class Other { Fails, StoresNothing };

struct IntegerCell {
  Oid row;
  ub2 dty;
  Read read;
  bool refusesIntLimits;  ///< 0x7FFFFFFF and 0x80000000 as 32 bits
  long long low, high;    ///< range at read
  int checkedWidth;       ///< widest store whose range is checked
  Other other;
};

constexpr long long kAnyLow = INT64_MIN, kAnyHigh = INT64_MAX;
const IntegerCell kIntegerCells[] = {
    {INT2OID, SQLT_INT, Read::Strtol, true, -32768, 32767, 1, Other::Fails},
    {INT2OID, SQLT_UIN, Read::Strtol, true, 0, 65535, 1, Other::Fails},
    {INT4OID, SQLT_INT, Read::Strtol, false, kAnyLow, kAnyHigh, 2, Other::StoresNothing},
    {INT4OID, SQLT_UIN, Read::Strtol, true, kAnyLow, kAnyHigh, 2, Other::StoresNothing},
    {INT8OID, SQLT_INT, Read::Atoi64, false, kAnyLow, kAnyHigh, 4, Other::Fails},
    {INT8OID, SQLT_UIN, Read::Atoi64, false, kAnyLow, kAnyHigh, 4, Other::Fails},
};

bool isIntLimit(long long value) {
  return static_cast<int>(value) == INT32_MAX || static_cast<int>(value) == INT32_MIN;
}

bool fitsWidth(long long value, int width, bool isSigned) {
  const long long span = 1LL << (8 * width);
  if (isSigned) return value >= -span / 2 && value < span / 2;
  return value >= 0 && value < span;
}

Outcome integerMember(Run &run, const IntegerCell &cell) {
  const bool isSigned = cell.dty == SQLT_INT;
  const int width = widthOf(cell.row);
  if (run.isNull()) return run.nullRule();
  long long value = 0;
  if (run.call.format == 0 && cell.read == Read::Strtol) {
    const ReadLong read = readLong(run.cText());
    if (read.outOfRange || (cell.refusesIntLimits && isIntLimit(read.value))) {
      return run.fails();
    }
    value = read.value;
    if (value < cell.low || value > cell.high) return run.failsWith(22053);
  } else if (run.call.format == 0) {
    value = atoi64(run.cText());
  } else if (run.call.format == 1) {
    if (run.valueLength < width) return run.fails();
    value = fromNetwork(run.call.value, width);
    if (cell.row == INT2OID && !isSigned) value &= 0xFFFF;
  }
  if (cell.row == INT4OID) {
    value = static_cast<sb4>(value);
    if (!isSigned) value &= 0xFFFFFFFF;
  }
  const int store = static_cast<int>(run.cap);
  if (store != 1 && store != 2 && store != 4 && store != 8) {
    return run.returns(cell.other == Other::Fails ? -1 : 0);
  }
  run.put(0, native(value, store));
  if (store <= cell.checkedWidth && !fitsWidth(value, store, isSigned)) {
    return run.failsWith(22053);
  }
  return run.returns(0);
}

Outcome floatMember(Run &run) {
  if (run.isNull()) return run.nullRule();
  const Oid row = run.call.oid;
  long long value = 0;
  if (run.call.format == 0) {
    value = row == INT2OID ? readLong(run.cText()).value : atoi64(run.cText());
  } else if (run.call.format == 1) {
    if (run.valueLength < (row == INT2OID ? 2 : 8)) return run.fails();
    value = fromNetwork(run.call.value, widthOf(row));
  } else {
    return run.fails();
  }
  if (row == INT2OID) value = static_cast<sb2>(value);
  if (row == INT4OID) value = static_cast<sb4>(value);
  if (run.cap == 4) {
    const auto single = static_cast<float>(value);
    run.put(0, nativeFloat(single));
  } else if (run.cap == 8) {
    run.put(0, nativeDouble(static_cast<double>(value)));
  } else {
    return run.fails();
  }
  return run.returns(0);
}

Outcome numberMember(Run &run) {
  if (run.cap < 21) return run.fails();
  if (run.isNull()) return run.nullRule();
  string text = run.cText();
  if (run.call.format == 1) {
    if (run.valueLength < 8) return run.fails();
    const long long value = fromNetwork(run.call.value, widthOf(run.call.oid));
    text = run.call.oid == INT8OID ? i64toa(value) : itoa(value);
  } else if (run.call.format != 0) {
    return run.fails();
  }
  const optional<string> number = toNumber(text);
  if (!number) return run.fails();
  run.put(0, wholeNumber(*number));
  run.setLength(21);
  return run.returns(0);
}

Outcome varnumMember(Run &run) {
  if (run.isNull()) return run.nullRule();
  if (run.call.format == 1) {
    if (run.valueLength < widthOf(run.call.oid)) return run.fails();
    // As it stands in memory, of a short one the first byte, with 15 digits.
    const std::string bytes = run.call.value;
    long long raw = static_cast<unsigned char>(bytes[0]);
    if (widthOf(run.call.oid) != 2) {
      const long width = widthOf(run.call.oid);
      raw = fromNetwork(reversed(bytes.substr(0, static_cast<std::size_t>(width))),
                        static_cast<int>(width));
    }
    char digits[40], plain[120];
    std::snprintf(digits, sizeof digits, "%.14E", static_cast<double>(raw));
    std::snprintf(plain, sizeof plain, "%.40Lf", std::strtold(digits, nullptr));
    const optional<string> binary = toVarnum(plain);
    if (!binary) return run.fails();
    run.put(0, *binary);
    run.setLength(static_cast<unsigned char>((*binary)[0]) + 1);
    return run.returns(0);
  }
  if (run.call.format != 0 || run.cap < 3) return run.fails();
  const optional<string> number = toVarnum(run.cText());
  if (!number) return run.fails();
  run.put(0, *number);
  run.setLength(static_cast<unsigned char>((*number)[0]) + 1);
  return run.returns(0);
}

}  // namespace

optional<Outcome> predictInteger(Run &run) {
  const Oid row = run.call.oid;
  const ub2 dty = run.call.dty;
  for (const TextCell &cell : kTextCells) {
    if (cell.row == row && cell.dty == dty) return textMember(run, cell);
  }
  for (const IntegerCell &cell : kIntegerCells) {
    if (cell.row == row && cell.dty == dty) return integerMember(run, cell);
  }
  switch (dty) {
    case SQLT_FLT:
      return floatMember(run);
    case SQLT_BFLOAT:
      return fixedFloat(run, 4, floatMember);
    case SQLT_BDOUBLE:
      return fixedFloat(run, row == INT8OID ? 4 : 8, floatMember);
    case SQLT_NUM:
      return numberMember(run);
    case SQLT_VNU:
      return varnumMember(run);
    default:
      return std::nullopt;
  }
}

}  // namespace zevtest::model
