/// The door for large objects: every lo_ call of the client library is made here. Each is
/// one round trip, the first of a connection one more.
#pragma once

#include <libpq-fe.h>
#include <oci.h>

#include <cstdint>

namespace zev::large_object {

/// A descriptor for reading and writing, or -1.
sb4 open(PGconn *conn, Oid object);
void close(PGconn *conn, sb4 descriptor);
/// Moves to `offset` bytes from the start; false on failure.
bool seek(PGconn *conn, sb4 descriptor, std::int64_t offset);
/// Moves to the end and gives the size, or -1. Two round trips.
std::int64_t size(PGconn *conn, sb4 descriptor);
bool seekEnd(PGconn *conn, sb4 descriptor);
/// Bytes read, fewer than `size` only at the end of the object; -1 on failure.
std::int64_t read(PGconn *conn, sb4 descriptor, void *buffer, std::size_t size);
/// Bytes written, or -1.
std::int64_t write(PGconn *conn, sb4 descriptor, const void *bytes, std::size_t size);
bool truncate(PGconn *conn, sb4 descriptor, ub4 length);

}  // namespace zev::large_object
