/// The model's own conversion between UTF-8 and UTF-16 in native order.
#pragma once

#include <string>

namespace zevtest::model {

/// The text as far as it converts; `error` is 0, EINVAL where it ends within a character,
/// or EILSEQ.
struct Converted {
  std::string text;
  int error = 0;
};
Converted utf16ToUtf8(const std::string &input);
Converted utf8ToUtf16(const std::string &input);

}  // namespace zevtest::model
