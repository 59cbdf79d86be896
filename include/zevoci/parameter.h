/// Parameter descriptors and the trees of columns, tables and lists behind them.
#pragma once

#include <libpq-fe.h>

#include <memory>

#include "zevoci/statement.h"

/// The first field of every inner handle tells what it is.
enum ParamKind : ub4 {
  kColumnParam = 0,
  kArgumentParam = 1,
  kTableParam = 2,
  kListParam = 3,
};

struct OCIParamHandle {
  ub4 kind;
};

/// A text of a column, in the program's encoding.
struct ParamText {
  char *value;   ///< owned, with its terminator; null until known
  ub4 length;    ///< bytes with the terminator
  void *answer;  ///< the copy handed out, in the cache of the parameter's source
};

struct OCIColumnParamHandle : OCIParamHandle {
  ub1 charUsed;  ///< IsBinaryDataType of dataType
  ub2 charSize;
  ub4 dataSize;  ///< bytes
  ub2 dataType;  ///< external type, SQLT_*
  ParamText name;
  ub1 precisionIsImplicit;  ///< which of the two precisions is answered
  ub2 implicitPrecision;
  ub1 explicitPrecision;
  sb1 scale;
  ub1 isNull;
  ParamText typeName;
  ParamText schemaName;
  ub2 charsetId;
  ub1 charsetForm;
};

struct OCIListParamHandle : OCIParamHandle {
  List *handles;  ///< OCIParamHandle, owned
};

struct OCITableParamHandle : OCIParamHandle {
  ub4 objectId;                 ///< OID in pg_class
  ub2 columnCount;              ///< relnatts, dropped columns included
  OCIListParamHandle *columns;  ///< owned
  ub1 isTemporary;
  ub1 isTyped;
  std::uint64_t tablespace;  ///< reltablespace, 0 for the database's own
};

/// A parameter descriptor (OCI_DTYPE_PARAM).
struct OCIParam : OCIHandle {
  OCIParamHandle *body;  ///< owned; null until given one
  OCIStmt *source;       ///< whose cache holds the answers; null: the environment's
};

/// A describe handle (OCI_HTYPE_DESCRIBE).
struct OCIDescribe : OCIHandle {
  OCIParamHandle *body;  ///< owned; what the last describe found, or null
};

extern "C" {
ZEV_HELPER OCIParam *Alloc_OCIParam();
/// Frees the descriptor and its tree; nothing for another tag.
ZEV_HELPER void Free_OCIParam(OCIParam *param);
/// An attribute of the body, by its kind. OCI_ERROR for a wrong handle or a null value,
/// OCI_INVALID_HANDLE without a body or an environment; 24328 for an unknown attribute.
ZEV_HELPER sword Get_OCIParam(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                              OCIError *errhp);
ZEV_HELPER OCIDescribe *Alloc_OCIDescribe();
ZEV_HELPER void Free_OCIDescribe(OCIDescribe *describe);
/// OCI_ATTR_PARAM: a new descriptor around a copy of the described tree, which the caller
/// frees.
ZEV_HELPER sword Get_OCIDescribe(OCIDescribe *describe, void *value, ub4 *size,
                                 ub4 attribute, OCIError *errhp);

/// Attributes by the kind of a parameter's body, whose type the caller has checked.
/// Texts are handed out as pointers that live as long as the source; `*size` is their
/// length in bytes without terminator, 0 for other attributes.
ZEV_HELPER sword Get_OCIColumnParamHandle(OCIParam *param, void *value, ub4 *size,
                                          ub4 attribute, OCIError *errhp);
ZEV_HELPER sword Get_OCITableParamHandle(OCIParam *param, void *value, ub4 *size,
                                         ub4 attribute, OCIError *errhp);
/// Lists and arguments have no attributes: always OCI_ERROR.
ZEV_HELPER sword Get_OCIListParamHandle(OCIParam *param, void *value, ub4 *size,
                                        ub4 attribute, OCIError *errhp);
ZEV_HELPER sword Get_OCIArgumentParamHandle(OCIParam *param, void *value, ub4 *size,
                                            ub4 attribute, OCIError *errhp);

/// A deep copy without answers, by kind; null for null, for a kind without members, and
/// when memory runs out.
ZEV_HELPER OCIParamHandle *CopyOCIParamHandle(const OCIParamHandle *handle);
ZEV_HELPER OCIColumnParamHandle *Copy_OCIColumnParamHandle(
    const OCIColumnParamHandle *column);
ZEV_HELPER OCITableParamHandle *Copy_OCITableParamHandle(
    const OCITableParamHandle *table);
ZEV_HELPER OCIListParamHandle *Copy_OCIListParamHandle(const OCIListParamHandle *list);
/// Frees a tree; answers belong to the cache that they are in.
ZEV_HELPER void FreeOCIParamHandle(OCIParamHandle *handle);

/// Column `column` (from 0) of the statement's result as a new handle. With `flag` the
/// precision of a numeric column is an implicit one. Null when memory runs out or a text
/// cannot be converted.
ZEV_HELPER OCIColumnParamHandle *Alloc_OCIColumnParamHandle(OCIEnv *env, OCIStmt *stmt,
                                                            int column, boolean flag);
/// Attribute `attnum` (from 1) of relation `relid` as a new handle. Records 24319 without
/// an answer, 1312 where the catalogues have no such column or type.
ZEV_HELPER sword Build_OCIColumnParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn,
                                            Oid relid, int attnum,
                                            OCIParamHandle **handle);
/// The relation that is named exactly so, with its columns; `name` need not be
/// terminated. A relation one of whose columns cannot be described has none. Records
/// 24319 without an answer, 4043 for an unknown name; OCI_INVALID_HANDLE for a table of
/// empty name.
ZEV_HELPER sword Build_OCITableParamHandle(OCIEnv *env, OCIError *errhp, PGconn *conn,
                                           const char *name, ub4 length, ub1 objtyp,
                                           OCIParamHandle **handle);
/// An empty list; 24319 when memory runs out.
ZEV_HELPER sword Build_OCIListParamHandle(OCIError *errhp, OCIListParamHandle **handle);
}

namespace zev {

inline OCIParam *asParam(const void *h) {
  return checked<OCIParam>(h, HANDLE_OCIParam);
}
inline OCIDescribe *asDescribe(const void *h) {
  return checked<OCIDescribe>(h, HANDLE_OCIDescribe);
}

struct FreeParamTree {
  void operator()(OCIParamHandle *handle) const noexcept { FreeOCIParamHandle(handle); }
};
/// A tree until it has an owner.
template <class T = OCIParamHandle>
using ParamTree = std::unique_ptr<T, FreeParamTree>;

/// A zeroed inner handle; null when memory runs out.
template <class T>
ParamTree<T> newParamHandle(ParamKind kind) {
  auto *handle = static_cast<T *>(std::calloc(1, sizeof(T)));
  if (handle) handle->kind = kind;
  return ParamTree<T>(handle);
}

/// Stores `text` in the program's encoding; false when it cannot be converted or memory
/// runs out.
bool giveParamText(const OCIEnv *env, ParamText &out, const char *text);

/// Wraps `body` in a new parameter descriptor below `env`, which owns it from then on.
/// 24319 for a null body; otherwise the status of OCIDescriptorAlloc.
sword wrapParam(OCIEnv *env, OCIError *errhp, ParamTree<> body, OCIStmt *source,
                OCIParam **out);

/// Makes a parameter forget answers in the cache of a statement that goes away.
void forgetSource(OCIParam *param);

}  // namespace zev
