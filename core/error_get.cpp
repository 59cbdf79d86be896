#include <algorithm>
#include <cstring>
#include <iterator>

#include "core/edge_text.h"
#include "core/frame.h"
#include "core/frame_rows.h"

namespace {

/// The record that a reading call asks for.
struct Wanted {
  OCIEnv *env = nullptr;
  OCIError *errhp = nullptr;
  sword status = OCI_SUCCESS;
};

Wanted findErrorHandle(void *hndlp, ub4 type) {
  Wanted wanted;
  wanted.env = zev::climbToEnv(hndlp);
  if (!wanted.env) {
    wanted.status = OCI_INVALID_HANDLE;
    return wanted;
  }
  wanted.errhp = zev::asError(type == OCI_HTYPE_ERROR ? hndlp : wanted.env->errh);
  if (!wanted.errhp) wanted.status = OCI_ERROR;
  return wanted;
}

const ErrorRecord *recordAt(const OCIError *errhp, ub4 recordno) {
  return static_cast<const ErrorRecord *>(list_nth(errhp->records, recordno - 1));
}

/// Copies at most `size` - 1 bytes of `text` and a zero byte.
void copyTerminated(OraText *out, ub4 size, std::string_view text) {
  const std::size_t n = std::min<std::size_t>(text.size(), size - 1);
  std::memcpy(out, text.data(), n);
  out[n] = '\0';
}

/// Puts `text` into the program's buffer in its encoding; OCI_ERROR when it cannot be
/// converted. A text without length leaves the buffer alone.
sword giveText(const Wanted &wanted, OraText *bufp, ub4 bufsiz, const char *text) {
  if (!bufp || !bufsiz || !text) return OCI_SUCCESS;
  const zev::EdgeResult converted(wanted.env, text, std::strlen(text));
  if (!converted) return converted.fail(wanted.errhp);
  if (converted.size()) copyTerminated(bufp, bufsiz, converted.view());
  return OCI_SUCCESS;
}

}  // namespace

extern "C" ZEV_API sword OCIErrorGet(void *hndlp, ub4 recordno, OraText *sqlstate,
                                     sb4 *errcodep, OraText *bufp, ub4 bufsiz, ub4 type) {
  if (!hndlp || !recordno || !errcodep) return OCI_ERROR;
  const Wanted wanted = findErrorHandle(hndlp, type);
  if (wanted.status != OCI_SUCCESS) return wanted.status;

  return zev::runFrame(
      zev::frame::kErrorGet, wanted.env, wanted.errhp,
      [&](sword &status) {
        const ErrorRecord *errinfo = recordAt(wanted.errhp, recordno);
        if (!errinfo) {
          status = OCI_NO_DATA;
          return zev::Leave::ThroughExitCallbacks;
        }
        ZEV_ASSERT(errinfo->content & (kHasErrcode | kHasMsg),
                   "errinfo->content & (0x0002 | 0x0004)");
        *errcodep = errinfo->content & kHasErrcode ? errinfo->errcode : 0;
        const char *text =
            errinfo->content & kHasMsg ? errinfo->msg : o2pGetErrorText(*errcodep);
        if (giveText(wanted, bufp, bufsiz, text) != OCI_SUCCESS) {
          status = OCI_ERROR;
          return zev::Leave::AtOnce;
        }
        return zev::Leave::ThroughExitCallbacks;
      },
      hndlp, recordno, sqlstate, errcodep, bufp, bufsiz, type);
}

extern "C" ZEV_API sword OCIPGErrorGet(void *hndlp, ub4 recordno, OraText *sqlstate,
                                       ub4 sqlstatesiz, OraText *bufp, ub4 bufsiz,
                                       ub4 type) {
  if (!hndlp || !recordno || !sqlstate) return OCI_ERROR;
  const Wanted wanted = findErrorHandle(hndlp, type);
  if (wanted.status != OCI_SUCCESS) return wanted.status;

  const ErrorRecord *errinfo = recordAt(wanted.errhp, recordno);
  if (!errinfo || !(errinfo->content & (kHasSqlstate | kHasPgMsg))) return OCI_NO_DATA;
  if (errinfo->content & kHasPgMsg &&
      giveText(wanted, bufp, bufsiz, errinfo->pg_msg) != OCI_SUCCESS) {
    return OCI_ERROR;
  }
  if (errinfo->content & kHasSqlstate && sqlstatesiz) {
    copyTerminated(sqlstate, sqlstatesiz, errinfo->sqlstate);
  }
  return OCI_SUCCESS;
}
