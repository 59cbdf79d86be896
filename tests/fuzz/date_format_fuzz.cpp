/// A text and a format of date words, "DD-MON-YYYY": what is read is written again
/// without a byte outside the buffers.
#include <cstring>
#include <memory>
#include <string>

#include "types/ocitimestamp/date_text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string all(reinterpret_cast<const char *>(data), size);
  const std::size_t half = all.find('|');
  const std::string format = all.substr(0, half);
  const std::string text = half == all.npos ? format : all.substr(half + 1);
  const auto bytes = std::make_unique<ub1[]>(zev::kDateSize);
  ConvertStringToDATE(text.c_str(), format.c_str(), bytes.get());
  // A year of four digits may lie over fewer letters, and a number over fewer digits.
  const std::size_t room = std::strlen(format.c_str()) + 16;
  const auto out = std::make_unique<char[]>(room);
  ConvertDATEToString(bytes.get(), format.c_str(), out.get());
  ismonth(text.c_str(), static_cast<sb4>(size % 4));
  return 0;
}
