#include "core/owned.h"

#include "zevoci/trace.h"

namespace zev {
namespace {

/// Takes the notices that no call asked for.
void traceNotice(void *, const char *message) {
  ocitrace(kTraceTransaction, "notice", "%s", message);
}

}  // namespace

NoticeScope::NoticeScope(PGconn *conn, OCIError *errhp) : conn_(conn) {
  PQsetNoticeProcessor(conn, OCINoticeHandler, errhp);
}

NoticeScope::~NoticeScope() {
  if (conn_) quieten(conn_);
}

void NoticeScope::quieten(PGconn *conn) {
  PQsetNoticeProcessor(conn, traceNotice, nullptr);
}

}  // namespace zev
