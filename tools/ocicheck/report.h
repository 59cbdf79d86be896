/// The functions that files use, and what their owner is told about them.
#pragma once

#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

#include "elf_file.h"
#include "fate.h"

namespace zev::ocicheck {

/// A function that a file uses.
struct Use {
  std::string function;
  Fate fate;
  bool imported;  ///< linked against; otherwise its name is there to be looked up
};

/// What was found in one file.
struct FileReport {
  std::string path;
  std::string kind;                    ///< such as "64-bit little-endian shared object"
  std::vector<std::string> libraries;  ///< client libraries that it asks for
  std::vector<Use> uses;               ///< worst first, then by name
  std::string error;                   ///< why it could not be read, or empty
};

/// How a report ends; the program's exit status.
enum Verdict : int {
  kAllWork = 0,
  kSomeFail = 1,
  kSomeStop = 2,  ///< or are unknown
  kUnreadable = 3,
};

/// What a file's names come to.
FileReport judge(std::string path, const ElfFile &file);

/// Reads the file, or every ELF file below the directory. Files of other kinds are an
/// error where they are named, and passed over in directories.
std::vector<FileReport> check(const std::filesystem::path &path);

Verdict verdictOf(const std::vector<FileReport> &reports);

/// The report as a table, which ends with the verdict in words. Of several files those
/// that use nothing are counted, not listed.
void printTable(std::ostream &out, const std::vector<FileReport> &reports);

/// The report as one JSON object (RFC 8259).
void printJson(std::ostream &out, const std::vector<FileReport> &reports);

}  // namespace zev::ocicheck
