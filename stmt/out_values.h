/// What a call gave back, spread over the binds.
#pragma once

#include "zevoci/statement.h"

extern "C" {
/// Converts a function's return value, column 0 of `result`, into `returnBind` when
/// `hasReturn` is set, and the columns of `outResult` into the binds of
/// `placeholderBinds` that take one, for row `iteration` of their buffers. The status is
/// that of the last conversion; -1 for wrong handles and missing results.
ZEV_HELPER sword fill_bind_parameters(OCIStmt *stmt, OCIError *errhp, OCIBind *returnBind,
                                      const List *placeholderBinds,
                                      const PGresult *result, const PGresult *outResult,
                                      std::uint64_t hasReturn, ub4 iteration);
}
