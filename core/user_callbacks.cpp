#include "zevoci/user_callbacks.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <iterator>

#include "zevoci/describers.h"
#include "zevoci/trace.h"

using zev::kTraceArguments;
using zev::kTraceFailures;
using zev::kTraceNarrative;

namespace {

/// What every callback is told as function code and stage, whatever the function and
/// stage are.
constexpr ub4 kToldCode = 13;
constexpr ub4 kToldWhen = OCI_UCBTYPE_ENTRY;

/// Answered by a replace stage that a callback ended.
constexpr sword kReplaced = 0x800;

const char *stageName(ub4 when) {
  return when < std::size(OCICallbackTypes) ? OCICallbackTypes[when] : nullptr;
}

/// The table of a stage, or null.
UcbList **tableOf(OCIEnv *env, ub4 when) {
  switch (when) {
    case OCI_UCBTYPE_ENTRY:
      return env->entryUcbs;
    case OCI_UCBTYPE_EXIT:
      return env->exitUcbs;
    case OCI_UCBTYPE_REPLACE:
      return env->replaceUcbs;
    default:
      return nullptr;
  }
}

/// A block that goes with the environment; null when memory runs out.
template <class T>
T *allocate(OCIEnv *env, std::size_t count = 1) {
  // NOLINTNEXTLINE(bugprone-sizeof-expression): entries stand as pointers in a list
  return static_cast<T *>(AllocateMemFromEnvCache(env, count * sizeof(T)));
}

/// Makes room for one more registration; room doubles whenever it is full.
bool grow(OCIEnv *env, UcbList &list) {
  const auto count = static_cast<std::size_t>(list.count);
  if (count && !std::has_single_bit(count)) return true;
  auto **grown = allocate<UcbEntry *>(env, count ? 2 * count : 1);
  if (!grown) return false;
  std::copy_n(list.callbacks, count, grown);
  list.callbacks = grown;
  return true;
}

/// Appends a registration to `list`, which is made by its first one; false when memory
/// runs out, and the registrations are as they were then.
bool append(OCIEnv *env, UcbList *&list, const UcbEntry &content) {
  if (!list) {
    list = allocate<UcbList>(env);
    if (!list) return false;
    *list = {};
  }
  auto *entry = allocate<UcbEntry>(env);
  if (!entry || !grow(env, *list)) return false;
  *entry = content;
  list->callbacks[list->count++] = entry;
  return true;
}

void traceRegistration(const UcbEntry &entry, ub4 fcode, ub4 when) {
  o2pTrace(kTraceNarrative, "Registering User Callback\n");
  o2pTrace(kTraceArguments, "\thndlp = %p\n", entry.hndlp);
  o2pTrace(kTraceArguments, "\ttype = %s\n", o2pGetHandleTypeName(entry.type));
  o2pTrace(kTraceArguments, "\tehndlp = %p\n", entry.ehndlp);
  o2pTrace(kTraceArguments, "\tcallback = %p\n", entry.callback);
  o2pTrace(kTraceArguments, "\tctxp = %p\n", entry.ctxp);
  o2pTrace(kTraceArguments, "\tfcode = %s\n", o2pGetFunctionCode(fcode));
  o2pTrace(kTraceArguments, "\twhen = %s\n", stageName(when));
  o2pTrace(kTraceArguments, "\tucbDesc = %p\n", entry.ucbDesc);
}

sword traceReturn(sword status) {
  o2pTrace(kTraceArguments, "\tRETURNING %s\n", o2pGetReturnCodeText(status));
  return status;
}

/// Runs all callbacks; the first that answers OCI_CONTINUE fixes the status.
void runStage(const UcbList *list, sword *status, std::va_list arguments, bool restart) {
  const sword saved = *status;
  for (sb4 i = 0; i < list->count; ++i) {
    std::va_list again;
    if (restart) va_copy(again, arguments);
    const sword answer =
        o2pVaToListUCB(list->callbacks[i], &errno, restart ? again : arguments);
    if (restart) va_end(again);
    if (*status != OCI_CONTINUE) *status = answer;
  }
  if (*status == OCI_CONTINUE) *status = saved;
}

}  // namespace

extern "C" {

const char *const OCICallbackTypes[] = {nullptr, "OCI_UCBTYPE_ENTRY", "OCI_UCBTYPE_EXIT",
                                        "OCI_UCBTYPE_REPLACE"};

sword o2pVaToListUCB(const UcbEntry *entry, sb4 *errnop, std::va_list arglist) {
  if (!entry->callback) return OCI_CONTINUE;
  return entry->callback(entry->ctxp, entry->hndlp, entry->type, kToldCode, kToldWhen,
                         OCI_SUCCESS, errnop, arglist);
}

sword PerformEntryUcbs(UcbList *list, sword *status, ...) {
  if (!list) return *status;
  std::va_list arguments;
  va_start(arguments, status);
  runStage(list, status, arguments, true);
  va_end(arguments);
  return *status;
}

sword PerformExitUcbs(UcbList *list, sword *status, ...) {
  if (!list) return *status;
  std::va_list arguments;
  va_start(arguments, status);
  runStage(list, status, arguments, false);
  va_end(arguments);
  return *status;
}

sword PerformReplaceUcbs(OCIEnv *env, sword *status, ub4 fcode, ...) {
  const UcbList *list = env->replaceUcbs[fcode];
  if (!list) return *status;
  const sword saved = *status;
  sword result = saved;
  std::va_list arguments;
  va_start(arguments, fcode);
  for (sb4 i = 0; i < list->count; ++i) {
    std::va_list again;
    va_copy(again, arguments);
    *status = o2pVaToListUCB(list->callbacks[i], &errno, again);
    va_end(again);
    if (*status != OCI_CONTINUE) {
      if (env->exitUcbs[fcode]) runStage(env->exitUcbs[fcode], status, arguments, false);
      result = kReplaced;
      break;
    }
    *status = saved;
  }
  va_end(arguments);
  return result;
}

ZEV_API sword OCIUserCallbackRegister(void *hndlp, ub4 type, void *ehndlp,
                                      OCIUserCallback callback, void *ctxp, ub4 fcode,
                                      ub4 when, OCIUcb *ucbDesc) {
  const UcbEntry entry{hndlp, type, ehndlp, callback, ctxp, ucbDesc};
  traceRegistration(entry, fcode, when);
  OCIEnv *env = zev::asEnv(hndlp);
  if (!env) return traceReturn(OCI_INVALID_HANDLE);

  sword status = OCI_SUCCESS;
  if (!o2pGetFunctionCode(fcode)) {
    o2pTrace(kTraceFailures, "\tERROR for FNCODE %s\n", o2pGetFunctionCode(fcode));
    status = OCI_ERROR;
  }
  UcbList **table = tableOf(env, when);
  if (!table) {
    o2pTrace(kTraceFailures, "\tERROR for WHEN %s\n", stageName(when));
    return traceReturn(OCI_ERROR);
  }
  // A code of no function is an error, yet its registration stands while it has a slot.
  if (fcode >= kUcbSlots || !append(env, table[fcode], entry)) status = OCI_ERROR;
  return traceReturn(status);
}

ZEV_API sword OCIUserCallbackGet(void *, ub4, void *, ub4, ub4, OCIUserCallback *,
                                 void **, OCIUcb *) {
  o2pTrace(kTraceNarrative, "Getting User Callback for Handle\n");
  return traceReturn(OCI_ERROR);
}

}  // extern "C"
