#include <ociap.h>

#include <cstdlib>

#include "services/thread_object.h"

namespace {

constexpr sb4 kFailedOperation = 30135;

using Entries = zev::Elements<KeyDestructorEntry>;

List *entriesOfThisThread() {
  return static_cast<List *>(pthread_getspecific(g_ThreadKeyDestructorListIndex));
}

/// False when memory runs out, which only a thread's first list can meet.
bool setEntries(List *entries) {
  return pthread_setspecific(g_ThreadKeyDestructorListIndex, entries) == 0;
}

/// This thread's list, which it no longer has.
List *takeEntries() {
  List *entries = entriesOfThisThread();
  if (entries) setEntries(nullptr);
  return entries;
}

/// Frees the list of a thread that ends without running its destructors: one that the
/// program made by other means.
struct ListKeeper {
  ~ListKeeper() {
    List *entries = takeEntries();
    free_list_members(entries);
    list_free(entries);
  }
};

void keepUntilThreadEnds() {
  thread_local ListKeeper keeper;
  static_cast<void>(&keeper);
}

KeyDestructorEntry *findEntry(const List *entries, pthread_key_t key) {
  for (KeyDestructorEntry *entry : Entries(entries)) {
    if (entry->key == key) return entry;
  }
  return nullptr;
}

/// The list's first entry; false when memory runs out.
bool addFirstEntry(const KeyDestructorEntry &wanted) {
  auto *entry = static_cast<KeyDestructorEntry *>(std::malloc(sizeof wanted));
  List *entries = entry ? lappend(nullptr, entry) : nullptr;
  if (!entries || !setEntries(entries)) {
    list_free(entries);
    std::free(entry);
    return false;
  }
  *entry = wanted;
  keepUntilThreadEnds();
  return true;
}

/// Enters a value for its destructor, or takes it out for a null value. A key that has
/// no entry in a list that is not empty acts on the last entry, whichever key that is
/// of: with several keys a thread keeps the destructor of the one set last.
bool recordValue(const KeyDestructorEntry &wanted) {
  List *entries = entriesOfThisThread();
  if (!entries) return !wanted.value || addFirstEntry(wanted);
  KeyDestructorEntry *entry = findEntry(entries, wanted.key);
  if (!entry) entry = static_cast<KeyDestructorEntry *>(list_tail(entries)->data);
  if (wanted.value) {
    *entry = wanted;
    return true;
  }
  setEntries(list_delete(entries, entry));
  std::free(entry);
  return true;
}

}  // namespace

void zev::runKeyDestructors() {
  // Out of the thread's reach first: a destructor may set keys itself.
  List *entries = takeEntries();
  for (KeyDestructorEntry *entry : Entries(entries)) {
    if (entry->value) entry->destructor(entry->value);
    std::free(entry);
  }
  list_free(entries);
}

extern "C" {

OCIThreadKey *Alloc_OCIThreadKey() {
  auto *key = zev::allocHandle<OCIThreadKey>(HANDLE_OCIThreadKey);
  if (key) key->key = zev::kNoThreadKey;
  return key;
}

void Free_OCIThreadKey(OCIThreadKey *key) {
  if (!zev::isThreadObject(key)) return;
  if (key->key != zev::kNoThreadKey) pthread_key_delete(key->key);
  zev::freeHandle(key);
}

ZEV_API sword OCIThreadKeyInit(void *hndl, OCIError *err, OCIThreadKey **key,
                               OCIThreadKeyDestFunc destFn) {
  const sword status = zev::makeThreadObject(hndl, err, key);
  if (status != OCI_SUCCESS) return status;
  pthread_key_t made;
  if (pthread_key_create(&made, nullptr) != 0) {
    zev::dropThreadObject(key);
    return zev::fail(err, kFailedOperation);
  }
  (*key)->destructor = destFn;
  (*key)->key = made;
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadKeyDestroy(void *hndl, OCIError *err, OCIThreadKey **key) {
  return zev::destroyThreadObject(hndl, err, key);
}

ZEV_API sword OCIThreadKeyGet(void *hndl, OCIError *err, OCIThreadKey *key,
                              void **pValue) {
  if (!pValue || !zev::enterThreadCall(hndl, err, key)) return OCI_INVALID_HANDLE;
  *pValue = pthread_getspecific(key->key);
  return OCI_SUCCESS;
}

ZEV_API sword OCIThreadKeySet(void *hndl, OCIError *err, OCIThreadKey *key, void *value) {
  if (!zev::enterThreadCall(hndl, err, key)) return OCI_INVALID_HANDLE;
  if (key->destructor && !recordValue({key->key, key->destructor, value})) {
    return zev::fail(err, 16506);
  }
  return pthread_setspecific(key->key, value) == 0 ? OCI_SUCCESS
                                                   : zev::fail(err, kFailedOperation);
}

}  // extern "C"
