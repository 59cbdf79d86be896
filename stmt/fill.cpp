#include "stmt/fill.h"

#include <algorithm>
#include <vector>

#include "types/conversion_dispatch.h"
#include "zevoci/errors.h"
#include "zevoci/trace.h"

namespace zev {

/// One column of a result: where it goes and how.
struct ColumnPlan {
  const OCIDefine *define;
  ColumnConversion conversion;
  ub1 format;
};

/// The columns of a result up to the first without a define.
struct FetchPlan {
  bool current = false;
  std::vector<ColumnPlan> columns;
};

}  // namespace zev

namespace {

using zev::ColumnPlan;
using zev::FetchPlan;

void lookUp(FetchPlan &plan, const List *defines, const PGresult *result, PGconn *conn) {
  plan.columns.clear();
  plan.current = true;
  for (int field = 0; field < PQnfields(result); ++field) {
    const OCIDefine *define = find_define(defines, static_cast<ub4>(field));
    if (!define) return;
    plan.columns.push_back({define,
                            zev::conversionOf(PQftype(result, field), define->dty, conn),
                            static_cast<ub1>(PQfformat(result, field))});
  }
}

template <class T>
T *rowOf(T *base, std::size_t offset) {
  return base ? reinterpret_cast<T *>(reinterpret_cast<char *>(base) + offset) : nullptr;
}

void traceField(const zev::Field &field) {
  if (!zev::tracing(kTraceFetched)) return;
  if (field.format == 0) {
    ocitrace(kTraceFetched, "filldefine", "%s\n", field.value);
  } else {
    ocitracehex(kTraceFetched, "filldefine", field.value, field.length);
  }
}

/// Converts one field into row `row` of its define's buffers.
sword fillCell(OCIError *errhp, const ColumnPlan &column, const zev::Field &field, ub4 row) {
  const OCIDefine *define = column.define;
  if (define->isDynamic) return zev::fail(errhp, 3001);
  const bool isStruct = define->isStruct;
  const std::size_t n = row;
  ub2 *produced = rowOf(define->alenp, n * (isStruct ? define->alskip : sizeof(ub2)));
  ub4 length = define->valueSize;
  traceField(field);
  const sword status = zev::convertField(
      errhp, column.conversion, field,
      {rowOf(static_cast<char *>(define->valuep),
             n * (isStruct ? define->pvskip : define->valueSize)),
       &length, rowOf(define->indp, n * (isStruct ? define->indskip : sizeof(sb2))),
       rowOf(define->rcodep, n * (isStruct ? define->rcskip : sizeof(ub2)))});
  if (produced) *produced = static_cast<ub2>(length);
  return status;
}

zev::Field fieldAt(const PGresult *result, const ColumnPlan &column, int row, int field) {
  return {PQgetvalue(result, row, field), PQgetlength(result, row, field), column.format,
          PQgetisnull(result, row, field) != 0};
}

/// The walk that all members share: `rows` rows from result row `first` on. The status is that of
/// the last cell of the last column.
sword fillColumns(const FetchPlan &plan, OCIError *errhp, const PGresult *result, ub4 first,
                  ub4 rows) {
  sword status = OCI_SUCCESS;
  int field = 0;
  for (const ColumnPlan &column : plan.columns) {
    for (ub4 row = 0; row < rows; ++row) {
      status = fillCell(errhp, column,
                        fieldAt(result, column, static_cast<int>(first + row), field), row);
    }
    ++field;
  }
  return status;
}

sword fillRows(const FetchPlan &plan, OCIError *errhp, const PGresult *result, ub4 nrows,
               ub4 *resultRowPos, ub4 *rowsFetched) {
  const ub4 start = *resultRowPos;
  const auto tuples = static_cast<ub4>(PQntuples(result));
  const ub4 available = tuples > start ? tuples - start : 0;
  const ub4 rows = std::min(nrows, available);
  *rowsFetched = rows;
  if (PQnfields(result) == 0) return OCI_SUCCESS;
  const sword status = fillColumns(plan, errhp, result, start, rows);
  if (!plan.columns.empty()) *resultRowPos += rows;
  return nrows > rows && !plan.columns.empty() ? OCI_NO_DATA : status;
}

bool isNothingToFill(const List *defines, const PGresult *result, ub4 nrows,
                     const ub4 *resultRowPos) {
  return !defines || !result || !nrows || !resultRowPos;
}

/// The statement's plan for its current result.
const FetchPlan &planOf(OCIStmt *stmt) {
  if (!stmt->fetchPlan) stmt->fetchPlan = new FetchPlan;
  if (!stmt->fetchPlan->current) {
    lookUp(*stmt->fetchPlan, stmt->defines, stmt->pgResult, nullptr);
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
  if (isNothingToFill(defines, result, nrows, resultRowPos)) return zev::fail(errhp, 24374);
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
  *resultRowPos = rowIndex;
  return fillRows(plan, errhp, result, 1, resultRowPos, rowsFetched);
}

sword fill_define_buffers_2(OCIError *errhp, const List *defines, const PGresult *result,
                            ub4 nrows, ub4 *resultRowPos, ub4 *rowsFetched, PGconn *conn) {
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

sword fillDefines(OCIStmt *stmt, OCIError *errhp, ub4 nrows) {
  if (isNothingToFill(stmt->defines, stmt->pgResult, nrows, &stmt->resultRowPos)) {
    return fail(errhp, 24374);
  }
  return fillRows(planOf(stmt), errhp, stmt->pgResult, nrows, &stmt->resultRowPos,
                  &stmt->rowsFetched);
}

sword fillDefinesFromHeld(OCIStmt *stmt, OCIError *errhp, ub4 rowIndex) {
  if (!stmt->defines || !stmt->pgResult) return OCI_NO_DATA;
  ub4 position = rowIndex;
  return fillRows(planOf(stmt), errhp, stmt->pgResult, 1, &position, &stmt->rowsFetched);
}

}  // namespace zev
