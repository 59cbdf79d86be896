/// The records of an ELF file, read from its bytes in its own width and byte order.
#pragma once

#include <elf.h>

#include <cstddef>

#include "elf_file.h"

namespace zev::ocicheck {

struct Section {
  std::uint64_t type, flags, offset, size, link, entrySize;
};

struct Segment {
  std::uint64_t type, offset, address, size;
};

/// A part of the file, in bytes from its beginning.
struct Range {
  std::uint64_t begin, end;
};

/// Checked access to the bytes; everything throws BadElf where the file ends too early.
class Image {
 public:
  explicit Image(Bytes bytes);

  bool is64() const { return is64_; }
  bool bigEndian() const { return bigEndian_; }
  std::uint16_t type() const { return type_; }
  Bytes bytes() const { return bytes_; }
  const std::vector<Section> &sections() const { return sections_; }
  const std::vector<Segment> &segments() const { return segments_; }

  /// An unsigned number of 1 to 8 bytes.
  std::uint64_t number(std::uint64_t at, std::size_t width) const;
  /// The part of the file from `offset` on, `size` bytes long.
  Range range(std::uint64_t offset, std::uint64_t size) const;
  /// The text that begins `at` bytes into `table`; empty when none ends there.
  std::string_view text(const Range &table, std::uint64_t at) const;
  /// Where memory that the file fills at `address` stands in it.
  std::uint64_t offsetOf(std::uint64_t address) const;

 private:
  void readSections();
  void readSegments();

  Bytes bytes_;
  bool is64_ = false;
  bool bigEndian_ = false;
  std::uint16_t type_ = 0;
  std::vector<Section> sections_;
  std::vector<Segment> segments_;
};

/// A field of the record at `at`, by its name in <elf.h>.
#define ELF_FIELD(image, at, record, field)                                \
  ((image).is64() ? (image).number((at) + offsetof(Elf64_##record, field), \
                                   sizeof(Elf64_##record::field))          \
                  : (image).number((at) + offsetof(Elf32_##record, field), \
                                   sizeof(Elf32_##record::field)))
#define ELF_SIZE(image, record) \
  ((image).is64() ? sizeof(Elf64_##record) : sizeof(Elf32_##record))

}  // namespace zev::ocicheck
