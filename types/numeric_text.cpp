/// The server's numeric from and to text. Base-10000 digits are packed straight from the
/// text, so that no scratch and no locale is involved.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/owned.h"
#include "types/number_text.h"
#include "types/numeric.h"
#include "zevoci/text.h"

namespace {

/// Where the digits of a decimal text are. Leading zeros are counted but not part of
/// them.
struct DecimalText {
  bool negative = false;
  const char *first = nullptr;  ///< first digit that is not 0, null for zero
  long digits = 0;              ///< decimal digits from `first` on
  long beforePoint = 0;         ///< of all digits, how many stand before the point
  long total = 0;
  long exponent = 0;

  long dscale() const { return std::max(0L, total - beforePoint - exponent); }
  /// Power of ten of the digit at `first`.
  long weight() const { return beforePoint - 1 - (total - digits) + exponent; }
};

constexpr long kExponentLimit = 1000;

/// Reads the exponent behind an "e" into `out`; null when there is none in range.
const char *scanExponent(const char *s, DecimalText &out) {
  const auto parsed = zev::parseLong(s);
  if (parsed.end == s || parsed.value < -kExponentLimit ||
      parsed.value > kExponentLimit) {
    return nullptr;
  }
  out.exponent = parsed.value;
  return parsed.end;
}

/// Reads the run of digits with at most one point into `out`; null for a second point.
const char *scanDigits(const char *s, bool pointSeen, DecimalText &out) {
  for (;; ++s) {
    if (zev::isDigit(*s)) {
      if (!out.first && *s != '0') out.first = s;
      if (out.first) ++out.digits;
      if (!pointSeen) ++out.beforePoint;
      ++out.total;
    } else if (*s == '.') {
      if (pointSeen) return nullptr;
      pointSeen = true;
    } else {
      return s;
    }
  }
}

bool scanDecimal(const char *s, DecimalText &out) {
  s = zev::skipSpace(s);
  if (*s == '+' || *s == '-') out.negative = *s++ == '-';
  const bool pointFirst = *s == '.';
  if (pointFirst) ++s;
  if (!zev::isDigit(*s)) return false;
  s = scanDigits(s, pointFirst, out);
  if (s && (*s == 'e' || *s == 'E')) s = scanExponent(s + 1, out);
  return s && *zev::skipSpace(s) == '\0';
}

long floorDivide4(long n) {
  return n >= 0 ? n / 4 : -((3 - n) / 4);
}

/// Packs the decimal digits; the first base-10000 digit holds `lead` of them.
void packDigits(const char *s, long digits, int lead, sb2 *out) {
  int room = lead;
  int digit = 0;
  for (; digits > 0; ++s) {
    if (*s == '.') continue;
    digit = digit * 10 + (*s - '0');
    --digits;
    if (--room == 0) {
      *out++ = static_cast<sb2>(digit);
      digit = 0;
      room = 4;
    }
  }
  if (room == 4) return;
  for (; room > 0; --room) digit *= 10;
  *out = static_cast<sb2>(digit);
}

numeric *newRecord(int ndigits, long weight, ub2 sign, long dscale) {
  numeric *record = nullptr;
  if (alloc_var(&record, ndigits) != 0) return nullptr;
  record->weight = static_cast<sb2>(weight);
  record->sign = sign;
  record->dscale = static_cast<sb2>(dscale);
  return record;
}

numeric *pack(const DecimalText &decimal) {
  if (decimal.dscale() > SB2MAXVAL) return nullptr;
  if (!decimal.first) return newRecord(0, 0, kNumericPositive, decimal.dscale());
  const long weight = floorDivide4(decimal.weight());
  const long ndigits = weight - floorDivide4(decimal.weight() - decimal.digits + 1) + 1;
  if (weight > SB2MAXVAL || weight < SB2MINVAL || ndigits > SB2MAXVAL - 1) return nullptr;
  const int lead = static_cast<int>(decimal.weight() - weight * 4) + 1;
  numeric *record =
      newRecord(static_cast<int>(ndigits), weight,
                decimal.negative ? kNumericNegative : kNumericPositive, decimal.dscale());
  if (!record) return nullptr;
  packDigits(decimal.first, decimal.digits, lead, record->digits);
  strip_var(record);
  return record;
}

/// The base-10000 digit that counts 10000 to the power of `power`.
int digitAt(const numeric *v, int power) {
  const int i = v->weight - power;
  return i >= 0 && i < v->ndigits ? v->digits[i] : 0;
}

char *printGroup(char *out, int digit) {
  for (int power = 1000; power > 0; power /= 10) {
    *out++ = static_cast<char>('0' + digit / power % 10);
  }
  return out;
}

char *printFirstGroup(char *out, int digit) {
  char group[4];
  printGroup(group, digit);
  int skipped = 0;
  while (skipped < 3 && group[skipped] == '0') ++skipped;
  return std::copy(group + skipped, group + 4, out);
}

char *printInteger(char *out, const numeric *v) {
  if (v->weight < 0) {
    *out++ = '0';
    return out;
  }
  out = printFirstGroup(out, digitAt(v, v->weight));
  for (int power = v->weight - 1; power >= 0; --power)
    out = printGroup(out, digitAt(v, power));
  return out;
}

/// May write up to three characters more than `dscale`.
char *printFraction(char *out, const numeric *v, int dscale) {
  *out++ = '.';
  char *const end = out + dscale;
  for (int power = -1; out < end; --power) out = printGroup(out, digitAt(v, power));
  return end;
}

}  // namespace

extern "C" sword ConvertStringToNumeric(const char *s, numeric **out) {
  *out = nullptr;
  if (oci_strcasecmp(s, "NaN") == 0) {
    *out = newRecord(0, 0, kNumericNaN, 0);
    return *out ? 0 : -1;
  }
  DecimalText decimal;
  if (!scanDecimal(s, decimal)) return -1;
  *out = pack(decimal);
  return *out ? 0 : -1;
}

extern "C" sword ConvertNumericToString(numeric *v, char **out, int dscale) {
  if (v->sign & 0x8000) {
    *out = ::strdup("NaN");
    return *out ? 0 : -1;
  }
  dscale = std::max(dscale, 0);
  round_var(v, dscale);
  const int groups = std::max<int>(v->weight, 0) + 1;
  // A sign, the integer part, a point, the fraction in whole groups, a terminator.
  auto *p = static_cast<char *>(std::malloc(static_cast<std::size_t>(groups) * 4 +
                                            static_cast<std::size_t>(dscale) + 6));
  *out = p;
  if (!p) return -1;
  if (v->sign == kNumericNegative) *p++ = '-';
  p = printInteger(p, v);
  if (dscale > 0) p = printFraction(p, v, dscale);
  *p = '\0';
  return 0;
}
