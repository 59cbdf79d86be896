/// User callbacks: the lists that an environment holds and the three functions that run
/// them.
#pragma once

#include <cstdarg>

#include "zevoci/handle.h"

/// One registration, in the order of its fields as given.
struct UcbEntry {
  void *hndlp;
  ub4 type;
  void *ehndlp;
  OCIUserCallback callback;
  void *ctxp;
  OCIUcb *ucbDesc;
};

/// The registrations of one function code and stage, in order. They live as long as the
/// environment.
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
/// Calls one registration and returns its answer. Whatever the function, stage and status
/// are, a callback is told function code 13, stage 1 and status 0.
ZEV_HELPER sword o2pVaToListUCB(const UcbEntry *entry, sb4 *errnop, std::va_list arglist);
/// Loads the packages that ORA_OCI_UCBPKG names, five at most unless
/// ZEV_OCI_NOUCBPKGLIMIT is set, and lets each register its callbacks with `env`. A
/// package that cannot be opened is traced and passed over; one without its entry ends
/// the process. OCI_CONTINUE when the variable is unset, OCI_ERROR when memory runs out,
/// else OCI_SUCCESS.
ZEV_HELPER sword o2pLoadUCBs(OCIEnv *env);
/// Names of the stages by number; null at 0.
extern ZEV_HELPER const char *const OCICallbackTypes[4];
}
