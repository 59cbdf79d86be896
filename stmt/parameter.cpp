#include "zevoci/parameter.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "core/edge_text.h"

namespace {

struct FreeHandle {
  void operator()(OCIParamHandle *handle) const noexcept { FreeOCIParamHandle(handle); }
};
template <class T>
using Owned = std::unique_ptr<T, FreeHandle>;

/// A zeroed inner handle; null when memory runs out.
template <class T>
T *makeHandle(ParameterKind kind) {
  auto *handle = static_cast<T *>(std::calloc(1, sizeof(T)));
  if (handle) handle->kind = kind;
  return handle;
}

bool copyText(zev::DescribedText &text) {
  const char *original = text.text;
  text.answer = nullptr;
  text.text = nullptr;
  if (!original) return true;
  text.text = static_cast<char *>(std::malloc(text.length));
  if (!text.text) return false;
  std::memcpy(text.text, original, text.length);
  return true;
}

void freeColumn(OCIColumnParamHandle *column) {
  for (char *text : {column->name.text, column->typeName.text, column->schemaName.text}) {
    std::free(text);
  }
}

void freeList(OCIListParamHandle *list) {
  for (OCIParamHandle *element : zev::Elements<OCIParamHandle>(list->handles)) {
    FreeOCIParamHandle(element);
  }
  list_free(list->handles);
}

}  // namespace

bool zev::storeText(DescribedText &target, const OCIEnv *env, const char *text) {
  const EdgeResult converted(env, text, std::strlen(text) + 1);
  if (!converted) return false;
  target.length = static_cast<ub4>(converted.size());
  target.text = static_cast<char *>(std::malloc(target.length));
  if (!target.text) return false;
  std::memcpy(target.text, converted.data(), target.length);
  return true;
}

sword zev::wrapParameter(OCIEnv *env, OCIParamHandle *handle, OCIStmt *source,
                         OCIParam **param) {
  Owned<OCIParamHandle> owned(handle);
  void *made = nullptr;
  const sword status = OCIDescriptorAlloc(env, &made, OCI_DTYPE_PARAM, 0, nullptr);
  *param = static_cast<OCIParam *>(made);
  if (status != OCI_SUCCESS) return status;
  (*param)->handle = owned.release();
  (*param)->source = source;
  return OCI_SUCCESS;
}

extern "C" {

OCIParam *Alloc_OCIParam() {
  return zev::allocHandle<OCIParam>(HANDLE_OCIParam);
}

void Free_OCIParam(OCIParam *param) {
  if (!zev::asParam(param)) return;
  FreeOCIParamHandle(param->handle);
  zev::freeHandle(param);
}

OCIDescribe *Alloc_OCIDescribe() {
  return zev::allocHandle<OCIDescribe>(HANDLE_OCIDescribe);
}

void Free_OCIDescribe(OCIDescribe *describe) {
  if (!zev::asDescribe(describe)) return;
  FreeOCIParamHandle(describe->handle);
  zev::freeHandle(describe);
}

void FreeOCIParamHandle(OCIParamHandle *handle) {
  if (!handle) return;
  switch (handle->kind) {
    case kParameterColumn:
      freeColumn(static_cast<OCIColumnParamHandle *>(handle));
      break;
    case kParameterTable:
      FreeOCIParamHandle(static_cast<OCITableParamHandle *>(handle)->columns);
      break;
    case kParameterList:
      freeList(static_cast<OCIListParamHandle *>(handle));
      break;
    default:
      break;
  }
  std::free(handle);
}

OCIParamHandle *CopyOCIParamHandle(const OCIParamHandle *handle) {
  switch (handle->kind) {
    case kParameterColumn:
      return Copy_OCIColumnParamHandle(static_cast<const OCIColumnParamHandle *>(handle));
    case kParameterTable:
      return Copy_OCITableParamHandle(static_cast<const OCITableParamHandle *>(handle));
    case kParameterList:
      return Copy_OCIListParamHandle(static_cast<const OCIListParamHandle *>(handle));
    default:
      return nullptr;
  }
}

OCIColumnParamHandle *Copy_OCIColumnParamHandle(const OCIColumnParamHandle *column) {
  Owned<OCIColumnParamHandle> copy(makeHandle<OCIColumnParamHandle>(kParameterColumn));
  if (!copy) return nullptr;
  *copy = *column;
  bool whole = true;
  for (zev::DescribedText *text : {&copy->name, &copy->typeName, &copy->schemaName}) {
    whole = copyText(*text) && whole;
  }
  return whole ? copy.release() : nullptr;
}

OCITableParamHandle *Copy_OCITableParamHandle(const OCITableParamHandle *table) {
  Owned<OCITableParamHandle> copy(makeHandle<OCITableParamHandle>(kParameterTable));
  if (!copy) return nullptr;
  *copy = *table;
  copy->columns = nullptr;
  if (!table->columns) return copy.release();
  copy->columns = Copy_OCIListParamHandle(table->columns);
  return copy->columns ? copy.release() : nullptr;
}

OCIListParamHandle *Copy_OCIListParamHandle(const OCIListParamHandle *list) {
  Owned<OCIListParamHandle> copy(makeHandle<OCIListParamHandle>(kParameterList));
  if (!copy) return nullptr;
  for (const OCIParamHandle *element : zev::Elements<OCIParamHandle>(list->handles)) {
    Owned<OCIParamHandle> element_copy(CopyOCIParamHandle(element));
    List *longer = element_copy ? lappend(copy->handles, element_copy.get()) : nullptr;
    if (!longer) return nullptr;
    element_copy.release();
    copy->handles = longer;
  }
  return copy.release();
}

}  // extern "C"
