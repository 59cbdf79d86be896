/// User callbacks: the lists that an environment holds and the three functions that run
/// them.
#pragma once

#include <cstdarg>

#include "zevoci/handle.h"

/// The published form of a user callback.
using UserCallback = sword (*)(void *ctxp, void *hndlp, ub4 type, ub4 fcode, ub4 when,
                               sword returnCode, sb4 *errnop, va_list arglist);

/// One registration.
struct UcbEntry {
  void *hndlp;
  ub4 type;
  void *ehndlp;
  UserCallback callback;
  void *ctxp;
  OCIUcb *ucbDesc;
};

/// The registrations of one function code and stage, in order.
struct UcbList {
  UcbEntry **callbacks;
  sb4 count;
};

extern "C" {
/// Runs the callbacks of `list` before a call. The first that answers OCI_CONTINUE fixes
/// the status; all run. A status that ends as OCI_CONTINUE becomes what it was.
ZEV_HELPER sword PerformEntryUcbs(UcbList *list, sword *status, ...);
/// Runs the replace callbacks of `fcode`. One that does not answer OCI_CONTINUE ends the
/// run with the exit callbacks and the result 0x800; the call's own work goes on all the
/// same.
ZEV_HELPER sword PerformReplaceUcbs(OCIEnv *env, sword *status, ub4 fcode, ...);
/// Runs the callbacks of `list` after a call.
ZEV_HELPER sword PerformExitUcbs(UcbList *list, sword *status, ...);
}
