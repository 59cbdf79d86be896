#include "zevoci/transaction.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/attribute_value.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/wire.h"
#include "zevoci/trace.h"

namespace {

constexpr ub4 kXidSize = sizeof(XID);
static_assert(kXidSize == 152);

// The fields of the flags of OCITransStart.
constexpr ub4 kStartMask = 0xff;
constexpr ub4 kStartBits = OCI_TRANS_NEW | OCI_TRANS_JOIN | OCI_TRANS_RESUME;
constexpr ub4 kTypeMask = 0xf0000;

/// The block for an XID, zeroed, in a handle that has none yet; null when memory runs
/// out.
XID *xidBlock(OCITrans *trans) {
  if (!trans->xid) trans->xid = static_cast<XID *>(std::calloc(1, kXidSize));
  return trans->xid;
}

sword setName(OCITrans *trans, const void *value, ub4 size, OCIError *errhp) {
  XID *xid = xidBlock(trans);
  if (!xid) return zev::fail(errhp, 16506);
  *xid = XID{};
  const std::size_t length = value ? std::min<std::size_t>(size, sizeof xid->data) : 0;
  if (length) std::memcpy(xid->data, value, length);
  xid->gtrid_length = static_cast<long>(length);
  return OCI_SUCCESS;
}

sword setXid(OCITrans *trans, const void *value, ub4 size, OCIError *errhp) {
  if (size != kXidSize) return zev::fail(errhp, 24750);
  XID *xid = xidBlock(trans);
  if (!xid) return zev::fail(errhp, 16506);
  std::memcpy(xid, value, kXidSize);
  return OCI_SUCCESS;
}

sword getBlock(void *value, ub4 *size, void *block, ub4 blockSize) {
  zev::putAttribute(value, block);
  if (size) *size = blockSize;
  return OCI_SUCCESS;
}

/// Sends `sql` and reports the server's refusal.
sword command(OCIServer *server, OCIError *errhp, const char *sql) {
  const zev::PgResult result = zev::wire::exec(server->conn, sql);
  return PQresultStatus(result.get()) == PGRES_COMMAND_OK
             ? OCI_SUCCESS
             : zev::failFromServer(errhp, result.get());
}

sword checkConnection(const OCIServer *server, OCIError *errhp) {
  if (PQstatus(server->conn) == CONNECTION_OK) return OCI_SUCCESS;
  return zev::fail(errhp, 25407, PQerrorMessage(server->conn));
}

/// Sends a command that names the prepared transaction of a service context's XID;
/// `missing` is the record when there is no XID.
sword twoPhase(OCISvcCtx *svchp, OCIServer *server, OCIError *errhp, const char *verb,
               sb4 missing) {
  const OCITrans *trans = zev::asTrans(svchp->trans);
  if (!trans) return OCI_INVALID_HANDLE;
  if (!trans->xid) return zev::fail(errhp, missing);
  const zev::Malloced<> name(GetTransactionNameFromXID(trans->xid));
  if (!name) return zev::fail(errhp, 16506);
  const std::string sql = std::string(verb) + " '" + name.get() + "'";
  return command(server, errhp, sql.c_str());
}

/// How a transaction ends: commit and rollback differ in these words.
struct Ending {
  const char *plain;
  const char *prepared;
  const char *traced;
};
constexpr Ending kCommit{"COMMIT", "COMMIT PREPARED", "committing"};
constexpr Ending kRollback{"ROLLBACK", "ROLLBACK PREPARED", "rollback"};

sword endTransaction(OCISvcCtx *svchp, OCIError *errhp, ub4 flags, const Ending &ending) {
  OCIServer *server = zev::asServer(svchp->server);
  if (!server) return OCI_INVALID_HANDLE;
  const sword status = checkConnection(server, errhp);
  if (status != OCI_SUCCESS) return status;
  ClearErrorHandle(errhp);
  ocitrace(kTraceTransaction, nullptr, "%s on service(%p), server(%p)\n", ending.traced,
           static_cast<void *>(svchp), static_cast<void *>(server));
  return flags == OCI_TRANS_TWOPHASE
             ? twoPhase(svchp, server, errhp, ending.prepared, 24762)
             : command(server, errhp, ending.plain);
}

/// The Oracle number for start flags that this library does not take, 0 for good ones.
sb4 refusedStart(ub4 flags) {
  const ub4 start = flags & kStartMask;
  if (!start) return 0;
  const bool one = std::popcount(start & kStartBits) == 1;
  if (one && start & (OCI_TRANS_JOIN | OCI_TRANS_RESUME)) return 24755;
  return start == OCI_TRANS_NEW ? 0 : 24759;
}

sb4 refusedIsolation(ub4 flags) {
  switch (flags & OCI_TRANS_ISOLMASK) {
    case 0:
    case OCI_TRANS_READONLY:
    case OCI_TRANS_READWRITE:
    case OCI_TRANS_SERIALIZABLE:
      return 0;
    default:
      return 24760;
  }
}

sb4 refusedType(ub4 flags) {
  constexpr ub4 kBoth = OCI_TRANS_LOOSE | OCI_TRANS_TIGHT;
  const ub4 type = flags & kTypeMask;
  if ((type & kBoth) == kBoth) return 24773;
  const bool unsupported =
      flags & (OCI_TRANS_NOMIGRATE | OCI_TRANS_SEPARABLE | OCI_TRANS_RESUME);
  return type || unsupported ? 24755 : 0;
}

const char *isolationCommand(ub4 flags) {
  switch (flags & OCI_TRANS_ISOLMASK) {
    case OCI_TRANS_READONLY:
      return "SET TRANSACTION READ ONLY ";
    case OCI_TRANS_SERIALIZABLE:
      return "SET TRANSACTION ISOLATION LEVEL SERIALIZABLE ";
    default:
      return nullptr;
  }
}

sword startTransaction(OCISvcCtx *svchp, OCIError *errhp, ub4 flags) {
  OCIServer *server = zev::asServer(svchp->server);
  if (!server || !zev::asTrans(svchp->trans)) return OCI_INVALID_HANDLE;
  const sword status = checkConnection(server, errhp);
  if (status != OCI_SUCCESS) return status;
  for (const auto refused : {refusedStart, refusedIsolation, refusedType}) {
    if (const sb4 code = refused(flags)) return zev::fail(errhp, code);
  }
  const char *sql = isolationCommand(flags);
  return sql ? command(server, errhp, sql) : OCI_SUCCESS;
}

sword prepareTransaction(OCISvcCtx *svchp, OCIError *errhp) {
  OCIServer *server = zev::asServer(svchp->server);
  if (!server || !zev::asTrans(svchp->trans)) return OCI_INVALID_HANDLE;
  const sword status = checkConnection(server, errhp);
  if (status != OCI_SUCCESS) return status;
  return twoPhase(svchp, server, errhp, "PREPARE TRANSACTION", 24771);
}

/// The part that the four published functions share.
template <class Work, class... Arguments>
sword inFrame(const zev::FrameRow &row, OCISvcCtx *svchp, OCIError *errhp, Work work,
              Arguments... arguments) {
  if (!zev::asService(svchp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;
  return zev::runFrame(
      row, env, errhp,
      [&](sword &status) {
        const sword outcome = work();
        if (outcome == OCI_SUCCESS) return zev::Leave::ThroughExitCallbacks;
        status = outcome;
        return zev::Leave::AtOnce;
      },
      svchp, errhp, arguments...);
}

}  // namespace

extern "C" {

OCITrans *Alloc_OCITrans() {
  return zev::allocHandle<OCITrans>(HANDLE_OCITrans);
}

void Free_OCITrans(OCITrans *trans) {
  if (!zev::asTrans(trans)) return;
  if (const OCIEnv *env = zev::parentEnv(trans)) {
    for (OCIHandle *child : zev::Elements<OCIHandle>(env->children)) {
      OCISvcCtx *svchp = zev::asService(child);
      if (svchp && svchp->trans == trans) svchp->trans = nullptr;
    }
  }
  std::free(trans->xid);
  zev::freeHandle(trans);
}

sword Get_OCITrans(OCITrans *trans, void *value, ub4 *size, ub4 attribute,
                   OCIError *errhp) {
  if (!zev::asTrans(trans) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  XID *xid = trans->xid;
  switch (attribute) {
    case OCI_ATTR_XID:
      return getBlock(value, size, xid, kXidSize);
    case OCI_ATTR_TRANS_NAME:
      if (!xid) return getBlock(value, size, nullptr, kXidSize);
      return getBlock(value, size, xid->data,
                      static_cast<ub4>(xid->gtrid_length + xid->bqual_length));
    case OCI_ATTR_TRANS_TIMEOUT:
      zev::putAttribute(value, trans->transTimeout);
      if (size) *size = sizeof trans->transTimeout;
      return OCI_SUCCESS;
    default:
      return zev::fail(errhp, 24315);
  }
}

sword Set_OCITrans(OCITrans *trans, void *value, ub4 size, ub4 attribute,
                   OCIError *errhp) {
  if (!zev::asTrans(trans) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  switch (attribute) {
    case OCI_ATTR_XID:
      return value ? setXid(trans, value, size, errhp) : OCI_INVALID_HANDLE;
    case OCI_ATTR_TRANS_NAME:
      return setName(trans, value, size, errhp);
    case OCI_ATTR_TRANS_TIMEOUT:
      if (!value) return OCI_INVALID_HANDLE;
      trans->transTimeout = zev::takeAttribute<ub4>(value);
      return OCI_SUCCESS;
    default:
      return zev::fail(errhp, 24315);
  }
}

char *GetTransactionNameFromXID(const XID *xid) {
  constexpr std::size_t kPrefix = 16;
  const long wanted = xid->gtrid_length + xid->bqual_length;
  const std::size_t length =
      static_cast<std::size_t>(std::clamp<long>(wanted, 0, XIDDATASIZE));
  auto *name = static_cast<char *>(std::malloc(kPrefix + length + 1));
  if (!name) return nullptr;
  const int prefix = std::snprintf(name, kPrefix, "%d.", static_cast<int>(xid->formatID));
  std::memcpy(name + prefix, xid->data, length);
  name[static_cast<std::size_t>(prefix) + length] = '\0';
  return name;
}

void START_TRANSACTION(PGconn *conn) {
  switch (PQtransactionStatus(conn)) {
    case PQTRANS_ACTIVE:
    case PQTRANS_INTRANS:
    case PQTRANS_INERROR:
      return;
    default:
      zev::wire::exec(conn, "BEGIN");
  }
}

void COMMIT_TRANSACTION(PGconn *conn) {
  switch (PQtransactionStatus(conn)) {
    case PQTRANS_ACTIVE:
    case PQTRANS_INTRANS:
      zev::wire::exec(conn, "COMMIT");
      return;
    default:
      return;
  }
}

void ROLLBACK_TRANSACTION(OCIServer *server) {
  ZEV_ASSERT(server, "server != ((void *)0)");
  if (server->stmtLevelTx) return;
  switch (PQtransactionStatus(server->conn)) {
    case PQTRANS_ACTIVE:
    case PQTRANS_INTRANS:
    case PQTRANS_INERROR:
      zev::wire::exec(server->conn, "ROLLBACK");
      return;
    default:
      return;
  }
}

ZEV_API sword OCITransStart(OCISvcCtx *svchp, OCIError *errhp, uword timeout, ub4 flags) {
  return inFrame(
      zev::frame::kTransStart, svchp, errhp,
      [&] { return startTransaction(svchp, errhp, flags); }, timeout, flags);
}

ZEV_API sword OCITransCommit(OCISvcCtx *svchp, OCIError *errhp, ub4 flags) {
  return inFrame(
      zev::frame::kTransCommit, svchp, errhp,
      [&] { return endTransaction(svchp, errhp, flags, kCommit); }, flags);
}

ZEV_API sword OCITransRollback(OCISvcCtx *svchp, OCIError *errhp, ub4 flags) {
  return inFrame(
      zev::frame::kTransRollback, svchp, errhp,
      [&] { return endTransaction(svchp, errhp, flags, kRollback); }, flags);
}

ZEV_API sword OCITransPrepare(OCISvcCtx *svchp, OCIError *errhp, ub4 flags) {
  return inFrame(
      zev::frame::kTransPrepare, svchp, errhp,
      [&] { return prepareTransaction(svchp, errhp); }, flags);
}

}  // extern "C"
