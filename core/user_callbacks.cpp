#include "zevoci/user_callbacks.h"

#include <cerrno>

namespace {

/// What every callback is told as function code and stage, whatever the function and
/// stage are.
constexpr ub4 kToldCode = 13;
constexpr ub4 kToldWhen = OCI_UCBTYPE_ENTRY;

/// Answered by a replace stage that a callback ended.
constexpr sword kReplaced = 0x800;

sword call(const UcbEntry *entry, std::va_list arguments) {
  return entry->callback(entry->ctxp, entry->hndlp, entry->type, kToldCode, kToldWhen,
                         OCI_SUCCESS, &errno, arguments);
}

/// Runs all callbacks; the first that answers OCI_CONTINUE fixes the status.
void runStage(const UcbList *list, sword *status, std::va_list arguments, bool restart) {
  const sword saved = *status;
  for (sb4 i = 0; i < list->count; ++i) {
    std::va_list again;
    if (restart) va_copy(again, arguments);
    const sword answer = call(list->callbacks[i], restart ? again : arguments);
    if (restart) va_end(again);
    if (*status != OCI_CONTINUE) *status = answer;
  }
  if (*status == OCI_CONTINUE) *status = saved;
}

}  // namespace

extern "C" {

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
    *status = call(list->callbacks[i], again);
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

}  // extern "C"
