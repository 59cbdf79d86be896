/// POSIX TZ strings (IEEE Std 1003.1, "Environment Variables", TZ):
/// "EST5EDT,M3.2.0,M11.1.0".
#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>

#include "types/number_text.h"
#include "types/ocitimestamp/zone.h"

namespace {

using std::int64_t;
using zev::ZoneState;

constexpr sb4 kSecondsPerHour = 3600;
constexpr sb4 kDefaultRuleTime = 2 * kSecondsPerHour;
/// First Sunday of April to last Sunday of October.
constexpr std::string_view kDefaultRules = ",M4.1.0,M10.5.0";
constexpr sb4 kFirstYear = 1970;
constexpr sb4 kYears = 68;
static_assert(2 * kYears <= zev::kMostTransitions);

/// When daylight time begins or ends in each year.
struct Rule {
  enum class Kind {
    DayOfYear,          ///< "Jn": 1 to 365, February 29 is never counted
    DayOfYearFromZero,  ///< "n": 0 to 365, February 29 is counted
    WeekdayOfMonth,     ///< "Mm.w.d": the w-th weekday d, 5 for the last one
  };
  Kind kind;
  sb4 month;
  sb4 week;
  sb4 day;
  sb4 time;  ///< seconds after midnight
};

/// Reads a TZ string from its start. A step that does not fit ends the reading for good.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool atEnd() const { return text_.empty(); }
  bool at(char c) const { return !text_.empty() && text_.front() == c; }
  bool take(char c) {
    if (!at(c)) return false;
    text_.remove_prefix(1);
    return true;
  }

  /// An abbreviation: up to a digit or the sign or comma of what follows.
  std::optional<std::string_view> abbreviation() {
    constexpr std::size_t kShortest = 3;
    const std::size_t length =
        std::min(text_.find_first_of("0123456789,-+"), text_.size());
    if (length < kShortest) return std::nullopt;
    const std::string_view found = text_.substr(0, length);
    text_.remove_prefix(length);
    return found;
  }

  std::optional<sb4> number(sb4 least, sb4 most) {
    if (text_.empty() || !zev::isDigit(text_.front())) return std::nullopt;
    sb4 value = 0;
    for (; !text_.empty() && zev::isDigit(text_.front()); text_.remove_prefix(1)) {
      value = value * 10 + (text_.front() - '0');
      if (value > most) return std::nullopt;
    }
    return value >= least ? std::optional(value) : std::nullopt;
  }

  /// "hh[:mm[:ss]]" in seconds; a rule may lie days away from its day.
  std::optional<sb4> seconds() {
    constexpr sb4 kMostHours = 167, kMostMinutes = 59, kMostSeconds = 60;
    const auto hours = number(0, kMostHours);
    if (!hours) return std::nullopt;
    sb4 total = *hours * kSecondsPerHour;
    if (!take(':')) return total;
    const auto minutes = number(0, kMostMinutes);
    if (!minutes) return std::nullopt;
    total += *minutes * 60;
    if (!take(':')) return total;
    const auto rest = number(0, kMostSeconds);
    return rest ? std::optional(total + *rest) : std::nullopt;
  }

  /// A displacement, in seconds west of Greenwich.
  std::optional<sb4> offset() {
    const bool isNegative = take('-');
    if (!isNegative) take('+');
    const auto size = seconds();
    return isNegative && size ? std::optional(-*size) : size;
  }

  std::optional<Rule> rule() {
    auto found = day();
    if (!found) return std::nullopt;
    found->time = kDefaultRuleTime;
    if (take('/')) {
      const auto time = seconds();
      if (!time) return std::nullopt;
      found->time = *time;
    }
    return found;
  }

 private:
  std::optional<Rule> day() {
    if (take('J')) return dayOfYear(Rule::Kind::DayOfYear, 1);
    if (!take('M')) return dayOfYear(Rule::Kind::DayOfYearFromZero, 0);
    const auto month = number(1, 12);
    if (!month || !take('.')) return std::nullopt;
    const auto week = number(1, 5);
    if (!week || !take('.')) return std::nullopt;
    const auto weekday = number(0, 6);
    if (!weekday) return std::nullopt;
    return Rule{Rule::Kind::WeekdayOfMonth, *month, *week, *weekday, 0};
  }
  std::optional<Rule> dayOfYear(Rule::Kind kind, sb4 least) {
    const auto day = number(least, 365);
    return day ? std::optional(Rule{kind, 0, 0, *day, 0}) : std::nullopt;
  }

  std::string_view text_;
};

/// The day of a rule in a year, counted from January 1.
sb4 dayInYear(const Rule &rule, sb4 year) {
  const bool leap = zev::isLeap(year);
  switch (rule.kind) {
    case Rule::Kind::DayOfYear:
      return rule.day - 1 + (leap && rule.day >= 60);
    case Rule::Kind::DayOfYearFromZero:
      return rule.day;
    case Rule::Kind::WeekdayOfMonth:
      break;
  }
  constexpr sb4 kWeek = 7;
  const sb4 first = date2j(year, rule.month, 1);
  sb4 day = (rule.day - j2day(first) + kWeek) % kWeek;
  for (sb4 week = 1; week < rule.week && day + kWeek < mon_lengths[leap][rule.month - 1];
       ++week) {
    day += kWeek;
  }
  return first - date2j(year, 1, 1) + day;
}

/// The moment of a rule in a year, before which `offset` holds.
int64_t transtime(const Rule &rule, sb4 year, sb4 offset) {
  const int64_t days =
      int64_t{date2j(year, 1, 1)} - zev::kUnixEpochDay + dayInYear(rule, year);
  return days * zev::kSecondsPerDay + rule.time + offset;
}

constexpr ub1 kStandard = 0, kDaylight = 1;

void addTransition(ZoneState &state, int64_t moment, ub1 type) {
  state.ats[state.timecnt] = moment;
  state.types[state.timecnt++] = type;
}

void addTransitions(ZoneState &state, const Rule &begin, const Rule &end, sb4 standard,
                    sb4 daylight) {
  for (sb4 year = kFirstYear; year < kFirstYear + kYears; ++year) {
    const int64_t begins = transtime(begin, year, standard);
    const int64_t ends = transtime(end, year, daylight);
    if (begins > ends) {
      addTransition(state, ends, kStandard);
      addTransition(state, begins, kDaylight);
    } else {
      addTransition(state, begins, kDaylight);
      addTransition(state, ends, kStandard);
    }
  }
}

/// Adds a type with its abbreviation; false when there is no room for this.
bool addType(ZoneState &state, std::string_view abbreviation, sb4 offset, bool isdst) {
  if (state.charcnt + abbreviation.size() + 1 > zev::kMostZoneChars) return false;
  state.ttis[state.typecnt++] = {.gmtoff = -int64_t{offset},
                                 .isdst = isdst,
                                 .abbrind = state.charcnt,
                                 .ttisstd = 0,
                                 .ttisgmt = 0};
  std::memcpy(state.chars + state.charcnt, abbreviation.data(), abbreviation.size());
  state.charcnt += static_cast<sb4>(abbreviation.size());
  state.chars[state.charcnt++] = '\0';
  return true;
}

/// The two rules of a year; empty for text that is none.
std::optional<std::array<Rule, 2>> rulesOf(Reader text) {
  std::array<Rule, 2> rules{};
  for (Rule &rule : rules) {
    if (!text.take(',')) return std::nullopt;
    const auto found = text.rule();
    if (!found) return std::nullopt;
    rule = *found;
  }
  return text.atEnd() ? std::optional(rules) : std::nullopt;
}

bool parse(Reader text, ZoneState &state) {
  const auto standardName = text.abbreviation();
  if (!standardName || text.atEnd()) return false;
  const auto standard = text.offset();
  if (!standard || !addType(state, *standardName, *standard, false)) return false;
  if (text.atEnd()) return true;
  const auto daylightName = text.abbreviation();
  if (!daylightName) return false;
  auto daylight = std::optional(*standard - kSecondsPerHour);
  if (!text.atEnd() && !text.at(',')) daylight = text.offset();
  if (!daylight || !addType(state, *daylightName, *daylight, true)) return false;
  const auto rules = rulesOf(text.atEnd() ? Reader(kDefaultRules) : text);
  if (!rules) return false;
  addTransitions(state, (*rules)[0], (*rules)[1], *standard, *daylight);
  return true;
}

}  // namespace

extern "C" sb4 tzparse(const char *name, ZoneState *state, sb4 lastditch) {
  *state = {};
  if (lastditch) {
    const std::string_view whole(name);
    return addType(*state, whole.substr(0, zev::kMostZoneChars - 1), 0, false) ? 0 : -1;
  }
  return parse(Reader(name), *state) ? 0 : -1;
}
