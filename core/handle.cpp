#include <cstdlib>

#include "core/env.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "core/handle_kinds.h"
#include "zevoci/encodings.h"
#include "zevoci/statement.h"

namespace {

// The published handle types that the calls look at, whether or not a kind stands behind
// them.

bool isAllocatable(ub4 type) {
  return (type >= OCI_HTYPE_ENV && type <= OCI_HTYPE_TRANS) || type == OCI_HTYPE_SPOOL;
}

bool isFreeable(ub4 type) {
  return isAllocatable(type) && type != OCI_HTYPE_BIND && type != OCI_HTYPE_DEFINE;
}

bool isFreeableTag(ub4 tag) {
  return (tag >= HANDLE_OCIEnv && tag <= HANDLE_OCIStmt) || tag == HANDLE_OCIDescribe ||
         tag == HANDLE_OCITrans || tag == HANDLE_OCISPool;
}

bool isDescriptorType(ub4 type) {
  return type >= OCI_DTYPE_FIRST && type <= 79 && type != 66 && type != 67 && type != 74;
}

bool isOnStatement(ub4 type) {
  return type == OCI_HTYPE_BIND || type == OCI_HTYPE_DEFINE;
}

/// The environment above the parent that a handle of `type` needs; null for a wrong
/// parent.
OCIEnv *envAbove(void *parenth, ub4 type) {
  if (!isOnStatement(type)) return zev::asEnv(parenth);
  const OCIStmt *stmt = zev::asStmt(parenth);
  return stmt ? zev::parentEnv(stmt) : nullptr;
}

bool appendTo(List *&list, void *element) {
  List *longer = lappend(list, element);
  if (!longer) return false;
  list = longer;
  return true;
}

/// Enters a new handle where its owner will find it.
bool enter(const zev::HandleKind &kind, OCIEnv *env, void *parenth, OCIHandle *handle) {
  switch (kind.registry) {
    case zev::Registry::Binds:
      return appendTo(static_cast<OCIStmt *>(parenth)->binds, handle);
    case zev::Registry::Defines:
      return appendTo(static_cast<OCIStmt *>(parenth)->defines, handle);
    case zev::Registry::Pools:
      if (!appendTo(env->sessionPools, handle)) return false;
      break;
    case zev::Registry::Children:
      break;
  }
  return appendTo(env->children, handle);
}

void leave(const zev::HandleKind &kind, OCIEnv *env, void *parenth, OCIHandle *handle) {
  auto *stmt = zev::asStmt(parenth);
  List *&list = kind.registry == zev::Registry::Binds     ? stmt->binds
                : kind.registry == zev::Registry::Defines ? stmt->defines
                                                          : env->children;
  list = list_delete(list, handle);
}

/// A child environment speaks its parent's encoding. Its conversions are its own: each
/// environment closes those it has.
bool inherit(OCIEnv *child, const OCIEnv *parent) {
  child->encoding = parent->encoding;
  child->mode = parent->mode & OCI_OBJECT;
  return !parent->utf16 || zev::openConversions(child, pg_encoding_to_char(kUtf16Le));
}

/// A new handle of `kind` that its owner knows; null when memory runs out.
OCIHandle *makeHandle(const zev::HandleKind &kind, OCIEnv *env, void *parenth) {
  auto *handle = static_cast<OCIHandle *>(kind.alloc());
  if (!handle) return nullptr;
  handle->parenth = parenth;
  OCIEnv *child = zev::asEnv(handle);
  if ((child && !inherit(child, env)) || !enter(kind, env, parenth, handle)) {
    kind.free(handle);
    return nullptr;
  }
  return handle;
}

/// The work that both allocation functions share, on the environment's own error handle.
zev::Leave allocateInFrame(sword &status, const zev::HandleKind &kind, OCIEnv *env,
                           void *parenth, void **out, size_t userSize, void **usrmempp) {
  OCIHandle *handle = makeHandle(kind, env, parenth);
  *out = handle;
  if (!handle) {
    status = zev::fail(env->errh, 16506);
    return zev::Leave::AtOnce;
  }
  if (userSize && !zev::giveUserMemory(handle, userSize, usrmempp)) {
    leave(kind, env, parenth, handle);
    kind.free(handle);
    *out = nullptr;
    status = zev::fail(env->errh, 16506);
    return zev::Leave::AtOnce;
  }
  return zev::Leave::ThroughExitCallbacks;
}

}  // namespace

bool zev::giveUserMemory(OCIHandle *handle, std::size_t requested, void **out) {
  handle->userMem = std::calloc(1, requested);
  if (!handle->userMem) return false;
  handle->userMemSize = requested;
  *out = handle->userMem;
  return true;
}

void zev::freeHandle(OCIHandle *handle) {
  std::free(handle->userMem);
  std::free(handle);
}

extern "C" ZEV_API sword OCIHandleAlloc(const void *parenth, void **hndlpp, ub4 type,
                                        size_t xtramem_sz, void **usrmempp) {
  if (!hndlpp || !parenth || !isAllocatable(type)) return OCI_INVALID_HANDLE;
  void *parent = const_cast<void *>(parenth);
  OCIEnv *env = envAbove(parent, type);
  const zev::HandleKind *kind = zev::findHandleKind(type);
  if (!env || !kind) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kHandleAlloc, env, env->errh,
      [&](sword &status) {
        if (xtramem_sz && !usrmempp) {
          status = zev::fail(env->errh, 16530);
          return zev::Leave::AtOnce;
        }
        return allocateInFrame(status, *kind, env, parent, hndlpp, xtramem_sz, usrmempp);
      },
      parenth, hndlpp, type, xtramem_sz, usrmempp);
}

extern "C" ZEV_API sword OCIHandleFree(void *hndlp, ub4 type) {
  auto *handle = static_cast<OCIHandle *>(hndlp);
  if (!handle || !isFreeable(type) || !isFreeableTag(handle->handleType)) {
    return OCI_INVALID_HANDLE;
  }
  const zev::HandleKind *kind = zev::findHandleKind(type);
  if (!kind) return OCI_INVALID_HANDLE;
  if (!handle->parenth) {
    if (handle->handleType != HANDLE_OCIEnv) return OCI_INVALID_HANDLE;
    kind->free(handle);
    return OCI_SUCCESS;
  }
  OCIEnv *env = zev::parentEnv(handle);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kHandleFree, env, env->errh,
      [&](sword &status) {
        const OCIStmt *stmt = zev::asStmt(handle);
        if (stmt && type == OCI_HTYPE_STMT && stmt->fromPrepare2) {
          status = zev::fail(env->errh, 24436);
          return zev::Leave::AtOnce;
        }
        env->children = list_delete(env->children, handle);
        // Does nothing for a handle of another kind, which has left its environment all
        // the same.
        kind->free(handle);
        return zev::Leave::ThroughExitCallbacks;
      },
      hndlp, type);
}

extern "C" ZEV_API sword OCIDescriptorAlloc(const void *parenth, void **descpp, ub4 type,
                                            size_t xtramem_sz, void **usrmempp) {
  OCIEnv *env = zev::asEnv(parenth);
  if (!descpp || !env || !zev::asError(env->errh)) return OCI_INVALID_HANDLE;
  ClearErrorHandle(env->errh);
  if (xtramem_sz && !usrmempp) return zev::fail(env->errh, 16530);
  if (!isDescriptorType(type)) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kDescriptorAlloc, env, env->errh,
      [&](sword &status) {
        const zev::HandleKind *kind = zev::findHandleKind(type);
        if (!kind) {
          status = OCI_INVALID_HANDLE;
          return zev::Leave::AtOnce;
        }
        return allocateInFrame(status, *kind, env, env, descpp, xtramem_sz, usrmempp);
      },
      parenth, descpp, type, xtramem_sz, usrmempp);
}

extern "C" ZEV_API sword OCIDescriptorFree(void *descp, ub4 type) {
  auto *descriptor = static_cast<OCIHandle *>(descp);
  const zev::HandleKind *kind =
      isDescriptorType(type) ? zev::findHandleKind(type) : nullptr;
  if (!descriptor || !kind || type == OCI_DTYPE_LOB ||
      descriptor->handleType != kind->tag) {
    return OCI_INVALID_HANDLE;
  }
  OCIEnv *env = zev::parentEnv(descriptor);
  if (!env) return OCI_INVALID_HANDLE;
  env->children = list_delete(env->children, descriptor);
  kind->free(descriptor);
  return OCI_SUCCESS;
}
