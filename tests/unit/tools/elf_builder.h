/// ELF files of any width and byte order, built in memory.
#pragma once

#include <elf.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tools/ocicheck/elf_file.h"

namespace zev::test {

/// What a file is to hold, and how it tells.
struct ElfPlan {
  bool is64 = true;
  bool bigEndian = false;
  bool sections = true;  ///< otherwise the dynamic segment alone leads to the symbols
  bool gnuHash = false;
  std::uint16_t type = ET_DYN;
  std::vector<std::string> needed = {};
  std::vector<std::string> imported = {};
  std::vector<std::string> defined = {};
  std::vector<std::string> texts = {};
};

class ElfBuilder {
 public:
  explicit ElfBuilder(ElfPlan plan) : plan_(std::move(plan)) { build(); }

  const std::vector<unsigned char> &bytes() const { return bytes_; }

 private:
  static constexpr std::uint64_t kBase = 0x10000;  ///< memory address of the file
  struct Part {
    std::uint64_t at, size;
  };

  std::size_t word() const { return plan_.is64 ? 8 : 4; }

  void put(std::uint64_t value, std::size_t width) {
    for (std::size_t i = 0; i < width; ++i) {
      const std::size_t shift = 8 * (plan_.bigEndian ? width - 1 - i : i);
      bytes_.push_back(static_cast<unsigned char>(value >> shift));
    }
  }
  void patch(std::uint64_t at, std::uint64_t value, std::size_t width) {
    std::vector<unsigned char> saved;
    saved.swap(bytes_);
    put(value, width);
    std::copy(bytes_.begin(), bytes_.end(), saved.begin() + static_cast<long>(at));
    bytes_.swap(saved);
  }
  template <class Write>
  Part part(Write write) {
    while (bytes_.size() % 8) bytes_.push_back(0);
    const std::uint64_t at = bytes_.size();
    write();
    return {at, bytes_.size() - at};
  }

  std::uint64_t intern(const std::string &name) {
    const std::uint64_t at = names_.size();
    names_ += name + '\0';
    return at;
  }
  void putSymbol(std::uint64_t name, std::uint64_t section) {
    put(name, 4);
    if (plan_.is64) {
      put(STB_GLOBAL << 4 | STT_FUNC, 1);
      put(0, 1);
      put(section, 2);
      put(0, 8);
      put(0, 8);
    } else {
      put(0, 8);
      put(STB_GLOBAL << 4 | STT_FUNC, 1);
      put(0, 1);
      put(section, 2);
    }
  }
  void putDynamic(std::uint64_t tag, std::uint64_t value) {
    put(tag, word());
    put(value, word());
  }
  void putSection(std::uint64_t type, std::uint64_t flags, Part part,
                  std::uint64_t link) {
    put(0, 4);
    put(type, 4);
    put(flags, word());
    put(kBase + part.at, word());
    put(part.at, word());
    put(part.size, word());
    put(link, 4);
    put(0, 4);
    put(8, word());
    put(type == SHT_DYNSYM || type == SHT_SYMTAB ? symbolSize() : 0, word());
  }
  std::size_t symbolSize() const { return plan_.is64 ? 24 : 16; }
  std::size_t headerSize() const { return plan_.is64 ? 64 : 52; }
  std::size_t segmentSize() const { return plan_.is64 ? 56 : 32; }

  void putHeader() {
    for (const unsigned char c :
         {ELFMAG0, int{ELFMAG1}, int{ELFMAG2}, int{ELFMAG3},
          plan_.is64 ? ELFCLASS64 : ELFCLASS32,
          plan_.bigEndian ? ELFDATA2MSB : ELFDATA2LSB, EV_CURRENT}) {
      bytes_.push_back(c);
    }
    bytes_.resize(EI_NIDENT);
    put(plan_.type, 2);
    put(EM_NONE, 2);
    put(EV_CURRENT, 4);
    put(0, word());
    put(headerSize(), word());  // segments follow at once
    put(0, word());             // sections: patched
    put(0, 4);
    put(headerSize(), 2);
    put(segmentSize(), 2);
    put(plan_.type == ET_REL ? 0 : 2, 2);
    put(plan_.is64 ? 64 : 40, 2);
    put(0, 2);  // count of sections: patched
    put(0, 2);
  }
  void putSegment(std::uint64_t type, Part part) {
    put(type, 4);
    if (plan_.is64) put(PF_R, 4);
    put(part.at, word());
    put(kBase + part.at, word());
    put(kBase + part.at, word());
    put(part.size, word());
    put(part.size, word());
    if (!plan_.is64) put(PF_R, 4);
    put(8, word());
  }

  void build() {
    putHeader();
    const std::uint64_t segments = bytes_.size();
    bytes_.resize(segments + 2 * segmentSize());

    std::vector<std::uint64_t> needed;
    for (const auto &name : plan_.needed) needed.push_back(intern(name));
    const std::uint64_t count = 1 + plan_.imported.size() + plan_.defined.size();
    const Part symbols = part([&] {
      putSymbol(0, SHN_UNDEF);
      for (const auto &name : plan_.imported) putSymbol(intern(name), SHN_UNDEF);
      for (const auto &name : plan_.defined) putSymbol(intern(name), 1);
    });
    const Part names =
        part([&] { bytes_.insert(bytes_.end(), names_.begin(), names_.end()); });
    const Part texts = part([&] {
      for (const auto &text : plan_.texts) {
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        bytes_.push_back(0);
      }
    });
    const Part hash = part([&] {
      if (plan_.gnuHash) {
        // One bucket with all symbols but the first.
        for (const std::uint64_t field : {1, 1, 1, 0}) put(field, 4);
        put(~0ULL, word());
        put(count > 1 ? 1 : 0, 4);
        for (std::uint64_t i = 1; i < count; ++i) put(i + 1 == count ? 1 : 0, 4);
      } else {
        put(1, 4);
        put(count, 4);
        for (std::uint64_t i = 0; i < count + 1; ++i) put(0, 4);
      }
    });
    const Part dynamic = part([&] {
      for (const auto at : needed) putDynamic(DT_NEEDED, at);
      putDynamic(DT_STRTAB, kBase + names.at);
      putDynamic(DT_STRSZ, names.size);
      putDynamic(DT_SYMTAB, kBase + symbols.at);
      putDynamic(plan_.gnuHash ? DT_GNU_HASH : DT_HASH, kBase + hash.at);
      putDynamic(DT_NULL, 0);
    });
    if (plan_.sections) {
      const std::uint64_t type = plan_.type == ET_REL ? SHT_SYMTAB : SHT_DYNSYM;
      const Part sections = part([&] {
        putSection(SHT_NULL, 0, {0, 0}, 0);
        putSection(type, SHF_ALLOC, symbols, 2);
        putSection(SHT_STRTAB, SHF_ALLOC, names, 0);
        putSection(SHT_PROGBITS, SHF_ALLOC, texts, 0);
      });
      patch(plan_.is64 ? 40 : 32, sections.at, word());
      patch(plan_.is64 ? 60 : 48, 4, 2);
    }
    std::vector<unsigned char> whole;
    whole.swap(bytes_);
    putSegment(PT_LOAD, {0, whole.size()});
    putSegment(PT_DYNAMIC, dynamic);
    std::copy(bytes_.begin(), bytes_.end(), whole.begin() + static_cast<long>(segments));
    bytes_.swap(whole);
  }

  ElfPlan plan_;
  std::string names_ = std::string(1, '\0');
  std::vector<unsigned char> bytes_;
};

}  // namespace zev::test
