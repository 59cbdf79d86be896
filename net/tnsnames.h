/// tnsnames.ora files: finding the file, parsing it, and what an entry says of a server's
/// address. What the scanner and the parser work on belongs to the thread.
#pragma once

#include <cstddef>
#include <cstdio>

#include "zevoci/connection.h"
#include "zevoci/list.h"
#include "zevoci/parse_nodes.h"

/// The value of a token or of a rule.
union TnsnamesValue {
  char *str;  ///< owned by whoever takes the token
  sb4 number;
  OCINode *node;
  OCIHost *host;
  OCIPort *port;
  OCIAddress *address;
  OCISid *sid;
  OCINetServiceName *service;
  List *list;  ///< OCINode, elements owned and each may be null
};

/// The file that the thread's parser reads; set by its caller, who closes it.
extern thread_local std::FILE *tnsnamesin;
/// The thread's result of tnsnamesparse: OCINetServiceName in the order of the file, null
/// after a failure. The caller takes nodes and list.
extern thread_local List *tnsnames_parsetree_list;
/// The line that the scanner stands on; goes on counting from file to file.
extern thread_local int tnsnameslineno;
/// The value of the token read last.
extern thread_local TnsnamesValue tnsnameslval;

extern "C" {
/// Parses the rest of `tnsnamesin`. 0, 1 after a syntax error, 2 when memory runs out,
/// both with a message on standard error. A file that cannot be read ends the process.
ZEV_HELPER int tnsnamesparse();
/// The next token of `tnsnamesin`, its value in `tnsnameslval`; 0 at the end of the file,
/// after which the next call starts anew. 256 when memory runs out.
ZEV_HELPER int tnsnameslex();
/// Writes "line:text" to standard error; 1.
ZEV_HELPER int tnsnameserror(const char *text);
/// The token of a keyword, in any case of its ASCII letters; 0 for another word and for
/// one of more than 63 bytes.
ZEV_HELPER int ScanKeywordLookup(const char *word);
}

namespace zev::tnsnames {

/// Finds and parses the file, and fills what it knows of the entry that the server's
/// `dblink` names. A name that the file does not hold is no failure. Records 12154 when
/// there is no file, 12555 when it cannot be opened, 12227 when it has a syntax error.
sword resolve(OCIServer *server, OCIError *errhp);

/// Fills host, port and database of `server`, each where it is null, from the entries
/// named as its `dblink` in any case, in order. Frees the list and its entries; leaves
/// elements that are no entry. False when memory runs out.
bool apply(List *entries, OCIServer *server);

/// Sets a scanner, of the type that its generator gives it, on `size` bytes at `text`, of
/// which the last two are 0 and not part of the text. Throws std::bad_alloc.
void scan(char *text, std::size_t size, void *scanner);

// Builders for the parser. Each takes over its arguments, also when it fails, and gives
// null when memory runs out.

OCIHost *makeHost(char *host);
OCIPort *makePort(sb4 port);
OCISid *makeSid(char *sid);
/// The first host and the first port of `parameters`.
OCIAddress *makeAddress(List *parameters);
/// The first address and the first sid of `parameters`; without a name.
OCINetServiceName *makeService(List *parameters);
/// The list, a new one for null, with `node` (which may be null) behind its elements.
List *appended(List *list, OCINode *node);

/// Frees a list with its nodes.
void releaseNodes(List *list);

}  // namespace zev::tnsnames
