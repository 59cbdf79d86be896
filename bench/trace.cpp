// zevoci_bench_trace: what the library's trace sites cost while no log is open, beside a
// test of one global written by hand (the column "libpq"), and what a written line costs.
#include "zevoci/trace.h"

#include <cstdint>
#include <cstdio>

#include "bench/measure.h"

// A site is measured as it stands in the shared library: position-independent.
namespace bench {
namespace {

constexpr int kSites = 20'000'000;
constexpr int kLines = 200'000;
constexpr int kRounds = 7;
constexpr double kNanoseconds = 1e9;
/// Nanoseconds that no site may reach; a call alone, with its arguments, costs as much.
constexpr double kMostForASite = 2;

/// The yardstick: a global that other translation units may change.
std::FILE *volatile handWrittenLog = nullptr;

/// Nothing that a site loads may be kept over from the site before.
void forget() {
  asm volatile("" : : : "memory");
}

template <class Site>
std::function<double()> round(int count, Site site) {
  return [count, site] {
    return seconds([&] {
      for (int i = 0; i < count; ++i) {
        site(i);
        forget();
      }
    });
  };
}

const auto kByHand = [](int i) {
  if (handWrittenLog) std::fprintf(handWrittenLog, "%d\n", i);
};

template <class Site>
Case closed(const char *name, Site site) {
  return {.name = name,
          .unit = "ns/site",
          .factor = kNanoseconds / kSites,
          .libpq = round(kSites, kByHand),
          .ours = round(kSites, site),
          .limit = kMostForASite};
}

template <class Site>
Case open(const char *name, Site site) {
  return {.name = name,
          .unit = "ns/line",
          .factor = kNanoseconds / kLines,
          .libpq = {},
          .ours = round(kLines, site)};
}

/// The sites; their texts are those of real ones.
const auto kBySubject = [](int i) {
  ocitrace(kTraceBindData, "GetOCIBindData", "processing parameter %d\n", i);
};
const auto kDump = [](int i) { ocitracehex(kTraceToServer, "  source:", &i, sizeof i); };
const auto kByVerbosity = [](int i) {
  o2pTrace(zev::kTraceArguments, "\terrhp = %p\n", &i);
};

std::vector<Report> measure() {
  std::vector<Report> reports;
  for (const Case &work :
       {closed("no log: ocitrace", kBySubject), closed("no log: ocitracehex", kDump),
        closed("no log: o2pTrace", kByVerbosity)}) {
    reports.push_back(run(work, kRounds));
  }
  oci_debug_log = std::fopen("/dev/null", "w");
  OCI2PQ_TRACE_LEVEL = zev::kTraceArguments;
  for (const Case &work :
       {open("a log: ocitrace", kBySubject), open("a log: ocitracehex of 4 bytes", kDump),
        open("a log: o2pTrace, flushed", kByVerbosity)}) {
    reports.push_back(run(work, kRounds));
  }
  std::fclose(oci_debug_log);
  oci_debug_log = nullptr;
  return reports;
}

}  // namespace
}  // namespace bench

int main() {
  const std::vector<bench::Report> reports = bench::measure();
  bench::printTable(reports);
  for (const bench::Report &report : reports) {
    if (!report.withinLimit()) return 1;
  }
  return 0;
}
