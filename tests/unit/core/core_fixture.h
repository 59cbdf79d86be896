/// Environments and handles of the handle layer in short forms.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zevoci/connection.h"
#include "zevoci/errors.h"
#include "zevoci/statement.h"
#include "zevoci/trace.h"
#include "zevoci/transaction.h"

namespace zev::test {

inline const OraText *asText(std::string_view text) {
  return reinterpret_cast<const OraText *>(text.data());
}

/// ASCII as a program in UTF-16 has it, least significant byte first, with no terminator.
inline std::string utf16(std::string_view ascii) {
  std::string wide;
  for (const char c : ascii) wide += std::string{c, '\0'};
  return wide;
}

/// An environment with an error handle; it is freed, with all below it, at the end.
class Environment {
 public:
  explicit Environment(ub4 mode = OCI_DEFAULT) {
    const sword status =
        OCIEnvCreate(&env_, mode, nullptr, nullptr, nullptr, nullptr, 0, nullptr);
    EXPECT_EQ(status, OCI_SUCCESS);
    if (status == OCI_SUCCESS) errhp_ = alloc<OCIError>(OCI_HTYPE_ERROR);
  }
  ~Environment() { free(); }
  Environment(const Environment &) = delete;
  Environment &operator=(const Environment &) = delete;

  OCIEnv *get() const { return env_; }
  OCIError *errhp() const { return errhp_; }

  /// A handle below the environment, or below `parent`.
  template <class T>
  T *alloc(ub4 type, void *parent = nullptr) {
    void *made = nullptr;
    EXPECT_EQ(OCIHandleAlloc(parent ? parent : env_, &made, type, 0, nullptr),
              OCI_SUCCESS);
    return static_cast<T *>(made);
  }

  void free() {
    if (env_) {
      EXPECT_EQ(OCIHandleFree(env_, OCI_HTYPE_ENV), OCI_SUCCESS);
    }
    env_ = nullptr;
    errhp_ = nullptr;
  }

 private:
  OCIEnv *env_ = nullptr;
  OCIError *errhp_ = nullptr;
};

/// The numbers of the records on a handle, in order; 0 for one without a number.
inline std::vector<sb4> codesOf(const OCIError *errhp) {
  std::vector<sb4> codes;
  for (const ErrorRecord *record : Elements<ErrorRecord>(errhp->records)) {
    codes.push_back(record->content & kHasErrcode ? record->errcode : 0);
  }
  return codes;
}

/// The text of the first record, the catalogue's where it has none of its own.
inline std::string firstText(const OCIError *errhp) {
  const auto *record = static_cast<const ErrorRecord *>(list_nth(errhp->records, 0));
  if (!record) return "";
  return record->content & kHasMsg ? record->msg : o2pGetErrorText(record->errcode);
}

using Codes = std::vector<sb4>;

/// Sets a variable of the process environment, or clears it for a null value, for a
/// while.
class Variable {
 public:
  Variable(const char *name, const char *value) : name_(name) {
    if (const char *former = std::getenv(name)) {
      former_ = former;
      had_ = true;
    }
    if (value) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
  }
  ~Variable() {
    if (had_) {
      setenv(name_, former_.c_str(), 1);
    } else {
      unsetenv(name_);
    }
  }
  Variable(const Variable &) = delete;
  Variable &operator=(const Variable &) = delete;

 private:
  const char *name_;
  std::string former_;
  bool had_ = false;
};

/// The texts of the narrative lines that `work` traces up to `level`, one a line.
template <class Work>
std::string traced(int level, const Work &work) {
  std::FILE *log = std::tmpfile();
  const std::uint64_t mask = std::exchange(oci_debug_mask, 0);
  oci_debug_log = log;
  OCI2PQ_TRACE_LEVEL = level;
  work();
  oci_debug_log = nullptr;
  oci_debug_mask = mask;
  OCI2PQ_TRACE_LEVEL = 0;
  std::rewind(log);
  std::string text;
  char line[256];
  while (std::fgets(line, sizeof line, log)) {
    const std::string_view whole(line);
    text += whole.substr(whole.find("]: ") + 3);
  }
  std::fclose(log);
  return text;
}

}  // namespace zev::test
