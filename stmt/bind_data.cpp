#include "stmt/bind_data.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "stmt/bind_value.h"
#include "stmt/dynamic_data.h"
#include "stmt/row_buffers.h"
#include "types/conversion_dispatch.h"
#include "zevoci/trace.h"

namespace {

constexpr sb2 kNull = OCI_IND_NULL;

bool mayBeEmpty(ub2 dty) {
  return dty == SQLT_STR || dty == SQLT_AFC || dty == SQLT_AVC;
}

bool emptyIsNull(const OCIError *errhp) {
  const OCIEnv *env = zev::asEnv(errhp->parenth);
  return env && env->oracleVarchars;
}

sword convertRow(OCIBind *bind, OCIError *errhp, ub4 iteration) {
  const zev::RowBuffers row = zev::rowBuffers(bind, iteration);
  if (!row.length && bind->dty == SQLT_RSET) return 0;
  if (row.length && row.length.get() > INT_MAX) return zev::fail(errhp, 24330);
  const sb4 length = row.length ? static_cast<sb4>(row.length.get()) : bind->valueSize;

  sb2 local = 0;
  sb2 *indicator = row.indicator ? row.indicator : &local;
  if (*indicator != kNull && (!row.value || (length == 0 && !mayBeEmpty(bind->dty)))) {
    *indicator = kNull;
  }
  const sword status = zev::convertBindValue(bind, errhp, row.value, length, indicator);
  if (status < 0 && !row.length) AddErrorRecord(errhp, OCI_ERROR, 16530);
  return status;
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
    status = bind->isDynamic ? zev::takeDynamicValue(bind, errhp, iteration)
                             : convertRow(bind, errhp, iteration);
    if (!zev::isSuccess(status)) {
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

sword convertBindValue(OCIBind *bind, OCIError *errhp, void *buffer, sb4 length,
                       sb2 *indicator) {
  // The types that may be empty are still null where empty text is; the program's own
  // indicator then stays as it is.
  sb2 empty = kNull;
  if (*indicator != kNull && length == 0 && emptyIsNull(errhp)) indicator = &empty;

  if (!bind->convert)
    IsOCIToPQConversionPossible(bind->dty, bind->pgType, &bind->convert);
  ServerParameter parameter{};
  const sword status = convertBound(errhp, bind->convert, bind->pgType,
                                    {bind->dty, buffer, length, indicator}, parameter);
  bind->pgValue = static_cast<char *>(parameter.value);
  bind->pgLength = parameter.length;
  bind->pgFormat = parameter.format;
  return status;
}

ParameterArrays::ParameterArrays(const List *placeholderBinds)
    : binds_(placeholderBinds) {
  const std::size_t count = list_length(placeholderBinds);
  if (count <= Few::kCount) return;
  manyValues_.resize(count);
  manyNumbers_.resize(2 * count);
  values_ = manyValues_.data();
  lengths_ = manyNumbers_.data();
  formats_ = lengths_ + count;
}

void ParameterArrays::gather() {
  gatherValues(binds_, values_, lengths_, formats_);
}

wire::Parameters ParameterArrays::parameters(ub4 count) const {
  return {.count = static_cast<int>(count),
          .values = values_,
          .lengths = lengths_,
          .formats = formats_};
}

RowValues::RowValues(const List *placeholderBinds, ub4 paramCount)
    : binds_(paramCount ? placeholderBinds : nullptr),
      width_(list_length(binds_)),
      lastFormats_(std::max<ub4>(paramCount, width_)) {}

void RowValues::take(const List *binds) {
  const std::size_t start = values_.size();
  values_.resize(start + width_);
  lengths_.resize(start + width_);
  gatherValues(binds_, values_.data() + start, lengths_.data() + start,
               lastFormats_.data());
  formats_.insert(formats_.end(), lastFormats_.begin(), lastFormats_.begin() + width_);
  for (OCIBind *bind : Elements<OCIBind>(binds)) {
    if (bind && bind->pgValue) {
      owned_.emplace_back(bind->pgValue);
      bind->pgValue = nullptr;
    }
  }
  ++count_;
}

void RowValues::clear() {
  count_ = 0;
  values_.clear();
  lengths_.clear();
  formats_.clear();
  owned_.clear();
}

}  // namespace zev
