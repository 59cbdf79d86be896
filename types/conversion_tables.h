/// The two sorted tables that pair types with converters.
#pragma once

#include "zevoci/conversion.h"

/// A converter of either direction; the table that holds it tells which.
union Converter {
  ToServerConverter toServer;
  FromServerConverter fromServer;
};

/// One pair of types and its converter. The tables stand sorted by first key, then second
/// key.
struct ConversionEntry {
  ub4 firstKey;
  ub4 secondKey;
  Converter converter;
};

inline constexpr int kToServerEntries = 38;
inline constexpr int kFromServerEntries = 250;

extern "C" {
/// External type, then server OID. A null converter counts as a pair without an entry.
extern ZEV_HELPER const ConversionEntry OCIToPQConversionFunctions[kToServerEntries];
/// Server OID, then external type.
extern ZEV_HELPER const ConversionEntry PQToOCIConversionFunctions[kFromServerEntries];

/// Binary search between the inclusive indices `low` and `high`; null when the pair is
/// missing.
ZEV_HELPER Converter GetConversionFunctionInternal(ub4 firstKey, ub4 secondKey,
                                                   const ConversionEntry *table, sb4 low,
                                                   sb4 high);
/// Orders an entry against a pair of keys, which compare as signed: 2 or -2 by the first
/// key, then 1, -1 or 0 by the second.
ZEV_HELPER sb4 CompareConversionFunctionEntry(const ConversionEntry *e, sb4 firstKey,
                                              sb4 secondKey);
}

namespace zev {

/// For each entry of PQToOCIConversionFunctions the converter to run on memory of the
/// program, which stays inside it; null where the entry is.
extern const FromServerConverter kGuardedConverters[kFromServerEntries];

/// The index of a pair in a sorted table, or -1.
sb4 findConversion(ub4 firstKey, ub4 secondKey, const ConversionEntry *table, sb4 low,
                   sb4 high);

}  // namespace zev
