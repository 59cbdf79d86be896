/// Calls of routines.
#pragma once

#include "core/owned.h"
#include "stmt/execute.h"

extern "C" {
/// The question for the argument modes of a routine, whose name is folded to lower case
/// and cut at its first ".". A new text, freed by the caller; null when memory runs out.
ZEV_HELPER char *ConstructQuery(const char *procName);
}

namespace zev {

/// Prepares a call under `name`, with the directions of its arguments as the catalogue
/// tells them, or else `directions`, those of the binds. The server's answer, null when
/// there is none.
PgResult prepareCall(const Execution &x, const char *name, const char *query,
                     const Oid *types, const ub4 *directions);
/// The same without waiting for the answer. False when it could not be sent.
bool sendPrepareCall(const Execution &x, const char *name, const char *query,
                     const Oid *types, const ub4 *directions);

/// Makes a copy of `directions`, one per parameter, the statement's paramDirs; none for
/// null. False when memory runs out.
bool keepDirections(OCIStmt *stmt, const ub4 *directions);

/// Runs a prepared call once for each row from `rowoff` to `iters` - 1 and gives its
/// values to the binds.
sword executeBlock(const Execution &x);

}  // namespace zev
