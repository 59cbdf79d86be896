/// The pairs of the fetch matrix that the model covers, and their names.
#pragma once

#include <libpq-fe.h>
#include <oci.h>

#include <iosfwd>
#include <string>
#include <vector>

namespace zevtest::model {

struct Pair {
  Oid oid;
  ub2 dty;
};

/// "INT4OID_to_STR".
std::string nameOf(const Pair &pair);
/// Shows a pair in the messages of the test program.
void PrintTo(const Pair &pair, std::ostream *out);
/// Whether the pair converts dates, times or intervals.
bool isDatePair(const Pair &pair);
/// Whether the row is one of the three of character data.
inline bool isCharacterRow(Oid oid) {
  return oid == 25 || oid == 1042 || oid == 1043;
}
/// All fetched pairs but those of dates and of large objects, row by row.
std::vector<Pair> modelledPairs();

}  // namespace zevtest::model
