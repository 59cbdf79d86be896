/// Timing of the same work through two clients, and the tables that come of it.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// Seconds that `work` took.
template <class Work>
double seconds(Work &&work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// One comparison. Each side does one round of the work and returns the seconds that
/// count, or bytes where the unit says so; set-up and clearing away stay outside of them.
struct Case {
  std::string name;
  std::string unit;               ///< of one item of the report, as "us/row"
  double factor;                  ///< from a round's result to that unit
  std::function<double()> libpq;  ///< empty where there is nothing to compare with
  std::function<double()> ours;
  std::function<int()> libpqTrips = {};  ///< round trips of one item; may be empty
  std::function<int()> oursTrips = {};
  std::optional<double> limit = {};  ///< what ours must stay below, in the unit
};

/// Middle and extent of one side's rounds, in the unit of the case.
struct Summary {
  double median = 0, lowest = 0, highest = 0;
};

struct Report {
  std::string name, unit;
  std::optional<Summary> libpq;
  Summary ours;
  std::optional<int> libpqTrips, oursTrips;
  std::optional<double> limit;

  /// Ours by libpq's: 1.2 means a fifth slower.
  std::optional<double> ratio() const;
  bool withinLimit() const { return !limit || ours.highest < *limit; }
};

/// Runs a warming round of each side and then `rounds` of both in turn.
Report run(const Case &work, int rounds);

/// Prints reports as a table for reading, or as a JSON array.
void printTable(const std::vector<Report> &reports);
void printJson(const std::vector<Report> &reports);

}  // namespace bench
