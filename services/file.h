/// Open files of OCIFileOpen.
#pragma once

#include <oci1.h>

#include "zevoci/handle.h"

/// From the system allocator; OCIFileClose frees it.
struct OCIFileObject {
  sb4 descriptor;  ///< the system's; -1 when the file could not be opened
};

extern "C" {
/// Records what an errno of a file call means: 30152 for ENOENT, 30151 for EEXIST, 30157
/// for EINVAL, 30156 for ENOSPC, else 30155. Returns OCI_ERROR.
ZEV_HELPER sword TranslateSysFileErrorToOCIError(OCIError *errhp, int error);
}
