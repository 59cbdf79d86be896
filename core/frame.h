/// The fixed sequence around the work of every exported function on handles.
#pragma once

#include <new>

#include "zevoci/errors.h"
#include "zevoci/handle.h"
#include "zevoci/user_callbacks.h"

namespace zev {

/// How the work of a function leaves its frame.
enum class Leave {
  AtOnce,  ///< a failure: exit callbacks do not run
  ThroughExitCallbacks,
};

/// When a frame clears the error handle.
enum class Clear { Never, BeforeCallbacks, AfterCallbacks };

/// What a function's frame does; the rows stand in frame_rows.h.
struct FrameRow {
  ub2 code;  ///< OCI function code
  Clear clear = Clear::AfterCallbacks;
  bool entry = true;
  bool exit = true;
};

/// Runs `work(status)` inside the frame `row` and returns the status. `arguments` are
/// those of the exported function, for the callbacks. Exhausted memory in the work is
/// record 16506.
template <class Work, class... Arguments>
sword runFrame(const FrameRow &row, OCIEnv *env, OCIError *errhp, Work &&work,
               Arguments... arguments) {
  sword status = OCI_SUCCESS;
  if (row.clear == Clear::BeforeCallbacks) ClearErrorHandle(errhp);
  if (row.entry && env->entryUcbs[row.code]) {
    PerformEntryUcbs(env->entryUcbs[row.code], &status, arguments...);
  }
  if (env->replaceUcbs[row.code]) {
    PerformReplaceUcbs(env, &status, row.code, arguments...);
  }
  if (row.clear == Clear::AfterCallbacks) ClearErrorHandle(errhp);
  try {
    if (work(status) == Leave::AtOnce) return status;
  } catch (const std::bad_alloc &) {
    return fail(errhp, 16506);
  }
  if (row.exit && env->exitUcbs[row.code]) {
    PerformExitUcbs(env->exitUcbs[row.code], &status, arguments...);
  }
  return status;
}

}  // namespace zev
