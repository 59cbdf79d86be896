/// The common header of all handles, the environment, the error handle, and what they
/// share.
#pragma once

#include <iconv.h>
#include <oci.h>

#include <cstddef>
#include <cstdint>

#include "zevoci/api.h"
#include "zevoci/list.h"

/// Internal tags of handles. They are not the published OCI_HTYPE_* numbers.
enum HandleTag : ub4 {
  HANDLE_OCIEnv = 1,
  HANDLE_OCIError = 2,
  HANDLE_OCISvcCtx = 3,
  HANDLE_OCISession = 4,
  HANDLE_OCIServer = 5,
  HANDLE_OCIBind = 6,
  HANDLE_OCIDefine = 7,
  HANDLE_OCIStmt = 8,
  HANDLE_OCIParam = 9,
  HANDLE_OCIDescribe = 10,
  HANDLE_OCIDateTime = 11,
  HANDLE_OCITrans = 12,
  HANDLE_OCIThreadId = 13,
  HANDLE_OCIThreadHandle = 14,
  HANDLE_OCIThreadMutex = 15,
  HANDLE_OCIThreadKey = 16,
  HANDLE_OCIInterval = 17,
  HANDLE_OCISPool = 18,
  HANDLE_OCILobLocator = 19,
};

/// The first fields of every handle and descriptor. The tag is the only proof of a
/// handle's kind.
struct OCIHandle {
  ub4 handleType;
  void *parenth;  ///< environment, or the statement of a bind or define; may be null
  std::uint64_t userMemSize;  ///< bytes in userMem
  void *userMem;              ///< the program's block, owned by the handle
};

struct OCIError;
struct UcbList;

/// Number of slots in a table of user callbacks, indexed by OCI function code.
inline constexpr int kUcbSlots = 153;

/// The environment: owner of every top-level handle and descriptor below it.
struct OCIEnv : OCIHandle {
  ub4 mode;
  OCIError *errh;      ///< takes the failures of calls that have no error handle
  List *children;      ///< OCIHandle, in order of allocation
  List *memCache;      ///< blocks of AllocateMemFromEnvCache
  List *sessionPools;  ///< OCISPool, which stand in children as well
  ub1 threadsInitialised;
  ub1 oracleVarchars;  ///< 1 while empty text and null are the same
  UcbList *entryUcbs[kUcbSlots];
  UcbList *replaceUcbs[kUcbSlots];
  UcbList *exitUcbs[kUcbSlots];
  sb4 encoding;    ///< the library's number of the client encoding
  ub1 utf16;       ///< 1 while text crosses the interface in UTF-16
  iconv_t toUtf8;  ///< open while utf16 is 1
  iconv_t fromUtf8;
  List *spareList;         ///< freed, with its elements, with the environment
  List *contextValues;     ///< of OCIContextSetValue; each element is one block
  ub1 filesInitialised;    ///< 1 from OCIFileInit to OCIFileTerm
  List *descriptorArrays;  ///< of OCIArrayDescriptorAlloc; each element is one block
};

/// An error handle: the records of the last call, and scratch text.
struct OCIError : OCIHandle {
  List *records;           ///< ErrorRecord, owned
  char scratchText[1028];  ///< text that some calls format and nobody reads
  sword noticeStatus;      ///< OCI_SUCCESS_WITH_INFO after a server notice, until taken
};

namespace zev {

/// `handle` as a `T` when it is non-null and carries `tag`, else null.
template <class T>
T *checked(const void *handle, HandleTag tag) {
  auto *header = static_cast<const OCIHandle *>(handle);
  if (!header || header->handleType != tag) return nullptr;
  return static_cast<T *>(const_cast<OCIHandle *>(header));
}

inline OCIEnv *asEnv(const void *h) {
  return checked<OCIEnv>(h, HANDLE_OCIEnv);
}
inline OCIError *asError(const void *h) {
  return checked<OCIError>(h, HANDLE_OCIError);
}

/// The environment that is the direct parent of `handle`, or null.
inline OCIEnv *parentEnv(const OCIHandle *handle) {
  return asEnv(handle->parenth);
}

/// The nearest environment at or above `handle`, or null.
OCIEnv *climbToEnv(const void *handle);

/// `requested` bytes of zeroed memory for the program, stored in the header of `handle`
/// and in
/// `*out`; false when memory runs out.
bool giveUserMemory(OCIHandle *handle, std::size_t requested, void **out);

/// Zeroed memory for a record of type `T` with `tag`, from the system allocator; null
/// when out.
template <class T>
T *allocHandle(HandleTag tag);

/// Frees the header's user block and the handle itself.
void freeHandle(OCIHandle *handle);

}  // namespace zev

#include <cstdlib>

template <class T>
T *zev::allocHandle(HandleTag tag) {
  auto *handle = static_cast<T *>(std::calloc(1, sizeof(T)));
  if (handle) handle->handleType = tag;
  return handle;
}

extern "C" {
ZEV_HELPER OCIEnv *Alloc_OCIEnv();
ZEV_HELPER void Free_OCIEnv(OCIEnv *env);
ZEV_HELPER sword Get_OCIEnv(OCIEnv *env, void *value, ub4 *size, ub4 attribute,
                            OCIError *errhp);
ZEV_HELPER sword Set_OCIEnv(OCIEnv *env, void *value, ub4 size, ub4 attribute,
                            OCIError *errhp);
ZEV_HELPER OCIError *Alloc_OCIError();
ZEV_HELPER void Free_OCIError(OCIError *errhp);

/// A block of `size` bytes, not zeroed, that lives until the environment is freed. Null
/// for a wrong tag, a `size` of 0, and when memory runs out.
ZEV_HELPER void *AllocateMemFromEnvCache(OCIEnv *env, std::size_t size);
ZEV_HELPER void FreeMemFromEnvCache(OCIEnv *env);
}
