#include <algorithm>
#include <string_view>

#include "zevoci/connection.h"
#include "zevoci/text.h"

namespace {

char *copyOf(std::string_view part) {
  return makeString(part.data(), part.size());
}

}  // namespace

extern "C" boolean parse_connect_str(const char *text, sb4, char **host, char **port,
                                     char **dbname, char **uri) {
  *host = *port = *dbname = *uri = nullptr;
  std::string_view rest(text);
  if (rest.starts_with("postgresql://") || rest.starts_with("postgres://")) {
    *uri = copyOf(rest);
    return 1;
  }
  if (rest.starts_with("//")) rest.remove_prefix(2);

  const std::size_t colon = rest.find(':');
  const std::size_t slash = rest.find('/');
  if (colon != rest.npos && slash != rest.npos && slash < colon) return 0;

  // A part without its separator is empty, which is not the same as absent.
  const std::size_t hostEnd = std::min({colon, slash, rest.size()});
  *host = copyOf(rest.substr(0, hostEnd));
  *port = copyOf(colon == rest.npos ? "" : rest.substr(colon + 1, slash - colon - 1));
  *dbname = copyOf(slash == rest.npos ? "" : rest.substr(slash + 1));
  return 1;
}
