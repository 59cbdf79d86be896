#include <ociap.h>

#include "services/thread_object.h"

extern "C" {

OCIThreadMutex *Alloc_OCIThreadMutex() {
  auto *mutex = zev::allocHandle<OCIThreadMutex>(HANDLE_OCIThreadMutex);
  if (mutex) mutex->mutex = PTHREAD_MUTEX_INITIALIZER;
  return mutex;
}

void Free_OCIThreadMutex(OCIThreadMutex *mutex) {
  if (!zev::isThreadObject(mutex)) return;
  // A free one is taken first: the system does not define unlocking what is not locked.
  static_cast<void>(pthread_mutex_trylock(&mutex->mutex));
  pthread_mutex_unlock(&mutex->mutex);
  pthread_mutex_destroy(&mutex->mutex);
  zev::freeHandle(mutex);
}

ZEV_API sword OCIThreadMutexInit(void *hndl, OCIError *err, OCIThreadMutex **mutex) {
  const sword status = zev::makeThreadObject(hndl, err, mutex);
  if (status != OCI_SUCCESS) return status;
  if (pthread_mutex_init(&(*mutex)->mutex, nullptr) != 0) {
    zev::dropThreadObject(mutex);
    return zev::fail(err, 24320);
  }
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadMutexDestroy(void *hndl, OCIError *err, OCIThreadMutex **mutex) {
  return zev::destroyThreadObject(hndl, err, mutex);
}

ZEV_API sword OCIThreadMutexAcquire(void *hndl, OCIError *err, OCIThreadMutex *mutex) {
  if (!zev::enterThreadCall(hndl, err, mutex)) return OCI_INVALID_HANDLE;
  pthread_mutex_lock(&mutex->mutex);
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadMutexRelease(void *hndl, OCIError *err, OCIThreadMutex *mutex) {
  if (!zev::enterThreadCall(hndl, err, mutex)) return OCI_INVALID_HANDLE;
  pthread_mutex_unlock(&mutex->mutex);
  return OCI_SUCCESS;
}

}  // extern "C"
