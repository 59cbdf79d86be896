/// Bytes that are read as an ELF file: they are refused with a word, or every name that
/// they are said to hold lies among them.
#include <algorithm>
#include <cstdint>

#include "tools/ocicheck/report.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  using namespace zev::ocicheck;
  const Bytes bytes(data, size);
  try {
    const ElfFile file = readElf(bytes);
    const auto *begin = reinterpret_cast<const char *>(data);
    for (const auto *names : {&file.needed, &file.imported, &file.defined, &file.texts}) {
      for (const auto name : *names) {
        require(name.data() >= begin && name.data() + name.size() < begin + size);
      }
    }
    const FileReport report = judge("file", file);
    require(report.error.empty());
    require(std::ranges::is_sorted(report.uses, std::ranges::greater(), &Use::fate));
  } catch (const BadElf &error) {
    require(*error.what() != '\0');
  }
  return 0;
}
