/// Oracle's character set names and numbers.
#pragma once

#include <oratypes.h>

#include "zevoci/api.h"

/// A character set. A name that Oracle gives no number of its own has 0.
struct CharacterSet {
  const char *name;
  ub4 index;  ///< of the row
  ub4 id;     ///< the published number
};

/// Rows of CSTlist with its end row.
inline constexpr int kCharacterSets = 259;
/// Slots of CST_index: A to Z and the end.
inline constexpr int kInitials = 27;

extern "C" {
/// Sorted by name without regard to case. The end row has a null name and the number
/// 0xFFFFFFFF.
extern ZEV_HELPER const CharacterSet CSTlist[kCharacterSets];
/// For each letter the first row whose name begins with it, or -1; then the end row.
extern ZEV_HELPER const sb4 CST_index[kInitials];

/// The row of a name, in any case, in a table and its index; null for a null name, and
/// for one that is not in the table.
ZEV_HELPER const CharacterSet *search_charset(const char *name, const CharacterSet *table,
                                              const sb4 *index);
/// The row of a name between `low` and `high`, both included, which may be the end row;
/// or null.
ZEV_HELPER const CharacterSet *bsearch_charset(const char *name, const CharacterSet *low,
                                               const CharacterSet *high);
/// The published number of a name, or 0.
ZEV_HELPER ub4 search_charsetID(const char *name);
}
