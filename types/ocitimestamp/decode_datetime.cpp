#include "types/ocitimestamp/decode_datetime.h"

#include <cstring>
#include <limits>
#include <string>

#include "types/number_text.h"
#include "types/ocitimestamp/zone.h"
#include "zevoci/errors.h"

namespace {

using namespace zev;

/// Oracle numbers of what is wrong with a text.
constexpr sb4 kStructure = 1830;
constexpr sb4 kDate = 1839;
constexpr sb4 kHour = 1849;
constexpr sb4 kNumber = 1858;
constexpr sb4 kOther = 1891;
constexpr sb4 kNothing = 0;
/// The record of the fault stands already.
constexpr sb4 kRecorded = -1;

enum class HalfDay { None, Am, Pm };

/// The walk over the fields of one text.
class Walk {
 public:
  Walk(OCIError *errhp, char **fields, sb4 *types, sb4 count, sb4 *dtype, PGtm *tm,
       double *fsec, sb4 *tz, bool dayFirst)
      : errhp_(errhp),
        fields_(fields),
        types_(types),
        count_(count),
        dtype_(dtype),
        tm_(tm),
        fsec_(fsec),
        tz_(tz),
        dayFirst_(dayFirst) {
    *dtype_ = kPlainDate;
    *tm_ = {};
    tm_->tm_isdst = -1;
    *fsec_ = 0;
    if (tz_) *tz_ = 0;
  }

  sb4 run() {
    for (sb4 i = 0; i < count_; ++i) {
      found_ = 0;
      if (const sb4 fault = take(i); fault != kNothing) return fail(fault);
      if (mask_ & found_) return fail(kStructure);
      mask_ |= found_;
    }
    return finish();
  }

 private:
  bool hasDate() const { return (mask_ & kDateBits) == kDateBits; }
  bool hasTime() const { return (mask_ & kTimeBits) == kTimeBits; }

  sb4 fail(sb4 fault) const {
    if (fault != kRecorded) AddErrorRecord(errhp_, OCI_ERROR, fault);
    return -1;
  }

  sb4 take(sb4 i) {
    char *text = fields_[i];
    switch (types_[i]) {
      case kDateField:
        return takeDate(i, text);
      case kTimeField:
        return takeTime(text);
      case kZoneField:
        return takeZone(i, text);
      case kNumberField:
        return pending_ ? takeUnit(text) : takeNumber(text);
      case kStringField:
      case kSpecialField:
        return takeWord(i, text);
      default:
        return kStructure;
    }
  }

  // --- Dates ---

  sb4 takeDate(sb4 i, char *text) {
    if (pending_ == kJulianUnit) return takeJulianWithZone(text);
    if (!hasDate() && !pending_) {
      return DecodeDate(text, mask_, &found_, tm_, &isTwoDigits_) == 0 ? kNothing : kDate;
    }
    return isDigit(*text) || pending_ ? takeTimeWithZone(text) : takePosixZone(i, text);
  }

  sb4 takeJulianWithZone(const char *text) {
    pending_ = 0;
    const auto day = parseLong(text);
    if (!tz_ || day.end == text || !isJulianDay(day.value)) return kOther;
    j2date(static_cast<sb4>(day.value), &tm_->tm_year, &tm_->tm_mon, &tm_->tm_mday);
    if (DecodeTimezone(day.end, tz_) != kDecoded) return kOther;
    tm_->tm_gmtoff = -*tz_;
    found_ = kDateBits | kTimeBits | kZoneBit;
    return kNothing;
  }

  /// "040506-08": a time of digits with its zone.
  sb4 takeTimeWithZone(char *text) {
    if (pending_ && pending_ != kIsoTimeMark) return kOther;
    pending_ = 0;
    char *const zone = std::strchr(text, '-');
    if (!tz_ || !zone || hasTime()) return kOther;
    if (DecodeTimezone(zone, tz_) != kDecoded) return kOther;
    *zone = '\0';
    if (DecodeNumberField(static_cast<sb4>(zone - text), text, mask_ | kDateBits, &found_,
                          tm_, fsec_, &isTwoDigits_) != 0)
      return kOther;
    tm_->tm_gmtoff = -*tz_;
    found_ |= kZoneBit;
    return kNothing;
  }

  sb4 takePosixZone(sb4 i, char *text) {
    if (!tz_ || DecodePosixTimezone(text, tz_) != kDecoded) return kOther;
    tm_->tm_gmtoff = -*tz_;
    types_[i] = kZoneField;
    found_ = kZoneBit;
    return kNothing;
  }

  // --- Times and zones ---

  sb4 takeTime(const char *text) {
    if (pending_ == kIsoTimeMark) pending_ = 0;
    const sb4 status = DecodeTime(errhp_, text, &found_, tm_, fsec_);
    if (status == kFieldOverflow) return kRecorded;
    return status == kDecoded && isHourOfDay() ? kNothing : kOther;
  }

  bool isHourOfDay() const {
    if (tm_->tm_hour < 24) return true;
    return tm_->tm_hour == 24 && tm_->tm_min == 0 && tm_->tm_sec == 0 && *fsec_ == 0;
  }

  sb4 takeZone(sb4 i, const char *text) {
    sb4 west = 0;
    if (!tz_ || DecodeTimezone(text, &west) != kDecoded) return kOther;
    const bool followsWord = i > 0 && (mask_ & kZoneBit) && types_[i - 1] == kZoneField &&
                             isLetter(*fields_[i - 1]);
    *tz_ = followsWord ? *tz_ - west : west;
    tm_->tm_gmtoff = -*tz_;
    if (!followsWord) found_ = kZoneBit;
    return kNothing;
  }

  // --- Numbers ---

  sb4 takeNumber(char *text) {
    const auto length = static_cast<sb4>(std::strlen(text));
    const char *point = std::strchr(text, '.');
    sb4 status = -1;
    if (point && (mask_ & kDateBits) == 0) {
      status = DecodeDate(text, mask_, &found_, tm_, &isTwoDigits_);
    } else if ((point && point - text > 2) || length > 4) {
      status = DecodeNumberField(length, text, mask_, &found_, tm_, fsec_, &isTwoDigits_);
    } else {
      status = DecodeNumber(length, text, mask_, &found_, tm_, fsec_, &isTwoDigits_,
                            dayFirst_ || hasMonthName_);
    }
    return status == 0 ? kNothing : kNumber;
  }

  /// A number whose unit stood before it.
  sb4 takeUnit(char *text) {
    const sb4 unit = pending_;
    pending_ = 0;
    const auto number = parseLong(text);
    const bool takesFraction =
        unit == kSecondUnit || unit == kJulianUnit || unit == kIsoTimeMark;
    if (*number.end != '\0' && !(*number.end == '.' && takesFraction)) return kNumber;
    if (number.outOfRange || number.value > kLargest || number.value < -kLargest)
      return kNumber;
    const auto value = static_cast<sb4>(number.value);
    switch (unit) {
      case kSecondUnit:
        if (*number.end == '.') *fsec_ = parseDouble(number.end).value;
        return set(tm_->tm_sec, value, kSecondBit);
      case kMinuteUnit:
        return set(tm_->tm_min, value, kMinuteBit);
      case kHourUnit:
        return set(tm_->tm_hour, value, kHourBit);
      case kDayUnit:
        return set(tm_->tm_mday, value, kDayBit);
      case kMonthUnit:
        if ((mask_ & kMonthBit) && (mask_ & kHourBit))
          return set(tm_->tm_min, value, kMinuteBit);
        return set(tm_->tm_mon, value, kMonthBit);
      case kYearUnit:
        return set(tm_->tm_year, value, kYearBit);
      case kJulianUnit:
        return takeJulian(value, number.end);
      case kIsoTimeMark: {
        const sb4 status =
            DecodeNumberField(static_cast<sb4>(std::strlen(text)), text,
                              mask_ | kDateBits, &found_, tm_, fsec_, &isTwoDigits_);
        return status == 0 ? kNothing : kNumber;
      }
      case kZoneUnit:
        if (!tz_ || DecodeTimezone(text, tz_) != kDecoded) return kNumber;
        found_ = kZoneBit;
        return kNothing;
      default:
        return kNumber;
    }
  }

  sb4 set(sb4 &field, sb4 value, sb4 bit) {
    field = value;
    found_ = bit;
    return kNothing;
  }

  static bool isJulianDay(long day) {
    return day >= 0 && day <= std::numeric_limits<sb4>::max();
  }

  sb4 takeJulian(sb4 day, const char *rest) {
    if (!isJulianDay(day)) return kNumber;
    j2date(day, &tm_->tm_year, &tm_->tm_mon, &tm_->tm_mday);
    found_ = kDateBits;
    if (*rest == '\0') return kNothing;
    dt2time(parseDouble(rest).value * kSecondsPerDay, &tm_->tm_hour, &tm_->tm_min,
            &tm_->tm_sec, fsec_);
    found_ |= kTimeBits;
    return kNothing;
  }

  // --- Words ---

  sb4 takeWord(sb4 i, const char *text) {
    sb4 value = 0;
    const sb4 type = DecodeSpecial(i, text, &value);
    switch (type) {
      case kIgnored:
        return kNothing;
      case kReserved:
        takeReserved(value);
        return kNothing;
      case kMonth:
        return takeMonth(value);
      case kZone:
      case kDaylightZone:
      case kDst:
        return takeZoneWord(i, type, value);
      case kAmPm:
        halfDay_ = value ? HalfDay::Pm : HalfDay::Am;
        break;
      case kAdBc:
        isBc_ = value != 0;
        break;
      case kWeekday:
        tm_->tm_wday = value;
        break;
      case kUnit:
        pending_ = value;
        return kNothing;
      case kIsoTime:
        pending_ = kIsoTimeMark;
        return kNothing;
      default:
        return kOther;
    }
    found_ = 1 << type;
    return kNothing;
  }

  void takeReserved(sb4 value) {
    switch (value) {
      case kNow:
        GetCurrentDateTime(tm_);
        if (tz_) *tz_ = static_cast<sb4>(-tm_->tm_gmtoff);
        found_ = kDateBits | kTimeBits | kZoneBit;
        break;
      case kYesterday:
      case kToday:
      case kTomorrow:
        GetCurrentDateTime(tm_);
        j2date(date2j(tm_->tm_year, tm_->tm_mon, tm_->tm_mday) + value - kToday,
               &tm_->tm_year, &tm_->tm_mon, &tm_->tm_mday);
        tm_->tm_hour = tm_->tm_min = tm_->tm_sec = 0;
        found_ = kDateBits;
        break;
      case kAllballs:
        tm_->tm_hour = tm_->tm_min = tm_->tm_sec = 0;
        if (tz_) *tz_ = 0;
        found_ = kTimeBits | kZoneBit;
        break;
      default:
        *dtype_ = value;
        return;
    }
    *dtype_ = kPlainDate;
  }

  /// A month by its name; what was taken for the month is the day then.
  sb4 takeMonth(sb4 value) {
    const bool wasDay = (mask_ & kMonthBit) && !hasMonthName_ && !(mask_ & kDayBit) &&
                        tm_->tm_mon >= 1 && tm_->tm_mon <= 31;
    if (wasDay) tm_->tm_mday = tm_->tm_mon;
    tm_->tm_mon = value;
    hasMonthName_ = true;
    found_ = wasDay ? kDayBit : kMonthBit;
    return kNothing;
  }

  sb4 takeZoneWord(sb4 i, sb4 type, sb4 minutesWest) {
    if (!tz_) return kOther;
    if (type == kDst) {
      *tz_ += minutesWest * 60;
    } else {
      *tz_ = minutesWest * 60;
      types_[i] = kZoneField;
    }
    tm_->tm_isdst = type != kZone;
    found_ = 1 << type;
    if (type == kDaylightZone) found_ |= kZoneBit;
    if (type == kDst) found_ |= 1 << kDaylightZone;
    return kNothing;
  }

  // --- The end ---

  sb4 finish() {
    if (isBc_) {
      if (tm_->tm_year < 1) return fail(kDate);
      tm_->tm_year = 1 - tm_->tm_year;
    } else if (isTwoDigits_) {
      if (tm_->tm_year < 70) {
        tm_->tm_year += 2000;
      } else if (tm_->tm_year < 100) {
        tm_->tm_year += 1900;
      }
    }
    if (halfDay_ != HalfDay::None && tm_->tm_hour > 12) return fail(kHour);
    if (halfDay_ == HalfDay::Am && tm_->tm_hour == 12) tm_->tm_hour = 0;
    if (halfDay_ == HalfDay::Pm && tm_->tm_hour != 12) tm_->tm_hour += 12;
    if (*dtype_ != kPlainDate) return kDecoded;
    if (!hasDate()) return hasTime() ? kTimeAlone : fail(kOther);
    if (!isDayOfMonth()) return fail(kOther);
    if (tz_ && !(mask_ & kZoneBit)) *tz_ = DetermineLocalTimeZone(tm_);
    return kDecoded;
  }

  bool isDayOfMonth() const {
    if (tm_->tm_mon < 1 || tm_->tm_mon > 12 || tm_->tm_mday < 1) return false;
    return tm_->tm_mday <= day_tab[isLeap(tm_->tm_year)][tm_->tm_mon - 1];
  }

  /// Pending like a unit: the next field is a time in the form of ISO 8601.
  static constexpr sb4 kIsoTimeMark = 3;
  static constexpr long kLargest = std::numeric_limits<sb4>::max();

  OCIError *errhp_;
  char **fields_;
  sb4 *types_;
  sb4 count_;
  sb4 *dtype_;
  PGtm *tm_;
  double *fsec_;
  sb4 *tz_;
  bool dayFirst_;
  sb4 mask_ = 0;
  sb4 found_ = 0;
  sb4 pending_ = 0;
  sb4 isTwoDigits_ = 0;
  bool hasMonthName_ = false;
  bool isBc_ = false;
  HalfDay halfDay_ = HalfDay::None;
};

sb4 failWith(OCIError *errhp, const char *before, const char *text, const char *behind) {
  const std::string message = std::string(before) + '"' + text + '"' + behind;
  return AddErrorRecord2(errhp, OCI_ERROR, 0, message.c_str());
}

}  // namespace

extern "C" {

sb4 DecodeDateTime(OCIError *errhp, char **fields, sb4 *types, sb4 count, sb4 *dtype,
                   PGtm *tm, double *fsec, sb4 *tz, sb4 flag) {
  return Walk(errhp, fields, types, count, dtype, tm, fsec, tz, flag != 0).run();
}

Timestamp ConvertStringToTimestamp(OCIError *errhp, const char *text) {
  constexpr Timestamp kInfinity = std::numeric_limits<double>::infinity();
  char work[kWorkSize];
  char *fields[kMostFields];
  sb4 types[kMostFields], count = 0, dtype = 0, tz = 0;
  PGtm tm{};
  double fsec = 0;
  Timestamp timestamp = 0;
  if (ParseDateTime(text, work, sizeof work, fields, types, kMostFields, &count) != 0 ||
      DecodeDateTime(errhp, fields, types, count, &dtype, &tm, &fsec, &tz, 0) != 0)
    return 0;
  switch (dtype) {
    case kPlainDate:
      if (tm2timestamp(&tm, fsec, nullptr, &timestamp) != 0)
        failWith(errhp, "timestamp out of range: ", text, "");
      return timestamp;
    case kInvalid:
      failWith(errhp, "date/time value ", text, " is no longer supported");
      return 0;
    case kEarly:
      return -kInfinity;
    case kEpoch:
      return SetEpochTimestamp();
    default:
      return kInfinity;
  }
}

void DateTimeParseError(sb4, const char *, const char *) {}

}  // extern "C"
