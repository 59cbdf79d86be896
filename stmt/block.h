/// Blocks that call one routine, "BEGIN :r := f(:a); END;", and their parsing. What the
/// scanner and the parser work on belongs to the thread.
#pragma once

#include "zevoci/parse_nodes.h"

extern "C" {
/// The thread's result of yyparse; null for an empty text. Whoever takes it sets null.
extern thread_local callableStmt *parse_stmt_node;

/// Sets the thread's scanner on a copy of `text`; 0, or -1 when memory runs out.
ZEV_HELPER int scanner_init(const char *text);
/// Frees the copy and the scanner.
ZEV_HELPER void scanner_finish();
/// Parses what the scanner stands on. 0, or 1 with a message on standard error. Not
/// exported: every program may have one.
int yyparse();

/// The token of a keyword, in any case of its ASCII letters; 0 for another word.
ZEV_HELPER int ScanGramKeywordLookup(const char *word);
/// A new copy of a text, freed by the caller.
ZEV_HELPER char *make_str(const char *text);
/// Joins `count` texts (char *) with single blanks into a new one and frees them; one
/// alone is returned as it is.
ZEV_HELPER char *cat_str(int count, ...);
}

namespace zev {

/// The thread's scanner, of the type that its generator gives it.
void *blockScanner();

/// Parses a block; null when it is none. The caller releases it.
callableStmt *parseBlock(const char *text);

}  // namespace zev
