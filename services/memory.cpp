#include <ociap.h>

#include <cstdlib>

#include "zevoci/api.h"

extern "C" {

ZEV_API sword OCIMemoryAlloc(void *, OCIError *, void **mem, OCIDuration dur, ub4 size,
                             ub4) {
  const bool known = dur == OCI_DURATION_SESSION || dur == OCI_DURATION_STATEMENT;
  if (!known || !mem) return OCI_ERROR;
  *mem = std::calloc(1, size);
  return *mem ? OCI_SUCCESS : OCI_ERROR;
}

ZEV_API sword OCIMemoryFree(void *, OCIError *, void *mem) {
  std::free(mem);
  return OCI_SUCCESS;
}

}  // extern "C"
