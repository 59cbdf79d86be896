#include "elf_file.h"

#include <algorithm>
#include <cctype>
#include <optional>

#include "elf_image.h"

namespace zev::ocicheck {
namespace {

/// Longer texts are no names.
constexpr std::size_t kLongestName = 128;

/// A table of symbols and that of their names.
struct SymbolTable {
  Range symbols;
  Range names;
};

/// What the dynamic segment tells; addresses are of memory.
struct Dynamic {
  std::vector<std::uint64_t> needed;  ///< into the names
  std::uint64_t names = 0, namesSize = 0, symbols = 0, hash = 0, gnuHash = 0;
};

template <class Element>
const Element *findType(const std::vector<Element> &elements, std::uint64_t type) {
  const auto found = std::ranges::find(elements, type, &Element::type);
  return found == elements.end() ? nullptr : &*found;
}

Dynamic readDynamic(const Image &image, const Segment &segment) {
  Dynamic dynamic;
  const Range range = image.range(segment.offset, segment.size);
  const std::size_t entry = ELF_SIZE(image, Dyn);
  for (auto at = range.begin; range.end - at >= entry; at += entry) {
    const auto value = ELF_FIELD(image, at, Dyn, d_un);
    switch (ELF_FIELD(image, at, Dyn, d_tag)) {
      case DT_NULL:
        return dynamic;
      case DT_NEEDED:
        dynamic.needed.push_back(value);
        break;
      case DT_STRTAB:
        dynamic.names = value;
        break;
      case DT_STRSZ:
        dynamic.namesSize = value;
        break;
      case DT_SYMTAB:
        dynamic.symbols = value;
        break;
      case DT_HASH:
        dynamic.hash = value;
        break;
      case DT_GNU_HASH:
        dynamic.gnuHash = value;
        break;
      default:
        break;
    }
  }
  return dynamic;
}

/// The number of symbols as the end of the last chain of a GNU hash table tells it.
std::uint64_t countByGnuHash(const Image &image, std::uint64_t table) {
  const auto buckets = image.number(table, 4);
  const auto first = image.number(table + 4, 4);
  const auto bloom = image.number(table + 8, 4);
  const auto bucketsAt = table + 16 + bloom * (image.is64() ? 8 : 4);
  image.range(bucketsAt, buckets * 4);
  std::uint64_t last = 0;
  for (std::uint64_t i = 0; i < buckets; ++i) {
    last = std::max(last, image.number(bucketsAt + 4 * i, 4));
  }
  if (last < first) return first;
  const auto chains = bucketsAt + 4 * buckets;
  while (!(image.number(chains + 4 * (last - first), 4) & 1)) ++last;
  return last + 1;
}

std::uint64_t countSymbols(const Image &image, const Dynamic &dynamic) {
  if (dynamic.hash) return image.number(image.offsetOf(dynamic.hash) + 4, 4);
  if (dynamic.gnuHash) return countByGnuHash(image, image.offsetOf(dynamic.gnuHash));
  return 0;
}

/// The table of a file without sections.
std::optional<SymbolTable> tableOf(const Image &image, const Dynamic &dynamic) {
  if (!dynamic.symbols || !dynamic.names) return {};
  const auto count = countSymbols(image, dynamic);
  return SymbolTable{
      image.range(image.offsetOf(dynamic.symbols), count * ELF_SIZE(image, Sym)),
      image.range(image.offsetOf(dynamic.names), dynamic.namesSize)};
}

/// The table that a section of this type holds.
std::optional<SymbolTable> tableOf(const Image &image, std::uint64_t type) {
  const Section *symbols = findType(image.sections(), type);
  if (!symbols) return {};
  if (symbols->link >= image.sections().size()) throw BadElf("symbols without names");
  const Section &names = image.sections()[symbols->link];
  if (names.type == SHT_NOBITS || symbols->type == SHT_NOBITS) return {};
  return SymbolTable{image.range(symbols->offset, symbols->size),
                     image.range(names.offset, names.size)};
}

void readSymbols(const Image &image, const SymbolTable &table, ElfFile &file) {
  const std::size_t entry = ELF_SIZE(image, Sym);
  for (auto at = table.symbols.begin; table.symbols.end - at >= entry; at += entry) {
    const auto name = image.text(table.names, ELF_FIELD(image, at, Sym, st_name));
    if (name.empty()) continue;
    const bool imported = ELF_FIELD(image, at, Sym, st_shndx) == SHN_UNDEF;
    (imported ? file.imported : file.defined).push_back(name);
  }
}

bool isNameCharacter(unsigned char c) {
  return std::isalnum(c) || c == '_' || c == '.';
}

/// The parts of the file that end up in memory, in order and apart from each other.
std::vector<Range> loadedRanges(const Image &image) {
  std::vector<Range> all;
  for (const Segment &segment : image.segments()) {
    if (segment.type == PT_LOAD) {
      all.push_back(image.range(segment.offset, segment.size));
    }
  }
  if (all.empty()) {
    for (const Section &section : image.sections()) {
      if (section.type == SHT_PROGBITS && section.flags & SHF_ALLOC) {
        all.push_back(image.range(section.offset, section.size));
      }
    }
  }
  std::ranges::sort(all, {}, &Range::begin);
  std::vector<Range> merged;
  for (const Range &range : all) {
    if (merged.empty() || range.begin > merged.back().end) {
      merged.push_back(range);
    } else {
      merged.back().end = std::max(merged.back().end, range.end);
    }
  }
  return merged;
}

bool isOfInterest(std::string_view text) {
  const bool isLibrary = text.starts_with("lib") && text.find(".so") != text.npos;
  return isLibrary || hasInterfacePrefix(text);
}

/// Gathers the whole texts of a range, leaving those out that stand in `names`: they are
/// of symbols.
void readTexts(const Image &image, const Range &range, const Range &names,
               ElfFile &file) {
  const auto *bytes = reinterpret_cast<const char *>(image.bytes().data());
  auto start = range.begin;
  for (auto at = range.begin; at < range.end; ++at) {
    if (bytes[at] == '\0') {
      const std::string_view text(bytes + start, at - start);
      const bool isSymbol = start >= names.begin && start < names.end;
      if (text.size() <= kLongestName && !isSymbol && isOfInterest(text) &&
          std::ranges::all_of(text, isNameCharacter)) {
        file.texts.push_back(text);
      }
      start = at + 1;
    }
  }
}

void makeUnique(std::vector<std::string_view> &names) {
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
}

}  // namespace

bool hasInterfacePrefix(std::string_view text) {
  if (text.starts_with("OCI")) return text.size() > 3 && std::isupper(text[3]);
  return text.starts_with("ocie") || text.starts_with("xao");
}

ElfFile readElf(Bytes bytes) {
  const Image image(bytes);
  ElfFile file{
      .is64 = image.is64(), .bigEndian = image.bigEndian(), .type = image.type()};

  const Segment *segment = findType(image.segments(), PT_DYNAMIC);
  const Dynamic dynamic = segment ? readDynamic(image, *segment) : Dynamic{};
  auto table = tableOf(image, SHT_DYNSYM);
  if (!table) table = tableOf(image, dynamic);
  // An object file that is still to be linked has no table for the loader.
  if (!table && file.type == ET_REL) table = tableOf(image, SHT_SYMTAB);
  if (table) readSymbols(image, *table, file);

  const Range names = table ? table->names : Range{0, 0};
  if (dynamic.names) {
    for (const auto at : dynamic.needed) {
      const auto name =
          image.text(image.range(image.offsetOf(dynamic.names), dynamic.namesSize), at);
      if (!name.empty()) file.needed.push_back(name);
    }
  }
  for (const Range &range : loadedRanges(image)) readTexts(image, range, names, file);
  makeUnique(file.imported);
  makeUnique(file.defined);
  makeUnique(file.texts);
  return file;
}

}  // namespace zev::ocicheck
