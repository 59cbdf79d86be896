/// The comparisons of zevoci_bench; each file of that name holds one kind.
#pragma once

#include <string>

#include "bench/clients.h"
#include "bench/measure.h"

namespace bench {

inline constexpr const char *kRowsTable = "zevoci_bench_rows";
inline constexpr const char *kInsertTable = "zevoci_bench_insert";

/// Shared by all cases: where the server is, and a factor on the amount of work.
struct Setup {
  Target target;
  double scale = 1;

  int scaled(int amount) const {
    return amount * scale < 1 ? 1 : static_cast<int>(amount * scale);
  }
  int tableRows() const { return scaled(500'000); }
};

/// Makes and fills kRowsTable, and makes kInsertTable; dropTables removes both.
void createTables(const Setup &setup);
void dropTables(const Setup &setup);

Case insertCase(const Setup &setup);       ///< single-row INSERT, prepared once
Case arrayFetchCase(const Setup &setup);   ///< all rows, 1,000 a fetch
Case prefetchCase(const Setup &setup);     ///< all rows, one a fetch, prefetched
Case pointCase(const Setup &setup);        ///< SELECT of one row by key
Case logonCase(const Setup &setup);        ///< logon and logoff
Case arrayInsertCase(const Setup &setup);  ///< INSERT by arrays of 1,000
Case arrayUpdateCase(const Setup &setup);  ///< UPDATE by arrays of 1,000
Case arrayDeleteCase(const Setup &setup);  ///< DELETE by arrays of 1,000
Case callCase(const Setup &setup);         ///< a procedure with an OUT parameter
Case lobWriteCase(const Setup &setup);     ///< a large object appended to, 1 MiB a call
Case lobReadCase(const Setup &setup);      ///< a large object read, 1 MiB a piece
Case frameCase(const Setup &setup);        ///< OCIAttrGet alone
Case memoryCase(const Setup &setup);       ///< peak growth over a long fetch

}  // namespace bench
