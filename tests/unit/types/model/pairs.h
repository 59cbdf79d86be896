/// The pairs of the fetch matrix that the model covers, and their names.
#pragma once

#include <oci.h>

#include <iosfwd>
#include <string>
#include <vector>

#include "types/conversion_tables.h"

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
/// All pairs of the table but those of dates and of large objects.
std::vector<Pair> modelledPairs();
/// The table's converter, null while it is not there.
FromServerConverter converterOf(const Pair &pair);

}  // namespace zevtest::model
