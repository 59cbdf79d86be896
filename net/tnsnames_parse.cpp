#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <string>
#include <string_view>

#include "core/keyword_lookup.h"
#include "net/tnsnames.h"
#include "net/tnsnames_parser.h"
#include "net/tnsnames_scanner.h"

thread_local std::FILE *tnsnamesin = nullptr;
thread_local List *tnsnames_parsetree_list = nullptr;
thread_local int tnsnameslineno = 1;
thread_local TnsnamesValue tnsnameslval = {};

namespace {

// clang-format off
constexpr zev::Keyword kKeywords[] = {
    {"address",            ADDRESS},
    {"address_list",       ADDRESS_LIST},
    {"backup",             BACKUP},
    {"basic",              BASIC},
    {"community",          COMMUNITY},
    {"connect_data",       CONNECT_DATA},
    {"decnet",             DECNET},
    {"dedicated",          DEDICATED},
    {"delay",              DELAY},
    {"description",        DESCRIPTION},
    {"description_list",   DESCRIPTION_LIST},
    {"failover",           FAILOVER},
    {"failover_mode",      FAILOVER_MODE},
    {"false",              FALSE_P},
    {"global_name",        GLOBAL_NAME},
    {"host",               HOST},
    {"hs",                 HS},
    {"instance_name",      INSTANCE_NAME},
    {"ipc",                IPC},
    {"key",                KEY},
    {"load_balance",       LOAD_BALANCE},
    {"method",             METHOD},
    {"no",                 NO},
    {"node",               NODE},
    {"none",               NONE},
    {"object",             OBJECT},
    {"off",                OFF},
    {"ok",                 OK},
    {"on",                 ON},
    {"port",               PORT},
    {"preconnect",         PRECONNECT},
    {"presentation",       PRESENTATION},
    {"protocol",           PROTOCOL},
    {"rdb_database",       RDB_DATABASE},
    {"recv_buf_size",      RECV_BUF_SIZE},
    {"retries",            RETRIES},
    {"sdu",                SDU},
    {"security",           SECURITY},
    {"select",             SELECT},
    {"send_buf_size",      SEND_BUF_SIZE},
    {"server",             SERVER},
    {"service_name",       SERVICE_NAME},
    {"session",            SESSION},
    {"shared",             SHARED},
    {"sid",                SID},
    {"source_route",       SOURCE_ROUTE},
    {"ssl_server_cert_dn", SSL_SERVER_CERT_DN},
    {"tcp",                TCP},
    {"true",               TRUE_P},
    {"type",               TYPE},
    {"type_of_service",    TYPE_OF_SERVICE},
    {"yes",                YES},
};
// clang-format on
static_assert(std::size(kKeywords) == 52);
static_assert(std::ranges::is_sorted(kKeywords, {}, &zev::Keyword::word));

/// What the parser's table gives for a scanner that could not go on.
constexpr int kFailedToken = TNSerror;

enum Outcome { kParsed = 0, kSyntaxError = 1, kOutOfMemory = 2 };

/// There is no way on from a file that opens and does not let itself be read: without it
/// nobody knows where to connect.
[[noreturn]] void endProcess() {
  std::fputs("input in flex scanner failed\n", stderr);
  std::exit(2);
}

/// The rest of a file.
std::string readAll(std::FILE *file) {
  std::string text;
  char block[8192];
  while (!std::feof(file)) {
    const std::size_t length = std::fread(block, 1, sizeof block, file);
    text.append(block, length);
    if (length || !std::ferror(file)) continue;
    if (errno != EINTR) endProcess();
    std::clearerr(file);
  }
  return text;
}

/// A scanner over the text of a file.
class Scanner {
 public:
  Scanner() = default;
  ~Scanner() { finish(); }
  Scanner(const Scanner &) = delete;
  Scanner &operator=(const Scanner &) = delete;

  int next() {
    if (!scanner_) start(tnsnamesin ? readAll(tnsnamesin) : std::string());
    const int token = tnslex(scanner_);
    if (token == 0) finish();
    return token;
  }
  void finish() {
    if (scanner_) tnslex_destroy(scanner_);
    scanner_ = nullptr;
    text_.clear();
    text_.shrink_to_fit();
    failed_ = false;
  }
  /// Gives up: memory ran out.
  void fail() {
    finish();
    failed_ = true;
  }
  bool failed() const { return failed_; }

 private:
  void start(std::string text) {
    if (text.size() > INT_MAX - 2) throw std::bad_alloc();  // lengths are of type int
    text_ = std::move(text);
    text_.append(2, '\0');
    if (tnslex_init(&scanner_) != 0) throw std::bad_alloc();
    zev::tnsnames::scan(text_.data(), text_.size(), scanner_);
  }

  std::string text_;
  yyscan_t scanner_ = nullptr;
  bool failed_ = false;
};

thread_local Scanner scanner;

}  // namespace

extern "C" {

int tnsnameslex() {
  try {
    return scanner.next();
  } catch (const std::bad_alloc &) {
    scanner.fail();
    return kFailedToken;
  }
}

int tnsnamesparse() {
  scanner.finish();
  tnsnames_parsetree_list = nullptr;
  int outcome = tnsparse();
  if (scanner.failed()) {
    tnsnameserror("memory exhausted");
    outcome = kOutOfMemory;
  }
  scanner.finish();
  if (outcome != kParsed) {
    zev::tnsnames::releaseNodes(tnsnames_parsetree_list);
    tnsnames_parsetree_list = nullptr;
  }
  return outcome;
}

int tnsnameserror(const char *text) {
  std::fprintf(stderr, "%d:%s\n", tnsnameslineno, text);
  return 1;
}

int ScanKeywordLookup(const char *word) {
  return zev::findKeyword(kKeywords, word);
}

}  // extern "C"
