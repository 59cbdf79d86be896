#include "types/ocitimestamp/date_text.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "types/number_text.h"
#include "types/ocitimestamp/decode_datetime.h"
#include "types/ocitimestamp/encode_datetime.h"
#include "types/ocitimestamp/text_writer.h"
#include "zevoci/errors.h"
#include "zevoci/text.h"

namespace {

constexpr std::string_view kSeparators = "-, /\\:";
constexpr int kExcess = 100;  ///< what the bytes of a year have on top

bool isSeparator(char c) {
  return kSeparators.find(c) != kSeparators.npos;
}

/// The next word of a text, which moves behind it; empty at the end.
std::string_view nextWord(const char *&at) {
  while (*at && isSeparator(*at)) ++at;
  const char *start = at;
  while (*at && !isSeparator(*at)) ++at;
  return {start, static_cast<std::size_t>(at - start)};
}

bool isWord(std::string_view word, const char *name) {
  return word.size() == std::strlen(name) &&
         oci_strncasecmp(word.data(), name, word.size()) == 0;
}

bool isAnyOf(std::string_view word, std::initializer_list<const char *> names) {
  return std::ranges::any_of(names, [&](const char *name) { return isWord(word, name); });
}

/// ismonth of a word without a terminator.
sb4 monthOf(std::string_view word, sb4 mode) {
  sb4 first = 0, last = 0;
  switch (mode) {
    case 0:
      last = 12;
      break;
    case 1:
      first = 13;
      last = 24;
      break;
    case 2:
      last = 24;
      break;
    default:
      return 0;
  }
  for (sb4 i = first; i < last; ++i) {
    if (isWord(word, ocimonths[i])) return (i + 1) % 12;
  }
  return 0;
}

/// A number's place in the seven bytes: read as it is or one more, up to a limit.
struct NumberWord {
  std::initializer_list<const char *> names;
  int place;
  unsigned excess;
  long most;
};

/// Takes one word of text by its word of the format; false when it does not fit.
bool takeWord(std::string_view format, std::string_view text, ub1 *out) {
  static const NumberWord kNumbers[] = {{{"M", "MO"}, 2, 0, 12},
                                        {{"D", "DD"}, 3, 0, 30},
                                        {{"HH"}, 4, 1, 23},
                                        {{"MM"}, 5, 1, 60},
                                        {{"SS"}, 6, 1, 60}};
  // The word ends at a separator or the end of the text, which no number goes beyond; its
  // lowest byte is what counts.
  const long number = zev::parseLong(text.data()).value;
  const auto byteOf = [](long value, unsigned excess) {
    return static_cast<ub1>(static_cast<unsigned long>(value) + excess);
  };
  if (isAnyOf(format, {"MON", "MONTH"})) {
    out[2] = static_cast<ub1>(monthOf(text, 2));
    return out[2] != 0;
  }
  if (isWord(format, "YY")) {
    out[0] = 119;
    out[1] = byteOf(number, kExcess);
    return number <= 99;
  }
  if (isWord(format, "YYYY")) {
    out[0] = byteOf(number / 100, kExcess);
    out[1] = byteOf(number % 100, kExcess);
    return true;
  }
  for (const NumberWord &row : kNumbers) {
    if (!isAnyOf(format, row.names)) continue;
    out[row.place] = byteOf(number, row.excess);
    return number <= row.most;
  }
  return false;
}

/// A copy of a format over which fields are laid; it grows where the last one is longer
/// than its word.
class Overlay {
 public:
  Overlay(char *out, const char *format) : end_(out + std::strlen(format)) {
    std::strcpy(out, format);
  }
  void put(char *at, std::string_view text) {
    std::memcpy(at, text.data(), text.size());
    if (at + text.size() <= end_) return;
    end_ = at + text.size();
    *end_ = '\0';
  }
  /// With zeros in front up to `width` characters.
  void put(char *at, std::size_t width, sb4 value) {
    char text[24];
    zev::TextWriter number(text);
    number.number(value, static_cast<int>(std::min(width, sizeof text - 12)));
    put(at, {text, number.length()});
  }

 private:
  char *end_;
};

/// Lays a field over its word; false for an unknown word.
bool overlayWord(Overlay &text, char *at, std::string_view word, const ub1 *bytes) {
  const auto put = [&](sb4 value) {
    text.put(at, word.size(), value);
    return true;
  };
  if (isAnyOf(word, {"MON", "MONTH"})) {
    if (bytes[2] < 1 || bytes[2] > 12) return false;
    text.put(at, ocimonths[bytes[2] - 1]);
    return true;
  }
  if (isAnyOf(word, {"D", "DD"})) return put(bytes[3]);
  if (isAnyOf(word, {"M", "MO"})) return put(bytes[2]);
  if (isWord(word, "YY")) return put(bytes[1] - kExcess);
  if (isWord(word, "YYYY")) {
    text.put(at, 0, bytes[0] * 100 + bytes[1] - 10100);
    return true;
  }
  if (isWord(word, "HH")) return put(bytes[4] - 1);
  if (isWord(word, "MM")) return put(bytes[5] - 1);
  if (isWord(word, "SS")) return put(bytes[6] - 1);
  return false;
}

}  // namespace

extern "C" {

const char *const ocimonths[24] = {
    "JAN", "FEB",  "MAR",  "APR",    "MAY",       "JUN",      "JUL",      "AUG",
    "SEP", "OCT",  "NOV",  "DEC",    "JANUARY",   "FEBRUARY", "MARCH",    "APRIL",
    "MAY", "JUNE", "JULY", "AUGUST", "SEPTEMBER", "OCTOBER",  "NOVEMBER", "DECEMBER"};

sb4 ismonth(const char *word, sb4 mode) {
  return word ? monthOf(word, mode) : 0;
}

sword ConvertTimestampToChars(OCIError *errhp, char *destination, ub4 *length,
                              Timestamp timestamp) {
  if (!destination || !length) return -1;
  char text[zev::kLongestDateTime];
  if (!EncodeSpecialTimestamp(text, timestamp)) {
    PGtm tm{};
    double fsec = 0;
    if (timestamp2tm(timestamp, nullptr, &tm, &fsec, nullptr, nullptr) != 0)
      return zev::fail(errhp, 0, "timestamp out of range");
    EncodeDateTime(&tm, nullptr, nullptr, zev::kIsoDates, text, fsec);
  }
  const std::size_t size = std::strlen(text);
  if (size > *length) return -1;
  std::memcpy(destination, text, size);
  *length = static_cast<ub4>(size);
  return 0;
}

sword ConvertStringToDATE(const char *text, const char *format, ub1 *out) {
  if (!text || !format || !out) return -1;
  std::memset(out, 0, zev::kDateSize);
  for (;;) {
    const std::string_view word = nextWord(text), meaning = nextWord(format);
    if (word.empty() || meaning.empty()) return word.empty() && meaning.empty() ? 0 : -1;
    if (!takeWord(meaning, word, out)) return -1;
  }
}

sword ConvertDATEToString(const ub1 *bytes, const char *format, char *out) {
  if (!bytes || !format || !out) return -1;
  Overlay text(out, format);
  char *at = out;
  for (const char *words = format;;) {
    const std::string_view word = nextWord(words);
    if (word.empty()) return 0;
    if (!overlayWord(text, at, word, bytes)) {
      *at = '\0';
      return 0;
    }
    at += word.size() + 1;
  }
}

sword ConvertISODateToRedwoodDate(OCIError *errhp, const char *text, char *out) {
  char work[zev::kWorkSize];
  char *fields[zev::kMostFields];
  sb4 types[zev::kMostFields], count = 0, dtype = 0, tz = 0;
  PGtm tm{};
  double fsec = 0;
  if (!text || !out ||
      ParseDateTime(text, work, sizeof work, fields, types, zev::kMostFields, &count) !=
          0 ||
      DecodeDateTime(errhp, fields, types, count, &dtype, &tm, &fsec, &tz, 0) != 0)
    return -1;
  zev::TextWriter to(out);
  to.number(tm.tm_mday, 2) << '-';
  to.number(tm.tm_mon, 2) << '-';
  to.number(tm.tm_year, 2);
  if (tm.tm_hour || tm.tm_min || tm.tm_sec || fsec != 0) {
    to << ' ';
    to.number(tm.tm_hour, 2) << ':';
    to.number(tm.tm_min, 2) << ':';
    to.number(tm.tm_sec, 2) << '.';
    to.number(zev::truncated(fsec * 1e9), 6);
  }
  to.end();
  return 0;
}

}  // extern "C"
