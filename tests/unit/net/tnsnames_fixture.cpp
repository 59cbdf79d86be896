#include "tests/unit/net/tnsnames_fixture.h"

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>

namespace zev::test {
namespace {

std::string orDash(const char *text) {
  return text ? text : "-";
}

std::string printed(const OCIAddress *address) {
  if (!address) return "~";
  return orDash(address->host ? address->host->host : nullptr) + ':' +
         orDash(address->port ? address->port->port : nullptr);
}

/// Writes the productions of the grammar one by one, at random. Each gives its text and,
/// where something is kept of it, what that is.
class Writer {
 public:
  explicit Writer(std::mt19937_64 &random) : random_(random) {}

  struct Address {
    std::string host = "-", port = "-";
  };
  struct Description {
    std::string address = "~", sid = "-";
  };

  std::string entry(std::string &entries) {
    const std::string name = word();
    Description description;
    std::string text =
        oneOf(2) ? this->description(description) : group("DESCRIPTION_LIST", [&] {
          return firstOf(description,
                         [&](Description &d) { return this->description(d); });
        });
    entries += name + '=' + description.address + '/' + description.sid + ';';
    return gap() + name + gap() + '=' + gap() + text + gap();
  }

 private:
  std::size_t oneOf(std::size_t n) { return random_() % n; }

  /// White space and comments.
  std::string gap() {
    static const char *const kGaps[] = {
        "", "", "", " ", "\t", "\n", "\r\n", "\f ", " # (a = \"b\"\n"};
    return kGaps[oneOf(std::size(kGaps))];
  }

  std::string cased(std::string word) {
    const auto how = oneOf(4);
    for (char &c : word) {
      const bool lower = how == 1 || (how == 2 && oneOf(2));
      c = static_cast<char>(lower ? std::tolower(c) : std::toupper(c));
    }
    return word;
  }

  template <class Body>
  std::string group(const char *keyword, Body body) {
    return gap() + '(' + gap() + cased(keyword) + gap() + '=' + gap() + body() + gap() +
           ')';
  }
  std::string group(const char *keyword, const std::string &value) {
    return group(keyword, [&] { return value; });
  }

  /// A plain word, which is no keyword since it has a "q" behind its first letter.
  std::string word() {
    static const std::string kStart = "abzAZ_\xc3\xff";
    static const std::string kContinue = kStart + "019#$-";
    std::string text{kStart[oneOf(kStart.size())], 'q'};
    for (auto n = oneOf(8); n > 0; --n) text += kContinue[oneOf(kContinue.size())];
    return text;
  }
  /// An identifier: words joined by dots, which may be keywords then.
  std::string identifier() {
    if (oneOf(3)) return word();
    return word() + '.' + (oneOf(2) ? word() : cased("HOST")) + (oneOf(4) ? "" : ".q9");
  }
  std::string number() { return std::to_string(oneOf(100000)); }
  std::string dotted() {
    return number() + '.' + number() + '.' + number() + '.' + number();
  }
  template <std::size_t N>
  std::string keyword(const char *const (&words)[N]) {
    return cased(words[oneOf(N)]);
  }
  std::string boolean() {
    static const char *const kWords[] = {"ON", "OFF", "YES", "NO", "TRUE", "FALSE"};
    return keyword(kWords);
  }

  /// One or more productions, of which the first counts.
  template <class T, class Write>
  std::string firstOf(T &first, Write write) {
    std::string text = write(first);
    for (auto n = oneOf(3); n > 0; --n) {
      T other;
      text += write(other);
    }
    return text;
  }

  std::string description(Description &d) {
    return group("DESCRIPTION", [&] {
      std::string text;
      for (auto n = 1 + oneOf(5); n > 0; --n) text += descriptionParam(d);
      return text;
    });
  }

  std::string descriptionParam(Description &d) {
    Address address;
    std::string sid = "-", text;
    switch (oneOf(11)) {
      case 0:
        return group("FAILOVER", boolean());
      case 1:
        return group("LOAD_BALANCE", boolean());
      case 2:
        return group("SOURCE_ROUTE", boolean());
      case 3:
        return group("RECV_BUF_SIZE", number());
      case 4:
        return group("SEND_BUF_SIZE", number());
      case 5:
        return group("SDU", number());
      case 6:
        return group("TYPE_OF_SERVICE", identifier());
      case 7:
        return group("SECURITY", [&] {
          static const char *const kNames[] = {"\"\"", "\"CN=a b\"", "\"(\n=#)\""};
          return group("SSL_SERVER_CERT_DN", std::string(kNames[oneOf(3)]));
        });
      case 8:
        text = group("CONNECT_DATA", [&] { return connectData(sid); });
        if (d.sid == "-") d.sid = sid;
        return text;
      case 9:
        text = this->address(address);
        break;
      default:
        text = group("ADDRESS_LIST", [&] {
          return firstOf(address, [&](Address &a) { return this->address(a); });
        });
        break;
    }
    if (d.address == "~") d.address = address.host + ':' + address.port;
    return text;
  }

  std::string address(Address &a) {
    return group("ADDRESS", [&] {
      std::string text;
      for (auto n = 1 + oneOf(4); n > 0; --n) text += addressParam(a);
      return text;
    });
  }

  std::string addressParam(Address &a) {
    static const char *const kDropped[] = {"KEY", "COMMUNITY", "OBJECT", "NODE"};
    static const char *const kProtocols[] = {"TCP", "IPC", "DECNET"};
    std::string value;
    switch (oneOf(4)) {
      case 0:
        return group("PROTOCOL", keyword(kProtocols));
      case 1:
        return group(kDropped[oneOf(4)], identifier());
      case 2:
        value = oneOf(2) ? identifier() : dotted();
        if (a.host == "-") a.host = value;
        return group("HOST", value);
      default:
        value = number();
        if (a.port == "-") a.port = value;
        return group("PORT", (oneOf(4) ? "" : "00") + value);
    }
  }

  std::string connectData(std::string &sid) {
    std::string text;
    for (auto n = 1 + oneOf(4); n > 0; --n) text += connectDataParam(sid);
    return text;
  }

  std::string connectDataParam(std::string &sid) {
    static const char *const kDropped[] = {"GLOBAL_NAME", "INSTANCE_NAME", "RDB_DATABASE",
                                           "SERVICE_NAME", "PRESENTATION"};
    static const char *const kServers[] = {"DEDICATED", "SHARED"};
    std::string value;
    switch (oneOf(5)) {
      case 0:
        return group("HS", cased("OK"));
      case 1:
        return group("SERVER", keyword(kServers));
      case 2:
        return group("FAILOVER_MODE", [&] {
          std::string text;
          for (auto n = 1 + oneOf(3); n > 0; --n) text += failoverMode();
          return text;
        });
      case 3:
        value = identifier();
        if (sid == "-") sid = value;
        return group("SID", value);
      default:
        return group(kDropped[oneOf(5)], identifier());
    }
  }

  std::string failoverMode() {
    static const char *const kTypes[] = {"SESSION", "SELECT", "NONE"};
    static const char *const kMethods[] = {"BASIC", "PRECONNECT"};
    switch (oneOf(5)) {
      case 0:
        return group("BACKUP", std::string());
      case 1:
        return group("TYPE", keyword(kTypes));
      case 2:
        return group("METHOD", keyword(kMethods));
      case 3:
        return group("RETRIES", number());
      default:
        return group("DELAY", number());
    }
  }

  std::mt19937_64 &random_;
};

}  // namespace

std::string printed(const List *entries) {
  std::string text;
  for (const OCINode *node : Elements<OCINode>(entries)) {
    if (!node || node->tag != kNetServiceNameTag) return "no entry";
    const auto *entry = static_cast<const OCINetServiceName *>(node);
    text += orDash(entry->name) + '=' + printed(entry->address) + '/' +
            orDash(entry->sid ? entry->sid->sid : nullptr) + ';';
  }
  return text;
}

std::pair<int, List *> parseText(std::string_view text) {
  tnsnamesin = fmemopen(const_cast<char *>(text.data()), text.size(), "r");
  EXPECT_NE(tnsnamesin, nullptr);
  const int outcome = tnsnamesparse();
  std::fclose(tnsnamesin);
  tnsnamesin = nullptr;
  return {outcome, std::exchange(tnsnames_parsetree_list, nullptr)};
}

ParsedFile::ParsedFile(std::string_view text) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const auto [result, list] = parseText(text);
  std::fflush(stdout);
  out = testing::internal::GetCapturedStdout();
  err = testing::internal::GetCapturedStderr();
  outcome = result;
  entries = printed(list);
  tnsnames::releaseNodes(list);
}

RandomFile::RandomFile(std::mt19937_64 &random) {
  Writer writer(random);
  for (auto n = 1 + random() % 3; n > 0; --n) text += writer.entry(entries);
}

std::string mutated(std::string text, std::mt19937_64 &random) {
  static const std::string_view kPieces[] = {
      "(",    ")",           "=",    "\"",  "#",    ".",      "-",  "\n",
      "host", "sid",         "1",    "1.2", "a.b",  "@",      "''", "\xff",
      "\x01", "DESCRIPTION", "port", "()",  "(a=)", "(HS=ok)"};
  for (auto n = 1 + random() % 4; n > 0; --n) {
    const std::size_t at = random() % (text.size() + 1);
    const std::size_t length = random() % 5;
    const auto piece = kPieces[random() % std::size(kPieces)];
    switch (random() % 4) {
      case 0:
        text.erase(at, length);
        break;
      case 1:
        text.insert(at, piece);
        break;
      case 2:
        text.insert(at, text.substr(at, 3 * length));
        break;
      default:
        text.replace(at, length, std::string(1, static_cast<char>(random())));
        break;
    }
  }
  return text;
}

}  // namespace zev::test
