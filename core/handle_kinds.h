/// The one table that knows every kind of handle; each subsystem brings its rows.
#pragma once

#include "zevoci/handle.h"

namespace zev {

using GetAttribute = sword (*)(void *handle, void *value, ub4 *size, ub4 attribute,
                               OCIError *errhp);
using SetAttribute = sword (*)(void *handle, void *value, ub4 size, ub4 attribute,
                               OCIError *errhp);

/// Where a new handle is entered. Pools stand among the children as well.
enum class Registry { Children, Binds, Defines, Pools };

/// The type of kinds that only functions of their own allocate and free.
inline constexpr ub4 kUnpublished = 0;

/// What the library knows about a published handle or descriptor type.
struct HandleKind {
  ub4 type;  ///< OCI_HTYPE_*, OCI_DTYPE_* or kUnpublished
  HandleTag tag;
  void *(*alloc)();
  void (*free)(void *handle);
  GetAttribute get;  ///< null where the kind has no attributes to read
  SetAttribute set;
  Registry registry = Registry::Children;
};

/// The kind of a published type, or null; never one that is kUnpublished.
const HandleKind *findHandleKind(ub4 type);

/// The kind whose handles carry `tag`, or null.
const HandleKind *findHandleKindByTag(ub4 tag);

}  // namespace zev
