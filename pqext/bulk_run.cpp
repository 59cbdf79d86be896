#include "pqext/bulk_run.h"

#include <poll.h>

#include <cerrno>
#include <utility>

namespace zev::pqext {
namespace {

/// The commands that go out before the next look at what has come in.
constexpr int kCommandsAtOnce = 256;
/// The rounds of sending and reading of one step that must not wait.
constexpr int kRoundsPerStep = 8;

/// Waits until the connection can be read, or also written when output is left.
void wait(PGconn *conn, bool hasOutput) {
  pollfd socket{PQsocket(conn), POLLIN, 0};
  if (hasOutput) socket.events |= POLLOUT;
  while (poll(&socket, 1, -1) < 0 && errno == EINTR) continue;
}

}  // namespace

BulkRun::BulkRun(PGconn *conn) {
  if (PQsetnonblocking(conn, 1) != 0) return;
  open_ = PQenterPipelineMode(conn) != 0;
  if (!open_) PQsetnonblocking(conn, 0);
}

void BulkRun::add(int count, Send send) {
  total_ = count;
  sent_ = 0;
  answered_ = 0;
  send_ = std::move(send);
  ++batches_;
}

/// Sends some commands, and the Sync behind the last. Once one has failed the server
/// skips the others, which then need not go out. False when nothing is left to send.
bool BulkRun::send() {
  for (int i = 0; i < kCommandsAtOnce && sent_ < total_ && !failed_; ++i) {
    if (!send_(sent_)) return false;
    ++sent_;
  }
  return true;
}

void BulkRun::take(PGconn *conn, Result result) {
  const ExecStatusType status = PQresultStatus(result.get());
  if (status == PGRES_PIPELINE_SYNC) {
    ++synced_;
    return;
  }
  if (status == PGRES_PIPELINE_ABORTED) return;
  if (succeeded(result.get())) {
    if (status == PGRES_TUPLES_OK && !rows_) {
      rows_ = std::move(result);
    } else {
      last_ = std::move(result);
    }
    return;
  }
  if (std::exchange(failed_, true)) return;
  failedCommand_ = answered_;
  message_ = PQresultErrorMessage(result.get());
  if (message_.empty()) message_ = PQerrorMessage(conn);
  failure_ = std::move(result);
}

void BulkRun::receive(PGconn *conn) {
  if (!PQconsumeInput(conn)) return breakOff(conn);
  while (answered_ < sent_ || synced_ < syncsSent_) {
    if (PQisBusy(conn)) return;
    Result result(PQgetResult(conn));
    if (result) {
      inCommand_ = true;
      take(conn, std::move(result));
      if (synced_ == syncsSent_ && syncsSent_ > 0) return;
    } else if (std::exchange(inCommand_, false)) {
      ++answered_;
    } else if (PQstatus(conn) == CONNECTION_BAD) {
      return breakOff(conn);
    }
  }
}

/// The connection is gone: what the server said before counts.
void BulkRun::breakOff(PGconn *conn) {
  while (Result result{PQgetResult(conn)}) {
    take(conn, std::move(result));
    if (PQstatus(conn) == CONNECTION_BAD && failed_) break;
  }
  if (!failed_) message_ = PQerrorMessage(conn);
  failed_ = true;
  synced_ = syncsSent_ = batches_;
}

void BulkRun::pump(PGconn *conn) {
  for (int round = 0; round < kRoundsPerStep && !isDone(); ++round) {
    if (!send()) {
      if (!failed_) message_ = PQerrorMessage(conn);
      failed_ = true;
    }
    if ((sent_ == total_ || failed_) && syncsSent_ < batches_) {
      if (!PQpipelineSync(conn)) return breakOff(conn);
      ++syncsSent_;
    }
    if (PQflush(conn) < 0) return breakOff(conn);
    receive(conn);
  }
}

void BulkRun::finish(PGconn *conn) {
  while (!isDone()) {
    pump(conn);
    if (isDone()) return;
    const int left = PQflush(conn);
    if (left < 0) return breakOff(conn);
    if (syncsSent_ == batches_ || left > 0) wait(conn, left > 0);
  }
}

void BulkRun::close(PGconn *conn) {
  if (!std::exchange(open_, false)) return;
  // Whatever is left of the pipeline is the end of its last command.
  for (int silent = 0; silent < 2 && !PQexitPipelineMode(conn);) {
    const Result left(PQgetResult(conn));
    silent = left ? 0 : silent + 1;
  }
  PQsetnonblocking(conn, 0);
}

Result BulkRun::progress(PGconn *conn) {
  pump(conn);
  return isDone() ? nullptr : Result(PQmakeEmptyPGresult(conn, PGRES_COMMAND_OK));
}

Result BulkRun::takeResult() {
  if (failed_) return std::move(failure_);
  return rows_ ? std::move(rows_) : std::move(last_);
}

}  // namespace zev::pqext
