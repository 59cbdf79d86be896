#include "net/tnsnames.h"

#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "core/owned.h"
#include "zevoci/errors.h"
#include "zevoci/text.h"

namespace {

using File = std::unique_ptr<std::FILE, zev::ClosedBy<std::fclose>>;

/// Where a file may stand: below the directory that a variable names.
struct Place {
  const char *variable;
  const char *file;
};
constexpr Place kPlaces[] = {{"HOME", "/.tnsnames.ora"}, {"TNS_ADMIN", "/tnsnames.ora"}};

/// Bytes of a path with its terminator; a longer one names no file.
constexpr std::size_t kPathSize = 1024;

/// The first file that may be read; empty when there is none.
std::string findFile() {
  for (const Place &place : kPlaces) {
    const char *directory = std::getenv(place.variable);
    if (!directory) continue;
    std::string path = std::string(directory) + place.file;
    if (path.size() < kPathSize && access(path.c_str(), R_OK) == 0) return path;
  }
  return {};
}

/// Copies `text` to `field` where that is null; false when memory runs out.
bool fill(char *&field, const char *text) {
  if (field || !text) return true;
  field = strdup(text);
  return field != nullptr;
}

bool fillFrom(const OCINetServiceName *entry, OCIServer *server) {
  const OCIAddress *address = entry->address;
  const OCIHost *host = address ? address->host : nullptr;
  const OCIPort *port = address ? address->port : nullptr;
  return fill(server->host, host ? host->host : nullptr) &&
         fill(server->port, port ? port->port : nullptr) &&
         fill(server->dbname, entry->sid ? entry->sid->sid : nullptr);
}

}  // namespace

namespace zev::tnsnames {

bool apply(List *entries, OCIServer *server) {
  bool filled = true;
  for (OCINode *node : Elements<OCINode>(entries)) {
    if (!node || node->tag != kNetServiceNameTag) continue;
    auto *entry = static_cast<OCINetServiceName *>(node);
    if (oci_stricmp(entry->name, server->dblink) == 0) {
      filled = fillFrom(entry, server) && filled;
    }
    ReleaseOCINetServiceName(entry);
  }
  list_free(entries);
  return filled;
}

sword resolve(OCIServer *server, OCIError *errhp) {
  const std::string path = findFile();
  if (path.empty()) return fail(errhp, 12154);
  const File file(std::fopen(path.c_str(), "re"));
  if (!file) return fail(errhp, 12555);

  tnsnamesin = file.get();
  const int outcome = tnsnamesparse();
  tnsnamesin = nullptr;
  if (outcome != 0) return fail(errhp, 12227);
  List *entries = tnsnames_parsetree_list;
  tnsnames_parsetree_list = nullptr;
  return apply(entries, server) ? OCI_SUCCESS : fail(errhp, 16506);
}

}  // namespace zev::tnsnames
