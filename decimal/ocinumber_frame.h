/// What the OCINumber functions do around their work.
#pragma once

#include <oci.h>

#include "core/arguments.h"
#include "decimal/exchange.h"
#include "zevoci/errors.h"

namespace zev::decimal {

/// The numbers that a call computes with; they belong to the thread.
struct Workspace {
  M_APM a = m_apm_init(), b = m_apm_init(), result = m_apm_init(), rest = m_apm_init();

  Workspace() = default;
  Workspace(const Workspace &) = delete;
  Workspace &operator=(const Workspace &) = delete;
  ~Workspace() {
    for (const M_APM number : {a, b, result, rest}) m_apm_free(number);
  }
};
/// That of the calling thread, released when it ends.
Workspace &workspace();

/// The handle's check and that of the arguments, then `work`. OCI_INVALID_HANDLE without
/// a record, OCI_ERROR with record 21560, or what `work` returns.
template <class Work>
sword run(OCIError *errhp, std::initializer_list<Argument> arguments, const Work &work) {
  if (!asError(errhp)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  if (checkArguments(errhp, arguments) != OCI_SUCCESS) return OCI_ERROR;
  return work();
}

/// `result` from the number that a call computed: OCI_SUCCESS, or OCI_ERROR for one that
/// no encoding holds.
inline sword deliver(const Workspace &w, OCINumber *result) {
  return writeNumber(w.result, *result) ? OCI_SUCCESS : OCI_ERROR;
}

}  // namespace zev::decimal
