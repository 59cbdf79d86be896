/// Fields of a result, as the conversions take them.
#pragma once

#include "types/conversion_dispatch.h"
#include "zevoci/trace.h"

namespace zev {

/// A field of a result; only one of no length can be null.
inline Field fieldAt(const PGresult *result, ub1 format, int row, int field) {
  const int length = PQgetlength(result, row, field);
  return {PQgetvalue(result, row, field), length, format,
          length == 0 && PQgetisnull(result, row, field) != 0};
}
inline Field fieldAt(const PGresult *result, int row, int field) {
  return fieldAt(result, static_cast<ub1>(PQfformat(result, field)), row, field);
}

/// Traces a field that goes to the program.
inline void traceField(const char *function, const Field &field) {
  if (!tracing(kTraceFetched)) return;
  if (field.format == 0) {
    ocitrace(kTraceFetched, function, "%s\n", field.value);
  } else {
    ocitracehex(kTraceFetched, function, field.value, field.length);
  }
}

}  // namespace zev
