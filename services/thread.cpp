#include <ociap.h>

#include <cerrno>

#include "core/owned.h"
#include "services/thread_object.h"

namespace {

constexpr sb4 kFailedOperation = 30135;

/// The start routine of the system: the program may destroy its handle before the new
/// thread has looked at it, so the thread has a copy of its own.
void *startThread(void *copy) {
  OCIThreadHandle thread = *static_cast<OCIThreadHandle *>(copy);
  std::free(copy);
  return ThreadProc(&thread);
}

/// 0, or the error number of the system.
int startCopyOf(const OCIThreadHandle &thread, pthread_t *tid) {
  zev::Malloced<OCIThreadHandle> copy(
      static_cast<OCIThreadHandle *>(std::malloc(sizeof thread)));
  if (!copy) return ENOMEM;
  *copy = thread;
  const int error = pthread_create(tid, nullptr, startThread, copy.get());
  if (error == 0) static_cast<void>(copy.release());
  return error;
}

}  // namespace

extern "C" {

OCIThreadId *Alloc_OCIThreadId() {
  return zev::allocHandle<OCIThreadId>(HANDLE_OCIThreadId);
}

void Free_OCIThreadId(OCIThreadId *id) {
  if (zev::isThreadObject(id)) zev::freeHandle(id);
}

OCIThreadHandle *Alloc_OCIThreadHandle() {
  return zev::allocHandle<OCIThreadHandle>(HANDLE_OCIThreadHandle);
}

void Free_OCIThreadHandle(OCIThreadHandle *thread) {
  if (zev::isThreadObject(thread)) zev::freeHandle(thread);
}

void *ThreadProc(void *thread) {
  const auto *self = static_cast<OCIThreadHandle *>(thread);
  self->proc(self->arg);
  zev::runKeyDestructors();
  return nullptr;
}

ZEV_API void OCIThreadProcessInit(void) {}

ZEV_API boolean OCIThreadIsMulti(void) {
  return 1;
}

ZEV_API sword OCIThreadInit(void *hndl, OCIError *err) {
  if (!zev::enterThreadCall(hndl, err)) return OCI_INVALID_HANDLE;
  zev::threadEnv(hndl)->threadsInitialised = 1;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadTerm(void *hndl, OCIError *err) {
  if (!zev::enterThreadCall(hndl, err)) return OCI_INVALID_HANDLE;
  const bool initialised = zev::threadEnv(hndl)->threadsInitialised;
  return initialised ? OCI_SUCCESS : zev::fail(err, kFailedOperation);
}

ZEV_API sword OCIThreadIdInit(void *hndl, OCIError *err, OCIThreadId **tid) {
  return zev::makeThreadObject(hndl, err, tid);
}

ZEV_API sword OCIThreadIdDestroy(void *hndl, OCIError *err, OCIThreadId **tid) {
  return zev::destroyThreadObject(hndl, err, tid);
}

ZEV_API sword OCIThreadIdSet(void *hndl, OCIError *err, OCIThreadId *tidDest,
                             OCIThreadId *tidSrc) {
  if (!zev::enterThreadCall(hndl, err, tidDest, tidSrc)) return OCI_INVALID_HANDLE;
  tidDest->tid = tidSrc->tid;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadIdSetNull(void *hndl, OCIError *err, OCIThreadId *tid) {
  if (!zev::enterThreadCall(hndl, err, tid)) return OCI_INVALID_HANDLE;
  tid->tid = 0;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadIdGet(void *hndl, OCIError *err, OCIThreadId *tid) {
  if (!zev::enterThreadCall(hndl, err, tid)) return OCI_INVALID_HANDLE;
  tid->tid = pthread_self();
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadIdSame(void *hndl, OCIError *err, OCIThreadId *tid1,
                              OCIThreadId *tid2, boolean *result) {
  if (!result || !zev::enterThreadCall(hndl, err, tid1, tid2)) return OCI_INVALID_HANDLE;
  *result = tid1->tid == tid2->tid;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadIdNull(void *hndl, OCIError *err, OCIThreadId *tid,
                              boolean *result) {
  if (!result || !zev::enterThreadCall(hndl, err, tid)) return OCI_INVALID_HANDLE;
  *result = tid->tid == 0;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadHndInit(void *hndl, OCIError *err, OCIThreadHandle **thnd) {
  return zev::makeThreadObject(hndl, err, thnd);
}

ZEV_API sword OCIThreadHndDestroy(void *hndl, OCIError *err, OCIThreadHandle **thnd) {
  return zev::destroyThreadObject(hndl, err, thnd);
}

ZEV_API sword OCIThreadCreate(void *hndl, OCIError *err, void (*start)(void *), void *arg,
                              OCIThreadId *tid, OCIThreadHandle *tHnd) {
  if (!start || !zev::enterThreadCall(hndl, err, tid, tHnd)) return OCI_INVALID_HANDLE;
  tHnd->proc = start;
  tHnd->arg = arg;
  tHnd->running = 0;
  pthread_t started = 0;
  if (startCopyOf(*tHnd, &started) != 0) return zev::fail(err, kFailedOperation);
  tHnd->tid = tid->tid = started;
  tHnd->running = 1;
  tHnd->joined = 0;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadJoin(void *hndl, OCIError *err, OCIThreadHandle *tHnd) {
  if (!zev::enterThreadCall(hndl, err, tHnd)) return OCI_INVALID_HANDLE;
  const bool known = tHnd->tid != 0 && !tHnd->joined;
  if (!known || pthread_join(tHnd->tid, nullptr) != 0) {
    return zev::fail(err, kFailedOperation);
  }
  tHnd->joined = 1;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadClose(void *hndl, OCIError *err, OCIThreadHandle *tHnd) {
  if (!zev::enterThreadCall(hndl, err, tHnd)) return OCI_INVALID_HANDLE;
  if (!tHnd->running) return zev::fail(err, kFailedOperation);
  tHnd->running = 0;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadHandleGet(void *hndl, OCIError *err, OCIThreadHandle *tHnd) {
  if (!zev::enterThreadCall(hndl, err, tHnd)) return OCI_INVALID_HANDLE;
  tHnd->tid = pthread_self();
  tHnd->running = 1;
  tHnd->joined = 0;
  return OCI_SUCCESS;
}

}  // extern "C"
