/// Foreign resources that free themselves.
#pragma once

#include <iconv.h>
#include <libpq-fe.h>

#include <cstdlib>
#include <memory>

#include "zevoci/errors.h"

namespace zev {

template <auto Close>
struct ClosedBy {
  void operator()(auto *p) const noexcept { Close(p); }
};

using PgResult = std::unique_ptr<PGresult, ClosedBy<PQclear>>;
using PgCancel = std::unique_ptr<PGcancel, ClosedBy<PQfreeCancel>>;

/// A block of the system allocator.
template <class T = char>
using Malloced = std::unique_ptr<T, ClosedBy<std::free>>;

/// Sends the notices of a connection to an error handle for the time of one call, and puts the
/// former processor and its argument back. libpq hands back only the function, so the argument is
/// kept as instance data of the connection.
class NoticeScope {
 public:
  NoticeScope(PGconn *conn, OCIError *errhp);
  ~NoticeScope();
  NoticeScope(const NoticeScope &) = delete;
  NoticeScope &operator=(const NoticeScope &) = delete;

  /// Leaves the processor as it is.
  void leaveInPlace() { conn_ = nullptr; }

  /// Prepares a new connection: notices outside any scope go to the trace, not to standard error.
  static void adopt(PGconn *conn);
  /// Makes the connection forget an error handle that is about to be freed.
  static void forget(PGconn *conn, const OCIError *errhp);

 private:
  PGconn *conn_;
  PQnoticeProcessor formerProcessor_;
  void *formerArgument_;
};

}  // namespace zev
