/// Calls with text that is none, one for each argument of the interface that takes text.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "tests/integration/support/oci_test.h"

namespace zev::test {

/// A text in UTF-16 that cannot be converted, with a terminator behind it.
struct BrokenText {
  const char *name;
  std::u16string units;
  std::size_t missing;  ///< bytes that its end lacks
  std::string_view record;

  OraText *text() const {
    return reinterpret_cast<OraText *>(const_cast<char16_t *>(units.data()));
  }
  template <class T = ub4>
  T size() const {
    return static_cast<T>(2 * units.size() - missing);
  }
};

/// Where a failure is recorded.
enum class RecordedOn { Error, Environment };

/// How a text argument says where it ends.
enum class EndsBy { Length, Terminator };

/// What a call needs: handles of a connected program.
struct BrokenTextCaller {
  OCIEnv *env;
  OCIError *err;
  OCISvcCtx *svc;
  Given user, password, target;
  std::function<void *(ub4)> alloc;  ///< a handle below the environment, by its type
};

/// One text argument of one function.
struct BrokenTextRow {
  const char *function, *argument;
  EndsBy end;
  RecordedOn record;
  sword (*call)(const BrokenTextCaller &, const BrokenText &);
};

/// Every text argument that the library converts.
std::span<const BrokenTextRow> brokenTextRows();

}  // namespace zev::test
