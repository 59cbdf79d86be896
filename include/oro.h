/*
 * oro.h: the opaque records of the interface, object references, durations and
 * indicators.
 */
#ifndef ZEVOCI_ORO_H
#define ZEVOCI_ORO_H

#include "oratypes.h"

/* Handles: allocated by OCIHandleAlloc (or a call named here), freed by OCIHandleFree.
   Their records are the library's own; programs hold pointers. */
typedef struct OCIEnv OCIEnv;         /* environment, owner of all others */
typedef struct OCIError OCIError;     /* error records of the last call */
typedef struct OCISvcCtx OCISvcCtx;   /* service context: server, session, transaction */
typedef struct OCIServer OCIServer;   /* address and connection of a server */
typedef struct OCISession OCISession; /* user, password and module of a session */
typedef OCISession OCIAuthInfo;       /* credentials for a session pool */
typedef struct OCITrans OCITrans;     /* transaction identifier and timeout */
typedef struct OCIStmt OCIStmt;       /* statement, with its binds and defines */
typedef struct OCIBind OCIBind;       /* placeholder and its buffers; the statement's */
typedef struct OCIDefine OCIDefine;   /* column and its buffers; the statement's */
typedef struct OCIDescribe OCIDescribe;           /* result of OCIDescribeAny */
typedef struct OCISPool OCISPool;                 /* session pool */
typedef struct OCICPool OCICPool;                 /* connection pool */
typedef struct OCIAdmin OCIAdmin;                 /* parameters of a database startup */
typedef struct OCISubscription OCISubscription;   /* notification subscription */
typedef struct OCIComplexObject OCIComplexObject; /* complex object retrieval */
typedef struct OCISecurity OCISecurity;           /* wallets and certificates */
typedef struct OCIDirPathCtx OCIDirPathCtx;       /* direct path load */
typedef struct OCIDirPathColArray OCIDirPathColArray; /* its columns */
typedef struct OCIDirPathStream OCIDirPathStream;     /* its stream */

/* Descriptors: allocated by OCIDescriptorAlloc, freed by OCIDescriptorFree. */
typedef struct OCILobLocator OCILobLocator;     /* locator of a large object */
typedef OCILobLocator OCIClobLocator;           /* of character data */
typedef OCILobLocator OCIBlobLocator;           /* of binary data */
typedef OCILobLocator OCIBFileLocator;          /* of an external file */
typedef struct OCISnapshot OCISnapshot;         /* read-consistent view */
typedef struct OCIResult OCIResult;             /* result set */
typedef struct OCIParam OCIParam;               /* described column, argument or list */
typedef struct OCIRowid OCIRowid;               /* row identifier */
typedef struct OCIDateTime OCIDateTime;         /* date, time and zone */
typedef struct OCIInterval OCIInterval;         /* year-month or day-second interval */
typedef struct OCIAQEnqOptions OCIAQEnqOptions; /* queue: how to enqueue */
typedef struct OCIAQDeqOptions OCIAQDeqOptions; /* queue: how to dequeue */
typedef struct OCIAQMsgProperties OCIAQMsgProperties; /* queue: a message's properties */
typedef struct OCIAQAgent OCIAQAgent;                 /* queue: sender or recipient */
typedef struct OCIAQListenOpts OCIAQListenOpts;       /* queue: how to listen */
typedef struct OCIAQLisMsgProps OCIAQLisMsgProps;     /* queue: what was heard */
typedef struct OCIVector OCIVector;                   /* vector of numbers */
typedef struct OCIComplexObjectComp OCIComplexObjectComp; /* its part */
typedef struct OCIUcb OCIUcb;                             /* user callback */

/* Threads. */
typedef struct OCIThreadId OCIThreadId;         /* identity of a thread */
typedef struct OCIThreadHandle OCIThreadHandle; /* handle of a started thread */
typedef struct OCIThreadMutex OCIThreadMutex;   /* mutex */
typedef struct OCIThreadKey OCIThreadKey;       /* thread-specific value */

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

/* Which objects a refresh of the cache reads. */
typedef enum OCIRefreshOpt {
  OCI_REFRESH_LOADED = 1 /* those that this transaction has read */
} OCIRefreshOpt;

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
