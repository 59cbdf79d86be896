#include "zevoci/lob_locator.h"

extern "C" {

OCILobLocator *Alloc_OCILobLocator() {
  auto *locator = zev::allocHandle<OCILobLocator>(HANDLE_OCILobLocator);
  if (locator) locator->loFd = -1;
  return locator;
}

void Free_OCILobLocator(OCILobLocator *locator) {
  if (zev::asLobLocator(locator)) zev::freeHandle(locator);
}

}  // extern "C"
