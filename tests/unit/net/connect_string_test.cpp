#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "zevoci/connection.h"

namespace zev::test {
namespace {

using Part = std::optional<std::string>;

struct Address {
  bool understood = false;
  Part host, port, dbname, uri;
  bool operator==(const Address &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Address &a) {
  out << (a.understood ? "yes" : "no");
  for (const Part &part : {a.host, a.port, a.dbname, a.uri}) {
    out << " [" << part.value_or("(null)") << ']';
  }
  return out;
}

Part take(char *text) {
  if (!text) return {};
  const std::unique_ptr<char, decltype(&std::free)> owned(text, std::free);
  return std::string(text);
}

Address parse(const std::string &text, sb4 length = 0) {
  char poison = 0;
  char *host = &poison, *port = &poison, *dbname = &poison, *uri = &poison;
  const boolean understood =
      parse_connect_str(text.c_str(), length, &host, &port, &dbname, &uri);
  return {understood == 1, take(host), take(port), take(dbname), take(uri)};
}

struct ConnectCase {
  const char *text;
  Address address;
};

Address parts(const char *host, const char *port, const char *dbname) {
  return {true, host, port, dbname, {}};
}
Address uri(const char *text) {
  return {true, {}, {}, {}, text};
}

TEST(ConnectString, PartsByTheirSeparators) {
  const ConnectCase rows[] = {
      {"host:5432/db", parts("host", "5432", "db")},
      {"//host:5432/db", parts("host", "5432", "db")},
      {"host/db", parts("host", "", "db")},
      {"host:5432", parts("host", "5432", "")},
      {"host", parts("host", "", "")},
      {"//host", parts("host", "", "")},
      {"/host", parts("", "", "host")},
      {"///host", parts("", "", "host")},
      {"//", parts("", "", "")},
      {"", parts("", "", "")},
      {":", parts("", "", "")},
      {"/", parts("", "", "")},
      {":/", parts("", "", "")},
      {"h:1:2/d/e", parts("h", "1:2", "d/e")},
      {"h:1/d:e", parts("h", "1", "d:e")},
      {"h:1/d?x=y", parts("h", "1", "d?x=y")},
      {"postgres://h/d", uri("postgres://h/d")},
      {"postgresql://u:p@h:1/d", uri("postgresql://u:p@h:1/d")},
      {"postgres://", uri("postgres://")},
      {"a/b:c", {}},
      {"/a:b", {}},
      {"//a/b:c", {}},
      {"postgres:/h/d", parts("postgres", "", "h/d")},
      {"POSTGRES://h/d", parts("POSTGRES", "", "/h/d")},
      {" postgres://h/d", parts(" postgres", "", "/h/d")},
      {"//postgres://h/d", parts("postgres", "", "/h/d")},
      {"[::1]:5432/db", parts("[", ":1]:5432", "db")},
  };
  for (const ConnectCase &row : rows) EXPECT_EQ(parse(row.text), row.address) << row.text;
}

TEST(ConnectString, TheLengthIsNotUsed) {
  for (const sb4 length : {-1, 0, 1, 1000}) {
    EXPECT_EQ(parse("host:5432/db", length), parts("host", "5432", "db"));
  }
}

/// A second reading of the same rules, character by character.
Address model(std::string text) {
  if (text.rfind("postgresql://", 0) == 0 || text.rfind("postgres://", 0) == 0) {
    return {true, {}, {}, {}, text};
  }
  if (text.substr(0, 2) == "//") text = text.substr(2);
  Address a{true, "", "", "", {}};
  enum { kHost, kPort, kDb } at = kHost;
  for (const char c : text) {
    if (at == kHost && c == ':') {
      at = kPort;
    } else if (at != kDb && c == '/') {
      at = kDb;
    } else {
      *(at == kHost ? a.host : at == kPort ? a.port : a.dbname) += c;
    }
  }
  // A colon that first comes behind the slash asks for a look-up by name.
  const auto slash = text.find('/');
  const auto colon = text.find(':');
  if (slash != text.npos && colon != text.npos && colon > slash) return {};
  return a;
}

TEST(ConnectString, RandomTextAgreesWithAModel) {
  std::mt19937 random(20261120);
  const std::string pieces[] = {"postgres", "ql", "://", "/", ":",
                                "//",       "a",  "5",   "@", "."};
  int names = 0, uris = 0;
  for (int i = 0; i < 50000; ++i) {
    std::string text;
    for (auto n = random() % 7; n; --n) text += pieces[random() % std::size(pieces)];
    const Address wanted = model(text);
    ASSERT_EQ(parse(text), wanted) << text;
    names += !wanted.understood;
    uris += wanted.uri.has_value();
  }
  EXPECT_GT(names, 1000);
  EXPECT_GT(uris, 100);
}

}  // namespace
}  // namespace zev::test
