#include "stmt/fill.h"

#include <algorithm>
#include <vector>

#include "stmt/dynamic_data.h"
#include "stmt/field.h"
#include "stmt/row_buffers.h"
#include "zevoci/errors.h"

namespace zev {

/// Program buffers of one kind, a row of them every `stride` bytes; none for a null base.
template <class T>
struct Strided {
  T *base;
  std::size_t stride;

  T *at(std::size_t row) const {
    void *place = base ? reinterpret_cast<char *>(base) + row * stride : nullptr;
    return static_cast<T *>(place);
  }
};

/// One column of a result: how it is converted and where its rows go.
struct ColumnPlan {
  ColumnConversion conversion;
  ub1 format;
  OCIDefine *dynamic;  ///< its callback takes the values; null for a define of buffers
  ub4 valueSize;
  Strided<char> values;
  Strided<sb2> indicators;
  Strided<void> lengths;
  bool wideLengths;
  Strided<ub2> returnCodes;
};

/// The columns of a result up to the first without a define.
struct FetchPlan {
  bool current = false;
  PGconn *conn = nullptr;  ///< asked about types that callbacks get; may be null
  std::vector<ColumnPlan> columns;
};

}  // namespace zev

namespace {

using zev::ColumnPlan;
using zev::FetchPlan;

ColumnPlan planOf(OCIDefine *define, const PGresult *result, int field, PGconn *conn) {
  const bool isStruct = define->isStruct;
  const auto stride = [isStruct](ub4 skip, std::size_t own) {
    return isStruct ? skip : own;
  };
  return {
      zev::conversionOf(PQftype(result, field), define->dty, conn),
      static_cast<ub1>(PQfformat(result, field)),
      define->isDynamic ? define : nullptr,
      define->valueSize,
      {static_cast<char *>(define->valuep), stride(define->pvskip, define->valueSize)},
      {define->indp, stride(define->indskip, sizeof(sb2))},
      {define->alenp,
       stride(define->alskip, zev::LengthCell::width(define->wideLengths))},
      static_cast<bool>(define->wideLengths),
      {define->rcodep, stride(define->rcskip, sizeof(ub2))}};
}

void lookUp(FetchPlan &plan, const List *defines, const PGresult *result, PGconn *conn) {
  plan.columns.clear();
  plan.current = true;
  plan.conn = conn;
  for (int field = 0; field < PQnfields(result); ++field) {
    OCIDefine *define = find_define(defines, static_cast<ub4>(field));
    if (!define) return;
    plan.columns.push_back(planOf(define, result, field, conn));
  }
}

/// Rows of a result and where they go.
struct RowSpan {
  ub4 first;  ///< row of the result
  ub4 count;
  ub4 bufferRow;  ///< row of the program's buffers
};

/// Gives the rows of one column to the callback of its define.
sword callForColumn(OCIDefine *define, OCIError *errhp, const PGresult *result, int field,
                    const RowSpan &rows, PGconn *conn) {
  sword status = OCI_SUCCESS;
  for (ub4 i = 0; i < rows.count; ++i) {
    status =
        call_define_callback(define, errhp, result, static_cast<sb4>(rows.bufferRow + i),
                             static_cast<sb4>(rows.first + i), field, conn);
  }
  return status;
}

/// Converts the rows of one column; the status is that of the last one.
sword fillColumn(const ColumnPlan &column, OCIError *errhp, const PGresult *result,
                 int field, const RowSpan &rows) {
  sword status = OCI_SUCCESS;
  for (ub4 i = 0; i < rows.count; ++i) {
    const zev::Field cell =
        zev::fieldAt(result, column.format, static_cast<int>(rows.first + i), field);
    zev::traceField("filldefine", cell);
    const std::size_t row = rows.bufferRow + i;
    ub4 length = column.valueSize;
    status = zev::convertField(errhp, column.conversion, cell,
                               {column.values.at(row), &length, column.indicators.at(row),
                                column.returnCodes.at(row)});
    const zev::LengthCell produced(column.lengths.at(row), column.wideLengths);
    if (produced) produced.set(length);
  }
  return status;
}

/// The walk that all members share. The status is that of the last cell of the last
/// column.
sword fillColumns(const FetchPlan &plan, OCIError *errhp, const PGresult *result,
                  const RowSpan &rows) {
  sword status = OCI_SUCCESS;
  int field = 0;
  for (const ColumnPlan &column : plan.columns) {
    status = column.dynamic
                 ? callForColumn(column.dynamic, errhp, result, field, rows, plan.conn)
                 : fillColumn(column, errhp, result, field, rows);
    ++field;
  }
  return status;
}

sword fillRows(const FetchPlan &plan, OCIError *errhp, const PGresult *result, ub4 nrows,
               ub4 *resultRowPos, ub4 *rowsFetched, ub4 bufferRow = 0) {
  const ub4 start = *resultRowPos;
  const auto tuples = static_cast<ub4>(PQntuples(result));
  const ub4 available = tuples > start ? tuples - start : 0;
  const ub4 rows = std::min(nrows, available);
  *rowsFetched = rows;
  if (PQnfields(result) == 0) return OCI_SUCCESS;
  const sword status = fillColumns(plan, errhp, result, {start, rows, bufferRow});
  if (!plan.columns.empty()) *resultRowPos += rows;
  return nrows > rows && !plan.columns.empty() ? OCI_NO_DATA : status;
}

bool isNothingToFill(const List *defines, const PGresult *result, ub4 nrows,
                     const ub4 *resultRowPos) {
  return !defines || !result || !nrows || !resultRowPos;
}

/// The statement's connection, which is asked about types that have no number of their
/// own here.
PGconn *connectionOf(const OCIStmt *stmt) {
  const OCIServer *server = stmt->service ? stmt->service->server : nullptr;
  return server ? server->conn : nullptr;
}

/// The statement's plan for its current result.
const FetchPlan &planOf(OCIStmt *stmt) {
  if (!stmt->fetchPlan) stmt->fetchPlan = new FetchPlan;
  if (!stmt->fetchPlan->current) {
    lookUp(*stmt->fetchPlan, stmt->defines, stmt->pgResult, connectionOf(stmt));
  }
  return *stmt->fetchPlan;
}

}  // namespace

extern "C" {

OCIDefine *find_define(const List *defines, ub4 column) {
  for (OCIDefine *define : zev::Elements<OCIDefine>(defines)) {
    if (define->position == column + 1) return define;
  }
  return nullptr;
}

sword fill_define_buffers(OCIError *errhp, const List *defines, const PGresult *result,
                          ub4 nrows, ub4 *resultRowPos, ub4 *rowsFetched) {
  if (isNothingToFill(defines, result, nrows, resultRowPos))
    return zev::fail(errhp, 24374);
  FetchPlan plan;
  lookUp(plan, defines, result, nullptr);
  return fillRows(plan, errhp, result, nrows, resultRowPos, rowsFetched);
}

sword fill_define_buffers_prefetch(OCIError *errhp, const List *defines,
                                   const PGresult *result, ub4 nrows, ub4 *resultRowPos,
                                   ub4 *rowsFetched, ub4 rowIndex) {
  if (isNothingToFill(defines, result, nrows, resultRowPos)) return OCI_NO_DATA;
  FetchPlan plan;
  lookUp(plan, defines, result, nullptr);
  ub4 position = rowIndex;
  const sword status = fillRows(plan, errhp, result, 1, &position, rowsFetched);
  *resultRowPos += position - rowIndex;
  return status;
}

sword fill_define_buffers_2(OCIError *errhp, const List *defines, const PGresult *result,
                            ub4 nrows, ub4 *resultRowPos, ub4 *rowsFetched,
                            PGconn *conn) {
  if (isNothingToFill(defines, result, nrows, resultRowPos)) return OCI_NO_DATA;
  FetchPlan plan;
  lookUp(plan, defines, result, conn);
  return fillRows(plan, errhp, result, nrows, resultRowPos, rowsFetched);
}

}  // extern "C"

namespace zev {

void forgetFetchPlan(OCIStmt *stmt) {
  if (stmt->fetchPlan) stmt->fetchPlan->current = false;
}

void freeFetchPlan(OCIStmt *stmt) {
  delete stmt->fetchPlan;
  stmt->fetchPlan = nullptr;
}

sword fillDefines(OCIStmt *stmt, OCIError *errhp, ub4 nrows, ub4 bufferRow) {
  if (isNothingToFill(stmt->defines, stmt->pgResult, nrows, &stmt->resultRowPos)) {
    return fail(errhp, 24374);
  }
  return fillRows(planOf(stmt), errhp, stmt->pgResult, nrows, &stmt->resultRowPos,
                  &stmt->rowsFetched, bufferRow);
}

sword fillDefinesFromHeld(OCIStmt *stmt, OCIError *errhp, ub4 rowIndex) {
  if (!stmt->defines || !stmt->pgResult) return OCI_NO_DATA;
  ub4 position = rowIndex;
  return fillRows(planOf(stmt), errhp, stmt->pgResult, 1, &position, &stmt->rowsFetched);
}

}  // namespace zev
