/// The locator of a large object.
#pragma once

#include <libpq-fe.h>

#include "zevoci/handle.h"

/// A large object of the server, and its descriptor while it is open.
struct OCILobLocator : OCIHandle {
  ub4 loOid;  ///< OID of the large object; 0 until fetched
  sb4 loFd;   ///< descriptor on the connection, -1 while closed
};

extern "C" {
/// A locator of no object, closed; null when memory runs out.
ZEV_HELPER OCILobLocator *Alloc_OCILobLocator();
/// Does nothing for another tag. Neither OCIDescriptorFree nor the freeing of the
/// environment come here.
ZEV_HELPER void Free_OCILobLocator(OCILobLocator *locator);
/// Opens a locator for reading and writing unless it is open, as `*wasOpen` tells. -1
/// with record 1733 when the server refuses.
ZEV_HELPER sword OpenPGLob(PGconn *conn, OCIError *errhp, OCILobLocator *locator,
                           boolean *wasOpen);
/// The size of an open large object in bytes; -1 for a closed one, for one of more than
/// a ub4 counts, and on failure. Leaves the position at the end.
ZEV_HELPER sword GetPGLobSize(ub4 *size, PGconn *conn, const OCILobLocator *locator);
}

namespace zev {
inline OCILobLocator *asLobLocator(const void *h) {
  return checked<OCILobLocator>(h, HANDLE_OCILobLocator);
}
}  // namespace zev
