/*
 * ociapr.h: names of the interface before service contexts.
 *
 * The older calls themselves are not part of this library; a program can hold and hand
 * over pointers to their data areas.
 */
#ifndef ZEVOCI_OCIAPR_H
#define ZEVOCI_OCIAPR_H

#include "ocidfn.h"
#include "oratypes.h"

typedef struct cda_def Cda_Def; /* cursor data area */
typedef struct cda_def Lda_Def; /* logon data area */

#endif /* ZEVOCI_OCIAPR_H */
