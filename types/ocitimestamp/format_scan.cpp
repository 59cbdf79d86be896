#include <algorithm>
#include <cstring>

#include "types/number_text.h"
#include "types/ocitimestamp/format_execution.h"
#include "types/ocitimestamp/format_words.h"

namespace zev::format {
namespace {

constexpr sb4 kNameWidth = 9;   ///< of the longest name of a day or month
constexpr sb4 kRomanWidth = 4;  ///< of the longest numeral
constexpr sb4 kMostInteger = 0x7fffffff;

bool inFillMode(const Scanning &s) {
  return s.suffix & kFillMode;
}

/// The characters of an ordinal, which are stepped over unread.
sb4 ordinalLength(const Scanning &s) {
  return s.suffix & kOrdinal ? 2 : 0;
}

/// Whether a number ends at its width rather than at its last digit.
bool hasFixedWidth(const Scanning &s) {
  return !inFillMode(s) && !is_next_separator(&s.node);
}

/// Whether nothing at all stands behind the element in its model.
bool standsLast(const Scanning &s) {
  if (s.node.type == kEndNode) return true;
  return !(s.suffix & kOrdinal) && (&s.node)[1].type == kEndNode;
}

bool beginsWith(const char *text, const char *word) {
  return std::strncmp(text, word, std::strlen(word)) == 0;
}

// Numbers.

/// Reads digits behind white space, `width` of them or all. The length, or -1 with 1858.
sb4 readDigits(const Scanning &s, sb4 width, sb4 &value) {
  const sb4 spaces = strspace_len(s.text);
  const char *const digits = s.text + spaces;
  if (!isDigit(*digits)) return fail(s.errhp, 1858);
  if (!hasFixedWidth(s)) {
    value = scanDigits(digits, kAllDigits).value;
    return strdigits_len(s.text) + ordinalLength(s);
  }
  const ScannedNumber number = scanDigits(digits, width);
  value = number.value;
  return spaces + number.length + ordinalLength(s);
}

/// A number of `Width` digits from `Low` to `High`, else `Error`.
template <sb4 TmFromChar::*Field, sb4 Width, sb4 Low = 0, sb4 High = kMostInteger,
          sb4 Error = 0>
sb4 scanNumber(const Scanning &s) {
  sb4 &value = s.fields.*Field;
  const sb4 length = readDigits(s, Width, value);
  if (length < 0) return -1;
  return value < Low || value > High ? fail(s.errhp, Error) : length;
}

/// Only a second of the day that ends at its width is checked.
sb4 scanSecondOfDay(const Scanning &s) {
  const sb4 length = readDigits(s, 5, s.fields.ssss);
  if (length < 0) return -1;
  return hasFixedWidth(s) && s.fields.ssss > 86399 ? fail(s.errhp, 1853) : length;
}

sb4 scanDayOfWeek(const Scanning &s) {
  const sb4 spaces = strspace_len(s.text);
  s.fields.d = scanDigits(s.text + spaces, 1).value;
  return s.fields.d < 1 || s.fields.d > 7 ? fail(s.errhp, 1846) : spaces + 1;
}

sb4 scanJulianDay(const Scanning &s) {
  const char *const digits = skipSpace(s.text);
  if (!isDigit(*digits)) return fail(s.errhp, 1858);
  s.fields.j = scanDigits(digits, kAllDigits).value;
  return strdigits_len(s.text) + ordinalLength(s);
}

/// Up to `Digits` digits behind a decimal point.
template <sb4 TmFromChar::*Field, sb4 Digits>
sb4 scanDecimals(const Scanning &s) {
  const sb4 spaces = strspace_len(s.text);
  const ScannedNumber number = scanDigits(s.text + spaces, Digits);
  if (number.length == 0) return fail(s.errhp, 1858);
  s.fields.*Field = number.value;
  for (sb4 i = number.length; i < Digits; ++i) s.fields.*Field *= 10;
  return spaces + number.length + ordinalLength(s);
}

/// The digits as a plain number. How many count is the code of the digit behind FF, 48 at
/// least, or 16 without one.
sb4 scanFraction(const Scanning &s) {
  if (s.dateKind == kOCIDate) return fail(s.errhp, 1822);
  if (s.dateKind == kDateDescriptor) return fail(s.errhp, 1821);
  if (!isDigit(*s.text)) return fail(s.errhp, 1858);
  const sb4 most = s.node.character ? s.node.character : 16;
  sb4 n = 0;
  for (; n < most && isDigit(s.text[n]); ++n)
    s.fields.ff = s.fields.ff * 10 + (s.text[n] - '0');
  return n;
}

// Years.

sb4 yearAsItIs(sb4 year) {
  return year;
}
sb4 yearOfMillennium(sb4 year) {
  return year < 1000 ? year + 2000 : year;
}
sb4 yearOfCentury(sb4 year) {
  if (year < 70) return year + 2000;
  return year < 100 ? year + 1900 : year;
}
sb4 yearOfDecade(sb4 year) {
  return year > kMostInteger - 2000 ? year : year + 2000;
}

/// Reads `Digits` digits, or all at the end of a model.
template <sb4 Digits, sb4 (*Complete)(sb4), sb4 Low, sb4 High>
sb4 scanYear(const Scanning &s) {
  const sb4 spaces = strspace_len(s.text);
  const char *const digits = s.text + spaces;
  if (!isDigit(*digits)) return fail(s.errhp, 1858);
  const bool last = (&s.node)[1].type == kEndNode;
  const ScannedNumber number = scanDigits(digits, last ? kAllDigits : Digits);
  s.fields.yysz = last ? number.length : Digits;
  s.fields.year = Complete(number.value);
  if (s.fields.year < Low) return fail(s.errhp, 1841);
  if (s.fields.year > High) return fail(s.errhp, 1830);
  const auto left = strnlen(digits, static_cast<std::size_t>(s.fields.yysz));
  return spaces + static_cast<sb4>(left) + ordinalLength(s);
}

/// Thousands, a comma and three digits.
sb4 scanGroupedYear(const Scanning &s) {
  const sb4 spaces = strspace_len(s.text);
  const ScannedNumber thousands = scanDigits(s.text + spaces, kAllDigits);
  if (thousands.length == 0) return fail(s.errhp, 1858);
  const char *const comma = s.text + spaces + thousands.length;
  if (*comma != ',') return fail(s.errhp, 1861, "string");
  const ScannedNumber rest = scanDigits(comma + 1, 3);
  if (rest.length == 0) return fail(s.errhp, 1858);
  const sb8 year = sb8{thousands.value} * 1000 + rest.value;
  s.fields.year = static_cast<sb4>(std::min<sb8>(year, kMostInteger));
  s.fields.yysz = 4;
  return strdigits_len(s.text) + 4 + ordinalLength(s);
}

sb4 refuseYear(const Scanning &s) {
  return fail(s.errhp, 1820);
}

// Words.

/// seq_search in a copy of the text, which is the caller's and stays as it is.
sb4 searchWord(const char *text, const char *const *table, sb4 type, sb4 max,
               sb4 *length) {
  char copy[kNameWidth + 1];
  const std::size_t size = strnlen(text, kNameWidth);
  std::memcpy(copy, text, size);
  copy[size] = '\0';
  return seq_search(copy, table, type, max, length);
}

sb4 scanMonthNumber(const Scanning &s) {
  return scanNumber<&TmFromChar::mm, 2, 1, 12, 1843>(s);
}

sb4 scanMonthWord(const Scanning &s) {
  sb4 length = 0;
  sb4 month = searchWord(s.text, months_full, 1, 0, &length);
  if (month < 0) month = searchWord(s.text, months, 1, 0, &length);
  if (month < 0) return fail(s.errhp, standsLast(s) ? 1858 : 1841);
  s.fields.mm = month + 1;
  return length;
}

/// Numbers and names read alike, but a name that ends a model is no number.
template <bool Name>
sb4 scanMonth(const Scanning &s) {
  if (!isDigit(*s.text)) return scanMonthWord(s);
  return Name && standsLast(s) ? fail(s.errhp, 1843) : scanMonthNumber(s);
}

template <const auto &Numerals, sb4 Type>
sb4 scanRoman(const Scanning &s) {
  sb4 length = 0;
  const sb4 index = searchWord(s.text, Numerals, Type, 0, &length);
  if (index < 0) return fail(s.errhp, 1843);
  s.fields.mm = 12 - index;
  return inFillMode(s) ? length : kRomanWidth;
}

sb4 scanDay(const Scanning &s) {
  sb4 length = 0;
  s.fields.d = searchWord(s.text, days, 1, 0, &length);
  if (s.fields.d < 0) return fail(s.errhp, 1846);
  return inFillMode(s) ? length : kNameWidth;
}

sb4 scanShortDay(const Scanning &s) {
  sb4 length = 0;
  s.fields.d = searchWord(s.text, days, 1, 3, &length);
  return s.fields.d < 0 ? fail(s.errhp, 1846) : 3;
}

/// The two words of an element; both spellings of an era mean the same.
struct Pair {
  const char *first;
  const char *second;
};
// clang-format off
constexpr Pair kDottedEra         {"A.D.", "B.C."}, kEra           {"AD", "BC"};
constexpr Pair kLowerDottedEra    {"a.d.", "b.c."}, kLowerEra      {"ad", "bc"};
constexpr Pair kDottedHalfDay     {"A.M.", "P.M."}, kHalfDay       {"AM", "PM"};
constexpr Pair kLowerDottedHalfDay{"a.m.", "p.m."}, kLowerHalfDay  {"am", "pm"};
// clang-format on

template <const Pair &Upper, const Pair &Lower>
sb4 scanEra(const Scanning &s) {
  const auto reads = [&](const char *upper, const char *lower) {
    return beginsWith(s.text, upper) || beginsWith(s.text, lower);
  };
  const bool before = reads(Upper.second, Lower.second);
  if (!before && !reads(Upper.first, Lower.first)) return fail(s.errhp, 1856);
  s.fields.bc = before;
  return static_cast<sb4>(std::strlen(Upper.first));
}

/// Whatever else stands there is stepped over.
template <const Pair &Eras>
sb4 scanLowerEra(const Scanning &s) {
  if (beginsWith(s.text, Eras.second)) s.fields.bc = 1;
  return static_cast<sb4>(std::strlen(Eras.second));
}

/// What trimming takes away: white space without the vertical tab.
bool isBlank(const char *text) {
  return text[std::strspn(text, " \t\n\f\r")] == '\0';
}

template <const Pair &HalfDays>
sb4 scanHalfDay(const Scanning &s) {
  const auto length = static_cast<sb4>(std::strlen(HalfDays.first));
  if (beginsWith(s.text, HalfDays.second)) {
    s.fields.pm = 1;
    return length;
  }
  if (beginsWith(s.text, HalfDays.first)) {
    s.fields.am = 1;
    return length;
  }
  if (!isBlank(s.text)) return fail(s.errhp, 1855);
  s.fields.am = 1;
  return 0;
}

sb4 scanPoint(const Scanning &s) {
  return s.dateKind == kOCIDate || *s.text != '.' ? fail(s.errhp, 1821) : 1;
}

// Zones.

/// An hour with minutes that may ride along behind a colon. A "-" in front holds for the
/// minutes where there are no hours.
sb4 scanZoneHourAndMinute(const Scanning &s) {
  const bool negative = *s.text == '-';
  const char *const number = s.text + negative;
  const ScannedNumber hour = scanInteger(number, kAllDigits);
  if (hour.length == 0) return fail(s.errhp, 1858);
  sb4 tzm = s.fields.tzm;
  if (number[hour.length] == ':') {
    const ScannedNumber minute = scanInteger(number + hour.length + 1, kAllDigits);
    if (minute.length > 0) tzm = minute.value;
  }
  const sb4 tzh = negative ? -hour.value : hour.value;
  if (negative && tzh == 0) tzm = -tzm;
  s.fields.tzh = tzh;
  s.fields.tzm = tzm;
  if (tzh < -12 || tzh > 14) return fail(s.errhp, 1874);
  if (tzm < -59 || tzm > 59) return fail(s.errhp, 1875);
  return static_cast<sb4>(strnlen(s.text, 6));
}

sb4 scanZoneHour(const Scanning &s) {
  if (!isLeadingDigit(s.text)) return fail(s.errhp, 1858);
  if (hasFixedWidth(s)) return scanZoneHourAndMinute(s);
  const ScannedNumber hour = scanInteger(s.text, kAllDigits);
  if (hour.length == 0) return fail(s.errhp, 1858);
  s.fields.tzh = hour.value;
  if (hour.value >= 60) return fail(s.errhp, 1852);
  // The sign belongs to the number, or a "-" would be read again as a separator.
  const sb4 sign = isDigit(*s.text) ? 0 : 1;
  return sign + strdigits_len(s.text + sign);
}

sb4 scanZoneMinute(const Scanning &s) {
  const bool fixed = hasFixedWidth(s);
  const ScannedNumber minute = scanInteger(s.text, fixed ? 2 : kAllDigits);
  if (minute.length == 0) return fail(s.errhp, 1858);
  s.fields.tzm = minute.value;
  if (minute.value < 0 || minute.value > 59) return fail(s.errhp, 1852);
  if (!fixed) return strdigits_len(s.text) + ordinalLength(s);
  return (minute.value > 9 || *s.text == '0' ? 2 : 1) + ordinalLength(s);
}

/// Hour and minute with one character between them, which is no separator: behind ":" no
/// minute is found.
sb4 scanZone(const Scanning &s) {
  const sb4 most = hasFixedWidth(s) ? 2 : kAllDigits;
  const ScannedNumber hour = scanInteger(s.text, most);
  s.fields.tzh = hour.value;
  if (hour.value < -12 || hour.value > 14) return fail(s.errhp, 1852);
  const char *at = s.text + hour.length;
  if (*at && !isSeparator(*at)) ++at;
  const ScannedNumber minute = scanInteger(at, most);
  s.fields.tzm = minute.value;
  if (minute.value > 59) return fail(s.errhp, 1852);
  return static_cast<sb4>(at - s.text) + minute.length;
}

template <sb4 (*Body)(const Scanning &)>
sb4 scanZoned(const Scanning &s) {
  return s.dateKind < kZonedDescriptor ? fail(s.errhp, 1821) : Body(s);
}

sb4 scanNoZoneName(const Scanning &s) {
  const bool refused = s.dateKind == kOCIDate || s.dateKind == kTimestampDescriptor;
  return refused ? fail(s.errhp, 1821) : 0;
}

// Elements without an effect.

sb4 refuseEra(const Scanning &s) {
  if (s.dateKind < kZonedDescriptor) return fail(s.errhp, 1822);
  return fail(s.errhp, 30475, s.node.key->name);
}
sb4 refuse(const Scanning &s) {
  return fail(s.errhp, 30475, s.node.key->name);
}

using F = TmFromChar;
// clang-format off
constexpr ElementRow<Scanning> kDateRows[] = {
    {kDottedAD,      scanEra<kDottedEra, kLowerDottedEra>},
    {kDottedBC,      scanEra<kDottedEra, kLowerDottedEra>},
    {kLowerDottedAD, scanLowerEra<kLowerDottedEra>},
    {kLowerDottedBC, scanLowerEra<kLowerDottedEra>},
    {kAD,            scanEra<kEra, kLowerEra>},
    {kBC,            scanEra<kEra, kLowerEra>},
    {kLowerAD,       scanLowerEra<kLowerEra>},
    {kLowerBC,       scanLowerEra<kLowerEra>},
    {kDAY,           scanDay},
    {kDay,           scanDay},
    {kLowerDay,      scanDay},
    {kDY,            scanShortDay},
    {kDy,            scanShortDay},
    {kLowerDy,       scanShortDay},
    {kDDD,           scanNumber<&F::ddd, 3>},
    {kDD,            scanNumber<&F::dd,  2, 1, 31, 1847>},
    {kD,             scanDayOfWeek},
    {kE,             refuseEra},
    {kEE,            refuseEra},
    {kFF,            scanFraction},
    {kYYYY,          scanYear<4, yearAsItIs,       1,  9999>},
    {kIYYY,          scanYear<4, yearAsItIs,       1,  9999>},
    {kSYYYY,         scanYear<4, yearAsItIs,       1,  9999>},
    {kYYY,           scanYear<3, yearOfMillennium, 0,  9999>},
    {kIYY,           scanYear<3, yearOfMillennium, 0,  9999>},
    {kYY,            scanYear<2, yearOfCentury,    0,  9999>},
    {kIY,            scanYear<2, yearOfCentury,    0,  9999>},
    {kY,             scanYear<1, yearOfDecade,     0,  kMostInteger>},
    {kI,             scanYear<1, yearOfDecade,     0,  kMostInteger>},
    {kYCommaYYY,     scanGroupedYear},
    {kYEAR,          refuseYear},
    {kSYEAR,         refuseYear},
    {kJ,             scanJulianDay},
    {kMM,            scanMonth<false>},
    {kMONTH,         scanMonth<true>},
    {kMonth,         scanMonth<true>},
    {kLowerMonth,    scanMonth<true>},
    {kMON,           scanMonth<true>},
    {kMon,           scanMonth<true>},
    {kLowerMon,      scanMonth<true>},
    {kRM,            scanRoman<rm_months_upper, 2>},
    {kLowerRM,       scanRoman<rm_months_lower, 3>},
    {kRRRR,          refuse},
    {kRR,            refuse},
};

constexpr ElementRow<Scanning> kTimeRows[] = {
    {kDottedAM,      scanHalfDay<kDottedHalfDay>},
    {kDottedPM,      scanHalfDay<kDottedHalfDay>},
    {kLowerDottedAM, scanHalfDay<kLowerDottedHalfDay>},
    {kLowerDottedPM, scanHalfDay<kLowerDottedHalfDay>},
    {kAM,            scanHalfDay<kHalfDay>},
    {kPM,            scanHalfDay<kHalfDay>},
    {kLowerAM,       scanHalfDay<kLowerHalfDay>},
    {kLowerPM,       scanHalfDay<kLowerHalfDay>},
    {kHH24,          scanNumber<&F::hh, 2, 0, 23, 1850>},
    {kHH12,          scanNumber<&F::hh, 2, 1, 12, 1849>},
    {kHH,            scanNumber<&F::hh, 2, 1, 12, 1849>},
    {kMI,            scanNumber<&F::mi, 2, 0, 59, 1851>},
    {kSS,            scanNumber<&F::ss, 2, 0, 59, 1852>},
    {kSSSSS,         scanSecondOfDay},
    {kMS,            scanDecimals<&F::ms, 3>},
    {kUS,            scanDecimals<&F::us, 6>},
    {kTZD,           scanNoZoneName},
    {kTZH,           scanZoned<scanZoneHour>},
    {kTZM,           scanZoned<scanZoneMinute>},
    {kTZR,           scanZoned<scanZone>},
    {kX,             scanPoint},
};
// clang-format on

constexpr ElementTable kDateScanners(kDateRows);
constexpr ElementTable kTimeScanners(kTimeRows);

}  // namespace

sb4 scanDate(const Scanning &s) {
  return kDateScanners(s);
}

sb4 scanTime(const Scanning &s) {
  return kTimeScanners(s);
}

}  // namespace zev::format
