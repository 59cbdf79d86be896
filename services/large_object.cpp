#include "services/large_object.h"

#include <libpq/libpq-fs.h>

#include <algorithm>
#include <cstdio>

#include "core/wire.h"

namespace zev::large_object {
namespace {

// The server takes and gives at most a gigabyte in one value.
constexpr std::size_t kMostAtOnce = std::size_t{256} << 20;

/// Takes what an earlier command left: the calls need an idle connection.
PGconn *idle(PGconn *conn) {
  while (PQtransactionStatus(conn) == PQTRANS_ACTIVE) {
    if (!wire::getResult(conn)) break;
  }
  return conn;
}

/// Moves `size` bytes in calls that the server can serve. A call that does less ends it.
template <class Call>
std::int64_t inPieces(std::size_t size, Call call) {
  std::size_t done = 0;
  for (;;) {
    const std::size_t piece = std::min(size - done, kMostAtOnce);
    const int moved = call(done, piece);
    if (moved < 0) return -1;
    done += static_cast<std::size_t>(moved);
    if (done == size || static_cast<std::size_t>(moved) < piece) break;
  }
  return static_cast<std::int64_t>(done);
}

}  // namespace

sb4 open(PGconn *conn, Oid object) {
  return lo_open(idle(conn), object, INV_READ | INV_WRITE);
}

void close(PGconn *conn, sb4 descriptor) {
  lo_close(idle(conn), descriptor);
}

bool seek(PGconn *conn, sb4 descriptor, std::int64_t offset) {
  return lo_lseek64(idle(conn), descriptor, offset, SEEK_SET) >= 0;
}

bool seekEnd(PGconn *conn, sb4 descriptor) {
  return lo_lseek64(idle(conn), descriptor, 0, SEEK_END) >= 0;
}

std::int64_t size(PGconn *conn, sb4 descriptor) {
  return seekEnd(conn, descriptor) ? lo_tell64(conn, descriptor) : -1;
}

std::int64_t read(PGconn *conn, sb4 descriptor, void *buffer, std::size_t size) {
  auto *bytes = static_cast<char *>(buffer);
  return inPieces(size, [&](std::size_t done, std::size_t piece) {
    return lo_read(idle(conn), descriptor, bytes + done, piece);
  });
}

std::int64_t write(PGconn *conn, sb4 descriptor, const void *from, std::size_t size) {
  const auto *bytes = static_cast<const char *>(from);
  return inPieces(size, [&](std::size_t done, std::size_t piece) {
    return lo_write(idle(conn), descriptor, bytes + done, piece);
  });
}

bool truncate(PGconn *conn, sb4 descriptor, ub4 length) {
  return lo_truncate64(idle(conn), descriptor, length) >= 0;
}

}  // namespace zev::large_object
