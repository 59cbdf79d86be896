/// tnsnames.ora files of tests: parsed from text, printed as one line, and random ones.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include "net/tnsnames.h"
#include "tests/support/random_inputs.h"

namespace zev::test {

/// What a file parses to, and what went to standard output and standard error meanwhile.
struct ParsedFile {
  explicit ParsedFile(std::string_view text);

  int outcome;
  /// "name=host:port/sid;" for each entry, "-" for an absent part, "~" in place of host
  /// and port without an address.
  std::string entries;
  std::string out;
  std::string err;
};

/// Parses a text with nothing captured; the caller releases the list.
std::pair<int, List *> parseText(std::string_view text);

/// The entries of a list as in ParsedFile.
std::string printed(const List *entries);

/// A random file of the grammar with what it parses to, made side by side.
struct RandomFile {
  explicit RandomFile(std::mt19937_64 &random);

  std::string text;
  std::string entries;
};

/// A copy of `text` with some bytes or words changed, doubled, dropped or put in.
std::string mutated(std::string text, std::mt19937_64 &random);

}  // namespace zev::test
