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

/// Sends the notices of a connection to an error handle for the time of one call. Outside
/// of calls they go to the trace, never to standard error. Scopes of one connection do
/// not nest.
class NoticeScope {
 public:
  NoticeScope(PGconn *conn, OCIError *errhp);
  ~NoticeScope();
  NoticeScope(const NoticeScope &) = delete;
  NoticeScope &operator=(const NoticeScope &) = delete;

  /// Leaves the processor as it is until the next scope.
  void leaveInPlace() { conn_ = nullptr; }

  /// Lets the notices of a connection go to the trace: of a new one, and of one whose
  /// error handle is about to be freed.
  static void quieten(PGconn *conn);

 private:
  PGconn *conn_;
};

}  // namespace zev
