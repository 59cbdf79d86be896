/// What all thread functions do first, and how thread objects are made and destroyed.
#pragma once

#include "zevoci/errors.h"
#include "zevoci/threads.h"

namespace zev {

/// The environment that `hndl` is, or that stands directly above the session `hndl`;
/// null for anything else.
inline OCIEnv *threadEnv(const void *hndl) {
  if (OCIEnv *env = asEnv(hndl)) return env;
  const OCIHandle *session = checked<OCIHandle>(hndl, HANDLE_OCISession);
  return session ? parentEnv(session) : nullptr;
}

/// The kinds of thread objects: their tag, and how they are allocated and freed.
template <class T>
struct ThreadObject;
#define THREAD_OBJECT(T)                              \
  template <>                                         \
  struct ThreadObject<T> {                            \
    static constexpr HandleTag tag = HANDLE_##T;      \
    static T *alloc() { return Alloc_##T(); }         \
    static void free(T *object) { Free_##T(object); } \
  }
THREAD_OBJECT(OCIThreadId);
THREAD_OBJECT(OCIThreadHandle);
THREAD_OBJECT(OCIThreadMutex);
THREAD_OBJECT(OCIThreadKey);
#undef THREAD_OBJECT

template <class T>
bool isThreadObject(const T *object) {
  return checked<T>(object, ThreadObject<T>::tag) != nullptr;
}

/// Checks the handles of a call and forgets the error handle's earlier records. False
/// when one of them is null or of another kind: the call then returns
/// OCI_INVALID_HANDLE.
template <class... Objects>
bool enterThreadCall(void *hndl, OCIError *errhp, const Objects *...objects) {
  if (!threadEnv(hndl) || !asError(errhp) || !(isThreadObject(objects) && ...)) {
    return false;
  }
  ClearErrorHandle(errhp);
  return true;
}

/// Makes an object below the environment of `hndl` and stores it in `*out`, which is
/// null after a failure. Exhausted memory is record 16506.
template <class T>
sword makeThreadObject(void *hndl, OCIError *errhp, T **out) {
  if (!out || !enterThreadCall(hndl, errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = threadEnv(hndl);
  *out = nullptr;
  T *object = ThreadObject<T>::alloc();
  if (!object) return fail(errhp, 16506);
  List *longer = lappend(env->children, object);
  if (!longer) {
    ThreadObject<T>::free(object);
    return fail(errhp, 16506);
  }
  env->children = longer;
  object->parenth = env;
  *out = object;
  return OCI_SUCCESS;
}

/// Takes `*object` out of the environment that it was made in, frees it and clears
/// `*object`.
template <class T>
void dropThreadObject(T **object) {
  if (OCIEnv *env = parentEnv(*object))
    env->children = list_delete(env->children, *object);
  ThreadObject<T>::free(*object);
  *object = nullptr;
}

template <class T>
sword destroyThreadObject(void *hndl, OCIError *errhp, T **object) {
  if (!object || !enterThreadCall(hndl, errhp, *object)) return OCI_INVALID_HANDLE;
  dropThreadObject(object);
  return OCI_SUCCESS;
}

}  // namespace zev
