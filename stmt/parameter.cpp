#include "zevoci/parameter.h"

#include <cstring>

#include "core/attribute_value.h"
#include "core/edge_text.h"

namespace {

using zev::ParamTree;

/// A copy without its answer; false when memory runs out.
bool copyText(ParamText &to, const ParamText &from) {
  to = {};
  if (!from.value) return true;
  to.value = static_cast<char *>(std::malloc(from.length));
  if (!to.value) return false;
  std::memcpy(to.value, from.value, from.length);
  to.length = from.length;
  return true;
}

void freeColumn(OCIColumnParamHandle *column) {
  std::free(column->name.value);
  std::free(column->typeName.value);
  std::free(column->schemaName.value);
}

void freeList(OCIListParamHandle *list) {
  for (OCIParamHandle *handle : zev::Elements<OCIParamHandle>(list->handles)) {
    FreeOCIParamHandle(handle);
  }
  list_free(list->handles);
}

sword describedTree(const OCIDescribe *describe, void *value, OCIError *errhp) {
  if (!describe->body) return OCI_INVALID_HANDLE;
  OCIParam *param = nullptr;
  const sword status =
      zev::wrapParam(zev::parentEnv(describe), errhp,
                     ParamTree<>(CopyOCIParamHandle(describe->body)), nullptr, &param);
  if (status == OCI_SUCCESS) zev::putAttribute(value, param);
  return status;
}

}  // namespace

bool zev::giveParamText(const OCIEnv *env, ParamText &out, const char *text) {
  const EdgeResult edge(env, text, std::strlen(text) + 1);
  if (!edge) return false;
  const ParamText whole{const_cast<char *>(edge.data()), static_cast<ub4>(edge.size()),
                        nullptr};
  std::free(out.value);
  return copyText(out, whole);
}

sword zev::wrapParam(OCIEnv *env, OCIError *errhp, ParamTree<> body, OCIStmt *source,
                     OCIParam **out) {
  if (!body) return fail(errhp, 24319);
  void *descriptor = nullptr;
  const sword status = OCIDescriptorAlloc(env, &descriptor, OCI_DTYPE_PARAM, 0, nullptr);
  if (status != OCI_SUCCESS) return status;
  *out = static_cast<OCIParam *>(descriptor);
  (*out)->body = body.release();
  (*out)->source = source;
  return OCI_SUCCESS;
}

void zev::forgetSource(OCIParam *param) {
  param->source = nullptr;
  if (!param->body || param->body->kind != kColumnParam) return;
  auto *column = static_cast<OCIColumnParamHandle *>(param->body);
  for (ParamText *text : {&column->name, &column->typeName, &column->schemaName}) {
    text->answer = nullptr;
  }
}

extern "C" {

OCIParam *Alloc_OCIParam() {
  return zev::allocHandle<OCIParam>(HANDLE_OCIParam);
}

void Free_OCIParam(OCIParam *param) {
  if (!zev::asParam(param)) return;
  FreeOCIParamHandle(param->body);
  zev::freeHandle(param);
}

OCIDescribe *Alloc_OCIDescribe() {
  return zev::allocHandle<OCIDescribe>(HANDLE_OCIDescribe);
}

void Free_OCIDescribe(OCIDescribe *describe) {
  if (!zev::asDescribe(describe)) return;
  FreeOCIParamHandle(describe->body);
  zev::freeHandle(describe);
}

sword Get_OCIDescribe(OCIDescribe *describe, void *value, ub4 *, ub4 attribute,
                      OCIError *errhp) {
  if (!zev::asDescribe(describe) || !zev::asError(errhp) || !value ||
      !zev::parentEnv(describe)) {
    return OCI_INVALID_HANDLE;
  }
  switch (attribute) {
    case OCI_ATTR_PARAM_COUNT:
      return zev::fail(errhp, 3001);
    case OCI_ATTR_PARAM:
      return describedTree(describe, value, errhp);
    default:
      return zev::fail(errhp, 24315);
  }
}

OCIColumnParamHandle *Copy_OCIColumnParamHandle(const OCIColumnParamHandle *column) {
  auto copy = zev::newParamHandle<OCIColumnParamHandle>(kColumnParam);
  if (!copy) return nullptr;
  *copy = *column;
  copy->name = copy->typeName = copy->schemaName = {};
  const bool whole = copyText(copy->name, column->name) &&
                     copyText(copy->typeName, column->typeName) &&
                     copyText(copy->schemaName, column->schemaName);
  return whole ? copy.release() : nullptr;
}

OCITableParamHandle *Copy_OCITableParamHandle(const OCITableParamHandle *table) {
  auto copy = zev::newParamHandle<OCITableParamHandle>(kTableParam);
  if (!copy) return nullptr;
  *copy = *table;
  copy->columns = table->columns ? Copy_OCIListParamHandle(table->columns) : nullptr;
  return copy->columns || !table->columns ? copy.release() : nullptr;
}

OCIListParamHandle *Copy_OCIListParamHandle(const OCIListParamHandle *list) {
  auto copy = zev::newParamHandle<OCIListParamHandle>(kListParam);
  if (!copy) return nullptr;
  for (const OCIParamHandle *handle : zev::Elements<OCIParamHandle>(list->handles)) {
    ParamTree<> element(CopyOCIParamHandle(handle));
    List *longer = element ? lappend(copy->handles, element.get()) : nullptr;
    if (!longer) return nullptr;
    copy->handles = longer;
    element.release();
  }
  return copy.release();
}

OCIParamHandle *CopyOCIParamHandle(const OCIParamHandle *handle) {
  if (!handle) return nullptr;
  switch (handle->kind) {
    case kColumnParam:
      return Copy_OCIColumnParamHandle(static_cast<const OCIColumnParamHandle *>(handle));
    case kArgumentParam:
      return zev::newParamHandle<OCIParamHandle>(kArgumentParam).release();
    case kTableParam:
      return Copy_OCITableParamHandle(static_cast<const OCITableParamHandle *>(handle));
    case kListParam:
      return Copy_OCIListParamHandle(static_cast<const OCIListParamHandle *>(handle));
    default:
      return nullptr;
  }
}

void FreeOCIParamHandle(OCIParamHandle *handle) {
  if (!handle) return;
  switch (handle->kind) {
    case kColumnParam:
      freeColumn(static_cast<OCIColumnParamHandle *>(handle));
      break;
    case kTableParam:
      FreeOCIParamHandle(static_cast<OCITableParamHandle *>(handle)->columns);
      break;
    case kListParam:
      freeList(static_cast<OCIListParamHandle *>(handle));
      break;
    default:
      break;
  }
  std::free(handle);
}

}  // extern "C"
