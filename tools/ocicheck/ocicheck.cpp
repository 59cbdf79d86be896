/// Tells the owner of a program which of its calls this library answers, before the move.
#include <algorithm>
#include <iostream>
#include <iterator>
#include <string_view>

#include "report.h"

namespace {

constexpr const char *kUsage =
    "usage: ocicheck [--json] FILE_OR_DIRECTORY...\n"
    "\n"
    "Lists the functions of the Oracle Call Interface that executables, shared objects "
    "and\n"
    "object files import or hold the names of, and says of each whether it works, fails\n"
    "softly, stops the process or is unknown. Nothing is run. Directories are searched.\n"
    "\n"
    "  --json   for machines: one JSON object\n"
    "\n"
    "Exit status: 0 all functions work, 1 some fail softly, 2 some stop the process or "
    "are\n"
    "unknown, 3 a file could not be read, 64 wrong usage.\n";

constexpr int kWrongUsage = 64;

}  // namespace

int main(int argc, char **argv) try {
  bool json = false;
  std::vector<zev::ocicheck::FileReport> reports;
  int paths = 0;
  for (const std::string_view argument :
       std::vector<const char *>(argv + 1, argv + argc)) {
    if (argument == "--json") {
      json = true;
    } else if (argument == "--help") {
      std::cout << kUsage;
      return 0;
    } else if (argument.starts_with("-") && argument != "-") {
      std::cerr << "ocicheck: unknown option " << argument << '\n' << kUsage;
      return kWrongUsage;
    } else {
      ++paths;
      std::ranges::move(zev::ocicheck::check(argument), std::back_inserter(reports));
    }
  }
  if (!paths) {
    std::cerr << kUsage;
    return kWrongUsage;
  }
  (json ? zev::ocicheck::printJson : zev::ocicheck::printTable)(std::cout, reports);
  std::cout.flush();
  return std::cout ? zev::ocicheck::verdictOf(reports) : zev::ocicheck::kUnreadable;
} catch (const std::exception &error) {
  std::cerr << "ocicheck: " << error.what() << '\n';
  return zev::ocicheck::kUnreadable;
}
