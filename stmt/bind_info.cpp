#include <cstring>

#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"
#include "stmt/placeholder.h"
#include "zevoci/text.h"

namespace {

/// The program's arrays; each may be null. Answers go to the index of the placeholder's
/// number.
struct InfoArrays {
  ub4 size;
  OraText **names;
  ub1 *nameLengths;
  OraText **indicatorNames;
  ub1 *indicatorLengths;
  ub1 *duplicates;
  OCIBind **binds;
};

template <class T>
void put(T *array, ub4 index, T value) {
  if (array) array[index] = value;
}

/// A copy of a name, in the program's encoding, that lives as long as the environment.
sword giveName(OCIEnv *env, OCIError *errhp, const char *name, ub4 length,
               OraText **out) {
  const zev::EdgeResult edge(env, name, length);
  if (!edge) return edge.fail(errhp);
  const std::size_t room = edge.size() + zev::terminatorSize(env);
  auto *copy = static_cast<OraText *>(AllocateMemFromEnvCache(env, room));
  if (!copy) return zev::fail(errhp, 16506);
  edge.copyInto(copy, room);
  *out = copy;
  return OCI_SUCCESS;
}

sword describe(OCIStmt *stmt, OCIError *errhp, const char *placeholder, ub4 index,
               const InfoArrays &arrays) {
  const auto length = static_cast<ub4>(std::strcspn(placeholder, PLACEHOLDER_DELIMITERS));
  if (arrays.names) {
    const sword status = giveName(zev::parentEnv(stmt), errhp, placeholder + 1,
                                  length - 1, &arrays.names[index]);
    if (status != OCI_SUCCESS) return status;
  }
  put(arrays.nameLengths, index, static_cast<ub1>(length - 1));
  put(arrays.binds, index, find_placeholder_bind_handle(stmt, placeholder, length));
  put<OraText *>(arrays.indicatorNames, index, nullptr);
  put<ub1>(arrays.indicatorLengths, index, 0);
  put<ub1>(arrays.duplicates, index, 0);
  return OCI_SUCCESS;
}

/// Describes the placeholders from number `startloc` on and counts all of them.
sword describeAll(OCIStmt *stmt, OCIError *errhp, ub4 startloc, const InfoArrays &arrays,
                  ub4 &count) {
  for (const char *p = oci_strstr(stmt->stmtText, ":"); p; p = oci_strstr(p + 1, ":")) {
    if (p[1] == '=') continue;
    const ub4 index = count++;
    if (count < startloc || index >= arrays.size) continue;
    const sword status = describe(stmt, errhp, p, index, arrays);
    if (status != OCI_SUCCESS) return status;
  }
  return OCI_SUCCESS;
}

}  // namespace

extern "C" ZEV_API sword OCIStmtGetBindInfo(OCIStmt *stmtp, OCIError *errhp, ub4 size,
                                            ub4 startloc, sb4 *found, OraText *bvnp[],
                                            ub1 bvnl[], OraText *invp[], ub1 inpl[],
                                            ub1 dupl[], OCIBind **hndl) {
  if (!zev::asStmt(stmtp) || !zev::asError(errhp)) return OCI_INVALID_HANDLE;
  OCIEnv *env = zev::parentEnv(stmtp);
  if (!env) return OCI_INVALID_HANDLE;

  return zev::runFrame(
      zev::frame::kStmtGetBindInfo, env, errhp,
      [&](sword &status) {
        ub4 count = 0;
        status = OCI_NO_DATA;
        if (!stmtp->stmtText || !startloc) return zev::Leave::AtOnce;
        const InfoArrays arrays{size, bvnp, bvnl, invp, inpl, dupl, hndl};
        const sword outcome = describeAll(stmtp, errhp, startloc, arrays, count);
        if (outcome != OCI_SUCCESS) status = outcome;
        if (outcome != OCI_SUCCESS || !count) return zev::Leave::AtOnce;
        if (found) *found = static_cast<sb4>(size < count ? size - count : count);
        status = OCI_SUCCESS;
        return zev::Leave::ThroughExitCallbacks;
      },
      stmtp, errhp, size, startloc, found, bvnp, bvnl, invp, inpl, dupl, hndl);
}
