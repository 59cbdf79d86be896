/// The cursor attributes that servers and statements share.
#pragma once

#include "core/attribute_value.h"
#include "zevoci/errors.h"

namespace zev {

/// Which object a SELECT opens on the server.
enum CursorStrategy : ub4 {
  kStrategyInherited = 0,
  kStrategyDeclared = 1,
  kStrategyPortal = 2
};

/// What surrounds the declaration of a cursor.
enum HoldPolicy : ub4 { kHoldInherited = 0, kHoldPlain = 5, kHoldCommitted = 6 };

/// Stores ZEVOCI_ATTR_CURSOR_STRATEGY in `strategy`; record 24328 for an unknown one.
inline sword storeCursorStrategy(ub4 &strategy, const void *value, OCIError *errhp) {
  const auto wanted = takeAttribute<ub4>(value);
  if (wanted > kStrategyPortal) return fail(errhp, 24328);
  strategy = wanted;
  return OCI_SUCCESS;
}

/// Stores ZEVOCI_ATTR_HOLD_POLICY in `policy`; record 24328 for an unknown one.
inline sword storeHoldPolicy(ub4 &policy, const void *value, OCIError *errhp) {
  const auto wanted = takeAttribute<ub4>(value);
  if (wanted != kHoldInherited && wanted != kHoldPlain && wanted != kHoldCommitted) {
    return fail(errhp, 24328);
  }
  policy = wanted;
  return OCI_SUCCESS;
}

}  // namespace zev
