#include "services/lob.h"

#include <oci.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <limits>

#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/wire.h"
#include "zevoci/connection.h"
#include "zevoci/trace.h"
#include "zevoci/transaction.h"

namespace {

namespace wire = zev::wire;

/// INV_READ | INV_WRITE of the server's interface.
constexpr int kReadWrite = 0x60000;
constexpr sb4 kClosed = -1;
constexpr sb4 kLargeObjectFailed = 1733;

enum TraceLevel { kNarrative = 3, kArguments = 4 };

/// The trace around one call.
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

PGconn *connectionOf(const OCISvcCtx *svchp) {
  return svchp->server->conn;
}

void closeLocator(PGconn *conn, OCILobLocator *locator) {
  wire::closeLargeObject(conn, locator->loFd);
  locator->loFd = kClosed;
}

/// A large object for the time of one call, in the transaction of the session. One that
/// the program has opened stays open behind it.
class OpenedLob {
 public:
  OpenedLob(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locator)
      : conn_(connectionOf(svchp)), locator_(locator) {
    START_TRANSACTION(conn_);
    status_ = OpenPGLob(conn_, errhp, locator, &wasOpen_);
  }
  ~OpenedLob() {
    if (status_ == OCI_SUCCESS && !wasOpen_) closeLocator(conn_, locator_);
  }
  OpenedLob(const OpenedLob &) = delete;
  OpenedLob &operator=(const OpenedLob &) = delete;

  sword status() const { return status_; }
  bool wasOpen() const { return wasOpen_; }
  PGconn *conn() const { return conn_; }
  int descriptor() const { return locator_->loFd; }

  sword size(ub4 *bytes) const { return GetPGLobSize(bytes, conn_, locator_); }
  bool seek(pg_int64 offset, int whence) const {
    return wire::seekLargeObject(conn_, descriptor(), offset, whence) >= 0;
  }

 private:
  PGconn *conn_;
  OCILobLocator *locator_;
  boolean wasOpen_ = 0;
  sword status_;
};

/// What a read has still to do.
struct Reading {
  ub4 *done;  ///< grows by what was read
  ub4 left;
  char *buffer;
  ub4 bufferSize;
  void *context;
  OCICallbackLobRead callback;  ///< may be null
};

/// Gives a piece to the program; whether it wants more.
bool deliver(const Reading &reading, ub4 size, ub1 piece) {
  if (!reading.callback) return true;
  const sb4 outcome = reading.callback(reading.context, reading.buffer, size, piece);
  return outcome == OCI_CONTINUE || piece == OCI_LAST_PIECE;
}

/// Reads piece by piece, the last one included in what the callback gets.
sword readPieces(const OpenedLob &lob, OCIError *errhp, Reading reading) {
  ub1 piece = OCI_FIRST_PIECE;
  while (reading.left) {
    const ub4 asked = std::min({reading.left, reading.bufferSize, ub4{INT_MAX}});
    const int n =
        wire::readLargeObject(lob.conn(), lob.descriptor(), reading.buffer, asked);
    if (n <= 0) return zev::fail(errhp, kLargeObjectFailed);
    const auto got = static_cast<ub4>(n);
    *reading.done += got;
    reading.left -= std::min(got, reading.left);
    if (!deliver(reading, got, reading.left ? piece : ub1{OCI_LAST_PIECE})) {
      return OCI_ERROR;
    }
    piece = OCI_NEXT_PIECE;
  }
  return OCI_SUCCESS;
}

/// The bytes to be read: offsets count from 1 here, and from 0 where reading starts, so
/// that the first byte is passed over and the count may reach one byte too far.
sword readFrom(const OpenedLob &lob, OCIError *errhp, ub4 offset, Reading reading) {
  ub4 size = 0;
  if (const sword status = lob.size(&size); status != OCI_SUCCESS) return status;
  const sb8 behindOffset = sb8{size} + 1 - offset;
  const ub4 asked = *reading.done;
  const auto amount = static_cast<ub4>(std::clamp<sb8>(behindOffset, 0, asked));
  *reading.done = 0;
  if (amount > reading.bufferSize && !reading.callback) return OCI_NEED_DATA;
  if (!lob.seek(offset, SEEK_SET)) return zev::fail(errhp, kLargeObjectFailed);
  const sb8 there = std::max<sb8>(sb8{size} - offset, 0);
  reading.left = static_cast<ub4>(std::min<sb8>(amount, there));
  if (reading.left && !reading.bufferSize) return OCI_NEED_DATA;
  return readPieces(lob, errhp, reading);
}

sword truncate(const OpenedLob &lob, ub4 newlen) {
  ub4 size = 0;
  if (lob.size(&size) != OCI_SUCCESS || size < newlen) return OCI_ERROR;
  return wire::truncateLargeObject(lob.conn(), lob.descriptor(), newlen) < 0
             ? OCI_ERROR
             : OCI_SUCCESS;
}

sword append(const OpenedLob &lob, OCIError *errhp, ub4 *amtp, const void *bufp) {
  if (!lob.seek(0, SEEK_END)) return zev::fail(errhp, kLargeObjectFailed);
  const int written =
      *amtp > INT_MAX ? -1
                      : wire::writeLargeObject(lob.conn(), lob.descriptor(),
                                               static_cast<const char *>(bufp), *amtp);
  *amtp = static_cast<ub4>(written);
  return written < 0 ? zev::fail(errhp, kLargeObjectFailed) : OCI_SUCCESS;
}

}  // namespace

extern "C" {

sword OpenPGLob(PGconn *conn, OCIError *errhp, OCILobLocator *locator, boolean *wasOpen) {
  *wasOpen = locator->loFd != kClosed;
  if (*wasOpen) return OCI_SUCCESS;
  const int descriptor = wire::openLargeObject(conn, locator->loOid, kReadWrite);
  if (descriptor < 0) return zev::fail(errhp, kLargeObjectFailed);
  locator->loFd = descriptor;
  return OCI_SUCCESS;
}

sword GetPGLobSize(ub4 *size, PGconn *conn, OCILobLocator *locator) {
  if (locator->loFd == kClosed) return OCI_ERROR;
  if (wire::seekLargeObject(conn, locator->loFd, 0, SEEK_END) < 0) return OCI_ERROR;
  const pg_int64 end = wire::tellLargeObject(conn, locator->loFd);
  if (end < 0 || end > std::numeric_limits<ub4>::max()) return OCI_ERROR;
  *size = static_cast<ub4>(end);
  return OCI_SUCCESS;
}

ZEV_API sword OCILobOpen(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp, ub1) {
  const TracedCall trace("Opening LOB/BFILE\n", errhp);
  boolean wasOpen = 0;
  return OpenPGLob(connectionOf(svchp), errhp, locp, &wasOpen);
}

ZEV_API sword OCILobClose(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp) {
  const TracedCall trace("Closing LOB/BFILE\n", errhp);
  OCIEnv *env = zev::parentEnv(svchp);
  if (!env) return OCI_INVALID_HANDLE;
  return zev::runFrame(
      zev::frame::kLobClose, env, errhp,
      [&](sword &) {
        if (locp->loFd != kClosed) closeLocator(connectionOf(svchp), locp);
        return zev::Leave::ThroughExitCallbacks;
      },
      svchp, errhp, locp);
}

ZEV_API sword OCILobGetLength(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                              ub4 *lenp) {
  const TracedCall trace("Getting Length of LOB/BFILE\n", errhp);
  const OpenedLob lob(svchp, errhp, locp);
  return lob.status() == OCI_SUCCESS ? lob.size(lenp) : lob.status();
}

ZEV_API sword OCILobRead(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                         ub4 *amtp, ub4 offset, void *bufp, ub4 bufl, void *ctxp,
                         OCICallbackLobRead cbfp, ub2, ub1) {
  const TracedCall trace("Reading LOB/BFILE\n", errhp);
  const OpenedLob lob(svchp, errhp, locp);
  if (lob.status() != OCI_SUCCESS) return lob.status();
  const sword status = readFrom(lob, errhp, offset,
                                {amtp, 0, static_cast<char *>(bufp), bufl, ctxp, cbfp});
  // An object that was opened for this call alone ends in success whatever happened.
  return lob.wasOpen() ? status : OCI_SUCCESS;
}

ZEV_API sword OCILobTrim(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                         ub4 newlen) {
  const TracedCall trace("Truncating LOB\n", errhp);
  const OpenedLob lob(svchp, errhp, locp);
  const sword status = lob.status() == OCI_SUCCESS ? truncate(lob, newlen) : lob.status();
  return status == OCI_SUCCESS ? status : zev::fail(errhp, kLargeObjectFailed);
}

ZEV_API sword OCILobWriteAppend(OCISvcCtx *svchp, OCIError *errhp, OCILobLocator *locp,
                                ub4 *amtp, void *bufp, ub4, ub1, void *,
                                OCICallbackLobWrite, ub2, ub1) {
  const TracedCall trace("Appending to LOB\n", errhp);
  const OpenedLob lob(svchp, errhp, locp);
  if (lob.status() != OCI_SUCCESS) return zev::fail(errhp, kLargeObjectFailed);
  return append(lob, errhp, amtp, bufp);
}

}  // extern "C"
