#include <cstring>
#include <optional>

#include "types/number_text.h"
#include "types/ocitimestamp/decode_datetime.h"

namespace {

using namespace zev;

bool isPunctuation(char c) {
  return c > ' ' && c < 0x7f && !isAlphanumeric(c);
}

/// Reads fields off a text and copies them into the work buffer.
class Splitter {
 public:
  Splitter(const char *text, char *work, std::size_t size)
      : at_(text), out_(work), end_(work + size) {}

  bool atEnd() {
    at_ = skipSpace(at_);
    return *at_ == '\0';
  }
  /// Skips punctuation that separates fields; false when there is none.
  bool skipSeparator() {
    if (isDigit(*at_) || isLetter(*at_) || *at_ == '.' || *at_ == '+' || *at_ == '-')
      return false;
    if (!isPunctuation(*at_)) return false;
    ++at_;
    return true;
  }
  /// The kind of the next field, which ends with its NUL; empty when it is none or there
  /// is no room.
  std::optional<FieldType> next(char *&field) {
    field = out_;
    const std::optional<FieldType> type = read();
    put('\0');
    return type && !isFull_ ? type : std::nullopt;
  }

 private:
  std::optional<FieldType> read() {
    field_ = out_;
    if (isDigit(*at_)) return readFromDigit();
    if (*at_ == '.') {
      take();
      takeDigits();
      return kNumberField;
    }
    if (isLetter(*at_)) return readFromLetter();
    if (*at_ == '+' || *at_ == '-') return readFromSign();
    return std::nullopt;
  }

  FieldType readFromDigit() {
    takeDigits();
    if (*at_ == ':') {
      takeWhile([](char c) { return isDigit(c) || c == ':' || c == '.'; });
      return kTimeField;
    }
    const char delimiter = *at_;
    if (delimiter != '-' && delimiter != '.' && delimiter != '/') return kNumberField;
    take();
    if (!isDigit(*at_)) {
      takeWhile([=](char c) { return isAlphanumeric(c) || c == delimiter; });
      return kDateField;
    }
    takeDigits();
    if (*at_ != delimiter) return delimiter == '.' ? kNumberField : kDateField;
    takeWhile([=](char c) { return isDigit(c) || c == delimiter; });
    return kDateField;
  }

  FieldType readFromLetter() {
    takeWhile(isLetter);
    const bool goesOn = isDigit(*at_) || (*at_ && std::strchr("-./+", *at_));
    if (!goesOn || isKnown()) return kStringField;
    takeWhile(
        [](char c) { return isAlphanumeric(c) || (c && std::strchr("+-./_:", c)); });
    return kDateField;
  }

  std::optional<FieldType> readFromSign() {
    take();
    at_ = skipSpace(at_);
    if (isDigit(*at_)) {
      takeWhile([](char c) { return isDigit(c) || c == ':' || c == '.'; });
      return kZoneField;
    }
    if (!isLetter(*at_)) return std::nullopt;
    takeWhile(isLetter);
    return kSpecialField;
  }

  bool isKnown() {
    if (out_ == end_) return false;
    *out_ = '\0';
    return datebsearch(field_, datetktbl, std::size(datetktbl)) != nullptr;
  }

  void put(char c) {
    isFull_ = isFull_ || out_ == end_;
    if (!isFull_) *out_++ = c;
  }
  void take() { put(lowered(*at_++)); }
  template <class Test>
  void takeWhile(const Test &test) {
    while (test(*at_)) take();
  }
  void takeDigits() { takeWhile(isDigit); }

  const char *at_;
  char *field_ = nullptr;
  char *out_;
  char *end_;
  bool isFull_ = false;
};

}  // namespace

extern "C" sb4 ParseDateTime(const char *text, char *work, std::size_t workLength,
                             char **fields, sb4 *types, sb4 maxFields, sb4 *count) {
  Splitter splitter(text, work, workLength);
  sb4 found = 0;
  while (!splitter.atEnd()) {
    if (splitter.skipSeparator()) continue;
    if (found == maxFields) return -1;
    const auto type = splitter.next(fields[found]);
    if (!type) return -1;
    types[found++] = *type;
  }
  *count = found;
  return 0;
}
