/*
 * oro.h: object references, durations and indicators.
 */
#ifndef ZEVOCI_ORO_H
#define ZEVOCI_ORO_H

#include "oratypes.h"

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

/* Object lock, pin and free options. */
#define OCI_TYPEPARAM_IN                           0
#define OCI_LOCK_NONE                              1
#define OCI_OBJECTFREE_FORCE                       1
#define OCI_PIN_DEFAULT                            1
#define OCI_TYPEPARAM_OUT                          1
#define OCI_LOCK_X                                 2
#define OCI_OBJECTFREE_NONULL                      2
#define OCI_TYPEPARAM_INOUT                        2
#define OCI_LOCK_X_NOWAIT                          3
#define OCI_PIN_ANY                                3
#define OCI_OBJECTFREE_HEADER                      4
#define OCI_PIN_RECENT                             4
#define OCI_PIN_LATEST                             5

/* Null indicators (OCIInd). */
#define OCI_IND_NULL                               (-1)
#define OCI_IND_NOTNULL                            0

typedef ub2 OCIDuration;
typedef sb2 OCIInd;
typedef ub1 OCIObjectPropId;

#endif /* ZEVOCI_ORO_H */
