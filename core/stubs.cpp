/// The published functions that do nothing. Unless the operator allows them, a program
/// that reaches one is ended with a line that names it, before any output argument is
/// touched: going on with wrong results would be worse.
#include <ociap.h>

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

/// Runs one stage of callbacks between two trace lines.
template <class Run>
void traced(const char *before, const char *after, bool quiet, const Run &run) {
  if (!quiet) o2pTrace(kArguments, before);
  run();
  if (!quiet) o2pTrace(kArguments, after);
}

/// A function that callbacks may watch, and whose status they may change.
template <class First, class... Rest>
sword frameStub(const Stub &stub, ub4 code, bool quiet, OCIError *errhp, First *first,
                Rest... rest) {
  OCIEnv *env = zev::climbToEnv(first);
  sword status = OCI_SUCCESS;
  traced("BEFORE PerformEntryUcbs\n", "AFTER PerformEntryUcbs\n", quiet, [&] {
    if (env) PerformEntryUcbs(env->entryUcbs[code], &status, first, rest...);
  });
  traced("BEFORE PerformReplaceUcbs\n", "AFTER PerformReplaceUcbs\n", quiet, [&] {
    if (env) PerformReplaceUcbs(env, &status, code, first, rest...);
  });
  o2pTrace(kNarrative, stub.narrative);
  traceArguments(stub.arguments, first, rest...);
  stopUnlessAllowed(stub);
  noteUnsupported(errhp);
  traced("BEFORE PerformExitUcbs\n", "AFTER PerformExitUcbs\n", quiet, [&] {
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

}  // namespace

// Some parameters are declared for the program's sake alone.
#pragma GCC diagnostic ignored "-Wunused-parameter"

#define FRAME_STUB_OF(quiet, name, code, line, errhp, parameters, ...)             \
  extern "C" ZEV_API sword name parameters {                                       \
    return frameStub({#name, __FILE__, __LINE__, line, #__VA_ARGS__}, code, quiet, \
                     errhp, __VA_ARGS__);                                          \
  }
#define FRAME_STUB(...) FRAME_STUB_OF(false, __VA_ARGS__)
#define QUIET_FRAME_STUB(...) FRAME_STUB_OF(true, __VA_ARGS__)
#define PLAIN_STUB(name, line, errhp, parameters, ...)                       \
  extern "C" ZEV_API sword name parameters {                                 \
    return plainStub({#name, __FILE__, __LINE__, line, #__VA_ARGS__}, errhp, \
                     __VA_ARGS__);                                           \
  }
#define BARE_STUB(name, line, parameters)                             \
  extern "C" ZEV_API sword name parameters {                          \
    return plainStub({#name, __FILE__, __LINE__, line, {}}, nullptr); \
  }

#include "core/stub_table.def"

#undef BARE_STUB
#undef PLAIN_STUB
#undef QUIET_FRAME_STUB
#undef FRAME_STUB
#undef FRAME_STUB_OF
