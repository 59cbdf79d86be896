/// From a result's fields to the program's define buffers.
#pragma once

#include "zevoci/statement.h"

extern "C" {
/// The define of a column, counted from 0, or null.
ZEV_HELPER OCIDefine *find_define(const List *defines, ub4 column);
/// Converts up to `nrows` rows of `result` from row `*resultRowPos` on, column by column,
/// until a column has no define. `*resultRowPos` grows by the rows, `*rowsFetched` is
/// their number. The status is that of the last cell of the last column, or OCI_NO_DATA
/// when fewer rows came. Record 24374 when there is nothing to fill.
ZEV_HELPER sword fill_define_buffers(OCIError *errhp, const List *defines,
                                     const PGresult *result, ub4 nrows, ub4 *resultRowPos,
                                     ub4 *rowsFetched);
/// As fill_define_buffers for one row, row `rowIndex`, into the first row of the buffers;
/// `*resultRowPos` only counts it. OCI_NO_DATA when there is nothing to fill.
ZEV_HELPER sword fill_define_buffers_prefetch(OCIError *errhp, const List *defines,
                                              const PGresult *result, ub4 nrows,
                                              ub4 *resultRowPos, ub4 *rowsFetched,
                                              ub4 rowIndex);
/// As fill_define_buffers with a connection to ask about unknown types. OCI_NO_DATA when
/// there is nothing to fill.
ZEV_HELPER sword fill_define_buffers_2(OCIError *errhp, const List *defines,
                                       const PGresult *result, ub4 nrows,
                                       ub4 *resultRowPos, ub4 *rowsFetched, PGconn *conn);
}

namespace zev {

/// Makes a statement look its columns' defines and converters up anew; after a change of
/// its result or defines.
void forgetFetchPlan(OCIStmt *stmt);
void freeFetchPlan(OCIStmt *stmt);

/// fill_define_buffers for the result and defines of a statement, whose converters are
/// looked up once a result. The rows go into the buffers from row `bufferRow` on.
sword fillDefines(OCIStmt *stmt, OCIError *errhp, ub4 nrows, ub4 bufferRow = 0);

/// fill_define_buffers_prefetch for the held result of a statement.
sword fillDefinesFromHeld(OCIStmt *stmt, OCIError *errhp, ub4 rowIndex);

}  // namespace zev
