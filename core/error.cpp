#include <libintl.h>

#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/memory_cache.h"
#include "core/owned.h"
#include "zevoci/connection.h"
#include "zevoci/errors.h"
#include "zevoci/text.h"
#include "zevoci/trace.h"

namespace {

constexpr sword kNotAdded = OCI_INVALID_HANDLE;
constexpr std::size_t kWorkingText = 1024;
constexpr const char *kNullResult = "Unexpected NULL PGresult";

char *copyOf(const char *text) {
  return text ? makeString(text, std::strlen(text)) : nullptr;
}

/// Appends a record of these fields; the texts are copied. 0, or -2 when it cannot be
/// added.
sword append(OCIError *errhp, ErrorRecord fields, const char *msg,
             const char *pgMsg = nullptr) {
  auto *record = static_cast<ErrorRecord *>(std::malloc(sizeof(ErrorRecord)));
  if (!record) return kNotAdded;
  *record = fields;
  record->msg = copyOf(msg);
  record->pg_msg = copyOf(pgMsg);
  List *longer = lappend(errhp->records, record);
  if (!longer) {
    std::free(record->msg);
    std::free(record->pg_msg);
    std::free(record);
    return kNotAdded;
  }
  errhp->records = longer;
  finishErr(record, errhp);
  return 0;
}

/// No connection may still send its notices to `errhp`.
void forgetNotices(const OCIError *errhp) {
  const OCIEnv *env = zev::asEnv(errhp->parenth);
  if (!env) return;
  for (OCIHandle *child : zev::Elements<OCIHandle>(env->children)) {
    const OCIServer *server = zev::asServer(child);
    if (server && server->conn) zev::NoticeScope::quieten(server->conn);
  }
}

sword appendServerError(OCIError *errhp, sb4 severity, const char *sqlstate, sb4 code,
                        const char *msg, const char *pgMsg) {
  ErrorRecord fields{
      .content = kHasSeverity | kHasErrcode | kHasMsg | kHasSqlstate | kHasPgMsg,
      .severity = severity,
      .errcode = code};
  std::memcpy(fields.sqlstate, sqlstate, 5);
  fields.sqlstate[5] = '\0';
  return append(errhp, fields, msg, pgMsg);
}

/// Puts `filler` in the place of the first "%s"; false when there is none to fill. What
/// does not fit is cut.
bool fillPlaceholder(char (&working)[kWorkingText], const char *filler) {
  const char *placeholder = oci_strstr(working, "%s");
  if (!placeholder || placeholder == working) return false;
  char rest[kWorkingText];
  std::strcpy(rest, placeholder + 2);
  const auto before = static_cast<std::size_t>(placeholder - working);
  std::snprintf(working + before, sizeof working - before, "%s%s", filler, rest);
  return true;
}

}  // namespace

extern "C" {

OCIError *Alloc_OCIError() {
  return zev::allocHandle<OCIError>(HANDLE_OCIError);
}

void Free_OCIError(OCIError *errhp) {
  if (!zev::asError(errhp)) return;
  forgetNotices(errhp);
  ClearErrorHandle(errhp);
  zev::freeHandle(errhp);
}

const char *oci_gettext(const char *text) {
  return dcgettext(nullptr, text, LC_MESSAGES);
}

void ClearErrorHandle(OCIError *errhp) {
  if (!zev::asError(errhp)) return;
  errhp->noticeStatus = OCI_SUCCESS;
  for (ErrorRecord *record : zev::Elements<ErrorRecord>(errhp->records)) {
    if (record->content & kHasMsg) std::free(record->msg);
    if (record->content & kHasPgMsg) std::free(record->pg_msg);
  }
  zev::freeListAndMembers(errhp->records);
}

sword AddErrorRecord(OCIError *errhp, sb4 severity, sb4 code) {
  if (!zev::asError(errhp)) return OCI_INVALID_HANDLE;
  return append(
      errhp,
      {.content = kHasSeverity | kHasErrcode, .severity = severity, .errcode = code},
      nullptr);
}

sword AddErrorRecord_MSG(OCIError *errhp, sb4 severity, sb4 code) {
  return AddErrorRecord(errhp, severity, code);
}

sword AddErrorRecord2(OCIError *errhp, sb4 severity, sb4 code, const char *text) {
  if (!zev::asError(errhp)) return OCI_INVALID_HANDLE;
  return append(errhp,
                {.content = kHasSeverity | kHasErrcode | kHasMsg,
                 .severity = severity,
                 .errcode = code},
                text);
}

sword AddErrorRecordMsg(OCIError *errhp, sb4 severity, const char *text) {
  if (!zev::asError(errhp)) return OCI_INVALID_HANDLE;
  return append(errhp,
                {.content = kHasSeverity | kHasMsg, .severity = severity, .errcode = -1},
                text);
}

sword AddErrorRecordStringX(OCIError *errhp, sb4 severity, sb4 code, int count, ...) {
  if (!zev::asError(errhp)) return OCI_INVALID_HANDLE;
  char working[kWorkingText];
  std::snprintf(working, sizeof working, "%s", o2pGetErrorText(code));
  std::va_list strings;
  va_start(strings, count);
  for (int i = 0; i < count; ++i) {
    if (!fillPlaceholder(working, va_arg(strings, const char *))) break;
  }
  va_end(strings);
  return AddErrorRecord2(errhp, severity, code, working);
}

sword AddPGErrorRecord(OCIError *errhp, sb4 severity, const PGresult *result) {
  if (!errhp) return OCI_ERROR;
  if (!zev::asError(errhp)) return OCI_INVALID_HANDLE;
  if (!result)
    return appendServerError(errhp, severity, "08P01", 0, kNullResult, kNullResult);

  const char *sqlstate = PQresultErrorField(result, PG_DIAG_SQLSTATE);
  if (!sqlstate || std::strlen(sqlstate) != 5 || std::strncmp(sqlstate, "08", 2) == 0) {
    return append(errhp, {.content = kHasMsg}, "Unexpected error");
  }
  const sb4 code = zev::oracleCodeOf(zev::encodeSqlstate(sqlstate));
  const char *words = PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY);
  return appendServerError(errhp, severity, sqlstate, code,
                           code ? o2pGetErrorText(code) : words, words);
}

void finishErr(const ErrorRecord *record, const OCIError *errhp) {
  if (!zev::tracing(kTraceErrors)) return;
  ocitrace(kTraceErrors, "finishErr", "raising error on handle(%p)\n",
           static_cast<const void *>(errhp));
  const auto has = [record](ErrorContent field) { return record->content & field; };
  if (has(kHasSeverity))
    ocitrace(kTraceErrors, "", "  severity = %d\n", record->severity);
  if (has(kHasErrcode)) ocitrace(kTraceErrors, "", "  errcode  = %d\n", record->errcode);
  if (has(kHasMsg)) ocitrace(kTraceErrors, "", "  msg      = %s\n", record->msg);
  if (has(kHasSqlstate))
    ocitrace(kTraceErrors, "", "  sqlstate = %s\n", record->sqlstate);
  if (has(kHasPgMsg)) ocitrace(kTraceErrors, "", "  pg_msg   = %s\n", record->pg_msg);
}

void OCINoticeHandler(void *errhp, const char *message) {
  OCIError *handle = zev::asError(errhp);
  if (!handle) return;
  handle->noticeStatus = OCI_SUCCESS_WITH_INFO;
  AddErrorRecordMsg(handle, OCI_SUCCESS_WITH_INFO, message);
}

}  // extern "C"

sword zev::failConversion(OCIError *errhp, sword status, int error) {
  AddErrorRecordMsg(
      errhp, status,
      error == EINVAL
          ? "An incomplete multibyte sequence has been encountered in the input"
      : error == EILSEQ
          ? "An invalid multibyte sequence has been encountered in the input"
          : "Error in byte conversion");
  return OCI_ERROR;
}
