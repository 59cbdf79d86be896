#include <cmath>
#include <cstring>
#include <limits>

#include "types/number_text.h"
#include "types/ocitimestamp/decode_datetime.h"

namespace {

using namespace zev;

constexpr sb4 kMonthsPerYear = 12;
constexpr double kDaysPerMonth = 30;

/// The fields of an interval while they grow; they may pass 32 bits until the end.
struct Sums {
  sb8 year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  double fsec = 0;

  /// A fraction of `scale` seconds.
  void AdjustFractSeconds(double fraction, double scale) {
    if (fraction == 0) return;
    fraction *= scale;
    const double whole = std::trunc(fraction);
    second += static_cast<sb8>(whole);
    fsec += fraction - whole;
  }
  /// A fraction of `scale` days.
  void AdjustFractDays(double fraction, double scale) {
    if (fraction == 0) return;
    fraction *= scale;
    const double whole = std::trunc(fraction);
    day += static_cast<sb8>(whole);
    AdjustFractSeconds(fraction - whole, kSecondsPerDay);
  }
  void addYears(double value, double fraction, sb8 scale) {
    year += static_cast<sb8>(value) * scale;
    const double rest = fraction * static_cast<double>(scale);
    if (scale == 1) {
      month += static_cast<sb8>(rest * kMonthsPerYear);
    } else {
      year += static_cast<sb8>(rest);
    }
  }
  void negate() {
    for (sb8 *field : {&year, &month, &day, &hour, &minute, &second}) *field = -*field;
    fsec = -fsec;
  }
  void add(const PGtm &time, double fraction, bool isNegative) {
    const sb8 sign = isNegative ? -1 : 1;
    hour += sign * time.tm_hour;
    minute += sign * time.tm_min;
    second += sign * time.tm_sec;
    fsec += static_cast<double>(sign) * fraction;
  }

  /// Stores the fields; -2 when one passes 32 bits.
  sb4 store(PGtm &tm, double &fraction) const {
    const struct {
      sb8 value;
      sb4 &field;
    } all[] = {{year, tm.tm_year}, {month, tm.tm_mon},  {day, tm.tm_mday},
               {hour, tm.tm_hour}, {minute, tm.tm_min}, {second, tm.tm_sec}};
    for (const auto &[value, field] : all) {
      if (value < std::numeric_limits<sb4>::min() ||
          value > std::numeric_limits<sb4>::max())
        return kFieldOverflow;
      field = static_cast<sb4>(value);
    }
    fraction = fsec;
    return kDecoded;
  }
};

/// A number of an interval's field.
struct Quantity {
  sb8 whole;
  double fraction;
};

/// What a unit does to the sums, and the bit by which it is seen to come twice.
struct Unit {
  sb4 value;
  ub8 bit;
  void (*add)(Sums &, const Quantity &);
};

template <int Scale>
void addYears(Sums &sums, const Quantity &q) {
  sums.addYears(static_cast<double>(q.whole), q.fraction, Scale);
}

constexpr ub8 bitOf(sb4 unit) {
  return ub8{1} << unit;
}

// clang-format off
constexpr Unit kUnits[] = {
    {kMicrosecondUnit, bitOf(kMicrosecondUnit), [](Sums &s, const Quantity &q) {
       s.second += q.whole / 1000000;
       s.fsec += zev::rint(static_cast<double>(q.whole % 1000000) + q.fraction) * 1e-6;
     }},
    {kMillisecondUnit, bitOf(kMillisecondUnit), [](Sums &s, const Quantity &q) {
       s.second += q.whole / 1000;
       s.fsec += (static_cast<double>(q.whole % 1000) + q.fraction) * 1e-3;
     }},
    {kSecondUnit,     bitOf(kSecondUnit),     [](Sums &s, const Quantity &q) { s.second += q.whole;  s.fsec += q.fraction; }},
    {kMinuteUnit,     bitOf(kMinuteUnit),     [](Sums &s, const Quantity &q) { s.minute += q.whole;  s.AdjustFractSeconds(q.fraction, 60); }},
    {kHourUnit,       bitOf(kHourUnit),       [](Sums &s, const Quantity &q) { s.hour += q.whole;    s.AdjustFractSeconds(q.fraction, 3600); }},
    {kDayUnit,        bitOf(kDayUnit),        [](Sums &s, const Quantity &q) { s.day += q.whole;     s.AdjustFractSeconds(q.fraction, kSecondsPerDay); }},
    {kWeekUnit,       bitOf(kWeekUnit),       [](Sums &s, const Quantity &q) { s.day += q.whole * 7; s.AdjustFractDays(q.fraction, 7); }},
    {kMonthUnit,      bitOf(kMonthUnit),      [](Sums &s, const Quantity &q) { s.month += q.whole;   s.AdjustFractDays(q.fraction, kDaysPerMonth); }},
    {kYearUnit,       bitOf(kYearUnit),       addYears<1>},
    {kDecadeUnit,     bitOf(kDecadeUnit),     addYears<10>},
    {kCenturyUnit,    bitOf(kCenturyUnit),    addYears<100>},
    {kMillenniumUnit, bitOf(kMillenniumUnit), addYears<1000>},
};
// clang-format on

constexpr ub8 kTimeSeen = bitOf(kHourUnit) | bitOf(kMinuteUnit) | bitOf(kSecondUnit);

const Unit *findUnit(sb4 value) {
  for (const Unit &unit : kUnits) {
    if (unit.value == value) return &unit;
  }
  return nullptr;
}

/// The unit of a last number that has none, by the smallest field of the range.
sb4 unitOfRange(sb4 range) {
  if (range == kWholeRange || (range & kSecondBit)) return kSecondUnit;
  if (range & kMinuteBit) return kMinuteUnit;
  if (range & kHourBit) return kHourUnit;
  if (range & kDayBit) return kDayUnit;
  if (range & kMonthBit) return kMonthUnit;
  if (range & kYearBit) return kYearUnit;
  return kSecondUnit;
}

bool isBeyond32Bits(sb8 value) {
  return value < std::numeric_limits<sb4>::min() ||
         value > std::numeric_limits<sb4>::max();
}

/// The walk over the fields of one interval, from the last to the first.
class Walk {
 public:
  Walk(OCIError *errhp, char **fields, const sb4 *types, sb4 range, sb4 *dtype)
      : errhp_(errhp), fields_(fields), types_(types), range_(range), dtype_(dtype) {
    *dtype_ = kInterval;
  }

  sb4 run(sb4 count, PGtm &tm, double &fsec) {
    for (sb4 i = count - 1; i >= 0; --i) {
      found_ = 0;
      if (const sb4 status = take(i); status != kDecoded) return status;
      if (seen_ & found_) return kBadFormat;
      seen_ |= found_;
    }
    if (seen_ == 0) return kBadFormat;
    const double whole = std::trunc(sums_.fsec);
    sums_.second += static_cast<sb8>(whole);
    sums_.fsec -= whole;
    if (isAgo_) sums_.negate();
    return sums_.store(tm, fsec);
  }

 private:
  sb4 take(sb4 i) {
    const char *text = fields_[i];
    switch (types_[i]) {
      case kTimeField:
        return takeTime(text, false);
      case kZoneField:
        if (std::strchr(text, ':')) return takeTime(text + 1, *text == '-');
        return takeNumber(text);
      case kDateField:
      case kNumberField:
        return takeNumber(text);
      case kStringField:
      case kSpecialField:
        return takeWord(i, text);
      default:
        return kBadFormat;
    }
  }

  sb4 takeTime(const char *text, bool isNegative) {
    PGtm time{};
    sb4 bits = 0;
    double fraction = 0;
    if (DecodeTime(errhp_, text, &bits, &time, &fraction) != kDecoded) return kBadFormat;
    sums_.add(time, fraction, isNegative);
    found_ = kTimeSeen;
    unit_ = kDayUnit;
    return kDecoded;
  }

  sb4 takeNumber(const char *text) {
    const bool isNegative = *text == '-';
    const auto number = parseLong(text);
    if (number.outOfRange || isBeyond32Bits(number.value)) return kFieldOverflow;
    Quantity quantity{number.value, 0};
    if (unit_ == 0) unit_ = unitOfRange(range_);
    if (*number.end == '-') {
      if (const sb4 status = addMonths(number.end + 1, isNegative, quantity);
          status != kDecoded)
        return status;
      unit_ = kMonthUnit;
    } else if (*number.end == '.') {
      const auto fraction = parseDouble(number.end);
      if (*fraction.end != '\0') return kBadFormat;
      quantity.fraction = isNegative ? -fraction.value : fraction.value;
    } else if (*number.end != '\0' || number.end == text) {
      return kBadFormat;
    }
    const Unit *unit = findUnit(unit_);
    if (!unit) return kBadFormat;
    unit->add(sums_, quantity);
    found_ = unit->bit;
    if (unit_ == kHourUnit) unit_ = kDayUnit;
    return kDecoded;
  }

  /// The months of "years-months".
  static sb4 addMonths(const char *text, bool isNegative, Quantity &quantity) {
    const auto months = parseLong(text);
    if (months.outOfRange || months.value < 0 || months.value >= kMonthsPerYear)
      return kFieldOverflow;
    if (*months.end != '\0') return kBadFormat;
    quantity.whole =
        quantity.whole * kMonthsPerYear + (isNegative ? -months.value : months.value);
    return isBeyond32Bits(quantity.whole) ? kFieldOverflow : kDecoded;
  }

  sb4 takeWord(sb4 i, const char *text) {
    sb4 value = 0;
    switch (DecodeUnits(i, text, &value)) {
      case kIgnored:
        return kDecoded;
      case kUnit:
        unit_ = value;
        return kDecoded;
      case kAgo:
        isAgo_ = true;
        unit_ = value;
        return kDecoded;
      case kReserved:
        *dtype_ = value;
        found_ = kTimeSeen | bitOf(kDayUnit) | bitOf(kMonthUnit) | bitOf(kYearUnit);
        return kDecoded;
      default:
        return kBadFormat;
    }
  }

  OCIError *errhp_;
  char **fields_;
  const sb4 *types_;
  sb4 range_;
  sb4 *dtype_;
  Sums sums_;
  ub8 seen_ = 0;
  ub8 found_ = 0;
  sb4 unit_ = 0;  ///< of the next number to the left; 0 for none
  bool isAgo_ = false;
};

/// Reads "P" and what follows.
class IsoReader {
 public:
  explicit IsoReader(const char *text) : at_(text) {}

  sb4 run(PGtm &tm, double &fsec) {
    if (*at_ != 'P' || at_[1] == '\0') return kBadFormat;
    ++at_;
    bool isDate = true, hasField = false;
    while (*at_) {
      if (*at_ == 'T') {
        if (!isDate) return kBadFormat;
        isDate = hasField = false;
        ++at_;
        continue;
      }
      Quantity quantity{};
      if (const sb4 status = number(quantity); status != kDecoded) return status;
      const char designator = *at_;
      if (designator == (isDate ? '-' : ':')) {
        if (hasField) return kBadFormat;
        if (const sb4 status = group(quantity, isDate); status != kDecoded) return status;
        if (*at_ != '\0' && !(isDate && *at_ == 'T')) return kBadFormat;
        continue;
      }
      const sb4 unit = unitOf(designator, isDate);
      if (unit == 0) return kBadFormat;
      findUnit(unit)->add(sums_, quantity);
      ++at_;
      hasField = true;
    }
    const double whole = std::trunc(sums_.fsec);
    sums_.second += static_cast<sb8>(whole);
    sums_.fsec -= whole;
    return sums_.store(tm, fsec);
  }

 private:
  static sb4 unitOf(char designator, bool isDate) {
    switch (designator) {
      case 'Y':
        return isDate ? kYearUnit : 0;
      case 'M':
        return isDate ? kMonthUnit : kMinuteUnit;
      case 'W':
        return isDate ? kWeekUnit : 0;
      case 'D':
        return isDate ? kDayUnit : 0;
      case 'H':
        return isDate ? 0 : kHourUnit;
      case 'S':
        return isDate ? 0 : kSecondUnit;
      default:
        return 0;
    }
  }

  sb4 number(Quantity &quantity) {
    sb4 whole = 0;
    const sb4 status = ParseISO8601Number(at_, &at_, &whole, &quantity.fraction);
    quantity.whole = whole;
    return status;
  }

  /// "Y-M-D" or "H:M:S", of which the first number has been read; the others may be
  /// missing from the right.
  sb4 group(Quantity quantity, bool isDate) {
    const sb4 units[] = {isDate ? kYearUnit : kHourUnit,
                         isDate ? kMonthUnit : kMinuteUnit,
                         isDate ? kDayUnit : kSecondUnit};
    const char separator = isDate ? '-' : ':';
    for (int i = 0;; ++i) {
      findUnit(units[i])->add(sums_, quantity);
      if (i == 2 || *at_ != separator) return kDecoded;
      ++at_;
      if (const sb4 status = number(quantity); status != kDecoded) return status;
    }
  }

  const char *at_;
  Sums sums_;
};

}  // namespace

extern "C" {

sb4 DecodeInterval(OCIError *errhp, char **fields, sb4 *types, sb4 count, sb4 range,
                   sb4 *dtype, PGtm *tm, double *fsec) {
  *tm = {};
  *fsec = 0;
  return Walk(errhp, fields, types, range, dtype).run(count, *tm, *fsec);
}

sb4 DecodeISO8601Interval(const char *text, sb4 *dtype, PGtm *tm, double *fsec) {
  *dtype = kInterval;
  *tm = {};
  *fsec = 0;
  return IsoReader(text).run(*tm, *fsec);
}

sb4 ParseISO8601Number(const char *text, const char **end, sb4 *whole, double *fraction) {
  *end = text;
  if (!isDigit(*text) && *text != '-' && *text != '.') return kBadFormat;
  const auto number = parseDouble(text);
  if (number.end == text || number.outOfRange) return kBadFormat;
  if (!(number.value >= std::numeric_limits<sb4>::min() &&
        number.value <= std::numeric_limits<sb4>::max()))
    return kFieldOverflow;
  *end = number.end;
  *whole = static_cast<sb4>(number.value);
  *fraction = number.value - *whole;
  return kDecoded;
}

}  // extern "C"
