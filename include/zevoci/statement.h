/// Statements, binds, defines and portals.
#pragma once

#include <libpq-fe.h>

#include "zevoci/connection.h"

/// Statement types of the library's own, beside the published OCI_STMT_* numbers.
enum StatementType : ub2 {
  STMT_UNKNOWN = 0,
  STMT_TRUNCATE = 65000,
  STMT_COMMENT = 65001,
  STMT_GRANT = 65002,
  STMT_REVOKE = 65003,
};

/// Values of PortalState::state.
enum PortalPhase : ub4 { kPortalClosed = 0, kPortalOpen = 2, kPortalAtEnd = 3 };

/// What a SELECT has open on the server.
struct PortalState {
  ub4 state;
  ub4 maxRow;      ///< highest position reached, OCI_ATTR_ROW_COUNT
  ub4 currentRow;  ///< OCI_ATTR_CURRENT_POSITION
  sb4 lastRow;     ///< -1 while unknown
  OCIServer *server;
  char *stmtName;    ///< owned; prepared statement, or a child statement's server cursor
  char *portalName;  ///< owned; portal or declared cursor
};

namespace zev {
struct FetchPlan;
}

struct OCIStmt : OCIHandle {
  char *stmtText;  ///< owned; trimmed, NUL-terminated, in the server's encoding
  ub4 textLen;
  ub2 stmtType;
  ub4 language;
  ub4 mode;
  boolean prepared;
  boolean serverPrepared;       ///< also after an attempt that failed
  OCIServer *pgPreparedServer;  ///< where preparedName lives
  boolean executed;
  List *binds;         ///< OCIBind, owned, one per distinct placeholder
  List *defines;       ///< OCIDefine, owned, one per position
  char *preparedName;  ///< owned; prepared statement of a non-SELECT, a child's server
                       ///< cursor
  ub4 paramCount;      ///< number of $n in the text last sent
  List *placeholderBinds;  ///< OCIBind, not owned, one per $n
  List *placeholderNames;  ///< char, owned
  boolean isCallable;
  char *callText;  ///< owned; sent instead of stmtText
  std::uint64_t hasReturn;
  char *procName;  ///< owned
  boolean hasOutParams;
  boolean argModesKnown;
  ub4 *paramDirs;  ///< owned; one per $n
  PGresult *pgResult;
  PGresult *pgOutResult;
  ub4 resultRowPos;  ///< rows of pgResult already delivered
  ub4 execMode;
  char *returnParam;  ///< owned; with its colon
  OCIBind *returnBind;
  boolean ranOnce;
  ub1 *cacheKey;  ///< owned
  ub4 cacheKeyLen;
  OCISvcCtx *service;
  boolean fromPrepare2;
  boolean inUse;
  boolean arrayOfStruct;
  ub4 rowsFetched;
  boolean asyncBulkActive;
  boolean asyncWaiting;
  boolean asyncBulkFinishing;
  boolean asyncSelectActive;
  boolean isRefCursor;
  boolean refCursorOpened;
  PortalState *cursor;  ///< owned; made at the first SELECT execute
  ub4 cursorStrategy;
  ub4 holdPolicy;
  ub4 prefetchRows;
  ub4 prefetchedRows;    ///< rows in the result of the last fetch
  ub4 prefetchConsumed;  ///< of these, delivered one by one
  ub4 heldDelivered;  ///< leading rows of pgResult that the program has, however it got
                      ///< them
  ub4 arrayRowCount;
  List *memCache;             ///< blocks of AllocateMemFromStmtCache
  zev::FetchPlan *fetchPlan;  ///< owned; converters looked up for the columns of pgResult
  ub1 *heldKey;  ///< owned; the key that the statement was asked for under, while in use
  ub4 heldKeyLen;
};

/// Directions of a parameter, as OCIBind::paramMode and in paramDirs.
enum ParamMode : ub4 { kParamIn = 1, kParamOut = 2, kParamInOut = 3 };

/// Bound value to server parameter. `*outBuffer` comes from the system allocator and the
/// caller frees it after the execute; null with length 0 is SQL NULL. `*outFormat` is 1
/// for the server's binary form, 0 for text. Returns 0, 1 (with a warning) or a negative
/// status.
using ToServerConverter = sword (*)(OCIError *errhp, const void *value, sb4 valueLength,
                                    sb2 *indicator, void **outBuffer, ub4 *outLength,
                                    ub1 *outFormat);

struct OCIBind : OCIHandle {
  boolean isDynamic;
  ub4 position;
  char *name;  ///< owned; with its colon, NUL-terminated
  ub4 nameLen;
  void *valuep;
  sb4 valueSize;
  ub2 dty;
  void *icbctx;
  OCICallbackInBind icbfp;
  void *ocbctx;
  OCICallbackOutBind ocbfp;
  ub4 pgType;
  ub4 paramMode;
  char *pgValue;  ///< owned until released; the current row's value for the server
  ub4 pgLength;
  ub1 pgFormat;
  sb2 *indp;
  ub2 *alenp;
  ub2 *rcodep;
  ub4 maxarrLen;
  ub4 *curelep;
  boolean isStruct;
  ub4 pvskip;
  ub4 indskip;
  ub4 alskip;
  ub4 rcskip;
  ToServerConverter convert;  ///< from dty to pgType; null until the first value
  boolean wideLengths;        ///< alenp leads to lengths of 32 bits
};

struct OCIDefine : OCIHandle {
  boolean isDynamic;
  ub4 position;
  void *valuep;
  ub4 valueSize;
  ub2 dty;
  sb2 *indp;
  ub2 *alenp;
  ub2 *rcodep;
  OCICallbackDefine ocbfpDef;
  void *ocbctxDef;
  boolean isStruct;
  ub4 pvskip;
  ub4 indskip;
  ub4 alskip;
  ub4 rcskip;
  boolean wideLengths;  ///< alenp leads to lengths of 32 bits
};

extern "C" {
ZEV_HELPER OCIStmt *Alloc_OCIStmt();
ZEV_HELPER void Free_OCIStmt(OCIStmt *stmt);
ZEV_HELPER sword Get_OCIStmt(OCIStmt *stmt, void *value, ub4 *size, ub4 attribute,
                             OCIError *errhp);
ZEV_HELPER sword Set_OCIStmt(OCIStmt *stmt, void *value, ub4 size, ub4 attribute,
                             OCIError *errhp);
ZEV_HELPER OCIBind *Alloc_OCIBind();
ZEV_HELPER void Free_OCIBind(OCIBind *bind);
ZEV_HELPER sword Get_OCIBind(OCIBind *bind, void *value, ub4 *size, ub4 attribute,
                             OCIError *errhp);
ZEV_HELPER sword Set_OCIBind(OCIBind *bind, void *value, ub4 size, ub4 attribute,
                             OCIError *errhp);
ZEV_HELPER OCIDefine *Alloc_OCIDefine();
ZEV_HELPER void Free_OCIDefine(OCIDefine *define);
ZEV_HELPER sword Get_OCIDefine(OCIDefine *define, void *value, ub4 *size, ub4 attribute,
                               OCIError *errhp);
ZEV_HELPER sword Set_OCIDefine(OCIDefine *define, void *value, ub4 size, ub4 attribute,
                               OCIError *errhp);

/// A block of `size` bytes, not zeroed, that lives until the statement is freed. Null for
/// a wrong tag, a `size` of 0, and when memory runs out.
ZEV_HELPER void *AllocateMemFromStmtCache(OCIStmt *stmt, std::size_t size);
ZEV_HELPER void FreeMemFromStmtCache(OCIStmt *stmt);
}

namespace zev {

inline OCIStmt *asStmt(const void *h) {
  return checked<OCIStmt>(h, HANDLE_OCIStmt);
}
inline OCIBind *asBind(const void *h) {
  return checked<OCIBind>(h, HANDLE_OCIBind);
}
inline OCIDefine *asDefine(const void *h) {
  return checked<OCIDefine>(h, HANDLE_OCIDefine);
}

}  // namespace zev
