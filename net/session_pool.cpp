#include "zevoci/session_pool.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "core/attribute_value.h"
#include "core/edge_text.h"
#include "core/memory_cache.h"
#include "core/owned.h"
#include "zevoci/connection.h"
#include "zevoci/errors.h"
#include "zevoci/text.h"

namespace {

constexpr char kPoolName[] = "OCI:SP:XXXXXXXXXXXXXXXXXXXXX";
static_assert(sizeof kPoolName == 29);

/// Keeps a copy of a text of the program's in place of what was kept before.
sword keepText(const OCIEnv *env, OCIError *errhp, const OraText *text, ub4 length,
               char *&kept, ub4 &keptLength) {
  const zev::EdgeText edge(env, text, length);
  if (!edge) return edge.fail(errhp);
  char *copy = makeString(edge.data(), edge.size());
  if (!copy) return zev::fail(errhp, 16506);
  std::free(kept);
  kept = copy;
  keptLength = static_cast<ub4>(edge.size());
  return OCI_SUCCESS;
}

/// Name and password with their lengths, as the program has them.
struct Credentials {
  const OraText *username;
  ub4 usernameLength;
  const OraText *password;
  ub4 passwordLength;
};

struct Address {
  const OraText *text;
  ub4 length;
};

sword logon(OCIEnv *env, OCIError *errhp, OCISvcCtx **svchp, const Credentials &user,
            const Address &address) {
  return OCILogon(env, errhp, svchp, user.username, user.usernameLength, user.password,
                  user.passwordLength, address.text, address.length);
}

/// A text that the library keeps, as the program would give it. Null stays null, which is
/// not the same as empty.
class KeptText {
 public:
  KeptText(const OCIEnv *env, const char *text, std::size_t length)
      : edge_(env, text, length), given_(text != nullptr) {}

  explicit operator bool() const { return static_cast<bool>(edge_); }
  sword fail(OCIError *errhp) const { return edge_.fail(errhp); }
  const OraText *data() const {
    if (!given_) return nullptr;
    return reinterpret_cast<const OraText *>(edge_.data() ? edge_.data() : "");
  }
  ub4 size() const { return static_cast<ub4>(edge_.size()); }

 private:
  zev::EdgeResult edge_;
  bool given_;
};

using Entry = zev::Malloced<PoolEntry>;

Entry newEntry() {
  return Entry(static_cast<PoolEntry *>(std::calloc(1, sizeof(PoolEntry))));
}

/// Stamps an entry and puts it behind those of `list`.
bool enter(List *&list, Entry entry) {
  entry->ticks = std::clock();
  List *longer = lappend(list, entry.get());
  if (!longer) return false;
  list = longer;
  static_cast<void>(entry.release());
  return true;
}

/// Counts a new entry that is ready to hand out; false when memory runs out.
bool addFree(OCISPool *pool, Entry entry) {
  if (!entry || !enter(pool->free, std::move(entry))) return false;
  ++pool->freeCount;
  ++pool->totalCount;
  return true;
}

/// Counts a new entry that is handed out; false when memory runs out.
bool addBusy(OCISPool *pool, Entry entry) {
  if (!enter(pool->busy, std::move(entry))) return false;
  ++pool->totalCount;
  return true;
}

/// Logs on and gives the session to the pool with `add`, or ends it again.
sword addSession(OCISPool *pool, OCIEnv *env, OCIError *errhp, OCISvcCtx **svchp,
                 const Credentials &user, const Address &address,
                 bool (*add)(OCISPool *, Entry)) {
  Entry entry = newEntry();
  if (!entry) return zev::fail(errhp, 16506);
  const sword status = logon(env, errhp, &entry->svchp, user, address);
  if (!zev::isSuccess(status)) return status;
  *svchp = entry->svchp;
  if (add(pool, std::move(entry))) return status;
  OCILogoff(*svchp, errhp);
  *svchp = nullptr;
  return zev::fail(errhp, 16506);
}

sword keepTexts(OCISPool *pool, OCIEnv *env, OCIError *errhp, const Credentials &user,
                const Address &address) {
  sword status = OCI_SUCCESS;
  if (address.length) {
    status = keepText(env, errhp, address.text, address.length, pool->connStr,
                      pool->connStrLen);
  }
  if (status == OCI_SUCCESS && user.usernameLength) {
    status = keepText(env, errhp, user.username, user.usernameLength, pool->userid,
                      pool->useridLen);
  }
  if (status == OCI_SUCCESS && user.password) {
    status = keepText(env, errhp, user.password, user.passwordLength, pool->password,
                      pool->passwordLen);
  }
  return status;
}

/// The one name that all pools have, for the program and for the pool.
sword namePool(OCISPool *pool, OCIError *errhp, OraText **name, ub4 *length) {
  zev::Malloced<> given(strdup(kPoolName)), kept(strdup(kPoolName));
  if (!given || !kept) return zev::fail(errhp, 16506);
  std::free(pool->poolName);
  pool->poolName = kept.release();
  *name = reinterpret_cast<OraText *>(given.release());
  *length = sizeof kPoolName;
  return OCI_SUCCESS;
}

/// Makes the pool's first entries, by logging on or without.
sword fillPool(OCISPool *pool, OCIEnv *env, OCIError *errhp, const Credentials &user,
               const Address &address) {
  sword status = OCI_SUCCESS;
  for (ub4 i = 0; i < pool->sessMin && zev::isSuccess(status); ++i) {
    OCISvcCtx *svchp = nullptr;
    if (pool->poolMode == OCI_SPC_HOMOGENEOUS) {
      status = addSession(pool, env, errhp, &svchp, user, address, addFree);
    } else if (!addFree(pool, newEntry())) {
      status = zev::fail(errhp, 16506);
    }
  }
  return status;
}

/// The first session that is ready.
sword takeFree(OCISPool *pool, OCIError *errhp, OCISvcCtx **svchp) {
  auto *entry = static_cast<PoolEntry *>(list_nth(pool->free, 0));
  List *busy = lappend(pool->busy, entry);
  if (!busy) return zev::fail(errhp, 16506);
  pool->busy = busy;
  pool->free = list_delete(pool->free, entry);
  --pool->freeCount;
  entry->ticks = std::clock();
  *svchp = entry->svchp;
  return OCI_SUCCESS;
}

/// A session beyond those that were made with the pool, in its name.
sword logonMore(OCISPool *pool, OCIEnv *env, OCIError *errhp, OCISvcCtx **svchp) {
  if (pool->totalCount >= pool->sessMax) return OCI_ERROR;
  const KeptText user(env, pool->userid, pool->useridLen);
  if (!user) return user.fail(errhp);
  const KeptText password(env, pool->password, pool->passwordLen);
  if (!password) return password.fail(errhp);
  const KeptText address(env, pool->connStr, pool->connStrLen);
  if (!address) return address.fail(errhp);
  return addSession(pool, env, errhp, svchp,
                    {user.data(), user.size(), password.data(), password.size()},
                    {address.data(), address.size()}, addBusy);
}

/// A session of no pool.
sword logonAs(const OCISession *as, OCIEnv *env, OCIError *errhp, OCISvcCtx **svchp,
              const Address &address) {
  const auto length = [](const char *text) { return text ? std::strlen(text) : 0; };
  const KeptText user(env, as->username, length(as->username));
  if (!user) return user.fail(errhp);
  const KeptText password(env, as->password, length(as->password));
  if (!password) return password.fail(errhp);
  const sword status =
      logon(env, errhp, svchp,
            {user.data(), user.size(), password.data(), password.size()}, address);
  return zev::isSuccess(status) ? status : OCI_ERROR;
}

sword findSession(OCISvcCtx *svchp, OCIError *errhp, OCISession **session) {
  void *found = nullptr;
  const sword status =
      OCIAttrGet(svchp, OCI_HTYPE_SVCCTX, &found, nullptr, OCI_ATTR_SESSION, errhp);
  if (status != OCI_SUCCESS) return status;
  *session = zev::asSession(found);
  return *session ? OCI_SUCCESS : OCI_INVALID_HANDLE;
}

/// Marks what OCISessionRelease may end.
sword markPooled(OCISvcCtx *svchp, OCIError *errhp, ub4 mode) {
  OCISession *session = nullptr;
  const sword status = findSession(svchp, errhp, &session);
  if (status != OCI_SUCCESS) return status;
  session->pooled = 1;
  if (mode == OCI_SESSGET_STMTCACHE) svchp->stmtCacheEnabled = 1;
  return OCI_SUCCESS;
}

}  // namespace

extern "C" {

OCISPool *Alloc_OCISPool() {
  return zev::allocHandle<OCISPool>(HANDLE_OCISPool);
}

void Free_OCISPool(OCISPool *pool) {
  if (!zev::asPool(pool)) return;
  if (OCIEnv *env = zev::parentEnv(pool)) {
    env->sessionPools = list_delete(env->sessionPools, pool);
  }
  for (char *text : {pool->poolName, pool->connStr, pool->userid, pool->password}) {
    std::free(text);
  }
  zev::freeListAndMembers(pool->free);
  zev::freeListAndMembers(pool->busy);
  zev::freeHandle(pool);
}

sword Get_OCISPool(OCISPool *, void *, ub4 *, ub4, OCIError *) {
  return OCI_ERROR;
}

sword Set_OCISPool(OCISPool *pool, void *value, ub4, ub4 attribute, OCIError *errhp) {
  if (!zev::asPool(pool) || !errhp) return OCI_ERROR;
  switch (attribute) {
    case OCI_ATTR_SPOOL_STMTCACHESIZE:
      if (!value) return OCI_ERROR;
      pool->stmtCacheSize = zev::takeAttribute<ub4>(value);
      return OCI_SUCCESS;
    case OCI_ATTR_SPOOL_TIMEOUT:
    case OCI_ATTR_SPOOL_GETMODE:
      return OCI_SUCCESS;
    default:
      return OCI_ERROR;
  }
}

ZEV_API sword OCISessionPoolCreate(OCIEnv *envhp, OCIError *errhp, OCISPool *spoolhp,
                                   OraText **poolName, ub4 *poolNameLen,
                                   const OraText *connStr, ub4 connStrLen, ub4 sessMin,
                                   ub4 sessMax, ub4 sessIncr, OraText *userid,
                                   ub4 useridLen, OraText *password, ub4 passwordLen,
                                   ub4 mode) {
  if (!zev::asEnv(envhp) || !zev::asError(errhp) || !zev::asPool(spoolhp)) {
    return OCI_INVALID_HANDLE;
  }
  if (!poolName) return zev::failArgument(errhp, "4");
  if (!poolNameLen) return zev::failArgument(errhp, "5");
  if (mode == OCI_SPC_REINITIALIZE || mode == OCI_SPC_STMTCACHE) {
    return zev::fail(errhp, 30475);
  }
  if (mode != OCI_DEFAULT && mode != OCI_SPC_HOMOGENEOUS) {
    return zev::fail(errhp, 24300);
  }
  spoolhp->poolMode = mode;

  const Credentials user{userid, useridLen, password, passwordLen};
  const Address address{connStr, connStrLen};
  sword status = keepTexts(spoolhp, envhp, errhp, user, address);
  if (status != OCI_SUCCESS) return status;
  status = namePool(spoolhp, errhp, poolName, poolNameLen);
  if (status != OCI_SUCCESS) return status;
  spoolhp->sessMin = sessMin;
  spoolhp->sessMax = sessMax;
  spoolhp->sessIncr = sessIncr;
  return fillPool(spoolhp, envhp, errhp, user, address);
}

ZEV_API sword OCISessionPoolDestroy(OCISPool *, OCIError *, ub4) {
  return OCI_SUCCESS;
}

ZEV_API sword OCISessionGet(OCIEnv *envhp, OCIError *errhp, OCISvcCtx **svchp,
                            OCIAuthInfo *authhp, OraText *dbName, ub4 dbName_len,
                            const OraText *, ub4, OraText **, ub4 *, boolean *,
                            ub4 mode) {
  if (!svchp || !zev::asEnv(envhp) || !zev::asError(errhp) || !zev::asSession(authhp)) {
    return OCI_INVALID_HANDLE;
  }
  if (mode == OCI_SESSGET_SPOOL) {
    if (!dbName || !dbName_len) return OCI_ERROR;
    OCISPool *pool = zev::asPool(list_nth(envhp->sessionPools, 0));
    if (!pool) return OCI_ERROR;
    if (pool->poolMode == OCI_SPC_HOMOGENEOUS) {
      if (pool->freeCount) return takeFree(pool, errhp, svchp);
      const sword status = logonMore(pool, envhp, errhp, svchp);
      if (!zev::isSuccess(status)) return status;
    }
  } else if (mode == OCI_DEFAULT || mode == OCI_SESSGET_STMTCACHE) {
    const sword status = logonAs(authhp, envhp, errhp, svchp, {dbName, dbName_len});
    if (!zev::isSuccess(status)) return status;
  } else {
    return OCI_ERROR;
  }
  return markPooled(*svchp, errhp, mode);
}

ZEV_API sword OCISessionRelease(OCISvcCtx *svchp, OCIError *errhp, OraText *, ub4,
                                ub4 mode) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (mode != OCI_DEFAULT) return OCI_ERROR;
  OCISession *session = nullptr;
  const sword status = findSession(svchp, errhp, &session);
  if (status != OCI_SUCCESS) return status;
  if (!session->pooled) return zev::fail(errhp, 24421);
  return OCILogoff(svchp, errhp);
}

}  // extern "C"
