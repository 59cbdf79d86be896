#include "core/edge_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "zevoci/encodings.h"

namespace zev {
namespace {

char16_t unitAt(const char *text, std::size_t offset) {
  char16_t unit;
  std::memcpy(&unit, text + offset, sizeof unit);
  return unit;
}

/// Whether a unit is the first of two that make one character.
bool isFirstOfPair(char16_t unit) {
  return (unit & 0xFC00) == 0xD800;
}

/// The bytes of UTF-16 text that whole characters fill, of at most `room`.
std::size_t wholeCharacters(const char *text, std::size_t room) {
  const std::size_t length = room & ~std::size_t{1};
  return length && isFirstOfPair(unitAt(text, length - 2)) ? length - 2 : length;
}

}  // namespace

std::size_t textLength(const OCIEnv *env, const void *text) {
  return text ? textLength(env, text, SIZE_MAX) : 0;
}

std::size_t textLength(const OCIEnv *env, const void *text, std::size_t limit) {
  const auto *chars = static_cast<const char *>(text);
  if (!isUtf16(env)) {
    return limit == SIZE_MAX ? std::strlen(chars) : strnlen(chars, limit);
  }
  std::size_t length = 0;
  while (limit - length >= 2 && unitAt(chars, length)) length += 2;
  return limit - length >= 2 ? length : limit;
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

std::size_t EdgeResult::copyCut(void *buffer, std::size_t room) const {
  if (room < terminator_) return 0;
  std::size_t length = std::min(size_, room - terminator_);
  if (length < size_ && terminator_ == 2) length = wholeCharacters(data_, length);
  auto *end = static_cast<char *>(buffer) + length;
  if (length) std::memcpy(buffer, data_, length);
  end[0] = '\0';
  if (terminator_ == 2) end[1] = '\0';
  return length;
}

void EdgeResult::copyInto(void *buffer, std::size_t room) const {
  const std::size_t length = std::min(size_, room);
  const std::size_t zeros = std::min(terminator_, room - length);
  if (length) std::memcpy(buffer, data_, length);
  if (zeros) std::memset(static_cast<char *>(buffer) + length, 0, zeros);
}

char *EdgeResult::copy() const {
  const std::size_t room = size_ + terminator_;
  auto *copy = static_cast<char *>(std::malloc(room));
  if (copy) copyInto(copy, room);
  return copy;
}

sword EdgeText::fail(OCIError *errhp, sword status) const {
  return failConversion(errhp, status, error_);
}

}  // namespace zev
