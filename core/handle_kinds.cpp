#include "core/handle_kinds.h"

#include <algorithm>
#include <iterator>

#include "zevoci/connection.h"
#include "zevoci/datetime.h"
#include "zevoci/lob_locator.h"
#include "zevoci/parameter.h"
#include "zevoci/session_pool.h"
#include "zevoci/statement.h"
#include "zevoci/threads.h"
#include "zevoci/transaction.h"

namespace zev {
namespace {

/// The allocation and release of a kind, behind untyped pointers.
template <auto Alloc>
void *allocate() {
  return Alloc();
}

/// The same for a descriptor that knows which of several types it is of.
template <auto Alloc, ub4 Type>
void *allocateTyped() {
  return Alloc(Type);
}

template <class T, void (*Free)(T *)>
void release(void *handle) {
  Free(static_cast<T *>(handle));
}

template <class T, sword (*Get)(T *, void *, ub4 *, ub4, OCIError *)>
sword read(void *handle, void *value, ub4 *size, ub4 attribute, OCIError *errhp) {
  return Get(static_cast<T *>(handle), value, size, attribute, errhp);
}

template <class T, sword (*Set)(T *, void *, ub4, ub4, OCIError *)>
sword write(void *handle, void *value, ub4 size, ub4 attribute, OCIError *errhp) {
  return Set(static_cast<T *>(handle), value, size, attribute, errhp);
}

// clang-format off
#define KIND(type, T) type, HANDLE_##T, allocate<Alloc_##T>, release<T, Free_##T>
#define ATTRIBUTES(T) read<T, Get_##T>, write<T, Set_##T>
#define READABLE(T) read<T, Get_##T>, nullptr
#define WRITABLE(T) nullptr, write<T, Set_##T>
#define TYPED(type, T) \
  {type, HANDLE_##T, allocateTyped<Alloc_##T, type>, release<T, Free_##T>, nullptr, nullptr}
constexpr HandleKind kKinds[] = {
    {KIND(OCI_HTYPE_ENV,     OCIEnv),     ATTRIBUTES(OCIEnv)},
    {KIND(OCI_HTYPE_ERROR,   OCIError),   nullptr, nullptr},
    {KIND(OCI_HTYPE_SVCCTX,  OCISvcCtx),  ATTRIBUTES(OCISvcCtx)},
    {KIND(OCI_HTYPE_STMT,    OCIStmt),    ATTRIBUTES(OCIStmt)},
    {KIND(OCI_HTYPE_BIND,    OCIBind),    ATTRIBUTES(OCIBind),    Registry::Binds},
    {KIND(OCI_HTYPE_DEFINE,  OCIDefine),  ATTRIBUTES(OCIDefine),  Registry::Defines},
    {KIND(OCI_HTYPE_SERVER,  OCIServer),  ATTRIBUTES(OCIServer)},
    {KIND(OCI_HTYPE_SESSION, OCISession), ATTRIBUTES(OCISession)},
    {KIND(OCI_HTYPE_TRANS,   OCITrans),   ATTRIBUTES(OCITrans)},
    {KIND(OCI_HTYPE_DESCRIBE, OCIDescribe), READABLE(OCIDescribe)},
    {KIND(OCI_HTYPE_SPOOL,  OCISPool),    WRITABLE(OCISPool),     Registry::Pools},
    {KIND(OCI_DTYPE_PARAM,   OCIParam),   READABLE(OCIParam)},
    {KIND(OCI_DTYPE_LOB,     OCILobLocator), nullptr, nullptr},
    TYPED(OCI_DTYPE_INTERVAL_YM,   OCIInterval),
    TYPED(OCI_DTYPE_INTERVAL_DS,   OCIInterval),
    TYPED(OCI_DTYPE_DATE,          OCIDateTime),
    TYPED(OCI_DTYPE_TIMESTAMP,     OCIDateTime),
    TYPED(OCI_DTYPE_TIMESTAMP_TZ,  OCIDateTime),
    TYPED(OCI_DTYPE_TIMESTAMP_LTZ, OCIDateTime),
    {KIND(kUnpublished,      OCIThreadId),     nullptr, nullptr},
    {KIND(kUnpublished,      OCIThreadHandle), nullptr, nullptr},
    {KIND(kUnpublished,      OCIThreadMutex),  nullptr, nullptr},
    {KIND(kUnpublished,      OCIThreadKey),    nullptr, nullptr},
};
#undef TYPED
#undef WRITABLE
#undef READABLE
#undef ATTRIBUTES
#undef KIND
// clang-format on

}  // namespace

const HandleKind *findHandleKind(ub4 type) {
  if (type == kUnpublished) return nullptr;
  const auto *kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                  [type](const HandleKind &k) { return k.type == type; });
  return kind != std::end(kKinds) ? kind : nullptr;
}

const HandleKind *findHandleKindByTag(ub4 tag) {
  const auto *kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                  [tag](const HandleKind &k) { return k.tag == tag; });
  return kind != std::end(kKinds) ? kind : nullptr;
}

}  // namespace zev
