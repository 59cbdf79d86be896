/// Descriptors that are made and freed many at a time. The call that frees them is not
/// told how many there are: the environment remembers.
#include <oci.h>

#include <algorithm>
#include <cstdlib>

#include "zevoci/errors.h"

namespace {

/// An array that a program holds, known by its first descriptor.
struct DescriptorArray {
  const void *first;
  ub4 size;
};

DescriptorArray *findArray(const OCIEnv *env, const void *first) {
  for (DescriptorArray *array : zev::Elements<DescriptorArray>(env->descriptorArrays)) {
    if (array->first == first) return array;
  }
  return nullptr;
}

void forget(OCIEnv *env, DescriptorArray *array) {
  env->descriptorArrays = list_delete(env->descriptorArrays, array);
  std::free(array);
}

/// Remembers an array. The one that began with this descriptor before was freed piece by
/// piece. False when memory runs out.
bool remember(OCIEnv *env, const void *first, ub4 size) {
  if (DescriptorArray *former = findArray(env, first)) {
    former->size = size;
    return true;
  }
  auto *array = static_cast<DescriptorArray *>(std::malloc(sizeof(DescriptorArray)));
  List *arrays = array ? lappend(env->descriptorArrays, array) : nullptr;
  if (!arrays) {
    std::free(array);
    return false;
  }
  *array = {first, size};
  env->descriptorArrays = arrays;
  return true;
}

void freeAll(void **descriptors, ub4 count, ub4 type) {
  for (void **d = descriptors; d != descriptors + count; ++d) {
    OCIDescriptorFree(*d, type);
    *d = nullptr;
  }
}

}  // namespace

extern "C" {

ZEV_API sword OCIArrayDescriptorAlloc(const void *parenth, void **descpp, ub4 type,
                                      ub4 array_size, size_t xtramem_sz,
                                      void **usrmempp) {
  OCIEnv *env = zev::asEnv(parenth);
  if (!descpp || !env) return OCI_INVALID_HANDLE;
  if (!array_size) return zev::fail(env->errh, 1084);
  for (ub4 i = 0; i < array_size; ++i) {
    // The program's block belongs to the first, and with it to the array.
    const sword status =
        OCIDescriptorAlloc(env, &descpp[i], type, i ? 0 : xtramem_sz, usrmempp);
    if (zev::isSuccess(status)) continue;
    freeAll(descpp, i, type);
    return status;
  }
  if (remember(env, descpp[0], array_size)) return OCI_SUCCESS;
  freeAll(descpp, array_size, type);
  return zev::fail(env->errh, 16506);
}

ZEV_API sword OCIArrayDescriptorFree(void **descp, ub4 type) {
  auto *first = descp ? static_cast<OCIHandle *>(*descp) : nullptr;
  OCIEnv *env = first ? zev::parentEnv(first) : nullptr;
  DescriptorArray *array = env ? findArray(env, first) : nullptr;
  if (!array) return OCI_INVALID_HANDLE;
  const ub4 size = array->size;
  const sword status = OCIDescriptorFree(*descp, type);
  if (status != OCI_SUCCESS) return status;
  *descp = nullptr;
  forget(env, array);
  freeAll(descp + 1, size - 1, type);
  return OCI_SUCCESS;
}

}  // extern "C"
