/// What an ELF file says about the functions that it takes from elsewhere. Files of both
/// widths and byte orders are read, none is run (System V ABI, chapters 4 and 5).
#pragma once

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zev::ocicheck {

/// The bytes are no ELF file, or one that contradicts itself; the text says how.
class BadElf : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

using Bytes = std::span<const unsigned char>;

/// Whether the bytes begin as an ELF file does.
bool looksLikeElf(Bytes bytes);

/// The names in a file. All views lead into its bytes.
struct ElfFile {
  bool is64 = false;
  bool bigEndian = false;
  std::uint16_t type = 0;                ///< ET_EXEC, ET_DYN, ...
  std::vector<std::string_view> needed;  ///< libraries that it is linked with
  std::vector<std::string_view> imported;
  std::vector<std::string_view> defined;
  /// Whole texts of the loaded memory that could be names of the interface's functions or
  /// of shared libraries.
  std::vector<std::string_view> texts;
};

/// Reads a file; throws BadElf.
ElfFile readElf(Bytes bytes);

/// Whether a text could be the name of a function of the interface: "OCI" and a capital,
/// "ocie", "xao".
bool hasInterfacePrefix(std::string_view text);

}  // namespace zev::ocicheck
