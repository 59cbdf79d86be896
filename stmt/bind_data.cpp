#include "stmt/bind_data.h"

#include <cstdlib>

#include "types/conversion_dispatch.h"
#include "zevoci/trace.h"

namespace {

constexpr sb2 kNull = OCI_IND_NULL;

/// Where one row of a bind's buffers lies; each may be null.
struct RowBuffers {
  void *value;
  sb2 *indicator;
  ub2 *length;
};

template <class T>
T *rowOf(T *base, ub4 iteration, std::size_t stride) {
  if (!base) return nullptr;
  return reinterpret_cast<T *>(reinterpret_cast<char *>(base) + iteration * stride);
}

RowBuffers rowBuffers(const OCIBind *bind, ub4 iteration) {
  const bool isStruct = bind->isStruct;
  auto *value = static_cast<char *>(bind->valuep);
  const auto valueStride =
      isStruct ? bind->pvskip : static_cast<std::size_t>(bind->valueSize);
  return {rowOf(value, iteration, valueStride),
          rowOf(bind->indp, iteration, isStruct ? bind->indskip : sizeof(sb2)),
          rowOf(bind->alenp, iteration, isStruct ? bind->alskip : sizeof(ub2))};
}

bool mayBeEmpty(ub2 dty) {
  return dty == SQLT_STR || dty == SQLT_AFC || dty == SQLT_AVC;
}

bool emptyIsNull(const OCIError *errhp) {
  const OCIEnv *env = zev::asEnv(errhp->parenth);
  return env && env->oracleVarchars;
}

sword convertRow(OCIBind *bind, OCIError *errhp, ub4 iteration) {
  const RowBuffers row = rowBuffers(bind, iteration);
  if (!row.length && bind->dty == SQLT_RSET) return 0;
  const sb4 length = row.length ? *row.length : bind->valueSize;

  sb2 local = 0;
  sb2 *indicator = row.indicator ? row.indicator : &local;
  if (*indicator != kNull && (!row.value || (length == 0 && !mayBeEmpty(bind->dty)))) {
    *indicator = kNull;
  }
  // The types that may be empty are still null where empty text is; the program's own
  // indicator then stays as it is.
  sb2 empty = kNull;
  if (*indicator != kNull && length == 0 && emptyIsNull(errhp)) indicator = &empty;

  if (!bind->convert)
    IsOCIToPQConversionPossible(bind->dty, bind->pgType, &bind->convert);
  zev::ServerParameter parameter{};
  const sword status =
      zev::convertBound(errhp, bind->convert, bind->pgType,
                        {bind->dty, row.value, length, indicator}, parameter);
  bind->pgValue = static_cast<char *>(parameter.value);
  bind->pgLength = parameter.length;
  bind->pgFormat = parameter.format;
  if (status < 0 && !row.length) AddErrorRecord(errhp, OCI_ERROR, 16530);
  return status;
}

/// A bind whose values come from a callback.
sword convertDynamic(const OCIBind *bind, OCIError *errhp) {
  if (!bind->icbfp) return OCI_NEED_DATA;
  return zev::fail(errhp, 3001);
}

/// Writes what each bind holds into the arrays of the client library; zeros for a null
/// element.
template <class Value>
void gatherValues(const List *binds, Value *values, int *lengths, int *formats) {
  for (const OCIBind *bind : zev::Elements<OCIBind>(binds)) {
    *values++ = bind ? bind->pgValue : nullptr;
    *lengths++ = bind ? static_cast<int>(bind->pgLength) : 0;
    *formats++ = bind ? bind->pgFormat : 0;
  }
}

bool stopsWalk(sword status) {
  return status < 0 || status > OCI_SUCCESS_WITH_INFO;
}

}  // namespace

extern "C" {

sword GetOCIBindData(OCIStmt *stmt, OCIError *errhp, ub4 iteration) {
  if (!zev::asStmt(stmt) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (!stmt->paramCount) return OCI_SUCCESS;
  sword status = OCI_SUCCESS;
  for (OCIBind *bind : zev::Elements<OCIBind>(stmt->binds)) {
    // A bind without a name stands for no placeholder.
    if (!bind || !bind->name || bind == stmt->returnBind) continue;
    bind->pgValue = nullptr;
    bind->pgLength = 0;
    bind->pgFormat = 0;
    ocitrace(kTraceBindData, "GetOCIBindData", "processing parameter %s\n", bind->name);
    status = bind->isDynamic ? convertDynamic(bind, errhp)
                             : convertRow(bind, errhp, iteration);
    if (stopsWalk(status)) {
      release_binds_pgdata(stmt->binds);
      return status;
    }
  }
  return status;
}

sword bindPgValues(List **placeholderBinds, char ***values, int **lengths,
                   int **formats) {
  const ub4 count = list_length(*placeholderBinds);
  *values = static_cast<char **>(std::malloc(count * sizeof(char *)));
  *lengths = static_cast<int *>(std::malloc(count * sizeof(int)));
  *formats = static_cast<int *>(std::malloc(count * sizeof(int)));
  if (!*values || !*lengths || !*formats) return OCI_ERROR;
  gatherValues(*placeholderBinds, *values, *lengths, *formats);
  return OCI_SUCCESS;
}

void release_binds_pgdata(List *binds) {
  for (OCIBind *bind : zev::Elements<OCIBind>(binds)) {
    if (!bind) continue;
    std::free(bind->pgValue);
    bind->pgValue = nullptr;
  }
}

}  // extern "C"

namespace zev {

ParameterArrays::ParameterArrays(const List *placeholderBinds)
    : binds_(placeholderBinds) {
  const ub4 count = list_length(placeholderBinds);
  values_.resize(count);
  lengths_.resize(count);
  formats_.resize(count);
}

void ParameterArrays::gather() {
  gatherValues(binds_, values_.data(), lengths_.data(), formats_.data());
}

wire::Parameters ParameterArrays::parameters(ub4 count) const {
  return {.count = static_cast<int>(count),
          .values = values_.data(),
          .lengths = lengths_.data(),
          .formats = formats_.data()};
}

}  // namespace zev
