#include "elf_image.h"

#include <algorithm>
#include <cstring>

namespace zev::ocicheck {
namespace {

[[noreturn]] void truncated() {
  throw BadElf("the file ends before what it announces");
}

std::uint64_t checkedEntrySize(std::uint64_t size, std::size_t needed) {
  if (size < needed) throw BadElf("the records of a table are too small");
  return size;
}

}  // namespace

bool looksLikeElf(Bytes bytes) {
  return bytes.size() >= SELFMAG && std::memcmp(bytes.data(), ELFMAG, SELFMAG) == 0;
}

Image::Image(Bytes bytes) : bytes_(bytes) {
  if (!looksLikeElf(bytes)) throw BadElf("not an ELF file");
  const auto width = number(EI_CLASS, 1);
  const auto order = number(EI_DATA, 1);
  if (width != ELFCLASS32 && width != ELFCLASS64) throw BadElf("of an unknown width");
  if (order != ELFDATA2LSB && order != ELFDATA2MSB) {
    throw BadElf("of an unknown byte order");
  }
  is64_ = width == ELFCLASS64;
  bigEndian_ = order == ELFDATA2MSB;
  type_ = static_cast<std::uint16_t>(ELF_FIELD(*this, 0, Ehdr, e_type));
  readSections();
  readSegments();
}

std::uint64_t Image::number(std::uint64_t at, std::size_t width) const {
  if (at > bytes_.size() || bytes_.size() - at < width) truncated();
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < width; ++i) {
    value = value << 8 | bytes_[at + (bigEndian_ ? i : width - 1 - i)];
  }
  return value;
}

Range Image::range(std::uint64_t offset, std::uint64_t size) const {
  if (offset > bytes_.size() || bytes_.size() - offset < size) truncated();
  return {offset, offset + size};
}

std::string_view Image::text(const Range &table, std::uint64_t at) const {
  if (at >= table.end - table.begin) return {};
  const auto *begin = bytes_.data() + table.begin + at;
  const auto *end = bytes_.data() + table.end;
  const auto *nul = std::find(begin, end, '\0');
  if (nul == end) return {};
  return {reinterpret_cast<const char *>(begin), static_cast<std::size_t>(nul - begin)};
}

std::uint64_t Image::offsetOf(std::uint64_t address) const {
  for (const Segment &segment : segments_) {
    if (segment.type == PT_LOAD && address >= segment.address &&
        address - segment.address < segment.size) {
      return segment.offset + (address - segment.address);
    }
  }
  throw BadElf("a table stands in no segment");
}

void Image::readSections() {
  const auto offset = ELF_FIELD(*this, 0, Ehdr, e_shoff);
  if (!offset) return;
  const auto entry =
      checkedEntrySize(ELF_FIELD(*this, 0, Ehdr, e_shentsize), ELF_SIZE(*this, Shdr));
  auto count = ELF_FIELD(*this, 0, Ehdr, e_shnum);
  // Where there are too many for its field, the first one tells how many there are.
  if (!count) count = ELF_FIELD(*this, offset, Shdr, sh_size);
  if (count > bytes_.size() / entry) truncated();
  range(offset, count * entry);
  for (std::uint64_t at = offset; at < offset + count * entry; at += entry) {
    sections_.push_back(
        {ELF_FIELD(*this, at, Shdr, sh_type), ELF_FIELD(*this, at, Shdr, sh_flags),
         ELF_FIELD(*this, at, Shdr, sh_offset), ELF_FIELD(*this, at, Shdr, sh_size),
         ELF_FIELD(*this, at, Shdr, sh_link), ELF_FIELD(*this, at, Shdr, sh_entsize)});
  }
}

void Image::readSegments() {
  const auto offset = ELF_FIELD(*this, 0, Ehdr, e_phoff);
  auto count = ELF_FIELD(*this, 0, Ehdr, e_phnum);
  if (!offset || !count) return;
  if (count == PN_XNUM && !sections_.empty()) {
    count = ELF_FIELD(*this, ELF_FIELD(*this, 0, Ehdr, e_shoff), Shdr, sh_info);
  }
  const auto entry =
      checkedEntrySize(ELF_FIELD(*this, 0, Ehdr, e_phentsize), ELF_SIZE(*this, Phdr));
  if (count > bytes_.size() / entry) truncated();
  range(offset, count * entry);
  for (std::uint64_t at = offset; at < offset + count * entry; at += entry) {
    segments_.push_back(
        {ELF_FIELD(*this, at, Phdr, p_type), ELF_FIELD(*this, at, Phdr, p_offset),
         ELF_FIELD(*this, at, Phdr, p_vaddr), ELF_FIELD(*this, at, Phdr, p_filesz)});
  }
}

}  // namespace zev::ocicheck
