#include <algorithm>
#include <limits>

#include "core/frame.h"
#include "core/frame_rows.h"
#include "services/large_object.h"
#include "zevoci/connection.h"
#include "zevoci/lob_locator.h"
#include "zevoci/trace.h"
#include "zevoci/transaction.h"

namespace {

namespace lo = zev::large_object;

constexpr sb4 kClosed = -1;
constexpr sb4 kLobError = 1733;

enum TraceLevel { kNarrative = 3, kArguments = 4 };

/// The narrative trace around one call.
class TracedCall {
 public:
  TracedCall(const char *line, const OCIError *errhp) {
    o2pTrace(kNarrative, line);
    o2pTrace(kArguments, "\terrhp = %p\n", static_cast<const void *>(errhp));
  }
  ~TracedCall() { o2pTrace(kArguments, "\tRETURNING %s\n"); }
  TracedCall(const TracedCall &) = delete;
  TracedCall &operator=(const TracedCall &) = delete;
};

void closeLob(PGconn *conn, OCILobLocator *locator) {
  lo::close(conn, locator->loFd);
  locator->loFd = kClosed;
}

/// The arguments that the calls share; false for a handle of another kind.
struct Call {
  OCISvcCtx *svchp;
  OCIError *errhp;
  OCILobLocator *locator;

  explicit operator bool() const {
    return zev::asService(svchp) && zev::asError(errhp) && zev::asLobLocator(locator);
  }
  PGconn *conn() const {
    const OCIServer *server = zev::asServer(svchp->server);
    return server ? server->conn : nullptr;
  }
  sword fail() const { return zev::fail(errhp, kLobError); }
};

/// Runs `work(conn)` on an object that is open, and closes it again unless it was open
/// before. A failure to open is given to `refused`, and the result to `settle` when the
/// object is closed again.
template <class Work, class Refused, class Settle>
sword onOpenLob(const Call &call, Work work, Refused refused, Settle settle) {
  if (!call) return OCI_INVALID_HANDLE;
  ClearErrorHandle(call.errhp);
  PGconn *conn = call.conn();
  START_TRANSACTION(conn);
  boolean wasOpen = 0;
  if (OpenPGLob(conn, call.errhp, call.locator, &wasOpen) != OCI_SUCCESS) {
    return refused();
  }
  const sword status = work(conn);
  if (wasOpen) return status;
  closeLob(conn, call.locator);
  return settle(status);
}

sword asItStands(sword status) {
  return status;
}

sword failed() {
  return OCI_ERROR;
}

/// What a read is asked for.
struct Reading {
  ub4 *done;
  ub4 offset;
  char *buffer;
  ub4 capacity;
  void *context;
  OCICallbackLobRead deliver;
};

/// Bytes to read. The offset counts from 1 here, and from 0 where the read begins, so
/// that a read to the end asks for one byte more than there is.
ub4 plannedAmount(ub4 wanted, ub4 size, ub4 offset) {
  const std::int64_t left = std::int64_t{size} + 1 - offset;
  return static_cast<ub4>(std::clamp<std::int64_t>(left, 0, wanted));
}

/// Hands over one piece; whether reading goes on.
bool goesOn(const Reading &to, ub4 length, ub1 piece) {
  return !to.deliver || to.deliver(to.context, to.buffer, length, piece) == OCI_CONTINUE;
}

/// Reads `amount` bytes in pieces of the buffer's size. The end of the object ends it
/// too, with an empty last piece.
sword readPieces(const Call &call, PGconn *conn, const Reading &to, ub4 amount) {
  ub1 piece = OCI_FIRST_PIECE;
  for (;;) {
    // Without a callback all pieces stand one behind the other in the buffer.
    char *place = to.deliver ? to.buffer : to.buffer + *to.done;
    const std::int64_t got =
        lo::read(conn, call.locator->loFd, place, std::min(amount, to.capacity));
    if (got < 0) return call.fail();
    const auto length = static_cast<ub4>(got);
    *to.done += length;
    amount -= length;
    if (!amount || !length) {
      goesOn(to, length, OCI_LAST_PIECE);
      return OCI_SUCCESS;
    }
    if (!goesOn(to, length, piece)) return OCI_SUCCESS;
    piece = OCI_NEXT_PIECE;
  }
}

sword readLob(const Call &call, PGconn *conn, const Reading &to) {
  ub4 size = 0;
  if (GetPGLobSize(&size, conn, call.locator) != OCI_SUCCESS) return call.fail();
  const ub4 amount = plannedAmount(*to.done, size, to.offset);
  *to.done = 0;
  if (amount > to.capacity && !to.deliver) return OCI_NEED_DATA;
  if (!lo::seek(conn, call.locator->loFd, to.offset)) return call.fail();
  return amount ? readPieces(call, conn, to, amount) : OCI_SUCCESS;
}

}  // namespace

extern "C" {

sword OpenPGLob(PGconn *conn, OCIError *errhp, OCILobLocator *locator, boolean *wasOpen) {
  *wasOpen = locator->loFd != kClosed;
  if (*wasOpen) return OCI_SUCCESS;
  const sb4 descriptor = lo::open(conn, locator->loOid);
  if (descriptor < 0) return zev::fail(errhp, kLobError);
  locator->loFd = descriptor;
  return OCI_SUCCESS;
}

sword GetPGLobSize(ub4 *size, PGconn *conn, const OCILobLocator *locator) {
  if (locator->loFd == kClosed) return OCI_ERROR;
  const std::int64_t found = lo::size(conn, locator->loFd);
  if (found < 0 || found > std::numeric_limits<ub4>::max()) return OCI_ERROR;
  *size = static_cast<ub4>(found);
  return OCI_SUCCESS;
}

ZEV_API sword OCILobOpen(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub1) {
  const TracedCall trace("Opening LOB/BFILE\n", errhp);
  const Call call{svchp, errhp, locp};
  if (!call) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  boolean wasOpen = 0;
  return OpenPGLob(call.conn(), errhp, locp, &wasOpen);
}

ZEV_API sword OCILobClose(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp) {
  const TracedCall trace("Closing LOB/BFILE\n", errhp);
  const Call call{svchp, errhp, locp};
  OCIEnv *env = call ? zev::parentEnv(svchp) : nullptr;
  if (!env) return OCI_INVALID_HANDLE;
  return zev::runFrame(
      zev::frame::kLobClose, env, errhp,
      [&](sword &) {
        if (locp->loFd != kClosed) closeLob(call.conn(), locp);
        return zev::Leave::ThroughExitCallbacks;
      },
      svchp, errhp, locp);
}

ZEV_API sword OCILobGetLength(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                              ub4 *lenp) {
  const TracedCall trace("Getting Length of LOB/BFILE\n", errhp);
  const Call call{svchp, errhp, locp};
  return onOpenLob(
      call,
      [&](PGconn *conn) {
        return GetPGLobSize(lenp, conn, locp) == OCI_SUCCESS ? OCI_SUCCESS : call.fail();
      },
      failed, asItStands);
}

ZEV_API sword OCILobRead(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                         ub4 *amtp, ub4 offset, void *bufp, ub4 bufl, void *ctxp,
                         OCICallbackLobRead cbfp, ub2, ub1) {
  const TracedCall trace("Reading LOB/BFILE\n", errhp);
  const Call call{svchp, errhp, locp};
  const Reading to{amtp, offset, static_cast<char *>(bufp), bufl, ctxp, cbfp};
  return onOpenLob(
      call, [&](PGconn *conn) { return readLob(call, conn, to); }, failed,
      [](sword) { return OCI_SUCCESS; });
}

ZEV_API sword OCILobTrim(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                         ub4 newlen) {
  const TracedCall trace("Truncating LOB\n", errhp);
  const Call call{svchp, errhp, locp};
  return onOpenLob(
      call,
      [&](PGconn *conn) {
        const std::int64_t size = lo::size(conn, locp->loFd);
        const bool cut = size >= newlen && lo::truncate(conn, locp->loFd, newlen);
        return cut ? OCI_SUCCESS : call.fail();
      },
      [&] { return call.fail(); }, asItStands);
}

ZEV_API sword OCILobWriteAppend(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                                ub4 *amtp, void *bufp, ub4, ub1, void *,
                                OCICallbackLobWrite, ub2, ub1) {
  const TracedCall trace("Appending to LOB\n", errhp);
  const Call call{svchp, errhp, locp};
  return onOpenLob(
      call,
      [&](PGconn *conn) {
        if (!lo::seekEnd(conn, locp->loFd)) return call.fail();
        const std::int64_t written = lo::write(conn, locp->loFd, bufp, *amtp);
        *amtp = static_cast<ub4>(written);
        return written < 0 ? call.fail() : OCI_SUCCESS;
      },
      [&] { return call.fail(); }, asItStands);
}

}  // extern "C"
