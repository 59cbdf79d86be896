/// Values that a program keeps with an environment or a session under a name.
#include <ociap.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "zevoci/connection.h"
#include "zevoci/errors.h"

namespace {

constexpr std::size_t kLongestKey = 64;

/// One value; the terminated key stands behind it in the same block, so that the lists'
/// owners free the blocks alone.
struct ContextValue {
  char *key;
  ub1 keyLength;  ///< as the program gave it
  void *value;
};

/// The list of the environment or session `hndl`; null for other handles.
List **valuesOf(void *hndl) {
  if (OCIEnv *env = zev::asEnv(hndl)) return &env->contextValues;
  OCISession *session = zev::asSession(hndl);
  return session ? &session->owned : nullptr;
}

/// What the program means by a key of `length` bytes: up to a terminator, if it has one.
std::string_view keyText(const ub1 *key, ub1 length) {
  const char *text = reinterpret_cast<const char *>(key);
  return {text, strnlen(text, length)};
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

ContextValue *makeValue(std::string_view key, ub1 keylen, void *value) {
  void *block = std::malloc(sizeof(ContextValue) + key.size() + 1);
  if (!block) return nullptr;
  auto *made = static_cast<ContextValue *>(block);
  *made = {static_cast<char *>(block) + sizeof(ContextValue), keylen, value};
  std::memcpy(made->key, key.data(), key.size());
  made->key[key.size()] = '\0';
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
    return append(values, makeValue(keyText(key, keylen), keylen, ctx_value), err);
  });
}

ZEV_API sword OCIContextGetValue(void *hndl, OCIError *err, ub1 *key, ub1 keylen,
                                 void **ctx_value) {
  return contextCall(hndl, err, key, keylen, ctx_value, [&](List *&values) {
    const std::string_view wanted = keyText(key, keylen);
    for (const ContextValue *kept : zev::Elements<ContextValue>(values)) {
      if (wanted == kept->key) *ctx_value = kept->value;
    }
    return OCI_SUCCESS;
  });
}

}  // extern "C"
