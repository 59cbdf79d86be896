/// What the parsers build: nodes of tnsnames.ora files and of call blocks. Every node and
/// every text in it is a block of the system allocator.
#pragma once

#include <oratypes.h>

#include <cstdint>

#include "zevoci/api.h"

/// The first field of every node; the only proof of its kind.
enum NodeTag : ub4 {
  kHostTag = 1,
  kPortTag = 2,
  kAddressTag = 3,
  kSidTag = 4,
  kNetServiceNameTag = 5,
  kCallableStmtTag = 6,
};

struct OCINode {
  ub4 tag;
};

/// "(HOST=...)".
struct OCIHost : OCINode {
  char *host;  ///< owned
};

/// "(PORT=...)".
struct OCIPort : OCINode {
  char *port;  ///< owned; the decimal number
};

/// "(ADDRESS=...)".
struct OCIAddress : OCINode {
  OCIHost *host;  ///< owned, as is the port; each may be null
  OCIPort *port;
};

/// "(SID=...)".
struct OCISid : OCINode {
  char *sid;  ///< owned
};

/// One entry of a file.
struct OCINetServiceName : OCINode {
  char *name;           ///< owned
  OCIAddress *address;  ///< owned, as is the sid; each may be null
  OCISid *sid;
};

/// A parsed call block.
struct callableStmt {
  ub4 tag;     ///< kCallableStmtTag
  char *text;  ///< owned; "CALL name ( :a , :b );"
  std::uint64_t hasReturn;
  char *returnParam;  ///< owned; with its colon, or null
  char *name;         ///< owned; the routine as written
};

extern "C" {
// Each frees a node with what it owns, and does nothing for null and for a wrong tag.
ZEV_HELPER void ReleaseOCIHost(OCIHost *node);
ZEV_HELPER void ReleaseOCIPort(OCIPort *node);
ZEV_HELPER void ReleaseOCIAddress(OCIAddress *node);
ZEV_HELPER void ReleaseOCISid(OCISid *node);
ZEV_HELPER void ReleaseOCINetServiceName(OCINetServiceName *node);
ZEV_HELPER void ReleaseOCICallableStmt(callableStmt *node);
/// Frees a node of any kind by its tag.
ZEV_HELPER void ReleaseOCINode(void *node);
}
