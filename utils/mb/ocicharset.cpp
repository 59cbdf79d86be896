/// The published functions that convert buffers between encodings. What they call Unicode
/// is UTF-8 here, and all sizes count bytes.
#include <ociap.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "core/owned.h"
#include "zevoci/encodings.h"
#include "zevoci/errors.h"

namespace {

// The system's value for no conversion.
const iconv_t kNone = reinterpret_cast<iconv_t>(-1);  // NOLINT(performance-no-int-to-ptr)

/// A conversion of the system by encoding numbers; false when the system has none.
class Conversion {
 public:
  Conversion(int to, int from) {
    const char *toName = pg_encoding_to_char(to), *fromName = pg_encoding_to_char(from);
    // To the system an empty name is the encoding of the process's locale.
    if (*toName && *fromName) descriptor_ = iconv_open(toName, fromName);
  }
  ~Conversion() {
    if (*this) iconv_close(descriptor_);
  }
  Conversion(const Conversion &) = delete;
  Conversion &operator=(const Conversion &) = delete;

  explicit operator bool() const { return descriptor_ != kNone; }
  iconv_t get() const { return descriptor_; }

 private:
  iconv_t descriptor_ = kNone;
};

/// A buffer and its size in bytes.
struct Target {
  void *data;
  std::size_t size;
};
struct Source {
  const void *data;
  std::size_t size;
};

sword failTranscoding(OCIError *errhp, int error) {
  ClearErrorHandle(errhp);
  return error == ENOMEM ? zev::fail(errhp, 16506)
                         : zev::failConversion(errhp, OCI_ERROR, error);
}

/// Converts `source` into `target`, as far as that reaches, without a terminator. The
/// full length goes to `rsize`, if that is given. Encodings between which the system does
/// not convert give OCI_ERROR without a record.
sword convert(OCIError *errhp, int to, Target target, int from, Source source,
              std::size_t *rsize) {
  const Conversion conversion(to, from);
  if (!conversion) return OCI_ERROR;

  void *out = nullptr;
  std::size_t length = 0;
  int error = 0;
  const bool failed = transcode(conversion.get(), &error, source.data, source.size, &out,
                                &length) == SIZE_MAX;
  const zev::Malloced<void> owned(out);
  if (failed) return failTranscoding(errhp, error);
  if (!out && source.size) return failTranscoding(errhp, ENOMEM);
  if (target.data && out) std::memcpy(target.data, out, std::min(length, target.size));
  if (rsize) *rsize = length;
  return OCI_SUCCESS;
}

}  // namespace

extern "C" {

ZEV_API sword OCICharSetToUnicode(void *hndl, ub2 *dst, size_t dstlen, const OraText *src,
                                  size_t srclen, size_t *rsize) {
  const OCIEnv *env = zev::asEnv(hndl);
  if (!env) return OCI_INVALID_HANDLE;
  if (!src) return zev::failArgument(env->errh, "4");
  return convert(env->errh, kUtf8, {dst, dstlen}, env->encoding, {src, srclen}, rsize);
}

ZEV_API sword OCIUnicodeToCharSet(void *hndl, OraText *dst, size_t dstlen, const ub2 *src,
                                  size_t srclen, size_t *rsize) {
  const OCIEnv *env = zev::asEnv(hndl);
  if (!env) return OCI_INVALID_HANDLE;
  if (!src) return zev::failArgument(env->errh, "4");
  return convert(env->errh, env->encoding, {dst, dstlen}, kUtf8, {src, srclen}, rsize);
}

ZEV_API sword OCINlsCharSetConvert(void *hndl, OCIError *errhp, ub2 dstid, void *dstp,
                                   size_t dstlen, ub2 srcid, const void *srcp,
                                   size_t srclen, size_t *rsize) {
  if (!zev::asEnv(hndl) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (!srcp) return zev::failArgument(errhp, "7");
  return convert(errhp, dstid, {dstp, dstlen}, srcid, {srcp, srclen}, rsize);
}

}  // extern "C"
