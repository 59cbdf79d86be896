/// A text that is parsed as a tnsnames.ora file: it is refused and nothing is left, or
/// its entries can be written as a file again that reads the same.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "net/tnsnames.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// The echo and messages would flood the fuzzer's own, which holds the former standard
/// error stream by now.
void silence() {
  stdout = std::fopen("/dev/null", "w");
  stderr = stdout;
  require(stdout);
}

List *parse(std::string text) {
  tnsnamesin = fmemopen(text.data(), text.size(), "r");
  require(tnsnamesin);
  const int outcome = tnsnamesparse();
  std::fclose(std::exchange(tnsnamesin, nullptr));
  List *entries = std::exchange(tnsnames_parsetree_list, nullptr);
  require(outcome == 0 || outcome == 1);
  require((outcome == 0) == (entries != nullptr));
  return entries;
}

std::string written(const char *keyword, const char *value) {
  return std::string("(") + keyword + '=' + value + ')';
}

std::string written(const OCIAddress *address) {
  require(address->tag == kAddressTag);
  std::string text;
  if (address->host) text += written("HOST", address->host->host);
  if (address->port && address->port->port[0] != '-') {
    text += written("PORT", address->port->port);
  }
  return written("ADDRESS", text.empty() ? "(PROTOCOL=TCP)" : text.c_str());
}

std::string written(const OCINetServiceName *entry) {
  require(entry->tag == kNetServiceNameTag && entry->name);
  std::string text = "(SDU=1)";
  if (entry->address) text += written(entry->address);
  if (entry->sid) {
    text += written("CONNECT_DATA", written("SID", entry->sid->sid).c_str());
  }
  return std::string(entry->name) + '=' + written("DESCRIPTION", text.c_str()) + '\n';
}

std::string written(const List *entries) {
  std::string text;
  for (const OCINode *node : zev::Elements<OCINode>(entries)) {
    text += written(static_cast<const OCINetServiceName *>(node));
  }
  return text;
}

/// Looks each entry up by its name, in a list that is used up.
void lookUp(List *entries, const char *name) {
  OCIServer server{};
  server.dblink = strdup(name);
  require(zev::tnsnames::apply(entries, &server));
  for (char *text : {server.dblink, server.host, server.port, server.dbname}) {
    std::free(text);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
  silence();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  ScanKeywordLookup(text.c_str());
  List *entries = parse(text);
  if (!entries) return 0;
  const std::string first = written(entries);
  List *again = parse(first);
  require(again && written(again) == first);
  const auto *entry = static_cast<const OCINetServiceName *>(list_nth(entries, 0));
  lookUp(again, entry->name);
  zev::tnsnames::releaseNodes(entries);
  return 0;
}
