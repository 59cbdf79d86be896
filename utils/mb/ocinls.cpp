/// The published services on names of encodings. The numbers that cross the interface are
/// the library's own encoding numbers.
#include <ociap.h>

#include <cstdlib>
#include <cstring>

#include "core/owned.h"
#include "zevoci/encodings.h"
#include "zevoci/handle.h"
#include "zevoci/trace.h"

namespace {

/// The encoding number that a variable of the process environment names; that of
/// SQL_ASCII without one.
int namedEncoding(const char *name) {
  return pg_char_to_encoding(name ? name : "sqlascii");
}

int clientEncoding() {
  const char *value = std::getenv("NLS_LANG");
  char *charset = nullptr;
  if (value) ParseLocale(value, nullptr, nullptr, &charset);
  const zev::Malloced<> owned(charset);
  return namedEncoding(charset);
}

int nationalEncoding() {
  return namedEncoding(std::getenv("NLS_NCHAR"));
}

}  // namespace

extern "C" {

ZEV_API sword OCINlsCharSetIdToName(void *envhp, OraText *buf, size_t buflen, ub2 id) {
  o2pTrace(3, "Getting Character Set Name from ID\n");
  o2pTrace(4, "\tenvhp = %p\n", envhp);
  o2pTrace(4, "\tbuf = %p\n", buf);
  o2pTrace(4, "\tbuflen = %d\n", buflen);
  o2pTrace(4, "\tid = %d\n", id);
  if (!envhp) return OCI_INVALID_HANDLE;
  if (!buf) return OCI_ERROR;
  std::strncpy(reinterpret_cast<char *>(buf), pg_encoding_to_char(id), buflen);
  o2pTrace(4, "\tRETURNING %s\n", "SUCCESS");
  return OCI_SUCCESS;
}

ZEV_API ub2 OCINlsCharSetNameToId(void *envhp, const OraText *name) {
  if (!zev::asEnv(envhp)) return static_cast<ub2>(OCI_INVALID_HANDLE);
  const int encoding = pg_char_to_encoding(reinterpret_cast<const char *>(name));
  return static_cast<ub2>(encoding < 0 ? 0 : encoding);
}

ZEV_API sword OCINlsEnvironmentVariableGet(void *val, size_t, ub2 item, ub2,
                                           size_t *rsize) {
  const bool known = item == OCI_NLS_CHARSET_ID || item == OCI_NLS_NCHARSET_ID;
  if (!val || !known) return OCI_ERROR;
  const auto encoding = static_cast<ub2>(item == OCI_NLS_CHARSET_ID ? clientEncoding()
                                                                    : nationalEncoding());
  std::memcpy(val, &encoding, sizeof encoding);
  if (rsize) *rsize = sizeof encoding;
  return OCI_SUCCESS;
}

}  // extern "C"
