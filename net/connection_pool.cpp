#include <ociap.h>

#include <cstdio>

#include "zevoci/errors.h"

namespace {

/// Refuses without a record; the reason stands where a debugger may look.
sword refuse(OCIError *errhp) {
  if (zev::asError(errhp)) {
    std::snprintf(errhp->scratchText, sizeof errhp->scratchText, "%s",
                  o2pGetErrorText(3001));
  }
  return OCI_ERROR;
}

}  // namespace

extern "C" {

ZEV_API sword OCIConnectionPoolCreate(OCIEnv *, OCIError *errhp, OCICPool *, OraText **,
                                      sb4 *, const OraText *, sb4, ub4, ub4, ub4,
                                      const OraText *, sb4, const OraText *, sb4, ub4) {
  return refuse(errhp);
}

ZEV_API sword OCIConnectionPoolDestroy(OCICPool *, OCIError *errhp, ub4) {
  return refuse(errhp);
}

}  // extern "C"
