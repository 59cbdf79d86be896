/// Oracle placeholders in statement text, and their rewriting to "$n".
#pragma once

#include "zevoci/statement.h"

/// What ends a placeholder where a statement is read token by token.
#define PLACEHOLDER_DELIMITERS " ,();%&*-+[]\\/'\"<>?"

extern "C" {
/// Whether a byte goes on with a placeholder's name: ASCII digits, letters and "_".
ZEV_HELPER boolean charIsContinuation(int c);
/// The length, colon included, of the placeholder at `text`, which stands at a ":"; 0 for
/// none.
ZEV_HELPER ub4 placeholderLen(const char *text);
/// The first bind whose name agrees with `text` in its first `n` bytes, or null. A bind
/// that the program allocated by itself has no name and is none's.
ZEV_HELPER OCIBind *findBindByName(const char *text, ub4 n, const List *binds);
/// The same over the binds of a statement, without regard to case.
ZEV_HELPER OCIBind *find_placeholder_bind_handle(const OCIStmt *stmt, const char *name,
                                                 ub4 length);
/// Rewrites each placeholder that has a bind. Returns the binds (not owned), one per "$n"
/// in order. `*pg_query` is the new text, `*param_count` the number of "$n",
/// `*paramTypes` and
/// `*paramDirs` their types and directions (null without parameters), all freed by the
/// caller. Null with a null `*pg_query` when memory runs out.
ZEV_HELPER List *ReplacePlaceholders(const List *binds, const char *stmt, ub4 length,
                                     char **pg_query, ub4 *param_count, Oid **paramTypes,
                                     ub4 **paramDirs);
/// Rewrites each placeholder of the text, bound or not. Returns `nameList` with their
/// names (new texts without the colon) appended.
ZEV_HELPER List *ReplacePlaceholdersEx(List *nameList, const char *stmt, char **pg_query,
                                       ub4 *param_count);
}
