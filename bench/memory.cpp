// What a long fetch adds to the process at its peak.
#include <malloc.h>

#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/cases.h"
#include "bench/rows.h"

namespace bench {
namespace {

/// A line of /proc/self/status such as "VmRSS:     1234 kB", in bytes.
double processBytes(const std::string &name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with(name + ":"))
      return std::stod(line.substr(name.size() + 1)) * 1024;
  throw std::runtime_error("no " + name + " in /proc/self/status");
}

/// Makes the peak (VmHWM) start again from what is resident now.
void resetPeak() {
  std::ofstream clear("/proc/self/clear_refs");
  clear << "5" << std::flush;
  if (!clear) throw std::runtime_error("the peak of resident memory cannot be reset");
}

/// Free memory of earlier work is given back first: reusing it would not show as growth.
template <class Work>
double peakGrowth(Work &&work) {
  malloc_trim(0);
  resetPeak();
  const double before = processBytes("VmRSS");
  work();
  return processBytes("VmHWM") - before;
}

std::string query(long rows) {
  return "SELECT i::int4, i::int8 * 1000, i * 0.5::float8, 'text ' || i, ('name ' || "
         "i)::varchar,"
         " i / 100.0 FROM generate_series(1, " +
         std::to_string(rows) + ") AS i";
}

struct Sides {
  explicit Sides(const Setup &setup)
      : conn(connect(setup.target)),
        session(setup.target),
        rows(setup.scaled(2'000'000)) {}

  PgConnection conn;
  Session session;
  Batch batch;
  Sum theirs, ours;
  long rows;
};

}  // namespace

Case memoryCase(const Setup &setup) {
  const auto sides = std::make_shared<Sides>(setup);
  const auto libpq = [sides] {
    return peakGrowth([&] {
      sides->theirs = readByLibpq(sides->conn.get(), query(sides->rows), sides->batch);
    });
  };
  const auto ours = [sides] {
    const double growth = peakGrowth([&] {
      sides->ours = readByArray(sides->session, query(sides->rows), sides->batch);
    });
    checkSums(sides->theirs, sides->ours, sides->rows);
    return growth;
  };
  return {.name = "memory of a long fetch",
          .unit = "MB",
          .factor = 1.0 / (1 << 20),
          .libpq = libpq,
          .ours = ours,
          .limit = 16};
}

}  // namespace bench
