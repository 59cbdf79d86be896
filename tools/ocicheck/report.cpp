#include "report.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <set>

namespace zev::ocicheck {
namespace {

/// How the groups are called, in the order of Fate.
struct GroupName {
  const char *text;
  const char *json;
};
constexpr GroupName kGroups[] = {{"works", "works"},
                                 {"fails softly", "fails"},
                                 {"stops the process", "stops"},
                                 {"unknown", "unknown"}};

const GroupName &groupOf(Fate fate) {
  return kGroups[static_cast<std::size_t>(fate)];
}

/// The different functions of one fate, over all files.
std::size_t count(const std::vector<FileReport> &reports, Fate fate) {
  std::set<std::string> names;
  for (const FileReport &report : reports) {
    for (const Use &use : report.uses) {
      if (use.fate == fate) names.insert(use.function);
    }
  }
  return names.size();
}

void printFile(std::ostream &out, const FileReport &report) {
  out << report.path;
  if (!report.error.empty()) {
    out << ": " << report.error << '\n';
    return;
  }
  out << " (" << report.kind << ")\n";
  for (const std::string &library : report.libraries) {
    out << "  asks for " << library << '\n';
  }
  for (const Use &use : report.uses) {
    out << "  " << std::left << std::setw(19) << groupOf(use.fate).text << std::setw(9)
        << (use.imported ? "imported" : "named") << use.function << '\n';
  }
  if (report.uses.empty()) out << "  uses no function of the interface\n";
}

/// Whether there is something to say about a file among many.
bool concernsUs(const FileReport &report) {
  return !report.uses.empty() || !report.libraries.empty() || !report.error.empty();
}

std::string verdictText(const std::vector<FileReport> &reports) {
  const auto many = [&reports](Fate fate, const char *one, const char *several) {
    const std::size_t n = count(reports, fate);
    return n ? std::to_string(n) + (n == 1 ? one : several) : std::string();
  };
  std::string text;
  for (const std::string &part :
       {many(Fate::Unknown, " function is not in the library",
             " functions are not in the library"),
        many(Fate::Stops, " function stops the process", " functions stop the process"),
        many(Fate::Fails, " function fails softly", " functions fail softly"),
        many(Fate::Works, " works", " work")}) {
    if (part.empty()) continue;
    text += (text.empty() ? "" : ", ") + part;
  }
  if (text.empty()) return "no function of the interface is used";
  if (verdictOf(reports) == kAllWork) return "every function works (" + text + ")";
  return text;
}

/// Bytes that a UTF-8 character at the beginning of `text` has; 0 when it has none there.
std::size_t characterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  const std::size_t length = lead < 0x80                   ? 1
                             : lead >= 0xC2 && lead < 0xE0 ? 2
                             : lead >= 0xE0 && lead < 0xF0 ? 3
                             : lead >= 0xF0 && lead < 0xF5 ? 4
                                                           : 0;
  if (!length || length > text.size()) return 0;
  const bool whole = std::ranges::all_of(
      text.substr(1, length - 1), [](unsigned char c) { return (c & 0xC0) == 0x80; });
  return whole ? length : 0;
}

/// A JSON text. What is not UTF-8 becomes the replacement character.
void printText(std::ostream &out, std::string_view text) {
  out << '"';
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    const auto c = static_cast<unsigned char>(text[0]);
    if (!length) {
      out << "\\ufffd";
    } else if (c < 0x20) {
      out << "\\u00" << std::hex << std::setw(2) << std::setfill('0') << std::right
          << unsigned{c} << std::dec << std::setfill(' ');
    } else if (c == '"' || c == '\\') {
      out << '\\' << text[0];
    } else {
      out << text.substr(0, length);
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  out << '"';
}

/// `[...]` or `{...}` of the elements, each printed by `print`.
template <class Elements, class Print>
void printList(std::ostream &out, const Elements &elements, Print print) {
  out << '[';
  const char *separator = "";
  for (const auto &element : elements) {
    out << separator;
    print(element);
    separator = ",";
  }
  out << ']';
}

void printJsonFile(std::ostream &out, const FileReport &report) {
  out << "{\"path\":";
  printText(out, report.path);
  if (!report.error.empty()) {
    out << ",\"error\":";
    printText(out, report.error);
    out << '}';
    return;
  }
  out << ",\"kind\":";
  printText(out, report.kind);
  out << ",\"libraries\":";
  printList(out, report.libraries, [&out](const auto &name) { printText(out, name); });
  out << ",\"functions\":";
  printList(out, report.uses, [&out](const Use &use) {
    out << "{\"name\":";
    printText(out, use.function);
    out << ",\"group\":\"" << groupOf(use.fate).json << "\",\"how\":\""
        << (use.imported ? "imported" : "named") << "\"}";
  });
  out << '}';
}

}  // namespace

void printTable(std::ostream &out, const std::vector<FileReport> &reports) {
  std::size_t others = 0;
  for (const FileReport &report : reports) {
    if (reports.size() == 1 || concernsUs(report)) {
      printFile(out, report);
    } else {
      ++others;
    }
  }
  if (others) {
    out << others << (others == 1 ? " file uses" : " files use")
        << " no function of the interface\n";
  }
  out << "\nVerdict: " << verdictText(reports) << ".\n";
  if (count(reports, Fate::Stops)) {
    out << "Set ZEV_OCI_UIFCTN_RET_OK to let a program go on behind a function that "
           "stops "
           "the\nprocess; it then returns OCI_SUCCESS and has done nothing.\n";
  }
}

void printJson(std::ostream &out, const std::vector<FileReport> &reports) {
  out << "{\"files\":";
  printList(out, reports,
            [&out](const FileReport &report) { printJsonFile(out, report); });
  out << ",\"counts\":{";
  for (const Fate fate : {Fate::Works, Fate::Fails, Fate::Stops, Fate::Unknown}) {
    out << (fate == Fate::Works ? "\"" : ",\"") << groupOf(fate).json
        << "\":" << count(reports, fate);
  }
  out << "},\"verdict\":" << verdictOf(reports) << "}\n";
}

}  // namespace zev::ocicheck
