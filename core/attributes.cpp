#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/handle_kinds.h"
#include "zevoci/trace.h"

namespace {

/// How a write to a handle type is answered where no kind takes it.
enum class Refusal { Error, Ignored };

constexpr ub4 kFirstIgnoredType = 30;

/// Types below 30 that exist elsewhere and have no attributes here; others are let pass,
/// since programs set attributes of descriptors that do not matter.
constexpr Refusal refusalOf(ub4 type) {
  if (type >= kFirstIgnoredType) return Refusal::Ignored;
  return type == OCI_HTYPE_ERROR || type == OCI_HTYPE_DESCRIBE ||
                 (type >= 11 && type <= 19) || type == 26 || type == 28 || type == 29
             ? Refusal::Error
             : Refusal::Ignored;
}

void traceSet(const void *handle, ub4 type, const void *value, ub4 size, ub4 attribute) {
  if (!zev::tracing(kTraceAttributes)) return;
  ocitrace(kTraceAttributes, nullptr, "OCIAttrGet(%p, %d, ..., %d, %d)\n", handle,
           static_cast<int>(type), static_cast<int>(size), static_cast<int>(attribute));
  ocitracehex(kTraceAttributes, "attributep", value, value ? static_cast<sb4>(size) : 0);
}

}  // namespace

extern "C" ZEV_API sword OCIAttrGet(const void *trgthndlp, ub4 trghndltyp,
                                    void *attributep, ub4 *sizep, ub4 attrtype,
                                    OCIError *errhp) {
  if (!trgthndlp || !attributep || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  auto *target = static_cast<OCIHandle *>(const_cast<void *>(trgthndlp));
  if (target->parenth && !zev::parentEnv(target)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  const zev::HandleKind *kind = zev::findHandleKind(trghndltyp);
  if (!kind || !kind->get) return OCI_ERROR;
  return kind->get(target, attributep, sizep, attrtype, errhp);
}

extern "C" ZEV_API sword OCIAttrSet(void *trgthndlp, ub4 trghndltyp, void *attributep,
                                    ub4 size, ub4 attrtype, OCIError *errhp) {
  traceSet(trgthndlp, trghndltyp, attributep, size, attrtype);
  if (!trgthndlp || !errhp) return OCI_ERROR;
  auto *target = static_cast<OCIHandle *>(trgthndlp);
  const bool topLevel = !target->parenth;
  OCIEnv *env = topLevel ? zev::asEnv(target) : zev::parentEnv(target);
  if (!env || (topLevel && trghndltyp != OCI_HTYPE_ENV)) return OCI_ERROR;

  return zev::runFrame(
      zev::frame::kAttrSet, env, errhp,
      [&](sword &status) {
        const zev::HandleKind *kind = zev::findHandleKind(trghndltyp);
        if (kind && kind->set) {
          const sword outcome = kind->set(target, attributep, size, attrtype, errhp);
          if (outcome != OCI_SUCCESS) status = outcome;
        } else if (refusalOf(trghndltyp) == Refusal::Error) {
          status = OCI_ERROR;
          return zev::Leave::AtOnce;
        }
        return zev::Leave::ThroughExitCallbacks;
      },
      trgthndlp, trghndltyp, attributep, size, attrtype, errhp);
}
