#include <algorithm>
#include <array>
#include <cctype>

#include "pqext/many_rows.h"

namespace zev::pqext {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool startsName(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || (c & 0x80) != 0;
}
bool continuesName(char c) {
  return startsName(c) || isDigit(c) || c == '$';
}

/// Reads a text token by token; a step that does not fit makes the whole text unfit.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool ok() const { return ok_; }
  std::size_t place() {
    skipBlanks();
    return place_;
  }
  std::string_view between(std::size_t from, std::size_t to) const {
    return text_.substr(from, to - from);
  }

  bool at(char c) {
    skipBlanks();
    return place_ < text_.size() && text_[place_] == c;
  }
  bool take(char c) {
    if (!at(c)) return false;
    ++place_;
    return true;
  }
  void expect(char c) { ok_ = take(c) && ok_; }
  void expectEnd() {
    take(';');
    skipBlanks();
    ok_ = ok_ && place_ == text_.size();
  }

  /// A word without regard to the case of its letters.
  bool takeWord(std::string_view word) {
    const std::size_t start = place();
    const std::string_view found = readName();
    const bool same = std::ranges::equal(found, word, {}, [](char c) {
      return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    });
    if (!same) place_ = start;
    return same;
  }
  void expectWord(std::string_view word) { ok_ = takeWord(word) && ok_; }

  /// A plain or quoted name.
  void expectName() {
    if (at('"')) {
      ok_ = takeQuoted('"') && ok_;
    } else {
      ok_ = !readName().empty() && ok_;
    }
  }

  /// A parameter, a plain number or string, NULL or DEFAULT.
  void expectValue() {
    const bool taken = takeParameter() || takeNumber() ||
                       (at('\'') && takeQuoted('\'')) || takeWord("NULL") ||
                       takeWord("DEFAULT");
    ok_ = taken && ok_;
  }

 private:
  void skipBlanks() {
    while (place_ < text_.size() && isBlank(text_[place_])) ++place_;
  }

  std::string_view readName() {
    skipBlanks();
    const std::size_t start = place_;
    if (place_ < text_.size() && startsName(text_[place_])) {
      while (place_ < text_.size() && continuesName(text_[place_])) ++place_;
    }
    return text_.substr(start, place_ - start);
  }

  bool takeDigits() {
    const std::size_t start = place_;
    while (place_ < text_.size() && isDigit(text_[place_])) ++place_;
    return place_ > start;
  }

  /// Goes back to where a value began that was none; false.
  bool giveBack(std::size_t start) {
    place_ = start;
    return false;
  }

  bool takeParameter() {
    const std::size_t start = place();
    if (!at('$')) return false;
    ++place_;
    return (takeDigits() && !standsInName()) || giveBack(start);
  }

  bool takeNumber() {
    const std::size_t start = place();
    if (at('-') || at('+')) ++place_;
    if (!takeDigits()) return giveBack(start);
    if (place_ < text_.size() && text_[place_] == '.') {
      ++place_;
      takeDigits();
    }
    return !standsInName() || giveBack(start);
  }

  /// A backslash may mean itself or not, by a setting of the session.
  bool takeQuoted(char quote) {
    ++place_;
    while (place_ < text_.size()) {
      const char c = text_[place_++];
      if (c == '\\') return false;
      if (c != quote) continue;
      if (place_ < text_.size() && text_[place_] == quote) {
        ++place_;
        continue;
      }
      return true;
    }
    return false;
  }

  bool standsInName() const {
    return place_ < text_.size() &&
           (continuesName(text_[place_]) || text_[place_] == '.');
  }

  std::string_view text_;
  std::size_t place_ = 0;
  bool ok_ = true;
};

}  // namespace

std::optional<InsertText> parseInsert(std::string_view text) {
  Reader in(text);
  in.expectWord("INSERT");
  in.expectWord("INTO");
  const std::size_t table = in.place();
  in.expectName();
  while (in.ok() && in.take('.')) in.expectName();
  const std::size_t tableEnd = in.place();
  if (in.take('(')) {
    do {
      in.expectName();
    } while (in.ok() && in.take(','));
    in.expect(')');
  }
  in.expectWord("VALUES");
  const std::size_t values = in.place();
  in.expect('(');
  do {
    in.expectValue();
  } while (in.ok() && in.take(','));
  in.expect(')');
  const std::size_t end = in.place();
  in.expectEnd();
  if (!in.ok()) return std::nullopt;
  return InsertText{in.between(table, tableEnd), in.between(0, values),
                    in.between(values, end)};
}

std::string insertOf(std::string_view head, std::string_view values, int params,
                     int rows) {
  std::string text(head);
  for (int row = 0; row < rows; ++row) {
    if (row > 0) text += ", ";
    bool quoted = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const char c = values[i];
      if (c == '\'') quoted = !quoted;
      text += c;
      if (c != '$' || quoted) continue;
      int number = 0;
      while (i + 1 < values.size() && isDigit(values[i + 1])) {
        number = number * 10 + (values[++i] - '0');
      }
      text += std::to_string(number + row * params);
    }
  }
  return text;
}

}  // namespace zev::pqext
