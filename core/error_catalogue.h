/// The texts behind Oracle numbers.
#pragma once

#include <oratypes.h>

namespace zev {

struct CatalogueEntry {
  sb4 code;
  const char *text;  ///< may hold "%s" placeholders
};

/// The entry of an Oracle number, or null.
const CatalogueEntry *findCatalogueEntry(sb4 code);

}  // namespace zev
