/// What the OCINumber functions do around their work.
#pragma once

#include <oci.h>

#include <initializer_list>

#include "decimal/exchange.h"
#include "zevoci/errors.h"

namespace zev::decimal {

/// An argument that must not be null, and the number that it is reported by.
struct Argument {
  const void *pointer;
  const char *number;
};

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
  for (const auto &[pointer, number] : arguments) {
    if (!pointer) return failArgument(errhp, number);
  }
  return work();
}

/// `result` from the number that a call computed: OCI_SUCCESS, or OCI_ERROR for one that
/// no encoding holds.
inline sword deliver(const Workspace &w, OCINumber *result) {
  return writeNumber(w.result, *result) ? OCI_SUCCESS : OCI_ERROR;
}

}  // namespace zev::decimal
