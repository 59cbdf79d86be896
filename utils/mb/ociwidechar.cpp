/// The published functions on strings of wide characters.
#include <ociap.h>

#include <algorithm>

#include "zevoci/errors.h"
#include "zevoci/multibyte.h"

namespace {

/// Compares with `n()` characters of both, once the arguments are there.
template <class Count>
int compare(void *hndl, const OCIWchar *a, const OCIWchar *b, const Count &n) {
  const OCIEnv *env = zev::asEnv(hndl);
  if (!env) return OCI_INVALID_HANDLE;
  if (!a) return zev::failArgument(env->errh, "2");
  if (!b) return zev::failArgument(env->errh, "3");
  return pg_wchar_strncmp(a, b, n());
}

}  // namespace

extern "C" {

ZEV_API size_t OCIWideCharStrlen(void *hndl, const OCIWchar *wstr) {
  return zev::asEnv(hndl) && wstr ? pg_wchar_strlen(wstr) : 0;
}

ZEV_API int OCIWideCharStrcmp(void *hndl, const OCIWchar *wstr1, const OCIWchar *wstr2,
                              int) {
  return compare(hndl, wstr1, wstr2, [wstr2] { return pg_wchar_strlen(wstr2); });
}

ZEV_API int OCIWideCharStrncmp(void *hndl, const OCIWchar *wstr1, size_t len1,
                               const OCIWchar *wstr2, size_t len2, int) {
  return compare(hndl, wstr1, wstr2, [=] { return std::min(len1, len2); });
}

}  // extern "C"
