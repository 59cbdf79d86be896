/// An environment for tests that need no server, and what its error handle holds.
#pragma once

#include <gtest/gtest.h>
#include <oci.h>

#include <string>

#include "zevoci/errors.h"

namespace zevtest {

constexpr int kNoRecord = 0;

/// An environment with an error handle; no server is behind them.
class Environment {
 public:
  explicit Environment(ub4 mode = OCI_DEFAULT) {
    EXPECT_EQ(OCIEnvCreate(&env, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr),
              OCI_SUCCESS);
    errhp = make<OCIError>(OCI_HTYPE_ERROR);
  }
  ~Environment() { OCIHandleFree(env, OCI_HTYPE_ENV); }
  Environment(const Environment &) = delete;
  Environment &operator=(const Environment &) = delete;

  /// A new handle below the environment.
  template <class T>
  T *make(ub4 type) {
    void *handle = nullptr;
    EXPECT_EQ(OCIHandleAlloc(env, &handle, type, 0, nullptr), OCI_SUCCESS);
    return static_cast<T *>(handle);
  }

  /// The code of the last record, kNoRecord for none, with its own text in `lastMessage`;
  /// forgets all records.
  int takeRecord() {
    int code = kNoRecord;
    lastMessage.clear();
    for (const ErrorRecord *record : zev::Elements<ErrorRecord>(errhp->records)) {
      code = record->errcode;
      if ((record->content & kHasMsg) && record->msg) lastMessage = record->msg;
    }
    ClearErrorHandle(errhp);
    return code;
  }

  OCIEnv *env = nullptr;
  OCIError *errhp = nullptr;
  std::string lastMessage;
};

}  // namespace zevtest
