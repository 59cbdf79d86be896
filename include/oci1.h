/*
 * oci1.h: handles of the small services: messages, files and external procedures.
 */
#ifndef ZEVOCI_OCI1_H
#define ZEVOCI_OCI1_H

#include "oratypes.h"
#include "oro.h"

typedef struct OCIMsg OCIMsg;                       /* message file */
typedef struct OCIFileObject OCIFileObject;         /* open file */
typedef struct OCIExtProcContext OCIExtProcContext; /* caller of an external procedure */

#endif /* ZEVOCI_OCI1_H */
