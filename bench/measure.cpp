#include "bench/measure.h"

#include <algorithm>
#include <cstdio>

namespace bench {
namespace {

Summary summarise(std::vector<double> values, double factor) {
  std::sort(values.begin(), values.end());
  const size_t n = values.size();
  const double middle = n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
  return {middle * factor, values.front() * factor, values.back() * factor};
}

std::string number(double value) {
  char text[40];
  std::snprintf(text, sizeof text,
                value < 10     ? "%.3f"
                : value < 1000 ? "%.1f"
                               : "%.0f",
                value);
  return text;
}

std::string orDash(const std::optional<int> &value) {
  return value ? std::to_string(*value) : "-";
}

std::string range(const Summary &s) {
  return number(s.lowest) + ".." + number(s.highest);
}

void printJsonSide(const char *name, const Summary &s) {
  std::printf(", \"%s\": {\"median\": %.6g, \"lowest\": %.6g, \"highest\": %.6g}", name,
              s.median, s.lowest, s.highest);
}

void printJsonReport(const Report &r) {
  std::printf("  {\"name\": \"%s\", \"unit\": \"%s\"", r.name.c_str(), r.unit.c_str());
  if (r.libpq) printJsonSide("libpq", *r.libpq);
  printJsonSide("ours", r.ours);
  if (r.ratio()) std::printf(", \"ratio\": %.4g", *r.ratio());
  if (r.libpqTrips) std::printf(", \"libpq_trips\": %d", *r.libpqTrips);
  if (r.oursTrips) std::printf(", \"ours_trips\": %d", *r.oursTrips);
  if (r.limit)
    std::printf(", \"limit\": %.6g, \"within_limit\": %s", *r.limit,
                r.withinLimit() ? "true" : "false");
  std::printf("}");
}

}  // namespace

std::optional<double> Report::ratio() const {
  if (!libpq || libpq->median <= 0) return std::nullopt;
  return ours.median / libpq->median;
}

Report run(const Case &work, int rounds) {
  std::vector<double> libpq, ours;
  for (int round = -1; round < rounds; ++round) {
    const double theirs = work.libpq ? work.libpq() : 0;
    const double mine = work.ours();
    if (round < 0) continue;
    libpq.push_back(theirs);
    ours.push_back(mine);
  }
  Report report{.name = work.name, .unit = work.unit, .limit = work.limit};
  if (work.libpq) report.libpq = summarise(libpq, work.factor);
  report.ours = summarise(ours, work.factor);
  if (work.libpqTrips) report.libpqTrips = work.libpqTrips();
  if (work.oursTrips) report.oursTrips = work.oursTrips();
  return report;
}

void printTable(const std::vector<Report> &reports) {
  std::printf("%-28s %-9s %10s %10s %7s %7s %7s  %-19s %-19s\n", "work", "unit", "libpq",
              "ours", "ratio", "trips", "ours", "libpq range", "ours range");
  for (const Report &r : reports) {
    const auto ratio = r.ratio();
    std::printf("%-28s %-9s %10s %10s %7s %7s %7s  %-19s %-19s%s\n", r.name.c_str(),
                r.unit.c_str(), r.libpq ? number(r.libpq->median).c_str() : "-",
                number(r.ours.median).c_str(), ratio ? number(*ratio).c_str() : "-",
                orDash(r.libpqTrips).c_str(), orDash(r.oursTrips).c_str(),
                r.libpq ? range(*r.libpq).c_str() : "-", range(r.ours).c_str(),
                r.withinLimit() ? "" : "  OVER THE LIMIT");
  }
}

void printJson(const std::vector<Report> &reports) {
  std::printf("[\n");
  for (size_t i = 0; i < reports.size(); ++i) {
    printJsonReport(reports[i]);
    std::printf(i + 1 < reports.size() ? ",\n" : "\n");
  }
  std::printf("]\n");
}

}  // namespace bench
