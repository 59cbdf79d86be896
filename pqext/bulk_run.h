/// Many commands in one pipeline with one Sync, sent and answered in turn, so that
/// neither side waits for the other with full buffers.
#pragma once

#include <libpq-fe.h>

#include <functional>
#include <string>
#include <vector>

#include "pqext/adapter.h"

namespace zev::pqext {

/// The rows of a bulk operation; the arrays are the caller's.
struct RowArrays {
  int params;
  int count;
  const char *const *values;  ///< row-major
  const int *lengths;
  const int *formats;
  bool formatsPerRow;  ///< `formats` is row-major too; else it serves all rows

  const char *const *valuesOf(int row) const { return at(values, row, true); }
  const int *lengthsOf(int row) const { return at(lengths, row, true); }
  const int *formatsOf(int row) const { return at(formats, row, formatsPerRow); }

 private:
  template <class T>
  const T *at(const T *array, int row, bool perRow) const {
    if (!array || !perRow) return array;
    return array + static_cast<std::ptrdiff_t>(row) * params;
  }
};

/// One pipeline.
class BulkRun {
 public:
  /// Sends command number `i` in pipeline mode; non-zero when sent.
  using Send = std::function<int(int i)>;

  /// Takes the connection into pipeline mode.
  explicit BulkRun(PGconn *conn);
  virtual ~BulkRun() = default;
  BulkRun(const BulkRun &) = delete;
  BulkRun &operator=(const BulkRun &) = delete;

  /// Whether the connection is in pipeline mode for this run.
  bool isOpen() const { return open_; }
  /// Adds `count` commands and the Sync behind them.
  void add(int count, Send send);

  /// Sends and reads what is possible without waiting, up to some thousand commands.
  void pump(PGconn *conn);
  /// The same until everything is answered.
  void finish(PGconn *conn);
  bool isDone() const { return !open_ || synced_ == batches_; }
  /// Leaves pipeline mode. Everything must be answered.
  void close(PGconn *conn);

  /// One step of a run that nobody waits for: a result without meaning while commands
  /// are on their way, null when all are answered.
  Result progress(PGconn *conn);

  bool failed() const { return failed_; }
  /// The number of the first command that failed, or -1.
  int failedCommand() const { return failedCommand_; }
  /// The answer of the first command that failed, of the first that returned rows, or of
  /// the last, in this order.
  Result takeResult();
  /// What the first failure said.
  const std::string &message() const { return message_; }

 private:
  bool send();
  void receive(PGconn *conn);
  void take(PGconn *conn, Result result);
  void breakOff(PGconn *conn);

  Send send_;
  bool open_ = false;
  int total_ = 0;
  int sent_ = 0;
  int answered_ = 0;
  bool inCommand_ = false;  ///< results of command `answered_` have come already
  int batches_ = 0;         ///< Syncs that are asked for, sent and answered
  int syncsSent_ = 0;
  int synced_ = 0;
  bool failed_ = false;
  int failedCommand_ = -1;
  std::string message_;
  Result failure_;
  Result rows_;
  Result last_;
};

}  // namespace zev::pqext
