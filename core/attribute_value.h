/// Reading and writing the untyped value of an attribute call.
#pragma once

#include <cstring>

namespace zev {

/// Stores `content` where the program asked for an attribute.
template <class T>
void putAttribute(void *value, T content) {
  std::memcpy(value, &content, sizeof content);
}

/// The attribute value that the program passed by address.
template <class T>
T takeAttribute(const void *value) {
  T content;
  std::memcpy(&content, value, sizeof content);
  return content;
}

}  // namespace zev
