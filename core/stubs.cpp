/// The published functions that do nothing. Some end the process with a line that names
/// them, before any output argument is touched, unless the operator lets them go on:
/// going on with wrong results would be worse. The others fail.
#include <oci.h>
#include <ocixmldb.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "zevoci/errors.h"
#include "zevoci/trace.h"
#include "zevoci/user_callbacks.h"

namespace {

/// Presence of this environment variable lets a program go on behind such a call.
constexpr const char *kGoOn = "ZEV_OCI_UIFCTN_RET_OK";
constexpr sb4 kUnsupported = 3001;

enum TraceLevel { kNarrative = 3, kArguments = 4 };

/// What one function says.
struct Stub {
  const char *name;
  const char *file;
  int line;
  const char *narrative;
  std::string_view arguments;  ///< their names, separated by ", "
};

bool tracesArguments() {
  return oci_debug_log && OCI2PQ_TRACE_LEVEL >= kArguments;
}

/// One line for each argument, by its name.
template <class... Arguments>
void traceArguments(std::string_view names, Arguments... arguments) {
  if (!tracesArguments()) return;
  [[maybe_unused]] const auto trace = [&names](auto argument) {
    const std::string name(names.substr(0, names.find(',')));
    names.remove_prefix(std::min(names.size(), name.size() + 2));
    const char *form = std::is_pointer_v<decltype(argument)> ? " = %p\n" : " = %d\n";
    o2pTrace(kArguments, ("\t" + name + form).c_str(), argument);
  };
  (trace(arguments), ...);
}

void stopUnlessAllowed(const Stub &stub) {
  if (std::getenv(kGoOn)) return;
  std::fprintf(stderr, "UNIMPLEMENTED FUNCTION CALL %s IN FILE %s AT LINE %d\n",
               stub.name, stub.file, stub.line);
  std::exit(1);
}

/// Leaves the text where no call reads it: the program sees no record.
void noteUnsupported(OCIError *errhp) {
  if (!zev::asError(errhp)) return;
  std::snprintf(errhp->scratchText, sizeof errhp->scratchText, "%s",
                o2pGetErrorText(kUnsupported));
}

/// What a function that callbacks may watch does beside letting them.
struct FrameForm {
  bool tracesStages = true;    ///< lines around the entry, replace and exit callbacks
  bool narratesFirst = false;  ///< before the callbacks, not behind them
  bool leavesText = true;      ///< that of 3001, in the error handle
};
constexpr FrameForm kPlainFrame{};
constexpr FrameForm kQuietFrame{.tracesStages = false};
constexpr FrameForm kObjectFrame{
    .tracesStages = false, .narratesFirst = true, .leavesText = false};

/// Runs one stage of callbacks between two trace lines.
template <class Run>
void traced(const char *before, const char *after, const FrameForm &form,
            const Run &run) {
  if (form.tracesStages) o2pTrace(kArguments, before);
  run();
  if (form.tracesStages) o2pTrace(kArguments, after);
}

/// The environment above the first argument. A place for a handle to come leads nowhere;
/// the error handle stands in for it.
template <class First>
OCIEnv *watchingEnv(First *first, OCIError *errhp) {
  if constexpr (std::is_pointer_v<First>) {
    return zev::climbToEnv(errhp);
  } else {
    return zev::climbToEnv(first);
  }
}

/// A function that callbacks may watch, and whose status they may change.
template <class First, class... Rest>
sword frameStub(const Stub &stub, const FrameForm &form, ub4 code, OCIError *errhp,
                First *first, Rest... rest) {
  OCIEnv *env = watchingEnv(first, errhp);
  sword status = OCI_SUCCESS;
  if (form.narratesFirst) o2pTrace(kNarrative, stub.narrative);
  traced("BEFORE PerformEntryUcbs\n", "AFTER PerformEntryUcbs\n", form, [&] {
    if (env) PerformEntryUcbs(env->entryUcbs[code], &status, first, rest...);
  });
  traced("BEFORE PerformReplaceUcbs\n", "AFTER PerformReplaceUcbs\n", form, [&] {
    if (env) PerformReplaceUcbs(env, &status, code, first, rest...);
  });
  if (!form.narratesFirst) o2pTrace(kNarrative, stub.narrative);
  traceArguments(stub.arguments, first, rest...);
  stopUnlessAllowed(stub);
  if (form.leavesText) noteUnsupported(errhp);
  traced("BEFORE PerformExitUcbs\n", "AFTER PerformExitUcbs\n", form, [&] {
    if (env) PerformExitUcbs(env->exitUcbs[code], &status, first, rest...);
  });
  o2pTrace(kArguments, "\tRETURNING %s\n");
  return status;
}

/// A function that nobody watches.
template <class... Arguments>
sword plainStub(const Stub &stub, OCIError *errhp, Arguments... arguments) {
  o2pTrace(kNarrative, stub.narrative);
  traceArguments(stub.arguments, arguments...);
  stopUnlessAllowed(stub);
  noteUnsupported(errhp);
  o2pTrace(kArguments, "\tRETURNING %s\n");
  return OCI_SUCCESS;
}

/// A function that fails without a word to the program: OCI_ERROR as its result has it.
template <class Result>
Result softStub(const char *narrative) {
  o2pTrace(kNarrative, narrative);
  o2pTrace(kArguments, "\tRETURNING %s\n");
  return static_cast<Result>(OCI_ERROR);
}

/// A function that has nothing to return: null.
template <class Result>
Result nullStub(const char *narrative) {
  o2pTrace(kNarrative, narrative);
  return Result();
}

/// A function that fails and says why.
template <class Result>
Result unsupportedStub(const char *narrative, OCIError *errhp) {
  ClearErrorHandle(errhp);
  AddErrorRecord(errhp, OCI_ERROR, kUnsupported);
  return softStub<Result>(narrative);
}

}  // namespace

// Some parameters are declared for the program's sake alone.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#define FRAME_STUB_OF(form, result, name, parameters, code, line, errhp, ...)            \
  extern "C" ZEV_API result name parameters {                                            \
    return frameStub({#name, __FILE__, __LINE__, line, #__VA_ARGS__}, form, code, errhp, \
                     __VA_ARGS__);                                                       \
  }
#define FRAME_STUB(...) FRAME_STUB_OF(kPlainFrame, __VA_ARGS__)
#define QUIET_FRAME_STUB(...) FRAME_STUB_OF(kQuietFrame, __VA_ARGS__)
#define OBJECT_STUB(...) FRAME_STUB_OF(kObjectFrame, __VA_ARGS__)
#define PLAIN_STUB(result, name, parameters, line, errhp, ...)               \
  extern "C" ZEV_API result name parameters {                                \
    return plainStub({#name, __FILE__, __LINE__, line, #__VA_ARGS__}, errhp, \
                     __VA_ARGS__);                                           \
  }
#define BARE_STUB(result, name, parameters, line)                     \
  extern "C" ZEV_API result name parameters {                         \
    return plainStub({#name, __FILE__, __LINE__, line, {}}, nullptr); \
  }
#define SOFT_STUB(result, name, parameters, line) \
  extern "C" ZEV_API result name parameters {     \
    return softStub<result>(line);                \
  }
#define NULL_STUB(result, name, parameters, line) \
  extern "C" ZEV_API result name parameters {     \
    return nullStub<result>(line);                \
  }
#define UNSUPPORTED_STUB(result, name, parameters, errhp)               \
  extern "C" ZEV_API result name parameters {                           \
    return unsupportedStub<result>(#name " is not supported\n", errhp); \
  }
#define UNDECLARED_STUB(name)                                            \
  extern "C" ZEV_API sword name();                                       \
  extern "C" sword name() {                                              \
    return unsupportedStub<sword>(#name " is not supported\n", nullptr); \
  }

#include "core/surface/surface.def"

#undef FRAME_STUB_OF

extern "C" {

ZEV_API struct xmlctx *OCIXmlDbInitXmlCtx(OCIEnv *, OCISvcCtx *, OCIError *errhp,
                                          struct ocixmldbparam *, sword) {
  o2pTrace(kNarrative, "Describing Any Object\n");
  o2pTrace(kArguments, "\terrhp = %p\n");
  noteUnsupported(errhp);
  o2pTrace(kArguments, "\tRETURNING %p\n");
  return nullptr;
}

ZEV_API void OCIXmlDbFreeXmlCtx(struct xmlctx *) {
  o2pTrace(kNarrative, "Freeing XMLDB Context\n");
  o2pTrace(kArguments, "\txctx = %p\n");
  o2pTrace(kArguments, "\tRETURNING %s\n");
}

}  // extern "C"
