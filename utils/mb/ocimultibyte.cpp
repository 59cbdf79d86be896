/// The published functions on multibyte text in an environment's encoding.
#include <ociap.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>

#include "core/owned.h"
#include "zevoci/errors.h"
#include "zevoci/multibyte.h"

namespace {

const char *textOf(const OraText *text) {
  return reinterpret_cast<const char *>(text);
}

/// A status or a count as the wide result of a measuring function.
std::size_t extended(int n) {
  return static_cast<std::size_t>(n);
}

/// Measures `str` with `function(encoding, text)`.
std::size_t measure(void *hndl, const OraText *str, int (*function)(int, const char *)) {
  const OCIEnv *env = zev::asEnv(hndl);
  if (!env) return extended(OCI_INVALID_HANDLE);
  if (!str) return extended(zev::failArgument(env->errh, "2"));
  return extended(function(env->encoding, textOf(str)));
}

/// Converts `bytes` bytes of `src` to at most `room` characters at `dst`, which are
/// terminated where there is room for it; `dst` may be null. The count of characters
/// goes to `rsize`, if that is given.
sword toWide(const OCIEnv *env, OCIWchar *dst, std::size_t room, const OraText *src,
             std::size_t bytes, std::size_t *rsize) {
  bytes = std::min<std::size_t>(bytes, INT_MAX);
  const zev::Malloced<pg_wchar> scratch(
      static_cast<pg_wchar *>(std::malloc((bytes + 1) * sizeof(pg_wchar))));
  if (!scratch) return zev::fail(env->errh, 16506);
  const int count = pg_mb2wchar_with_len(env->encoding, textOf(src), scratch.get(),
                                         static_cast<int>(bytes));
  const auto characters = static_cast<std::size_t>(count);
  if (dst) std::copy_n(scratch.get(), std::min(characters + 1, room), dst);
  if (rsize) *rsize = characters;
  return OCI_SUCCESS;
}

}  // namespace

extern "C" {

ZEV_API sword OCIMultiByteInSizeToWideChar(void *hndl, OCIWchar *dst, size_t dstsz,
                                           const OraText *src, size_t srcsz,
                                           size_t *rsize) {
  const OCIEnv *env = zev::asEnv(hndl);
  if (!env) return OCI_INVALID_HANDLE;
  if (!src) return zev::failArgument(env->errh, "4");
  if (!oci_wchar_table[env->encoding].mb2wchar_with_len) {
    return zev::failConversion(env->errh, OCI_ERROR, ENOTSUP);
  }
  // The target's size bounds the bytes of the source that are converted, too.
  const bool measures = rsize && !(dst && dstsz);
  return toWide(env, dst, dstsz, src, measures ? srcsz : std::min(srcsz, dstsz), rsize);
}

ZEV_API size_t OCIMultiByteStrlen(void *hndl, const OraText *str) {
  return measure(hndl, str, pg_mbstrlen);
}

ZEV_API size_t OCIMultiByteStrnDisplayLength(void *hndl, const OraText *str, size_t) {
  return measure(hndl, str, pg_mbstrdsplen);
}

}  // extern "C"
