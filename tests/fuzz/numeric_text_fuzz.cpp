/// A decimal text becomes the server's numeric and a text again. What was printed must
/// read as the same number and print as the same text.
#include <cstring>
#include <memory>
#include <string>

#include "types/numeric.h"

namespace {

using Freed = std::unique_ptr<void, decltype(&std::free)>;

/// The plain form of `number`; empty when it is refused.
std::string plainForm(const std::string &number) {
  numeric *record = nullptr;
  if (ConvertStringToNumeric(number.c_str(), &record) != 0) return {};
  const Freed ownedRecord(record, std::free);
  if (!zev::isWellFormed(*record)) __builtin_trap();
  char *printed = nullptr;
  if (ConvertNumericToString(record, &printed, record->dscale) != 0) __builtin_trap();
  const Freed ownedText(printed, std::free);
  return printed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string plain = plainForm({reinterpret_cast<const char *>(data), size});
  if (!plain.empty() && plainForm(plain) != plain) __builtin_trap();
  return 0;
}
