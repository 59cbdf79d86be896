#include <elf.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "report.h"

namespace zev::ocicheck {
namespace {

std::string kindOf(const ElfFile &file) {
  std::string kind = file.is64 ? "64-bit " : "32-bit ";
  kind += file.bigEndian ? "big-endian " : "little-endian ";
  switch (file.type) {
    case ET_REL:
      return kind + "object file";
    case ET_EXEC:
      return kind + "executable";
    case ET_DYN:
      return kind + "shared object or executable";
    default:
      return kind + "file";
  }
}

/// Whether a library is one that this library stands in for, or this library.
bool isClientLibrary(std::string_view name) {
  return std::ranges::any_of(
      std::initializer_list<std::string_view>{"clntsh", "occi", "zevoci"},
      [name](std::string_view stem) {
        return name.starts_with("lib") && name.substr(3).starts_with(stem) &&
               name.substr(3 + stem.size()).starts_with(".so");
      });
}

/// What the file uses, by name.
class Uses {
 public:
  explicit Uses(const ElfFile &file) : file_(file) {
    for (const auto name : file.imported) {
      if (hasInterfacePrefix(name) || isElderCall(name)) add(name, true);
    }
    for (const auto text : file.texts) {
      if (fateOf(text) != Fate::Unknown) add(text, false);
    }
    // A program that looks functions up may look up some that are not known here.
    if (!looksUp_) return;
    for (const auto text : file.texts) {
      if (isFunctionName(text)) add(text, false);
    }
  }

  std::vector<Use> inOrder() const {
    std::vector<Use> uses;
    for (const auto &[name, use] : uses_) uses.push_back(use);
    std::ranges::stable_sort(uses, std::ranges::greater(), &Use::fate);
    return uses;
  }

 private:
  /// Functions of the file's own are not taken from elsewhere.
  void add(std::string_view name, bool imported) {
    if (std::ranges::binary_search(file_.defined, name)) return;
    looksUp_ |= !imported;
    uses_.try_emplace(std::string(name), Use{std::string(name), fateOf(name), imported});
  }

  const ElfFile &file_;
  bool looksUp_ = false;
  std::map<std::string, Use> uses_;
};

std::string contentsOf(const std::filesystem::path &path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw BadElf("cannot be opened");
  std::ostringstream bytes;
  bytes << in.rdbuf();
  if (in.bad()) throw BadElf("cannot be read");
  return std::move(bytes).str();
}

bool beginsAsElf(const std::filesystem::path &path) {
  char magic[SELFMAG] = {};
  std::ifstream in(path, std::ios::binary);
  in.read(magic, sizeof magic);
  return in && looksLikeElf({reinterpret_cast<unsigned char *>(magic), sizeof magic});
}

FileReport checkFile(const std::filesystem::path &path) {
  try {
    const std::string bytes = contentsOf(path);
    return judge(
        path.string(),
        readElf({reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size()}));
  } catch (const BadElf &error) {
    return {.path = path.string(), .error = error.what()};
  }
}

}  // namespace

FileReport judge(std::string path, const ElfFile &file) {
  FileReport report{.path = std::move(path), .kind = kindOf(file)};
  for (const auto *names : {&file.needed, &file.texts}) {
    for (const auto name : *names) {
      if (isClientLibrary(name)) report.libraries.emplace_back(name);
    }
  }
  report.uses = Uses(file).inOrder();
  return report;
}

std::vector<FileReport> check(const std::filesystem::path &path) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::exists(path, error)) {
    return {{.path = path.string(), .error = "does not exist"}};
  }
  if (!fs::is_directory(path, error)) return {checkFile(path)};
  std::vector<fs::path> files;
  auto entries = fs::recursive_directory_iterator(
      path, fs::directory_options::skip_permission_denied, error);
  for (const auto end = fs::recursive_directory_iterator(); !error && entries != end;
       entries.increment(error)) {
    std::error_code unknown;
    if (entries->is_regular_file(unknown) && !entries->is_symlink(unknown) &&
        beginsAsElf(entries->path())) {
      files.push_back(entries->path());
    }
  }
  if (error) return {{.path = path.string(), .error = error.message()}};
  std::ranges::sort(files);
  std::vector<FileReport> reports;
  std::ranges::transform(files, std::back_inserter(reports), checkFile);
  return reports;
}

Verdict verdictOf(const std::vector<FileReport> &reports) {
  Verdict verdict = kAllWork;
  for (const FileReport &report : reports) {
    if (!report.error.empty()) return kUnreadable;
    for (const Use &use : report.uses) {
      const Verdict one = use.fate == Fate::Works   ? kAllWork
                          : use.fate == Fate::Fails ? kSomeFail
                                                    : kSomeStop;
      verdict = std::max(verdict, one);
    }
  }
  return verdict;
}

}  // namespace zev::ocicheck
