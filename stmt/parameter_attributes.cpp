#include <cstring>
#include <iterator>

#include "core/attribute_value.h"
#include "core/edge_text.h"
#include "zevoci/parameter.h"

namespace {

/// One attribute read; the body's kind is checked.
struct Request {
  OCIParam *param;
  void *value;
  ub4 *size;
  OCIError *errhp;

  template <class Body>
  Body *body() const {
    return static_cast<Body *>(param->body);
  }
  OCIEnv *env() const { return zev::parentEnv(param); }
};

using Read = sword (*)(const Request &request);

struct Row {
  ub4 attribute;
  Read read;
};

using Column = OCIColumnParamHandle;
using Table = OCITableParamHandle;

/// A field as it stands, in its own width.
template <class Body, auto Field>
sword field(const Request &r) {
  zev::putAttribute(r.value, r.body<Body>()->*Field);
  return OCI_SUCCESS;
}

template <class T>
sword zero(const Request &r) {
  zev::putAttribute<T>(r.value, 0);
  return OCI_SUCCESS;
}

void *answerMemory(const Request &r, std::size_t size) {
  OCIStmt *source = r.param->source;
  return source ? AllocateMemFromStmtCache(source, size)
                : AllocateMemFromEnvCache(r.env(), size);
}

/// Bytes of a terminator in the program's encoding.
ub4 terminatorWidth(const OCIEnv *env) {
  const zev::EdgeResult terminator(env, "", 1);
  return terminator ? static_cast<ub4>(terminator.size()) : 1;
}

/// A text is copied once; later reads give the same block.
template <ParamText Column::*Field>
sword text(const Request &r) {
  ParamText &stored = r.body<Column>()->*Field;
  if (stored.value && !stored.answer) {
    stored.answer = answerMemory(r, stored.length);
    if (!stored.answer) return zev::fail(r.errhp, 16506);
    std::memcpy(stored.answer, stored.value, stored.length);
  }
  zev::putAttribute(r.value, stored.answer);
  if (r.size && stored.value) *r.size = stored.length - terminatorWidth(r.env());
  return OCI_SUCCESS;
}

sword precision(const Request &r) {
  const Column &column = *r.body<Column>();
  zev::putAttribute<ub1>(r.value, column.precisionIsImplicit
                                      ? static_cast<ub1>(column.implicitPrecision)
                                      : column.explicitPrecision);
  return OCI_SUCCESS;
}

bool hasObjects(const Request &r) {
  return r.env()->mode & OCI_OBJECT;
}

sword columnTdo(const Request &r) {
  return hasObjects(r) ? OCI_SUCCESS : zev::fail(r.errhp, 21301);
}

sword tableTdo(const Request &r) {
  if (!hasObjects(r)) return zev::fail(r.errhp, 21301);
  zev::putAttribute<void *>(r.value, nullptr);
  return OCI_SUCCESS;
}

sword columnCount(const Request &r) {
  const OCIListParamHandle *columns = r.body<Table>()->columns;
  zev::putAttribute(r.value,
                    static_cast<ub2>(columns ? list_length(columns->handles) : 0));
  return OCI_SUCCESS;
}

sword columnList(const Request &r) {
  OCIParam *list = nullptr;
  zev::ParamTree<> copy(CopyOCIParamHandle(r.body<Table>()->columns));
  const sword status =
      zev::wrapParam(r.env(), r.errhp, std::move(copy), r.param->source, &list);
  if (status == OCI_SUCCESS) zev::putAttribute(r.value, list);
  return status;
}

/// Programs read it in 32 bits, the width of an OID.
sword tablespace(const Request &r) {
  zev::putAttribute(r.value, static_cast<ub4>(r.body<Table>()->tablespace));
  return OCI_SUCCESS;
}

// clang-format off
constexpr Row kColumnRows[] = {
    {OCI_ATTR_DATA_SIZE,    field<Column, &Column::dataSize>},
    {OCI_ATTR_DATA_TYPE,    field<Column, &Column::dataType>},
    {OCI_ATTR_NAME,         text<&Column::name>},
    {OCI_ATTR_PRECISION,    precision},
    {OCI_ATTR_SCALE,        field<Column, &Column::scale>},
    {OCI_ATTR_IS_NULL,      field<Column, &Column::isNull>},
    {OCI_ATTR_TYPE_NAME,    text<&Column::typeName>},
    {OCI_ATTR_SCHEMA_NAME,  text<&Column::schemaName>},
    {OCI_ATTR_CHARSET_ID,   field<Column, &Column::charsetId>},
    {OCI_ATTR_CHARSET_FORM, field<Column, &Column::charsetForm>},
    {OCI_ATTR_REF_TDO,      columnTdo},
    {OCI_ATTR_CHAR_USED,    field<Column, &Column::charUsed>},
    {OCI_ATTR_CHAR_SIZE,    field<Column, &Column::charSize>},
};

constexpr Row kTableRows[] = {
    {OCI_ATTR_NUM_COLS,     columnCount},
    {OCI_ATTR_LIST_COLUMNS, columnList},
    {OCI_ATTR_RDBA,         zero<ub4>},
    {OCI_ATTR_CLUSTERED,    zero<ub1>},
    {OCI_ATTR_PARTITIONED,  zero<ub1>},
    {OCI_ATTR_INDEX_ONLY,   zero<ub1>},
    {OCI_ATTR_REF_TDO,      tableTdo},
    {OCI_ATTR_OBJID,        field<Table, &Table::objectId>},
    {OCI_ATTR_TABLESPACE,   tablespace},
    {OCI_ATTR_IS_TEMPORARY, field<Table, &Table::isTemporary>},
    {OCI_ATTR_IS_TYPED,     field<Table, &Table::isTyped>},
    {OCI_ATTR_DURATION,     zero<ub2>},
};
// clang-format on

template <std::size_t N>
sword answer(const Row (&rows)[N], ub4 attribute, const Request &request) {
  for (const Row &row : rows) {
    if (row.attribute == attribute) return row.read(request);
  }
  return zev::fail(request.errhp, 24328);
}

}  // namespace

extern "C" {

sword Get_OCIColumnParamHandle(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                               OCIError *errhp) {
  if (size) *size = 0;
  return answer(kColumnRows, attribute, {param, value, size, errhp});
}

sword Get_OCITableParamHandle(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                              OCIError *errhp) {
  return answer(kTableRows, attribute, {param, value, size, errhp});
}

sword Get_OCIListParamHandle(OCIParam *, void *, ub4 *, ub4, OCIError *) {
  return OCI_ERROR;
}

sword Get_OCIArgumentParamHandle(OCIParam *, void *, ub4 *, ub4, OCIError *) {
  return OCI_ERROR;
}

sword Get_OCIParam(OCIParam *param, void *value, ub4 *size, ub4 attribute,
                   OCIError *errhp) {
  if (!zev::asParam(param) || !zev::asError(errhp) || !value) return OCI_ERROR;
  if (!param->body || !zev::parentEnv(param)) return OCI_INVALID_HANDLE;
  switch (param->body->kind) {
    case kColumnParam:
      return Get_OCIColumnParamHandle(param, value, size, attribute, errhp);
    case kArgumentParam:
      return OCI_SUCCESS;
    case kTableParam:
      return Get_OCITableParamHandle(param, value, size, attribute, errhp);
    case kListParam:
      return Get_OCIListParamHandle(param, value, size, attribute, errhp);
    default:
      return OCI_INVALID_HANDLE;
  }
}

}  // extern "C"
