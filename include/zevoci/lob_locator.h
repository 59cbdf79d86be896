/// The locator of a large object.
#pragma once

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
}

namespace zev {
inline OCILobLocator *asLobLocator(const void *h) {
  return checked<OCILobLocator>(h, HANDLE_OCILobLocator);
}
}  // namespace zev
