/// Text that crosses the interface, in UTF-16 or as it stands.
#pragma once

#include <string_view>

#include "core/owned.h"
#include "zevoci/handle.h"

namespace zev {

/// A text argument in the library's encoding. In a UTF-16 environment it owns the
/// converted block; otherwise it is the caller's bytes, not copied.
class EdgeText {
 public:
  /// Converts `length` bytes at `source`; a null source is an empty text. Without an
  /// environment text passes as it stands.
  EdgeText(const OCIEnv *env, const void *source, std::size_t length);

  /// False after a failed conversion.
  explicit operator bool() const { return error_ == 0; }
  /// Records the failure by its errno and returns OCI_ERROR.
  sword fail(OCIError *errhp, sword status = OCI_ERROR) const;

  const char *data() const { return data_; }
  std::size_t size() const { return size_; }
  std::string_view view() const { return {data_, size_}; }

 protected:
  EdgeText() = default;
  void convert(iconv_t descriptor, const void *source, std::size_t length);

  Malloced<> owned_;
  const char *data_ = nullptr;
  std::size_t size_ = 0;
  int error_ = 0;
};

/// A text result on its way to the program, in the program's encoding.
class EdgeResult : public EdgeText {
 public:
  EdgeResult(const OCIEnv *env, const void *source, std::size_t length);
};

}  // namespace zev
