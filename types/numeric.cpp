#include "types/numeric.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "core/owned.h"
#include "types/bytes.h"
#include "types/number_text.h"

namespace {

constexpr int kBase = 10000;

/// Adds 1 at the last digit. A carry out of the first digit leaves zeros behind a
/// leading 1.
void carryIntoLast(numeric *v) {
  for (int i = v->ndigits - 1; i >= 0; --i) {
    if (v->digits[i] < kBase - 1) {
      ++v->digits[i];
      return;
    }
    v->digits[i] = 0;
  }
  v->digits[v->ndigits] = 0;
  v->digits[0] = 1;
  ++v->ndigits;
  ++v->weight;
}

/// Cuts the last digit to its first `kept` decimal digits; whether to round up.
bool cutLastDigit(numeric *v, int kept) {
  sb2 &last = v->digits[v->ndigits - 1];
  const int power = round_powers[kept];
  const int rest = last % power;
  last = static_cast<sb2>(last - rest);
  return rest >= power / 2;
}

/// Adds `step` to the last digit, a power of ten below the base.
void roundUpBy(numeric *v, int step) {
  sb2 &last = v->digits[v->ndigits - 1];
  if (last + step < kBase) {
    last = static_cast<sb2>(last + step);
    return;
  }
  last = kBase - 1;
  carryIntoLast(v);
}

/// Narrows an 8-byte result; 1 with `*out` as it was when it does not fit.
template <class T>
sword toInteger(numeric *v, T *out) {
  sb8 wide = 0;
  if (const sword status = numericvar_to_int8(v, &wide); status != 0) return status;
  if (wide < std::numeric_limits<T>::min() || wide > std::numeric_limits<T>::max())
    return 1;
  *out = static_cast<T>(wide);
  return 0;
}

void swapFields(numeric *v, int ndigits) {
  v->ndigits = zev::swapBytes(v->ndigits);
  v->weight = zev::swapBytes(v->weight);
  v->sign = zev::swapBytes(v->sign);
  v->dscale = zev::swapBytes(v->dscale);
  for (int i = 0; i < ndigits; ++i) v->digits[i] = zev::swapBytes(v->digits[i]);
}

}  // namespace

extern "C" {

extern const int round_powers[4] = {0, 1000, 100, 10};

sword alloc_var(numeric **out, int ndigits) {
  *out = static_cast<numeric *>(std::malloc(zev::numericSize(ndigits + 1)));
  if (!*out) return -1;
  (*out)->ndigits = static_cast<sb2>(ndigits);
  return 0;
}

void strip_var(numeric *v) {
  int leading = 0;
  while (leading < v->ndigits && v->digits[leading] == 0) ++leading;
  int left = v->ndigits - leading;
  if (leading > 0) {
    constexpr int kMovedDigits = 2;
    std::memmove(v->digits, v->digits + leading,
                 sizeof(sb2) * static_cast<std::size_t>(std::min(left, kMovedDigits)));
    v->weight = static_cast<sb2>(v->weight - leading);
  }
  while (left > 0 && v->digits[left - 1] == 0) --left;
  v->ndigits = static_cast<sb2>(left);
  if (left == 0) {
    v->weight = 0;
    v->sign = kNumericPositive;
  }
}

void round_var(numeric *v, int dscale) {
  v->dscale = static_cast<sb2>(dscale);
  const int decimals = (v->weight + 1) * 4 + dscale;
  if (decimals < 0) {
    v->ndigits = v->weight = 0;
    v->sign = kNumericPositive;
    return;
  }
  const int kept = (decimals + 3) / 4;
  const int partial = decimals % 4;
  if (kept > v->ndigits || (kept == v->ndigits && partial == 0)) return;
  const bool nextIsHalf = partial == 0 && v->digits[kept] > 4999;
  v->ndigits = static_cast<sb2>(kept);
  if (partial != 0) {
    if (cutLastDigit(v, partial)) roundUpBy(v, round_powers[partial]);
  } else if (nextIsHalf) {
    carryIntoLast(v);
  }
}

sword numericvar_to_int8(numeric *v, sb8 *out) {
  round_var(v, 0);
  strip_var(v);
  if (v->ndigits == 0) {
    *out = 0;
    return 0;
  }
  if (v->weight < 0 || v->ndigits > v->weight + 1) return -1;
  const bool negative = v->sign == kNumericNegative;
  sb8 value = 0;
  for (int i = 0; i <= v->weight; ++i) {
    const sb8 digit = i < v->ndigits ? v->digits[i] : 0;
    if (__builtin_mul_overflow(value, kBase, &value)) return 1;
    if (__builtin_add_overflow(value, negative ? -digit : digit, &value)) return 1;
  }
  *out = value;
  return 0;
}

sword numericvar_to_int4(numeric *v, sb4 *out) {
  return toInteger(v, out);
}
sword numericvar_to_int2(numeric *v, sb2 *out) {
  return toInteger(v, out);
}
sword numericvar_to_int1(numeric *v, sb1 *out) {
  return toInteger(v, out);
}

sword numericvar_to_double(numeric *v, double *out) {
  char *printed = nullptr;
  if (ConvertNumericToString(v, &printed, v->dscale) != 0) return -1;
  const zev::Malloced<> owned(printed);
  const auto parsed = zev::parseDouble(printed);
  if (*parsed.end != '\0') return -1;
  *out = parsed.value;
  return parsed.outOfRange || zev::beyondDouble(parsed.value) ? 1 : 0;
}

sword numericvar_to_float(numeric *v, float *out) {
  double wide = 0;
  const sword status = numericvar_to_double(v, &wide);
  if (status < 0) return status;
  *out = static_cast<float>(wide);
  return status != 0 || static_cast<double>(*out) != wide ? 1 : 0;
}

void ConvertNumericFromNetToHostOrder(numeric *v) {
  swapFields(v, zev::swapBytes(v->ndigits));
}
void ConvertNumericFromHostToNetOrder(numeric *v) {
  swapFields(v, v->ndigits);
}

}  // extern "C"

bool zev::isWellFormed(const numeric &v) {
  // One more digit, which rounding may add, must not leave the range of the fields.
  if (v.ndigits == SB2MAXVAL || v.weight == SB2MAXVAL) return false;
  return std::all_of(v.digits, v.digits + v.ndigits,
                     [](sb2 digit) { return digit >= 0 && digit < kBase; });
}

numeric *zev::copyNumericField(const void *value, sb4 length) {
  if (length < static_cast<sb4>(sizeof(numeric))) return nullptr;
  const int ndigits = readNetwork<sb2>(value);
  if (ndigits < 0 || numericSize(ndigits) > static_cast<std::size_t>(length))
    return nullptr;
  numeric *raw = nullptr;
  if (alloc_var(&raw, ndigits) != 0) return nullptr;
  Malloced<numeric> copy(raw);
  std::memcpy(raw, value, numericSize(ndigits));
  ConvertNumericFromNetToHostOrder(raw);
  return isWellFormed(*raw) ? copy.release() : nullptr;
}
