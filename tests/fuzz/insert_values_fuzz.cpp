/// A text that may be an INSERT of one row: when it is taken apart, its parts lie inside
/// it in order, and put together again they are the same statement.
#include <cstdint>
#include <string>

#include "pqext/many_rows.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// The text without what may stand behind the values.
std::string trimmed(std::string text) {
  constexpr const char *kBehind = " \t\n\r\f;";
  text.resize(text.find_last_not_of(kBehind) + 1);
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string text(reinterpret_cast<const char *>(data), size);
  const auto insert = zev::pqext::parseInsert(text);
  if (!insert) return 0;
  require(insert->head.data() == text.data());
  require(insert->values.data() == text.data() + insert->head.size());
  require(insert->values.starts_with('(') && !insert->table.empty());
  require(insert->head.find(insert->table) != insert->head.npos);
  // Numbers of more than nine digits are no parameters that anybody sends.
  if (text.find("0000000000") != text.npos || size > 4000) return 0;
  bool longNumber = false;
  std::size_t digits = 0;
  for (const char c : text) {
    digits = c >= '0' && c <= '9' ? digits + 1 : 0;
    longNumber |= digits > 8;
  }
  if (longNumber || text.find("$0") != text.npos) return 0;
  const std::string one = zev::pqext::insertOf(insert->head, insert->values, 7, 1);
  require(trimmed(one) == trimmed(text));
  const std::string three = zev::pqext::insertOf(insert->head, insert->values, 7, 3);
  require(three.starts_with(one) && three.size() >= one.size() * 2 - insert->head.size());
  return 0;
}
