/// The first byte says what the rest is: decimal text, an encoded number, or a binary
/// numeric. All of it goes through every function that takes such a thing, in blocks of
/// exactly the size that these may touch.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "core/owned.h"
#include "types/number.h"

namespace {

constexpr std::size_t kNumberRoom = zev::kNumberSize + 1;  // a terminator may follow

void require(bool holds) {
  if (!holds) __builtin_trap();
}

std::unique_ptr<ub1[]> block(std::size_t size) {
  return std::make_unique<ub1[]>(size);
}

std::unique_ptr<char[]> terminated(const std::string &text) {
  auto copy = std::make_unique<char[]>(text.size() + 1);
  std::memcpy(copy.get(), text.data(), text.size());
  return copy;
}

/// Whether the text of a number has digits, and a power that text may have.
bool isReadable(const char *text) {
  const char *const power = std::strchr(text, 'E');
  const char *const digits = std::strchr(text, '.') + 1;
  return digits != power && *digits != '\0' &&
         (!power || std::abs(std::atoi(power + 1)) <= 126);
}

/// The text of a VARNUM is accepted again where it can be.
void checkVarnum(const ub1 *varnum) {
  const auto text = std::make_unique<char[]>(72);
  if (ConvertVARNUMToString(varnum, text.get()) == 0 && isReadable(text.get())) {
    const auto again = block(zev::kVarnumSize);
    require(ConvertStringToVARNUM(text.get(), again.get()) == 0);
  }
  numeric *record = nullptr;
  if (ConvertVARNUMBERToNumeric(varnum, &record) != 0) return;
  const zev::Malloced<numeric> owned(record);
  char *printed = nullptr;
  require(ConvertNumericToString(record, &printed, record->dscale) == 0);
  std::free(printed);
}

void checkNumber(const ub1 *number) {
  const auto text = std::make_unique<char[]>(72);
  ConvertNUMBERToString(number, text.get());
  numeric *record = nullptr;
  if (ConvertNUMBERToNumeric(number, &record) == 0) std::free(record);
}

void checkText(const std::string &input) {
  const auto text = terminated(input.substr(0, input.find('\0')));
  ub1 sign = 1, exponent = 0, count = 0;
  const auto digits = block(std::strlen(text.get()) + 1);
  const sword parsed = ParseNumber(text.get(), &sign, &exponent, digits.get(), &count);
  const auto number = block(kNumberRoom);
  const auto varnum = block(zev::kVarnumSize);
  const auto shortVarnum = block(zev::kVarnumSize);
  const sword expected = parsed < 0 ? -1 : 0;
  require(ConvertStringToNUMBER(text.get(), number.get()) == expected);
  require(ConvertStringToVARNUM(text.get(), varnum.get()) == expected);
  require(zev::convertStringToShortVarnum(text.get(), shortVarnum.get()) == expected);
  if (expected != 0) return;
  require(varnum[0] >= 1 && varnum[0] <= zev::kNumberSize);
  require(std::memcmp(number.get(), shortVarnum.get() + 1, shortVarnum[0]) == 0);
  checkVarnum(varnum.get());
  checkVarnum(shortVarnum.get());
  checkNumber(number.get());
}

void checkEncoding(const std::string &input) {
  const auto varnum = block(zev::kVarnumSize);
  std::memcpy(varnum.get(), input.data(), std::min<std::size_t>(input.size(), 22));
  checkVarnum(varnum.get());
  const auto number = block(zev::kNumberSize);
  std::memcpy(number.get(), input.data(), std::min<std::size_t>(input.size(), 21));
  checkNumber(number.get());
}

/// A copy of the field for each function, since these round it.
zev::Malloced<numeric> fieldOf(const std::string &input) {
  return zev::Malloced<numeric>(
      zev::copyNumericField(input.data(), static_cast<sb4>(input.size())));
}

void checkField(const std::string &input) {
  if (!fieldOf(input)) return;
  const auto varnum = block(zev::kVarnumSize);
  if (ConvertNumericToVARNUMBER(fieldOf(input).get(), varnum.get()) == 0) {
    require(varnum[0] >= 1 && varnum[0] <= zev::kNumberSize);
  }
  ConvertNumericToNUMBER(fieldOf(input).get(), block(kNumberRoom).get());
  sb8 integer = 0;
  sb4 narrow = 0;
  double real = 0;
  float single = 0;
  numericvar_to_int8(fieldOf(input).get(), &integer);
  numericvar_to_int4(fieldOf(input).get(), &narrow);
  numericvar_to_double(fieldOf(input).get(), &real);
  numericvar_to_float(fieldOf(input).get(), &single);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size == 0) return 0;
  const std::string input(reinterpret_cast<const char *>(data) + 1, size - 1);
  switch (data[0] % 3) {
    case 0:
      checkText(input);
      break;
    case 1:
      checkEncoding(input);
      break;
    default:
      checkField(input);
  }
  return 0;
}
