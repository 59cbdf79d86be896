/// Text that crosses the interface, in UTF-16 or as it stands.
#pragma once

#include <string_view>

#include "core/owned.h"
#include "zevoci/handle.h"

namespace zev {

/// Whether text crosses the interface in UTF-16. Without an environment it does not, here
/// and below.
inline bool isUtf16(const OCIEnv *env) {
  return env && env->utf16;
}
/// Bytes of the zero that ends a text in the program's encoding.
inline std::size_t terminatorSize(const OCIEnv *env) {
  return isUtf16(env) ? 2 : 1;
}
/// Bytes in front of the zero that ends a text of the program's; 0 for null.
std::size_t textLength(const OCIEnv *env, const void *text);
/// The same for one that ends after `limit` bytes at the latest.
std::size_t textLength(const OCIEnv *env, const void *text, std::size_t limit);

/// A text argument in the library's encoding. In a UTF-16 environment it owns the
/// converted block; otherwise it is the caller's bytes, not copied.
class EdgeText {
 public:
  /// Converts `length` bytes at `source`; a null source is an empty text.
  EdgeText(const OCIEnv *env, const void *source, std::size_t length) {
    take(isUtf16(env) ? env->toUtf8 : nullptr, source, length);
  }
  /// Converts a text up to the zero that ends it.
  EdgeText(const OCIEnv *env, const void *source)
      : EdgeText(env, source, textLength(env, source)) {}

  /// False after a failed conversion.
  explicit operator bool() const { return error_ == 0; }
  /// Records the failure by its errno and returns OCI_ERROR.
  sword fail(OCIError *errhp, sword status = OCI_ERROR) const;

  const char *data() const { return data_; }
  /// The text where it ends in a zero byte, as a converted one and one that was measured
  /// by its end do; "" without any.
  const char *cString() const { return data_ ? data_ : ""; }
  std::size_t size() const { return size_; }
  std::string_view view() const { return {data_, size_}; }

 protected:
  EdgeText() = default;
  /// Converts by a descriptor; without one the text passes as it stands.
  void take(iconv_t descriptor, const void *source, std::size_t length) {
    if (descriptor) {
      convert(descriptor, source, length);
    } else if (source) {
      data_ = static_cast<const char *>(source);
      size_ = length;
    }
  }
  void convert(iconv_t descriptor, const void *source, std::size_t length);

  Malloced<> owned_;
  const char *data_ = nullptr;
  std::size_t size_ = 0;
  int error_ = 0;
};

/// A text result on its way to the program, in the program's encoding.
class EdgeResult : public EdgeText {
 public:
  EdgeResult(const OCIEnv *env, const void *source, std::size_t length)
      : terminator_(terminatorSize(env)) {
    take(isUtf16(env) ? env->fromUtf8 : nullptr, source, length);
  }
  EdgeResult(const OCIEnv *env, std::string_view text)
      : EdgeResult(env, text.data(), text.size()) {}

  /// Puts the text with its terminator into `room` bytes, cut where it is too long; a
  /// character of UTF-16 is not split. Returns the bytes in front of the terminator.
  std::size_t copyCut(void *buffer, std::size_t room) const;
  /// Puts the text into `room` bytes as far as they reach, and as much of its terminator
  /// as they leave room for.
  void copyInto(void *buffer, std::size_t room) const;
  /// A terminated copy that the caller frees; null when memory runs out.
  char *copy() const;

 private:
  std::size_t terminator_;
};

}  // namespace zev
