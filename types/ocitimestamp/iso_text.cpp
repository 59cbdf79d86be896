#include "types/ocitimestamp/iso_text.h"

namespace {

constexpr std::size_t kDateLength = 10;      ///< "2001-02-03"
constexpr std::size_t kDateTimeLength = 19;  ///< with " 04:05:06"
constexpr int kMostDecimals = 6;
constexpr sb4 kMostZoneHours = 14;

/// Reads numbers off a text; characters that are none are noted and told at the end.
class Digits {
 public:
  /// The two digits at a place.
  sb4 two(const char *at) {
    const unsigned high = digit(at[0]), low = digit(at[1]);
    return static_cast<sb4>(high * 10 + low);
  }
  bool areAll() const { return worst_ <= 9; }

 private:
  unsigned digit(char c) {
    const unsigned value = static_cast<unsigned char>(c) - unsigned{'0'};
    worst_ = value > worst_ ? value : worst_;
    return value;
  }
  unsigned worst_ = 0;
};

bool readDate(const char *text, PGtm &tm) {
  Digits digits;
  tm.tm_year = digits.two(text) * 100 + digits.two(text + 2);
  tm.tm_mon = digits.two(text + 5);
  tm.tm_mday = digits.two(text + 8);
  return digits.areAll() && text[4] == '-' && text[7] == '-' && tm.tm_year != 0 &&
         tm.tm_mon >= 1 && tm.tm_mon <= 12 && tm.tm_mday >= 1 &&
         tm.tm_mday <= zev::daysOfMonth(tm.tm_year, tm.tm_mon);
}

/// Reads " 04:05:06".
bool readTime(const char *text, PGtm &tm) {
  Digits digits;
  tm.tm_hour = digits.two(text + 1);
  tm.tm_min = digits.two(text + 4);
  tm.tm_sec = digits.two(text + 7);
  return digits.areAll() && text[0] == ' ' && text[3] == ':' && text[6] == ':' &&
         tm.tm_hour <= 23 && tm.tm_min <= 59 && tm.tm_sec <= 59;
}

/// Reads ".25" if it stands at `at`, which is moved behind it.
bool readFraction(const char *&at, const char *end, double &fsec) {
  static constexpr double kUnits[] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6};
  if (at == end || *at != '.') return true;
  sb4 count = 0;
  const char *const first = ++at;
  while (at != end && *at >= '0' && *at <= '9' && at - first < kMostDecimals)
    count = count * 10 + (*at++ - '0');
  // A quotient of two numbers that are exact is the nearest one, as strtod's result is.
  fsec = count / kUnits[at - first];
  return at != first;
}

/// Reads "+05", "+05:30" or "+05:30:15", with which the text must end.
bool readZone(const char *at, const char *end, PGtm &tm) {
  const auto length = end - at;
  const char sign = *at;
  if ((sign != '+' && sign != '-') || length < 3 || length % 3 != 0 || length > 9)
    return false;
  Digits digits;
  const sb4 hours = digits.two(at + 1);
  sb4 minutes = 0, seconds = 0;
  if (length > 3) minutes = at[3] == ':' ? digits.two(at + 4) : 60;
  if (length > 6) seconds = at[6] == ':' ? digits.two(at + 7) : 60;
  if (!digits.areAll() || hours > kMostZoneHours || minutes > 59 || seconds > 59)
    return false;
  const sb4 east = (hours * 60 + minutes) * 60 + seconds;
  tm.tm_gmtoff = sign == '-' ? -east : east;
  return true;
}

}  // namespace

bool zev::readIsoText(const char *text, std::size_t length, IsoMoment &moment) {
  if (length < kDateLength || !readDate(text, moment.tm)) return false;
  if (length == kDateLength) return true;
  if (length < kDateTimeLength || !readTime(text + kDateLength, moment.tm)) return false;
  const char *at = text + kDateTimeLength;
  const char *const end = text + length;
  if (!readFraction(at, end, moment.fsec)) return false;
  moment.hasZone = at != end;
  return !moment.hasZone || readZone(at, end, moment.tm);
}
