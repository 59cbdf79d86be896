/*
 * A package of user callbacks, built several times under names of PACKAGE. What happens
 * is appended to the environment variable ZEVOCI_TEST_PACKAGES: the name when the package
 * has started, the name behind "!" when its callback ran.
 */
#include <oci.h>
#include <stdio.h>
#include <stdlib.h>

#define TEXT_OF(name) #name
#define TEXT(name) TEXT_OF(name)
#define JOINED(a, b) a##b
#define INIT_OF(name) JOINED(name, Init)

static void report(const char *mark) {
  static const char *kVariable = "ZEVOCI_TEST_PACKAGES";
  const char *before = getenv(kVariable);
  char all[1024];
  snprintf(all, sizeof all, "%s%s%s ", before ? before : "", mark, TEXT(PACKAGE));
  setenv(kVariable, all, 1);
}

static sword onAlloc(void *ctxp, void *hndlp, ub4 type, ub4 fcode, ub4 when,
                     sword returnCode, sb4 *errnop, va_list arglist) {
  (void)hndlp, (void)type, (void)fcode, (void)when, (void)returnCode, (void)errnop;
  /* OCIHandleAlloc(parenth, hndlpp, type, ...) */
  if (va_arg(arglist, void *) == ctxp && va_arg(arglist, void **) &&
      va_arg(arglist, ub4) == OCI_HTYPE_STMT) {
    report("!");
  }
  return OCI_CONTINUE;
}

static sword start(OCIEnv *env, ub4 mode, size_t xtramem_sz, void *usrmemp,
                   OCIUcb *ucbDesc) {
  report(mode || xtramem_sz || usrmemp ? "?" : "");
  return OCIUserCallbackRegister(env, OCI_HTYPE_ENV, NULL, onAlloc, env,
                                 OCI_FNCODE_HANDLEALLOC, OCI_UCBTYPE_ENTRY, ucbDesc);
}

sword INIT_OF(PACKAGE)(void *metaCtx, void *libCtx, ub4 argfmt, sword argc, void **argv);
sword INIT_OF(PACKAGE)(void *metaCtx, void *libCtx, ub4 argfmt, sword argc, void **argv) {
  if (libCtx || argfmt || argc || argv) report("?");
  return OCISharedLibInit(metaCtx, libCtx, argfmt, argc, argv, start);
}
