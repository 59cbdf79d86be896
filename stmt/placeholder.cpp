#include "stmt/placeholder.h"

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string>

#include "zevoci/text.h"

namespace {

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr ub4 kMostParameters = 10000;

/// Digits of a parameter's number.
ub4 digitCount(ub4 i) {
  ZEV_ASSERT(i < kMostParameters, "i < 10000");
  return i < 10 ? 1 : i < 100 ? 2 : i < 1000 ? 3 : 4;
}

/// Walks a statement as the bind-driven rewriter reads it: single quotes are the only
/// quotes, and a ":" outside them is a placeholder when a bind has its name.
template <class OnText, class OnBind>
void walk(const List *binds, const char *text, ub4 length, OnText onText, OnBind onBind) {
  bool quoted = false;
  for (ub4 i = 0; i < length;) {
    if (text[i] == '\'') quoted = !quoted;
    const ub4 size = text[i] == ':' && !quoted ? placeholderLen(text + i) : 0;
    if (OCIBind *bind = findBindByName(text + i, size, binds)) {
      onBind(bind);
      i += size;
    } else {
      onText(text[i++]);
    }
  }
}

char *appendNumber(char *out, ub4 number) {
  *out++ = '$';
  return std::to_chars(out, out + digitCount(number), number).ptr;
}

/// An array of `count` elements of the system allocator; null for none.
template <class T>
T *newArray(ub4 count) {
  return count ? static_cast<T *>(std::malloc(count * sizeof(T))) : nullptr;
}

/// The states of the text-driven rewriter.
enum class Scan { Plain, Name, String, OpeningTag, DollarBody, ClosingTag };

/// Reads a statement byte by byte for the text-driven rewriter.
class TextScanner {
 public:
  explicit TextScanner(List *names) : names_(names) {}

  void take(char previous, char c, char next) {
    switch (state_) {
      case Scan::Plain:
        takePlain(previous, c, next);
        return;
      case Scan::Name:
        takeName(c);
        return;
      case Scan::String:
        query_ += c;
        if (c == '\'' && previous != '\\') state_ = Scan::Plain;
        return;
      case Scan::OpeningTag:
        copyUntilDollar(c, Scan::DollarBody);
        return;
      case Scan::DollarBody:
        copyUntilDollar(c, Scan::ClosingTag);
        return;
      case Scan::ClosingTag:
        copyUntilDollar(c, Scan::Plain);
        return;
    }
  }

  void finish() {
    if (!name_.empty()) endName();
  }

  const std::string &query() const { return query_; }
  ub4 count() const { return count_; }
  List *names() const { return names_; }

 private:
  void takePlain(char previous, char c, char next) {
    if (c == ':' && startsPlaceholder(previous, next)) {
      query_ += '$' + std::to_string(++count_);
      state_ = Scan::Name;
      return;
    }
    query_ += c;
    if (c == '$') state_ = Scan::OpeningTag;
    // A double quote opens the same state, which only a single quote ends.
    if ((c == '\'' || c == '"') && previous != '\\') state_ = Scan::String;
  }

  static bool startsPlaceholder(char previous, char next) {
    return previous != ':' && next != ':' && next != '=';
  }

  void takeName(char c) {
    if (charIsContinuation(c)) {
      name_ += c;
      return;
    }
    endName();
    query_ += c;
    state_ = Scan::Plain;
  }

  void endName() {
    names_ = lappend(names_, makeString(name_.data(), name_.size()));
    name_.clear();
  }

  void copyUntilDollar(char c, Scan next) {
    query_ += c;
    if (c == '$') state_ = next;
  }

  Scan state_ = Scan::Plain;
  List *names_;
  std::string query_;
  std::string name_;
  ub4 count_ = 0;
};

}  // namespace

extern "C" {

boolean charIsContinuation(int c) {
  const auto byte = static_cast<char>(c);
  return isDigit(byte) || isLetter(byte) || byte == '_';
}

ub4 placeholderLen(const char *text) {
  ub4 length = 1;
  if (isDigit(text[1])) {
    while (isDigit(text[length])) ++length;
    return length;
  }
  if (!isLetter(text[1])) return 0;
  while (charIsContinuation(text[length])) ++length;
  return length;
}

OCIBind *findBindByName(const char *text, ub4 n, const List *binds) {
  if (!n) return nullptr;
  for (OCIBind *bind : zev::Elements<OCIBind>(binds)) {
    if (bind->name && std::strncmp(text, bind->name, n) == 0) return bind;
  }
  return nullptr;
}

OCIBind *find_placeholder_bind_handle(const OCIStmt *stmt, const char *name, ub4 length) {
  if (!length) return nullptr;
  for (OCIBind *bind : zev::Elements<OCIBind>(stmt->binds)) {
    if (bind->name && oci_strncasecmp(name, bind->name, length) == 0) return bind;
  }
  return nullptr;
}

List *ReplacePlaceholders(const List *binds, const char *stmt, ub4 length,
                          char **pg_query, ub4 *param_count, Oid **paramTypes,
                          ub4 **paramDirs) {
  ZEV_ASSERT(stmt, "stmt != ((void *)0)");
  ZEV_ASSERT(pg_query, "pg_query != ((void *)0)");
  ZEV_ASSERT(param_count, "param_count != ((void *)0)");
  ZEV_ASSERT(paramTypes, "paramTypes != ((void *)0)");
  ZEV_ASSERT(paramDirs, "paramDirs != ((void *)0)");
  *param_count = 0;
  *pg_query = nullptr;
  *paramTypes = nullptr;
  *paramDirs = nullptr;

  ub4 resultLen = 0;
  ub4 found = 0;
  walk(
      binds, stmt, length, [&](char) { ++resultLen; },
      [&](OCIBind *) { resultLen += 1 + digitCount(++found); });
  auto *query = static_cast<char *>(std::malloc(resultLen + 1));
  auto *types = newArray<Oid>(found);
  auto *directions = newArray<ub4>(found);
  if (!query || (found && (!types || !directions))) {
    for (void *block : {static_cast<void *>(query), static_cast<void *>(types),
                        static_cast<void *>(directions)}) {
      std::free(block);
    }
    return nullptr;
  }

  List *list = nullptr;
  ub4 number = 0;
  char *out = query;
  walk(
      binds, stmt, length, [&](char c) { *out++ = c; },
      [&](OCIBind *bind) {
        types[number] = bind->pgType;
        directions[number] = bind->paramMode;
        out = appendNumber(out, ++number);
        list = lappend(list, bind);
      });
  *out = '\0';
  const auto o = static_cast<ub4>(out - query);
  ZEV_ASSERT(o == resultLen, "o == resultLen");
  *pg_query = query;
  *param_count = found;
  *paramTypes = types;
  *paramDirs = directions;
  return list;
}

List *ReplacePlaceholdersEx(List *nameList, const char *stmt, char **pg_query,
                            ub4 *param_count) {
  TextScanner scanner(nameList);
  char previous = '\0';
  for (const char *p = stmt; *p; previous = *p++) scanner.take(previous, p[0], p[1]);
  scanner.finish();
  *pg_query = makeString(scanner.query().data(), scanner.query().size());
  *param_count = scanner.count();
  return scanner.names();
}

}  // extern "C"
