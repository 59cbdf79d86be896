/// What the tests of statements share: an environment with its handles, error records,
/// lists of binds, and a seeded generator.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/owned.h"
#include "tests/support/environment.h"
#include "tests/support/random_inputs.h"
#include "zevoci/statement.h"

namespace zevtest {

using namespace std::string_literals;

inline const OraText *oraText(const std::string &text) {
  return reinterpret_cast<const OraText *>(text.c_str());
}

/// ASCII text as UTF-16LE.
inline std::string utf16(const std::string &ascii) {
  std::string wide;
  for (const char c : ascii) wide += std::string{c, '\0'};
  return wide;
}

/// An environment with a statement.
struct Session : Environment {
  explicit Session(ub4 mode = OCI_DEFAULT)
      : Environment(mode), stmt(make<OCIStmt>(OCI_HTYPE_STMT)) {}

  sword prepare(const std::string &text) {
    return OCIStmtPrepare(stmt, errhp, oraText(text), static_cast<ub4>(text.size()),
                          OCI_NTV_SYNTAX, OCI_DEFAULT);
  }

  OCIStmt *stmt;
};

/// A list of binds of these names, in order, outside any statement.
class NamedBinds {
 public:
  explicit NamedBinds(std::vector<std::string> names);
  ~NamedBinds() { list_free(list_); }
  NamedBinds(const NamedBinds &) = delete;
  NamedBinds &operator=(const NamedBinds &) = delete;

  List *list() const { return list_; }
  OCIBind &operator[](std::size_t i) { return binds_[i]; }
  const std::vector<std::string> &names() const { return names_; }
  /// The place of a bind in this list; -1 for another's.
  int indexOf(const OCIBind *bind) const;

 private:
  std::vector<std::string> names_;
  std::vector<OCIBind> binds_;
  List *list_ = nullptr;
};

/// Up to `most` bytes of `alphabet`.
std::string randomText(std::mt19937_64 &random, const std::string &alphabet,
                       std::size_t most);

template <class Case>
std::string nameOf(const testing::TestParamInfo<Case> &info) {
  return info.param.name;
}

}  // namespace zevtest
