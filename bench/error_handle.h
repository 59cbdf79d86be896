/// An environment for what needs no server.
#pragma once

#include <oci.h>

#include <stdexcept>

namespace bench {

/// An environment with an error handle; throws std::runtime_error without one.
class ErrorHandle {
 public:
  ErrorHandle() {
    if (OCIEnvCreate(&env_, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0,
                     nullptr) != OCI_SUCCESS)
      throw std::runtime_error("no environment");
    void *handle = nullptr;
    OCIHandleAlloc(env_, &handle, OCI_HTYPE_ERROR, 0, nullptr);
    errhp = static_cast<OCIError *>(handle);
  }
  ~ErrorHandle() { OCIHandleFree(env_, OCI_HTYPE_ENV); }
  ErrorHandle(const ErrorHandle &) = delete;
  ErrorHandle &operator=(const ErrorHandle &) = delete;

  OCIEnv *env() const { return env_; }

  OCIError *errhp = nullptr;

 private:
  OCIEnv *env_ = nullptr;
};

}  // namespace bench
