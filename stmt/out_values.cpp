#include "stmt/out_values.h"

#include "core/wire.h"
#include "stmt/dynamic_data.h"
#include "stmt/field.h"
#include "stmt/result.h"
#include "stmt/row_buffers.h"
#include "stmt/statement_text.h"

namespace {

/// The first server whose calls have OUT parameters.
constexpr sb4 kFirstWithOutParameters = 80400;

/// One call of a routine, as far as its values are given back.
struct Call {
  OCIStmt *stmt;
  OCIError *errhp;
  ub4 iteration;
};

/// Makes the child statement of a bind one that fetches from the cursor whose name it has
/// been given.
void openChild(const Call &call, const OCIBind *bind) {
  OCIStmt *child = zev::asStmt(zev::childOf(bind, call.iteration));
  OCISvcCtx *service = call.stmt->service;
  if (!child || !child->preparedName || !service || !service->server) return;
  child->service = service;
  InitializeChildStmt(child);
  zev::holdResult(child,
                  zev::wire::describePortal(service->server->conn, child->preparedName));
}

/// Converts one field into the buffers of a plain bind.
sword convertInto(const Call &call, const OCIBind *bind, const PGresult *result,
                  int column, ub2 *returnCode) {
  const zev::RowBuffers row = zev::rowBuffers(bind, call.iteration);
  const zev::Field field = zev::fieldAt(result, 0, column);
  zev::traceField("fill_bind_parameters", field);
  if (!row.value && !field.isNull) return zev::fail(call.errhp, 3131);
  auto length = static_cast<ub4>(bind->valueSize);
  const sword status = PQ2OCIType(call.errhp, PQftype(result, column), field.value,
                                  field.length, field.format, bind->dty, row.value,
                                  &length, row.indicator, returnCode, field.isNull);
  if (zev::isSuccess(status) && row.length) row.length.set(length);
  return status;
}

/// Gives a field to a bind, to its callback or its buffers.
sword deliver(const Call &call, OCIBind *bind, const PGresult *result, int column,
              ub2 *returnCode) {
  const sword status =
      bind->isDynamic
          ? call_out_bind_callback(call.errhp, bind, static_cast<sb4>(call.iteration),
                                   result, column)
          : convertInto(call, bind, result, column, returnCode);
  if (zev::isSuccess(status) && !PQgetisnull(result, 0, column)) openChild(call, bind);
  return status;
}

/// Whether a bind takes no column of the OUT values. Every bind of an array of structs
/// takes one, and so does one with an out callback.
bool takesNothing(const OCIStmt *stmt, const OCIBind *bind, ub4 index) {
  const bool isIn = stmt->paramDirs && stmt->paramDirs[index] == kParamIn;
  if (bind->isDynamic) return isIn && !bind->ocbfp;
  return isIn && !bind->isStruct && gDBServerVersion >= kFirstWithOutParameters;
}

/// Whether a column leaves a bind as it is: one that is not there, and a NULL, of which
/// only callbacks are told.
bool passesOver(const OCIBind *bind, const PGresult *result, int column) {
  if (column >= PQnfields(result) || PQntuples(result) < 1) return true;
  return !bind->isDynamic && PQgetisnull(result, 0, column);
}

}  // namespace

extern "C" sword fill_bind_parameters(OCIStmt *stmt, OCIError *errhp, OCIBind *returnBind,
                                      const List *placeholderBinds,
                                      const PGresult *result, const PGresult *outResult,
                                      std::uint64_t hasReturn, ub4 iteration) {
  if (!zev::asStmt(stmt) || !zev::asError(errhp)) return OCI_ERROR;
  const Call call{stmt, errhp, iteration};
  sword status = OCI_SUCCESS;
  ub2 *returnCode = nullptr;
  if (hasReturn) {
    if (!zev::asBind(returnBind) || !result) return OCI_ERROR;
    if (PQntuples(result) < 1 || PQnfields(result) < 1) return OCI_ERROR;
    if (!returnBind->isDynamic) {
      returnCode = zev::rowBuffers(returnBind, iteration).returnCode;
    }
    status = deliver(call, returnBind, result, 0, returnCode);
  }
  if (gDBServerVersion < kFirstWithOutParameters && !stmt->paramCount) return status;
  if (!outResult || !placeholderBinds ||
      list_length(placeholderBinds) != stmt->paramCount) {
    return OCI_ERROR;
  }
  ub4 index = 0;
  int column = 0;
  for (OCIBind *bind : zev::Elements<OCIBind>(placeholderBinds)) {
    const ub4 parameter = index++;
    if (!bind || takesNothing(stmt, bind, parameter)) continue;
    if (!passesOver(bind, outResult, column)) {
      status = deliver(call, bind, outResult, column, returnCode);
    }
    ++column;
  }
  return status;
}
