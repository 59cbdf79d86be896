/// Threads, their identities, mutexes and thread-specific values as handles.
#pragma once

#include <pthread.h>

#include "zevoci/handle.h"

/// The identity of a thread; 0 is that of none.
struct OCIThreadId : OCIHandle {
  pthread_t tid;
};

/// A thread that OCIThreadCreate starts, or the one that OCIThreadHandleGet found.
struct OCIThreadHandle : OCIHandle {
  void (*proc)(void *);
  void *arg;
  pthread_t tid;
  ub1 running;  ///< 1 from the start of the thread until OCIThreadClose
  ub1 joined;   ///< 1 once OCIThreadJoin has waited: the system has forgotten `tid`
};

struct OCIThreadMutex : OCIHandle {
  pthread_mutex_t mutex;
};

/// A value that each thread has for itself.
struct OCIThreadKey : OCIHandle {
  OCIThreadKeyDestFunc destructor;  ///< null for none
  pthread_key_t key;                ///< kNoThreadKey until the system has given one
};

/// A value that this thread gives to a destructor at its end.
struct KeyDestructorEntry {
  pthread_key_t key;
  OCIThreadKeyDestFunc destructor;
  void *value;
};

extern "C" {
/// Key of the list of KeyDestructorEntry of each thread; all bits set until the first
/// environment is made. The system runs no destructor for it.
extern ZEV_HELPER pthread_key_t g_ThreadKeyDestructorListIndex;

ZEV_HELPER OCIThreadId *Alloc_OCIThreadId();
ZEV_HELPER OCIThreadHandle *Alloc_OCIThreadHandle();
ZEV_HELPER OCIThreadMutex *Alloc_OCIThreadMutex();
ZEV_HELPER OCIThreadKey *Alloc_OCIThreadKey();

/// Like their sisters these do nothing for null and for a handle of another tag. They
/// leave the environment's list of children alone.
ZEV_HELPER void Free_OCIThreadId(OCIThreadId *id);
ZEV_HELPER void Free_OCIThreadHandle(OCIThreadHandle *thread);
/// Unlocks the mutex, whoever holds it, before it is destroyed.
ZEV_HELPER void Free_OCIThreadMutex(OCIThreadMutex *mutex);
/// Gives the system's key back. No destructor runs.
ZEV_HELPER void Free_OCIThreadKey(OCIThreadKey *key);

/// The start routine of threads made by OCIThreadCreate: runs `proc` of the
/// OCIThreadHandle `thread`, then the destructors of the keys that this thread has set.
/// Returns null.
ZEV_HELPER void *ThreadProc(void *thread);
}

namespace zev {

inline constexpr pthread_key_t kNoThreadKey = ~pthread_key_t{0};

/// Gives each value of this thread's destructor list to its destructor and frees the
/// list.
void runKeyDestructors();

}  // namespace zev
