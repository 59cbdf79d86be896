#include "core/owned.h"

#include <libpq-events.h>

#include "zevoci/trace.h"

namespace zev {
namespace {

/// Keeps the notice argument of a connection as instance data; no event needs work.
int noticeEvents(PGEventId, void *, void *) { return 1; }

/// Takes the notices that no call asked for.
void traceNotice(void *, const char *message) {
  ocitrace(kTraceTransaction, "notice", "%s", message);
}

void install(PGconn *conn, PQnoticeProcessor processor, void *argument) {
  PQsetNoticeProcessor(conn, processor, argument);
  PQsetInstanceData(conn, noticeEvents, argument);
}

}  // namespace

NoticeScope::NoticeScope(PGconn *conn, OCIError *errhp)
    : conn_(conn),
      formerProcessor_(PQsetNoticeProcessor(conn, nullptr, nullptr)),
      formerArgument_(PQinstanceData(conn, noticeEvents)) {
  install(conn, OCINoticeHandler, errhp);
}

NoticeScope::~NoticeScope() {
  if (conn_) install(conn_, formerProcessor_, formerArgument_);
}

void NoticeScope::adopt(PGconn *conn) {
  PQregisterEventProc(conn, noticeEvents, "zevoci notices", nullptr);
  install(conn, traceNotice, nullptr);
}

void NoticeScope::forget(PGconn *conn, const OCIError *errhp) {
  if (PQinstanceData(conn, noticeEvents) == errhp) install(conn, traceNotice, nullptr);
}

}  // namespace zev
