/// A text that is decoded as an interval, in the server's forms and in that of ISO 8601:
/// what comes out decodes to itself once it is printed.
#include <cmath>
#include <cstdlib>
#include <string>

#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/encode_datetime.h"
#include "zevoci/errors.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

struct Span {
  sb4 status = -1, dtype = 0;
  PGtm tm{};
  double fsec = 0;

  bool isInterval() const { return status == 0 && dtype == zev::kInterval; }
  Interval sum() const {
    Interval interval{};
    tm2interval(&tm, fsec, &interval);
    return interval;
  }
};

Span decode(const std::string &text) {
  Span span;
  char work[zev::kWorkSize];
  char *fields[zev::kMostFields];
  sb4 types[zev::kMostFields], count = 0;
  if (ParseDateTime(text.c_str(), work, sizeof work, fields, types, zev::kMostFields,
                    &count) == 0) {
    span.status = DecodeInterval(nullptr, fields, types, count, zev::kWholeRange,
                                 &span.dtype, &span.tm, &span.fsec);
  }
  return span;
}

Span decodeIso(const std::string &text) {
  Span span;
  span.status = DecodeISO8601Interval(text.c_str(), &span.dtype, &span.tm, &span.fsec);
  return span;
}

/// Fields of one sign and of a usual size print as what they are.
bool isPlain(const PGtm &tm) {
  for (const sb4 field : {tm.tm_year, tm.tm_mon, tm.tm_mday, tm.tm_hour}) {
    if (field < 0 || field > 99999) return false;
  }
  return tm.tm_mon < 12 && tm.tm_min >= 0 && tm.tm_min < 60 && tm.tm_sec >= 0 &&
         tm.tm_sec < 59;
}

void check(const Span &span) {
  if (!span.isInterval()) return;
  require(std::fabs(span.fsec) < 1);
  PGtm tm{};
  double fsec = 0;
  interval2tm(span.sum(), &tm, &fsec);
  if (!isPlain(tm) || fsec < 0) return;
  Interval once{};
  tm2interval(&tm, fsec, &once);
  char text[zev::kLongestDateTime];
  EncodeInterval(&tm, zev::kVerboseIntervals, text, fsec);
  const Interval back = decode(text).sum();
  EncodeInterval(&tm, zev::kIsoIntervals, text, fsec);
  const Interval backIso = decodeIso(text).sum();
  for (const Interval &other : {back, backIso}) {
    require(other.month == once.month && other.day == once.day &&
            std::fabs(other.time - once.time) < 1e-5);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  check(decode(text));
  check(decodeIso(text));
  return 0;
}
