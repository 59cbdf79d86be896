/*
 * oro.h: object references, durations and indicators.
 */
#ifndef ZEVOCI_ORO_H
#define ZEVOCI_ORO_H

#include "oratypes.h"

/* clang-format off */
/* Durations (OCIDuration). */
#define OCI_DURATION_PROCESS                       5
#define OCI_DURATION_NEXT                          6
#define OCI_DURATION_USER_CALLBACK                 7
#define OCI_DURATION_DEFAULT                       8
#define OCI_DURATION_NULL                          9
#define OCI_DURATION_BEGIN                         10
#define OCI_DURATION_SESSION                       10
#define OCI_DURATION_TRANS                         11
#define OCI_DURATION_CALL                          12
#define OCI_DURATION_STATEMENT                     13
#define OCI_DURATION_CALLOUT                       14
#define OCI_DURATION_LAST                          14
#define OCI_DURATION_INVALID                       65535
/* clang-format on */

/* Which version of an object a pin gives. */
typedef enum OCIPinOpt {
  OCI_PIN_DEFAULT = 1, /* as the environment is set */
  OCI_PIN_ANY = 3,     /* whatever is in the cache */
  OCI_PIN_RECENT = 4,  /* the latest that this transaction has read */
  OCI_PIN_LATEST = 5   /* the server's latest */
} OCIPinOpt;

/* How an object is locked when it is pinned. */
typedef enum OCILockOpt {
  OCI_LOCK_NONE = 1,    /* not at all */
  OCI_LOCK_X = 2,       /* exclusively */
  OCI_LOCK_X_NOWAIT = 3 /* exclusively, or fail at once */
} OCILockOpt;

/* clang-format off */
/* Flags of freeing an object. */
#define OCI_OBJECTFREE_FORCE                       1
#define OCI_OBJECTFREE_NONULL                      2
#define OCI_OBJECTFREE_HEADER                      4

/* Null indicators (OCIInd). */
#define OCI_IND_NULL                               (-1)
#define OCI_IND_NOTNULL                            0
/* clang-format on */

typedef ub2 OCIDuration;     /* how long an object or a memory block lives */
typedef sb2 OCIInd;          /* OCI_IND_NULL or OCI_IND_NOTNULL */
typedef ub1 OCIObjectPropId; /* property of an object */

typedef struct OCIRef OCIRef; /* reference to an object */

#endif /* ZEVOCI_ORO_H */
