/// Session pools.
#pragma once

#include <ctime>

#include "zevoci/handle.h"
#include "zevoci/list.h"

/// One logon of a pool.
struct PoolEntry {
  OCISvcCtx *svchp;    ///< not owned; null where nobody has logged on
  std::clock_t ticks;  ///< when the entry was made or handed out
};

/// A list of sessions that are handed out one by one. Its texts are in the library's
/// encoding.
struct OCISPool : OCIHandle {
  ub4 sessMin, sessMax, sessIncr;
  char *poolName;  ///< owned, as are the next three texts; each may be null
  char *connStr;
  ub4 connStrLen;
  char *userid;
  ub4 useridLen;
  char *password;
  ub4 passwordLen;
  ub4 poolMode;  ///< OCI_DEFAULT or OCI_SPC_HOMOGENEOUS
  ub4 stmtCacheSize;
  List *free;  ///< PoolEntry, owned; ready to hand out
  List *busy;  ///< PoolEntry, owned; handed out, and never ready again
  ub4 freeCount;
  ub4 totalCount;  ///< entries ever made
};

extern "C" {
ZEV_HELPER OCISPool *Alloc_OCISPool();
/// Also takes the pool from its environment's list. Sessions stay with the environment.
ZEV_HELPER void Free_OCISPool(OCISPool *pool);
/// OCI_ERROR: a pool has nothing to read.
ZEV_HELPER sword Get_OCISPool(OCISPool *pool, void *value, ub4 *size, ub4 attribute,
                              OCIError *errhp);
ZEV_HELPER sword Set_OCISPool(OCISPool *pool, void *value, ub4 size, ub4 attribute,
                              OCIError *errhp);
}

namespace zev {

inline OCISPool *asPool(const void *h) {
  return checked<OCISPool>(h, HANDLE_OCISPool);
}

}  // namespace zev
