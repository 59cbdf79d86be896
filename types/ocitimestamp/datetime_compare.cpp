#include "types/ocitimestamp/datetime_compare.h"

namespace {

/// A value as it is compared.
struct Compared {
  OCIDate date;
  double fsec = 0;
  sb4 tz = 0;
};

bool hasZone(ub4 type) {
  return type != OCI_DTYPE_DATE && type != OCI_DTYPE_TIMESTAMP && type != SQLT_DATE;
}

Compared comparedOf(const void *value, ub4 type) {
  if (type == SQLT_DATE) return {*static_cast<const OCIDate *>(value)};
  const OCIDateTimeBody &body = *static_cast<const OCIDateTime *>(value)->body;
  Compared compared{body.date};
  if (type != OCI_DTYPE_DATE)
    compared.fsec = zev::rint(zev::fractionOf(body) / 1000.0) / 1e6;
  if (hasZone(type)) compared.tz = body.tzSeconds;
  return compared;
}

sb4 momentOf(const Compared &compared, Timestamp &moment) {
  PGtm tm{};
  DecodeOracleOCIDate(&compared.date, &tm, 1);
  tm.tm_year -= 1900;
  tm.tm_mon -= 1;
  return tm2timestamp(&tm, compared.fsec, &compared.tz, &moment);
}

}  // namespace

extern "C" sword DateTimeCompare(const void *a, const void *b, ub4 type, sword *result) {
  Timestamp first = 0, second = 0;
  if (momentOf(comparedOf(a, type), first) != 0 ||
      momentOf(comparedOf(b, type), second) != 0)
    return -1;
  *result = second > first ? -1 : first > second;
  return 0;
}
