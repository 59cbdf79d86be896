/// Error records: adding, clearing, and the texts behind Oracle numbers.
#pragma once

#include <libpq-fe.h>

#include <string_view>

#include "zevoci/handle.h"

/// Which fields of a record are set.
enum ErrorContent : ub4 {
  kHasSeverity = 0x01,
  kHasErrcode = 0x02,
  kHasMsg = 0x04,
  kHasSqlstate = 0x08,
  kHasPgMsg = 0x10,
};

/// One failure. Fields not named by `content` are undefined.
struct ErrorRecord {
  ub4 content;
  sb4 severity;      ///< the status given, nearly always OCI_ERROR
  sb4 errcode;       ///< Oracle number; 0 for an unmapped server error, -1 for bare text
  char *msg;         ///< owned; null where the catalogue's text is meant
  char sqlstate[6];  ///< five characters and a terminator
  char *pg_msg;      ///< owned; the server's primary message
};

extern "C" {
/// Appends a record with the catalogue's text. Like its sisters: 0, or -2 for a null or
/// wrong handle.
ZEV_HELPER sword AddErrorRecord(OCIError *errhp, sb4 severity, sb4 code);
ZEV_HELPER sword AddErrorRecord_MSG(OCIError *errhp, sb4 severity, sb4 code);
/// With a text of its own instead of the catalogue's.
ZEV_HELPER sword AddErrorRecord2(OCIError *errhp, sb4 severity, sb4 code,
                                 const char *text);
/// With a text only, number -1 in the record; OCIErrorGet reads 0.
ZEV_HELPER sword AddErrorRecordMsg(OCIError *errhp, sb4 severity, const char *text);
/// With the catalogue's text, its "%s" filled from `count` further strings in order. A
/// placeholder in single quotes, and one at the very start, stays as it is.
ZEV_HELPER sword AddErrorRecordStringX(OCIError *errhp, sb4 severity, sb4 code, int count,
                                       ...);
/// From a failed server result, or from none at all. -1 for a null handle.
ZEV_HELPER sword AddPGErrorRecord(OCIError *errhp, sb4 severity, const PGresult *result);
/// Forgets all records; does nothing for a null or wrong handle.
ZEV_HELPER void ClearErrorHandle(OCIError *errhp);
/// Traces a record that was added.
ZEV_HELPER void finishErr(const ErrorRecord *record, const OCIError *errhp);
/// The catalogue's text for an Oracle number, translated; "UNKNOWN ERROR CODE" for
/// others.
ZEV_HELPER const char *o2pGetErrorText(sb4 code);
/// Orders two rows of the SQLSTATE map, for qsort.
ZEV_HELPER int compare_sqlstate(const void *a, const void *b);
/// `text` in the library's message domain.
ZEV_HELPER const char *oci_gettext(const char *text);
/// Notice processor of libpq: adds `message` to the error handle `errhp` as a record of
/// status 1 and marks the handle.
ZEV_HELPER void OCINoticeHandler(void *errhp, const char *message);
}

namespace zev {

/// Encodes a SQLSTATE of five characters by the server's rule: six bits each, first one
/// lowest.
sb4 encodeSqlstate(const char *sqlstate);

/// The Oracle number for an encoded SQLSTATE; 0 when there is none.
sb4 oracleCodeOf(sb4 encodedSqlstate);

/// Record `code` on `errhp` and return OCI_ERROR, so that a failing path is one line.
inline sword fail(OCIError *errhp, sb4 code) {
  AddErrorRecord(errhp, OCI_ERROR, code);
  return OCI_ERROR;
}
/// With `text` in place of the catalogue's.
inline sword fail(OCIError *errhp, sb4 code, const char *text) {
  AddErrorRecord2(errhp, OCI_ERROR, code, text);
  return OCI_ERROR;
}

/// Forgets earlier records, then records 21560: argument `number` of the call is missing.
/// Returns OCI_ERROR.
inline sword failArgument(OCIError *errhp, const char *number) {
  ClearErrorHandle(errhp);
  AddErrorRecordStringX(errhp, OCI_ERROR, 21560, 1, number);
  return OCI_ERROR;
}
/// A text without a number.
inline sword failWithText(OCIError *errhp, const char *text) {
  AddErrorRecordMsg(errhp, OCI_ERROR, text);
  return OCI_ERROR;
}
/// What the server said.
inline sword failFromServer(OCIError *errhp, const PGresult *result) {
  AddPGErrorRecord(errhp, OCI_ERROR, result);
  return OCI_ERROR;
}

/// Whether a notice came in since the last call; forgets it.
inline bool takeNotice(OCIError *errhp) {
  const bool marked = errhp->noticeStatus == OCI_SUCCESS_WITH_INFO;
  errhp->noticeStatus = OCI_SUCCESS;
  return marked;
}

/// takeNotice as a status: OCI_SUCCESS_WITH_INFO or OCI_SUCCESS.
inline sword noticeStatus(OCIError *errhp) {
  return takeNotice(errhp) ? OCI_SUCCESS_WITH_INFO : OCI_SUCCESS;
}

/// Whether a status lets the work go on, with or without something recorded.
inline bool isSuccess(sword status) {
  return status == OCI_SUCCESS || status == OCI_SUCCESS_WITH_INFO;
}

/// Records a failed conversion of text at the interface by its errno and returns
/// OCI_ERROR.
sword failConversion(OCIError *errhp, sword status, int error);

}  // namespace zev
