#include "core/env.h"

#include <atomic>
#include <cstdlib>
#include <mutex>

#include "core/attribute_value.h"
#include "core/handle_kinds.h"
#include "core/memory_cache.h"
#include "zevoci/encodings.h"
#include "zevoci/errors.h"
#include "zevoci/statement.h"
#include "zevoci/threads.h"
#include "zevoci/trace.h"
#include "zevoci/user_callbacks.h"

namespace {

// NOLINTNEXTLINE(performance-no-int-to-ptr): the C library's own failure
const iconv_t kNoConversion = reinterpret_cast<iconv_t>(-1);

// What OCIInitialize settles for the process.
std::atomic<ub1> O2PEnvIsInitialized{0};
std::atomic<ub4> O2PEnvMode{0};  // OCI_THREADED and OCI_OBJECT as given

// Accepted from OCIInitialize and never called: all memory comes from the system
// allocator.
std::atomic<void *> O2PCustomMemoryContext{nullptr};
std::atomic<void *(*)(void *, size_t)> O2PCustomMallocCallback{nullptr};
std::atomic<void *(*)(void *, void *, size_t)> O2PCustomReallocCallback{nullptr};
std::atomic<void (*)(void *, void *)> O2PCustomFreeCallback{nullptr};

/// Modes that an environment keeps.
constexpr ub4 kKeptModes = OCI_THREADED | OCI_OBJECT | OCI_EVENTS | OCI_NO_UCB |
                           OCI_ENV_NO_MUTEX | OCI_NEW_LENGTH_SEMANTICS;
/// One of these makes a non-zero mode acceptable.
constexpr ub4 kAcceptedModes = kKeptModes | OCI_UTF16;

/// OCIEnvInit keeps these.
constexpr ub4 kInitModes = OCI_NO_MUTEX | OCI_THREADED;

/// Values of the attribute that says whether empty text is null.
enum VarcharsMode : ub1 {
  kVarcharsDefault = 0,
  kVarcharsOracle = 3,
  kVarcharsServer = 4
};

void storeMemoryCallbacks(void *ctxp, void *(*malocfp)(void *, size_t),
                          void *(*ralocfp)(void *, void *, size_t),
                          void (*mfreefp)(void *, void *)) {
  O2PCustomMemoryContext = ctxp;
  O2PCustomMallocCallback = malocfp;
  O2PCustomReallocCallback = ralocfp;
  O2PCustomFreeCallback = mfreefp;
}

sword discardEnv(OCIEnv **envhpp) {
  Free_OCIEnv(*envhpp);
  *envhpp = nullptr;
  return OCI_ERROR;
}

/// Frees the handle that was allocated first below `env`.
void freeFirstChild(OCIEnv *env) {
  auto *child = static_cast<OCIHandle *>(env->children->head->data);
  if (OCIStmt *stmt = zev::asStmt(child)) stmt->fromPrepare2 = 0;
  const zev::HandleKind *kind = zev::findHandleKindByTag(child->handleType);
  if (kind && kind->type == zev::kUnpublished) {
    env->children = list_delete(env->children, child);
    kind->free(child);
    return;
  }
  const bool freed = kind && (OCIHandleFree(child, kind->type) == OCI_SUCCESS ||
                              OCIDescriptorFree(child, kind->type) == OCI_SUCCESS);
  if (!freed) env->children = list_delete(env->children, child);
}

}  // namespace

bool zev::openConversions(OCIEnv *env, const char *encodingName) {
  env->toUtf8 = iconv_open("UTF-8", encodingName);
  if (env->toUtf8 == kNoConversion) return false;
  env->fromUtf8 = iconv_open(encodingName, "UTF-8");
  if (env->fromUtf8 == kNoConversion) {
    iconv_close(env->toUtf8);
    return false;
  }
  env->utf16 = 1;
  return true;
}

OCIEnv *zev::climbToEnv(const void *handle) {
  auto *header = static_cast<const OCIHandle *>(handle);
  while (header && header->handleType != HANDLE_OCIEnv) {
    header = static_cast<const OCIHandle *>(header->parenth);
  }
  return asEnv(header);
}

extern "C" {

pthread_key_t g_ThreadKeyDestructorListIndex = zev::kNoThreadKey;

OCIEnv *Alloc_OCIEnv() {
  auto *env = zev::allocHandle<OCIEnv>(HANDLE_OCIEnv);
  if (!env) return nullptr;
  env->errh = Alloc_OCIError();
  if (!env->errh) {
    std::free(env);
    return nullptr;
  }
  env->oracleVarchars = std::getenv("OCI_PG_VARCHARS") ? 0 : 1;
  return env;
}

void Free_OCIEnv(OCIEnv *env) {
  if (!zev::asEnv(env)) return;
  while (env->children) freeFirstChild(env);
  list_free(env->sessionPools);
  zev::freeListAndMembers(env->spareList);
  zev::freeListAndMembers(env->contextValues);
  zev::freeListAndMembers(env->descriptorArrays);
  FreeMemFromEnvCache(env);
  if (env->utf16) {
    iconv_close(env->toUtf8);
    iconv_close(env->fromUtf8);
  }
  Free_OCIError(env->errh);
  zev::freeHandle(env);
}

void *AllocateMemFromEnvCache(OCIEnv *env, std::size_t size) {
  return zev::asEnv(env) ? zev::allocateInCache(env->memCache, size) : nullptr;
}

void FreeMemFromEnvCache(OCIEnv *env) {
  if (zev::asEnv(env)) zev::freeListAndMembers(env->memCache);
}

sword Get_OCIEnv(OCIEnv *env, void *value, ub4 *, ub4 attribute, OCIError *errhp) {
  if (!zev::asEnv(env) || !zev::asError(errhp) || !value) return OCI_INVALID_HANDLE;
  switch (attribute) {
    case OCI_ATTR_OBJECT:
      zev::putAttribute<ub4>(value, env->mode & OCI_OBJECT ? 1 : 0);
      return OCI_SUCCESS;
    case ZEVOCI_ATTR_VARCHARS:
      zev::putAttribute<ub1>(value,
                             env->oracleVarchars ? kVarcharsOracle : kVarcharsServer);
      return OCI_SUCCESS;
    default:
      return zev::fail(errhp, 24328);
  }
}

sword Set_OCIEnv(OCIEnv *env, void *value, ub4, ub4 attribute, OCIError *errhp) {
  if (!zev::asEnv(env) || !zev::asError(errhp) || !value) return OCI_INVALID_HANDLE;
  if (attribute != ZEVOCI_ATTR_VARCHARS) return zev::fail(errhp, 24328);
  switch (zev::takeAttribute<ub1>(value)) {
    case kVarcharsDefault:
    case kVarcharsOracle:
      env->oracleVarchars = 1;
      return OCI_SUCCESS;
    case kVarcharsServer:
      env->oracleVarchars = 0;
      return OCI_SUCCESS;
    default:
      return zev::fail(errhp, 24328);
  }
}

ZEV_API sword OCIInitialize(ub4 mode, void *ctxp, void *(*malocfp)(void *, size_t),
                            void *(*ralocfp)(void *, void *, size_t),
                            void (*mfreefp)(void *, void *)) {
  if (O2PEnvIsInitialized) return OCI_ERROR;
  O2PEnvMode = mode & (OCI_THREADED | OCI_OBJECT);
  if (mode & OCI_EVENTS) return OCI_ERROR;
  storeMemoryCallbacks(ctxp, malocfp, ralocfp, mfreefp);
  if (mode != OCI_DEFAULT && !(mode & (OCI_THREADED | OCI_OBJECT))) return OCI_ERROR;
  O2PEnvIsInitialized = 1;
  return OCI_SUCCESS;
}

ZEV_API sword OCITerminate(ub4 mode) {
  if (mode != OCI_DEFAULT || !O2PEnvIsInitialized) return OCI_ERROR;
  O2PEnvIsInitialized = 0;
  O2PEnvMode = 0;
  storeMemoryCallbacks(nullptr, nullptr, nullptr, nullptr);
  return OCI_SUCCESS;
}

ZEV_API sword OCIEnvInit(OCIEnv **envhpp, ub4 mode, size_t xtramemsz, void **usrmempp) {
  if (!envhpp) return OCI_ERROR;
  *envhpp = nullptr;
  zev::readDebugVariables();
  if (xtramemsz && !usrmempp) return OCI_ERROR;

  OCIEnv *env = *envhpp = Alloc_OCIEnv();
  if (!env) return OCI_ERROR;
  env->mode = mode & kInitModes;
  if (static_cast<sb4>(xtramemsz) > 0 && !zev::giveUserMemory(env, xtramemsz, usrmempp)) {
    return discardEnv(envhpp);
  }
  o2pLoadUCBs(env);
  SetNlsMessagesPath();
  if (!(mode & OCI_UTF16) && !zev::settleEncoding(env, 0)) return discardEnv(envhpp);

  static std::once_flag keyMade;
  std::call_once(keyMade,
                 [] { pthread_key_create(&g_ThreadKeyDestructorListIndex, nullptr); });
  return OCI_SUCCESS;
}

ZEV_API sword OCIEnvCreate(OCIEnv **envhpp, ub4 mode, void *, void *(*)(void *, size_t),
                           void *(*)(void *, void *, size_t), void (*)(void *, void *),
                           size_t xtramemsz, void **usrmempp) {
  const sword status = OCIEnvInit(envhpp, mode & OCI_UTF16, xtramemsz, usrmempp);
  if (status != OCI_SUCCESS) return status;
  OCIEnv *env = *envhpp;
  env->mode |= mode & kKeptModes;
  if (mode != OCI_DEFAULT && !(mode & kAcceptedModes)) return discardEnv(envhpp);
  if (mode & OCI_UTF16) {
    env->mode |= OCI_UTF16;
    InitNls(env, kUtf8);
    env->encoding = kUtf16Le;
    if (!zev::openConversions(env, pg_encoding_to_char(env->encoding))) {
      return discardEnv(envhpp);
    }
  }
  env->mode |= O2PEnvMode & OCI_OBJECT;
  return OCI_SUCCESS;
}

ZEV_API sword OCIEnvNlsCreate(OCIEnv **envhpp, ub4 mode, void *ctxp,
                              void *(*malocfp)(void *, size_t),
                              void *(*ralocfp)(void *, void *, size_t),
                              void (*mfreefp)(void *, void *), size_t xtramemsz,
                              void **usrmempp, ub2 charset, ub2) {
  const sword status =
      OCIEnvCreate(envhpp, mode, ctxp, malocfp, ralocfp, mfreefp, xtramemsz, usrmempp);
  if (status != OCI_SUCCESS) return status;
  if (charset > kLastEncoding) return discardEnv(envhpp);
  return zev::settleEncoding(*envhpp, charset) ? OCI_SUCCESS : discardEnv(envhpp);
}

}  // extern "C"
