/// Values that a program keeps with an environment or a session under a name.
#include <ociap.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "core/edge_text.h"
#include "core/env.h"
#include "zevoci/connection.h"
#include "zevoci/errors.h"

namespace {

constexpr std::size_t kLongestKey = 64;

/// One value; the key stands behind it in the same block, so that the lists' owners free
/// the blocks alone.
struct ContextValue {
  char *key;
  ub1 keyLength;
  void *value;
};

/// The list of the environment or session `hndl`; null for other handles.
List **valuesOf(void *hndl) {
  if (OCIEnv *env = zev::asEnv(hndl)) return &env->contextValues;
  OCISession *session = zev::asSession(hndl);
  return session ? &session->owned : nullptr;
}

/// What the program means by a key of `length` bytes: up to a terminator, if it has one.
std::string_view keyText(const void *hndl, const ub1 *key, ub1 length) {
  return {reinterpret_cast<const char *>(key),
          zev::textLength(zev::climbToEnv(hndl), key, length)};
}

/// The checks of both functions, before `work(list)`.
template <class Work>
sword contextCall(void *hndl, OCIError *errhp, const void *key, ub1 keylen,
                  const void *value, Work &&work) {
  if (!hndl || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(errhp);
  if (keylen < 1 || keylen > kLongestKey || !key || !value) return OCI_ERROR;
  List **values = valuesOf(hndl);
  return values ? work(*values) : zev::fail(errhp, 24316);
}

ContextValue *makeValue(std::string_view key, void *value) {
  void *block = std::malloc(sizeof(ContextValue) + key.size());
  if (!block) return nullptr;
  auto *made = static_cast<ContextValue *>(block);
  *made = {static_cast<char *>(block) + sizeof(ContextValue),
           static_cast<ub1>(key.size()), value};
  std::memcpy(made->key, key.data(), key.size());
  return made;
}

/// Appends the value, also behind an older one of the same key.
sword append(List *&values, ContextValue *made, OCIError *errhp) {
  List *longer = made ? lappend(values, made) : nullptr;
  if (!longer) {
    std::free(made);
    return zev::fail(errhp, 16506);
  }
  values = longer;
  return OCI_SUCCESS;
}

}  // namespace

extern "C" {

ZEV_API sword OCIContextSetValue(void *hndl, OCIError *err, OCIDuration, ub1 *key,
                                 ub1 keylen, void *ctx_value) {
  return contextCall(hndl, err, key, keylen, ctx_value, [&](List *&values) {
    return append(values, makeValue(keyText(hndl, key, keylen), ctx_value), err);
  });
}

ZEV_API sword OCIContextGetValue(void *hndl, OCIError *err, ub1 *key, ub1 keylen,
                                 void **ctx_value) {
  return contextCall(hndl, err, key, keylen, ctx_value, [&](List *&values) {
    const std::string_view wanted = keyText(hndl, key, keylen);
    for (const ContextValue *kept : zev::Elements<ContextValue>(values)) {
      if (wanted == std::string_view(kept->key, kept->keyLength)) {
        *ctx_value = kept->value;
      }
    }
    return OCI_SUCCESS;
  });
}

}  // extern "C"
