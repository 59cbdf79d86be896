#include <cstring>

#include "core/attribute_value.h"
#include "core/edge_text.h"
#include "zevoci/errors.h"
#include "zevoci/parameter.h"

namespace {

/// One call that reads an attribute.
struct Request {
  OCIParam *param;
  OCIEnv *env;
  void *value;
  ub4 *size;
  OCIError *errhp;
};

template <class Handle>
Handle *handleOf(const Request &request) {
  return static_cast<Handle *>(request.param->handle);
}

/// How one attribute of a kind of handle is answered.
struct Reader {
  ub4 attribute;
  sword (*read)(const Request &request);
};

/// A field as it stands.
template <auto Field>
struct FieldOf;
template <class Handle, class T, T Handle::*Field>
struct FieldOf<Field> {
  static sword read(const Request &request) {
    zev::putAttribute(request.value, handleOf<Handle>(request)->*Field);
    return OCI_SUCCESS;
  }
};
template <auto Field>
constexpr auto field = &FieldOf<Field>::read;

template <class T>
sword zero(const Request &request) {
  zev::putAttribute(request.value, T{});
  return OCI_SUCCESS;
}

/// The bytes of a terminator in the program's encoding.
ub4 terminatorWidth(const OCIEnv *env) {
  return static_cast<ub4>(zev::EdgeResult(env, "", 1).size());
}

void *allocateAnswer(const Request &request, ub4 size) {
  OCIStmt *source = request.param->source;
  return source ? AllocateMemFromStmtCache(source, size)
                : AllocateMemFromEnvCache(request.env, size);
}

/// A text, which the program is given as one and the same block at each read.
template <zev::DescribedText OCIColumnParamHandle::*Text>
sword text(const Request &request) {
  zev::DescribedText &described = handleOf<OCIColumnParamHandle>(request)->*Text;
  if (!described.answer && described.text) {
    described.answer = allocateAnswer(request, described.length);
    if (!described.answer) return zev::fail(request.errhp, 24319);
    std::memcpy(described.answer, described.text, described.length);
  }
  zev::putAttribute(request.value, described.answer);
  if (request.size && described.text) {
    *request.size = described.length - terminatorWidth(request.env);
  }
  return OCI_SUCCESS;
}

sword precision(const Request &request) {
  const auto *column = handleOf<OCIColumnParamHandle>(request);
  zev::putAttribute(request.value, column->precisionIsImplicit
                                       ? static_cast<ub1>(column->implicitPrecision)
                                       : column->explicitPrecision);
  return OCI_SUCCESS;
}

bool hasObjects(const Request &request) {
  return (request.env->mode & OCI_OBJECT) != 0;
}

sword columnTdo(const Request &request) {
  return hasObjects(request) ? OCI_SUCCESS : zev::fail(request.errhp, 21301);
}

sword tableTdo(const Request &request) {
  if (!hasObjects(request)) return zev::fail(request.errhp, 21301);
  return zero<void *>(request);
}

sword columnCount(const Request &request) {
  const OCIListParamHandle *columns = handleOf<OCITableParamHandle>(request)->columns;
  zev::putAttribute(request.value, static_cast<ub2>(list_length(columns->handles)));
  return OCI_SUCCESS;
}

sword tablespace(const Request &request) {
  zev::putAttribute(request.value,
                    static_cast<ub4>(handleOf<OCITableParamHandle>(request)->tablespace));
  return OCI_SUCCESS;
}

/// A new descriptor of the list, which the caller frees.
sword columnList(const Request &request) {
  const OCIListParamHandle *columns = handleOf<OCITableParamHandle>(request)->columns;
  OCIListParamHandle *copy = Copy_OCIListParamHandle(columns);
  if (!copy) return zev::fail(request.errhp, 24319);
  OCIParam *list = nullptr;
  const sword status =
      zev::wrapParameter(request.env, copy, request.param->source, &list);
  zev::putAttribute(request.value, list);
  return status;
}

using Column = OCIColumnParamHandle;
using Table = OCITableParamHandle;

// clang-format off
constexpr Reader kColumnReaders[] = {
    {OCI_ATTR_DATA_SIZE,    field<&Column::dataSize>},
    {OCI_ATTR_DATA_TYPE,    field<&Column::dataType>},
    {OCI_ATTR_NAME,         text<&Column::name>},
    {OCI_ATTR_PRECISION,    precision},
    {OCI_ATTR_SCALE,        field<&Column::scale>},
    {OCI_ATTR_IS_NULL,      field<&Column::isNull>},
    {OCI_ATTR_TYPE_NAME,    text<&Column::typeName>},
    {OCI_ATTR_SCHEMA_NAME,  text<&Column::schemaName>},
    {OCI_ATTR_CHARSET_ID,   field<&Column::charsetId>},
    {OCI_ATTR_CHARSET_FORM, field<&Column::charsetForm>},
    {OCI_ATTR_REF_TDO,      columnTdo},
    {OCI_ATTR_CHAR_USED,    field<&Column::charUsed>},
    {OCI_ATTR_CHAR_SIZE,    field<&Column::charSize>},
};

constexpr Reader kTableReaders[] = {
    {OCI_ATTR_NUM_COLS,     columnCount},
    {OCI_ATTR_LIST_COLUMNS, columnList},
    {OCI_ATTR_RDBA,         zero<ub4>},
    {OCI_ATTR_CLUSTERED,    zero<ub1>},
    {OCI_ATTR_PARTITIONED,  zero<ub1>},
    {OCI_ATTR_INDEX_ONLY,   zero<ub1>},
    {OCI_ATTR_REF_TDO,      tableTdo},
    {OCI_ATTR_OBJID,        field<&Table::objectId>},
    {OCI_ATTR_TABLESPACE,   tablespace},
    {OCI_ATTR_IS_TEMPORARY, field<&Table::isTemporary>},
    {OCI_ATTR_IS_TYPED,     field<&Table::isTyped>},
    {OCI_ATTR_DURATION,     zero<ub2>},
};
// clang-format on

template <std::size_t Count>
sword readBy(const Reader (&readers)[Count], OCIParam *param, void *value, ub4 *size,
             ub4 attribute, OCIError *errhp) {
  if (size) *size = 0;
  for (const Reader &reader : readers) {
    if (reader.attribute == attribute) {
      return reader.read({param, zev::parentEnv(param), value, size, errhp});
    }
  }
  return zev::fail(errhp, 24328);
}

}  // namespace

extern "C" {

sword Get_OCIColumnParamHandle(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                               OCIError *errhp) {
  return readBy(kColumnReaders, param, value, size, attribute, errhp);
}

sword Get_OCITableParamHandle(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                              OCIError *errhp) {
  return readBy(kTableReaders, param, value, size, attribute, errhp);
}

sword Get_OCIArgumentParamHandle(OCIParam *, void *, ub4 *, ub4, OCIError *) {
  return OCI_ERROR;
}
sword Get_OCIListParamHandle(OCIParam *, void *, ub4 *, ub4, OCIError *) {
  return OCI_ERROR;
}

sword Get_OCIParam(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                   OCIError *errhp) {
  if (!zev::asParam(param) || !zev::asError(errhp) || !value) return OCI_ERROR;
  if (!param->handle || !zev::parentEnv(param)) return OCI_INVALID_HANDLE;
  switch (param->handle->kind) {
    case kParameterColumn:
      return Get_OCIColumnParamHandle(param, value, size, attribute, errhp);
    case kParameterArgument:
      return OCI_SUCCESS;
    case kParameterTable:
      return Get_OCITableParamHandle(param, value, size, attribute, errhp);
    case kParameterList:
      return Get_OCIListParamHandle(param, value, size, attribute, errhp);
    default:
      return OCI_INVALID_HANDLE;
  }
}

sword Get_OCIDescribe(OCIDescribe *describe, void *value, ub4 *, ub4 attribute,
                      OCIError *errhp) {
  OCIEnv *env = zev::asDescribe(describe) ? zev::parentEnv(describe) : nullptr;
  if (!env || !zev::asError(errhp) || !value) return OCI_INVALID_HANDLE;
  if (attribute == OCI_ATTR_PARAM_COUNT) return zev::fail(errhp, 3001);
  if (attribute != OCI_ATTR_PARAM) return zev::fail(errhp, 24315);
  if (!describe->handle) return OCI_INVALID_HANDLE;
  OCIParamHandle *copy = CopyOCIParamHandle(describe->handle);
  if (!copy) return zev::fail(errhp, 24319);
  OCIParam *param = nullptr;
  const sword status = zev::wrapParameter(env, copy, nullptr, &param);
  if (status == OCI_SUCCESS) zev::putAttribute(value, param);
  return status;
}

}  // extern "C"
