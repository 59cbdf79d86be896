#include "types/number_printers.h"

#include <algorithm>
#include <cstring>

#include "types/number_text.h"
#include "types/numeric.h"

namespace zev {
namespace {

bool print(numeric *number, int dscale, Scratch &scratch, std::string_view &out) {
  char *printed = nullptr;
  if (!number || ConvertNumericToString(number, &printed, dscale) != 0) return false;
  scratch.longText.reset(printed);
  out = printed;
  return true;
}

/// The field's bytes as a record, with room for all digits that its unswapped count
/// claims; those that the field does not have are 0.
numeric *copyUnswapped(const void *value, sb4 length) {
  if (length < static_cast<sb4>(sizeof(numeric))) return nullptr;
  const auto bytes = static_cast<std::size_t>(length);
  const int claimed = std::max<int>(readNative<sb2>(value), 0);
  const std::size_t size = std::max(numericSize(claimed + 1), bytes);
  auto *record = static_cast<numeric *>(std::calloc(size, 1));
  if (record) std::memcpy(static_cast<void *>(record), value, bytes);
  return record;
}

}  // namespace

bool printNumeric(const void *value, sb4 length, Scratch &scratch,
                  std::string_view &out) {
  const Malloced<numeric> number(copyNumericField(value, length));
  return number && print(number.get(), number->dscale, scratch, out);
}

bool printUnswappedNumeric(const void *value, sb4 length, Scratch &scratch,
                           std::string_view &out) {
  constexpr int kDecimals = 21;
  const Malloced<numeric> number(copyUnswapped(value, length));
  return print(number.get(), kDecimals, scratch, out);
}

bool printDouble(double number, sb4 precision, boolean trim, Scratch &scratch,
                 std::string_view &out) {
  const sb4 length =
      dtostr(scratch.digits, sizeof scratch.digits, precision, trim, number);
  if (length < 0) return false;
  out = {scratch.digits, static_cast<std::size_t>(length)};
  return true;
}

}  // namespace zev
