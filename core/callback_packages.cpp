/// Packages of user callbacks: shared objects that register themselves with each new
/// environment.
#include <dlfcn.h>
#include <ociap.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

#include "zevoci/describers.h"
#include "zevoci/trace.h"
#include "zevoci/user_callbacks.h"

using zev::kTraceArguments;
using zev::kTraceFailures;
using zev::kTraceNarrative;

namespace {

constexpr const char *kPackages = "ORA_OCI_UCBPKG";
/// Presence of this environment variable lifts the limit on their number.
constexpr const char *kNoLimit = "ZEV_OCI_NOUCBPKGLIMIT";
constexpr int kLimit = 5;

/// The entry of a package.
using Init = sword (*)(void *metaCtx, void *libCtx, ub4 argfmt, sword argc, void **argv);

/// A package's callback as it is called: with a 0 more than the published form has, for
/// those that declare one.
using LongCallback = sword (*)(void *metaCtx, ub4 mode, size_t xtramem_sz, void *usrmemp,
                               OCIUcb *ucbDesc, size_t unused);

/// The symbol, or null with the reason in `*reason`.
Init findSymbol(void *library, const std::string &symbol, const char **reason) {
  dlerror();
  void *found = dlsym(library, symbol.c_str());
  *reason = dlerror();
  return reinterpret_cast<Init>(found);
}

/// The entry of the package `name`: "nameInit". Where no such symbol exists, that of the
/// file's name alone, since a package may be named with its directory. A package without
/// either ends the process.
Init findInit(void *library, const std::string &name) {
  const char *reason = nullptr;
  Init init = findSymbol(library, name + "Init", &reason);
  if (reason && name.find('/') != name.npos) {
    init = findSymbol(library, name.substr(name.rfind('/') + 1) + "Init", &reason);
  }
  if (reason) {
    std::fprintf(stderr, "%s\n", reason);
    std::exit(1);
  }
  return init;
}

/// The library stays open for the life of the process.
void loadPackage(OCIEnv *env, const std::string &name) {
  o2pTrace(kTraceNarrative, "Loading Callback Module: %s\n", name.c_str());
  void *library = dlopen((name + ".so").c_str(), RTLD_LAZY);
  if (!library) {
    o2pTrace(kTraceFailures, "Could not load user callback package %s [reason: %s]\n",
             name.c_str(), dlerror());
    return;
  }
  if (const Init init = findInit(library, name)) init(env, nullptr, 0, 0, nullptr);
}

void loadPackages(OCIEnv *env, std::string_view names, bool limited) {
  for (int count = 0; !names.empty() && !(limited && count == kLimit);) {
    const std::size_t end = std::min(names.find(';'), names.size());
    if (end) {
      loadPackage(env, std::string(names.substr(0, end)));
      ++count;
    }
    names.remove_prefix(std::min(end + 1, names.size()));
  }
}

}  // namespace

extern "C" {

sword o2pLoadUCBs(OCIEnv *env) {
  const char *names = std::getenv(kPackages);
  if (!names) return OCI_CONTINUE;
  try {
    // A package may change the environment variable while its value is walked.
    const std::string copy(names);
    loadPackages(env, copy, !std::getenv(kNoLimit));
  } catch (const std::bad_alloc &) {
    return OCI_ERROR;
  }
  return OCI_SUCCESS;
}

ZEV_API sword OCISharedLibInit(void *metaCtx, void *, ub4, sword, void **,
                               OCIEnvCallbackType envCallback) {
  if (!envCallback) return OCI_ERROR;
  const auto called =
      reinterpret_cast<LongCallback>(reinterpret_cast<void (*)()>(envCallback));
  const sword status = called(metaCtx, 0, 0, nullptr, nullptr, 0);
  o2pTrace(kTraceArguments, "\tRETURNING %s\n", o2pGetReturnCodeText(status));
  return status;
}

}  // extern "C"
