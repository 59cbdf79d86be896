#include "stmt/placeholder.h"

#include <regex.h>

#include <algorithm>
#include <functional>

#include "stmt_fixture.h"

namespace zevtest {
namespace {

using Indexes = std::vector<int>;
using Names = std::vector<std::string>;

/// What ReplacePlaceholders gives, in values.
struct Bound {
  std::string query;
  Indexes binds;
  bool operator==(const Bound &) const = default;
};

/// Rewrites and checks what holds for every answer.
Bound replaceBound(NamedBinds &binds, const std::string &text) {
  char *query = nullptr;
  ub4 count = 99;
  Oid *types = nullptr;
  ub4 *directions = nullptr;
  List *list =
      ReplacePlaceholders(binds.list(), text.c_str(), static_cast<ub4>(text.size()),
                          &query, &count, &types, &directions);
  const zev::Malloced<char> ownedQuery(query);
  const zev::Malloced<Oid> ownedTypes(types);
  const zev::Malloced<ub4> ownedDirections(directions);
  Bound bound{query, {}};
  EXPECT_EQ(count, list_length(list));
  EXPECT_EQ(types != nullptr, count > 0);
  EXPECT_EQ(directions != nullptr, count > 0);
  for (const OCIBind *bind : zev::Elements<OCIBind>(list)) {
    EXPECT_EQ(types[bound.binds.size()], bind->pgType);
    EXPECT_EQ(directions[bound.binds.size()], bind->paramMode);
    bound.binds.push_back(binds.indexOf(bind));
  }
  list_free(list);
  return bound;
}

/// What ReplacePlaceholdersEx gives, in values.
struct Described {
  std::string query;
  Names names;
  ub4 count;
  bool operator==(const Described &) const = default;
};

Described replaceAll(const std::string &text) {
  char *query = nullptr;
  ub4 count = 99;
  List *list = ReplacePlaceholdersEx(nullptr, text.c_str(), &query, &count);
  Described described{query, {}, count};
  std::free(query);
  for (const char *name : zev::Elements<char>(list)) described.names.push_back(name);
  free_list_members(list);
  list_free(list);
  return described;
}

void PrintTo(const Bound &bound, std::ostream *out) {
  *out << '"' << bound.query << "\" " << testing::PrintToString(bound.binds);
}
void PrintTo(const Described &described, std::ostream *out) {
  *out << '"' << described.query << "\" " << testing::PrintToString(described.names)
       << ' ' << described.count;
}

TEST(CharIsContinuation, TakesDigitsLettersAndUnderscore) {
  const std::string continuing =
      "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
  for (int c = 0; c < 256; ++c) {
    const bool expected = c && continuing.find(static_cast<char>(c)) != std::string::npos;
    EXPECT_EQ(charIsContinuation(c) != 0, expected) << c;
    EXPECT_EQ(charIsContinuation(static_cast<char>(c)) != 0, expected) << c;
  }
}

TEST(PlaceholderLen, MeasuresWithTheColon) {
  const struct {
    const char *text;
    ub4 length;
  } rows[] = {
      {":a", 2},         {":abc def", 4},  {":a_1,", 4}, {":A9z", 4},   {":1", 2},
      {":12a", 3},       {":0099 ", 5},    {":_a", 0},   {":", 0},      {": a", 0},
      {"::a", 0},        {":=1", 0},       {":a:b", 2},  {":a$b", 2},   {":a#", 2},
      {":a\xc3\xa4", 2}, {":\xc3\xa4", 0}, {":'a'", 0},  {":\"a\"", 0}, {":$1", 0},
  };
  for (const auto &row : rows)
    EXPECT_EQ(placeholderLen(row.text), row.length) << row.text;
}

TEST(FindBindByName, TakesTheFirstThatAgreesOverTheTextsLength) {
  const struct {
    Names names;
    const char *text;
    ub4 length;
    int found;
  } rows[] = {
      {{":a"}, ":a", 2, 0},
      {{":abc"}, ":ab", 3, 0},
      {{":ab"}, ":abc", 4, -1},
      {{":b", ":a"}, ":a", 2, 1},
      {{":abc", ":ab"}, ":ab x", 3, 0},
      {{":A"}, ":a", 2, -1},
      {{":a"}, ":a", 0, -1},
      {{}, ":a", 2, -1},
      {{":a"}, ":a", 9, 0},  // both end
      {{":1", ":10"}, ":10", 3, 1},
  };
  for (const auto &row : rows) {
    const NamedBinds binds(row.names);
    EXPECT_EQ(binds.indexOf(findBindByName(row.text, row.length, binds.list())),
              row.found)
        << row.text;
  }
}

TEST(FindPlaceholderBindHandle, DoesNotRegardCase) {
  const struct {
    const char *text;
    ub4 length;
    int found;
  } rows[] = {{":b", 2, 0}, {":B", 2, 0},     {":aBc", 4, 1}, {":AB", 3, 1},
              {":", 1, 0},  {":abcd", 5, -1}, {":b", 0, -1},  {":c", 2, -1}};
  const NamedBinds binds({":b", ":Abc"});
  OCIStmt stmt{};
  stmt.binds = binds.list();
  for (const auto &row : rows) {
    EXPECT_EQ(binds.indexOf(find_placeholder_bind_handle(&stmt, row.text, row.length)),
              row.found)
        << row.text;
  }
}

TEST(FindBindByName, PassesOverABindThatHasNoNameYet) {
  NamedBinds binds({":a", ":b"});
  binds[0].name = nullptr;
  OCIStmt stmt{};
  stmt.binds = binds.list();
  EXPECT_EQ(findBindByName(":b", 2, binds.list()), &binds[1]);
  EXPECT_EQ(find_placeholder_bind_handle(&stmt, ":B", 2), &binds[1]);
}

TEST(ReplacePlaceholders, RewritesWhatIsBound) {
  const struct {
    Names names;
    const char *text;
    Bound bound;
  } rows[] = {
      {{":a"}, "select :a, :a from t", {"select $1, $2 from t", {0, 0}}},
      {{":a"}, "select ':a'", {"select ':a'", {}}},
      {{":a"}, "select \":a\" from t", {"select \"$1\" from t", {0}}},
      {{":a"}, "x := :a", {"x := $1", {0}}},
      {{":a"}, "a::int", {"a::int", {}}},
      {{":int"}, "a::int", {"a:$1", {0}}},
      {{":1", ":2"}, ":1 and :2", {"$1 and $2", {0, 1}}},
      {{":1", ":2"}, ":2 and :1", {"$1 and $2", {1, 0}}},
      {{}, "select :a, :1", {"select :a, :1", {}}},
      {{":a"}, "", {"", {}}},
      {{":a"}, ":abc", {":abc", {}}},
      {{":abc"}, ":a :ab :abc", {"$1 $2 $3", {0, 0, 0}}},
      {{":A"}, ":a", {":a", {}}},
      {{":a"}, "'it''s :a' :a", {"'it''s :a' $1", {0}}},
      {{":a"}, "-- it's :a\n:a", {"-- it's :a\n:a", {}}},
      {{":a"}, "/* :a */ $$:a$$", {"/* $1 */ $$$2$$", {0, 0}}},
      {{":a"}, "':a", {"':a", {}}},
      {{":a"}, ":a:a", {"$1$2", {0, 0}}},
      {{":a"}, ":a\xc3\xa4 :a$b", {"$1\xc3\xa4 $2$b", {0, 0}}},
      {{":a", ":ab"}, ":ab", {"$1", {1}}},
      {{":a\nfrom"}, "select :a\nfrom t", {"select $1\nfrom t", {0}}},
      {{":a"}, ":_a : :", {":_a : :", {}}},
  };
  for (const auto &row : rows) {
    NamedBinds binds(row.names);
    EXPECT_EQ(replaceBound(binds, row.text), row.bound) << row.text;
  }
}

TEST(ReplacePlaceholdersEx, RewritesEveryPlaceholder) {
  const struct {
    const char *text;
    Described described;
  } rows[] = {
      {"select :a, :a from t", {"select $1, $2 from t", {"a", "a"}, 2}},
      {"select ':a'", {"select ':a'", {}, 0}},
      {"select \":a\" from t", {"select \":a\" from t", {}, 0}},
      {"\"x' :a",
       {"\"x' $1", {"a"}, 1}},  // a single quote ends what a double quote opened
      {"x := :a", {"x := $1", {"a"}, 1}},
      {"a::int", {"a::int", {}, 0}},
      {"a:::b", {"a:::b", {}, 0}},
      {":2 and :1", {"$1 and $2", {"2", "1"}, 2}},
      {"", {"", {}, 0}},
      {":", {"$1", {}, 1}},
      {"a ::", {"a ::", {}, 0}},
      {": x", {"$1 x", {""}, 1}},
      {":_a", {"$1", {"_a"}, 1}},
      {":a:b", {"$1:b", {"a"}, 1}},
      {":a':b'", {"$1'$2'", {"a", "b"}, 2}},  // the byte that ends a name opens nothing
      {"$$:a$$ :b", {"$$:a$$ $1", {"b"}, 1}},
      {"$t$ :a $t$:b", {"$t$ :a $t$$1", {"b"}, 1}},
      {"$t$ ':a $t$ :b", {"$t$ ':a $t$ $1", {"b"}, 1}},
      {"$1 :a", {"$1 :a", {}, 0}},
      {"'it''s :a' :b", {"'it''s :a' $1", {"b"}, 1}},
      {"'a\\' :b' :c", {"'a\\' :b' $1", {"c"}, 1}},
      {"\\' :a", {"\\' $1", {"a"}, 1}},
      {"\\\" :a", {"\\\" $1", {"a"}, 1}},
      {":\xc3\xa4", {"$1\xc3\xa4", {""}, 1}},
  };
  for (const auto &row : rows) EXPECT_EQ(replaceAll(row.text), row.described) << row.text;
}

TEST(ReplacePlaceholdersEx, AppendsToTheGivenList) {
  List *names = lappend(nullptr, strdup("first"));
  char *query = nullptr;
  ub4 count = 0;
  EXPECT_EQ(ReplacePlaceholdersEx(names, ":b", &query, &count), names);
  std::free(query);
  EXPECT_EQ(count, 1u);
  EXPECT_STREQ(static_cast<char *>(list_nth(names, 0)), "first");
  EXPECT_STREQ(static_cast<char *>(list_nth(names, 1)), "b");
  free_list_members(names);
  list_free(names);
}

std::string repeated(int times, const std::function<std::string(int)> &part) {
  std::string text;
  for (int i = 1; i <= times; ++i) text += part(i) + ' ';
  return text;
}

TEST(ReplacePlaceholders, WritesNumbersOfEveryWidth) {
  NamedBinds binds({":p"});
  for (const int count : {9, 10, 11, 99, 100, 101, 999, 1000, 1001, 9999}) {
    const Bound bound = replaceBound(binds, repeated(count, [](int) { return ":p"s; }));
    EXPECT_EQ(bound.query,
              repeated(count, [](int i) { return '$' + std::to_string(i); }));
    EXPECT_EQ(bound.binds, Indexes(static_cast<std::size_t>(count), 0));
  }
}

TEST(ReplacePlaceholdersDeathTest, StopsAtTheTenThousandthParameter) {
  NamedBinds binds({":p"});
  EXPECT_DEATH(replaceBound(binds, repeated(10000, [](int) { return ":p"s; })),
               "i < 10000");
}

TEST(ReplacePlaceholdersDeathTest, StopsAtANullArgument) {
  char *query = nullptr;
  ub4 count = 0;
  Oid *types = nullptr;
  ub4 *directions = nullptr;
  const auto call = [&](int missing) {
    ReplacePlaceholders(nullptr, missing == 0 ? nullptr : "", 0,
                        missing == 1 ? nullptr : &query, missing == 2 ? nullptr : &count,
                        missing == 3 ? nullptr : &types,
                        missing == 4 ? nullptr : &directions);
  };
  int argument = 0;
  for (const char *name :
       {"stmt", "pg_query", "param_count", "paramTypes", "paramDirs"}) {
    EXPECT_DEATH(call(argument), name + R"( != \(\(void \*\)0\))"s);
    ++argument;
  }
}

/// A compiled regular expression of the C library.
class Pattern {
 public:
  explicit Pattern(const char *text) {
    EXPECT_EQ(regcomp(&compiled_, text, REG_EXTENDED), 0);
  }
  ~Pattern() { regfree(&compiled_); }
  Pattern(const Pattern &) = delete;
  Pattern &operator=(const Pattern &) = delete;
  bool search(const char *text, regmatch_t *match) const {
    return regexec(&compiled_, text, 1, match, 0) == 0;
  }

 private:
  regex_t compiled_;
};

/// Text outside single quotes is searched for placeholders, what is in them is copied.
Bound modelBound(const Names &names, const std::string &text) {
  static const Pattern placeholder(":([0-9]+|[A-Za-z][0-9A-Za-z_]*)");
  Bound bound;
  bool quoted = false;
  for (std::size_t from = 0; from <= text.size(); quoted = !quoted) {
    const std::size_t to = std::min(text.find('\'', from), text.size());
    const std::string part = text.substr(from, to - from);
    const char *p = part.c_str();
    for (regmatch_t match; !quoted && placeholder.search(p, &match); p += match.rm_eo) {
      const std::string found(p + match.rm_so, p + match.rm_eo);
      const auto bind =
          std::find_if(names.begin(), names.end(),
                       [&](const std::string &name) { return name.starts_with(found); });
      if (bind != names.end())
        bound.binds.push_back(static_cast<int>(bind - names.begin()));
      bound.query.append(p, p + match.rm_so);
      bound.query +=
          bind == names.end() ? found : '$' + std::to_string(bound.binds.size());
    }
    bound.query += p;
    if (to < text.size()) bound.query += '\'';
    from = to + 1;
  }
  return bound;
}

/// Jumps from one opening to what closes it.
class ModelDescribed {
 public:
  explicit ModelDescribed(std::string text) : text_(std::move(text)) {}

  Described answer() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if ((c == '\'' || c == '"') && before(at_) != '\\') {
        copyThrough(endOfString());
      } else if (c == '$') {
        copyThrough(nextDollar(nextDollar(nextDollar(at_))));
      } else if (c == ':' && before(at_) != ':' &&
                 (at_ + 1 == text_.size() || !strchr(":=", text_[at_ + 1]))) {
        takeName();
      } else {
        copyThrough(at_);
      }
    }
    return said_;
  }

 private:
  char before(std::size_t at) const { return at ? text_[at - 1] : '\0'; }
  std::size_t nextDollar(std::size_t at) const {
    return at == text_.npos ? at : text_.find('$', at + 1);
  }
  std::size_t endOfString() const {
    std::size_t end = text_.find('\'', at_ + 1);
    while (end != text_.npos && before(end) == '\\') end = text_.find('\'', end + 1);
    return end;
  }
  void copyThrough(std::size_t end) {
    if (end == text_.npos) end = text_.size() - 1;
    said_.query += text_.substr(at_, end + 1 - at_);
    at_ = end + 1;
  }
  void takeName() {
    said_.query += '$' + std::to_string(++said_.count);
    const std::size_t from = ++at_;
    while (at_ < text_.size() && (isalnum(text_[at_] & 0x7f) || text_[at_] == '_') &&
           static_cast<unsigned char>(text_[at_]) < 0x80) {
      ++at_;
    }
    if (at_ < text_.size() || at_ > from)
      said_.names.push_back(text_.substr(from, at_ - from));
    if (at_ < text_.size()) copyThrough(at_);
  }

  std::string text_;
  std::size_t at_ = 0;
  Described said_{"", {}, 0};
};

constexpr int kRandomTexts = 20000;
const std::string kAlphabet = "'':::::$$\\\"\"01aAbB_= \xc3\xa4\xff,";

TEST(ReplacePlaceholders, AgreesWithTheModel) {
  auto random = generator();
  for (int n = 0; n < kRandomTexts && !testing::Test::HasFailure(); ++n) {
    Names names(random() % 6);
    for (std::string &name : names) name = ':' + randomText(random, "01aAbB_", 3);
    NamedBinds binds(names);
    const std::string text = randomText(random, kAlphabet, 60);
    EXPECT_EQ(replaceBound(binds, text), modelBound(names, text))
        << text << " with " << testing::PrintToString(names);
  }
}

TEST(ReplacePlaceholdersEx, AgreesWithTheModel) {
  auto random = generator();
  for (int n = 0; n < kRandomTexts && !testing::Test::HasFailure(); ++n) {
    const std::string text = randomText(random, kAlphabet, 60);
    EXPECT_EQ(replaceAll(text), ModelDescribed(text).answer()) << text;
  }
}

}  // namespace
}  // namespace zevtest
