/// What external procedures call to reach the session that called them. There is none
/// here: no server runs this library's programs inside a session.
#include <ociap.h>

#include "zevoci/api.h"
#include "zevoci/trace.h"

namespace {

template <class T>
void clear(T **out) {
  if (out) *out = nullptr;
}

}  // namespace

extern "C" {

ZEV_API sword ociepgoe(OCIExtProcContext *, OCIEnv **envh, OCISvcCtx **svch,
                       OCIError **errh) {
  clear(envh);
  clear(svch);
  clear(errh);
  return OCI_SUCCESS;
}

ZEV_API size_t ocieperr(OCIExtProcContext *, int) {
  o2pTrace(3, "Raising an Error of an External Procedure\n");
  return static_cast<size_t>(-1);
}

}  // extern "C"
