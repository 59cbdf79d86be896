/// Descriptors of dates and intervals, as programs hold them.
#pragma once

#include <gtest/gtest.h>
#include <oci.h>

namespace zev::test {

class Descriptor {
 public:
  /// Of a published type, such as OCI_DTYPE_TIMESTAMP.
  Descriptor(OCIEnv *env, ub4 type) : type_(type) {
    EXPECT_EQ(OCIDescriptorAlloc(env, &handle_, type, 0, nullptr), OCI_SUCCESS);
  }
  ~Descriptor() { EXPECT_EQ(OCIDescriptorFree(handle_, type_), OCI_SUCCESS); }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  template <class Type>
  Type *as() const {
    return static_cast<Type *>(handle_);
  }
  /// What is bound and defined: where the pointer stands.
  void **address() { return &handle_; }

 private:
  void *handle_ = nullptr;
  ub4 type_;
};

}  // namespace zev::test
