// zevoci_bench: the same work through libpq by hand and through this library, in turn.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/cases.h"

namespace bench {
namespace {

struct Options {
  int rounds = 7;
  double scale = 1;
  std::set<std::string> only;
  bool json = false;
};

struct Entry {
  const char *key;
  Case (*make)(const Setup &);
};

constexpr Entry kEntries[] = {
    {"insert", insertCase},
    {"array", arrayFetchCase},
    {"prefetch", prefetchCase},
    {"point", pointCase},
    {"logon", logonCase},
    {"frame", frameCase},
    {"bulkinsert", arrayInsertCase},
    {"bulkupdate", arrayUpdateCase},
    {"bulkdelete", arrayDeleteCase},
    {"call", callCase},
    {"lobwrite", lobWriteCase},
    {"lobread", lobReadCase},
    {"memory", memoryCase},
};

constexpr const char *kUsage =
    "usage: zevoci_bench [--rounds N] [--scale FACTOR] [--only KEY,...] [--json]\n"
    "keys: insert array prefetch point logon frame bulkinsert bulkupdate bulkdelete call "
    "lobwrite lobread memory\n";

template <class Number>
Number positive(const std::string &option, const std::string &value) {
  Number number{};
  const auto [end, error] =
      std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size() || number <= 0)
    throw std::invalid_argument(option + " needs a positive number");
  return number;
}

std::set<std::string> keysOf(const std::string &list) {
  std::set<std::string> keys;
  std::istringstream in(list);
  for (std::string key; std::getline(in, key, ',');) {
    bool known = false;
    for (const Entry &entry : kEntries) known |= key == entry.key;
    if (!known) throw std::invalid_argument("no work is called " + key);
    keys.insert(key);
  }
  return keys;
}

Options parse(int argc, char **argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    if (option == "--json") {
      options.json = true;
      continue;
    }
    if (i + 1 == argc)
      throw std::invalid_argument(option + " is unknown or lacks a value");
    const std::string value = argv[++i];
    if (option == "--rounds")
      options.rounds = positive<int>(option, value);
    else if (option == "--scale")
      options.scale = positive<double>(option, value);
    else if (option == "--only")
      options.only = keysOf(value);
    else
      throw std::invalid_argument(option + " is unknown");
  }
  return options;
}

/// Runs the chosen work; false when something stayed above its limit.
bool runAll(const Options &options) {
  const Setup setup{Target::fromEnvironment(), options.scale};
  std::vector<Report> reports;
  bool within = true;
  createTables(setup);
  for (const Entry &entry : kEntries) {
    if (!options.only.empty() && !options.only.contains(entry.key)) continue;
    reports.push_back(run(entry.make(setup), options.rounds));
    within &= reports.back().withinLimit();
  }
  dropTables(setup);
  (options.json ? printJson : printTable)(reports);
  return within;
}

}  // namespace

void createTables(const Setup &setup) {
  dropTables(setup);
  const PgConnection conn = connect(setup.target);
  const std::string rows = kRowsTable, into = kInsertTable;
  exec(conn.get(),
       ("CREATE TABLE " + into +
        " (id integer PRIMARY KEY, weight double precision, name varchar(40))")
           .c_str());
  exec(conn.get(), ("CREATE TABLE " + rows +
                    " (a integer, b bigint, c double precision, d text, e varchar(40),"
                    " f numeric(12,2))")
                       .c_str());
  exec(conn.get(), ("INSERT INTO " + rows +
                    " SELECT i, i * 1000003::bigint, i * 0.5, 'text ' || i, 'name ' || i,"
                    " i / 100.0 FROM generate_series(1, " +
                    std::to_string(setup.tableRows()) + ") AS i")
                       .c_str());
  exec(conn.get(), ("ALTER TABLE " + rows + " ADD PRIMARY KEY (a)").c_str());
  exec(conn.get(), ("VACUUM ANALYZE " + rows).c_str());
}

void dropTables(const Setup &setup) {
  const PgConnection conn = connect(setup.target);
  exec(conn.get(), "SET client_min_messages = warning");
  exec(conn.get(), (std::string("DROP TABLE IF EXISTS ") + kRowsTable).c_str());
  exec(conn.get(), (std::string("DROP TABLE IF EXISTS ") + kInsertTable).c_str());
}

}  // namespace bench

int main(int argc, char **argv) {
  try {
    return bench::runAll(bench::parse(argc, argv)) ? 0 : 1;
  } catch (const std::invalid_argument &wrong) {
    std::fprintf(stderr, "zevoci_bench: %s\n%s", wrong.what(), bench::kUsage);
  } catch (const std::exception &failure) {
    std::fprintf(stderr, "zevoci_bench: %s\n", failure.what());
  }
  return 2;
}
