/// The first line of the input names binds, separated by commas; the rest is statement
/// text. Both rewriters must give texts whose length, "$n" and names follow from what
/// they report.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/owned.h"
#include "stmt/placeholder.h"

namespace {

void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// Binds of these names, in order.
class Binds {
 public:
  explicit Binds(const std::string &line) {
    for (std::size_t from = 0; from < line.size(); from = line.find(',', from) + 1) {
      names_.push_back(line.substr(from, line.find(',', from) - from));
      if (line.find(',', from) == line.npos) break;
    }
    binds_.resize(names_.size());
    for (std::size_t i = 0; i < names_.size(); ++i) {
      binds_[i].name = names_[i].data();
      binds_[i].nameLen = static_cast<ub4>(names_[i].size());
      binds_[i].pgType = static_cast<ub4>(i);
      binds_[i].paramMode = kParamInOut;
      list_ = lappend(list_, &binds_[i]);
    }
  }
  ~Binds() { list_free(list_); }
  Binds(const Binds &) = delete;
  Binds &operator=(const Binds &) = delete;
  const List *list() const { return list_; }

 private:
  std::vector<std::string> names_;
  std::vector<OCIBind> binds_;
  List *list_ = nullptr;
};

/// Finds "$1" to "$count" in `query`, each behind the one before, and returns their
/// bytes.
std::size_t numberBytes(const std::string &query, ub4 count) {
  std::size_t bytes = 0;
  std::size_t from = 0;
  for (ub4 n = 1; n <= count; ++n) {
    const std::string number = '$' + std::to_string(n);
    from = query.find(number, from);
    require(from != query.npos);
    from += number.size();
    bytes += number.size();
  }
  return bytes;
}

void checkBound(const Binds &binds, const std::string &text) {
  char *query = nullptr;
  ub4 count = 0;
  Oid *types = nullptr;
  ub4 *directions = nullptr;
  List *list =
      ReplacePlaceholders(binds.list(), text.c_str(), static_cast<ub4>(text.size()),
                          &query, &count, &types, &directions);
  const zev::Malloced<char> ownedQuery(query);
  const zev::Malloced<Oid> ownedTypes(types);
  const zev::Malloced<ub4> ownedDirections(directions);
  require(list_length(list) == count && (types != nullptr) == (count > 0));
  const std::string rewritten(query);
  const std::size_t kept = rewritten.size() - numberBytes(rewritten, count);
  // Each parameter stood for a colon and at least one byte more.
  require(kept + 2 * std::size_t{count} <= text.size());
  require(count > 0 || rewritten == text);
  ub4 n = 0;
  for (const OCIBind *bind : zev::Elements<OCIBind>(list)) {
    require(list_member(binds.list(), bind) && types[n] == bind->pgType);
    require(directions[n++] == bind->paramMode);
  }
  list_free(list);
}

bool isName(const char *name) {
  return std::all_of(name, name + std::strlen(name),
                     [](char c) { return charIsContinuation(c) != 0; });
}

void checkDescribed(const std::string &text) {
  char *query = nullptr;
  ub4 count = 0;
  List *names = ReplacePlaceholdersEx(nullptr, text.c_str(), &query, &count);
  const std::string rewritten(query);
  std::free(query);
  std::size_t nameBytes = 0;
  for (const char *name : zev::Elements<char>(names)) {
    require(isName(name));
    nameBytes += std::strlen(name);
  }
  // Only a colon that ends the text has no name, not even an empty one.
  require(list_length(names) == count || list_length(names) + 1 == count);
  const std::size_t written = numberBytes(rewritten, count);
  require(rewritten.size() - written + nameBytes + count == text.size());
  free_list_members(names);
  list_free(names);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  std::string input(reinterpret_cast<const char *>(data), size);
  std::erase(input, '\0');
  const std::size_t line = std::min(input.find('\n'), input.size());
  const std::string text = input.substr(std::min(line + 1, input.size()));
  // Ten thousand parameters stop the process on purpose.
  if (std::count(text.begin(), text.end(), ':') >= 10000) return 0;
  checkBound(Binds(input.substr(0, line)), text);
  checkDescribed(text);
  return 0;
}
