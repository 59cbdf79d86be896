/// An environment of one encoding, and what its calls trace.
#pragma once

#include <ociap.h>

#include "tests/unit/core/core_fixture.h"
#include "zevoci/trace.h"

namespace zev::test {

/// An environment that was created with an encoding number.
class EncodedEnvironment {
 public:
  explicit EncodedEnvironment(ub2 encoding) {
    EXPECT_EQ(OCIEnvNlsCreate(&env_, OCI_DEFAULT, nullptr, nullptr, nullptr, nullptr, 0,
                              nullptr, encoding, 0),
              OCI_SUCCESS);
    // A number whose name is no alias means UTF-8; and 0 asks the process environment.
    env_->encoding = encoding;
  }
  ~EncodedEnvironment() { OCIHandleFree(env_, OCI_HTYPE_ENV); }
  EncodedEnvironment(const EncodedEnvironment &) = delete;
  EncodedEnvironment &operator=(const EncodedEnvironment &) = delete;

  OCIEnv *get() const { return env_; }
  OCIError *errors() const { return env_->errh; }

 private:
  OCIEnv *env_ = nullptr;
};

}  // namespace zev::test
