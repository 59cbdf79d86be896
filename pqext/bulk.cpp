#include <cstring>
#include <utility>

#include "pqext/bulk_run.h"
#include "pqext/many_rows.h"
#include "pqext/pqext.h"

namespace zev::pqext {
namespace {

int sendRow(PGconn *conn, const char *name, const RowArrays &rows, int row) {
  return PQsendQueryPrepared(conn, name, rows.params, rows.valuesOf(row),
                             rows.lengthsOf(row), rows.formatsOf(row), 0);
}

/// The rows of a stepwise run, which outlive the caller's.
class RowCopies {
 public:
  RowCopies(const RowArrays &rows) : params_(rows.params) {
    const std::size_t cells =
        static_cast<std::size_t>(rows.params) * static_cast<std::size_t>(rows.count);
    std::vector<std::size_t> offsets;
    offsets.reserve(cells);
    for (std::size_t i = 0; i < cells; ++i) {
      const char *value = rows.values[i];
      const int format =
          rows.formats ? rows.formats[i % static_cast<std::size_t>(params_)] : 0;
      const std::size_t size = !value        ? 0
                               : format == 0 ? std::strlen(value)
                                             : static_cast<std::size_t>(rows.lengths[i]);
      offsets.push_back(bytes_.size());
      if (value) bytes_.append(value, size).push_back('\0');
      lengths_.push_back(static_cast<int>(size));
    }
    values_.resize(cells);
    for (std::size_t i = 0; i < cells; ++i) {
      values_[i] = rows.values[i] ? bytes_.data() + offsets[i] : nullptr;
    }
  }
  RowArrays arrays(int count, const int *formats) const {
    return {params_, count, values_.data(), lengths_.data(), formats, false};
  }

 private:
  int params_;
  std::string bytes_;
  std::vector<const char *> values_;
  std::vector<int> lengths_;
};

/// A stepwise run with what it was opened for.
struct StepwiseRun : BulkRun {
  StepwiseRun(PGconn *conn, const char *statement, int nParams, const int *sharedFormats)
      : BulkRun(conn), name(statement ? statement : ""), params(nParams) {
    if (sharedFormats) formats.assign(sharedFormats, sharedFormats + nParams);
  }
  std::string name;
  int params;
  std::vector<int> formats;
  std::optional<RowCopies> rows;
};

Result emptyResult(PGconn *conn) {
  return Result(PQmakeEmptyPGresult(conn, PGRES_COMMAND_OK));
}

}  // namespace

/// Runs all rows one by one in one pipeline, behind the commands of `before`.
Result runRows(PGconn *conn, Adapter &adapter, const char *name, const RowArrays &rows,
               const std::vector<std::string> &before) {
  if (rows.count <= 0) return emptyResult(conn);
  BulkRun run(conn);
  if (!run.isOpen()) {
    adapter.bulkError = PQerrorMessage(conn);
    return nullptr;
  }
  const int first = static_cast<int>(before.size());
  run.add(first + rows.count, [&](int i) {
    if (i >= first) return sendRow(conn, name, rows, i - first);
    return PQsendQueryParams(conn, before[static_cast<std::size_t>(i)].c_str(), 0,
                             nullptr, nullptr, nullptr, nullptr, 0);
  });
  run.finish(conn);
  run.close(conn);
  if (run.failed()) adapter.bulkError = run.message();
  return run.takeResult();
}

bool endRun(PGconn *conn, Adapter &adapter) {
  const std::unique_ptr<BulkRun> run = std::move(adapter.run);
  run->finish(conn);
  run->close(conn);
  if (run->failed()) adapter.bulkError = run->message();
  return !run->failed();
}

}  // namespace zev::pqext

using namespace zev::pqext;

PGresult *PQexecBulkPrepared(PGconn *conn, const char *stmtName, int nParams, int nRows,
                             const char *const *values, const int *lengths,
                             const int *formats) {
  return guarded<PGresult *>(nullptr, [&]() -> PGresult * {
    Adapter *adapter = beginOperation(conn);
    if (!adapter) return nullptr;
    const RowArrays rows{nParams, nRows, values, lengths, formats, false};
    Result result = runTogether(conn, *adapter, stmtName, rows);
    if (!result) result = runRows(conn, *adapter, stmtName, rows, {});
    if (PQresultStatus(result.get()) != PGRES_TUPLES_OK) return result.release();
    return emptyResult(conn).release();
  });
}

PGresult *PQextExecRows(PGconn *conn, const char *stmtName, int nParams, int nRows,
                        const char *const *values, const int *lengths,
                        const int *formats) {
  return guarded<PGresult *>(nullptr, [&]() -> PGresult * {
    Adapter *adapter = beginOperation(conn);
    if (!adapter) return nullptr;
    return runRows(conn, *adapter, stmtName,
                   {nParams, nRows, values, lengths, formats, true}, {})
        .release();
  });
}

int PQsendBulkStart(PGconn *conn, const char *stmtName, int nParams, const int *formats) {
  return guarded(0, [&] {
    Adapter *adapter = beginOperation(conn);
    if (!adapter) return 0;
    auto run = std::make_unique<StepwiseRun>(conn, stmtName, nParams, formats);
    if (!run->isOpen()) {
      adapter->bulkError = PQerrorMessage(conn);
      return 0;
    }
    adapter->run = std::move(run);
    return 1;
  });
}

int PQsendBulk(PGconn *conn, int nRows, const char *const *values, const int *lengths) {
  return guarded(0, [&] {
    Adapter *adapter = attached(conn);
    if (!adapter || !adapter->run) return 0;
    auto &run = static_cast<StepwiseRun &>(*adapter->run);
    if (!run.isDone()) {
      adapter->bulkError = "rows of this run are still on their way\n";
      return 0;
    }
    const int *formats = run.formats.empty() ? nullptr : run.formats.data();
    run.rows.emplace(RowArrays{run.params, nRows, values, lengths, formats, false});
    run.add(nRows, [conn, &run, nRows, formats](int i) {
      return sendRow(conn, run.name.c_str(), run.rows->arrays(nRows, formats), i);
    });
    run.pump(conn);
    return 1;
  });
}

int PQsendBulkFinish(PGconn *conn) {
  return guarded<int>(PGRES_FATAL_ERROR, [&] {
    Adapter *adapter = attached(conn);
    if (!adapter || !adapter->run) return 1;
    return endRun(conn, *adapter) ? 1 : int{PGRES_FATAL_ERROR};
  });
}

int PQextIsBusy(PGconn *conn) {
  const Adapter *adapter = attached(conn);
  if (adapter && (adapter->run || adapter->bind || adapter->ready)) return 0;
  return PQconsumeInput(conn) && PQisBusy(conn);
}

const char *PQextErrorMessage(PGconn *conn) {
  const Adapter *adapter = attached(conn);
  return adapter && !adapter->bulkError.empty() ? adapter->bulkError.c_str()
                                                : PQerrorMessage(conn);
}
