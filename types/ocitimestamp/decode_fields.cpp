/// The fields of a date and time, one by one.
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "types/number_text.h"
#include "types/ocitimestamp/decode_datetime.h"
#include "zevoci/errors.h"

namespace {

using namespace zev;

constexpr sb4 kLongestMonth = 31;

bool isWithin(long value, long least, long most) {
  return value >= least && value <= most;
}

/// The fraction at a point; false for text behind it.
bool readFraction(const char *point, double &fraction) {
  const auto parsed = parseDouble(point);
  fraction = parsed.value;
  return parsed.end != point && *parsed.end == '\0';
}

/// `count` digits as a number; the caller has looked at them.
sb4 numberOf(const char *digits, int count) {
  sb4 value = 0;
  for (int i = 0; i < count; ++i) value = value * 10 + (digits[i] - '0');
  return value;
}

/// Records a part of a time that is out of range.
sb4 failTime(OCIError *errhp, sb4 code) {
  AddErrorRecord(errhp, OCI_ERROR, code);
  return kFieldOverflow;
}

/// The pieces of a date: runs of letters and digits.
struct Pieces {
  char *at[kMostFields];
  int count = 0;

  explicit Pieces(char *text) {
    while (count < kMostFields) {
      while (*text && !isAlphanumeric(*text)) ++text;
      if (!*text) return;
      at[count++] = text;
      while (isAlphanumeric(*text)) ++text;
      if (*text) *text++ = '\0';
    }
  }
};

/// What DecodeDate has read so far.
struct DateParts {
  PGtm *tm;
  sb4 mask;
  sb4 found = 0;
  sb4 isTwoDigits = 0;
  bool isBc = false;
  bool hasMonthName = false;

  bool add(sb4 bits) {
    if (mask & bits) return false;
    mask |= bits;
    found |= bits;
    return true;
  }
};

bool readWord(int position, const char *word, DateParts &parts) {
  sb4 value = 0;
  switch (DecodeSpecial(position, word, &value)) {
    case kIgnored:
      return true;
    case kMonth:
      parts.tm->tm_mon = value;
      parts.hasMonthName = true;
      return parts.add(kMonthBit);
    case kAdBc:
      parts.isBc = value != 0;
      return true;
    default:
      return false;
  }
}

bool readNumber(char *number, DateParts &parts) {
  sb4 found = 0;
  double fsec = 0;
  return DecodeNumber(static_cast<sb4>(std::strlen(number)), number, parts.mask, &found,
                      parts.tm, &fsec, &parts.isTwoDigits, parts.hasMonthName) == 0 &&
         parts.add(found);
}

sb4 takeDayOfYear(PGtm &tm, long day) {
  j2date(date2j(tm.tm_year, 1, 1) + static_cast<sb4>(day) - 1, &tm.tm_year, &tm.tm_mon,
         &tm.tm_mday);
  return kDayOfYearBit | kMonthBit | kDayBit;
}

/// A number of more than two digits is a year, and what was taken for one a day.
sb4 takeYear(PGtm &tm, sb4 mask, sb4 year) {
  const bool wasDay =
      (mask & kYearBit) && !(mask & kDayBit) && isWithin(tm.tm_year, 1, kLongestMonth);
  if (wasDay) tm.tm_mday = tm.tm_year;
  tm.tm_year = year;
  return wasDay ? kDayBit : kYearBit;
}

/// What a number is by its length, its size and what was seen; 0 for none.
sb4 takeNumber(PGtm &tm, sb4 mask, sb4 length, sb4 value, bool dayFirst,
               sb4 *isTwoDigits) {
  const bool hasYear = mask & kYearBit, hasMonth = mask & kMonthBit,
             hasDay = mask & kDayBit;
  const bool isMonth = !hasMonth && isWithin(value, 1, 12);
  const bool isDay = !hasDay && isWithin(value, 1, kLongestMonth);
  if (length == 3 && hasYear && isWithin(value, 1, 366)) return takeDayOfYear(tm, value);
  if (length > 3) return takeYear(tm, mask, value);
  if (isDay && !(hasYear && isMonth) && !hasYear && (dayFirst || hasMonth)) {
    tm.tm_mday = value;
    return kDayBit;
  }
  if (isMonth) {
    tm.tm_mon = value;
    return kMonthBit;
  }
  if (isDay) {
    tm.tm_mday = value;
    return kDayBit;
  }
  if (length != 2 || hasYear) return 0;
  tm.tm_year = value;
  *isTwoDigits = 1;
  return kYearBit;
}

/// A date of digits alone; false for lengths that are none.
bool takeDateDigits(const char *digits, sb4 length, PGtm &tm, sb4 *isTwoDigits) {
  if (length == 5) {
    tm.tm_year = numberOf(digits, 2);
    tm.tm_mon = 1;
    tm.tm_mday = numberOf(digits + 2, 3);
  } else if (length == 6 || length == 8) {
    const int years = length - 4;
    tm.tm_year = numberOf(digits, years);
    tm.tm_mon = numberOf(digits + years, 2);
    tm.tm_mday = numberOf(digits + years + 2, 2);
  } else {
    return false;
  }
  if (length != 8) *isTwoDigits = 1;
  return true;
}

bool takeTimeDigits(const char *digits, sb4 length, PGtm &tm) {
  if (length != 6 && length != 4) return false;
  tm.tm_hour = numberOf(digits, 2);
  tm.tm_min = numberOf(digits + 2, 2);
  tm.tm_sec = length == 6 ? numberOf(digits + 4, 2) : 0;
  return true;
}

}  // namespace

extern "C" {

sb4 DecodeDate(char *text, sb4 mask, sb4 *found, PGtm *tm, sb4 *isTwoDigits) {
  const Pieces pieces(text);
  DateParts parts{.tm = tm, .mask = mask};
  for (int i = 0; i < pieces.count; ++i) {
    if (isLetter(*pieces.at[i]) && !readWord(i, pieces.at[i], parts)) return -1;
  }
  for (int i = 0; i < pieces.count; ++i) {
    if (!isLetter(*pieces.at[i]) && !readNumber(pieces.at[i], parts)) return -1;
  }
  if ((parts.mask & ~(kDayOfYearBit | kZoneBit)) != kDateBits) return -1;
  if (parts.isBc) {
    if (tm->tm_year < 1) return -1;
    tm->tm_year = 1 - tm->tm_year;
  } else if (parts.isTwoDigits) {
    *isTwoDigits = 1;
  }
  *found = parts.found;
  return 0;
}

sb4 DecodeNumber(sb4 length, char *text, sb4 mask, sb4 *found, PGtm *tm, double *fsec,
                 sb4 *isTwoDigits, sb4 dayFirst) {
  *found = 0;
  const auto number = parseLong(text);
  if (number.end == text || number.outOfRange) return -1;
  if (*number.end == '.') {
    if (number.end - text > 2) {
      return DecodeNumberField(length, text, mask | kDateBits, found, tm, fsec,
                               isTwoDigits);
    }
    if (!readFraction(number.end, *fsec)) return -1;
  } else if (*number.end != '\0') {
    return -1;
  }
  constexpr long kLargest = 0x7fffffff;
  if (!isWithin(number.value, -kLargest - 1, kLargest)) return -1;
  *found = takeNumber(*tm, mask, length, static_cast<sb4>(number.value), dayFirst != 0,
                      isTwoDigits);
  return *found ? 0 : -1;
}

sb4 DecodeNumberField(sb4 length, char *text, sb4 mask, sb4 *found, PGtm *tm,
                      double *fsec, sb4 *isTwoDigits) {
  char *const point = std::find(text, text + length, '.');
  const bool hasFraction = point != text + length;
  const auto digits = static_cast<sb4>(point - text);
  if (!std::all_of(text, point, isDigit)) return -1;
  if (hasFraction) {
    if (!readFraction(point, *fsec)) return -1;
    *point = '\0';
  } else if ((mask & kDateBits) != kDateBits &&
             takeDateDigits(text, digits, *tm, isTwoDigits)) {
    *found = kDateBits;
    return 0;
  }
  const bool isFirst = (mask & (kDateBits | kTimeBits)) == 0 && digits == 4;
  const bool canBeTime = hasFraction || isFirst || (mask & kDateBits) == kDateBits;
  if (!canBeTime || !takeTimeDigits(text, digits, *tm)) return -1;
  *found = kTimeBits;
  return 0;
}

sb4 DecodeTime(OCIError *errhp, const char *text, sb4 *found, PGtm *tm, double *fsec) {
  constexpr long kMostHours = 0x7fffffff;
  *found = kTimeBits;
  const auto hour = parseLong(text);
  if (hour.end == text || *hour.end != ':' || hour.value > kMostHours) return kBadFormat;
  const char *at = hour.end + 1;
  const auto minute = parseLong(at);
  if (minute.end == at) return kBadFormat;
  long second = 0;
  double fraction = 0;
  at = minute.end;
  if (*at == ':') {
    const auto parsed = parseLong(at + 1);
    if (parsed.end == at + 1) return kBadFormat;
    second = parsed.value;
    at = parsed.end;
    if (*at == '.') {
      if (!readFraction(at, fraction)) return kBadFormat;
      at += std::strlen(at);
    }
  }
  if (*at != '\0') return kBadFormat;
  if (hour.value < 0) return failTime(errhp, 1849);
  if (!isWithin(minute.value, 0, 59)) return failTime(errhp, 1851);
  if (!isWithin(second, 0, 59) || fraction >= 1) return failTime(errhp, 1852);
  tm->tm_hour = static_cast<sb4>(hour.value);
  tm->tm_min = static_cast<sb4>(minute.value);
  tm->tm_sec = static_cast<sb4>(second);
  *fsec = fraction;
  return kDecoded;
}

sb4 DecodeTimezone(const char *text, sb4 *tz) {
  constexpr long kMostHours = 14;
  if (*text != '+' && *text != '-') return kBadFormat;
  const CleanErrno clean;
  auto part = parseLong(text + 1);
  long hour = part.value, minute = 0, second = 0;
  if (*part.end == ':') {
    part = parseLong(part.end + 1);
    minute = part.value;
    if (*part.end == ':') {
      part = parseLong(part.end + 1);
      second = part.value;
    }
  } else if (*part.end == '\0' && std::strlen(text) > 3) {
    minute = hour % 100;
    hour /= 100;
  }
  if (errno == ERANGE || !isWithin(hour, 0, kMostHours) || !isWithin(minute, 0, 59) ||
      !isWithin(second, 0, 59)) {
    return kZoneOverflow;
  }
  const auto size = static_cast<sb4>((hour * 60 + minute) * 60 + second);
  *tz = *text == '-' ? size : -size;
  return *part.end == '\0' ? kDecoded : kBadFormat;
}

sb4 DecodePosixTimezone(char *text, sb4 *tz) {
  char *const offset = std::find_if_not(text, text + std::strlen(text), isLetter);
  sb4 east = 0;
  if (const sb4 status = DecodeTimezone(offset, &east); status != kDecoded) return status;
  const char sign = *offset;
  *offset = '\0';
  sb4 minutes = 0;
  const sb4 type = DecodeSpecial(kMostFields - 1, text, &minutes);
  *offset = sign;
  if (type != kZone && type != kDaylightZone) return kBadFormat;
  *tz = minutes * 60 - east;
  return kDecoded;
}

}  // extern "C"
