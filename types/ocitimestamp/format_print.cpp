#include <cmath>
#include <cstring>
#include <limits>
#include <string_view>

#include "types/ocitimestamp/calendar.h"
#include "types/ocitimestamp/format_execution.h"
#include "types/ocitimestamp/format_words.h"
#include "types/ocitimestamp/text_writer.h"

namespace zev::format {
namespace {

constexpr int kNameWidth = 9;   ///< of the longest name of a day or month
constexpr int kRomanWidth = 4;  ///< of the longest numeral

sb4 written(const Printing &p, const TextWriter &out) {
  return static_cast<sb4>(out.at() - p.out);
}

sb4 printText(const Printing &p, std::string_view text) {
  TextWriter out(p.out);
  out << text;
  return written(p, out);
}

/// A width, where fill mode does not take it away.
int widthOf(const Printing &p, int width) {
  return p.suffix & kFillMode ? 0 : width;
}

/// Ends a number: with an ordinal where the model asks for one, of `type` as in
/// str_numth.
sb4 endNumber(const Printing &p, const TextWriter &out, sb4 type) {
  if (!(p.suffix & kOrdinal)) return written(p, out);
  out.end();
  str_numth(p.out, p.out, type);
  return written(p, out) + 2;
}
sb4 endNumber(const Printing &p, const TextWriter &out) {
  return endNumber(p, out, p.suffix & kUpperOrdinal ? 1 : 2);
}

/// The integer part, the nearest 64-bit integer for what does not fit.
sb8 wholePart(double value) {
  constexpr double kLimit = 0x1p63;
  if (std::isnan(value)) return 0;
  if (value >= kLimit) return std::numeric_limits<sb8>::max();
  if (value < -kLimit) return std::numeric_limits<sb8>::min();
  return static_cast<sb8>(value);
}

// Numbers of a value.

/// Years before 1 count down to 1 BC, which is the year 0.
sb8 yearOfEra(sb8 year) {
  return year < 1 ? 1 - year : year;
}
sb8 year(const TmToChar &v) {
  return yearOfEra(v.tm.tm_year);
}
sb8 isoYear(const TmToChar &v) {
  return yearOfEra(date2isoyear(v.tm.tm_year, v.tm.tm_mon, v.tm.tm_mday));
}
sb8 century(const TmToChar &v) {
  return v.tm.tm_year / 100 + 1;
}
sb8 month(const TmToChar &v) {
  return v.tm.tm_mon;
}
sb8 dayOfYear(const TmToChar &v) {
  return sb8{v.tm.tm_yday} + 1;
}
sb8 dayOfMonth(const TmToChar &v) {
  return v.tm.tm_mday;
}
sb8 dayOfWeek(const TmToChar &v) {
  return sb8{v.tm.tm_wday} + 1;
}
sb8 isoWeek(const TmToChar &v) {
  return date2isoweek(v.tm.tm_year, v.tm.tm_mon, v.tm.tm_mday);
}
sb8 weekOfYear(const TmToChar &v) {
  return (sb8{v.tm.tm_yday} - 1) / 7 + 1;
}
sb8 weekOfMonth(const TmToChar &v) {
  return (sb8{v.tm.tm_mday} - 1) / 7 + 1;
}
sb8 julianDay(const TmToChar &v) {
  return date2j(v.tm.tm_year, v.tm.tm_mon, v.tm.tm_mday);
}
sb8 hour(const TmToChar &v) {
  return v.tm.tm_hour;
}
sb8 hourOfHalfDay(const TmToChar &v) {
  return v.tm.tm_hour % 12 == 0 ? 12 : v.tm.tm_hour % 12;
}
sb8 minute(const TmToChar &v) {
  return v.tm.tm_min;
}
sb8 second(const TmToChar &v) {
  return v.tm.tm_sec;
}
sb8 secondOfDay(const TmToChar &v) {
  return (sb8{v.tm.tm_hour} * 60 + v.tm.tm_min) * 60 + v.tm.tm_sec;
}
sb8 milliseconds(const TmToChar &v) {
  return wholePart(zev::rint(1000 * v.fsec));
}
sb8 microseconds(const TmToChar &v) {
  return wholePart(zev::rint(1e6 * v.fsec));
}

using Number = sb8 (*)(const TmToChar &);

/// A number with zeros in front up to `Width`, unless fill mode is on. Most have two
/// digits and nothing around them.
template <Number Value, int Width = 0>
sb4 printNumber(const Printing &p) {
  const sb8 value = Value(p.value);
  if (Width == 2 && p.suffix == 0 && value >= 0 && value < 100) {
    p.out[0] = static_cast<char>('0' + value / 10);
    p.out[1] = static_cast<char>('0' + value % 10);
    return 2;
  }
  TextWriter out(p.out);
  out.number(value, widthOf(p, Width));
  return endNumber(p, out);
}

/// The same in any mode.
template <Number Value, int Width>
sb4 printFixed(const Printing &p) {
  TextWriter out(p.out);
  out.number(Value(p.value), Width);
  return endNumber(p, out);
}

sb4 printHour12(const Printing &p) {
  TextWriter out(p.out);
  out.number(hourOfHalfDay(p.value), widthOf(p, 2));
  return endNumber(p, out, 2);
}

/// "-" or a space before a number of a negative or other year.
template <Number Value, int Width>
sb4 printSigned(const Printing &p) {
  TextWriter out(p.out);
  out << (p.value.tm.tm_year < 0 ? '-' : ' ');
  out.number(Value(p.value), widthOf(p, Width));
  return endNumber(p, out);
}

/// The last digits of a year.
template <Number Value, int Digits>
sb4 printLastDigits(const Printing &p) {
  char text[24];
  TextWriter whole(text);
  whole.number(Value(p.value), widthOf(p, 4));
  const std::size_t length = whole.length();
  TextWriter out(p.out);
  out << std::string_view(text, length).substr(length > Digits ? length - Digits : 0);
  return endNumber(p, out);
}

sb4 printGroupedYear(const Printing &p) {
  TextWriter out(p.out);
  out.number(year(p.value) / 1000) << ',';
  out.number(year(p.value) % 1000, 3);
  return endNumber(p, out);
}

sb4 printQuarter(const Printing &p) {
  if (p.value.tm.tm_mon == 0) return -1;
  TextWriter out(p.out);
  out.number((sb8{p.value.tm.tm_mon} - 1) / 3 + 1);
  return endNumber(p, out);
}

// Words of a value.

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

template <const Pair &Eras>
sb4 printEra(const Printing &p) {
  return printText(p, p.value.tm.tm_year < 1 ? Eras.second : Eras.first);
}

template <const Pair &HalfDays>
sb4 printHalfDay(const Printing &p) {
  return printText(p, p.value.tm.tm_hour % 24 < 12 ? HalfDays.first : HalfDays.second);
}

enum class Letters { kCapitals, kAsIs, kFirstLower };

/// `name` with spaces behind up to `width`; `error` for a value that has no name.
template <Letters Form>
sb4 printName(const Printing &p, const char *name, int width, sb4 error) {
  if (!name) return fail(p.errhp, error);
  char *out = p.out;
  for (const char *c = name; *c; ++c)
    *out++ = Form == Letters::kCapitals ? toUpper(*c) : *c;
  if (Form == Letters::kFirstLower) *p.out = toLower(*p.out);
  while (out - p.out < width) *out++ = ' ';
  return static_cast<sb4>(out - p.out);
}

int nameWidth(const Printing &p) {
  return p.suffix & (kFillMode | kTranslated) ? 0 : kNameWidth;
}

template <Letters Form>
sb4 printDay(const Printing &p) {
  return printName<Form>(p, localize_day(p.value.tm.tm_wday), nameWidth(p), 1846);
}
template <Letters Form>
sb4 printShortDay(const Printing &p) {
  const sb4 day = p.value.tm.tm_wday;
  const char *name = localize_day(day) ? days_short[day] : nullptr;
  return printName<Form>(p, name, 0, 1846);
}
/// Where a month's names stand, -1 for a number that is none.
sb4 monthIndex(const Printing &p) {
  const sb4 month = p.value.tm.tm_mon;
  return month >= 1 && month <= 12 ? month - 1 : -1;
}

template <Letters Form>
sb4 printMonth(const Printing &p) {
  return printName<Form>(p, localize_month_full(monthIndex(p)), nameWidth(p), 1843);
}
template <Letters Form>
sb4 printShortMonth(const Printing &p) {
  return printName<Form>(p, localize_month(monthIndex(p)), 0, 1843);
}

template <const auto &Numerals>
sb4 printRoman(const Printing &p) {
  const sb4 index = monthIndex(p);
  const char *numeral = index >= 0 ? Numerals[11 - index] : nullptr;
  return printName<Letters::kAsIs>(p, numeral, widthOf(p, kRomanWidth), 1843);
}

/// Spells a magnitude; the number of thousands in digits where there is no word for it.
void spell(TextWriter &out, sb8 magnitude) {
  const char *const start = out.at();
  const auto word = [&](std::string_view text) {
    if (out.at() != start) out << ' ';
    out << text;
  };
  if (magnitude >= 10000) {
    out.number(magnitude / 1000) << " THOUSAND";
  } else if (magnitude >= 1000) {
    out << word_digit[magnitude / 1000] << " THOUSAND";
  }
  if (magnitude %= 1000; magnitude >= 100) {
    word(word_digit[magnitude / 100]);
    out << " HUNDRED";
  }
  if (magnitude %= 100; magnitude >= 10) word(word_10digit[magnitude / 10]);
  if (magnitude %= 10; magnitude != 0) word(word_digit[magnitude]);
}

template <bool Signed>
sb4 printSpelledYear(const Printing &p) {
  const sb8 year = p.value.tm.tm_year;
  TextWriter out(p.out);
  if (Signed) out << (year < 0 ? '-' : ' ');
  spell(out, year < 0 ? -year : year);
  return written(p, out);
}

// Fractions and zones.

/// The head of a field of 16 digits, in which the fraction's thousands stand at the
/// right.
sb4 printFraction(const Printing &p) {
  if (p.dateKind == kOCIDate) return fail(p.errhp, 1822);
  if (p.dateKind == kDateDescriptor) return fail(p.errhp, 1821);
  char field[24];
  TextWriter digits(field);
  digits.number(wholePart(std::trunc(p.value.fsec / 1000.0)), 16);
  const sb4 count = p.node.character ? p.node.character - '0' : 16;
  return printText(p, {field, static_cast<std::size_t>(count)});
}

sb4 printPoint(const Printing &p) {
  return p.dateKind == kOCIDate ? fail(p.errhp, 1821) : printText(p, ".");
}

template <sb4 (*Body)(const Printing &)>
sb4 printZoned(const Printing &p) {
  return p.dateKind < kZonedDescriptor ? fail(p.errhp, 1821) : Body(p);
}

void putZoneHour(TextWriter &out, const TmToChar &value) {
  out << (value.tzHour < 0 ? '-' : '+');
  out.number(value.tzHour < 0 ? -value.tzHour : value.tzHour, 2);
}
sb4 printZoneHour(const Printing &p) {
  TextWriter out(p.out);
  putZoneHour(out, p.value);
  return written(p, out);
}
sb4 printZoneMinute(const Printing &p) {
  TextWriter out(p.out);
  out.number(p.value.tzMinute, 2);
  return written(p, out);
}
sb4 printZone(const Printing &p) {
  TextWriter out(p.out);
  putZoneHour(out, p.value);
  out << ':';
  out.number(p.value.tzMinute, 2);
  return written(p, out);
}

sb4 printNoZoneName(const Printing &p) {
  const bool refused = p.dateKind == kOCIDate || p.dateKind == kTimestampDescriptor;
  return refused ? fail(p.errhp, 1821) : 0;
}

// Elements without an effect.

sb4 refuseEra(const Printing &p) {
  if (p.dateKind < kZonedDescriptor) return fail(p.errhp, 1822);
  return fail(p.errhp, 30475, p.node.key->name);
}
sb4 refuse(const Printing &p) {
  return fail(p.errhp, 30475, p.node.key->name);
}

// clang-format off
constexpr ElementRow<Printing> kDateRows[] = {
    {kDottedAD,      printEra<kDottedEra>},
    {kDottedBC,      printEra<kDottedEra>},
    {kLowerDottedAD, printEra<kLowerDottedEra>},
    {kLowerDottedBC, printEra<kLowerDottedEra>},
    {kAD,            printEra<kEra>},
    {kBC,            printEra<kEra>},
    {kLowerAD,       printEra<kLowerEra>},
    {kLowerBC,       printEra<kLowerEra>},
    {kCC,            printNumber<century>},
    {kSCC,           printSigned<century, 0>},
    {kDAY,           printDay<Letters::kCapitals>},
    {kDay,           printDay<Letters::kAsIs>},
    {kLowerDay,      printDay<Letters::kFirstLower>},
    {kDY,            printShortDay<Letters::kCapitals>},
    {kDy,            printShortDay<Letters::kAsIs>},
    {kLowerDy,       printShortDay<Letters::kFirstLower>},
    {kDDD,           printNumber<dayOfYear, 3>},
    {kDD,            printNumber<dayOfMonth, 2>},
    {kD,             printNumber<dayOfWeek>},
    {kE,             refuseEra},
    {kEE,            refuseEra},
    {kFF,            printFraction},
    {kIW,            printNumber<isoWeek, 2>},
    {kIYYY,          printNumber<isoYear, 4>},
    {kSYYYY,         printSigned<isoYear, 4>},
    {kYYYY,          printNumber<year, 4>},
    {kIYY,           printLastDigits<isoYear, 3>},
    {kYYY,           printLastDigits<year, 3>},
    {kIY,            printLastDigits<isoYear, 2>},
    {kYY,            printLastDigits<year, 2>},
    {kI,             printLastDigits<isoYear, 1>},
    {kY,             printLastDigits<year, 1>},
    {kYCommaYYY,     printGroupedYear},
    {kJ,             printNumber<julianDay>},
    {kMM,            printNumber<month, 2>},
    {kMONTH,         printMonth<Letters::kCapitals>},
    {kMonth,         printMonth<Letters::kAsIs>},
    {kLowerMonth,    printMonth<Letters::kFirstLower>},
    {kMON,           printShortMonth<Letters::kCapitals>},
    {kMon,           printShortMonth<Letters::kAsIs>},
    {kLowerMon,      printShortMonth<Letters::kFirstLower>},
    {kQ,             printQuarter},
    {kRM,            printRoman<rm_months_upper>},
    {kLowerRM,       printRoman<rm_months_lower>},
    {kRRRR,          refuse},
    {kRR,            refuse},
    {kSYEAR,         printSpelledYear<true>},
    {kYEAR,          printSpelledYear<false>},
    {kWW,            printNumber<weekOfYear, 2>},
    {kW,             printNumber<weekOfMonth>},
};

constexpr ElementRow<Printing> kTimeRows[] = {
    {kDottedAM,      printHalfDay<kDottedHalfDay>},
    {kDottedPM,      printHalfDay<kDottedHalfDay>},
    {kLowerDottedAM, printHalfDay<kLowerDottedHalfDay>},
    {kLowerDottedPM, printHalfDay<kLowerDottedHalfDay>},
    {kAM,            printHalfDay<kHalfDay>},
    {kPM,            printHalfDay<kHalfDay>},
    {kLowerAM,       printHalfDay<kLowerHalfDay>},
    {kLowerPM,       printHalfDay<kLowerHalfDay>},
    {kHH24,          printNumber<hour, 2>},
    {kHH12,          printHour12},
    {kHH,            printHour12},
    {kMI,            printNumber<minute, 2>},
    {kSS,            printNumber<second, 2>},
    {kSSSSS,         printNumber<secondOfDay>},
    {kMS,            printFixed<milliseconds, 3>},
    {kUS,            printFixed<microseconds, 6>},
    {kTZD,           printNoZoneName},
    {kTZH,           printZoned<printZoneHour>},
    {kTZM,           printZoned<printZoneMinute>},
    {kTZR,           printZoned<printZone>},
    {kX,             printPoint},
};
// clang-format on

constexpr ElementTable kDatePrinters(kDateRows);
constexpr ElementTable kTimePrinters(kTimeRows);

}  // namespace

sb4 printDate(const Printing &p) {
  return kDatePrinters(p);
}

sb4 printTime(const Printing &p) {
  return kTimePrinters(p);
}

}  // namespace zev::format
