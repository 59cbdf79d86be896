#include "core/edge_text.h"

#include <cerrno>
#include <cstdint>

#include "zevoci/encodings.h"

namespace zev {

EdgeText::EdgeText(const OCIEnv *env, const void *source, std::size_t length) {
  if (env && env->utf16) {
    convert(env->toUtf8, source, length);
  } else if (source) {
    data_ = static_cast<const char *>(source);
    size_ = length;
  }
}

EdgeResult::EdgeResult(const OCIEnv *env, const void *source, std::size_t length) {
  if (env && env->utf16) {
    convert(env->fromUtf8, source, length);
  } else if (source) {
    data_ = static_cast<const char *>(source);
    size_ = length;
  }
}

void EdgeText::convert(iconv_t descriptor, const void *source, std::size_t length) {
  void *out = nullptr;
  if (transcode(descriptor, &error_, source, length, &out, &size_) == SIZE_MAX) {
    size_ = 0;
    return;
  }
  owned_.reset(static_cast<char *>(out));
  data_ = owned_.get();
  // An empty result for a text that is not empty means that memory ran out.
  if (!data_ && source && length) error_ = ENOMEM;
}

sword EdgeText::fail(OCIError *errhp, sword status) const {
  return failConversion(errhp, status, error_);
}

}  // namespace zev
