/// OCIInterval on the client: parts, text, numbers and arithmetic.
#include <ociap.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "types/ocitimestamp/date_call.h"
#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/text_writer.h"

namespace {

using zev::Argument;

constexpr char kEntry[] = "Setting Piece Information\n";  ///< what every call traces
constexpr double kSecondsPerDay = 86400, kDaysPerMonth = 30, kMonthsPerYear = 12,
                 kDaysPerYear = 365.25;

sb4 sum(sb4 a, sb4 b) {
  return static_cast<sb4>(static_cast<ub4>(a) + static_cast<ub4>(b));
}
sb4 difference(sb4 a, sb4 b) {
  return static_cast<sb4>(static_cast<ub4>(a) - static_cast<ub4>(b));
}

/// The frame of all functions: the arguments' checks, then `work` on the bodies of
/// `descriptors`, each of which is a descriptor with a body.
template <class Work, class... Descriptors>
sword call(OCIError *err, std::initializer_list<Argument> arguments, const Work &work,
           Descriptors *...descriptors) {
  return zev::dates::run(kEntry, err, arguments, [&]() -> sword {
    if (!((descriptors && descriptors->body) && ...)) return OCI_INVALID_HANDLE;
    return work();
  });
}

const OCIInterval *intervalOf(const OCIInterval *descriptor) {
  return zev::asInterval(descriptor);
}
OCIInterval *intervalOf(OCIInterval *descriptor) {
  return zev::asInterval(descriptor);
}

bool isDaySecond(const OCIInterval *interval) {
  return interval->body->intervalType == OCI_DTYPE_INTERVAL_DS;
}
bool isYearMonth(const OCIInterval *interval) {
  return interval->body->intervalType == OCI_DTYPE_INTERVAL_YM;
}
bool isReadable(const OCIInterval *interval) {
  return interval->body->valid != 0;
}

template <class... Rest>
bool areOfOneType(const OCIInterval *first, const Rest *...rest) {
  return ((first->body->intervalType == rest->body->intervalType) && ...);
}

sword failInconsistent(OCIError *err) {
  return zev::dates::failAfresh(err, 932);
}

// --- Numbers ---

sword readNumber(OCIError *err, const OCINumber *number, double &value) {
  return OCINumberToReal(err, number, sizeof value, &value);
}

/// An interval times `factor`, given what the parts are: what is cut off a part goes into
/// the next smaller one, to the microsecond.
template <class Scale>
Interval scaled(const Interval &from, const Scale &scale) {
  const auto rounded = [](double value) { return zev::rint(value * 1e6) / 1e6; };
  const double months = scale(from.month), days = scale(from.day);
  Interval result{scale(from.time), zev::truncated(days), zev::truncated(months)};
  const double moreDays = rounded((months - result.month) * kDaysPerMonth);
  const sb4 wholeDays = zev::truncated(moreDays);
  double seconds = rounded((days - result.day + moreDays - wholeDays) * kSecondsPerDay);
  if (std::abs(std::trunc(seconds)) >= kSecondsPerDay) {
    const sb4 carried = zev::truncated(seconds / kSecondsPerDay);
    result.day = sum(result.day, carried);
    seconds -= carried * kSecondsPerDay;
  }
  result.day = sum(result.day, wholeDays);
  result.time += seconds;
  return result;
}

/// `value` days, or years, of which a whole one counts in days.
Interval fromNumber(double value, bool isDays) {
  const double whole = value > 0 ? std::floor(value) : std::ceil(value);
  if (isDays) return {(value - whole) * kSecondsPerDay, zev::truncated(whole), 0};
  return {0, zev::truncated(whole * kDaysPerYear),
          zev::truncated((value - whole) * kMonthsPerYear)};
}

double toNumber(const Interval &from, bool isDays) {
  constexpr double kSecondsPerYear = 3.15576e7;
  if (isDays) return from.day + from.time / kSecondsPerDay;
  return from.day / kDaysPerYear + from.month / kMonthsPerYear +
         from.time / kSecondsPerYear;
}

// --- Text ---

/// The fields of an interval's text, of which there are two.
struct TextFields {
  char work[zev::kWorkSize];
  char *fields[zev::kMostFields];
  sb4 types[zev::kMostFields];

  bool split(const char *text) {
    sb4 count = 0;
    return ParseDateTime(text, work, sizeof work, fields, types, zev::kMostFields,
                         &count) == 0 &&
           count == 2 && types[0] == zev::kNumberField;
  }
};

/// A count as the field has it; false beyond 32 bits.
bool readCount(const char *field, sb8 unit, sb8 &count) {
  constexpr long kMost = std::numeric_limits<sb4>::max();
  errno = 0;
  const long value = std::strtol(field, nullptr, 10);
  count += value * unit;
  return errno == 0 && value >= -kMost && value <= kMost && count >= -kMost &&
         count <= kMost;
}

/// "3 04:05:06.5": days and a time.
bool readDaySecond(OCIError *err, TextFields &text, Interval &out) {
  PGtm tm{};
  double fsec = 0;
  sb4 found = 0;
  sb8 days = 0;
  if (text.types[1] != zev::kTimeField ||
      DecodeTime(err, text.fields[1], &found, &tm, &fsec) != 0)
    return false;
  if (tm.tm_hour > 24 || (tm.tm_hour == 24 && (tm.tm_min > 0 || tm.tm_sec > 0)))
    return false;
  if (!readCount(text.fields[0], 1, days)) return false;
  out = {(tm.tm_hour * 60.0 + tm.tm_min) * 60.0 + tm.tm_sec + fsec,
         static_cast<sb4>(days), 0};
  return true;
}

/// "1 2": years and months.
bool readYearMonth(const TextFields &text, Interval &out) {
  sb8 months = 0;
  if (!readCount(text.fields[0], 12, months) || !readCount(text.fields[1], 1, months))
    return false;
  out = {0, 0, static_cast<sb4>(months)};
  return true;
}

/// An interval's parts as they are shown.
struct Parts {
  PGtm tm{};
  double fsec = 0;

  explicit Parts(const OCIInterval *interval) {
    interval2tm(interval->body->interval, &tm, &fsec);
  }
  bool isNegative() const {
    return tm.tm_mday < 0 || tm.tm_hour < 0 || tm.tm_min < 0 || tm.tm_sec < 0 ||
           fsec < 0 || tm.tm_year < 0 || tm.tm_mon < 0;
  }
};

/// Room for five parts of ten digits and what stands between them.
constexpr std::size_t kTextSize = 64;

void print(const Parts &parts, bool isDaySecond, char (&buffer)[kTextSize]) {
  zev::TextWriter out(buffer);
  const auto part = [&out](sb4 value) -> zev::TextWriter & {
    return out.number(std::abs(sb8{value}), 2);
  };
  out << (parts.isNegative() ? '-' : '+');
  if (isDaySecond) {
    part(parts.tm.tm_mday) << ' ';
    part(parts.tm.tm_hour) << ':';
    part(parts.tm.tm_min) << ':';
    part(parts.tm.tm_sec) << '.';
    out.number(std::abs(sb8{zev::truncated(parts.fsec)}), 3);
  } else {
    part(parts.tm.tm_year) << '-';
    part(parts.tm.tm_mon);
  }
  out.end();
}

// --- Checks ---

/// What a part out of range is reported as: below 0 down to `least`, and above `most`.
struct PartRange {
  sb4 least, most;
  ub4 below, above;

  ub4 check(sb4 value) const {
    if (value < 0) return value >= least ? below : 0;
    return value > most ? above : 0;
  }
};
constexpr PartRange kHours{-22, 23, 0xC0, 0x40}, kMinutes{-58, 59, 0x300, 0x100},
    kSeconds{-58, 59, 0xC00, 0x400}, kFractions{-86398, 86399, 0x3000, 0x1000},
    kMonths{-10, 12, 0xC, 0x4};

ub4 check(const OCIInterval *interval) {
  const Parts parts(interval);
  if (!isDaySecond(interval)) return kMonths.check(parts.tm.tm_mon);
  return kHours.check(parts.tm.tm_hour) | kMinutes.check(parts.tm.tm_min) |
         kSeconds.check(parts.tm.tm_sec) | kFractions.check(zev::truncated(parts.fsec));
}

void store(OCIInterval *target, const Interval &value) {
  target->body->interval = value;
  target->body->valid = 1;
}

void setDaySecond(OCIInterval *target, sb4 day, sb4 hour, sb4 minute, sb4 second,
                  sb4 fraction) {
  PGtm tm{};
  tm.tm_mday = day;
  tm.tm_hour = hour;
  tm.tm_min = minute;
  tm.tm_sec = second;
  Interval value{};
  tm2interval(&tm, fraction, &value);
  store(target, value);
}

}  // namespace

extern "C" {

ZEV_API sword OCIIntervalAdd(void *hndl, OCIError *err, OCIInterval *addend1,
                             OCIInterval *addend2, OCIInterval *result) {
  const auto *a = intervalOf(addend1), *b = intervalOf(addend2);
  auto *to = intervalOf(result);
  return call(
      err, {{hndl, "1"}, {addend1, "3"}, {addend2, "4"}},
      [&]() -> sword {
        if (!areOfOneType(a, b, to)) return failInconsistent(err);
        const Interval &x = a->body->interval, &y = b->body->interval;
        interval_justify_hours(to, x.time + y.time, sum(x.day, y.day),
                               sum(x.month, y.month));
        return OCI_SUCCESS;
      },
      a, b, to);
}

ZEV_API sword OCIIntervalSubtract(void *hndl, OCIError *err, OCIInterval *minuend,
                                  OCIInterval *subtrahend, OCIInterval *result) {
  const auto *a = intervalOf(minuend), *b = intervalOf(subtrahend);
  auto *to = intervalOf(result);
  return call(
      err, {{hndl, "1"}, {minuend, "3"}, {subtrahend, "4"}},
      [&]() -> sword {
        if (!areOfOneType(a, b, to)) return failInconsistent(err);
        const Interval &x = a->body->interval, &y = b->body->interval;
        interval_justify_interval(to, x.time - y.time, difference(x.day, y.day),
                                  difference(x.month, y.month));
        return OCI_SUCCESS;
      },
      a, b, to);
}

ZEV_API sword OCIIntervalAssign(void *hndl, OCIError *err, const OCIInterval *inpinter,
                                OCIInterval *outinter) {
  const auto *from = intervalOf(inpinter);
  auto *to = intervalOf(outinter);
  return call(
      err, {{hndl, "1"}, {inpinter, "3"}, {outinter, "4"}},
      [&]() -> sword {
        if (!areOfOneType(from, to)) return failInconsistent(err);
        *to->body = *from->body;
        return OCI_SUCCESS;
      },
      from, to);
}

ZEV_API sword OCIIntervalCompare(void *hndl, OCIError *err, OCIInterval *inter1,
                                 OCIInterval *inter2, sword *result) {
  const auto *a = intervalOf(inter1), *b = intervalOf(inter2);
  return call(
      err, {{hndl, "1"}, {inter1, "3"}, {inter2, "4"}, {result, "5"}},
      [&] {
        const auto seconds = [](const OCIInterval *interval) {
          const Interval &i = interval->body->interval;
          return i.month * (kDaysPerMonth * kSecondsPerDay) + i.time +
                 i.day * kSecondsPerDay;
        };
        const double first = seconds(a), second = seconds(b);
        *result = second > first ? -1 : first > second;
        return OCI_SUCCESS;
      },
      a, b);
}

ZEV_API sword OCIIntervalMultiply(void *, OCIError *err, const OCIInterval *inter,
                                  OCINumber *nfactor, OCIInterval *result) {
  const auto *from = intervalOf(inter);
  auto *to = intervalOf(result);
  return call(
      err, {{inter, "3"}, {nfactor, "4"}, {result, "5"}},
      [&] {
        double factor = 0;
        if (const sword status = readNumber(err, nfactor, factor); status != OCI_SUCCESS)
          return status;
        store(to, scaled(from->body->interval, [=](double x) { return x * factor; }));
        return OCI_SUCCESS;
      },
      from, to);
}

ZEV_API sword OCIIntervalDivide(void *, OCIError *err, OCIInterval *dividend,
                                OCINumber *divisor, OCIInterval *result) {
  const auto *from = intervalOf(dividend);
  auto *to = intervalOf(result);
  return call(
      err, {{dividend, "3"}, {divisor, "4"}, {result, "5"}},
      [&]() -> sword {
        double factor = 0;
        if (readNumber(err, divisor, factor) != OCI_SUCCESS || factor == 0)
          return OCI_ERROR;
        store(to, scaled(from->body->interval, [=](double x) { return x / factor; }));
        return OCI_SUCCESS;
      },
      from, to);
}

ZEV_API sword OCIIntervalFromNumber(void *hndl, OCIError *err, OCIInterval *interval,
                                    OCINumber *number) {
  auto *to = intervalOf(interval);
  return call(
      err, {{hndl, "1"}, {interval, "3"}, {number, "4"}},
      [&]() -> sword {
        if (!isReadable(to)) return failInconsistent(err);
        double value = 0;
        if (const sword status = readNumber(err, number, value); status != OCI_SUCCESS)
          return status;
        store(to, fromNumber(value, isDaySecond(to)));
        return OCI_SUCCESS;
      },
      to);
}

ZEV_API sword OCIIntervalToNumber(void *hndl, OCIError *err, const OCIInterval *interval,
                                  OCINumber *number) {
  const auto *from = intervalOf(interval);
  return call(
      err, {{hndl, "1"}, {interval, "3"}, {number, "4"}},
      [&]() -> sword {
        if (!isReadable(from)) return failInconsistent(err);
        const double value = toNumber(from->body->interval, isDaySecond(from));
        return OCINumberFromReal(err, &value, sizeof value, number);
      },
      from);
}

ZEV_API sword OCIIntervalFromText(void *hndl, OCIError *err, const OraText *inpstring,
                                  size_t, OCIInterval *result) {
  auto *to = intervalOf(result);
  return call(
      err, {{hndl, "1"}, {inpstring, "3"}, {result, "5"}},
      [&]() -> sword {
        if (!isReadable(to)) return failInconsistent(err);
        const zev::EdgeText edge(zev::parentEnv(err), inpstring);
        if (!edge) return zev::dates::failText(err, edge);
        TextFields text;
        Interval value{};
        const bool isRead = text.split(edge.cString()) &&
                            (isDaySecond(to) ? readDaySecond(err, text, value)
                                             : readYearMonth(text, value));
        if (!isRead) return zev::fail(err, 1891);
        store(to, value);
        return OCI_SUCCESS;
      },
      to);
}

ZEV_API sword OCIIntervalToText(void *, OCIError *err, const OCIInterval *interval, ub1,
                                ub1, OraText *buffer, size_t, size_t *resultlen) {
  const auto *from = intervalOf(interval);
  return call(
      err, {{interval, "3"}, {buffer, "6"}, {resultlen, "8"}},
      [&]() -> sword {
        if (!isReadable(from)) return failInconsistent(err);
        char text[kTextSize];
        print(Parts(from), isDaySecond(from), text);
        ub4 room = 2 * kTextSize;  // no more than the text takes is written
        return zev::dates::deliverCut(err, text, buffer, &room);
      },
      from);
}

ZEV_API sword OCIIntervalFromTZ(void *hndl, OCIError *err, const OraText *inpstring,
                                size_t, OCIInterval *result) {
  auto *to = intervalOf(result);
  return call(
      err, {{hndl, "1"}, {inpstring, "3"}, {result, "5"}},
      [&]() -> sword {
        if (!isDaySecond(to) || !isReadable(to)) return failInconsistent(err);
        const zev::EdgeText edge(zev::parentEnv(err), inpstring);
        if (!edge) return zev::dates::failText(err, edge);
        sb4 displacement = 0;
        sb1 hour = 0;
        ub1 minute = 0, second = 0;
        if (DecodeTZ(edge.cString(), &displacement, &hour, &minute, &second) ==
            zev::kZoneOverflow)
          return zev::fail(err, 16384);
        setDaySecond(to, 0, hour, minute, second, 0);
        return OCI_SUCCESS;
      },
      to);
}

ZEV_API sword OCIIntervalGetDaySecond(void *, OCIError *err, sb4 *dy, sb4 *hr, sb4 *mm,
                                      sb4 *ss, sb4 *fsec, const OCIInterval *interval) {
  const auto *from = intervalOf(interval);
  return call(
      err, {{dy, "3"}, {hr, "4"}, {mm, "5"}, {ss, "6"}, {fsec, "7"}, {interval, "8"}},
      [&]() -> sword {
        if (!isDaySecond(from) || !isReadable(from)) return failInconsistent(err);
        const Parts parts(from);
        *dy = parts.tm.tm_mday;
        *hr = parts.tm.tm_hour;
        *mm = parts.tm.tm_min;
        *ss = parts.tm.tm_sec;
        *fsec = zev::truncated(parts.fsec);
        return OCI_SUCCESS;
      },
      from);
}

ZEV_API sword OCIIntervalSetDaySecond(void *hndl, OCIError *err, sb4 dy, sb4 hr, sb4 mm,
                                      sb4 ss, sb4 fsec, OCIInterval *result) {
  auto *to = intervalOf(result);
  return call(
      err, {{hndl, "1"}, {result, "8"}},
      [&]() -> sword {
        if (!isDaySecond(to)) return failInconsistent(err);
        setDaySecond(to, dy, hr, mm, ss, fsec);
        return OCI_SUCCESS;
      },
      to);
}

ZEV_API sword OCIIntervalGetYearMonth(void *, OCIError *err, sb4 *yr, sb4 *mnth,
                                      const OCIInterval *interval) {
  const auto *from = intervalOf(interval);
  return call(
      err, {{yr, "3"}, {mnth, "4"}, {interval, "5"}},
      [&]() -> sword {
        if (!isYearMonth(from) || !isReadable(from)) return failInconsistent(err);
        const Parts parts(from);
        *yr = parts.tm.tm_year;
        *mnth = parts.tm.tm_mon;
        return OCI_SUCCESS;
      },
      from);
}

ZEV_API sword OCIIntervalSetYearMonth(void *hndl, OCIError *err, sb4 yr, sb4 mnth,
                                      OCIInterval *result) {
  auto *to = intervalOf(result);
  return call(
      err, {{hndl, "1"}, {result, "5"}},
      [&]() -> sword {
        if (!isYearMonth(to)) return failInconsistent(err);
        PGtm tm{};
        tm.tm_year = yr;
        tm.tm_mon = mnth;
        Interval value{};
        tm2interval(&tm, 0, &value);
        store(to, value);
        return OCI_SUCCESS;
      },
      to);
}

ZEV_API sword OCIIntervalCheck(void *hndl, OCIError *err, const OCIInterval *interval,
                               ub4 *valid) {
  const auto *from = intervalOf(interval);
  return call(
      err, {{hndl, "1"}, {interval, "3"}, {valid, "4"}},
      [&]() -> sword {
        if (!isReadable(from)) return failInconsistent(err);
        *valid = check(from);
        return OCI_SUCCESS;
      },
      from);
}

}  // extern "C"
