/// Described columns, tables and lists, and the descriptors around them.
#pragma once

#include <libpq-fe.h>

#include "zevoci/handle.h"
#include "zevoci/statement.h"

/// What an inner handle describes.
enum ParameterKind : ub4 {
  kParameterColumn = 0,
  kParameterArgument = 1,
  kParameterTable = 2,
  kParameterList = 3,
};

/// The common begin of the inner handles.
struct OCIParamHandle {
  ub4 kind;  ///< ParameterKind
};

namespace zev {

/// A text attribute in the program's encoding.
struct DescribedText {
  char *text;    ///< owned; null when unknown
  ub4 length;    ///< bytes, the final NUL included
  void *answer;  ///< the copy that the program was given; lives in a handle's cache
};

}  // namespace zev

struct OCIColumnParamHandle : OCIParamHandle {
  ub1 charUsed;  ///< IsBinaryDataType of the type
  ub2 charSize;
  ub4 dataSize;
  ub2 dataType;  ///< SQLT_*
  zev::DescribedText name;
  ub1 precisionIsImplicit;  ///< which of the next two is told
  ub2 implicitPrecision;
  ub1 explicitPrecision;
  sb1 scale;
  ub1 isNull;
  zev::DescribedText typeName;
  zev::DescribedText schemaName;
  ub2 charsetId;
  ub1 charsetForm;
};

struct OCIListParamHandle : OCIParamHandle {
  List *handles;  ///< OCIParamHandle, owned
};

struct OCITableParamHandle : OCIParamHandle {
  ub4 objectId;
  ub2 columnCount;
  OCIListParamHandle *columns;  ///< owned
  ub1 isTemporary;
  ub1 isTyped;
  std::uint64_t tablespace;
};

/// OCI_DTYPE_PARAM.
struct OCIParam : OCIHandle {
  OCIParamHandle *handle;  ///< owned
  OCIStmt *source;         ///< whose cache keeps the answers; null: the environment's
};

/// OCI_HTYPE_DESCRIBE.
struct OCIDescribe : OCIHandle {
  OCIParamHandle *handle;  ///< owned; null until something has been described
};

extern "C" {
ZEV_HELPER OCIParam *Alloc_OCIParam();
ZEV_HELPER void Free_OCIParam(OCIParam *param);
/// Reads an attribute of what a descriptor describes.
ZEV_HELPER sword Get_OCIParam(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                              OCIError *errhp);
ZEV_HELPER sword Get_OCIColumnParamHandle(OCIParam *param, void *value, ub4 *size,
                                          ub4 attribute, OCIError *errhp);
ZEV_HELPER sword Get_OCIArgumentParamHandle(OCIParam *param, void *value, ub4 *size,
                                            ub4 attribute, OCIError *errhp);
ZEV_HELPER sword Get_OCITableParamHandle(OCIParam *param, void *value, ub4 *size,
                                         ub4 attribute, OCIError *errhp);
ZEV_HELPER sword Get_OCIListParamHandle(OCIParam *param, void *value, ub4 *size,
                                        ub4 attribute, OCIError *errhp);
ZEV_HELPER OCIDescribe *Alloc_OCIDescribe();
ZEV_HELPER void Free_OCIDescribe(OCIDescribe *describe);
ZEV_HELPER sword Get_OCIDescribe(OCIDescribe *describe, void *value, ub4 *size,
                                 ub4 attribute, OCIError *errhp);

/// A deep copy without the answers, which are made anew on demand; null when memory runs
/// out and for an unknown kind.
ZEV_HELPER OCIParamHandle *CopyOCIParamHandle(const OCIParamHandle *handle);
ZEV_HELPER OCIColumnParamHandle *Copy_OCIColumnParamHandle(
    const OCIColumnParamHandle *column);
ZEV_HELPER OCITableParamHandle *Copy_OCITableParamHandle(
    const OCITableParamHandle *table);
ZEV_HELPER OCIListParamHandle *Copy_OCIListParamHandle(const OCIListParamHandle *list);
/// Frees an inner handle with what it owns; does nothing for null.
ZEV_HELPER void FreeOCIParamHandle(OCIParamHandle *handle);

/// Column `column`, counted from 0, of the result that a statement holds. `flag` says
/// whether a NUMERIC's precision counts as implicit. Null when memory runs out.
ZEV_HELPER OCIColumnParamHandle *Alloc_OCIColumnParamHandle(OCIEnv *env, OCIStmt *stmt,
                                                            int column, boolean flag);
/// A column of a table from the server's catalogue. -1 with record 24319 or 1312.
ZEV_HELPER sword Build_OCIColumnParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn,
                                            Oid relid, int attnum,
                                            OCIParamHandle **handle);
/// The table of exactly this name, with its columns, or without any when one of them
/// cannot be described. -2 for an empty name of a table; -1 with record 24319 or 4043.
ZEV_HELPER sword Build_OCITableParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn,
                                           const char *name, ub4 length, ub1 objtyp,
                                           OCIParamHandle **handle);
/// An empty list. -1 with record 24319.
ZEV_HELPER sword Build_OCIListParamHandle(OCIError *errhp, OCIParamHandle **handle);
}

namespace zev {

inline OCIParam *asParam(const void *h) {
  return checked<OCIParam>(h, HANDLE_OCIParam);
}
inline OCIDescribe *asDescribe(const void *h) {
  return checked<OCIDescribe>(h, HANDLE_OCIDescribe);
}

/// Stores a NUL-terminated text of the server in the program's encoding. False when it
/// cannot be converted or memory runs out.
bool storeText(DescribedText &target, const OCIEnv *env, const char *text);

/// A new descriptor of the environment around `handle`, which it takes over also on
/// failure: then the status and a null `*param`.
sword wrapParameter(OCIEnv *env, OCIParamHandle *handle, OCIStmt *source,
                    OCIParam **param);

}  // namespace zev
